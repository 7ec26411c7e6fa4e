/// \file
/// The main window.
#include "ui/frmMain.h"
#include "grammar/Texts.h"

#include "session/Export.h"
#include "session/StandaloneExport.h"
#include "storage/Folders.h"
#include "storage/GrammarFile.h"
#include "storage/SettingsFile.h"
#include "ui/AutomatonPane.h"
#include "ui/ConflictsPane.h"
#include "ui/ParsePane.h"
#include "ui/FileDialogs.h"
#include "ui/GrammarEditor.h"
#include "ui/GuiHost.h"
#include "ui/ListingView.h"
#include "ui/TableGrid.h"
#include "ui/frmAbout.h"
#include "transform/Transform.h"
#include "ui/frmRename.h"
#include "ui/frmReplace.h"
#include "ui/frmSetts.h"
#include "ui/frmStat.h"
#include "session/OpenSave.h"
#include "session/TableCells.h"
#include "session/TransformCommand.h"
#include "session/Verdicts.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QDesktopServices>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QMimeData>
#include <QPainter>
#include <QScreen>
#include <QSplitter>
#include <QStatusBar>
#include <QToolBar>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

const QString& kProduct = kProductName;
const QString kRecentSection = QStringLiteral("Recent");
constexpr int kRecentCount = 6;

/// The colour of a view selector's tile: one per family of views.
QRgb TileColour(const ViewInfo& info)
{
    switch (info.family) {
    case ViewFamily::Rules:
        return 0x5b7db1;
    case ViewFamily::Report:
        return info.number == View::Symbols ? 0x5b7db1 : 0x4f9a6b;
    case ViewFamily::LL:
        return 0xb5793a;
    case ViewFamily::LR:
        return 0xa24f6b;
    case ViewFamily::Precedence:
        return 0x6f5ba8;
    }
    return 0x5b7db1;
}

/// A status label's text: the run's text, or the label's name while it has none;
/// the elapsed time with its unit ("Time: 0,845 s"; "1:02,345" reads as minutes).
QString StatusLabelText(StatusField field, const QString& text)
{
    switch (field) {
    case StatusField::State:
        return text.isEmpty() ? QStringLiteral("State:") : text;
    case StatusField::Pass:
        return text.isEmpty() ? QStringLiteral("Pass:") : text;
    case StatusField::Elapsed:
        if (text.isEmpty())
            return QStringLiteral("Time");
        return QStringLiteral("Time: ") + text + (text.contains(QLatin1Char(':')) ? QString() : QStringLiteral(" s"));
    }
    return text;
}

/// The grammar file a drag carries: the first URL when it is a local .tkg or
/// .txt file (what File Open offers); "" otherwise.
QString DroppedGrammar(const QMimeData* mime)
{
    if (!mime || !mime->hasUrls() || mime->urls().isEmpty() || !mime->urls().first().isLocalFile())
        return QString();
    const QString path = mime->urls().first().toLocalFile();
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == QStringLiteral("tkg") || suffix == QStringLiteral("txt") ? path : QString();
}

QIcon ViewIcon(const ViewInfo& info)
{
    QPixmap pixmap(40, 28);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setBrush(QColor::fromRgb(TileColour(info)));
    p.setPen(Qt::NoPen);
    p.drawRoundedRect(QRectF(1, 1, 38, 26), 5, 5);
    QFont font(QStringLiteral("Tahoma"));
    font.setBold(true);
    font.setPixelSize(13);
    p.setFont(font);
    p.setPen(Qt::white);
    p.drawText(pixmap.rect(), Qt::AlignCenter, QString::fromLatin1(info.glyph));
    return QIcon(pixmap);
}

} // namespace

/// The host the window hands to its workspace: message boxes go to the given
/// host (or real ones), status texts to the three labels, and each turn of the
/// message loop runs pending events (at most every 10 ms, so a turn per rule
/// costs nothing while Stop still answers at once).
///
/// An LR run reports a status text per state, tens of thousands a second.
/// During a run the labels take the latest texts at most every 50 ms, and the
/// texts left over are written when the run ends, so the labels end exact. A
/// status report is also a turn of the message loop: a pass over many states
/// has no other, and the window would stop answering (and painting) until the
/// pass is done.
class frmMain::WindowHost final : public Host {
public:
    WindowHost(frmMain& window, Host* messages)
        : m_window(window)
        , m_own(messages ? nullptr : new GuiHost(&window))
        , m_messages(messages ? messages : m_own.get())
    {
        m_sinceYield.start();
        m_sinceLabels.start();
    }
    void critical(const QString& text) override { m_messages->critical(text); }
    void information(const QString& text) override { m_messages->information(text); }
    bool okCancel(const QString& text) override { return m_messages->okCancel(text); }
    void yield() override
    {
        m_messages->yield();
        Turn();
    }
    void status(StatusField field, const QString& text) override
    {
        const auto i = static_cast<std::size_t>(field);
        m_pending[i] = text;
        m_dirty[i] = true;
        m_messages->status(field, text);
        if (!m_window.processing || m_sinceLabels.elapsed() >= kLabelMs)
            WriteLabels();
        if (m_window.processing)
            Turn();
    }
    /// Writes the texts not yet shown into the labels.
    void WriteLabels()
    {
        QLabel* labels[] = {m_window.sState, m_window.sPass, m_window.sElapsed};
        for (std::size_t i = 0; i < m_pending.size(); ++i)
            if (m_dirty[i] && labels[i]) {
                labels[i]->setText(StatusLabelText(static_cast<StatusField>(i), m_pending[i]));
                m_dirty[i] = false;
            }
        m_sinceLabels.restart();
    }

private:
    static constexpr qint64 kYieldMs = 10;
    static constexpr qint64 kLabelMs = 50;
    void Turn()
    {
        if (m_sinceYield.elapsed() >= kYieldMs) {
            QCoreApplication::processEvents();
            m_sinceYield.restart();
        }
    }
    frmMain& m_window;
    std::unique_ptr<GuiHost> m_own;
    Host* m_messages;
    QElapsedTimer m_sinceYield;
    QElapsedTimer m_sinceLabels;
    std::array<QString, 3> m_pending;
    std::array<bool, 3> m_dirty{};
};

