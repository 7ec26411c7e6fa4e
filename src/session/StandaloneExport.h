/// \file
/// The standalone C program of an analysed view: what trelk-cli prints for
/// "table --standalone" and what the window's File menu saves as NAME-VIEW.c.
#pragma once

#include "session/AnalysisRun.h"

#include <QString>

/// A program, or why there is none.
struct StandaloneProgramResult {
    QString program;  ///< the C text, CR LF line ends; "" when error says why
    QString error;
};

/// The standalone C program of view's table (views 6..11): the tables with the
/// sample recognizer, the symbols under valid and unique C identifiers and a
/// main() that reads sentences. No analysis runs: the kept results are used;
/// the workspace's settings and grammar are as they were afterwards.
StandaloneProgramResult StandaloneProgram(Workspace& workspace, int view);

/// "NAME-VIEW.c": the grammar's file name less its extension, the view's
/// trelk-cli name ("calc-lalr.c"); "grammar-VIEW.c" for an unsaved grammar.
QString StandaloneFileName(const Workspace& workspace, int view);

/// Writes StandaloneProgram to path. The reason nothing was written goes to the
/// host: why there is no program to the information box, a failed write to
/// critical; a written file is reported as Export reports it.
bool ExportStandaloneFile(Workspace& workspace, AnalysisFrontend& frontend, int view, const QString& path);
