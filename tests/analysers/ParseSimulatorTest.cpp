// The parse simulator: its verdicts against the generated sample recognizers
// (compiled with gcc), the trees it builds, the trees after each step, conflict
// cells, the texts of a run, sentence reading, limits and example sentences.
#include "session/ConflictExplainer.h"
#include "session/ParseSimulator.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/ScopedEnv.h"
#include "support/TestPaths.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <gtest/gtest.h>

namespace {

const QString kExpr = Lines({"<E>", "<E>=<E>[+]<T>", "<E>=<T>", "<T>=<T>[*]<F>", "<T>=<F>", "<F>=[(]<E>[)]",
                             "<F>=[a]"});
const QString kExprLL = Lines({"<E>", "<E>=<T><R>", "<R>=[+]<T><R>", "<R>=", "<T>=<F><U>", "<U>=[*]<F><U>", "<U>=",
                               "<F>=[(]<E>[)]", "<F>=[a]"});
const QString kDanglingElse = Lines({"<S>", "<S>=[if]<C>[then]<S>", "<S>=[if]<C>[then]<S>[else]<S>", "<S>=[x]",
                                     "<C>=[c]"});
const QString kGries = Lines({"<Z>", "<Z>=[b]<M>[b]", "<M>=[(]<L>", "<M>=[a]", "<L>=<M>[a][)]"});

/// A grammar readied and analysed by one view, with the settings the
/// generated recognizers need.
struct Analysed {
    RecordingHost host;
    Workspace ws{&host};
    RecordingFrontend fe;
    bool ready = false;

    Analysed(const QString& text, int view)
        : fe(text)
    {
        ws.settings.generateRecognizer = 1;
        if (view == View::LL) {
            ws.settings.generateRules = 1;
            ws.settings.generateRuleReverse = 1;
        } else if (view == View::SPR || view == View::OPR) {
            ws.settings.generateRules = 0;  // the parser brings its own RULE table, in order
            ws.settings.generateRuleReverse = 1;
        }
        if (!AnalyzeGrammar(ws, fe))
            return;
        Analyse(ws, fe, view);
        ready = IsAnalysed(ws, view);
    }

