// The grammar notation: the coding of the documented example, and what a blank,
// failed or stopped parse leaves. Every message with its line and position, and
// what the notation's corner cases parse to, are golden cases (check-error-*,
// notation-*).
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
    EXPECT_EQ((std::vector<int>{g.terminalCount, g.firstNonterminal, g.lastCode, g.goal}), (std::vector<int>{2, 3, 4, 3}));
    QStringList names;
    for (int c = -2; c <= g.lastCode; ++c)
        names << g.SymbolName(c);
    EXPECT_EQ(names.join(QLatin1Char(' ')), QStringLiteral("<'> \u2022 . + a E T"));
    EXPECT_EQ(g.rules, (Rules{{-2, 3}, {3, 3, 1, 4}, {3, 4}, {4, 2}}));
    EXPECT_EQ(p.g.Text(), Lines({"#0 <E>", "#1 <E>=<E>[+]<T>", "#2 <E>=<T>", "#3 <T>=[a]"}));
    EXPECT_EQ(p.g.grammarText, p.g.Text());
}

struct BadText {
    const char* text;
    const char* message;
    int line;    ///< where the editor puts the cursor: 0 for no place
    int column;  ///< 0 for the line only
};

class NotationErrors : public ::testing::TestWithParam<BadText> {};

// The messages themselves are golden cases (check-error-*); here the place kept beside
// them, one case for each place in the parser that reports an error.
TEST_P(NotationErrors, ShowExactlyOneMessageAndKeepItsPlace)
{
    Parse p(QString::fromUtf8(GetParam().text));
    EXPECT_FALSE(p.ok);
    EXPECT_FALSE(p.g.Parsed());
    EXPECT_FALSE(p.g.GetFlag(GrammarFlag::Parsed));
    ASSERT_EQ(p.host.criticals, QStringList{QString::fromUtf8(GetParam().message)});
    // The place is kept as data beside the message, never read back from it.
    ASSERT_TRUE(p.g.LastParseError());
    EXPECT_EQ(*p.g.LastParseError(), (ParseError{GetParam().line, GetParam().column, p.host.criticals[0]}));
}

INSTANTIATE_TEST_SUITE_P(
    Messages, NotationErrors,
    ::testing::Values(
        BadText{"<E\r\n<E>=[a]", "Первая строка должна содержать целевой символ.", 1, 0},
        BadText{"<E>\r\n<E>", "Unexpected end of line 2.", 2, 0},
        BadText{"<E>\r\n<E>=[a]\r\n<E>=[b]\r\nx<F>", "Unexpected end of line 4.", 4, 0},
        BadText{"<E>\r\n<E>=[a]<F", "Unclosed nonterminal in line 2.", 2, 0},
        BadText{"<E>\r\n<E>=<>", "Empty nonterminal in line 2.", 2, 0},
        BadText{"<E>\r\n<E>=[a", "Unclosed terminal in line 2.", 2, 0},
        BadText{"<E>\r\n<E>=[]", "Empty terminal in line 2.", 2, 0},
        BadText{"<E>\r\n<E>=[a][]", "Empty terminal in line 2.", 2, 0},
        BadText{"<E>\r\n<E>[a]", "Equal sign (=) expected in line 2.", 2, 0},
        BadText{"<E>\r\n<E>=.[a]", "Extra character \"[\" in [2,6].", 2, 6},
        BadText{"<E>\r\n#7 <E> = [a] x", "Extra character \"x\" in [2,8].", 2, 8},
        BadText{"<E>\r\n<E>=[a]\r\n<E>=[b]\r\n<E>=[a]..", "Extra character \".\" in [4,9].", 4, 9},
        BadText{"<E>\r\n<E>=<F><G>\r\n<G>=[g]", "Non-terminal F is not defined.", 0, 0}));

TEST(Notation, WhatABlankFailedOrStoppedParseLeaves)
{
    Parse p(QStringLiteral("<S>\r\n<S>=[a]"));
    ASSERT_TRUE(p.ok);
    for (const char* blank : {"", "    ", "\r\n  \r\n", " \r\n\r\n "}) {  // the previous grammar stays
        EXPECT_FALSE(p.g.SetText(QString::fromUtf8(blank)));
        EXPECT_TRUE(p.g.Parsed());
        EXPECT_EQ(p.g.ruleCount, 1);
    }
    EXPECT_TRUE(p.host.criticals.isEmpty());
    EXPECT_FALSE(p.g.SetText(QStringLiteral("<S>\r\n<S>=[a")));
    EXPECT_FALSE(p.g.Parsed());

    ASSERT_TRUE(p.g.SetText(QStringLiteral("<S>\r\n<S>=[a]")));
    p.host.stopAfter = p.host.yields + 2;
    p.host.stop = [&] { p.g.SetInProcess(false); };
    EXPECT_FALSE(p.g.SetText(Lines({"<S>", "<S>=[a]", "<S>=[b]", "<S>=[c]"})));
    EXPECT_FALSE(p.g.Parsed());
    EXPECT_EQ(p.host.criticals.size(), 1);  // the earlier failure's only
    EXPECT_EQ(p.host.yields, p.host.stopAfter);
}

} // namespace
