/// \file
/// trelk-cli explain: the conflicts of an analyser view, each with its rules,
/// its way in and a counterexample.
#include "cli/CliCommands.h"
#include "cli/CliHost.h"

#include "session/ConflictExplainer.h"

#include <QJsonDocument>

int CmdExplain(Workspace& workspace, const CliOptions&, const QStringList& args)
{
    const int view = AnalyserView(QStringLiteral("explain"), args[1]);
    if (view < 0)
        return kExitUsage;
    bool json = false;
    ExplainOptions options;
    options.compareStronger = true;
    for (qsizetype i = 2; i < args.size(); ++i) {
        bool ok = false;
        if (args[i] == QStringLiteral("--json")) {
            json = true;
            continue;
        }
        if (args[i] == QStringLiteral("--budget") && i + 1 < args.size()) {
            options.budgetMs = args[++i].toInt(&ok);
            if (ok && options.budgetMs >= 0)
                continue;
        }
        WriteErr(QStringLiteral("trelk-cli: explain takes --json and --budget MS, not ") + args[i]);
        return kExitUsage;
    }
    if (int status = RunTable(workspace, args[0], view))
        return status;
    const Explanations explanations = ExplainConflicts(workspace, view, options);
    if (Interrupt::Stopped())
        return kExitStopped;
    if (!Interrupt::BeginResult(Interrupt::Result::Text))
        return kExitStopped;
    if (json)
        WriteOut(QString::fromUtf8(QJsonDocument(ExplanationJson(workspace.grammar, explanations)).toJson(QJsonDocument::Indented)));
    else
        WriteOut(ExplanationText(workspace.grammar, explanations));
    return kExitOk;
}
