// The parse pane of the main window, offscreen: a sentence typed and parsed
// with a kept table, stepping through the trace with the tree growing, the
// error and its expected terminals, the conflict marking, the examples, the
// completion of names and the export of the tree.
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"
#include "session/ConflictExplainer.h"
#include "session/ParseSimulator.h"
#include "ui/DerivationView.h"
#include "ui/FileDialogs.h"
#include "ui/GrammarEditor.h"
#include "ui/ParsePane.h"
#include "ui/frmMain.h"
#include "GrammarWindow.h"

#include <QAbstractItemModel>
#include <QComboBox>
#include <QCompleter>
#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTableView>
#include <QTest>
#include <QTextBlock>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

const QString kExpr = Lines({"<E>", "<E>=<E>[+]<T>", "<E>=<T>", "<T>=<T>[*]<F>", "<T>=<F>", "<F>=[(]<E>[)]", "<F>=[a]"});
// Ambiguous: LALR(1) keeps the shift on [+] after <E>[+]<E>.
const QString kAmbiguous = Lines({"<E>", "<E>=<E>[+]<E>", "<E>=[a]"});

struct PaneWindow : GrammarWindow {
    explicit PaneWindow(const QString& text)
        : GrammarWindow(text)
    {
        w.parseDock->show();
    }
    ParsePane& pane() { return *w.parsePane; }
    const Grammar& g() { return w.workspace().grammar; }
    std::vector<int> Codes(const QString& sentence)
    {
        std::vector<int> codes;
        QString error;
        EXPECT_TRUE(ReadSentence(g(), sentence, codes, error)) << error.toStdString();
        return codes;
    }
    QString Cell(int row, int column)
    {
        const QAbstractItemModel& m = *pane().trace->model();
        return m.data(m.index(row, column)).toString();
    }
    QString Header(int column)
    {
        return pane().trace->model()->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
    }
};

int LastColumn(const QTableView& table)
{
    return table.model()->columnCount() - 1;
}

} // namespace

