/// \file
/// The conflicts pane.
#include "ui/ConflictsPane.h"

#include "session/AnalysisRun.h"
#include "session/Export.h"
#include "session/TableCells.h"
#include "storage/GrammarFile.h"
#include "ui/DerivationView.h"
#include "ui/GrammarEditor.h"
#include "ui/TableGrid.h"
#include "ui/frmMain.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>
#include <algorithm>

namespace {

/// The whole explanation search time is kept near a few seconds: many conflicts get less each.
constexpr int kBudgetMs = 200;
constexpr int kMinBudgetMs = 20;
constexpr int kPassMs = 4000;


} // namespace

ConflictsPane::ConflictsPane(frmMain& window, QWidget* parent)
    : QWidget(parent)
    , m_window(window)
{
    setObjectName(QStringLiteral("conflictsPane"));
    QFont mono(QStringLiteral("Courier New"));
    mono.setStyleHint(QFont::Monospace);
    mono.setPointSize(10);

    summary = new QLabel;
    summary->setObjectName(QStringLiteral("conflictsSummary"));
    explainButton = new QPushButton(QStringLiteral("Explain conflicts"));
    explainButton->setObjectName(QStringLiteral("explainButton"));
    explainButton->setToolTip(QStringLiteral("Search a counterexample for every conflict; Stop ends the search"));
    exportButton = new QPushButton(QStringLiteral("Export"));
    exportButton->setObjectName(QStringLiteral("explainExportButton"));
    exportButton->setToolTip(QStringLiteral("Write the explanations beside the grammar as NAME-explain-VIEW.txt"));
    list = new QListWidget;
    list->setObjectName(QStringLiteral("conflictList"));
    text = new QPlainTextEdit;
    text->setObjectName(QStringLiteral("explanationText"));
    text->setReadOnly(true);
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    text->setFont(mono);
    text->setPlaceholderText(QStringLiteral("Choose a conflict to see a way into it and two derivations of one sentence."));
    trees = new DerivationView;

    auto* left = new QWidget;
    auto* leftLayout = new QVBoxLayout(left);
    leftLayout->setContentsMargins(0, 0, 0, 0);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(explainButton);
    buttons->addWidget(exportButton);
    buttons->addStretch(1);
    leftLayout->addLayout(buttons);
    leftLayout->addWidget(summary);
    leftLayout->addWidget(list, 1);
    auto* split = new QSplitter(Qt::Horizontal);
    split->addWidget(left);
    split->addWidget(text);
    split->addWidget(trees);
    split->setStretchFactor(0, 2);
    split->setStretchFactor(1, 3);
    split->setStretchFactor(2, 4);
    split->setSizes({240, 420, 620});
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(split);

    connect(explainButton, &QPushButton::clicked, this, [this] { Explain(); });
    connect(exportButton, &QPushButton::clicked, this, &ConflictsPane::ExportExplanations);
    connect(list, &QListWidget::currentRowChanged, this, &ConflictsPane::ShowRow);
}

void ConflictsPane::ShowView(int view)
{
    m_view = view;
    m_explained.reset();
    m_fullText.clear();
    m_conflicts = ConflictsOf(m_window.workspace(), view);
    const QSignalBlocker quiet(list);
    list->clear();
    for (int i = 0; i < static_cast<int>(m_conflicts.size()); ++i)
        list->addItem(RowText(i));
    text->clear();
    trees->Clear();
    m_window.Text1->setExtraSelections({});  // the marks of rules chosen for another table
    const bool analyser = FindView(view) && ViewOf(view).IsAnalyser();
    summary->setText(!analyser                               ? QString()
                     : !IsAnalysed(m_window.workspace(), view) ? QStringLiteral("Not analyzed.")
                     : m_conflicts.empty()                   ? QStringLiteral("No conflicts.")
                                                             : QStringLiteral("%1 conflict(s).").arg(m_conflicts.size()));
    explainButton->setEnabled(!m_conflicts.empty());
    exportButton->setEnabled(!m_conflicts.empty());
    if (!m_conflicts.empty() && isVisible())
        // After the run that filled the grid has let go of the window.
        QMetaObject::invokeMethod(this, [this, view] { if (m_view == view && !Explained()) Explain(); }, Qt::QueuedConnection);
}

void ConflictsPane::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!m_conflicts.empty() && !Explained())
        QMetaObject::invokeMethod(this, [this] { if (!Explained()) Explain(); }, Qt::QueuedConnection);
}

