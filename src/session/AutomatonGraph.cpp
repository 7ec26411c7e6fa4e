/// \file
/// The DOT text of an LR automaton, read off the kept results of its view.
#include "session/AutomatonGraph.h"

#include "session/Views.h"
#include "analysers/LrAutomaton.h"

#include <algorithm>
#include <unordered_map>

namespace {

/// A state's items are all drawn when its closure has at most this many;
/// otherwise its kernel, and how many more the closure has.
constexpr int kClosureDrawn = 8;
/// The look-aheads drawn after an item; the rest are counted.
constexpr int kLookaheadsDrawn = 8;

KeptLookaheads KeptBy(int view)
{
    return view == View::LR ? KeptLookaheads::Kernel
         : view == View::LALR ? KeptLookaheads::Reduces
                              : KeptLookaheads::None;
}

/// Text for an HTML-like label (Graphviz reads it as XML): the markup
/// characters as entities, control characters as their visible pictures.
QString Html(const QString& text)
{
    QString out;
    out.reserve(text.size() + 8);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar ch = text[i];
        const char16_t c = ch.unicode();
        switch (c) {
        case u'&': out += QStringLiteral("&amp;"); break;
        case u'<': out += QStringLiteral("&lt;"); break;
        case u'>': out += QStringLiteral("&gt;"); break;
        case u'"': out += QStringLiteral("&quot;"); break;
        case u'\'': out += QStringLiteral("&#39;"); break;
        default:
            if (c < 0x20)
                out += QChar(char16_t(0x2400 + c));
            else if (c == 0x7F)
                out += QChar(char16_t(0x2421));
            else if (ch.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
                out += ch;
                out += text[++i];
            } else if (ch.isSurrogate() || c == 0xFFFE || c == 0xFFFF)
                out += QChar(char16_t(0xFFFD));  // not a character XML accepts
            else
                out += ch;
        }
    }
    return out;
}

/// Everything about one automaton the text needs, read once.
class Drawing {
public:
    Drawing(const Model& model, int view, const LrResults& results)
        : m_g(model.grammar)
        , m_results(results)
        , m_kept(KeptBy(view))
        , m_lg(m_g)
        , m_closure(m_lg)
    {
    }

    /// Each item of state with its look-ahead codes (null: none kept or derived),
    /// kernel first; only the kernel when all is false.
    struct Line {
        int item;
        std::vector<int> lookaheads;
        bool hasLookaheads;
    };
    std::vector<Line> Items(int state, bool all)
    {
        const std::vector<int>& kernel = m_results.kernels[state];
        std::unordered_map<int, const std::vector<int>*> known;
        if (state < m_results.lookaheads.size())
            for (const ItemLookahead& kept : m_results.lookaheads[state])
                known[kept.item] = &kept.terminals;
        auto line = [&](int item) {
            auto it = known.find(item);
            return it == known.end() ? Line{item, {}, false} : Line{item, *it->second, true};
        };
        std::vector<Line> lines;
        for (int item : kernel)
            lines.push_back(line(item));
        if (!all)
            return lines;
        if (m_kept == KeptLookaheads::Kernel) {
            std::vector<TerminalSet> kernelLa;
            for (int item : kernel) {
                TerminalSet set(m_g.terminalCount);
                if (auto it = known.find(item); it != known.end())
                    for (int t : *it->second)
                        set.Add(t);
                kernelLa.push_back(std::move(set));
            }
            m_closure.Compute(kernel, kernelLa);
        }
        for (int item : m_lg.Closure(kernel)) {
            if (std::find(kernel.begin(), kernel.end(), item) != kernel.end())
                continue;
            if (m_kept == KeptLookaheads::Kernel) {
                const int left = m_g.rules[m_lg.items.Rule(item)][0];
                lines.push_back(Line{item, m_closure.Lookahead(left).Members(), true});
            } else {
                lines.push_back(line(item));
            }
        }
        return lines;
    }
    int ClosureSize(int state) const { return static_cast<int>(m_lg.Closure(m_results.kernels[state]).size()); }

    /// "<E> = <E> • [+] <T> , $ [+]", the look-aheads cut after limit (-1: all).
    QString Text(const Line& line, int limit) const
    {
        QString text = m_lg.items.Text(m_g, line.item);
        if (!line.hasLookaheads || line.lookaheads.empty())
            return text;  // the accepting item keeps an empty set
        text += QStringLiteral(" ,");
        const int n = static_cast<int>(line.lookaheads.size());
        const int shown = limit < 0 ? n : std::min(n, limit);
        for (int i = 0; i < shown; ++i)
            text += QLatin1Char(' ') + m_g.GetSymbolS(line.lookaheads[static_cast<std::size_t>(i)]);
        if (shown < n)
            text += QStringLiteral(" … (%1 more)").arg(n - shown);
        return text;
    }

    const Grammar& g() const { return m_g; }

private:
    const Grammar& m_g;
    const LrResults& m_results;
    KeptLookaheads m_kept;
    LrGrammar m_lg;
    Lr1Closure m_closure;
};

