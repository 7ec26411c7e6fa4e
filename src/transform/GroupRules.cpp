/// \file
/// Rule grouping ("GR"): the rules of each non-terminal brought together, in
/// code order, without changing any rule; the grammar is then parsed again.
#include "transform/Transform.h"
#include "transform/WorkingCopy.h"

namespace {

/// The rule groups of a rule array: for each non-terminal code from the copy's
/// first non-terminal to its last symbol code, its rules in array order. Sets
/// the grammar's last symbol code to the copy's, as the grouping always has.
Indexed<std::vector<std::vector<int>>> RuleGroups(Grammar& g, const Indexed<std::vector<int>>& rules)
{
    g.lastCode = g.copyLastCode;
    const int first = g.copyFirstNonterminal;
    Indexed<std::vector<std::vector<int>>> groups(std::max(0, g.copyLastCode - first + 1));
    for (int r = 1; r < rules.size(); ++r) {
        const int left = rules[r][0];
        if (left >= first && left <= g.copyLastCode)
            groups[left - first].push_back(rules[r]);
    }
    return groups;
}

} // namespace

void GroupRules(Grammar& g)
{
    std::vector<std::vector<int>> grouped{{-2, g.copyGoal}};
    for (const auto& group : RuleGroups(g, g.copyRules))
        grouped.insert(grouped.end(), group.begin(), group.end());
    g.rules = std::move(grouped);
    g.ruleCount = static_cast<int>(g.rules.size()) - 1;
    // Parsed again so that codes, sets and flags follow the grouped text.
    g.SetText(g.Text());
}
