// The LL(1) analyser: the codes past 253 rules, and the generated recognizer
// compiled and run against the table. The listings, verdicts and C texts of
// small grammars are golden cases (view-ll-*, table-ll-*).
#include "analysers/Ana06LL.h"
#include "support/GrammarSamples.h"
#include "support/Simulators.h"
#include "support/RecordingHost.h"
#include "support/ScopedEnv.h"
#include "support/TestPaths.h"

#include <QProcessEnvironment>
#include <gtest/gtest.h>

namespace {

/// The workspace of text, readied and analysed by LL(1).
struct LL {
    RecordingHost host;
    Workspace ws{&host};
    bool verdict = false;

    explicit LL(const QString& text)
    {
        RecordingFrontend frontend(text);
        verdict = AnalyzeGrammar(ws, frontend) && Analysed<Ana06LL>(ws);
    }
};

TEST(LL1, CodesGrowWithTheRuleCount)
{
    EXPECT_EQ((std::vector<int>{Ana06LL::PopCode(253), Ana06LL::AccCode(253), Ana06LL::PopCode(254), Ana06LL::AccCode(254)}),
              (std::vector<int>{254, 255, 255, 256}));
    QString text = QStringLiteral("<S>\r\n");
    for (int i = 0; i < 300; ++i)
        text += QStringLiteral("<S>=[t%1]\r\n").arg(i);
    LL ll(text);
    ASSERT_TRUE(ll.verdict);
    EXPECT_TRUE(Ana06LL(ll.ws).TableDisplay().contains(
        QStringLiteral("#define ACC 302 /* ACCEPT CODE */\r\n#define POP 301 /* POP CODE */\r\n")));
}

TEST(LL1, GeneratedRecognizerAgreesWithTheTable)
{
    ScopedEnv epoch("SOURCE_DATE_EPOCH", "1700000000");
    const struct {
        const char* name;
        QString text;
        int rules, reverse;
    } cases[] = {
        {"expr", Lines({"<E>", "<E>=<T><E'>", "<E'>=[+]<T><E'>", "<E'>=", "<T>=<F><T'>", "<T'>=[*]<F><T'>",
                        "<T'>=", "<F>=[(]<E>[)]", "<F>=[a]"}), 1, 0},
        {"reversed", Lines({"<S>", "<S>=[if]<C>[then]<S><Else>", "<S>=[x]", "<Else>=[else]<S>", "<Else>=",
                            "<C>=[c]"}), 0, 1},
        {"norules", Lines({"<L>", "<L>=[(]<L>[)]<L>", "<L>="}), 0, 0},
        {"json", Lines({"<Value>", "<Value>=<Object>", "<Value>=<Array>", "<Value>=[string]", "<Value>=[number]",
                        "<Object>=[{]<Members>[}]", "<Members>=<Pair><MoreMembers>", "<Members>=",
                        "<MoreMembers>=[,]<Pair><MoreMembers>", "<MoreMembers>=", "<Pair>=[string][:]<Value>",
                        "<Array>=[[]<Elements>[]]", "<Elements>=<Value><MoreElements>", "<Elements>=",
                        "<MoreElements>=[,]<Value><MoreElements>", "<MoreElements>="}), 1, 1},
    };
    std::mt19937 rng(5);
    for (const auto& rc : cases) {
        SCOPED_TRACE(rc.name);
        LL ll(rc.text);
        ASSERT_TRUE(ll.verdict);
        ll.ws.settings.generateRules = rc.rules;
        ll.ws.settings.generateRuleReverse = rc.reverse;
        QString errors;
        const QString exe = CompileStandalone(ll.ws, View::LL, QString::fromLatin1(rc.name), errors);
        ASSERT_FALSE(exe.isEmpty()) << errors.toStdString();

        auto sentences = RandomSentences(ll.ws.grammar, 150, rng);
        auto wrong = Mutations(ll.ws.grammar, sentences, rng);
        sentences.insert(sentences.end(), wrong.begin(), wrong.end());
        const int accepted =
            ExpectRecognizerAgrees(exe, ll.ws.grammar, sentences, [&](const std::vector<int>& s) { return SimulateLL(ll.ws, s); });
        EXPECT_GT(accepted, 0);
        EXPECT_LT(accepted, static_cast<int>(sentences.size()));
    }
}

} // namespace
