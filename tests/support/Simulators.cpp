/// \file
/// The token-string simulators of the tests: what a kept table says of an
/// input, read straight off the analysis results.
#include "support/Simulators.h"

namespace {

enum class Rel { None, LT, EQ, GT };

/// A cell as the C table writes it: EQ, then LT, then GT.
Rel Resolved(const PrecedenceMatrix& m, int i, int j)
{
    if (m.IsEmpty(i, j))
        return Rel::None;
    if (m.HasCode(i, j, m.Code(PrecedenceMatrix::EQ)))
        return Rel::EQ;
    return m.HasCode(i, j, m.Code(PrecedenceMatrix::LT)) ? Rel::LT : Rel::GT;
}

} // namespace

bool SimulateLL(const Workspace& ws, const std::vector<int>& input)
{
    const Grammar& g = ws.grammar;
    std::vector<int> tokens = input;
    tokens.push_back(0);
    std::vector<int> stack{0, g.goal};
    std::size_t pos = 0;
    for (int steps = 0; steps < 1000000; ++steps) {
        const int cell = ws.ll.synta.First(stack.back(), tokens[pos]);
        if (cell == LLTable::kAcc)
            return true;
        if (cell == LLTable::kPop) {
            stack.pop_back();
            ++pos;
            continue;
        }
        if (cell <= 0)
            return false;
        stack.pop_back();
        if (g.ruleIsEmpty[static_cast<std::size_t>(cell)])
            continue;
        const std::vector<int>& rule = g.rules[static_cast<std::size_t>(cell)];
        for (std::size_t i = rule.size() - 1; i >= 1; --i)
            stack.push_back(rule[i]);
        if (stack.size() > 4000)
            return false;
    }
    return false;
}

bool SimulateLR(const Workspace& ws, const LrResults& r, const std::vector<int>& input)
{
    const Grammar& g = ws.grammar;
    std::vector<int> tokens = input;
    tokens.push_back(0);
    std::vector<int> stack{0};
    std::size_t pos = 0;
    const int accept = r.States();
    for (int steps = 0; steps < 1000000; ++steps) {
        const int action = RowEntry(r.rows[static_cast<std::size_t>(stack.back())], tokens[pos]);
        if (action == accept)
            return true;
        if (action > 0) {
            stack.push_back(action);
            if (tokens[pos] != 0)
                ++pos;
        } else if (action < 0) {
            const int rule = -action;
            stack.resize(stack.size() - static_cast<std::size_t>(g.RightLength(rule)));
            const int go = RowEntry(r.rows[static_cast<std::size_t>(stack.back())],
                                    g.rules[static_cast<std::size_t>(rule)][0]);
            if (go <= 0 || go == accept)
                return false;
            stack.push_back(go);
        } else {
            return false;
        }
    }
    return false;
}

bool SimulatePrecedence(const Workspace& ws, std::vector<int> tokens, bool simple)
{
    const Grammar& g = ws.grammar;
    const PrecedenceMatrix& m = simple ? ws.spr.synta : ws.opr.synta;
    tokens.push_back(0);
    std::vector<int> stack{0};
    std::size_t pos = 0;
    auto related = [&](std::size_t at) {  // the symbol below stack[at] that relations are read against
        std::size_t below = at - 1;
        while (!simple && g.IsNonterminal(stack[below]))
            --below;
        return below;
    };
    for (int steps = 0; steps < 100000; ++steps) {
        const std::size_t top = simple ? stack.size() - 1 : related(stack.size());
        if (tokens[pos] == 0 && stack.size() == 2 && (simple ? stack[1] == g.goal : top == 0))
            return true;
        const Rel rel = Resolved(m, stack[top], tokens[pos]);
        if ((rel == Rel::LT || rel == Rel::EQ) && tokens[pos] != 0) {
            stack.push_back(tokens[pos++]);
            continue;
        }
        if (rel != Rel::GT || top == 0)
            return false;
        std::size_t low = top;
        while (low > 1 && Resolved(m, stack[related(low)], stack[low]) == Rel::EQ && related(low) > 0)
            low = related(low);
        if (Resolved(m, stack[related(low)], stack[low]) != Rel::LT)
            return false;
        const std::size_t from = related(low) + 1;
        int found = 0;
        for (int r = 1; r <= g.ruleCount && !found; ++r) {
            const std::vector<int>& rule = g.rules[static_cast<std::size_t>(r)];
            bool match = rule.size() == stack.size() - from + 1;
            for (std::size_t k = 1; match && k < rule.size(); ++k)
                match = rule[k] == stack[from + k - 1]
                     || (!simple && g.IsNonterminal(rule[k]) && g.IsNonterminal(stack[from + k - 1]));
            found = match ? r : 0;
        }
        if (!found)
            return false;
        stack.resize(from);
        stack.push_back(g.rules[static_cast<std::size_t>(found)][0]);
    }
    return false;
}
