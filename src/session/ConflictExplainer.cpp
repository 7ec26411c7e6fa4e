/// \file
/// The conflict explanations.
#include "session/ConflictExplainer.h"

#include "session/AnalysisRun.h"
#include "session/ParserWalk.h"
#include "session/TableCells.h"
#include "session/Views.h"

#include <QJsonArray>
#include <algorithm>
#include <deque>
#include <set>

namespace {

QString Symbols(const Grammar& g, const std::vector<int>& codes)
{
    QStringList out;
    for (int c : codes)
        out << g.GetSymbolS(c);
    return out.isEmpty() ? QStringLiteral("(empty)") : out.join(QLatin1Char(' '));
}

QJsonArray SymbolArray(const Grammar& g, const std::vector<int>& codes)
{
    QJsonArray out;
    for (int c : codes)
        out.append(g.GetSymbolS(c));
    return out;
}

int MaxRight(const RuleTable& rules)
{
    int most = 1;
    for (int r = 1; r <= rules.g.ruleCount; ++r)
        most = std::max(most, static_cast<int>(rules.Right(r).size()));
    return most;
}

/// The non-terminals to root a unifying search at: the given ones, then those
/// whose rules hold them, nearest first.
std::vector<int> Roots(const RuleTable& rules, std::vector<int> start, int most)
{
    const Grammar& g = rules.g;
    std::vector<int> out;
    std::set<int> seen(start.begin(), start.end());
    std::deque<int> queue(start.begin(), start.end());
    while (!queue.empty() && static_cast<int>(out.size()) < most) {
        const int a = queue.front();
        queue.pop_front();
        out.push_back(a);
        for (int r = 1; r <= g.ruleCount; ++r) {
            const std::vector<int>& right = rules.Right(r);
            if (std::find(right.begin(), right.end(), a) != right.end() && seen.insert(rules.Left(r)).second)
                queue.push_back(rules.Left(r));
        }
    }
    return out;
}

bool HasNode(const DerivationTree& tree, int rule, int begin, int end)
{
    for (const SpannedNode& n : InnerNodes(tree))
        if (n.node->rule == rule && n.begin == begin && n.end == end)
            return true;
    return false;
}

void Finish(const RuleTable& rules, Counterexample& ex)
{
    ex.gaveUp = false;
    ex.forms.clear();
    ex.terminals.clear();
    for (const DerivationTree& t : ex.derivations) {
        ex.forms.push_back(Leaves(t));
        ex.terminals.push_back(Leaves(rules.Terminalised(t)));
    }
}

/// Cuts a counterexample found from <'> down to the smallest pair of
/// subtrees, one of each tree, with one symbol and one first leaf, that still
/// holds the clash: both begin no later than the refused rule's leaves and go
/// past the look-ahead at leaf `cut` (a unifying pair also ends alike). What
/// lies outside them is context both actions share, so the example says the
/// same in fewer symbols.
void Trim(const RuleTable& rules, Counterexample& ex, int reduced, int cut, int lookahead)
{
    const std::vector<SpannedNode> one = InnerNodes(ex.derivations[0]);
    const std::vector<SpannedNode> two = InnerNodes(ex.derivations[1]);
    int from = -1;
    for (const SpannedNode& n : two)
        if (n.node->rule == reduced && n.end == cut)
            from = n.begin;
    if (from < 0)
        return;
    auto covers = [&](const SpannedNode& n) { return n.begin <= from && (n.end > cut || (lookahead == 0 && n.end == cut)); };
    const SpannedNode* best[2] = {nullptr, nullptr};
    int bestSize = 0;
    for (const SpannedNode& a : one) {
        if (!covers(a))
            continue;
        for (const SpannedNode& b : two) {
            if (b.node->symbol != a.node->symbol || b.begin != a.begin || !covers(b) || (ex.unifying && b.end != a.end))
                continue;
            const int size = (a.end - a.begin) + (b.end - b.begin);
            // On a tie the later pair in preorder, the deeper one, wins.
            if ((best[0] == nullptr || size <= bestSize) && *a.node != *b.node) {
                best[0] = &a;
                best[1] = &b;
                bestSize = size;
            }
        }
    }
    if (best[0] == nullptr || best[0]->node == &ex.derivations[0])
        return;
    std::vector<DerivationTree> trees{*best[0]->node, *best[1]->node};
    ex.derivations = std::move(trees);
    ex.goalRooted = false;
    Finish(rules, ex);
    ex.sentence = ex.forms[0];
    if (!ex.unifying) {
        std::size_t same = 0;
        while (same < ex.forms[0].size() && same < ex.forms[1].size() && ex.forms[0][same] == ex.forms[1][same])
            ++same;
        ex.sentence.resize(same);
    }
}

class Explainer {
public:
    Explainer(Workspace& ws, int view, const ExplainOptions& options)
        : m_ws(ws)
        , m_g(ws.grammar)
        , m_rules(ws.grammar)
        , m_view(view)
        , m_options(options)
        , m_maxRight(MaxRight(m_rules))
    {
    }

