// trelk-cli view and sets: the report views print what the output box shows,
// sets prints valid JSON that agrees with the grammar's own sets.
#include "grammar/Grammar.h"
#include "support/TestPaths.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <gtest/gtest.h>

namespace {

const QString kExample = QStringLiteral(TRELK_SOURCE_DIR "/examples/expr.tkg");

/// A golden report as the CLI prints it: LF line ends.
QString GoldenLf(const char* name)
{
    QFile f(QStringLiteral(TRELK_SOURCE_DIR "/tests/golden/reports-expr/") + QLatin1String(name));
    EXPECT_TRUE(f.open(QIODevice::ReadOnly)) << f.fileName().toStdString();
    return QString::fromUtf8(f.readAll()).replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
}

TEST(CliReports, ViewPrintsTheReportOfEachViewByNumberAndName)
{
    const struct {
        const char* number;
        const char* name;
        const char* golden;
    } views[] = {
        {"1", "symbols", "symbols.txt"}, {"2", "first", "first.txt"},     {"3", "basis", "basis.txt"},
        {"4", "followl", "followl.txt"}, {"5", "followr", "followr.txt"},
    };
    for (const auto& v : views) {
        const QString expected = GoldenLf(v.golden);
        for (const char* which : {v.number, v.name}) {
            const CliRun r = Cli({QStringLiteral("view"), kExample, QLatin1String(which)});
            EXPECT_EQ(r.status, 0) << which << ": " << r.err.toStdString();
            EXPECT_EQ(r.out, expected) << which;
            EXPECT_EQ(r.err, QString()) << which;
        }
    }
    // View 0 readies the grammar and shows nothing.
    for (const char* which : {"0", "grammar"}) {
        const CliRun r = Cli({QStringLiteral("view"), kExample, QLatin1String(which)});
        EXPECT_EQ(r.status, 0) << which;
        EXPECT_EQ(r.out, QString()) << which;
    }
}

TEST(CliReports, ViewAndSetsExitStatuses)
{
    const CliRun unknown = Cli({QStringLiteral("view"), kExample, QStringLiteral("12")});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err, QStringLiteral("trelk-cli: unknown view 12\n"));
    EXPECT_EQ(Cli({QStringLiteral("view"), kExample, QStringLiteral("bogus")}).status, 2);
    // The analyser views show their verdicts: the example is left-recursive.
    const CliRun ll = Cli({QStringLiteral("view"), kExample, QStringLiteral("ll")});
    EXPECT_EQ(ll.status, 0);
    EXPECT_EQ(ll.out, QStringLiteral("Left Recursion Is Not Allowed.\nThis Grammar Is Not LL(1).\n"));
    EXPECT_EQ(Cli({QStringLiteral("view"), kExample}).status, 2);
    EXPECT_EQ(Cli({QStringLiteral("sets"), kExample}).status, 2);
    EXPECT_EQ(Cli({QStringLiteral("sets"), kExample, QStringLiteral("--xml")}).status, 2);
    EXPECT_EQ(Cli({QStringLiteral("view"), QStringLiteral("/nonexistent/g.tkg"), QStringLiteral("first")}).status, 3);
    EXPECT_EQ(Cli({QStringLiteral("sets"), QStringLiteral("/nonexistent/g.tkg"), QStringLiteral("--json")}).status, 3);

    const QString bad = ScratchDir(QStringLiteral("cli-reports")) + QStringLiteral("/bad.tkg");
    QFile f(bad);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("<E>\r\n<E>=<F>\r\n");
    f.close();
    for (const QString& command : {QStringLiteral("view"), QStringLiteral("sets")}) {
        const CliRun r = Cli({command, bad, command == QStringLiteral("view") ? QStringLiteral("2") : QStringLiteral("--json")});
        EXPECT_EQ(r.status, 1) << command.toStdString();
        EXPECT_EQ(r.out, QString()) << command.toStdString();
        EXPECT_EQ(r.err, QStringLiteral("Non-terminal F is not defined.\n")) << command.toStdString();
    }
}

QStringList Strings(const QJsonValue& value)
{
    QStringList out;
    for (const QJsonValue& v : value.toArray())
        out << v.toString();
    return out;
}

