/// \file
/// Counterexamples by walking the LR automaton.
#include "session/ParserWalk.h"

#include "analysers/LrAutomaton.h"
#include "analysers/LrItems.h"

#include <algorithm>
#include <deque>
#include <unordered_map>
#include <unordered_set>

namespace {

/// How far a walk's stack may grow past the prefix while two walks are
/// advanced together: the examples wanted are short.
constexpr int kDeeper = 8;
/// Steps a lone walk may take to its accept: more means a cycle of unit rules.
constexpr int kCompletionSteps = 100000;

} // namespace

ParserWalk::ParserWalk(const Grammar& g, const LrResults& lr)
    : m_g(g)
    , m_lr(lr)
    , m_items(std::make_unique<LrItems>(g))
    , m_reduces(static_cast<std::size_t>(lr.States()))
    , m_reducesDone(static_cast<std::size_t>(lr.States()), 0)
    , m_into(static_cast<std::size_t>(lr.States()))
{
    m_accept = Goto(0, g.goal);
    for (int s = 0; s < lr.States(); ++s)
        for (const auto& [code, entry] : lr.rows[s])
            if (entry > 0 && entry < lr.States())
                m_into[static_cast<std::size_t>(entry)].push_back({s, code});
    // Shortest paths from state 0, breadth first over the shifts and gotos.
    m_shortest.resize(static_cast<std::size_t>(lr.States()));
    std::vector<char> reached(static_cast<std::size_t>(lr.States()), 0);
    std::deque<int> queue{0};
    reached[0] = 1;
    while (!queue.empty()) {
        const int s = queue.front();
        queue.pop_front();
        for (const auto& [code, entry] : lr.rows[s])
            if (entry > 0 && entry < lr.States() && !reached[entry]) {
                reached[entry] = 1;
                m_shortest[entry] = m_shortest[s];
                m_shortest[entry].push_back(code);
                queue.push_back(entry);
            }
    }
}

std::vector<int> ParserWalk::PrefixForReduce(int state, int lookahead, int rule, SearchBudget& budget) const
{
    // A configuration is the top of a stack whose bottom is not yet known,
    // with the states added below the conflict state to let the reduces pop.
    struct Config {
        Stack stack;
        std::vector<int> below;  ///< bottom first
    };
    std::deque<Config> queue;
    std::unordered_set<std::vector<std::uint64_t>, WordsHash> seen;
    // Pops `length` states, first growing the stack downwards when it holds
    // too few: one configuration per way the states below can be.
    auto reduce = [&](const Config& c, int r) {
        const std::size_t length = static_cast<std::size_t>(m_items->Length(r));
        std::vector<Config> grown{c};
        while (!grown.empty() && grown.front().stack.size() <= length) {
            std::vector<Config> next;
            for (const Config& g : grown) {
                if (g.stack.front() == 0)
                    continue;  // nothing is below state 0
                for (const auto& [before, symbol] : m_into[static_cast<std::size_t>(g.stack.front())]) {
                    Config deeper = g;
                    deeper.stack.insert(deeper.stack.begin(), before);
                    deeper.below.insert(deeper.below.begin(), before);
                    next.push_back(std::move(deeper));
                    if (next.size() > 256)
                        break;
                }
            }
            grown = std::move(next);
        }
        for (Config& g : grown) {
            g.stack.resize(g.stack.size() - length);
            const int to = Goto(g.stack.back(), m_g.rules[r][0]);
            if (!to)
                continue;
            g.stack.push_back(to);
            std::vector<std::uint64_t> key(g.stack.begin(), g.stack.end());
            if (seen.insert(std::move(key)).second)
                queue.push_back(std::move(g));
        }
    };
    reduce(Config{{state}, {}}, rule);
    while (!queue.empty()) {
        if (!budget.Spend())
            return {};
        const Config c = std::move(queue.front());
        queue.pop_front();
        const bool reads = lookahead == 0 ? c.stack.size() == 2 && c.stack[0] == 0 && c.stack[1] == m_accept
                                          : Goto(c.stack.back(), lookahead) != 0;
        if (reads) {
            // The prefix: a shortest way to the deepest state, then the
            // symbols of the states above it up to the conflict state.
            std::vector<int> prefix = c.below.empty() ? m_shortest[static_cast<std::size_t>(state)]
                                                      : m_shortest[static_cast<std::size_t>(c.below.front())];
            if (!c.below.empty()) {
                for (std::size_t i = 1; i < c.below.size(); ++i)
                    prefix.push_back(m_lr.accessing[c.below[i]]);
                prefix.push_back(m_lr.accessing[state]);
            }
            return prefix;
        }
        if (c.stack.size() > 256)
            continue;
        for (int r : Reduces(c.stack.back()))
            reduce(c, r);
    }
    return {};
}

