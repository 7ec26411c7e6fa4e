/// \file
/// Removal of left recursion ("LR"): Aho, Lam, Sethi & Ullman, "Compilers:
/// Principles, Techniques, and Tools", 2nd ed. (2006), Algorithm 4.19
/// (Algorithm 4.1 of the 1986 edition), with its preconditions met first:
///  1. empty rules are removed when one of them hides left recursion (a
///     left-corner cycle passes A -> B X ... with B =>* ε);
///  2. cycles (A =>+ A) are removed;
///  3. barren non-terminals (deriving no terminal string) go with the rules that
///     name them, since Algorithm 4.19 would leave them without rules.
/// A barren goal is refused with a message before any of this.
/// The substitution of Aj's rules into Ai -> Aj gamma is made only where Aj
/// reaches Ai through left corners (the left-corner filter discussed by Moore,
/// "Removing Left Recursion from Context-Free Grammars", NAACL 2000): other
/// substitutions take no part in left recursion and only make the grammar larger.
#include "transform/Transform.h"
#include "transform/WorkingCopy.h"

#include <algorithm>
#include <set>

namespace transform {

namespace {

/// The component of each code in the left-corner graph, and the edges.
struct CornerGraph {
    std::vector<LeftCorner> edges;
    Indexed<int> component;

    CornerGraph(const Grammar& g, const Productions& rules)
        : edges(LeftCorners(g, rules, NullableMarks(g, rules)))
    {
        Graph graph(g.copyLastCode + 1);
        for (const LeftCorner& e : edges)
            graph[e.from].push_back(e.to);
        component = Components(graph);
    }

    bool OnCycle(const LeftCorner& e) const
    {
        return component[e.from] == component[e.to];
    }
    bool LeftRecursive() const
    {
        return std::any_of(edges.begin(), edges.end(), [this](const LeftCorner& e) { return OnCycle(e); });
    }
    bool HiddenLeftRecursion() const
    {
        return std::any_of(edges.begin(), edges.end(), [this](const LeftCorner& e) { return e.hidden && OnCycle(e); });
    }
};

/// Adds a right side to list unless it is there; false once the result has
/// grown past its limit.
bool AddOnce(std::vector<std::vector<int>>& list, std::set<std::vector<int>>& seen, std::vector<int> right,
             ResultBudget& budget)
{
    if (!seen.insert(right).second)
        return true;
    const bool within = budget.Add(right);
    list.push_back(std::move(right));
    return within;
}

/// Algorithm 4.19 over the rules by non-terminal (right sides; empty = ε).
class Paull {
public:
    Paull(Grammar& g, bool letters, const Productions& rules)
        : m_g(g)
        , m_letters(letters)
        , m_alternatives(g.copyLastCode + 1)
        , m_budget(g)
    {
        for (const Production& p : rules) {
            m_alternatives[p.left].push_back(p.right);
            m_budget.Add(p.right);
        }
        // The goal first, then the others in code order.
        m_order.push_back(g.copyGoal);
        for (int a = g.copyFirstNonterminal; a <= g.copyLastCode; ++a)
            if (a != g.copyGoal && !m_alternatives[a].empty())
                m_order.push_back(a);
        m_position.assign(m_alternatives.size(), -1);
        for (int i = 0; i < m_order.size(); ++i)
            m_position[m_order[i]] = i;
        m_primeOf.assign(m_alternatives.size(), 0);
    }

    /// False when stopped, or when the result would grow past its limit (the
    /// substitutions can double the rules at every level of a grammar).
    bool Run()
    {
        for (int i = 0; i < m_order.size(); ++i) {
            if (!Substitute(i) || !EliminateImmediate(m_order[i]) || Stopped(m_g))
                return false;
        }
        return true;
    }

    /// Each non-terminal in order, followed by the one made for its recursion.
    Productions Result() const
    {
        Productions rules;
        for (int a : m_order) {
            for (int x : {a, m_primeOf[a]}) {
                if (x == 0)
                    continue;
                for (const std::vector<int>& right : m_alternatives[x])
                    rules.push_back({x, right});
            }
        }
        return rules;
    }

private:
    /// The non-terminals that reach a through left corners of the current rules.
    Indexed<char> Reaching(int a) const
    {
        Productions rules;
        for (int x = 0; x < m_alternatives.size(); ++x)
            for (const std::vector<int>& right : m_alternatives[x])
                rules.push_back({x, right});
        Indexed<std::vector<int>> reverse(m_alternatives.size());
        for (const LeftCorner& e : LeftCorners(m_g, rules, NullableMarks(m_g, rules)))
            reverse[e.to].push_back(e.from);
        Indexed<char> reaches(m_alternatives.size(), 0);
        std::vector<int> work{a};
        while (!work.empty()) {
            const int x = work.back();
            work.pop_back();
            for (int y : reverse[x])
                if (!reaches[y]) {
                    reaches[y] = 1;
                    work.push_back(y);
                }
        }
        return reaches;
    }

