// Transformations of hostile grammars: a result that would grow past its limit
// is refused while it grows, a run that fails writes no file, a run that
// changes nothing says so, and a run the system cannot give memory reports it.
// The limits are lowered so that each case stays small.
#include "session/TransformCommand.h"
#include "session/Workspace.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"
#include "transform/Transform.h"

#include <QDir>
#include <gtest/gtest.h>

#include <new>
#include <random>

namespace {

/// levels non-terminals, each starting twice with the one before, the first
/// with the last: removing the left recursion doubles the rules at every level.
QString Layered(int levels)
{
    QStringList rules{QStringLiteral("<A0>=<A%1>[w]").arg(levels - 1), QStringLiteral("<A0>=[c]")};
    for (int i = 1; i < levels; ++i)
        rules << QStringLiteral("<A%1>=<A%2>[x]").arg(i).arg(i - 1) << QStringLiteral("<A%1>=<A%2>[y]").arg(i).arg(i - 1)
              << QStringLiteral("<A%1>=[z]").arg(i);
    return GrammarOf(rules);
}

/// ruleCount rules of nullable symbols each: removing the empty rules gives up to 2^nullables rules per rule.
QString Nullables(int ruleCount, int nullables)
{
    QStringList rules;
    for (int r = 0; r < ruleCount; ++r) {
        QString right;
        for (int k = 0; k < nullables; ++k)
            right += QStringLiteral("<B%1>").arg(k);
        rules << QStringLiteral("<S>=") + right + QStringLiteral("[s%1]").arg(r);
    }
    for (int k = 0; k < nullables; ++k)
        rules << QStringLiteral("<B%1>=[b%1]").arg(k) << QStringLiteral("<B%1>=").arg(k);
    return GrammarOf(rules);
}

/// A workspace whose grammar has a path in a scratch folder of its own.
struct Frame : ::testing::Test {
    RecordingHost host;
    Workspace ws{&host};
    QString dir;
    QString newText = QStringLiteral("old");

