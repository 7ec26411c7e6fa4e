/// \file
/// The notation parser: SetText cuts the text into lines, reads the goal line
/// and the rule lines, codes the symbols and rules, and runs the grammar-wide
/// checks (undefined non-terminals, equal right sides, empty rules, name
/// lengths, FIRST, left recursion). Every notation error goes to the host as
/// one critical message and ends the parse.
#include "grammar/Grammar.h"

#include <QHash>
#include <new>
#include <unordered_set>

namespace {

const QChar kSpace = QLatin1Char(' ');

/// Trims the space character only (not tabs or other white space).
QString TrimSpaces(const QString& s)
{
    qsizetype b = 0, e = s.size();
    while (b < e && s[b] == kSpace)
        ++b;
    while (e > b && s[e - 1] == kSpace)
        --e;
    return s.mid(b, e - b);
}

/// Splits at CR LF, trims each piece, keeps the non-empty ones with every space removed.
std::vector<QString> SplitGrammarLines(const QString& text)
{
    std::vector<QString> lines;
    qsizetype start = 0;
    while (start <= text.size()) {
        qsizetype end = text.indexOf(QStringLiteral("\r\n"), start);
        if (end < 0)
            end = text.size();
        QString piece = TrimSpaces(text.mid(start, end - start));
        if (!piece.isEmpty()) {
            piece.remove(kSpace);
            lines.push_back(piece);
        }
        start = end + 2;
    }
    return lines;
}

QString Num(qsizetype n)
{
    return QString::number(n);
}

struct RuleHash {
    std::size_t operator()(const std::vector<int>& rule) const noexcept
    {
        std::size_t h = rule.size();
        for (int c : rule)
            h = h * 1000003u ^ static_cast<std::size_t>(c);
        return h;
    }
};

/// The state of one parse: the line being read and the provisional symbol lists.
/// Provisional codes: a terminal is its 1-based position in the terminal list,
/// a non-terminal the negated position in the non-terminal list, 0 the end marker.
class NotationReader {
public:
    explicit NotationReader(Host& host)
        : m_host(host)
    {
    }

    Indexed<QString> terminals{QString()};     ///< from 1
    Indexed<QString> nonterminals{QString()};  ///< from 1
    std::optional<ParseError> error;           ///< the place and text of the failure

    int AddTerminalName(const QString& name)
    {
        auto it = m_terminalIndex.constFind(name);
        if (it != m_terminalIndex.constEnd())
            return *it;
        terminals.push_back(name);
        const int position = terminals.size() - 1;
        m_terminalIndex.insert(name, position);
        return position;
    }

    int AddNonterminalName(const QString& name)
    {
        auto it = m_nonterminalIndex.constFind(name);
        if (it != m_nonterminalIndex.constEnd())
            return -*it;
        nonterminals.push_back(name);
        const int position = nonterminals.size() - 1;
        m_nonterminalIndex.insert(name, position);
        return -position;
    }

    /// Reads the goal line: text before the first "<" is ignored, further "<" are
    /// skipped, the name runs to the first ">", which must end the line.
    bool ParseGoalLine(const QString& line, QString& name)
    {
        enum { Before, Inside, Done } state = Before;
        qsizetype i = 0;
        for (; i < line.size(); ++i) {
            const QChar c = line[i];
            if (state == Before) {
                if (c == QLatin1Char('<'))
                    state = Inside;
            } else if (c == QLatin1Char('>')) {
                state = Done;
                break;
            } else if (c != QLatin1Char('<')) {
                name += c;
            }
        }
        if (state != Done || i != line.size() - 1)
            return Fail(QStringLiteral("Первая строка должна содержать целевой символ."), 1);
        return true;
    }

