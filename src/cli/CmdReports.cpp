/// \file
/// trelk-cli commands that show the grammar reports and sets: "view" prints
/// what the output box shows after Analyse on a report view, "sets" prints the
/// nullable marks, FIRST and the three follow sets as JSON.
#include "cli/CliCommands.h"
#include "cli/CliHost.h"

#include "session/Views.h"

#include <iterator>

namespace {

/// Loads and parses the grammar, then computes the three follow sets as the
/// Analyse command does before it shows a report. Returns an exit status.
int ReadyGrammar(Workspace& workspace, const QString& path)
{
    QString text;
    if (int status = LoadGrammar(workspace, path, text))
        return status;
    if (int status = ParseGrammar(workspace, path, text))
        return status;
    Grammar& g = workspace.grammar;
    g.SetInProcess(true);
    g.FindFollowB();
    if (g.InProcess())
        g.FindFollowL();
    if (g.InProcess())
        g.FindFollowR();
    g.SetInProcess(false);
    return kExitOk;
}

QString JsonString(const QString& s)
{
    QString out = QStringLiteral("\"");
    for (const QChar ch : s) {
        const char16_t u = ch.unicode();
        if (u == u'"' || u == u'\\')
            out += QLatin1Char('\\') + ch;
        else if (u < 0x20)
            out += QStringLiteral("\\u%1").arg(static_cast<int>(u), 4, 16, QLatin1Char('0'));
        else
            out += ch;
    }
    return out + QLatin1Char('"');
}

/// ["a", "b"] from the printed symbols of codes.
template <typename Codes>
QString JsonSymbols(const Grammar& g, const Codes& codes)
{
    QStringList items;
    for (int c : codes)
        items << JsonString(g.GetSymbolS(c));
    return QLatin1Char('[') + items.join(QStringLiteral(", ")) + QLatin1Char(']');
}

/// "key": { one "<A>": value line per non-terminal, in code order }.
template <typename Value>
QString JsonPerNonterminal(const Grammar& g, const char* key, Value value)
{
    QString out = QStringLiteral("  \"") + QLatin1String(key) + QStringLiteral("\": {\n");
    for (int a = g.firstNonterminal; a <= g.lastCode; ++a) {
        out += QStringLiteral("    ") + JsonString(g.GetSymbolS(a)) + QStringLiteral(": ") + value(a);
        out += a < g.lastCode ? QStringLiteral(",\n") : QStringLiteral("\n");
    }
    return out + QStringLiteral("  }");
}

QString SetsJson(const Grammar& g)
{
    auto at = [](const std::vector<CodeList>& sets, int a) -> const CodeList& { return sets[a]; };
    std::vector<int> terminals, nonterminals;
    for (int c = 1; c <= g.terminalCount; ++c)
        terminals.push_back(c);
    for (int c = g.firstNonterminal; c <= g.lastCode; ++c)
        nonterminals.push_back(c);

    QStringList parts;
    parts << QStringLiteral("  \"goal\": ") + JsonString(g.GetSymbolS(g.goal));
    parts << QStringLiteral("  \"terminals\": ") + JsonSymbols(g, terminals);
    parts << QStringLiteral("  \"nonterminals\": ") + JsonSymbols(g, nonterminals);
    parts << JsonPerNonterminal(g, "nullable", [&g](int a) {
        return g.nullable[a] ? QStringLiteral("true") : QStringLiteral("false");
    });
    parts << JsonPerNonterminal(g, "first", [&](int a) { return JsonSymbols(g, at(g.first, a)); });

    QString rules = QStringLiteral("  \"firstOfRule\": [\n");
    for (int r = 1; r <= g.ruleCount; ++r) {
        const std::vector<int>& rule = g.rules[r];
        const std::vector<int> right = g.ruleIsEmpty[r]
                                           ? std::vector<int>()
                                           : std::vector<int>(rule.begin() + 1, rule.end());
        rules += QStringLiteral("    {\"rule\": %1, \"left\": ").arg(r) + JsonString(g.GetSymbolS(rule[0]))
               + QStringLiteral(", \"right\": ") + JsonSymbols(g, right) + QStringLiteral(", \"first\": ")
               + JsonSymbols(g, g.firstOfRule[r]) + QLatin1Char('}');
        rules += r < g.ruleCount ? QStringLiteral(",\n") : QStringLiteral("\n");
    }
    parts << rules + QStringLiteral("  ]");

    parts << JsonPerNonterminal(g, "followB", [&](int a) { return JsonSymbols(g, at(g.followB, a)); });
    parts << JsonPerNonterminal(g, "followL", [&](int a) { return JsonSymbols(g, at(g.followL, a)); });
    parts << JsonPerNonterminal(g, "followR", [&](int a) { return JsonSymbols(g, at(g.followR, a)); });
    return QStringLiteral("{\n") + parts.join(QStringLiteral(",\n")) + QStringLiteral("\n}\n");
}

} // namespace

int CmdView(Workspace& workspace, const CliOptions&, const QStringList& args)
{
    const int view = ParseView(args[1]);
    if (view < 0) {
        WriteErr(QStringLiteral("trelk-cli: unknown view ") + args[1]);
        return kExitUsage;
    }
    // What the output box shows after Analyse on the view (view 0: the numbered rules).
    QString text;
    const int status = RunView(workspace, args[0], view, text);
    if (status != kExitOk || !Interrupt::BeginResult(Interrupt::Result::Text))
        return status;
    if (!text.isEmpty() && !text.endsWith(QLatin1Char('\n')))
        text += QLatin1Char('\n');
    WriteOut(text);
    // An analyser that a limit stopped has shown its message and has no table.
    // A refusal is a verdict like any other; a run that a limit stopped has no result.
    const bool limited = ViewOf(view).IsAnalyser() && OutcomeOf(workspace, view) == TableOutcome::Limited;
    return limited ? kExitGrammar : kExitOk;
}

int CmdSets(Workspace& workspace, const CliOptions&, const QStringList& args)
{
    // "sets GRAMMAR --json"; the option may come first.
    const qsizetype json = args.indexOf(QStringLiteral("--json"));
    if (json < 0) {
        if (args.size() == 1) {
            WriteErr(QStringLiteral("trelk-cli: sets needs --json (the sets are printed as JSON only)"));
        } else {
            const QString other = args[0].startsWith(QStringLiteral("--")) ? args[0] : args[1];
            WriteErr(QStringLiteral("trelk-cli: sets takes --json only, not ") + other);
        }
        return kExitUsage;
    }
    if (args.size() == 1) {
        WriteErr(QStringLiteral("trelk-cli: sets needs a grammar file"));
        return kExitUsage;
    }
    const QString path = args[json == 0 ? 1 : 0];
    if (int status = ReadyGrammar(workspace, path))
        return status;
    // The follow sets are complete unless Ctrl-C stopped them.
    if (!Interrupt::BeginResult(Interrupt::Result::Text))
        return kExitStopped;
    WriteOut(SetsJson(workspace.grammar));
    return kExitOk;
}
