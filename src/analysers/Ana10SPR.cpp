/// \file
/// The simple-precedence analyser, and the listing and C layout that the
/// operator-precedence analyser shares.
#include "analysers/Ana10SPR.h"

#include "model/Model.h"
#include "output/CTables.h"

#include <algorithm>

namespace {
constexpr auto LT = PrecedenceMatrix::LT;
constexpr auto EQ = PrecedenceMatrix::EQ;
constexpr auto GT = PrecedenceMatrix::GT;

/// How the C table writes a cell: "0" when empty, else the name of one relation.
QString CellName(const PrecedenceMatrix& m, int row, int column)
{
    if (m.IsEmpty(row, column))
        return QStringLiteral("0");
    // On purpose EQ, then LT, then GT: a conflicting cell is written with this fixed
    // preference, though the result text reports the grammar as failing.
    if (m.HasCode(row, column, m.Code(EQ)))
        return QStringLiteral("EQ");
    if (m.HasCode(row, column, m.Code(LT)))
        return QStringLiteral("LT");
    return QStringLiteral("GT");
}
} // namespace

namespace PrecedenceText {

std::array<int, 3> RelationCodes(const Settings& settings)
{
    return {settings.pSignLT, settings.pSignEQ, settings.pSignGT};
}

QString Result(const PrecedenceMatrix& matrix, const QString& failureLine, bool& conflict)
{
    conflict = false;
    QString text;
    for (int i = 0; i < matrix.Size(); ++i) {
        for (int j = 0; j < matrix.Size(); ++j) {
            if (matrix.IsEmpty(i, j))
                continue;
            if (!text.isEmpty())
                text += kEol;
            text += QStringLiteral("SYNTA") + QLatin1Char('[') + QString::number(i) + QLatin1Char(',')
                  + QString::number(j) + QStringLiteral("]=") + matrix.CellText(i, j);
            conflict |= matrix.IsConflict(i, j);
        }
    }
    if (conflict)
        text = failureLine + kEol + text;
    return text + kEol;
}

void WriteTable(TextSink& sink, Model& model, const PrecedenceMatrix& matrix, const QString& method)
{
    const Grammar& g = model.grammar;
    Settings& settings = model.settings;
    // On purpose the stored setting is raised, not a copy: the window's grid and
    // every later text keep the width these tables were written with.
    settings.cellWidth = std::max(settings.cellWidth, 4);
    const int width = settings.cellWidth;
    const int size = matrix.Size();

    QString text = CTables::Composite(g, settings, CTables::GenerationTime());
    text += QStringLiteral("/* Precedence Relation Constants */") + kEol;
    text += QStringLiteral("#define LT ") + QString::number(matrix.Code(LT)) + QStringLiteral("  // <.") + kEol;
    text += QStringLiteral("#define EQ ") + QString::number(matrix.Code(EQ)) + QStringLiteral("  // .=") + kEol;
    // On purpose three blanks here against two above: the comments line up for the default codes -2, -1, 1.
    text += QStringLiteral("#define GT ") + QString::number(matrix.Code(GT)) + QStringLiteral("   // .>") + kEol;
    text += kEol;
    text += QStringLiteral("/* Start Symbol */") + kEol;
    text += QStringLiteral("#define START ") + g.GetSymbolName(g.firstNonterminal, QStringLiteral("TOK_EOT")) + kEol;
    text += QStringLiteral("/* Syntax Table ") + QStringLiteral("SYNTA") + QStringLiteral(" (") + method
          + QStringLiteral(") */") + kEol;
    text += settings.syntaxType + QLatin1Char(' ') + QStringLiteral("SYNTA") + QStringLiteral(" [")
          + QString::number(size) + QStringLiteral("][") + QString::number(size) + QStringLiteral("] = {") + kEol;
    QStringList heads;
    for (int c = 0; c < size; ++c)
        heads << g.GetSymbolT(c);
    // A row is "/*" + name + "*/{" before its first cell: the heads start above it.
    text += CTables::ColumnHeads(heads, width + 5, width);
    sink.Write(text);

    // Row by row: the matrix over every symbol of a large grammar runs to megabytes.
    for (int i = 0; i < size; ++i) {
        QString row = QStringLiteral("/*") + CTables::Fit(CTables::CommentSafe(g.GetSymbolT(i)), width)
                    + QStringLiteral("*/{");
        for (int j = 0; j < size; ++j) {
            row += CellName(matrix, i, j).rightJustified(width);
            row += j + 1 < size ? QStringLiteral(",") : QStringLiteral("}");
        }
        if (i + 1 < size)
            row += QLatin1Char(',');
        sink.Write(row + kEol);
    }
    sink.Write(QStringLiteral("};") + kEol);
}

QString RecognizerTables(const Model& model)
{
    // The right sides are matched in order: the RULE table runs forward here,
    // whatever "GenerateRules" and "GenerateRuleReverse" ask of other texts.
    Settings forward = model.settings;
    forward.generateRules = 1;
    forward.generateRuleReverse = 0;
    return CTables::RuleTable(model.grammar, forward, false)
         + QStringLiteral("#define PR_STACK_SIZE 4096") + kEol;
}

} // namespace PrecedenceText