    void Open(const QString& name)
    {
        dir = ScratchDir(QStringLiteral("transform-limits-") + name);
        ws.grammar.SetPath(dir + QStringLiteral("/g.tkg"));
    }
    QString Run(const QString& code, const QString& text)
    {
        ws.grammar.SetParsed(false);
        return RunTransformation(ws, code, text, newText);
    }
    QStringList Files() const { return QDir(dir).entryList(QDir::Files); }
};

TEST_F(Frame, ALeftRecursionThatDoublesEveryLevelIsRefusedWhileItGrows)
{
    Open(QStringLiteral("lr"));
    ws.grammar.limits.transformRules = 1000;
    EXPECT_EQ(Run(QStringLiteral("LR"), Layered(16)), QString());
    EXPECT_EQ(host.criticals, QStringList{QStringLiteral("Not transformed: the result would have more than 1000 rules.")});
    EXPECT_EQ(newText, QString());
    EXPECT_EQ(Files(), QStringList());
    // The symbols count as well as the rules.
    host.criticals.clear();
    ws.grammar.limits.transformRules = 200000;
    ws.grammar.limits.transformSymbols = 2000;
    EXPECT_EQ(Run(QStringLiteral("LR"), Layered(16)), QString());
    EXPECT_EQ(host.criticals, QStringList{QStringLiteral("Not transformed: the result would have more than 2000 symbols.")});
    // A few levels fit, and the file is written.
    host.criticals.clear();
    EXPECT_EQ(Run(QStringLiteral("LR"), Layered(4)), dir + QStringLiteral("/g-LR.tkg"));
    EXPECT_EQ(host.Messages(), QStringList());
}

TEST_F(Frame, RemovingEmptyRulesIsBoundedPerRuleAndInTotal)
{
    Open(QStringLiteral("re"));
    // 2^18 ways to leave symbols out of one rule pass the default 200,000 rules.
    EXPECT_EQ(Run(QStringLiteral("RE"), Nullables(1, 18)), QString());
    EXPECT_EQ(host.criticals, QStringList{QStringLiteral("Too many nullable symbols in one rule.")});
    // Each rule within its own bound, together past the limit.
    host.criticals.clear();
    ws.grammar.limits.transformRules = 100;
    EXPECT_EQ(Run(QStringLiteral("RE"), Nullables(4, 6)), QString());
    EXPECT_EQ(host.criticals, QStringList{QStringLiteral("Not transformed: the result would have more than 100 rules.")});
    // The limit is never below twice the grammar's own size.
    host.criticals.clear();
    ws.grammar.limits.transformRules = 10;
    EXPECT_EQ(Run(QStringLiteral("RE"), Nullables(20, 1)), dir + QStringLiteral("/g-RE.tkg"));
    EXPECT_EQ(host.Messages(), QStringList());
    EXPECT_EQ(Files(), QStringList{QStringLiteral("g-RE.tkg")});
}

TEST_F(Frame, ATransformationThatChangesNothingSaysSoAndWritesNothing)
{
    Open(QStringLiteral("same"));
    const QString text = GrammarOf({"<S>=[a]<T>", "<T>=[b]<S>", "<T>=[c]"});
    for (const QString& code : TransformCode::All()) {
        host.informations.clear();
        newText = QStringLiteral("old");
        EXPECT_EQ(Run(code, text), QString()) << code.toStdString();
        EXPECT_EQ(host.informations, QStringList{kNothingToChangeText}) << code.toStdString();
        EXPECT_EQ(newText, QString());
    }
    EXPECT_EQ(host.criticals, QStringList());
    EXPECT_EQ(Files(), QStringList());
}

TEST_F(Frame, RefusedStoppedOrOutOfMemoryWritesNoFile)
{
    Open(QStringLiteral("failed"));
    // Refused: the goal derives nothing.
    EXPECT_EQ(Run(QStringLiteral("LR"), GrammarOf({"<S>=<S>[a]"})), QString());
    EXPECT_EQ(host.informations,
              QStringList{QStringLiteral("Not transformed: the goal <S> derives no terminal string.")});

    // Stopped at each of the first yields of the longer operations.
    host.stop = [this] { ws.Stop(); };
    for (const char* code : {"LR", "RE"}) {
        for (long at = 1; at <= 3; ++at) {
            ws.grammar.SetParsed(false);
            ASSERT_TRUE(ws.grammar.SetText(Layered(6) + QStringLiteral("\r\n<A1>=")));
            host.stopAfter = host.yields + at;
            EXPECT_EQ(RunTransformation(ws, QString::fromLatin1(code), QString(), newText), QString());
            EXPECT_EQ(newText, QString());
        }
    }

    // Out of memory: where the next allocation would fail, the host throws.
    ASSERT_TRUE(ws.grammar.SetText(Layered(8)));
    host.stop = [] { throw std::bad_alloc(); };
    host.stopAfter = host.yields + 5;
    EXPECT_EQ(RunTransformation(ws, QStringLiteral("LR"), QString(), newText), QString());
    EXPECT_EQ(host.criticals, QStringList{kOutOfMemoryText});
    EXPECT_FALSE(ws.grammar.InProcess());
    EXPECT_EQ(Files(), QStringList());
}

TEST(TransformLimits, RandomHostileGrammarsStayWithinTheLimitOrAreRefused)
{
    // Layered left recursion and rules of many nullable symbols, mixed at random,
    // under a small limit: every result fits, and every refusal has its message.
    std::mt19937 rng(4242);
    const QStringList refusals{QStringLiteral("Not transformed: the result would have more than 300 rules."),
                               QStringLiteral("Not transformed: the result would have more than 3000 symbols."),
                               QStringLiteral("Too many nullable symbols in one rule.")};
    int refused = 0, done = 0;
    for (int k = 0; k < 60; ++k) {
        QString text = Layered(2 + static_cast<int>(rng() % 12));
        const int nullables = static_cast<int>(rng() % 10);
        for (int i = 0; i < nullables; ++i)
            text += QStringLiteral("\r\n<A1>=<B%1><A0>").arg(i) + QStringLiteral("\r\n<B%1>=\r\n<B%1>=[b]").arg(i);
        for (const QString& code : {QStringLiteral("LR"), QStringLiteral("RE"), QStringLiteral("RC")}) {
            RecordingHost host;
            Grammar g(&host);
            ASSERT_TRUE(g.SetText(text));
            g.limits.transformRules = 300;
            g.limits.transformSymbols = 3000;
            const QString result = ApplyTransformation(g, code, false);
            if (result.isEmpty()) {
                ASSERT_EQ(host.criticals.size(), 1) << text.toStdString();
                EXPECT_TRUE(refusals.contains(host.criticals[0])) << host.criticals[0].toStdString();
                ++refused;
                continue;
            }
            EXPECT_EQ(host.Messages(), QStringList());
            EXPECT_LE(result.count(QStringLiteral("\r\n")), 300 + 1) << code.toStdString();
            ++done;
        }
    }
    EXPECT_GT(refused, 10);
    EXPECT_GT(done, 10);
}

} // namespace
