// The standalone C program: its identifiers, its text helpers, and the whole
// program compiled by gcc with every warning an error and run: on odd terminal
// names, and on every table of the corpus grammars, where the recognizer must
// accept generated sentences and judge changed ones as the table does.
#include "output/StandaloneC.h"
#include "session/StandaloneExport.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/ScopedEnv.h"
#include "support/Simulators.h"
#include "support/TestPaths.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <gtest/gtest.h>

namespace {

const QString kNoTable = QStringLiteral("This method has no table for this grammar: it was not run, or it refused the grammar.");

const QStringList kStrictC = StrictCOptions();

/// A workspace with text readied by the analysis run.
struct Ready {
    RecordingHost host;
    Workspace ws{&host};
    bool ok = false;
    explicit Ready(const QString& text, const QString& path = QString())
    {
        if (!path.isEmpty())
            ws.grammar.SetPath(path);
        RecordingFrontend frontend(text);
        ok = AnalyzeGrammar(ws, frontend);
    }
    /// Runs the analyser of view; whether it left a standalone program.
    StandaloneProgramResult Analyse(int view)
    {
        std::unique_ptr<IAnazer> analyser = MakeAnalyser(ws, view);
        analyser->SetInProcess(true);
        analyser->Analyze();
        return StandaloneProgram(ws, view);
    }
};

/// A run of a compiled program: exit status and standard output.
struct ProgramRun {
    int status = -1;
    QString out;
};

ProgramRun RunWith(const QString& program, const QString& input)
{
    QProcess p;
    p.start(program, {});
    p.write(input.toUtf8());
    p.closeWriteChannel();
    ProgramRun run;
    if (p.waitForFinished(120000) && p.exitStatus() == QProcess::NormalExit)
        run.status = p.exitCode();
    run.out = QString::fromUtf8(p.readAllStandardOutput());
    return run;
}

QString Compiled(const QString& name, const QString& program)
{
    QString errors;
    const QString exe = CompileC(name, program, errors, kStrictC);
    EXPECT_EQ(errors, QString()) << name.toStdString();
    return exe;
}

// ---- Identifiers ------------------------------------------------------------------

TEST(StandaloneC, IdentifiersAreValidUniqueAndStable)
{
    Ready r(GrammarOf({"<S>=[?][@]<S>", "<S>=[Last][int][TOK_A][a]", "<S>=[A][+][/*][a_2][\xc3\xa9][\xd0\xb6]",
                       "<S_2>=[a]"}));
    ASSERT_TRUE(r.ok);
    const QStringList names = StandaloneC::Identifiers(r.ws.grammar);
    EXPECT_EQ(names.join(QLatin1Char(' ')),
              QStringLiteral("TOK_EOT TOK_QUEST TOK_AT TOK_LAST_2 TOK_INT TOK_TOK_A TOK_A TOK_A_2 TOK_ADD "
                             "TOK_SLASH_STAR TOK_A_2_2 TOK_xC3_x89 TOK_V SYM_S SYM_S_2"));
    // The tables' own names are untouched while none are set.
    EXPECT_EQ(r.ws.grammar.GetSymbolName(1, QStringLiteral("TOK_EOT")), QStringLiteral("TOK_?"));

    Ready longName(GrammarOf({QStringLiteral("<S>=[%1][%1b]").arg(QString(70, QLatin1Char('x')))}));
    const QStringList cut = StandaloneC::Identifiers(longName.ws.grammar);
    EXPECT_EQ(cut[1], QStringLiteral("TOK_") + QString(55, QLatin1Char('X')));
    EXPECT_EQ(cut[2], cut[1] + QStringLiteral("_2"));
}

TEST(StandaloneC, StringsAndCommentsSayNothingToTheCompiler)
{
    EXPECT_EQ(StandaloneC::CString(QStringLiteral("a\"\\?\?=\xe9")), QStringLiteral("\"a\\\"\\\\\\?\\?=\\303\\251\""));
    EXPECT_EQ(StandaloneC::QuietComments(QStringLiteral("x/*/*?\?/*/ \"/*\" y// ?\?/\r\nz")),
              QStringLiteral("x/*/ *? ?/ */ \"/*\" y// ? ?/\r\nz"));
}

// ---- Whole programs ----------------------------------------------------------------

TEST(StandaloneC, OddNamesCompileAndParse)
{
    ScopedEnv epoch("SOURCE_DATE_EPOCH", "1700000000");
    Ready r(GrammarOf({"<S>=[?][@]<S>", "<S>=[Last][int]", "<S>=[TOK_A][a b][a_b][A]",
                       "<S>=[a][/*][?\?/][\\][\xd0\xb6][\xc3\xa9][]]"}),
            QStringLiteral("/tmp/odd names.tkg"));
    ASSERT_TRUE(r.ok);
    for (int view = View::LL; view <= View::OPR; ++view) {
        SCOPED_TRACE(view);
        const StandaloneProgramResult p = r.Analyse(view);
        ASSERT_EQ(p.error, QString());
        const QString exe = Compiled(QStringLiteral("odd-%1").arg(view), p.program);
        ASSERT_FALSE(exe.isEmpty());
        const ProgramRun run = RunWith(exe, QString::fromUtf8("[?][@] Last int\n"
                                                    "? @ TOK_A [a b] a_b A\r\n"
                                                    "[a][/*][?\?/][\\][\xd0\xb6][\xc3\xa9][]]\n"
                                                    "Last\n"
                                                    "[ ? ] [@][Last][]]\n"
                                                    "Last nosuch\n"
                                                    "[Last\n"
                                                    "\n"));
        EXPECT_EQ(run.out, QStringLiteral("accepted\naccepted\naccepted\nrejected at token 2\nrejected at token 4\n"
                                          "rejected at token 2\nrejected at token 1\nrejected at token 1\n"));
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(RunWith(exe, QStringLiteral("Last int")).status, 0);
    }
    // Making the program left the workspace as it was.
    EXPECT_TRUE(r.ws.grammar.cNames.isEmpty());
    EXPECT_EQ(r.ws.settings.generateRecognizer, 0);
    EXPECT_EQ(StandaloneFileName(r.ws, View::LALR), QStringLiteral("odd names-lalr.c"));
}

TEST(StandaloneC, RejectsAtTheTokenWhereTheMethodStops)
{
    // No input at all is the empty sentence; a line's end is the token after its last.
    Ready r(GrammarOf({"<E>=<E>[+]<T>", "<E>=<T>", "<T>=[a]", "<T>=[(]<E>[)]"}));
    ASSERT_TRUE(r.ok);
    for (int view : {View::SLR, View::LALR, View::LR, View::OPR}) {
        SCOPED_TRACE(view);
        const StandaloneProgramResult p = r.Analyse(view);
        ASSERT_EQ(p.error, QString());
        const QString exe = Compiled(QStringLiteral("expr-%1").arg(view), p.program);
        ASSERT_FALSE(exe.isEmpty());
        const ProgramRun run = RunWith(exe, QStringLiteral("a + ( a + a )\na + + a\n( a\n"));
        EXPECT_EQ(run.out, QStringLiteral("accepted\nrejected at token 3\nrejected at token 3\n"));
        EXPECT_EQ(RunWith(exe, QString()).out, QStringLiteral("rejected at token 1\n"));
    }
    // Left recursion: LL(1) builds no table, and says so.
    EXPECT_EQ(r.Analyse(View::LL).error, kNoTable);
    EXPECT_EQ(StandaloneProgram(r.ws, View::First).error,
              QStringLiteral("Standalone C is written for the analyser views only."));
}

TEST(StandaloneC, TrelkCliTableStandalonePrintsTheProgram)
{
    const QString calc = CorpusDir() + QStringLiteral("/calc.tkg");
    const CliRun run = Cli({QStringLiteral("table"), calc, QStringLiteral("--standalone"), QStringLiteral("lalr")});
    ASSERT_EQ(run.status, 0) << run.err.toStdString();
    EXPECT_TRUE(run.out.startsWith(QStringLiteral("/* A recognizer of the grammar calc, whole:")));
    const QString exe = Compiled(QStringLiteral("cli-calc"), run.out);
    ASSERT_FALSE(exe.isEmpty());
    EXPECT_EQ(RunWith(exe, QStringLiteral("+\n")).out, QStringLiteral("rejected at token 1\n"));

    const CliRun refused = Cli({QStringLiteral("table"), calc, QStringLiteral("ll"), QStringLiteral("--standalone")});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.out, QString());
    const CliRun extra = Cli({QStringLiteral("table"), calc, QStringLiteral("lalr"), QStringLiteral("--json")});
    EXPECT_EQ(extra.status, 2);
    EXPECT_EQ(extra.err, QStringLiteral("trelk-cli: table takes GRAMMAR VIEW [--standalone], not ") + calc
                             + QStringLiteral(" lalr --json\n"));
}

