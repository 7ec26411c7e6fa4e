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

namespace {

QString Plural(int n, const char* one, const char* more)
{
    return QString::number(n) + QLatin1Char(' ') + QString::fromLatin1(n == 1 ? one : more);
}

/// "12 states" or "table 9x9"; in the overview's columns as summary has them ("1 states").
QString TableSize(const MethodVerdict& v, bool column)
{
    if (!ViewOf(v.view).lrResults)
        return QStringLiteral("table %1x%2").arg(v.rows).arg(v.columns);
    return column ? QStringLiteral("%1 states").arg(v.states) : Plural(v.states, "state", "states");
}

} // namespace

QString VerdictLine(const MethodVerdict& v)
{
    if (!v.HasVerdict())
        return QString();
    const QString method = QString::fromLatin1(ViewOf(v.view).method);
    QString line = method + QStringLiteral(": the grammar is ") + (v.passes ? QString() : QStringLiteral("not "))
                 + method;
    QString details;
    if (v.analysed)
        details = TableSize(v, false) + QStringLiteral(", ") + Plural(v.conflicts, "conflict", "conflicts");
    else
        details = RefusalReason(v.refusal);
    if (!details.isEmpty())
        line += QStringLiteral(" \u2014 ") + details;
    return line;
}

QString VerdictText(const MethodVerdict& v)
{
    const QString method = QString::fromLatin1(ViewOf(v.view).method);
    if (!v.HasVerdict())
        return QStringLiteral("not analysed");
    if (v.refusal == Refusal::LeftRecursion)
        return QStringLiteral("not ") + method + QStringLiteral(": ") + RefusalReason(v.refusal);
    return v.passes ? method : QStringLiteral("not ") + method;
}

QString ReasonColumn(const MethodVerdict& v)
{
    return v.analysed || v.refusal == Refusal::LeftRecursion ? QString() : RefusalReason(v.refusal);
}

QString SummaryLine(const MethodVerdict& v, const QString& elapsed)
{
    QString line = QString::fromLatin1(ViewOf(v.view).method).leftJustified(20) + VerdictText(v).leftJustified(28);
    if (v.analysed)
        line += TableSize(v, true).leftJustified(16) + QStringLiteral("%1 conflicts").arg(v.conflicts).leftJustified(16);
    else
        line += ReasonColumn(v).leftJustified(32);
    line += elapsed;
    while (line.endsWith(QLatin1Char(' ')))
        line.chop(1);
    return line + QLatin1Char('\n');
}

QString OverviewText(Model& model)
{
    QString text;
    for (const ViewInfo& info : Views()) {
        if (!info.IsAnalyser())
            continue;
        const SavedStatus* saved = SavedStatusOf(model, info.number);
        text += SummaryLine(Judge(model, info.number), saved ? saved->elapsed : QString());
    }
    return text;
}
