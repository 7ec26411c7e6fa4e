/// \file
/// Export of the report of one view.
#include "session/Export.h"

#include "storage/GrammarFile.h"

#include <new>

QString ExportSuffix(int view)
{
    const ViewInfo* info = FindView(view);
    return info ? QString::fromLatin1(info->exportSuffix) : QString();
}

QString ExportBaseName(const QString& grammarPath)
{
    const qsizetype dot = grammarPath.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? grammarPath : grammarPath.left(dot);
}

ExportResult ExportViewFile(Workspace& workspace, AnalysisFrontend& frontend, int view)
{
    Grammar& g = workspace.grammar;
    Host& host = workspace.host();
    ExportResult result;
    if (g.Path().isEmpty()) {
        host.information(QStringLiteral("Save this grammar first."));
        return result;
    }
    const QString base = ExportBaseName(g.Path());
    const ViewInfo* info = FindView(view);
    if (!info)
        return result;
    if (!info->IsAnalyser() && !g.GetFlag(GrammarFlag::Parsed)) {
        host.information(QStringLiteral("Analyze grammar first."));
        return result;
    }
    if (info->IsAnalyser() && !IsAnalysed(workspace, view)) {
        host.information(QStringLiteral("This method is not analysed yet."));
        return result;
    }

    ProcessStart(workspace, frontend);
    result.path = base + QString::fromLatin1(info->exportSuffix);
    QString error;
    bool written = false;
    // The text of a large table is built in memory: a system that cannot give
    // it ends the export with a message, and the unfinished file is dropped.
    try {
        if (info->IsAnalyser()) {
            // A new analyser object draws on the kept results: no analysis runs. Its
            // tables are streamed into the file, then the text writer's final CR LF.
            workspace.current = MakeAnalyser(workspace, view);
            IAnazer* analyser = workspace.current.get();
            written = WriteStreamedFile(result.path, [analyser](TextSink& out) {
                if (analyser)
                    analyser->WriteTable(out);
                out.Write(QByteArrayLiteral("\r\n"));
            }, error);
        } else {
            written = WriteTextFile(result.path, info->exportedReport(g), error);
        }
    } catch (const std::bad_alloc&) {
        written = false;
        error = kOutOfMemoryText;
    }
    ProcessStop(workspace, frontend);
    if (!written) {
        host.critical(error);
        result.status = ExportResult::WriteFailed;
        return result;
    }
    host.information(QStringLiteral("Files saved:\r\n") + result.path + QStringLiteral(".\r\n"));
    result.status = ExportResult::Written;
    return result;
}

QString ExportView(Workspace& workspace, AnalysisFrontend& frontend, int view)
{
    const ExportResult result = ExportViewFile(workspace, frontend, view);
    return result.status == ExportResult::Written ? result.path : QString();
}
