/// \file
/// TableGrid: the picture box Picture1 — the parsing table of the selected
/// analyser view as a grid: the LL(1) table, the LR actions and gotos, the
/// precedence relations. Symbol names head the rows and columns (the whole
/// name in the heading's tool tip); conflicting cells are tinted so the eye
/// finds them, and their tool tips list every action that wanted the cell.
#pragma once

#include <QAbstractTableModel>
#include <QSet>
#include <QTableView>

class Workspace;

/// The table of one view, read from the workspace's kept results.
class TableModel final : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit TableModel(Workspace& workspace, QObject* parent = nullptr);

    /// Shows the table of view (6..11); any other view, or a view not analysed, shows nothing.
    void ShowView(int view);
    int View() const { return m_view; }
    /// The number of cells marked as conflicts.
    int ConflictCells() const { return static_cast<int>(m_conflicts.size()); }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// The text a cell shows ("" for an empty cell).
    QString CellText(int row, int column) const;
    bool IsConflict(int row, int column) const;

private:
    Workspace& m_ws;
    int m_view = -1;
    int m_rows = 0;
    int m_columns = 0;
    QSet<quint64> m_conflicts;  ///< row << 32 | column
};

class TableGrid final : public QTableView {
    Q_OBJECT
public:
    explicit TableGrid(Workspace& workspace, QWidget* parent = nullptr);
    TableModel& Model() { return m_model; }
    /// Shows a view's table, columns as wide as "CellWidth" characters (at least 3).
    void ShowView(int view, int cellWidth);

private:
    TableModel m_model;
};
