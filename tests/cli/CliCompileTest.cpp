// trelk-cli compile, and every command reading the companion .tkc as File Open does
// (what compile prints and writes, and its refusals, are golden cases).
#include "session/AnalysisRun.h"
#include "storage/GrammarFile.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"
#include "session/OpenSave.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <gtest/gtest.h>

namespace {

/// A copy of a corpus grammar in a scratch folder (the corpus itself is never written).
QString CopyOfCorpus(const QString& folder, const QString& name)
{
    const QString path = ScratchDir(folder) + QLatin1Char('/') + name;
    EXPECT_TRUE(QFile::copy(CorpusDir() + QLatin1Char('/') + name, path));
    return path;
}

/// What trelk-cli prints for each view of grammar ("!" after a run that failed or wrote to stderr).
QStringList Views(const QString& grammar)
{
    QStringList outs;
    for (const char* view : {"ll", "slr", "lalr", "lr", "first", "followr"}) {
        const CliRun r = Cli({QStringLiteral("view"), grammar, QString::fromLatin1(view)});
        outs << r.out + (r.status != 0 || !r.err.isEmpty() ? QStringLiteral("!") + r.err : QString());
    }
    return outs;
}

TEST(CliCompile, ReopenedGrammarShowsTheKeptResultsWithoutARun)
{
    const QString grammar = CopyOfCorpus(QStringLiteral("cli-compile"), QStringLiteral("calc.tkg"));
    const QStringList before = Views(grammar);
    const CliRun compiled = Cli({QStringLiteral("compile"), grammar});
    ASSERT_EQ(compiled.status, 0) << compiled.err.toStdString();
    ASSERT_TRUE(QFile::exists(CompanionPath(grammar)));
    EXPECT_EQ(Views(grammar), before);

    // Opened as File Open does, the grammar comes back analysed: Analyse on an
    // LR view shows the kept result and runs nothing (no elapsed time is taken).
    RecordingHost host;
    Workspace ws(&host);
    QString text, error;
    ASSERT_TRUE(TKGOpen(ws, grammar, text, error));
    EXPECT_TRUE(ws.grammar.GetFlag(View::SLR) && ws.grammar.GetFlag(View::LALR) && ws.grammar.GetFlag(View::LR));
    EXPECT_EQ(ws.lr.States(), 36);
    EXPECT_FALSE(ws.lalr.saved.elapsed.isEmpty());
    RecordingFrontend frontend(text);
    Analyse(ws, frontend, View::LALR);
    for (const auto& [field, shown] : host.statuses)
        EXPECT_NE(field, StatusField::Elapsed) << shown.toStdString();
    EXPECT_EQ(QString(frontend.text2).replace(QStringLiteral("\r\n"), QStringLiteral("\n")), before[2]);
    EXPECT_EQ(host.criticals, QStringList());
}

TEST(CliCompile, CompanionErrorsGoToStderrAndTheCommandGoesOn)
{
    const QString grammar = CopyOfCorpus(QStringLiteral("cli-compile-damaged"), QStringLiteral("calc.tkg"));
    const QStringList lalr{QStringLiteral("view"), grammar, QStringLiteral("lalr")};
    const QString expected = Cli(lalr).out;
    ASSERT_EQ(Cli({QStringLiteral("compile"), grammar}).status, 0);
    QFile file(CompanionPath(grammar));
    ASSERT_TRUE(file.resize(file.size() / 2));
    const CliRun r = Cli(lalr);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.err, QStringLiteral("Error encountered: 62\nInput past end of file\nSource: TKCRead\n"));
    EXPECT_EQ(r.out, expected);

    // A companion of another format is passed over without a word.
    ASSERT_TRUE(WriteFileBytes(CompanionPath(grammar), "not a compiled grammar"));
    const CliRun foreign = Cli(lalr);
    EXPECT_EQ(foreign.err + foreign.out, expected);
}

} // namespace
