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

QString Lf(const QString& text)
{
    return QString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
}

QString Title(const char* name)
{
    return QStringLiteral("2016 KAVEN TRELK \u2014 ") + QString::fromUtf8(name);
}

/// A shown main window holding text; the file dialog, when asked, answers path.
struct Window {
    RecordingHost host;
    std::unique_ptr<frmMain> w;
    explicit Window(const QString& text)
        : w(std::make_unique<frmMain>(&host, QString()))
    {
        w->show();
        w->SetText1(text);
    }
    ~Window() { KAVENDialog::SetScriptedAnswer({}); }
    QString Output() const { return w->Text2->toPlainText(); }
    Workspace& ws() { return w->workspace(); }
    void Analyse(int view)
    {
        w->SelectView(view);
        w->mnuAnalyse->trigger();
    }
    void SaveAs(const QString& path)
    {
        KAVENDialog::SetScriptedAnswer([path](const KAVENDialog&) { return path; });
        w->mnuFileSaveAs->trigger();
    }
};

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

TEST(MainWindow, AnalyseFillsOutputAndGridAndIgnoresARunInProgress)
{
    Window win(kLL);
    win.w->ProcessStart();
    win.Analyse(6);
    EXPECT_FALSE(win.ws().grammar.Parsed());
    win.w->ProcessStop();
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);

    win.Analyse(6);
    EXPECT_EQ(win.Output(), Lf(win.ws().ll.text));
    EXPECT_EQ(win.w->Picture1->Model().rowCount(), win.ws().grammar.lastCode + 1);
    EXPECT_EQ(win.w->Picture1->Model().columnCount(), win.ws().grammar.terminalCount + 1);
    EXPECT_NE(win.w->sElapsed->text(), QStringLiteral("Time"));
    EXPECT_FALSE(win.w->mnuStop->isEnabled());
    EXPECT_FALSE(win.w->Processing());
    for (QToolButton* b : win.w->Image1)
        EXPECT_FALSE(b->icon().isNull());

    // An LR view: actions in the grid, readable at a glance.
    win.Analyse(8);
    TableModel& model = win.w->Picture1->Model();
    EXPECT_EQ(model.rowCount(), win.ws().lalr.States());
    bool accept = false;
    for (int r = 0; r < model.rowCount(); ++r)
        accept |= model.CellText(r, 0) == QStringLiteral("acc");
    EXPECT_TRUE(accept);
    const auto [code, target] = win.ws().lalr.rows[0].front();  // state 0 shifts [a] first
    EXPECT_EQ(model.CellText(0, code), QStringLiteral("s") + QString::number(target));
    EXPECT_EQ(model.headerData(code, Qt::Horizontal, Qt::DisplayRole).toString(), QStringLiteral("[a]"));
}

TEST(MainWindow, StopEndsALongRun)
{
    Window win(ReadGrammarText(CorpusDir() + QStringLiteral("/scaling/stmts_n300.tkg")));
    win.Analyse(0);
    ASSERT_TRUE(win.ws().grammar.Parsed());
    // Stop is chosen from the menu at the run's second turn of the message loop.
    win.host.yields = 0;
    win.host.stopAfter = 2;
    win.host.stop = [&] {
        EXPECT_TRUE(win.w->mnuStop->isEnabled());
        win.w->mnuStop->trigger();
    };
    win.Analyse(9);
    EXPECT_EQ(win.Output(), QString());
    EXPECT_FALSE(win.w->mnuStop->isEnabled());
    EXPECT_FALSE(win.ws().grammar.GetFlag(GrammarFlag::AnalysedLR));
    EXPECT_EQ(win.w->Picture1->Model().rowCount(), 0);
}

TEST(MainWindow, ItemsButtonAndReselectedViewsShowKeptResults)
{
    Window win(kExpr);
    win.w->itemsButton->setChecked(true);
    win.Analyse(8);
    EXPECT_TRUE(win.Output().startsWith(QStringLiteral("State 0\n    <'> = \u2022 <E>\n"))) << win.Output().toStdString();
    win.w->itemsButton->setChecked(false);
    EXPECT_EQ(win.Output(), Lf(win.ws().lalr.tableText));

    const QString elapsed = win.w->sElapsed->text();
    const auto statuses = win.host.statuses.size();
    win.w->SelectView(2);
    EXPECT_TRUE(win.Output().startsWith(QStringLiteral("FIRST(")));
    win.w->SelectView(8);
    EXPECT_EQ(win.Output(), Lf(win.ws().lalr.tableText));
    EXPECT_EQ(win.w->sElapsed->text(), elapsed);
    EXPECT_EQ(win.host.statuses.size(), statuses);  // nothing ran again
}

