/// \file
/// Loading and parsing the grammar a trelk-cli command names.
#include "cli/CliCommands.h"
#include "cli/CliHost.h"
#include "storage/GrammarFile.h"
#include "session/OpenSave.h"

#include <QFileInfo>

bool IsReadableFile(const QString& path, const QString& what)
{
    const QFileInfo info(path);
    if (info.isFile())
        return true;
    if (info.isDir())
        WriteErr(QStringLiteral("trelk-cli: ") + path + QStringLiteral(" is a folder, not a ") + what);
    else if (info.exists())
        WriteErr(QStringLiteral("trelk-cli: ") + path + QStringLiteral(" is not a regular file"));
    else
        WriteErr(QStringLiteral("trelk-cli: ") + path + QStringLiteral(": no such file"));
    return false;
}

int LoadGrammar(Workspace& workspace, const QString& path, QString& text)
{
    QString error;
    if (!IsReadableFile(path, QStringLiteral("grammar file")))
        return kExitFile;
    // As File Open: the text, the grammar's path and the kept state of its
    // companion .tkc, whose failures the host puts on stderr.
    if (!TKGOpen(workspace, path, text, error)) {
        WriteErr(QStringLiteral("trelk-cli: ") + error);
        return kExitFile;
    }
    return kExitOk;
}

int ParseGrammar(Workspace& workspace, const QString& path, const QString& text)
{
    Grammar& grammar = workspace.grammar;
    const bool parsed = grammar.SetText(text);
    if (parsed)
        return kExitOk;
    if (Grammar::IsBlankText(text))
        WriteErr(QStringLiteral("trelk-cli: ") + path + QStringLiteral(": the file holds no grammar"));
    return kExitGrammar;
}

int CmdCheck(Workspace& workspace, const CliOptions&, const QStringList& args)
{
    const QString& path = args[0];
    QString text;
    if (int status = LoadGrammar(workspace, path, text))
        return status;
    if (int status = ParseGrammar(workspace, path, text))
        return status;
    if (!Interrupt::BeginResult(Interrupt::Result::Text))
        return kExitStopped;
    const Grammar& g = workspace.grammar;
    WriteOut(QStringLiteral("OK: %1 terminals, %2 non-terminals, %3 rules\n")
                 .arg(g.terminalCount)
                 .arg(g.NonterminalCount())
                 .arg(g.ruleCount));
    return kExitOk;
}