    /// Reads one rule line (already cut to start at its first "<") into rule.
    bool ReadRuleLine(QString line, int lineNo, std::vector<int>& rule)
    {
        qsizetype len = line.size();
        qsizetype pos = 1;
        int code = 0;
        if (!ScanNonterminal(line, lineNo, pos, code))
            return false;
        if (pos > len)
            return Fail(QStringLiteral("Unexpected end of line ") + Num(lineNo) + QLatin1Char('.'), lineNo);
        rule.push_back(code);
        if (line[pos - 1] != QLatin1Char('='))
            return Fail(QStringLiteral("Equal sign (=) expected in line ") + Num(lineNo) + QLatin1Char('.'), lineNo);
        ++pos;
        if (pos > len) {
            // The empty right side is read as the end marker alone.
            line += QLatin1Char('.');
            ++len;
        }
        while (pos <= len) {
            const QChar c = line[pos - 1];
            if (c == QLatin1Char('[')) {
                if (!ScanTerminal(line, lineNo, pos, code))
                    return false;
                rule.push_back(code);
            } else if (c == QLatin1Char('<')) {
                if (!ScanNonterminal(line, lineNo, pos, code))
                    return false;
                rule.push_back(code);
            } else if (c == QLatin1Char('.')) {
                rule.push_back(0);
                ++pos;
                if (pos <= len)
                    return ExtraCharacter(line[pos - 1], lineNo, pos);
            } else {
                return ExtraCharacter(c, lineNo, pos);
            }
        }
        return true;
    }

private:
    bool Fail(const QString& message, int lineNo, qsizetype pos = 0)
    {
        error = ParseError{lineNo, static_cast<int>(pos), message};
        m_host.critical(message);
        return false;
    }

    bool QuotedCharacter(const QString& lead, QChar c, int lineNo, qsizetype pos)
    {
        return Fail(lead + QLatin1Char('"') + c + QLatin1Char('"') + QStringLiteral(" in [") + Num(lineNo)
                        + QLatin1Char(',') + Num(pos) + QStringLiteral("]."),
                    lineNo, pos);
    }

    bool ExtraCharacter(QChar c, int lineNo, qsizetype pos)
    {
        return QuotedCharacter(QStringLiteral("Extra character "), c, lineNo, pos);
    }

    bool ScanTerminal(const QString& line, int lineNo, qsizetype& pos, int& code)
    {
        const qsizetype len = line.size();
        if (pos > len)
            return Fail(QStringLiteral("Unexpected end of line ") + Num(lineNo) + QLatin1Char('.'), lineNo);
        if (line[pos - 1] != QLatin1Char('['))
            return QuotedCharacter(QStringLiteral("Invalid symbol "), line[pos - 1], lineNo, pos);
        qsizetype close = line.indexOf(QLatin1Char(']'), pos) + 1;  // 1-based, 0 when absent
        if (close == 0)
            return Fail(QStringLiteral("Unclosed terminal in line ") + Num(lineNo) + QLatin1Char('.'), lineNo);
        QString name = line.mid(pos, close - pos - 1);
        if (name.isEmpty()) {
            // "[]]" names the terminal "]": the name is taken from behind "[]" up to
            // and including the next "]".
            close = line.indexOf(QLatin1Char(']'), pos + 1) + 1;
            if (close == 0)
                return Fail(QStringLiteral("Empty terminal in line ") + Num(lineNo) + QLatin1Char('.'), lineNo);
            name = line.mid(pos + 1, close - pos - 1);
            if (name.isEmpty())
                return Fail(QStringLiteral("Empty terminal in line ") + Num(lineNo) + QLatin1Char('.'), lineNo);
        }
        code = AddTerminalName(name);
        pos = close + 1;
        return true;
    }

    bool ScanNonterminal(const QString& line, int lineNo, qsizetype& pos, int& code)
    {
        const qsizetype len = line.size();
        if (pos > len)
            return Fail(QStringLiteral("Unexpected end of line ") + Num(lineNo) + QLatin1Char('.'), lineNo);
        if (line[pos - 1] != QLatin1Char('<'))
            return QuotedCharacter(QStringLiteral("Invalid symbol "), line[pos - 1], lineNo, pos);
        const qsizetype close = line.indexOf(QLatin1Char('>'), pos) + 1;
        if (close == 0)
            return Fail(QStringLiteral("Unclosed nonterminal in line ") + Num(lineNo) + QLatin1Char('.'), lineNo);
        const QString name = line.mid(pos, close - pos - 1);
        if (name.isEmpty())
            return Fail(QStringLiteral("Empty nonterminal in line ") + Num(lineNo) + QLatin1Char('.'), lineNo);
        code = AddNonterminalName(name);
        pos = close + 1;
        return true;
    }

