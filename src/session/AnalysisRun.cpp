/// \file
/// The analysis run.
#include "session/AnalysisRun.h"

#include "analysers/LrAnalyser.h"

#include <QElapsedTimer>
#include <new>

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
    try {
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
    } catch (const std::bad_alloc&) {
        // What was computed is partial: the grammar is parsed afresh next time.
        grammar.Clear();
        workspace.host().critical(kOutOfMemoryText);
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
    try {
        analyser.Analyze();
    } catch (const std::bad_alloc&) {
        // The run ends as a stopped one: no verdict, no table.
        analyser.SetInProcess(false);
        workspace.host().critical(kOutOfMemoryText);
    }
    workspace.SetStatus(StatusField::Elapsed, ElapsedText(timer.elapsed()));
    if (!analyser.InProcess())
        frontend.SetText2(QString());  // stopped by the user
    analyser.SetInProcess(false);
    ProcessStop(workspace, frontend);
    frontend.GrammarSave();
}

QString ViewReport(Workspace& workspace, int view)
{
    const ViewInfo* info = FindView(view);
    return info && info->shownReport ? info->shownReport(workspace.grammar) : QString();
}

std::unique_ptr<IAnazer> MakeAnalyser(Workspace& workspace, int view)
{
    const ViewInfo* info = FindView(view);
    return info && info->IsAnalyser() ? info->make(workspace) : nullptr;
}

QString ItemListing(Workspace& workspace, int view)
{
    const ViewInfo* info = FindView(view);
    if (!info || !info->HasItems())
        return QString();
    const std::unique_ptr<IAnazer> analyser = MakeAnalyser(workspace, view);
    return static_cast<LrAnalyser&>(*analyser).ItemDisplay();
}

void Analyse(Workspace& workspace, AnalysisFrontend& frontend, int view)
{
    const ViewInfo* info = FindView(view);
    if (!info)
        return;
    ProcessStart(workspace, frontend);
    frontend.SetText2(QString());
    if (!info->IsAnalyser()) {
        AnalyzeGrammar(workspace, frontend);
        if (info->shownReport)
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
    if (!IsAnalysed(workspace, view))
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