ParserWalk::~ParserWalk() = default;

int ParserWalk::Goto(int state, int symbol) const
{
    const int entry = RowEntry(m_lr.rows[state], symbol);
    return entry > 0 && entry < m_lr.States() ? entry : 0;
}

const std::vector<int>& ParserWalk::Reduces(int state) const
{
    const std::size_t at = static_cast<std::size_t>(state);
    if (m_reducesDone[at])
        return m_reduces[at];
    m_reducesDone[at] = 1;
    std::vector<int>& out = m_reduces[at];
    std::vector<char> seen(static_cast<std::size_t>(m_g.lastCode) + 1, 0);
    std::vector<int> queue;
    for (int item : m_lr.kernels[state]) {
        if (m_items->Complete(item)) {
            if (m_items->Rule(item) != 0)
                out.push_back(m_items->Rule(item));
        } else if (m_g.IsNonterminal(m_items->Next(item)) && !seen[m_items->Next(item)]) {
            seen[m_items->Next(item)] = 1;
            queue.push_back(m_items->Next(item));
        }
    }
    // The closure's items have the dot in front: only its empty rules are complete.
    for (std::size_t i = 0; i < queue.size(); ++i)
        for (int r : m_items->RulesOf(queue[i])) {
            if (m_g.ruleIsEmpty[r]) {
                out.push_back(r);
                continue;
            }
            const int first = m_g.rules[r][1];
            if (m_g.IsNonterminal(first) && !seen[first]) {
                seen[first] = 1;
                queue.push_back(first);
            }
        }
    return out;
}

bool ParserWalk::Apply(Stack& stack, const Op& op) const
{
    if (op.shift) {
        const int next = Goto(stack.back(), op.value);
        if (!next)
            return false;
        stack.push_back(next);
        return true;
    }
    const std::size_t length = static_cast<std::size_t>(m_items->Length(op.value));
    if (stack.size() <= length)
        return false;
    stack.resize(stack.size() - length);
    const int next = Goto(stack.back(), m_g.rules[op.value][0]);
    if (!next)
        return false;
    stack.push_back(next);
    return true;
}

ParserWalk::Stack ParserWalk::Walk(const std::vector<int>& prefix, std::vector<Op>& ops) const
{
    Stack stack{0};
    for (int symbol : prefix) {
        ops.push_back({true, symbol});
        // A non-terminal of the prefix that the state can reduce from an
        // empty rule is taken so: the same state, and one leaf fewer.
        for (int r : Reduces(stack.back()))
            if (m_g.ruleIsEmpty[r] && m_g.rules[r][0] == symbol)
                ops.back() = {false, r};
        if (!Apply(stack, ops.back()))
            return {};
    }
    return stack;
}

int ParserWalk::LeavesOf(const std::vector<int>& prefix) const
{
    std::vector<Op> ops;
    Walk(prefix, ops);
    return static_cast<int>(std::count_if(ops.begin(), ops.end(), [](const Op& op) { return op.shift; }));
}