    Host& m_host;
    QHash<QString, int> m_terminalIndex;
    QHash<QString, int> m_nonterminalIndex;
};

} // namespace

bool Grammar::ParseGrammarText(const QString& text)
{
    std::vector<QString> lines = SplitGrammarLines(text);
    if (lines.empty())
        return false;  // the caller has checked; a text of blank lines only is blank
    Clear();

    NotationReader reader(host());
    QString goalName;
    if (!reader.ParseGoalLine(lines[0], goalName)) {
        m_parseError = reader.error;
        return false;
    }
    reader.AddNonterminalName(goalName);

    std::vector<std::vector<int>> parsed;
    for (std::size_t index = 1; index < lines.size(); ++index) {
        QString& line = lines[index];
        const qsizetype lt = line.indexOf(QLatin1Char('<'));
        if (lt < 0)
            continue;  // a line without "<" is a comment
        // The leading "'" / "--" comment test is applied to the cut line, which
        // always starts with "<", so it never matches: on purpose, a line that
        // holds "<" is a rule line whatever stands before it.
        std::vector<int> rule;
        if (!reader.ReadRuleLine(line.mid(lt), static_cast<int>(index) + 1, rule)) {
            m_parseError = reader.error;
            return false;
        }
        parsed.push_back(std::move(rule));
        host().yield();
        if (!InProcess())
            return false;
    }

    terminalCount = reader.terminals.size() - 1;
    const int nonterminals = reader.nonterminals.size() - 1;
    firstNonterminal = terminalCount + 1;
    lastCode = terminalCount + nonterminals;
    terminalNames = reader.terminals;
    nonterminalNames = reader.nonterminals;
    symbolNames.resize(static_cast<std::size_t>(lastCode) + 3);
    symbolNames[1] = QString(QChar(0x2022));  // the item mark of LR displays
    for (int t = 1; t <= terminalCount; ++t)
        symbolNames[t + 2] = reader.terminals[t];
    for (int q = 1; q <= nonterminals; ++q)
        symbolNames[terminalCount + q + 2] = reader.nonterminals[q];

    // Re-code and store the rules (AddRuleUnique). Names are unique within each
    // list and the final table lists terminals, then non-terminals, in list
    // order, so looking a name up from code 1 (terminals) or T+1 (non-terminals)
    // finds exactly position p, or T + q.
    rules.assign(1, {-2, firstNonterminal});
    std::unordered_set<std::vector<int>, RuleHash> stored;
    stored.reserve(parsed.size());
    for (std::vector<int>& rule : parsed) {
        for (int& c : rule)
            if (c < 0)
                c = terminalCount - c;
        if (rule.size() == 1)
            rule.push_back(0);
        if (rule.size() == 2 && rule[1] == rule[0])
            continue;  // <A>=<A> is dropped
        if (!stored.insert(rule).second)
            continue;  // a rule written twice is stored once
        rules.push_back(std::move(rule));
    }
    ruleCount = static_cast<int>(rules.size()) - 1;
    goal = firstNonterminal;
    return true;
}

bool Grammar::IsBlankText(const QString& text)
{
    return TrimSpaces(text).isEmpty() || SplitGrammarLines(text).empty();
}

bool Grammar::SetText(const QString& text)
{
    m_parseError.reset();
    if (IsBlankText(text))
        return false;  // blank text: the grammar keeps its previous content
    try {
        return ReadText(text);
    } catch (const std::bad_alloc&) {
        // Whatever was built is partial: nothing of it stays.
        Clear();
        SetInProcess(false);
        host().critical(kOutOfMemoryText);
        return false;
    }
}

