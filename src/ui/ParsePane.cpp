/// \file
/// The parse pane.
#include "ui/ParsePane.h"

#include "session/AnalysisRun.h"
#include "session/ConflictExplainer.h"
#include "session/Export.h"
#include "session/TableCells.h"
#include "storage/GrammarFile.h"
#include "ui/DerivationView.h"
#include "ui/FileDialogs.h"
#include "ui/GrammarEditor.h"
#include "ui/frmMain.h"

#include <QAbstractItemView>
#include <QAbstractTableModel>
#include <QComboBox>
#include <QCompleter>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRandomGenerator>
#include <QSpinBox>
#include <QSplitter>
#include <QStringListModel>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>

namespace {

constexpr int kWidestColumn = 150;
const QColor kConflictColour(0xffd59a);
const QColor kErrorColour(0xf4c2c2);
const QColor kAcceptColour(0xd2efd2);

bool IsLrView(int view)
{
    return view == View::SLR || view == View::LALR || view == View::LR;
}

bool IsPrecedenceView(int view)
{
    return view == View::SPR || view == View::OPR;
}

/// Where a terminal name ends while typing a sentence.
bool BreaksName(QChar c)
{
    return c.isSpace() || c == QLatin1Char('[') || c == QLatin1Char(']');
}

/// Cuts a stack's text on its left, so that its top stays in sight; other texts on their right.
class TraceDelegate final : public QStyledItemDelegate {
public:
    TraceDelegate(const TraceModel& model, QObject* parent)
        : QStyledItemDelegate(parent)
        , m_model(model)
    {
    }

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    const TraceModel& m_model;
};

} // namespace

/// The steps of a run as rows: the configuration each began from and what it did.
class TraceModel final : public QAbstractTableModel {
public:
    enum class Column { Stack, States, Symbols, Relation, Input, Action };

    explicit TraceModel(QObject* parent)
        : QAbstractTableModel(parent)
    {
    }

    /// The stacks of the configuration, whose top is their right end.
    bool IsStack(int column) const
    {
        const Column c = m_columns.at(static_cast<std::size_t>(column));
        return c == Column::Stack || c == Column::States || c == Column::Symbols;
    }

    void SetRun(const Grammar* g, const ParseRun* run)
    {
        beginResetModel();
        m_g = g;
        m_run = run;
        m_columns.clear();
        if (run) {
            if (IsLrView(run->view))
                m_columns = {Column::States, Column::Symbols, Column::Input, Column::Action};
            else if (IsPrecedenceView(run->view))
                m_columns = {Column::Stack, Column::Relation, Column::Input, Column::Action};
            else
                m_columns = {Column::Stack, Column::Input, Column::Action};
        }
        endResetModel();
    }

    int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() || !m_run ? 0 : static_cast<int>(m_run->steps.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (role != Qt::DisplayRole)
            return {};
        if (orientation == Qt::Vertical)
            return section + 1;
        switch (m_columns.at(static_cast<std::size_t>(section))) {
        case Column::Stack:
            return QStringLiteral("Stack");
        case Column::States:
            return QStringLiteral("States");
        case Column::Symbols:
            return QStringLiteral("Symbols");
        case Column::Relation:
            return QStringLiteral("Relation");
        case Column::Input:
            return QStringLiteral("Input");
        case Column::Action:
            return QStringLiteral("Action");
        }
        return {};
    }

    QVariant data(const QModelIndex& index, int role) const override
    {
        if (!index.isValid() || !m_run)
            return {};
        const ParseStep& step = m_run->steps[static_cast<std::size_t>(index.row())];
        const Column column = m_columns[static_cast<std::size_t>(index.column())];
        switch (role) {
        case Qt::DisplayRole:
            return Text(step, column);
        case Qt::BackgroundRole:
            if (step.fromConflict)
                return kConflictColour;
            if (step.kind == StepKind::Error)
                return kErrorColour;
            if (step.kind == StepKind::Accept)
                return kAcceptColour;
            return {};
        case Qt::ToolTipRole:
            if (step.fromConflict)
                return QStringLiteral("The table's cell holds more than one action: the kept one was taken, as the generated parser takes it.");
            return {};
        default:
            return {};
        }
    }

private:
    QString Text(const ParseStep& step, Column column) const
    {
        switch (column) {
        case Column::Stack:
        case Column::States:
            return step.stack.join(QLatin1Char(' '));
        case Column::Symbols:
            return step.symbols.join(QLatin1Char(' '));
        case Column::Relation:
            return step.relation;
        case Column::Input: {
            QStringList names;
            for (std::size_t i = static_cast<std::size_t>(std::max(step.position, 0)); i < m_run->tokens.size(); ++i)
                names << m_g->GetSymbolS(m_run->tokens[i]);
            return names.join(QLatin1Char(' '));
        }
        case Column::Action:
            return step.fromConflict ? step.action + QStringLiteral(" (conflict: the kept action)") : step.action;
        }
        return QString();
    }

