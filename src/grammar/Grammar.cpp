/// \file
/// Grammar housekeeping: construction, Clear, the path properties, the symbol
/// printers, the canonical text, the snapshot and the grammar-wide flags.
#include "grammar/Grammar.h"

#include <algorithm>

SilentHost& SilentHost::Instance()
{
    static SilentHost host;
    return host;
}

Grammar::Grammar(Host* host)
    : m_host(host ? host : &SilentHost::Instance())
{
    Clear();
}

void Grammar::setHost(Host* host)
{
    m_host = host ? host : &SilentHost::Instance();
}

void Grammar::Clear()
{
    // The bullet at -1 is stored by the parse, not here.
    symbolNames.assign(3, QString());
    symbolNames[0] = QStringLiteral("<'>");
    symbolNames[2] = QStringLiteral(".");
    grammarText.clear();
    symbolListing.clear();
    llRejection.clear();

    terminalNames.assign(1, QString());
    nonterminalNames.assign(1, QString());
    ruleCount = 0;
    lastCode = 0;
    terminalCount = 0;
    firstNonterminal = 1;
    goal = 0;
    rules.assign(1, std::vector<int>());
    ruleIsEmpty.assign(1, 0);
    hasEmptyRule.assign(1, 0);
    nullable.assign(1, 0);
    leftRecursive.assign(1, 0);
    ruleNullable.assign(1, 0);
    maxRuleLength = 0;
    maxTerminalName = maxNonterminalName = maxName = 1;

    for (auto* sets : {&first, &firstOfRule, &followB, &followL, &followR, &directFirst, &leftSet,
                       &rightSet, &leftTermSet, &rightTermSet})
        sets->assign(1, CodeList());

    ResetFlags();
    precedence = PrecedenceState();
    firstReport = followBReport = followLReport = followRReport = NotAnalyzed;
    m_parsed = false;
}

SetBudget Grammar::SetAllowance(std::initializer_list<const Indexed<CodeList>*> family) const
{
    std::int64_t held = 0;
    for (const auto* sets : {&first, &firstOfRule, &followB, &followL, &followR, &directFirst, &leftSet,
                             &rightSet, &leftTermSet, &rightTermSet}) {
        if (std::find(family.begin(), family.end(), sets) != family.end())
            continue;
        for (const CodeList& set : *sets)
            held += static_cast<std::int64_t>(set.Bytes());
    }
    return SetBudget(static_cast<std::int64_t>(limits.setBytes) - held);
}

void Grammar::RefuseSets(const QString& sets)
{
    host().critical(SetsTooLargeText(sets, limits.setBytes));
    SetInProcess(false);
}

void Grammar::SetPath(const QString& path)
{
    m_path = path;
    const qsizetype sep = std::max(path.lastIndexOf(QLatin1Char('\\')), path.lastIndexOf(QLatin1Char('/')));
    if (sep < 0)
        return;
    m_initDir = path.left(sep + 1);
    // On purpose: the last four characters go whatever they are, so a name
    // without a four-character extension loses real characters.
    m_name = path.mid(sep + 1).chopped(std::min<qsizetype>(4, path.size() - sep - 1));
}

QString Grammar::GetSymbolS(int code) const
{
    if (code == 0)
        return QStringLiteral("$");
    if (code < 0)
        return SymbolName(code);
    if (IsTerminal(code))
        return QLatin1Char('[') + SymbolName(code) + QLatin1Char(']');
    return QLatin1Char('<') + SymbolName(code) + QLatin1Char('>');
}

QString Grammar::GetSymbolT(int code) const
{
    return code == 0 ? QStringLiteral("EOT") : GetSymbolS(code);
}

QString Grammar::Text()
{
    if (terminalCount == 0)
        return QString();
    QString text = QStringLiteral("#0 <") + SymbolName(goal) + QLatin1Char('>');
    for (int r = 1; r <= ruleCount; ++r) {
        const std::vector<int>& rule = rules[r];
        text += QStringLiteral("\r\n#") + QString::number(r) + QStringLiteral(" <") + SymbolName(rule[0])
              + QStringLiteral(">=");
        for (std::size_t i = 1; i < rule.size(); ++i) {
            const int c = rule[i];
            if (c == 0)
                text += SymbolName(0);
            else if (IsTerminal(c))
                text += QLatin1Char('[') + SymbolName(c) + QLatin1Char(']');
            else
                text += QLatin1Char('<') + SymbolName(c) + QLatin1Char('>');
        }
    }
    grammarText = text;
    return text;
}

void Grammar::MakeACopy()
{
    copySymbolNames = symbolNames;
    copyRules = rules;
    copyGoal = goal;
    copyFirstNonterminal = firstNonterminal;
    copyTerminalCount = terminalCount;
    copyRuleCount = ruleCount;
    copyLastCode = lastCode;
}

void Grammar::ResetFlags()
{
    flags.fill(std::nullopt);
}

void Grammar::SetFlag(int index, bool value)
{
    if (index >= 0 && index < GrammarFlag::Count)
        flags[index] = value;
}

bool Grammar::GetFlag(int index) const
{
    return index >= 0 && index < GrammarFlag::Count && flags[index].value_or(false);
}
