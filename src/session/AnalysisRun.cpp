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

namespace {

/// AnalyzeGrammar without its closing ProcessStop.
bool PrepareGrammar(Workspace& workspace, AnalysisFrontend& frontend)
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
    return ready;
}

} // namespace

bool AnalyzeGrammar(Workspace& workspace, AnalysisFrontend& frontend)
{
    const bool ready = PrepareGrammar(workspace, frontend);
    ProcessStop(workspace, frontend);
    return ready;
}

namespace {

/// RunAnalyser without its closing save.
void RunTimed(Workspace& workspace, AnalysisFrontend& frontend, IAnazer& analyser)
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
}

} // namespace

void RunAnalyser(Workspace& workspace, AnalysisFrontend& frontend, IAnazer& analyser)
{
    RunTimed(workspace, frontend, analyser);
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
    // Preparation keeps the busy state for the analyser: its ProcessStop would otherwise grey Stop before the analyser starts.
    if (!workspace.grammar.Parsed() && !PrepareGrammar(workspace, frontend)) {
        ProcessStop(workspace, frontend);
        frontend.SetText2(QStringLiteral("Grammar isn't analized."));  // spelled so on purpose: the shipped text
        return;
    }
    workspace.current = MakeAnalyser(workspace, view);
    if (!workspace.current) {
        frontend.SetText2(NotAnalyzed);
        ProcessStop(workspace, frontend);
        return;
    }
    // The save after the run is the one below, which also keeps the listing and
    // the status texts: a save costs as much as a run on a large automaton.
    if (!IsAnalysed(workspace, view))
        RunTimed(workspace, frontend, *workspace.current);
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