    /// Replaces Ai -> Aj gamma (j < i, Aj reaching Ai) by Ai -> delta gamma for
    /// every Aj -> delta, until no such rule is left. False when stopped.
    bool Substitute(int i)
    {
        const int ai = m_order[i];
        const Indexed<char> reaches = Reaching(ai);
        const auto substitutable = [&](const std::vector<int>& right) {
            if (right.empty() || !IsCopyNonterminal(m_g, right[0]))
                return false;
            const int j = m_position[right[0]];
            return j >= 0 && j < i && reaches[right[0]];
        };
        auto& alternatives = m_alternatives[ai];
        while (std::any_of(alternatives.begin(), alternatives.end(), substitutable)) {
            // The round's rules replace Ai's: counted as they are made, Ai's old ones dropped.
            for (const std::vector<int>& right : alternatives)
                m_budget.Add(-1, -static_cast<std::int64_t>(right.size()));
            std::vector<std::vector<int>> next;
            std::set<std::vector<int>> seen;
            for (const std::vector<int>& right : alternatives) {
                if (!substitutable(right)) {
                    if (!AddOnce(next, seen, right, m_budget))
                        return false;
                    continue;
                }
                for (const std::vector<int>& delta : m_alternatives[right[0]]) {
                    std::vector<int> replaced = delta;
                    replaced.insert(replaced.end(), right.begin() + 1, right.end());
                    if (replaced.size() == 1 && replaced[0] == ai)
                        continue;  // Ai -> Ai adds nothing
                    if (!AddOnce(next, seen, std::move(replaced), m_budget))
                        return false;
                }
                if (Stopped(m_g))
                    return false;
            }
            alternatives = std::move(next);
            if (Stopped(m_g))
                return false;
        }
        return true;
    }

    /// A -> A a1 | ... | A am | b1 | ... | bn becomes A -> b1 A' | ... | bn A'
    /// and A' -> a1 A' | ... | am A' | ε: one rule and n symbols more. False
    /// once the result has grown past its limit.
    bool EliminateImmediate(int a)
    {
        std::vector<std::vector<int>> alphas, betas;
        for (const std::vector<int>& right : m_alternatives[a]) {
            if (!right.empty() && right[0] == a)
                alphas.push_back(std::vector<int>(right.begin() + 1, right.end()));
            else
                betas.push_back(right);
        }
        if (alphas.empty())
            return true;
        if (!m_budget.Add(1, static_cast<std::int64_t>(betas.size())))
            return false;
        const int fresh = NewNonterminal(m_g, a, m_letters);
        m_alternatives.resize(fresh + 1);
        m_position.resize(m_alternatives.size(), -1);
        m_primeOf.resize(m_alternatives.size(), 0);
        m_primeOf[a] = fresh;
        auto& own = m_alternatives[a];
        own.clear();
        for (std::vector<int>& beta : betas) {
            beta.push_back(fresh);
            own.push_back(std::move(beta));
        }
        auto& tail = m_alternatives[fresh];
        for (std::vector<int>& alpha : alphas) {
            alpha.push_back(fresh);
            tail.push_back(std::move(alpha));
        }
        tail.push_back({});
        return true;
    }

    Grammar& m_g;
    bool m_letters;
    Indexed<std::vector<std::vector<int>>> m_alternatives;  ///< by code: right sides in order
    Indexed<int> m_order;     ///< A1..An of the algorithm
    Indexed<int> m_position;  ///< by code: index in m_order, -1 for new non-terminals
    Indexed<int> m_primeOf;   ///< by code: the non-terminal made for its recursion, or 0
    ResultBudget m_budget;    ///< the rules and symbols of m_alternatives, against the limit
};

} // namespace

} // namespace transform

QStringList LeftRecursion(Grammar& g, bool letters)
{
    using namespace transform;
    Productions rules = CopyProductions(g);
    if (!CornerGraph(g, rules).LeftRecursive())
        return CopyLines(g);

    // A barren goal is refused before anything else is done: nothing of the
    // grammar could stay.
    if (!ProductiveMarks(g, rules)[g.copyGoal]) {
        RefuseBarrenGoal(g);
        return {};
    }
    if (CornerGraph(g, rules).HiddenLeftRecursion()) {
        if (!EliminateEmptyRules(g, letters))
            return {};
        rules = CopyProductions(g);
    }
    const Indexed<char> cyclic = CyclicMarks(g, rules);
    if (std::find(cyclic.begin(), cyclic.end(), 1) != cyclic.end()) {
        if (!EliminateCycles(g, letters))
            return {};
        rules = CopyProductions(g);
    }
    const Indexed<char> productive = ProductiveMarks(g, rules);
    std::erase_if(rules, [&](const Production& p) {
        return !productive[p.left]
            || std::any_of(p.right.begin(), p.right.end(),
                           [&](int x) { return !productive[x]; });
    });
    if (Stopped(g))
        return {};

    Paull paull(g, letters, rules);
    if (!paull.Run())
        return {};
    SetCopyProductions(g, paull.Result());
    return CopyLines(g);
}
