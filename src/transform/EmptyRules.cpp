/// \file
/// Removal of empty rules ("RE"): the construction of a grammar without
/// ε-productions in Hopcroft & Ullman, "Introduction to Automata Theory,
/// Languages, and Computation" (1979), Theorem 4.3, with the empty sentence kept
/// through the goal as in the ε-free grammars of Aho & Ullman, "The Theory of
/// Parsing, Translation, and Compiling", vol. 1 (1972).
#include "transform/Transform.h"
#include "transform/WorkingCopy.h"

#include <algorithm>
#include <set>

namespace transform {

namespace {

/// Adds p unless an equal rule is there already; keeps the order of first
/// addition. False once the result has grown past its limit.
bool AddOnce(Productions& rules, std::set<Production>& seen, Production p, ResultBudget& budget)
{
    if (!seen.insert(p).second)
        return true;
    const bool within = budget.Add(p.right);
    rules.push_back(std::move(p));
    return within;
}

} // namespace

bool EliminateEmptyRules(Grammar& g, bool letters)
{
    const Productions rules = CopyProductions(g);
    const Indexed<char> nullable = NullableMarks(g, rules);
    const int goal = g.copyGoal;
    const auto isNullable = [&](int x) { return IsCopyNonterminal(g, x) && nullable[x]; };

    // Every rule A -> X1..Xk gives the rules that leave out any choice of its
    // nullable symbols, except the empty choice and A -> A (which adds nothing).
    // The goal's first empty rule keeps its place as a marker until step 3
    // decides whether the goal keeps an empty rule.
    Productions result;
    std::set<Production> seen;
    ResultBudget budget(g);
    for (const Production& p : rules) {
        if (p.right.empty()) {
            if (p.left == goal && !AddOnce(result, seen, p, budget))
                return false;
            continue;
        }
        std::vector<std::size_t> optional;
        for (std::size_t i = 0; i < p.right.size(); ++i)
            if (isNullable(p.right[i]))
                optional.push_back(i);
        // k nullable symbols give up to 2^k rules, each tried in turn: refused
        // before the first when 2^k passes the limit of the result's rules.
        if (optional.size() >= 62 || (std::int64_t{1} << optional.size()) > budget.MaxRules()) {
            g.host().critical(QStringLiteral("Too many nullable symbols in one rule."));
            return false;
        }
        const std::size_t choices = std::size_t{1} << optional.size();
        for (std::size_t mask = 0; mask < choices; ++mask) {
            Production variant{p.left, {}};
            std::size_t next = 0;
            for (std::size_t i = 0; i < p.right.size(); ++i) {
                const bool leftOut = next < optional.size() && optional[next] == i && ((mask >> next) & 1);
                if (next < optional.size() && optional[next] == i)
                    ++next;
                if (!leftOut)
                    variant.right.push_back(p.right[i]);
            }
            if (variant.right.empty() || (variant.right.size() == 1 && variant.right[0] == p.left))
                continue;
            if (!AddOnce(result, seen, std::move(variant), budget))
                return false;
            if ((mask & 1023) == 1023 && Stopped(g))
                return false;
        }
        if (Stopped(g))
            return false;
    }

    // A non-terminal that derived nothing but the empty sentence has no rules
    // left; the rules that name it go too, until every named symbol has rules.
    // Each such occurrence was nullable, so the rule without it is already there.
    for (bool dropped = true; dropped;) {
        Indexed<char> hasRules(g.copyLastCode + 1, 0);
        for (const Production& p : result)
            if (!p.right.empty())
                hasRules[p.left] = 1;
        Productions kept;
        dropped = false;
        for (const Production& p : result) {
            const bool defined = std::all_of(p.right.begin(), p.right.end(), [&](int x) {
                return !IsCopyNonterminal(g, x) || hasRules[x];
            });
            if (defined)
                kept.push_back(p);
            else
                dropped = true;
        }
        result = std::move(kept);
        if (Stopped(g))
            return false;
    }

    // A goal that derives nothing loses its last rules here (S = S B with B =>* ε
    // leaves only S = S): it cannot be written as a grammar.
    if (!nullable[goal] && !GoalDefined(g, result)) {
        RefuseBarrenGoal(g);
        return false;
    }

    // The empty sentence stays in the language through the goal: the goal keeps
    // an empty rule when no right side names it, otherwise a new goal S' takes
    // S' = S and S' = (empty).
    bool goalOnRight = false;
    for (const Production& p : result)
        for (int x : p.right)
            goalOnRight = goalOnRight || x == goal;
    if (nullable[goal] && goalOnRight) {
        std::erase(result, Production{goal, {}});
        const int start = NewNonterminal(g, goal, letters);
        g.copyGoal = start;
        result.insert(result.begin(), {Production{start, {goal}}, Production{start, {}}});
    } else if (nullable[goal] && std::find(result.begin(), result.end(), Production{goal, {}}) == result.end()) {
        result.insert(result.begin(), Production{goal, {}});
    }
    SetCopyProductions(g, result);
    return true;
}

} // namespace transform

QStringList RemoveEmptyRules(Grammar& g, bool letters)
{
    if (!transform::EliminateEmptyRules(g, letters))
        return {};
    return transform::CopyLines(g);
}