QStringList Printed(const Grammar& g, const CodeList& list)
{
    QStringList out;
    for (int c : list)
        out << g.GetSymbolS(c);
    return out;
}

TEST(CliReports, SetsPrintsJsonThatAgreesWithTheGrammar)
{
    // calc has an empty rule and terminals written with a backslash ("[\n]").
    const QString path = CorpusDir() + QStringLiteral("/calc.tkg");
    const CliRun r = Cli({QStringLiteral("sets"), path, QStringLiteral("--json")});
    ASSERT_EQ(r.status, 0) << r.err.toStdString();
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(r.out.toUtf8(), &error);
    ASSERT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    const QJsonObject json = doc.object();

    // Keys in the documented order (QJsonObject itself sorts them).
    const QStringList keys = {QStringLiteral("goal"),    QStringLiteral("terminals"), QStringLiteral("nonterminals"),
                              QStringLiteral("nullable"), QStringLiteral("first"),     QStringLiteral("firstOfRule"),
                              QStringLiteral("followB"),  QStringLiteral("followL"),   QStringLiteral("followR")};
    EXPECT_EQ(json.size(), keys.size());
    qsizetype last = -1;
    for (const QString& key : keys) {
        const qsizetype at = r.out.indexOf(QLatin1Char('"') + key + QStringLiteral("\":"));
        EXPECT_GT(at, last) << key.toStdString();
        last = at;
    }

    Grammar g;
    ASSERT_TRUE(g.SetText(ReadGrammarText(path)));
    g.FindFollowB();
    g.FindFollowL();
    g.FindFollowR();
    EXPECT_EQ(json[QStringLiteral("goal")].toString(), QStringLiteral("<input>"));
    EXPECT_TRUE(Strings(json[QStringLiteral("terminals")]).contains(QStringLiteral("[\\n]")));
    EXPECT_EQ(Strings(json[QStringLiteral("nonterminals")]).size(), g.NonterminalCount());
    // Non-terminals in code order within each object.
    const qsizetype firstAt = r.out.indexOf(QStringLiteral("\"first\":"));
    EXPECT_LT(r.out.indexOf(QStringLiteral("\"<input>\""), firstAt), r.out.indexOf(QStringLiteral("\"<line>\""), firstAt));
    for (int a = g.firstNonterminal; a <= g.lastCode; ++a) {
        const QString key = g.GetSymbolS(a);
        const std::size_t i = static_cast<std::size_t>(a);
        EXPECT_EQ(json[QStringLiteral("nullable")][key].toBool(), bool(g.nullable[i])) << key.toStdString();
        EXPECT_EQ(Strings(json[QStringLiteral("first")][key]), Printed(g, g.first[i])) << key.toStdString();
        EXPECT_EQ(Strings(json[QStringLiteral("followB")][key]), Printed(g, g.followB[i])) << key.toStdString();
        EXPECT_EQ(Strings(json[QStringLiteral("followL")][key]), Printed(g, g.followL[i])) << key.toStdString();
        EXPECT_EQ(Strings(json[QStringLiteral("followR")][key]), Printed(g, g.followR[i])) << key.toStdString();
    }
    const QJsonArray rules = json[QStringLiteral("firstOfRule")].toArray();
    ASSERT_EQ(rules.size(), g.ruleCount);
    for (int r = 1; r <= g.ruleCount; ++r) {
        const QJsonObject rule = rules[r - 1].toObject();
        EXPECT_EQ(rule[QStringLiteral("rule")].toInt(), r);
        EXPECT_EQ(rule[QStringLiteral("left")].toString(), g.GetSymbolS(g.rules[static_cast<std::size_t>(r)][0]));
        EXPECT_EQ(Strings(rule[QStringLiteral("first")]), Printed(g, g.firstOfRule[static_cast<std::size_t>(r)]));
    }
    // The empty rule <input> = has no right side and derives ε ("$").
    EXPECT_EQ(Strings(rules[0].toObject()[QStringLiteral("right")]), QStringList());
    EXPECT_EQ(Strings(rules[0].toObject()[QStringLiteral("first")]), QStringList{QStringLiteral("$")});
    EXPECT_EQ(Strings(rules[1].toObject()[QStringLiteral("right")]),
              (QStringList{QStringLiteral("<input>"), QStringLiteral("<line>")}));
}

} // namespace
