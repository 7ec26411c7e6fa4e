/// \file
/// The check that a restored state belongs to the grammar text it was opened
/// with and holds together, so that nothing shown comes from another text or
/// from a damaged file.
#include "session/RestoredState.h"

#include "analysers/Ana06LL.h"
#include "analysers/Ana10SPR.h"
#include "analysers/Ana11OPR.h"
#include "analysers/LrAutomaton.h"
#include "session/CompiledGrammar.h"
#include "session/RestoredTables.h"
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
    return g.Parsed() && g.symbolNames == p.symbolNames && g.rules == p.rules && g.terminalNames == p.terminalNames
        && g.nonterminalNames == p.nonterminalNames && g.ruleCount == p.ruleCount && g.lastCode == p.lastCode
        && g.terminalCount == p.terminalCount && g.firstNonterminal == p.firstNonterminal && g.goal == p.goal
        && g.ruleIsEmpty == p.ruleIsEmpty && g.hasEmptyRule == p.hasEmptyRule && g.nullable == p.nullable
        && g.leftRecursive == p.leftRecursive && g.ruleNullable == p.ruleNullable
        && g.maxRuleLength == p.maxRuleLength && g.maxTerminalName == p.maxTerminalName
        && g.maxNonterminalName == p.maxNonterminalName && g.maxName == p.maxName && g.first == p.first
        && g.firstOfRule == p.firstOfRule && g.directFirst == p.directFirst && g.llRejection == p.llRejection;
}

bool SamePrecedenceFlags(const PrecedenceState& a, const PrecedenceState& b)
{
    return a.sprPossible == b.sprPossible && a.oprPossible == b.oprPossible && a.sprSetsDone == b.sprSetsDone
        && a.oprSetsDone == b.oprSetsDone && a.sprSetsValid == b.sprSetsValid && a.oprSetsValid == b.oprSetsValid
        && a.sprTableBuilt == b.sprTableBuilt && a.oprTableBuilt == b.oprTableBuilt;
}

/// A kept text equals the one worked out again, or is empty (then it is taken).
bool TakeText(QString& kept, const QString& worked)
{
    if (!kept.isEmpty() && kept != worked)
        return false;
    kept = worked;
    return true;
}

bool SameMatrix(const PrecedenceMatrix& a, const PrecedenceMatrix& b)
{
    return a.Size() == b.Size() && (a.Size() == 0 || (a.RelationCodes() == b.RelationCodes() && a.RawCells() == b.RawCells()));
}

