/// \file
/// LALR(1) look-aheads as DeRemer and Pennello's passes, in the order they run:
/// NumberTransitions, DirectReads, Reads, IncludesAndLookback, Follow,
/// LookaheadsFromLookback. The relations are over the non-terminal transitions
/// (p, A) of the LR(0) automaton; Read and Follow are computed by Digraph.
/// [DeRemer & Pennello 1982, "Efficient Computation of LALR(1) Look-Ahead
/// Sets", ACM TOPLAS 4(4).]
#include "analysers/LalrLookaheads.h"

#include "grammar/Digraph.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>

namespace {

/// The non-terminal transitions p --A--> r of the automaton, numbered state by
/// state and, within a state, by code: the nodes of every relation below.
struct Transitions {
    Indexed<int> from;    ///< by transition: the state p it leaves
    Indexed<int> symbol;  ///< by transition: the non-terminal A
    Indexed<int> to;      ///< by transition: the state r it enters
    Indexed<int> start;   ///< by state: the number of its first transition; one entry more holds the count

    int Count() const { return from.size(); }
    /// The number of (p, A); p must have a transition on A.
    int Find(int p, int a) const
    {
        const auto b = symbol.begin() + start[p];
        const auto e = symbol.begin() + start[p + 1];
        return static_cast<int>(std::lower_bound(b, e, a) - symbol.begin());
    }
};

/// A relation over transitions: by transition, the transitions it stands in relation to.
using Relation = Indexed<std::vector<int>>;

/// The turn the digraph walks give the message loop once per transition, and
/// the Stop test after it.
struct Turn {
    Model& model;
    IAnazer& analyser;
    bool operator()() const
    {
        model.host().yield();
        return analyser.InProcess();
    }
};

Transitions NumberTransitions(const Grammar& g, const Lr0Automaton& a)
{
    const int states = a.kernels.size();
    Transitions tr;
    tr.start.assign(states + 1, 0);
    for (int p = 0; p < states; ++p) {
        tr.start[p] = tr.Count();
        for (const auto& [x, target] : a.rows[p])
            if (x >= g.firstNonterminal) {
                tr.from.push_back(p);
                tr.symbol.push_back(x);
                tr.to.push_back(target);
            }
    }
    tr.start[states] = tr.Count();
    return tr;
}

/// DR(p, A) = { t | p --A--> r --t--> }: the terminals shifted from the state
/// that (p, A) enters. The end marker is read after the goal from state 0,
/// where the parse accepts. [DeRemer & Pennello 1982, direct read symbols.]
Indexed<TerminalSet> DirectReads(const Grammar& g, const Lr0Automaton& a, const Transitions& tr)
{
    const int t = g.terminalCount;
    Indexed<TerminalSet> dr(tr.Count(), TerminalSet(t));
    for (int x = 0; x < tr.Count(); ++x) {
        if (tr.from[x] == 0 && tr.symbol[x] == g.goal)
            dr[x].Add(0);
        for (const auto& [c, target] : a.rows[tr.to[x]])
            if (c <= t)
                dr[x].Add(c);
    }
    return dr;
}

/// (p, A) reads (r, C) iff p --A--> r --C--> and C derives the empty string;
/// Read(p, A) = DR(p, A) ∪ ⋃{ Read(r, C) | (p, A) reads (r, C) }, by Digraph.
/// sets holds DR on entry and Read on return. False when stopped.
/// [DeRemer & Pennello 1982, the reads relation and Read.]
bool Reads(const Grammar& g, const Lr0Automaton& a, const Transitions& tr, Indexed<TerminalSet>& sets, Turn turn)
{
    const int t = g.terminalCount;
    Relation reads(tr.Count());
    for (int x = 0; x < tr.Count(); ++x) {
        const int r = tr.to[x];
        for (const auto& [c, target] : a.rows[r])
            if (c > t && g.nullable[c])
                reads[x].push_back(tr.Find(r, c));
    }
    return Digraph(0, tr.Count() - 1, [&](int x) -> const std::vector<int>& { return reads[x]; }, sets, turn);
}

/// The lookback relation, kept by its left side: the transitions (p, A) that the
/// reduce of a rule in a state looks back to.
class Lookback {
public:
    explicit Lookback(int ruleCount)
        : m_rules(static_cast<std::uint64_t>(ruleCount) + 1)
    {
    }
    void Add(int q, int rule, int transition) { m_edges[Key(q, rule)].push_back(transition); }
    /// The transitions (q, rule) looks back to; null when there are none.
    const std::vector<int>* Find(int q, int rule) const
    {
        const auto it = m_edges.find(Key(q, rule));
        return it == m_edges.end() ? nullptr : &it->second;
    }

private:
    std::uint64_t Key(int q, int rule) const
    {
        return static_cast<std::uint64_t>(q) * m_rules + static_cast<std::uint64_t>(rule);
    }
    std::uint64_t m_rules;                                       ///< R + 1: keys are state * (R + 1) + rule
    std::unordered_map<std::uint64_t, std::vector<int>> m_edges;  ///< by key: the transitions looked back to
};

struct IncludesAndLookback {
    Relation includes;
    Lookback lookback;
};

/// (p', B) includes (p, A) iff A -> beta B gamma, gamma derives the empty string,
/// and p --beta--> p'; (q, A -> omega) lookback (p, A) iff p --omega--> q.
/// Walking every rule of A from p gives both. [DeRemer & Pennello 1982, section 4.]
/// False when stopped.
bool FindIncludesAndLookback(const LrGrammar& lg, const Lr0Automaton& a, const Transitions& tr,
                             IncludesAndLookback& relations, Turn turn)
{
    const Grammar& g = lg.g;
    const LrItems& items = lg.items;
    relations = IncludesAndLookback{Relation(tr.Count()), Lookback(g.ruleCount)};
    for (int x = 0; x < tr.Count(); ++x) {
        if (!turn())
            return false;
        const int p = tr.from[x];
        for (int r : items.RulesOf(tr.symbol[x])) {
            int q = p;
            for (int d = 0; d < items.Length(r); ++d) {
                const int item = items.Item(r, d);
                const int y = items.Next(item);
                if (g.IsNonterminal(y) && lg.tailNullable[item])
                    relations.includes[tr.Find(q, y)].push_back(x);
                q = RowEntry(a.rows[q], y);
            }
            relations.lookback.Add(q, r, x);
        }
    }
    return true;
}

/// Follow(p, A) = Read(p, A) ∪ ⋃{ Follow(p', B) | (p, A) includes (p', B) }, by
/// Digraph. sets holds Read on entry and Follow on return. False when stopped.
/// [DeRemer & Pennello 1982, the includes relation and Follow.]
bool Follow(const Relation& includes, Indexed<TerminalSet>& sets, Turn turn)
{
    return Digraph(0, includes.size() - 1, [&](int x) -> const std::vector<int>& { return includes[x]; }, sets, turn);
}

/// LA(q, A -> omega) = ⋃{ Follow(p, A) | (q, A -> omega) lookback (p, A) }, for
/// every complete item of every state. [DeRemer & Pennello 1982, LA.] False when stopped.
bool LookaheadsFromLookback(const LrGrammar& lg, const Lr0Automaton& a, const Lookback& lookback,
                            const Indexed<TerminalSet>& follow, ReduceLookaheads& result, Turn turn)
{
    const int states = a.kernels.size();
    result = ReduceLookaheads(states);
    for (int q = 0; q < states; ++q) {
        if (!turn())
            return false;
        for (int item : lg.CompleteItems(a.kernels[q])) {
            const int r = lg.items.Rule(item);
            TerminalSet la(lg.g.terminalCount);
            if (const std::vector<int>* back = lookback.Find(q, r))
                for (int x : *back)
                    la.Merge(follow[x]);
            result[q].emplace_back(r, std::move(la));
        }
    }
    return true;
}

} // namespace

bool ComputeLalrLookaheads(const LrGrammar& lg, const Lr0Automaton& a, Model& model, IAnazer& analyser,
                           ReduceLookaheads& result)
{
    const Turn turn{model, analyser};
    const Transitions transitions = NumberTransitions(lg.g, a);
    Indexed<TerminalSet> sets = DirectReads(lg.g, a, transitions);
    if (!Reads(lg.g, a, transitions, sets, turn))
        return false;
    IncludesAndLookback relations{Relation(), Lookback(lg.g.ruleCount)};
    if (!FindIncludesAndLookback(lg, a, transitions, relations, turn) || !Follow(relations.includes, sets, turn))
        return false;
    return LookaheadsFromLookback(lg, a, relations.lookback, sets, result, turn);
}
