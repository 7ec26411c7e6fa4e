/// \file
/// The golden runner: every folder under tests/golden/cases is one run of the
/// built trelk-cli, compared byte for byte with what it must print and write
/// (see tests/golden/README.md for the layout of a case).
#include "support/TestPaths.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <gtest/gtest.h>
#include <cctype>
#include <map>

namespace {

const QString kCases = QStringLiteral(TRELK_SOURCE_DIR "/tests/golden/cases");
/// What a case folder holds besides its inputs.
const QStringList kExpectations = {QStringLiteral("cmd"),   QStringLiteral("stdout"), QStringLiteral("stderr"),
                                   QStringLiteral("exit"),  QStringLiteral("files"),  QStringLiteral("unchecked")};

std::vector<std::string> CaseNames()
{
    std::vector<std::string> names;
    for (const QString& name : QDir(kCases).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
        names.push_back(name.toStdString());
    return names;
}

/// Files under root by their path relative to it; top-level names in skip are left out.
using Files = std::map<QString, QByteArray>;
Files ReadTree(const QString& root, const QStringList& skip = {})
{
    Files files;
    QDirIterator it(root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString relative = QDir(root).relativeFilePath(it.next());
        if (!skip.contains(relative.section(QLatin1Char('/'), 0, 0)))
            files[relative] = FileBytes(it.filePath());
    }
    return files;
}

/// summary times each method: the times are masked, in the text and in the JSON.
QByteArray MaskTimes(const QByteArray& out)
{
    QString text = QString::fromUtf8(out);
    text.replace(QRegularExpression(QStringLiteral("\\d+(:\\d\\d)*,\\d\\d\\d$"), QRegularExpression::MultilineOption),
                 QStringLiteral("<elapsed>"));
    text.replace(QRegularExpression(QStringLiteral("(\"elapsed\": )\"[^\"]*\"")), QStringLiteral("\\1\"<elapsed>\""));
    text.replace(QRegularExpression(QStringLiteral("(\"elapsedMs\": )\\d+")), QStringLiteral("\\1\"<elapsedMs>\""));
    return text.toUtf8();
}

/// Line i of lines, quoted, with carriage returns and tabs made visible.
std::string Visible(const QList<QByteArray>& lines, qsizetype i)
{
    if (i >= lines.size() || (i == lines.size() - 1 && lines[i].isEmpty()))
        return "(end of text)";
    return '"' + QByteArray(lines[i]).replace('\r', "\\r").replace('\t', "\\t").toStdString() + '"';
}

/// Fails with the first line where the texts differ.
void ExpectSame(const std::string& what, const QByteArray& expected, const QByteArray& actual)
{
    if (expected == actual)
        return;
    const QList<QByteArray> e = expected.split('\n'), a = actual.split('\n');
    qsizetype i = 0;
    while (i < e.size() && i < a.size() && e[i] == a[i])
        ++i;
    ADD_FAILURE() << what << " differs at line " << i + 1 << ":\n  expected: " << Visible(e, i)
                  << "\n  actual:   " << Visible(a, i);
}

class Golden : public ::testing::TestWithParam<std::string> {};

TEST_P(Golden, Run)
{
    const QString name = QString::fromStdString(GetParam());
    const QString dir = kCases + QLatin1Char('/') + name;
    const QString scratch = ScratchDir(QStringLiteral("golden/") + name);

    // The inputs, and the settings: the case's own, or the defaults (never the machine's).
    Files inputs = ReadTree(dir, kExpectations);
    inputs.try_emplace(QStringLiteral("TRELK.ini"), QByteArray(""));
    for (const auto& [file, bytes] : inputs)
        ASSERT_TRUE(WriteFileBytes(scratch + QLatin1Char('/') + file, bytes));

    // One command line; lines starting with "#" say what the case is for.
    QStringList args;
    for (const QString& line : QString::fromUtf8(FileBytes(dir + QStringLiteral("/cmd"))).split(QLatin1Char('\n')))
        if (!line.trimmed().isEmpty() && !line.trimmed().startsWith(QLatin1Char('#')))
            args = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    ASSERT_FALSE(args.isEmpty()) << dir.toStdString() << "/cmd holds no command";
    args.replaceInStrings(QRegularExpression(QStringLiteral("^GRAMMAR$")), QStringLiteral("grammar.tkg"));

    QProcess cli;
    cli.setWorkingDirectory(scratch);
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("SOURCE_DATE_EPOCH"), QStringLiteral("1700000000"));
    env.insert(QStringLiteral("TZ"), QStringLiteral("UTC"));
    cli.setProcessEnvironment(env);
    cli.start(BuiltProgram(QStringLiteral("bin/trelk-cli")), QStringList{QStringLiteral("--ini"), QStringLiteral("TRELK.ini")} + args);
    ASSERT_TRUE(cli.waitForFinished(120000)) << "trelk-cli did not finish";
    ASSERT_EQ(cli.exitStatus(), QProcess::NormalExit) << "trelk-cli crashed";
    // Paths the program makes absolute are written from the case folder on.
    QByteArray out = cli.readAllStandardOutput(), err = cli.readAllStandardError();
    for (const QString& folder : {QDir(scratch).absolutePath(), QDir(scratch).canonicalPath()}) {
        out.replace(folder.toUtf8() + '/', "<case>/");
        err.replace(folder.toUtf8() + '/', "<case>/");
    }
    const QByteArray exit = QByteArray::number(cli.exitCode()) + '\n';
    if (args[0] == QStringLiteral("summary"))
        out = MaskTimes(out);

    // Written: the files that are new or changed, and those the case expects even if unchanged.
    const Files after = ReadTree(scratch);
    const Files expectedFiles = ReadTree(dir + QStringLiteral("/files"));
    const QStringList unchecked =
        QString::fromUtf8(FileBytes(dir + QStringLiteral("/unchecked"))).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    Files written;
    for (const auto& [file, bytes] : after) {
        const auto input = inputs.find(file);
        if ((input == inputs.end() || input->second != bytes || expectedFiles.count(file)) && !unchecked.contains(file))
            written[file] = bytes;
    }

    const bool update = qEnvironmentVariable("TRELK_GOLDEN_UPDATE") == QStringLiteral("1");
    if (update || !QFile::exists(dir + QStringLiteral("/stdout"))) {
        ASSERT_TRUE(WriteFileBytes(dir + QStringLiteral("/stdout"), out));
        QFile::remove(dir + QStringLiteral("/stderr"));
        if (!err.isEmpty()) {
            ASSERT_TRUE(WriteFileBytes(dir + QStringLiteral("/stderr"), err));
        }
        QFile::remove(dir + QStringLiteral("/exit"));
        if (exit != "0\n") {
            ASSERT_TRUE(WriteFileBytes(dir + QStringLiteral("/exit"), exit));
        }
        QDir(dir + QStringLiteral("/files")).removeRecursively();
        for (const auto& [file, bytes] : written)
            ASSERT_TRUE(WriteFileBytes(dir + QStringLiteral("/files/") + file, bytes));
        if (!update)
            FAIL() << "new case: its expected output is written in " << dir.toStdString() << ", review it";
        return;
    }

    ExpectSame("stdout", FileBytes(dir + QStringLiteral("/stdout")), out);
    ExpectSame("stderr", FileBytes(dir + QStringLiteral("/stderr")), err);
    const QByteArray expectedExit = FileBytes(dir + QStringLiteral("/exit"));
    ExpectSame("exit status", expectedExit.isEmpty() ? QByteArray("0\n") : expectedExit, exit);
    for (const auto& [file, bytes] : written) {
        const auto expected = expectedFiles.find(file);
        if (expected == expectedFiles.end())
            ADD_FAILURE() << "wrote a file the case does not expect: " << file.toStdString();
        else
            ExpectSame("file " + file.toStdString(), expected->second, bytes);
    }
    for (const auto& [file, bytes] : expectedFiles)
        EXPECT_TRUE(after.count(file)) << "did not write " << file.toStdString();
    for (const QString& file : unchecked)
        EXPECT_TRUE(after.count(file)) << "did not write " << file.toStdString();
    for (const auto& [file, bytes] : inputs)
        EXPECT_TRUE(after.count(file)) << "removed the input " << file.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Cases, Golden, ::testing::ValuesIn(CaseNames()),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                             std::string name = info.param;
                             for (char& c : name)
                                 if (!std::isalnum(static_cast<unsigned char>(c)))
                                     c = '_';
                             return name;
                         });

} // namespace
