/// \file
/// Derivation trees and their bounded searches.
#include "session/Derivation.h"

#include <algorithm>
#include <deque>
#include <map>

namespace {

void CollectLeaves(const DerivationTree& tree, std::vector<int>& out)
{
    if (tree.rule < 0) {
        out.push_back(tree.symbol);
        return;
    }
    for (const DerivationTree& child : tree.children)
        CollectLeaves(child, out);
}

int CollectNodes(const DerivationTree& tree, int begin, std::vector<SpannedNode>& out)
{
    if (tree.rule < 0)
        return begin + 1;
    const std::size_t at = out.size();
    out.push_back({&tree, begin, begin});
    int end = begin;
    for (const DerivationTree& child : tree.children)
        end = CollectNodes(child, end, out);
    out[at].end = end;
    return end;
}

} // namespace

std::vector<int> Leaves(const DerivationTree& tree)
{
    std::vector<int> out;
    CollectLeaves(tree, out);
    return out;
}

std::vector<SpannedNode> InnerNodes(const DerivationTree& tree)
{
    std::vector<SpannedNode> out;
    CollectNodes(tree, 0, out);
    return out;
}

SearchBudget::SearchBudget(int milliseconds, int trees, std::function<bool()> stopped)
    : m_ms(milliseconds)
    , m_trees(trees)
    , m_stopped(std::move(stopped))
{
    m_timer.start();
}

bool SearchBudget::Spend()
{
    if (m_exhausted)
        return false;
    ++m_spent;
    // The clock and the Stop command are asked now and then: both cost more than a tree.
    if ((m_spent & 255) == 0) {
        if (m_stopped && m_stopped()) {
            m_stoppedNow = true;
            m_exhausted = true;
        } else if (m_timer.elapsed() >= m_ms) {
            m_exhausted = true;
        }
    }
    if (m_spent >= m_trees)
        m_exhausted = true;
    return !m_exhausted;
}

RuleTable::RuleTable(const Grammar& grammar)
    : g(grammar)
    , m_right(static_cast<std::size_t>(grammar.ruleCount) + 1)
    , m_rulesOf(static_cast<std::size_t>(grammar.lastCode) + 1)
    , m_shortest(static_cast<std::size_t>(grammar.lastCode) + 1, -1)
{
    for (int r = 0; r <= g.ruleCount; ++r) {
        if (!g.ruleIsEmpty[r])
            m_right[r].assign(g.rules[r].begin() + 1, g.rules[r].end());
        if (r > 0)
            m_rulesOf[g.rules[r][0]].push_back(r);
    }
    // Shortest terminal strings: a rule is taken only when it makes a length
    // strictly shorter, so following ShortestRule always ends.
    std::vector<long> length(m_shortest.size(), -1);
    for (bool changed = true; changed;) {
        changed = false;
        for (int r = 1; r <= g.ruleCount; ++r) {
            long sum = 0;
            for (int s : m_right[r]) {
                const long part = g.IsNonterminal(s) ? length[s] : 1;
                if (part < 0) {
                    sum = -1;
                    break;
                }
                sum += part;
            }
            const int a = g.rules[r][0];
            if (sum >= 0 && (length[a] < 0 || sum < length[a])) {
                length[a] = sum;
                m_shortest[a] = r;
                changed = true;
            }
        }
    }
}

DerivationTree RuleTable::Terminalised(const DerivationTree& tree) const
{
    DerivationTree out = tree;
    if (out.rule < 0 && out.symbol >= 0 && g.IsNonterminal(out.symbol) && m_shortest[out.symbol] >= 0) {
        out.rule = m_shortest[out.symbol];
        for (int s : m_right[out.rule])
            out.children.push_back({s, -1, {}});
    }
    for (DerivationTree& child : out.children)
        child = Terminalised(child);
    return out;
}

DerivationTree TreeSearch::Build(const std::vector<State>& states, int index, int root) const
{
    std::vector<const State*> path;
    for (int i = index; i > 0; i = states[i].parent)
        path.push_back(&states[i]);
    DerivationTree tree{root, -1, {}};
    for (auto it = path.rbegin(); it != path.rend(); ++it) {
        // The leaf at position: walk the leaves left to right.
        int seen = 0;
        std::function<DerivationTree*(DerivationTree&)> find = [&](DerivationTree& node) -> DerivationTree* {
            if (node.rule < 0)
                return seen++ == (*it)->position ? &node : nullptr;
            for (DerivationTree& child : node.children)
                if (DerivationTree* hit = find(child))
                    return hit;
            return nullptr;
        };
        DerivationTree* leaf = find(tree);
        leaf->rule = (*it)->rule;
        for (int s : m_rules.Right((*it)->rule))
            leaf->children.push_back({s, -1, {}});
    }
    return tree;
}

