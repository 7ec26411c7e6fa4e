/// \file
/// Export of the report of one view.
#include "session/Export.h"

#include "storage/GrammarFile.h"

#include <QSaveFile>

QString ExportSuffix(int view)
{
    return view >= 0 && view < View::Count ? QString::fromLatin1(ViewOf(view).exportSuffix) : QString();
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
    if (view < 0 || view >= View::Count)
        return QString();
    if (!ViewOf(view).IsAnalyser() && !g.GetFlag(GrammarFlag::Parsed)) {
        host.information(QStringLiteral("Analyze grammar first."));
        return QString();
    }
    if (ViewOf(view).IsAnalyser() && !IsAnalysed(workspace, view)) {
        host.information(QStringLiteral("This method is not analysed yet."));
        return QString();
    }

    ProcessStart(workspace, frontend);
    const QString file = base + ExportSuffix(view);
    QString error;
    bool written = false;
    if (ViewOf(view).IsAnalyser()) {
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
        written = WriteTextFile(file, ViewOf(view).exportedReport(g), error);
    }
    ProcessStop(workspace, frontend);
    if (!written) {
        host.critical(error);
        return QString();
    }
    host.information(QStringLiteral("Files saved:\r\n") + file + QStringLiteral(".\r\n"));
    return file;
}
