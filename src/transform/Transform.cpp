/// \file
/// The frame of the transformation commands and the naming of new non-terminals.
#include "transform/Transform.h"

#include "analysers/Workspace.h"
#include "storage/GrammarFile.h"

namespace {

/// Whether a non-terminal of the working copy already bears name, letter case disregarded.
bool NameTaken(const Grammar& g, const QString& name)
{
    for (int c = g.copyFirstNonterminal; c <= g.copyLastCode; ++c)
        if (g.copySymbolNames[static_cast<std::size_t>(c + 2)].compare(name, Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

/// The text as a file holds it: every line followed by one CR LF (the writer adds the last).
QString WithoutFinalLineEnds(QString text)
{
    while (text.endsWith(QStringLiteral("\r\n")))
        text.chop(2);
    return text;
}

} // namespace

QStringList TransformCode::All()
{
    return {GroupRules, RemoveCycles, RemoveEmptyRules, LeftFactoring, LeftRecursion, RemoveUnusedSymbols};
}

int NewNonterminal(Grammar& g, int base, bool letters)
{
    QString name;
    if (letters) {
        for (char16_t a = u'A'; a <= u'Z' && name.isEmpty(); ++a) {
            const QString candidate(QChar{a});
            if (!NameTaken(g, candidate))
                name = candidate;
            g.host().yield();
        }
        for (char16_t a = u'A'; a <= u'Z' && name.isEmpty(); ++a)
            for (char16_t b = u'A'; b <= u'Z' && name.isEmpty(); ++b) {
                const QString candidate = QString(QChar{a}) + QChar{b};
                if (!NameTaken(g, candidate))
                    name = candidate;
                g.host().yield();
            }
    }
    if (name.isEmpty()) {
        name = g.copySymbolNames[static_cast<std::size_t>(base + 2)];
        do {
            name += QLatin1Char('\'');
            g.host().yield();
        } while (NameTaken(g, name));
    }
    g.copySymbolNames.push_back(name);
    return ++g.copyLastCode;
}

QString TransformedPath(const QString& path, const QString& code)
{
    const qsizetype separator = std::max(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\')));
    const qsizetype dot = path.lastIndexOf(QLatin1Char('.'));
    // Only a "." of the file name counts: a dotted folder keeps its name.
    const QString stem = dot > separator ? path.left(dot) : path;
    return stem + QLatin1Char('-') + code + QStringLiteral(".tkg");
}

QString ApplyTransformation(Grammar& g, const QString& code, bool letters)
{
    g.MakeACopy();
    g.SetInProcess(true);
    QString text;
    if (code == TransformCode::GroupRules) {
        GroupRules(g);
        text = g.Text();
    } else {
        QStringList lines;
        if (code == TransformCode::RemoveCycles)
            lines = RemoveCycles(g, letters);
        else if (code == TransformCode::RemoveEmptyRules)
            lines = RemoveEmptyRules(g, letters);
        else if (code == TransformCode::LeftFactoring)
            lines = LeftFactoring(g, letters);
        else if (code == TransformCode::LeftRecursion)
            lines = LeftRecursion(g, letters);
        else
            lines = RemoveUnusedSymbols(g);
        for (const QString& line : lines)
            text += line + QStringLiteral("\r\n");
    }
    g.SetInProcess(false);
    return text;
}

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
