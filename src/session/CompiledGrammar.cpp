/// \file
/// The error report of failed file operations.
#include "session/CompiledGrammar.h"

#include "session/Workspace.h"

void ReportFileError(Workspace& workspace, int number, const QString& source, const QString& detail)
{
    Workspace::FileError& error = workspace.lastFileError;
    error.number = QString::number(number);
    error.description = FileErrorDescription(number);
    if (!detail.isEmpty())
        error.description += QStringLiteral(": ") + detail;
    error.source = source;
    error.text = QStringLiteral("Error encountered: ") + error.number + QStringLiteral("\r\n") + error.description
               + QStringLiteral("\r\nSource: ") + source + QStringLiteral("\r\n");
    workspace.host().critical(error.text);
}
