/// \file
/// The frame shared by the SLR(1), LALR(1) and canonical LR(1) analysers.
#include "analysers/LrAnalyser.h"

#include "output/CTables.h"

#include <algorithm>
#include <cstdlib>
#include <unordered_map>

SparseRow WriteRow(const SparseRow& transitions, int acceptEntry, const StateReduces& reduces,
                   std::vector<int>& scratch, std::vector<int>& touched,
                   const std::function<void(int column, int kept, int rejected)>& refused)
{
    // The row is spread into the dense scratch row while its reduces are written, then packed again.
    touched.clear();
    for (const auto& [c, v] : transitions) {
        scratch[c] = v;
        touched.push_back(c);
    }
    if (acceptEntry != 0) {
        if (scratch[0] == 0)
            touched.push_back(0);
        scratch[0] = acceptEntry;
    }
    for (const auto& [rule, lookaheads] : reduces) {
        if (rule == 0)
            continue;  // <'> -> goal: the accept entry above
        for (int t : lookaheads) {
            int& cell = scratch[t];
            if (cell == 0) {
                cell = -rule;
                touched.push_back(t);
            } else {
                refused(t, cell, -rule);
            }
        }
    }
    std::sort(touched.begin(), touched.end());
    SparseRow packed;
    packed.reserve(touched.size());
    for (int c : touched) {
        packed.emplace_back(c, scratch[c]);
        scratch[c] = 0;
    }
    return packed;
}

bool LrAnalyser::Analyze()
{
    Grammar& g = m_model.grammar;
    if (!Prepare())
        return false;
    if (g.GetFlag(m_kind.analysedFlag))
        return g.GetFlag(m_kind.verdictFlag);
    g.SetFlag(m_kind.analysedFlag, false);
    g.SetFlag(m_kind.verdictFlag, false);
    const SavedStatus saved = m_results.saved;
    m_results.Reset();
    m_results.saved = saved;

    LrGrammar lg(g);
    PassFrame frame(m_model, *this, m_kind.showPass);
    ReduceList reduces;
    const bool built = Build(lg, frame, reduces);
    g.SetFlag(m_kind.analysedFlag, built);
    if (!built) {
        // A stop or a limit leaves no table.
        m_results.Reset();
        m_results.saved = saved;
        return false;
    }

    std::vector<SparseRow>& rows = m_results.rows;
    const int last = static_cast<int>(rows.size()) - 1;
    const int accept = last + 1;
    // The accept code goes in before any reduce: the state after the goal, at the end of text.
    const int acceptState = RowEntry(rows[0], g.goal);

    // Each state's row is spread into a dense scratch row while its reduces are
    // written, then packed again.
    std::vector<int> dense(static_cast<std::size_t>(g.lastCode) + 1, 0);
    std::vector<int> touched;
    // Reduces are written from state 0 on: empty rules reduce in the start state too.
    for (int s = 0; s <= last; ++s) {
        // Writing the reduces of a large automaton takes a while of its own: Stop is heard here too.
        m_model.host().yield();
        if (!InProcess()) {
            g.SetFlag(m_kind.analysedFlag, false);
            m_results.Reset();
            m_results.saved = saved;
            return false;
        }
        // Packed at its exact size, and the state's reduce list let go: on the large
        // grammars these are most of what the run holds.
        rows[s] = WriteRow(rows[s], s == acceptState && acceptState > 0 ? accept : 0, reduces[s], dense, touched,
                           [&](int column, int kept, int rejected) {
                               m_results.conflicts.push_back({m_kind.method, s, column, kept, {rejected},
                                                              kept < 0 ? ConflictKind::ReduceReduce
                                                                       : ConflictKind::ShiftReduce});
                           });
        StateReduces().swap(reduces[s]);
    }
    const bool verdict = m_results.conflicts.empty();
    g.SetFlag(m_kind.verdictFlag, verdict);
    // Both listings are built when first shown.
    m_results.tableText.clear();
    m_results.itemText.clear();
    return verdict;
}

QString LrAnalyser::ExportDisplay()
{
    if (!m_model.grammar.GetFlag(m_kind.analysedFlag))
        return QString();
    if (m_results.tableText.isEmpty())
        m_results.tableText = BuildTableText();
    return m_results.tableText;
}

