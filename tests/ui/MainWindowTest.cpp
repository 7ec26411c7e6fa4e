// The main window driven through its menu actions, offscreen.
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"
#include "ui/FileDialogs.h"
#include "ui/GrammarEditor.h"
#include "ui/Startup.h"
#include "ui/TableGrid.h"
#include "ui/frmMain.h"
#include "ui/frmRename.h"
#include "ui/frmReplace.h"
#include "session/OpenSave.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>
#include <functional>
#include <gtest/gtest.h>

namespace {

const QString kLL = Lines({"<E>", "<E>=<T><R>", "<R>=[+]<T><R>", "<R>=", "<T>=[a]"});
const QString kExpr = Lines({"<E>", "<E>=<E>[+]<T>", "<E>=<T>", "<T>=<T>[*]<F>", "<T>=<F>", "<F>=[(]<E>[)]", "<F>=[a]"});

struct Window {
    RecordingHost host;
    std::unique_ptr<frmMain> w;
    explicit Window(const QString& settingsFile = QString())
    {
        w = std::make_unique<frmMain>(&host, settingsFile);
        w->show();
    }
    QString Output() const { return w->Text2->toPlainText(); }
};

QString Lf(const QString& text)
{
    return QString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
}

/// Runs act on the modal dialog of type D as soon as it is shown (a run before it
/// may turn the event loop, so a single zero-time shot could fire too early).
template <typename D>
void WhenShown(std::function<void(D*)> act)
{
    auto* timer = new QTimer;
    QObject::connect(timer, &QTimer::timeout, [timer, act] {
        if (auto* dialog = qobject_cast<D*>(QApplication::activeModalWidget())) {
            timer->stop();
            timer->deleteLater();
            act(dialog);
        }
    });
    timer->start(5);
}

TEST(MainWindow, AnalyseRunsTheSelectedViewAndFillsTheGrid)
{
    Window win;
    win.w->SetText1(kLL);
    win.w->SelectView(6);
    win.w->mnuAnalyse->trigger();
    Workspace& ws = win.w->workspace();
    EXPECT_EQ(win.Output(), Lf(ws.ll.text));
    EXPECT_TRUE(win.Output().startsWith(QStringLiteral("SYNTA[")));
    EXPECT_EQ(win.w->Picture1->Model().rowCount(), ws.grammar.lastCode + 1);
    EXPECT_EQ(win.w->Picture1->Model().columnCount(), ws.grammar.terminalCount + 1);
    EXPECT_NE(win.w->sElapsed->text(), QStringLiteral("Time"));
    EXPECT_FALSE(win.w->mnuStop->isEnabled());
    EXPECT_FALSE(win.w->Processing());
    for (QToolButton* b : win.w->Image1)
        EXPECT_FALSE(b->icon().isNull());

    // An LR view: actions in the grid, readable at a glance.
    win.w->SelectView(8);
    win.w->mnuAnalyse->trigger();
    TableModel& model = win.w->Picture1->Model();
    EXPECT_EQ(model.rowCount(), ws.lalr.States());
    bool accept = false;
    for (int r = 0; r < model.rowCount(); ++r)
        accept |= model.CellText(r, 0) == QStringLiteral("acc");
    EXPECT_TRUE(accept);
    const auto [code, target] = ws.lalr.rows[0].front();  // state 0 shifts [a] first
    EXPECT_EQ(model.CellText(0, code), QStringLiteral("s") + QString::number(target));
    EXPECT_EQ(model.headerData(code, Qt::Horizontal, Qt::DisplayRole).toString(), QStringLiteral("[a]"));
}

TEST(MainWindow, AnalyseDoesNothingWhileARunIsInProgress)
{
    Window win;
    win.w->SetText1(kLL);
    win.w->SelectView(6);
    win.w->ProcessStart();
    EXPECT_TRUE(win.w->mnuStop->isEnabled());
    win.w->mnuAnalyse->trigger();
    EXPECT_FALSE(win.w->workspace().grammar.Parsed());
    win.w->ProcessStop();
    EXPECT_FALSE(win.w->mnuStop->isEnabled());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST(MainWindow, StopEndsALongRun)
{
    Window win;
    win.w->SetText1(ReadGrammarText(CorpusDir() + QStringLiteral("/scaling/stmts_n300.tkg")));
    win.w->SelectView(0);
    win.w->mnuAnalyse->trigger();
    ASSERT_TRUE(win.w->workspace().grammar.Parsed());
    win.w->SelectView(9);
    // Stop is chosen from the menu at the run's second turn of the message loop.
    win.host.yields = 0;
    win.host.stopAfter = 2;
    win.host.stop = [&] {
        EXPECT_TRUE(win.w->mnuStop->isEnabled());
        win.w->mnuStop->trigger();
    };
    win.w->mnuAnalyse->trigger();
    EXPECT_EQ(win.Output(), QString());
    EXPECT_FALSE(win.w->mnuStop->isEnabled());
    EXPECT_FALSE(win.w->workspace().grammar.GetFlag(GrammarFlag::AnalysedLR));
    EXPECT_EQ(win.w->Picture1->Model().rowCount(), 0);
}

TEST(MainWindow, ItemsButtonShowsTheItemSets)
{
    Window win;
    win.w->SetText1(kExpr);
    win.w->SelectView(8);
    win.w->itemsButton->setChecked(true);
    win.w->mnuAnalyse->trigger();
    EXPECT_TRUE(win.Output().startsWith(QStringLiteral("State 0\n    <'> = \u2022 <E>\n"))) << win.Output().toStdString();
    win.w->itemsButton->setChecked(false);
    EXPECT_TRUE(win.Output().startsWith(QStringLiteral("State 0\n    [(]")));
    EXPECT_EQ(win.Output(), Lf(win.w->workspace().lalr.tableText));
}

TEST(MainWindow, ReselectingAViewShowsItsKeptResults)
{
    Window win;
    win.w->SetText1(kExpr);
    win.w->SelectView(7);
    win.w->mnuAnalyse->trigger();
    const QString slr = win.Output();
    const QString elapsed = win.w->sElapsed->text();
    ASSERT_TRUE(slr.startsWith(QStringLiteral("State 0")));
    const auto statuses = win.host.statuses.size();
    win.w->SelectView(2);
    EXPECT_TRUE(win.Output().startsWith(QStringLiteral("FIRST(")));
    win.w->SelectView(7);
    EXPECT_EQ(win.Output(), slr);
    EXPECT_EQ(win.w->sElapsed->text(), elapsed);
    EXPECT_EQ(win.host.statuses.size(), statuses);  // nothing ran again
}

TEST(MainWindow, EditingTheGrammarResetsEveryResult)
{
    Window win;
    win.w->SetText1(kLL);
    win.w->SelectView(6);
    win.w->mnuAnalyse->trigger();
    Workspace& ws = win.w->workspace();
    ASSERT_TRUE(ws.grammar.GetFlag(GrammarFlag::AnalysedLL));
    win.w->Text1->moveCursor(QTextCursor::End);
    win.w->Text1->insertPlainText(QStringLiteral("\n<T>=[b]"));
    EXPECT_TRUE(win.w->Modified());
    EXPECT_FALSE(ws.grammar.Parsed());
    EXPECT_FALSE(ws.grammar.GetFlag(GrammarFlag::AnalysedLL));
    EXPECT_EQ(ws.ll.text, NotAnalyzed);
    EXPECT_EQ(win.Output(), NotAnalyzed);
    win.w->mnuAnalyse->trigger();
    EXPECT_TRUE(ws.grammar.GetFlag(GrammarFlag::AnalysedLL));
    EXPECT_EQ(ws.grammar.terminalCount, 3);
}

TEST(MainWindow, ANotationErrorPutsTheCursorAtItsPlace)
{
    Window win;
    win.w->SetText1(QStringLiteral("<E>\n\n<E> = [a] x"));
    win.w->SelectView(0);
    win.w->mnuAnalyse->trigger();
    EXPECT_EQ(win.host.criticals, QStringList{QStringLiteral("Extra character \"x\" in [2,8].")});
    const QTextCursor cursor = win.w->Text1->textCursor();
    EXPECT_EQ(cursor.blockNumber(), 2);
    EXPECT_EQ(cursor.positionInBlock(), 10);  // the "x" after the blanks
}

TEST(MainWindow, FileCommandsOnAFolder)
{
    const QString dir = ScratchDir(QStringLiteral("ui-files"));
    Window win;
    win.w->SetText1(kLL);
    const QString path = dir + QStringLiteral("/sum.tkg");
    KAVENDialog::SetScriptedAnswer([&](const KAVENDialog& d) {
        EXPECT_EQ(d.Title, QStringLiteral("Save File As"));
        EXPECT_EQ(d.Filter, QStringList{GrammarFilesFilter()});
        return path;
    });
    win.w->mnuFileSaveAs->trigger();
    EXPECT_EQ(FileBytes(path), (kLL + QStringLiteral("\r\n")).toUtf8());
    EXPECT_EQ(win.w->windowTitle(), QStringLiteral("2016 KAVEN TRELK \u2014 sum"));
    EXPECT_FALSE(win.w->Modified());

    // Back gives up the edits.
    win.w->Text1->appendPlainText(QStringLiteral("<T>=[b]"));
    win.w->mnuFileBack->trigger();
    EXPECT_EQ(win.w->GrammarText(), kLL + QStringLiteral("\r\n"));
    EXPECT_FALSE(win.w->Modified());

    // New, then Open: the grammar files are the first filter.
    win.w->mnuFileNew->trigger();
    EXPECT_EQ(win.w->windowTitle(), QStringLiteral("2016 KAVEN TRELK \u2014 [New]"));
    EXPECT_EQ(win.w->GrammarText(), QString());
    KAVENDialog::SetScriptedAnswer([&](const KAVENDialog& d) {
        EXPECT_EQ(d.Title, QStringLiteral("Open File"));
        EXPECT_EQ(d.Filter, (QStringList{GrammarFilesFilter(), TextFilesFilter()}));
        return path;
    });
    win.w->mnuFileOpen->trigger();
    EXPECT_EQ(win.w->GrammarText(), kLL + QStringLiteral("\r\n"));
    EXPECT_EQ(win.w->RecentFiles().value(0), path);

    // Cancel changes nothing.
    KAVENDialog::SetScriptedAnswer([](const KAVENDialog&) { return QString(); });
    win.w->mnuFileOpen->trigger();
    EXPECT_EQ(win.w->windowTitle(), QStringLiteral("2016 KAVEN TRELK \u2014 sum"));

    // Rename: the dialog answers Enter with the new name.
    WhenShown<frmRename>([](frmRename* dialog) {
        dialog->Text1->setText(QStringLiteral("total"));
        dialog->cmdRename->click();
    });
    win.w->mnuFileRename->trigger();
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_TRUE(QFile::exists(dir + QStringLiteral("/total.tkg")));
    EXPECT_EQ(win.w->windowTitle(), QStringLiteral("2016 KAVEN TRELK \u2014 total"));
    KAVENDialog::SetScriptedAnswer({});
}

TEST(MainWindow, ExportWritesTheSelectedView)
{
    // What the file holds is a golden case (export-ll-classic).
    const QString dir = ScratchDir(QStringLiteral("ui-export"));
    Window win;
    win.w->SetText1(kLL);
    KAVENDialog::SetScriptedAnswer([&](const KAVENDialog&) { return dir + QStringLiteral("/g.tkg"); });
    win.w->mnuFileSaveAs->trigger();
    KAVENDialog::SetScriptedAnswer({});
    win.w->SelectView(6);
    win.w->mnuExport->trigger();
    EXPECT_EQ(win.host.informations, QStringList{QStringLiteral("This method is not analysed yet.")});
    win.w->mnuAnalyse->trigger();
    win.w->mnuExport->trigger();
    const QString file = dir + QStringLiteral("/g-6-LL-table.txt");
    EXPECT_EQ(win.host.informations.last(), QStringLiteral("Files saved:\r\n") + file + QStringLiteral(".\r\n"));
    EXPECT_TRUE(FileBytes(file).contains("/* Syntax Table SYNTA (LL-analysis) */"));
}

TEST(MainWindow, TransformMenuWritesAndOpensTheResult)
{
    const QString dir = ScratchDir(QStringLiteral("ui-transform"));
    Window win;
    win.w->SetText1(kExpr);
    win.w->mnuActLeftRecursion->trigger();
    EXPECT_EQ(win.host.informations, QStringList{QStringLiteral("Save Grammar first.")});
    KAVENDialog::SetScriptedAnswer([&](const KAVENDialog&) { return dir + QStringLiteral("/expr.tkg"); });
    win.w->mnuFileSaveAs->trigger();
    KAVENDialog::SetScriptedAnswer({});
    win.w->mnuActLeftRecursion->trigger();
    EXPECT_TRUE(QFile::exists(dir + QStringLiteral("/expr-LR.tkg")));
    EXPECT_EQ(win.w->windowTitle(), QStringLiteral("2016 KAVEN TRELK \u2014 expr-LR"));
    // The new grammar is open: LL(1) no longer refuses it for left recursion.
    win.w->SelectView(6);
    win.w->mnuAnalyse->trigger();
    EXPECT_FALSE(win.w->workspace().grammar.GetFlag(GrammarFlag::LeftRecursive));
    EXPECT_TRUE(win.w->workspace().grammar.GetFlag(GrammarFlag::AnalysedLL));
    win.w->mnuActLeftFactoring->trigger();
    EXPECT_TRUE(QFile::exists(dir + QStringLiteral("/expr-LR-LF.tkg")));
    EXPECT_FALSE(win.w->Processing());
}

TEST(MainWindow, RenameSymbolsRewritesAndSavesTheGrammar)
{
    const QString dir = ScratchDir(QStringLiteral("ui-replace"));
    Window win;
    win.w->SetText1(kLL);
    KAVENDialog::SetScriptedAnswer([&](const KAVENDialog&) { return dir + QStringLiteral("/r.tkg"); });
    win.w->mnuFileSaveAs->trigger();
    KAVENDialog::SetScriptedAnswer({});
    WhenShown<frmReplace>([](frmReplace* dialog) {
        dialog->List1->setCurrentRow(1);  // code 2: the terminal "a"
        dialog->Text1->setText(QStringLiteral("id"));
        dialog->cmdReplace->click();
        dialog->cmdClose->click();
    });
    win.w->mnuActReplace->trigger();
    EXPECT_TRUE(win.w->GrammarText().contains(QStringLiteral("<T>=[id]")));
    EXPECT_TRUE(FileBytes(dir + QStringLiteral("/r.tkg")).contains("<T>=[id]"));
    EXPECT_FALSE(win.w->Modified());
}

TEST(MainWindow, HelpOpensTheManual)
{
    Window win;
    QUrl opened;
    win.w->urlOpener = [&](const QUrl& url) { opened = url; };
    win.w->mnuHelp->trigger();
    ASSERT_TRUE(opened.isLocalFile());
    EXPECT_TRUE(opened.toLocalFile().endsWith(QStringLiteral("manual.html")));
    EXPECT_TRUE(QFile::exists(opened.toLocalFile()));
}

TEST(MainWindow, SettingsAreReadAtStartAndWrittenAtClose)
{
    const QString dir = ScratchDir(QStringLiteral("ui-settings"));
    const QString ini = dir + QStringLiteral("/TRELK.ini");
    ASSERT_TRUE(WriteFileBytes(ini, "; kept\r\n[Main]\r\nCellWidth=1\r\nTokenType=short\r\nMaxCycle=77\r\n"));
    RecordingHost host;
    StartupOptions options;
    options.settingsFile = ini;
    options.messages = &host;
    int status = 0;
    frmMain* window = Main(options, status);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->workspace().settings.cellWidth, 3);
    EXPECT_EQ(window->workspace().settings.maxCycle, 77);
    EXPECT_EQ(window->workspace().settings.tokenType, QStringLiteral("short"));
    window->workspace().settings.generateRules = 0;  // as the Options dialog would
    window->close();
    delete window;
    const QString written = QString::fromUtf8(FileBytes(ini));
    EXPECT_TRUE(written.startsWith(QStringLiteral("; kept\r\n[Main]\r\nCellWidth=3\r\nTokenType=short\r\nMaxCycle=77\r\n")))
        << written.toStdString();
    EXPECT_TRUE(written.contains(QStringLiteral("GenerateRules=0\r\n")));
    EXPECT_TRUE(written.contains(QStringLiteral("Left=")));
    EXPECT_TRUE(host.criticals.isEmpty());

    // The recent files come back at the next start.
    const QString grammar = dir + QStringLiteral("/g.tkg");
    ASSERT_TRUE(WriteFileBytes(grammar, "<S>\r\n<S>=[a]\r\n"));
    frmMain* second = Main(options, status);
    ASSERT_NE(second, nullptr);
    ASSERT_TRUE(second->TKGOpen(grammar));
    second->close();
    delete second;
    options.commandLine.clear();
    frmMain* third = Main(options, status);
    ASSERT_NE(third, nullptr);
    EXPECT_EQ(third->RecentFiles().value(0), QDir::toNativeSeparators(grammar));
    EXPECT_EQ(third->workspace().grammar.Path(), QDir::toNativeSeparators(grammar));  // "FilePath" reopened
    third->close();
    delete third;

    // A non-numeric setting ends start-up with a message naming the key, nothing written.
    ASSERT_TRUE(WriteFileBytes(ini, "[Main]\r\nMaxCycle=lots\r\n"));
    EXPECT_EQ(Main(options, status), nullptr);
    EXPECT_EQ(status, 1);
    ASSERT_EQ(host.criticals.size(), 1);
    EXPECT_TRUE(host.criticals[0].contains(QStringLiteral("MaxCycle")));
    EXPECT_TRUE(host.criticals[0].contains(QStringLiteral("lots")));
    EXPECT_EQ(FileBytes(ini), QByteArray("[Main]\r\nMaxCycle=lots\r\n"));
}

} // namespace
