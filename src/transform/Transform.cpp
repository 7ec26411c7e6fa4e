/// \file
/// The frame of the transformation commands and the naming of new non-terminals.
#include "transform/Transform.h"

#include "grammar/Grammar.h"
#include "transform/WorkingCopy.h"


namespace {

/// Whether a non-terminal of the working copy already bears name, letter case disregarded.
bool NameTaken(const Grammar& g, const QString& name)
{
    for (int c = g.copyFirstNonterminal; c <= g.copyLastCode; ++c)
        if (g.copySymbolNames[c + 2].compare(name, Qt::CaseInsensitive) == 0)
            return true;
    return false;
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
        name = g.copySymbolNames[base + 2];
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

QString ApplyTransformation(Grammar& g, const QString& code, bool letters, TransformOutcome* outcome)
{
    g.MakeACopy();
    g.SetInProcess(true);
    QString text;
    bool unchanged = false;
    if (code == TransformCode::GroupRules) {
        const QString before = g.Text();
        GroupRules(g);
        text = g.Text();
        unchanged = text == before;
    } else {
        const QStringList before = transform::CopyLines(g);
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
        unchanged = lines == before;
        for (const QString& line : lines)
            text += line + QStringLiteral("\r\n");
    }
    if (outcome)
        *outcome = text.isEmpty() ? TransformOutcome::Failed
                 : unchanged      ? TransformOutcome::Unchanged
                                  : TransformOutcome::Changed;
    g.SetInProcess(false);
    return text;
}