bool ParserWalk::Accepting(const Stack& stack) const
{
    return stack.size() == 2 && m_accept > 0 && stack[1] == m_accept;
}

bool ParserWalk::Enter(Stack& stack, int lookahead, Action action, std::vector<Op>& ops, SearchBudget& budget) const
{
    if (action.shift) {
        if (lookahead == 0)
            return Accepting(stack);
        ops.push_back({true, lookahead});
        return Apply(stack, ops.back());
    }
    ops.push_back({false, action.rule});
    if (!Apply(stack, ops.back()))
        return false;
    // Reduces until the look-ahead can be read: a depth-first search, as the
    // reduces open to a state are few.
    auto reads = [&](const Stack& s) { return lookahead == 0 ? Accepting(s) : Goto(s.back(), lookahead) != 0; };
    struct Frame {
        Stack stack;
        std::size_t choice;
    };
    std::vector<Frame> frames{{stack, 0}};
    std::vector<Op> path;  // the reduce that led into each frame but the first
    while (!frames.empty()) {
        if (!budget.Spend())
            return false;
        Frame& f = frames.back();
        if (f.choice == 0 && reads(f.stack)) {
            stack = f.stack;
            ops.insert(ops.end(), path.begin(), path.end());
            if (lookahead != 0) {
                ops.push_back({true, lookahead});
                Apply(stack, ops.back());
            }
            return true;
        }
        const std::vector<int>& reduces = Reduces(f.stack.back());
        if (f.choice >= reduces.size() || frames.size() > 64) {
            frames.pop_back();
            if (!path.empty())
                path.pop_back();
            continue;
        }
        const Op op{false, reduces[f.choice++]};
        Stack next = f.stack;
        if (!Apply(next, op))
            continue;
        path.push_back(op);
        frames.push_back({std::move(next), 0});
    }
    return false;
}

DerivationTree ParserWalk::Build(const std::vector<Op>& ops) const
{
    std::vector<DerivationTree> trees;
    for (const Op& op : ops) {
        if (op.shift) {
            trees.push_back({op.value, -1, {}});
            continue;
        }
        const std::size_t length = static_cast<std::size_t>(m_items->Length(op.value));
        DerivationTree node{m_g.rules[op.value][0], op.value, {}};
        node.children.assign(std::make_move_iterator(trees.end() - static_cast<std::ptrdiff_t>(length)),
                             std::make_move_iterator(trees.end()));
        trees.resize(trees.size() - length);
        trees.push_back(std::move(node));
    }
    return DerivationTree{-2, 0, std::move(trees)};
}

std::vector<std::vector<int>> ParserWalk::PrefixesTo(int state, int most) const
{
    // Paths are grown backwards from the state; a path is done when it reaches
    // state 0. Breadth first, so the shortest come first.
    struct Partial {
        int at;
        int parent;
        int symbol;
    };
    std::vector<Partial> partials{{state, -1, 0}};
    std::vector<std::vector<int>> out;
    const std::size_t limit = 20000;
    for (std::size_t i = 0; i < partials.size() && static_cast<int>(out.size()) < most; ++i) {
        if (partials[i].at == 0) {
            std::vector<int> prefix;
            for (int k = static_cast<int>(i); partials[k].parent >= 0; k = partials[k].parent)
                prefix.push_back(partials[k].symbol);
            out.push_back(std::move(prefix));
            continue;
        }
        for (const auto& [before, symbol] : m_into[static_cast<std::size_t>(partials[i].at)])
            if (partials.size() < limit)
                partials.push_back({before, static_cast<int>(i), symbol});
    }
    return out;
}

