// The grammar sets checked against slow, obviously correct references kept
// here: the textbook fixpoints of nullable, FIRST and FOLLOW, and a literal
// transcription of the FOLLOWB/FOLLOWL/FOLLOWR passes (snapshot, repeat until
// nothing changes). Run over every corpus grammar and a few hundred seeded
// random grammars; the lists must equal the literal ones exactly.
//
// How the follow sets relate to the textbook FOLLOW:
// - FOLLOWR(A) contains FOLLOW(A). It can hold more: FOLLOWB(A) takes in all
//   of FOLLOWB(X) for a nullable X that follows A, including what follows X in
//   other places. Without nullable non-terminals the two are equal.
// - FOLLOWL(A) of a nullable A equals FOLLOWR(A) unless A is in its own
//   FOLLOWB: FOLLOWL skips X == A, so FIRST(A) is then missing from it unless
//   it arrives another way (FOLLOWR(A) = FOLLOWL(A) + FIRST(A)).
// - FOLLOWL(A) of a non-nullable A is FOLLOWB(A) without its non-terminals.
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

/// Textbook sets, computed by repeating whole passes until nothing changes.
struct Textbook {
    std::vector<bool> nullable;
    std::vector<Set> first;        // by code, non-terminals: terminals only
    std::vector<Set> firstOfRule;  // 1..R: 0 when the right side derives ε
    std::vector<Set> follow;       // by code, non-terminals: terminals and 0
};

/// The right side of rule r as codes; empty for an empty rule.
std::vector<int> Right(const Grammar& g, int r)
{
    const std::vector<int>& rule = g.rules[At(r)];
    if (g.ruleIsEmpty[At(r)])
        return {};
    return std::vector<int>(rule.begin() + 1, rule.end());
}

