/// \file
/// Derivation trees and the bounded searches the conflict explanations build
/// them with. A tree node is a symbol; an inner node also names the rule that
/// expands it, and its children are exactly that rule's right side. A leaf may
/// be a non-terminal left unexpanded, so the leaves read left to right give a
/// sentential form.
#pragma once

#include "grammar/Grammar.h"

#include <QElapsedTimer>
#include <QJsonObject>
#include <functional>
#include <optional>
#include <vector>

struct DerivationTree {
    int symbol = 0;  ///< the node's symbol (-2 for <'>, the left side of rule 0)
    int rule = -1;   ///< the rule expanding it; -1 for a leaf
    std::vector<DerivationTree> children;

    friend bool operator==(const DerivationTree&, const DerivationTree&) = default;
};

/// The leaves of a tree, left to right.
std::vector<int> Leaves(const DerivationTree& tree);

/// What a search may spend; Spend answers false once the time or the number of
/// trees is used up, or once stop() says the run was stopped.
class SearchBudget {
public:
    SearchBudget(int milliseconds, int trees, std::function<bool()> stopped = {});
    bool Spend();
    bool Exhausted() const { return m_exhausted; }
    bool Stopped() const { return m_stoppedNow; }

private:
    int m_ms;
    int m_trees;
    int m_spent = 0;
    bool m_exhausted = false;
    bool m_stoppedNow = false;
    std::function<bool()> m_stopped;
    QElapsedTimer m_timer;
};

/// A node of a tree with the leaves it covers, [begin, end).
struct SpannedNode {
    const DerivationTree* node;
    int begin;
    int end;
};
/// Every inner node of a tree with its span, in preorder.
std::vector<SpannedNode> InnerNodes(const DerivationTree& tree);

/// The grammar's rules as the searches read them.
class RuleTable {
public:
    explicit RuleTable(const Grammar& g);
    const Grammar& g;
    /// The right side of rule r (empty for an empty rule).
    const std::vector<int>& Right(int r) const { return m_right[r]; }
    int Left(int r) const { return g.rules[r][0]; }
    /// The rules of a non-terminal, in rule order.
    const std::vector<int>& RulesOf(int nonterminal) const { return m_rulesOf[nonterminal]; }
    /// The rule that gives a non-terminal its shortest terminal string; -1 when it has none.
    int ShortestRule(int nonterminal) const { return m_shortest[nonterminal]; }
    /// The tree's leaves with every non-terminal leaf expanded by its shortest rules.
    DerivationTree Terminalised(const DerivationTree& tree) const;

private:
    std::vector<std::vector<int>> m_right;
    std::vector<std::vector<int>> m_rulesOf;
    std::vector<int> m_shortest;
};

/// Searches trees in order of size: each tree is reached once, by expanding
/// its non-terminal leaves left to right; a leaf passed over stays unexpanded.
class TreeSearch {
public:
    TreeSearch(const RuleTable& rules, SearchBudget& budget)
        : m_rules(rules)
        , m_budget(budget)
    {
    }

    /// Two different trees rooted at root, with at most maxLeaves leaves and
    /// the same leaves, that accept(first, second) takes. False when none was
    /// found within the budget.
    bool FindAmbiguity(int root, int maxLeaves,
                       const std::function<bool(const DerivationTree&, const DerivationTree&)>& accept,
                       DerivationTree& first, DerivationTree& second);

    /// A tree rooted at root (-2: at rule 0) whose leaves begin with target
    /// (and are exactly target when whole), at most maxLeaves long, that accept takes.
    bool FindWithPrefix(int root, const std::vector<int>& target, bool whole, int maxLeaves,
                        const std::function<bool(const DerivationTree&)>& accept, DerivationTree& tree);

private:
    struct State {
        int parent;
        int position;  ///< the leaf expanded
        int rule;
        int next;      ///< leaves before it are final
        std::vector<int> form;
    };
    DerivationTree Build(const std::vector<State>& states, int index, int root) const;
    /// form with its symbol at i replaced by the right side of rule; nothing
    /// when the result would have more than maxLeaves symbols.
    std::optional<std::vector<int>> Expand(const std::vector<int>& form, int i, int rule, int maxLeaves) const;

    const RuleTable& m_rules;
    SearchBudget& m_budget;
};