TEST(MainWindow, EditingTheGrammarResetsEveryResult)
{
    Window win(kLL);
    win.Analyse(6);
    ASSERT_TRUE(win.ws().grammar.GetFlag(GrammarFlag::AnalysedLL));
    win.w->Text1->moveCursor(QTextCursor::End);
    win.w->Text1->insertPlainText(QStringLiteral("\n<T>=[b]"));
    EXPECT_TRUE(win.w->Modified());
    EXPECT_FALSE(win.ws().grammar.Parsed());
    EXPECT_EQ(win.ws().ll.text, NotAnalyzed);
    EXPECT_EQ(win.Output(), NotAnalyzed);
    win.w->mnuAnalyse->trigger();
    EXPECT_EQ(win.ws().grammar.terminalCount, 3);
}

TEST(MainWindow, ANotationErrorPutsTheCursorAtItsPlace)
{
    Window win(QStringLiteral("<E>\n\n<E> = [a] x"));
    win.Analyse(0);
    EXPECT_EQ(win.host.criticals, QStringList{QStringLiteral("Extra character \"x\" in [2,8].")});
    const QTextCursor cursor = win.w->Text1->textCursor();
    EXPECT_EQ(cursor.blockNumber(), 2);
    EXPECT_EQ(cursor.positionInBlock(), 10);  // the "x" after the blanks
}

TEST(MainWindow, FileCommandsOnAFolder)
{
    const QString dir = ScratchDir(QStringLiteral("ui-files"));
    const QString path = dir + QStringLiteral("/sum.tkg");
    Window win(kLL);
    KAVENDialog::SetScriptedAnswer([&](const KAVENDialog& d) {
        EXPECT_EQ(d.Title, QStringLiteral("Save File As"));
        EXPECT_EQ(d.Filter, QStringList{GrammarFilesFilter()});
        return path;
    });
    win.w->mnuFileSaveAs->trigger();
    EXPECT_EQ(FileBytes(path), (kLL + QStringLiteral("\r\n")).toUtf8());
    EXPECT_EQ(win.w->windowTitle(), Title("sum"));
    EXPECT_FALSE(win.w->Modified());

    // Back gives up the edits.
    win.w->Text1->appendPlainText(QStringLiteral("<T>=[b]"));
    win.w->mnuFileBack->trigger();
    EXPECT_EQ(win.w->GrammarText(), kLL + QStringLiteral("\r\n"));
    EXPECT_FALSE(win.w->Modified());

    // New, then Open: the grammar files are the first filter; Cancel changes nothing.
    win.w->mnuFileNew->trigger();
    EXPECT_EQ(win.w->windowTitle(), Title("[New]"));
    EXPECT_EQ(win.w->GrammarText(), QString());
    KAVENDialog::SetScriptedAnswer([&](const KAVENDialog& d) {
        EXPECT_EQ(d.Title, QStringLiteral("Open File"));
        EXPECT_EQ(d.Filter, (QStringList{GrammarFilesFilter(), TextFilesFilter()}));
        return path;
    });
    win.w->mnuFileOpen->trigger();
    EXPECT_EQ(win.w->GrammarText(), kLL + QStringLiteral("\r\n"));
    EXPECT_EQ(win.w->RecentFiles().value(0), path);
    KAVENDialog::SetScriptedAnswer([](const KAVENDialog&) { return QString(); });
    win.w->mnuFileOpen->trigger();
    EXPECT_EQ(win.w->windowTitle(), Title("sum"));

    // Rename: the dialog answers Enter with the new name.
    WhenShown<frmRename>([](frmRename* dialog) {
        dialog->Text1->setText(QStringLiteral("total"));
        dialog->cmdRename->click();
    });
    win.w->mnuFileRename->trigger();
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_TRUE(QFile::exists(dir + QStringLiteral("/total.tkg")));
    EXPECT_EQ(win.w->windowTitle(), Title("total"));
}

TEST(MainWindow, ExportWritesTheSelectedView)
{
    // What the file holds is a golden case (export-ll-classic).
    const QString dir = ScratchDir(QStringLiteral("ui-export"));
    Window win(kLL);
    win.SaveAs(dir + QStringLiteral("/g.tkg"));
    win.w->SelectView(6);
    win.w->mnuExport->trigger();
    EXPECT_EQ(win.host.informations, QStringList{QStringLiteral("This method is not analysed yet.")});
    win.w->mnuAnalyse->trigger();
    win.w->mnuExport->trigger();
    const QString file = dir + QStringLiteral("/g-6-LL-table.txt");
    EXPECT_EQ(win.host.informations.last(), QStringLiteral("Files saved:\r\n") + file + QStringLiteral(".\r\n"));
    EXPECT_TRUE(FileBytes(file).contains("/* Syntax Table SYNTA (LL-analysis) */"));
}