bool ParserWalk::CompleteFrom(Stack& stack, std::vector<Op>& ops, SearchBudget& budget) const
{
    // Each step finishes one kernel item of the top state: the symbols after
    // its dot are shifted as they are, then its rule reduced. The stack never
    // grows so; a stack met before (a left-recursive or unit item at the same
    // height) is not entered again, so the walk ends.
    std::unordered_set<std::vector<std::uint64_t>, WordsHash> seen;
    for (int steps = 0; !Accepting(stack); ++steps) {
        if (steps > kCompletionSteps || stack.size() < 2 || !budget.Spend())
            return false;
        std::vector<int> items;
        for (int item : m_lr.kernels[stack.back()])
            if (m_items->Rule(item) != 0)
                items.push_back(item);
        // Fewest symbols left first; of those, the one that pops the most.
        auto left = [&](int item) { return m_items->Length(m_items->Rule(item)) - m_items->Dot(item); };
        std::stable_sort(items.begin(), items.end(), [&](int x, int y) {
            return left(x) != left(y) ? left(x) < left(y) : m_items->Dot(x) > m_items->Dot(y);
        });
        bool moved = false;
        for (int item : items) {
            const int rule = m_items->Rule(item);
            Stack next = stack;
            std::vector<Op> taken;
            bool ok = true;
            for (int k = m_items->Dot(item); ok && k < m_items->Length(rule); ++k) {
                // A symbol with an empty rule the state offers is reduced from
                // it: the form is shorter by a leaf.
                const int symbol = m_g.rules[rule][static_cast<std::size_t>(k) + 1];
                const std::vector<int>& reduces = Reduces(next.back());
                const auto empty = std::find_if(reduces.begin(), reduces.end(), [&](int r) {
                    return m_g.ruleIsEmpty[r] && m_g.rules[r][0] == symbol;
                });
                taken.push_back(empty != reduces.end() ? Op{false, *empty} : Op{true, symbol});
                ok = Apply(next, taken.back());
            }
            taken.push_back({false, rule});
            if (!ok || !Apply(next, taken.back()) || !seen.insert({next.begin(), next.end()}).second)
                continue;
            stack = std::move(next);
            ops.insert(ops.end(), taken.begin(), taken.end());
            moved = true;
            break;
        }
        if (!moved)
            return false;
    }
    return true;
}

bool ParserWalk::Complete(const std::vector<int>& prefix, int lookahead, Action action, SearchBudget& budget,
                          DerivationTree& tree) const
{
    std::vector<Op> ops;
    Stack stack = Walk(prefix, ops);
    if (stack.empty() || !Enter(stack, lookahead, action, ops, budget))
        return false;
    if (!CompleteFrom(stack, ops, budget))
        return false;
    tree = Build(ops);
    return true;
}