// ---- The corpus ----------------------------------------------------------------------

/// The real grammars all, and some of each scaling family.
const char* const kCorpus[] = {
    "ansic89", "bash", "bc", "c11", "calc", "gawk", "go14", "java", "mysql", "php", "postgres", "python",
    "scaling/exprprec_L10", "scaling/exprprec_L50", "scaling/lr1notlalr_n10", "scaling/stmts_n10",
};

class StandaloneCorpus : public ::testing::TestWithParam<const char*> {};

TEST_P(StandaloneCorpus, EveryTableCompilesAndRecognizes)
{
    const QString name = QString::fromLatin1(GetParam());
    const QString path = CorpusDir() + QLatin1Char('/') + name + QStringLiteral(".tkg");
    ASSERT_TRUE(QFileInfo::exists(path)) << path.toStdString();
    Ready r(ReadGrammarText(path), path);
    ASSERT_TRUE(r.ok);
    const Grammar& g = r.ws.grammar;

    // Every method's program is compiled at once: the largest take gcc a while.
    struct Compile {
        int view;
        bool clean;
        QString exe;
        std::unique_ptr<QProcess> gcc;
    };
    std::vector<Compile> compiles;
    for (int view = View::LL; view <= View::OPR; ++view) {
        const StandaloneProgramResult p = r.Analyse(view);
        if (!p.error.isEmpty())
            continue;  // the method refused the grammar or ran into a limit
        Compile c{view, ConflictsOf(r.ws, view).empty(), QString(), std::make_unique<QProcess>()};
        const QString file = QFileInfo(name).fileName() + QLatin1Char('-') + QString::number(view);
        c.exe = ScratchDir(QStringLiteral("c-") + file) + QLatin1Char('/') + file;
        ASSERT_TRUE(WriteFileBytes(c.exe + QStringLiteral(".c"), p.program.toUtf8()));
        // A table with conflicts is not run: the compiler is asked for its
        // warnings only, which spares building the megabytes of the largest.
        c.gcc->start(QStringLiteral("gcc"), kStrictC + QStringList{c.clean ? QStringLiteral("-o") : QStringLiteral("-fsyntax-only")}
                                                + (c.clean ? QStringList{c.exe} : QStringList{})
                                                + QStringList{c.exe + QStringLiteral(".c")});
        compiles.push_back(std::move(c));
    }
    EXPECT_FALSE(compiles.empty());

    std::mt19937 rng(20240607);
    for (Compile& c : compiles) {
        const int view = c.view;
        SCOPED_TRACE(view);
        ASSERT_TRUE(c.gcc->waitForFinished(280000));
        EXPECT_EQ(QString::fromUtf8(c.gcc->readAllStandardError()), QString());
        EXPECT_EQ(c.gcc->exitCode(), 0);
        if (!c.clean)
            continue;
        const std::vector<std::vector<int>> sentences = RandomSentences(g, 40, rng);
        const std::vector<std::vector<int>> changed = Mutations(g, sentences, rng);
        QString input;
        for (const std::vector<int>& s : sentences)
            input += SentenceLine(g, s) + QLatin1Char('\n');
        const auto simulate = [&](const std::vector<int>& s) {
            if (view == View::LL)
                return SimulateLL(r.ws, s);
            if (const LrResults* lr = LrResultsOf(r.ws, view))
                return SimulateLR(r.ws, *lr, s);
            return SimulatePrecedence(r.ws, s, view == View::SPR);
        };
        std::vector<bool> verdicts;
        for (const std::vector<int>& s : changed) {
            input += SentenceLine(g, s) + QLatin1Char('\n');
            verdicts.push_back(simulate(s));
        }
        const QStringList out = RunWith(c.exe, input).out.split(QLatin1Char('\n'));
        ASSERT_EQ(out.size(), static_cast<qsizetype>(sentences.size() + changed.size() + 1));
        for (std::size_t i = 0; i < sentences.size(); ++i)
            EXPECT_EQ(out[static_cast<qsizetype>(i)], QStringLiteral("accepted")) << i;
        int agree = 0;
        for (std::size_t i = 0; i < changed.size(); ++i)
            agree += (out[static_cast<qsizetype>(sentences.size() + i)] == QStringLiteral("accepted")) == verdicts[i];
        EXPECT_EQ(agree, static_cast<int>(changed.size()));
    }
}

INSTANTIATE_TEST_SUITE_P(Corpus, StandaloneCorpus, ::testing::ValuesIn(kCorpus),
                         [](const ::testing::TestParamInfo<const char*>& info) {
                             std::string n = info.param;
                             for (char& c : n)
                                 if (!std::isalnum(static_cast<unsigned char>(c)))
                                     c = '_';
                             return n;
                         });

} // namespace