    const Grammar* m_g = nullptr;
    const ParseRun* m_run = nullptr;
    std::vector<Column> m_columns;
};

void TraceDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    option->textElideMode = m_model.IsStack(index.column()) ? Qt::ElideLeft : Qt::ElideRight;
}

ParsePane::ParsePane(frmMain& window, QWidget* parent)
    : QWidget(parent)
    , m_window(window)
    , m_model(new TraceModel(this))
    , m_names(new QStringListModel(this))
    , m_random(QRandomGenerator::global()->generate())
{
    setObjectName(QStringLiteral("parsePane"));
    QFont mono(QStringLiteral("Courier New"));
    mono.setStyleHint(QFont::Monospace);
    mono.setPointSize(10);
    auto button = [](const QString& text, const char* name, const QString& tip) {
        auto* b = new QPushButton(text);
        b->setObjectName(QString::fromLatin1(name));
        b->setToolTip(tip);
        return b;
    };

    methodLabel = new QLabel;
    methodLabel->setObjectName(QStringLiteral("parseMethod"));
    input = new QLineEdit;
    input->setObjectName(QStringLiteral("parseInput"));
    input->setFont(mono);
    input->setPlaceholderText(QStringLiteral("A sentence: [a][+][a] or a + a"));
    input->setClearButtonEnabled(true);
    completer = new QCompleter(m_names, this);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setCompletionMode(QCompleter::PopupCompletion);
    completer->setWidget(input);
    parseButton = button(QStringLiteral("Parse"), "parseButton", QStringLiteral("Run the sentence through the table of the selected method"));
    shortestButton = button(QStringLiteral("Shortest"), "shortestButton", QStringLiteral("The shortest sentence of the grammar"));
    randomButton = button(QStringLiteral("Random"), "randomButton", QStringLiteral("A random sentence of at most the length beside"));
    randomLength = new QSpinBox;
    randomLength->setObjectName(QStringLiteral("randomLength"));
    randomLength->setRange(1, 200);
    randomLength->setValue(12);
    randomLength->setPrefix(QStringLiteral("up to "));
    randomLength->setToolTip(QStringLiteral("The longest random sentence, in terminals"));
    ruleExamples = new QComboBox;
    ruleExamples->setObjectName(QStringLiteral("ruleExamples"));
    ruleExamples->setToolTip(QStringLiteral("A short sentence whose derivation uses the rule chosen"));
    ruleExamples->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    ruleExamples->setMinimumContentsLength(18);

    firstButton = button(QStringLiteral("First"), "parseFirst", QStringLiteral("Back to the first step"));
    backButton = button(QStringLiteral("Step back"), "parseBack", QStringLiteral("One step back"));
    forwardButton = button(QStringLiteral("Step forward"), "parseForward", QStringLiteral("One step forward"));
    endButton = button(QStringLiteral("Run to end"), "parseEnd", QStringLiteral("To the last step"));
    errorButton = button(QStringLiteral("Run to error"), "parseError", QStringLiteral("To the step where the table has no action"));
    stepLabel = new QLabel;
    stepLabel->setObjectName(QStringLiteral("parseStep"));
    verdictLabel = new QLabel;
    verdictLabel->setObjectName(QStringLiteral("parseVerdict"));
    verdictLabel->setWordWrap(true);
    verdictLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    expectedLabel = new QLabel;
    expectedLabel->setObjectName(QStringLiteral("parseExpected"));
    expectedLabel->setWordWrap(true);
    expectedLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);

    trace = new QTableView;
    trace->setObjectName(QStringLiteral("parseTrace"));
    trace->setModel(m_model);
    trace->setItemDelegate(new TraceDelegate(*m_model, trace));
    trace->setFont(mono);
    trace->setSelectionBehavior(QAbstractItemView::SelectRows);
    trace->setSelectionMode(QAbstractItemView::SingleSelection);
    trace->setEditTriggers(QAbstractItemView::NoEditTriggers);
    trace->setWordWrap(false);
    trace->horizontalHeader()->setStretchLastSection(true);
    trace->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    trace->verticalHeader()->setDefaultSectionSize(QFontMetrics(mono).height() + 6);
    tree = new DerivationView;
    tree->setObjectName(QStringLiteral("parseTree"));
    textButton = button(QStringLiteral("Tree as text..."), "treeTextButton", QStringLiteral("Write the tree shown as text, one tree a line"));
    svgButton = button(QStringLiteral("Tree as SVG..."), "treeSvgButton", QStringLiteral("Write the tree shown as an SVG picture"));

    auto* sentenceRow = new QHBoxLayout;
    sentenceRow->addWidget(methodLabel);
    sentenceRow->addWidget(input, 1);
    sentenceRow->addWidget(parseButton);
    auto* exampleRow = new QHBoxLayout;
    exampleRow->addWidget(new QLabel(QStringLiteral("Example:")));
    exampleRow->addWidget(shortestButton);
    exampleRow->addWidget(randomButton);
    exampleRow->addWidget(randomLength);
    exampleRow->addWidget(ruleExamples, 1);
    auto* stepRow = new QHBoxLayout;
    for (QPushButton* b : {firstButton, backButton, forwardButton, endButton, errorButton})
        stepRow->addWidget(b);
    stepRow->addWidget(stepLabel, 1);

    auto* left = new QWidget;
    auto* leftLayout = new QVBoxLayout(left);
    leftLayout->setContentsMargins(0, 0, 0, 0);
    leftLayout->addLayout(sentenceRow);
    leftLayout->addLayout(exampleRow);
    leftLayout->addLayout(stepRow);
    leftLayout->addWidget(verdictLabel);
    leftLayout->addWidget(expectedLabel);
    leftLayout->addWidget(trace, 1);
    auto* right = new QWidget;
    auto* rightLayout = new QVBoxLayout(right);
    rightLayout->setContentsMargins(0, 0, 0, 0);
    auto* exportRow = new QHBoxLayout;
    exportRow->addStretch(1);
    exportRow->addWidget(textButton);
    exportRow->addWidget(svgButton);
    rightLayout->addLayout(exportRow);
    rightLayout->addWidget(tree, 1);
    auto* split = new QSplitter(Qt::Horizontal);
    split->addWidget(left);
    split->addWidget(right);
    split->setStretchFactor(0, 3);
    split->setStretchFactor(1, 2);
    split->setSizes({780, 460});
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(split);

    connect(input, &QLineEdit::textEdited, this, &ParsePane::OfferCompletion);
    connect(input, &QLineEdit::returnPressed, this, [this] {
        if (!completer->popup()->isVisible())
            Parse();
    });
    connect(completer, qOverload<const QString&>(&QCompleter::activated), this, &ParsePane::TakeCompletion);
    connect(parseButton, &QPushButton::clicked, this, [this] { Parse(); });
    connect(shortestButton, &QPushButton::clicked, this, &ParsePane::FillShortest);
    connect(randomButton, &QPushButton::clicked, this, &ParsePane::FillRandom);
    connect(ruleExamples, qOverload<int>(&QComboBox::activated), this, [this](int index) {
        if (index > 0)
            FillForRule(index);
    });
    connect(firstButton, &QPushButton::clicked, this, &ParsePane::First);
    connect(backButton, &QPushButton::clicked, this, &ParsePane::StepBack);
    connect(forwardButton, &QPushButton::clicked, this, &ParsePane::StepForward);
    connect(endButton, &QPushButton::clicked, this, &ParsePane::RunToEnd);
    connect(errorButton, &QPushButton::clicked, this, &ParsePane::RunToError);
    connect(trace->selectionModel(), &QItemSelectionModel::currentRowChanged, this, [this](const QModelIndex& current) {
        if (current.isValid() && current.row() != m_step)
            GoToStep(current.row());
    });
    connect(textButton, &QPushButton::clicked, this, [this] { ExportAsked(false); });
    connect(svgButton, &QPushButton::clicked, this, [this] { ExportAsked(true); });
    ShowView(View::Grammar);
}