    bool Stopped()
    {
        m_g.host().yield();
        m_stopped = m_stopped || (m_ws.current && !m_ws.current->InProcess());
        return m_stopped;
    }
    bool WasStopped() const { return m_stopped; }
    SearchBudget Budget() { return SearchBudget(m_options.budgetMs, m_options.maxTrees, [this] { return Stopped(); }); }

    QString ActionText(int entry, int states) const
    {
        if (entry == states)
            return QStringLiteral("accept");
        if (entry > 0)
            return QStringLiteral("shift to state %1").arg(entry);
        return QStringLiteral("reduce by rule %1 %2").arg(-entry).arg(RuleText(m_g, -entry));
    }

    ConflictExplanation Lr(const LrResults& lr, const ParserWalk& walk, const Conflict& c)
    {
        ConflictExplanation e;
        e.conflict = c;
        e.state = c.row;
        e.lookahead = c.column;
        const int states = lr.States();
        const int reduced = -c.rejected.front();
        e.actions << QStringLiteral("kept: ") + ActionText(c.kept, states)
                  << QStringLiteral("rejected: ") + ActionText(c.rejected.front(), states);
        if (c.kept < 0)
            e.rules.push_back(-c.kept);
        e.rules.push_back(reduced);
        e.prefix = walk.ShortestPrefix(c.row);
        const int a = c.column;

        // First the automaton itself: a parser of sentential forms walked over
        // a viable prefix into the state, once per action.
        const ParserWalk::Action keptAction{c.kept > 0, c.kept > 0 ? 0 : -c.kept};
        const ParserWalk::Action refusedAction{false, reduced};
        // The shortest prefix, then (made only when it is not enough) one
        // after which the refused reduce can read the look-ahead (in LALR(1)
        // not every way into the state can), then other short ones.
        std::vector<std::vector<int>> candidates{e.prefix};
        bool more = true;
        auto widen = [&] {
            more = false;
            SearchBudget budget = Budget();
            std::vector<int> reducing = walk.PrefixForReduce(c.row, a, reduced, budget);
            if (!reducing.empty() && reducing != e.prefix)
                candidates.push_back(std::move(reducing));
            for (std::vector<int>& p : walk.PrefixesTo(c.row, 5))
                if (std::find(candidates.begin(), candidates.end(), p) == candidates.end())
                    candidates.push_back(std::move(p));
        };
        for (std::size_t i = 0; !m_stopped; ++i) {
            if (i == candidates.size() && more)
                widen();
            if (i == candidates.size())
                break;
            // The shortest prefix is the likeliest: it gets the larger share.
            const int share = i == 0 ? 8 : 32;
            SearchBudget budget(m_options.budgetMs / share, m_options.maxTrees / share, [this] { return Stopped(); });
            DerivationTree one, two;
            if (walk.Unify(candidates[i], a, keptAction, refusedAction, budget, one, two)) {
                e.example.unifying = true;
                e.example.goalRooted = true;
                e.example.derivations = {one, two};
                Finish(m_rules, e.example);
                e.example.sentence = e.example.forms.front();
                Trim(m_rules, e.example, reduced, walk.LeavesOf(candidates[i]), a);
                return e;
            }
        }
        if (m_stopped)
            return e;
        const int cut = static_cast<int>(e.prefix.size());

        // Unifying: two trees of one form, one reducing the rejected rule right
        // before the look-ahead, the other not (it shifts, or reduces the kept rule there).
        auto accept = [&](const DerivationTree& reducing, const DerivationTree& other) {
            const std::vector<int> leaves = Leaves(reducing);
            const int n = static_cast<int>(leaves.size());
            for (const SpannedNode& node : InnerNodes(reducing)) {
                if (node.node->rule != reduced)
                    continue;
                const bool before = a == 0 ? node.end == n : node.end < n && leaves[node.end] == a;
                if (!before || HasNode(other, reduced, node.begin, node.end))
                    continue;
                if (c.kept < 0 && c.kept != -reduced) {
                    bool found = false;
                    for (const SpannedNode& k : InnerNodes(other))
                        found = found || (k.node->rule == -c.kept && k.end == node.end);
                    if (!found)
                        continue;
                }
                return true;
            }
            return false;
        };
        {
            const int refusedLeft = m_rules.Left(reduced);
            const int keptLeft = c.kept < 0 ? m_rules.Left(-c.kept) : refusedLeft;
            const std::vector<int> start = keptLeft != refusedLeft ? std::vector<int>{refusedLeft, keptLeft}
                                                                   : std::vector<int>{refusedLeft};
            // The second chance: forms rooted near the rules, for ambiguities
            // that need another way into the state than the walks tried.
            SearchBudget budget(m_options.budgetMs / 4, m_options.maxTrees / 4, [this] { return Stopped(); });
            TreeSearch search(m_rules, budget);
            // Short forms first over every root, so that one root whose forms
            // multiply fast does not spend the budget of the others.
            const std::vector<int> roots = Roots(m_rules, start, 6);
            const int most = std::min(16, 2 * m_maxRight + 2);
            for (int maxLeaves = std::min(5, most); !budget.Exhausted(); maxLeaves = std::min(most, 2 * maxLeaves)) {
                for (int root : roots) {
                    DerivationTree one, two;
                    if (search.FindAmbiguity(root, maxLeaves, accept, one, two)) {
                        e.example.unifying = true;
                        e.example.goalRooted = false;
                        // The search gives the reducing tree first: the kept action's goes first, as the actions read.
                        e.example.derivations = {two, one};
                        Finish(m_rules, e.example);
                        e.example.sentence = e.example.forms.front();
                        return e;
                    }
                    if (budget.Exhausted())
                        break;
                }
                if (maxLeaves == most)
                    break;
            }
        }
        if (m_stopped)
            return e;

        // Nonunifying: each action's walk completed on its own by the
        // shortest remaining items, over the first prefix that lets both read
        // the look-ahead.
        for (const std::vector<int>& prefix : candidates) {
            SearchBudget budget = Budget();
            DerivationTree one, two;
            if (walk.Complete(prefix, a, keptAction, budget, one) && walk.Complete(prefix, a, refusedAction, budget, two)) {
                e.example.goalRooted = true;
                e.example.derivations = {one, two};
                Finish(m_rules, e.example);
                e.example.unifying = e.example.forms[0] == e.example.forms[1];
                e.example.sentence = e.example.forms[0];
                if (!e.example.unifying) {
                    // The part both forms share: the prefix, the look-ahead and what follows alike.
                    std::size_t same = 0;
                    while (same < e.example.forms[0].size() && same < e.example.forms[1].size()
                           && e.example.forms[0][same] == e.example.forms[1][same])
                        ++same;
                    e.example.sentence.resize(same);
                }
                Trim(m_rules, e.example, reduced, walk.LeavesOf(prefix), a);
                return e;
            }
            if (m_stopped)
                return e;
        }

        // Last: from <'>, the prefix and the look-ahead, once per action, by the tree search.
        std::vector<int> target = e.prefix;
        if (a != 0)
            target.push_back(a);
        const int maxLeaves = static_cast<int>(target.size()) + 2 * m_maxRight + 2;
        SearchBudget budget = Budget();
        TreeSearch search(m_rules, budget);
        auto reducesAtCut = [&](int rule) {
            return [rule, cut](const DerivationTree& t) {
                for (const SpannedNode& n : InnerNodes(t))
                    if (n.node->rule == rule && n.end == cut)
                        return true;
                return false;
            };
        };
        // The kept action's tree must not reduce the refused rule at the cut:
        // else it would be the other action's tree as well.
        auto keeps = [&](const DerivationTree& t) {
            return (c.kept > 0 || reducesAtCut(-c.kept)(t)) && !reducesAtCut(reduced)(t);
        };
        DerivationTree first, second;
        const bool keptFound = search.FindWithPrefix(-2, target, a == 0, maxLeaves, keeps, first);
        if (keptFound && search.FindWithPrefix(-2, target, a == 0, maxLeaves, reducesAtCut(reduced), second)) {
            e.example.goalRooted = true;
            e.example.derivations = {first, second};
            Finish(m_rules, e.example);
            // The two trees may happen to spell one form: a unifying example after all.
            e.example.unifying = e.example.forms[0] == e.example.forms[1];
            e.example.sentence = e.example.unifying ? e.example.forms[0] : target;
        }
        return e;
    }

