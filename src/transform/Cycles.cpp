/// \file
/// Removal of cycles ("RC"): afterwards no non-terminal derives itself (A =>+ A).
///
/// Non-terminals that derive one another through unit rules (A =>* B and
/// B =>* A) derive the same sentences, so each strongly connected component of
/// the unit-rule graph (Tarjan 1972) is merged into one of its members, and the
/// unit rules inside it vanish. Unlike the removal of all unit rules (Hopcroft &
/// Ullman, "Introduction to Automata Theory, Languages, and Computation", 1979,
/// Theorem 4.4), unit rules that lie on no cycle stay.
/// A cycle that needs nullable neighbours (A -> A B with B =>* ε) is not made of
/// unit rules: for it the empty rules are removed first, after which every cycle is.
#include "transform/Transform.h"
#include "transform/WorkingCopy.h"

#include <algorithm>
#include <set>

namespace transform {

namespace {

/// Whether some cycle of A =>+ A passes a rule that is not a unit rule.
bool CycleNeedsEmptyRules(const Grammar& g, const Productions& rules)
{
    const Indexed<char> nullable = NullableMarks(g, rules);
    const auto isNullable = [&](int x) { return IsCopyNonterminal(g, x) && nullable[x]; };
    struct Edge {
        int from, to;
        bool unit;
    };
    std::vector<Edge> edges;
    Graph graph(g.copyLastCode + 1);
    for (const Production& p : rules) {
        int notNullable = 0;
        for (int x : p.right)
            notNullable += isNullable(x) ? 0 : 1;
        for (int x : p.right) {
            if (!IsCopyNonterminal(g, x) || notNullable - (isNullable(x) ? 0 : 1) != 0)
                continue;
            edges.push_back({p.left, x, p.right.size() == 1});
            graph[p.left].push_back(x);
        }
    }
    const Indexed<int> component = Components(graph);
    return std::any_of(edges.begin(), edges.end(),
                       [&](const Edge& e) { return !e.unit && component[e.from] == component[e.to]; });
}

} // namespace

bool EliminateCycles(Grammar& g, bool letters)
{
    Productions rules = CopyProductions(g);
    if (CycleNeedsEmptyRules(g, rules)) {
        if (!EliminateEmptyRules(g, letters))
            return false;
        rules = CopyProductions(g);
    }
    if (Stopped(g))
        return false;

    Graph unit(g.copyLastCode + 1);
    for (const Production& p : rules)
        if (p.right.size() == 1 && IsCopyNonterminal(g, p.right[0]))
            unit[p.left].push_back(p.right[0]);
    const Indexed<int> component = Components(unit);

    // The member that stands for its component: the goal when it is one,
    // otherwise the member with the lowest code (the first to appear).
    Indexed<int> representative(unit.size(), -1);
    representative[component[g.copyGoal]] = g.copyGoal;
    for (int a = g.copyFirstNonterminal; a <= g.copyLastCode; ++a) {
        int& r = representative[component[a]];
        if (r < 0)
            r = a;
    }
    const auto mapped = [&](int x) { return IsCopyNonterminal(g, x) ? representative[component[x]] : x; };

    Productions result;
    std::set<Production> seen;
    for (const Production& p : rules) {
        Production q{mapped(p.left), {}};
        for (int x : p.right)
            q.right.push_back(mapped(x));
        if (q.right.size() == 1 && q.right[0] == q.left)
            continue;  // a unit rule inside a merged component
        if (seen.insert(q).second)
            result.push_back(std::move(q));
    }
    // A component that no rule leaves derived nothing: merged, it has no rules.
    DropRulesNamingUndefined(g, result);
    if (!GoalDefined(g, result)) {
        RefuseBarrenGoal(g);
        return false;
    }
    SetCopyProductions(g, result);
    return true;
}

} // namespace transform

QStringList RemoveCycles(Grammar& g, bool letters)
{
    if (!transform::EliminateCycles(g, letters))
        return {};
    return transform::CopyLines(g);
}
