/// \file
/// The references of the transformation tests.
#include "GrammarOracle.h"

#include <QStringList>
#include <algorithm>
#include <functional>
#include <string>

namespace {

using Sentence = std::u16string;  // terminal codes

std::size_t At(int code)
{
    return static_cast<std::size_t>(code);
}

bool NullableNt(const Grammar& g, int x)  // the marks are checked against the textbook in SetsReferenceTest
{
    return g.IsNonterminal(x) && g.nullable[At(x)];
}

/// Whether the relation edge(A, X), A derives X ..., closed transitively (Warshall), relates a code to itself.
bool Loops(const Grammar& g, const std::function<bool(const std::vector<int>& rule, std::size_t i)>& edge)
{
    const std::size_t n = At(g.lastCode) + 1;
    std::vector<std::vector<char>> reach(n, std::vector<char>(n, 0));
    for (int r = 1; r <= g.ruleCount; ++r) {
        const std::vector<int>& rule = g.rules[At(r)];
        for (std::size_t i = 1; i < rule.size(); ++i)
            if (g.IsNonterminal(rule[i]) && edge(rule, i))
                reach[At(rule[0])][At(rule[i])] = 1;
    }
    for (std::size_t k = 0; k < n; ++k)
        for (std::size_t i = 0; i < n; ++i)
            if (reach[i][k])
                for (std::size_t j = 0; j < n; ++j)
                    reach[i][j] = reach[i][j] || reach[k][j];
    for (std::size_t i = 0; i < n; ++i)
        if (reach[i][i])
            return true;
    return false;
}

} // namespace

std::set<QString> BoundedSentences(const Grammar& g, int maxLength)
{
    const std::size_t limit = static_cast<std::size_t>(maxLength);
    std::vector<std::set<Sentence>> language(At(g.lastCode) + 1);
    for (bool changed = true; changed;) {
        changed = false;
        for (int r = 1; r <= g.ruleCount; ++r) {
            const std::vector<int>& rule = g.rules[At(r)];
            std::set<Sentence> partial{Sentence()};
            for (std::size_t i = 1; i < rule.size() && !g.ruleIsEmpty[At(r)] && !partial.empty(); ++i) {
                std::set<Sentence> next;
                for (const Sentence& s : partial) {
                    if (!g.IsNonterminal(rule[i])) {
                        if (s.size() < limit)
                            next.insert(s + static_cast<char16_t>(rule[i]));
                        continue;
                    }
                    for (const Sentence& t : language[At(rule[i])])
                        if (s.size() + t.size() <= limit)
                            next.insert(s + t);
                }
                partial = std::move(next);
            }
            for (const Sentence& s : partial)
                changed = language[At(rule[0])].insert(s).second || changed;
        }
    }
    std::set<QString> sentences;
    for (const Sentence& s : language[At(g.goal)]) {
        QStringList names;
        for (char16_t c : s)
            names << (c == 0 ? QStringLiteral(".") : g.SymbolName(c));
        sentences.insert(names.join(QLatin1Char(' ')));
    }
    return sentences;
}

bool HasLeftRecursion(const Grammar& g)
{
    return Loops(g, [&](const std::vector<int>& rule, std::size_t i) {
        for (std::size_t j = 1; j < i; ++j)
            if (!NullableNt(g, rule[j]))
                return false;
        return true;
    });
}

bool HasCycle(const Grammar& g)
{
    return Loops(g, [&](const std::vector<int>& rule, std::size_t i) {
        for (std::size_t j = 1; j < rule.size(); ++j)
            if (j != i && !NullableNt(g, rule[j]))
                return false;
        return true;
    });
}

bool HasCommonFirstSymbols(const Grammar& g)
{
    std::set<std::pair<int, int>> seen;
    for (int r = 1; r <= g.ruleCount; ++r)
        if (!g.ruleIsEmpty[At(r)] && !seen.insert({g.rules[At(r)][0], g.rules[At(r)][1]}).second)
            return true;
    return false;
}

bool HasEmptyRulesBeyondGoal(const Grammar& g)
{
    bool goalOnRight = false, goalEmpty = false;
    for (int r = 1; r <= g.ruleCount; ++r) {
        const std::vector<int>& rule = g.rules[At(r)];
        if (g.ruleIsEmpty[At(r)] && rule[0] != g.goal)
            return true;
        goalEmpty = goalEmpty || g.ruleIsEmpty[At(r)];
        goalOnRight = goalOnRight || std::find(rule.begin() + 1, rule.end(), g.goal) != rule.end();
    }
    return goalEmpty && goalOnRight;
}

bool RulesGrouped(const Grammar& g)
{
    std::set<int> finished;
    for (int r = 1; r <= g.ruleCount; ++r) {
        if (finished.count(g.rules[At(r)][0]))
            return false;
        if (r > 1 && g.rules[At(r - 1)][0] != g.rules[At(r)][0])
            finished.insert(g.rules[At(r - 1)][0]);
    }
    return true;
}
