/// \file
/// Export of the report of one view.
#include "output/Export.h"

#include "storage/GrammarFile.h"

#include <QSaveFile>

QString ExportSuffix(int view)
{
    static const char* const suffixes[View::Count] = {
        "-0-grammar.txt", "-1-symbols.txt", "-2-first.txt", "-3-basis.txt",
        "-4-followl.txt", "-5-followr.txt", "-6-LL-table.txt", "-7-SLR-table.txt",
        "-8-LALR-table.txt", "-9-LR-table.txt", "-10-SPR-table.txt", "-11-OPR-table.txt",
    };
    return view >= 0 && view < View::Count ? QString::fromLatin1(suffixes[view]) : QString();
}

QString ExportBaseName(const QString& grammarPath)
{
    const qsizetype dot = grammarPath.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? grammarPath : grammarPath.left(dot);
}

namespace {

/// The report a grammar view (0..5) exports.
QString ReportOfView(Workspace& workspace, int view)
{
    Grammar& g = workspace.grammar;
    QString text;
    switch (view) {
    case View::Grammar:
        text = g.CommentedRules();
        break;
    case View::Symbols:
        text = g.CommentedSymbolsDisplay();
        break;
    case View::First:
    case View::Basis:  // on purpose: the basis file carries the FIRST report, as it always has
        text = g.CommentedFirst();
        break;
    case View::FollowL:
        text = g.CommentedFollowL();
        break;
    case View::FollowR:
        text = g.CommentedFollowR();
        break;
    default:
        break;
    }
    return text;
}

} // namespace

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
    if (view <= View::FollowR && !g.GetFlag(GrammarFlag::Parsed)) {
        host.information(QStringLiteral("Analyze grammar first."));
        return QString();
    }
    if (view >= View::LL && !g.GetFlag(view)) {
        host.information(QStringLiteral("This method is not analysed yet."));
        return QString();
    }

    ProcessStart(workspace, frontend);
    const QString file = base + ExportSuffix(view);
    QString error;
    bool written = false;
    if (view >= View::LL) {
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
        written = WriteTextFile(file, ReportOfView(workspace, view), error);
    }
    ProcessStop(workspace, frontend);
    if (!written) {
        host.critical(error);
        return QString();
    }
    host.information(QStringLiteral("Files saved:\r\n") + file + QStringLiteral(".\r\n"));
    return file;
}
