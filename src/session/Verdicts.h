/// \file
/// The verdict of each method on the current grammar, as data: whether it ran,
/// whether the grammar passes, why a method refused the grammar before building
/// a table, the table's size and its conflicts. The summary of trelk-cli and
/// the window's overview read it.
#pragma once

#include "model/Model.h"

#include <QString>

/// Why a method refused a grammar before building a table.
enum class Refusal {
    None,
    LeftRecursion,    ///< LL(1): the grammar is left-recursive
    EmptyRules,       ///< precedence: a rule is empty
    EqualRightParts,  ///< precedence: two rules have the same right side
    Precondition,     ///< precedence: another precondition, named in the result text (a non-terminal without sets)
};

/// "left recursion", "empty rules", "equal right parts"; "" for the others.
QString RefusalReason(Refusal refusal);

struct MethodVerdict {
    int view = 0;
    bool analysed = false;  ///< a table was built
    bool passes = false;    ///< a table without conflicts
    Refusal refusal = Refusal::None;
    int conflicts = 0;      ///< conflicting cells (LL, precedence) or refused reduces (LR)
    int rows = 0;           ///< LL(1) and precedence: the table's rows and columns
    int columns = 0;
    int states = 0;         ///< LR: the states of the automaton

    /// A table or a refusal: the method has said something about the grammar.
    bool HasVerdict() const { return analysed || refusal != Refusal::None; }
};

/// The verdict of analyser view 6..11 on the model as it stands (run Analyse first).
MethodVerdict Judge(const Model& model, int view);

/// The window's verdict line of analyser view 6..11, e.g.
/// "SLR(1): the grammar is SLR(1) — 12 states, 0 conflicts",
/// "LL(1): the grammar is not LL(1) — left recursion",
/// "simple precedence: the grammar is not simple precedence — table 9x9, 2 conflicts";
/// "" for a method without a verdict.
QString VerdictLine(const MethodVerdict& verdict);

/// "LALR(1)" or "not LALR(1)", with the reason of an LL(1) refusal; "not analysed" without a verdict.
QString VerdictText(const MethodVerdict& verdict);

/// The reason column of a refusal that the verdict text does not already name.
QString ReasonColumn(const MethodVerdict& verdict);

/// One line of the six-method overview, with its LF: method, verdict, size and
/// conflicts (or the reason of a refusal), then the elapsed text.
QString SummaryLine(const MethodVerdict& verdict, const QString& elapsed);

/// The overview of the six methods, one line each, in the columns of
/// trelk-cli summary: method, verdict, size and conflicts (or the reason of a
/// refusal), and the elapsed text a run has kept for the method.
QString OverviewText(Model& model);
