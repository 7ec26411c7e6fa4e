/// \file
/// Symbol renaming: the symbol list and the rename with its duplicate test.
#include "transform/RenameSymbol.h"

#include "grammar/Grammar.h"

QStringList SymbolList(const Grammar& g)
{
    QStringList names;
    for (int c = 1; c <= g.lastCode; ++c)
        names << g.SymbolName(c);
    return names;
}

RenameOutcome RenameSymbol(Grammar& g, int position, const QString& selected, const QString& typed,
                           const bool& inProcess)
{
    const QString name = typed.trimmed();
    const QString old = selected.trimmed();
    if (name.isEmpty() || old.isEmpty() || position < 0 || position >= g.lastCode || name == old)
        return RenameOutcome::Unchanged;

    // On purpose the list position, not the code, is compared with the first
    // non-terminal code: the goal (position T) is tested against the terminal
    // names, so it may take the name of another non-terminal and merge with it.
    const bool terminalKind = position < g.firstNonterminal;
    const int from = terminalKind ? 1 : g.firstNonterminal;
    const int to = terminalKind ? g.terminalCount : g.lastCode;
    for (int c = from; c <= to; ++c) {
        const bool taken = g.SymbolName(c) == name;
        g.host().yield();
        if (!inProcess)
            return RenameOutcome::Stopped;
        if (taken) {
            g.host().information(QStringLiteral("Symbol exists.\r\nYou may edit grammar also."));
            return RenameOutcome::Exists;
        }
    }
    const int code = position + 1;
    g.symbolNames[code + 2] = name;
    return RenameOutcome::Renamed;
}