frmMain::frmMain(Host* messages, const QString& settingsFile)
    : m_host(std::make_unique<WindowHost>(*this, messages))
    , m_ws(std::make_unique<Workspace>(m_host.get()))
{
    m_ini.SetFile(settingsFile);
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(kProduct);
    setFont(QFont(QStringLiteral("Tahoma")));
    setAcceptDrops(true);
    urlOpener = [](const QUrl& url) { return QDesktopServices::openUrl(url); };
    saveQuestion = [this](const QString& question) { return AskSaveChanges(this, question); };

    Text1 = new GrammarEditor;
    Text1->setObjectName(QStringLiteral("Text1"));
    Text2 = new ListingView;
    Text2->setObjectName(QStringLiteral("Text2"));
    QFont mono(QStringLiteral("Courier New"));
    mono.setStyleHint(QFont::Monospace);
    mono.setPointSize(10);
    Text2->setFont(mono);
    Picture1 = new TableGrid(*m_ws);

    auto* output = new QSplitter(Qt::Vertical);
    output->addWidget(Text2);
    output->addWidget(Picture1);
    output->setStretchFactor(0, 2);
    output->setStretchFactor(1, 3);
    auto* main = new QSplitter(Qt::Horizontal);
    main->addWidget(Text1);
    main->addWidget(output);
    main->setStretchFactor(0, 2);
    main->setStretchFactor(1, 3);
    setCentralWidget(main);
    BuildReadingAids(output);

    auto* bar = new QToolBar(QStringLiteral("Views"));
    bar->setObjectName(QStringLiteral("ViewBar"));
    bar->setMovable(false);
    bar->setIconSize(QSize(40, 28));
    BuildViewSelector(bar);
    addToolBar(Qt::TopToolBarArea, bar);

    // The panes under the window, each hidden until its button on the view bar asks for it.
    auto addPane = [&](const QString& title, const QString& name, QWidget* pane, const QString& tip) {
        auto* dock = new QDockWidget(title, this);
        dock->setObjectName(name + QStringLiteral("Dock"));
        dock->setWidget(pane);
        dock->setAllowedAreas(Qt::BottomDockWidgetArea | Qt::TopDockWidgetArea);
        addDockWidget(Qt::BottomDockWidgetArea, dock);
        QAction* show = dock->toggleViewAction();
        show->setObjectName(QStringLiteral("show") + name.at(0).toUpper() + name.mid(1));
        show->setToolTip(tip);
        bar->addAction(show);
        return dock;
    };
    conflictsPane = new ConflictsPane(*this);
    conflictsDock = addPane(QStringLiteral("Conflicts"), QStringLiteral("conflicts"), conflictsPane,
                            QStringLiteral("The conflicts of the selected method, each with two derivations of one sentence"));
    // A sentence parsed step by step with the selected method's table, in a tab beside the conflicts.
    parsePane = new ParsePane(*this);
    parseDock = addPane(QStringLiteral("Parse"), QStringLiteral("parse"), parsePane,
                        QStringLiteral("Parse a sentence with the selected method's table, step by step, and watch its tree grow"));
    tabifyDockWidget(conflictsDock, parseDock);
    // The automaton of the selected LR view as a picture beside the tabs of the
    // conflicts and the parse, not among them: a parse stepped through shows
    // its current state in the picture.
    automatonPane = new AutomatonPane(*this);
    automatonDock = addPane(QStringLiteral("Automaton"), QStringLiteral("automaton"), automatonPane,
                            QStringLiteral("The automaton of the selected LR method, drawn"));
    splitDockWidget(conflictsDock, automatonDock, Qt::Horizontal);
    for (QDockWidget* dock : {conflictsDock, parseDock, automatonDock})
        dock->hide();
    connect(parsePane, &ParsePane::stateShown, automatonPane, &AutomatonPane::HighlightState);

    sState = new QLabel(QStringLiteral("State:"));
    sState->setObjectName(QStringLiteral("sState"));
    sState->setToolTip(QStringLiteral("Analysis State"));
    sPass = new QLabel(QStringLiteral("Pass:"));
    sPass->setObjectName(QStringLiteral("sPass"));
    sPass->setToolTip(QStringLiteral("Current Pass"));
    sElapsed = new QLabel(QStringLiteral("Time"));
    sElapsed->setObjectName(QStringLiteral("sElapsed"));
    sElapsed->setToolTip(QStringLiteral("Time Elapsed"));
    for (QLabel* label : {sState, sPass, sElapsed}) {
        label->setMinimumWidth(120);
        label->setFrameShape(QFrame::StyledPanel);
    }
    statusBar()->addWidget(sState, 2);
    statusBar()->addWidget(sPass, 1);
    statusBar()->addWidget(sElapsed, 1);

    BuildMenus();
    // The recent files live in their own section of the settings file.
    if (!m_ini.File().isEmpty())
        for (int i = 1; i <= kRecentCount; ++i) {
            const QString path = m_ini.GetSetting(kProduct, kRecentSection, QStringLiteral("File%1").arg(i), QString());
            if (!path.isEmpty())
                m_recent << path;
        }
    RefreshRecentMenu();
    connect(Text1, &QPlainTextEdit::textChanged, this, &frmMain::OnGrammarEdited);
    resize(1100, 720);
    SelectView(View::Grammar);
    SetCaption();
}