bool Ana10SPR::Analyze()
{
    Grammar& g = m_model.grammar;
    PrecedenceState& p = g.precedence;
    // The sets belong to the analysis run; a run stopped before them has them computed here.
    if (!p.sprSetsDone && g.Parsed()) {
        g.SetInProcess(true);
        g.FindLeftAndRightSets();
    }
    if (!(p.sprPossible && p.sprSetsDone && InProcess() && p.sprSetsValid))
        return false;

    p.sprTableBuilt = false;
    PrecedenceMatrix& m = m_model.spr.synta;
    m.Reset(g.lastCode + 1, PrecedenceText::RelationCodes(m_model.settings));
    auto set = [&](const std::vector<CodeList>& sets, int code) -> const CodeList& {
        return sets[static_cast<std::size_t>(code)];
    };
    for (int r = 1; r <= g.ruleCount; ++r) {
        const std::vector<int>& rule = g.rules[static_cast<std::size_t>(r)];
        for (std::size_t k = 2; k < rule.size(); ++k) {
            const int x = rule[k - 1];
            const int y = rule[k];
            m.Add(x, y, EQ);
            if (g.IsNonterminal(y))
                for (int s : set(g.leftSet, y))
                    m.Add(x, s, LT);
            if (g.IsNonterminal(x)) {
                for (int rs : set(g.rightSet, x)) {
                    m.Add(rs, y, GT);
                    // On purpose GT goes to every member of the left set of Y,
                    // non-terminals included, not only to its terminals.
                    if (g.IsNonterminal(y))
                        for (int t : set(g.leftSet, y))
                            m.Add(rs, t, GT);
                }
            }
        }
        m_model.host().yield();
        if (!InProcess())
            return false;
    }
    // The end marker stands before the start symbol and after it.
    for (int s : set(g.leftSet, g.goal))
        m.Add(0, s, LT);
    for (int rs : set(g.rightSet, g.goal))
        m.Add(rs, 0, GT);

    bool conflict = false;
    p.sprText = PrecedenceText::Result(m, QStringLiteral("This Grammar Is Not Simple Precedence One."), conflict);
    p.sprTableBuilt = true;  // kept and exportable even with conflicts
    p.sprPossible = !conflict;
    g.SetFlag(GrammarFlag::AnalysedSPR, true);
    return !conflict;
}

QString Ana10SPR::ExportDisplay()
{
    return m_model.grammar.precedence.sprText;
}

QString Ana10SPR::TableDisplay()
{
    BufferSink sink;
    WriteTable(sink);
    return sink.Text();
}

void Ana10SPR::WriteTable(TextSink& sink)
{
    if (!m_model.grammar.precedence.sprTableBuilt)
        return;
    PrecedenceText::WriteTable(sink, m_model, m_model.spr.synta, QStringLiteral("simple precedence"));
    if (m_model.settings.generateRecognizer != 0)
        sink.Write(kEol + Recognizer());
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
    return PrecedenceText::RecognizerTables(m_model) + CTables::TextLines(lines);
}
