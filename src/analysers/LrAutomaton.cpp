/// \file
/// LR(0) and canonical LR(1) automata, and the pass frame.
#include "analysers/LrAutomaton.h"

#include "grammar/Texts.h"

#include <algorithm>
#include <unordered_map>

std::vector<int> TerminalSet::Members() const
{
    std::vector<int> members;
    for (int w = 0; w < m_words.size(); ++w) {
        std::uint64_t bits = m_words[w];
        while (bits) {
            const int b = __builtin_ctzll(bits);
            members.push_back(w * 64 + b);
            bits &= bits - 1;
        }
    }
    return members;
}

// ---- The pass frame ----------------------------------------------------------

PassFrame::PassFrame(Model& model, IAnazer& analyser, bool showPass)
    : m_model(model)
    , m_analyser(analyser)
    , m_showPass(showPass)
{
    m_started.start();
}

bool PassFrame::Run(const std::function<void(int)>& expand, const std::function<int()>& count)
{
    const int maxCycle = m_model.settings.maxCycle;
    auto overflow = [&] {
        m_model.host().okCancel(QStringLiteral("DFA States Overflow."));
        return false;
    };
    int pass = 1;
    if (m_showPass)
        m_model.SetStatus(StatusField::Pass, QStringLiteral("Pass: 1"));
    expand(0);
    int first = 1;
    int last = count() - 1;
    for (;;) {
        m_model.SetStatus(StatusField::Elapsed, ElapsedText(m_started.elapsed()));
        const int previousLast = last;
        const QString range = QStringLiteral(" (") + QString::number(first) + QLatin1Char('-') + QString::number(last)
                            + QLatin1Char(')');
        for (int s = first; s <= last; ++s) {
            m_model.SetStatus(StatusField::State, QString::number(s) + range);
            expand(s);
            // The limit is tested after the pass; stopping the pass as soon as it is
            // passed gives the same answer without building thousands of states more.
            if (count() - 1 > kMaxDfaState)
                return overflow();
            // One pass of a large automaton takes seconds: Stop is heard within it.
            m_model.host().yield();
            if (!m_analyser.InProcess())
                return false;
        }
        const int newLast = count() - 1;
        if (newLast == previousLast)
            return true;
        first = previousLast + 1;
        last = newLast;
        // On purpose the pass limit is compared with the first state of the next
        // pass, not with a count of passes.
        if (first > maxCycle) {
            m_model.host().okCancel(QStringLiteral("Cycles Overflow."));
            return false;
        }
        m_model.host().yield();
        if (!m_analyser.InProcess())
            return false;
        ++pass;
        if (m_showPass)
            m_model.SetStatus(StatusField::Pass, QStringLiteral("Pass: ") + QString::number(pass));
    }
}

// ---- Grammar data of the builders --------------------------------------------

LrGrammar::LrGrammar(const Grammar& grammar)
    : g(grammar)
    , items(grammar)
{
    const int n = g.lastCode;
    const int t = g.terminalCount;
    m_mark.assign(n + 1, 0);

    // Left corners: the non-terminals reachable through first symbols.
    leftCorners.resize(n + 1);
    Indexed<int> seen(n + 1, -1);
    for (int a = g.firstNonterminal; a <= n; ++a) {
        std::vector<int>& list = leftCorners[a];
        list.push_back(a);
        seen[a] = a;
        for (std::size_t i = 0; i < list.size(); ++i)
            for (int r : items.RulesOf(list[i])) {
                const int x = items.Next(items.Item(r, 0));
                if (x >= g.firstNonterminal && seen[x] != a) {
                    seen[x] = a;
                    list.push_back(x);
                }
            }
    }

    // FIRST over terminals and the end marker: the grammar's FIRST, plus the end
    // marker where a "." can come first.
    first.assign(n + 1, TerminalSet(t));
    for (int c = 0; c <= t; ++c)
        first[c].Add(c);
    Indexed<char> endFirst(n + 1, 0);
    for (bool changed = true; changed;) {
        changed = false;
        for (int r = 1; r <= g.ruleCount; ++r) {
            const int a = g.rules[r][0];
            if (endFirst[a])
                continue;
            for (int d = 0; d < items.Length(r); ++d) {
                const int x = items.Next(items.Item(r, d));
                if (x == 0 || (g.IsNonterminal(x) && endFirst[x])) {
                    endFirst[a] = 1;
                    changed = true;
                    break;
                }
                if (!g.IsNonterminal(x) || !g.nullable[x])
                    break;
            }
        }
    }
    for (int a = g.firstNonterminal; a <= n; ++a) {
        TerminalSet& set = first[a];
        for (int x : g.first[a])
            set.Add(x);
        if (endFirst[a])
            set.Add(0);
    }

    // FIRST and nullability of what stands behind the next symbol of each item.
    tailFirst.assign(items.Count(), TerminalSet());
    tailNullable.assign(items.Count(), 0);
    for (int r = 0; r <= g.ruleCount; ++r) {
        const int length = items.Length(r);
        TerminalSet tail(t);
        bool nullable = true;
        // Walk backwards: the tail of item d is the right side from position d + 2.
        for (int d = length - 1; d >= 0; --d) {
            const int item = items.Item(r, d);
            tailFirst[item] = tail;
            tailNullable[item] = nullable ? 1 : 0;
            const int x = items.Next(item);
            if (g.IsNonterminal(x) && g.nullable[x]) {
                tail.Merge(first[x]);
            } else {
                tail = first[x];
                nullable = false;
            }
        }
    }
}

