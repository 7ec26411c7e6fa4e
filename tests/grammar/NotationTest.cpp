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