frmMain::~frmMain()
{
    // The grid's model and the conflicts pane read the workspace: let them go first.
    delete conflictsDock;
    conflictsDock = nullptr;
    conflictsPane = nullptr;
    delete parseDock;
    parseDock = nullptr;
    parsePane = nullptr;
    delete automatonDock;
    automatonDock = nullptr;
    automatonPane = nullptr;
    delete Picture1;
    Picture1 = nullptr;
}

void frmMain::BuildViewSelector(QWidget* bar)
{
    auto* group = new QButtonGroup(this);
    group->setExclusive(true);
    auto* toolbar = static_cast<QToolBar*>(bar);
    for (int v = 0; v < View::Count; ++v) {
        auto* button = new QToolButton;
        button->setObjectName(QStringLiteral("Image1_%1").arg(v));
        button->setIcon(ViewIcon(ViewOf(v)));
        button->setToolTip(QString::fromLatin1(ViewOf(v).tip));
        button->setCheckable(true);
        button->setAutoRaise(true);
        group->addButton(button, v);
        Image1[v] = button;
        toolbar->addWidget(button);
        if (v == View::FollowR || v == View::LL || v == View::LR)
            toolbar->addSeparator();
    }
    connect(group, &QButtonGroup::idClicked, this, &frmMain::SelectView);
    toolbar->addSeparator();
    itemsButton = new QToolButton;
    itemsButton->setObjectName(QStringLiteral("itemsButton"));
    itemsButton->setText(QStringLiteral("Items"));
    itemsButton->setToolTip(QStringLiteral("LR views: show the item sets of the states instead of the table listing"));
    itemsButton->setCheckable(true);
    connect(itemsButton, &QToolButton::toggled, this, [this] { ShowKeptResults(); });
    toolbar->addWidget(itemsButton);
    recentButton = new QToolButton;
    recentButton->setObjectName(QStringLiteral("recentButton"));
    recentButton->setText(QStringLiteral("Recent"));
    recentButton->setToolTip(QStringLiteral("Recently opened grammars"));
    recentButton->setPopupMode(QToolButton::InstantPopup);
    m_recentMenu = new QMenu(recentButton);
    recentButton->setMenu(m_recentMenu);
    toolbar->addWidget(recentButton);
}

