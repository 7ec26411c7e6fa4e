// Robustness of the settings reader: seeded random, truncated and mutated INI
// texts either read or give the one defined message, and a write after reading
// them keeps every byte it does not own.
#include "storage/IniFile.h"
#include "storage/SettingsFile.h"
#include "support/TestPaths.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>
#include <random>

namespace {

const QByteArray kValidFile = "; TRELK\r\n[Main]\r\nLeft=120\r\nTop=80.5\r\nInitDir=C:/work\r\nSaveDir=\\out\r\n"
                              "TKCDir=\r\nFilePath=/g/expr.tkg\r\nGenerateRules=1\r\nGenerateRuleReverse=0\r\n"
                              "GenerateComment=1\r\nGenerateRecognizer=0\r\nLFLetters=0\r\nDisplayAllItems=1\r\n"
                              "SyntaxType=stack_t\r\nTokenType=\"int\"\r\nTokenPrefix=T_\r\nMaxCycle=10000\r\n"
                              "CellWidth=1\r\nPUseQ=1\r\nPSignLT=-2\r\nPSignEQ=-1\r\nPSignGT=1\r\n[Other]\r\nA=1\r\n";

int Pick(std::mt19937& rng, int from, int to)
{
    return std::uniform_int_distribution<int>(from, to)(rng);
}

/// Random bytes from the pieces INI files are made of, with bytes that are
/// invalid UTF-8 or control characters now and then. No piece holds "Z" or
/// "q", so the probe section of Check is never in the input.
QByteArray RandomPieces(std::mt19937& rng, int most)
{
    static const char* const pieces[] = {
        "[Main]", "[main]", "[Other]", "[", "]", "=", "\r\n", "\n", "\r", ";", " ", "\t", "CellWidth", "MaxCycle",
        "PSignLT", "PUseQ", "Left", "Top", "InitDir", "TokenType", "1", "-3", "2.5", "1e3", "abc", "\"", "'",
        "\xEF\xBB\xBF", "\xE0\xEF", "\xD0\xB0", "/", "\\"};
    const int n = int(std::size(pieces));
    QByteArray text;
    for (int i = Pick(rng, 0, most); i > 0; --i) {
        const int pick = Pick(rng, 0, n + 3);
        text += pick < n ? QByteArray(pieces[pick]) : QByteArray(1, char(pick == n ? Pick(rng, 0, 8) : Pick(rng, 0x80, 0xFF)));
    }
    return text;
}

/// Random INI text: mostly lines that look like headers, keys and comments
/// (so that section "Main" and its keys do turn up), sometimes a soup of pieces.
QByteArray RandomText(std::mt19937& rng)
{
    if (Pick(rng, 0, 3) == 0)
        return RandomPieces(rng, 40);
    static const char* const keys[] = {"CellWidth", "maxcycle", "PSignEQ", "PUseQ", "Left", "Top", "SaveDir",
                                       "TokenPrefix", "GenerateRules", "Other"};
    static const char* const ends[] = {"\r\n", "\n", "\r\n", "\r"};
    QByteArray text;
    for (int i = Pick(rng, 0, 12); i > 0; --i) {
        const int kind = Pick(rng, 0, 5);
        if (kind == 0)
            text += Pick(rng, 0, 2) ? "[Main]" : "[ main ]";
        else if (kind == 1)
            text += "[" + RandomPieces(rng, 2) + "]";
        else if (kind == 2)
            text += "; " + RandomPieces(rng, 4);
        else
            text += keys[Pick(rng, 0, int(std::size(keys)) - 1)] + RandomPieces(rng, 1) + "=" + RandomPieces(rng, 3);
        text += ends[Pick(rng, 0, 3)];
    }
    return text;
}

/// Reads text as settings, then checks that a write touches only its own lines.
/// Returns whether the settings were read (rather than refused).
bool Check(const QString& path, const QByteArray& text, const std::string& what)
{
    EXPECT_TRUE(WriteFileBytes(path, text));
    static const QRegularExpression message(
        QStringLiteral("^Settings file .*: key \"(CellWidth|MaxCycle|GenerateRules|GenerateRuleReverse|"
                       "GenerateComment|GenerateRecognizer|LFLetters|DisplayAllItems|PSignLT|PSignEQ|PSignGT|PUseQ|"
                       "Left|Top)\" in section \"Main\" holds \".*\", which is (not a number|out of range .*)\\.$"),
        QRegularExpression::DotMatchesEverythingOption);
    PINI ini;
    ini.SetFile(path);
    Settings s;
    QString error;
    const bool read = ReadSettings(ini, s, QStringLiteral("/p/"), error) && ReadWindowPosition(ini, s, 0, 0, error);
    if (read) {
        EXPECT_GE(s.cellWidth, 3) << what;
        for (const QString& folder : {s.initDir, s.saveDir, s.tkcDir})
            EXPECT_TRUE(folder.isEmpty() || folder.endsWith(QDir::separator())) << what;
    } else {
        EXPECT_TRUE(message.match(error).hasMatch()) << what << ": " << error.toStdString();
    }

    // A new section goes after everything else.
    IniFile probe(path);
    EXPECT_TRUE(probe.SetValue(QStringLiteral("ZqFuzz"), QStringLiteral("Probe"), QStringLiteral("v")));
    EXPECT_TRUE(probe.Bytes().startsWith(text)) << what;
    EXPECT_EQ(probe.Value(QStringLiteral("ZqFuzz"), QStringLiteral("Probe"), QString()), QStringLiteral("v")) << what;

    // An existing or new key: the lines before and after it keep their bytes.
    IniFile ini2(path);
    EXPECT_TRUE(ini2.SetValue(QStringLiteral("Main"), QStringLiteral("CellWidth"), QStringLiteral("7")));
    const QByteArray written = ini2.Bytes();
    const QList<QByteArray> before = text.split('\n'), after = written.split('\n');
    qsizetype head = 0, tail = 0;
    while (head < before.size() && head < after.size() && before[head] == after[head])
        ++head;
    while (tail < before.size() - head && tail < after.size() - head
           && before[before.size() - 1 - tail] == after[after.size() - 1 - tail])
        ++tail;
    EXPECT_LE(before.size() - head - tail, 1) << what;  // at most the key's own line, or a last line given its end
    EXPECT_LE(after.size() - head - tail, 5) << what;   // that line, a blank line, a header, the key
    EXPECT_TRUE(WriteFileBytes(path, written));
    EXPECT_EQ(IniFile::ReadString(path, QStringLiteral("MAIN"), QStringLiteral("cellwidth"), QString()),
              QStringLiteral("7"))
        << what;
    return read;
}

TEST(IniFuzz, RandomTextsReadOrGiveTheMessageAndWritesKeepOtherBytes)
{
    const QString path = ScratchIni(QStringLiteral("ini-fuzz-random"));
    std::mt19937 rng(20160101);
    int read = 0, refused = 0;
    for (int i = 0; i < 2500 && !HasFailure(); ++i) {
        const QByteArray text = RandomText(rng);
        if (Check(path, text, "random #" + std::to_string(i) + ": " + text.toPercentEncoding().toStdString()))
            ++read;
        else
            ++refused;
    }
    // Both outcomes are exercised, not just one of them.
    EXPECT_GT(read, 500);
    EXPECT_GT(refused, 150);
}

TEST(IniFuzz, TruncatedAndMutatedSettingsFiles)
{
    const QString path = ScratchIni(QStringLiteral("ini-fuzz-cut"));
    for (qsizetype n = 0; n <= kValidFile.size() && !HasFailure(); ++n) {
        // A cut inside a value may leave "Left=" or "PSignLT=-"; whole lines always read.
        const QByteArray text = kValidFile.left(n);
        const bool read = Check(path, text, "cut at " + std::to_string(n));
        if (text.isEmpty() || text.endsWith('\n')) {
            EXPECT_TRUE(read) << "cut at " << n;
        }
    }
    std::mt19937 rng(7);
    int refused = 0;
    for (int i = 0; i < 600 && !HasFailure(); ++i) {
        QByteArray text = kValidFile;
        for (int c = Pick(rng, 1, 4); c > 0; --c) {
            const auto at = std::uniform_int_distribution<qsizetype>(0, text.size() - 1)(rng);
            text.replace(at, std::min<qsizetype>(Pick(rng, 0, 3), text.size() - at), RandomPieces(rng, 3));
        }
        refused += !Check(path, text, "mutation #" + std::to_string(i) + ": " + text.toPercentEncoding().toStdString());
    }
    EXPECT_GT(refused, 30);
}

} // namespace