ParsePane::~ParsePane()
{
    m_model->SetRun(nullptr, nullptr);
}

void ParsePane::ShowView(int view)
{
    const Workspace& ws = m_window.workspace();
    const Grammar& g = ws.grammar;
    QStringList symbols;
    for (int c = 0; c <= g.lastCode; ++c)
        symbols << g.GetSymbolS(c);
    const bool analyser = FindView(view) && ViewOf(view).IsAnalyser();
    const bool analysed = analyser && IsAnalysed(ws, view);
    const bool sameGrammar = m_rules == static_cast<const std::vector<std::vector<int>>&>(g.rules) && m_symbols == symbols;
    if (view != m_view || !analysed || !sameGrammar)
        ClearRun();
    m_view = view;
    if (!sameGrammar) {
        m_rules = g.rules;
        m_symbols = symbols;
        m_perRule.reset();
        QStringList names;
        for (int t = 1; t <= g.terminalCount; ++t)
            names << g.SymbolName(t);
        m_names->setStringList(names);
        const QSignalBlocker quiet(ruleExamples);
        ruleExamples->clear();
        ruleExamples->addItem(QStringLiteral("One per rule..."));
        for (int r = 1; r <= g.ruleCount; ++r)
            ruleExamples->addItem(QStringLiteral("%1: %2").arg(r).arg(RuleText(g, r)));
    }
    if (!analyser)
        methodLabel->setText(QString());
    else
        methodLabel->setText(QString::fromLatin1(ViewOf(view).method) + QLatin1Char(':'));
    if (!analyser)
        verdictLabel->setText(QStringLiteral("Select a method (LL(1) ... OPR) to parse a sentence with its table."));
    else if (!analysed)
        verdictLabel->setText(QString::fromLatin1(ViewOf(view).method)
                              + QStringLiteral(" has not been analysed: Analyse it to parse a sentence."));
    else if (!m_run)
        verdictLabel->setText(QStringLiteral("Type a sentence or choose an example, then Parse."));
    for (QWidget* w : std::initializer_list<QWidget*>{input, parseButton, shortestButton, randomButton, randomLength, ruleExamples})
        w->setEnabled(analysed);
    if (m_run)
        GoToStep(m_step);  // the rule's mark again: the conflicts pane clears the editor's marks
    UpdateButtons();
}