void frmMain::BuildMenus()
{
    QMenuBar* bar = menuBar();
    auto action = [this](const char* name, const QString& caption, void (frmMain::*slot)(), QKeySequence keys = {}) {
        auto* a = new QAction(caption, this);
        a->setObjectName(QString::fromLatin1(name));
        if (!keys.isEmpty())
            a->setShortcut(keys);
        connect(a, &QAction::triggered, this, slot);
        return a;
    };
    mnuFile = bar->addMenu(QStringLiteral("&Файл"));
    mnuFile->setObjectName(QStringLiteral("mnuFile"));
    mnuFileNew = action("mnuFileNew", QStringLiteral("&Новый"), &frmMain::FileNew, QKeySequence::New);
    mnuFileOpen = action("mnuFileOpen", QStringLiteral("&Открыть..."), &frmMain::FileOpen, QKeySequence::Open);
    mnuFileSave = new QAction(QStringLiteral("&Сохранить"), this);
    mnuFileSave->setObjectName(QStringLiteral("mnuFileSave"));
    mnuFileSave->setShortcut(QKeySequence::Save);
    connect(mnuFileSave, &QAction::triggered, this, [this] { FileSave(); });
    mnuFileSaveAs = new QAction(QStringLiteral("Сохранить к&ак..."), this);
    mnuFileSaveAs->setObjectName(QStringLiteral("mnuFileSaveAs"));
    mnuFileSaveAs->setShortcut(QKeySequence(QStringLiteral("Ctrl+Shift+S")));
    connect(mnuFileSaveAs, &QAction::triggered, this, [this] { FileSaveAs(); });
    mnuFileBack = action("mnuFileBack", QStringLiteral("&Вернуть исходную"), &frmMain::FileBack);
    mnuFileRename = action("mnuFileRename", QStringLiteral("&Переименовать"), &frmMain::FileRename);
    mnuFileClose = new QAction(QStringLiteral("&Закрыть"), this);
    mnuFileClose->setObjectName(QStringLiteral("mnuFileClose"));
    mnuFileClose->setShortcut(QKeySequence(QStringLiteral("Ctrl+Q")));
    connect(mnuFileClose, &QAction::triggered, this, &QWidget::close);
    mnuFile->addAction(mnuFileNew);
    mnuFile->addAction(mnuFileOpen);
    mnuFile->addAction(mnuFileSave);
    mnuFile->addAction(mnuFileSaveAs);
    // The standalone C program of the selected view, for an analysed table view only.
    mnuFileStandalone = action("mnuFileStandalone", QStringLiteral("Export Standalone C..."), &frmMain::ExportStandalone);
    mnuFile->addAction(mnuFileStandalone);
    connect(mnuFile, &QMenu::aboutToShow, this, [this] {
        mnuFileStandalone->setEnabled(!processing && ViewOf(m_view).HasTable() && IsAnalysed(*m_ws, m_view));
    });
    mnuFile1 = mnuFile->addSeparator();
    mnuFile1->setObjectName(QStringLiteral("mnuFile1"));
    mnuFile->addAction(mnuFileBack);
    mnuFile->addAction(mnuFileRename);
    mnuFile2 = mnuFile->addSeparator();
    mnuFile2->setObjectName(QStringLiteral("mnuFile2"));
    mnuFile->addAction(mnuFileClose);

    mnuAnalyse = action("mnuAnalyse", QStringLiteral("&Анализ"), &frmMain::Analyse, QKeySequence(Qt::Key_F5));
    mnuStop = action("mnuStop", QStringLiteral("&Стоп"), &frmMain::Stop, QKeySequence(Qt::Key_Escape));
    mnuStop->setEnabled(false);
    bar->addAction(mnuAnalyse);
    bar->addAction(mnuStop);

    mnuAction = bar->addMenu(QStringLiteral("&Преобразовать"));
    mnuAction->setObjectName(QStringLiteral("mnuAction"));
    auto transform = [this](const char* name, const QString& caption) {
        auto* a = new QAction(caption, this);
        a->setObjectName(QString::fromLatin1(name));
        mnuAction->addAction(a);
        return a;
    };
    mnuActUnused = transform("mnuActUnused", QStringLiteral("Удалить &бесплодные и недостижимые"));
    mnuActLeftRecursion = transform("mnuActLeftRecursion", QStringLiteral("Устранить &левую рекурсию"));
    mnuActLeftFactoring = transform("mnuActLeftFactoring", QStringLiteral("Левая &факторизация"));
    mnuActEmptyRules = transform("mnuActEmptyRules", QStringLiteral("Удалить п&устые правила"));
    mnuActCycleRules = transform("mnuActCycleRules", QStringLiteral("Удалить &циклические правила"));
    mnuActSep1 = mnuAction->addSeparator();
    mnuActSep1->setObjectName(QStringLiteral("mnuActSep1"));
    mnuActGroup = transform("mnuActGroup", QStringLiteral("&Группировать правила"));
    mnuActReplace = transform("mnuActReplace", QStringLiteral("&Переименовать символы"));
    const std::pair<QAction*, QString> commands[] = {
        {mnuActUnused, TransformCode::RemoveUnusedSymbols},  {mnuActLeftRecursion, TransformCode::LeftRecursion},
        {mnuActLeftFactoring, TransformCode::LeftFactoring}, {mnuActEmptyRules, TransformCode::RemoveEmptyRules},
        {mnuActCycleRules, TransformCode::RemoveCycles},     {mnuActGroup, TransformCode::GroupRules},
    };
    for (const auto& [action, code] : commands)
        connect(action, &QAction::triggered, this, [this, code = code] { Transform(code); });
    connect(mnuActReplace, &QAction::triggered, this, &frmMain::RenameSymbols);

    mnuClear = action("mnuClear", QStringLiteral("&Очистить"), &frmMain::Clear);
    mnuExport = action("mnuExport", QStringLiteral("&Экспорт"), &frmMain::Export, QKeySequence(QStringLiteral("Ctrl+E")));
    mnuStat = action("mnuStat", QStringLiteral("С&татистика"), &frmMain::Statistics);
    mnuOverview = action("mnuOverview", QStringLiteral("О&бзор"), &frmMain::Overview, QKeySequence(Qt::Key_F6));
    mnuOverview->setToolTip(QStringLiteral("The verdicts of all six methods"));
    mnuSettings = action("mnuSettings", QStringLiteral("&Настройки"), &frmMain::Options);
    mnuHelp = action("mnuHelp", QStringLiteral("&Справка"), &frmMain::Help, QKeySequence::HelpContents);
    mnuAbout = action("mnuAbout", QStringLiteral("&О..."), &frmMain::About);
    for (QAction* a : {mnuClear, mnuExport, mnuStat, mnuOverview, mnuSettings, mnuHelp, mnuAbout})
        bar->addAction(a);
    // The view selectors are also reached from the keyboard: Ctrl+1 .. Ctrl+0, Ctrl+-, Ctrl+=.
    const char* keys[View::Count] = {"Ctrl+1", "Ctrl+2", "Ctrl+3", "Ctrl+4", "Ctrl+5", "Ctrl+6",
                                     "Ctrl+7", "Ctrl+8", "Ctrl+9", "Ctrl+0", "Ctrl+-", "Ctrl+="};
    for (int v = 0; v < View::Count; ++v) {
        auto* a = new QAction(this);
        a->setShortcut(QKeySequence(QString::fromLatin1(keys[v])));
        connect(a, &QAction::triggered, this, [this, v] { SelectView(v); });
        addAction(a);
    }
}