    ConflictExplanation Ll(const Conflict& c)
    {
        ConflictExplanation e;
        e.conflict = c;
        e.row = c.row;
        e.lookahead = c.column;
        e.rules.push_back(c.kept);
        e.rules.insert(e.rules.end(), c.rejected.begin(), c.rejected.end());
        for (int r : e.rules)
            e.actions << QStringLiteral("predict rule %1 %2").arg(r).arg(RuleText(m_g, r));
        const int p = e.rules[0], q = e.rules[1];
        const int t = c.column;
        {
            // A leftmost sentential form whose leftmost non-terminal is the row.
            SearchBudget budget = Budget();
            std::deque<std::vector<int>> queue{{m_g.goal}};
            while (!queue.empty() && budget.Spend()) {
                std::vector<int> form = std::move(queue.front());
                queue.pop_front();
                const auto it = std::find_if(form.begin(), form.end(), [&](int s) { return m_g.IsNonterminal(s); });
                if (it == form.end() || static_cast<int>(form.size()) > 32)
                    continue;
                if (*it == c.row) {
                    e.prefix = form;
                    break;
                }
                const std::size_t i = it - form.begin();
                for (int r : m_rules.RulesOf(*it)) {
                    std::vector<int> next(form.begin(), form.begin() + i);
                    next.insert(next.end(), m_rules.Right(r).begin(), m_rules.Right(r).end());
                    next.insert(next.end(), form.begin() + i + 1, form.end());
                    queue.push_back(std::move(next));
                }
            }
        }
        auto startsWith = [t](const DerivationTree& tree) {
            const std::vector<int> leaves = Leaves(tree);
            return !leaves.empty() && leaves.front() == t;
        };
        SearchBudget budget = Budget();
        TreeSearch search(m_rules, budget);
        DerivationTree one, two;
        auto ambiguous = [&](const DerivationTree& x, const DerivationTree& y) {
            return x.rule == p && y.rule == q && startsWith(x);
        };
        e.example.goalRooted = false;
        if (search.FindAmbiguity(c.row, std::min(16, 2 * m_maxRight + 2), ambiguous, one, two)) {
            e.example.unifying = true;
            e.example.derivations = {one, two};
            Finish(m_rules, e.example);
            e.example.sentence = e.example.forms.front();
            return e;
        }
        if (m_stopped)
            return e;
        SearchBudget budget2 = Budget();
        TreeSearch search2(m_rules, budget2);
        auto derive = [&](int rule, DerivationTree& tree) {
            auto byRule = [rule](const DerivationTree& x) { return x.rule == rule; };
            const int maxLeaves = 2 * m_maxRight + 2;
            return search2.FindWithPrefix(c.row, {t}, false, maxLeaves, byRule, tree)
                || ((t == 0 || m_g.ruleNullable[rule]) && search2.FindWithPrefix(c.row, {}, true, maxLeaves, byRule, tree));
        };
        if (derive(p, one) && derive(q, two)) {
            e.example.derivations = {one, two};
            Finish(m_rules, e.example);
            e.example.sentence = {t};
        }
        return e;
    }

