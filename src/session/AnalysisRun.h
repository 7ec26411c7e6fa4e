/// \file
/// The analysis run: readying the grammar (AnalyzeGrammar), the Analyse command
/// for the twelve views, running one analyser with its timing, and the elapsed
/// text. The window (or trelk-cli) supplies what only it has through an
/// AnalysisFrontend: the grammar box, the output box, the busy state and the
/// save handler.
#pragma once

#include "grammar/Texts.h"
#include "session/Views.h"
#include "session/Workspace.h"

#include <QString>
#include <memory>

/// What the analysis run asks of the window that drives it.
class AnalysisFrontend {
public:
    virtual ~AnalysisFrontend() = default;
    /// The text of the grammar box, lines separated by CR LF.
    virtual QString GrammarText() = 0;
    /// Fills the output box and shows its beginning.
    virtual void SetText2(const QString& text) = 0;
    /// Busy pointer on, Stop enabled.
    virtual void OnProcessStart() {}
    /// Default pointer back, Stop disabled.
    virtual void OnProcessStop() {}
    /// The save handler behind the File menu's save entry.
    virtual void GrammarSave() {}
    /// False for a caller that never looks at the output box after an analyser
    /// run (the listing of a large automaton is costly to build).
    virtual bool WantsOutput() const { return true; }

    /// The window's in-process flag: while set, the Analyse command does nothing.
    bool processing = false;
};

/// A new analyser object for views 6..11 (null for other views).
std::unique_ptr<IAnazer> MakeAnalyser(Workspace& workspace, int view);
/// The text the output box shows for an LR view with its item sets asked
/// for: the item-set listing; "" for other views.
QString ItemListing(Workspace& workspace, int view);

/// Sets the busy state; the window's own effects go through the frontend.
void ProcessStart(Workspace& workspace, AnalysisFrontend& frontend);
/// Clears the busy state and performs the Stop command.
void ProcessStop(Workspace& workspace, AnalysisFrontend& frontend);

/// Parses the grammar box and computes the follow sets and the left and right
/// sets of the precedence methods; false when the parse failed or the user
/// stopped. Ends with the save handler and ProcessStop.
bool AnalyzeGrammar(Workspace& workspace, AnalysisFrontend& frontend);

/// Runs one analyser: timing, the elapsed label, the stop check, ProcessStop and
/// the save handler.
void RunAnalyser(Workspace& workspace, AnalysisFrontend& frontend, IAnazer& analyser);

/// The Analyse command for a view (0..11).
void Analyse(Workspace& workspace, AnalysisFrontend& frontend, int view);

/// The kept report of views 0..5 (the rule listing, the symbol listing and the set reports).
QString ViewReport(Workspace& workspace, int view);
