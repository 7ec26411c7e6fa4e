/// \file
/// trelk-cli commands that run the analysis as the window's Analyse does:
/// table, export and summary (and the analyser views of view).
#include "cli/CliCommands.h"
#include "cli/CliHost.h"

#include "session/AnalysisRun.h"
#include "session/Export.h"

#include <QElapsedTimer>
#include <cstdio>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

/// The window's side of the analysis run, for a batch run: the grammar text
/// read from the file, the output box kept in memory, no save.
class CliFrontend final : public AnalysisFrontend {
public:
    CliFrontend(QString text, bool wantsOutput)
        : m_text(std::move(text))
        , m_wantsOutput(wantsOutput)
    {
    }
    QString GrammarText() override { return m_text; }
    void SetText2(const QString& text) override { text2 = text; }
    bool WantsOutput() const override { return m_wantsOutput; }
    QString text2;

private:
    QString m_text;
    bool m_wantsOutput;
};

/// A precedence method that refused the grammar before building a table (empty
/// rules, equal right parts, a non-terminal without a left or right set) has
/// left its reason in its result text. True for such a refusal; reason is then
/// the reason shortened ("" for the missing sets).
bool PrecedenceRefusal(const Grammar& g, int view, QString& reason)
{
    const QString text = view == View::SPR ? g.precedence.sprText : g.precedence.oprText;
    if (text == NotAnalyzed)
        return false;
    if (text.endsWith(QStringLiteral("Empty Rules Are Not Allowed.")))
        reason = QStringLiteral("empty rules");
    else if (text.endsWith(QStringLiteral("Rules with Equal Right Parts Are Not Allowed.")))
        reason = QStringLiteral("equal right parts");
    return true;
}

/// After the first Analyse: a grammar that did not parse has had its message
/// shown (a blank file gets one here).
int CheckParsed(const Workspace& workspace, const QString& path, const QString& text)
{
    if (workspace.grammar.Parsed())
        return kExitOk;
    if (Grammar::IsBlankText(text))
        WriteErr(QStringLiteral("trelk-cli: ") + path + QStringLiteral(": the file holds no grammar"));
    return kExitGrammar;
}

} // namespace

int RunView(Workspace& workspace, const QString& path, int view, QString& output, bool wantsOutput)
{
    QString text;
    if (int status = LoadGrammar(workspace, path, text))
        return status;
    // As in the window after File Open: the editor holds the text, the grammar is not parsed yet.
    CliFrontend frontend(text, wantsOutput);
    Analyse(workspace, frontend, view);
    output = frontend.text2;
    return CheckParsed(workspace, path, text);
}

int CmdTable(Workspace& workspace, const CliOptions&, const QStringList& args)
{
    const int view = ParseView(args[1]);
    if (view < View::LL) {
        WriteErr(QStringLiteral("trelk-cli: table takes an analyser view (6-11 or ll slr lalr lr spr opr), not ")
                 + args[1]);
        return kExitUsage;
    }
    QString output;
    if (int status = RunView(workspace, args[0], view, output, false))
        return status;
    // A run that a limit stopped has no table (its message is on stderr).
    if (!workspace.current || !workspace.grammar.GetFlag(view))
        return kExitGrammar;
    std::fflush(stdout);
    StreamSink out(stdout, true);
    workspace.current->WriteTable(out);
    out.Flush();
    return out.Ok() ? kExitOk : kExitFile;
}

int CmdExport(Workspace& workspace, const CliOptions&, const QStringList& args)
{
    const int view = ParseView(args[1]);
    if (view < 0) {
        WriteErr(QStringLiteral("trelk-cli: unknown view ") + args[1]);
        return kExitUsage;
    }
    QString output;
    if (int status = RunView(workspace, args[0], view, output, false))
        return status;
    CliFrontend frontend(QString(), false);
    const QString written = ExportView(workspace, frontend, view);
    if (written.isEmpty())
        return kExitGrammar;  // the reason is on stderr
    WriteOut(written + QLatin1Char('\n'));
    return kExitOk;
}