void frmMain::BuildReadingAids(QSplitter* output)
{
    // Above the output box the verdict of the selected method; below the grid
    // what the chosen cell means. Each pair shares one place of the splitter.
    QFont mono(QStringLiteral("Courier New"));
    mono.setStyleHint(QFont::Monospace);
    mono.setPointSize(10);

    verdictLabel = new QLabel;
    verdictLabel->setObjectName(QStringLiteral("verdictLabel"));
    verdictLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    QFont bold = verdictLabel->font();
    bold.setBold(true);
    verdictLabel->setFont(bold);
    auto* top = new QWidget;
    auto* topLayout = new QVBoxLayout(top);
    topLayout->setContentsMargins(0, 0, 0, 0);
    topLayout->setSpacing(2);
    topLayout->addWidget(verdictLabel);
    QWidget* text2 = output->replaceWidget(0, top);
    topLayout->addWidget(text2);

    cellPane = new QPlainTextEdit;
    cellPane->setObjectName(QStringLiteral("cellPane"));
    cellPane->setReadOnly(true);
    cellPane->setLineWrapMode(QPlainTextEdit::NoWrap);
    cellPane->setFont(mono);
    cellPane->setPlaceholderText(
        QStringLiteral("Click a cell of the table to see what it means: the items of an LR state, the rule of a reduce."));
    cellPane->setMaximumHeight(QFontMetrics(mono).lineSpacing() * 8 + 12);
    auto* bottom = new QWidget;
    auto* bottomLayout = new QVBoxLayout(bottom);
    bottomLayout->setContentsMargins(0, 0, 0, 0);
    bottomLayout->setSpacing(2);
    QWidget* grid = output->replaceWidget(1, bottom);
    bottomLayout->addWidget(grid, 1);
    bottomLayout->addWidget(cellPane);
    output->setStretchFactor(0, 2);
    output->setStretchFactor(1, 3);

    auto show = [this](const QModelIndex& index) { ShowCellDetails(index); };
    connect(Picture1, &QAbstractItemView::clicked, this, show);
    connect(Picture1->selectionModel(), &QItemSelectionModel::currentChanged, this, show);

    // Grammar files dropped anywhere open; their addresses are never typed into the editor.
    for (QWidget* target : {static_cast<QWidget*>(Text1), text2, static_cast<QWidget*>(Picture1)}) {
        target->setAcceptDrops(true);
        target->installEventFilter(this);
        if (auto* area = qobject_cast<QAbstractScrollArea*>(target)) {
            area->viewport()->setAcceptDrops(true);
            area->viewport()->installEventFilter(this);
        }
    }
}

void frmMain::ShowCellDetails(const QModelIndex& index)
{
    if (!index.isValid() || Picture1->Model().View() < 0) {
        cellPane->clear();
        return;
    }
    const QString text = CellDetails(*m_ws, Picture1->Model().View(), index.row(), index.column());
    cellPane->setPlainText(text);
}

// ---- The analysis run --------------------------------------------------------------

QString frmMain::GrammarText()
{
    return Text1->CrLfText();
}

