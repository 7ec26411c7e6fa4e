/// \file
/// Removal of barren and unreachable symbols ("UU"): the rules of non-terminals
/// that derive no terminal string go first, then the rules of non-terminals
/// that no kept right part uses.
#include "transform/Transform.h"
#include "transform/WorkingCopy.h"

#include <algorithm>

QStringList RemoveUnusedSymbols(Grammar& g)
{
    using transform::IsCopyNonterminal;
    const int first = g.copyFirstNonterminal;
    const auto& rules = g.copyRules;
    const auto isEmpty = [](const std::vector<int>& rule) { return rule.size() == 2 && rule[1] == 0; };

    // First pass: empty rules, single terminals, and right parts without non-terminals.
    CodeList productive;
    for (int r = 1; r <= g.copyRuleCount; ++r) {
        const std::vector<int>& rule = rules[r];
        const int a = rule[0];
        if (rule.size() == 2) {
            const int x = rule[1];
            if (isEmpty(rule) || (x != a && x > 0 && x < first))
                productive.Add(a);
        } else if (std::none_of(rule.begin() + 1, rule.end(), [&](int x) { return IsCopyNonterminal(g, x); })) {
            productive.Add(a);
        }
    }

    // Growth passes until a pass adds nothing.
    for (int before = -1; before != productive.Count();) {
        before = productive.Count();
        for (int r = 1; r <= g.copyRuleCount; ++r) {
            const std::vector<int>& rule = rules[r];
            if (rule.size() == 2 && (rule[1] == rule[0] || rule[1] == 0))
                continue;
            bool all = true;
            for (std::size_t i = 1; i < rule.size() && all; ++i)
                all = !IsCopyNonterminal(g, rule[i]) || productive.Contains(rule[i]);
            if (all)
                productive.Add(rule[0]);
        }
        if (transform::Stopped(g))
            return {};
    }

    // Barren filter.
    std::vector<std::vector<int>> kept;
    for (int r = 1; r <= g.copyRuleCount; ++r) {
        const std::vector<int>& rule = rules[r];
        bool all = productive.Contains(rule[0]);
        for (std::size_t i = 1; i < rule.size() && all; ++i)
            all = !IsCopyNonterminal(g, rule[i]) || productive.Contains(rule[i]);
        if (all)
            kept.push_back(rule);
    }

    // On purpose: "used" means named in some kept right part, not reachable from
    // the goal; a non-terminal that only its own or other unused rules mention stays.
    CodeList used;
    used.Add(first);
    for (const std::vector<int>& rule : kept)
        for (std::size_t i = 1; i < rule.size(); ++i)
            if (IsCopyNonterminal(g, rule[i]))
                used.Add(rule[i]);

    std::vector<std::vector<int>> final{{-2, g.copyGoal}};
    for (const std::vector<int>& rule : kept)
        if (used.Contains(rule[0]))
            final.push_back(rule);
    g.copyRuleCount = static_cast<int>(final.size()) - 1;
    g.copyRules = std::move(final);

    // The first line names the first non-terminal; identical lines are written once.
    QStringList lines = transform::CopyLines(g);
    lines[0] = transform::WrittenSymbol(g, first);
    return lines;
}
