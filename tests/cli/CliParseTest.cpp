// trelk-cli parse: its texts, exit statuses and JSON, and the simulator running
// on the tables a compiled grammar file brought back.
#include "session/OpenSave.h"
#include "session/ParseSimulator.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace {

QString ExprGrammar(const QString& folder)
{
    const QString path = ScratchDir(folder) + QStringLiteral("/expr.tkg");
    EXPECT_TRUE(WriteFileBytes(path, "<E>\n<E>=<E>[+]<T>\n<E>=<T>\n<T>=<T>[*]<F>\n<T>=<F>\n<F>=[(]<E>[)]\n<F>=[a]\n"));
    return path;
}

CliRun Parse(const QString& grammar, const char* view, const char* sentence, QStringList more = {})
{
    return Cli(QStringList{QStringLiteral("parse"), grammar, QString::fromLatin1(view), QString::fromUtf8(sentence)}
               + more);
}

/// The keys of an object, sorted, joined by commas.
QString Keys(const QJsonObject& o)
{
    return o.keys().join(QLatin1Char(','));
}

TEST(CliParse, ExitStatusesSayWhatBecameOfTheSentence)
{
    const QString g = ExprGrammar(QStringLiteral("cli-parse"));
    CliRun r = Parse(g, "lalr", "a + a");
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, QStringLiteral("LALR(1): [a] [+] [a]\nAccepted.\ntree: <E>=( <E>=( <T>=( <F>=( [a] ) ) ) [+] "
                                    "<T>=( <F>=( [a] ) ) )\n"));
    EXPECT_EQ(r.err, QString());

    r = Parse(g, "8", "[a][+]");
    EXPECT_EQ(r.status, 5);
    EXPECT_EQ(r.out, QStringLiteral("LALR(1): [a] [+]\nRejected at $ (token 3): expected [(] or [a].\n"));

    r = Parse(g, "lalr", "a x");
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.err, QStringLiteral("trelk-cli: \"x\" at position 3 is not a terminal of the grammar.\n"));
    EXPECT_EQ(r.out, QString());

    r = Parse(g, "lalr", "a", {QStringLiteral("--tree")});
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.err, QStringLiteral("trelk-cli: parse takes --json and --trace, not --tree\n"));
    EXPECT_EQ(Parse(g, "first", "a").status, 2);
    EXPECT_EQ(Cli({QStringLiteral("parse"), g, QStringLiteral("lalr")}).status, 2);

    // LL(1) refuses the left-recursive grammar: no table, the verdict on stderr.
    r = Parse(g, "ll", "a");
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.err.contains(QStringLiteral("This Grammar Is Not LL(1)."))) << r.err.toStdString();
    EXPECT_EQ(Parse(g + QStringLiteral(".missing"), "lalr", "a").status, 3);

    // The simple precedence table of this grammar has conflicts: it refuses some sentences.
    r = Parse(g, "spr", "a + a * a", {QStringLiteral("--trace")});
    EXPECT_EQ(r.status, 5);
    EXPECT_TRUE(r.out.startsWith(QStringLiteral("simple precedence: [a] [+] [a] [*] [a]\nRejected at ")));
    EXPECT_TRUE(r.out.contains(QStringLiteral("\nstep  stack ")));
}

TEST(CliParse, JsonHasTheRunTheTraceAndTheTree)
{
    const QString g = ExprGrammar(QStringLiteral("cli-parse-json"));
    CliRun r = Parse(g, "opr", "a * ( a )", {QStringLiteral("--json"), QStringLiteral("--trace")});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    QJsonObject o = QJsonDocument::fromJson(r.out.toUtf8()).object();
    EXPECT_EQ(Keys(o), QStringLiteral("accepted,error_position,expected,message,method,sentence,trace,tree,verdict"));
    EXPECT_EQ(o[QStringLiteral("method")].toString(), QStringLiteral("operator precedence"));
    EXPECT_EQ(o[QStringLiteral("verdict")].toString(), QStringLiteral("accepted"));
    EXPECT_TRUE(o[QStringLiteral("error_position")].isNull());
    EXPECT_EQ(o[QStringLiteral("sentence")].toArray().size(), 5);
    const QJsonArray trace = o[QStringLiteral("trace")].toArray();
    ASSERT_FALSE(trace.isEmpty());
    EXPECT_EQ(Keys(trace[0].toObject()), QStringLiteral("action,conflict,input,relation,rule,stack"));
    EXPECT_EQ(trace.last().toObject()[QStringLiteral("action")].toString(), QStringLiteral("accept"));
    EXPECT_EQ(Keys(o[QStringLiteral("tree")].toObject()), QStringLiteral("children,rule,symbol"));

    r = Parse(g, "lr", "a )", {QStringLiteral("--json"), QStringLiteral("--trace")});
    EXPECT_EQ(r.status, 5);
    o = QJsonDocument::fromJson(r.out.toUtf8()).object();
    EXPECT_EQ(o[QStringLiteral("error_position")].toInt(), 1);
    EXPECT_EQ(QJsonDocument(o[QStringLiteral("expected")].toArray()).toJson(QJsonDocument::Compact),
              R"(["$","[+]","[*]"])");
    EXPECT_TRUE(o[QStringLiteral("tree")].isNull());
    EXPECT_EQ(Keys(o[QStringLiteral("trace")].toArray()[0].toObject()),
              QStringLiteral("action,conflict,input,rule,stack,symbols"));

    r = Parse(g, "lalr", "a", {QStringLiteral("--json")});
    EXPECT_FALSE(QJsonDocument::fromJson(r.out.toUtf8()).object().contains(QStringLiteral("trace")));
}

TEST(CliParse, TablesOfACompiledGrammarParseAsAFreshAnalysis)
{
    const QString grammar = ScratchDir(QStringLiteral("cli-parse-tkc")) + QStringLiteral("/calc.tkg");
    ASSERT_TRUE(QFile::copy(CorpusDir() + QStringLiteral("/calc.tkg"), grammar));
    ASSERT_EQ(Cli({QStringLiteral("compile"), grammar}).status, 0);

    RecordingHost host;
    Workspace restored(&host);
    QString text, error;
    ASSERT_TRUE(TKGOpen(restored, grammar, text, error)) << error.toStdString();
    RecordingHost freshHost;
    Workspace fresh(&freshHost);
    RecordingFrontend fe(text);
    ASSERT_TRUE(AnalyzeGrammar(fresh, fe));

    std::mt19937 rng(3);
    auto sentences = RandomSentences(fresh.grammar, 40, rng);
    const auto wrong = Mutations(fresh.grammar, sentences, rng);
    sentences.insert(sentences.end(), wrong.begin(), wrong.end());
    for (int view : {View::SLR, View::LALR, View::LR}) {
        SCOPED_TRACE(view);
        ASSERT_TRUE(IsAnalysed(restored, view));
        Analyse(fresh, fe, view);
        int accepted = 0;
        for (const std::vector<int>& s : sentences) {
            ParseRun a, b;
            ASSERT_TRUE(SimulateParse(restored, view, s, {}, a, error)) << error.toStdString();
            ASSERT_TRUE(SimulateParse(fresh, view, s, {}, b, error)) << error.toStdString();
            EXPECT_EQ(ParseRunText(restored, a, true), ParseRunText(fresh, b, true));
            accepted += a.verdict == ParseVerdict::Accepted;
        }
        EXPECT_GT(accepted, 0);
        EXPECT_LT(accepted, static_cast<int>(sentences.size()));
    }
}

} // namespace