TEST(ParsePane, TypedSentenceParsedWithLalrStepsForwardAndBackWithTheTreeGrowing)
{
    PaneWindow win(kExpr);
    win.Analyse(View::LALR);
    ParsePane& pane = win.pane();
    EXPECT_EQ(pane.methodLabel->text(), QStringLiteral("LALR(1):"));
    QSignalSpy states(&pane, &ParsePane::stateShown);
    QTest::keyClicks(pane.input, QStringLiteral("a + a"));
    pane.parseButton->click();
    ASSERT_TRUE(pane.Run().has_value());
    const ParseRun& run = *pane.Run();
    EXPECT_EQ(run.verdict, ParseVerdict::Accepted);
    EXPECT_EQ(pane.verdictLabel->text(), run.message);

    // shift, F=a, T=F, E=T, shift, shift, F=a, T=F, E=E+T, accept.
    ASSERT_EQ(pane.trace->model()->rowCount(), 10);
    EXPECT_EQ(win.Header(0), QStringLiteral("States"));
    EXPECT_EQ(win.Header(1), QStringLiteral("Symbols"));
    EXPECT_EQ(win.Header(2), QStringLiteral("Input"));
    EXPECT_EQ(win.Header(3), QStringLiteral("Action"));
    EXPECT_EQ(win.Cell(0, 0), QStringLiteral("0"));
    EXPECT_EQ(win.Cell(0, 2), QStringLiteral("[a] [+] [a] $"));
    EXPECT_EQ(win.Cell(5, 1), QStringLiteral("<E> [+]"));
    EXPECT_EQ(win.Cell(5, 2), QStringLiteral("[a] $"));
    EXPECT_TRUE(win.Cell(8, 3).startsWith(QStringLiteral("reduce 1: <E>=<E>[+]<T>")));
    EXPECT_EQ(win.Cell(9, 3), QStringLiteral("accept"));

    // The run starts at its first step: the shifted [a] is the one tree.
    EXPECT_EQ(pane.CurrentStep(), 0);
    EXPECT_EQ(pane.trace->currentIndex().row(), 0);
    EXPECT_EQ(pane.stepLabel->text(), QStringLiteral("Step 1 of 10"));
    ASSERT_EQ(pane.tree->TreeCount(), 1);
    EXPECT_EQ(pane.tree->LeafTexts(0), QStringList{QStringLiteral("[a]")});
    EXPECT_FALSE(pane.backButton->isEnabled());
    EXPECT_FALSE(pane.errorButton->isEnabled());

    // The reduce by <F>=[a] chooses its line in the grammar box.
    pane.forwardButton->click();
    EXPECT_EQ(pane.CurrentStep(), 1);
    EXPECT_EQ(win.w.Text1->textCursor().block().blockNumber(), 6);
    EXPECT_EQ(win.w.Text1->extraSelections().size(), 1);

    // After the second shift: <E>, [+] and [a] stand on the stack as three trees.
    pane.GoToStep(5);
    ASSERT_EQ(pane.tree->TreeCount(), 3);
    EXPECT_EQ(pane.tree->LeafTexts(0), QStringList{QStringLiteral("[a]")});
    EXPECT_EQ(pane.tree->LeafTexts(1), QStringList{QStringLiteral("[+]")});
    EXPECT_EQ(pane.tree->LeafTexts(2), QStringList{QStringLiteral("[a]")});
    EXPECT_TRUE(win.w.Text1->extraSelections().isEmpty());  // a shift uses no rule
    pane.backButton->click();
    EXPECT_EQ(pane.tree->TreeCount(), 2);
    EXPECT_EQ(pane.trace->currentIndex().row(), 4);

    // Each step announces the state it began in, the top of its state stack.
    ASSERT_FALSE(states.isEmpty());
    EXPECT_EQ(states.last().at(0).toInt(), run.steps[4].stack.last().toInt());
    EXPECT_EQ(states.last().at(0).toInt(), run.steps[4].state);

    // Choosing a row goes to its step.
    pane.trace->selectRow(7);
    EXPECT_EQ(pane.CurrentStep(), 7);
    EXPECT_EQ(pane.stepLabel->text(), QStringLiteral("Step 8 of 10"));

    pane.endButton->click();
    EXPECT_EQ(pane.CurrentStep(), 9);
    ASSERT_EQ(pane.tree->TreeCount(), 1);
    EXPECT_EQ(pane.tree->LeafTexts(0), QStringLiteral("[a] [+] [a]").split(QLatin1Char(' ')));
    EXPECT_FALSE(pane.forwardButton->isEnabled());
    EXPECT_FALSE(pane.endButton->isEnabled());
    EXPECT_TRUE(pane.expectedLabel->text().isEmpty());
    EXPECT_EQ(pane.TreeText(), TreeText(win.g(), ParseTree(win.w.workspace(), run)));

    pane.firstButton->click();
    EXPECT_EQ(pane.CurrentStep(), 0);
    EXPECT_EQ(pane.tree->TreeCount(), 1);
}

TEST(ParsePane, RunToErrorShowsTheFailedStepAndTheExpectedTerminals)
{
    PaneWindow win(kExpr);
    win.Analyse(View::LALR);
    ParsePane& pane = win.pane();
    pane.input->setText(QStringLiteral("[a][+][+][a]"));
    ASSERT_TRUE(pane.Parse());
    const ParseRun& run = *pane.Run();
    ASSERT_EQ(run.verdict, ParseVerdict::Rejected);
    EXPECT_EQ(run.errorPosition, 2);
    EXPECT_TRUE(pane.verdictLabel->text().startsWith(QStringLiteral("Rejected at [+] (token 3): expected ")));
    EXPECT_TRUE(pane.expectedLabel->text().isEmpty());  // not at the error yet
    EXPECT_TRUE(pane.errorButton->isEnabled());

    pane.errorButton->click();
    const int last = static_cast<int>(run.steps.size()) - 1;
    EXPECT_EQ(pane.CurrentStep(), last);
    EXPECT_EQ(run.steps.back().kind, StepKind::Error);
    // After [a][+] only an operand may come: [(] or [a], in code order.
    std::vector<int> expected = win.Codes(QStringLiteral("[(] [a]"));
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(pane.expectedLabel->text(),
              QStringLiteral("Expected: ") + win.g().GetSymbolS(expected[0]) + QLatin1Char(' ') + win.g().GetSymbolS(expected[1]));
    // The failed step stands out from the others.
    const QAbstractItemModel& m = *pane.trace->model();
    EXPECT_TRUE(m.data(m.index(last, 0), Qt::BackgroundRole).isValid());
    EXPECT_FALSE(m.data(m.index(0, 0), Qt::BackgroundRole).isValid());
    EXPECT_FALSE(pane.errorButton->isEnabled());
    pane.StepBack();
    EXPECT_TRUE(pane.expectedLabel->text().isEmpty());

    // A name that is no terminal: the reader's message, and no run.
    pane.input->setText(QStringLiteral("a + b"));
    std::vector<int> codes;
    QString error;
    ASSERT_FALSE(ReadSentence(win.g(), pane.input->text(), codes, error));
    EXPECT_FALSE(pane.Parse());
    EXPECT_FALSE(pane.Run().has_value());
    EXPECT_EQ(pane.verdictLabel->text(), error);
    EXPECT_EQ(pane.trace->model()->rowCount(), 0);
    EXPECT_EQ(pane.tree->TreeCount(), 0);
    EXPECT_FALSE(pane.forwardButton->isEnabled());
}

