// Reading grammar text files: line ends, blank lines, and the encodings.
#include "storage/GrammarFile.h"
#include "support/TestPaths.h"

#include <QFile>
#include <gtest/gtest.h>

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

} // namespace
