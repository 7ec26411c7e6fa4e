/// \file
/// The main window.
#include "ui/frmMain.h"
#include "grammar/Texts.h"

#include "session/Export.h"
#include "storage/Folders.h"
#include "storage/GrammarFile.h"
#include "storage/SettingsFile.h"
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
#include "session/TransformCommand.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCloseEvent>
#include <QCoreApplication>
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
#include <QToolButton>

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
                labels[i]->setText(m_pending[i]);
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
    urlOpener = [](const QUrl& url) { QDesktopServices::openUrl(url); };

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

    auto* bar = new QToolBar(QStringLiteral("Views"));
    bar->setObjectName(QStringLiteral("ViewBar"));
    bar->setMovable(false);
    bar->setIconSize(QSize(40, 28));
    BuildViewSelector(bar);
    addToolBar(Qt::TopToolBarArea, bar);

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
    // The grid's model reads the workspace: let it go first.
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
    mnuSettings = action("mnuSettings", QStringLiteral("&Настройки"), &frmMain::Options);
    mnuHelp = action("mnuHelp", QStringLiteral("&Справка"), &frmMain::Help, QKeySequence::HelpContents);
    mnuAbout = action("mnuAbout", QStringLiteral("&О..."), &frmMain::About);
    for (QAction* a : {mnuClear, mnuExport, mnuStat, mnuSettings, mnuHelp, mnuAbout})
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
    // Clicks and keys that came while the results were being built reach the
    // disabled commands now and are dropped, instead of running afterwards.
    QCoreApplication::processEvents();
    m_showing = false;
    ReleaseCommands();
}

void frmMain::Stop()
{
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
    ShowKeptResults();
}

void frmMain::ShowKeptResults()
{
    Grammar& g = m_ws->grammar;
    const ViewInfo& info = ViewOf(m_view);
    if (info.family == ViewFamily::Rules) {
        SetText2(g.GetFlag(GrammarFlag::Parsed) ? g.CommentedRules() : QString());
    } else if (!info.IsAnalyser()) {
        SetText2(ViewReport(*m_ws, m_view));
    } else {
        if (info.HasItems() && itemsButton->isChecked())
            SetText2(ItemListing(*m_ws, m_view));
        else
            SetText2(MakeAnalyser(*m_ws, m_view)->ExportDisplay());
        if (const SavedStatus* saved = SavedStatusOf(*m_ws, m_view)) {
            sState->setText(saved->state.isEmpty() ? QStringLiteral("State:") : saved->state);
            sPass->setText(saved->pass.isEmpty() ? QStringLiteral("Pass:") : saved->pass);
            sElapsed->setText(saved->elapsed.isEmpty() ? QStringLiteral("Time") : saved->elapsed);
        }
    }
    Picture1->ShowView(m_view, m_ws->settings.cellWidth);
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
    m_modified = true;
    FileSave();
    SetCaption();
}

void frmMain::OnGrammarEdited()
{
    if (m_loading)
        return;
    // Editing invalidates the previous parse and every result drawn from it.
    m_modified = true;
    if (m_ws->grammar.GetFlag(GrammarFlag::Parsed) || m_ws->grammar.terminalCount > 0)
        ResetResults();
}

void frmMain::Clear()
{
    if (processing)
        return;
    ResetResults();
}

// ---- Files -----------------------------------------------------------------------------

void frmMain::SetCaption()
{
    const QString name = m_ws->grammar.Name();
    setWindowTitle(kProduct + QStringLiteral(" \u2014 ") + (name.isEmpty() ? QStringLiteral("[New]") : name));
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
    m_ws->settings.filePath = m_ws->grammar.Path();
    m_modified = false;
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
    m_modified = false;
    SetCaption();
    return true;
}

bool frmMain::FileSaveAs()
{
    KAVENSave dialog;
    dialog.Filter = {GrammarFilesFilter()};
    dialog.File = m_ws->grammar.Path();
    dialog.InitDir = NormaliseFolder(m_ws->settings.saveDir);
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
    if (processing)
        return;
    // A new, empty grammar: the previous text is given up without asking, as File New always has.
    m_ws->grammar = Grammar(m_host.get());
    m_ws->ResetResults();
    SetText1(QString());
    m_modified = false;
    SetCaption();
    SelectView(View::Grammar);
}

void frmMain::FileBack()
{
    const QString path = m_ws->settings.filePath;
    if (!path.isEmpty() && QFileInfo(path).isFile())
        TKGOpen(path);
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
        connect(a, &QAction::triggered, this, [this, path] { TKGOpen(path); });
    }
    recentButton->setEnabled(!m_recent.isEmpty());
}

void frmMain::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void frmMain::dropEvent(QDropEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (!urls.isEmpty() && urls.first().isLocalFile())
        TKGOpen(urls.first().toLocalFile());
}

// ---- Transformations ---------------------------------------------------------------------

void frmMain::Transform(const QString& code)
{
    if (processing)
        return;
    ProcessStart();
    QString newText;
    const QString written = RunTransformation(*m_ws, code, Text1->CrLfText(), newText);
    ProcessStop();
    if (written.isEmpty())
        return;  // refused, stopped or not needed: the host has said why where there is a reason
    // The result is the new grammar: the window starts afresh on the file just written.
    FileNew();
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
    if (QFileInfo::exists(chm)) {
        urlOpener(QUrl::fromLocalFile(chm));
        return;
    }
    // Without the help file, the manual that ships with the program.
    for (const QString& manual : {ProgramFolder() + QStringLiteral("docs/manual.html"),
                                  QStringLiteral(TRELK_DOCS_DIR "/manual.html")}) {
        if (QFileInfo::exists(manual)) {
            urlOpener(QUrl::fromLocalFile(manual));
            return;
        }
    }
}

void frmMain::closeEvent(QCloseEvent* event)
{
    if (processing) {
        Stop();
        event->ignore();
        return;
    }
    // Unsaved changes to a grammar with a file are saved without asking.
    if (m_modified && !m_ws->grammar.Path().isEmpty())
        FileSave();
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