TEST(ParsePane, AStepTakenFromAConflictCellIsMarked)
{
    PaneWindow win(kAmbiguous);
    win.Analyse(View::LALR);
    ParsePane& pane = win.pane();
    pane.input->setText(QStringLiteral("a + a + a"));
    ASSERT_TRUE(pane.Parse());
    const ParseRun& run = *pane.Run();
    EXPECT_EQ(run.verdict, ParseVerdict::Accepted);
    const QAbstractItemModel& m = *pane.trace->model();
    const int action = LastColumn(*pane.trace);
    int marked = 0;
    QVariant conflictColour, plainColour;
    for (int r = 0; r < m.rowCount(); ++r) {
        const ParseStep& step = run.steps[static_cast<std::size_t>(r)];
        const QString text = m.data(m.index(r, action)).toString();
        const QVariant background = m.data(m.index(r, 0), Qt::BackgroundRole);
        if (step.fromConflict) {
            ++marked;
            EXPECT_EQ(text, step.action + QStringLiteral(" (conflict: the kept action)"));
            EXPECT_TRUE(m.data(m.index(r, action), Qt::ToolTipRole).toString().contains(QStringLiteral("kept")));
            conflictColour = background;
        } else {
            EXPECT_EQ(text, step.action);
            if (step.kind != StepKind::Accept)
                plainColour = background;
        }
    }
    // The second [+] is shifted from the cell that also holds the reduce.
    EXPECT_EQ(marked, 1);
    EXPECT_TRUE(conflictColour.isValid());
    EXPECT_FALSE(plainColour.isValid());
    // The kept shift nests to the right: the last two [a] share a parent.
    pane.RunToEnd();
    EXPECT_EQ(pane.TreeText(), QStringLiteral("<E>=( <E>=( [a] ) [+] <E>=( <E>=( [a] ) [+] <E>=( [a] ) ) )"));
}

TEST(ParsePane, ExamplesFillTheSentenceAndEachRuleExampleUsesItsRule)
{
    PaneWindow win(kExpr);
    win.Analyse(View::LALR);
    ParsePane& pane = win.pane();
    pane.shortestButton->click();
    EXPECT_EQ(pane.input->text(), QStringLiteral("[a]"));
    ASSERT_TRUE(pane.Parse());
    EXPECT_EQ(pane.Run()->verdict, ParseVerdict::Accepted);

    ASSERT_EQ(pane.ruleExamples->count(), win.g().ruleCount + 1);
    for (int r = 1; r <= win.g().ruleCount; ++r) {
        ASSERT_TRUE(pane.FillForRule(r)) << r;
        EXPECT_FALSE(pane.Run().has_value());  // a new sentence ends the old run
        ASSERT_TRUE(pane.Parse());
        const ParseRun& run = *pane.Run();
        EXPECT_EQ(run.verdict, ParseVerdict::Accepted) << pane.input->text().toStdString();
        EXPECT_TRUE(std::any_of(run.steps.begin(), run.steps.end(), [r](const ParseStep& s) { return s.rule == r; }))
            << "rule " << r << ": " << pane.input->text().toStdString();
    }

    pane.randomLength->setValue(7);
    for (int i = 0; i < 20; ++i) {
        pane.randomButton->click();
        const std::vector<int> codes = win.Codes(pane.input->text());
        EXPECT_LE(codes.size(), 7u) << pane.input->text().toStdString();
        ASSERT_TRUE(pane.Parse());
        EXPECT_EQ(pane.Run()->verdict, ParseVerdict::Accepted) << pane.input->text().toStdString();
    }
}