void ParsePane::ClearRun()
{
    m_model->SetRun(nullptr, nullptr);
    m_run.reset();
    m_step = -1;
    tree->Clear();
    stepLabel->clear();
    expectedLabel->clear();
    verdictLabel->clear();
    UpdateButtons();
}

bool ParsePane::Parse()
{
    Workspace& ws = m_window.workspace();
    if (m_window.Processing())
        return false;
    ClearRun();
    if (!FindView(m_view) || !ViewOf(m_view).IsAnalyser()) {
        verdictLabel->setText(QStringLiteral("Select a method (LL(1) ... OPR) to parse a sentence with its table."));
        return false;
    }
    std::vector<int> tokens;
    QString error;
    if (!ReadSentence(ws.grammar, input->text(), tokens, error)) {
        verdictLabel->setText(error);
        return false;
    }
    ParseRun run;
    m_window.ProcessStart();
    // Stop clears the view's analyser, as it does during an analysis.
    ws.current = MakeAnalyser(ws, m_view);
    if (ws.current)
        ws.current->SetInProcess(true);
    SimulateOptions options;
    options.stopped = [&ws] {
        ws.grammar.host().yield();
        return !ws.current || !ws.current->InProcess();
    };
    const bool ran = SimulateParse(ws, m_view, tokens, options, run, error);
    if (ws.current)
        ws.current->SetInProcess(false);
    m_window.ProcessStop();
    if (!ran) {
        verdictLabel->setText(error);
        return false;
    }
    m_run = std::move(run);
    m_model->SetRun(&ws.grammar, &*m_run);
    // Columns as wide as the rows in view need, within reason: the action stays in sight.
    trace->resizeColumnsToContents();
    for (int c = 0; c + 1 < m_model->columnCount(); ++c)
        trace->setColumnWidth(c, std::min(trace->columnWidth(c), kWidestColumn));
    verdictLabel->setText(m_run->message);
    GoToStep(0);
    return true;
}