    ParseRun Run(int view, const std::vector<int>& sentence, const SimulateOptions& options = {})
    {
        ParseRun run;
        QString error;
        EXPECT_TRUE(SimulateParse(ws, view, sentence, options, run, error)) << error.toStdString();
        return run;
    }
    std::vector<int> Read(const char* text)
    {
        std::vector<int> tokens;
        QString error;
        EXPECT_TRUE(ReadSentence(ws.grammar, QString::fromUtf8(text), tokens, error)) << error.toStdString();
        return tokens;
    }
};

/// Each inner node's children are its rule's right side; for operator
/// precedence a non-terminal of the rule may stand as any non-terminal.
void ExpectTreeFollowsRules(const Grammar& g, const DerivationTree& node, bool anyNonterminal)
{
    if (node.rule < 0)
        return;
    ASSERT_GE(node.rule, 1);
    ASSERT_LE(node.rule, g.ruleCount);
    const std::vector<int>& rule = g.rules[node.rule];
    ASSERT_EQ(static_cast<int>(node.children.size()), g.RightLength(node.rule));
    EXPECT_TRUE(node.symbol == rule[0] || (anyNonterminal && g.IsNonterminal(node.symbol)));
    for (std::size_t k = 0; k < node.children.size(); ++k) {
        const int want = rule[k + 1];
        const int got = node.children[k].symbol;
        EXPECT_TRUE(got == want || (anyNonterminal && g.IsNonterminal(want) && g.IsNonterminal(got)))
            << TreeText(g, node).toStdString();
        ExpectTreeFollowsRules(g, node.children[k], anyNonterminal);
    }
}

/// The trees after each step stand for the configuration the next step starts from.
void ExpectTreesFollowSteps(const Workspace& ws, const ParseRun& run)
{
    const Grammar& g = ws.grammar;
    for (std::size_t k = 0; k < run.steps.size(); ++k) {
        const ParseStep& step = run.steps[k];
        const std::vector<DerivationTree> trees = TreesAfter(ws, run, static_cast<int>(k));
        QStringList roots;
        for (const DerivationTree& t : trees)
            roots << g.GetSymbolS(t.symbol);
        if (run.view == View::LL) {
            // The leaves: the input matched so far, then the stack read downwards.
            ASSERT_EQ(trees.size(), 1u);
            QStringList expected;
            for (int i = 0; i < step.position; ++i)
                expected << g.GetSymbolS(run.tokens[static_cast<std::size_t>(i)]);
            for (qsizetype i = step.stack.size() - 1; i >= 1; --i)
                expected << step.stack[i];
            QStringList leaves;
            for (int s : Leaves(trees[0]))
                leaves << g.GetSymbolS(s);
            EXPECT_EQ(leaves, expected) << k;
        } else if (run.view == View::SPR || run.view == View::OPR) {
            EXPECT_EQ(roots, step.stack.mid(1)) << k;
        } else {
            EXPECT_EQ(trees.size() + 1, static_cast<std::size_t>(step.stack.size())) << k;
            EXPECT_EQ(roots, step.symbols) << k;
        }
    }
}

TEST(ParseSimulator, AgreesWithTheGeneratedRecognizersAndBuildsRightTrees)
{
    ScopedEnv epoch("SOURCE_DATE_EPOCH", "1700000000");
    std::vector<std::pair<std::string, QString>> grammars = {
        {"calc", ReadGrammarText(CorpusDir() + QStringLiteral("/calc.tkg"))},
        {"expr", kExpr},
        {"exprll", kExprLL},
        {"dangling", kDanglingElse},
        {"gries", kGries},
    };
    std::mt19937 rng(2024);
    for (int i = 0; grammars.size() < 9; ++i) {
        const QString text = RandomGrammarText(rng);
        RecordingHost host;
        Workspace ws(&host);
        RecordingFrontend fe(text);
        if (AnalyzeGrammar(ws, fe) && ShortestSentence(ws.grammar).size() > 0)
            grammars.push_back({"random" + std::to_string(i), text});
    }
    int runs = 0;
    for (const auto& [name, text] : grammars) {
        for (int view = View::LL; view <= View::OPR; ++view) {
            SCOPED_TRACE(name + " view " + std::to_string(view));
            Analysed a(text, view);
            if (!a.ready)
                continue;  // the method refused the grammar
            // The standalone program is the generated recognizer with the
            // enumeration, the types and a driver around it.
            QString errors;
            const QString exe = CompileStandalone(a.ws, view, QString::fromStdString(name) + QString::number(view), errors);
            ASSERT_FALSE(exe.isEmpty()) << errors.toStdString();
            auto sentences = RandomSentences(a.ws.grammar, 60, rng);
            auto wrong = Mutations(a.ws.grammar, sentences, rng);
            sentences.insert(sentences.end(), wrong.begin(), wrong.end());
            sentences.push_back({});
            int checked = 0;
            ExpectRecognizerAgrees(exe, a.ws.grammar, sentences, [&](const std::vector<int>& s) {
                const ParseRun run = a.Run(view, s);
                // A cycle of unit rules runs into the limit, where the C gives up too.
                if (run.verdict == ParseVerdict::Limit)
                    return false;
                if (run.verdict != ParseVerdict::Accepted) {
                    EXPECT_EQ(run.steps.back().kind, StepKind::Error);
                    EXPECT_EQ(run.errorPosition, run.steps.back().position);
                    return false;
                }
                const DerivationTree tree = ParseTree(a.ws, run);
                EXPECT_EQ(Leaves(tree), s);
                EXPECT_TRUE(tree.symbol == a.ws.grammar.goal || view == View::OPR);
                ExpectTreeFollowsRules(a.ws.grammar, tree, view == View::OPR);
                if (checked++ < 20)
                    ExpectTreesFollowSteps(a.ws, run);
                return true;
            });
            ++runs;
        }
    }
    EXPECT_GE(runs, 20);
}

TEST(ParseSimulator, ConflictCellTakesTheKeptActionAsTheCDoes)
{
    Analysed a(kDanglingElse, View::LALR);
    ASSERT_TRUE(a.ready);
    ASSERT_FALSE(a.ws.lalr.conflicts.empty());
    const ParseRun run = a.Run(View::LALR, a.Read("if c then if c then x else x"));
    ASSERT_EQ(run.verdict, ParseVerdict::Accepted);
    int flagged = 0;
    for (const ParseStep& step : run.steps) {
        if (!step.fromConflict)
            continue;
        ++flagged;
        EXPECT_EQ(step.kind, StepKind::Shift);
        EXPECT_EQ(a.ws.grammar.GetSymbolS(run.tokens[static_cast<std::size_t>(step.position)]), QStringLiteral("[else]"));
    }
    EXPECT_EQ(flagged, 1);
    // The else goes with the nearer if.
    EXPECT_EQ(TreeText(a.ws.grammar, ParseTree(a.ws, run)),
              QStringLiteral("<S>=( [if] <C>=( [c] ) [then] <S>=( [if] <C>=( [c] ) [then] <S>=( [x] ) [else] "
                             "<S>=( [x] ) ) )"));

    // An LL(1) conflict cell: the rule written first is predicted, as the C predicts it.
    Analysed ll(Lines({"<S>", "<S>=[a][b]", "<S>=[a][c]"}), View::LL);
    ASSERT_TRUE(ll.ready);
    const ParseRun predicted = ll.Run(View::LL, ll.Read("a b"));
    ASSERT_EQ(predicted.verdict, ParseVerdict::Accepted);
    EXPECT_TRUE(predicted.steps[0].fromConflict);
    EXPECT_EQ(predicted.steps[0].action, QStringLiteral("predict 1: <S>=[a][b]"));
    EXPECT_FALSE(predicted.steps[1].fromConflict);
    const ParseRun refused = ll.Run(View::LL, ll.Read("a c"));
    EXPECT_EQ(refused.verdict, ParseVerdict::Rejected);
    EXPECT_EQ(refused.message, QStringLiteral("Rejected at [c] (token 2): expected [b]."));
}

TEST(ParseSimulator, RejectionsNameThePlaceAndTheExpectedTerminals)
{
    Analysed lalr(kExpr, View::LALR);
    ASSERT_TRUE(lalr.ready);
    ParseRun run = lalr.Run(View::LALR, lalr.Read("[a][+][+]"));
    EXPECT_EQ(run.verdict, ParseVerdict::Rejected);
    EXPECT_EQ(run.errorPosition, 2);
    EXPECT_EQ(run.message, QStringLiteral("Rejected at [+] (token 3): expected [(] or [a]."));
    EXPECT_EQ(run.steps.back().action, QStringLiteral("error: state 7 has no action on [+]"));
    run = lalr.Run(View::LALR, lalr.Read("a ( a"));
    EXPECT_EQ(run.message, QStringLiteral("Rejected at [(] (token 2): expected $, [+], [*] or [)]."));
    run = lalr.Run(View::LALR, {});
    EXPECT_EQ(run.message, QStringLiteral("Rejected at $ (token 1): expected [(] or [a]."));

    Analysed ll(kExprLL, View::LL);
    ASSERT_TRUE(ll.ready);
    run = ll.Run(View::LL, ll.Read("a a"));
    EXPECT_EQ(run.message, QStringLiteral("Rejected at [a] (token 2): expected $, [+], [*] or [)]."));
    EXPECT_EQ(run.steps.back().action, QStringLiteral("error: no entry for <U> under [a]"));
    run = ll.Run(View::LL, ll.Read("( a"));
    EXPECT_EQ(run.message, QStringLiteral("Rejected at $ (token 3): expected [)]."));

    Analysed opr(kExpr, View::OPR);
    ASSERT_TRUE(opr.ready);
    run = opr.Run(View::OPR, opr.Read("a a"));
    EXPECT_EQ(run.message, QStringLiteral("Rejected at [a] (token 2): expected $, [+], [*] or [)]."));
    EXPECT_EQ(run.steps.back().action, QStringLiteral("error: no relation between [a] and [a]"));
    EXPECT_EQ(run.steps.back().relation, QString());

    Analysed spr(kGries, View::SPR);
    ASSERT_TRUE(spr.ready);
    run = spr.Run(View::SPR, spr.Read("b ( a b"));
    EXPECT_EQ(run.verdict, ParseVerdict::Rejected);
    EXPECT_EQ(run.errorPosition, 4);

    // No table: a view not analysed, one that refused the grammar, a report view.
    ParseRun none;
    QString error;
    EXPECT_FALSE(SimulateParse(lalr.ws, View::LR, {}, {}, none, error));
    EXPECT_EQ(error, QStringLiteral("LR(1) has no table: not analysed, or the method refused the grammar."));
    Analysed refused(kExpr, View::LL);
    EXPECT_FALSE(SimulateParse(refused.ws, View::LL, {}, {}, none, error));
    EXPECT_EQ(error, QStringLiteral("LL(1) has no table: not analysed, or the method refused the grammar."));
    EXPECT_FALSE(SimulateParse(lalr.ws, View::First, {}, {}, none, error));
    EXPECT_EQ(error, QStringLiteral("View 2 has no table to parse with."));
    EXPECT_FALSE(SimulateParse(lalr.ws, View::LALR, {1, 99}, {}, none, error));
    EXPECT_EQ(error, QStringLiteral("Token 2 of the sentence (code 99) is not a terminal of the grammar."));
}

TEST(ParseSimulator, TextAndJsonOfARun)
{
    Analysed a(Lines({"<E>", "<E>=<E>[+]<E>", "<E>=[a]"}), View::SLR);
    ASSERT_TRUE(a.ready);
    const ParseRun run = a.Run(View::SLR, a.Read("a + a"));
    EXPECT_EQ(ParseRunText(a.ws, run, true),
              QStringLiteral("SLR(1): [a] [+] [a]\n"
                             "Accepted.\n"
                             "step  stack    symbols      input          action\n"
                             "1     0                     [a] [+] [a] $  shift 1\n"
                             "2     0 1      [a]          [+] [a] $      reduce 2: <E>=[a]\n"
                             "3     0 2      <E>          [+] [a] $      shift 3\n"
                             "4     0 2 3    <E> [+]      [a] $          shift 1\n"
                             "5     0 2 3 1  <E> [+] [a]  $              reduce 2: <E>=[a]\n"
                             "6     0 2 3 4  <E> [+] <E>  $              reduce 1: <E>=<E>[+]<E>\n"
                             "7     0 2      <E>          $              accept\n"
                             "tree: <E>=( <E>=( [a] ) [+] <E>=( [a] ) )\n"));
    const ParseRun wrong = a.Run(View::SLR, a.Read("a a"));
    EXPECT_EQ(ParseRunText(a.ws, wrong, false),
              QStringLiteral("SLR(1): [a] [a]\nRejected at [a] (token 2): expected $ or [+].\n"));
    EXPECT_EQ(ParseRunText(a.ws, a.Run(View::SLR, {}), false),
              QStringLiteral("SLR(1): (the empty sentence)\nRejected at $ (token 1): expected [a].\n"));

    const QJsonObject json = ParseRunJson(a.ws, wrong, true);
    EXPECT_EQ(QString::fromUtf8(QJsonDocument(json).toJson(QJsonDocument::Compact)),
              QStringLiteral(R"j({"accepted":false,"error_position":1,"expected":["$","[+]"],"message":)j"
                             R"j("Rejected at [a] (token 2): expected $ or [+].","method":"SLR(1)","sentence":["[a]","[a]"],)j"
                             R"j("trace":[{"action":"shift 1","conflict":false,"input":["[a]","[a]","$"],"rule":0,)j"
                             R"j("stack":["0"],"symbols":[]},{"action":"error: state 1 has no action on [a]",)j"
                             R"j("conflict":false,"input":["[a]","$"],"rule":0,"stack":["0","1"],"symbols":["[a]"]}],)j"
                             R"j("tree":null,"verdict":"rejected"})j"));
    const QJsonObject accepted = ParseRunJson(a.ws, run, false);
    EXPECT_FALSE(accepted.contains(QStringLiteral("trace")));
    EXPECT_EQ(accepted[QStringLiteral("tree")].toObject()[QStringLiteral("rule")].toInt(), 1);

    Analysed opr(kExpr, View::OPR);
    const QJsonArray trace = ParseRunJson(opr.ws, opr.Run(View::OPR, opr.Read("a")), true)[QStringLiteral("trace")].toArray();
    ASSERT_EQ(trace.size(), 3);
    EXPECT_EQ(trace[0].toObject()[QStringLiteral("relation")].toString(), QStringLiteral("<."));
    EXPECT_EQ(trace[1].toObject()[QStringLiteral("relation")].toString(), QStringLiteral(".>"));
    EXPECT_FALSE(trace[0].toObject().contains(QStringLiteral("symbols")));
}

TEST(ParseSimulator, ReadsSentencesInEitherNotation)
{
    RecordingHost host;
    Workspace ws(&host);
    RecordingFrontend fe(Lines({"<V>", "<V>=[[]<L>[]]", "<V>=[a]", "<L>=<V>", "<L>=<V>[,]<L>"}));
    ASSERT_TRUE(AnalyzeGrammar(ws, fe));
    const Grammar& g = ws.grammar;
    std::vector<int> tokens;
    QString error;
    auto read = [&](const char* text) {
        EXPECT_TRUE(ReadSentence(g, QString::fromUtf8(text), tokens, error)) << text << error.toStdString();
        return SentenceText(g, tokens);
    };
    EXPECT_EQ(read("[[][a][,][a][]]"), QStringLiteral("[[] [a] [,] [a] []]"));
    EXPECT_EQ(read(" [[]  [a] [,][a] []] "), QStringLiteral("[[] [a] [,] [a] []]"));
    EXPECT_EQ(read("[ a , a ]"), QStringLiteral("[[] [a] [,] [a] []]"));
    EXPECT_EQ(read(""), QString());
    EXPECT_TRUE(tokens.empty());
    EXPECT_EQ(read("   "), QString());

    const struct {
        const char* text;
        const char* error;
    } bad[] = {
        {"[a] [x]", "\"[x]\" at position 5 is not a terminal of the grammar."},
        {"a x", "\"x\" at position 3 is not a terminal of the grammar."},
        {"a,a", "\"a,a\" at position 1 is not a terminal of the grammar."},
        {"[a", "\"[a\" at position 1 is not a terminal of the grammar."},
        {"<V>", "\"<V>\" at position 1 is not a terminal of the grammar."},
        {"b", "\"b\" at position 1 is not a terminal of the grammar."},
    };
    for (const auto& c : bad) {
        EXPECT_FALSE(ReadSentence(g, QString::fromUtf8(c.text), tokens, error)) << c.text;
        EXPECT_EQ(error, QString::fromUtf8(c.error));
        EXPECT_TRUE(tokens.empty());
    }
}

TEST(ParseSimulator, LimitsAndStopEndLongRuns)
{
    Analysed a(kExpr, View::LALR);
    ASSERT_TRUE(a.ready);
    std::vector<int> sentence = a.Read("a");
    const std::vector<int> more = a.Read("+ a");
    for (int i = 0; i < 2000; ++i)
        sentence.insert(sentence.end(), more.begin(), more.end());

    SimulateOptions few;
    few.maxSteps = 5;
    ParseRun run = a.Run(View::LALR, sentence, few);
    EXPECT_EQ(run.verdict, ParseVerdict::Limit);
    EXPECT_EQ(run.steps.size(), 5u);
    EXPECT_EQ(run.message, QStringLiteral("Step limit reached after 5 steps."));

    int asked = 0;
    SimulateOptions stop;
    stop.stopped = [&] { return ++asked == 3; };
    run = a.Run(View::LALR, sentence, stop);
    EXPECT_EQ(run.verdict, ParseVerdict::Stopped);
    EXPECT_EQ(run.message, QStringLiteral("Stopped after 3072 steps."));
    EXPECT_EQ(ParseTree(a.ws, run), DerivationTree{});

    EXPECT_EQ(a.Run(View::LALR, sentence).verdict, ParseVerdict::Accepted);

    // A right-recursive list keeps its whole length on the stack: the trace,
    // not the memory, gives out.
    Analysed list(Lines({"<L>", "<L>=[a]<L>", "<L>=[a]"}), View::LALR);
    ASSERT_TRUE(list.ready);
    run = list.Run(View::LALR, std::vector<int>(5000, 1));
    EXPECT_EQ(run.verdict, ParseVerdict::Limit);
    EXPECT_TRUE(run.message.startsWith(QStringLiteral("Trace limit reached after "))) << run.message.toStdString();
    EXPECT_LT(run.steps.size(), 5000u);
}

TEST(ParseSimulator, ExampleSentencesAreSentences)
{
    const std::pair<QString, int> cases[] = {
        {kExpr, View::LALR},
        {ReadGrammarText(CorpusDir() + QStringLiteral("/calc.tkg")), View::LALR},
        {kExprLL, View::LL},
        {kGries, View::SPR},
    };
    std::mt19937 rng(11);
    for (const auto& [text, view] : cases) {
        Analysed a(text, view);
        ASSERT_TRUE(a.ready);
        const Grammar& g = a.ws.grammar;
        SCOPED_TRACE(g.GetSymbolS(g.goal).toStdString());
        const std::vector<int> shortest = ShortestSentence(g);
        EXPECT_EQ(a.Run(view, shortest).verdict, ParseVerdict::Accepted);
        for (int i = 0; i < 30; ++i) {
            const std::vector<int> s = RandomSentence(g, 12, rng);
            EXPECT_LE(s.size(), 12u);
            EXPECT_EQ(a.Run(view, s).verdict, ParseVerdict::Accepted) << SentenceText(g, s).toStdString();
        }
        const auto perRule = SentencePerRule(g);
        ASSERT_EQ(static_cast<int>(perRule.size()), g.ruleCount);
        for (int r = 1; r <= g.ruleCount; ++r) {
            const ParseRun run = a.Run(view, perRule[static_cast<std::size_t>(r - 1)]);
            ASSERT_EQ(run.verdict, ParseVerdict::Accepted) << r;
            const DerivationTree tree = ParseTree(a.ws, run);
            bool uses = false;
            for (const SpannedNode& node : InnerNodes(tree))
                uses = uses || node.node->rule == r;
            EXPECT_TRUE(uses) << r << " " << SentenceText(g, perRule[static_cast<std::size_t>(r - 1)]).toStdString();
        }
    }
    EXPECT_EQ(SentenceText(Analysed(kExpr, View::LALR).ws.grammar, ShortestSentence(Analysed(kExpr, View::LALR).ws.grammar)),
              QStringLiteral("[a]"));

    // A unit cycle and an unproductive rule: still bounded, and no entry for the barren rule.
    RecordingHost host;
    Workspace ws(&host);
    RecordingFrontend fe(Lines({"<S>", "<S>=<A>", "<A>=<S>", "<S>=[a]<S>", "<S>=[b]", "<A>=[c]<B>", "<B>=[c]<B>"}));
    ASSERT_TRUE(AnalyzeGrammar(ws, fe));
    for (int i = 0; i < 50; ++i)
        EXPECT_LE(RandomSentence(ws.grammar, 6, rng).size(), 6u);
    const auto perRule = SentencePerRule(ws.grammar);
    EXPECT_EQ(SentenceText(ws.grammar, perRule[2]), QStringLiteral("[a] [b]"));
    EXPECT_TRUE(perRule[4].empty());
    EXPECT_TRUE(perRule[5].empty());
}

} // namespace
