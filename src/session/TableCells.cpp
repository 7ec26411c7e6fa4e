/// \file
/// The meaning of a table cell, for the grid's tool tips and its cell pane.
#include "session/TableCells.h"

#include "analysers/LrItems.h"
#include "session/Views.h"

namespace {

const QString kNl = QStringLiteral("\n");

/// An LR entry with its rule when it is a reduce: "r6 <F>=[a]", "s3".
QString LrAction(const Grammar& g, int states, int column, int entry)
{
    return entry < 0 ? NumberedRule(g, -entry) : LrEntryText(g, states, column, entry);
}

/// "<." ".=" ".>" for a relation code of the matrix; the codes come from the
/// settings of the run and may coincide, so the first relation that has it wins.
QString RelationSign(const PrecedenceMatrix& m, int code)
{
    if (code == m.Code(PrecedenceMatrix::LT))
        return QStringLiteral("<.");
    if (code == m.Code(PrecedenceMatrix::EQ))
        return QStringLiteral(".=");
    return QStringLiteral(".>");
}

/// The conflict records of the cell (one per refused reduce for LR, one per
/// cell for the others).
std::vector<Conflict> CellConflicts(Workspace& ws, int view, int row, int column)
{
    std::vector<Conflict> found;
    for (const Conflict& c : ConflictsOf(ws, view))
        if (c.row == row && c.column == column)
            found.push_back(c);
    return found;
}

/// The kernel items of LR state s, as the item listing writes them.
QString StateItems(const Grammar& g, const LrResults& lr, int s)
{
    const LrItems items(g);
    QString text = QStringLiteral("State ") + QString::number(s);
    if (s > 0)
        text += QStringLiteral(" (") + g.GetSymbolS(lr.accessing[s]) + QLatin1Char(')');
    text += kNl;
    for (int item : lr.kernels[s]) {
        text += QStringLiteral("    ") + items.Text(g, item);
        if (s < lr.lookaheads.size())
            for (const ItemLookahead& kept : lr.lookaheads[s])
                if (kept.item == item) {
                    text += QStringLiteral(" ,");
                    for (int t : kept.terminals)
                        text += QLatin1Char(' ') + g.GetSymbolS(t);
                }
        text += kNl;
    }
    return text;
}

QString LrCellLine(const Grammar& g, const LrResults& lr, int row, int column)
{
    const int entry = RowEntry(lr.rows[row], column);
    const QString on = QStringLiteral("On ") + g.GetSymbolS(column) + QStringLiteral(": ");
    if (entry == 0)
        return on + QStringLiteral("nothing (a syntax error)");
    if (entry == lr.States())
        return on + QStringLiteral("acc (accept)");
    if (entry < 0)
        return on + NumberedRule(g, -entry) + QStringLiteral(" (reduce)");
    if (g.IsNonterminal(column))
        return on + LrEntryText(g, lr.States(), column, entry) + QStringLiteral(" (go to state ")
             + QString::number(entry) + QLatin1Char(')');
    return on + LrEntryText(g, lr.States(), column, entry) + QStringLiteral(" (shift and go to state ")
         + QString::number(entry) + QLatin1Char(')');
}

QString LLCellText(const Grammar& g, const LLTable& synta, int row, int column)
{
    QString text = g.GetSymbolS(row) + QStringLiteral(" under ") + g.GetSymbolS(column) + QStringLiteral(": ");
    switch (synta.First(row, column)) {
    case LLTable::kEmpty:
        return text + QStringLiteral("nothing (a syntax error)") + kNl;
    case LLTable::kAcc:
        return text + QStringLiteral("ACC (accept)") + kNl;
    case LLTable::kPop:
        return text + QStringLiteral("POP (match the terminal, read the next)") + kNl;
    default:
        break;
    }
    text += QStringLiteral("predict") + kNl;
    for (int r : synta.Entries(row, column))
        text += QStringLiteral("    ") + NumberedRule(g, r) + kNl;
    return text;
}

QString PrecedenceCellText(const Grammar& g, const PrecedenceMatrix& m, int row, int column)
{
    const QString left = g.GetSymbolS(row);
    const QString right = g.GetSymbolS(column);
    const std::vector<int> codes = m.Codes(row, column);
    if (codes.empty())
        return left + QStringLiteral(" and ") + right + QStringLiteral(": no relation") + kNl;
    QString text;
    for (int code : codes)
        text += left + QLatin1Char(' ') + RelationSign(m, code) + QLatin1Char(' ') + right + kNl;
    return text;
}

} // namespace

