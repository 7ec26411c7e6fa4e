// Damaged companions of a real analysed grammar (calc from the corpus): cut at
// every byte offset and with random bytes changed. Each opens either cleanly or
// with exactly one error report and a clean analysis; a state that is kept can
// be shown, exported and analysed further without a crash.
#include "analysers/LrAnalyser.h"
#include "session/CompiledGrammar.h"
#include "storage/GrammarFile.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"
#include "session/OpenSave.h"

#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>
#include <random>

namespace {

struct Companion {
    QString grammarFile;  ///< calc.tkg in a scratch folder
    QString companion;    ///< its .tkc
    QString text;         ///< the text File Open gives
    QByteArray bytes;     ///< the companion as saved after every analysis
};

Companion AnalysedCalc(const QString& folder)
{
    Companion c;
    c.grammarFile = ScratchDir(folder) + QStringLiteral("/calc.tkg");
    c.companion = CompanionPath(c.grammarFile);
    c.text = ReadGrammarText(CorpusDir() + QStringLiteral("/calc.tkg"));
    Workspace ws;
    RecordingFrontend frontend(c.text);
    for (int view = View::Grammar; view < View::Count; ++view)
        Analyse(ws, frontend, view);
    for (int view : {View::SLR, View::LALR, View::LR})
        static_cast<LrAnalyser&>(*MakeAnalyser(ws, view)).ItemDisplay();
    EXPECT_TRUE(GrammarSaveAs(ws, c.grammarFile, c.text));
    c.bytes = FileBytes(c.companion);
    return c;
}

bool StateIsClean(const Workspace& ws)
{
    const Grammar& g = ws.grammar;
    if (g.Parsed() || g.GetFlag(GrammarFlag::Parsed) || g.symbolNames.size() != 3 || !ws.lr.rows.empty()
        || ws.ll.synta.Rows() != 0)
        return false;
    for (int view = View::LL; view <= View::OPR; ++view)
        if (g.GetFlag(view))
            return false;
    return true;
}

/// Everything a user can have shown or exported from the kept state, then
/// Analyse on the kept analyser views (the precedence views have nothing kept).
void UseEverything(Workspace& ws, const QString& text)
{
    Grammar& g = ws.grammar;
    g.CommentedSymbolsDisplay();
    g.CommentedFirst();
    g.CommentedBasis();
    g.CommentedFollowL();
    g.CommentedFollowR();
    g.CommentedFollowSets();
    g.CommentedRules();
    for (int view = View::LL; view <= View::LR; ++view) {
        if (!g.GetFlag(view))
            continue;
        auto analyser = MakeAnalyser(ws, view);
        analyser->ExportDisplay();
        analyser->TableDisplay();
        if (view != View::LL)
            static_cast<LrAnalyser&>(*analyser).ItemDisplay();
    }
    RecordingFrontend frontend(text);
    for (int view = View::LL; view <= View::LR; ++view)
        Analyse(ws, frontend, view);
}

TEST(CompiledGrammarFuzz, CutAtEveryOffsetGivesOneReportAndACleanAnalysis)
{
    const Companion calc = AnalysedCalc(QStringLiteral("tkc-fuzz-cut"));
    ASSERT_GT(calc.bytes.size(), 1000);
    const QString report = QStringLiteral("Error encountered: 62\r\nInput past end of file\r\nSource: TKCRead\r\n");
    // From the longest cut down: each is the file cut short by one more byte.
    ASSERT_TRUE(WriteFileBytes(calc.companion, calc.bytes));
    for (qsizetype size = calc.bytes.size() - 1; size >= 0; --size) {
        ASSERT_TRUE(QFile::resize(calc.companion, size));
        RecordingHost host;
        Workspace ws(&host);
        QString text, error;
        ASSERT_TRUE(TKGOpen(ws, calc.grammarFile, text, error));
        ASSERT_EQ(host.criticals, QStringList{report}) << "cut at " << size;
        ASSERT_TRUE(StateIsClean(ws)) << "cut at " << size;
    }
    // Whole, it opens analysed.
    ASSERT_TRUE(WriteFileBytes(calc.companion, calc.bytes));
    RecordingHost host;
    Workspace ws(&host);
    QString text, error;
    ASSERT_TRUE(TKGOpen(ws, calc.grammarFile, text, error));
    EXPECT_EQ(host.criticals, QStringList());
    EXPECT_TRUE(ws.grammar.GetFlag(View::LR));
}

TEST(CompiledGrammarFuzz, ChangedBytesGiveACleanLoadOrOneReport)
{
    const Companion calc = AnalysedCalc(QStringLiteral("tkc-fuzz-flip"));
    const QRegularExpression format(
        QStringLiteral("^Error encountered: (\\d+)\\r\\n([^\\r\\n]+)\\r\\nSource: TKCRead\\r\\n$"));
    std::mt19937 rng(20100);
    std::uniform_int_distribution<qsizetype> offset(0, calc.bytes.size() - 1);
    std::uniform_int_distribution<int> byte(0, 255), howMany(1, 4);
    int reported = 0, kept = 0, discarded = 0;
    for (int variant = 0; variant < 3000; ++variant) {
        QByteArray bytes = calc.bytes;
        // Mostly single bytes; now and then a byte set to 0xFF, as in a count's high byte.
        for (int n = howMany(rng); n > 0; --n)
            bytes[offset(rng)] = static_cast<char>(variant % 5 == 0 ? 0xFF : byte(rng));
        ASSERT_TRUE(WriteFileBytes(calc.companion, bytes));
        RecordingHost host;
        Workspace ws(&host);
        QString text, error;
        ASSERT_TRUE(TKGOpen(ws, calc.grammarFile, text, error));
        ASSERT_LE(host.criticals.size(), 1) << "variant " << variant;
        if (host.criticals.size() == 1) {
            const QRegularExpressionMatch m = format.match(host.criticals[0]);
            ASSERT_TRUE(m.hasMatch()) << host.criticals[0].toStdString();
            EXPECT_EQ(m.captured(2), FileErrorDescription(m.captured(1).toInt()));
            EXPECT_NE(FileErrorDescription(m.captured(1).toInt()).left(11), QStringLiteral("Application"));
            ASSERT_TRUE(StateIsClean(ws)) << "variant " << variant;
            ++reported;
            continue;
        }
        if (ws.grammar.Parsed())
            ++kept;
        else
            ++discarded;
        UseEverything(ws, text);
        ASSERT_EQ(host.criticals, QStringList()) << "variant " << variant;
    }
    // The variants reach every outcome: errors, states of another text, and
    // states kept (changes in texts the program makes again, or in status texts).
    EXPECT_GT(reported, 1000);
    EXPECT_GT(discarded, 50);
    EXPECT_GT(kept, 10);
}

} // namespace
