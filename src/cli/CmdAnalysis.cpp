/// \file
/// trelk-cli commands that run the analysis as the window's Analyse does:
/// table, export and summary (and the analyser views of view).
#include "cli/CliCommands.h"
#include "cli/CliHost.h"

#include "session/AnalysisRun.h"
#include "session/Export.h"
#include "session/StandaloneExport.h"
#include "session/Verdicts.h"

#include <QElapsedTimer>
#include <cstdio>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

/// The window's side of the analysis run, for a batch run: the grammar text
/// read from the file, the output box kept in memory, no save.
class CliFrontend final : public AnalysisFrontend {
public:
    CliFrontend(QString text, bool wantsOutput)
        : m_text(std::move(text))
        , m_wantsOutput(wantsOutput)
    {
    }
    QString GrammarText() override { return m_text; }
    void SetText2(const QString& text) override { text2 = text; }
    bool WantsOutput() const override { return m_wantsOutput; }
    QString text2;

private:
    QString m_text;
    bool m_wantsOutput;
};

/// After the first Analyse: a grammar that did not parse has had its message
/// shown (a blank file gets one here).
int CheckParsed(const Workspace& workspace, const QString& path, const QString& text)
{
    if (workspace.grammar.Parsed())
        return kExitOk;
    if (Grammar::IsBlankText(text))
        WriteErr(QStringLiteral("trelk-cli: ") + path + QStringLiteral(": the file holds no grammar"));
    return kExitGrammar;
}

} // namespace

int RunView(Workspace& workspace, const QString& path, int view, QString& output, bool wantsOutput)
{
    QString text;
    if (int status = LoadGrammar(workspace, path, text))
        return status;
    // As in the window after File Open: the editor holds the text, the grammar is not parsed yet.
    CliFrontend frontend(text, wantsOutput);
    Analyse(workspace, frontend, view);
    output = frontend.text2;
    return CheckParsed(workspace, path, text);
}

TableOutcome OutcomeOf(const Workspace& workspace, int view)
{
    if (workspace.current && workspace.grammar.GetFlag(view))
        return TableOutcome::Built;
    return Judge(workspace, view).refusal != Refusal::None ? TableOutcome::Refused : TableOutcome::Limited;
}

int RequireTable(Workspace& workspace, int view)
{
    switch (OutcomeOf(workspace, view)) {
    case TableOutcome::Built:
        return kExitOk;
    case TableOutcome::Refused:
        if (workspace.current)
            WriteErr(workspace.current->ExportDisplay());
        return kExitGrammar;
    case TableOutcome::Limited:
        break;
    }
    return kExitGrammar;
}

int AnalyserView(const QString& command, const QString& arg)
{
    const int view = ParseView(arg);
    if (view >= View::LL)
        return view;
    WriteErr(QStringLiteral("trelk-cli: ") + command
             + QStringLiteral(" takes an analyser view (6-11 or ll slr lalr lr spr opr), not ") + arg);
    return -1;
}

int RunTable(Workspace& workspace, const QString& path, int view)
{
    QString output;
    if (int status = RunView(workspace, path, view, output, false))
        return status;
    if (Interrupt::Stopped())
        return kExitStopped;
    return RequireTable(workspace, view);
}

int CmdTable(Workspace& workspace, const CliOptions&, const QStringList& arguments)
{
    // "--standalone" may stand anywhere after the command.
    QStringList args = arguments;
    const bool standalone = args.removeAll(QStringLiteral("--standalone")) > 0;
    if (args.size() != 2) {
        WriteErr(QStringLiteral("trelk-cli: table takes GRAMMAR VIEW [--standalone], not ") + arguments.join(QLatin1Char(' ')));
        return kExitUsage;
    }
    const int view = AnalyserView(QStringLiteral("table"), args[1]);
    if (view < 0)
        return kExitUsage;
    if (int status = RunTable(workspace, args[0], view))
        return status;
    StandaloneProgramResult program;
    if (standalone) {
        program = StandaloneProgram(workspace, view);
        if (!program.error.isEmpty()) {
            WriteErr(QStringLiteral("trelk-cli: ") + program.error);
            return kExitGrammar;
        }
    }
    if (!Interrupt::BeginResult(Interrupt::Result::Text))
        return kExitStopped;
    std::fflush(stdout);
    StreamSink out(stdout, true);
    if (standalone)
        out.Write(program.program);
    else
        workspace.current->WriteTable(out);
    out.Flush();
    return out.Ok() ? kExitOk : kExitFile;
}

