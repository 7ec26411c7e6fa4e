/// \file
/// Conflicts as data: every cell of a table that more than one action wanted,
/// with what the table kept and what it turned away. The listings, the C
/// comments and the compiled grammar file write them as text; the grid, the
/// summary and the conflict explanations read the records.
#pragma once

#include <QString>
#include <QStringList>
#include <vector>

class LLTable;
class PrecedenceMatrix;

/// The method whose table a conflict belongs to.
enum class ConflictMethod { LL, SLR, LALR, LR, SimplePrecedence, OperatorPrecedence };

/// What kind of clash a conflict is.
enum class ConflictKind {
    ShiftReduce,   ///< LR: a reduce turned away from a cell holding a shift (or the accept)
    ReduceReduce,  ///< LR: a reduce turned away from a cell holding another reduce
    Prediction,    ///< LL(1): two or more rules predicted under one look-ahead
    Relation,      ///< precedence: two or more relations between one pair of symbols
};

struct Conflict {
    ConflictMethod method;
    /// LR: the state; LL(1): the non-terminal on the stack; precedence: the left symbol.
    int row = 0;
    /// The look-ahead (LR, LL(1)) or the right symbol (precedence); 0 is the end marker.
    int column = 0;
    /// What the cell holds. LR: the table entry (shift or goto target > 0, reduce
    /// -rule, accept = the state count); LL(1): the rule written first;
    /// precedence: the relation code entered first.
    int kept = 0;
    /// What the cell turned away, in the order it came. LR: the reduce -rule
    /// (one per record, as the listing has one line per refused reduce); LL(1):
    /// the further rules; precedence: the further relation codes.
    std::vector<int> rejected;
    ConflictKind kind = ConflictKind::ShiftReduce;

    friend bool operator==(const Conflict&, const Conflict&) = default;
};

/// "Unable to write reduce -5 in [10,1].": the line of a refused LR reduce, as
/// the listing, the C comments and the compiled grammar file write it.
QString LrConflictText(const Conflict& conflict);
/// The lines of a list of LR conflicts, in order.
QStringList LrConflictTexts(const std::vector<Conflict>& conflicts);

/// The conflicting cells of an LL(1) table, rows then columns.
std::vector<Conflict> LLConflicts(const LLTable& table);
/// The conflicting cells of a precedence matrix, rows then columns.
std::vector<Conflict> PrecedenceConflicts(const PrecedenceMatrix& matrix, ConflictMethod method);
