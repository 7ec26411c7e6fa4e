/// \file
/// The run, the result text and the C layout shared by the two precedence analysers.
#include "analysers/PrecedenceAnalyser.h"

#include "model/Model.h"
#include "output/CTables.h"

#include <algorithm>
#include <array>

namespace {
constexpr auto LT = PrecedenceMatrix::LT;
constexpr auto EQ = PrecedenceMatrix::EQ;
constexpr auto GT = PrecedenceMatrix::GT;

/// The codes of <., .= and .> ("PSignLT", "PSignEQ", "PSignGT"), in the order
/// of PrecedenceMatrix::Relation.
std::array<int, 3> RelationCodes(const Settings& settings)
{
    return {settings.pSignLT, settings.pSignEQ, settings.pSignGT};
}

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

bool PrecedenceAnalyser::Analyze()
{
    Grammar& g = m_model.grammar;
    // The left and right sets belong to the analysis run; a run stopped before
    // them has them computed here.
    if (!g.precedence.sprSetsDone && g.Parsed()) {
        g.SetInProcess(true);
        g.FindLeftAndRightSets();
    }
    if (!Ready())
        return false;

    m_method.tableBuilt = false;
    PrecedenceMatrix& m = m_method.results.synta;
    // One byte a cell, asked for before the matrix is made: a grammar of 100,000
    // symbols would want 10 GB.
    const std::uint64_t bytes = static_cast<std::uint64_t>(MatrixSize()) * static_cast<std::uint64_t>(MatrixSize());
    if (bytes > g.limits.tableBytes) {
        m.Clear();
        m_model.host().critical(TableTooLargeText(m_method.title + QStringLiteral(" table"), bytes));
        SetInProcess(false);
        return false;
    }
    m.Reset(MatrixSize(), RelationCodes(m_model.settings));
    for (int r = 1; r <= g.ruleCount; ++r) {
        AddRelations(m, g.rules[r]);
        m_model.host().yield();
        if (!InProcess())
            return false;
    }
    // The end marker stands before the start symbol and after it.
    for (int head : Heads(g.goal))
        m.Add(0, head, LT);
    for (int tail : Tails(g.goal))
        m.Add(tail, 0, GT);

    bool conflict = false;
    QString text = ResultText(conflict);
    if (!InProcess())
        return false;
    m_method.text = std::move(text);
    m_method.tableBuilt = true;  // kept and exportable even with conflicts
    m_method.possible = !conflict;
    g.SetFlag(m_method.analysedFlag, true);
    return !conflict;
}

QString PrecedenceAnalyser::ResultText(bool& conflict)
{
    const PrecedenceMatrix& matrix = m_method.results.synta;
    conflict = false;
    QString text;
    for (int i = 0; i < matrix.Size(); ++i) {
        // The listing of a large matrix runs to tens of megabytes: Stop is heard between rows.
        m_model.host().yield();
        if (!InProcess())
            return QString();
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
        text = m_method.failure + kEol + text;
    return text + kEol;
}

QString PrecedenceAnalyser::ExportDisplay()
{
    return m_method.text;
}

QString PrecedenceAnalyser::TableDisplay()
{
    BufferSink sink;
    WriteTable(sink);
    return sink.Text();
}

void PrecedenceAnalyser::WriteTable(TextSink& sink)
{
    if (!m_method.tableBuilt)
        return;
    WriteRelationTable(sink);
    if (m_model.settings.generateRecognizer != 0)
        sink.Write(kEol + RecognizerTables() + Recognizer());
}

void PrecedenceAnalyser::WriteRelationTable(TextSink& sink)
{
    const Grammar& g = m_model.grammar;
    const PrecedenceMatrix& matrix = m_method.results.synta;
    Settings& settings = m_model.settings;
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
    text += QStringLiteral("/* Syntax Table ") + QStringLiteral("SYNTA") + QStringLiteral(" (") + m_method.title
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

QString PrecedenceAnalyser::RecognizerTables() const
{
    // The right sides are matched in order: the RULE table runs forward here,
    // whatever "GenerateRules" and "GenerateRuleReverse" ask of other texts.
    Settings forward = m_model.settings;
    forward.generateRules = 1;
    forward.generateRuleReverse = 0;
    return CTables::RuleTable(m_model.grammar, forward, false)
         + QStringLiteral("#define PR_STACK_SIZE 4096") + kEol;
}