/// The grammar's sets and the analyses the flags say have run, worked out
/// again from the text where that is cheap (the follow sets, the precedence
/// step, LL(1) and the precedence matrices) and compared; the LR tables are
/// checked against the grammar without building them again. What the file
/// does not vouch for is taken from the work here, as the next Analyse would
/// compute it. False when anything kept differs.
bool AnalysesHold(Workspace& ws, Model& reference)
{
    Grammar& g = ws.grammar;
    Grammar& p = reference.grammar;
    // As the analysis run readies a grammar.
    p.SetInProcess(true);
    p.FindFollowB();
    p.FindFollowL();
    p.FindFollowR();
    p.FindLeftAndRightSets();
    if (!p.GetFlag(GrammarFlag::FollowRDone) || !p.GetFlag(GrammarFlag::FollowLDone))
        return false;
    const std::tuple<int, std::vector<CodeList>*, const std::vector<CodeList>*> follows[] = {
        {GrammarFlag::FollowBDone, &g.followB, &p.followB},
        {GrammarFlag::FollowLDone, &g.followL, &p.followL},
        {GrammarFlag::FollowRDone, &g.followR, &p.followR}};
    for (const auto& [flag, kept, worked] : follows)
        if (g.GetFlag(flag) && *kept != *worked)
            return false;

    // The precedence step and matrices. A matrix made with other relation codes
    // than the settings give now is put aside, as a change of the codes would:
    // the next Analyse makes it again.
    PrecedenceState& kept = g.precedence;
    const bool stepRan = kept.sprSetsDone || kept.oprSetsDone || kept.sprPossible || kept.oprPossible
                      || kept.sprText != NotAnalyzed || kept.oprText != NotAnalyzed;
    const Settings& now = ws.settings;
    reference.settings.pSignLT = now.pSignLT;
    reference.settings.pSignEQ = now.pSignEQ;
    reference.settings.pSignGT = now.pSignGT;
    const std::array<int, 3> codes{now.pSignLT, now.pSignEQ, now.pSignGT};
    if (g.GetFlag(GrammarFlag::AnalysedSPR) && ws.spr.synta.RelationCodes() != codes) {
        g.SetFlag(GrammarFlag::AnalysedSPR, false);
        kept.sprPossible = p.precedence.sprPossible;
        kept.sprTableBuilt = p.precedence.sprTableBuilt;
        kept.sprText = p.precedence.sprText;
    }
    if (g.GetFlag(GrammarFlag::AnalysedOPR) && ws.opr.synta.RelationCodes() != codes) {
        g.SetFlag(GrammarFlag::AnalysedOPR, false);
        kept.oprPossible = p.precedence.oprPossible;
        kept.oprSetsDone = p.precedence.oprSetsDone;
        kept.oprSetsValid = p.precedence.oprSetsValid;
        kept.oprTableBuilt = p.precedence.oprTableBuilt;
        kept.oprText = p.precedence.oprText;
        g.leftTermSet.clear();
        g.rightTermSet.clear();
    }
    for (const auto& [results, flag] : {std::pair{&ws.spr, GrammarFlag::AnalysedSPR}, {&ws.opr, GrammarFlag::AnalysedOPR}})
        if (!g.GetFlag(flag))
            results->synta.Clear();
    if (g.GetFlag(GrammarFlag::AnalysedSPR)) {
        Ana10SPR spr(reference);
        spr.SetInProcess(true);
        spr.Analyze();
    }
    if (g.GetFlag(GrammarFlag::AnalysedOPR) || (kept.oprSetsDone && !p.precedence.oprSetsDone)) {
        Ana11OPR opr(reference);
        opr.SetInProcess(true);
        opr.Analyze();
    }
    for (int flag : {GrammarFlag::AnalysedSPR, GrammarFlag::AnalysedOPR})
        if (g.GetFlag(flag) != p.GetFlag(flag))
            return false;
    if (stepRan) {
        if (!SamePrecedenceFlags(kept, p.precedence) || !TakeText(kept.sprText, p.precedence.sprText)
            || !TakeText(kept.oprText, p.precedence.oprText) || g.leftSet != p.leftSet || g.rightSet != p.rightSet
            || g.leftTermSet != p.leftTermSet || g.rightTermSet != p.rightTermSet)
            return false;
        if (!SameMatrix(ws.spr.synta, reference.spr.synta) || !SameMatrix(ws.opr.synta, reference.opr.synta))
            return false;
    } else if (g.GetFlag(GrammarFlag::AnalysedSPR) || g.GetFlag(GrammarFlag::AnalysedOPR) || !g.leftSet.empty()
               || !g.rightSet.empty() || !g.leftTermSet.empty() || !g.rightTermSet.empty()) {
        return false;
    }

    // LL(1): the table and its verdict; the listing is the one worked out.
    if (g.GetFlag(GrammarFlag::AnalysedLL)) {
        Ana06LL ll(reference);
        ll.SetInProcess(true);
        ll.Analyze();
        if (!p.GetFlag(GrammarFlag::AnalysedLL) || !(ws.ll.synta == reference.ll.synta))
            return false;
        ws.ll.text = reference.ll.text;
    } else {
        ws.ll.synta.Clear();
        ws.ll.text = NotAnalyzed;
    }
    if (g.GetFlag(GrammarFlag::LLPermitted) != p.GetFlag(GrammarFlag::LLPermitted))
        return false;

    // The LR tables, and the verdict of each: that it has no conflict.
    const LrGrammar lg(p);
    const std::tuple<LrResults*, ConflictMethod, int, int> lrs[] = {
        {&ws.slr, ConflictMethod::SLR, GrammarFlag::AnalysedSLR, GrammarFlag::SLRVerdict},
        {&ws.lalr, ConflictMethod::LALR, GrammarFlag::AnalysedLALR, GrammarFlag::LALRVerdict},
        {&ws.lr, ConflictMethod::LR, GrammarFlag::AnalysedLR, GrammarFlag::LRVerdict}};
    for (const auto& [results, method, flag, verdict] : lrs) {
        if (!g.GetFlag(flag)) {
            const SavedStatus saved = results->saved;
            results->Reset();
            results->saved = saved;
            if (g.GetFlag(verdict))
                return false;
            continue;
        }
        for (const Conflict& c : results->conflicts)
            if (c.row < 0)
                return false;  // a line of another shape
        if (g.GetFlag(verdict) != results->conflicts.empty() || !LrTableHolds(*results, lg, method, p.followR))
            return false;
        // Both listings are built from the tables when first shown.
        results->tableText.clear();
        results->itemText.clear();
    }

    // The sets as the analysis run leaves them; the reports are built from them when first shown.
    g.followB = p.followB;
    g.followL = p.followL;
    g.followR = p.followR;
    for (int flag : {GrammarFlag::FollowBDone, GrammarFlag::FollowLDone, GrammarFlag::FollowRDone})
        g.SetFlag(flag, true);
    if (!stepRan) {
        g.precedence = p.precedence;
        g.leftSet = p.leftSet;
        g.rightSet = p.rightSet;
    }
    g.symbolListing = p.symbolListing;
    g.firstReport.clear();
    g.followBReport.clear();
    g.followLReport.clear();
    g.followRReport.clear();
    return true;
}

} // namespace

bool CheckRestoredState(Workspace& workspace, const QString& text)
{
    Model reference;  // a silent host: the caller's own parse shows any message
    const bool sameText = reference.grammar.SetText(text) && SameParse(workspace.grammar, reference.grammar);
    if (sameText && AnalysesHold(workspace, reference))
        return true;
    workspace.grammar.Clear();
    workspace.ResetResults();
    // A companion of another text is no error: the grammar was edited elsewhere.
    if (sameText)
        ReportFileError(workspace, FileErrorNumber::SubscriptOutOfRange, QStringLiteral("TKCRead"));
    return false;
}
