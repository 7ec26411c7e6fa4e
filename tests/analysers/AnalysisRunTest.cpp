// The analysis run: elapsed texts, readying the grammar, running an analyser,
// kept results, the reset of results and the texts of failure.
#include "session/AnalysisRun.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"

#include <gtest/gtest.h>
#include <tuple>

namespace {

TEST(ElapsedText, Boundaries)
{
    EXPECT_EQ(ElapsedText(0), QStringLiteral("0,000"));
    EXPECT_EQ(ElapsedText(45), QStringLiteral("0,045"));
    EXPECT_EQ(ElapsedText(7045), QStringLiteral("7,045"));
    EXPECT_EQ(ElapsedText(59999), QStringLiteral("59,999"));
    EXPECT_EQ(ElapsedText(60000), QStringLiteral("1:00,000"));
    EXPECT_EQ(ElapsedText(125045), QStringLiteral("2:05,045"));
    EXPECT_EQ(ElapsedText(3599999), QStringLiteral("59:59,999"));
    EXPECT_EQ(ElapsedText(3600000), QStringLiteral("1:00:00,000"));
    EXPECT_EQ(ElapsedText(3725045), QStringLiteral("1:02:05,045"));
    EXPECT_EQ(ElapsedText(36000000 + 1), QStringLiteral("10:00:00,001"));
}

const QString kExpr = Lines({"<E>", "<E>=<T><R>", "<R>=[+]<T><R>", "<R>=", "<T>=[a]"});

struct AnalysisRun : ::testing::Test {
    RecordingHost host;
    Workspace ws{&host};
    RecordingFrontend fe{kExpr};
};

TEST_F(AnalysisRun, AnalyzeGrammarReadiesTheSetsAndStops)
{
    ProcessStart(ws, fe);
    EXPECT_TRUE(fe.processing);
    EXPECT_TRUE(AnalyzeGrammar(ws, fe));
    EXPECT_TRUE(ws.grammar.GetFlag(GrammarFlag::FollowLDone) && ws.grammar.GetFlag(GrammarFlag::FollowRDone));
    EXPECT_FALSE(ws.grammar.InProcess() || fe.processing);
    EXPECT_EQ((std::pair{fe.stops, fe.saves}), (std::pair{1, 1}));

    RecordingFrontend bad(Lines({"<E>", "<E>=[a"}));
    EXPECT_FALSE(AnalyzeGrammar(ws, bad));
    EXPECT_EQ(host.criticals, QStringList{QStringLiteral("Unclosed terminal in line 2.")});
    EXPECT_EQ((std::pair{bad.stops, bad.saves}), (std::pair{1, 1}));
}

TEST_F(AnalysisRun, AnalyserViewRunsOnceAndKeepsItsResults)
{
    Analyse(ws, fe, 6);
    EXPECT_TRUE(fe.text2.startsWith(QStringLiteral("SYNTA[")));
    EXPECT_EQ(fe.text2, ws.ll.text);
    EXPECT_TRUE(ws.grammar.GetFlag(GrammarFlag::AnalysedLL));
    EXPECT_FALSE(fe.processing);
    EXPECT_NE(ws.ll.saved.elapsed, QString());
    EXPECT_EQ(ws.ll.saved.elapsed, ws.Status(StatusField::Elapsed));
    // The elapsed label was emptied before the run and written after it.
    ASSERT_GE(host.statuses.size(), 3u);
    EXPECT_EQ(host.statuses[0].first, StatusField::State);
    EXPECT_EQ(host.statuses[1], std::make_pair(StatusField::Elapsed, QString()));

    // Again without a change of grammar: the kept text, no second run.
    const auto statusesBefore = host.statuses.size();
    fe.text2.clear();
    Analyse(ws, fe, 6);
    EXPECT_EQ(fe.text2, ws.ll.text);
    EXPECT_EQ(host.statuses.size(), statusesBefore);

    // The reset of results puts "Not analyzed." back and clears the analysed flag.
    ws.ResetResults();
    EXPECT_EQ(ws.ll.text, NotAnalyzed);
    EXPECT_EQ(ws.ll.synta.Rows(), 0);
    EXPECT_EQ(ws.ll.saved.elapsed, QString());
    EXPECT_FALSE(ws.grammar.GetFlag(GrammarFlag::AnalysedLL));
}

TEST_F(AnalysisRun, AnUnparsableGrammarIsNotAnalysed)
{
    fe.text = Lines({"<E>", "<E>=<F>"});
    Analyse(ws, fe, 6);
    EXPECT_EQ(fe.text2, QStringLiteral("Grammar isn't analized."));
    EXPECT_EQ(host.criticals, QStringList{QStringLiteral("Non-terminal F is not defined.")});
    EXPECT_FALSE(fe.processing);
}

TEST_F(AnalysisRun, TheFirstAnalyserRunIsOneBusySpanSavedAfterItsListing)
{
    // Preparation and the analyser share one busy span (Stop stays enabled
    // between them); the grammar is saved after preparation and once more with
    // the listing and status texts, not also in between.
    Analyse(ws, fe, 8);
    EXPECT_EQ((std::tuple{fe.starts, fe.stops, fe.saves}), (std::tuple{1, 1, 2}));
    EXPECT_TRUE(ws.grammar.GetFlag(GrammarFlag::AnalysedLALR));
    EXPECT_FALSE(fe.processing);

    // Stopped in preparation, the span ends there and no analyser runs.
    RecordingFrontend stopped{kExpr};
    Workspace fresh{&host};
    host.yields = 0;
    host.stopAfter = 1;
    host.stop = [&] { fresh.Stop(); };
    Analyse(fresh, stopped, 8);
    EXPECT_EQ(stopped.text2, QStringLiteral("Grammar isn't analized."));
    EXPECT_EQ((std::tuple{stopped.starts, stopped.stops, stopped.saves}), (std::tuple{1, 1, 1}));
    EXPECT_FALSE(fresh.grammar.GetFlag(GrammarFlag::AnalysedLALR) || stopped.processing);
}

TEST_F(AnalysisRun, AStoppedRunLeavesTheOutputEmpty)
{
    Analyse(ws, fe, 0);
    // Press Stop at the first turn the analyser gives the message loop.
    host.yields = 0;
    host.stopAfter = 1;
    host.stop = [&] { ws.Stop(); };
    Analyse(ws, fe, 6);
    EXPECT_EQ(fe.text2, NotAnalyzed);  // LL keeps its previous text: it never ran to the end
    EXPECT_FALSE(ws.grammar.GetFlag(GrammarFlag::AnalysedLL));
    EXPECT_FALSE(fe.processing);
    EXPECT_NE(ws.Status(StatusField::Elapsed), QString());
}

} // namespace
