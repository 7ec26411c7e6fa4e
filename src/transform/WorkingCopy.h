/// \file
/// What the transformations share over the working copy (the copy* fields that
/// MakeACopy fills): rules with their right side apart, the result lines, the
/// stop check, nullable marks, left corners, strongly connected components, and
/// the steps that several operations run before their own.
#pragma once

#include "grammar/Grammar.h"
#include "grammar/Indexed.h"

#include <QStringList>
#include <cstdint>
#include <vector>

namespace transform {

/// A rule of the working copy with its right side apart. An empty rule has an
/// empty right side here (it is stored as {left, 0} in the copy); code 0 inside a
/// non-empty right side is the end marker and counts as a terminal. The
/// notation cannot write a right side of the end marker alone: "<A>=." reads
/// back as an empty rule, so a transformation that leaves "." alone (factoring
/// "<A>=[a]." against "<A>=[a]<B>") gives an empty rule there.
struct Production {
    int left = 0;
    std::vector<int> right;

    friend bool operator==(const Production&, const Production&) = default;
    friend auto operator<=>(const Production&, const Production&) = default;
};

using Productions = std::vector<Production>;

/// Rules 1..copyRuleCount of the copy.
Productions CopyProductions(const Grammar& g);
/// Replaces the copy's rules by rule 0 = {-2, copyGoal} and the given ones;
/// updates copyRuleCount.
void SetCopyProductions(Grammar& g, const Productions& rules);

/// The size a transformation's result may reach: the grammar's limits
/// (ResourceLimits), or twice the grammar's own rules and right-side symbols
/// when that is more, so that no grammar is refused for the size it already
/// has. The operations count what they make as they make it, and stop before
/// the result grows past the limit (substituting rules into rules, or leaving
/// out nullable symbols, can multiply a grammar's size level by level).
class ResultBudget {
public:
    explicit ResultBudget(Grammar& g);
    /// Counts rules and right-side symbols made (negative counts for dropped
    /// ones); false once the result has passed a limit. The first time, the
    /// message "Not transformed: the result would have more than N rules."
    /// (or "... symbols.") is shown as critical.
    bool Add(std::int64_t rules, std::int64_t symbols);
    /// Counts one rule with the given right side.
    bool Add(const std::vector<int>& right) { return Add(1, static_cast<std::int64_t>(right.size())); }
    bool Passed() const { return m_passed; }
    std::int64_t MaxRules() const { return m_maxRules; }

private:
    Grammar& m_g;
    std::int64_t m_maxRules;
    std::int64_t m_maxSymbols;
    std::int64_t m_rules = 0;
    std::int64_t m_symbols = 0;
    bool m_passed = false;
};

/// One symbol of the copy as the notation writes it: "<A>", "[a]", ".".
QString WrittenSymbol(const Grammar& g, int code);
/// The result of an operation: the copy's goal "<S>", then one line per rule of
/// the copy, "<A>=" and the right side ("." for an empty one). A line equal to
/// one already written is left out.
QStringList CopyLines(const Grammar& g);

/// Gives the message loop a turn; true when the run has been stopped.
bool Stopped(Grammar& g);

/// True for a non-terminal code of the copy (new ones included).
inline bool IsCopyNonterminal(const Grammar& g, int code)
{
    return code >= g.copyFirstNonterminal;
}

/// Nullable marks by code (0..copyLastCode): the non-terminal derives the empty sentence.
Indexed<char> NullableMarks(const Grammar& g, const Productions& rules);
/// Productive marks by code: the non-terminal derives some terminal string (the
/// empty one included). Terminals and the end marker are productive.
Indexed<char> ProductiveMarks(const Grammar& g, const Productions& rules);

/// A directed graph over codes 0..copyLastCode, as adjacency lists.
using Graph = Indexed<std::vector<int>>;
/// Strongly connected components (Tarjan 1972, "Depth-first search and linear
/// graph algorithms"): the component number of each node.
Indexed<int> Components(const Graph& graph);

/// One left-corner edge: rule A -> X1..Xk reaches the non-terminal Xp when
/// X1..X(p-1) are all nullable; hidden is true when that prefix is not empty.
struct LeftCorner {
    int from = 0;
    int to = 0;
    bool hidden = false;
};
std::vector<LeftCorner> LeftCorners(const Grammar& g, const Productions& rules, const Indexed<char>& nullable);

/// The non-terminals that derive themselves in one or more steps (A =>+ A),
/// through unit rules and through rules whose other symbols are nullable.
Indexed<char> CyclicMarks(const Grammar& g, const Productions& rules);

/// Drops the rules that name a non-terminal without rules, until no rule does:
/// such a non-terminal derives nothing, and neither do those rules.
void DropRulesNamingUndefined(const Grammar& g, Productions& rules);
/// Whether the copy's goal has a rule among rules.
bool GoalDefined(const Grammar& g, const Productions& rules);
/// Shows "Not transformed: the goal <S> derives no terminal string." (information).
void RefuseBarrenGoal(Grammar& g);

// Steps shared by several operations; each works on the copy and returns
// false when the run was stopped.

/// Removes the empty rules from the copy (see EmptyRules.cpp). Refuses (message
/// and false) when the goal derives no terminal string and would lose its rules.
bool EliminateEmptyRules(Grammar& g, bool letters);
/// Removes every derivation A =>+ A from the copy (see Cycles.cpp). Refuses
/// (message and false) when the goal derives no terminal string and only
/// cycles define it.
bool EliminateCycles(Grammar& g, bool letters);

} // namespace transform