std::vector<int> LrGrammar::ClosureNonterminals(const std::vector<int>& kernel) const
{
    if (++m_stamp == 0) {
        std::fill(m_mark.begin(), m_mark.end(), 0);
        m_stamp = 1;
    }
    std::vector<int> result;
    for (int item : kernel) {
        const int b = items.Next(item);
        if (b < g.firstNonterminal || m_mark[b] == m_stamp)
            continue;
        for (int c : leftCorners[b])
            if (m_mark[c] != m_stamp) {
                m_mark[c] = m_stamp;
                result.push_back(c);
            }
    }
    return result;
}

std::vector<int> LrGrammar::CompleteItems(const std::vector<int>& kernel) const
{
    std::vector<int> complete;
    for (int item : kernel)
        if (items.Complete(item))
            complete.push_back(item);
    for (int c : ClosureNonterminals(kernel))
        for (int r : items.RulesOf(c))
            if (items.Length(r) == 0)
                complete.push_back(items.Item(r, 0));
    return complete;
}

std::vector<int> LrGrammar::Closure(const std::vector<int>& kernel) const
{
    std::vector<int> all = kernel;
    std::vector<int> added;
    for (int c : ClosureNonterminals(kernel))
        for (int r : items.RulesOf(c))
            added.push_back(items.Item(r, 0));
    std::sort(added.begin(), added.end());
    all.insert(all.end(), added.begin(), added.end());
    return all;
}

// ---- LR(0) ---------------------------------------------------------------------

namespace {

struct KeyHash {
    std::size_t operator()(const std::vector<int>& key) const noexcept
    {
        std::size_t h = key.size() * 0x9E3779B97F4A7C15ull;
        for (int v : key)
            h = (h ^ static_cast<std::size_t>(static_cast<unsigned>(v))) * 0x100000001B3ull;
        return h;
    }
};

} // namespace

bool BuildLr0(const LrGrammar& lg, PassFrame& frame, Lr0Automaton& a)
{
    const LrItems& items = lg.items;
    const int codes = lg.g.lastCode + 1;
    a = Lr0Automaton();
    std::unordered_map<std::vector<int>, int, KeyHash> index;
    auto add = [&](std::vector<int> kernel, int symbol) {
        auto [it, inserted] = index.try_emplace(kernel, a.kernels.size());
        if (inserted) {
            a.kernels.push_back(std::move(kernel));
            a.rows.emplace_back();
            a.accessing.push_back(symbol);
        }
        return it->second;
    };
    add({items.Item(0, 0)}, -2);

    Indexed<std::vector<int>> bucket(codes);
    std::vector<int> touched;
    auto expand = [&](int s) {
        const std::vector<int> kernel = a.kernels[s];
        auto put = [&](int symbol, int item) {
            std::vector<int>& b = bucket[symbol];
            if (b.empty())
                touched.push_back(symbol);
            b.push_back(item);
        };
        for (int item : kernel)
            if (!items.Complete(item))
                put(items.Next(item), item + 1);
        for (int nt : lg.ClosureNonterminals(kernel))
            for (int r : items.RulesOf(nt))
                if (items.Length(r) > 0) {
                    const int c = items.Item(r, 0);
                    put(items.Next(c), c + 1);
                }
        std::sort(touched.begin(), touched.end());
        for (int x : touched) {
            std::vector<int>& b = bucket[x];
            std::sort(b.begin(), b.end());
            const int target = add(b, x);
            a.rows[s].emplace_back(x, target);  // codes ascend
            b.clear();
        }
        touched.clear();
    };
    return frame.Run(expand, [&] { return a.kernels.size(); });
}

// ---- Canonical LR(1) -----------------------------------------------------------

Lr1Closure::Lr1Closure(const LrGrammar& lg)
    : m_lg(lg)
    , m_la(lg.g.lastCode + 1, TerminalSet(lg.g.terminalCount))
    , m_queued(lg.g.lastCode + 1, 0)
{
}

