// The conflicts pane of the main window, offscreen: its rows, the chosen
// conflict's cell, text, trees and rule lines, and the export of the explanations.
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"
#include "ui/ConflictsPane.h"
#include "ui/DerivationView.h"
#include "ui/FileDialogs.h"
#include "ui/GrammarEditor.h"
#include "ui/TableGrid.h"
#include "ui/frmMain.h"
#include "GrammarWindow.h"
#include "session/TableCells.h"

#include <QDockWidget>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

// <E>=<E>[+]<E> is ambiguous: LALR(1) keeps the shift on [+] in state 4.
const QString kSpaced = Lines({"<E>", "<E>=[a]", "<E> = <E> [+] <E>"});
const QString kPlain = Lines({"<E>", "<E>=<E>[+]<E>", "<E>=[a]"});

const char* const kPlainText =
    "LALR(1): 1 conflict\r\n"
    "\r\n"
    "Conflict 1: state 4, look-ahead [+], shift/reduce\r\n"
    "  kept: shift to state 3\r\n"
    "  rejected: reduce by rule 1 <E>=<E>[+]<E>\r\n"
    "  prefix: <E> [+] <E>\r\n"
    "  unifying: <E> [+] <E> [+] <E>\r\n"
    "    derivation 1: <E>=( <E> [+] <E>=( <E> [+] <E> ) )\r\n"
    "    sentence 1:   [a] [+] [a] [+] [a]\r\n"
    "    derivation 2: <E>=( <E>=( <E> [+] <E> ) [+] <E> )\r\n"
    "    sentence 2:   [a] [+] [a] [+] [a]\r\n";

struct PaneWindow : GrammarWindow {
    using GrammarWindow::GrammarWindow;
    ConflictsPane& pane() { return *w.conflictsPane; }
};

std::vector<int> Parents(const DerivationView::Placed& tree)
{
    std::vector<int> parents;
    for (const DerivationView::Node& n : tree.nodes)
        parents.push_back(n.parent);
    return parents;
}

} // namespace

TEST(ConflictsPane, ChoosingAConflictShowsItsCellTextTreesAndRuleLine)
{
    PaneWindow win(kSpaced);
    win.Analyse(View::LALR);
    ConflictsPane& pane = win.pane();
    ASSERT_EQ(pane.list->count(), 1);
    EXPECT_EQ(pane.list->item(0)->text(), QStringLiteral("state 4, [+]: shift/reduce"));
    // The pane is hidden: nothing was searched yet.
    EXPECT_FALSE(pane.Explained());

    pane.list->setCurrentRow(0);
    ASSERT_TRUE(pane.Explained());
    EXPECT_EQ(pane.list->item(0)->text(), QStringLiteral("state 4, [+]: shift/reduce \u2014 unifying"));

    const QModelIndex cell = win.w.Picture1->currentIndex();
    EXPECT_EQ(cell.row(), 4);
    EXPECT_EQ(CellColumnName(win.w.workspace(), View::LALR, cell.column()), QStringLiteral("[+]"));
    EXPECT_TRUE(win.w.Picture1->Model().IsConflict(cell.row(), cell.column()));

    EXPECT_EQ(pane.text->toPlainText(),
              QStringLiteral("Conflict 1: state 4, look-ahead [+], shift/reduce\n"
                             "  kept: shift to state 3\n"
                             "  rejected: reduce by rule 2 <E>=<E>[+]<E>\n"
                             "  prefix: <E> [+] <E>\n"
                             "  unifying: <E> [+] <E> [+] <E>\n"
                             "    derivation 1: <E>=( <E> [+] <E>=( <E> [+] <E> ) )\n"
                             "    sentence 1:   [a] [+] [a] [+] [a]\n"
                             "    derivation 2: <E>=( <E>=( <E> [+] <E> ) [+] <E> )\n"
                             "    sentence 2:   [a] [+] [a] [+] [a]"));

    const DerivationView& trees = *pane.trees;
    ASSERT_EQ(trees.TreeCount(), 2);
    const QStringList leaves = QStringLiteral("<E> [+] <E> [+] <E>").split(QLatin1Char(' '));
    EXPECT_EQ(trees.LeafTexts(0), leaves);
    EXPECT_EQ(trees.LeafTexts(1), leaves);
    // The kept shift nests to the right, the refused reduce to the left: the
    // same leaves under different inner nodes.
    EXPECT_EQ(Parents(trees.Trees()[0]), (std::vector<int>{-1, 0, 0, 0, 3, 3, 3}));
    EXPECT_EQ(Parents(trees.Trees()[1]), (std::vector<int>{-1, 0, 1, 1, 1, 0, 0}));
    EXPECT_TRUE(trees.Trees()[0].caption.contains(QStringLiteral("kept: shift to state 3")));
    for (const DerivationView::Placed& tree : trees.Trees()) {
        double bottom = -1, right = -1e9;
        for (const DerivationView::Node& n : tree.nodes) {
            if (n.parent >= 0) {  // a child below its parent
                EXPECT_GT(n.box.top(), tree.nodes[static_cast<std::size_t>(n.parent)].box.bottom());
            }
            if (!n.leaf)
                continue;
            if (bottom < 0)
                bottom = n.box.top();
            EXPECT_EQ(n.box.top(), bottom);  // the leaves along one bottom row
            EXPECT_GT(n.box.left(), right);  // left to right without overlapping
            right = n.box.right();
        }
    }
    // The second tree stands right of the first, clear of its widest node.
    double firstRight = 0;
    for (const DerivationView::Node& n : trees.Trees()[0].nodes)
        firstRight = std::max(firstRight, n.box.right());
    for (const DerivationView::Node& n : trees.Trees()[1].nodes)
        EXPECT_GT(n.box.left(), firstRight);

    // The refused rule's line, found with its spaces.
    const QTextCursor cursor = win.w.Text1->textCursor();
    EXPECT_EQ(cursor.block().blockNumber(), 2);
    EXPECT_EQ(cursor.selectedText(), QStringLiteral("<E> = <E> [+] <E>"));
    EXPECT_EQ(win.w.Text1->extraSelections().size(), 1);
    win.w.SelectView(View::Grammar);
    EXPECT_TRUE(win.w.Text1->extraSelections().isEmpty());
    EXPECT_EQ(win.pane().trees->TreeCount(), 0);
}

