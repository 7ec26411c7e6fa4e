/// \file
/// The simple-precedence analyser.
#include "analysers/Ana10SPR.h"

#include "model/Model.h"
#include "output/CTables.h"

namespace {
constexpr auto LT = PrecedenceMatrix::LT;
constexpr auto EQ = PrecedenceMatrix::EQ;
constexpr auto GT = PrecedenceMatrix::GT;
} // namespace

Ana10SPR::Ana10SPR(Model& model)
    : PrecedenceAnalyser(model, {QStringLiteral("simple precedence"),
                                 QStringLiteral("This Grammar Is Not Simple Precedence One."), GrammarFlag::AnalysedSPR,
                                 model.spr, model.grammar.precedence.sprText, model.grammar.precedence.sprTableBuilt,
                                 model.grammar.precedence.sprPossible, model.grammar.leftSet, model.grammar.rightSet})
{
}

bool Ana10SPR::Ready()
{
    const PrecedenceState& p = m_model.grammar.precedence;
    return p.sprPossible && p.sprSetsDone && InProcess() && p.sprSetsValid;
}

int Ana10SPR::MatrixSize() const
{
    return m_model.grammar.lastCode + 1;
}

void Ana10SPR::AddRelations(PrecedenceMatrix& m, const std::vector<int>& rule)
{
    const Grammar& g = m_model.grammar;
    for (std::size_t k = 2; k < rule.size(); ++k) {
        const int x = rule[k - 1];
        const int y = rule[k];
        m.Add(x, y, EQ);
        if (g.IsNonterminal(y))
            for (int s : Heads(y))
                m.Add(x, s, LT);
        if (g.IsNonterminal(x)) {
            for (int rs : Tails(x)) {
                m.Add(rs, y, GT);
                // On purpose GT goes to every member of the left set of Y,
                // non-terminals included, not only to its terminals.
                if (g.IsNonterminal(y))
                    for (int t : Heads(y))
                        m.Add(rs, t, GT);
            }
        }
    }
}

QString Ana10SPR::Recognizer() const
{
    static const char* const lines[] = {
        "/* Sample simple precedence parser.",
        "   Call spr_recognize(tokens) with the token codes of the input (the TOK_ values),",
        "   ended by TOK_EOT; it returns 1 when the input is a sentence of the grammar and 0",
        "   when it is not. The stack holds grammar symbols over TOK_EOT. SYNTA[top][token]",
        "   tells what to do: LT (<.) and EQ (.=) shift the token; GT (.>) reduces the",
        "   handle, the symbols above the nearest LT down the stack with EQ between each",
        "   two of them, by the rule whose right side (RLEN symbols of RULE) it is, to",
        "   that rule's left side RSYM; 0 is an error. The input is accepted when it is",
        "   used up and START alone stands over TOK_EOT. */",
        "#define PR_MAX_STEPS 1000000L",
        "int spr_recognize(const int *tokens)",
        "{",
        "    int stack[PR_STACK_SIZE];",
        "    int top = 0, pos = 0, low, rule, k;",
        "    long steps = 0;",
        "    stack[top++] = TOK_EOT;",
        "    for (;;) {",
        "        int token = tokens[pos], cell;",
        "        if (++steps > PR_MAX_STEPS) return 0; /* a cycle of unit rules */",
        "        if (top == 2 && stack[1] == START && token == TOK_EOT) return 1;",
        "        cell = (int)SYNTA[stack[top - 1]][token];",
        "        if (cell == LT || cell == EQ) {",
        "            if (token == TOK_EOT || top == PR_STACK_SIZE) return 0;",
        "            stack[top++] = token;",
        "            pos++;",
        "            continue;",
        "        }",
        "        if (cell != GT || top < 2) return 0;",
        "        low = top - 1;",
        "        while (low > 1 && (int)SYNTA[stack[low - 1]][stack[low]] == EQ) low--;",
        "        if ((int)SYNTA[stack[low - 1]][stack[low]] != LT) return 0;",
        "        for (rule = 1; rule <= MAX_RULE; rule++) {",
        "            if (RLEN[rule] != top - low) continue;",
        "            for (k = 0; k < RLEN[rule] && (int)RULE[rule][k] == stack[low + k]; k++) {}",
        "            if (k == RLEN[rule]) break;",
        "        }",
        "        if (rule > MAX_RULE) return 0;",
        "        top = low;",
        "        stack[top++] = (int)RSYM[rule];",
        "    }",
        "}",
    };
    return CTables::TextLines(lines);
}
