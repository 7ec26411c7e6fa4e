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

TEST(CliCompile, ReopenedGrammarShowsTheKeptResultsWithoutARun)
{
    const QString grammar = CopyOfCorpus(QStringLiteral("cli-compile"), QStringLiteral("calc.tkg"));
    const QString companion = CompanionPath(grammar);
    const QStringList views = {QStringLiteral("ll"), QStringLiteral("slr"), QStringLiteral("lalr"),
                               QStringLiteral("lr"), QStringLiteral("first"), QStringLiteral("followr")};
    QStringList before;
    for (const QString& view : views)
        before << Cli({QStringLiteral("view"), grammar, view}).out;

    const CliRun compiled = Cli({QStringLiteral("compile"), grammar});
    ASSERT_EQ(compiled.status, 0) << compiled.err.toStdString();
    EXPECT_EQ(compiled.out, companion + QLatin1Char('\n'));
    EXPECT_EQ(compiled.err, QString());
    ASSERT_TRUE(QFile::exists(companion));

    for (qsizetype i = 0; i < views.size(); ++i) {
        const CliRun r = Cli({QStringLiteral("view"), grammar, views[i]});
        EXPECT_EQ(r.status, 0);
        EXPECT_EQ(r.err, QString());
        EXPECT_EQ(r.out, before[i]) << views[i].toStdString();
    }

    // Opened as File Open does, the grammar comes back analysed: Analyse on an
    // LR view shows the kept result and runs nothing (no elapsed time is taken).
    RecordingHost host;
    Workspace ws(&host);
    QString text, error;
    ASSERT_TRUE(TKGOpen(ws, grammar, text, error));
    EXPECT_TRUE(ws.grammar.Parsed());
    for (int view : {View::SLR, View::LALR, View::LR})
        EXPECT_TRUE(ws.grammar.GetFlag(view)) << view;
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
    const QString expected = Cli({QStringLiteral("view"), grammar, QStringLiteral("lalr")}).out;
    ASSERT_EQ(Cli({QStringLiteral("compile"), grammar}).status, 0);
    const QString companion = CompanionPath(grammar);
    QFile file(companion);
    ASSERT_TRUE(file.resize(file.size() / 2));

    const CliRun r = Cli({QStringLiteral("view"), grammar, QStringLiteral("lalr")});
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.err, QStringLiteral("Error encountered: 62\nInput past end of file\nSource: TKCRead\n"));
    EXPECT_EQ(r.out, expected);

    // A companion of another format is passed over without a word.
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("not a compiled grammar");
    file.close();
    const CliRun foreign = Cli({QStringLiteral("view"), grammar, QStringLiteral("lalr")});
    EXPECT_EQ(foreign.err, QString());
    EXPECT_EQ(foreign.out, expected);
}

} // namespace
