/// \file
/// The helpers the transformations share over the working copy.
#include "transform/WorkingCopy.h"

#include <QSet>
#include <algorithm>

namespace transform {

Productions CopyProductions(const Grammar& g)
{
    Productions rules;
    rules.reserve(static_cast<std::size_t>(g.copyRuleCount));
    for (int r = 1; r <= g.copyRuleCount; ++r) {
        const std::vector<int>& rule = g.copyRules[r];
        Production p;
        p.left = rule[0];
        const bool empty = rule.size() == 2 && rule[1] == 0;
        if (!empty)
            p.right.assign(rule.begin() + 1, rule.end());
        rules.push_back(std::move(p));
    }
    return rules;
}

void SetCopyProductions(Grammar& g, const Productions& rules)
{
    g.copyRules.clear();
    g.copyRules.reserve(rules.size() + 1);
    g.copyRules.push_back({-2, g.copyGoal});
    for (const Production& p : rules) {
        std::vector<int> rule{p.left};
        if (p.right.empty())
            rule.push_back(0);
        else
            rule.insert(rule.end(), p.right.begin(), p.right.end());
        g.copyRules.push_back(std::move(rule));
    }
    g.copyRuleCount = static_cast<int>(rules.size());
}

ResultBudget::ResultBudget(Grammar& g)
    : m_g(g)
{
    std::int64_t symbols = 0;
    for (int r = 1; r <= g.ruleCount; ++r)
        symbols += g.RightLength(r);
    m_maxRules = std::max<std::int64_t>(g.limits.transformRules, 2 * static_cast<std::int64_t>(g.ruleCount));
    m_maxSymbols = std::max<std::int64_t>(g.limits.transformSymbols, 2 * symbols);
}

bool ResultBudget::Add(std::int64_t rules, std::int64_t symbols)
{
    m_rules += rules;
    m_symbols += symbols;
    if (m_passed)
        return false;
    if (m_rules <= m_maxRules && m_symbols <= m_maxSymbols)
        return true;
    m_passed = true;
    const bool byRules = m_rules > m_maxRules;
    m_g.host().critical(QStringLiteral("Not transformed: the result would have more than ")
                        + QString::number(byRules ? m_maxRules : m_maxSymbols)
                        + (byRules ? QStringLiteral(" rules.") : QStringLiteral(" symbols.")));
    return false;
}

QString WrittenSymbol(const Grammar& g, int code)
{
    const QString& name = g.copySymbolNames[code + 2];
    if (code == 0)
        return name;
    if (code < g.copyFirstNonterminal)
        return QLatin1Char('[') + name + QLatin1Char(']');
    return QLatin1Char('<') + name + QLatin1Char('>');
}

QStringList CopyLines(const Grammar& g)
{
    QStringList lines{WrittenSymbol(g, g.copyGoal)};
    QSet<QString> written;
    for (int r = 1; r <= g.copyRuleCount; ++r) {
        const std::vector<int>& rule = g.copyRules[r];
        QString line = WrittenSymbol(g, rule[0]) + QLatin1Char('=');
        for (std::size_t i = 1; i < rule.size(); ++i)
            line += WrittenSymbol(g, rule[i]);
        // On purpose: a rule that prints like an earlier one is written once, as
        // the parser would drop it anyway.
        if (!written.contains(line)) {
            written.insert(line);
            lines << line;
        }
    }
    return lines;
}

bool Stopped(Grammar& g)
{
    g.host().yield();
    return !g.InProcess();
}

Indexed<char> NullableMarks(const Grammar& g, const Productions& rules)
{
    Indexed<char> nullable(g.copyLastCode + 1, 0);
    for (bool changed = true; changed;) {
        changed = false;
        for (const Production& p : rules) {
            if (nullable[p.left])
                continue;
            const bool all = std::all_of(p.right.begin(), p.right.end(), [&](int x) {
                return IsCopyNonterminal(g, x) && nullable[x];
            });
            if (all) {
                nullable[p.left] = 1;
                changed = true;
            }
        }
    }
    return nullable;
}

Indexed<char> ProductiveMarks(const Grammar& g, const Productions& rules)
{
    Indexed<char> productive(g.copyLastCode + 1, 0);
    for (int c = 0; c < g.copyFirstNonterminal; ++c)
        productive[c] = 1;
    for (bool changed = true; changed;) {
        changed = false;
        for (const Production& p : rules) {
            if (productive[p.left])
                continue;
            const bool all = std::all_of(p.right.begin(), p.right.end(),
                                         [&](int x) { return productive[x] != 0; });
            if (all) {
                productive[p.left] = 1;
                changed = true;
            }
        }
    }
    return productive;
}

void DropRulesNamingUndefined(const Grammar& g, Productions& rules)
{
    for (bool dropped = true; dropped;) {
        Indexed<char> defined(g.copyLastCode + 1, 0);
        for (const Production& p : rules)
            defined[p.left] = 1;
        const auto before = rules.size();
        std::erase_if(rules, [&](const Production& p) {
            return std::any_of(p.right.begin(), p.right.end(), [&](int x) {
                return IsCopyNonterminal(g, x) && !defined[x];
            });
        });
        dropped = rules.size() != before;
    }
}

bool GoalDefined(const Grammar& g, const Productions& rules)
{
    return std::any_of(rules.begin(), rules.end(), [&](const Production& p) { return p.left == g.copyGoal; });
}

void RefuseBarrenGoal(Grammar& g)
{
    g.host().information(QStringLiteral("Not transformed: the goal ") + WrittenSymbol(g, g.copyGoal)
                         + QStringLiteral(" derives no terminal string."));
}

Indexed<int> Components(const Graph& graph)
{
    // Tarjan's algorithm, iterative so that long chains cannot exhaust the stack.
    const int n = graph.size();
    Indexed<int> index(n, -1), low(n, 0), component(n, -1);
    Indexed<char> onStack(n, 0);
    std::vector<int> stack;
    int nextIndex = 0, nextComponent = 0;
    struct Frame {
        int node;
        std::size_t edge;
    };
    std::vector<Frame> calls;
    for (int root = 0; root < n; ++root) {
        if (index[root] >= 0)
            continue;
        calls.push_back({root, 0});
        while (!calls.empty()) {
            Frame& f = calls.back();
            const int v = f.node;
            if (f.edge == 0 && index[v] < 0) {
                index[v] = low[v] = nextIndex++;
                stack.push_back(f.node);
                onStack[v] = 1;
            }
            if (f.edge < graph[v].size()) {
                const int w = graph[v][f.edge++];
                if (index[w] < 0)
                    calls.push_back({w, 0});
                else if (onStack[w])
                    low[v] = std::min(low[v], index[w]);
                continue;
            }
            if (low[v] == index[v]) {
                int w;
                do {
                    w = stack.back();
                    stack.pop_back();
                    onStack[w] = 0;
                    component[w] = nextComponent;
                } while (w != f.node);
                ++nextComponent;
            }
            calls.pop_back();
            if (!calls.empty()) {
                const int parent = calls.back().node;
                low[parent] = std::min(low[parent], low[v]);
            }
        }
    }
    return component;
}

std::vector<LeftCorner> LeftCorners(const Grammar& g, const Productions& rules, const Indexed<char>& nullable)
{
    std::vector<LeftCorner> edges;
    for (const Production& p : rules) {
        for (std::size_t i = 0; i < p.right.size(); ++i) {
            const int x = p.right[i];
            if (!IsCopyNonterminal(g, x))
                break;
            edges.push_back({p.left, x, i > 0});
            if (!nullable[x])
                break;
        }
    }
    return edges;
}

Indexed<char> CyclicMarks(const Grammar& g, const Productions& rules)
{
    // A =>+ A exactly when A reaches itself over edges A -> X for the rules
    // A -> alpha X beta whose alpha and beta are nullable.
    const Indexed<char> nullable = NullableMarks(g, rules);
    const auto isNullable = [&](int x) { return IsCopyNonterminal(g, x) && nullable[x]; };
    Graph graph(g.copyLastCode + 1);
    Indexed<char> selfLoop(graph.size(), 0);
    for (const Production& p : rules) {
        const std::size_t k = p.right.size();
        int notNullable = 0;
        for (int x : p.right)
            notNullable += isNullable(x) ? 0 : 1;
        for (std::size_t i = 0; i < k; ++i) {
            const int x = p.right[i];
            if (!IsCopyNonterminal(g, x))
                continue;
            // X can stand alone when every other symbol is nullable.
            if (notNullable - (isNullable(x) ? 0 : 1) != 0)
                continue;
            graph[p.left].push_back(x);
            if (x == p.left)
                selfLoop[x] = 1;
        }
    }
    const Indexed<int> component = Components(graph);
    Indexed<int> size(graph.size() + 1, 0);
    for (int c : component)
        ++size[c];
    Indexed<char> cyclic(graph.size(), 0);
    for (int a = 0; a < graph.size(); ++a)
        cyclic[a] = selfLoop[a] || size[component[a]] > 1;
    return cyclic;
}

} // namespace transform
