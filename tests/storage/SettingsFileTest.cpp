// The settings of section "Main": defaults, conversions and ranges, folder
// normalisation, the refusal of non-numbers, the write-back at close, and PINI.
#include "storage/Folders.h"
#include "storage/PINI.h"
#include "storage/SettingsFile.h"
#include "support/TestPaths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

namespace {

PINI Ini(const QString& path)
{
    PINI ini;
    ini.SetFile(path);
    return ini;
}

/// text with every "|" turned into the platform separator.
QString Native(QString text)
{
    return text.replace(QLatin1Char('|'), QDir::separator());
}

const QString kProgram = Native(QStringLiteral("|opt|trelk|"));

TEST(Folders, NormaliseFolder)
{
    const char* const folders[][2] = {{"", ""},        {"C:/work", "C:|work|"}, {"C:\\work\\", "C:|work|"},
                                      {"a/b\\c", "a|b|c|"}, {"/", "|"},            {"x//", "x||"}};
    for (const auto& [folder, normal] : folders)
        EXPECT_EQ(NormaliseFolder(QString::fromUtf8(folder)), Native(QString::fromUtf8(normal))) << folder;
}

TEST(Settings, DefaultsWithoutAFileAndEveryKeyButTokenTypeWrittenAtClose)
{
    const QString path = ScratchIni(QStringLiteral("settings-none"), QByteArray());
    Settings s;
    s.quoteMark = QStringLiteral("stale");
    QString error;
    ASSERT_TRUE(ReadSettings(Ini(path), s, kProgram, error)) << error.toStdString();
    ASSERT_TRUE(ReadWindowPosition(Ini(path), s, 128, 96, error)) << error.toStdString();
    // The other values show in the file written below.
    EXPECT_EQ(s.tokenType, QStringLiteral("sttype"));
    EXPECT_EQ(s.quoteMark, QStringLiteral("\""));
    EXPECT_EQ(s.left, 128.0f);
    EXPECT_EQ(s.top, 96.0f);
    EXPECT_FALSE(QFile::exists(path));

    WriteSettings(Ini(path), s, Native(QStringLiteral("|g|expr.tkg")));
    EXPECT_EQ(QString::fromUtf8(FileBytes(path)),
              Native(QStringLiteral("[Main]\r\nLeft=128\r\nTop=96\r\nInitDir=|opt|trelk|\r\nSaveDir=|opt|trelk|\r\n"
                                    "TKCDir=|opt|trelk|\r\nFilePath=|g|expr.tkg\r\nGenerateRules=1\r\n"
                                    "GenerateRuleReverse=0\r\nGenerateComment=1\r\nGenerateRecognizer=0\r\n"
                                    "LFLetters=0\r\nDisplayAllItems=0\r\nSyntaxType=stack_t\r\nTokenPrefix=\r\n"
                                    "MaxCycle=10000\r\nCellWidth=5\r\nPUseQ=1\r\nPSignLT=-2\r\nPSignEQ=-1\r\n"
                                    "PSignGT=1\r\n")));
}

TEST(Settings, RoundTripKeepsEverythingElseAndRaisesCellWidth)
{
    const QByteArray original = "; written by hand\r\n[Window]\r\nLeft=5\r\n\r\n[main]\r\ncellwidth=1\r\n"
                                "TokenType=int\r\n; keep this\r\nLeft = 10.5\r\nInitDir=C:/work\r\nSaveDir=\r\n"
                                "FilePath=/old/g.tkg\r\nPUseQ=0\r\nPSignGT= -32768 \r\nCustom=yes\r\n[Tail]\r\nX=1\r\n";
    const QString path = ScratchIni(QStringLiteral("settings-roundtrip"), original);
    Settings s;
    QString error;
    ASSERT_TRUE(ReadSettings(Ini(path), s, kProgram, error)) << error.toStdString();
    ASSERT_TRUE(ReadWindowPosition(Ini(path), s, 128, 96, error)) << error.toStdString();
    EXPECT_EQ(s.cellWidth, 3);
    EXPECT_EQ(s.tokenType, QStringLiteral("int"));
    EXPECT_EQ(s.initDir, Native(QStringLiteral("C:|work|")));
    EXPECT_EQ(s.saveDir, QString());  // present but empty: not the default
    EXPECT_EQ(s.tkcDir, Native(QStringLiteral("C:|work|")));
    EXPECT_EQ(s.pUseQ, 0);
    EXPECT_EQ(s.quoteMark, QString());
    EXPECT_EQ(s.pSignGT, -32768);
    EXPECT_EQ(s.left, 10.5f);
    EXPECT_EQ(s.top, 96.0f);

    s.left = 12.25f;
    s.saveDir = QStringLiteral("D:\\out");
    s.filePath = QStringLiteral("/elsewhere.tkg");  // an unnamed grammar writes no "FilePath" at all
    WriteSettings(Ini(path), s, QString());
    // Changed lines are rewritten in place, missing keys follow the last key of
    // the section in the order of writing, and "FilePath" and "TokenType" stay.
    EXPECT_EQ(QString::fromUtf8(FileBytes(path)),
              Native(QStringLiteral("; written by hand\r\n[Window]\r\nLeft=5\r\n\r\n[main]\r\ncellwidth=3\r\n"
                                    "TokenType=int\r\n; keep this\r\nLeft = 12.25\r\nInitDir=C:|work|\r\n"
                                    "SaveDir=D:|out|\r\nFilePath=/old/g.tkg\r\nPUseQ=0\r\nPSignGT= -32768\r\n"
                                    "Custom=yes\r\nTop=96\r\nTKCDir=C:|work|\r\nGenerateRules=1\r\n"
                                    "GenerateRuleReverse=0\r\nGenerateComment=1\r\nGenerateRecognizer=0\r\n"
                                    "LFLetters=0\r\nDisplayAllItems=0\r\nSyntaxType=stack_t\r\nTokenPrefix=\r\n"
                                    "MaxCycle=10000\r\nPSignLT=-2\r\nPSignEQ=-1\r\n[Tail]\r\nX=1\r\n")));
}

TEST(Settings, NothingIsTakenFromARefusedFile)
{
    // The messages are golden cases (ini-not-a-number, ini-out-of-range, ini-window-*).
    const QString path = ScratchIni(QStringLiteral("settings-bad"), "[Main]\r\nCellWidth=7\r\nMaxCycle=abc\r\nPUseQ=x\r\n");
    Settings s;
    s.cellWidth = 42;
    QString error;
    EXPECT_FALSE(ReadSettings(Ini(path), s, kProgram, error));
    EXPECT_TRUE(error.startsWith(QStringLiteral("Settings file ") + QDir::toNativeSeparators(path) + QStringLiteral(": ")));
    EXPECT_EQ(s.cellWidth, 42);
}

TEST(Settings, NumbersOutsideTheirKeysRangeAreRefusedWithTheRange)
{
    // Each key at both ends of its range is read; one step beyond is refused.
    struct Case {
        const char* line;
        const char* why;  // "" when the value is read
    };
    const Case cases[] = {
        {"CellWidth=64", ""},
        {"CellWidth=0", ""},
        {"CellWidth=65", "out of range (0 to 64)"},
        {"CellWidth=2147483647", "out of range (0 to 64)"},
        {"CellWidth=1e8", "out of range (0 to 64)"},
        {"CellWidth=-1", "out of range (0 to 64)"},
        {"MaxCycle=1", ""},
        {"MaxCycle=1000000", ""},
        {"MaxCycle=0", "out of range (1 to 1000000)"},
        {"MaxCycle=1000001", "out of range (1 to 1000000)"},
        {"GenerateRules=-2147483648", ""},
        {"Left=-100000", ""},
        {"Top=100000", ""},
        {"Left=100000.5", "out of range (-100000 to 100000)"},
        {"Top=-1e9", "out of range (-100000 to 100000)"},
        {"Top=1e40", "out of range (-100000 to 100000)"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        const QString path = ScratchIni(QStringLiteral("settings-range"), QByteArray("[Main]\r\n") + c.line + "\r\n");
        Settings s;
        QString error;
        const bool read = ReadSettings(Ini(path), s, kProgram, error) && ReadWindowPosition(Ini(path), s, 0, 0, error);
        if (*c.why == 0) {
            EXPECT_TRUE(read) << error.toStdString();
            continue;
        }
        const QString line = QString::fromLatin1(c.line);
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        EXPECT_FALSE(read);
        EXPECT_EQ(error, QStringLiteral("Settings file %1: key \"%2\" in section \"Main\" holds \"%3\", which is %4.")
                             .arg(QDir::toNativeSeparators(path), line.left(equals), line.mid(equals + 1),
                                  QString::fromLatin1(c.why)));
    }
    // 0..2 are raised to the narrowest cell used.
    const QString path = ScratchIni(QStringLiteral("settings-range"), "[Main]\r\nCellWidth=0\r\n");
    Settings s;
    QString error;
    ASSERT_TRUE(ReadSettings(Ini(path), s, kProgram, error));
    EXPECT_EQ(s.cellWidth, 3);
}

TEST(Settings, NumberConversion)
{
    const std::pair<const char*, qint32> numbers[] = {
        {" 12 ", 12}, {"+5", 5},   {"-7", -7},  {"1e3", 1000}, {"1E+2", 100}, {"3.7", 4},
        {"2.5", 2},   {"3.5", 4},  {"-2.5", -2}, {".5", 0},    {"5.", 5},     {"007", 7},
        {"1e-400", 0}, {"-2147483648", INT32_MIN}, {"2147483647", INT32_MAX},
    };
    for (const auto& [text, expected] : numbers) {
        qint32 value = -99;
        EXPECT_EQ(ConvertToInteger(QLatin1String(text), INT32_MIN, INT32_MAX, value), NumberCheck::Ok) << text;
        EXPECT_EQ(value, expected) << text;
    }
    for (const char* text : {"", " ", "abc", "12abc", "1,5", "&H10", "inf", "nan", "e5", "1e", "--1", "+", ".", "1 2",
                             "0x10"}) {
        qint32 value = 0;
        EXPECT_EQ(ConvertToInteger(QLatin1String(text), INT32_MIN, INT32_MAX, value), NumberCheck::NotANumber) << text;
    }
    for (const char* text : {"2147483648", "2147483647.5", "-2147483649", "1e10", "1e400"}) {
        qint32 value = 0;
        EXPECT_EQ(ConvertToInteger(QLatin1String(text), INT32_MIN, INT32_MAX, value), NumberCheck::OutOfRange) << text;
    }
    qint32 value = 0;
    EXPECT_EQ(ConvertToInteger(QStringLiteral("32767.4"), INT16_MIN, INT16_MAX, value), NumberCheck::Ok);
    EXPECT_EQ(ConvertToInteger(QStringLiteral("32767.5"), INT16_MIN, INT16_MAX, value), NumberCheck::OutOfRange);

    float single = 0;
    EXPECT_EQ(ConvertToSingle(QStringLiteral(" -12.25 "), single), NumberCheck::Ok);
    EXPECT_EQ(single, -12.25f);
    EXPECT_EQ(ConvertToSingle(QStringLiteral("3e38"), single), NumberCheck::Ok);
    EXPECT_EQ(ConvertToSingle(QStringLiteral("-4e38"), single), NumberCheck::OutOfRange);
    EXPECT_EQ(ConvertToSingle(QStringLiteral("12px"), single), NumberCheck::NotANumber);
    EXPECT_EQ(SingleText(1234.5f), QStringLiteral("1234.5"));
    EXPECT_EQ(SingleText(-7.0f), QStringLiteral("-7"));
}

TEST(PINI, ReadLongWriteLongAndTheApplicationName)
{
    const QString path = ScratchIni(QStringLiteral("settings-pini"), QByteArray());
    const PINI ini = Ini(path);
    EXPECT_EQ(ini.File(), path);
    EXPECT_EQ(ini.ReadLong(QStringLiteral("Main"), QStringLiteral("Absent"), 17), 17);
    // Without a section, a file or a key the result is 0, not the default.
    EXPECT_EQ(ini.ReadLong(QString(), QStringLiteral("K"), 17), 0);
    EXPECT_EQ(ini.ReadLong(QStringLiteral("Main"), QString(), 17), 0);
    EXPECT_EQ(PINI().ReadLong(QStringLiteral("Main"), QStringLiteral("K"), 17), 0);

    ini.WriteLong(QStringLiteral("Main"), QStringLiteral("K"), -123);
    EXPECT_EQ(ini.ReadLong(QStringLiteral("main"), QStringLiteral("k"), 17), -123);
    // The application name is ignored.
    EXPECT_EQ(ini.GetSetting(QStringLiteral("any"), QStringLiteral("Main"), QStringLiteral("K"), QString()),
              QStringLiteral("-123"));
    ini.SaveSetting(QStringLiteral("other"), QStringLiteral("Main"), QStringLiteral("K"), QStringLiteral("x"));
    bool ok = true;
    EXPECT_EQ(ini.ReadLong(QStringLiteral("Main"), QStringLiteral("K"), 17, &ok), 17);
    EXPECT_FALSE(ok);

    // ReadLong reads 99 characters: the last three digits here are never seen.
    ini.SaveSetting(QString(), QStringLiteral("Main"), QStringLiteral("K"), QString(97, QLatin1Char('0')) + QStringLiteral("12345"));
    EXPECT_EQ(ini.ReadLong(QStringLiteral("Main"), QStringLiteral("K"), 17, &ok), 12);
    EXPECT_TRUE(ok);
}

TEST(Settings, DefaultSettingsPathIsBesideAWritableProgram)
{
    int argc = 1;
    char name[] = "trelk_storage_tests";
    char* argv[] = {name, nullptr};
    QCoreApplication app(argc, argv);
    EXPECT_EQ(DefaultSettingsPath(), QCoreApplication::applicationDirPath() + QStringLiteral("/TRELK.ini"));
}

} // namespace