void ParsePane::GoToStep(int step)
{
    if (!m_run || m_run->steps.empty())
        return;
    const int last = static_cast<int>(m_run->steps.size()) - 1;
    m_step = std::clamp(step, 0, last);
    const ParseStep& current = m_run->steps[static_cast<std::size_t>(m_step)];
    const Workspace& ws = m_window.workspace();
    const QModelIndex row = m_model->index(m_step, 0);
    trace->selectionModel()->setCurrentIndex(row, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    trace->scrollTo(row);
    tree->SetTrees(ws.grammar, TreesAfter(ws, *m_run, m_step + 1), {});
    if (m_run->view != View::LL)
        tree->ensureVisible(tree->DrawingSize().width(), 0);  // the top of the stack, where the parser works
    stepLabel->setText(QStringLiteral("Step %1 of %2").arg(m_step + 1).arg(last + 1));
    if (current.kind == StepKind::Error && m_run->verdict == ParseVerdict::Rejected) {
        QStringList names;
        for (int t : m_run->expected)
            names << ws.grammar.GetSymbolS(t);
        expectedLabel->setText(names.isEmpty() ? QStringLiteral("Expected: nothing, no action is possible here.")
                                               : QStringLiteral("Expected: ") + names.join(QLatin1Char(' ')));
    } else {
        expectedLabel->clear();
    }
    GrammarEditor& editor = *m_window.Text1;
    if (current.rule > 0) {
        editor.MarkRuleLines(ws.grammar, {current.rule});
    } else {
        editor.MarkRuleLines(ws.grammar, {});
        QTextCursor cursor = editor.textCursor();
        cursor.clearSelection();
        editor.setTextCursor(cursor);
    }
    UpdateButtons();
    if (current.state >= 0)
        Q_EMIT stateShown(current.state);
}

void ParsePane::RunToEnd()
{
    if (m_run)
        GoToStep(static_cast<int>(m_run->steps.size()) - 1);
}

void ParsePane::RunToError()
{
    if (m_run && m_run->verdict == ParseVerdict::Rejected)
        GoToStep(static_cast<int>(m_run->steps.size()) - 1);
}

void ParsePane::UpdateButtons()
{
    const int last = m_run ? static_cast<int>(m_run->steps.size()) - 1 : -1;
    const bool running = m_run && last >= 0;
    firstButton->setEnabled(running && m_step > 0);
    backButton->setEnabled(running && m_step > 0);
    forwardButton->setEnabled(running && m_step < last);
    endButton->setEnabled(running && m_step < last);
    errorButton->setEnabled(running && m_run->verdict == ParseVerdict::Rejected && m_step < last);
    const bool trees = running && tree->TreeCount() > 0;
    textButton->setEnabled(trees);
    svgButton->setEnabled(trees);
}

void ParsePane::SetSentence(const std::vector<int>& tokens)
{
    input->setText(SentenceText(m_window.workspace().grammar, tokens));
    ClearRun();
    if (tokens.empty())
        verdictLabel->setText(QStringLiteral("The example is the empty sentence."));
}

void ParsePane::FillShortest()
{
    SetSentence(ShortestSentence(m_window.workspace().grammar));
}

void ParsePane::FillRandom()
{
    SetSentence(RandomSentence(m_window.workspace().grammar, randomLength->value(), m_random));
}

bool ParsePane::FillForRule(int rule)
{
    const Grammar& g = m_window.workspace().grammar;
    if (rule < 1 || rule > g.ruleCount)
        return false;
    if (!m_perRule)
        m_perRule = SentencePerRule(g);
    if (rule > static_cast<int>(m_perRule->size()))
        return false;
    const std::vector<int>& sentence = (*m_perRule)[static_cast<std::size_t>(rule - 1)];
    ruleExamples->setCurrentIndex(rule);
    // An empty entry is a rule no sentence uses, unless the empty sentence is one of the grammar's.
    if (sentence.empty() && !ShortestSentence(g).empty()) {
        ClearRun();
        verdictLabel->setText(QStringLiteral("No sentence of the grammar uses rule %1.").arg(rule));
        return false;
    }
    SetSentence(sentence);
    return true;
}

void ParsePane::OfferCompletion()
{
    const QString text = input->text();
    const int end = input->cursorPosition();
    int begin = end;
    while (begin > 0 && !BreaksName(text[begin - 1]))
        --begin;
    const QString word = text.mid(begin, end - begin);
    if (word.isEmpty()) {
        completer->popup()->hide();
        return;
    }
    completer->setCompletionPrefix(word);
    if (completer->completionCount() == 0
        || (completer->completionCount() == 1 && completer->currentCompletion() == word)) {
        completer->popup()->hide();
        return;
    }
    completer->complete();
}

void ParsePane::TakeCompletion(const QString& name)
{
    QString text = input->text();
    int end = input->cursorPosition();
    int begin = end;
    while (begin > 0 && !BreaksName(text[begin - 1]))
        --begin;
    while (end < text.size() && !BreaksName(text[end]))
        ++end;
    const bool bracketed = begin > 0 && text[begin - 1] == QLatin1Char('[');
    QString replacement = name;
    if (bracketed && (end >= text.size() || text[end] != QLatin1Char(']')))
        replacement += QLatin1Char(']');
    text.replace(begin, end - begin, replacement);
    input->setText(text);
    input->setCursorPosition(begin + static_cast<int>(replacement.size()));
}

QString ParsePane::TreeText() const
{
    if (!m_run || m_step < 0)
        return QString();
    const Workspace& ws = m_window.workspace();
    QStringList lines;
    for (const DerivationTree& t : TreesAfter(ws, *m_run, m_step + 1))
        lines << ::TreeText(ws.grammar, t);
    return lines.join(QStringLiteral("\r\n"));
}

QString ParsePane::ExportBase() const
{
    const Workspace& ws = m_window.workspace();
    const QString path = ws.grammar.Path();
    const QString base = path.isEmpty() ? QDir(ws.settings.saveDir).filePath(QStringLiteral("grammar")) : ExportBaseName(path);
    return base + QStringLiteral("-parse-") + QString::fromLatin1(ViewOf(m_view).name);
}

void ParsePane::ExportAsked(bool svg)
{
    if (!m_run || tree->TreeCount() == 0)
        return;
    KAVENSave dialog;
    dialog.Filter = {svg ? QStringLiteral("SVG Pictures (*.svg)") : TextFilesFilter()};
    dialog.DefaultExt = svg ? QStringLiteral("svg") : QStringLiteral("txt");
    dialog.File = ExportBase() + QLatin1Char('.') + dialog.DefaultExt;
    dialog.InitDir = QFileInfo(dialog.File).absolutePath();
    dialog.Title = svg ? QStringLiteral("Save the Tree as SVG") : QStringLiteral("Save the Tree as Text");
    dialog.Owner = this;
    if (!dialog.GetFileName())
        return;
    if (svg)
        ExportTreeSvg(dialog.File);
    else
        ExportTreeText(dialog.File);
}

bool ParsePane::ExportTreeText(const QString& path)
{
    Host& host = m_window.workspace().host();
    QString error;
    if (!WriteTextFile(path, TreeText(), error)) {
        host.critical(error);
        return false;
    }
    host.information(QStringLiteral("Files saved:\r\n") + path + QStringLiteral(".\r\n"));
    return true;
}

bool ParsePane::ExportTreeSvg(const QString& path)
{
    Host& host = m_window.workspace().host();
    QString error;
    const QString title = m_run ? QString::fromLatin1(ViewOf(m_run->view).method) + QStringLiteral(" parse tree") : QString();
    if (!tree->SaveSvg(path, title, error)) {
        host.critical(error);
        return false;
    }
    host.information(QStringLiteral("Files saved:\r\n") + path + QStringLiteral(".\r\n"));
    return true;
}
