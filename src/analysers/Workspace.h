/// \file
/// Workspace: the program-wide state in one object — the grammar with its sets
/// and reports, the settings values, and (as the analysers arrive) their kept
/// results. The main window owns one for the program's life; trelk-cli makes
/// one per run; tests make as many as they like.
#pragma once

#include "grammar/Grammar.h"
#include "grammar/Host.h"
#include "storage/Settings.h"

class Workspace {
public:
    explicit Workspace(Host* host = nullptr);
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    /// The host every computation of this workspace reports through.
    Host& host() const { return *m_host; }
    void setHost(Host* host);

    Grammar grammar;    ///< the current grammar, its sets, reports and flags
    Settings settings;  ///< the values of section "Main"

private:
    Host* m_host;
};