/// "shift 8", "reduce 3", "goto 4", "accept": an entry of the table in words.
QString Action(const Grammar& g, const LrResults& results, int column, int entry)
{
    if (entry == results.States())
        return QStringLiteral("accept");
    if (entry < 0)
        return QStringLiteral("reduce %1").arg(-entry);
    return (g.IsNonterminal(column) ? QStringLiteral("goto %1") : QStringLiteral("shift %1")).arg(entry);
}

/// "on [else]: shift 8, not reduce 1".
QString ConflictLine(const Grammar& g, const LrResults& results, const Conflict& c)
{
    QString text = QStringLiteral("on ") + g.GetSymbolS(c.column) + QStringLiteral(": ")
                 + Action(g, results, c.column, c.kept);
    for (int r : c.rejected)
        text += QStringLiteral(", not ") + Action(g, results, c.column, r);
    return text;
}

/// The shifts and gotos from drawn states to drawn states.
int Transitions(const LrResults& results, const std::vector<int>& states, const std::vector<char>& drawn)
{
    const int n = results.States();
    int count = 0;
    for (int s : states)
        for (const auto& [code, entry] : results.rows[s])
            count += entry > 0 && entry < n && drawn[static_cast<std::size_t>(entry)];
    return count;
}

} // namespace

bool WholeAutomatonFits(const Model& model, int view, const GraphOptions& options)
{
    const int n = AutomatonStates(model, view);
    if (n == 0 || n > options.maxStates)
        return false;
    const LrResults& results = *LrResultsOf(model, view);
    std::vector<int> states(static_cast<std::size_t>(n));
    for (int s = 0; s < n; ++s)
        states[static_cast<std::size_t>(s)] = s;
    return Transitions(results, states, std::vector<char>(static_cast<std::size_t>(n), 1)) <= options.maxTransitions;
}

bool HasAutomaton(int view)
{
    return view == View::SLR || view == View::LALR || view == View::LR;
}

int AutomatonStates(const Model& model, int view)
{
    if (!HasAutomaton(view) || !IsAnalysed(model, view))
        return 0;
    const LrResults* results = LrResultsOf(model, view);
    return results ? results->States() : 0;
}

std::vector<int> Neighbourhood(const LrResults& results, int centre, int depth)
{
    const int n = results.States();
    std::vector<std::vector<int>> back(static_cast<std::size_t>(n));
    for (int s = 0; s < n; ++s)
        for (const auto& [code, entry] : results.rows[s])
            if (entry > 0 && entry < n)
                back[static_cast<std::size_t>(entry)].push_back(s);
    std::vector<int> distance(static_cast<std::size_t>(n), -1);
    std::vector<int> found{centre};
    distance[static_cast<std::size_t>(centre)] = 0;
    for (std::size_t i = 0; i < found.size(); ++i) {
        const int s = found[i];
        const int d = distance[static_cast<std::size_t>(s)];
        if (d >= depth)
            continue;
        auto reach = [&](int t) {
            if (distance[static_cast<std::size_t>(t)] < 0) {
                distance[static_cast<std::size_t>(t)] = d + 1;
                found.push_back(t);
            }
        };
        for (const auto& [code, entry] : results.rows[s])
            if (entry > 0 && entry < n)
                reach(entry);
        for (int t : back[static_cast<std::size_t>(s)])
            reach(t);
    }
    std::sort(found.begin(), found.end());
    return found;
}

