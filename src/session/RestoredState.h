/// \file
/// The check of a state that TKCRead restored against the grammar text it was
/// opened with.
#pragma once

#include <QString>

class Workspace;

/// After TKCRead: keeps the restored state only when it belongs to text and
/// holds together. A state whose symbols, rules and parse-derived data differ
/// from a parse of text belongs to another text: the grammar is cleared and
/// every analyser's results are reset, silently. A state of this text whose
/// sets or tables disagree with the grammar (worked out again where that is
/// cheap; the LR tables checked transition by transition, see
/// RestoredTables.h) is damaged: it is cleared the same way and the error
/// report "Subscript out of range" (source "TKCRead") is shown. A kept state
/// gets the listings the file does not keep made again from its tables, and
/// the sets an interrupted run left undone computed. Returns true when the
/// state was kept.
bool CheckRestoredState(Workspace& workspace, const QString& text);
