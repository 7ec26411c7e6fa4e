/// \file
/// What a cell of an analyser's table means, in words a student can check by
/// hand: the entry of an LR cell ("s7", "r6", "g3", "acc"), the rule behind a
/// reduce ("r6 <F>=[a]"), every action that wanted a conflicting cell, and the
/// items of the state a cell belongs to. The grid's tool tips and its cell
/// pane read these; they read the kept results only and never run anything.
#pragma once

#include "session/Workspace.h"

#include <QString>

/// "<F>=[a]": rule r as the notation writes it ("<R>=" for an empty rule), the
/// end marker written "$" as the tables head it.
QString RuleText(const Grammar& g, int r);
/// "r6 <F>=[a]": a rule named by its number, then its text.
QString NumberedRule(const Grammar& g, int r);

/// The text an LR table shows for an entry under the symbol column: "acc",
/// "r6", "g3" under a non-terminal, "s7" under a terminal, "" for 0.
QString LrEntryText(const Grammar& g, int states, int column, int entry);

/// The symbols heading a cell of view's table, row first: "state 4" and "[+]"
/// for an LR table, the two symbols for the LL(1) and precedence tables.
QString CellRowName(Workspace& ws, int view, int row);
QString CellColumnName(Workspace& ws, int view, int column);

/// The tool tip of a conflicting cell of analyser view (6..11): a heading line
/// naming the cell ("Conflict in state 4 on [+]", "Conflict for <S> under [a]",
/// "Conflict between [+] and <T>"), then what the cell kept and each action it turned away,
/// a reduce or an LL(1) prediction with its rule:
///   Conflict in state 4 on [+]
///   kept: s3
///   rejected: r1 <E>=<E>[+]<E>
/// "" for a cell without a conflict or a view not analysed.
QString ConflictDescription(Workspace& ws, int view, int row, int column);

/// What the cell pane shows for a clicked cell of analyser view (6..11). LR
/// views: the state's kernel items as the item listing writes them (look-aheads
/// kept by the method after " ,"), then what the cell does, a reduce with its
/// rule. LL(1): the rules predicted. Precedence: the relations between the two
/// symbols. A conflict's description follows. "" for a view not analysed.
QString CellDetails(Workspace& ws, int view, int row, int column);
