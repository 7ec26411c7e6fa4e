/// \file
/// LR items of a grammar, numbered densely: item (rule r, dot d) is
/// Base(r) + d, for d = 0 .. the length of r's right side (0 for an empty
/// rule, whose one item is complete at once). Rule 0, <'> -> goal, comes first.
#pragma once

#include "grammar/Grammar.h"
#include "grammar/Indexed.h"

#include <vector>

class LrItems {
public:
    explicit LrItems(const Grammar& g);

    int Count() const { return m_rule.size(); }
    int Item(int rule, int dot) const { return m_base[rule] + dot; }
    int Rule(int item) const { return m_rule[item]; }
    int Dot(int item) const { return m_dot[item]; }
    /// The symbol after the dot, or -1 when the item is complete.
    int Next(int item) const { return m_next[item]; }
    bool Complete(int item) const { return Next(item) < 0; }
    /// Right-side length of a rule (0 for an empty rule).
    int Length(int rule) const { return m_length[rule]; }
    /// The rules of each non-terminal, in rule order (by code).
    const std::vector<int>& RulesOf(int nonterminal) const { return m_rulesOf[nonterminal]; }

    /// "<E> = <E> • [+] <T>": the item written with the bullet at the dot.
    QString Text(const Grammar& g, int item) const;

private:
    Indexed<int> m_base;    ///< by rule: the number of its item with the dot in front
    Indexed<int> m_length;  ///< by rule: right-side length
    Indexed<int> m_rule;    ///< by item: its rule
    Indexed<int> m_dot;     ///< by item: symbols before the dot
    Indexed<int> m_next;    ///< by item: the symbol after the dot, -1 when complete
    Indexed<std::vector<int>> m_rulesOf;  ///< by code: the rules of a non-terminal
};
