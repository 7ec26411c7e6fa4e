/// \file
/// trelk-cli compile: runs every analysis as the window's Analyse does, view by
/// view, then saves the grammar as the window saves it after a run (companion
/// .tkc first, then the text), so that the workbench and later commands open
/// it analysed.
#include "cli/CliCommands.h"
#include "cli/CliHost.h"

#include "session/AnalysisRun.h"
#include "storage/GrammarFile.h"
#include "session/OpenSave.h"

namespace {

/// The window's side of the runs: the grammar box holds the text read; the
/// output box is not looked at (the listings are built when first shown); the
/// save comes once, after the last run.
class CompileFrontend final : public AnalysisFrontend {
public:
    explicit CompileFrontend(QString text)
        : m_text(std::move(text))
    {
    }
    QString GrammarText() override { return m_text; }
    void SetText2(const QString&) override {}
    bool WantsOutput() const override { return false; }

private:
    QString m_text;
};

} // namespace

int CmdCompile(Workspace& workspace, const CliOptions&, const QStringList& args)
{
    const QString& path = args[0];
    QString text;
    if (int status = LoadGrammar(workspace, path, text))
        return status;
    CompileFrontend frontend(text);
    for (int view = View::Grammar; view < View::Count; ++view) {
        Analyse(workspace, frontend, view);
        if (Interrupt::Stopped())
            return kExitStopped;  // neither the companion nor the text is written
        // A grammar that does not parse has had its message shown; nothing is written.
        if (!workspace.grammar.Parsed()) {
            if (Grammar::IsBlankText(text))
                WriteErr(QStringLiteral("trelk-cli: ") + path + QStringLiteral(": the file holds no grammar"));
            return kExitGrammar;
        }
    }
    const QString grammarPath = workspace.grammar.Path();
    if (!Interrupt::BeginResult(Interrupt::Result::File))
        return kExitStopped;
    if (!GrammarSaveAs(workspace, grammarPath, text))
        return kExitFile;  // the error report is on stderr
    WriteOut(CompanionPath(grammarPath) + QLatin1Char('\n'));
    return kExitOk;
}
