/// \file
/// The operator-precedence analyser.
#include "analysers/Ana11OPR.h"

#include "model/Model.h"
#include "output/CTables.h"

namespace {
const QString kNotOperator = QStringLiteral("This Grammar Is Not Operator Precedence One.");
constexpr auto LT = PrecedenceMatrix::LT;
constexpr auto EQ = PrecedenceMatrix::EQ;
constexpr auto GT = PrecedenceMatrix::GT;
} // namespace

Ana11OPR::Ana11OPR(Model& model)
    : PrecedenceAnalyser(model, {QStringLiteral("operator precedence"), kNotOperator, GrammarFlag::AnalysedOPR, model.opr,
                                 model.grammar.precedence.oprText, model.grammar.precedence.oprTableBuilt,
                                 model.grammar.precedence.oprPossible, model.grammar.leftTermSet,
                                 model.grammar.rightTermSet})
{
}

void Ana11OPR::GetLRSets()
{
    Grammar& g = m_model.grammar;
    PrecedenceState& p = g.precedence;
    const std::size_t codes = static_cast<std::size_t>(g.lastCode) + 1;
    g.leftTermSet.assign(codes, CodeList());
    g.rightTermSet.assign(codes, CodeList());
    p.oprSetsDone = p.oprSetsValid = false;

    // On purpose the scans go over the whole right part, not only past the first
    // or last symbol: the first terminal of the rule, and the last one.
    for (int r = 1; r <= g.ruleCount; ++r) {
        const std::vector<int>& rule = g.rules[r];
        const std::size_t a = static_cast<std::size_t>(rule[0]);
        for (std::size_t i = 1; i < rule.size(); ++i)
            if (g.IsTerminal(rule[i])) {
                g.leftTermSet[a].Add(rule[i]);
                break;
            }
        for (std::size_t i = rule.size() - 1; i >= 1; --i)
            if (g.IsTerminal(rule[i])) {
                g.rightTermSet[a].Add(rule[i]);
                break;
            }
        m_model.host().yield();
        if (!InProcess())
            return;
    }

    // Closure: what a non-terminal B of the left set of A begins with, A begins with too.
    auto close = [&](std::vector<CodeList>& termSets, const std::vector<CodeList>& through) {
        for (bool added = true; added;) {
            added = false;
            // A pass over hundreds of nested levels takes a while: Stop is heard per non-terminal.
            for (int a = g.firstNonterminal; a <= g.lastCode; ++a) {
                for (int b : through[a])
                    if (g.IsNonterminal(b) && b != a)
                        added |= termSets[a].Merge(termSets[b]);
                m_model.host().yield();
                if (!InProcess())
                    return false;
            }
        }
        return true;
    };
    if (!close(g.leftTermSet, g.leftSet) || !close(g.rightTermSet, g.rightSet))
        return;

    p.oprSetsDone = p.oprSetsValid = true;
    for (int a = g.firstNonterminal; a <= g.lastCode; ++a) {
        if (g.leftTermSet[a].IsEmpty() || g.rightTermSet[a].IsEmpty()) {
            p.oprText = kNotOperator;
            p.oprPossible = false;
            p.oprSetsValid = false;
            break;
        }
    }
}

bool Ana11OPR::Ready()
{
    const PrecedenceState& p = m_model.grammar.precedence;
    if (!(p.oprPossible && p.sprSetsDone))
        return false;
    GetLRSets();
    return InProcess() && p.oprSetsDone && p.oprSetsValid;
}

int Ana11OPR::MatrixSize() const
{
    return m_model.grammar.terminalCount + 1;
}

void Ana11OPR::AddRelations(PrecedenceMatrix& m, const std::vector<int>& rule)
{
    const Grammar& g = m_model.grammar;
    for (std::size_t k = 1; k + 1 < rule.size(); ++k) {
        const int x = rule[k];
        const int y = rule[k + 1];
        // Two adjacent non-terminals are not refused here: their pair gives GT
        // from the last terminals of the first to the first terminals of the second.
        if (g.IsNonterminal(x)) {
            for (int rt : Tails(x)) {
                if (g.IsTerminal(y))
                    m.Add(rt, y, GT);
                else if (g.IsNonterminal(y))
                    for (int lt : Heads(y))
                        m.Add(rt, lt, GT);
            }
        } else if (g.IsTerminal(x)) {
            // .= reaches across any number of non-terminals to the next terminal.
            for (std::size_t z = k + 1; z < rule.size(); ++z)
                if (g.IsTerminal(rule[z])) {
                    m.Add(x, rule[z], EQ);
                    break;
                }
            if (g.IsNonterminal(y))
                for (int lt : Heads(y))
                    m.Add(x, lt, LT);
        }
    }
}

QString Ana11OPR::Recognizer() const
{
    static const char* const lines[] = {
        "/* Sample operator precedence parser.",
        "   Call opr_recognize(tokens) with the token codes of the input (the TOK_ values),",
        "   ended by TOK_EOT; it returns 1 when the input is accepted and 0 when it is not.",
        "   The stack holds terminals and non-terminals over TOK_EOT; codes from START on",
        "   are non-terminals. SYNTA is read between the topmost terminal on the stack and",
        "   the token: LT (<.) and EQ (.=) shift the token; GT (.>) reduces: down from the",
        "   topmost terminal past each terminal that is EQ to the one above it, to the",
        "   first that is LT to it; the handle is everything above that terminal. It is",
        "   matched against the right sides in RULE with any non-terminal standing for",
        "   any other (operator precedence does not tell them apart, so rules without a",
        "   terminal, such as E = T, are never reduced) and replaced by the rule's left",
        "   side RSYM; 0 is an error. The input is accepted when it is used up and one",
        "   non-terminal alone stands over TOK_EOT. */",
        "int opr_recognize(const int *tokens)",
        "{",
        "    int stack[PR_STACK_SIZE];",
        "    int top = 0, pos = 0, term, low, below, rule, k;",
        "    stack[top++] = TOK_EOT;",
        "    for (;;) {",
        "        int token = tokens[pos], cell;",
        "        for (term = top - 1; stack[term] >= START; term--) {}",
        "        if (term == 0 && token == TOK_EOT) return top == 2;",
        "        cell = (int)SYNTA[stack[term]][token];",
        "        if (cell == LT || cell == EQ) {",
        "            if (token == TOK_EOT || top == PR_STACK_SIZE) return 0;",
        "            stack[top++] = token;",
        "            pos++;",
        "            continue;",
        "        }",
        "        if (cell != GT) return 0;",
        "        for (low = term;; low = below) {",
        "            if (low == 0) return 0;",
        "            for (below = low - 1; stack[below] >= START; below--) {}",
        "            cell = (int)SYNTA[stack[below]][stack[low]];",
        "            if (cell == LT) break;",
        "            if (cell != EQ) return 0;",
        "        }",
        "        for (rule = 1; rule <= MAX_RULE; rule++) {",
        "            if (RLEN[rule] != top - below - 1) continue;",
        "            for (k = 0; k < RLEN[rule]; k++) {",
        "                int want = (int)RULE[rule][k], have = stack[below + 1 + k];",
        "                if (want != have && (want < START || have < START)) break;",
        "            }",
        "            if (k == RLEN[rule]) break;",
        "        }",
        "        if (rule > MAX_RULE) return 0;",
        "        top = below + 1;",
        "        stack[top++] = (int)RSYM[rule];",
        "    }",
        "}",
    };
    return CTables::TextLines(lines);
}