void frmMain::SetText1(const QString& text)
{
    m_loading = true;
    Text1->setPlainText(QString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    Text1->moveCursor(QTextCursor::Start);
    m_loading = false;
    SetModified(Text1->toPlainText() != m_savedText);
}

void frmMain::SetText2(const QString& text)
{
    Text2->setText(text);  // CR LF and LF alike; the box shows the beginning
}

void frmMain::OnProcessStart()
{
    if (!QGuiApplication::overrideCursor())
        QGuiApplication::setOverrideCursor(Qt::BusyCursor);
    HoldCommands();
    mnuStop->setEnabled(true);
}

void frmMain::OnProcessStop()
{
    m_host->WriteLabels();
    mnuStop->setEnabled(false);
    if (!m_showing)
        ReleaseCommands();
}

void frmMain::HoldCommands()
{
    if (!m_held.empty())
        return;
    QList<QAction*> commands = menuBar()->actions() + actions();
    for (QMenu* menu : menuBar()->findChildren<QMenu*>())
        commands += menu->actions();
    for (QAction* a : commands)
        if (a != mnuStop && a->isEnabled()) {
            a->setEnabled(false);
            m_held.emplace_back(a);
        }
    Image1[0]->parentWidget()->setEnabled(false);  // the view selectors, Items and Recent
    if (parsePane)
        parsePane->setEnabled(false);
    Text1->setReadOnly(true);
}

void frmMain::ReleaseCommands()
{
    // The default pointer, on purpose not the one in use when the run started.
    while (QGuiApplication::overrideCursor())
        QGuiApplication::restoreOverrideCursor();
    for (const QPointer<QAction>& a : m_held)
        if (a)
            a->setEnabled(true);
    m_held.clear();
    Image1[0]->parentWidget()->setEnabled(true);
    if (parsePane)
        parsePane->setEnabled(true);
    Text1->setReadOnly(false);
}

void frmMain::ProcessStart()
{
    ::ProcessStart(*m_ws, *this);
}

void frmMain::ProcessStop()
{
    ::ProcessStop(*m_ws, *this);
}

bool frmMain::AnalyzeGrammar()
{
    ProcessStart();
    const bool ready = ::AnalyzeGrammar(*m_ws, *this);
    if (!ready)
        ShowParseErrorPlace();
    return ready;
}

void frmMain::Analyse()
{
    if (processing)
        return;
    // The busy pointer and the held commands last until the results are shown.
    m_showing = true;
    ::Analyse(*m_ws, *this, m_view);
    ShowParseErrorPlace();
    if (itemsButton->isChecked() && ViewOf(m_view).HasItems() && IsAnalysed(*m_ws, m_view))
        ShowKeptResults();  // the item sets, as the Items button asks
    Picture1->ShowView(m_view, m_ws->settings.cellWidth);
    ShowRunState();
    // Clicks and keys that came while the results were being built reach the
    // disabled commands now and are dropped, instead of running afterwards.
    QCoreApplication::processEvents();
    m_showing = false;
    ReleaseCommands();
}

void frmMain::Stop()
{
    m_stopAsked = true;
    m_ws->Stop();
}

void frmMain::ShowParseErrorPlace()
{
    // The place of the error the last parse stopped at; a message that names no
    // place (an undefined non-terminal) leaves the cursor where it is.
    const std::optional<ParseError>& error = m_ws->grammar.LastParseError();
    if (error && error->line > 0)
        Text1->GoToMessagePlace(error->line, error->column);
}

void frmMain::SelectView(int view)
{
    if (!FindView(view))
        return;
    m_view = view;
    Image1[view]->setChecked(true);
    itemsButton->setEnabled(ViewOf(view).HasItems());
    ShowKeptResults();
}

void frmMain::ShowKeptResults()
{
    const ViewInfo& info = ViewOf(m_view);
    if (!info.IsAnalyser()) {
        SetText2(ViewReport(*m_ws, m_view));
    } else {
        if (info.HasItems() && itemsButton->isChecked())
            SetText2(ItemListing(*m_ws, m_view));
        else
            SetText2(MakeAnalyser(*m_ws, m_view)->ExportDisplay());
    }
    Picture1->ShowView(m_view, m_ws->settings.cellWidth);
    ShowRunState();
}

void frmMain::ShowRunState()
{
    const SavedStatus* saved = IsAnalysed(*m_ws, m_view) ? SavedStatusOf(*m_ws, m_view) : nullptr;
    if (saved) {
        sState->setText(StatusLabelText(StatusField::State, saved->state));
        sPass->setText(StatusLabelText(StatusField::Pass, saved->pass));
        sElapsed->setText(StatusLabelText(StatusField::Elapsed, saved->elapsed));
    } else {
        ClearStatusLabels();
    }
    verdictLabel->setText(ViewOf(m_view).IsAnalyser() ? VerdictLine(Judge(*m_ws, m_view)) : QString());
    cellPane->clear();
    if (conflictsPane)
        conflictsPane->ShowView(m_view);
    if (parsePane)
        parsePane->ShowView(m_view);
    if (automatonPane)
        automatonPane->ShowView(m_view);
}

void frmMain::ClearStatusLabels()
{
    sState->setText(StatusLabelText(StatusField::State, QString()));
    sPass->setText(StatusLabelText(StatusField::Pass, QString()));
    sElapsed->setText(StatusLabelText(StatusField::Elapsed, QString()));
}

void frmMain::ResetResults()
{
    m_ws->grammar.Clear();
    m_ws->ResetResults();
    ShowKeptResults();
}

void frmMain::ResetText()
{
    // The grammar's own text (after a renaming) into the editor, then saved.
    SetText1(m_ws->grammar.Text());
    SetModified(true);
    FileSave();
    SetCaption();
}

void frmMain::OnGrammarEdited()
{
    if (m_loading)
        return;
    // Editing invalidates the previous parse and every result drawn from it.
    // Undoing back to the file's text is no longer a change.
    SetModified(Text1->toPlainText() != m_savedText);
    if (m_ws->grammar.GetFlag(GrammarFlag::Parsed) || m_ws->grammar.terminalCount > 0)
        ResetResults();
}

void frmMain::Clear()
{
    if (processing)
        return;
    ResetResults();
    ClearStatusLabels();
}

// ---- Files -----------------------------------------------------------------------------

void frmMain::SetCaption()
{
    // "[*]" shows as "*" while the editor holds changes not in the file.
    const QString name = m_ws->grammar.Name();
    setWindowTitle(kProduct + QStringLiteral(" \u2014 ") + (name.isEmpty() ? QStringLiteral("[New]") : name)
                   + QStringLiteral("[*]"));
    setWindowModified(m_modified);
}

void frmMain::SetModified(bool modified)
{
    m_modified = modified;
    setWindowModified(modified);
}

void frmMain::MarkSaved()
{
    m_savedText = Text1->toPlainText();
    SetModified(false);
}

QString frmMain::SaveQuestionText() const
{
    const QString name = m_ws->grammar.Name();
    return name.isEmpty() ? QStringLiteral("Save the new grammar?")
                          : QStringLiteral("Save the changes to ") + name + QLatin1Char('?');
}

bool frmMain::MaybeSave()
{
    if (!m_modified)
        return true;
    switch (saveQuestion(SaveQuestionText())) {
    case SaveAnswer::Save:
        return FileSave();
    case SaveAnswer::Discard:
        return true;
    case SaveAnswer::Cancel:
        break;
    }
    return false;
}

bool frmMain::OpenAfterAsking(const QString& path)
{
    if (processing || !MaybeSave())
        return false;
    return TKGOpen(path);
}

bool frmMain::TKGOpen(const QString& path)
{
    if (processing)
        return false;
    // The text, the grammar's path and what its companion file kept.
    QString text, error;
    if (!::TKGOpen(*m_ws, QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath()), text, error)) {
        m_host->critical(error);
        return false;
    }
    SetText1(text);
    MarkSaved();
    m_ws->settings.filePath = m_ws->grammar.Path();
    RememberRecent(m_ws->grammar.Path());
    SetCaption();
    ShowKeptResults();
    return true;
}

void frmMain::GrammarSave()
{
    // After a run the grammar is saved with its companion, which keeps the results
    // for the next opening. A grammar without a file is left for Save As: a dialog
    // after every run would be in the way.
    if (m_ws->grammar.Path().isEmpty())
        return;
    // Saving a large automaton takes seconds: the results it keeps are shown first.
    if (m_showing && !Text2->text().isEmpty()) {
        Picture1->ShowView(m_view, m_ws->settings.cellWidth);
        QCoreApplication::processEvents();
    }
    FileSave();
}

