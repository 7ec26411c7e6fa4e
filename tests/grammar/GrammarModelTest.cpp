// The grammar model: path properties, the left-recursion marks with their
// deliberate quirks, and the Text round trip over the corpus. The grammar-wide
// flags and name widths show in the golden cases (export-*-0-grammar, the
// precedence refusals, the widths of reports and tables).
#include "grammar/Grammar.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"

#include <QFileInfo>
#include <gtest/gtest.h>

namespace {

/// The names of the non-terminals marked left-recursive, in code order.
QStringList LeftRecursive(const Grammar& g)
{
    QStringList names;
    for (int a = g.firstNonterminal; a <= g.lastCode; ++a)
        if (g.leftRecursive[static_cast<std::size_t>(a)])
            names << g.SymbolName(a);
    return names;
}

TEST(GrammarModel, PathGivesFolderAndName)
{
    Grammar g;
    g.SetPath(QStringLiteral("C:\\g\\expr.tkg"));
    EXPECT_EQ(g.InitDir(), QStringLiteral("C:\\g\\"));
    EXPECT_EQ(g.Name(), QStringLiteral("expr"));
    EXPECT_EQ(g.Path(), QStringLiteral("C:\\g\\expr.tkg"));
    g.SetPath(QStringLiteral("/home/u/gr/calc.txt"));
    EXPECT_EQ(g.InitDir(), QStringLiteral("/home/u/gr/"));
    EXPECT_EQ(g.Name(), QStringLiteral("calc"));
    // The last four characters go whatever they are.
    g.SetPath(QStringLiteral("/tmp/grammar"));
    EXPECT_EQ(g.Name(), QStringLiteral("gra"));
    // Without a separator only the path changes.
    g.SetPath(QStringLiteral("other.tkg"));
    EXPECT_EQ(g.Path(), QStringLiteral("other.tkg"));
    EXPECT_EQ(g.InitDir(), QStringLiteral("/tmp/"));
    EXPECT_EQ(g.Name(), QStringLiteral("gra"));
}

TEST(GrammarModel, ClearEmptiesEverythingButThePath)
{
    Grammar g;
    g.SetPath(QStringLiteral("/x/expr.tkg"));
    ASSERT_TRUE(g.SetText(Lines({"<E>", "<E>=<E>[+][a]", "<E>=[a]"})));
    EXPECT_TRUE(g.GetFlag(GrammarFlag::Parsed));
    g.Clear();
    EXPECT_EQ(g.Text(), QString());
    EXPECT_FALSE(g.GetFlag(GrammarFlag::Parsed));
    EXPECT_FALSE(g.GetFlag(GrammarFlag::FirstDone));
    EXPECT_FALSE(g.FlagValue(GrammarFlag::LeftRecursive).has_value());
    EXPECT_FALSE(g.Parsed());
    EXPECT_EQ(g.ruleCount, 0);
    EXPECT_EQ(g.CommentedFirst(), NotAnalyzed);
    EXPECT_EQ(g.followBReport, NotAnalyzed);
    EXPECT_EQ(g.Name(), QStringLiteral("expr"));
}

TEST(GrammarModel, IndirectLeftRecursion)
{
    Grammar g;
    ASSERT_TRUE(g.SetText(Lines({"<S>", "<S>=<A>[a]", "<A>=<B>[b]", "<B>=<S>[c]", "<B>=[d]"})));
    EXPECT_TRUE(g.GetFlag(GrammarFlag::LeftRecursive));
    EXPECT_EQ(LeftRecursive(g), (QStringList{QStringLiteral("S"), QStringLiteral("A"), QStringLiteral("B")}));
}

TEST(GrammarModel, LeftRecursionLooksAtTheFirstSymbolOnly)
{
    // <A> =>* <A> through the nullable <B>, but nullable prefixes are not skipped.
    Grammar g;
    ASSERT_TRUE(g.SetText(Lines({"<A>", "<A>=<B><A>[x]", "<A>=[y]", "<B>="})));
    EXPECT_FALSE(g.GetFlag(GrammarFlag::LeftRecursive));
    EXPECT_TRUE(g.GetFlag(GrammarFlag::LLPermitted));
}

TEST(GrammarModel, ALaterNoReplacesAnEarlierYes)
{
    // From <X> the search for <A> finds yes through <Y>, then no through <Z>;
    // the last answer stands, so <A> stays unmarked (kept on purpose).
    Grammar g;
    ASSERT_TRUE(g.SetText(Lines({"<A>", "<A>=<X>[a]", "<X>=<Y>", "<X>=<Z>", "<Y>=<A>[b]", "<Z>=[z]"})));
    EXPECT_TRUE(g.GetFlag(GrammarFlag::LeftRecursive));
    EXPECT_EQ(LeftRecursive(g), (QStringList{QStringLiteral("X"), QStringLiteral("Y")}));
    // The rule order decides: with the yes last, <A> is found.
    Grammar h;
    ASSERT_TRUE(h.SetText(Lines({"<A>", "<A>=<X>[a]", "<X>=<Z>", "<X>=<Y>", "<Y>=<A>[b]", "<Z>=[z]"})));
    EXPECT_EQ(LeftRecursive(h), (QStringList{QStringLiteral("A"), QStringLiteral("X"), QStringLiteral("Y")}));
}

TEST(GrammarModel, ACycleAwayFromTheSearchedSymbolEnds)
{
    // Searching from <B> for <S> runs into the cycle <B> -> <C> -> <B>, which the
    // literal search never leaves.
    Grammar g;
    ASSERT_TRUE(g.SetText(Lines({"<S>", "<S>=<B>[x]", "<B>=<C>", "<C>=<B>[y]", "<C>=[z]"})));
    EXPECT_EQ(LeftRecursive(g), (QStringList{QStringLiteral("B"), QStringLiteral("C")}));
}

TEST(GrammarModel, LongChainsTakeLinearTime)
{
    // Two rules per link: the literal search would walk 2^n paths.
    QString text = QStringLiteral("<N0>\r\n");
    const int n = 3000;
    for (int i = 0; i < n; ++i) {
        text += QStringLiteral("<N%1>=<N%2>[x]\r\n<N%1>=<N%2>[y]\r\n").arg(i).arg(i + 1);
    }
    text += QStringLiteral("<N%1>=[z]\r\n").arg(n);
    Grammar g;
    ASSERT_TRUE(g.SetText(text));
    EXPECT_FALSE(g.GetFlag(GrammarFlag::LeftRecursive));
    // Closing the chain into a loop makes every link left-recursive.
    text += QStringLiteral("<N%1>=<N0>[w]\r\n").arg(n);
    ASSERT_TRUE(g.SetText(text));
    EXPECT_TRUE(g.GetFlag(GrammarFlag::LeftRecursive));
    EXPECT_EQ(LeftRecursive(g).size(), n + 1);
}

TEST(GrammarModel, TextRoundTripsEveryCorpusGrammar)
{
    const QStringList files = CorpusGrammars();
    for (const QString& file : files) {
        RecordingHost host;
        Grammar g(&host);
        ASSERT_TRUE(g.SetText(ReadGrammarText(file))) << file.toStdString() << ": "
                                                      << host.criticals.value(0).toStdString();
        const QString text = g.Text();
        Grammar again(&host);
        ASSERT_TRUE(again.SetText(text)) << file.toStdString();
        EXPECT_EQ(again.symbolNames, g.symbolNames) << file.toStdString();
        EXPECT_EQ(again.rules, g.rules) << file.toStdString();
        EXPECT_EQ(again.Text(), text) << file.toStdString();
        EXPECT_TRUE(host.criticals.isEmpty()) << file.toStdString();
    }
}

TEST(GrammarModel, CorpusGrammarsHaveTheirDocumentedCounts)
{
    // T / N / R as the corpus README lists them for the real grammars.
    struct Counts {
        const char* name;
        int t, n, r;
    };
    const Counts expected[] = {{"calc", 9, 5, 13},      {"bc", 50, 35, 111},     {"bash", 60, 39, 179},
                               {"gawk", 73, 71, 208},   {"ansic89", 82, 63, 211}, {"c11", 100, 85, 290},
                               {"java", 102, 157, 350}, {"go14", 70, 141, 351}, {"python", 81, 202, 387},
                               {"php", 155, 136, 496},  {"postgres", 531, 726, 3401}, {"mysql", 816, 1059, 3340}};
    for (const Counts& c : expected) {
        const QString file = CorpusDir() + QLatin1Char('/') + QString::fromLatin1(c.name) + QStringLiteral(".tkg");
        ASSERT_TRUE(QFileInfo(file).isFile()) << file.toStdString();
        Grammar g;
        ASSERT_TRUE(g.SetText(ReadGrammarText(file))) << c.name;
        EXPECT_EQ(g.terminalCount, c.t) << c.name;
        EXPECT_EQ(g.NonterminalCount(), c.n) << c.name;
        EXPECT_EQ(g.ruleCount, c.r) << c.name;
    }
}

} // namespace