std::optional<std::vector<int>> TreeSearch::Expand(const std::vector<int>& form, int i, int rule, int maxLeaves) const
{
    const std::vector<int>& right = m_rules.Right(rule);
    // Measured before it is made: most expansions of a search are over the bound.
    if (form.size() - 1 + right.size() > static_cast<std::size_t>(maxLeaves))
        return std::nullopt;
    std::vector<int> expanded;
    expanded.reserve(form.size() - 1 + right.size());
    expanded.insert(expanded.end(), form.begin(), form.begin() + i);
    expanded.insert(expanded.end(), right.begin(), right.end());
    expanded.insert(expanded.end(), form.begin() + i + 1, form.end());
    return expanded;
}

bool TreeSearch::FindAmbiguity(int root, int maxLeaves,
                               const std::function<bool(const DerivationTree&, const DerivationTree&)>& accept,
                               DerivationTree& first, DerivationTree& second)
{
    const Grammar& g = m_rules.g;
    std::vector<State> states{{-1, 0, -1, 0, {root}}};
    std::map<std::vector<int>, std::vector<int>> byForm;
    std::deque<int> queue{0};
    while (!queue.empty()) {
        const int at = queue.front();
        queue.pop_front();
        for (int i = states[at].next; i < static_cast<int>(states[at].form.size()); ++i) {
            const int symbol = states[at].form[i];
            if (!g.IsNonterminal(symbol))
                continue;
            for (int r : m_rules.RulesOf(symbol)) {
                if (!m_budget.Spend())
                    return false;
                std::optional<std::vector<int>> expanded = Expand(states[at].form, i, r, maxLeaves);
                if (!expanded)
                    continue;
                const std::vector<int>& form = *expanded;
                const int index = static_cast<int>(states.size());
                states.push_back({at, i, r, i, form});
                std::vector<int>& same = byForm[form];
                if (!same.empty()) {
                    const DerivationTree mine = Build(states, index, root);
                    for (int other : same) {
                        const DerivationTree theirs = Build(states, other, root);
                        if (accept(theirs, mine)) {
                            first = theirs;
                            second = mine;
                            return true;
                        }
                        if (accept(mine, theirs)) {
                            first = mine;
                            second = theirs;
                            return true;
                        }
                    }
                }
                if (same.size() < 4)
                    same.push_back(index);
                queue.push_back(index);
            }
        }
    }
    return false;
}

bool TreeSearch::FindWithPrefix(int root, const std::vector<int>& target, bool whole, int maxLeaves,
                                const std::function<bool(const DerivationTree&)>& accept, DerivationTree& tree)
{
    const Grammar& g = m_rules.g;
    const int length = static_cast<int>(target.size());
    std::vector<State> states{{-1, 0, -1, 0, {root}}};
    if (root == -2)
        states.push_back({0, 0, 0, 0, {g.goal}});
    std::deque<int> queue{static_cast<int>(states.size()) - 1};
    auto matches = [&](const std::vector<int>& form) {
        if (whole ? static_cast<int>(form.size()) != length : static_cast<int>(form.size()) < length)
            return false;
        return std::equal(target.begin(), target.end(), form.begin());
    };
    while (!queue.empty()) {
        const int at = queue.front();
        queue.pop_front();
        if (matches(states[at].form)) {
            const DerivationTree candidate = Build(states, at, root);
            if (accept(candidate)) {
                tree = candidate;
                return true;
            }
        }
        // Leaves past the target are never expanded; before it a leaf either
        // matches the target and may stay, or is a non-terminal that must grow.
        const int size = static_cast<int>(states[at].form.size());
        for (int i = states[at].next; i < size && (i < length || (whole && i >= length)); ++i) {
            const int symbol = states[at].form[i];
            if (!g.IsNonterminal(symbol)) {
                if (i < length && symbol == target[i])
                    continue;
                break;
            }
            for (int r : m_rules.RulesOf(symbol)) {
                if (!m_budget.Spend())
                    return false;
                std::optional<std::vector<int>> expanded = Expand(states[at].form, i, r, maxLeaves);
                if (!expanded)
                    continue;
                states.push_back({at, i, r, i, std::move(*expanded)});
                queue.push_back(static_cast<int>(states.size()) - 1);
            }
            if (i >= length || symbol != target[i])
                break;
        }
    }
    return false;
}
