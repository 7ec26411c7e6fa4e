/// \file
/// Counterexamples found by walking the LR automaton itself: a parser of
/// sentential forms (non-terminals may be shifted as they are) is run from
/// state 0 over a viable prefix into the conflict state, one action of the
/// conflict is taken, and the walk goes on to the accept. Every shift and
/// every reduce by an item of the automaton is a step of a rightmost
/// derivation, so the trees it builds are derivation trees of the grammar.
///
/// Two walks, one per action, advanced over the same symbols until both
/// accept, give one form with two derivations: a unifying counterexample.
/// When no such pair exists within the budget, each walk is completed on its
/// own by the shortest remaining items: a nonunifying pair.
#pragma once

#include "model/Results.h"
#include "session/Derivation.h"

#include <memory>
#include <vector>

class LrItems;

class ParserWalk {
public:
    /// The first action of a walk at the conflict: a shift (or the accept when
    /// the look-ahead is the end marker) or a reduce by a rule.
    struct Action {
        bool shift = true;
        int rule = 0;
    };

    ParserWalk(const Grammar& g, const LrResults& lr);
    ~ParserWalk();

    /// The leaves a walk's tree has before the look-ahead when it reads
    /// prefix: its symbols less the non-terminals taken from empty rules.
    int LeavesOf(const std::vector<int>& prefix) const;

    /// A shortest viable prefix into state: the symbols of a shortest path
    /// from state 0 over the shifts and gotos (empty for state 0 and for a
    /// state no path reaches).
    const std::vector<int>& ShortestPrefix(int state) const { return m_shortest[static_cast<std::size_t>(state)]; }

    /// Viable prefixes that lead from state 0 into state, shortest first, at most `most`.
    std::vector<std::vector<int>> PrefixesTo(int state, int most) const;

    /// A viable prefix into state after which reducing by rule, and then as
    /// the automaton allows, reads the look-ahead; found by growing the stack
    /// below the state only as far as the reduces pop. Empty when none was
    /// found within the budget (or the prefix is itself empty).
    std::vector<int> PrefixForReduce(int state, int lookahead, int rule, SearchBudget& budget) const;

    /// Two derivations, rooted at <'>, of one form that begins with prefix and
    /// the look-ahead: the first takes `first` at the conflict, the second
    /// `second`. False when none was found within the budget.
    bool Unify(const std::vector<int>& prefix, int lookahead, Action first, Action second, SearchBudget& budget,
               DerivationTree& one, DerivationTree& two) const;

    /// A derivation rooted at <'> of a form that begins with prefix and the
    /// look-ahead and takes `action` at the conflict, completed by the
    /// shortest remaining items. False when the action cannot lead to the
    /// look-ahead being read after this prefix.
    bool Complete(const std::vector<int>& prefix, int lookahead, Action action, SearchBudget& budget,
                  DerivationTree& tree) const;

private:
    struct Op {
        bool shift;
        int value;  ///< the symbol shifted, or the rule reduced
    };
    using Stack = std::vector<int>;

    /// The state entered from `state` on symbol; 0 when there is none.
    int Goto(int state, int symbol) const;
    /// The rules a state may reduce by: its complete items, kernel and closure.
    const std::vector<int>& Reduces(int state) const;
    /// Applies op to stack; false when the automaton has no such move.
    bool Apply(Stack& stack, const Op& op) const;
    /// The stack after the prefix, with the ops that read it; empty when a
    /// symbol has no move.
    Stack Walk(const std::vector<int>& prefix, std::vector<Op>& ops) const;
    /// Takes the conflict's action and reads the look-ahead (reducing as the
    /// automaton allows before it); the ops taken, or false.
    bool Enter(Stack& stack, int lookahead, Action action, std::vector<Op>& ops, SearchBudget& budget) const;
    bool Accepting(const Stack& stack) const;
    /// Walks stack on to the accept by the shortest remaining kernel items,
    /// adding the ops taken; false when it cannot (a cycle of unit rules).
    bool CompleteFrom(Stack& stack, std::vector<Op>& ops, SearchBudget& budget) const;
    /// The tree the ops build, under <'>.
    DerivationTree Build(const std::vector<Op>& ops) const;

    const Grammar& m_g;
    const LrResults& m_lr;
    std::unique_ptr<LrItems> m_items;
    /// by state: a shortest symbol path from state 0
    std::vector<std::vector<int>> m_shortest;
    int m_accept;  ///< the state reached from state 0 on the goal
    mutable std::vector<std::vector<int>> m_reduces;  ///< by state, made when first asked for
    mutable std::vector<char> m_reducesDone;
    std::vector<std::vector<std::pair<int, int>>> m_into;  ///< by state: (state before, symbol)
};
