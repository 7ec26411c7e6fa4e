/// \file
/// Export of the report of one view.
#include "session/Export.h"

#include "storage/GrammarFile.h"

#include <QSaveFile>
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

QString ExportView(Workspace& workspace, AnalysisFrontend& frontend, int view)
{
    Grammar& g = workspace.grammar;
    Host& host = workspace.host();
    if (g.Path().isEmpty()) {
        host.information(QStringLiteral("Save this grammar first."));
        return QString();
    }
    const QString base = ExportBaseName(g.Path());
    const ViewInfo* info = FindView(view);
    if (!info)
        return QString();
    if (!info->IsAnalyser() && !g.GetFlag(GrammarFlag::Parsed)) {
        host.information(QStringLiteral("Analyze grammar first."));
        return QString();
    }
    if (info->IsAnalyser() && !IsAnalysed(workspace, view)) {
        host.information(QStringLiteral("This method is not analysed yet."));
        return QString();
    }

    ProcessStart(workspace, frontend);
    const QString file = base + QString::fromLatin1(info->exportSuffix);
    QString error;
    bool written = false;
    // The text of a large table is built in memory: a system that cannot give
    // it ends the export with a message, and the unfinished file is dropped.
    try {
    if (info->IsAnalyser()) {
        // A new analyser object draws on the kept results: no analysis runs. Its
        // tables are streamed into the file, then the text writer's final CR LF.
        workspace.current = MakeAnalyser(workspace, view);
        QSaveFile out(file);
        if (out.open(QIODevice::WriteOnly)) {
            DeviceSink sink(out);
            if (workspace.current)
                workspace.current->WriteTable(sink);
            sink.Write(QByteArrayLiteral("\r\n"));
            sink.Flush();
            // QSaveFile can commit a cut file when its own buffer fails to flush: flush first.
            written = sink.Ok() && out.flush() && out.commit();
        }
        if (!written)
            error = QStringLiteral("cannot write ") + file + QStringLiteral(": ") + out.errorString();
    } else {
        written = WriteTextFile(file, info->exportedReport(g), error);
    }
    } catch (const std::bad_alloc&) {
        written = false;
        error = kOutOfMemoryText;
    }
    ProcessStop(workspace, frontend);
    if (!written) {
        host.critical(error);
        return QString();
    }
    host.information(QStringLiteral("Files saved:\r\n") + file + QStringLiteral(".\r\n"));
    return file;
}
