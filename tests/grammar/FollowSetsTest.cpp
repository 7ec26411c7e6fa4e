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

/// The members of a list, printed, in list order.
QStringList Printed(const Grammar& g, const CodeList& list)
{
    QStringList out;
    for (int c : list)
        out << g.GetSymbolS(c);
    return out;
}

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
    g.FindFollowL();
    g.FindFollowR();
    EXPECT_FALSE(g.GetFlag(GrammarFlag::FollowLDone));
    EXPECT_FALSE(g.GetFlag(GrammarFlag::FollowRDone));
    EXPECT_EQ(g.followLReport, NotAnalyzed);
    EXPECT_EQ(g.CommentedFollowL(), NotAnalyzed);
    EXPECT_EQ(g.CommentedFollowR(), NotAnalyzed);
    EXPECT_EQ(g.CommentedFollowSets(), NotAnalyzed);

    FindAll(g);
    EXPECT_TRUE(g.GetFlag(GrammarFlag::FollowBDone));
    EXPECT_TRUE(g.GetFlag(GrammarFlag::FollowLDone));
    EXPECT_TRUE(g.GetFlag(GrammarFlag::FollowRDone));
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

/// Every list of sets, printed, for comparing whole results.
QStringList Dump(const Grammar& g, const std::vector<CodeList>& sets)
{
    QStringList out;
    for (int a = g.firstNonterminal; a <= g.lastCode; ++a)
        out << g.GetSymbolS(a) + QLatin1Char('=') + Printed(g, sets[static_cast<std::size_t>(a)]).join(QLatin1Char(','));
    return out;
}

TEST(FollowSets, StopAtEveryYieldLeavesTheFlagClearAndTheReportNotAnalyzed)
{
    const QString text = ReadGrammarText(CorpusDir() + QStringLiteral("/calc.tkg"));
    Grammar reference;
    ASSERT_TRUE(reference.SetText(text));
    FindAll(reference);

    struct Step {
        const char* name;
        int flag;
        void (Grammar::*run)();
        QString (Grammar::*report)();
        std::vector<CodeList> Grammar::*sets;
    };
    const Step steps[] = {
        {"FOLLOWB", GrammarFlag::FollowBDone, &Grammar::FindFollowB, &Grammar::CommentedBasis, &Grammar::followB},
        {"FOLLOWL", GrammarFlag::FollowLDone, &Grammar::FindFollowL, &Grammar::CommentedFollowL, &Grammar::followL},
        {"FOLLOWR", GrammarFlag::FollowRDone, &Grammar::FindFollowR, &Grammar::CommentedFollowR, &Grammar::followR},
    };
    for (std::size_t k = 0; k < std::size(steps); ++k) {
        const Step& step = steps[k];
        // Count the yields of an undisturbed run first.
        RecordingHost counter;
        Grammar g(&counter);
        ASSERT_TRUE(g.SetText(text));
        for (std::size_t before = 0; before < k; ++before)
            (g.*steps[before].run)();
        counter.yields = 0;
        (g.*step.run)();
        const long total = counter.yields;
        ASSERT_GT(total, 2) << step.name;

        for (long n = 1; n <= total; ++n) {
            RecordingHost host;
            Grammar h(&host);
            ASSERT_TRUE(h.SetText(text));
            for (std::size_t before = 0; before < k; ++before)
                (h.*steps[before].run)();
            host.yields = 0;
            host.stopAfter = n;
            host.stop = [&h] { h.SetInProcess(false); };
            (h.*step.run)();
            EXPECT_FALSE(h.GetFlag(step.flag)) << step.name << " stopped at yield " << n;
            EXPECT_EQ((h.*step.report)(), NotAnalyzed) << step.name << " stopped at yield " << n;
            EXPECT_EQ(host.yields, n) << step.name << ": the run goes on after Stop";
            // The sets that depend on a stopped FOLLOWB are not computed either.
            if (k == 0) {
                h.SetInProcess(true);
                h.FindFollowL();
                EXPECT_FALSE(h.GetFlag(GrammarFlag::FollowLDone));
            }
            // The next run starts afresh and gives the undisturbed result.
            h.SetInProcess(true);
            (h.*step.run)();
            ASSERT_TRUE(h.GetFlag(step.flag)) << step.name;
            EXPECT_EQ(Dump(h, h.*step.sets), Dump(reference, reference.*step.sets)) << step.name;
            EXPECT_EQ((h.*step.report)(), (reference.*step.report)()) << step.name;
        }
    }
}

} // namespace