TEST(MainWindow, TransformAndRenameMenusWriteAndOpenTheResult)
{
    const QString dir = ScratchDir(QStringLiteral("ui-transform"));
    Window win(kExpr);
    win.w->mnuActLeftRecursion->trigger();
    EXPECT_EQ(win.host.informations, QStringList{QStringLiteral("Save Grammar first.")});
    win.SaveAs(dir + QStringLiteral("/expr.tkg"));
    win.w->mnuActLeftRecursion->trigger();
    EXPECT_TRUE(QFile::exists(dir + QStringLiteral("/expr-LR.tkg")));
    EXPECT_EQ(win.w->windowTitle(), Title("expr-LR"));
    // The new grammar is open: LL(1) no longer refuses it for left recursion.
    win.Analyse(6);
    EXPECT_TRUE(win.ws().grammar.GetFlag(GrammarFlag::AnalysedLL));
    // Nothing to factor: the message, no file, and expr-LR stays open.
    win.w->mnuActLeftFactoring->trigger();
    EXPECT_EQ(win.host.informations.back(), QStringLiteral("The grammar has nothing to change: no file written."));
    EXPECT_FALSE(QFile::exists(dir + QStringLiteral("/expr-LR-LF.tkg")));
    EXPECT_FALSE(win.w->Processing());

    // Rename symbols rewrites the open grammar and saves it.
    WhenShown<frmReplace>([](frmReplace* dialog) {
        dialog->List1->setCurrentItem(dialog->List1->findItems(QStringLiteral("*"), Qt::MatchExactly).value(0));
        dialog->Text1->setText(QStringLiteral("times"));
        dialog->cmdReplace->click();
        dialog->cmdClose->click();
    });
    win.w->mnuActReplace->trigger();
    EXPECT_TRUE(win.w->GrammarText().contains(QStringLiteral("[times]")));
    EXPECT_TRUE(FileBytes(dir + QStringLiteral("/expr-LR.tkg")).contains("[times]"));
    EXPECT_FALSE(win.w->Modified());
}

TEST(MainWindow, HelpOpensTheManual)
{
    Window win{QString()};
    QUrl opened;
    win.w->urlOpener = [&](const QUrl& url) { opened = url; };
    win.w->mnuHelp->trigger();
    EXPECT_TRUE(opened.toLocalFile().endsWith(QStringLiteral("manual.html")));
    EXPECT_TRUE(QFile::exists(opened.toLocalFile()));
}

TEST(MainWindow, SettingsAreReadAtStartAndWrittenAtClose)
{
    const QString dir = ScratchDir(QStringLiteral("ui-settings"));
    const QString ini = dir + QStringLiteral("/TRELK.ini");
    const QString grammar = dir + QStringLiteral("/g.tkg");
    ASSERT_TRUE(WriteFileBytes(ini, "; kept\r\n[Main]\r\nCellWidth=1\r\nTokenType=short\r\nMaxCycle=77\r\n"));
    ASSERT_TRUE(WriteFileBytes(grammar, "<S>\r\n<S>=[a]\r\n"));
    RecordingHost host;
    const StartupOptions options{ini, QString(), &host};
    int status = 0;
    for (int run = 0; run < 2; ++run) {
        std::unique_ptr<frmMain> window(Main(options, status));
        ASSERT_NE(window, nullptr);
        EXPECT_EQ(window->workspace().settings.cellWidth, 3);
        EXPECT_EQ(window->workspace().settings.maxCycle, 77);
        EXPECT_EQ(window->workspace().settings.tokenType, QStringLiteral("short"));
        if (run == 0) {
            window->workspace().settings.generateRules = 0;  // as the Options dialog would
            ASSERT_TRUE(window->TKGOpen(grammar));
        } else {  // the grammar open at close comes back, first of the recent files
            EXPECT_EQ(window->RecentFiles().value(0), QDir::toNativeSeparators(grammar));
            EXPECT_EQ(window->workspace().grammar.Path(), QDir::toNativeSeparators(grammar));
        }
        window->close();
    }
    const QString written = QString::fromUtf8(FileBytes(ini));
    EXPECT_TRUE(written.startsWith(QStringLiteral("; kept\r\n[Main]\r\nCellWidth=3\r\nTokenType=short\r\nMaxCycle=77\r\n"))
                && written.contains(QStringLiteral("GenerateRules=0\r\n")) && written.contains(QStringLiteral("Left=")))
        << written.toStdString();
    EXPECT_TRUE(host.criticals.isEmpty());

    // A non-numeric setting ends start-up with a message naming the key, nothing written.
    ASSERT_TRUE(WriteFileBytes(ini, "[Main]\r\nMaxCycle=lots\r\n"));
    EXPECT_EQ(Main(options, status), nullptr);
    EXPECT_EQ(status, 1);
    ASSERT_EQ(host.criticals.size(), 1);
    EXPECT_TRUE(host.criticals[0].contains(QStringLiteral("\"MaxCycle\" in section \"Main\" holds \"lots\"")));
    EXPECT_EQ(FileBytes(ini), QByteArray("[Main]\r\nMaxCycle=lots\r\n"));
}

} // namespace
