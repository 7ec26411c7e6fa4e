// The LR analysers on small grammars: the item sets, the limits, Stop, LALR(1)
// against merged canonical LR(1) states, and the generated driver. The
// listings and C tables are golden cases (view-slr-*, table-lalr-*, ...).
#include "analysers/Ana07SLR.h"
#include "analysers/Ana08LALR.h"
#include "analysers/Ana09LR.h"
#include "support/GrammarSamples.h"
#include "support/Simulators.h"
#include "support/RecordingHost.h"
#include "support/ScopedEnv.h"
#include "support/TestPaths.h"

#include <QFile>
#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <set>

namespace {

const QString kAmbiguous = Lines({"<E>", "<E>=<E>[+]<E>", "<E>=[a]"});
const QString kExpr = Lines({"<E>", "<E>=<E>[+]<T>", "<E>=<T>", "<T>=<T>[*]<F>", "<T>=<F>", "<F>=[(]<E>[)]",
                             "<F>=[a]"});

struct Ready {
    RecordingHost host;
    Workspace ws{&host};
    RecordingFrontend fe;
    explicit Ready(const QString& text)
        : fe(text)
    {
        EXPECT_TRUE(AnalyzeGrammar(ws, fe));
    }
};

TEST(Lr, ItemSetsCarryTheVerdictAndTheLookaheads)
{
    // The Items button's text; the table listings are golden cases (view-slr-*, view-lr-*).
    Ready ambiguous(kAmbiguous);
    EXPECT_FALSE(Analysed<Ana07SLR>(ambiguous.ws));
    EXPECT_TRUE(Ana07SLR(ambiguous.ws).ItemDisplay().startsWith(
        QStringLiteral("This Grammar Is Not SLR(1).\r\nState 0\r\n    <'> = \u2022 <E>\r\n")));
    // The conflict is kept as a record: the reduce of rule 1 turned away from
    // the cell of [+] that holds the shift, in the state after <E> [+] <E>.
    const LrResults& r = ambiguous.ws.slr;
    ASSERT_EQ(r.conflicts.size(), 1u);
    const Conflict& c = r.conflicts[0];
    EXPECT_EQ(c.method, ConflictMethod::SLR);
    EXPECT_EQ(c.kind, ConflictKind::ShiftReduce);
    EXPECT_EQ(c.column, 1);
    EXPECT_EQ(c.rejected, std::vector<int>{-1});
    EXPECT_GT(c.kept, 0);
    EXPECT_EQ(c.kept, RowEntry(r.rows[static_cast<std::size_t>(c.row)], 1));
    EXPECT_EQ(RowEntry(r.rows[static_cast<std::size_t>(c.row)], 0), -1);  // it reduces rule 1 at the end
    // LR(1) items carry their look-aheads; the closure shows with DisplayAllItems.
    Ready s(Lines({"<S>", "<S>=[a]<S>", "<S>=[b]"}));
    ASSERT_TRUE(Analysed<Ana09LR>(s.ws));
    Ana09LR lr(s.ws);
    const QString kernels = lr.ItemDisplay();
    EXPECT_TRUE(kernels.contains(QStringLiteral("    <S> = [a] \u2022 <S> , $\r\n"))) << kernels.toStdString();
    EXPECT_FALSE(kernels.contains(QStringLiteral("<S> = \u2022 [b] , $")));
    s.ws.settings.displayAllItems = 1;
    s.ws.lr.itemText.clear();
    EXPECT_TRUE(lr.ItemDisplay().contains(QStringLiteral("    <S> = \u2022 [b] , $\r\n")));
}

TEST(Lr, ItemListingsShowTheLookaheadsEachMethodKeeps)
{
    // LALR(1) keeps look-aheads for its complete items only (the empty rule in
    // the closures; none for the accepting item); LR(1) for every kernel item,
    // and the closure's items take theirs from them.
    Ready s(Lines({"<S>", "<S>=<A>[a]", "<A>=[b]<A>", "<A>="}));
    ASSERT_TRUE(Analysed<Ana08LALR>(s.ws));
    ASSERT_TRUE(Analysed<Ana09LR>(s.ws));
    const QString lalr[] = {
        Lines({"State 0", "    <'> = • <S>", "State 1 ([b])", "    <A> = [b] • <A>",
               "State 2 (<S>)", "    <'> = <S> • ,", "State 3 (<A>)", "    <S> = <A> • [a]",
               "State 4 (<A>)", "    <A> = [b] <A> • , [a]", "State 5 ([a])", "    <S> = <A> [a] • , $", ""}),
        Lines({"State 0", "    <'> = • <S>", "    <S> = • <A> [a]", "    <A> = • [b] <A>",
               "    <A> = • , [a]", "State 1 ([b])", "    <A> = [b] • <A>", "    <A> = • [b] <A>",
               "    <A> = • , [a]", "State 2 (<S>)", "    <'> = <S> • ,", "State 3 (<A>)",
               "    <S> = <A> • [a]", "State 4 (<A>)", "    <A> = [b] <A> • , [a]", "State 5 ([a])",
               "    <S> = <A> [a] • , $", ""})};
    const QString lr[] = {
        Lines({"State 0", "    <'> = • <S> , $", "State 1 ([b])", "    <A> = [b] • <A> , [a]",
               "State 2 (<S>)", "    <'> = <S> • , $", "State 3 (<A>)", "    <S> = <A> • [a] , $",
               "State 4 (<A>)", "    <A> = [b] <A> • , [a]", "State 5 ([a])", "    <S> = <A> [a] • , $", ""}),
        Lines({"State 0", "    <'> = • <S> , $", "    <S> = • <A> [a] , $", "    <A> = • [b] <A> , [a]",
               "    <A> = • , [a]", "State 1 ([b])", "    <A> = [b] • <A> , [a]",
               "    <A> = • [b] <A> , [a]", "    <A> = • , [a]", "State 2 (<S>)", "    <'> = <S> • , $",
               "State 3 (<A>)", "    <S> = <A> • [a] , $", "State 4 (<A>)", "    <A> = [b] <A> • , [a]",
               "State 5 ([a])", "    <S> = <A> [a] • , $", ""})};
    for (int all : {0, 1}) {
        s.ws.settings.displayAllItems = all;
        s.ws.lalr.itemText.clear();
        s.ws.lr.itemText.clear();
        EXPECT_EQ(Ana08LALR(s.ws).ItemDisplay(), lalr[all]) << "DisplayAllItems=" << all;
        EXPECT_EQ(Ana09LR(s.ws).ItemDisplay(), lr[all]) << "DisplayAllItems=" << all;
    }
}

TEST(Lr, CyclesOverflowComparesTheFirstStateOfTheNextPass)
{
    Ready s(kExpr);
    s.ws.settings.maxCycle = 5;
    EXPECT_FALSE(Analysed<Ana07SLR>(s.ws));
    EXPECT_EQ(s.host.questions, QStringList{QStringLiteral("Cycles Overflow.")});
    EXPECT_FALSE(s.ws.grammar.GetFlag(GrammarFlag::AnalysedSLR));
    EXPECT_EQ(s.ws.slr.States(), 0);
    EXPECT_EQ(Ana07SLR(s.ws).ExportDisplay(), QString());
    EXPECT_EQ(Ana07SLR(s.ws).TableDisplay(), QString());
    // A limit the passes never reach.
    s.host.questions.clear();
    s.ws.settings.maxCycle = 12;
    EXPECT_TRUE(Analysed<Ana07SLR>(s.ws));
    EXPECT_TRUE(s.host.questions.isEmpty());
}

TEST(Lr, ProgressTextsAndPasses)
{
    Ready s(kExpr);
    s.host.statuses.clear();
    ASSERT_TRUE(Analysed<Ana08LALR>(s.ws));
    QStringList states, passes;
    for (const auto& [field, text] : s.host.statuses) {
        if (field == StatusField::State)
            states << text;
        if (field == StatusField::Pass)
            passes << text;
    }
    ASSERT_FALSE(states.isEmpty());
    EXPECT_EQ(states.first(), QStringLiteral("1 (1-5)"));
    EXPECT_EQ(passes.first(), QStringLiteral("Pass: 1"));
    EXPECT_GE(passes.size(), 2);
    EXPECT_EQ(passes[1], QStringLiteral("Pass: 2"));
}

TEST(Lr, StopEndsTheRunWithAnEmptyOutput)
{
    Ready s(kExpr);
    s.host.yields = 0;
    s.host.stopAfter = 1;
    s.host.stop = [&] { s.ws.Stop(); };
    Analyse(s.ws, s.fe, View::LR);
    EXPECT_EQ(s.fe.text2, QString());
    EXPECT_FALSE(s.fe.processing);
    EXPECT_FALSE(s.ws.grammar.GetFlag(GrammarFlag::AnalysedLR));
    EXPECT_NE(s.ws.Status(StatusField::Elapsed), QString());
}

/// Stops a run of analyser A at each turn it gives the message loop in turn:
/// every one of them must end the run without a table.
template <class A>
void StopAtEveryTurn(int analysed, LrResults Workspace::*results)
{
    Ready full(kExpr);
    full.host.yields = 0;
    full.host.statuses.clear();
    ASSERT_TRUE(Analysed<A>(full.ws));
    const long turns = full.host.yields;
    const long passes = std::count_if(full.host.statuses.begin(), full.host.statuses.end(),
                                      [](const auto& status) { return status.first == StatusField::Pass; });
    // Besides the passes: the look-ahead walks, the closures and the reduces turn the loop too.
    ASSERT_GT(turns, passes + (full.ws.*results).States());
    for (long k = 1; k <= turns; ++k) {
        Ready s(kExpr);
        A analyser(s.ws);
        analyser.SetInProcess(true);
        s.host.yields = 0;
        s.host.stopAfter = k;
        s.host.stop = [&] { analyser.SetInProcess(false); };
        EXPECT_FALSE(analyser.Analyze()) << "turn " << k;
        EXPECT_FALSE(s.ws.grammar.GetFlag(analysed)) << "turn " << k;
        EXPECT_EQ((s.ws.*results).States(), 0) << "turn " << k;
    }
}

TEST(Lr, StopAtAnyTurnOfARunLeavesNoTable)
{
    StopAtEveryTurn<Ana07SLR>(GrammarFlag::AnalysedSLR, &Workspace::slr);
    StopAtEveryTurn<Ana08LALR>(GrammarFlag::AnalysedLALR, &Workspace::lalr);
    StopAtEveryTurn<Ana09LR>(GrammarFlag::AnalysedLR, &Workspace::lr);
}

// ---- LALR(1) against canonical LR(1) with same-core states merged ---------------

/// A reference kept deliberately simple: build the canonical automaton, merge the
/// look-aheads of states with the same kernel items, and read off the reduces.
std::map<std::pair<std::vector<int>, int>, std::set<int>> MergedCanonical(Workspace& ws)
{
    std::map<std::pair<std::vector<int>, int>, std::set<int>> merged;  // (kernel, item) -> look-aheads
    LrGrammar lg(ws.grammar);
    Ana09LR analyser(ws);
    analyser.SetInProcess(true);
    PassFrame frame(ws, analyser, false);
    Lr1Automaton a;
    EXPECT_TRUE(BuildLr1(lg, frame, a));
    Lr1Closure closure(lg);
    for (int s = 0; s < a.kernels.size(); ++s) {
        const std::vector<int>& kernel = a.kernels[s];
        for (std::size_t i = 0; i < kernel.size(); ++i)
            if (lg.items.Complete(kernel[i]) && lg.items.Rule(kernel[i]) != 0)  // rule 0 accepts
                for (int t : a.lookaheads[s][i].Members())
                    merged[{kernel, kernel[i]}].insert(t);
        for (int nt : closure.Compute(kernel, a.lookaheads[s]))
            for (int r : lg.items.RulesOf(nt))
                if (lg.items.Length(r) == 0)
                    for (int t : closure.Lookahead(nt).Members())
                        merged[{kernel, lg.items.Item(r, 0)}].insert(t);
    }
    return merged;
}

TEST(Lr, LalrEqualsMergedCanonicalOnRandomGrammars)
{
    std::mt19937 rng(1234);
    int compared = 0;
    for (int round = 0; round < 300; ++round) {
        const QString text = RandomGrammarText(rng);
        RecordingHost host;
        Workspace ws(&host);
        RecordingFrontend fe(text);
        if (!AnalyzeGrammar(ws, fe))
            continue;  // a rule written twice, or a symbol left undefined
        SCOPED_TRACE(text.toStdString());
        Analysed<Ana08LALR>(ws);
        ASSERT_TRUE(ws.grammar.GetFlag(GrammarFlag::AnalysedLALR));
        const auto merged = MergedCanonical(ws);
        const LrResults& lalr = ws.lalr;
        std::map<std::pair<std::vector<int>, int>, std::set<int>> ours;
        for (int s = 0; s < lalr.kernels.size(); ++s)
            for (const ItemLookahead& kept : lalr.lookaheads[s])
                ours[{lalr.kernels[s], kept.item}] = std::set<int>(kept.terminals.begin(), kept.terminals.end());
        // Every merged canonical state is an LR(0) state with the same reduces.
        for (const auto& [key, set] : merged)
            EXPECT_EQ(ours[key], set);
        for (const auto& [key, set] : ours)
            if (!set.empty() && key.second != 1) {  // item 1: <'> -> goal, the accept
                EXPECT_TRUE(merged.count(key));
            }
        ++compared;
    }
    EXPECT_GT(compared, 100);
}

// ---- The generated driver --------------------------------------------------------

TEST(Lr, GeneratedDriverAgreesWithTheTables)
{
    ScopedEnv epoch("SOURCE_DATE_EPOCH", "1700000000");
    struct Case {
        const char* name;
        QString text;
        int view;
    };
    const Case cases[] = {
        {"expr_slr", kExpr, View::SLR},
        {"empty_lalr", Lines({"<S>", "<S>=<A><S>[b]", "<S>=", "<A>=[a]", "<A>="}), View::LALR},
        {"ambiguous_lalr", kAmbiguous, View::LALR},
        {"notlalr_lr", ReadGrammarText(CorpusDir() + QStringLiteral("/scaling/lr1notlalr_n1.tkg")), View::LR},
        {"calc_lalr", ReadGrammarText(CorpusDir() + QStringLiteral("/calc.tkg")), View::LALR},
    };
    std::mt19937 rng(99);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Ready s(c.text);
        Analyse(s.ws, s.fe, c.view);
        ASSERT_TRUE(s.ws.grammar.GetFlag(c.view));
        const LrResults& r = c.view == View::SLR ? s.ws.slr : c.view == View::LALR ? s.ws.lalr : s.ws.lr;
        QString errors;
        const QString exe = CompileStandalone(s.ws, c.view, QString::fromLatin1(c.name), errors);
        ASSERT_FALSE(exe.isEmpty()) << errors.toStdString();
        auto sentences = RandomSentences(s.ws.grammar, 150, rng);
        auto wrong = Mutations(s.ws.grammar, sentences, rng);
        sentences.insert(sentences.end(), wrong.begin(), wrong.end());
        const int accepted = ExpectRecognizerAgrees(
            exe, s.ws.grammar, sentences, [&](const std::vector<int>& sentence) { return SimulateLR(s.ws, r, sentence); });
        EXPECT_GT(accepted, 0);
        EXPECT_LT(accepted, static_cast<int>(sentences.size()));
    }
}

} // namespace