bool ParserWalk::Unify(const std::vector<int>& prefix, int lookahead, Action first, Action second,
                       SearchBudget& budget, DerivationTree& one, DerivationTree& two) const
{
    std::vector<Op> ops1;
    Stack start = Walk(prefix, ops1);
    if (start.empty())
        return false;
    Stack s1 = start, s2 = start;
    std::vector<Op> ops2 = ops1;
    if (!Enter(s1, lookahead, first, ops1, budget) || !Enter(s2, lookahead, second, ops2, budget))
        return false;
    if (lookahead == 0) {
        // Nothing follows the end marker: both walks must be at the accept already.
        if (!Accepting(s1) || !Accepting(s2))
            return false;
        one = Build(ops1);
        two = Build(ops2);
        return true;
    }
    // Both walks advanced over the same symbols; reduces are free, shifts
    // cost one, so the first pair to meet on one stack has the fewest symbols.
    struct Node {
        Stack one, two;
        int parent;
        int side;  ///< 0: both shift; 1, 2: that walk reduces
        Op op;
        int cost;  ///< the symbols shifted since the conflict
        std::uint64_t key;
    };
    // Pairs are known by a hash of both stacks: a clash of two hashes can
    // only pass over a pair, never make a wrong example.
    auto key = [](const Stack& a, const Stack& b) {
        std::uint64_t h = 0x9E3779B97F4A7C15ull ^ a.size();
        for (int v : a)
            h = (h ^ static_cast<std::uint32_t>(v)) * 0x100000001B3ull;
        h = (h ^ 0xFFFFFFFFull) * 0x100000001B3ull;
        for (int v : b)
            h = (h ^ static_cast<std::uint32_t>(v)) * 0x100000001B3ull;
        return h;
    };
    std::vector<Node> nodes{{s1, s2, -1, 0, {true, 0}, 0, key(s1, s2)}};
    std::deque<int> queue{0};
    // The fewest shifts each pair was reached with. A pair reached again more
    // cheaply is taken again: a non-terminal shifted whole and the same one
    // reduced from an empty rule meet on one pair, and the empty rule, which
    // adds no leaf, is the shorter example.
    std::unordered_map<std::uint64_t, int> cheapest{{nodes[0].key, 0}};
    const std::size_t deepest = start.size() + kDeeper;
    auto add = [&](Stack a, Stack b, int parent, int side, Op op, bool shift) {
        if (a.size() > deepest || b.size() > deepest)
            return;
        const int cost = nodes[parent].cost + (shift ? 1 : 0);
        const std::uint64_t k = key(a, b);
        const auto [it, fresh] = cheapest.try_emplace(k, cost);
        if (!fresh) {
            if (it->second <= cost)
                return;
            it->second = cost;
        }
        nodes.push_back({std::move(a), std::move(b), parent, side, op, cost, k});
        const int index = static_cast<int>(nodes.size()) - 1;
        shift ? queue.push_back(index) : queue.push_front(index);
    };
    while (!queue.empty()) {
        if (!budget.Spend())
            return false;
        const int at = queue.front();
        queue.pop_front();
        if (cheapest[nodes[at].key] < nodes[at].cost)
            continue;  // reached since at a lower cost
        // Once both walks stand on one stack, whatever follows reads alike
        // for both: the shortest completion finishes the two of them.
        if (nodes[at].one == nodes[at].two) {
            std::vector<const Node*> path;
            for (int k = at; k > 0; k = nodes[k].parent)
                path.push_back(&nodes[k]);
            for (auto it = path.rbegin(); it != path.rend(); ++it) {
                if ((*it)->side != 2)
                    ops1.push_back((*it)->op);
                if ((*it)->side != 1)
                    ops2.push_back((*it)->op);
            }
            Stack stack = nodes[at].one;
            std::vector<Op> rest;
            if (!CompleteFrom(stack, rest, budget))
                return false;
            ops1.insert(ops1.end(), rest.begin(), rest.end());
            ops2.insert(ops2.end(), rest.begin(), rest.end());
            one = Build(ops1);
            two = Build(ops2);
            return true;
        }
        // Copies: adding nodes moves the ones held.
        const Stack first = nodes[at].one, second = nodes[at].two;
        for (int side = 1; side <= 2; ++side) {
            const Stack& mine = side == 1 ? first : second;
            for (int rule : Reduces(mine.back())) {
                Stack next = mine;
                if (!Apply(next, {false, rule}))
                    continue;
                if (side == 1)
                    add(std::move(next), second, at, 1, {false, rule}, false);
                else
                    add(first, std::move(next), at, 2, {false, rule}, false);
            }
        }
        // Non-terminals first (the row runs by code, terminals before them):
        // a form that keeps a non-terminal says more than one of its sentences.
        const SparseRow& row = m_lr.rows[first.back()];
        for (auto it = row.rbegin(); it != row.rend(); ++it) {
            const auto& [symbol, entry] = *it;
            const int other = entry > 0 && entry < m_lr.States() ? Goto(second.back(), symbol) : 0;
            if (!other)
                continue;
            Stack a = first, b = second;
            a.push_back(entry);
            b.push_back(other);
            add(std::move(a), std::move(b), at, 0, {true, symbol}, true);
        }
    }
    return false;
}
