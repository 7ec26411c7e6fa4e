/// \file
/// Export: the report of the selected view written to a text file beside the
/// grammar, named after it with the view's suffix.
#pragma once

#include "session/AnalysisRun.h"

#include <QString>

/// "-0-grammar.txt" .. "-11-OPR-table.txt".
QString ExportSuffix(int view);
/// The grammar's path up to, not including, its last "." (the whole path when it has none).
QString ExportBaseName(const QString& grammarPath);

/// The Export command for a view. Messages go to the host's information box.
/// Returns the path written, or "" when nothing was written.
QString ExportView(Workspace& workspace, AnalysisFrontend& frontend, int view);