    ConflictExplanation Precedence(const PrecedenceMatrix& m, const Conflict& c)
    {
        ConflictExplanation e;
        e.conflict = c;
        e.row = c.row;
        e.lookahead = c.column;
        e.example.gaveUp = false;
        std::vector<int> codes{c.kept};
        codes.insert(codes.end(), c.rejected.begin(), c.rejected.end());
        const bool simple = m_view == View::SPR;
        const auto& heads = simple ? m_g.leftSet : m_g.leftTermSet;
        const auto& tails = simple ? m_g.rightSet : m_g.rightTermSet;
        const int x = c.row, y = c.column;
        static const char* const names[] = {"<.", "=.", ".>"};
        for (int code : codes) {
            int relation = 0;
            while (relation < 2 && m.Code(static_cast<PrecedenceMatrix::Relation>(relation)) != code)
                ++relation;
            QString source;
            for (int r = 1; r <= m_g.ruleCount && source.isEmpty(); ++r) {
                const std::vector<int>& right = m_rules.Right(r);
                for (std::size_t k = 0; k + 1 < right.size() && source.isEmpty(); ++k) {
                    const int u = right[k], v = right[k + 1];
                    bool gives = false;
                    if (simple) {
                        gives = relation == 1 ? u == x && v == y
                              : relation == 0 ? u == x && m_g.IsNonterminal(v) && heads[v].Contains(y)
                                              : m_g.IsNonterminal(u) && tails[u].Contains(x)
                                                    && (v == y || (m_g.IsNonterminal(v) && heads[v].Contains(y)));
                    } else if (relation == 1) {
                        if (u == x)
                            for (std::size_t z = k + 1; z < right.size(); ++z)
                                if (m_g.IsTerminal(right[z])) {
                                    gives = right[z] == y;
                                    break;
                                }
                    } else if (relation == 0) {
                        gives = u == x && m_g.IsTerminal(u) && m_g.IsNonterminal(v) && heads[v].Contains(y);
                    } else {
                        gives = m_g.IsNonterminal(u) && tails[u].Contains(x)
                             && (v == y || (m_g.IsNonterminal(v) && heads[v].Contains(y)));
                    }
                    if (gives) {
                        source = QStringLiteral("rule %1 %2 at %3").arg(r).arg(RuleText(m_g, r)).arg(k + 1);
                        e.rules.push_back(r);
                    }
                }
            }
            if (source.isEmpty() && (x == 0 || y == 0))
                source = QStringLiteral("the end marker beside the goal");
            e.actions << QString::fromLatin1(names[relation]) + QStringLiteral(" from ") + source;
        }
        return e;
    }

private:
    Workspace& m_ws;
    Grammar& m_g;
    RuleTable m_rules;
    int m_view;
    ExplainOptions m_options;
    int m_maxRight;
    bool m_stopped = false;
};

} // namespace

