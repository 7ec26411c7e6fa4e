/// \file
/// The references of the transformation tests.
#include "GrammarOracle.h"

#include <QStringList>
#include <map>
#include <string>

namespace {

using Sentence = std::u16string;  // terminal codes

std::vector<char> Nullable(const Grammar& g)
{
    std::vector<char> nullable(static_cast<std::size_t>(g.lastCode) + 1, 0);
    for (bool changed = true; changed;) {
        changed = false;
        for (int r = 1; r <= g.ruleCount; ++r) {
            const std::vector<int>& rule = g.rules[static_cast<std::size_t>(r)];
            bool all = true;
            for (std::size_t i = 1; i < rule.size() && !g.ruleIsEmpty[static_cast<std::size_t>(r)]; ++i)
                all = all && g.IsNonterminal(rule[i]) && nullable[static_cast<std::size_t>(rule[i])];
            if (all && !nullable[static_cast<std::size_t>(rule[0])]) {
                nullable[static_cast<std::size_t>(rule[0])] = 1;
                changed = true;
            }
        }
    }
    return nullable;
}

/// Transitive closure of a relation over codes (Warshall).
void Close(std::vector<std::vector<char>>& reach)
{
    const std::size_t n = reach.size();
    for (std::size_t k = 0; k < n; ++k)
        for (std::size_t i = 0; i < n; ++i)
            if (reach[i][k])
                for (std::size_t j = 0; j < n; ++j)
                    reach[i][j] = reach[i][j] || reach[k][j];
}

bool AnyDiagonal(const std::vector<std::vector<char>>& reach)
{
    for (std::size_t i = 0; i < reach.size(); ++i)
        if (reach[i][i])
            return true;
    return false;
}

} // namespace

std::set<QString> BoundedSentences(const Grammar& g, int maxLength)
{
    const std::size_t limit = static_cast<std::size_t>(maxLength);
    std::vector<std::set<Sentence>> language(static_cast<std::size_t>(g.lastCode) + 1);
    for (bool changed = true; changed;) {
        changed = false;
        for (int r = 1; r <= g.ruleCount; ++r) {
            const std::vector<int>& rule = g.rules[static_cast<std::size_t>(r)];
            std::set<Sentence> partial{Sentence()};
            const bool empty = g.ruleIsEmpty[static_cast<std::size_t>(r)];
            for (std::size_t i = 1; i < rule.size() && !empty && !partial.empty(); ++i) {
                const int x = rule[i];
                std::set<Sentence> next;
                if (g.IsNonterminal(x)) {
                    for (const Sentence& s : partial)
                        for (const Sentence& t : language[static_cast<std::size_t>(x)])
                            if (s.size() + t.size() <= limit)
                                next.insert(s + t);
                } else {
                    for (const Sentence& s : partial)
                        if (s.size() < limit)
                            next.insert(s + static_cast<char16_t>(x));
                }
                partial = std::move(next);
            }
            for (const Sentence& s : partial)
                changed = language[static_cast<std::size_t>(rule[0])].insert(s).second || changed;
        }
    }
    std::set<QString> sentences;
    for (const Sentence& s : language[static_cast<std::size_t>(g.goal)]) {
        QStringList names;
        for (char16_t c : s)
            names << (c == 0 ? QStringLiteral(".") : g.SymbolName(c));
        sentences.insert(names.join(QLatin1Char(' ')));
    }
    return sentences;
}

bool HasLeftRecursion(const Grammar& g)
{
    const std::vector<char> nullable = Nullable(g);
    const std::size_t n = static_cast<std::size_t>(g.lastCode) + 1;
    std::vector<std::vector<char>> reach(n, std::vector<char>(n, 0));
    for (int r = 1; r <= g.ruleCount; ++r) {
        const std::vector<int>& rule = g.rules[static_cast<std::size_t>(r)];
        for (std::size_t i = 1; i < rule.size() && g.IsNonterminal(rule[i]); ++i) {
            reach[static_cast<std::size_t>(rule[0])][static_cast<std::size_t>(rule[i])] = 1;
            if (!nullable[static_cast<std::size_t>(rule[i])])
                break;
        }
    }
    Close(reach);
    return AnyDiagonal(reach);
}

bool HasCycle(const Grammar& g)
{
    const std::vector<char> nullable = Nullable(g);
    const std::size_t n = static_cast<std::size_t>(g.lastCode) + 1;
    std::vector<std::vector<char>> reach(n, std::vector<char>(n, 0));
    for (int r = 1; r <= g.ruleCount; ++r) {
        const std::vector<int>& rule = g.rules[static_cast<std::size_t>(r)];
        for (std::size_t i = 1; i < rule.size(); ++i) {
            if (!g.IsNonterminal(rule[i]))
                continue;
            bool othersNullable = true;
            for (std::size_t j = 1; j < rule.size(); ++j)
                if (j != i)
                    othersNullable = othersNullable && g.IsNonterminal(rule[j]) && nullable[static_cast<std::size_t>(rule[j])];
            if (othersNullable)
                reach[static_cast<std::size_t>(rule[0])][static_cast<std::size_t>(rule[i])] = 1;
        }
    }
    Close(reach);
    return AnyDiagonal(reach);
}

bool HasCommonFirstSymbols(const Grammar& g)
{
    std::set<std::pair<int, int>> seen;
    for (int r = 1; r <= g.ruleCount; ++r) {
        if (g.ruleIsEmpty[static_cast<std::size_t>(r)])
            continue;
        const std::vector<int>& rule = g.rules[static_cast<std::size_t>(r)];
        if (!seen.insert({rule[0], rule[1]}).second)
            return true;
    }
    return false;
}

bool HasEmptyRulesBeyondGoal(const Grammar& g)
{
    bool goalOnRight = false;
    bool goalEmpty = false;
    for (int r = 1; r <= g.ruleCount; ++r) {
        const std::vector<int>& rule = g.rules[static_cast<std::size_t>(r)];
        if (g.ruleIsEmpty[static_cast<std::size_t>(r)]) {
            if (rule[0] != g.goal)
                return true;
            goalEmpty = true;
        }
        for (std::size_t i = 1; i < rule.size(); ++i)
            goalOnRight = goalOnRight || rule[i] == g.goal;
    }
    return goalEmpty && goalOnRight;
}

bool RulesGrouped(const Grammar& g)
{
    std::set<int> finished;
    for (int r = 1; r <= g.ruleCount; ++r) {
        const int left = g.rules[static_cast<std::size_t>(r)][0];
        if (finished.count(left))
            return false;
        if (r > 1 && g.rules[static_cast<std::size_t>(r - 1)][0] != left)
            finished.insert(g.rules[static_cast<std::size_t>(r - 1)][0]);
    }
    return true;
}
