// trelk-cli transform: the file it writes and the path it prints.
#include "support/TestPaths.h"

#include <QFile>
#include <QProcess>
#include <gtest/gtest.h>

namespace {

TEST(CliTransform, WritesAndPrintsTheResultFile)
{
    const QString dir = ScratchDir(QStringLiteral("cli-transform"));
    const QString grammar = dir + QStringLiteral("/expr.tkg");
    ASSERT_TRUE(QFile::copy(QStringLiteral(TRELK_SOURCE_DIR "/examples/expr.tkg"), grammar));
    const QString ini = dir + QStringLiteral("/letters.ini");
    {
        QFile f(ini);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("[Main]\r\nLFLetters=1\r\n");
    }

    const CliRun lr = Cli({QStringLiteral("transform"), grammar, QStringLiteral("LR")});
    EXPECT_EQ(lr.status, 0) << lr.err.toStdString();
    EXPECT_EQ(lr.out, dir + QStringLiteral("/expr-LR.tkg\n"));
    EXPECT_EQ(FileBytes(dir + QStringLiteral("/expr-LR.tkg")),
              "<E>\r\n<E>=<T><E'>\r\n<E'>=[+]<T><E'>\r\n<E'>=.\r\n<T>=<F><T'>\r\n<T'>=[*]<F><T'>\r\n<T'>=.\r\n"
              "<F>=[(]<E>[)]\r\n<F>=[a]\r\n");

    // The settings name new symbols; a second command appends its suffix.
    const CliRun lf = Cli({QStringLiteral("--ini"), ini, QStringLiteral("transform"), dir + QStringLiteral("/expr-LR.tkg"),
                        QStringLiteral("LF")});
    EXPECT_EQ(lf.status, 0) << lf.err.toStdString();
    EXPECT_EQ(lf.out, dir + QStringLiteral("/expr-LR-LF.tkg\n"));
    const CliRun again = Cli({QStringLiteral("--ini"), ini, QStringLiteral("transform"), grammar, QStringLiteral("lr")});
    EXPECT_EQ(again.status, 0);
    EXPECT_TRUE(FileBytes(dir + QStringLiteral("/expr-LR.tkg")).startsWith("<E>\r\n<E>=<T><A>\r\n<A>=[+]<T><A>\r\n"));
}

TEST(CliTransform, Failures)
{
    const QString dir = ScratchDir(QStringLiteral("cli-transform-fail"));
    const CliRun unknown = Cli({QStringLiteral("transform"), QStringLiteral(TRELK_SOURCE_DIR "/examples/expr.tkg"),
                             QStringLiteral("XY")});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err, QStringLiteral("trelk-cli: unknown transformation XY (one of GR RC RE LF LR UU)\n"));

    const QString bad = dir + QStringLiteral("/bad.tkg");
    {
        QFile f(bad);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("<E>\r\n<E>=<F>\r\n");
    }
    const CliRun undefined = Cli({QStringLiteral("transform"), bad, QStringLiteral("UU")});
    EXPECT_EQ(undefined.status, 1);
    EXPECT_EQ(undefined.err, QStringLiteral("Non-terminal F is not defined.\n"));
    EXPECT_FALSE(QFile::exists(dir + QStringLiteral("/bad-UU.tkg")));

    const CliRun missing = Cli({QStringLiteral("transform"), dir + QStringLiteral("/none.tkg"), QStringLiteral("UU")});
    EXPECT_EQ(missing.status, 3);
    EXPECT_EQ(Cli({QStringLiteral("transform"), bad}).status, 2);
}

} // namespace
