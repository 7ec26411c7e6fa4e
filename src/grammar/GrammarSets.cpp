/// \file
/// Grammar sets computed as part of the parse: the nullable marks, FIRST of
/// every non-terminal and FIRST of every rule.
#include "grammar/Grammar.h"

#include "grammar/Digraph.h"

void Grammar::ComputeFirstSets()
{
    SetFlag(GrammarFlag::FirstDone, false);
    firstReport = NotAnalyzed;
    const std::size_t codes = static_cast<std::size_t>(lastCode) + 1;
    const std::size_t ruleSlots = static_cast<std::size_t>(ruleCount) + 1;

    auto abandon = [&] {
        // A stopped computation leaves the arrays empty, so that the next run
        // starts again from nothing.
        nullable.assign(codes, 0);
        ruleNullable.assign(ruleSlots, 0);
        first.assign(codes, CodeList());
        firstOfRule.assign(ruleSlots, CodeList());
        directFirst.assign(codes, CodeList());
    };
    abandon();

    // Nullable marks: an empty rule marks its left side; a rule whose right side
    // is all nullable non-terminals marks its left side. Worklist over the
    // number of not-yet-nullable symbols left in each rule.
    Indexed<int> pending(ruleCount + 1, 0);
    Indexed<std::vector<int>> usedIn(lastCode + 1);
    std::vector<int> work;
    for (int r = 1; r <= ruleCount; ++r) {
        const std::vector<int>& rule = rules[r];
        if (ruleIsEmpty[r]) {
            work.push_back(r);
            continue;
        }
        bool hasTerminal = false;
        for (std::size_t i = 1; i < rule.size(); ++i)
            hasTerminal |= !IsNonterminal(rule[i]);
        if (hasTerminal) {
            pending[r] = -1;  // can never become nullable
            continue;
        }
        pending[r] = static_cast<int>(rule.size()) - 1;
        for (std::size_t i = 1; i < rule.size(); ++i)
            usedIn[rule[i]].push_back(r);
    }
    while (!work.empty()) {
        const int r = work.back();
        work.pop_back();
        ruleNullable[r] = 1;
        const int a = rules[r][0];
        if (nullable[a])
            continue;
        nullable[a] = 1;
        for (int user : usedIn[a])
            if (--pending[user] == 0)
                work.push_back(user);
    }

    // FIRST per non-terminal. Each rule contributes the terminals and the
    // non-terminals that stand behind a nullable prefix of its right side; FIRST(A)
    // is the union of the terminals reachable through those non-terminals, found
    // with the digraph algorithm so that cycles cost nothing extra.
    std::vector<CodeList> own(codes);
    for (int r = 1; r <= ruleCount; ++r) {
        const std::vector<int>& rule = rules[r];
        const std::size_t a = static_cast<std::size_t>(rule[0]);
        if (ruleIsEmpty[r])
            continue;
        for (std::size_t i = 1; i < rule.size(); ++i) {
            const int x = rule[i];
            if (!IsNonterminal(x)) {
                if (x != 0)
                    own[a].Add(x);
                break;
            }
            directFirst[a].Add(x);
            if (!nullable[x])
                break;
        }
        host().yield();
        if (!InProcess())
            return abandon();
    }
    first = std::move(own);
    // FIRST of a long chain of non-terminals holds every terminal below it: the
    // sets together grow with the square of the chain. They stop at the set limit.
    SetBudget budget = SetAllowance({&first, &firstOfRule, &directFirst});
    for (const auto* sets : {&first, &directFirst})
        for (const CodeList& set : *sets)
            budget.Take(SetBudget::Size(set));
    const bool complete = !budget.Spent()
                       && Digraph(
                              firstNonterminal, lastCode,
                              [&](int a) -> const std::vector<int>& { return directFirst[a].Items(); }, first,
                              [&] {
                                  host().yield();
                                  return InProcess();
                              },
                              budget);
    if (budget.Spent()) {
        abandon();
        return RefuseSets(QStringLiteral("FIRST sets"));
    }
    if (!complete)
        return abandon();

    // FIRST per rule: walk the right side; a terminal ends the walk, a
    // non-terminal adds its FIRST and ends it unless nullable; a nullable end adds 0.
    for (int r = 1; r <= ruleCount; ++r) {
        const std::vector<int>& rule = rules[r];
        CodeList& set = firstOfRule[r];
        if (ruleIsEmpty[r]) {
            set.Add(0);
            continue;
        }
        for (std::size_t i = 1; i < rule.size(); ++i) {
            const int x = rule[i];
            if (!IsNonterminal(x)) {
                set.Add(x);  // a terminal, or the end marker written as "."
                break;
            }
            set.Merge(first[x]);
            if (!nullable[x])
                break;
            if (i + 1 == rule.size())
                set.Add(0);
        }
        if (!budget.Take(SetBudget::Size(set))) {
            abandon();
            return RefuseSets(QStringLiteral("FIRST sets"));
        }
        if ((r & 1023) == 0) {
            host().yield();
            if (!InProcess())
                return abandon();
        }
    }

    SetFlag(GrammarFlag::FirstDone, true);
    firstReport.clear();  // built when first asked for
}
