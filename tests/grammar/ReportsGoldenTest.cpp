// The grammar reports byte for byte against the files in tests/golden/: the
// example grammar and a small grammar with empty rules. A missing or different
// expected file gets the actual text written beside it as NAME.actual, for a
// person to review, and the test fails.
#include "grammar/Grammar.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"

#include <QFile>
#include <gtest/gtest.h>

namespace {

void ExpectGolden(const QString& expectedPath, const QString& actual)
{
    const QByteArray bytes = actual.toUtf8();
    QFile expected(expectedPath);
    if (expected.open(QIODevice::ReadOnly) && expected.readAll() == bytes) {
        QFile::remove(expectedPath + QStringLiteral(".actual"));
        return;
    }
    QFile out(expectedPath + QStringLiteral(".actual"));
    ASSERT_TRUE(out.open(QIODevice::WriteOnly | QIODevice::Truncate));
    out.write(bytes);
    ADD_FAILURE() << expectedPath.toStdString() << " differs or is missing; the actual text is in "
                  << out.fileName().toStdString();
}

/// Parses the grammar, computes the follow sets and compares every report.
void CheckReports(const QString& grammarPath, const QString& goldenDir)
{
    RecordingHost host;
    Grammar g(&host);
    ASSERT_TRUE(g.SetText(ReadGrammarText(grammarPath)));
    // Before the follow sets: their reports are not there yet.
    EXPECT_EQ(g.CommentedBasis(), NotAnalyzed);
    EXPECT_EQ(g.CommentedFollowL(), NotAnalyzed);
    EXPECT_EQ(g.CommentedFollowR(), NotAnalyzed);
    g.FindFollowB();
    g.FindFollowL();
    g.FindFollowR();
    const struct {
        const char* file;
        QString text;
    } reports[] = {
        {"rules.txt", g.CommentedRules()},       {"symbols.txt", g.CommentedSymbolsDisplay()},
        {"first.txt", g.CommentedFirst()},       {"basis.txt", g.CommentedBasis()},
        {"followl.txt", g.CommentedFollowL()},   {"followr.txt", g.CommentedFollowR()},
        {"followsets.txt", g.CommentedFollowSets()},
    };
    for (const auto& report : reports) {
        SCOPED_TRACE(report.file);
        EXPECT_EQ(report.text.count(QLatin1Char('\n')), report.text.count(QStringLiteral("\r\n"))) << "CR LF only";
        EXPECT_TRUE(report.text.endsWith(QStringLiteral("\r\n")));
        EXPECT_FALSE(report.text.contains(QStringLiteral(" \r\n"))) << "no trailing blanks";
        ExpectGolden(goldenDir + QLatin1Char('/') + QLatin1String(report.file), report.text);
    }
    // A kept report is the same text when asked for again.
    EXPECT_EQ(g.CommentedBasis(), reports[3].text);
    EXPECT_TRUE(host.criticals.isEmpty());
}

TEST(ReportsGolden, ExampleGrammar)
{
    CheckReports(QStringLiteral(TRELK_SOURCE_DIR "/examples/expr.tkg"), QStringLiteral(TRELK_SOURCE_DIR "/tests/golden/reports-expr"));
}

TEST(ReportsGolden, GrammarWithEmptyRules)
{
    const QString dir = QStringLiteral(TRELK_SOURCE_DIR "/tests/golden/reports-empty-rules");
    CheckReports(dir + QStringLiteral("/grammar.tkg"), dir);
}

TEST(ReportsGolden, UnparsedGrammarHasNoReports)
{
    Grammar g;
    EXPECT_EQ(g.CommentedRules(), NotAnalyzed);
    EXPECT_EQ(g.CommentedFirst(), NotAnalyzed);
    EXPECT_EQ(g.CommentedFollowSets(), NotAnalyzed);
    ASSERT_TRUE(g.SetText(QStringLiteral("<E>\r\n<E>=[a]")));
    g.FindFollowB();
    g.FindFollowL();
    g.FindFollowR();
    EXPECT_NE(g.CommentedRules(), NotAnalyzed);
    g.Clear();
    EXPECT_EQ(g.CommentedRules(), NotAnalyzed);
    EXPECT_EQ(g.CommentedBasis(), NotAnalyzed);
    EXPECT_EQ(g.CommentedFollowSets(), NotAnalyzed);
}

} // namespace
