/// \file
/// The grammar reports: one line per symbol or rule, symbols printed with
/// GetSymbolS, the "=" signs aligned on the longest non-terminal name, lines
/// ended by CR LF. The set reports of large grammars run to megabytes, so each
/// is built when it is first asked for and kept until its sets change; the
/// rule report and the detailed follow report are built on each request.
#include "grammar/Grammar.h"

#include <algorithm>

namespace {

const QChar kEpsilon(0x03B5);

/// The characters AppendMembers writes for set.
qsizetype MembersLength(const CodeList& set, const Indexed<QString>& printed)
{
    qsizetype length = set.IsEmpty() ? 0 : 2 * static_cast<qsizetype>(set.Count() - 1);
    for (int c : set)
        length += printed[c].size();
    return length;
}

/// Appends the members of set as printed, joined by ", ". Written in place,
/// one resize per line: two appends per member cost more than the copying
/// itself in the reports of the big grammars.
void AppendMembers(QString& text, const CodeList& set, const Indexed<QString>& printed)
{
    const qsizetype at = text.size();
    text.resize(at + MembersLength(set, printed));
    QChar* out = text.data() + at;
    for (int i = 0; i < set.Count(); ++i) {
        if (i) {
            *out++ = QLatin1Char(',');
            *out++ = QLatin1Char(' ');
        }
        const QString& symbol = printed[set[i]];
        out = std::copy(symbol.cbegin(), symbol.cend(), out);
    }
}

/// Appends "LABEL(" + what + ")" padded with blanks to width, then " = ".
void AppendLabel(QString& text, QStringView label, QStringView what, qsizetype width)
{
    const qsizetype start = text.size();
    text.append(label);
    text.append(what);
    text.append(QLatin1Char(')'));
    if (text.size() - start < width)
        text.resize(start + width, QLatin1Char(' '));
    text.append(u" = ");
}

/// Label, " = " and CR LF of one line, besides its members.
qsizetype LineLength(qsizetype labelWidth, const CodeList& set, const Indexed<QString>& printed)
{
    return labelWidth + 5 + MembersLength(set, printed);
}

} // namespace

Indexed<QString> Grammar::PrintedSymbols() const
{
    Indexed<QString> printed(lastCode + 1);
    for (int c = 0; c <= lastCode; ++c)
        printed[c] = GetSymbolS(c);
    return printed;
}

qsizetype Grammar::LabelWidth(qsizetype labelLength) const
{
    // "<" + name + ">" is the widest a non-terminal prints.
    return labelLength + maxNonterminalName + 3;
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
    Indexed<QString> printed = PrintedSymbols();
    const QStringView label = u"FIRST(";
    const qsizetype width = LabelWidth(label.size());
    const qsizetype ruleWidth = QString::number(ruleCount).size() + 8;  // "FIRST(#" n ")"
    qsizetype length = 2;
    for (int a = firstNonterminal; a <= lastCode; ++a)
        length += LineLength(width, first[a], printed) + 3;
    for (int r = 1; r <= ruleCount; ++r)
        length += LineLength(ruleWidth, firstOfRule[r], printed);
    QString text;
    text.reserve(length);
    for (int a = firstNonterminal; a <= lastCode; ++a) {
        const CodeList& set = first[a];
        AppendLabel(text, label, printed[a], width);
        AppendMembers(text, set, printed);
        if (nullable[a])
            text.append(set.IsEmpty() ? QString(kEpsilon) : QStringLiteral(", ") + kEpsilon);
        text.append(u"\r\n");
    }
    text.append(u"\r\n");
    printed[0] = kEpsilon;
    for (int r = 1; r <= ruleCount; ++r) {
        AppendLabel(text, u"FIRST(#", QString::number(r), ruleWidth);
        AppendMembers(text, firstOfRule[r], printed);
        text.append(u"\r\n");
    }
    return text;
}

QString Grammar::BuildSetReport(const QString& label, const std::vector<CodeList>& sets) const
{
    const Indexed<QString> printed = PrintedSymbols();
    const qsizetype width = LabelWidth(label.size());
    qsizetype length = 0;
    for (int a = firstNonterminal; a <= lastCode; ++a)
        length += LineLength(width, sets[a], printed);
    QString text;
    text.reserve(length);
    for (int a = firstNonterminal; a <= lastCode; ++a) {
        AppendLabel(text, label, printed[a], width);
        AppendMembers(text, sets[a], printed);
        text.append(u"\r\n");
    }
    return text;
}

