/// \file
/// The table grid.
#include "ui/TableGrid.h"

#include "session/AnalysisRun.h"
#include "session/TableCells.h"

#include <QBrush>
#include <QFontMetrics>
#include <algorithm>
#include <QFontDatabase>
#include <QHeaderView>

namespace {

quint64 Key(int row, int column)
{
    return (static_cast<quint64>(static_cast<quint32>(row)) << 32) | static_cast<quint32>(column);
}

} // namespace

TableModel::TableModel(Workspace& workspace, QObject* parent)
    : QAbstractTableModel(parent)
    , m_ws(workspace)
{
}

void TableModel::ShowView(int view)
{
    beginResetModel();
    m_view = -1;
    m_rows = m_columns = 0;
    m_conflicts.clear();
    const Grammar& g = m_ws.grammar;
    if (IsAnalysed(m_ws, view)) {
        m_view = view;
        if (view == View::LL) {
            m_rows = m_ws.ll.synta.Rows();
            m_columns = m_ws.ll.synta.Columns();
        } else if (const LrResults* lr = LrResultsOf(m_ws, view)) {
            m_rows = lr->States();
            m_columns = g.lastCode + 1;
        } else if (const PrecedenceResults* p = PrecedenceResultsOf(m_ws, view)) {
            m_rows = m_columns = p->Size();
        }
        for (const Conflict& conflict : ConflictsOf(m_ws, view))
            m_conflicts.insert(Key(conflict.row, conflict.column));
    }
    endResetModel();
}

int TableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows;
}

int TableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_columns;
}

QString TableModel::CellText(int row, int column) const
{
    if (m_view == View::LL)
        return m_ws.ll.synta.CellText(row, column);
    if (const LrResults* lr = LrResultsOf(m_ws, m_view)) {
        return LrEntryText(m_ws.grammar, lr->States(), column, RowEntry(lr->rows[row], column));
    }
    if (const PrecedenceResults* p = PrecedenceResultsOf(m_ws, m_view)) {
        const Settings& s = m_ws.settings;
        QStringList marks;
        for (int code : p->Cell(row, column))
            marks << (code == s.pSignLT ? QStringLiteral("<.") : code == s.pSignEQ ? QStringLiteral(".=")
                                                                                   : QStringLiteral(".>"));
        return marks.join(QLatin1Char(' '));
    }
    return QString();
}

bool TableModel::IsConflict(int row, int column) const
{
    return m_conflicts.contains(Key(row, column));
}

QVariant TableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return QVariant();
    switch (role) {
    case Qt::DisplayRole:
        return CellText(index.row(), index.column());
    case Qt::BackgroundRole:
        if (IsConflict(index.row(), index.column()))
            return QBrush(QColor(0xff, 0xc8, 0xc8));
        if (LrResultsOf(m_ws, m_view) && m_ws.grammar.IsNonterminal(index.column()))
            return QBrush(QColor(0xf4, 0xf6, 0xfb));  // the goto part
        return QVariant();
    case Qt::ForegroundRole: {
        const QString text = CellText(index.row(), index.column());
        if (text.startsWith(QLatin1Char('r')))
            return QBrush(QColor(0x9c, 0x2a, 0x1a));
        if (text == QStringLiteral("acc") || text == QStringLiteral("ACC"))
            return QBrush(QColor(0x1b, 0x7a, 0x2e));
        return QVariant();
    }
    case Qt::TextAlignmentRole:
        return int(Qt::AlignCenter);
    case Qt::ToolTipRole:
        // Every action that wanted a conflicting cell; the rule behind a reduce.
        if (IsConflict(index.row(), index.column()))
            return ConflictDescription(m_ws, m_view, index.row(), index.column());
        if (const LrResults* lr = LrResultsOf(m_ws, m_view)) {
            const int entry = RowEntry(lr->rows[index.row()], index.column());
            if (entry < 0)
                return NumberedRule(m_ws.grammar, -entry);
        }
        return QVariant();
    default:
        return QVariant();
    }
}

QVariant TableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    const Grammar& g = m_ws.grammar;
    if (orientation == Qt::Vertical && LrResultsOf(m_ws, m_view)) {
        if (role == Qt::DisplayRole)
            return QString::number(section);  // states
        // The state with the symbol that leads into it, as the item listing heads it.
        const LrResults& lr = *LrResultsOf(m_ws, m_view);
        QString tip = QStringLiteral("State ") + QString::number(section);
        if (section > 0 && section < lr.accessing.size())
            tip += QStringLiteral(" (") + g.GetSymbolS(lr.accessing[section]) + QLatin1Char(')');
        return tip;
    }
    // Codes: the end marker, terminals, non-terminals; the tip has the whole
    // name, which a narrow column clips.
    return g.GetSymbolS(section);
}

TableGrid::TableGrid(Workspace& workspace, QWidget* parent)
    : QTableView(parent)
    , m_model(workspace)
{
    setObjectName(QStringLiteral("Picture1"));
    setModel(&m_model);
    QFont mono(QStringLiteral("Courier New"));
    mono.setStyleHint(QFont::Monospace);
    setFont(mono);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 4);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
}

void TableGrid::ShowView(int view, int cellWidth)
{
    m_model.ShowView(view);
    // Columns are "CellWidth" characters wide, widened (up to 14 characters) so
    // that the symbol heading each one can be read.
    const int charWidth = fontMetrics().horizontalAdvance(QLatin1Char('M'));
    // Held to the range the settings are read in, whatever the caller passes.
    const int base = charWidth * std::clamp(cellWidth, SettingRange::kCellWidthUsed, SettingRange::kCellWidthMost) + 8;
    const int widest = std::max(charWidth * 14 + 8, base);
    horizontalHeader()->setDefaultSectionSize(base);
    const QFontMetrics header(horizontalHeader()->font());
    for (int c = 0; c < m_model.columnCount(); ++c) {
        const int wanted = header.horizontalAdvance(m_model.headerData(c, Qt::Horizontal, Qt::DisplayRole).toString()) + 12;
        horizontalHeader()->resizeSection(c, std::clamp(wanted, base, widest));
    }
}
