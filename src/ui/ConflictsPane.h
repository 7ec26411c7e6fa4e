/// \file
/// ConflictsPane: the conflicts of the selected analyser view, one row each,
/// and for the chosen row why it happens — the explanation text, the two
/// derivations drawn as trees — with its cell chosen in the grid and its rules'
/// lines chosen in the grammar box. The rows come from the kept tables at once;
/// the explanations (bounded searches) run only when the pane is shown or asked.
#pragma once

#include "session/ConflictExplainer.h"

#include <QWidget>
#include <optional>

class DerivationView;
class QLabel;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class frmMain;

class ConflictsPane final : public QWidget {
    Q_OBJECT
public:
    explicit ConflictsPane(frmMain& window, QWidget* parent = nullptr);

    /// Lists the conflicts of view (none for a view not analysed or not an
    /// analyser); when the pane is on screen the explanations follow.
    void ShowView(int view);
    /// Explains the listed conflicts (a search budget that shrinks as they grow
    /// many), as a run of the window that Stop ends. True when explanations are there.
    bool Explain();
    /// Writes every explanation beside the grammar as NAME-explain-VIEW.txt.
    void ExportExplanations();
    /// NAME-explain-VIEW.txt beside the grammar file; "" for a grammar without one.
    QString ExportPath() const;
    bool Explained() const { return m_explained.has_value(); }
    /// The text block of conflict i as the explanation gives it ("" before Explain).
    QString BlockText(int i) const;

    QListWidget* list = nullptr;
    QPlainTextEdit* text = nullptr;
    DerivationView* trees = nullptr;
    QPushButton* explainButton = nullptr;
    QPushButton* exportButton = nullptr;
    QLabel* summary = nullptr;

    /// The explanations of the last Explain, if any.
    const std::optional<Explanations>& Explanation() const { return m_explained; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    QString RowText(int i) const;
    void ShowRow(int row);

    frmMain& m_window;
    int m_view = -1;
    std::vector<Conflict> m_conflicts;
    std::optional<Explanations> m_explained;
    QString m_fullText;
};