bool frmMain::FileSave()
{
    if (m_ws->grammar.Path().isEmpty())
        return FileSaveAs();
    // The companion file first, then the text; the failure is reported by the routine.
    if (!GrammarSaveAs(*m_ws, m_ws->grammar.Path(), Text1->CrLfText()))
        return false;
    m_ws->settings.filePath = m_ws->grammar.Path();
    MarkSaved();
    SetCaption();
    return true;
}

bool frmMain::FileSaveAs()
{
    KAVENSave dialog;
    dialog.Filter = {GrammarFilesFilter()};
    dialog.File = m_ws->grammar.Path();
    // A grammar with a file is saved again beside it; a new one where the last went.
    dialog.InitDir = NormaliseFolder(m_ws->grammar.Path().isEmpty() ? m_ws->settings.saveDir
                                                                     : QFileInfo(m_ws->grammar.Path()).absolutePath());
    dialog.DefaultExt = QStringLiteral("tkg");
    dialog.Owner = this;
    if (!dialog.GetFileName())
        return false;
    m_ws->settings.saveDir = dialog.InitDir;
    m_ws->grammar.SetPath(dialog.File);
    RememberRecent(dialog.File);
    return FileSave();
}

void frmMain::FileOpen()
{
    if (processing || !MaybeSave())
        return;
    KAVENOpen dialog;
    // Grammar files are the first choice.
    dialog.Filter = {GrammarFilesFilter(), TextFilesFilter()};
    dialog.File = m_ws->settings.filePath;
    dialog.InitDir = NormaliseFolder(m_ws->settings.initDir);
    dialog.DefaultExt = QStringLiteral("tkg");
    dialog.Owner = this;
    if (!dialog.GetFileName())
        return;
    m_ws->settings.initDir = dialog.InitDir;
    m_ws->settings.filePath = dialog.File;
    TKGOpen(dialog.File);
}

void frmMain::FileNew()
{
    // Like every command that gives up the editor's text, New asks first.
    if (processing || !MaybeSave())
        return;
    StartNewGrammar();
}

void frmMain::StartNewGrammar()
{
    m_ws->grammar = Grammar(m_host.get());
    m_ws->ResetResults();
    m_savedText.clear();
    SetText1(QString());
    SetCaption();
    SelectView(View::Grammar);
}

void frmMain::FileBack()
{
    const QString path = m_ws->settings.filePath;
    if (!path.isEmpty() && QFileInfo(path).isFile())
        OpenAfterAsking(path);
}

