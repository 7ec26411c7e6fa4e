// The automaton pane of the main window, offscreen: the picture follows the
// view, a click on a state lists its items and chooses its grid row, a
// highlighted state is filled and brought into the neighbourhood, export.
#include "session/AutomatonGraph.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"
#include "ui/AutomatonPane.h"
#include "ui/FileDialogs.h"
#include "ui/TableGrid.h"
#include "ui/frmMain.h"
#include "GrammarWindow.h"

#include <QCheckBox>
#include <QDockWidget>
#include <QFile>
#include <QGraphicsView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QTest>
#include <gtest/gtest.h>

namespace {

const QString kDanglingElse =
    Lines({"<S>", "<S>=[if]<E>[then]<S>", "<S>=[if]<E>[then]<S>[else]<S>", "<S>=[x]", "<E>=[c]"});

struct PaneWindow : GrammarWindow {
    using GrammarWindow::GrammarWindow;
    AutomatonPane& pane() { return *w.automatonPane; }
    void Show()
    {
        w.automatonDock->show();
        QApplication::processEvents();
    }
};

/// Clicks the middle of a drawn state.
void ClickState(AutomatonPane& pane, int state)
{
    const QRectF rect = pane.StateRect(state);
    ASSERT_FALSE(rect.isEmpty()) << state;
    pane.view->centerOn(rect.center());
    const QPoint at = pane.view->mapFromScene(rect.center());
    ASSERT_EQ(pane.StateAt(at), state);
    QTest::mouseClick(pane.view->viewport(), Qt::LeftButton, Qt::NoModifier, at);
}

} // namespace

TEST(AutomatonPane, ClickingAStateShowsItsItemsAndChoosesItsGridRow)
{
    PaneWindow win(kDanglingElse);
    win.Analyse(View::LALR);
    AutomatonPane& pane = win.pane();
    // Hidden, the pane draws nothing.
    EXPECT_TRUE(pane.Dot().isEmpty());
    win.Show();
    ASSERT_FALSE(pane.Svg().isEmpty()) << pane.message->text().toStdString();
    EXPECT_TRUE(pane.wholeBox->isChecked());
    EXPECT_EQ(pane.DrawnStates().size(), 10u);
    EXPECT_EQ(pane.message->text(), QStringLiteral("10 states."));

    ClickState(pane, 7);
    EXPECT_EQ(pane.items->toPlainText(),
              QStringLiteral("State 7\n"
                             "    <S> = [if] <E> [then] <S> • , $ [else]\n"
                             "    <S> = [if] <E> [then] <S> • [else] <S>\n"
                             "Unable to write reduce -1 in [7,3].\n"));
    TableGrid* grid = win.w.Picture1;
    EXPECT_EQ(grid->currentIndex().row(), 7);
    EXPECT_TRUE(grid->selectionModel()->isRowSelected(7, QModelIndex()));

    ClickState(pane, 4);
    EXPECT_EQ(pane.items->toPlainText(), QStringLiteral("State 4\n    <E> = [c] • , [then]\n"));
    EXPECT_EQ(grid->currentIndex().row(), 4);
    // Outside every state nothing changes.
    QTest::mouseClick(pane.view->viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(1, 1));
    EXPECT_EQ(grid->currentIndex().row(), 4);
}

TEST(AutomatonPane, HighlightFillsTheStateAndRecentresTheNeighbourhood)
{
    PaneWindow win(kDanglingElse);
    win.Analyse(View::LR);
    win.Show();
    AutomatonPane& pane = win.pane();
    pane.HighlightState(3);
    EXPECT_TRUE(pane.Dot().contains(QStringLiteral("s3 [id=\"s3\", label=<")));
    EXPECT_EQ(pane.Dot().count(QStringLiteral("fillcolor")), 1);
    EXPECT_TRUE(pane.Dot().contains(QRegularExpression(QStringLiteral("s3 \\[[^\\n]*fillcolor"))));

    pane.wholeBox->setChecked(false);
    pane.stateSpin->setValue(0);
    pane.depthSpin->setValue(0);
    EXPECT_EQ(pane.DrawnStates(), std::vector<int>{0});
    // State 9 lies outside: the neighbourhood moves to it.
    pane.HighlightState(9);
    EXPECT_EQ(pane.stateSpin->value(), 9);
    EXPECT_EQ(pane.DrawnStates(), std::vector<int>{9});
    EXPECT_TRUE(pane.Dot().contains(QRegularExpression(QStringLiteral("s9 \\[[^\\n]*fillcolor"))));
    EXPECT_EQ(pane.message->text(), QStringLiteral("1 of %1 states: those within 0 transitions of state 9.")
                                        .arg(AutomatonStates(win.w.workspace(), View::LR)));
    // A state it does not have fills nothing.
    pane.HighlightState(1000);
    EXPECT_FALSE(pane.Dot().contains(QStringLiteral("fillcolor")));
}

TEST(AutomatonPane, FollowsTheViewAndOpensLargeAutomataOnStateZero)
{
    PaneWindow win(ReadGrammarText(CorpusDir() + QStringLiteral("/ansic89.tkg")));
    win.Show();
    AutomatonPane& pane = win.pane();
    EXPECT_EQ(pane.message->text(), QStringLiteral("The LR views (SLR(1), LALR(1), LR(1)) have an automaton to draw."));
    win.Analyse(View::LALR);
    EXPECT_FALSE(pane.wholeBox->isChecked());
    EXPECT_FALSE(pane.wholeBox->isEnabled());
    EXPECT_EQ(pane.stateSpin->value(), 0);
    EXPECT_EQ(pane.stateSpin->maximum(), 348);
    EXPECT_EQ(pane.DrawnStates(), Neighbourhood(*LrResultsOf(win.w.workspace(), View::LALR), 0, 1));
    EXPECT_FALSE(pane.Svg().isEmpty());
    win.w.SelectView(View::LR);
    EXPECT_EQ(pane.message->text(), QStringLiteral("The LR(1) automaton has not been built: analyse the grammar first."));
    EXPECT_TRUE(pane.DrawnStates().empty());
}

TEST(AutomatonPane, ExportsTheDotTextAndTheSvgPicture)
{
    PaneWindow win(kDanglingElse);
    win.Analyse(View::LALR);
    win.Show();
    AutomatonPane& pane = win.pane();
    const QString folder = ScratchDir(QStringLiteral("automaton-export"));
    QString asked;
    KAVENDialog::SetScriptedAnswer([&](const KAVENDialog& d) {
        asked = d.Filter.first();
        return folder + QStringLiteral("/picture.") + d.DefaultExt;
    });
    pane.ExportDot();
    EXPECT_EQ(asked, QStringLiteral("Graphviz DOT Files (*.dot)"));
    EXPECT_EQ(FileBytes(folder + QStringLiteral("/picture.dot")), pane.Dot().toUtf8());
    pane.ExportSvg();
    EXPECT_EQ(asked, QStringLiteral("SVG Pictures (*.svg)"));
    EXPECT_EQ(FileBytes(folder + QStringLiteral("/picture.svg")), pane.Svg());
    EXPECT_TRUE(win.host.Messages().isEmpty());
    // A folder that is not there: the write fails with a message.
    KAVENDialog::SetScriptedAnswer([&](const KAVENDialog&) { return folder + QStringLiteral("/none/picture.dot"); });
    pane.ExportDot();
    ASSERT_EQ(win.host.criticals.size(), 1);
    EXPECT_TRUE(win.host.criticals.first().startsWith(QStringLiteral("Cannot write ")));
}