/// FIRST of a string of symbols and whether it derives ε. The end marker
/// written as "." counts as a terminal.
std::pair<Set, bool> FirstOfString(const Grammar& g, const Textbook& t, const std::vector<int>& symbols,
                                   std::size_t from)
{
    Set out;
    for (std::size_t i = from; i < symbols.size(); ++i) {
        const int x = symbols[i];
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
    Textbook t;
    const std::size_t codes = At(g.lastCode) + 1;
    t.nullable.assign(codes, false);
    t.first.assign(codes, Set());
    t.follow.assign(codes, Set());
    for (bool changed = true; changed;) {
        changed = false;
        for (int r = 1; r <= g.ruleCount; ++r) {
            const int a = g.rules[At(r)][0];
            const std::vector<int> right = Right(g, r);
            const bool allNullable = std::all_of(right.begin(), right.end(), [&](int x) {
                return g.IsNonterminal(x) && t.nullable[At(x)];
            });
            if (allNullable && !t.nullable[At(a)])
                changed = t.nullable[At(a)] = true;
            Set f = FirstOfString(g, t, right, 0).first;
            f.erase(0);  // FIRST of a non-terminal keeps terminals only
            for (int x : f)
                changed |= t.first[At(a)].insert(x).second;
        }
    }
    t.firstOfRule.assign(At(g.ruleCount) + 1, Set());
    for (int r = 1; r <= g.ruleCount; ++r) {
        auto [f, empty] = FirstOfString(g, t, Right(g, r), 0);
        if (empty)
            f.insert(0);
        t.firstOfRule[At(r)] = f;
    }

    t.follow[At(g.goal)].insert(0);
    for (bool changed = true; changed;) {
        changed = false;
        for (int r = 1; r <= g.ruleCount; ++r) {
            const int left = g.rules[At(r)][0];
            const std::vector<int> right = Right(g, r);
            for (std::size_t i = 0; i < right.size(); ++i) {
                if (!g.IsNonterminal(right[i]))
                    continue;
                Set& into = t.follow[At(right[i])];
                const auto [rest, restNullable] = FirstOfString(g, t, right, i + 1);
                for (int x : rest)
                    changed |= into.insert(x).second;
                if (restNullable) {
                    const Set from = t.follow[At(left)];
                    for (int x : from)
                        changed |= into.insert(x).second;
                }
            }
        }
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
/// FOLLOWR against the textbook FOLLOW; FOLLOWL and FOLLOWR exactly as the
/// literal expansion of the computed FOLLOWB gives them.
void CheckAgainstTextbook(const Grammar& g, const Textbook& t, const std::string& what)
{
    const bool anyNullable = std::find(t.nullable.begin(), t.nullable.end(), true) != t.nullable.end();
    for (int a = g.firstNonterminal; a <= g.lastCode; ++a) {
        const std::string sym = what + " " + g.GetSymbolS(a).toStdString();
        ASSERT_EQ(bool(g.nullable[At(a)]), t.nullable[At(a)]) << sym;
        EXPECT_EQ(AsSet(g.first[At(a)]), t.first[At(a)]) << sym;
        EXPECT_EQ(g.first[At(a)].Count(), static_cast<int>(t.first[At(a)].size())) << sym << " (duplicates)";
        const Set followR = AsSet(g.followR[At(a)]);
        EXPECT_TRUE(std::includes(followR.begin(), followR.end(), t.follow[At(a)].begin(), t.follow[At(a)].end()))
            << sym;
        if (!anyNullable) {
            EXPECT_EQ(followR, t.follow[At(a)]) << sym << " (no nullable symbols)";
        }
        EXPECT_TRUE(std::is_sorted(g.followB[At(a)].begin(), g.followB[At(a)].end())) << sym;
    }
    for (int r = 1; r <= g.ruleCount; ++r) {
        const CodeList& f = g.firstOfRule[At(r)];
        EXPECT_EQ(AsSet(f), t.firstOfRule[At(r)]) << what << " rule " << r;
        if (f.Contains(0)) {
            EXPECT_EQ(f[f.Count() - 1], 0) << what << " rule " << r << ": 0 closes the list";
        }
    }
    const Lists followB = AsLists(g, g.followB);
    const Lists followL = LiteralExpand(g, followB, true);
    const Lists followR = LiteralExpand(g, followB, false);
    EXPECT_EQ(AsLists(g, g.followL), followL) << what;
    EXPECT_EQ(AsLists(g, g.followR), followR) << what;
    for (int a = g.firstNonterminal; a <= g.lastCode; ++a) {
        if (!g.nullable[At(a)])
            continue;
        Set expected = AsSet(g.followL[At(a)]);
        if (g.followB[At(a)].Contains(a))
            expected.insert(g.first[At(a)].begin(), g.first[At(a)].end());
        EXPECT_EQ(AsSet(g.followR[At(a)]), expected) << what << " " << g.GetSymbolS(a).toStdString();
    }
}

/// Computes the three follow sets of a parsed grammar; fails the test when
/// one is missing.
void FindFollowSets(Grammar& g, const std::string& what)
{
    g.FindFollowB();
    g.FindFollowL();
    g.FindFollowR();
    ASSERT_TRUE(g.GetFlag(GrammarFlag::FollowBDone) && g.GetFlag(GrammarFlag::FollowLDone)
                && g.GetFlag(GrammarFlag::FollowRDone))
        << what;
}

TEST(SetsReference, RandomGrammarsMatchTheLiteralPassesAndTheTextbook)
{
    std::mt19937 rng(20240611);
    int checked = 0, withNullable = 0;
    for (int i = 0; i < 400; ++i) {
        const QString text = RandomGrammarText(rng, true);
        const std::string what = "random #" + std::to_string(i) + ":\n" + text.toStdString();
        Grammar g;
        if (!g.SetText(text))
            continue;
        FindFollowSets(g, what);
        const Textbook t = ComputeTextbook(g);
        CheckAgainstTextbook(g, t, what);
        // FOLLOWL and FOLLOWR were checked against the literal expansion of
        // the computed FOLLOWB, which must equal the literal one.
        ASSERT_EQ(AsLists(g, g.followB), LiteralFollowB(g)) << what;
        ++checked;
        withNullable += std::any_of(g.nullable.begin(), g.nullable.end(), [](char c) { return c; });
        if (HasFatalFailure())
            return;
    }
    // The generator must reach both kinds of grammar in numbers.
    EXPECT_GT(checked, 300);
    EXPECT_GT(withNullable, 100);
}

TEST(SetsReference, CorpusGrammarsMatchTheLiteralPassesAndTheTextbook)
{
    for (const QString& path : CorpusGrammars()) {
        const std::string what = path.toStdString();
        Grammar g;
        ASSERT_TRUE(g.SetText(ReadGrammarText(path))) << what;
        FindFollowSets(g, what);
        CheckAgainstTextbook(g, ComputeTextbook(g), what);
        ASSERT_EQ(AsLists(g, g.followB), LiteralFollowB(g)) << what;
    }
}

} // namespace
