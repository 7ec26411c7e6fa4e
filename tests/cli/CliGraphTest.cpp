// trelk-cli graph: the automaton of an LR view as DOT or SVG on stdout, and
// its refusals with their exit statuses.
#include "support/TestPaths.h"

#include <QFile>
#include <QRegularExpression>
#include <QXmlStreamReader>
#include <gtest/gtest.h>

namespace {

QString DanglingElse()
{
    const QString path = ScratchDir(QStringLiteral("cli-graph")) + QStringLiteral("/dangling-else.tkg");
    QFile::remove(path);
    EXPECT_TRUE(QFile::copy(QStringLiteral(TRELK_SOURCE_DIR "/examples/dangling-else.tkg"), path));
    return path;
}

int Count(const QString& text, const QString& pattern)
{
    int n = 0;
    for (auto it = QRegularExpression(pattern, QRegularExpression::MultilineOption).globalMatch(text); it.hasNext(); it.next())
        ++n;
    return n;
}

} // namespace

TEST(CliGraph, WritesTheAutomatonAsDotOrSvg)
{
    const QString grammar = DanglingElse();
    const CliRun dot = Cli({QStringLiteral("graph"), grammar, QStringLiteral("lalr")});
    ASSERT_EQ(dot.status, 0) << dot.err.toStdString();
    EXPECT_TRUE(dot.err.isEmpty());
    EXPECT_TRUE(dot.out.startsWith(QStringLiteral("digraph automaton {\n")));
    EXPECT_EQ(Count(dot.out, QStringLiteral("^  s\\d+ \\[")), 10);
    EXPECT_EQ(Count(dot.out, QStringLiteral("^  s\\d+ -> s\\d+ ")), 13);
    EXPECT_EQ(Count(dot.out, QStringLiteral("color=red")), 1);

    // The neighbourhood of the conflict state: the state before it, itself, the state after it.
    const CliRun near = Cli({QStringLiteral("graph"), grammar, QStringLiteral("8"), QStringLiteral("--state"),
                             QStringLiteral("7"), QStringLiteral("--depth"), QStringLiteral("1")});
    ASSERT_EQ(near.status, 0) << near.err.toStdString();
    EXPECT_EQ(Count(near.out, QStringLiteral("^  s\\d+ \\[")), 3);
    EXPECT_EQ(Count(near.out, QStringLiteral("^  s(6|7|8) \\[")), 3);

    const CliRun svg = Cli({QStringLiteral("graph"), grammar, QStringLiteral("lr"), QStringLiteral("--format"),
                            QStringLiteral("svg")});
    ASSERT_EQ(svg.status, 0) << svg.err.toStdString();
    QXmlStreamReader xml(svg.out);
    int nodes = 0;
    while (!xml.atEnd())
        if (xml.readNext() == QXmlStreamReader::StartElement
            && xml.attributes().value(QStringLiteral("class")) == QStringLiteral("node"))
            ++nodes;
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    EXPECT_EQ(nodes, Count(Cli({QStringLiteral("graph"), grammar, QStringLiteral("lr")}).out,
                           QStringLiteral("^  s\\d+ \\[")) + 1);
}

TEST(CliGraph, RefusesWhatItCannotDrawWithAUsageError)
{
    const QString grammar = DanglingElse();
    const struct {
        QStringList args;
        const char* err;
    } cases[] = {
        {{QStringLiteral("ll")}, "trelk-cli: graph takes an LR view (7-9 or slr lalr lr), not ll\n"},
        {{QStringLiteral("first")}, "trelk-cli: graph takes an LR view (7-9 or slr lalr lr), not first\n"},
        {{QStringLiteral("lalr"), QStringLiteral("--state"), QStringLiteral("10")},
         "trelk-cli: There is no state 10: the LALR(1) automaton has states 0 to 9.\n"},
        {{QStringLiteral("lalr"), QStringLiteral("--state"), QStringLiteral("-1")},
         "trelk-cli: graph --state takes a state number, not -1\n"},
        {{QStringLiteral("lalr"), QStringLiteral("--depth"), QStringLiteral("1")},
         "trelk-cli: graph --depth needs --state\n"},
        {{QStringLiteral("lalr"), QStringLiteral("--format"), QStringLiteral("png")},
         "trelk-cli: graph --format takes dot or svg, not png\n"},
        {{QStringLiteral("lalr"), QStringLiteral("--state")},
         "trelk-cli: graph --state needs a value; it takes --state N --depth K --format dot|svg\n"},
    };
    for (const auto& c : cases) {
        const CliRun r = Cli(QStringList{QStringLiteral("graph"), grammar} + c.args);
        EXPECT_EQ(r.status, 2) << c.err;
        EXPECT_EQ(r.err.toStdString(), c.err);
        EXPECT_TRUE(r.out.isEmpty());
    }
    const CliRun big = Cli({QStringLiteral("graph"), CorpusDir() + QStringLiteral("/ansic89.tkg"), QStringLiteral("lr")});
    EXPECT_EQ(big.status, 2);
    EXPECT_EQ(big.err.toStdString(),
              "trelk-cli: The LR(1) automaton has 1572 states and 14481 transitions, more than the 400 states and 250 "
              "transitions a picture holds: draw the neighbourhood of one state (--state N --depth K).\n");
}
