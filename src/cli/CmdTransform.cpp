/// \file
/// trelk-cli transform GRAMMAR CODE: a command of the Transform menu, writing
/// its result file as the workbench does and printing the file's path.
#include "cli/CliCommands.h"
#include "cli/CliHost.h"
#include "transform/Transform.h"
#include "session/TransformCommand.h"

int CmdTransform(Workspace& workspace, const CliOptions&, const QStringList& args)
{
    const QString& path = args[0];
    const QString code = args[1].toUpper();
    if (!TransformCode::All().contains(code)) {
        WriteErr(QStringLiteral("trelk-cli: unknown transformation ") + args[1]
                 + QStringLiteral(" (one of ") + TransformCode::All().join(QLatin1Char(' ')) + QLatin1Char(')'));
        return kExitUsage;
    }
    QString text;
    if (int status = LoadGrammar(workspace, path, text))
        return status;
    if (int status = ParseGrammar(workspace, path, text))
        return status;
    const Grammar& g = workspace.grammar;
    if (code == TransformCode::GroupRules && g.firstNonterminal == g.lastCode)
        return kExitOk;  // one non-terminal: grouping has nothing to do and writes nothing
    QString newText;
    const QString written = RunTransformation(workspace, code, text, newText);
    if (Interrupt::Stopped()) {
        // A stopped transformation returns no lines. With lines, it had passed
        // its last stop point before the Ctrl-C: its result is whole, and the
        // frame has written it, so the command has done its work.
        if (newText.isEmpty())
            return kExitStopped;
        Interrupt::ResultWritten();
    }
    if (written.isEmpty())
        return newText.isEmpty() ? kExitGrammar : kExitFile;  // no result (refused, stopped, nothing to change), or the write failed; the reason is on stderr
    WriteOut(written + QLatin1Char('\n'));
    return kExitOk;
}