AutomatonGraph BuildAutomatonGraph(const Model& model, int view, const GraphOptions& options)
{
    AutomatonGraph graph;
    if (!HasAutomaton(view)) {
        graph.error = QStringLiteral("Only the LR views (SLR(1), LALR(1), LR(1)) have an automaton to draw.");
        return graph;
    }
    const QString method = QString::fromLatin1(ViewOf(view).method);
    const LrResults* results = LrResultsOf(model, view);
    if (!IsAnalysed(model, view) || !results || results->States() == 0) {
        graph.error = QStringLiteral("The %1 automaton has not been built: analyse the grammar first.").arg(method);
        return graph;
    }
    const int n = results->States();
    graph.totalStates = n;
    if (options.centre >= n || options.centre < -1) {
        graph.error = QStringLiteral("There is no state %1: the %2 automaton has states 0 to %3.")
                          .arg(options.centre).arg(method).arg(n - 1);
        return graph;
    }
    if (options.centre < 0) {
        graph.states.resize(static_cast<std::size_t>(n));
        for (int s = 0; s < n; ++s)
            graph.states[static_cast<std::size_t>(s)] = s;
    } else {
        graph.states = Neighbourhood(*results, options.centre, std::max(0, options.depth));
    }
    std::vector<char> drawn(static_cast<std::size_t>(n), 0);
    for (int s : graph.states)
        drawn[static_cast<std::size_t>(s)] = 1;
    graph.transitions = Transitions(*results, graph.states, drawn);
    const int count = static_cast<int>(graph.states.size());
    if (count > options.maxStates || graph.transitions > options.maxTransitions) {
        const QString limits = QStringLiteral("more than the %1 states and %2 transitions a picture holds")
                                   .arg(options.maxStates).arg(options.maxTransitions);
        if (options.centre < 0)
            graph.error = QStringLiteral("The %1 automaton has %2 states and %3 transitions, %4: "
                                         "draw the neighbourhood of one state (--state N --depth K).")
                              .arg(method).arg(n).arg(graph.transitions).arg(limits);
        else
            graph.error = QStringLiteral("The states within %1 transitions of state %2 are %3 with %4 transitions, "
                                         "%5: choose a smaller depth.")
                              .arg(std::max(0, options.depth)).arg(options.centre).arg(count)
                              .arg(graph.transitions).arg(limits);
        graph.states.clear();
        return graph;
    }

    const Grammar& g = model.grammar;
    Drawing drawing(model, view, *results);
    std::unordered_map<int, QStringList> conflictsOf;
    for (const Conflict& c : results->conflicts)
        if (c.row >= 0 && c.row < n)
            conflictsOf[c.row] << ConflictLine(g, *results, c);

    QString dot;
    dot += QStringLiteral("digraph automaton {\n");
    dot += QStringLiteral("  graph [rankdir=LR, charset=\"UTF-8\", fontname=\"DejaVu Sans\", fontsize=11];\n");
    dot += QStringLiteral("  node [shape=box, style=rounded, fontname=\"DejaVu Sans\", fontsize=10];\n");
    dot += QStringLiteral("  edge [fontname=\"DejaVu Sans\", fontsize=10];\n");
    const QString br = QStringLiteral("<BR ALIGN=\"LEFT\"/>");
    int acceptFrom = -1;
    QString acceptSymbol;
    for (int s : graph.states) {
        QString label = QStringLiteral("<B>State %1</B>").arg(s) + br;
        const bool all = drawing.ClosureSize(s) <= kClosureDrawn;
        const auto lines = drawing.Items(s, all);
        for (const auto& line : lines)
            label += Html(drawing.Text(line, kLookaheadsDrawn)) + br;
        if (!all) {
            const int more = drawing.ClosureSize(s) - static_cast<int>(lines.size());
            if (more > 0)
                label += QStringLiteral("<I>+ %1 closure items</I>").arg(more) + br;
        }
        auto conflicts = conflictsOf.find(s);
        if (conflicts != conflictsOf.end())
            for (const QString& line : conflicts->second)
                label += QStringLiteral("<FONT COLOR=\"red\">") + Html(line) + QStringLiteral("</FONT>") + br;
        QString attributes = QStringLiteral("id=\"s%1\", label=<%2>").arg(s).arg(label);
        if (conflicts != conflictsOf.end())
            attributes += QStringLiteral(", color=red, penwidth=2.5");
        if (s == options.highlight)
            attributes += QStringLiteral(", style=\"rounded,filled\", fillcolor=\"#ffe27a\"");
        dot += QStringLiteral("  s%1 [%2];\n").arg(s).arg(attributes);
        for (const auto& [code, entry] : results->rows[s])
            if (entry == n) {
                acceptFrom = s;
                acceptSymbol = g.GetSymbolS(code);
            }
    }
    for (int s : graph.states)
        for (const auto& [code, entry] : results->rows[s])
            if (entry > 0 && entry < n && drawn[static_cast<std::size_t>(entry)]) {
                dot += QStringLiteral("  s%1 -> s%2 [label=<%3>%4];\n")
                           .arg(s).arg(entry).arg(Html(g.GetSymbolS(code)))
                           .arg(g.IsNonterminal(code) ? QStringLiteral(", color=\"#3060c0\", fontcolor=\"#3060c0\"")
                                                      : QString());
            }
    if (acceptFrom >= 0) {
        dot += QStringLiteral("  accept [id=\"accept\", label=\"accept\", shape=doublecircle, style=\"\"];\n");
        dot += QStringLiteral("  s%1 -> accept [label=<%2>];\n").arg(acceptFrom).arg(Html(acceptSymbol));
    }
    QString legend;
    for (int s : graph.states) {
        auto conflicts = conflictsOf.find(s);
        if (conflicts == conflictsOf.end())
            continue;
        for (const QString& line : conflicts->second)
            legend += Html(QStringLiteral("State %1 ").arg(s) + line) + br;
    }
    if (!legend.isEmpty())
        dot += QStringLiteral("  label=<<FONT COLOR=\"red\">Conflicts:</FONT>") + br + legend
             + QStringLiteral(">;\n  labelloc=b;\n  labeljust=l;\n");
    dot += QStringLiteral("}\n");
    graph.dot = dot;
    return graph;
}

QStringList StateItemLines(const Model& model, int view, int state)
{
    const LrResults* results = HasAutomaton(view) ? LrResultsOf(model, view) : nullptr;
    if (!results || state < 0 || state >= AutomatonStates(model, view))
        return {};
    Drawing drawing(model, view, *results);
    QStringList lines;
    for (const auto& line : drawing.Items(state, true))
        lines << drawing.Text(line, -1);
    return lines;
}
