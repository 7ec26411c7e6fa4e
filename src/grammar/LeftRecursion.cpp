/// \file
/// The left-recursion test of the parse. It looks only at the first symbol of
/// each right side; nullable prefixes are deliberately not skipped.
#include "grammar/Grammar.h"

namespace {

/// note [left-recursion search]
/// The search from X for A, skipping rule k, walks the rules of X other than k:
/// a rule starting with A answers yes at once; a rule starting with another
/// non-terminal Y != X searches from Y for A skipping that rule, and its answer
/// replaces the answer so far (on purpose: a later "no" replaces an earlier
/// "yes"). Taken literally the search never ends on a left-recursive cycle that
/// does not pass through A, and takes exponential time on long chains. Two
/// changes keep the answers wherever the literal search ends:
///  - the search is memoised for each searched A. A call is fully named by its
///    skipped rule k, because X is always the first symbol of rule k;
///  - a call that re-enters a rule already on the current search path answers
///    "no" (the literal search would loop there).
class RecursionSearch {
public:
    RecursionSearch(Grammar& g, const Indexed<std::vector<int>>& rulesOf)
        : m_g(g)
        , m_rulesOf(rulesOf)
        , m_state(g.ruleCount + 1, Unknown)
        , m_stamp(g.ruleCount + 1, 0)
    {
    }

    /// Starts the searches for a new A: every memoised answer is forgotten.
    void Begin(int a)
    {
        m_target = a;
        ++m_generation;
    }

    bool Search(int k)
    {
        if (m_stamp[k] == m_generation) {
            if (m_state[k] == OnPath)
                return false;
            return m_state[k] == Yes;
        }
        m_stamp[k] = m_generation;
        m_state[k] = OnPath;

        const int x = m_g.rules[k][1];
        bool answer = false;
        for (int j : m_rulesOf[x]) {
            if (j == k)
                continue;
            const int y = m_g.rules[j][1];
            if (y == m_target) {
                answer = true;
                m_state[k] = Yes;
                return true;
            }
            if (m_g.IsNonterminal(y) && y != x)
                answer = Search(j);
            m_g.host().yield();
            if (!m_g.InProcess())
                break;
        }
        m_state[k] = answer ? Yes : No;
        return answer;
    }

private:
    enum State : char { Unknown, OnPath, Yes, No };
    Grammar& m_g;
    const Indexed<std::vector<int>>& m_rulesOf;  ///< by code: the rules of a non-terminal
    Indexed<char> m_state;       ///< by rule: the memoised answer of Search(k)
    Indexed<unsigned> m_stamp;   ///< by rule: the generation m_state belongs to
    unsigned m_generation = 0;
    int m_target = 0;
};

} // namespace

bool Grammar::FindLeftRecursion()
{
    leftRecursive.assign(static_cast<std::size_t>(lastCode) + 1, 0);
    bool answer = false;

    // Direct pass: a rule whose left side is its first right-side symbol.
    for (int r = 1; r <= ruleCount; ++r) {
        const std::vector<int>& rule = rules[r];
        if (rule[0] == rule[1]) {
            answer = true;
            leftRecursive[rule[0]] = 1;
        }
        host().yield();
        if (!InProcess())
            return answer;
    }

    // The rules of each non-terminal, in rule order.
    Indexed<std::vector<int>> rulesOf(lastCode + 1);
    for (int r = 1; r <= ruleCount; ++r)
        rulesOf[rules[r][0]].push_back(r);

    // Indirect pass: from the first symbol X of a rule of A, search for A.
    RecursionSearch search(*this, rulesOf);
    int searched = 0;
    for (int r = 1; r <= ruleCount; ++r) {
        const std::vector<int>& rule = rules[r];
        const int a = rule[0];
        if (!leftRecursive[a] && IsNonterminal(rule[1])) {
            if (a != searched) {
                search.Begin(a);
                searched = a;
            }
            if (search.Search(r)) {
                answer = true;
                leftRecursive[a] = 1;
            }
        }
        host().yield();
        if (!InProcess())
            return answer;
    }
    return answer;
}
