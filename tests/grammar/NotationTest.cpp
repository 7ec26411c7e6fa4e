// The grammar notation: what parses to what, and every message with its line
// and position.
#include "grammar/Grammar.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"

#include <gtest/gtest.h>

namespace {

using Rules = std::vector<std::vector<int>>;

struct Parse {
    RecordingHost host;
    Grammar g{&host};
    bool ok = false;

    explicit Parse(const QString& text) { ok = g.SetText(text); }
    /// The one message the parse showed ("" when none).
    QString Message() const
    {
        EXPECT_LE(host.criticals.size(), 1);
        return host.criticals.value(0);
    }
    Rules UserRules() const { return Rules(g.rules.begin() + 1, g.rules.end()); }
};

std::string S(const QString& s)
{
    return s.toStdString();
}

TEST(Notation, ExampleGrammarIsCodedAsDocumented)
{
    Parse p(Lines({"<E>", "<E> = <E> [+] <T>", "<E> = <T>", "<T> = [a]"}));
    ASSERT_TRUE(p.ok) << S(p.Message());
    const Grammar& g = p.g;
    EXPECT_EQ(g.terminalCount, 2);
    EXPECT_EQ(g.firstNonterminal, 3);
    EXPECT_EQ(g.lastCode, 4);
    EXPECT_EQ(g.goal, 3);
    EXPECT_EQ(g.SymbolName(1), QStringLiteral("+"));
    EXPECT_EQ(g.SymbolName(2), QStringLiteral("a"));
    EXPECT_EQ(g.SymbolName(3), QStringLiteral("E"));
    EXPECT_EQ(g.SymbolName(4), QStringLiteral("T"));
    EXPECT_EQ(g.SymbolName(-2), QStringLiteral("<'>"));
    EXPECT_EQ(g.SymbolName(-1), QString(QChar(0x2022)));
    EXPECT_EQ(g.SymbolName(0), QStringLiteral("."));
    EXPECT_EQ(g.rules, (Rules{{-2, 3}, {3, 3, 1, 4}, {3, 4}, {4, 2}}));
    EXPECT_EQ(p.g.Text(), Lines({"#0 <E>", "#1 <E>=<E>[+]<T>", "#2 <E>=<T>", "#3 <T>=[a]"}));
    EXPECT_EQ(p.g.grammarText, p.g.Text());
    EXPECT_TRUE(p.host.criticals.isEmpty());
}

struct BadText {
    const char* text;
    const char* message;
};

class NotationErrors : public ::testing::TestWithParam<BadText> {};

TEST_P(NotationErrors, ShowExactlyOneMessage)
{
    Parse p(QString::fromUtf8(GetParam().text));
    EXPECT_FALSE(p.ok);
    EXPECT_FALSE(p.g.Parsed());
    EXPECT_FALSE(p.g.GetFlag(GrammarFlag::Parsed));
    ASSERT_EQ(p.host.criticals.size(), 1);
    EXPECT_EQ(S(p.host.criticals[0]), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Messages, NotationErrors,
    ::testing::Values(
        BadText{"E\r\n<E>=[a]", "Первая строка должна содержать целевой символ."},
        BadText{"<E>x\r\n<E>=[a]", "Первая строка должна содержать целевой символ."},
        BadText{"<E\r\n<E>=[a]", "Первая строка должна содержать целевой символ."},
        BadText{"<E>\r\n<E>", "Unexpected end of line 2."},
        BadText{"<E>\r\n<E>=[a]\r\n<E>=[b]\r\nx<F>", "Unexpected end of line 4."},
        BadText{"<E>\r\n<E=[a]", "Unclosed nonterminal in line 2."},
        BadText{"<E>\r\n<E>=[a]<F", "Unclosed nonterminal in line 2."},
        BadText{"<E>\r\n<>=[a]", "Empty nonterminal in line 2."},
        BadText{"<E>\r\n<E>=<>", "Empty nonterminal in line 2."},
        BadText{"<E>\r\n<E>=[a", "Unclosed terminal in line 2."},
        BadText{"<E>\r\n<E>=[]", "Empty terminal in line 2."},
        BadText{"<E>\r\n<E>=[a][]", "Empty terminal in line 2."},
        BadText{"<E>\r\n<E>[a]", "Equal sign (=) expected in line 2."},
        BadText{"<E>\r\n<E>:=[a]", "Equal sign (=) expected in line 2."},
        // Positions count on the cut, space-free line.
        BadText{"<E>\r\n<E>=[a]x", "Extra character \"x\" in [2,8]."},
        BadText{"<E>\r\n#7 <E> = [a] x", "Extra character \"x\" in [2,8]."},
        BadText{"<E>\r\n<E>=[a]\r\n<E>=[b]\r\n<E>=<E>+[c]", "Extra character \"+\" in [4,8]."},
        BadText{"<E>\r\n<E>=.[a]", "Extra character \"[\" in [2,6]."},
        BadText{"<E>\r\n<E>=[a]..", "Extra character \".\" in [2,9]."},
        BadText{"<E>\r\n<E>=[a]\t", "Extra character \"\t\" in [2,8]."},
        BadText{"<E>\r\n<E>=<F>", "Non-terminal F is not defined."},
        BadText{"<E>\r\n<E>=<F><G>\r\n<G>=[g]", "Non-terminal F is not defined."},
        BadText{"<E>", "Non-terminal E is not defined."},
        BadText{"<>", "Non-terminal  is not defined."}));

TEST(Notation, LineNumbersCountNonBlankLinesOnly)
{
    // Blank lines (also lines of spaces) do not count; comment lines do.
    EXPECT_EQ(S(Parse(QStringLiteral("<E>\r\n\r\n    \r\n<E>=[a]x")).Message()), "Extra character \"x\" in [2,8].");
    EXPECT_EQ(S(Parse(QStringLiteral("\r\n  <E>\r\nsome comment\r\n<E>=[a]x")).Message()),
              "Extra character \"x\" in [3,8].");
}

TEST(Notation, GoalLineForms)
{
    for (const char* goal : {"Goal:<E>", "#0 <E>", "<<E>", "  < E >  "}) {
        Parse p(QString::fromUtf8(goal) + QStringLiteral("\r\n<E>=[a]"));
        ASSERT_TRUE(p.ok) << goal << ": " << S(p.Message());
        EXPECT_EQ(p.g.SymbolName(p.g.goal), QStringLiteral("E")) << goal;
    }
}

TEST(Notation, TextBeforeTheFirstAngleIsCut)
{
    // "-- " is no comment mark on a line that holds "<": the text before "<" is cut first.
    for (const char* line : {"x<A>=[a]", "-- <A>=[a]", "' <A>=[a]", "#3 <A>=[a]"}) {
        Parse p(QStringLiteral("<A>\r\n") + QString::fromUtf8(line));
        ASSERT_TRUE(p.ok) << line << ": " << S(p.Message());
        EXPECT_EQ(p.UserRules(), (Rules{{2, 1}})) << line;
    }
    Parse comments(Lines({"<A>", "-- a comment", "' another", "<A>=[a]"}));
    ASSERT_TRUE(comments.ok);
    EXPECT_EQ(comments.g.ruleCount, 1);
}

TEST(Notation, SpacesAreNotSignificantAnywhere)
{
    Parse spaced(QStringLiteral("<E>\r\n< E >= [ a b ] < E >"));
    Parse tight(QStringLiteral("<E>\r\n<E>=[ab]<E>"));
    ASSERT_TRUE(spaced.ok && tight.ok);
    EXPECT_EQ(spaced.g.rules, tight.g.rules);
    EXPECT_EQ(spaced.g.SymbolName(1), QStringLiteral("ab"));
}

TEST(Notation, BracketNamesAndTheClosingBracketTerminal)
{
    Parse p(Lines({"<S>", "<S>=[]][x]<a[b>", "<a[b>=[<>.=[]"}));
    ASSERT_TRUE(p.ok) << S(p.Message());
    EXPECT_EQ(p.g.SymbolName(1), QStringLiteral("]"));
    EXPECT_EQ(p.g.SymbolName(2), QStringLiteral("x"));
    // A terminal may hold "<", ">", "[", "=", "."; a non-terminal "[" and "<".
    EXPECT_EQ(p.g.SymbolName(3), QStringLiteral("<>.=["));
    EXPECT_EQ(p.g.SymbolName(4), QStringLiteral("S"));
    EXPECT_EQ(p.g.SymbolName(5), QStringLiteral("a[b"));
    // After "[]" the name runs to the next "]" and includes it.
    Parse p3(Lines({"<S>", "<S>=[]ab]"}));
    ASSERT_TRUE(p3.ok);
    EXPECT_EQ(p3.g.SymbolName(1), QStringLiteral("ab]"));
    // Terminals and non-terminals of the same name are different symbols.
    Parse p4(Lines({"<a>", "<a>=[a]"}));
    ASSERT_TRUE(p4.ok);
    EXPECT_EQ(p4.g.rules[1], (std::vector<int>{2, 1}));
}

TEST(Notation, EmptyRulesAndTheEndMarker)
{
    Parse bare(Lines({"<S>", "<S>=[a]<A>", "<A>="}));
    Parse dot(Lines({"<S>", "<S>=[a]<A>", "<A>=."}));
    ASSERT_TRUE(bare.ok && dot.ok);
    EXPECT_EQ(bare.g.rules, dot.g.rules);
    EXPECT_EQ(bare.g.rules[2], (std::vector<int>{3, 0}));
    EXPECT_TRUE(bare.g.ruleIsEmpty[2]);
    EXPECT_TRUE(bare.g.hasEmptyRule[3]);
    EXPECT_TRUE(bare.g.GetFlag(GrammarFlag::HasEmptyRule));

    Parse both(Lines({"<S>", "<S>=[a]<A>", "<A>=", "<A>=."}));
    ASSERT_TRUE(both.ok);
    EXPECT_EQ(both.g.ruleCount, 2);

    Parse ending(Lines({"<S>", "<S>=<B>.", "<B>=[b]"}));
    ASSERT_TRUE(ending.ok);
    EXPECT_EQ(ending.g.rules[1], (std::vector<int>{2, 3, 0}));
    EXPECT_FALSE(ending.g.ruleIsEmpty[1]);
    EXPECT_FALSE(ending.g.GetFlag(GrammarFlag::HasEmptyRule));
    EXPECT_EQ(ending.g.Text(), Lines({"#0 <S>", "#1 <S>=<B>.", "#2 <B>=[b]"}));
}

TEST(Notation, DroppedRulesCloseUpTheNumbers)
{
    Parse p(Lines({"<S>", "<S>=<S>", "<S>=[a]", "<S>=[a]", "<S>=<S>[a]", "<S>=[a]"}));
    ASSERT_TRUE(p.ok);
    EXPECT_EQ(p.g.ruleCount, 2);
    EXPECT_EQ(p.g.Text(), Lines({"#0 <S>", "#1 <S>=[a]", "#2 <S>=<S>[a]"}));
    // "<A>=<A>." is not "<A>=<A>": it stays.
    Parse q(Lines({"<S>", "<S>=[a]", "<S>=<S>."}));
    ASSERT_TRUE(q.ok);
    EXPECT_EQ(q.g.ruleCount, 2);
}

TEST(Notation, BlankTextKeepsThePreviousGrammar)
{
    RecordingHost host;
    Grammar g(&host);
    ASSERT_TRUE(g.SetText(QStringLiteral("<S>\r\n<S>=[a]")));
    for (const char* blank : {"", "    ", "\r\n  \r\n", " \r\n\r\n "}) {
        EXPECT_FALSE(g.SetText(QString::fromUtf8(blank)));
        EXPECT_TRUE(g.Parsed());
        EXPECT_EQ(g.ruleCount, 1);
    }
    EXPECT_TRUE(host.criticals.isEmpty());
}

TEST(Notation, AFailedParseLeavesAnUnparsedGrammar)
{
    RecordingHost host;
    Grammar g(&host);
    ASSERT_TRUE(g.SetText(QStringLiteral("<S>\r\n<S>=[a]")));
    EXPECT_FALSE(g.SetText(QStringLiteral("<S>\r\n<S>=[a")));
    EXPECT_FALSE(g.Parsed());
    EXPECT_FALSE(g.GetFlag(GrammarFlag::Parsed));
}

TEST(Notation, StopDuringTheParseEndsIt)
{
    RecordingHost host;
    Grammar g(&host);
    host.stopAfter = 2;
    host.stop = [&] { g.SetInProcess(false); };
    EXPECT_FALSE(g.SetText(Lines({"<S>", "<S>=[a]", "<S>=[b]", "<S>=[c]"})));
    EXPECT_FALSE(g.Parsed());
    EXPECT_TRUE(host.criticals.isEmpty());
    EXPECT_EQ(host.yields, 2);
}

} // namespace
