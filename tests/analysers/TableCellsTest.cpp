// What a table cell means (tool tips and the cell pane of the grid), the
// window's verdict line and the overview of the six methods.
#include "session/TableCells.h"
#include "session/Verdicts.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"

#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>

namespace {

const QString kAmbiguous = Lines({"<E>", "<E>=<E>[+]<E>", "<E>=[a]"});
const QString kExpr = Lines({"<E>", "<E>=<E>[+]<T>", "<E>=<T>", "<T>=<T>[*]<F>", "<T>=<F>", "<F>=[(]<E>[)]", "<F>=[a]"});

struct Cells : ::testing::Test {
    RecordingHost host;
    Workspace ws{&host};

    void Run(const QString& text, std::initializer_list<int> views)
    {
        ws.grammar.Clear();  // a grammar of its own: Analyse parses only a grammar not parsed yet
        ws.ResetResults();
        RecordingFrontend fe(text);
        for (int view : views)
            Analyse(ws, fe, view);
    }
    int Code(const char* name) const
    {
        for (int c = 0; c <= ws.grammar.lastCode; ++c)
            if (ws.grammar.GetSymbolS(c) == QString::fromUtf8(name))
                return c;
        ADD_FAILURE() << name;
        return -1;
    }
};

TEST_F(Cells, ShiftReduceConflictNamesEveryActionWithItsRule)
{
    Run(kAmbiguous, {View::LALR});
    ASSERT_EQ(ws.lalr.conflicts.size(), 1u);
    const Conflict& c = ws.lalr.conflicts[0];
    const QString described = QStringLiteral("Conflict in state %1 on [+]\nkept: s3\nrejected: r1 <E>=<E>[+]<E>").arg(c.row);
    EXPECT_EQ(ConflictDescription(ws, View::LALR, c.row, c.column), described);
    EXPECT_EQ(CellDetails(ws, View::LALR, c.row, c.column),
              QStringLiteral("State %1 (<E>)\n    <E> = <E> \u2022 [+] <E>\n    <E> = <E> [+] <E> \u2022 , $ [+]\n\n"
                             "On [+]: s3 (shift and go to state 3)\n\n")
                      .arg(c.row)
                  + described + QLatin1Char('\n'));
    // A cell without a conflict has no description; a reduce is named with its rule.
    EXPECT_EQ(ConflictDescription(ws, View::LALR, c.row, 0), QString());
    EXPECT_TRUE(CellDetails(ws, View::LALR, c.row, 0).endsWith(QStringLiteral("On $: r1 <E>=<E>[+]<E> (reduce)\n")));
    // Other views, views not run and cells outside the table describe nothing.
    EXPECT_EQ(ConflictDescription(ws, View::SLR, c.row, c.column), QString());
    EXPECT_EQ(CellDetails(ws, View::LR, 0, 0), QString());
    EXPECT_EQ(CellDetails(ws, View::LALR, ws.lalr.States(), 0), QString());
}

TEST_F(Cells, ReduceReduceConflictKeepsTheFirstRule)
{
    Run(Lines({"<S>", "<S>=<A>", "<S>=<B>", "<A>=[a]", "<B>=[a]"}), {View::LR});
    ASSERT_EQ(ws.lr.conflicts.size(), 1u);
    const Conflict& c = ws.lr.conflicts[0];
    EXPECT_EQ(ConflictDescription(ws, View::LR, c.row, c.column),
              QStringLiteral("Conflict in state %1 on $\nkept: r3 <A>=[a]\nrejected: r4 <B>=[a]").arg(c.row));
}

TEST_F(Cells, StateItemsAreTheBlocksOfTheItemListing)
{
    // The pane shows the kernel items and kept look-aheads exactly as Items lists them.
    for (int view : {View::SLR, View::LALR, View::LR}) {
        Run(kExpr, {view});
        const QString listing = QString(ItemListing(ws, view)).replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        const LrResults& lr = ws.*ViewOf(view).lrResults;
        ASSERT_GT(lr.States(), 10);
        for (int s = 0; s < lr.States(); ++s) {
            const QString details = CellDetails(ws, view, s, 0);
            const QString block = details.left(details.indexOf(QStringLiteral("\n\n")) + 1);
            EXPECT_TRUE(block.startsWith(QStringLiteral("State %1").arg(s)));
            EXPECT_TRUE(listing.contains(block + QStringLiteral("State ")) || listing.endsWith(block))
                << ViewOf(view).name << " " << block.toStdString();
        }
    }
}

TEST_F(Cells, LLAndPrecedenceCells)
{
    Run(Lines({"<S>", "<S>=[a]", "<S>=[a][b]"}), {View::LL});
    const int s = Code("<S>"), a = Code("[a]"), b = Code("[b]");
    EXPECT_EQ(ConflictDescription(ws, View::LL, s, a),
              QStringLiteral("Conflict for <S> under [a]\nkept: r1 <S>=[a]\nrejected: r2 <S>=[a][b]"));
    EXPECT_TRUE(CellDetails(ws, View::LL, s, a).startsWith(
        QStringLiteral("<S> under [a]: predict\n    r1 <S>=[a]\n    r2 <S>=[a][b]\n\nConflict for")));
    EXPECT_EQ(CellDetails(ws, View::LL, s, b), QStringLiteral("<S> under [b]: nothing (a syntax error)\n"));
    EXPECT_EQ(CellDetails(ws, View::LL, b, b), QStringLiteral("[b] under [b]: POP (match the terminal, read the next)\n"));

    Run(kExpr, {View::SPR});
    const int plus = Code("[+]"), t = Code("<T>");
    EXPECT_EQ(ConflictDescription(ws, View::SPR, plus, t),
              QStringLiteral("Conflict between [+] and <T>\nkept: .=\nrejected: <."));
    EXPECT_TRUE(CellDetails(ws, View::SPR, plus, t).startsWith(QStringLiteral("[+] .= <T>\n[+] <. <T>\n\n")));
    EXPECT_EQ(CellDetails(ws, View::SPR, plus, plus), QStringLiteral("[+] and [+]: no relation\n"));
}

TEST_F(Cells, RuleTexts)
{
    Run(Lines({"<E>", "<E>=<T><R>", "<R>=[+]<T><R>", "<R>=", "<T>=[a]."}), {View::Grammar});
    EXPECT_EQ(NumberedRule(ws.grammar, 2), QStringLiteral("r2 <R>=[+]<T><R>"));
    EXPECT_EQ(RuleText(ws.grammar, 3), QStringLiteral("<R>="));
    EXPECT_EQ(RuleText(ws.grammar, 4), QStringLiteral("<T>=[a]$"));
}

TEST_F(Cells, VerdictLines)
{
    Run(kExpr, {View::LL, View::SLR, View::SPR, View::OPR});
    EXPECT_EQ(VerdictLine(Judge(ws, View::LL)), QStringLiteral("LL(1): the grammar is not LL(1) \u2014 left recursion"));
    EXPECT_EQ(VerdictLine(Judge(ws, View::SLR)), QStringLiteral("SLR(1): the grammar is SLR(1) \u2014 12 states, 0 conflicts"));
    EXPECT_EQ(VerdictLine(Judge(ws, View::LALR)), QString());
    EXPECT_EQ(VerdictLine(Judge(ws, View::SPR)),
              QStringLiteral("simple precedence: the grammar is not simple precedence \u2014 table 9x9, 2 conflicts"));
    Run(kAmbiguous, {View::LALR});
    EXPECT_EQ(VerdictLine(Judge(ws, View::LALR)),
              QStringLiteral("LALR(1): the grammar is not LALR(1) \u2014 5 states, 1 conflict"));
    Run(Lines({"<S>", "<S>=[a]<A>", "<A>="}), {View::SPR});
    EXPECT_EQ(VerdictLine(Judge(ws, View::SPR)),
              QStringLiteral("simple precedence: the grammar is not simple precedence \u2014 empty rules"));
}

TEST_F(Cells, OverviewHasTheColumnsOfTheSummary)
{
    // The overview in the window and trelk-cli summary (a golden case) say the same, times aside.
    QFile golden(QStringLiteral(TRELK_SOURCE_DIR "/tests/golden/cases/summary-expr/stdout"));
    ASSERT_TRUE(golden.open(QIODevice::ReadOnly));
    const QString expected = QString::fromUtf8(golden.readAll()).remove(QRegularExpression(QStringLiteral(" *<elapsed>")));
    Run(kExpr, {View::LL, View::SLR, View::LALR, View::LR, View::SPR, View::OPR});
    QStringList lines = OverviewText(ws).split(QLatin1Char('\n'));
    for (QString& line : lines) {
        ASSERT_TRUE(line.isEmpty() || line.contains(QRegularExpression(QStringLiteral("\\s\\d+,\\d\\d\\d$")))) << line.toStdString();
        line.remove(QRegularExpression(QStringLiteral("\\s+\\d+,\\d\\d\\d$")));
    }
    EXPECT_EQ(lines.join(QLatin1Char('\n')), expected);
}

} // namespace