QString Grammar::CommentedBasis()
{
    if (!GetFlag(GrammarFlag::FollowBDone))
        return NotAnalyzed;
    if (followBReport.isEmpty() || followBReport == NotAnalyzed)
        followBReport = BuildSetReport(QStringLiteral("BASIS("), followB);
    return followBReport;
}

QString Grammar::CommentedFollowL()
{
    if (!GetFlag(GrammarFlag::FollowLDone))
        return NotAnalyzed;
    if (followLReport.isEmpty() || followLReport == NotAnalyzed)
        followLReport = BuildSetReport(QStringLiteral("FOLLOWL("), followL);
    return followLReport;
}

QString Grammar::CommentedFollowR()
{
    if (!GetFlag(GrammarFlag::FollowRDone))
        return NotAnalyzed;
    if (followRReport.isEmpty() || followRReport == NotAnalyzed)
        followRReport = BuildSetReport(QStringLiteral("FOLLOWR("), followR);
    return followRReport;
}

QString Grammar::CommentedFollowSets()
{
    // The three follow sets of each non-terminal one under the other, a blank
    // line between non-terminals, so that what the two expansions of FOLLOWB
    // add can be read off directly.
    if (!GetFlag(GrammarFlag::FollowBDone) || !GetFlag(GrammarFlag::FollowLDone)
        || !GetFlag(GrammarFlag::FollowRDone))
        return NotAnalyzed;
    const Indexed<QString> printed = PrintedSymbols();
    const struct {
        QStringView label;
        const std::vector<CodeList>& sets;
    } kinds[] = {{u"FOLLOWB(", followB}, {u"FOLLOWL(", followL}, {u"FOLLOWR(", followR}};
    const qsizetype width = LabelWidth(kinds[0].label.size());
    qsizetype length = 0;
    for (int a = firstNonterminal; a <= lastCode; ++a)
        for (const auto& kind : kinds)
            length += LineLength(width, kind.sets[a], printed) + 2;
    QString text;
    text.reserve(length);
    for (int a = firstNonterminal; a <= lastCode; ++a) {
        if (a > firstNonterminal)
            text.append(u"\r\n");
        for (const auto& kind : kinds) {
            AppendLabel(text, kind.label, printed[a], width);
            AppendMembers(text, kind.sets[a], printed);
            text.append(u"\r\n");
        }
    }
    return text;
}

QString Grammar::CommentedRules()
{
    // A header with the counts, then rule 0 and the user's rules, one a line:
    // the numbers right-aligned, the "=" signs in one column, an empty right
    // side shown as "ε".
    if (!GetFlag(GrammarFlag::Parsed))
        return NotAnalyzed;
    int emptyRules = 0;
    for (int r = 1; r <= ruleCount; ++r)
        emptyRules += ruleIsEmpty[r] ? 1 : 0;
    QString text;
    auto header = [&text](const char* caption, const QString& value) {
        text += QString::fromLatin1(caption).leftJustified(16) + value + QStringLiteral("\r\n");
    };
    header("Goal:", GetSymbolS(goal));
    header("Terminals:", QString::number(terminalCount));
    header("Non-terminals:", QString::number(NonterminalCount()));
    header("Rules:", QString::number(ruleCount));
    header("Empty rules:", QString::number(emptyRules));
    header("Left-recursive:", GetFlag(GrammarFlag::LeftRecursive) ? QStringLiteral("yes") : QStringLiteral("no"));
    text.append(u"\r\n");

    const Indexed<QString> printed = PrintedSymbols();
    const qsizetype numberWidth = QString::number(ruleCount).size() + 1;
    const qsizetype leftWidth = maxNonterminalName + 2;
    for (int r = 0; r <= ruleCount; ++r) {
        const std::vector<int>& rule = rules[r];
        text += (QLatin1Char('#') + QString::number(r)).rightJustified(numberWidth) + QLatin1Char(' ');
        text += (r == 0 ? GetSymbolS(rule[0]) : printed[rule[0]]).leftJustified(leftWidth);
        text.append(u" =");
        if (ruleIsEmpty[r]) {
            text.append(QLatin1Char(' '));
            text.append(kEpsilon);
        } else {
            for (std::size_t i = 1; i < rule.size(); ++i) {
                text.append(QLatin1Char(' '));
                text.append(printed[rule[i]]);
            }
        }
        text.append(u"\r\n");
    }
    return text;
}
