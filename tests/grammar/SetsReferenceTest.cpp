// The grammar sets checked against slow, obviously correct references kept
// here: the textbook fixpoints of nullable and FIRST, and a literal
// transcription of the FOLLOWB/FOLLOWL/FOLLOWR passes (snapshot, repeat until
// nothing changes). Run over every corpus grammar and a few hundred seeded
// random grammars; the lists must equal the literal ones exactly. How the
// follow sets differ from the textbook FOLLOW is shown by the golden cases
// sets-followl-followr and sets-nullable-follower.
#include "grammar/Grammar.h"
#include "support/GrammarSamples.h"
#include "support/RecordingHost.h"
#include "support/TestPaths.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <random>
#include <set>

namespace {

using Set = std::set<int>;
using Lists = std::vector<std::vector<int>>;

std::size_t At(int code)
{
    return static_cast<std::size_t>(code);
}

Set AsSet(const CodeList& list)
{
    return Set(list.begin(), list.end());
}

/// Textbook nullable marks and FIRST sets, computed by repeating whole passes
/// until nothing changes.
struct Textbook {
    std::vector<bool> nullable;
    std::vector<Set> first;        // by code, non-terminals: terminals only
    std::vector<Set> firstOfRule;  // 1..R: 0 when the right side derives ε
};

/// The right side of rule r as codes; empty for an empty rule.
std::vector<int> Right(const Grammar& g, int r)
{
    const std::vector<int>& rule = g.rules[At(r)];
    return g.ruleIsEmpty[At(r)] ? std::vector<int>() : std::vector<int>(rule.begin() + 1, rule.end());
}

/// FIRST of a right side and whether it derives ε. The end marker written as
/// "." counts as a terminal.
std::pair<Set, bool> FirstOfString(const Grammar& g, const Textbook& t, const std::vector<int>& symbols)
{
    Set out;
    for (int x : symbols) {
        if (!g.IsNonterminal(x)) {
            out.insert(x);
            return {out, false};
        }
        out.insert(t.first[At(x)].begin(), t.first[At(x)].end());
        if (!t.nullable[At(x)])
            return {out, false};
    }
    return {out, true};
}

Textbook ComputeTextbook(const Grammar& g)
{
    Textbook t{std::vector<bool>(At(g.lastCode) + 1, false), std::vector<Set>(At(g.lastCode) + 1), {}};
    for (bool changed = true; changed;) {
        changed = false;
        for (int r = 1; r <= g.ruleCount; ++r) {
            const int a = g.rules[At(r)][0];
            auto [f, empty] = FirstOfString(g, t, Right(g, r));
            if (empty && !t.nullable[At(a)])
                changed = t.nullable[At(a)] = true;
            f.erase(0);  // FIRST of a non-terminal keeps terminals only
            for (int x : f)
                changed |= t.first[At(a)].insert(x).second;
        }
    }
    t.firstOfRule.assign(At(g.ruleCount) + 1, Set());
    for (int r = 1; r <= g.ruleCount; ++r) {
        auto [f, empty] = FirstOfString(g, t, Right(g, r));
        if (empty)
            f.insert(0);
        t.firstOfRule[At(r)] = f;
    }
    return t;
}

void AddUnique(std::vector<int>& list, int code)
{
    if (std::find(list.begin(), list.end(), code) == list.end())
        list.push_back(code);
}

/// FOLLOWB as written: direct pass, then passes over a snapshot until nothing
/// changes, then each list sorted.
Lists LiteralFollowB(const Grammar& g)
{
    Lists fb(At(g.lastCode) + 1);
    fb[At(g.goal)].push_back(0);
    auto nullableNt = [&](int x) { return g.IsNonterminal(x) && g.nullable[At(x)]; };
    for (int r = 1; r <= g.ruleCount; ++r) {
        const std::vector<int> right = Right(g, r);
        for (std::size_t i = 1; i < right.size(); ++i) {
            if (!g.IsNonterminal(right[i - 1]))
                continue;
            std::vector<int>& into = fb[At(right[i - 1])];
            AddUnique(into, right[i]);
            for (std::size_t j = i; nullableNt(right[j]) && j + 1 < right.size(); ++j)
                AddUnique(into, right[j + 1]);
        }
    }
    for (;;) {
        const Lists snapshot = fb;
        for (int a = g.firstNonterminal; a <= g.lastCode; ++a)
            for (int x : snapshot[At(a)])
                if (nullableNt(x)) {
                    const std::vector<int> from = fb[At(x)];
                    for (int m : from)
                        AddUnique(fb[At(a)], m);
                }
        for (int a = g.firstNonterminal; a <= g.lastCode; ++a)
            for (int r = 1; r <= g.ruleCount; ++r) {
                const std::vector<int> right = Right(g, r);
                if (!right.empty() && right.back() == a) {
                    const std::vector<int> from = fb[At(g.rules[At(r)][0])];
                    for (int m : from)
                        AddUnique(fb[At(a)], m);
                }
            }
        if (fb == snapshot)
            break;
    }
    for (std::vector<int>& list : fb)
        std::sort(list.begin(), list.end());
    return fb;
}

/// FOLLOWL (nullableOnly) or FOLLOWR as written, from the given FOLLOWB lists
/// and the grammar's own FIRST lists (their order is the implementation's).
Lists LiteralExpand(const Grammar& g, const Lists& followB, bool nullableOnly)
{
    Lists out = followB;
    for (int a = g.firstNonterminal; a <= g.lastCode; ++a) {
        std::vector<int>& list = out[At(a)];
        if (!nullableOnly || g.nullable[At(a)]) {
            const std::vector<int> before = list;
            for (int x : before) {
                if (!g.IsNonterminal(x) || (nullableOnly && x == a))
                    continue;
                for (int t : g.first[At(x)])
                    if (t != 0)
                        AddUnique(list, t);
            }
        }
        std::erase_if(list, [&](int c) { return c >= g.firstNonterminal; });
    }
    return out;
}

Lists AsLists(const Grammar& g, const std::vector<CodeList>& sets)
{
    Lists out(At(g.lastCode) + 1);
    for (int a = g.firstNonterminal; a <= g.lastCode; ++a)
        out[At(a)] = sets[At(a)].Items();
    return out;
}

/// Nullable marks, FIRST per non-terminal and per rule against the textbook;
/// FOLLOWB against its literal passes, FOLLOWL and FOLLOWR against the literal
/// expansion of the computed FOLLOWB.
void Check(const QString& text, const std::string& what)
{
    Grammar g;
    ASSERT_TRUE(g.SetText(text)) << what;
    g.FindFollowB();
    g.FindFollowL();
    g.FindFollowR();
    ASSERT_TRUE(g.GetFlag(GrammarFlag::FollowBDone) && g.GetFlag(GrammarFlag::FollowLDone)
                && g.GetFlag(GrammarFlag::FollowRDone))
        << what;
    const Textbook t = ComputeTextbook(g);
    for (int a = g.firstNonterminal; a <= g.lastCode; ++a) {
        const std::string sym = what + " " + g.GetSymbolS(a).toStdString();
        ASSERT_EQ(bool(g.nullable[At(a)]), t.nullable[At(a)]) << sym;
        EXPECT_EQ(AsSet(g.first[At(a)]), t.first[At(a)]) << sym;
        EXPECT_EQ(g.first[At(a)].Count(), static_cast<int>(t.first[At(a)].size())) << sym << " (duplicates)";
    }
    for (int r = 1; r <= g.ruleCount; ++r) {
        const CodeList& f = g.firstOfRule[At(r)];
        EXPECT_EQ(AsSet(f), t.firstOfRule[At(r)]) << what << " rule " << r;
        if (f.Contains(0)) {
            EXPECT_EQ(f[f.Count() - 1], 0) << what << " rule " << r << ": 0 closes the list";
        }
    }
    const Lists followB = AsLists(g, g.followB);
    ASSERT_EQ(followB, LiteralFollowB(g)) << what;
    EXPECT_EQ(AsLists(g, g.followL), LiteralExpand(g, followB, true)) << what;
    EXPECT_EQ(AsLists(g, g.followR), LiteralExpand(g, followB, false)) << what;
}

TEST(SetsReference, RandomGrammarsMatchTheLiteralPassesAndTheTextbook)
{
    std::mt19937 rng(20240611);
    int checked = 0, withNullable = 0;
    for (int i = 0; i < 400 && !HasFatalFailure(); ++i) {
        const QString text = RandomGrammarText(rng, true);
        Grammar g;
        if (!g.SetText(text))
            continue;
        Check(text, "random #" + std::to_string(i) + ":\n" + text.toStdString());
        ++checked;
        withNullable += std::any_of(g.nullable.begin(), g.nullable.end(), [](char c) { return c; });
    }
    // The generator must reach both kinds of grammar in numbers.
    EXPECT_GT(checked, 300);
    EXPECT_GT(withNullable, 100);
}

TEST(SetsReference, CorpusGrammarsMatchTheLiteralPassesAndTheTextbook)
{
    for (const QString& path : CorpusGrammars())
        Check(ReadGrammarText(path), path.toStdString());
}

} // namespace
