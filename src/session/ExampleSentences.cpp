/// \file
/// Example sentences for the parse simulator: the shortest sentence, random
/// sentences of bounded length, and one short sentence through each rule.
#include "session/ParseSimulator.h"

#include <limits>

namespace {

/// The length of the shortest terminal string of each non-terminal; -1 for none.
std::vector<long> ShortestLengths(const RuleTable& rules)
{
    const Grammar& g = rules.g;
    std::vector<long> length(static_cast<std::size_t>(g.lastCode) + 1, -1);
    for (bool changed = true; changed;) {
        changed = false;
        for (int r = 1; r <= g.ruleCount; ++r) {
            long sum = 0;
            for (int s : rules.Right(r)) {
                const long part = g.IsNonterminal(s) ? length[static_cast<std::size_t>(s)] : s == 0 ? 0 : 1;
                if (part < 0) {
                    sum = -1;
                    break;
                }
                sum += part;
            }
            long& a = length[static_cast<std::size_t>(rules.Left(r))];
            if (sum >= 0 && (a < 0 || sum < a)) {
                a = sum;
                changed = true;
            }
        }
    }
    return length;
}

/// The leaves of a tree without the end marker.
std::vector<int> Terminals(const DerivationTree& tree)
{
    std::vector<int> out;
    for (int s : Leaves(tree))
        if (s > 0)
            out.push_back(s);
    return out;
}

} // namespace

std::vector<int> ShortestSentence(const Grammar& g)
{
    if (g.goal <= 0 || g.ruleCount == 0)
        return {};
    const RuleTable rules(g);
    if (rules.ShortestRule(g.goal) < 0)
        return {};
    return Terminals(rules.Terminalised({g.goal, -1, {}}));
}

std::vector<int> RandomSentence(const Grammar& g, int maxLength, std::mt19937& rng)
{
    if (g.goal <= 0 || g.ruleCount == 0)
        return {};
    const RuleTable rules(g);
    if (rules.ShortestRule(g.goal) < 0)
        return {};
    const std::vector<long> shortest = ShortestLengths(rules);
    auto minimum = [&](int s) { return g.IsNonterminal(s) ? shortest[static_cast<std::size_t>(s)] : s == 0 ? 0L : 1L; };
    // A leftmost derivation on an explicit stack. committed is the length the
    // sentence reaches when every pending symbol takes its shortest expansion;
    // a rule is chosen at random only while that stays within maxLength, and
    // only for a bounded number of choices (unit cycles would go round forever).
    std::vector<int> out;
    std::vector<int> stack{g.goal};
    long committed = shortest[static_cast<std::size_t>(g.goal)];
    long choices = 4L * std::max(maxLength, 0) + 64;
    while (!stack.empty()) {
        const int s = stack.back();
        stack.pop_back();
        if (!g.IsNonterminal(s)) {
            if (s > 0)
                out.push_back(s);
            continue;
        }
        int chosen = rules.ShortestRule(s);
        if (choices > 0) {
            --choices;
            std::vector<int> usable;
            for (int r : rules.RulesOf(s)) {
                long length = 0;
                for (int x : rules.Right(r))
                    length = minimum(x) < 0 || length < 0 ? -1 : length + minimum(x);
                if (length >= 0 && committed - minimum(s) + length <= maxLength)
                    usable.push_back(r);
            }
            if (!usable.empty())
                chosen = usable[std::uniform_int_distribution<std::size_t>(0, usable.size() - 1)(rng)];
        }
        long length = 0;
        for (int x : rules.Right(chosen))
            length += minimum(x);
        committed += length - minimum(s);
        const std::vector<int>& right = rules.Right(chosen);
        for (auto it = right.rbegin(); it != right.rend(); ++it)
            stack.push_back(*it);
    }
    return out;
}

std::vector<std::vector<int>> SentencePerRule(const Grammar& g)
{
    std::vector<std::vector<int>> sentences(static_cast<std::size_t>(std::max(g.ruleCount, 0)));
    if (g.goal <= 0 || g.ruleCount == 0)
        return sentences;
    const RuleTable rules(g);
    const std::vector<long> shortest = ShortestLengths(rules);
    auto minimum = [&](int s) { return g.IsNonterminal(s) ? shortest[static_cast<std::size_t>(s)] : s == 0 ? 0L : 1L; };
    // The shortest context of each non-terminal: the fewest terminals around it
    // in a form derived from the goal, with the rule and position that lead to
    // it (shortest paths; only strict improvements, so the links form a tree).
    constexpr long kNone = std::numeric_limits<long>::max();
    const std::size_t size = static_cast<std::size_t>(g.lastCode) + 1;
    std::vector<long> context(size, kNone);
    std::vector<int> viaRule(size, -1), viaPosition(size, -1);
    context[static_cast<std::size_t>(g.goal)] = 0;
    for (bool changed = true; changed;) {
        changed = false;
        for (int r = 1; r <= g.ruleCount; ++r) {
            const long outer = context[static_cast<std::size_t>(rules.Left(r))];
            const std::vector<int>& right = rules.Right(r);
            long total = 0;
            for (int x : right)
                total = minimum(x) < 0 || total < 0 ? -1 : total + minimum(x);
            if (outer == kNone || total < 0)
                continue;
            for (std::size_t i = 0; i < right.size(); ++i) {
                const int x = right[i];
                if (!g.IsNonterminal(x))
                    continue;
                const long c = outer + total - minimum(x);
                if (c < context[static_cast<std::size_t>(x)]) {
                    context[static_cast<std::size_t>(x)] = c;
                    viaRule[static_cast<std::size_t>(x)] = r;
                    viaPosition[static_cast<std::size_t>(x)] = static_cast<int>(i);
                    changed = true;
                }
            }
        }
    }
    for (int r = 1; r <= g.ruleCount; ++r) {
        const int left = rules.Left(r);
        bool usable = context[static_cast<std::size_t>(left)] != kNone;
        for (int x : rules.Right(r))
            usable = usable && minimum(x) >= 0;
        if (!usable)
            continue;
        std::vector<std::pair<int, int>> path;  // from left up to the goal
        for (int x = left; x != g.goal; x = rules.Left(viaRule[static_cast<std::size_t>(x)]))
            path.push_back({viaRule[static_cast<std::size_t>(x)], viaPosition[static_cast<std::size_t>(x)]});
        DerivationTree root{g.goal, -1, {}};
        DerivationTree* node = &root;
        auto expand = [&](int rule) {
            node->rule = rule;
            for (int x : rules.Right(rule))
                node->children.push_back({x, -1, {}});
        };
        for (auto it = path.rbegin(); it != path.rend(); ++it) {
            expand(it->first);
            node = &node->children[static_cast<std::size_t>(it->second)];
        }
        expand(r);
        sentences[static_cast<std::size_t>(r - 1)] = Terminals(rules.Terminalised(root));
    }
    return sentences;
}
