/// \file
/// The check that a restored state belongs to the grammar text it was opened
/// with and holds together, so that nothing shown comes from another text.
#include "session/RestoredState.h"

#include "analysers/LrItems.h"
#include "session/Workspace.h"

namespace {

/// The grammar part restored is what a parse of the text gives. The parse is
/// the only writer of these fields and of flags 0, 2, 22, 23 and 24.
bool SameParse(const Grammar& g, const Grammar& p)
{
    for (int flag : {GrammarFlag::Parsed, GrammarFlag::FirstDone, GrammarFlag::NoEqualRightSides,
                     GrammarFlag::HasEmptyRule, GrammarFlag::LeftRecursive})
        if (g.GetFlag(flag) != p.GetFlag(flag))
            return false;
    // An empty symbol listing was too long to keep: the caller takes the parse's.
    return g.Parsed() && g.symbolNames == p.symbolNames && g.rules == p.rules && g.terminalNames == p.terminalNames
        && g.nonterminalNames == p.nonterminalNames && g.ruleCount == p.ruleCount && g.lastCode == p.lastCode
        && g.terminalCount == p.terminalCount && g.firstNonterminal == p.firstNonterminal && g.goal == p.goal
        && g.ruleIsEmpty == p.ruleIsEmpty && g.hasEmptyRule == p.hasEmptyRule && g.nullable == p.nullable
        && g.leftRecursive == p.leftRecursive && g.ruleNullable == p.ruleNullable
        && g.maxRuleLength == p.maxRuleLength && g.maxTerminalName == p.maxTerminalName
        && g.maxNonterminalName == p.maxNonterminalName && g.maxName == p.maxName && g.first == p.first
        && g.firstOfRule == p.firstOfRule && g.directFirst == p.directFirst && g.llRejection == p.llRejection
        && (g.symbolListing == p.symbolListing || g.symbolListing.isEmpty());
}

/// Every member of every set is a code of the grammar; a set array that its
/// flag says is computed has one set per code.
bool SetsWithin(const std::vector<CodeList>& sets, const Grammar& g, bool computed)
{
    const std::size_t codes = static_cast<std::size_t>(g.lastCode) + 1;
    if (sets.size() > codes || (computed && sets.size() != codes))
        return false;
    for (const CodeList& set : sets)
        for (int code : set)
            if (code > g.lastCode)
                return false;
    return true;
}

bool LLTableWithin(const LLTable& table, const Grammar& g)
{
    if (table.Rows() != g.lastCode + 1 || table.Columns() != g.terminalCount + 1)
        return false;
    for (int row = 0; row < table.Rows(); ++row)
        for (int column = 0; column < table.Columns(); ++column) {
            const int first = table.First(row, column);
            if (first > g.ruleCount || first < LLTable::kPop || (first <= 0 && table.IsConflict(row, column)))
                return false;
            for (int r : table.Entries(row, column))
                if (r < 1 || r > g.ruleCount)
                    return false;
        }
    return true;
}

bool LrResultsWithin(const LrResults& r, const Grammar& g, int itemCount)
{
    const int states = r.rows.size();
    if (states == 0 || r.kernels.size() != states || r.accessing.size() != states
        || (!r.lookaheads.empty() && r.lookaheads.size() != states))
        return false;
    const int accept = states;
    for (int s = 0; s < states; ++s) {
        int previous = -1;
        for (const auto& [code, entry] : r.rows[s]) {
            if (code <= previous || code > g.lastCode || entry < -g.ruleCount || entry > accept)
                return false;
            previous = code;
        }
        for (int item : r.kernels[s])
            if (item < 0 || item >= itemCount)
                return false;
        if (r.accessing[s] < -2 || r.accessing[s] > g.lastCode)
            return false;
        if (r.lookaheads.empty())
            continue;
        for (const ItemLookahead& kept : r.lookaheads[s]) {
            if (kept.item < 0 || kept.item >= itemCount)
                return false;
            for (int t : kept.terminals)
                if (t < 0 || t > g.terminalCount)
                    return false;
        }
    }
    // Each refused reduce names a filled cell of a state on a terminal.
    for (const Conflict& c : r.conflicts)
        if (c.row < 0 || c.row >= states || c.column < 0 || c.column > g.terminalCount
            || c.rejected.size() != 1 || c.rejected[0] >= 0 || c.rejected[0] < -g.ruleCount || c.kept == 0)
            return false;
    return true;
}

/// The analysers' results lie within the grammar, for every analysis the
/// flags say has run. Takes the texts that were too long to keep from the
/// parse, or has their analysis run again.
bool AnalysesWithin(Workspace& ws, const Grammar& parsed)
{
    Grammar& g = ws.grammar;
    if (g.symbolListing.isEmpty())
        g.symbolListing = parsed.symbolListing;
    if (!SetsWithin(g.followB, g, g.GetFlag(GrammarFlag::FollowBDone))
        || !SetsWithin(g.followL, g, g.GetFlag(GrammarFlag::FollowLDone))
        || !SetsWithin(g.followR, g, g.GetFlag(GrammarFlag::FollowRDone)))
        return false;
    for (const auto* sets : {&g.leftSet, &g.rightSet, &g.leftTermSet, &g.rightTermSet})
        if (!SetsWithin(*sets, g, false))
            return false;

    if (g.GetFlag(GrammarFlag::AnalysedLL)) {
        if (!LLTableWithin(ws.ll.synta, g))
            return false;
        if (ws.ll.text.isEmpty()) {
            // Its listing was too long to keep: LL(1) runs again when asked for,
            // with the permission the parse gave (a conflict verdict clears it).
            ws.ll.Reset();
            g.SetFlag(GrammarFlag::AnalysedLL, false);
            g.SetFlagValue(GrammarFlag::LLPermitted, parsed.FlagValue(GrammarFlag::LLPermitted));
        }
    }
    const int itemCount = LrItems(g).Count();
    const std::tuple<const LrResults*, int, int> lrs[] = {{&ws.slr, GrammarFlag::AnalysedSLR, GrammarFlag::SLRVerdict},
                                                    {&ws.lalr, GrammarFlag::AnalysedLALR, GrammarFlag::LALRVerdict},
                                                    {&ws.lr, GrammarFlag::AnalysedLR, GrammarFlag::LRVerdict}};
    // A table's verdict is that it has no conflict.
    for (const auto& [results, flag, verdict] : lrs)
        if (g.GetFlag(flag)
            && (!LrResultsWithin(*results, g, itemCount) || g.GetFlag(verdict) != results->conflicts.empty()))
            return false;
    return true;
}

} // namespace

bool CheckRestoredState(Workspace& workspace, const QString& text)
{
    Grammar parsed;  // a silent host: the caller's own parse shows any message
    if (parsed.SetText(text) && SameParse(workspace.grammar, parsed) && AnalysesWithin(workspace, parsed))
        return true;
    workspace.grammar.Clear();
    workspace.ResetResults();
    return false;
}
