// Hostile grammars at small sizes: the left-recursion test on deep chains and
// against the search it stands for, the set limit of each family of grammar
// sets, the table limits of the LL(1) and precedence analysers, and a run that
// the system cannot give memory. The limits are lowered so that each case
// stays small; the defaults are the README's.
#include "analysers/Ana06LL.h"
#include "analysers/Ana10SPR.h"
#include "grammar/Grammar.h"
#include "session/AnalysisRun.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"

#include <gtest/gtest.h>

#include <new>
#include <optional>
#include <random>

namespace {

// ---- The left-recursion test -------------------------------------------------------------

/// The search of note [left-recursion search] as it reads, one call per rule:
/// nullopt when it would never end (a call comes back to a rule on its path) or
/// takes too long for a reference.
std::optional<bool> LiteralSearch(const Grammar& g, const Indexed<std::vector<int>>& rulesOf, int k, int target,
                                  std::vector<int>& path, long& budget)
{
    if (--budget < 0 || std::find(path.begin(), path.end(), k) != path.end())
        return std::nullopt;
    path.push_back(k);
    const int x = g.rules[k][1];
    bool answer = false;
    for (int j : rulesOf[x]) {
        if (j == k)
            continue;
        const int y = g.rules[j][1];
        if (y == target) {
            path.pop_back();
            return true;
        }
        if (g.IsNonterminal(y) && y != x) {
            const std::optional<bool> inner = LiteralSearch(g, rulesOf, j, target, path, budget);
            if (!inner)
                return std::nullopt;
            answer = *inner;
        }
    }
    path.pop_back();
    return answer;
}

/// The marks the literal search gives, or nullopt when it would not end on this grammar.
std::optional<std::vector<char>> LiteralMarks(const Grammar& g)
{
    Indexed<std::vector<int>> rulesOf(g.lastCode + 1);
    for (int r = 1; r <= g.ruleCount; ++r)
        rulesOf[g.rules[r][0]].push_back(r);
    std::vector<char> marks(static_cast<std::size_t>(g.lastCode) + 1, 0);
    for (int r = 1; r <= g.ruleCount; ++r)
        if (g.rules[r][0] == g.rules[r][1])
            marks[static_cast<std::size_t>(g.rules[r][0])] = 1;
    for (int r = 1; r <= g.ruleCount; ++r) {
        const int a = g.rules[r][0];
        if (marks[static_cast<std::size_t>(a)] || !g.IsNonterminal(g.rules[r][1]))
            continue;
        std::vector<int> path;
        long budget = 100000;
        const std::optional<bool> found = LiteralSearch(g, rulesOf, r, a, path, budget);
        if (!found)
            return std::nullopt;
        marks[static_cast<std::size_t>(a)] = *found;
    }
    return marks;
}

/// Random grammars whose right sides mostly start with a non-terminal, so that
/// chains, cycles and "a later rule replaces the answer" all come up.
QString RandomUnitHeavyGrammar(std::mt19937& rng)
{
    const int n = 2 + static_cast<int>(rng() % 6);
    QStringList rules;
    for (int a = 0; a < n; ++a) {
        const int count = 1 + static_cast<int>(rng() % 3);
        for (int k = 0; k < count; ++k) {
            QString right;
            if (rng() % 4 == 0)
                right = QStringLiteral("[t]");
            else
                right = QStringLiteral("<N%1>[x]").arg(rng() % n);
            rules << QStringLiteral("<N%1>=").arg(a) + right;
        }
        rules << QStringLiteral("<N%1>=[e]").arg(a);  // every non-terminal defined
    }
    return GrammarOf(rules);
}

TEST(LeftRecursion, AgreesWithTheSearchItStandsForWhereverThatSearchEnds)
{
    std::mt19937 rng(777);
    int decided = 0, recursive = 0;
    for (int k = 0; k < 3000; ++k) {
        Grammar g;
        const QString text = RandomUnitHeavyGrammar(rng);
        ASSERT_TRUE(g.SetText(text)) << text.toStdString();
        const std::optional<std::vector<char>> expected = LiteralMarks(g);
        if (!expected)
            continue;
        ++decided;
        const std::vector<char> marks(g.leftRecursive.begin(), g.leftRecursive.end());
        ASSERT_EQ(marks, *expected) << text.toStdString();
        const bool any = std::find(marks.begin(), marks.end(), 1) != marks.end();
        EXPECT_EQ(g.GetFlag(GrammarFlag::LeftRecursive), any);
        recursive += any;
    }
    // Enough of both kinds to mean something.
    EXPECT_GT(decided, 1000);
    EXPECT_GT(recursive, 100);
    EXPECT_GT(decided - recursive, 100);
}

TEST(LeftRecursion, ALaterRuleReplacesTheAnswerOfAnEarlierOne)
{
    // <X>'s last rule that starts with a non-terminal is <C>, which never leads
    // back to <A>: the search from <X> answers no for <A>, though <B> would lead
    // back (<B> and <X> themselves are left-recursive through <A>).
    Grammar g;
    ASSERT_TRUE(g.SetText(GrammarOf({"<A>=<X>[a]", "<A>=[a]", "<X>=<B>[b]", "<X>=<C>[c]", "<B>=<A>[b]", "<C>=[c]"})));
    const int a = g.goal;
    EXPECT_EQ(std::vector<char>(g.leftRecursive.begin() + a, g.leftRecursive.end()), (std::vector<char>{0, 1, 1, 0}));
    // With the two rules of <X> the other way round <A> is found as well.
    ASSERT_TRUE(g.SetText(GrammarOf({"<A>=<X>[a]", "<A>=[a]", "<X>=<C>[c]", "<X>=<B>[b]", "<B>=<A>[b]", "<C>=[c]"})));
    EXPECT_EQ(std::vector<char>(g.leftRecursive.begin() + a, g.leftRecursive.end()), (std::vector<char>{1, 1, 0, 1}));
    EXPECT_EQ(g.llRejection, QStringLiteral("Left Recursion Is Not Allowed.\r\nThis Grammar Is Not LL(1)."));
}

TEST(LeftRecursion, ChainsOfTwoHundredThousandRules)
{
    // <N0> = <N1>[a], <N1> = <N2>[a], ... once without and once with the rule
    // that closes the chain into a cycle: deep enough to overflow a recursive
    // search, long enough to show a quadratic one.
    const int n = 200000;
    QStringList rules;
    for (int i = 0; i < n; ++i)
        rules << QStringLiteral("<N%1>=<N%2>[a]").arg(i).arg(i + 1);
    rules << QStringLiteral("<N%1>=[a]").arg(n);
    RecordingHost host;
    Grammar g(&host);
    ASSERT_TRUE(g.SetText(GrammarOf(rules))) << host.Messages().join(QLatin1Char('|')).toStdString();
    EXPECT_FALSE(g.GetFlag(GrammarFlag::LeftRecursive));
    EXPECT_TRUE(g.GetFlag(GrammarFlag::LLPermitted));

    rules << QStringLiteral("<N%1>=<N0>[b]").arg(n);
    ASSERT_TRUE(g.SetText(GrammarOf(rules)));
    EXPECT_TRUE(g.GetFlag(GrammarFlag::LeftRecursive));
    EXPECT_EQ(std::count(g.leftRecursive.begin(), g.leftRecursive.end(), 1), n + 1);
}

// ---- Set limits --------------------------------------------------------------------------

/// <N0> = <N1> | [t0], ..., <Nk> = [tk]: FIRST(<Ni>) holds k - i terminals.
QString FirstChain(int k)
{
    QStringList rules;
    for (int i = 0; i < k; ++i)
        rules << QStringLiteral("<N%1>=<N%2>").arg(i).arg(i + 1) << QStringLiteral("<N%1>=[t%1]").arg(i);
    rules << QStringLiteral("<N%1>=[t%1]").arg(k);
    return GrammarOf(rules);
}

/// <N0> = [x]<N1>[u0] | [x]<N1>, ...: FOLLOWB(<Ni>) holds u0..u(i-1), FIRST stays {x}.
QString FollowChain(int k)
{
    QStringList rules;
    for (int i = 0; i < k; ++i)
        rules << QStringLiteral("<N%1>=[x]<N%2>[u%1]").arg(i).arg(i + 1) << QStringLiteral("<N%1>=[x]<N%2>").arg(i).arg(i + 1);
    rules << QStringLiteral("<N%1>=[x]").arg(k);
    return GrammarOf(rules);
}

TEST(SetLimits, EachFamilyStopsAtTheLimitWithItsMessage)
{
    RecordingHost host;
    Grammar g(&host);
    g.limits.setBytes = 1'000'000;

    // FIRST of a 1,500-rule chain: about 4.5 MB.
    EXPECT_FALSE(g.SetText(FirstChain(1500)));
    EXPECT_EQ(host.criticals, QStringList{QStringLiteral("The FIRST sets need more than 1 MB: too large for this grammar.")});
    EXPECT_FALSE(g.GetFlag(GrammarFlag::FirstDone));
    EXPECT_EQ(g.CommentedFirst(), NotAnalyzed);
    // Within the limit the same chain is computed.
    host.criticals.clear();
    g.limits.setBytes = 100'000'000;
    ASSERT_TRUE(g.SetText(FirstChain(1500)));
    EXPECT_EQ(g.first[g.goal].Count(), 1501);
    EXPECT_EQ(host.criticals, QStringList());

    // FOLLOWB grows, FIRST does not; FOLLOWL and FOLLOWR each copy FOLLOWB.
    g.limits.setBytes = 1'000'000;
    ASSERT_TRUE(g.SetText(FollowChain(1000)));
    g.SetInProcess(true);
    g.FindFollowB();
    EXPECT_FALSE(g.GetFlag(GrammarFlag::FollowBDone));
    EXPECT_FALSE(g.InProcess());
    EXPECT_EQ(host.criticals, QStringList{QStringLiteral("The FOLLOWB sets need more than 1 MB: too large for this grammar.")});

    host.criticals.clear();
    g.limits.setBytes = 4'000'000;  // FOLLOWB takes about 2.5 MB of it: FOLLOWL does not fit beside
    ASSERT_TRUE(g.SetText(FollowChain(1000)));
    g.SetInProcess(true);
    g.FindFollowB();
    ASSERT_TRUE(g.GetFlag(GrammarFlag::FollowBDone));
    g.FindFollowL();
    EXPECT_FALSE(g.GetFlag(GrammarFlag::FollowLDone));
    EXPECT_EQ(host.criticals, QStringList{QStringLiteral("The FOLLOWL sets need more than 4 MB: too large for this grammar.")});
}

TEST(SetLimits, PrecedenceSetsStopTheAnalysisRun)
{
    // The left sets of a chain of unit rules: <Ni> begins with every <Nj>, j > i.
    QStringList rules;
    for (int i = 0; i < 1500; ++i)
        rules << QStringLiteral("<N%1>=<N%2>[a]").arg(i).arg(i + 1);
    rules << QStringLiteral("<N1500>=[a]");
    RecordingHost host;
    Workspace ws(&host);
    ws.grammar.limits.setBytes = 2'000'000;
    RecordingFrontend fe(GrammarOf(rules));
    EXPECT_FALSE(AnalyzeGrammar(ws, fe));
    EXPECT_EQ(host.criticals,
              QStringList{QStringLiteral("The precedence left and right sets need more than 2 MB: too large for this grammar.")});
    EXPECT_FALSE(ws.grammar.precedence.sprSetsDone);
}

// ---- Table limits and memory at the run's boundary ------------------------------------------

/// One non-terminal with a rule per terminal: the tables grow with the square of k.
QString ManyTerminals(int k)
{
    QStringList rules;
    for (int i = 0; i < k; ++i)
        rules << QStringLiteral("<S>=[t%1]").arg(i);
    return GrammarOf(rules);
}

TEST(TableLimits, TheTableIsMeasuredBeforeItIsMadeAndTheRunFails)
{
    RecordingHost host;
    Workspace ws(&host);
    ws.grammar.limits.tableBytes = 1'000'000;
    RecordingFrontend fe(ManyTerminals(2000));
    Analyse(ws, fe, View::LL);
    // 2,002 rows of 2,001 cells, 4 bytes each.
    EXPECT_EQ(host.criticals, QStringList{QStringLiteral("The LL(1) table would need 16 MB: too large for this grammar.")});
    EXPECT_FALSE(ws.grammar.GetFlag(GrammarFlag::AnalysedLL));
    EXPECT_EQ(ws.ll.synta.Rows(), 0);
    EXPECT_EQ(fe.text2, NotAnalyzed);
    EXPECT_FALSE(fe.processing);

    host.criticals.clear();
    Analyse(ws, fe, View::SPR);
    EXPECT_EQ(host.criticals,
              QStringList{QStringLiteral("The simple precedence table would need 4 MB: too large for this grammar.")});
    EXPECT_FALSE(ws.grammar.GetFlag(GrammarFlag::AnalysedSPR));

    // Within the limit the same grammar is analysed.
    host.criticals.clear();
    ws.grammar.limits.tableBytes = 20'000'000;
    Analyse(ws, fe, View::LL);
    EXPECT_TRUE(ws.grammar.GetFlag(GrammarFlag::AnalysedLL));
    EXPECT_EQ(host.criticals, QStringList());
}

TEST(TableLimits, SizeTexts)
{
    EXPECT_EQ(SizeText(40'000'000'000), QStringLiteral("40 GB"));
    EXPECT_EQ(SizeText(16'024'008), QStringLiteral("16 MB"));
    EXPECT_EQ(SizeText(2'147'483'648), QStringLiteral("2.1 GB"));
    EXPECT_EQ(SizeText(1'000'000'000), QStringLiteral("1 GB"));
    EXPECT_EQ(SizeText(999'999'999), QStringLiteral("999 MB"));
    EXPECT_EQ(SizeText(1'500), QStringLiteral("1.5 KB"));
    EXPECT_EQ(SizeText(999), QStringLiteral("999 bytes"));
}

TEST(OutOfMemory, EachRunBoundaryReportsItAndTheRunFails)
{
    // The host throws where an allocation would: in the middle of each computation.
    RecordingHost host;
    Workspace ws(&host);
    host.stop = [] { throw std::bad_alloc(); };
    host.stopAfter = 3;
    RecordingFrontend fe(FirstChain(50));
    EXPECT_FALSE(AnalyzeGrammar(ws, fe));
    EXPECT_EQ(host.criticals, QStringList{kOutOfMemoryText});
    EXPECT_FALSE(ws.grammar.Parsed());
    EXPECT_FALSE(fe.processing);

    // The analyser run: readied first, then the throw inside Analyze.
    host.criticals.clear();
    host.stopAfter = 0;
    ASSERT_TRUE(AnalyzeGrammar(ws, fe));
    host.stopAfter = host.yields + 1;
    Analyse(ws, fe, View::LL);
    EXPECT_EQ(host.criticals, QStringList{kOutOfMemoryText});
    EXPECT_FALSE(ws.grammar.GetFlag(GrammarFlag::AnalysedLL));
    EXPECT_EQ(fe.text2, NotAnalyzed);
    EXPECT_FALSE(fe.processing);
}

} // namespace
