/// \file
/// The analysis run.
#include "analysers/AnalysisRun.h"

#include <QElapsedTimer>

QString ElapsedText(qint64 milliseconds)
{
    const qint64 s = milliseconds / 1000;
    const QString ms = QStringLiteral("%1").arg(milliseconds % 1000, 3, 10, QLatin1Char('0'));
    auto two = [](qint64 v) { return QStringLiteral("%1").arg(v, 2, 10, QLatin1Char('0')); };
    if (s < 60)
        return QString::number(s) + QLatin1Char(',') + ms;
    if (s < 3600)
        return QString::number(s / 60) + QLatin1Char(':') + two(s % 60) + QLatin1Char(',') + ms;
    return QString::number(s / 3600) + QLatin1Char(':') + two(s / 60 % 60) + QLatin1Char(':') + two(s % 60)
         + QLatin1Char(',') + ms;
}

void ProcessStart(Workspace&, AnalysisFrontend& frontend)
{
    frontend.processing = true;
    frontend.OnProcessStart();
}

void ProcessStop(Workspace& workspace, AnalysisFrontend& frontend)
{
    frontend.processing = false;
    workspace.Stop();
    frontend.OnProcessStop();
}

bool AnalyzeGrammar(Workspace& workspace, AnalysisFrontend& frontend)
{
    Grammar& grammar = workspace.grammar;
    bool ready = false;
    if (grammar.SetText(frontend.GrammarText()) && grammar.Parsed()) {
        grammar.SetInProcess(true);
        grammar.FindFollowB();
        if (grammar.InProcess())
            grammar.FindFollowL();
        if (grammar.InProcess())
            grammar.FindFollowR();
        if (grammar.InProcess())
            grammar.FindLeftAndRightSets();
        if (grammar.InProcess()) {
            grammar.SetInProcess(false);
            ready = true;
        }
    }
    frontend.GrammarSave();
    ProcessStop(workspace, frontend);
    return ready;
}

void RunAnalyser(Workspace& workspace, AnalysisFrontend& frontend, IAnazer& analyser)
{
    workspace.SetStatus(StatusField::State, QString());
    analyser.SetInProcess(true);
    workspace.SetStatus(StatusField::Elapsed, QString());
    QElapsedTimer timer;
    timer.start();
    analyser.Analyze();
    workspace.SetStatus(StatusField::Elapsed, ElapsedText(timer.elapsed()));
    if (!analyser.InProcess())
        frontend.SetText2(QString());  // stopped by the user
    analyser.SetInProcess(false);
    ProcessStop(workspace, frontend);
    frontend.GrammarSave();
}

QString ViewReport(Workspace& workspace, int view)
{
    Grammar& g = workspace.grammar;
    switch (view) {
    case View::Symbols:
        return g.GetFlag(GrammarFlag::Parsed) ? g.CommentedSymbolsDisplay() : NotAnalyzed;
    case View::First:
        return g.CommentedFirst();
    case View::Basis:
        return g.CommentedBasis();
    case View::FollowL:
        return g.CommentedFollowL();
    case View::FollowR:
        return g.CommentedFollowR();
    default:
        return QString();
    }
}

SavedStatus* SavedStatusOf(Workspace& workspace, int view)
{
    switch (view) {
    case View::LL:
        return &workspace.ll.saved;
    case View::SLR:
        return &workspace.slr.saved;
    case View::LALR:
        return &workspace.lalr.saved;
    case View::LR:
        return &workspace.lr.saved;
    case View::SPR:
        return &workspace.spr.saved;
    case View::OPR:
        return &workspace.opr.saved;
    default:
        return nullptr;
    }
}

void Analyse(Workspace& workspace, AnalysisFrontend& frontend, int view)
{
    if (view < 0 || view >= View::Count)
        return;
    ProcessStart(workspace, frontend);
    frontend.SetText2(QString());
    if (view == View::Grammar) {
        AnalyzeGrammar(workspace, frontend);
        return;
    }
    if (view <= View::FollowR) {
        AnalyzeGrammar(workspace, frontend);
        frontend.SetText2(ViewReport(workspace, view));
        return;
    }
    if (!workspace.grammar.Parsed() && !AnalyzeGrammar(workspace, frontend)) {
        frontend.SetText2(QStringLiteral("Grammar isn't analized."));  // spelled so on purpose: the shipped text
        return;
    }
    workspace.current = MakeAnalyser(workspace, view);
    if (!workspace.current) {
        frontend.SetText2(NotAnalyzed);
        ProcessStop(workspace, frontend);
        return;
    }
    if (!workspace.grammar.GetFlag(view))
        RunAnalyser(workspace, frontend, *workspace.current);
    frontend.SetText2(frontend.WantsOutput() ? workspace.current->ExportDisplay() : QString());
    if (SavedStatus* saved = SavedStatusOf(workspace, view)) {
        saved->state = workspace.Status(StatusField::State);
        saved->pass = workspace.Status(StatusField::Pass);
        saved->elapsed = workspace.Status(StatusField::Elapsed);
    }
    frontend.GrammarSave();
    // Kept results are shown without a run; the busy state ends here then.
    if (frontend.processing)
        ProcessStop(workspace, frontend);
}