QString ConflictsPane::RowText(int i) const
{
    Workspace& ws = m_window.workspace();
    const Conflict& c = m_conflicts[static_cast<std::size_t>(i)];
    QString row = CellRowName(ws, m_view, c.row) + QStringLiteral(", ") + CellColumnName(ws, m_view, c.column)
                + QStringLiteral(": ") + KindText(c.kind);
    if (m_explained && i < static_cast<int>(m_explained->conflicts.size())) {
        const ConflictExplanation& e = m_explained->conflicts[static_cast<std::size_t>(i)];
        if (e.conflict.kind != ConflictKind::Relation)
            row += QStringLiteral(" \u2014 ") + (e.example.gaveUp     ? QStringLiteral("gave up")
                                                 : e.example.unifying ? QStringLiteral("unifying")
                                                                      : QStringLiteral("nonunifying"));
    }
    return row;
}

bool ConflictsPane::Explain()
{
    if (m_explained)
        return true;
    if (m_conflicts.empty() || m_window.Processing())
        return false;
    Workspace& ws = m_window.workspace();
    ExplainOptions options;
    options.budgetMs = std::clamp(kPassMs / static_cast<int>(m_conflicts.size()), kMinBudgetMs, kBudgetMs);
    const int view = m_view;
    m_window.ProcessStart();
    // The view's analyser is the one Stop clears, also when its results were read from the companion file.
    ws.current = MakeAnalyser(ws, view);
    Explanations explained = ExplainConflicts(ws, view, options);
    m_window.ProcessStop();
    if (view != m_view)
        return false;
    m_fullText = ExplanationText(ws.grammar, explained);
    const bool stopped = explained.stopped;
    m_explained = std::move(explained);
    for (int i = 0; i < list->count(); ++i)
        list->item(i)->setText(RowText(i));
    if (stopped)
        summary->setText(QStringLiteral("Stopped: %1 of %2 conflict(s) explained.")
                             .arg(m_explained->conflicts.size())
                             .arg(m_conflicts.size()));
    if (list->currentRow() >= 0)
        ShowRow(list->currentRow());
    return true;
}

QString ConflictsPane::BlockText(int i) const
{
    // The text is a heading line, then one block per conflict opened by "Conflict N:".
    const QString head = QStringLiteral("\nConflict %1: ").arg(i + 1);
    const qsizetype begin = m_fullText.indexOf(head);
    if (begin < 0)
        return QString();
    qsizetype end = m_fullText.indexOf(QStringLiteral("\nConflict %1: ").arg(i + 2), begin + 1);
    if (end < 0)
        end = m_fullText.indexOf(QStringLiteral("\n\n"), begin + 1);
    return m_fullText.mid(begin + 1, end < 0 ? -1 : end - begin - 1).trimmed();
}

void ConflictsPane::ShowRow(int row)
{
    if (row < 0 || row >= static_cast<int>(m_conflicts.size()))
        return;
    const Conflict& c = m_conflicts[static_cast<std::size_t>(row)];
    TableGrid* grid = m_window.Picture1;
    if (grid->Model().View() == m_view) {
        const QModelIndex cell = grid->Model().index(c.row, c.column);
        grid->setCurrentIndex(cell);
        grid->scrollTo(cell);
    }
    if (!m_explained && !Explain())
        return;
    if (row >= static_cast<int>(m_explained->conflicts.size())) {
        text->setPlainText(QStringLiteral("Not explained: the search was stopped before it came to this conflict."));
        trees->Clear();
        return;
    }
    const ConflictExplanation& e = m_explained->conflicts[static_cast<std::size_t>(row)];
    text->setPlainText(BlockText(row));
    const Grammar& g = m_window.workspace().grammar;
    QStringList captions;
    for (int i = 0; i < static_cast<int>(e.example.derivations.size()); ++i)
        captions << QStringLiteral("Derivation %1: %2").arg(i + 1).arg(e.actions.value(i));
    if (e.example.gaveUp)
        trees->Clear();
    else
        trees->SetTrees(g, e.example.derivations, captions);
    m_window.Text1->MarkRuleLines(m_window.workspace().grammar, e.rules);
}

QString ConflictsPane::ExportPath() const
{
    const QString path = m_window.workspace().grammar.Path();
    if (path.isEmpty() || !FindView(m_view))
        return QString();
    return ExportBaseName(path) + QStringLiteral("-explain-") + QString::fromLatin1(ViewOf(m_view).name)
         + QStringLiteral(".txt");
}

void ConflictsPane::ExportExplanations()
{
    Host& host = m_window.workspace().host();
    const QString path = ExportPath();
    if (path.isEmpty()) {
        host.information(QStringLiteral("Save this grammar first."));
        return;
    }
    if (!Explain())
        return;
    QString body = m_fullText;
    if (body.endsWith(QLatin1Char('\n')))
        body.chop(1);  // the text writer ends the file with its own CR LF
    body.replace(QStringLiteral("\n"), QStringLiteral("\r\n"));
    QString error;
    if (!WriteTextFile(path, body, error)) {
        host.critical(error);
        return;
    }
    host.information(QStringLiteral("Files saved:\r\n") + path + QStringLiteral(".\r\n"));
}