QString LrAnalyser::ItemDisplay()
{
    if (!m_model.grammar.GetFlag(m_kind.analysedFlag))
        return QString();
    if (m_results.itemText.isEmpty())
        m_results.itemText = BuildItemText();
    return m_results.itemText;
}

namespace {

int Digits(int n)
{
    int digits = 1;
    for (; n >= 10; n /= 10)
        ++digits;
    return digits;
}

/// Writes n (not negative) at out, returns the position after it.
QChar* PutNumber(QChar* out, int n)
{
    const int digits = Digits(n);
    for (int i = digits - 1; i >= 0; --i, n /= 10)
        out[i] = QChar(u'0' + n % 10);
    return out + digits;
}

QChar* PutText(QChar* out, QStringView text)
{
    std::copy(text.begin(), text.end(), out);
    return out + text.size();
}

} // namespace

QString LrAnalyser::BuildTableText() const
{
    const Grammar& g = m_model.grammar;
    const std::vector<SparseRow>& rows = m_results.rows;
    const int accept = static_cast<int>(rows.size());
    const int width = g.maxName + 2;
    std::vector<QString> printed(static_cast<std::size_t>(g.lastCode) + 1);
    for (int c = 0; c <= g.lastCode; ++c)
        printed[c] = QStringLiteral("    ") + g.GetSymbolS(c).leftJustified(width)
                                             + QLatin1Char(' ');
    static constexpr QStringView kState = u"State ", kAccept = u"accept", kReduce = u"reduce ",
                                 kGoto = u"goto ", kShift = u"shift ", kLineEnd = u"\r\n";
    // The listing of a large automaton runs to hundreds of megabytes: it is
    // measured first and written once into its place, with no growing copies.
    auto action = [&](int c, int cell) {
        return cell == accept ? kAccept : cell < 0 ? kReduce : g.IsNonterminal(c) ? kGoto : kShift;
    };
    qsizetype size = 0;
    for (std::size_t s = 0; s < rows.size(); ++s) {
        size += kState.size() + Digits(static_cast<int>(s)) + kLineEnd.size();
        for (const auto& [c, cell] : rows[s])
            size += printed[c].size() + action(c, cell).size() + (cell == accept ? 0 : Digits(std::abs(cell)))
                  + kLineEnd.size();
    }
    QString text;
    if (!m_results.conflicts.empty())
        text += QString::fromLatin1(m_kind.verdict) + kEol;
    const qsizetype head = text.size();
    text.resize(head + size);
    QChar* out = text.data() + head;
    for (std::size_t s = 0; s < rows.size(); ++s) {
        out = PutText(PutNumber(PutText(out, kState), static_cast<int>(s)), kLineEnd);
        for (const auto& [c, cell] : rows[s]) {
            out = PutText(PutText(out, printed[c]), action(c, cell));
            if (cell != accept)
                out = PutNumber(out, std::abs(cell));
            out = PutText(out, kLineEnd);
        }
    }
    for (const Conflict& conflict : m_results.conflicts)
        text += LrConflictText(conflict) + kEol;
    return text;
}

