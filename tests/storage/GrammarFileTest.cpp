// Reading grammar text files: line ends, blank lines, and the encodings;
// the writers' refusals and their messages.
#include "storage/GrammarFile.h"
#include "support/TestPaths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

namespace {

TEST(GrammarFile, BlankLinesAreDroppedAndLinesJoinedWithCrLf)
{
    EXPECT_EQ(JoinGrammarLines(QStringLiteral("<E>\n\n<E>=[a]\r\n\r\n<E>=[b]")),
              QStringLiteral("<E>\r\n<E>=[a]\r\n<E>=[b]\r\n"));
    // Old Mac line ends and a line of spaces (not empty, so kept).
    EXPECT_EQ(JoinGrammarLines(QStringLiteral("<E>\r<E>=[a]\r  \r")), QStringLiteral("<E>\r\n<E>=[a]\r\n  \r\n"));
    EXPECT_EQ(JoinGrammarLines(QString()), QString());
}

TEST(GrammarFile, Utf8WithWindows1251Fallback)
{
    const QString word = QStringLiteral("<выражение>");
    EXPECT_EQ(DecodeGrammarBytes(word.toUtf8()), word);
    QByteArray bom("\xEF\xBB\xBF");
    EXPECT_EQ(DecodeGrammarBytes(bom + word.toUtf8()), word);
    // The same word in Windows-1251: в=E2 ы=FB р=F0 а=E0 ж=E6 е=E5 н=ED и=E8.
    const QByteArray cp1251("<\xE2\xFB\xF0\xE0\xE6\xE5\xED\xE8\xE5>");
    EXPECT_EQ(DecodeGrammarBytes(cp1251), word);
    EXPECT_EQ(DecodeGrammarBytes(QByteArray("\xC0\xDF\xA8\xB8\x96")), QStringLiteral("АЯЁё\u2013"));
}

TEST(GrammarFile, ReadReportsMissingFiles)
{
    const QString dir = ScratchDir(QStringLiteral("grammar-file"));
    QString text, error;
    EXPECT_FALSE(ReadGrammarFile(dir + QStringLiteral("/absent.tkg"), text, error));
    EXPECT_TRUE(error.contains(QStringLiteral("absent.tkg")));

    ASSERT_TRUE(WriteFileBytes(dir + QStringLiteral("/g.tkg"), "<S>\n\n<S>=[\xE0]\n"));
    ASSERT_TRUE(ReadGrammarFile(dir + QStringLiteral("/g.tkg"), text, error));
    EXPECT_EQ(text, QStringLiteral("<S>\r\n<S>=[а]\r\n"));
}

// The tests run as root, whom permissions do not stop: the failures come from
// paths no one can write and from a file size limit.
TEST(GrammarFile, AFailedWriteNamesTheFileAndTheReasonAndKeepsTheOldFile)
{
    const QString dir = ScratchDir(QStringLiteral("grammar-file-write"));
    QString error;

    const QString underFile = dir + QStringLiteral("/g.tkg/g-LR.tkg");
    ASSERT_TRUE(WriteFileBytes(dir + QStringLiteral("/g.tkg"), "<S>\r\n"));
    EXPECT_FALSE(WriteTextFile(underFile, QStringLiteral("<S>"), error));
    EXPECT_EQ(error, QStringLiteral("Cannot write ") + underFile + QStringLiteral(": Not a directory"));

    // A pipe bearing the name would be renamed over, not written to.
    const QString pipe = dir + QStringLiteral("/pipe.txt");
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0644), 0);
    EXPECT_FALSE(WriteWholeFile(pipe, "text", error));
    EXPECT_EQ(error, QStringLiteral("Cannot write ") + pipe + QStringLiteral(": not a regular file"));
    EXPECT_FALSE(QFileInfo(pipe).isFile());

    // A file that grows past the size limit: the write stops part way, and the
    // reason is the system's, not a short count's "Unknown error".
    const QString old = dir + QStringLiteral("/old.txt");
    ASSERT_TRUE(WriteFileBytes(old, "old text"));
    rlimit saved{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &saved), 0);
    rlimit small = saved;
    small.rlim_cur = 100000;
    const auto previous = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool written = WriteWholeFile(old, QByteArray(300000, 'x'), error);
    ::setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previous);
    EXPECT_FALSE(written);
    EXPECT_EQ(error, QStringLiteral("Cannot write ") + old + QStringLiteral(": File too large"));
    EXPECT_EQ(FileBytes(old), QByteArray("old text"));
    EXPECT_EQ(QDir(dir).entryList(QDir::Files | QDir::Hidden | QDir::System),
              (QStringList{QStringLiteral("g.tkg"), QStringLiteral("old.txt"), QStringLiteral("pipe.txt")}));
}

} // namespace
