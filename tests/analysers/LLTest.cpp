// The LL(1) analyser: tables, listings and verdicts on grammars with known
// answers, the C text, and the generated recognizer compiled and run.
#include "analysers/Ana06LL.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"

#include <QProcessEnvironment>
#include <gtest/gtest.h>

namespace {

struct LL {
    RecordingHost host;
    Workspace ws{&host};
    bool parsed = false;
    bool verdict = false;

    explicit LL(const QString& text)
    {
        RecordingFrontend frontend(text);
        parsed = AnalyzeGrammar(ws, frontend);
        Ana06LL analyser(ws);
        analyser.SetInProcess(true);
        verdict = analyser.Analyze();
    }
    int Code(const char* name, bool terminal) const
    {
        const Grammar& g = ws.grammar;
        for (int c = terminal ? 1 : g.firstNonterminal; c <= (terminal ? g.terminalCount : g.lastCode); ++c)
            if (g.SymbolName(c) == QString::fromUtf8(name))
                return c;
        ADD_FAILURE() << "no symbol " << name;
        return -1;
    }
    QString Cell(const char* row, const char* column) const
    {
        return ws.ll.synta.CellText(Code(row, false), column[0] ? Code(column, true) : 0);
    }
};

TEST(LL1, ClassicExpressionGrammarIsLL1)
{
    LL ll(Lines({"<E>", "<E>=<T><E'>", "<E'>=[+]<T><E'>", "<E'>=", "<T>=<F><T'>", "<T'>=[*]<F><T'>", "<T'>=",
                 "<F>=[(]<E>[)]", "<F>=[a]"}));
    ASSERT_TRUE(ll.parsed);
    EXPECT_TRUE(ll.verdict);
    EXPECT_TRUE(ll.ws.grammar.GetFlag(GrammarFlag::AnalysedLL));
    EXPECT_TRUE(ll.ws.grammar.GetFlag(GrammarFlag::LLPermitted));
    EXPECT_EQ(ll.Cell("E", "("), QStringLiteral("1"));
    EXPECT_EQ(ll.Cell("E", "a"), QStringLiteral("1"));
    EXPECT_EQ(ll.Cell("E'", "+"), QStringLiteral("2"));
    EXPECT_EQ(ll.Cell("E'", ")"), QStringLiteral("3"));
    EXPECT_EQ(ll.Cell("E'", ""), QStringLiteral("3"));  // the end of text: column 0
    EXPECT_EQ(ll.Cell("T'", "+"), QStringLiteral("6"));
    EXPECT_EQ(ll.Cell("T'", "*"), QStringLiteral("5"));
    EXPECT_EQ(ll.Cell("F", "a"), QStringLiteral("8"));
    EXPECT_EQ(ll.Cell("F", "+"), QString());
    EXPECT_EQ(ll.ws.ll.synta.CellText(0, 0), QStringLiteral("ACC"));
    EXPECT_EQ(ll.ws.ll.synta.CellText(1, 1), QStringLiteral("POP"));
    EXPECT_EQ(ll.ws.ll.synta.ConflictCount(), 0);
    // Non-terminal rows first, then the end marker and terminal rows; one line per cell.
    const QStringList lines = ll.ws.ll.text.split(QStringLiteral("\r\n"));
    EXPECT_EQ(lines.first(), QStringLiteral("SYNTA[6,3]=1"));  // <E> is code 6, [(] is 3
    EXPECT_EQ(lines[lines.size() - 2], QStringLiteral("SYNTA[5,5]=POP"));
    EXPECT_EQ(lines.last(), QString());  // the text ends with one line break
    EXPECT_TRUE(ll.ws.ll.text.contains(QStringLiteral("\r\nSYNTA[0,0]=ACC\r\n")));
}

TEST(LL1, ConflictsKeepEveryRuleAndPutTheVerdictFirst)
{
    LL ll(Lines({"<S>", "<S>=[a][b]", "<S>=[a][c]", "<S>=[d]"}));
    ASSERT_TRUE(ll.parsed);
    EXPECT_FALSE(ll.verdict);
    EXPECT_EQ(ll.Cell("S", "a"), QStringLiteral("1, 2"));
    EXPECT_TRUE(ll.ws.ll.synta.IsConflict(ll.Code("S", false), ll.Code("a", true)));
    EXPECT_TRUE(ll.ws.ll.text.startsWith(QStringLiteral("This Grammar Is Not LL(1).\r\nSYNTA[5,1]=1, 2\r\nSYNTA[5,4]=3\r\n")));
    EXPECT_FALSE(ll.ws.grammar.GetFlag(GrammarFlag::LLPermitted));
    EXPECT_TRUE(ll.ws.grammar.GetFlag(GrammarFlag::AnalysedLL));
    // The C table resolves the conflict to the first rule entered.
    Ana06LL analyser(ll.ws);
    const QString c = analyser.TableDisplay();
    EXPECT_TRUE(c.contains(QStringLiteral("/*<S>*/{    0,    1,    0,    0,    3}"))) << c.toStdString();
}

TEST(LL1, EmptyRulesGoUnderFollowLIncludingTheEndOfText)
{
    LL ll(Lines({"<S>", "<S>=[a]<A>", "<A>=", "<A>=[b]"}));
    ASSERT_TRUE(ll.parsed);
    EXPECT_TRUE(ll.verdict);
    EXPECT_EQ(ll.Cell("A", ""), QStringLiteral("2"));
    EXPECT_EQ(ll.Cell("A", "b"), QStringLiteral("3"));
    EXPECT_EQ(ll.Cell("A", "a"), QString());
}

TEST(LL1, ATerminalStopsTheNullableTest)
{
    // <S> is nullable through rule 1; rule 2 holds a terminal, so it does not go
    // under FOLLOWL(<S>) although <A> is nullable.
    LL ll(Lines({"<S>", "<S>=<A>", "<S>=<A>[x]<A>", "<A>=", "<A>=[y]"}));
    ASSERT_TRUE(ll.parsed);
    EXPECT_EQ(ll.Cell("S", ""), QStringLiteral("1"));
    EXPECT_EQ(ll.Cell("S", "x"), QStringLiteral("2"));
    EXPECT_EQ(ll.Cell("S", "y"), QStringLiteral("1, 2"));
    EXPECT_FALSE(ll.verdict);
}

TEST(LL1, LeftRecursionIsRefusedWithTheParseVerdict)
{
    LL ll(Lines({"<E>", "<E>=<E>[+][a]", "<E>=[a]"}));
    ASSERT_TRUE(ll.parsed);
    EXPECT_FALSE(ll.verdict);
    EXPECT_EQ(ll.ws.ll.text, QStringLiteral("Left Recursion Is Not Allowed.\r\nThis Grammar Is Not LL(1)."));
    EXPECT_FALSE(ll.ws.grammar.GetFlag(GrammarFlag::AnalysedLL));
    EXPECT_EQ(ll.ws.ll.synta.Rows(), 0);
    EXPECT_EQ(Ana06LL(ll.ws).TableDisplay(), QString());
}

TEST(LL1, CodesGrowWithTheRuleCount)
{
    EXPECT_EQ(Ana06LL::PopCode(253), 254);
    EXPECT_EQ(Ana06LL::AccCode(253), 255);
    EXPECT_EQ(Ana06LL::PopCode(254), 255);
    EXPECT_EQ(Ana06LL::AccCode(254), 256);
    QString text = QStringLiteral("<S>\r\n");
    for (int i = 0; i < 300; ++i)
        text += QStringLiteral("<S>=[t%1]\r\n").arg(i);
    LL ll(text);
    ASSERT_TRUE(ll.verdict);
    const QString c = Ana06LL(ll.ws).TableDisplay();
    EXPECT_TRUE(c.contains(QStringLiteral("#define ACC 302 /* ACCEPT CODE */\r\n#define POP 301 /* POP CODE */\r\n")));
}

TEST(LL1, CTextPiecesFollowTheSettings)
{
    qputenv("SOURCE_DATE_EPOCH", "1700000000");
    LL ll(Lines({"<S>", "<S>=[a]<A>", "<A>=", "<A>=[b]"}));
    ASSERT_TRUE(ll.verdict);
    QString c = Ana06LL(ll.ws).TableDisplay();
    EXPECT_TRUE(c.startsWith(QStringLiteral("/* Generated by 2016 KAVEN TRELK */\r\n/* 14-11-2023 22:13:20 */\r\n\r\n"
                                            "#define ST_MAX_RULE_LEN 16 /* Max rule length */\r\n\r\n/* Rules */\r\n"
                                            "sttype RULE[4][ST_MAX_RULE_LEN] = {\r\n/*0*/{ TOK_EOT },\r\n"
                                            "/*1 */{TOK_A,SYM_A },\r\n/*2 */{TOK_EOT },\r\n/*3 */{TOK_B }\r\n};\r\n"
                                            "#define MAX_RULE 3 /* Max rule index */\r\n")))
        << c.toStdString();
    EXPECT_TRUE(c.contains(QStringLiteral("int RLEN[] = {0,2,0,1};\r\n")));
    EXPECT_TRUE(c.contains(QStringLiteral("#define START SYM_S /* START SYMBOL */\r\n")));
    EXPECT_TRUE(c.contains(QStringLiteral("/* Syntax Table SYNTA (LL-analysis) */\r\n")));
    EXPECT_TRUE(c.contains(QStringLiteral("stack_t SYNTA[5][3] = {\r\n")));
    EXPECT_TRUE(c.contains(QStringLiteral("/*EOT*/{  ACC,    0,    0},\r\n")));
    EXPECT_TRUE(c.contains(QStringLiteral("/*<A>*/{    2,    0,    3}\r\n};\r\n")));
    EXPECT_FALSE(c.contains(QStringLiteral("ll_recognize")));

    // Rules off: no RULE table and no MAX_RULE, but RLEN and the sample function stay.
    ll.ws.settings.generateRules = 0;
    ll.ws.settings.generateComment = 0;
    ll.ws.settings.cellWidth = 1;  // raised to 3 by the first C text
    ll.ws.settings.tokenPrefix = QStringLiteral("P_");
    ll.ws.settings.syntaxType = QStringLiteral("short");
    c = Ana06LL(ll.ws).TableDisplay();
    EXPECT_EQ(ll.ws.settings.cellWidth, 3);
    EXPECT_FALSE(c.contains(QStringLiteral("sttype RULE[")));
    EXPECT_FALSE(c.contains(QStringLiteral("#define MAX_RULE ")));
    EXPECT_TRUE(c.contains(QStringLiteral("int RLEN[] = {0,2,0,1};")));
    EXPECT_TRUE(c.contains(QStringLiteral("void get_rule_len() {")));
    EXPECT_TRUE(c.contains(QStringLiteral("#define START P_SYM_S /* START SYMBOL */")));
    EXPECT_TRUE(c.contains(QStringLiteral("short SYNTA[5][3] = {\r\n/*EOT*/{ACC,  0,  0},")));
    // Reversed rows when only the reverse table is asked for.
    ll.ws.settings.generateRuleReverse = 1;
    c = Ana06LL(ll.ws).TableDisplay();
    EXPECT_TRUE(c.contains(QStringLiteral("/*1 */{SYM_A,TOK_A },"))) << c.toStdString();
    qunsetenv("SOURCE_DATE_EPOCH");
}

/// What the LL(1) table says of a token string, by the table itself: the first
/// rule of a conflicting cell, as the C text has it.
bool Simulate(const Workspace& ws, const std::vector<int>& input)
{
    const Grammar& g = ws.grammar;
    std::vector<int> tokens = input;
    tokens.push_back(0);
    std::vector<int> stack{0, g.goal};
    std::size_t pos = 0;
    for (int steps = 0; steps < 1000000; ++steps) {
        const int cell = ws.ll.synta.First(stack.back(), tokens[pos]);
        if (cell == LLTable::kAcc)
            return true;
        if (cell == LLTable::kPop) {
            stack.pop_back();
            ++pos;
            continue;
        }
        if (cell <= 0)
            return false;
        stack.pop_back();
        if (g.ruleIsEmpty[static_cast<std::size_t>(cell)])
            continue;
        const std::vector<int>& rule = g.rules[static_cast<std::size_t>(cell)];
        for (std::size_t i = rule.size() - 1; i >= 1; --i)
            stack.push_back(rule[i]);
        if (stack.size() > 4000)
            return false;
    }
    return false;
}

struct RecognizerCase {
    const char* name;
    QString text;
    int rules, reverse;
};

TEST(LL1, GeneratedRecognizerAgreesWithTheTable)
{
    qputenv("SOURCE_DATE_EPOCH", "1700000000");
    const RecognizerCase cases[] = {
        {"expr", Lines({"<E>", "<E>=<T><E'>", "<E'>=[+]<T><E'>", "<E'>=", "<T>=<F><T'>", "<T'>=[*]<F><T'>",
                        "<T'>=", "<F>=[(]<E>[)]", "<F>=[a]"}),
         1, 0},
        {"reversed", Lines({"<S>", "<S>=[if]<C>[then]<S><Else>", "<S>=[x]", "<Else>=[else]<S>", "<Else>=",
                            "<C>=[c]"}),
         0, 1},
        {"norules", Lines({"<L>", "<L>=[(]<L>[)]<L>", "<L>="}), 0, 0},
        {"json", Lines({"<Value>", "<Value>=<Object>", "<Value>=<Array>", "<Value>=[string]", "<Value>=[number]",
                        "<Object>=[{]<Members>[}]", "<Members>=<Pair><MoreMembers>", "<Members>=",
                        "<MoreMembers>=[,]<Pair><MoreMembers>", "<MoreMembers>=", "<Pair>=[string][:]<Value>",
                        "<Array>=[[]<Elements>[]]", "<Elements>=<Value><MoreElements>", "<Elements>=",
                        "<MoreElements>=[,]<Value><MoreElements>", "<MoreElements>="}),
         1, 1},
    };
    std::mt19937 rng(5);
    for (const RecognizerCase& rc : cases) {
        SCOPED_TRACE(rc.name);
        LL ll(rc.text);
        ASSERT_TRUE(ll.parsed);
        ASSERT_TRUE(ll.ws.grammar.GetFlag(GrammarFlag::AnalysedLL));
        ll.ws.settings.generateRecognizer = 1;
        ll.ws.settings.generateRules = rc.rules;
        ll.ws.settings.generateRuleReverse = rc.reverse;
        const QString tables = Ana06LL(ll.ws).TableDisplay();
        // Without a RULE table the sample get_rule_len has nothing to read: leave it out.
        QString body = tables;
        if (!rc.rules && !rc.reverse)
            body.replace(QStringLiteral("void get_rule_len() {"), QStringLiteral("void get_rule_len_unused() {"))
                .replace(QStringLiteral("RULE[rule][count]"), QStringLiteral("0"))
                .replace(QStringLiteral("rule <= MAX_RULE"), QStringLiteral("rule <= 0"));
        QString errors;
        const QString exe = CompileC(QString::fromLatin1(rc.name),
                                     CPrologue(ll.ws.grammar) + body + CDriverMain(QStringLiteral("ll_recognize")),
                                     errors);
        ASSERT_FALSE(exe.isEmpty()) << errors.toStdString();

        auto sentences = RandomSentences(ll.ws.grammar, 150, rng);
        auto wrong = Mutations(ll.ws.grammar, sentences, rng);
        sentences.insert(sentences.end(), wrong.begin(), wrong.end());
        const int accepted =
            ExpectRecognizerAgrees(exe, sentences, [&](const std::vector<int>& s) { return Simulate(ll.ws, s); });
        EXPECT_GT(accepted, 0);
        EXPECT_LT(accepted, static_cast<int>(sentences.size()));
    }
    qunsetenv("SOURCE_DATE_EPOCH");
}

} // namespace