QString KindText(ConflictKind kind)
{
    switch (kind) {
    case ConflictKind::ShiftReduce:
        return QStringLiteral("shift/reduce");
    case ConflictKind::ReduceReduce:
        return QStringLiteral("reduce/reduce");
    case ConflictKind::Prediction:
        return QStringLiteral("ll");
    case ConflictKind::Relation:
        break;
    }
    return QStringLiteral("precedence");
}

QString TreeText(const Grammar& g, const DerivationTree& tree)
{
    if (tree.rule < 0)
        return g.GetSymbolS(tree.symbol);
    QStringList parts;
    for (const DerivationTree& child : tree.children)
        parts << TreeText(g, child);
    return g.GetSymbolS(tree.symbol) + QStringLiteral("=( ") + parts.join(QLatin1Char(' '))
         + (parts.isEmpty() ? QStringLiteral(")") : QStringLiteral(" )"));
}

QJsonValue TreeJson(const Grammar& g, const DerivationTree& tree)
{
    if (tree.rule < 0)
        return g.GetSymbolS(tree.symbol);
    QJsonArray children;
    for (const DerivationTree& child : tree.children)
        children.append(TreeJson(g, child));
    QJsonObject o;
    o[QStringLiteral("symbol")] = g.GetSymbolS(tree.symbol);
    o[QStringLiteral("rule")] = tree.rule;
    o[QStringLiteral("children")] = children;
    return o;
}

namespace {

/// Runs the analysis of a view for its kept results only: no listing, messages
/// dropped (a stronger method that hits a limit is just left out), and every
/// turn of the loop passed on, so Stop and Ctrl-C still reach the run.
void AnalyseQuietly(Workspace& workspace, int view)
{
    class Quiet final : public Host, public AnalysisFrontend {
    public:
        explicit Quiet(Host& outer) : m_outer(outer) {}
        void critical(const QString&) override {}
        void information(const QString&) override {}
        bool okCancel(const QString&) override { return false; }
        void yield() override { m_outer.yield(); }
        void status(StatusField, const QString&) override {}
        QString GrammarText() override { return QString(); }
        void SetText2(const QString&) override {}
        bool WantsOutput() const override { return false; }
    private:
        Host& m_outer;
    };
    Host& outer = workspace.host();
    Quiet quiet(outer);
    workspace.setHost(&quiet);
    // The workspace's own host comes back however the run ends.
    struct Restore {
        Workspace& ws;
        Host& host;
        ~Restore() { ws.setHost(&host); }
    } restore{workspace, outer};
    Analyse(workspace, quiet, view);
}

bool HasConflict(const LrResults& results, int state, int lookahead)
{
    return std::any_of(results.conflicts.begin(), results.conflicts.end(),
                       [&](const Conflict& c) { return c.row == state && c.column == lookahead; });
}

std::vector<int> Core(std::vector<int> kernel)
{
    std::sort(kernel.begin(), kernel.end());
    return kernel;
}

} // namespace

