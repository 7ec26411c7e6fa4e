/// \file
/// The main window offscreen with a grammar typed into its editor, as the
/// tests of the panes under it drive it.
#pragma once

#include "support/RecordingHost.h"
#include "ui/FileDialogs.h"
#include "ui/frmMain.h"

#include <QAction>

struct GrammarWindow {
    RecordingHost host;
    frmMain w{&host, QString()};

    explicit GrammarWindow(const QString& text)
    {
        w.show();
        w.SetText1(text);
    }
    ~GrammarWindow() { KAVENDialog::SetScriptedAnswer({}); }

    /// Selects the view and runs Analyse on it through the menu.
    void Analyse(int view)
    {
        w.SelectView(view);
        w.mnuAnalyse->trigger();
    }
};
