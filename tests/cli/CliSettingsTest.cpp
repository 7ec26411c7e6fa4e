// trelk-cli --ini FILE: the settings are read (a non-number ends the run with
// the message) and the file is never written.
#include "support/TestPaths.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <gtest/gtest.h>

namespace {

/// Writes an INI file dated long ago, so that any write shows in its time.
QString OldIni(const QString& name, const QByteArray& bytes)
{
    const QString path = ScratchDir(QStringLiteral("cli-ini-") + name) + QStringLiteral("/TRELK.ini");
    QFile f(path);
    EXPECT_TRUE(f.open(QIODevice::ReadWrite));
    f.write(bytes);
    f.flush();
    EXPECT_TRUE(f.setFileTime(QDateTime(QDate(2016, 1, 1), QTime(12, 0)), QFileDevice::FileModificationTime));
    return path;
}

void ExpectUntouched(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), bytes);
    EXPECT_EQ(QFileInfo(path).lastModified(), QDateTime(QDate(2016, 1, 1), QTime(12, 0)));
    // QSaveFile leaves nothing beside it either.
    EXPECT_EQ(QDir(QFileInfo(path).path()).entryList(QDir::Files), QStringList{QStringLiteral("TRELK.ini")});
}

const QString kExample = QStringLiteral(TRELK_SOURCE_DIR "/examples/expr.tkg");

TEST(CliSettings, ReadsTheIniFileAndNeverWritesIt)
{
    // Values the workbench would change on its way out: CellWidth 1 becomes 3,
    // the folder gains its separator, keys are missing.
    const QByteArray good = "[Main]\r\nCellWidth=1\r\nInitDir=C:/work\r\nLeft= 12.5 \r\n";
    const QString path = OldIni(QStringLiteral("good"), good);
    const CliRun r = Cli({QStringLiteral("--ini"), path, QStringLiteral("check"), kExample});
    EXPECT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, QStringLiteral("OK: 5 terminals, 3 non-terminals, 6 rules\n"));
    EXPECT_EQ(r.err, QString());
    ExpectUntouched(path, good);
}

TEST(CliSettings, ANonNumberEndsTheRunWithTheMessage)
{
    const QByteArray bad = "[Main]\r\nMaxCycle=abc\r\n";
    const QString path = OldIni(QStringLiteral("bad"), bad);
    const CliRun r = Cli({QStringLiteral("--ini"), path, QStringLiteral("check"), kExample});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, QString());
    EXPECT_EQ(r.err, QStringLiteral("Settings file ") + QDir::toNativeSeparators(path)
                         + QStringLiteral(": key \"MaxCycle\" in section \"Main\" holds \"abc\", which is not a number.\n"));
    ExpectUntouched(path, bad);

    const QString window = OldIni(QStringLiteral("window"), "[Main]\r\nTop=middle\r\n");
    EXPECT_EQ(Cli({QStringLiteral("--ini"), window, QStringLiteral("check"), kExample}).status, 1);

    const QString absent = ScratchDir(QStringLiteral("cli-ini-absent")) + QStringLiteral("/none.ini");
    const CliRun missing = Cli({QStringLiteral("--ini"), absent, QStringLiteral("check"), kExample});
    EXPECT_EQ(missing.status, 3);
    EXPECT_EQ(missing.err, QStringLiteral("trelk-cli: ") + absent + QStringLiteral(": no such file\n"));
    EXPECT_FALSE(QFile::exists(absent));
}

} // namespace
