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
    // Without a separator only the path changes; the last four characters go whatever they are.
    const char* const paths[][3] = {{"C:\\g\\expr.tkg", "C:\\g\\", "expr"},
                                    {"/home/u/gr/calc.txt", "/home/u/gr/", "calc"},
                                    {"/tmp/grammar", "/tmp/", "gra"},
                                    {"other.tkg", "/tmp/", "gra"}};
    Grammar g;
    for (const auto& [path, dir, name] : paths) {
        g.SetPath(QString::fromUtf8(path));
        EXPECT_EQ((QStringList{g.Path(), g.InitDir(), g.Name()}),
                  (QStringList{QString::fromUtf8(path), QString::fromUtf8(dir), QString::fromUtf8(name)}));
    }
}

TEST(GrammarModel, ClearEmptiesEverythingButThePath)
{
    Grammar g;
    g.SetPath(QStringLiteral("/x/expr.tkg"));
    ASSERT_TRUE(g.SetText(Lines({"<E>", "<E>=<E>[+][a]", "<E>=[a]"})));
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

TEST(GrammarModel, LeftRecursionMarks)
{
    const struct {
        QString text;
        QStringList marked;
    } cases[] = {
        {Lines({"<S>", "<S>=<A>[a]", "<A>=<B>[b]", "<B>=<S>[c]", "<B>=[d]"}),
         {QStringLiteral("S"), QStringLiteral("A"), QStringLiteral("B")}},
        // <A> =>* <A> through the nullable <B>, but nullable prefixes are not skipped.
        {Lines({"<A>", "<A>=<B><A>[x]", "<A>=[y]", "<B>="}), {}},
        // From <X> the search for <A> finds yes through <Y>, then no through <Z>;
        // the last answer stands, so <A> stays unmarked (kept on purpose)...
        {Lines({"<A>", "<A>=<X>[a]", "<X>=<Y>", "<X>=<Z>", "<Y>=<A>[b]", "<Z>=[z]"}),
         {QStringLiteral("X"), QStringLiteral("Y")}},
        // ...so the rule order decides: with the yes last, <A> is found.
        {Lines({"<A>", "<A>=<X>[a]", "<X>=<Z>", "<X>=<Y>", "<Y>=<A>[b]", "<Z>=[z]"}),
         {QStringLiteral("A"), QStringLiteral("X"), QStringLiteral("Y")}},
        // Searching from <B> for <S> runs into the cycle <B> -> <C> -> <B>, which
        // the literal search never leaves.
        {Lines({"<S>", "<S>=<B>[x]", "<B>=<C>", "<C>=<B>[y]", "<C>=[z]"}), {QStringLiteral("B"), QStringLiteral("C")}},
    };
    for (const auto& c : cases) {
        Grammar g;
        ASSERT_TRUE(g.SetText(c.text));
        EXPECT_EQ(LeftRecursive(g), c.marked) << c.text.toStdString();
        EXPECT_EQ(g.GetFlag(GrammarFlag::LeftRecursive), !c.marked.isEmpty()) << c.text.toStdString();
        EXPECT_EQ(g.GetFlag(GrammarFlag::LLPermitted), c.marked.isEmpty()) << c.text.toStdString();
    }
}

TEST(GrammarModel, LongChainsTakeLinearTime)
{
    // Two rules per link: the literal search would walk 2^n paths.
    QString text = QStringLiteral("<N0>\r\n");
    const int n = 3000;
    for (int i = 0; i < n; ++i)
        text += QStringLiteral("<N%1>=<N%2>[x]\r\n<N%1>=<N%2>[y]\r\n").arg(i).arg(i + 1);
    text += QStringLiteral("<N%1>=[z]\r\n").arg(n);
    Grammar g;
    ASSERT_TRUE(g.SetText(text));
    EXPECT_FALSE(g.GetFlag(GrammarFlag::LeftRecursive));
    // Closing the chain into a loop makes every link left-recursive.
    ASSERT_TRUE(g.SetText(text + QStringLiteral("<N%1>=<N0>[w]\r\n").arg(n)));
    EXPECT_EQ(LeftRecursive(g).size(), n + 1);
}

TEST(GrammarModel, TextRoundTripsEveryCorpusGrammar)
{
    for (const QString& file : CorpusGrammars()) {
        RecordingHost host;
        Grammar g(&host), again(&host);
        ASSERT_TRUE(g.SetText(ReadGrammarText(file))) << file.toStdString() << ": "
                                                      << host.criticals.value(0).toStdString();
        ASSERT_TRUE(again.SetText(g.Text())) << file.toStdString();
        EXPECT_EQ(again.symbolNames, g.symbolNames) << file.toStdString();
        EXPECT_EQ(again.rules, g.rules) << file.toStdString();
        EXPECT_EQ(again.Text(), g.Text()) << file.toStdString();
    }
}

TEST(GrammarModel, CorpusGrammarsHaveTheirDocumentedCounts)
{
    // T / N / R as the corpus README lists them for the real grammars.
    const struct {
        const char* name;
        int t, n, r;
    } expected[] = {{"calc", 9, 5, 13},      {"bc", 50, 35, 111},     {"bash", 60, 39, 179},
                    {"gawk", 73, 71, 208},   {"ansic89", 82, 63, 211}, {"c11", 100, 85, 290},
                    {"java", 102, 157, 350}, {"go14", 70, 141, 351}, {"python", 81, 202, 387},
                    {"php", 155, 136, 496},  {"postgres", 531, 726, 3401}, {"mysql", 816, 1059, 3340}};
    for (const auto& c : expected) {
        const QString file = CorpusDir() + QLatin1Char('/') + QString::fromLatin1(c.name) + QStringLiteral(".tkg");
        ASSERT_TRUE(QFileInfo(file).isFile()) << file.toStdString();
        Grammar g;
        ASSERT_TRUE(g.SetText(ReadGrammarText(file))) << c.name;
        EXPECT_EQ((std::vector<int>{g.terminalCount, g.NonterminalCount(), g.ruleCount}),
                  (std::vector<int>{c.t, c.n, c.r}))
            << c.name;
    }
}

} // namespace