TEST(ParsePane, CompletionOffersTheTerminalAtTheCursorsWord)
{
    PaneWindow win(Lines({"<S>", "<S>=[num][plus][num]", "<S>=[name]"}));
    win.Analyse(View::LL);
    ParsePane& pane = win.pane();
    QCompleter& completer = *pane.completer;
    QTest::keyClicks(pane.input, QStringLiteral("[nu"));
    EXPECT_EQ(completer.completionPrefix(), QStringLiteral("nu"));
    EXPECT_EQ(completer.completionCount(), 1);
    EXPECT_EQ(completer.currentCompletion(), QStringLiteral("num"));
    Q_EMIT completer.activated(QStringLiteral("num"));
    EXPECT_EQ(pane.input->text(), QStringLiteral("[num]"));

    // A plain name after a blank; the prefix is the word being typed only.
    pane.input->clear();
    QTest::keyClicks(pane.input, QStringLiteral("num pl"));
    EXPECT_EQ(completer.completionPrefix(), QStringLiteral("pl"));
    Q_EMIT completer.activated(QStringLiteral("plus"));
    EXPECT_EQ(pane.input->text(), QStringLiteral("num plus"));
    QTest::keyClicks(pane.input, QStringLiteral(" N"));
    EXPECT_EQ(completer.completionPrefix(), QStringLiteral("N"));
    EXPECT_EQ(completer.completionCount(), 2);  // any letter case: name and num
    QTest::keyClicks(pane.input, QStringLiteral("u"));
    Q_EMIT completer.activated(QStringLiteral("num"));
    EXPECT_EQ(pane.input->text(), QStringLiteral("num plus num"));
    ASSERT_TRUE(pane.Parse());
    EXPECT_EQ(pane.Run()->verdict, ParseVerdict::Accepted);
    // LL(1): stack, input, action.
    EXPECT_EQ(win.Header(0), QStringLiteral("Stack"));
    EXPECT_EQ(win.Header(1), QStringLiteral("Input"));
    EXPECT_EQ(LastColumn(*pane.trace), 2);
}

TEST(ParsePane, FollowsTheViewAndTheGrammarAndIsDisabledDuringARun)
{
    PaneWindow win(kExpr);
    ParsePane& pane = win.pane();
    win.w.SelectView(View::LALR);
    EXPECT_EQ(pane.verdictLabel->text(), QStringLiteral("LALR(1) has not been analysed: Analyse it to parse a sentence."));
    EXPECT_FALSE(pane.parseButton->isEnabled());
    EXPECT_FALSE(pane.input->isEnabled());

    // While the analyser runs the pane takes no commands.
    bool checked = false;
    win.host.stopAfter = win.host.yields + 1;
    win.host.stop = [&] {
        checked = true;
        EXPECT_FALSE(pane.isEnabled());
    };
    win.w.mnuAnalyse->trigger();
    EXPECT_TRUE(checked);
    EXPECT_TRUE(pane.isEnabled());
    EXPECT_TRUE(pane.parseButton->isEnabled());

    pane.input->setText(QStringLiteral("a * a"));
    ASSERT_TRUE(pane.Parse());
    pane.GoToStep(3);
    win.w.SelectView(View::LALR);  // the same view and grammar: the run stays where it was
    ASSERT_TRUE(pane.Run().has_value());
    EXPECT_EQ(pane.CurrentStep(), 3);

    win.w.SelectView(View::First);
    EXPECT_FALSE(pane.Run().has_value());
    EXPECT_EQ(pane.verdictLabel->text(), QStringLiteral("Select a method (LL(1) ... OPR) to parse a sentence with its table."));
    EXPECT_FALSE(pane.parseButton->isEnabled());
    EXPECT_EQ(pane.input->text(), QStringLiteral("a * a"));  // the sentence stays

    // Editing the grammar ends the run of the old one.
    win.w.SelectView(View::LALR);
    ASSERT_TRUE(pane.Parse());
    win.w.Text1->setPlainText(kAmbiguous);
    EXPECT_FALSE(pane.Run().has_value());
    EXPECT_FALSE(pane.parseButton->isEnabled());
    win.Analyse(View::LALR);
    EXPECT_EQ(pane.ruleExamples->count(), 3);
    EXPECT_TRUE(pane.parseButton->isEnabled());
}