bool Grammar::ReadText(const QString& text)
{
    // The parse gives the message loop turns and stops when InProcess is cleared,
    // so it runs with the flag raised.
    SetInProcess(true);
    if (!ParseGrammarText(text))
        return false;
    if (!CheckDefinitions())
        return false;

    SetParsed(true);
    SetFlag(GrammarFlag::Parsed, true);
    BuildSymbolListing();
    FindEqualRightSides();
    ComputeNameLengths();
    MarkEmptyRules();
    ComputeFirstSets();

    if (InProcess()) {
        SetFlag(GrammarFlag::LeftRecursive, false);
        SetFlag(GrammarFlag::LLPermitted, true);
        if (FindLeftRecursion()) {
            SetFlag(GrammarFlag::LeftRecursive, true);
            SetFlag(GrammarFlag::LLPermitted, false);
            llRejection = QStringLiteral("Left Recursion Is Not Allowed.\r\nThis Grammar Is Not LL(1).");
        }
    }
    return InProcess();
}

bool Grammar::CheckDefinitions()
{
    Indexed<char> defined(lastCode + 1, 0);
    for (int r = 1; r <= ruleCount; ++r)
        defined[rules[r][0]] = 1;
    for (int a = firstNonterminal; a <= lastCode; ++a)
        if (!defined[a]) {
            m_parseError = ParseError{0, 0, QStringLiteral("Non-terminal ") + SymbolName(a) + QStringLiteral(" is not defined.")};
            host().critical(m_parseError->text);
            return false;
        }
    return true;
}

void Grammar::BuildSymbolListing()
{
    // One line per code, the codes right-aligned to a common width, each line
    // led in by "// " so that the listing can stand inside generated C.
    const int width = static_cast<int>(QString::number(lastCode).size());
    QString listing = QStringLiteral("// ") + QStringLiteral("0").rightJustified(width) + QStringLiteral(" EOT\r\n");
    for (int c = 1; c <= lastCode; ++c)
        listing += QStringLiteral("// ") + QString::number(c).rightJustified(width) + QLatin1Char(' ') + GetSymbolS(c)
                 + QStringLiteral("\r\n");
    symbolListing = listing;
}

void Grammar::FindEqualRightSides()
{
    // Two rules with the same right side (left sides not compared). A hash of the
    // right sides seen so far finds the first such pair in one pass.
    SetFlag(GrammarFlag::NoEqualRightSides, true);
    std::unordered_set<std::vector<int>, RuleHash> seen;
    seen.reserve(static_cast<std::size_t>(ruleCount));
    for (int r = 1; r <= ruleCount; ++r) {
        const std::vector<int>& rule = rules[r];
        if (!seen.insert(std::vector<int>(rule.begin() + 1, rule.end())).second) {
            SetFlag(GrammarFlag::NoEqualRightSides, false);
            return;
        }
        host().yield();
        if (!InProcess())
            return;
    }
}

void Grammar::ComputeNameLengths()
{
    // Each maximum starts at 1 on purpose: a floor for the report columns.
    maxTerminalName = maxNonterminalName = maxName = 1;
    for (int c = 1; c <= terminalCount; ++c)
        maxTerminalName = std::max(maxTerminalName, static_cast<int>(SymbolName(c).size()));
    for (int c = firstNonterminal; c <= lastCode; ++c)
        maxNonterminalName = std::max(maxNonterminalName, static_cast<int>(SymbolName(c).size()));
    maxName = std::max(maxTerminalName, maxNonterminalName);
}

void Grammar::MarkEmptyRules()
{
    ruleIsEmpty.assign(static_cast<std::size_t>(ruleCount) + 1, 0);
    hasEmptyRule.assign(static_cast<std::size_t>(lastCode) + 1, 0);
    SetFlag(GrammarFlag::HasEmptyRule, false);
    maxRuleLength = 0;
    for (int r = 1; r <= ruleCount; ++r) {
        const std::vector<int>& rule = rules[r];
        if (rule.size() == 2 && rule[1] == 0) {
            ruleIsEmpty[r] = 1;
            hasEmptyRule[rule[0]] = 1;
            SetFlag(GrammarFlag::HasEmptyRule, true);
        } else {
            maxRuleLength = std::max(maxRuleLength, static_cast<int>(rule.size()));
        }
    }
}
