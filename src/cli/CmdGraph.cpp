/// \file
/// trelk-cli graph: the automaton of an LR view as DOT text or as an SVG
/// picture, whole or around one state.
#include "cli/CliCommands.h"
#include "cli/CliHost.h"

#include "render/DotToSvg.h"
#include "session/AutomatonGraph.h"

#include <cstdio>

namespace {

int GraphUsage(const QString& problem)
{
    WriteErr(QStringLiteral("trelk-cli: graph ") + problem);
    return kExitUsage;
}

} // namespace

int CmdGraph(Workspace& workspace, const CliOptions&, const QStringList& args)
{
    const int view = ParseView(args[1]);
    if (!HasAutomaton(view))
        return GraphUsage(QStringLiteral("takes an LR view (7-9 or slr lalr lr), not ") + args[1]);
    GraphOptions options;
    bool svg = false;
    bool depthGiven = false;
    for (qsizetype i = 2; i < args.size(); ++i) {
        const QString& option = args[i];
        if (i + 1 >= args.size())
            return GraphUsage(option + QStringLiteral(" needs a value; it takes --state N --depth K --format dot|svg"));
        const QString value = args[++i];
        bool ok = false;
        if (option == QStringLiteral("--state")) {
            options.centre = value.toInt(&ok);
            if (!ok || options.centre < 0)
                return GraphUsage(QStringLiteral("--state takes a state number, not ") + value);
        } else if (option == QStringLiteral("--depth")) {
            options.depth = value.toInt(&ok);
            depthGiven = true;
            if (!ok || options.depth < 0)
                return GraphUsage(QStringLiteral("--depth takes a number of transitions (0 or more), not ") + value);
        } else if (option == QStringLiteral("--format")) {
            if (value != QStringLiteral("dot") && value != QStringLiteral("svg"))
                return GraphUsage(QStringLiteral("--format takes dot or svg, not ") + value);
            svg = value == QStringLiteral("svg");
        } else {
            return GraphUsage(QStringLiteral("takes --state N --depth K --format dot|svg, not ") + option);
        }
    }
    if (depthGiven && options.centre < 0)
        return GraphUsage(QStringLiteral("--depth needs --state"));
    if (int status = RunTable(workspace, args[0], view))
        return status;
    const AutomatonGraph graph = BuildAutomatonGraph(workspace, view, options);
    if (!graph.error.isEmpty()) {
        WriteErr(QStringLiteral("trelk-cli: ") + graph.error);
        return kExitUsage;
    }
    QByteArray out = graph.dot.toUtf8();
    if (svg) {
        const SvgPicture picture = DotToSvg(out);
        if (!picture.Ok()) {
            WriteErr(QStringLiteral("trelk-cli: ") + picture.error);
            return kExitGrammar;
        }
        out = picture.svg;
    }
    if (!Interrupt::BeginResult(Interrupt::Result::Text))
        return kExitStopped;
    std::fflush(stdout);
    const bool written = std::fwrite(out.constData(), 1, static_cast<std::size_t>(out.size()), stdout)
                          == static_cast<std::size_t>(out.size());
    return std::fflush(stdout) == 0 && written ? kExitOk : kExitFile;
}
