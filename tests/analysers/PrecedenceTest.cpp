// The precedence step and the two precedence analysers: textbook relation
// tables and the sets behind them, Stop, the corpus, and the generated sample
// parsers compiled and run. The listings, refusals and C texts (conflicts
// written EQ, then LT, then GT; codes and widths from the settings) are golden
// cases (view-spr-*, view-opr-*, table-spr-*, table-opr-*).
#include "analysers/Ana10SPR.h"
#include "analysers/Ana11OPR.h"
#include "support/GrammarSamples.h"
#include "support/Simulators.h"
#include "support/RecordingHost.h"
#include "support/ScopedEnv.h"
#include "support/TestPaths.h"

#include <gtest/gtest.h>

namespace {

const QString kNotSimple = QStringLiteral("This Grammar Is Not Simple Precedence One.");
const QString kNotOperator = QStringLiteral("This Grammar Is Not Operator Precedence One.");

/// A grammar readied by the analysis run, then both precedence analysers run on it.
struct Prec {
    RecordingHost host;
    Workspace ws{&host};
    bool parsed = false, spr = false, opr = false;

    explicit Prec(const QString& text, const Settings& settings = Settings())
    {
        ws.settings = settings;
        RecordingFrontend frontend(text);
        parsed = AnalyzeGrammar(ws, frontend);
        spr = Analysed<Ana10SPR>(ws);
        opr = Analysed<Ana11OPR>(ws);
    }
    const PrecedenceState& state() const { return ws.grammar.precedence; }
    int C(const char* name) const
    {
        for (int c = 1; c <= ws.grammar.lastCode; ++c)
            if (ws.grammar.SymbolName(c) == QString::fromUtf8(name))
                return c;
        ADD_FAILURE() << "no symbol " << name;
        return -1;
    }
    /// A set by its members as the reports print them, in its order.
    QString Names(const std::vector<CodeList>& sets, const char* of) const
    {
        QStringList names;
        for (int c : sets[static_cast<std::size_t>(C(of))])
            names << ws.grammar.GetSymbolS(c);
        return names.join(QLatin1Char(' '));
    }
};

/// The matrix, a row per line and a character per cell: '<', '=', '>', '.'
/// when empty, '!' for a conflict.
QString Grid(const PrecedenceMatrix& m)
{
    QString grid;
    for (int i = 0; i < m.Size(); ++i) {
        for (int j = 0; j < m.Size(); ++j) {
            const std::vector<int> codes = m.Codes(i, j);
            grid += codes.empty()                            ? QLatin1Char('.')
                  : codes.size() > 1                         ? QLatin1Char('!')
                  : codes[0] == m.Code(PrecedenceMatrix::LT) ? QLatin1Char('<')
                  : codes[0] == m.Code(PrecedenceMatrix::EQ) ? QLatin1Char('=')
                                                             : QLatin1Char('>');
        }
        grid += QLatin1Char(' ');
    }
    return grid.trimmed();
}

const QString kExpr = Lines({"<E>", "<E>=<E>[+]<T>", "<E>=<T>", "<T>=<T>[*]<F>", "<T>=<F>", "<F>=[(]<E>[)]",
                             "<F>=[a]"});
// A simple precedence grammar from Gries, Compiler Construction for Digital Computers (1971).
const QString kGries = Lines({"<Z>", "<Z>=[b]<M>[b]", "<M>=[(]<L>", "<M>=[a]", "<L>=<M>[a][)]"});

TEST(Precedence, ExpressionGrammarGivesTheTextbookOperatorTable)
{
    Settings settings;
    settings.cellWidth = 3;
    Prec p(kExpr, settings);
    ASSERT_TRUE(p.parsed);
    EXPECT_TRUE(p.opr);
    // Rows and columns EOT [+] [*] [(] [)] [a], as in Aho, Sethi and Ullman.
    EXPECT_EQ(Grid(p.ws.opr.synta), QStringLiteral(".<<<.< >><<>< >>><>< .<<<=< >>>.>. >>>.>."));
    EXPECT_EQ(p.Names(p.ws.grammar.leftTermSet, "E"), QStringLiteral("[+] [*] [(] [a]"));
    EXPECT_EQ(p.Names(p.ws.grammar.rightTermSet, "E"), QStringLiteral("[+] [*] [)] [a]"));
    EXPECT_EQ(Ana11OPR(p.ws).ExportDisplay(), p.state().oprText);
    // The C text raises the stored cell width itself to 4, as the settings file then keeps it.
    Ana11OPR(p.ws).TableDisplay();
    EXPECT_EQ(p.ws.settings.cellWidth, 4);

    // Not simple precedence: [+] .= <T> and [+] <. <T>, [(] .= <E> and [(] <. <E>;
    // the table is kept and flagged all the same.
    EXPECT_FALSE(p.spr);
    EXPECT_EQ(p.ws.spr.synta.ConflictCount(), 2);
    EXPECT_EQ(p.ws.spr.synta.CellText(p.C("+"), p.C("T")), QStringLiteral("-1, -2"));
    EXPECT_EQ(p.ws.spr.synta.CellText(p.C("("), p.C("E")), QStringLiteral("-1, -2"));
    EXPECT_TRUE(p.state().sprTableBuilt);
    EXPECT_FALSE(p.state().sprPossible);
    EXPECT_TRUE(p.ws.grammar.GetFlag(GrammarFlag::AnalysedSPR));
}

TEST(Precedence, GriesGrammarIsSimplePrecedenceButNotOperatorPrecedence)
{
    Prec p(kGries);
    EXPECT_TRUE(p.spr);
    // Rows and columns EOT [b] [(] [a] [)] <Z> <M> <L>.
    EXPECT_EQ(Grid(p.ws.spr.synta),
              QStringLiteral(".<...... >.<<..=. ..<<..<= .>.>=... .>.>.... ........ .=.=.... .>.>...."));
    EXPECT_EQ(p.Names(p.ws.grammar.leftSet, "L"), QStringLiteral("<M> [(] [a]"));
    EXPECT_EQ(p.Names(p.ws.grammar.rightSet, "M"), QStringLiteral("<L> [a] [)]"));
    // The scan back over <M>=[(]<L> makes [(] the last terminal of <M>, and <M>[a]
    // is a pair: [(] .> [a] against [(] <. [a] from [(]<L>.
    EXPECT_FALSE(p.opr);
    EXPECT_EQ(p.ws.opr.synta.CellText(p.C("("), p.C("a")), QStringLiteral("-2, 1"));
}

TEST(Precedence, AdjacentNonTerminalsAreANoteOfThePrecedenceStepOnly)
{
    // The tables the run then builds are golden cases (view-spr-adjacent, view-opr-adjacent).
    Workspace ws;
    RecordingFrontend fe(Lines({"<S>", "<S>=[a]<B><C>[d]", "<B>=[b]", "<C>=<D>[c]", "<D>=[e]"}));
    ASSERT_TRUE(AnalyzeGrammar(ws, fe));
    EXPECT_EQ(ws.grammar.precedence.oprText, kNotOperator + QStringLiteral("\r\nAdjacent Non-Terminals Are Not Allowed."));
    EXPECT_TRUE(ws.grammar.precedence.oprPossible);
}

TEST(Precedence, ANonTerminalWithoutRulesHasEmptySets)
{
    // The refusals of parsed grammars are golden cases (view-spr-*, view-opr-*, table-opr-refused);
    // a grammar assembled by hand can also hold a non-terminal without rules.
    Prec cut(Lines({"<S>", "<S>=[a]<A>", "<A>=[b]"}));
    Grammar& g = cut.ws.grammar;
    g.rules.pop_back();
    g.ruleCount = 1;
    g.FindLeftAndRightSets();
    EXPECT_EQ(g.precedence.sprText, kNotSimple);
    EXPECT_FALSE(Analysed<Ana10SPR>(cut.ws));
    EXPECT_FALSE(g.precedence.sprTableBuilt);
}

TEST(Precedence, AStopLeavesTheSetsUndoneAndTheViewComputesThem)
{
    for (long turn = 1;; ++turn) {  // Stop at each turn the precedence step gives in turn
        SCOPED_TRACE(turn);
        RecordingHost host;
        Workspace ws(&host);
        RecordingFrontend fe(kGries);
        ASSERT_TRUE(AnalyzeGrammar(ws, fe));
        host.yields = 0;
        host.stopAfter = turn;
        host.stop = [&] { ws.grammar.SetInProcess(false); };
        ws.grammar.FindLeftAndRightSets();
        if (host.yields < turn)
            break;
        EXPECT_FALSE(ws.grammar.precedence.sprSetsDone);
        EXPECT_EQ(ws.grammar.precedence.sprText, NotAnalyzed);
        host.stop = nullptr;
        Analyse(ws, fe, View::SPR);
        EXPECT_EQ(fe.text2, ws.grammar.precedence.sprText);
        EXPECT_TRUE(fe.text2.startsWith(QStringLiteral("SYNTA[0,1]=-2\r\n")));
        ws.ResetResults();
        EXPECT_EQ(ws.grammar.precedence.sprText, NotAnalyzed);
        EXPECT_EQ(ws.spr.synta.Size(), 0);
    }
}

TEST(Precedence, CorpusGrammarsAreRefusedForTheirReasonOrGetBothTables)
{
    for (const QString& path : CorpusGrammars()) {
        SCOPED_TRACE(path.toStdString());
        Prec p(ReadGrammarText(path));
        const Grammar& g = p.ws.grammar;
        if (g.GetFlag(GrammarFlag::HasEmptyRule) || !g.GetFlag(GrammarFlag::NoEqualRightSides)) {
            EXPECT_TRUE(p.state().sprText.endsWith(g.GetFlag(GrammarFlag::HasEmptyRule) ? QStringLiteral("Empty Rules Are Not Allowed.")
                                                                                         : QStringLiteral("Equal Right Parts Are Not Allowed.")));
            EXPECT_FALSE(g.GetFlag(GrammarFlag::AnalysedSPR) || g.GetFlag(GrammarFlag::AnalysedOPR));
        } else {
            EXPECT_EQ(p.ws.spr.synta.Size(), g.lastCode + 1);
            EXPECT_EQ(p.ws.opr.synta.Size(), g.terminalCount + 1);
            EXPECT_EQ(p.state().sprText.startsWith(kNotSimple), p.ws.spr.synta.ConflictCount() > 0);
        }
    }
}

// ---- The sample parsers -------------------------------------------------------

TEST(Precedence, GeneratedParsersAgreeWithTheSimulation)
{
    ScopedEnv epoch("SOURCE_DATE_EPOCH", "1700000000");
    const struct {
        const char* name;
        QString text;
        bool simple;
        bool passes;  ///< the grammar passes the test: every sentence is accepted
    } cases[] = {
        {"spr_gries", kGries, true, true},
        {"spr_layers", Lines({"<S>", "<S>=<E>", "<E>=<E1>", "<E1>=<E1>[+]<T>", "<E1>=<T>", "<T>=<T1>",
                              "<T1>=<T1>[*]<F>", "<T1>=<F>", "<F>=[(]<S>[)]", "<F>=[a]"}),
         true, true},
        {"spr_conflicts", kExpr, true, false},
        {"opr_expr", kExpr, false, true},
        {"opr_levels", Lines({"<E>", "<E>=<E>[+]<T>", "<E>=<E>[-]<T>", "<E>=<T>", "<T>=<T>[*]<P>", "<T>=<T>[/]<P>",
                              "<T>=<P>", "<P>=<F>[^]<P>", "<P>=<F>", "<F>=[(]<E>[)]", "<F>=[a]", "<F>=[b]"}),
         false, true},
    };
    std::mt19937 rng(7);
    for (const auto& pc : cases) {
        SCOPED_TRACE(pc.name);
        Settings settings;
        settings.generateRules = 0;  // the parser brings its own RULE table, in order
        settings.generateRuleReverse = 1;
        Prec p(pc.text, settings);
        ASSERT_EQ(pc.simple ? p.spr : p.opr, pc.passes);
        QString errors;
        const QString exe =
            CompileStandalone(p.ws, pc.simple ? View::SPR : View::OPR, QString::fromLatin1(pc.name), errors);
        ASSERT_FALSE(exe.isEmpty()) << errors.toStdString();

        const auto sentences = RandomSentences(p.ws.grammar, 150, rng);
        auto all = Mutations(p.ws.grammar, sentences, rng);
        all.insert(all.end(), sentences.begin(), sentences.end());
        all.push_back({});
        const int accepted =
            ExpectRecognizerAgrees(exe, p.ws.grammar, all, [&](const std::vector<int>& s) { return SimulatePrecedence(p.ws, s, pc.simple); });
        if (pc.passes) {
            for (const std::vector<int>& s : sentences)
                EXPECT_TRUE(SimulatePrecedence(p.ws, s, pc.simple));
        }
        EXPECT_LT(accepted, static_cast<int>(all.size()) - 50);  // most mutations are refused
    }
}

} // namespace

