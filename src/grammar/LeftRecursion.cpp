/// \file
/// The left-recursion test of the parse. It looks only at the first symbol of
/// each right side; nullable prefixes are deliberately not skipped.
#include "grammar/Grammar.h"

#include <algorithm>

// note [left-recursion search]
// The test asks, for each rule A -> X ... with a non-terminal X != A, a search
// from X for A. The search from X answers yes when a rule of X starts with A;
// otherwise it walks the rules of X that start with another non-terminal
// Y != X and searches from each Y in turn, and each answer replaces the answer
// so far (on purpose: a later "no" replaces an earlier "yes"). So only the
// last such rule of X counts: call its first symbol next(X). The search from X
// thus follows one path X, next(X), next(next(X)), ... and answers yes exactly
// when some Z on that path has a rule starting with A; a path that ends, or
// comes back to a symbol it has passed, answers no. (Searched literally, the
// walk never ends where a rule of X before the last one leads back into the
// path; there the answer of the path stands.)
//
// next makes the non-terminals a functional graph: trees whose roots either
// have no next or lie on a cycle. Z is on the path from X when Z is X or an
// ancestor of X in its tree, or when Z lies on the cycle that X's tree hangs
// from. One depth-first numbering of the trees answers "is Z an ancestor of X"
// by an interval test, so each A is decided by a binary search per rule
// Z -> A ..., and the whole test takes O(R log R) whatever the depth of the
// chains (a recursive search per A took quadratic time and overflowed the
// stack on chains of 100,000 rules).

namespace {

/// The functional graph of next and its numbering.
class NextGraph {
public:
    NextGraph(const Grammar& g, const Indexed<int>& next)
        : m_lo(g.firstNonterminal)
        , m_next(next)
    {
        const int n = g.lastCode + 1;
        m_cycle.assign(n, -1);
        m_root.assign(n, -1);
        m_in.assign(n, 0);
        m_out.assign(n, 0);
        MarkCycles(g.lastCode);
        Number(g.lastCode);
    }

    /// Z lies on the path from X when Z is on a cycle and X's path runs into
    /// it, or else when in(Z) <= in(X) < out(Z).
    bool OnCycle(int z) const { return m_cycle[z] >= 0; }
    /// The cycle X's path runs into, or -1.
    int CycleOf(int x) const { return m_cycle[m_root[x]]; }
    int Cycles() const { return m_cycles; }
    int In(int x) const { return m_in[x]; }
    int Out(int x) const { return m_out[x]; }

private:
    /// Walks next from every non-terminal, each node once, numbering the cycles met.
    void MarkCycles(int last)
    {
        enum : char { Unseen, OnWalk, Done };
        Indexed<char> state(last + 1, Unseen);
        std::vector<int> walk;
        for (int start = m_lo; start <= last; ++start) {
            int x = start;
            while (x >= 0 && state[x] == Unseen) {
                state[x] = OnWalk;
                walk.push_back(x);
                x = m_next[x];
            }
            if (x >= 0 && state[x] == OnWalk) {
                // The walk closed a cycle at x: from x's place to the end.
                for (auto it = std::find(walk.begin(), walk.end(), x); it != walk.end(); ++it)
                    m_cycle[*it] = m_cycles;
                ++m_cycles;
            }
            for (int y : walk)
                state[y] = Done;
            walk.clear();
        }
    }

    /// Numbers the trees depth first: a node's descendants are the nodes whose
    /// path passes it, and their numbers lie in [in, out).
    void Number(int last)
    {
        Indexed<std::vector<int>> children(last + 1);
        for (int x = m_lo; x <= last; ++x)
            if (m_cycle[x] < 0 && m_next[x] >= 0)
                children[m_next[x]].push_back(x);
        int clock = 0;
        std::vector<std::pair<int, std::size_t>> stack;  // node, next child to visit
        for (int root = m_lo; root <= last; ++root) {
            if (m_cycle[root] < 0 && m_next[root] >= 0)
                continue;  // not a root
            stack.push_back({root, 0});
            m_in[root] = clock++;
            m_root[root] = root;
            while (!stack.empty()) {
                auto& [x, child] = stack.back();
                if (child < children[x].size()) {
                    const int y = children[x][child++];
                    m_in[y] = clock++;
                    m_root[y] = root;
                    stack.push_back({y, 0});
                    continue;
                }
                m_out[x] = clock;
                stack.pop_back();
            }
        }
    }

    int m_lo;
    const Indexed<int>& m_next;
    Indexed<int> m_cycle;  ///< by code: the number of the cycle the node lies on, or -1
    Indexed<int> m_root;   ///< by code: the root of the node's tree
    Indexed<int> m_in;     ///< by code: depth-first number
    Indexed<int> m_out;    ///< by code: one past the numbers of the node's descendants
    int m_cycles = 0;
};

} // namespace

bool Grammar::FindLeftRecursion()
{
    leftRecursive.assign(static_cast<std::size_t>(lastCode) + 1, 0);
    bool answer = false;
    auto stopped = [this](int step) {
        if ((step & 1023) != 0)
            return false;
        host().yield();
        return !InProcess();
    };

    // Direct pass: a rule whose left side is its first right-side symbol.
    for (int r = 1; r <= ruleCount; ++r) {
        const std::vector<int>& rule = rules[r];
        if (rule[0] == rule[1]) {
            answer = true;
            leftRecursive[rule[0]] = 1;
        }
        if (stopped(r))
            return answer;
    }

    // next(X), the starts of each non-terminal's rules (X ...) and the
    // non-terminals whose rules start with it (Z -> A ...), in rule order.
    Indexed<int> next(lastCode + 1, -1);
    Indexed<std::vector<int>> starts(lastCode + 1), startedBy(lastCode + 1);
    for (int r = 1; r <= ruleCount; ++r) {
        const int a = rules[r][0];
        const int x = rules[r][1];
        if (!IsNonterminal(x))
            continue;
        if (x != a) {
            next[a] = x;
            starts[a].push_back(x);
        }
        startedBy[x].push_back(a);
    }
    const NextGraph graph(*this, next);

    // Indirect pass (note [left-recursion search]): A is left-recursive when a
    // rule Z -> A ... stands on the path from the start X of one of A's rules.
    Indexed<int> cycleSeen(graph.Cycles(), 0);
    std::vector<int> numbers;
    for (int a = firstNonterminal; a <= lastCode; ++a) {
        if (leftRecursive[a] || starts[a].empty() || startedBy[a].empty())
            continue;
        numbers.clear();
        for (int x : starts[a]) {
            numbers.push_back(graph.In(x));
            if (graph.CycleOf(x) >= 0)
                cycleSeen[graph.CycleOf(x)] = a;
        }
        std::sort(numbers.begin(), numbers.end());
        bool found = false;
        for (int z : startedBy[a]) {
            if (z == a)
                continue;
            if (graph.OnCycle(z)) {
                found = cycleSeen[graph.CycleOf(z)] == a;
            } else {
                const auto it = std::lower_bound(numbers.begin(), numbers.end(), graph.In(z));
                found = it != numbers.end() && *it < graph.Out(z);
            }
            if (found)
                break;
        }
        if (found) {
            answer = true;
            leftRecursive[a] = 1;
        }
        if (stopped(a))
            return answer;
    }
    return answer;
}
