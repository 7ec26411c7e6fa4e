// The LR analysers on small grammars: the conflict report, the limits, Stop,
// LALR(1) against merged canonical LR(1) states, and the generated driver.
#include "analysers/Ana07SLR.h"
#include "analysers/Ana08LALR.h"
#include "analysers/Ana09LR.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
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

template <typename Analyser>
bool Analysed(Workspace& ws)
{
    Analyser analyser(ws);
    analyser.SetInProcess(true);
    return analyser.Analyze();
}

TEST(Lr, ShiftWinsAndTheRefusedReduceIsReported)
{
    Ready s(kAmbiguous);
    EXPECT_FALSE(Analysed<Ana07SLR>(s.ws));
    // The state after <E> [+] <E> shifts [+] and cannot also reduce by rule 1 there.
    const LrResults& r = s.ws.slr;
    int state = -1;
    for (int q = 0; q < r.States(); ++q)
        if (RowEntry(r.rows[static_cast<std::size_t>(q)], 1) > 0 && RowEntry(r.rows[static_cast<std::size_t>(q)], 0) == -1)
            state = q;
    ASSERT_GE(state, 0);
    // The reduce of rule 1 is turned away from the cell that holds the shift.
    ASSERT_EQ(r.conflicts.size(), 1u);
    EXPECT_EQ(r.conflicts[0], (Conflict{ConflictMethod::SLR, state, 1, RowEntry(r.rows[static_cast<std::size_t>(state)], 1),
                                        {-1}, ConflictKind::ShiftReduce}));
    EXPECT_EQ(LrConflictText(r.conflicts[0]), QStringLiteral("Unable to write reduce -1 in [%1,1].").arg(state));
    EXPECT_TRUE(s.ws.grammar.GetFlag(GrammarFlag::AnalysedSLR));
    EXPECT_FALSE(s.ws.grammar.GetFlag(GrammarFlag::SLRVerdict));
    Ana07SLR slr(s.ws);
    const QString table = slr.ExportDisplay();
    EXPECT_TRUE(table.startsWith(QStringLiteral("This Grammar Is Not SLR(1).\r\nState 0\r\n")));
    EXPECT_TRUE(table.endsWith(LrConflictText(r.conflicts[0]) + QStringLiteral("\r\n")));
    EXPECT_TRUE(slr.ItemDisplay().startsWith(QStringLiteral("This Grammar Is Not SLR(1).\r\nState 0\r\n    <'> = \u2022 <E>\r\n")));
    EXPECT_FALSE(Analysed<Ana08LALR>(s.ws));
    EXPECT_TRUE(Ana08LALR(s.ws).ExportDisplay().startsWith(QStringLiteral("This Grammar Is Not LALR(1).\r\n")));
    EXPECT_FALSE(Analysed<Ana09LR>(s.ws));
    EXPECT_TRUE(Ana09LR(s.ws).ExportDisplay().startsWith(QStringLiteral("This Grammar Is Not LR(1).\r\n")));
}

TEST(Lr, EmptyRulesReduceInTheStartStateToo)
{
    // "a" is a sentence: <A> must reduce to nothing in state 0 before [a] is shifted.
    Ready s(Lines({"<S>", "<S>=<A>[a]", "<A>="}));
    EXPECT_TRUE(Analysed<Ana07SLR>(s.ws));
    EXPECT_EQ(RowEntry(s.ws.slr.rows[0], 1), -2);
    EXPECT_TRUE(Analysed<Ana08LALR>(s.ws));
    EXPECT_EQ(RowEntry(s.ws.lalr.rows[0], 1), -2);
    EXPECT_TRUE(Analysed<Ana09LR>(s.ws));
    EXPECT_EQ(RowEntry(s.ws.lr.rows[0], 1), -2);
}