int CmdExport(Workspace& workspace, const CliOptions&, const QStringList& args)
{
    const int view = ParseView(args[1]);
    if (view < 0) {
        WriteErr(QStringLiteral("trelk-cli: unknown view ") + args[1]);
        return kExitUsage;
    }
    QString output;
    if (int status = RunView(workspace, args[0], view, output, false))
        return status;
    if (Interrupt::Stopped())
        return kExitStopped;
    if (ViewOf(view).IsAnalyser())
        if (int status = RequireTable(workspace, view))
            return status;
    if (!Interrupt::BeginResult(Interrupt::Result::File))
        return kExitStopped;
    CliFrontend frontend(QString(), false);
    const ExportResult result = ExportViewFile(workspace, frontend, view);
    switch (result.status) {
    case ExportResult::Written:
        WriteOut(result.path + QLatin1Char('\n'));
        return kExitOk;
    case ExportResult::WriteFailed:
        return kExitFile;  // the reason is on stderr
    case ExportResult::NotReady:
        break;
    }
    return kExitGrammar;  // the reason is on stderr
}

namespace {

struct SummaryOptions {
    bool json = false;
    int required = -1;  ///< the view --require names; -1 for none
};

/// Reads summary's options after the grammar; false (with the message shown) on a usage error.
bool ParseSummaryOptions(const QStringList& args, SummaryOptions& options)
{
    for (qsizetype i = 1; i < args.size(); ++i) {
        if (args[i] == QStringLiteral("--json")) {
            options.json = true;
        } else if (args[i] == QStringLiteral("--require") && i + 1 < args.size()) {
            const QString method = args[++i];
            options.required = ParseView(method);
            if (options.required < 0 || !ViewOf(options.required).IsAnalyser()) {
                WriteErr(QStringLiteral("trelk-cli: --require takes ll slr lalr lr spr opr, not ") + method);
                return false;
            }
        } else {
            WriteErr(QStringLiteral("trelk-cli: summary takes --json and --require METHOD, not ") + args[i]);
            return false;
        }
    }
    return true;
}

/// The summary's JSON object of one method.
QJsonObject SummaryJson(const MethodVerdict& v, qint64 ms)
{
    QJsonObject o;
    o[QStringLiteral("method")] = QString::fromLatin1(ViewOf(v.view).name);
    o[QStringLiteral("analysed")] = v.HasVerdict();
    if (v.HasVerdict())
        o[QStringLiteral("passes")] = v.passes;
    if (!ReasonColumn(v).isEmpty())
        o[QStringLiteral("reason")] = ReasonColumn(v);
    if (v.analysed) {
        if (ViewOf(v.view).lrResults) {
            o[QStringLiteral("states")] = v.states;
        } else {
            o[QStringLiteral("rows")] = v.rows;
            o[QStringLiteral("columns")] = v.columns;
        }
        o[QStringLiteral("conflicts")] = v.conflicts;
    }
    o[QStringLiteral("elapsed")] = ElapsedText(ms);
    o[QStringLiteral("elapsedMs")] = ms;
    return o;
}

} // namespace

int CmdSummary(Workspace& workspace, const CliOptions&, const QStringList& args)
{
    SummaryOptions options;
    if (!ParseSummaryOptions(args, options))
        return kExitUsage;
    QString text;
    if (int status = LoadGrammar(workspace, args[0], text))
        return status;
    CliFrontend frontend(text, false);
    Grammar& g = workspace.grammar;
    // A grammar its companion restored keeps its results; any other is readied first.
    if (!g.Parsed())
        Analyse(workspace, frontend, View::Grammar);
    if (int status = CheckParsed(workspace, args[0], text))
        return status;

    QJsonArray methods;
    QString lines;
    bool requiredPasses = true;
    for (const ViewInfo& info : Views()) {
        if (!info.IsAnalyser())
            continue;
        QElapsedTimer timer;
        timer.start();
        Analyse(workspace, frontend, info.number);
        const qint64 ms = timer.elapsed();
        if (Interrupt::Stopped())
            return kExitStopped;
        const MethodVerdict verdict = Judge(workspace, info.number);
        if (info.number == options.required && !(verdict.analysed && verdict.passes))
            requiredPasses = false;
        methods.append(SummaryJson(verdict, ms));
        lines += SummaryLine(verdict, ElapsedText(ms));
    }
    if (!Interrupt::BeginResult(Interrupt::Result::Text))
        return kExitStopped;
    if (options.json) {
        QJsonObject root;
        root[QStringLiteral("grammar")] = args[0];
        root[QStringLiteral("terminals")] = g.terminalCount;
        root[QStringLiteral("nonterminals")] = g.NonterminalCount();
        root[QStringLiteral("rules")] = g.ruleCount;
        root[QStringLiteral("methods")] = methods;
        WriteOut(QString::fromUtf8(QJsonDocument(root).toJson(QJsonDocument::Indented)));
    } else {
        WriteOut(lines);
    }
    return requiredPasses ? kExitOk : kExitRequire;
}
