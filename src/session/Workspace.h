/// \file
/// Workspace: the program-wide state of one session — the model (grammar,
/// settings, kept results) with the analyser of the current run and the last
/// file error. The main window owns one for the program's life; trelk-cli
/// makes one per run; tests make as many as they like.
#pragma once

#include "model/IAnazer.h"
#include "model/Model.h"

#include <memory>

class Workspace : public Model {
public:
    explicit Workspace(Host* host = nullptr)
        : Model(host)
    {
    }

    /// The Stop command, the one way to end a run early: clears the grammar's
    /// InProcess (grammar preparation, transformations) and the current analyser's.
    void Stop();

    /// The analyser of the last Analyse or Export on an analyser view (may be null).
    std::unique_ptr<IAnazer> current;

    /// The last failure of a grammar file or compiled grammar file operation,
    /// kept for later display: the whole report ("Error encountered: " ...),
    /// the error number, its description and the operation ("TKCSave", "TKCRead").
    struct FileError {
        QString text;
        QString number;
        QString description;
        QString source;
    } lastFileError;
};
