/// \file
/// The transformation commands of the Transform menu: the frame they share
/// (preconditions, the working copy, the result text and the result file named
/// with the command code), the naming of new non-terminals, and the six grammar
/// operations that work on the copy MakeACopy takes.
#pragma once

#include <QString>
#include <QStringList>

class Grammar;

/// The command codes, in the order of the Transform menu's table.
namespace TransformCode {
inline const QString GroupRules = QStringLiteral("GR");
inline const QString RemoveCycles = QStringLiteral("RC");
inline const QString RemoveEmptyRules = QStringLiteral("RE");
inline const QString LeftFactoring = QStringLiteral("LF");
inline const QString LeftRecursion = QStringLiteral("LR");
inline const QString RemoveUnusedSymbols = QStringLiteral("UU");
/// All six, in menu order.
QStringList All();
} // namespace TransformCode

/// How the operation of a command ended.
enum class TransformOutcome {
    Changed,    ///< a new grammar came out
    Unchanged,  ///< the grammar came out as it went in: nothing to change
    Failed,     ///< stopped, or refused with a message (a limit, a barren goal)
};

/// The operation of one command on a parsed grammar: takes the working copy,
/// runs with InProcess raised, and returns the result text — the grammar's text
/// for "GR", the returned lines each followed by CR LF for the others ("" when
/// the run was stopped or refused). outcome, when given, tells which; a result
/// equal to the grammar's own rules is Unchanged (its text is still returned).
QString ApplyTransformation(Grammar& g, const QString& code, bool letters, TransformOutcome* outcome = nullptr);

/// The result file of a command: path up to the last "." of its file name, then
/// "-", code and ".tkg" (expr.tkg gives expr-LR.tkg, expr-LR.tkg gives
/// expr-LR-LF.tkg). A file name without "." gets the suffix appended.
QString TransformedPath(const QString& path, const QString& code);

/// Appends a new non-terminal to the working copy's name table and returns its
/// code. With letters off the name is base's name followed by as many "'" as
/// make it free (E', E'', ...); with letters on the first free of A..Z, then
/// AA..ZZ, then the apostrophe rule. A name is free when no non-terminal of the
/// copy bears it, letter case disregarded.
int NewNonterminal(Grammar& g, int base, bool letters);

// The six operations. They read and change the working copy only (GroupRules
// excepted: it rewrites the grammar in place and parses it again). Each list
// operation returns the new grammar as lines of the notation: the goal line
// "<S>" first, then one line "<A>=..." per rule; an empty list when the run was
// stopped or refused (the reason is then shown through the host).

/// Brings the rules of each non-terminal together, in code order, keeping
/// their relative order; then regenerates the text and parses it again.
void GroupRules(Grammar& g);
/// Drops the rules of barren non-terminals, then of those no kept right part uses.
QStringList RemoveUnusedSymbols(Grammar& g);
/// An equivalent grammar without empty rules (but for a goal that does not
/// occur on any right side and derives the empty sentence).
QStringList RemoveEmptyRules(Grammar& g, bool letters);
/// An equivalent grammar in which no non-terminal derives itself (A =>+ A).
QStringList RemoveCycles(Grammar& g, bool letters);
/// An equivalent grammar in which no two rules of one non-terminal start with
/// the same symbol.
QStringList LeftFactoring(Grammar& g, bool letters);
/// An equivalent grammar without direct, indirect or hidden left recursion.
QStringList LeftRecursion(Grammar& g, bool letters);