int CmdSummary(Workspace& workspace, const CliOptions&, const QStringList& args)
{
    bool json = false;
    QString require;
    for (qsizetype i = 1; i < args.size(); ++i) {
        if (args[i] == QStringLiteral("--json")) {
            json = true;
        } else if (args[i] == QStringLiteral("--require") && i + 1 < args.size()) {
            require = args[++i];
        } else {
            WriteErr(QStringLiteral("trelk-cli: summary takes --json and --require METHOD, not ") + args[i]);
            return kExitUsage;
        }
    }
    int required = -1;
    if (!require.isEmpty()) {
        required = ParseView(require);
        if (required < View::LL) {
            WriteErr(QStringLiteral("trelk-cli: --require takes ll slr lalr lr spr opr, not ") + require);
            return kExitUsage;
        }
    }
    QString text;
    if (int status = LoadGrammar(workspace, args[0], text))
        return status;
    CliFrontend frontend(text, false);
    Grammar& g = workspace.grammar;
    // A grammar its companion restored keeps its results; any other is readied first.
    if (!g.Parsed())
        Analyse(workspace, frontend, View::Grammar);
    if (int status = CheckParsed(workspace, args[0], text))
        return status;

    QJsonArray methods;
    QString lines;
    bool requiredPasses = true;
    for (const ViewInfo& m : Views()) {
        if (!m.IsAnalyser())
            continue;
        QElapsedTimer timer;
        timer.start();
        Analyse(workspace, frontend, m.number);
        const qint64 ms = timer.elapsed();
        const bool analysed = IsAnalysed(workspace, m.number);
        QJsonObject o;
        o[QStringLiteral("method")] = QString::fromLatin1(m.name);
        o[QStringLiteral("analysed")] = analysed;
        QString size, verdict, refusal;
        int conflicts = 0;
        bool passes = false;
        if (!analysed) {
            // Left recursion stops LL(1) before a table exists: that is a verdict too.
            if (m.number == View::LL && g.GetFlag(GrammarFlag::LeftRecursive)) {
                verdict = QStringLiteral("not LL(1): left recursion");
                o[QStringLiteral("analysed")] = true;
                o[QStringLiteral("passes")] = false;
            } else if (m.number >= View::SPR && PrecedenceRefusal(g, m.number, refusal)) {
                verdict = QStringLiteral("not ") + QString::fromLatin1(m.method);
                o[QStringLiteral("analysed")] = true;
                o[QStringLiteral("passes")] = false;
                if (!refusal.isEmpty())
                    o[QStringLiteral("reason")] = refusal;
            } else {
                verdict = QStringLiteral("not analysed");
            }
        } else if (m.number == View::LL) {
            passes = workspace.ll.synta.ConflictCount() == 0;
            conflicts = workspace.ll.synta.ConflictCount();
            size = QStringLiteral("table %1x%2").arg(workspace.ll.synta.Rows()).arg(workspace.ll.synta.Columns());
            o[QStringLiteral("rows")] = workspace.ll.synta.Rows();
            o[QStringLiteral("columns")] = workspace.ll.synta.Columns();
        } else if (m.number <= View::LR) {
            const LrResults& r = m.number == View::SLR ? workspace.slr : m.number == View::LALR ? workspace.lalr : workspace.lr;
            conflicts = static_cast<int>(r.conflicts.size());
            passes = conflicts == 0;
            size = QStringLiteral("%1 states").arg(r.States());
            o[QStringLiteral("states")] = r.States();
        } else {
            const PrecedenceMatrix& synta = m.number == View::SPR ? workspace.spr.synta : workspace.opr.synta;
            conflicts = synta.ConflictCount();
            passes = conflicts == 0;
            size = QStringLiteral("table %1x%1").arg(synta.Size());
            o[QStringLiteral("rows")] = synta.Size();
            o[QStringLiteral("columns")] = synta.Size();
        }
        if (analysed) {
            verdict = passes ? QString::fromLatin1(m.method) : QStringLiteral("not ") + QString::fromLatin1(m.method);
            o[QStringLiteral("passes")] = passes;
            o[QStringLiteral("conflicts")] = conflicts;
        }
        o[QStringLiteral("elapsed")] = ElapsedText(ms);
        o[QStringLiteral("elapsedMs")] = ms;
        methods.append(o);
        if (m.number == required && !(analysed && passes))
            requiredPasses = false;
        lines += QString::fromLatin1(m.method).leftJustified(20) + verdict.leftJustified(28);
        if (analysed)
            lines += size.leftJustified(16) + QStringLiteral("%1 conflicts").arg(conflicts).leftJustified(16);
        else
            lines += refusal.leftJustified(32);
        lines += ElapsedText(ms);
        while (lines.endsWith(QLatin1Char(' ')))
            lines.chop(1);
        lines += QLatin1Char('\n');
    }
    if (json) {
        QJsonObject root;
        root[QStringLiteral("grammar")] = args[0];
        root[QStringLiteral("terminals")] = g.terminalCount;
        root[QStringLiteral("nonterminals")] = g.NonterminalCount();
        root[QStringLiteral("rules")] = g.ruleCount;
        root[QStringLiteral("methods")] = methods;
        WriteOut(QString::fromUtf8(QJsonDocument(root).toJson(QJsonDocument::Indented)));
    } else {
        WriteOut(lines);
    }
    return requiredPasses ? kExitOk : kExitRequire;
}