TEST(Precedence, AStopAtAnyTurnOfTheAnalyserLeavesNoTableAndNoListing)
{
    // The turns include one per row of the listing, which on a large matrix takes
    // longer than the table itself: a Stop there must not leave half a listing.
    for (int view : {View::SPR, View::OPR}) {
        long turns = 0;
        int rules = 0;
        for (long turn = 1;; ++turn) {
            SCOPED_TRACE(turn);
            RecordingHost host;
            Workspace ws(&host);
            RecordingFrontend fe(kGries);
            ASSERT_TRUE(AnalyzeGrammar(ws, fe));
            ws.grammar.FindLeftAndRightSets();
            host.yields = 0;
            host.stopAfter = turn;
            host.stop = [&] { ws.current->SetInProcess(false); };
            Analyse(ws, fe, view);
            if (host.yields < turn) {
                turns = turn - 1;
                EXPECT_TRUE(IsAnalysed(ws, view));
                break;
            }
            EXPECT_FALSE(IsAnalysed(ws, view));
            EXPECT_EQ(fe.text2, NotAnalyzed);
            EXPECT_EQ(MakeAnalyser(ws, view)->ExportDisplay(), NotAnalyzed);
            rules = ws.grammar.ruleCount;
        }
        // More turns than rules: the listing's rows are among them.
        EXPECT_GT(turns, rules + 1L) << view;
    }
}
