/// \file
/// The standalone C program of an analysed view.
#include "session/StandaloneExport.h"

#include "output/StandaloneC.h"
#include "session/Export.h"
#include "storage/GrammarFile.h"

#include <QFileInfo>
#include <new>

namespace {

/// While alive, the grammar names its symbols by the given identifiers and the
/// settings are those of the standalone tables; both are put back after.
class StandaloneNaming {
public:
    StandaloneNaming(Workspace& workspace, const QStringList& names)
        : m_workspace(workspace)
        , m_settings(workspace.settings)
    {
        workspace.settings = StandaloneC::TableSettings(m_settings);
        workspace.grammar.cNames = names;
    }
    ~StandaloneNaming()
    {
        m_workspace.grammar.cNames.clear();
        m_workspace.settings = m_settings;
    }
    StandaloneNaming(const StandaloneNaming&) = delete;
    StandaloneNaming& operator=(const StandaloneNaming&) = delete;

private:
    Workspace& m_workspace;
    Settings m_settings;
};

StandaloneC::Recognizer RecognizerOf(const ViewInfo& info)
{
    switch (info.family) {
    case ViewFamily::LL:
        return StandaloneC::Recognizer::LL;
    case ViewFamily::Precedence:
        return info.number == View::SPR ? StandaloneC::Recognizer::SimplePrecedence
                                        : StandaloneC::Recognizer::OperatorPrecedence;
    default:
        return StandaloneC::Recognizer::LR;
    }
}

} // namespace

StandaloneProgramResult StandaloneProgram(Workspace& workspace, int view)
{
    StandaloneProgramResult result;
    const ViewInfo* info = FindView(view);
    if (!info || !info->IsAnalyser()) {
        result.error = QStringLiteral("Standalone C is written for the analyser views only.");
        return result;
    }
    const QString noTable =
        QStringLiteral("This method has no table for this grammar: it was not run, or it refused the grammar.");
    if (!IsAnalysed(workspace, view)) {
        result.error = noTable;
        return result;
    }
    Grammar& g = workspace.grammar;
    g.cNames.clear();
    const QStringList names = StandaloneC::Identifiers(g);
    QString tables;
    {
        StandaloneNaming naming(workspace, names);
        // A new analyser object draws on the kept results: no analysis runs.
        if (std::unique_ptr<IAnazer> analyser = MakeAnalyser(workspace, view))
            tables = analyser->TableDisplay();
    }
    if (tables.isEmpty()) {
        result.error = noTable;
        return result;
    }
    result.program = StandaloneC::Program(g, workspace.settings, names, tables, RecognizerOf(*info));
    if (result.program.isEmpty())
        result.error = QStringLiteral("The table of this method has no recognizer.");
    return result;
}

QString StandaloneFileName(const Workspace& workspace, int view)
{
    const ViewInfo* info = FindView(view);
    const QString path = workspace.grammar.Path();
    const QString base = path.isEmpty() ? QStringLiteral("grammar") : ExportBaseName(QFileInfo(path).fileName());
    return base + QLatin1Char('-') + QString::fromLatin1(info ? info->name : "table") + QStringLiteral(".c");
}

bool ExportStandaloneFile(Workspace& workspace, AnalysisFrontend& frontend, int view, const QString& path)
{
    Host& host = workspace.host();
    ProcessStart(workspace, frontend);
    StandaloneProgramResult result;
    QString error;
    bool written = false;
    try {
        result = StandaloneProgram(workspace, view);
        if (result.error.isEmpty()) {
            // The program keeps its CR LF line ends; the text writer adds the last one.
            QString text = result.program;
            if (text.endsWith(kEol))
                text.chop(kEol.size());
            written = WriteTextFile(path, text, error);
        }
    } catch (const std::bad_alloc&) {
        error = kOutOfMemoryText;
    }
    ProcessStop(workspace, frontend);
    if (!result.error.isEmpty()) {
        host.information(result.error);
        return false;
    }
    if (!written) {
        host.critical(error);
        return false;
    }
    host.information(QStringLiteral("Files saved:\r\n") + path + QStringLiteral(".\r\n"));
    return true;
}
