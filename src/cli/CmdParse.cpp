/// \file
/// trelk-cli parse: one sentence run through the table of an analyser view, as
/// its generated sample recognizer would run it, with the trace and the tree.
#include "cli/CliCommands.h"
#include "cli/CliHost.h"

#include "session/ParseSimulator.h"

#include <QJsonDocument>

int CmdParse(Workspace& workspace, const CliOptions&, const QStringList& args)
{
    const int view = AnalyserView(QStringLiteral("parse"), args[1]);
    if (view < 0)
        return kExitUsage;
    bool json = false;
    bool trace = false;
    for (qsizetype i = 3; i < args.size(); ++i) {
        if (args[i] == QStringLiteral("--json")) {
            json = true;
        } else if (args[i] == QStringLiteral("--trace")) {
            trace = true;
        } else {
            WriteErr(QStringLiteral("trelk-cli: parse takes --json and --trace, not ") + args[i]);
            return kExitUsage;
        }
    }
    if (int status = RunTable(workspace, args[0], view))
        return status;
    std::vector<int> sentence;
    QString error;
    if (!ReadSentence(workspace.grammar, args[2], sentence, error)) {
        WriteErr(QStringLiteral("trelk-cli: ") + error);
        return kExitUsage;
    }
    SimulateOptions options;
    options.stopped = [] { return Interrupt::Stopped(); };
    ParseRun run;
    if (!SimulateParse(workspace, view, sentence, options, run, error)) {
        WriteErr(QStringLiteral("trelk-cli: ") + error);
        return kExitGrammar;
    }
    if (run.verdict == ParseVerdict::Stopped || !Interrupt::BeginResult(Interrupt::Result::Text))
        return kExitStopped;
    if (json)
        WriteOut(QString::fromUtf8(QJsonDocument(ParseRunJson(workspace, run, trace)).toJson(QJsonDocument::Indented)));
    else
        WriteOut(ParseRunText(workspace, run, trace));
    switch (run.verdict) {
    case ParseVerdict::Accepted:
        return kExitOk;
    case ParseVerdict::Rejected:
        return kExitRejected;
    case ParseVerdict::Limit:
        return kExitGrammar;
    case ParseVerdict::Stopped:
        break;
    }
    return kExitStopped;
}