TEST(ConflictsPane, ShowingThePaneExplainsAndOtherViewsEmptyIt)
{
    PaneWindow win(kPlain);
    win.Analyse(View::LALR);
    win.w.conflictsDock->show();
    QTRY_VERIFY_WITH_TIMEOUT(win.pane().Explained(), 5000);
    EXPECT_TRUE(win.w.mnuAnalyse->isEnabled());  // the search let go of the commands
    win.w.SelectView(View::LR);  // not analysed
    EXPECT_EQ(win.pane().list->count(), 0);
    EXPECT_FALSE(win.pane().explainButton->isEnabled());
    win.w.SelectView(View::First);
    EXPECT_EQ(win.pane().list->count(), 0);
    // Back to the analysed view: the rows come back from the kept table.
    win.w.SelectView(View::LALR);
    EXPECT_EQ(win.pane().list->count(), 1);
    QTRY_VERIFY_WITH_TIMEOUT(win.pane().Explained(), 5000);
}

TEST(ConflictsPane, ExportWritesEveryExplanationBesideTheGrammar)
{
    PaneWindow win(kPlain);
    win.Analyse(View::LALR);
    win.pane().exportButton->click();
    EXPECT_EQ(win.host.informations.last(), QStringLiteral("Save this grammar first."));

    const QString dir = ScratchDir(QStringLiteral("ui-conflicts-export"));
    KAVENDialog::SetScriptedAnswer([dir](const KAVENDialog&) { return dir + QStringLiteral("/g.tkg"); });
    win.w.mnuFileSaveAs->trigger();
    win.pane().exportButton->click();
    const QString file = dir + QStringLiteral("/g-explain-lalr.txt");
    EXPECT_EQ(win.host.informations.last(), QStringLiteral("Files saved:\r\n") + file + QStringLiteral(".\r\n"));
    EXPECT_EQ(FileBytes(file), QByteArray(kPlainText));
}

TEST(ConflictsPane, StopEndsTheSearchWithTheConflictsExplainedSoFar)
{
    // [+] and [*] without precedence: four shift/reduce conflicts in LALR(1).
    PaneWindow win(Lines({"<E>", "<E>=<E>[+]<E>", "<E>=<E>[*]<E>", "<E>=[a]"}));
    win.Analyse(View::LALR);
    ConflictsPane& pane = win.pane();
    ASSERT_EQ(pane.list->count(), 4);
    win.host.stopAfter = win.host.yields + 1;
    win.host.stop = [&win] {
        EXPECT_TRUE(win.w.mnuStop->isEnabled());
        EXPECT_FALSE(win.w.mnuAnalyse->isEnabled());
        win.w.Stop();
    };
    ASSERT_TRUE(pane.Explain());
    ASSERT_TRUE(pane.Explanation()->stopped);
    const int explained = static_cast<int>(pane.Explanation()->conflicts.size());
    EXPECT_LT(explained, 4);
    EXPECT_EQ(pane.summary->text(), QStringLiteral("Stopped: %1 of 4 conflict(s) explained.").arg(explained));
    EXPECT_TRUE(win.w.mnuAnalyse->isEnabled());
    EXPECT_FALSE(win.w.mnuStop->isEnabled());
    pane.list->setCurrentRow(3);
    EXPECT_TRUE(pane.text->toPlainText().startsWith(QStringLiteral("Not explained")));
    EXPECT_EQ(pane.trees->TreeCount(), 0);
    EXPECT_FALSE(pane.list->item(3)->text().contains(QStringLiteral("\u2014")));
}
