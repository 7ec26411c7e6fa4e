/// \file
/// The grammar reports: one line per symbol or rule, symbols printed with
/// GetSymbolS, the "=" signs aligned on the longest non-terminal name. The
/// texts of large grammars run to megabytes, so each report is built when it is
/// first asked for and kept until its sets change.
#include "grammar/Grammar.h"

std::vector<QString> Grammar::PrintedSymbols() const
{
    std::vector<QString> printed(static_cast<std::size_t>(lastCode) + 1);
    for (int c = 0; c <= lastCode; ++c)
        printed[static_cast<std::size_t>(c)] = GetSymbolS(c);
    return printed;
}

QString Grammar::SetLabel(const QString& label, const QString& symbol) const
{
    // "<" + name + ">" is the widest a non-terminal prints.
    const int width = static_cast<int>(label.size()) + maxNonterminalName + 3;
    return (label + symbol + QLatin1Char(')')).leftJustified(width);
}

void Grammar::AppendMembers(QString& text, const CodeList& set, const std::vector<QString>& printed)
{
    for (int i = 0; i < set.Count(); ++i) {
        if (i)
            text += QStringLiteral(", ");
        text += printed[static_cast<std::size_t>(set[i])];
    }
}

QString Grammar::CommentedFirst()
{
    if (!GetFlag(GrammarFlag::FirstDone))
        return NotAnalyzed;
    if (firstReport.isEmpty() || firstReport == NotAnalyzed)
        firstReport = BuildFirstReport();
    return firstReport;
}

QString Grammar::BuildFirstReport() const
{
    // FIRST of every non-terminal ("ε" closes the list of a nullable one), then
    // FIRST of every rule, where ε stands for the entry 0: the right side
    // derives the empty string.
    const QString epsilon(QChar(0x03B5));
    std::vector<QString> printed = PrintedSymbols();
    QString text;
    for (int a = firstNonterminal; a <= lastCode; ++a) {
        const CodeList& set = first[static_cast<std::size_t>(a)];
        text += SetLabel(QStringLiteral("FIRST("), printed[static_cast<std::size_t>(a)]);
        text += QStringLiteral(" = ");
        AppendMembers(text, set, printed);
        if (nullable[static_cast<std::size_t>(a)])
            text += (set.IsEmpty() ? QString() : QStringLiteral(", ")) + epsilon;
        text += QStringLiteral("\r\n");
    }
    text += QStringLiteral("\r\n");
    printed[0] = epsilon;
    const int width = static_cast<int>(QString::number(ruleCount).size());
    for (int r = 1; r <= ruleCount; ++r) {
        text += (QStringLiteral("FIRST(#") + QString::number(r) + QLatin1Char(')')).leftJustified(width + 8);
        text += QStringLiteral(" = ");
        AppendMembers(text, firstOfRule[static_cast<std::size_t>(r)], printed);
        text += QStringLiteral("\r\n");
    }
    return text;
}
