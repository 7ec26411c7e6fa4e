// The main window driven through its menu actions, offscreen.
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"
#include "ui/FileDialogs.h"
#include "ui/GrammarEditor.h"
#include "ui/ListingView.h"
#include "ui/Startup.h"
#include "ui/TableGrid.h"
#include "ui/frmMain.h"
#include "ui/frmRename.h"
#include "ui/frmReplace.h"
#include "session/OpenSave.h"
#include "session/TableCells.h"
#include "session/Verdicts.h"
#include "storage/Folders.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QRegularExpression>
#include <QListWidget>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>
#include <functional>
#include <gtest/gtest.h>

namespace {

const QString kLL = Lines({"<E>", "<E>=<T><R>", "<R>=[+]<T><R>", "<R>=", "<T>=[a]"});
const QString kExpr = Lines({"<E>", "<E>=<E>[+]<T>", "<E>=<T>", "<T>=<T>[*]<F>", "<T>=<F>", "<F>=[(]<E>[)]", "<F>=[a]"});

QString Title(const char* name)
{
    return QStringLiteral("2016 KAVEN TRELK \u2014 ") + QString::fromUtf8(name) + QStringLiteral("[*]");
}

/// A shown main window holding text; the file dialog, when asked, answers path.
struct Window {
    RecordingHost host;
    std::unique_ptr<frmMain> w;
    QStringList saveQuestions;                  ///< every "save the changes?" asked
    SaveAnswer saveAnswer = SaveAnswer::Cancel;  ///< and what the user answers
    explicit Window(const QString& text)
        : w(std::make_unique<frmMain>(&host, QString()))
    {
        w->saveQuestion = [this](const QString& question) {
            saveQuestions << question;
            return saveAnswer;
        };
        w->show();
        w->SetText1(text);
    }
    ~Window() { KAVENDialog::SetScriptedAnswer({}); }
    QString Output() const { return w->Text2->text(); }
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
    EXPECT_EQ(win.Output(), win.ws().ll.text);
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

TEST(MainWindow, ARunHoldsTheCommandsButStopAndDropsInputThatComesMeanwhile)
{
    // The first analysis after opening: grammar preparation, then the LR(1) analyser.
    Window win(ReadGrammarText(CorpusDir() + QStringLiteral("/scaling/stmts_n300.tkg")));
    int preparing = 0, analysing = 0, held = 0;
    bool posted = false;
    win.host.stopAfter = 1;
    win.host.stop = [&] {
        ++win.host.stopAfter;  // called again at the next turn
        const IAnazer* analyser = win.ws().current.get();
        (analyser && analyser->InProcess() ? analysing : preparing) += 1;
        held += win.w->Processing() && win.w->mnuStop->isEnabled() && QApplication::overrideCursor()
                && !win.w->mnuAnalyse->isEnabled() && !win.w->mnuFileOpen->isEnabled()
                && !win.w->Image1[View::LL]->isEnabled() && win.w->Text1->isReadOnly();
        if (analyser && analyser->InProcess() && !posted) {
            // A click on the LL(1) selector, Analyse and a key in the grammar box, all waiting in the queue.
            posted = true;
            QToolButton* ll = win.w->Image1[View::LL];
            const QPointF centre = QRectF(ll->rect()).center();
            for (QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease})
                QCoreApplication::postEvent(ll, new QMouseEvent(type, centre, ll->mapToGlobal(centre), Qt::LeftButton,
                                                                type == QEvent::MouseButtonPress ? Qt::LeftButton
                                                                                                 : Qt::NoButton,
                                                                Qt::NoModifier));
            QMetaObject::invokeMethod(win.w->mnuAnalyse, "trigger", Qt::QueuedConnection);
            QCoreApplication::postEvent(win.w->Text1,
                                        new QKeyEvent(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, QStringLiteral("x")));
        }
    };
    const QString text = win.w->GrammarText();
    const bool modified = win.w->Modified();
    win.Analyse(View::LR);
    win.host.stop = nullptr;
    QApplication::processEvents();
    EXPECT_GT(preparing, 0);
    EXPECT_GT(analysing, 0);
    EXPECT_EQ(held, preparing + analysing);
    ASSERT_TRUE(posted);
    EXPECT_EQ(win.w->SelectedView(), View::LR);
    EXPECT_FALSE(win.ws().grammar.GetFlag(GrammarFlag::AnalysedLL));
    EXPECT_EQ(win.w->GrammarText(), text);
    EXPECT_EQ(win.w->Modified(), modified);
    // Afterwards everything answers again, and the labels hold the run's last texts.
    EXPECT_TRUE(win.ws().grammar.GetFlag(GrammarFlag::AnalysedLR));
    EXPECT_FALSE(win.w->mnuStop->isEnabled());
    EXPECT_TRUE(win.w->mnuAnalyse->isEnabled());
    EXPECT_TRUE(win.w->Image1[View::LL]->isEnabled());
    EXPECT_FALSE(win.w->Text1->isReadOnly());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(win.w->sState->text(), win.ws().Status(StatusField::State));
    EXPECT_EQ(win.w->sElapsed->text(), QStringLiteral("Time: ") + win.ws().Status(StatusField::Elapsed) + QStringLiteral(" s"));
    EXPECT_NE(win.w->sState->text(), QString());
}

TEST(MainWindow, ItemsButtonAndReselectedViewsShowKeptResults)
{
    Window win(kExpr);
    win.w->itemsButton->setChecked(true);
    win.Analyse(8);
    EXPECT_EQ(win.w->Text2->line(0), QStringLiteral("State 0"));
    EXPECT_EQ(win.w->Text2->line(1), QStringLiteral("    <'> = \u2022 <E>"));
    win.w->itemsButton->setChecked(false);
    EXPECT_EQ(win.Output(), win.ws().lalr.tableText);

    const QString elapsed = win.w->sElapsed->text();
    const auto statuses = win.host.statuses.size();
    win.w->SelectView(2);
    EXPECT_TRUE(win.Output().startsWith(QStringLiteral("FIRST(")));
    win.w->SelectView(8);
    EXPECT_EQ(win.Output(), win.ws().lalr.tableText);
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

    // Back gives up the edits when the user says so.
    win.w->Text1->appendPlainText(QStringLiteral("<T>=[b]"));
    win.saveAnswer = SaveAnswer::Discard;
    win.w->mnuFileBack->trigger();
    EXPECT_EQ(win.saveQuestions, QStringList{QStringLiteral("Save the changes to sum?")});
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

TEST(MainWindow, ExportStandaloneCSavesNameViewDotC)
{
    // What the program holds and that it compiles: StandaloneCTest.
    const QString dir = ScratchDir(QStringLiteral("ui-standalone"));
    Window win(kLL);
    win.SaveAs(dir + QStringLiteral("/g.tkg"));
    win.w->SelectView(View::LL);
    Q_EMIT win.w->mnuFile->aboutToShow();
    EXPECT_FALSE(win.w->mnuFileStandalone->isEnabled());
    win.w->mnuAnalyse->trigger();
    Q_EMIT win.w->mnuFile->aboutToShow();
    EXPECT_TRUE(win.w->mnuFileStandalone->isEnabled());
    QString offered;
    KAVENDialog::SetScriptedAnswer([&](const KAVENDialog& d) {
        offered = d.File;
        return d.File;
    });
    win.w->mnuFileStandalone->trigger();
    const QString file = dir + QStringLiteral("/g-ll.c");
    EXPECT_EQ(offered, file);
    EXPECT_EQ(win.host.informations.last(), QStringLiteral("Files saved:\r\n") + file + QStringLiteral(".\r\n"));
    EXPECT_TRUE(FileBytes(file).contains("int ll_recognize(const int *tokens)"));
    EXPECT_TRUE(FileBytes(file).contains("int main(void)"));
    win.w->SelectView(View::First);
    Q_EMIT win.w->mnuFile->aboutToShow();
    EXPECT_FALSE(win.w->mnuFileStandalone->isEnabled());
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
    win.w->urlOpener = [&](const QUrl& url) {
        opened = url;
        return true;
    };
    win.w->mnuHelp->trigger();
    EXPECT_TRUE(opened.toLocalFile().endsWith(QStringLiteral("manual.html")));
    EXPECT_TRUE(QFile::exists(opened.toLocalFile()));
    EXPECT_TRUE(win.host.criticals.isEmpty());

    // Nothing could show it: the user is told, not left waiting.
    win.w->urlOpener = [](const QUrl&) { return false; };
    win.w->mnuHelp->trigger();
    EXPECT_EQ(win.host.criticals, QStringList{QStringLiteral("Cannot show the manual ")
                                              + QDir::toNativeSeparators(opened.toLocalFile())
                                              + QStringLiteral(": no program to open it was found.")});
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

TEST(MainWindow, ChangesAreAskedForBeforeTheyAreGivenUp)
{
    const QString dir = ScratchDir(QStringLiteral("ui-unsaved"));
    const QString path = dir + QStringLiteral("/g.tkg");
    Window win{QString()};
    EXPECT_FALSE(win.w->isWindowModified());
    win.w->Text1->insertPlainText(QString(kLL).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    EXPECT_TRUE(win.w->isWindowModified());

    // Cancel keeps the window, the text and the grammar; no file dialog is shown.
    bool dialogShown = false;
    KAVENDialog::SetScriptedAnswer([&](const KAVENDialog&) {
        dialogShown = true;
        return QString();
    });
    EXPECT_FALSE(win.w->close());
    win.w->mnuFileNew->trigger();
    win.w->mnuFileOpen->trigger();
    EXPECT_TRUE(win.w->isVisible());
    EXPECT_FALSE(dialogShown);
    EXPECT_EQ(win.saveQuestions, QStringList(3, QStringLiteral("Save the new grammar?")));
    EXPECT_EQ(win.w->GrammarText(), kLL);

    // Save with Save As cancelled saves nothing and gives nothing up.
    win.saveAnswer = SaveAnswer::Save;
    win.w->mnuFileNew->trigger();
    EXPECT_TRUE(dialogShown);
    EXPECT_EQ(win.w->GrammarText(), kLL);
    EXPECT_TRUE(win.w->Modified());
    // Saved, then New goes ahead.
    KAVENDialog::SetScriptedAnswer([&](const KAVENDialog&) { return path; });
    win.w->mnuFileNew->trigger();
    EXPECT_EQ(FileBytes(path), (kLL + QStringLiteral("\r\n")).toUtf8());
    EXPECT_EQ(win.w->GrammarText(), QString());
    EXPECT_EQ(win.w->windowTitle(), Title("[New]"));
    EXPECT_FALSE(win.w->isWindowModified());

    // Undoing an edit leaves nothing to ask about.
    ASSERT_TRUE(win.w->TKGOpen(path));
    win.saveQuestions.clear();
    win.w->Text1->insertPlainText(QStringLiteral("<T>=[b]\n"));
    EXPECT_TRUE(win.w->isWindowModified());
    win.w->Text1->undo();
    EXPECT_FALSE(win.w->isWindowModified());

    // A recent file asks too; Discard reopens the file as it is.
    win.w->Text1->insertPlainText(QStringLiteral("<T>=[b]\n"));
    win.saveAnswer = SaveAnswer::Discard;
    win.w->recentButton->menu()->actions().value(0)->trigger();
    EXPECT_EQ(win.saveQuestions, QStringList{QStringLiteral("Save the changes to g?")});
    EXPECT_EQ(win.w->GrammarText(), kLL + QStringLiteral("\r\n"));

    // Close with Save writes the edits; the window closes.
    win.w->Text1->moveCursor(QTextCursor::End);
    win.w->Text1->insertPlainText(QStringLiteral("<T>=[b]"));
    win.saveAnswer = SaveAnswer::Save;
    EXPECT_TRUE(win.w->close());
    EXPECT_TRUE(FileBytes(path).endsWith("<T>=[b]\r\n"));
}

TEST(MainWindow, DroppedGrammarFilesOpenWhereverTheyLand)
{
    const QString dir = ScratchDir(QStringLiteral("ui-drop"));
    const QString other = dir + QStringLiteral("/other.tkg");
    ASSERT_TRUE(WriteFileBytes(other, "<S>\r\n<S>=[b]\r\n"));
    ASSERT_TRUE(WriteFileBytes(dir + QStringLiteral("/picture.png"), "PNG"));
    Window win(kLL);
    auto drop = [](QWidget* target, const QString& file) {
        QMimeData mime;
        mime.setUrls({QUrl::fromLocalFile(file)});
        mime.setText(QUrl::fromLocalFile(file).toString());
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &enter);
        QDropEvent dropped(QPointF(5, 5), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &dropped);
        QCoreApplication::processEvents();
        return enter.isAccepted();
    };
    // Not a grammar: refused, and its address is not typed into the grammar.
    EXPECT_FALSE(drop(win.w->Text1->viewport(), dir + QStringLiteral("/picture.png")));
    EXPECT_EQ(win.w->GrammarText(), kLL);
    // The editor holds changes: the question comes first, and Cancel keeps them.
    EXPECT_TRUE(drop(win.w->Text1->viewport(), other));
    EXPECT_EQ(win.saveQuestions, QStringList{QStringLiteral("Save the new grammar?")});
    EXPECT_EQ(win.w->GrammarText(), kLL);

    win.saveAnswer = SaveAnswer::Discard;
    for (QWidget* target : {static_cast<QWidget*>(win.w->Text1->viewport()), static_cast<QWidget*>(win.w->Text2),
                            static_cast<QWidget*>(win.w->Picture1->viewport()), static_cast<QWidget*>(win.w.get())}) {
        win.w->SetText1(kLL);
        EXPECT_TRUE(drop(target, other)) << target->objectName().toStdString();
        EXPECT_EQ(win.w->GrammarText(), QStringLiteral("<S>\r\n<S>=[b]\r\n")) << target->objectName().toStdString();
        EXPECT_EQ(win.w->windowTitle(), Title("other"));
    }
    EXPECT_EQ(win.saveQuestions.size(), 5);
}

TEST(MainWindow, TheViewsSayWhatTheTablesMean)
{
    Window win(Lines({"<E>", "<E>=<E>[+]<E>", "<E>=[a_long_operand_name]"}));
    win.Analyse(0);
    EXPECT_EQ(win.Output(), win.ws().grammar.CommentedRules());
    EXPECT_FALSE(win.w->itemsButton->isEnabled());
    EXPECT_EQ(win.w->verdictLabel->text(), QString());

    win.Analyse(8);
    EXPECT_TRUE(win.w->itemsButton->isEnabled());
    EXPECT_EQ(win.w->verdictLabel->text(), QStringLiteral("LALR(1): the grammar is not LALR(1) \u2014 5 states, 1 conflict"));
    EXPECT_TRUE(win.w->sElapsed->text().contains(QRegularExpression(QStringLiteral("^Time: \\d+,\\d{3} s$"))))
        << win.w->sElapsed->text().toStdString();
    EXPECT_EQ(win.ws().lalr.saved.elapsed + QStringLiteral(" s"), win.w->sElapsed->text().mid(6));

    // The grid: whole names in the header tips, every action of a conflict, the rule of a reduce.
    TableModel& model = win.w->Picture1->Model();
    const Conflict conflict = win.ws().lalr.conflicts.at(0);
    const QModelIndex cell = model.index(conflict.row, conflict.column);
    EXPECT_EQ(model.data(cell, Qt::ToolTipRole).toString(),
              QStringLiteral("Conflict in state %1 on [+]\nkept: s3\nrejected: r1 <E>=<E>[+]<E>").arg(conflict.row));
    EXPECT_EQ(model.data(model.index(conflict.row, 0), Qt::ToolTipRole).toString(), QStringLiteral("r1 <E>=<E>[+]<E>"));
    EXPECT_EQ(model.headerData(2, Qt::Horizontal, Qt::ToolTipRole).toString(), QStringLiteral("[a_long_operand_name]"));
    EXPECT_EQ(model.headerData(3, Qt::Vertical, Qt::ToolTipRole).toString(), QStringLiteral("State 3 ([+])"));
    // Choosing a cell shows its state's items and what the cell does.
    win.w->Picture1->setCurrentIndex(cell);
    EXPECT_EQ(win.w->cellPane->toPlainText(), CellDetails(win.ws(), 8, conflict.row, conflict.column));
    EXPECT_TRUE(win.w->cellPane->toPlainText().contains(QStringLiteral("On [+]: s3 (shift and go to state 3)")));

    // A view not analysed has neither a verdict nor status texts; the analysed one gets them back.
    const QString elapsed = win.w->sElapsed->text();
    win.w->SelectView(9);
    EXPECT_EQ(win.w->verdictLabel->text(), QString());
    EXPECT_EQ(win.w->cellPane->toPlainText(), QString());
    EXPECT_EQ((QStringList{win.w->sState->text(), win.w->sPass->text(), win.w->sElapsed->text()}),
              (QStringList{QStringLiteral("State:"), QStringLiteral("Pass:"), QStringLiteral("Time")}));
    win.w->SelectView(8);
    EXPECT_EQ(win.w->sElapsed->text(), elapsed);
    win.w->mnuClear->trigger();
    EXPECT_EQ(win.w->sElapsed->text(), QStringLiteral("Time"));
    EXPECT_EQ(win.w->verdictLabel->text(), QString());
}

TEST(MainWindow, OverviewRunsTheSixMethodsAndAnswersStop)
{
    Window win(kExpr);
    win.w->SelectView(2);
    QString shown;
    WhenShown<QDialog>([&](QDialog* dialog) {
        shown = dialog->findChild<QPlainTextEdit*>(QStringLiteral("overviewText"))->toPlainText();
        dialog->reject();
    });
    win.w->mnuOverview->trigger();
    const QStringList lines = shown.split(QLatin1Char('\n'));
    ASSERT_EQ(lines.size(), 6) << shown.toStdString();
    EXPECT_TRUE(lines[2].startsWith(QStringLiteral("LALR(1)             LALR(1)                     12 states       0 conflicts")));
    for (int v = View::LL; v <= View::OPR; ++v)
        EXPECT_TRUE(Judge(win.ws(), v).HasVerdict()) << v;  // LL(1) refuses the left recursion
    EXPECT_TRUE(win.Output().startsWith(QStringLiteral("FIRST(")));  // the selected view stays in sight

    // Stop during the runs ends them; no overview follows.
    Window big(ReadGrammarText(CorpusDir() + QStringLiteral("/scaling/stmts_n300.tkg")));
    big.Analyse(0);
    big.host.yields = 0;
    big.host.stopAfter = 2;
    big.host.stop = [&] { big.w->mnuStop->trigger(); };
    bool dialogShown = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            dialogShown = true;
            dialog->reject();
        }
    });
    watch.start(5);
    big.w->mnuOverview->trigger();
    watch.stop();
    EXPECT_FALSE(dialogShown);
    EXPECT_FALSE(big.ws().grammar.GetFlag(GrammarFlag::AnalysedOPR));
    EXPECT_FALSE(big.w->Processing());
    EXPECT_FALSE(big.w->mnuStop->isEnabled());
}

TEST(MainWindow, SaveAsStartsBesideTheGrammar)
{
    const QString dir = ScratchDir(QStringLiteral("ui-save-as"));
    Window win(kLL);
    win.ws().settings.saveDir = QDir::tempPath();
    QString started;
    KAVENDialog::SetScriptedAnswer([&](const KAVENDialog& d) {
        started = d.InitDir;
        return QString();
    });
    win.w->mnuFileSaveAs->trigger();
    EXPECT_EQ(started, NormaliseFolder(QDir::tempPath()));  // a new grammar: the last folder saved to
    win.SaveAs(dir + QStringLiteral("/g.tkg"));
    win.ws().settings.saveDir = QDir::tempPath();
    KAVENDialog::SetScriptedAnswer([&](const KAVENDialog& d) {
        started = d.InitDir;
        return QString();
    });
    win.w->mnuFileSaveAs->trigger();
    EXPECT_EQ(started, NormaliseFolder(dir));
}

} // namespace
