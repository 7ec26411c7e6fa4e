/// \file
/// The frame of the transformation commands.
#include "session/TransformCommand.h"

#include "session/Workspace.h"
#include "storage/GrammarFile.h"
#include "transform/Transform.h"

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
    newText = ApplyTransformation(g, code, letters);
    // On purpose: with no lines (stopped, or refused with a message) the editor
    // keeps its text, and that text is still saved under the new name.
    const QString saved = newText.isEmpty() ? editorText : newText;
    const QString target = TransformedPath(path, code);
    QString error;
    if (!WriteTextFile(target, WithoutFinalLineEnds(saved), error)) {
        g.host().critical(error);
        return QString();
    }
    return target;
}
