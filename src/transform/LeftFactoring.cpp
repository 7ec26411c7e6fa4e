/// \file
/// Left factoring ("LF"): Aho, Lam, Sethi & Ullman, "Compilers: Principles,
/// Techniques, and Tools", 2nd ed. (2006), Algorithm 4.21 (Algorithm 4.2 of the
/// 1986 edition). The rules of A that begin with the same symbol share their
/// longest common prefix alpha: A -> alpha b1 | ... | alpha bn becomes
/// A -> alpha A' and A' -> b1 | ... | bn. The new non-terminals are factored in
/// turn, until no two rules of one non-terminal begin with the same symbol.
#include "transform/Transform.h"
#include "transform/WorkingCopy.h"

#include <algorithm>
#include <deque>
#include <map>

namespace transform {

namespace {

/// Factors the rules of a; new non-terminals are appended to pending.
/// The rules of a group are replaced where its first member stood, and the
/// new non-terminal's rules follow at once, so that the text reads in order.
void FactorNonterminal(Grammar& g, bool letters, Productions& rules, int a, std::deque<int>& pending)
{
    // The rules of a by first symbol, in order of first appearance.
    std::vector<std::pair<int, std::vector<std::size_t>>> groups;
    std::map<int, std::size_t> groupOf;
    for (std::size_t i = 0; i < rules.size(); ++i) {
        if (rules[i].left != a || rules[i].right.empty())
            continue;
        const auto [it, added] = groupOf.try_emplace(rules[i].right[0], groups.size());
        if (added)
            groups.push_back({rules[i].right[0], {}});
        groups[it->second].second.push_back(i);
    }
    std::vector<char> drop(rules.size(), 0);
    std::map<std::size_t, Productions> replacement;  // by position of the group's first member
    for (const auto& group : groups) {
        const std::vector<std::size_t>& members = group.second;
        if (members.size() < 2)
            continue;
        // The longest prefix all members share (at least the first symbol).
        std::size_t length = rules[members[0]].right.size();
        for (std::size_t m : members) {
            const std::vector<int>& r0 = rules[members[0]].right;
            const std::vector<int>& r = rules[m].right;
            std::size_t k = 0;
            while (k < length && k < r.size() && r[k] == r0[k])
                ++k;
            length = k;
        }
        const int fresh = NewNonterminal(g, a, letters);
        pending.push_back(fresh);
        const std::vector<int>& r0 = rules[members[0]].right;
        Production head{a, std::vector<int>(r0.begin(), r0.begin() + static_cast<std::ptrdiff_t>(length))};
        head.right.push_back(fresh);
        Productions block{head};
        for (std::size_t m : members) {
            const std::vector<int>& r = rules[m].right;
            block.push_back({fresh, std::vector<int>(r.begin() + static_cast<std::ptrdiff_t>(length), r.end())});
            drop[m] = 1;
        }
        replacement[members[0]] = std::move(block);
    }
    if (replacement.empty())
        return;
    Productions result;
    result.reserve(rules.size() + replacement.size() * 2);
    for (std::size_t i = 0; i < rules.size(); ++i) {
        if (const auto it = replacement.find(i); it != replacement.end())
            result.insert(result.end(), it->second.begin(), it->second.end());
        else if (!drop[i])
            result.push_back(std::move(rules[i]));
    }
    rules = std::move(result);
}

} // namespace

} // namespace transform

QStringList LeftFactoring(Grammar& g, bool letters)
{
    using namespace transform;
    Productions rules = CopyProductions(g);
    std::deque<int> pending;
    for (int a = g.copyFirstNonterminal; a <= g.copyLastCode; ++a)
        pending.push_back(a);
    while (!pending.empty()) {
        const int a = pending.front();
        pending.pop_front();
        FactorNonterminal(g, letters, rules, a, pending);
        if (Stopped(g))
            return {};
    }
    SetCopyProductions(g, rules);
    return CopyLines(g);
}
