/// \file
/// The follow sets, computed on demand after the parse: FOLLOWB (what may stand
/// right of a non-terminal: terminals, non-terminals and the end marker), and
/// from it FOLLOWL (for LL(1)) and FOLLOWR (for SLR(1)), terminals and the end
/// marker only.
#include "grammar/Grammar.h"

#include "grammar/Digraph.h"

void Grammar::FindFollowB()
{
    if (!GetFlag(GrammarFlag::FirstDone) || GetFlag(GrammarFlag::FollowBDone))
        return;
    SetFlag(GrammarFlag::FollowBDone, false);
    followBReport = NotAnalyzed;
    const std::size_t codes = static_cast<std::size_t>(lastCode) + 1;
    followB.assign(codes, CodeList());
    auto stopped = [this] {
        host().yield();
        return !InProcess();
    };
    SetBudget budget = SetAllowance({&followB});
    auto refuse = [&] {
        followB.assign(codes, CodeList());
        RefuseSets(QStringLiteral("FOLLOWB sets"));
    };

    followB[goal].Add(0);

    // Direct pass: what stands right of a non-terminal B in a rule follows B,
    // and so does the symbol after that while the one just added is nullable.
    for (int r = 1; r <= ruleCount; ++r) {
        if (ruleIsEmpty[r])
            continue;
        const std::vector<int>& rule = rules[r];
        for (std::size_t i = 2; i < rule.size(); ++i) {
            if (!IsNonterminal(rule[i - 1]))
                continue;
            CodeList& set = followB[rule[i - 1]];
            const std::int64_t before = SetBudget::Size(set);
            for (std::size_t j = i; j < rule.size(); ++j) {
                set.Add(rule[j]);
                if (!IsNonterminal(rule[j]) || !nullable[rule[j]])
                    break;
            }
            if (!budget.Take(SetBudget::Size(set) - before))
                return refuse();
        }
        if (stopped())
            return;
    }

    // Propagation: FOLLOWB(A) takes in FOLLOWB(L) for every rule L -> ... A, and
    // FOLLOWB(X) for every nullable non-terminal X in FOLLOWB(A) (what follows X
    // may follow A when X derives nothing). So FOLLOWB(A) is the union of the
    // direct sets of everything A reaches over these edges. The second kind of
    // edge depends on the sets, yet the edges out of the direct sets suffice: a
    // nullable X that reaches FOLLOWB(A) stood in the direct set of some C that
    // A reaches, and C has its edge to X, so A reaches X as well. One run of the
    // digraph algorithm thus gives the least fixpoint that passes over
    // snapshots reach only after hundreds of passes.
    Indexed<CodeList> includes(lastCode + 1);
    for (int r = 1; r <= ruleCount; ++r) {
        const std::vector<int>& rule = rules[r];
        if (!ruleIsEmpty[r] && IsNonterminal(rule.back()))
            includes[rule.back()].Add(rule[0]);
    }
    for (int a = firstNonterminal; a <= lastCode; ++a)
        for (int x : followB[a])
            if (IsNonterminal(x) && nullable[x])
                includes[a].Add(x);
    const bool complete = Digraph(
        firstNonterminal, lastCode,
        [&](int a) -> const std::vector<int>& { return includes[a].Items(); }, followB,
        [&] { return !stopped(); }, budget);
    if (budget.Spent())
        return refuse();
    if (!complete)
        return;

    for (int a = firstNonterminal; a <= lastCode; ++a)
        followB[a].Sort();
    SetFlag(GrammarFlag::FollowBDone, true);
    followBReport.clear();  // built when first asked for
}

bool Grammar::ExpandFollowSets(Indexed<CodeList>& sets, bool nullableOnly, const QString& label)
{
    sets.assign(static_cast<std::size_t>(lastCode) + 1, CodeList());
    SetBudget budget = SetAllowance({&sets});
    for (int a = firstNonterminal; a <= lastCode; ++a) {
        CodeList& set = sets[a];
        set = followB[a];
        if (!nullableOnly || nullable[a]) {
            // Only the members that stood in the list before this step are
            // visited; FIRST sets hold terminals only, so nothing new is a
            // non-terminal anyway.
            const int before = set.Count();
            for (int i = 0; i < before; ++i) {
                const int x = set[i];
                // On purpose: FOLLOWL skips X == A, FOLLOWR does not.
                if (!IsNonterminal(x) || (nullableOnly && x == a))
                    continue;
                for (int t : first[x])
                    if (t != 0)
                        set.Add(t);
            }
        }
        set.Filter([this](int c) { return c < firstNonterminal; });
        if (!budget.Take(SetBudget::Size(set))) {
            sets.assign(static_cast<std::size_t>(lastCode) + 1, CodeList());
            RefuseSets(label);
            return false;
        }
        host().yield();
        if (!InProcess())
            return false;
    }
    return true;
}

void Grammar::FindFollowL()
{
    if (!GetFlag(GrammarFlag::FollowBDone) || GetFlag(GrammarFlag::FollowLDone))
        return;
    SetFlag(GrammarFlag::FollowLDone, false);
    followLReport = NotAnalyzed;
    // On purpose: only the nullable non-terminals take in FIRST of their
    // members; LL(1) asks for FOLLOW only where a non-terminal may vanish.
    if (!ExpandFollowSets(followL, true, QStringLiteral("FOLLOWL sets")))
        return;
    SetFlag(GrammarFlag::FollowLDone, true);
    followLReport.clear();
}

void Grammar::FindFollowR()
{
    if (!GetFlag(GrammarFlag::FollowBDone) || GetFlag(GrammarFlag::FollowRDone))
        return;
    SetFlag(GrammarFlag::FollowRDone, false);
    followRReport = NotAnalyzed;
    // On purpose: every non-terminal, X == A included; SLR(1) reduces on the
    // follow set of every left side.
    if (!ExpandFollowSets(followR, false, QStringLiteral("FOLLOWR sets")))
        return;
    SetFlag(GrammarFlag::FollowRDone, true);
    followRReport.clear();
}
