/// \file
/// Symbol renaming, the logic of the Rename dialog: the list of symbols it
/// offers and the rename of one of them in the grammar's name table.
#pragma once

#include <QString>
#include <QStringList>

class Grammar;

/// The names of symbol codes 1 to the last symbol code, in code order
/// (terminals, then non-terminals; the end marker is not listed). List
/// position i stands for symbol code i + 1.
QStringList SymbolList(const Grammar& g);

/// What a rename request came to.
enum class RenameOutcome {
    Unchanged,  ///< nothing to do: no new name, no selection, or the same name
    Exists,     ///< a symbol of that kind bears the name already (the message was shown)
    Stopped,    ///< inProcess was cleared during the duplicate test
    Renamed,    ///< the name table holds the new name
};

/// Renames the symbol at list position (0-based) from selected to typed, both
/// taken without surrounding spaces. The new name is refused with "Symbol
/// exists." CR LF "You may edit grammar also." (information) when a terminal
/// (position below the first non-terminal code) or a non-terminal (otherwise)
/// already bears it, letter case counting. The name is stored as typed: the
/// caller regenerates the text with Text() and saves it. The message loop gets
/// a turn after each comparison; clearing inProcess stops the test.
RenameOutcome RenameSymbol(Grammar& g, int position, const QString& selected, const QString& typed,
                           const bool& inProcess);
