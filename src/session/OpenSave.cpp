/// \file
/// Opening and saving a grammar with its companion.
#include "session/OpenSave.h"

#include "session/CompiledGrammar.h"
#include "session/Workspace.h"
#include "storage/GrammarFile.h"

#include <QFileInfo>

bool TKGOpen(Workspace& workspace, const QString& path, QString& text, QString& error)
{
    QString read;
    if (!ReadGrammarFile(path, read, error))
        return false;
    text = read;
    Grammar& grammar = workspace.grammar;
    grammar.Clear();
    workspace.ResetResults();
    const QString fullPath = QFileInfo(path).absoluteFilePath();
    grammar.SetPath(fullPath);

    QString keptPath, keptName;
    switch (TKCRead(workspace, CompanionPath(fullPath), keptPath, keptName)) {
    case TkcReadResult::Missing:
    case TkcReadResult::Foreign:
        break;  // nothing was restored: the fresh state stands
    case TkcReadResult::Failed:
        // The failure is reported; a companion that could not be read whole is
        // not trusted, so the analysis starts clean.
        grammar.Clear();
        workspace.ResetResults();
        break;
    case TkcReadResult::Restored:
        CheckRestoredState(workspace, text);
        break;
    }
    return true;
}

bool GrammarSaveAs(Workspace& workspace, const QString& targetPath, const QString& editorText)
{
    Grammar& grammar = workspace.grammar;
    grammar.SetPath(targetPath);
    // The companion goes first. Should the text then fail, the old text stays
    // beside the new companion, which the next open refuses unless it fits that text.
    const bool companionWritten = TKCSave(workspace, CompanionPath(targetPath), targetPath, grammar.Name());
    QString error;
    if (!WriteTextFile(targetPath, editorText, error)) {
        ReportFileError(workspace, FileErrorNumber::FileAccess, QStringLiteral("GrammarSaveAs"), error);
        return false;
    }
    return companionWritten;
}
