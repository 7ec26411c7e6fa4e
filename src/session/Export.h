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

/// What the Export command did.
struct ExportResult {
    enum Status {
        NotReady,     ///< nothing to export yet (no path, not analysed): the host was told why
        WriteFailed,  ///< the file could not be written: "Cannot write PATH: REASON" went to critical
        Written,
    } status = NotReady;
    QString path;  ///< the file written, or the one that could not be
};

/// The Export command for a view. Its messages go to the host: the reason
/// nothing was exported to the information box, a write failure to critical.
ExportResult ExportViewFile(Workspace& workspace, AnalysisFrontend& frontend, int view);
/// ExportViewFile's path when it was written, otherwise "".
QString ExportView(Workspace& workspace, AnalysisFrontend& frontend, int view);
