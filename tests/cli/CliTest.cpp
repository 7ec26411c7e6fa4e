// trelk-cli as a user runs it: exit statuses, stdout and stderr.
#include "support/TestPaths.h"

#include <QFile>
#include <QProcess>
#include <gtest/gtest.h>

namespace {

QString WriteFile(const QString& name, const QByteArray& bytes)
{
    const QString path = ScratchDir(QStringLiteral("cli-") + name) + QLatin1Char('/') + name;
    QFile f(path);
    EXPECT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(bytes);
    return path;
}

TEST(Cli, CheckCountsTheExample)
{
    const CliRun r = Cli({QStringLiteral("check"), QStringLiteral(TRELK_SOURCE_DIR "/examples/expr.tkg")});
    EXPECT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, QStringLiteral("OK: 5 terminals, 3 non-terminals, 6 rules\n"));
    EXPECT_EQ(r.err, QString());
}

TEST(Cli, CheckGivesTheExactMessage)
{
    // Blank lines are dropped on reading, so the error is on line 2.
    const CliRun r = Cli({QStringLiteral("check"), WriteFile(QStringLiteral("bad.tkg"), "<E>\n\n<E>=[a]x\n")});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, QString());
    EXPECT_EQ(r.err, QStringLiteral("Extra character \"x\" in [2,8].\n"));

    const CliRun goal = Cli({QStringLiteral("check"), WriteFile(QStringLiteral("goal.tkg"), "E\r\n<E>=[a]\r\n")});
    EXPECT_EQ(goal.status, 1);
    EXPECT_EQ(goal.err, QStringLiteral("Первая строка должна содержать целевой символ.\n"));

    const CliRun undefined = Cli({QStringLiteral("check"), WriteFile(QStringLiteral("undef.tkg"), "<E>\r\n<E>=<F>\r\n")});
    EXPECT_EQ(undefined.status, 1);
    EXPECT_EQ(undefined.err, QStringLiteral("Non-terminal F is not defined.\n"));

    const CliRun blank = Cli({QStringLiteral("check"), WriteFile(QStringLiteral("blank.tkg"), "\r\n   \r\n")});
    EXPECT_EQ(blank.status, 1);
    EXPECT_TRUE(blank.err.contains(QStringLiteral("holds no grammar"))) << blank.err.toStdString();
}

TEST(Cli, CheckReadsWindows1251Files)
{
    const CliRun r = Cli({QStringLiteral("check"), WriteFile(QStringLiteral("cp.tkg"), "<\xC2>\r\n<\xC2>=[\xE0]<\xC2>\r\n<\xC2>=[b]\r\n")});
    EXPECT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, QStringLiteral("OK: 2 terminals, 1 non-terminals, 2 rules\n"));
}

TEST(Cli, UsageAndFileErrors)
{
    EXPECT_EQ(Cli({}).status, 2);
    EXPECT_EQ(Cli({QStringLiteral("frobnicate"), QStringLiteral("x.tkg")}).status, 2);
    EXPECT_EQ(Cli({QStringLiteral("check")}).status, 2);
    EXPECT_EQ(Cli({QStringLiteral("--bogus"), QStringLiteral("check"), QStringLiteral("x")}).status, 2);
    const CliRun missing = Cli({QStringLiteral("check"), QStringLiteral("/nonexistent/g.tkg")});
    EXPECT_EQ(missing.status, 3);
    EXPECT_TRUE(missing.err.contains(QStringLiteral("/nonexistent/g.tkg")));
    EXPECT_EQ(Cli({QStringLiteral("check"), QStringLiteral(TRELK_SOURCE_DIR)}).status, 3);
}

} // namespace