QStringList StrongerMethodNotes(const Workspace& workspace, int view, int state, int lookahead)
{
    QStringList notes;
    const Grammar& g = workspace.grammar;
    if (view != View::SLR && view != View::LALR)
        return notes;
    const LrResults& own = view == View::SLR ? workspace.slr : workspace.lalr;
    if (state < 0 || state >= own.kernels.size())
        return notes;
    if (view == View::SLR && IsAnalysed(workspace, View::LALR) && state < workspace.lalr.kernels.size()
        && !HasConflict(workspace.lalr, state, lookahead))
        notes << QStringLiteral("LALR(1) has no conflict here: %1 does not follow the reduced rule in this state.")
                     .arg(g.GetSymbolS(lookahead));
    if (IsAnalysed(workspace, View::LR)) {
        const std::vector<int> core = Core(own.kernels[state]);
        int split = 0, conflicting = 0;
        for (int s = 0; s < workspace.lr.kernels.size(); ++s)
            if (Core(workspace.lr.kernels[s]) == core) {
                ++split;
                conflicting += HasConflict(workspace.lr, s, lookahead);
            }
        if (split > 0 && conflicting == 0)
            notes << (split == 1 ? QStringLiteral("Canonical LR(1) has no conflict here: its state with these items has none on %1.")
                                       .arg(g.GetSymbolS(lookahead))
                                 : QStringLiteral("Canonical LR(1) has no conflict here: it splits this state into %1, "
                                                  "none of which conflicts on %2.")
                                       .arg(QStringLiteral("%1 states").arg(split), g.GetSymbolS(lookahead)));
    }
    return notes;
}

Explanations ExplainConflicts(Workspace& workspace, int view, const ExplainOptions& options)
{
    Explanations out;
    out.view = view;
    const ViewInfo& info = ViewOf(view);
    if (options.compareStronger && (view == View::SLR || view == View::LALR)) {
        for (int stronger : {View::LALR, View::LR})
            if (stronger > view && !IsAnalysed(workspace, stronger))
                AnalyseQuietly(workspace, stronger);
        // The view's own analyser is the current one again, for Stop.
        workspace.current = MakeAnalyser(workspace, view);
    }
    if (workspace.current)
        workspace.current->SetInProcess(true);
    Explainer explainer(workspace, view, options);
    if (info.lrResults) {
        const LrResults& lr = workspace.*(info.lrResults);
        const ParserWalk walk(workspace.grammar, lr);
        for (const Conflict& c : lr.conflicts) {
            if (explainer.Stopped())
                break;
            out.conflicts.push_back(explainer.Lr(lr, walk, c));
            out.conflicts.back().notes = StrongerMethodNotes(workspace, view, c.row, c.column);
        }
    } else if (info.precedenceResults) {
        const PrecedenceMatrix& m = (workspace.*(info.precedenceResults)).synta;
        const ConflictMethod method = view == View::SPR ? ConflictMethod::SimplePrecedence : ConflictMethod::OperatorPrecedence;
        for (const Conflict& c : PrecedenceConflicts(m, method))
            out.conflicts.push_back(explainer.Precedence(m, c));
    } else if (view == View::LL) {
        for (const Conflict& c : LLConflicts(workspace.ll.synta)) {
            if (explainer.Stopped())
                break;
            out.conflicts.push_back(explainer.Ll(c));
        }
    }
    out.stopped = explainer.WasStopped();
    if (workspace.current)
        workspace.current->SetInProcess(false);
    return out;
}

