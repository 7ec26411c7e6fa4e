/// \file
/// The precedence step of the analysis run: the preconditions both precedence
/// methods share (no empty rules, no equal right parts), the note on adjacent
/// non-terminals for operator precedence, and the left and right sets of every
/// non-terminal — the symbols that can begin and end what it derives.
#include "grammar/Grammar.h"
#include "grammar/Texts.h"

namespace {
const QString kNotSimple = QStringLiteral("This Grammar Is Not Simple Precedence One.");
const QString kNotOperator = QStringLiteral("This Grammar Is Not Operator Precedence One.");
} // namespace

void Grammar::FindLeftAndRightSets()
{
    if (!Parsed())
        return;  // no rules to look at: the state stays as Clear left it
    PrecedenceState& p = precedence;
    p.sprPossible = p.oprPossible = true;
    p.sprTableBuilt = p.oprTableBuilt = false;
    // The sets of an earlier run go too, so that a stop below leaves nothing done.
    p.sprSetsDone = p.oprSetsDone = p.sprSetsValid = p.oprSetsValid = false;
    p.sprText = p.oprText = NotAnalyzed;
    SetInProcess(true);

    // Empty rules are tested first: only one reason is ever reported.
    QString reason;
    if (GetFlag(GrammarFlag::HasEmptyRule))
        reason = QStringLiteral("Empty Rules Are Not Allowed.");
    else if (!GetFlag(GrammarFlag::NoEqualRightSides))
        reason = QStringLiteral("Rules with Equal Right Parts Are Not Allowed.");
    if (!reason.isEmpty()) {
        p.sprPossible = p.oprPossible = false;
        p.sprSetsDone = p.oprSetsDone = true;  // nothing more to compute
        p.sprText = kNotSimple + kEol + reason;
        p.oprText = kNotOperator + kEol + reason;
        return;
    }

    // Adjacent non-terminals: operator precedence forbids them. The finding goes
    // only into the text; the operator-precedence analyser decides by its own checks.
    for (int r = 1; r <= ruleCount; ++r) {
        const std::vector<int>& rule = rules[r];
        for (std::size_t i = 2; i < rule.size(); ++i) {
            if (IsNonterminal(rule[i - 1]) && IsNonterminal(rule[i])) {
                p.oprText = kNotOperator + kEol + QStringLiteral("Adjacent Non-Terminals Are Not Allowed.");
                p.oprPossible = true;  // on purpose true, not false: the analyser's checks decide
            }
            host().yield();
            if (!InProcess())
                return;
        }
    }

    // Left and right sets: the first and last right-part symbol of every rule,
    // then closed over the non-terminal members.
    const std::size_t codes = static_cast<std::size_t>(lastCode) + 1;
    leftSet.assign(codes, CodeList());
    rightSet.assign(codes, CodeList());
    p.sprSetsDone = p.sprSetsValid = false;
    for (int r = 1; r <= ruleCount; ++r) {
        const std::vector<int>& rule = rules[r];
        leftSet[rule[0]].Add(rule[1]);
        rightSet[rule[0]].Add(rule.back());
    }
    SetBudget budget = SetAllowance({&leftSet, &rightSet});
    for (const auto* sets : {&leftSet, &rightSet})
        for (const CodeList& set : *sets)
            budget.Take(SetBudget::Size(set));
    if (budget.Spent() || !ClosePrecedenceSets(leftSet, budget) || !ClosePrecedenceSets(rightSet, budget)) {
        if (budget.Spent()) {
            leftSet.assign(codes, CodeList());
            rightSet.assign(codes, CodeList());
            RefuseSets(QStringLiteral("precedence left and right sets"));
        }
        return;
    }

    p.sprSetsDone = p.sprSetsValid = true;
    // A non-terminal without rules has empty sets; the first one found refuses the grammar.
    for (int a = firstNonterminal; a <= lastCode; ++a) {
        if (leftSet[a].IsEmpty() || rightSet[a].IsEmpty()) {
            p.sprText = kNotSimple;
            p.sprSetsValid = false;
            break;
        }
    }
}

bool Grammar::ClosePrecedenceSets(std::vector<CodeList>& sets, SetBudget& budget)
{
    // The closure over non-terminal members: every symbol that begins (ends) a
    // member's derivations joins the set. Walking each set's own list, and adding
    // the direct members of each non-terminal met, reaches every member in one
    // sweep; passes that re-walk whole sets until nothing changes give the same
    // sets but take cubic time on long chains of non-terminals. The order of the
    // members shows nowhere: a relation cell collects its codes in the order of
    // the rules and steps that enter them, whatever the order of the sets.
    const Indexed<CodeList> direct(sets);
    for (int a = firstNonterminal; a <= lastCode; ++a) {
        CodeList& set = sets[a];
        const std::int64_t before = SetBudget::Size(set);
        for (int k = 0; k < set.Count(); ++k) {
            const int member = set[k];
            if (member != a && IsNonterminal(member))
                set.Merge(direct[member]);
        }
        if (!budget.Take(SetBudget::Size(set) - before))
            return false;
        host().yield();
        if (!InProcess())
            return false;
    }
    return true;
}
