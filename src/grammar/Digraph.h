/// \file
/// The digraph algorithm: for a relation R over nodes lo..hi and initial sets
/// F'(x), computes F(x) = F'(x) ∪ ⋃{F(y) | x R y} in one depth-first walk,
/// collapsing strongly connected components as it goes.
/// [DeRemer & Pennello 1982, "Efficient Computation of LALR(1) Look-Ahead Sets",
/// section 5, procedure Digraph / Traverse.]
#pragma once

#include "grammar/CodeList.h"
#include "grammar/Indexed.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <vector>

/// A budget that takes every growth: sets whose size nobody bounds.
struct NoBudget {
    template <typename Set>
    static std::int64_t Size(const Set&)
    {
        return 0;
    }
    static bool Take(std::int64_t) { return true; }
};

/// sets is indexed by node (any set type with Merge(other)) and holds F'(x) on
/// entry, F(x) on return. edges(x)
/// returns the successors of x. tick() is called once per node visited and
/// returns false to abandon the walk; Digraph then returns false and sets is
/// left partly computed. budget (a SetBudget, or NoBudget) is given every change
/// of a set's size and abandons the walk the same way once it is spent.
template <typename Set, typename Edges, typename Tick, typename Budget = NoBudget>
bool Digraph(int lo, int hi, Edges edges, std::vector<Set>& sets, Tick tick, Budget&& budget = Budget())
{
    if (hi < lo)
        return true;
    auto at = [lo](int x) { return x - lo; };
    auto set = [&sets](int x) -> Set& { return sets[x]; };
    // N(x): 0 unvisited, INT_MAX finished, otherwise the lowest stack depth x reaches.
    Indexed<int> n(hi - lo + 1, 0);
    std::vector<int> stack;
    // An explicit frame stack instead of recursion: chains can be thousands deep.
    struct Frame {
        int node;
        int depth;         // stack depth of node when it was entered
        std::size_t next;  // index of the next successor to look at
    };
    std::vector<Frame> frames;
    auto merge = [&budget](Set& into, const Set& from) {
        const std::int64_t before = budget.Size(into);
        into.Merge(from);
        return budget.Take(budget.Size(into) - before);
    };
    auto enter = [&](int x) {
        stack.push_back(x);
        const int d = static_cast<int>(stack.size());
        n[at(x)] = d;
        frames.push_back({x, d, 0});
    };

    for (int start = lo; start <= hi; ++start) {
        if (n[at(start)] != 0)
            continue;
        enter(start);
        while (!frames.empty()) {
            Frame& f = frames.back();
            const int x = f.node;
            const std::vector<int>& succ = edges(x);
            if (f.next < succ.size()) {
                const int y = succ[f.next++];
                if (y < lo || y > hi || y == x)
                    continue;
                if (n[at(y)] == 0) {
                    enter(y);
                    continue;
                }
                n[at(x)] = std::min(n[at(x)], n[at(y)]);
                if (!merge(set(x), set(y)))
                    return false;
                continue;
            }
            // Every successor is done: x closes its component when it is the root.
            const int d = f.depth;
            frames.pop_back();
            if (n[at(x)] == d) {
                for (;;) {
                    const int top = stack.back();
                    stack.pop_back();
                    n[at(top)] = INT_MAX;
                    if (top == x)
                        break;
                    const std::int64_t before = budget.Size(set(top));
                    set(top) = set(x);
                    if (!budget.Take(budget.Size(set(top)) - before))
                        return false;
                }
            }
            if (!frames.empty()) {
                const int parent = frames.back().node;
                n[at(parent)] = std::min(n[at(parent)], n[at(x)]);
                if (!merge(set(parent), set(x)))
                    return false;
            }
            if (!tick())
                return false;
        }
    }
    return true;
}
