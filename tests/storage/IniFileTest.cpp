// The private-profile INI file: defaults, the read limit, names in any case,
// in-place writes that keep every other byte, and the two encodings.
#include "storage/IniFile.h"
#include "support/TestPaths.h"

#include <QFile>
#include <gtest/gtest.h>

namespace {

const QString kMain = QStringLiteral("Main");

TEST(IniFile, ReadsDefaultsAndNamesInAnyCaseSpacesAndQuotes)
{
    const QString absent = ScratchDir(QStringLiteral("ini-absent")) + QStringLiteral("/none.ini");
    EXPECT_EQ(IniFile::ReadString(absent, kMain, QStringLiteral("Key"), QStringLiteral("d")), QStringLiteral("d"));

    // Key lines before the first section and in other sections, and comments, do
    // not count; only the first section of a name is read; trailing blanks of a
    // default are dropped, as the profile reads do.
    const QString path = ScratchIni(QStringLiteral("ini-case"),
                                    "Key=top\r\n[Other]\r\nKey=other\r\n[ mAIN ]\r\n; Key=comment\r\nKeyless line\r\n"
                                    "  cellwidth =  7  \r\nQuoted=\"  a b \"\r\nHalf=\"x\r\nSingle='y'\r\n"
                                    "CellWidth=8\r\n[Раздел]\r\nключ=значение\r\n[main]\r\nLater=1\r\n");
    const IniFile ini(path);
    const char* const reads[][4] = {
        {"Main", "Key", "d", "d"},       {"Absent", "Key", "d", "d"},         {"", "Key", "d", "d"},
        {"Other", "", "d", "d"},         {"Other", "Key", "d", "other"},      {"Main", "Key", "d \t ", "d"},
        {"Main", "CELLWIDTH", "", "7"},  {"Main", "Quoted", "", "  a b "},    {"Main", "Half", "", "\"x"},
        {"Main", "Single", "", "y"},     {"РАЗДЕЛ", "КЛЮЧ", "", "значение"}, {"Main", "Later", "d", "d"}};
    for (const auto& [section, key, fallback, value] : reads)
        EXPECT_EQ(ini.Value(QString::fromUtf8(section), QString::fromUtf8(key), QString::fromUtf8(fallback)),
                  QString::fromUtf8(value))
            << section << "/" << key;

    // The first key of the name is rewritten, keeping its spelling and spacing.
    ASSERT_TRUE(IniFile::WriteString(path, QStringLiteral("MAIN"), QStringLiteral("CellWidth"), QStringLiteral("9")));
    EXPECT_EQ(FileBytes(path), QByteArray("Key=top\r\n[Other]\r\nKey=other\r\n[ mAIN ]\r\n; Key=comment\r\nKeyless line\r\n"
                                          "  cellwidth =  9\r\nQuoted=\"  a b \"\r\nHalf=\"x\r\nSingle='y'\r\n"
                                          "CellWidth=8\r\n[Раздел]\r\nключ=значение\r\n[main]\r\nLater=1\r\n"));
}

TEST(IniFile, ReadsAtMost199Characters)
{
    const QString longValue = QString(120, QLatin1Char('a')) + QString(130, QLatin1Char('b'));
    const QString path = ScratchIni(QStringLiteral("ini-long"));
    ASSERT_TRUE(IniFile::WriteString(path, kMain, QStringLiteral("Long"), longValue));
    // The value is written whole; only reads are limited.
    EXPECT_TRUE(FileBytes(path).contains(longValue.toUtf8()));
    EXPECT_EQ(IniFile::ReadString(path, kMain, QStringLiteral("Long"), QString()), longValue.left(199));
    EXPECT_EQ(IniFile::ReadString(path, kMain, QStringLiteral("Long"), QString(), 100), longValue.left(99));
    EXPECT_EQ(IniFile::ReadString(path, kMain, QStringLiteral("Absent"), longValue), longValue.left(199));
    EXPECT_EQ(IniFile::ReadString(path, kMain, QStringLiteral("Absent"), longValue, 1), QString());

    // A character outside the 16-bit range is never cut in half.
    const QString emoji = QString(198, QLatin1Char('x')) + QStringLiteral("\U0001F600");
    ASSERT_TRUE(IniFile::WriteString(path, kMain, QStringLiteral("Wide"), emoji));
    EXPECT_EQ(IniFile::ReadString(path, kMain, QStringLiteral("Wide"), QString()), emoji.left(198));
}

TEST(IniFile, WritesChangeOnlyTheirLine)
{
    const QByteArray original = "; TRELK settings\r\n"
                                "[Main]\r\n"
                                "CellWidth=5\r\n"
                                "  ; hand-written note\r\n"
                                "MaxCycle = 10000\r\n"
                                "\r\n"
                                "; the next section\r\n"
                                "[Window]\r\n"
                                "Left=1\r\n";
    const QString path = ScratchIni(QStringLiteral("ini-inplace"), original);
    ASSERT_TRUE(IniFile::WriteString(path, kMain, QStringLiteral("MaxCycle"), QStringLiteral("20")));
    ASSERT_TRUE(IniFile::WriteString(path, kMain, QStringLiteral("NewKey"), QStringLiteral("v")));
    ASSERT_TRUE(IniFile::WriteString(path, QStringLiteral("Extra"), QStringLiteral("K"), QStringLiteral("w")));
    EXPECT_EQ(FileBytes(path), QByteArray("; TRELK settings\r\n"
                                      "[Main]\r\n"
                                      "CellWidth=5\r\n"
                                      "  ; hand-written note\r\n"
                                      "MaxCycle = 20\r\n"
                                      "NewKey=v\r\n"
                                      "\r\n"
                                      "; the next section\r\n"
                                      "[Window]\r\n"
                                      "Left=1\r\n"
                                      "\r\n"
                                      "[Extra]\r\n"
                                      "K=w\r\n"));

    // LF files stay LF; a last line without a line end gets one before an addition.
    const QString lf = ScratchIni(QStringLiteral("ini-lf"), "# notes\n[Main]\nA=1");
    ASSERT_TRUE(IniFile::WriteString(lf, kMain, QStringLiteral("B"), QStringLiteral("2")));
    ASSERT_TRUE(IniFile::WriteString(lf, kMain, QStringLiteral("A"), QStringLiteral("3\r\nInjected=1")));
    EXPECT_EQ(FileBytes(lf), QByteArray("# notes\n[Main]\nA=3  Injected=1\nB=2\n"));

    // A section with no keys gets the key right after its header.
    const QString keyless = ScratchIni(QStringLiteral("ini-keyless"), "[Main]\r\n; only a note\r\n[Next]\r\n");
    ASSERT_TRUE(IniFile::WriteString(keyless, kMain, QStringLiteral("A"), QStringLiteral("1")));
    EXPECT_EQ(FileBytes(keyless), QByteArray("[Main]\r\nA=1\r\n; only a note\r\n[Next]\r\n"));

    // A new file is CR LF; an empty value is a value.
    const QString fresh = ScratchIni(QStringLiteral("ini-fresh"));
    ASSERT_TRUE(IniFile::WriteString(fresh, kMain, QStringLiteral("A"), QStringLiteral("1")));
    ASSERT_TRUE(IniFile::WriteString(fresh, QStringLiteral("Empty"), QStringLiteral("B"), QString()));
    EXPECT_EQ(IniFile::ReadString(fresh, QStringLiteral("Empty"), QStringLiteral("B"), QStringLiteral("d")), QString());
    ASSERT_TRUE(IniFile::WriteString(fresh, QStringLiteral("Empty"), QStringLiteral("B"), QStringLiteral("2")));
    EXPECT_EQ(FileBytes(fresh), QByteArray("[Main]\r\nA=1\r\n\r\n[Empty]\r\nB=2\r\n"));
}

TEST(IniFile, RefusedWritesChangeNothing)
{
    const QByteArray original = "[Main]\r\nA=1\r\n";
    const QString path = ScratchIni(QStringLiteral("ini-refused"), original);
    for (const auto& [section, key] : std::vector<std::pair<QString, QString>>{
             {QString(), QStringLiteral("A")},
             {kMain, QString()},
             {QStringLiteral("Ma]in"), QStringLiteral("A")},
             {kMain, QStringLiteral("A=B")},
             {kMain, QStringLiteral(";A")},
             {kMain, QStringLiteral(" A")},
             {QStringLiteral("Ma\nin"), QStringLiteral("A")}}) {
        EXPECT_FALSE(IniFile::WriteString(path, section, key, QStringLiteral("2"))) << key.toStdString();
    }
    EXPECT_EQ(FileBytes(path), original);

    // A read-only settings file keeps its values.
    QFile::setPermissions(path, QFileDevice::ReadOwner);
    EXPECT_FALSE(IniFile::WriteString(path, kMain, QStringLiteral("A"), QStringLiteral("2")));
    QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    EXPECT_EQ(FileBytes(path), original);
}

TEST(IniFile, Windows1251FilesStayWindows1251WhileTheyCan)
{
    // "; комментарий" and "Префикс=тк" in Windows-1251.
    const QByteArray comment = "; \xEA\xEE\xEC\xEC\xE5\xED\xF2\xE0\xF0\xE8\xE9\r\n";
    const QString path = ScratchIni(QStringLiteral("ini-cp1251"), comment + "[Main]\r\n\xCF\xF0\xE5\xF4\xE8\xEA\xF1=\xF2\xEA\r\n");
    EXPECT_EQ(IniFile::ReadString(path, kMain, QStringLiteral("префикс"), QString()), QStringLiteral("тк"));

    ASSERT_TRUE(IniFile::WriteString(path, kMain, QStringLiteral("Префикс"), QStringLiteral("ab")));
    ASSERT_TRUE(IniFile::WriteString(path, kMain, QStringLiteral("Тип"), QStringLiteral("я")));
    EXPECT_EQ(FileBytes(path), comment + "[Main]\r\n\xCF\xF0\xE5\xF4\xE8\xEA\xF1=ab\r\n\xD2\xE8\xEF=\xFF\r\n");

    // A character Windows-1251 lacks turns the whole file into UTF-8, text unchanged.
    ASSERT_TRUE(IniFile::WriteString(path, kMain, QStringLiteral("Тип"), QStringLiteral("ü")));
    EXPECT_EQ(FileBytes(path), QStringLiteral("; комментарий\r\n[Main]\r\nПрефикс=ab\r\nТип=ü\r\n").toUtf8());

    // A byte-order mark is kept and does not hide the first section.
    const QString bom = ScratchIni(QStringLiteral("ini-bom"), "\xEF\xBB\xBF[Main]\r\nA=1\r\n");
    EXPECT_EQ(IniFile::ReadString(bom, kMain, QStringLiteral("A"), QString()), QStringLiteral("1"));
    ASSERT_TRUE(IniFile::WriteString(bom, kMain, QStringLiteral("A"), QStringLiteral("2")));
    EXPECT_EQ(FileBytes(bom), QByteArray("\xEF\xBB\xBF[Main]\r\nA=2\r\n"));
}

} // namespace
