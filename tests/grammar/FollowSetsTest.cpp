// The follow sets: the flag preconditions, a computation done once, and Stop at
// every yield of each computation. The sets of small grammars worked out by
// hand, with the deliberate differences between FOLLOWL and FOLLOWR, are golden
// cases (sets-*); SetsReferenceTest checks them against slow references.
#include "grammar/Grammar.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"

#include <gtest/gtest.h>

namespace {

void FindAll(Grammar& g)
{
    g.FindFollowB();
    g.FindFollowL();
    g.FindFollowR();
}

TEST(FollowSets, PreconditionsAndComputedOnce)
{
    RecordingHost host;
    Grammar g(&host);
    g.FindFollowB();  // nothing parsed: no FIRST
    EXPECT_FALSE(g.GetFlag(GrammarFlag::FollowBDone));
    EXPECT_EQ(g.CommentedBasis(), NotAnalyzed);

    ASSERT_TRUE(g.SetText(Lines({"<E>", "<E>=<E>[+][a]", "<E>=[a]"})));
    g.FindFollowL();  // no FOLLOWB yet
    g.FindFollowR();
    EXPECT_FALSE(g.GetFlag(GrammarFlag::FollowLDone) || g.GetFlag(GrammarFlag::FollowRDone));
    EXPECT_EQ(g.followLReport, NotAnalyzed);
    EXPECT_EQ(g.CommentedFollowSets(), NotAnalyzed);

    FindAll(g);
    EXPECT_TRUE(g.GetFlag(GrammarFlag::FollowLDone) && g.GetFlag(GrammarFlag::FollowRDone));
    // A second call finds its flag set and returns at once.
    g.followR[static_cast<std::size_t>(g.goal)].Clear();
    const long yields = host.yields;
    FindAll(g);
    EXPECT_EQ(host.yields, yields);
    EXPECT_TRUE(g.followR[static_cast<std::size_t>(g.goal)].IsEmpty());
    // A new parse clears the flags: the sets are computed again.
    ASSERT_TRUE(g.SetText(Lines({"<E>", "<E>=[a]"})));
    EXPECT_FALSE(g.GetFlag(GrammarFlag::FollowBDone));
    EXPECT_EQ(g.CommentedBasis(), NotAnalyzed);
}

TEST(FollowSets, StopAtEveryYieldLeavesTheFlagClearAndTheReportNotAnalyzed)
{
    const QString text = ReadGrammarText(CorpusDir() + QStringLiteral("/calc.tkg"));
    Grammar reference;
    ASSERT_TRUE(reference.SetText(text));
    FindAll(reference);

    const struct {
        const char* name;
        int flag;
        void (Grammar::*run)();
        QString (Grammar::*report)();
        Indexed<CodeList> Grammar::*sets;
    } steps[] = {
        {"FOLLOWB", GrammarFlag::FollowBDone, &Grammar::FindFollowB, &Grammar::CommentedBasis, &Grammar::followB},
        {"FOLLOWL", GrammarFlag::FollowLDone, &Grammar::FindFollowL, &Grammar::CommentedFollowL, &Grammar::followL},
        {"FOLLOWR", GrammarFlag::FollowRDone, &Grammar::FindFollowR, &Grammar::CommentedFollowR, &Grammar::followR},
    };
    for (std::size_t k = 0; k < std::size(steps); ++k) {
        const auto& step = steps[k];
        SCOPED_TRACE(step.name);
        // A parsed grammar with the sets before this one; the yields of an undisturbed run.
        const auto ready = [&](Grammar& g, RecordingHost& host) {
            ASSERT_TRUE(g.SetText(text));
            for (std::size_t before = 0; before < k; ++before)
                (g.*steps[before].run)();
            host.yields = 0;
        };
        RecordingHost counter;
        Grammar g(&counter);
        ready(g, counter);
        (g.*step.run)();
        const long total = counter.yields;
        ASSERT_GT(total, 2);

        for (long n = 1; n <= total; ++n) {
            RecordingHost host;
            Grammar h(&host);
            ready(h, host);
            host.stopAfter = n;
            host.stop = [&h] { h.SetInProcess(false); };
            (h.*step.run)();
            EXPECT_FALSE(h.GetFlag(step.flag)) << "stopped at yield " << n;
            EXPECT_EQ((h.*step.report)(), NotAnalyzed) << "stopped at yield " << n;
            EXPECT_EQ(host.yields, n) << "the run goes on after Stop";
            // The sets that depend on a stopped FOLLOWB are not computed either.
            if (k == 0) {
                h.SetInProcess(true);
                h.FindFollowL();
                EXPECT_FALSE(h.GetFlag(GrammarFlag::FollowLDone));
            }
            // The next run starts afresh and gives the undisturbed result.
            h.SetInProcess(true);
            (h.*step.run)();
            ASSERT_TRUE(h.GetFlag(step.flag));
            EXPECT_TRUE(h.*step.sets == reference.*step.sets);
            EXPECT_EQ((h.*step.report)(), (reference.*step.report)());
        }
    }
}

} // namespace
