#include "support/GrammarSamples.h"

#include "support/TestPaths.h"

#include "session/StandaloneExport.h"

#include <QFile>
#include <QProcess>
#include <gtest/gtest.h>

QString Lines(std::initializer_list<const char*> lines)
{
    QStringList list;
    for (const char* l : lines)
        list << QString::fromUtf8(l);
    return list.join(QStringLiteral("\r\n"));
}

QString GrammarOf(const QStringList& rules)
{
    const QString goal = rules.first().left(rules.first().indexOf(QLatin1Char('=')));
    return goal + QStringLiteral("\r\n") + rules.join(QStringLiteral("\r\n"));
}

QString GrammarOf(std::initializer_list<const char*> rules)
{
    QStringList lines;
    for (const char* rule : rules)
        lines << QString::fromUtf8(rule);
    return GrammarOf(lines);
}

std::vector<std::vector<int>> RandomSentences(const Grammar& g, int count, std::mt19937& rng)
{
    const auto at = [](int code) { return static_cast<std::size_t>(code); };
    // The shortest terminal yield of each symbol and its rule, to end derivations.
    std::vector<long> shortest(at(g.lastCode) + 1, 1L << 28);
    std::vector<int> bestRule(at(g.lastCode) + 1, 0);
    std::vector<std::vector<int>> rulesOf(at(g.lastCode) + 1);
    std::fill(shortest.begin(), shortest.begin() + g.firstNonterminal, 1);
    for (int r = 1; r <= g.ruleCount; ++r)
        rulesOf[at(g.rules[at(r)][0])].push_back(r);
    for (bool changed = true; changed;) {
        changed = false;
        for (int r = 1; r <= g.ruleCount; ++r) {
            const std::vector<int>& rule = g.rules[at(r)];
            long length = 0;
            for (std::size_t i = 1; i < rule.size(); ++i)
                length += rule[i] == 0 ? 0 : shortest[at(rule[i])];
            if (length < shortest[at(rule[0])]) {
                shortest[at(rule[0])] = length;
                bestRule[at(rule[0])] = r;
                changed = true;
            }
        }
    }
    std::vector<std::vector<int>> sentences;
    for (int k = 0; k < count; ++k) {
        std::vector<int> out;
        std::vector<std::pair<int, int>> stack{{g.goal, 0}};  // symbol, depth
        while (!stack.empty() && out.size() < 200) {
            const auto [x, depth] = stack.back();
            stack.pop_back();
            if (x != 0 && !g.IsNonterminal(x))
                out.push_back(x);
            if (x == 0 || !g.IsNonterminal(x))
                continue;
            const std::vector<int>& choices = rulesOf[at(x)];
            const std::vector<int>& rule = g.rules[at(depth > 6 ? bestRule[at(x)] : choices[rng() % choices.size()])];
            for (std::size_t i = rule.size() - 1; i >= 1; --i)
                stack.push_back({rule[i], depth + 1});
        }
        if (stack.empty())
            sentences.push_back(out);
    }
    return sentences;
}

std::vector<std::vector<int>> Mutations(const Grammar& g, const std::vector<std::vector<int>>& sentences,
                                        std::mt19937& rng)
{
    std::vector<std::vector<int>> result;
    for (std::vector<int> s : sentences) {
        const int kind = static_cast<int>(rng() % 3);
        const int token = 1 + static_cast<int>(rng() % static_cast<unsigned>(g.terminalCount));
        if (kind == 0 && !s.empty())
            s.erase(s.begin() + static_cast<long>(rng() % s.size()));
        else if (kind == 1)
            s.insert(s.begin() + static_cast<long>(rng() % (s.size() + 1)), token);
        else if (!s.empty())
            s[rng() % s.size()] = token;
        result.push_back(s);
    }
    return result;
}

QString CompileC(const QString& name, const QString& source, QString& errors)
{
    return CompileC(name, source, errors, {QStringLiteral("-std=c99"), QStringLiteral("-Wall"), QStringLiteral("-O1")});
}