void frmMain::FileRename()
{
    Grammar& g = m_ws->grammar;
    if (g.Path().isEmpty()) {
        m_host->information(QStringLiteral("Save this grammar first."));
        return;
    }
    frmRename dialog(g.Name(), this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QFileInfo old(g.Path());
    const QString suffix = old.fileName().right(4);
    const QString target = QDir::toNativeSeparators(old.absolutePath() + QLatin1Char('/') + dialog.NewName() + suffix);
    if (QFileInfo::exists(target)) {
        m_host->critical(QStringLiteral("A file named ") + target + QStringLiteral(" exists already."));
        return;
    }
    if (m_modified)
        FileSave();
    if (!QFile::rename(g.Path(), target)) {
        m_host->critical(QStringLiteral("Cannot rename ") + g.Path() + QStringLiteral(" to ") + target
                         + QLatin1Char('.'));
        return;
    }
    // The companion file goes along.
    const QString oldCompanion = CompanionPath(g.Path());
    if (QFileInfo::exists(oldCompanion))
        QFile::rename(oldCompanion, CompanionPath(target));
    g.SetPath(target);
    m_ws->settings.filePath = target;
    RememberRecent(target);
    SetCaption();
}

void frmMain::RememberRecent(const QString& path)
{
    m_recent.removeAll(path);
    m_recent.prepend(path);
    while (m_recent.size() > kRecentCount)
        m_recent.removeLast();
    RefreshRecentMenu();
}

void frmMain::RefreshRecentMenu()
{
    m_recentMenu->clear();
    for (const QString& path : m_recent) {
        QAction* a = m_recentMenu->addAction(QFileInfo(path).fileName());
        a->setToolTip(path);
        connect(a, &QAction::triggered, this, [this, path] { OpenAfterAsking(path); });
    }
    recentButton->setEnabled(!m_recent.isEmpty());
}

void frmMain::dragEnterEvent(QDragEnterEvent* event)
{
    if (!DroppedGrammar(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void frmMain::dropEvent(QDropEvent* event)
{
    const QString path = DroppedGrammar(event->mimeData());
    if (path.isEmpty())
        return;
    event->acceptProposedAction();
    // The question comes after the drop has ended, so that the program the file
    // came from is not held up while the user answers it.
    QTimer::singleShot(0, this, [this, path] { OpenAfterAsking(path); });
}

bool frmMain::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop: {
        auto* drop = static_cast<QDropEvent*>(event);
        if (!drop->mimeData()->hasUrls())
            break;  // text dragged within or into the editor is the editor's business
        // A file is never typed into the editor as its address: a grammar file
        // opens, any other is refused.
        if (DroppedGrammar(drop->mimeData()).isEmpty()) {
            drop->ignore();
            return true;
        }
        if (event->type() == QEvent::Drop)
            dropEvent(drop);
        else
            drop->acceptProposedAction();
        return true;
    }
    default:
        break;
    }
    return QMainWindow::eventFilter(watched, event);
}

// ---- Transformations ---------------------------------------------------------------------

void frmMain::Transform(const QString& code)
{
    if (processing)
        return;
    // The result replaces the editor's text when it opens: the edits are saved
    // or given up first (a grammar without a file is refused for that below).
    if (!m_ws->grammar.Path().isEmpty() && !MaybeSave())
        return;
    ProcessStart();
    QString newText;
    const QString written = RunTransformation(*m_ws, code, Text1->CrLfText(), newText);
    ProcessStop();
    ClearStatusLabels();
    if (written.isEmpty())
        return;  // refused, stopped or not needed: the host has said why where there is a reason
    // The result is the new grammar: the window starts afresh on the file just written.
    StartNewGrammar();
    TKGOpen(written);
}

void frmMain::RenameSymbols()
{
    if (processing)
        return;
    if (!m_ws->grammar.Parsed() && !AnalyzeGrammar())
        return;
    frmReplace dialog(m_ws->grammar, this);
    // The renamed grammar's text replaces the editor's and is saved.
    connect(&dialog, &frmReplace::ResetText, this, [this](const QString&) { ResetText(); });
    dialog.exec();
    ShowKeptResults();
}

// ---- Other commands ---------------------------------------------------------------------

void frmMain::Export()
{
    if (!processing)
        ExportView(*m_ws, *this, m_view);
}

void frmMain::ExportStandalone()
{
    if (processing)
        return;
    const QString grammarPath = m_ws->grammar.Path();
    KAVENSave dialog;
    dialog.Filter = {CFilesFilter(), AllFilesFilter()};
    dialog.InitDir = NormaliseFolder(grammarPath.isEmpty() ? m_ws->settings.saveDir
                                                           : QFileInfo(grammarPath).absolutePath());
    dialog.File = QDir(dialog.InitDir).filePath(StandaloneFileName(*m_ws, m_view));
    dialog.DefaultExt = QStringLiteral("c");
    dialog.Owner = this;
    if (dialog.GetFileName())
        ExportStandaloneFile(*m_ws, *this, m_view, dialog.File);
}

void frmMain::Overview()
{
    if (processing)
        return;
    // The methods not analysed yet run as Analyse runs them, each saving its
    // results, without building listings nobody reads.
    m_stopAsked = false;
    m_quietRuns = true;
    for (const ViewInfo& info : Views()) {
        if (!info.IsAnalyser() || IsAnalysed(*m_ws, info.number))
            continue;
        ::Analyse(*m_ws, *this, info.number);
        if (m_stopAsked || !m_ws->grammar.Parsed())
            break;
    }
    m_quietRuns = false;
    ShowKeptResults();
    ShowParseErrorPlace();
    if (m_stopAsked || !m_ws->grammar.Parsed())
        return;

    QDialog dialog(this);
    dialog.setObjectName(QStringLiteral("frmOverview"));
    dialog.setWindowTitle(QStringLiteral("Overview of the methods"));
    auto* text = new QPlainTextEdit(OverviewText(*m_ws).trimmed());
    text->setObjectName(QStringLiteral("overviewText"));
    text->setReadOnly(true);
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    QFont mono(QStringLiteral("Courier New"));
    mono.setStyleHint(QFont::Monospace);
    mono.setPointSize(10);
    text->setFont(mono);
    const QFontMetrics metrics(mono);
    text->setMinimumSize(metrics.horizontalAdvance(QString(100, QLatin1Char('M'))) + 24, metrics.lineSpacing() * 7 + 16);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(text);
    layout->addWidget(buttons);
    dialog.exec();
}

void frmMain::Statistics()
{
    frmStat dialog(m_ws->grammar, this);
    dialog.exec();
}

void frmMain::Options()
{
    frmSetts dialog(m_ws->settings, this);
    dialog.exec();
}

void frmMain::About()
{
    frmAbout dialog(this);
    dialog.exec();
}

void frmMain::Help()
{
    const QString chm = ProgramFolder() + QStringLiteral("TRELK.chm");
    if (QFileInfo::exists(chm) && urlOpener(QUrl::fromLocalFile(chm)))
        return;
    // Without the help file, the manual that ships with the program.
    for (const QString& manual : {ProgramFolder() + QStringLiteral("docs/manual.html"),
                                  QStringLiteral(TRELK_DOCS_DIR "/manual.html")}) {
        if (QFileInfo::exists(manual)) {
            if (!urlOpener(QUrl::fromLocalFile(manual)))
                m_host->critical(QStringLiteral("Cannot show the manual ") + QDir::toNativeSeparators(manual)
                                 + QStringLiteral(": no program to open it was found."));
            return;
        }
    }
    m_host->critical(QStringLiteral("The manual is missing: neither TRELK.chm nor docs/manual.html is beside the program."));
}

void frmMain::closeEvent(QCloseEvent* event)
{
    if (processing) {
        Stop();
        event->ignore();
        return;
    }
    // Changes not in the file are saved or given up as the user says; Cancel keeps the window open.
    if (!MaybeSave()) {
        event->ignore();
        return;
    }
    WriteSettingsAtClose();
    event->accept();
}

void frmMain::WriteSettingsAtClose()
{
    if (m_ini.File().isEmpty())
        return;
    Settings& s = m_ws->settings;
    s.left = static_cast<float>(pos().x());
    s.top = static_cast<float>(pos().y());
    WriteSettings(m_ini, s, m_ws->grammar.Path());
    for (int i = 1; i <= kRecentCount; ++i)
        m_ini.SaveSetting(kProduct, kRecentSection, QStringLiteral("File%1").arg(i), m_recent.value(i - 1));
}