TEST(ParsePane, TheTreeIsWrittenAsTextAndAsSvg)
{
    PaneWindow win(kExpr);
    win.Analyse(View::LALR);
    ParsePane& pane = win.pane();
    EXPECT_FALSE(pane.svgButton->isEnabled());
    pane.input->setText(QStringLiteral("( a ) * a"));
    ASSERT_TRUE(pane.Parse());
    pane.RunToEnd();
    const QString dir = ScratchDir(QStringLiteral("ui-parse-export"));

    QString asked;
    KAVENDialog::SetScriptedAnswer([&](const KAVENDialog& dialog) {
        asked = dialog.File;
        return dir + QStringLiteral("/tree.svg");
    });
    pane.svgButton->click();
    EXPECT_TRUE(asked.endsWith(QStringLiteral("-parse-lalr.svg")));
    EXPECT_EQ(win.host.informations.last(), QStringLiteral("Files saved:\r\n") + dir + QStringLiteral("/tree.svg.\r\n"));
    const QByteArray svg = FileBytes(dir + QStringLiteral("/tree.svg"));
    EXPECT_TRUE(svg.contains("<svg"));
    for (const char* leaf : {">[(]<", ">[a]<", ">[)]<", ">[*]<", ">&lt;F&gt;<"})
        EXPECT_TRUE(svg.contains(leaf)) << leaf;

    KAVENDialog::SetScriptedAnswer([&](const KAVENDialog&) { return dir + QStringLiteral("/tree.txt"); });
    pane.textButton->click();
    const QString text = TreeText(win.g(), ParseTree(win.w.workspace(), *pane.Run()));
    EXPECT_EQ(FileBytes(dir + QStringLiteral("/tree.txt")), (text + QStringLiteral("\r\n")).toUtf8());

    // A folder that is not there: a message, no crash.
    EXPECT_FALSE(pane.ExportTreeSvg(dir + QStringLiteral("/missing/tree.svg")));
    EXPECT_FALSE(win.host.criticals.isEmpty());
}

TEST(ParsePane, LlAndPrecedenceRunsShowTheirOwnColumnsAndTrees)
{
    PaneWindow win(Lines({"<S>", "<S>=[a]<S>", "<S>=[b]"}));
    win.Analyse(View::LL);
    ParsePane& pane = win.pane();
    pane.input->setText(QStringLiteral("a a b"));
    ASSERT_TRUE(pane.Parse());
    EXPECT_EQ(pane.Run()->verdict, ParseVerdict::Accepted);
    // One tree from the goal; a non-terminal not yet predicted stays a leaf.
    ASSERT_EQ(pane.tree->TreeCount(), 1);
    EXPECT_EQ(pane.tree->LeafTexts(0), QStringLiteral("[a] <S>").split(QLatin1Char(' ')));
    EXPECT_EQ(win.w.Text1->textCursor().block().blockNumber(), 1);  // predicted by <S>=[a]<S>
    pane.GoToStep(2);
    EXPECT_EQ(pane.tree->LeafTexts(0), QStringLiteral("[a] [a] <S>").split(QLatin1Char(' ')));
    pane.RunToEnd();
    EXPECT_EQ(pane.tree->LeafTexts(0), QStringLiteral("[a] [a] [b]").split(QLatin1Char(' ')));

    PaneWindow opr(kExpr);
    opr.Analyse(View::OPR);
    ParsePane& precedence = opr.pane();
    precedence.input->setText(QStringLiteral("a + a"));
    ASSERT_TRUE(precedence.Parse());
    EXPECT_EQ(precedence.Run()->verdict, ParseVerdict::Accepted);
    EXPECT_EQ(opr.Header(0), QStringLiteral("Stack"));
    EXPECT_EQ(opr.Header(1), QStringLiteral("Relation"));
    EXPECT_EQ(opr.Header(2), QStringLiteral("Input"));
    EXPECT_EQ(opr.Header(3), QStringLiteral("Action"));
    // The first step reads $ against [a]: the handle begins.
    EXPECT_EQ(opr.Cell(0, 0), QStringLiteral("$"));
    EXPECT_EQ(opr.Cell(0, 1), QStringLiteral("<."));
    precedence.RunToEnd();
    ASSERT_EQ(precedence.tree->TreeCount(), 1);
    EXPECT_EQ(precedence.tree->LeafTexts(0), QStringLiteral("[a] [+] [a]").split(QLatin1Char(' ')));
}
