/// \file
/// The table of views and the analyser of each.
#include "session/Views.h"

#include "analysers/Ana06LL.h"
#include "analysers/Ana07SLR.h"
#include "analysers/Ana08LALR.h"
#include "analysers/Ana09LR.h"
#include "analysers/Ana10SPR.h"
#include "analysers/Ana11OPR.h"

#include <array>

namespace {

template <typename Analyser>
std::unique_ptr<IAnazer> Make(Model& model)
{
    return std::make_unique<Analyser>(model);
}

QString Rules(Grammar& g) { return g.CommentedRules(); }
// After Analyse the grammar view lists the numbered rules, so that "r6" in a
// table can be looked up; before a parse it shows nothing.
QString RulesShown(Grammar& g) { return g.GetFlag(GrammarFlag::Parsed) ? g.CommentedRules() : QString(); }
QString Symbols(Grammar& g) { return g.GetFlag(GrammarFlag::Parsed) ? g.CommentedSymbolsDisplay() : NotAnalyzed; }
QString SymbolsExported(Grammar& g) { return g.CommentedSymbolsDisplay(); }
QString First(Grammar& g) { return g.CommentedFirst(); }
QString Basis(Grammar& g) { return g.CommentedBasis(); }
QString FollowL(Grammar& g) { return g.CommentedFollowL(); }
QString FollowR(Grammar& g) { return g.CommentedFollowR(); }

constexpr std::array<ViewInfo, View::Count> kViews{{
    {View::Grammar, ViewFamily::Rules, "grammar", "G", "Grammar", "", "-0-grammar.txt", -1, &RulesShown, &Rules, nullptr, nullptr, nullptr},
    {View::Symbols, ViewFamily::Report, "symbols", "Sy", "Symbols", "", "-1-symbols.txt", -1, &Symbols, &SymbolsExported, nullptr, nullptr, nullptr},
    {View::First, ViewFamily::Report, "first", "Fi", "FIRST", "", "-2-first.txt", -1, &First, &First, nullptr, nullptr, nullptr},
    // On purpose: the basis export carries the FIRST report, as it always has.
    {View::Basis, ViewFamily::Report, "basis", "Ba", "Basis (FOLLOWB)", "", "-3-basis.txt", -1, &Basis, &First, nullptr, nullptr,
     nullptr},
    {View::FollowL, ViewFamily::Report, "followl", "FL", "FOLLOWL", "", "-4-followl.txt", -1, &FollowL, &FollowL, nullptr, nullptr,
     nullptr},
    {View::FollowR, ViewFamily::Report, "followr", "FR", "FOLLOWR", "", "-5-followr.txt", -1, &FollowR, &FollowR, nullptr, nullptr,
     nullptr},
    {View::LL, ViewFamily::LL, "ll", "LL", "LL(1) Analysis", "LL(1)", "-6-LL-table.txt", GrammarFlag::AnalysedLL, nullptr, nullptr,
     &Make<Ana06LL>, nullptr, nullptr},
    {View::SLR, ViewFamily::LR, "slr", "SLR", "SLR(1) Analysis", "SLR(1)", "-7-SLR-table.txt",
     GrammarFlag::AnalysedSLR, nullptr, nullptr, &Make<Ana07SLR>, &Model::slr, nullptr},
    {View::LALR, ViewFamily::LR, "lalr", "LA", "LALR(1) Analysis", "LALR(1)", "-8-LALR-table.txt",
     GrammarFlag::AnalysedLALR, nullptr, nullptr, &Make<Ana08LALR>, &Model::lalr, nullptr},
    {View::LR, ViewFamily::LR, "lr", "LR", "LR(1) Analysis", "LR(1)", "-9-LR-table.txt", GrammarFlag::AnalysedLR, nullptr, nullptr,
     &Make<Ana09LR>, &Model::lr, nullptr},
    {View::SPR, ViewFamily::Precedence, "spr", "SP", "Simple Precedence Analysis", "simple precedence",
     "-10-SPR-table.txt", GrammarFlag::AnalysedSPR, nullptr, nullptr, &Make<Ana10SPR>, nullptr, &Model::spr},
    {View::OPR, ViewFamily::Precedence, "opr", "OP", "Operator Precedence Analysis", "operator precedence",
     "-11-OPR-table.txt", GrammarFlag::AnalysedOPR, nullptr, nullptr, &Make<Ana11OPR>, nullptr, &Model::opr},
}};

constexpr bool NumberedInOrder()
{
    for (int v = 0; v < View::Count; ++v)
        if (kViews[v].number != v)
            return false;
    return true;
}
static_assert(NumberedInOrder(), "each row of the view table sits at its own number");
// The compiled grammar file keeps the analysed flags at these numbers, and the
// reset of results clears AnalysedLL..AnalysedOPR as one run.
static_assert(kViews[View::LL].analysedFlag == GrammarFlag::AnalysedLL);
static_assert(kViews[View::OPR].analysedFlag == GrammarFlag::AnalysedOPR);
static_assert(GrammarFlag::AnalysedOPR - GrammarFlag::AnalysedLL == View::OPR - View::LL);

} // namespace

std::span<const ViewInfo> Views()
{
    return kViews;
}

const ViewInfo& ViewOf(int view)
{
    return kViews[view];
}

const ViewInfo* FindView(int view)
{
    return view >= 0 && view < View::Count ? &kViews[static_cast<std::size_t>(view)] : nullptr;
}

int ParseView(const QString& text)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    if (ok)
        return number >= 0 && number < View::Count ? number : -1;
    for (const ViewInfo& info : kViews)
        if (text.compare(QLatin1String(info.name), Qt::CaseInsensitive) == 0)
            return info.number;
    return -1;
}

SavedStatus* SavedStatusOf(Model& model, int view)
{
    const ViewInfo* info = FindView(view);
    if (!info)
        return nullptr;
    if (info->lrResults)
        return &(model.*info->lrResults).saved;
    if (info->precedenceResults)
        return &(model.*info->precedenceResults).saved;
    return info->family == ViewFamily::LL ? &model.ll.saved : nullptr;
}

bool IsAnalysed(const Model& model, int view)
{
    const ViewInfo* info = FindView(view);
    return info && info->analysedFlag >= 0 && model.grammar.GetFlag(info->analysedFlag);
}

const LrResults* LrResultsOf(const Model& model, int view)
{
    const ViewInfo* info = FindView(view);
    return info && info->lrResults ? &(model.*info->lrResults) : nullptr;
}

const PrecedenceResults* PrecedenceResultsOf(const Model& model, int view)
{
    const ViewInfo* info = FindView(view);
    return info && info->precedenceResults ? &(model.*info->precedenceResults) : nullptr;
}

std::vector<Conflict> ConflictsOf(const Model& model, int view)
{
    if (!IsAnalysed(model, view))
        return {};
    if (view == View::LL)
        return LLConflicts(model.ll.synta);
    if (const LrResults* lr = LrResultsOf(model, view))
        return lr->conflicts;
    if (const PrecedenceResults* p = PrecedenceResultsOf(model, view))
        return PrecedenceConflicts(p->synta, view == View::SPR ? ConflictMethod::SimplePrecedence
                                                               : ConflictMethod::OperatorPrecedence);
    return {};
}