const std::vector<int>& Lr1Closure::Compute(const std::vector<int>& kernel, const std::vector<TerminalSet>& kernelLa)
{
    const Grammar& g = m_lg.g;
    const LrItems& items = m_lg.items;
    m_nts = m_lg.ClosureNonterminals(kernel);
    for (int c : m_nts)
        m_la[c].Clear();
    // [A -> alpha . B beta, L] gives B the look-aheads FIRST(beta), and L when beta is nullable.
    for (std::size_t i = 0; i < kernel.size(); ++i) {
        const int item = kernel[i];
        const int b = items.Next(item);
        if (b < g.firstNonterminal)
            continue;
        TerminalSet& target = m_la[b];
        target.Merge(m_lg.tailFirst[item]);
        if (m_lg.tailNullable[item])
            target.Merge(kernelLa[i]);
    }
    // The same inside the closure: the FIRST part once, the look-ahead part until stable.
    for (int c : m_nts)
        for (int r : items.RulesOf(c)) {
            const int item = items.Item(r, 0);
            const int d = items.Next(item);
            if (d >= g.firstNonterminal)
                m_la[d].Merge(m_lg.tailFirst[item]);
        }
    // First in, first out, starting in left-corner order: along a chain of
    // non-terminals each look-ahead set is passed on once, not once per change
    // above it.
    m_work = m_nts;
    for (int c : m_nts)
        m_queued[c] = 1;
    for (std::size_t head = 0; head < m_work.size(); ++head) {
        const int c = m_work[head];
        m_queued[c] = 0;
        for (int r : items.RulesOf(c)) {
            const int item = items.Item(r, 0);
            const int d = items.Next(item);
            if (d < g.firstNonterminal || d == c || !m_lg.tailNullable[item])
                continue;
            if (m_la[d].Merge(m_la[c]) && !m_queued[d]) {
                m_queued[d] = 1;
                m_work.push_back(d);
            }
        }
    }
    return m_nts;
}

bool BuildLr1(const LrGrammar& lg, PassFrame& frame, Lr1Automaton& a)
{
    const Grammar& g = lg.g;
    const LrItems& items = lg.items;
    const int t = g.terminalCount;
    const int codes = g.lastCode + 1;
    a = Lr1Automaton();

    // A state is named by its kernel items and their look-ahead words, side by side.
    std::unordered_map<std::vector<std::uint64_t>, int, WordsHash> index;
    std::vector<std::uint64_t> key;
    auto add = [&](std::vector<int>&& kernel, std::vector<TerminalSet>&& las, int symbol) {
        key.clear();
        for (std::size_t i = 0; i < kernel.size(); ++i) {
            key.push_back(static_cast<std::uint64_t>(kernel[i]));
            const auto& words = las[i].Words();
            key.insert(key.end(), words.begin(), words.end());
        }
        auto [it, inserted] = index.try_emplace(key, a.kernels.size());
        if (inserted) {
            a.kernels.push_back(std::move(kernel));
            a.lookaheads.push_back(std::move(las));
            a.rows.emplace_back();
            a.accessing.push_back(symbol);
        }
        return it->second;
    };
    {
        TerminalSet end(t);
        end.Add(0);
        add({items.Item(0, 0)}, {end}, -2);
    }

    Lr1Closure closure(lg);
    struct Entry {
        int item;
        const TerminalSet* la;
    };
    Indexed<std::vector<Entry>> bucket(codes);
    std::vector<int> touched;

    auto expand = [&](int s) {
        const std::vector<int> kernel = a.kernels[s];
        const std::vector<TerminalSet> kernelLa = a.lookaheads[s];
        const std::vector<int>& nts = closure.Compute(kernel, kernelLa);
        auto put = [&](int symbol, int item, const TerminalSet* set) {
            std::vector<Entry>& b = bucket[symbol];
            if (b.empty())
                touched.push_back(symbol);
            b.push_back({item, set});
        };
        for (std::size_t i = 0; i < kernel.size(); ++i)
            if (!items.Complete(kernel[i]))
                put(items.Next(kernel[i]), kernel[i] + 1, &kernelLa[i]);
        for (int nt : nts)
            for (int r : items.RulesOf(nt))
                if (items.Length(r) > 0) {
                    const int c = items.Item(r, 0);
                    put(items.Next(c), c + 1, &closure.Lookahead(nt));
                }
        std::sort(touched.begin(), touched.end());
        for (int x : touched) {
            std::vector<Entry>& b = bucket[x];
            std::sort(b.begin(), b.end(), [](const Entry& l, const Entry& r) { return l.item < r.item; });
            std::vector<int> next;
            std::vector<TerminalSet> nextLa;
            next.reserve(b.size());
            nextLa.reserve(b.size());
            for (const Entry& e : b) {
                next.push_back(e.item);
                nextLa.push_back(*e.la);
            }
            const int target = add(std::move(next), std::move(nextLa), x);
            a.rows[s].emplace_back(x, target);  // codes ascend
            b.clear();
        }
        touched.clear();
    };
    return frame.Run(expand, [&] { return a.kernels.size(); });
}
