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
#include <algorithm>
#include <cctype>
#include <map>

namespace {

const QString kCases = QStringLiteral(TRELK_SOURCE_DIR "/tests/golden/cases");
/// What a case folder holds besides its inputs.
const QStringList kExpectations = {QStringLiteral("cmd"),  QStringLiteral("stdout"), QStringLiteral("stderr"),
                                   QStringLiteral("exit"), QStringLiteral("files"),  QStringLiteral("unchecked")};

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
    if (args[0] == QStringLiteral("summary"))
        out = MaskTimes(out);

    // Everything a case expects, by its name in the case folder: stdout always,
    // stderr and exit when they are not empty and 0, and files/ for each file the
    // run wrote (new or changed, or expected even if unchanged).
    Files actual{{QStringLiteral("stdout"), out}};
    if (!err.isEmpty())
        actual[QStringLiteral("stderr")] = err;
    if (cli.exitCode() != 0)
        actual[QStringLiteral("exit")] = QByteArray::number(cli.exitCode()) + '\n';
    const Files after = ReadTree(scratch);
    Files expected = ReadTree(dir, {QStringLiteral("cmd"), QStringLiteral("unchecked")});
    for (const auto& [file, bytes] : inputs)
        expected.erase(file);
    const QStringList unchecked =
        QString::fromUtf8(FileBytes(dir + QStringLiteral("/unchecked"))).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const auto& [file, bytes] : after) {
        const auto input = inputs.find(file);
        const QString name = QStringLiteral("files/") + file;
        if ((input == inputs.end() || input->second != bytes || expected.count(name)) && !unchecked.contains(file))
            actual[name] = bytes;
    }

    const bool update = qEnvironmentVariable("TRELK_GOLDEN_UPDATE") == QStringLiteral("1");
    if (update || !expected.count(QStringLiteral("stdout"))) {
        for (const auto& [name, bytes] : expected)
            QFile::remove(dir + QLatin1Char('/') + name);
        for (const auto& [name, bytes] : actual)
            ASSERT_TRUE(WriteFileBytes(dir + QLatin1Char('/') + name, bytes));
        if (!update)
            FAIL() << "new case: its expected output is written in " << dir.toStdString() << ", review it";
        return;
    }
    Files all = expected;
    all.insert(actual.begin(), actual.end());
    for (const auto& [name, unused] : all) {
        const std::string what = name.toStdString();
        if (name.startsWith(QStringLiteral("files/")) && !actual.count(name))
            ADD_FAILURE() << "did not write " << what;
        else if (name.startsWith(QStringLiteral("files/")) && !expected.count(name))
            ADD_FAILURE() << "wrote a file the case does not expect: " << what;
        else
            ExpectSame(what, expected[name], actual[name]);  // a missing stderr or exit is empty
    }
    for (const QString& file : unchecked)
        EXPECT_TRUE(after.count(file)) << "did not write " << file.toStdString();
    for (const auto& [file, bytes] : inputs)
        EXPECT_TRUE(after.count(file)) << "removed the input " << file.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Cases, Golden, ::testing::ValuesIn(CaseNames()), [](const auto& info) {
    std::string name = info.param;
    std::replace_if(name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
    return name;
});

} // namespace