QString RuleText(const Grammar& g, int r)
{
    const std::vector<int>& rule = g.rules[r];
    QString text = g.GetSymbolS(rule[0]) + QLatin1Char('=');
    if (!g.ruleIsEmpty[r])
        for (std::size_t i = 1; i < rule.size(); ++i)
            text += g.GetSymbolS(rule[i]);
    return text;
}

QString NumberedRule(const Grammar& g, int r)
{
    return QStringLiteral("r") + QString::number(r) + QLatin1Char(' ') + RuleText(g, r);
}

QString LrEntryText(const Grammar& g, int states, int column, int entry)
{
    if (entry == 0)
        return QString();
    if (entry == states)
        return QStringLiteral("acc");
    if (entry < 0)
        return QStringLiteral("r") + QString::number(-entry);
    return (g.IsNonterminal(column) ? QStringLiteral("g") : QStringLiteral("s")) + QString::number(entry);
}

QString CellRowName(Workspace& ws, int view, int row)
{
    if (LrResultsOf(ws, view))
        return QStringLiteral("state ") + QString::number(row);
    return ws.grammar.GetSymbolS(row);
}

QString CellColumnName(Workspace& ws, int, int column)
{
    return ws.grammar.GetSymbolS(column);
}

QString ConflictDescription(Workspace& ws, int view, int row, int column)
{
    const std::vector<Conflict> conflicts = CellConflicts(ws, view, row, column);
    if (conflicts.empty())
        return QString();
    const Grammar& g = ws.grammar;
    const QString rowName = CellRowName(ws, view, row);
    const QString columnName = CellColumnName(ws, view, column);
    QString text = LrResultsOf(ws, view)      ? QStringLiteral("Conflict in ") + rowName + QStringLiteral(" on ") + columnName
                 : view == View::LL    ? QStringLiteral("Conflict for ") + rowName + QStringLiteral(" under ") + columnName
                                       : QStringLiteral("Conflict between ") + rowName + QStringLiteral(" and ") + columnName;
    QStringList rejected;
    QString kept;
    if (const LrResults* lr = LrResultsOf(ws, view)) {
        kept = LrAction(g, lr->States(), column, conflicts.front().kept);
        for (const Conflict& c : conflicts)
            for (int entry : c.rejected)
                rejected << LrAction(g, lr->States(), column, entry);
    } else if (view == View::LL) {
        kept = NumberedRule(g, conflicts.front().kept);
        for (int r : conflicts.front().rejected)
            rejected << NumberedRule(g, r);
    } else if (const PrecedenceResults* p = PrecedenceResultsOf(ws, view)) {
        kept = RelationSign(p->synta, conflicts.front().kept);
        for (int code : conflicts.front().rejected)
            rejected << RelationSign(p->synta, code);
    }
    text += kNl + QStringLiteral("kept: ") + kept;
    for (const QString& r : rejected)
        text += kNl + QStringLiteral("rejected: ") + r;
    return text;
}

QString CellDetails(Workspace& ws, int view, int row, int column)
{
    if (!IsAnalysed(ws, view))
        return QString();
    const Grammar& g = ws.grammar;
    QString text;
    if (const LrResults* lr = LrResultsOf(ws, view)) {
        if (row < 0 || row >= lr->States() || column < 0 || column > g.lastCode)
            return QString();
        text = StateItems(g, *lr, row) + kNl + LrCellLine(g, *lr, row, column) + kNl;
    } else if (view == View::LL) {
        if (row < 0 || row >= ws.ll.synta.Rows() || column < 0 || column >= ws.ll.synta.Columns())
            return QString();
        text = LLCellText(g, ws.ll.synta, row, column);
    } else if (const PrecedenceResults* p = PrecedenceResultsOf(ws, view)) {
        if (row < 0 || row >= p->Size() || column < 0 || column >= p->Size())
            return QString();
        text = PrecedenceCellText(g, p->synta, row, column);
    }
    const QString conflict = ConflictDescription(ws, view, row, column);
    if (!conflict.isEmpty())
        text += kNl + conflict + kNl;
    return text;
}