QString CompileC(const QString& name, const QString& source, QString& errors, const QStringList& options)
{
    const QString exe = ScratchDir(QStringLiteral("c-") + name) + QLatin1Char('/') + name;
    if (!WriteFileBytes(exe + QStringLiteral(".c"), source.toUtf8()))
        return QString();
    QProcess gcc;
    gcc.start(QStringLiteral("gcc"), options + QStringList{QStringLiteral("-o"), exe, exe + QStringLiteral(".c")});
    const bool built = gcc.waitForFinished(120000) && gcc.exitCode() == 0;
    errors = QString::fromUtf8(gcc.readAllStandardError());
    return built ? exe : QString();
}

QString RunProgram(const QString& program, const QString& input)
{
    QProcess p;
    p.start(program, {});
    p.write(input.toUtf8());
    p.closeWriteChannel();
    EXPECT_TRUE(p.waitForFinished(120000));
    return QString::fromUtf8(p.readAllStandardOutput());
}

QStringList StrictCOptions()
{
    return {QStringLiteral("-std=c99"), QStringLiteral("-Wall"),    QStringLiteral("-Wextra"),
            QStringLiteral("-pedantic"), QStringLiteral("-Werror"), QStringLiteral("-O0")};
}

QString CompileStandalone(Workspace& ws, int view, const QString& name, QString& errors)
{
    const StandaloneProgramResult program = StandaloneProgram(ws, view);
    if (!program.error.isEmpty()) {
        errors = program.error;
        return QString();
    }
    return CompileC(name, program.program, errors, StrictCOptions());
}

QString SentenceLine(const Grammar& g, const std::vector<int>& tokens)
{
    QString line;
    for (std::size_t i = 0; i < tokens.size(); ++i)
        line += (i % 3 == 2 ? QStringLiteral(" [") : QStringLiteral("[")) + g.SymbolName(tokens[i]) + QLatin1Char(']');
    return line;
}

int ExpectRecognizerAgrees(const QString& program, const Grammar& g, const std::vector<std::vector<int>>& strings,
                           const std::function<bool(const std::vector<int>&)>& simulate)
{
    QString input;
    int accepted = 0;
    std::vector<bool> expected;
    for (const std::vector<int>& tokens : strings) {
        input += SentenceLine(g, tokens) + QLatin1Char('\n');
        expected.push_back(simulate(tokens));
        accepted += expected.back() ? 1 : 0;
    }
    const QStringList out = RunProgram(program, input).split(QLatin1Char('\n'));
    EXPECT_EQ(out.size(), static_cast<qsizetype>(strings.size() + 1));
    for (std::size_t i = 0; i < strings.size() && static_cast<qsizetype>(i) < out.size(); ++i)
        EXPECT_EQ(out[static_cast<qsizetype>(i)] == QStringLiteral("accepted"), expected[i])
            << i << ": " << out[static_cast<qsizetype>(i)].toStdString();
    return accepted;
}

QString RandomGrammarText(std::mt19937& rng, bool endMarkers)
{
    const QStringList terminals{QStringLiteral("[a]"), QStringLiteral("[b]"), QStringLiteral("[c]")};
    const QStringList all{QStringLiteral("<S>"), QStringLiteral("<A>"), QStringLiteral("<B>"), QStringLiteral("<C>"),
                          QStringLiteral("<D>")};
    const auto pick = [&](int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); };
    const int nonterminals = 2 + pick(4);
    QStringList lines{QStringLiteral("<S>")};
    for (int a = 0; a < nonterminals; ++a) {
        const int rules = 1 + pick(3);
        for (int k = 0; k < rules; ++k) {
            QString line = all[a] + QLatin1Char('=');
            const int length = pick(4);
            for (int i = 0; i < length; ++i)
                line += pick(5) < 2 ? terminals[pick(3)] : all[pick(nonterminals)];
            if (endMarkers && length > 0 && pick(12) == 0)
                line += QLatin1Char('.');
            if (line != all[a] + QLatin1Char('=') + all[a])  // the parser would drop it
                lines << line;
        }
    }
    // Every non-terminal keeps a rule, and a terminal is named somewhere.
    for (int a = 0; a < nonterminals; ++a)
        if (!lines.join(QString()).contains(all[a] + QLatin1Char('=')))
            lines << all[a] + QStringLiteral("=[c]");
    if (!lines.join(QString()).contains(QLatin1Char('[')))
        lines << QStringLiteral("<S>=[a]");
    return lines.join(QStringLiteral("\r\n"));
}