QString ExplanationText(const Grammar& g, const Explanations& ex)
{
    const std::size_t count = ex.conflicts.size();
    QString text = QStringLiteral("%1: %2 conflict%3\n")
                       .arg(QString::fromLatin1(ViewOf(ex.view).method))
                       .arg(count)
                       .arg(count == 1 ? QString() : QStringLiteral("s"));
    int n = 0;
    for (const ConflictExplanation& e : ex.conflicts) {
        text += QStringLiteral("\nConflict %1: ").arg(++n);
        if (e.state >= 0)
            text += QStringLiteral("state %1, look-ahead %2").arg(e.state).arg(g.GetSymbolS(e.lookahead));
        else if (e.conflict.kind == ConflictKind::Prediction)
            text += QStringLiteral("%1 under look-ahead %2").arg(g.GetSymbolS(e.row), g.GetSymbolS(e.lookahead));
        else
            text += QStringLiteral("pair %1 %2").arg(g.GetSymbolS(e.row), g.GetSymbolS(e.lookahead));
        text += QStringLiteral(", ") + KindText(e.conflict.kind) + QLatin1Char('\n');
        for (const QString& a : e.actions)
            text += QStringLiteral("  ") + a + QLatin1Char('\n');
        for (const QString& note : e.notes)
            text += QStringLiteral("  note: ") + note + QLatin1Char('\n');
        if (e.conflict.kind == ConflictKind::Relation)
            continue;
        text += (e.state >= 0 ? QStringLiteral("  prefix: ") : QStringLiteral("  leftmost form: ")) + Symbols(g, e.prefix) + QLatin1Char('\n');
        const Counterexample& c = e.example;
        if (c.gaveUp) {
            text += QStringLiteral("  gave up: no counterexample within the budget\n");
            continue;
        }
        text += c.unifying ? QStringLiteral("  unifying: ") + Symbols(g, c.sentence) + QLatin1Char('\n')
                           : QStringLiteral("  nonunifying, sharing: ") + Symbols(g, c.sentence) + QLatin1Char('\n');
        for (std::size_t i = 0; i < c.derivations.size(); ++i) {
            text += QStringLiteral("    derivation %1: ").arg(i + 1) + TreeText(g, c.derivations[i]) + QLatin1Char('\n');
            text += QStringLiteral("    sentence %1:   ").arg(i + 1) + Symbols(g, c.terminals[i]) + QLatin1Char('\n');
        }
    }
    if (ex.stopped)
        text += QStringLiteral("\nstopped before every conflict was explained\n");
    return text;
}

QJsonObject ExplanationJson(const Grammar& g, const Explanations& ex)
{
    QJsonArray list;
    for (const ConflictExplanation& e : ex.conflicts) {
        QJsonObject o;
        o[QStringLiteral("state")] = e.state >= 0 ? QJsonValue(e.state) : QJsonValue();
        o[QStringLiteral("row")] = e.row >= 0 ? QJsonValue(g.GetSymbolS(e.row)) : QJsonValue();
        o[QStringLiteral("lookahead")] = g.GetSymbolS(e.lookahead);
        o[QStringLiteral("kind")] = KindText(e.conflict.kind);
        o[QStringLiteral("actions")] = QJsonArray::fromStringList(e.actions);
        QJsonArray rules;
        for (int r : e.rules)
            rules.append(r);
        o[QStringLiteral("rules")] = rules;
        o[QStringLiteral("prefix")] = SymbolArray(g, e.prefix);
        if (!e.notes.isEmpty())
            o[QStringLiteral("notes")] = QJsonArray::fromStringList(e.notes);
        if (e.conflict.kind != ConflictKind::Relation) {
            const Counterexample& c = e.example;
            QJsonObject ce;
            ce[QStringLiteral("unifying")] = c.unifying;
            ce[QStringLiteral("gave_up")] = c.gaveUp;
            ce[QStringLiteral("sentence")] = SymbolArray(g, c.sentence);
            QJsonArray trees, forms, terminals;
            for (std::size_t i = 0; i < c.derivations.size(); ++i) {
                trees.append(TreeJson(g, c.derivations[i]));
                forms.append(SymbolArray(g, c.forms[i]));
                terminals.append(SymbolArray(g, c.terminals[i]));
            }
            ce[QStringLiteral("derivations")] = trees;
            ce[QStringLiteral("forms")] = forms;
            ce[QStringLiteral("terminals")] = terminals;
            ce[QStringLiteral("root")] = c.goalRooted ? QStringLiteral("goal") : QStringLiteral("nonterminal");
            o[QStringLiteral("counterexample")] = ce;
        }
        list.append(o);
    }
    QJsonObject root;
    root[QStringLiteral("method")] = QString::fromLatin1(ViewOf(ex.view).name);
    root[QStringLiteral("conflicts")] = list;
    return root;
}