TEST(Lr, AcceptAndListings)
{
    Ready s(Lines({"<S>", "<S>=[a]<S>", "<S>=[b]"}));
    ASSERT_TRUE(Analysed<Ana09LR>(s.ws));
    const LrResults& r = s.ws.lr;
    const int acceptState = RowEntry(r.rows[0], s.ws.grammar.goal);
    EXPECT_EQ(RowEntry(r.rows[static_cast<std::size_t>(acceptState)], 0), r.States());  // M + 1
    Ana09LR lr(s.ws);
    const QString table = lr.ExportDisplay();
    EXPECT_TRUE(table.contains(QStringLiteral("State %1\r\n    $   accept\r\n").arg(acceptState))) << table.toStdString();
    EXPECT_TRUE(table.contains(QStringLiteral("    [a] shift ")));
    EXPECT_TRUE(table.contains(QStringLiteral("    <S> goto ")));
    EXPECT_TRUE(table.contains(QStringLiteral("    $   reduce 2\r\n")));
    // LR(1) items carry their look-aheads; the closure shows with DisplayAllItems.
    const QString kernels = lr.ItemDisplay();
    EXPECT_TRUE(kernels.contains(QStringLiteral("    <S> = [a] \u2022 <S> , $\r\n"))) << kernels.toStdString();
    EXPECT_FALSE(kernels.contains(QStringLiteral("<S> = \u2022 [b] , $")));
    s.ws.settings.displayAllItems = 1;
    s.ws.lr.itemText.clear();
    EXPECT_TRUE(lr.ItemDisplay().contains(QStringLiteral("    <S> = \u2022 [b] , $\r\n")));
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

TEST(Lr, StopAtAnyTurnOfTheLalrRunLeavesNoTable)
{
    // The LR(0) passes give the message loop a turn between passes, the two
    // look-ahead walks once per transition; Stop at any of them ends the run.
    Ready full(kExpr);
    full.host.yields = 0;
    full.host.statuses.clear();
    ASSERT_TRUE(Analysed<Ana08LALR>(full.ws));
    const long turns = full.host.yields;
    const long passes = std::count_if(full.host.statuses.begin(), full.host.statuses.end(),
                                      [](const auto& status) { return status.first == StatusField::Pass; });
    ASSERT_GT(turns, passes);  // the look-ahead walks turn the loop too
    for (long k = 1; k <= turns; ++k) {
        Ready s(kExpr);
        Ana08LALR lalr(s.ws);
        lalr.SetInProcess(true);
        s.host.yields = 0;
        s.host.stopAfter = k;
        s.host.stop = [&] { lalr.SetInProcess(false); };
        EXPECT_FALSE(lalr.Analyze()) << "turn " << k;
        EXPECT_FALSE(s.ws.grammar.GetFlag(GrammarFlag::AnalysedLALR)) << "turn " << k;
        EXPECT_EQ(s.ws.lalr.States(), 0) << "turn " << k;
    }
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

QString RandomGrammar(std::mt19937& rng)
{
    const char* nts[] = {"<S>", "<A>", "<B>", "<C>"};
    const char* ts[] = {"[a]", "[b]", "[c]"};
    QString text = QStringLiteral("<S>\r\n");
    for (const char* nt : nts) {
        const int rules = 1 + static_cast<int>(rng() % 3);
        for (int k = 0; k < rules; ++k) {
            text += QString::fromLatin1(nt) + QLatin1Char('=');
            const int length = static_cast<int>(rng() % 4);
            for (int i = 0; i < length; ++i)
                text += QString::fromLatin1(rng() % 2 ? nts[rng() % 4] : ts[rng() % 3]);
            text += QStringLiteral("\r\n");
        }
    }
    return text;
}

TEST(Lr, LalrEqualsMergedCanonicalOnRandomGrammars)
{
    std::mt19937 rng(1234);
    int compared = 0;
    for (int round = 0; round < 300; ++round) {
        const QString text = RandomGrammar(rng);
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
        for (std::size_t s = 0; s < lalr.kernels.size(); ++s) {
            const std::vector<int>& runs = lalr.lookaheads[s];
            for (std::size_t i = 0; i + 1 < runs.size(); i += 2 + static_cast<std::size_t>(runs[i + 1]))
                ours[{lalr.kernels[s], runs[i]}] = std::set<int>(runs.begin() + static_cast<long>(i) + 2,
                                                                 runs.begin() + static_cast<long>(i) + 2 + runs[i + 1]);
        }
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

/// What the LR table says of a token string.
bool Simulate(const Workspace& ws, const LrResults& r, const std::vector<int>& input)
{
    const Grammar& g = ws.grammar;
    std::vector<int> tokens = input;
    tokens.push_back(0);
    std::vector<int> stack{0};
    std::size_t pos = 0;
    const int accept = r.States();
    for (int steps = 0; steps < 1000000; ++steps) {
        const int action = RowEntry(r.rows[static_cast<std::size_t>(stack.back())], tokens[pos]);
        if (action == accept)
            return true;
        if (action > 0) {
            stack.push_back(action);
            if (tokens[pos] != 0)
                ++pos;
        } else if (action < 0) {
            const int rule = -action;
            stack.resize(stack.size() - static_cast<std::size_t>(g.RightLength(rule)));
            const int go = RowEntry(r.rows[static_cast<std::size_t>(stack.back())],
                                    g.rules[static_cast<std::size_t>(rule)][0]);
            if (go <= 0 || go == accept)
                return false;
            stack.push_back(go);
        } else {
            return false;
        }
    }
    return false;
}

TEST(Lr, GeneratedDriverAgreesWithTheTables)
{
    qputenv("SOURCE_DATE_EPOCH", "1700000000");
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
        s.ws.settings.generateRecognizer = 1;
        Analyse(s.ws, s.fe, c.view);
        ASSERT_TRUE(s.ws.grammar.GetFlag(c.view));
        const LrResults& r = c.view == View::SLR ? s.ws.slr : c.view == View::LALR ? s.ws.lalr : s.ws.lr;
        QString errors;
        const QString exe = CompileC(QString::fromLatin1(c.name),
                                     CPrologue(s.ws.grammar) + s.ws.current->TableDisplay()
                                         + CDriverMain(QStringLiteral("lr_recognize")),
                                     errors);
        ASSERT_FALSE(exe.isEmpty()) << errors.toStdString();
        auto sentences = RandomSentences(s.ws.grammar, 150, rng);
        auto wrong = Mutations(s.ws.grammar, sentences, rng);
        sentences.insert(sentences.end(), wrong.begin(), wrong.end());
        const int accepted = ExpectRecognizerAgrees(
            exe, sentences, [&](const std::vector<int>& sentence) { return Simulate(s.ws, r, sentence); });
        EXPECT_GT(accepted, 0);
        EXPECT_LT(accepted, static_cast<int>(sentences.size()));
    }
    qunsetenv("SOURCE_DATE_EPOCH");
}

} // namespace
