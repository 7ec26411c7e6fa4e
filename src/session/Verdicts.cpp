/// \file
/// The verdicts of the methods, read off the kept results.
#include "session/Verdicts.h"

#include "session/Views.h"

QString RefusalReason(Refusal refusal)
{
    switch (refusal) {
    case Refusal::LeftRecursion:
        return QStringLiteral("left recursion");
    case Refusal::EmptyRules:
        return QStringLiteral("empty rules");
    case Refusal::EqualRightParts:
        return QStringLiteral("equal right parts");
    case Refusal::None:
    case Refusal::Precondition:
        break;
    }
    return QString();
}

namespace {

/// A precedence method that did not build its table has refused the grammar
/// when the precedence step has left it a result text; the reason is the first
/// precondition that fails, in the order the step tests them.
Refusal PrecedenceRefusal(const Grammar& g, bool simple)
{
    const QString& text = simple ? g.precedence.sprText : g.precedence.oprText;
    if (text == NotAnalyzed)
        return Refusal::None;
    if (g.GetFlag(GrammarFlag::HasEmptyRule))
        return Refusal::EmptyRules;
    if (!g.GetFlag(GrammarFlag::NoEqualRightSides))
        return Refusal::EqualRightParts;
    return Refusal::Precondition;
}

} // namespace

MethodVerdict Judge(const Model& model, int view)
{
    const ViewInfo& info = ViewOf(view);
    const Grammar& g = model.grammar;
    MethodVerdict v;
    v.view = view;
    v.analysed = IsAnalysed(model, view);
    if (!v.analysed) {
        // Left recursion stops LL(1) before a table exists: that is a verdict too.
        if (info.family == ViewFamily::LL && g.GetFlag(GrammarFlag::LeftRecursive))
            v.refusal = Refusal::LeftRecursion;
        else if (info.family == ViewFamily::Precedence)
            v.refusal = PrecedenceRefusal(g, view == View::SPR);
        return v;
    }
    if (info.family == ViewFamily::LL) {
        v.conflicts = model.ll.synta.ConflictCount();
        v.rows = model.ll.synta.Rows();
        v.columns = model.ll.synta.Columns();
    } else if (info.lrResults) {
        const LrResults& r = model.*info.lrResults;
        v.conflicts = static_cast<int>(r.conflicts.size());
        v.states = r.States();
    } else if (info.precedenceResults) {
        const PrecedenceMatrix& synta = (model.*info.precedenceResults).synta;
        v.conflicts = synta.ConflictCount();
        v.rows = v.columns = synta.Size();
    }
    v.passes = v.conflicts == 0;
    return v;
}
