/// \file
/// The frame of the transformation commands.
#include "session/TransformCommand.h"

#include "session/Workspace.h"
#include "storage/GrammarFile.h"
#include "transform/Transform.h"

#include <new>

namespace {

/// The text as a file holds it: every line followed by one CR LF (the writer adds the last).
QString WithoutFinalLineEnds(QString text)
{
    while (text.endsWith(QStringLiteral("\r\n")))
        text.chop(2);
    return text;
}

} // namespace

QString RunTransformation(Workspace& workspace, const QString& code, const QString& editorText, QString& newText)
{
    newText.clear();
    Grammar& g = workspace.grammar;
    if (!TransformCode::All().contains(code))
        return QString();
    const bool group = code == TransformCode::GroupRules;
    // Grouping a single non-terminal's rules would change nothing: no check, no message.
    if (group && g.Parsed() && g.firstNonterminal == g.lastCode)
        return QString();
    if (g.Path().isEmpty()) {
        g.host().information(QStringLiteral("Save Grammar first."));
        return QString();
    }
    if (!g.Parsed() && !g.SetText(editorText))
        return QString();  // the parser has shown why; the command adds nothing
    if (group && g.firstNonterminal == g.lastCode)
        return QString();

    const QString path = g.Path();
    const bool letters = workspace.settings.lfLetters != 0;
    TransformOutcome outcome = TransformOutcome::Failed;
    try {
        newText = ApplyTransformation(g, code, letters, &outcome);
    } catch (const std::bad_alloc&) {
        g.SetInProcess(false);
        g.host().critical(kOutOfMemoryText);
        outcome = TransformOutcome::Failed;
    }
    // Stopped, refused or over a limit: the host has said why (a Stop needs no
    // word), and no file is written.
    if (outcome == TransformOutcome::Failed) {
        newText.clear();
        return QString();
    }
    if (outcome == TransformOutcome::Unchanged) {
        newText.clear();
        g.host().information(kNothingToChangeText);
        return QString();
    }
    const QString target = TransformedPath(path, code);
    QString error;
    if (!WriteTextFile(target, WithoutFinalLineEnds(newText), error)) {
        g.host().critical(error);
        return QString();
    }
    return target;
}