QString LrAnalyser::BuildItemText() const
{
    const Grammar& g = m_model.grammar;
    LrGrammar lg(g);
    const LrItems& items = lg.items;
    const bool all = m_model.settings.displayAllItems != 0;
    QString text;
    if (!m_results.conflicts.empty())
        text += QString::fromLatin1(m_kind.verdict) + kEol;
    Lr1Closure closure(lg);
    for (int s = 0; s < m_results.kernels.size(); ++s) {
        const std::vector<int>& kernel = m_results.kernels[s];
        text += QStringLiteral("State ") + QString::number(s);
        if (s > 0)
            text += QStringLiteral(" (") + g.GetSymbolS(m_results.accessing[s]) + QLatin1Char(')');
        text += kEol;
        // Look-aheads kept for this state: item -> its terminals.
        std::unordered_map<int, const std::vector<int>*> known;
        if (s < m_results.lookaheads.size())
            for (const ItemLookahead& kept : m_results.lookaheads[s])
                known[kept.item] = &kept.terminals;
        auto keptFor = [&](int item) -> const std::vector<int>* {
            auto it = known.find(item);
            return it == known.end() ? nullptr : it->second;
        };
        auto line = [&](int item, const std::vector<int>* la) {
            text += QStringLiteral("    ") + items.Text(g, item);
            if (la) {
                text += QStringLiteral(" ,");
                for (int t : *la)
                    text += QLatin1Char(' ') + g.GetSymbolS(t);
            }
            text += kEol;
        };
        for (int item : kernel)
            line(item, keptFor(item));
        if (!all)
            continue;
        // Every item of the closure. Kernel look-aheads (canonical LR(1)) give
        // those of the closure's items; LALR(1) has them kept for its complete
        // items, the empty rules among them.
        const bool fromKernel = m_kind.lookaheads == KeptLookaheads::Kernel;
        if (fromKernel) {
            std::vector<TerminalSet> kernelLa;
            kernelLa.reserve(kernel.size());
            for (int item : kernel) {
                TerminalSet set(g.terminalCount);
                if (const std::vector<int>* la = keptFor(item))
                    for (int t : *la)
                        set.Add(t);
                kernelLa.push_back(std::move(set));
            }
            closure.Compute(kernel, kernelLa);
        }
        for (int item : lg.Closure(kernel)) {
            if (std::binary_search(kernel.begin(), kernel.end(), item) && items.Dot(item) > 0)
                continue;
            if (item == items.Item(0, 0))
                continue;
            if (fromKernel) {
                const int left = g.rules[items.Rule(item)][0];
                const std::vector<int> la = closure.Lookahead(left).Members();
                line(item, &la);
            } else {
                line(item, keptFor(item));
            }
        }
    }
    return text;
}

QString LrAnalyser::TableDisplay()
{
    BufferSink sink;
    WriteTable(sink);
    return sink.Text();
}

void LrAnalyser::WriteTable(TextSink& sink)
{
    const Grammar& g = m_model.grammar;
    if (!g.GetFlag(m_kind.analysedFlag))
        return;
    CTables::WriteLrTable(sink, g, m_model.settings, m_results.rows, LrConflictTexts(m_results.conflicts),
                          QString::fromLatin1(m_kind.shortName), CTables::GenerationTime());
    if (m_model.settings.generateRecognizer != 0)
        sink.Write(kEol + Recognizer());
}

QString LrAnalyser::Recognizer() const
{
    static const char* const lines[] = {
        "/* Sample LR recognizer.",
        "   Call lr_recognize(tokens) with the token codes of the input (the TOK_ values),",
        "   ended by TOK_EOT; it returns 1 when the input is a sentence of the grammar and 0",
        "   when it is not. The stack holds states, 0 at the bottom. For the state on top",
        "   and the look-ahead token, SYNTA says what to do: ACC accepts, a positive number",
        "   shifts into that state, a negative one reduces by that rule (pops RLEN states,",
        "   then goes to SYNTA[state][RSYM[rule]]), 0 is an error. */",
        "#define LR_STACK_SIZE 4096",
        "#define LR_MAX_STEPS 1000000L",
        "int lr_recognize(const int *tokens)",
        "{",
        "    int stack[LR_STACK_SIZE];",
        "    int top = 0, pos = 0;",
        "    long steps = 0;",
        "    stack[0] = 0;",
        "    for (;;) {",
        "        int token = tokens[pos];",
        "        int action = (int)SYNTA[stack[top]][token];",
        "        if (++steps > LR_MAX_STEPS) return 0; /* a cycle of unit rules */",
        "        if (action == ACC) return 1;",
        "        if (action > 0) {",
        "            if (top + 1 == LR_STACK_SIZE) return 0;",
        "            stack[++top] = action;",
        "            /* The end marker can be shifted inside a rule (\".\"): it stays the look-ahead. */",
        "            if (token != TOK_EOT) pos++;",
        "        } else if (action < 0) {",
        "            int rule = -action, go;",
        "            top -= RLEN[rule];",
        "            go = (int)SYNTA[stack[top]][RSYM[rule]];",
        "            if (go <= 0 || go == ACC || top + 1 == LR_STACK_SIZE) return 0;",
        "            stack[++top] = go;",
        "        } else {",
        "            return 0;",
        "        }",
        "    }",
        "}",
    };
    return CTables::TextLines(lines);
}
