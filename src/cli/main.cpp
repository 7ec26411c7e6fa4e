/// \file
/// trelk-cli: the batch front end. Global options come before the command;
/// every command reads its grammar exactly as File Open does.
#include "cli/CliCommands.h"
#include "cli/CliHost.h"

#include <QCoreApplication>
#include <QStringList>

namespace {

const char kUsage[] =
    "usage: trelk-cli [--ini FILE] COMMAND GRAMMAR [ARGS]\n"
    "commands:\n"
    "  check GRAMMAR        parse and check the grammar\n"
    "  view GRAMMAR VIEW    what the output box shows after Analyse on VIEW\n"
    "  sets GRAMMAR --json  nullable marks, FIRST and the follow sets as JSON\n"
    "  table GRAMMAR VIEW [--standalone]\n"
    "                       the C text of analyser VIEW (6-11 or ll slr lalr lr spr opr);\n"
    "                       --standalone: a whole C program with a recognizer and main()\n"
    "  export GRAMMAR VIEW  write the export file of VIEW beside GRAMMAR, print its path\n"
    "  summary GRAMMAR [--json] [--require METHOD]\n"
    "                       one line per method: verdict, size, conflicts, time\n"
    "  compile GRAMMAR      run every analysis, save GRAMMAR and its companion .tkc as\n"
    "                       the workbench saves them, print the companion's path\n"
    "  explain GRAMMAR VIEW [--json] [--budget MS]\n"
    "                       each conflict of analyser VIEW: its rules, a shortest way in\n"
    "                       and a counterexample (MS: the search time of each, default 500)\n"
    "  parse GRAMMAR VIEW SENTENCE [--json] [--trace]\n"
    "                       run SENTENCE (\"[a][+][a]\" or \"a + a\") through the table of\n"
    "                       analyser VIEW as its sample recognizer would; exit 5 when rejected\n"
    "  graph GRAMMAR VIEW [--state N [--depth K]] [--format dot|svg]\n"
    "                       the automaton of LR VIEW (slr lalr lr) as DOT text or SVG,\n"
    "                       whole or the states within K transitions of state N (K: 2)\n"
    "  transform GRAMMAR CODE\n"
    "                       write GRAMMAR-CODE.tkg beside GRAMMAR, print its path; CODE is\n"
    "                       GR RC RE LF LR UU (group rules, remove cycles, empty rules,\n"
    "                       left factoring, left recursion, unused symbols)\n"
    "VIEW is 0-11 or grammar symbols first basis followl followr ll slr lalr lr spr opr.\n";

int Usage(const QString& problem)
{
    if (!problem.isEmpty())
        WriteErr(QStringLiteral("trelk-cli: ") + problem);
    WriteErr(QString::fromLatin1(kUsage));
    return kExitUsage;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QStringList args = app.arguments();
    args.removeFirst();

    CliOptions options;
    while (!args.isEmpty() && args.first().startsWith(QStringLiteral("--"))) {
        const QString option = args.takeFirst();
        if (option == QStringLiteral("--ini")) {
            if (args.isEmpty())
                return Usage(QStringLiteral("--ini needs a file"));
            options.iniFile = args.takeFirst();
        } else if (option == QStringLiteral("--help")) {
            WriteOut(QString::fromLatin1(kUsage));
            return kExitOk;
        } else {
            return Usage(QStringLiteral("unknown option ") + option);
        }
    }
    if (args.isEmpty())
        return Usage(QString());

    const QString command = args.takeFirst();
    CliHost host;
    Workspace workspace(&host);
    // Ctrl-C is the Stop command: it ends grammar preparation, transformations and analysers alike.
    host.setStop([&workspace] { workspace.Stop(); });
    if (int status = LoadSettings(workspace, options))
        return status;

    // name, least and most arguments after the command, handler
    struct Command {
        const char* name;
        int least, most;
        int (*run)(Workspace&, const CliOptions&, const QStringList&);
    };
    static const Command commands[] = {
        {"check", 1, 1, CmdCheck},
        {"view", 2, 2, CmdView},
        {"sets", 1, 2, CmdSets},
        {"table", 2, 3, CmdTable},
        {"export", 2, 2, CmdExport},
        {"summary", 1, 4, CmdSummary},
        {"compile", 1, 1, CmdCompile},
        {"transform", 2, 2, CmdTransform},
        {"explain", 2, 5, CmdExplain},
        {"parse", 3, 5, CmdParse},
        {"graph", 2, 8, CmdGraph},
    };
    for (const Command& c : commands) {
        if (command != QLatin1String(c.name))
            continue;
        if (args.size() < c.least || args.size() > c.most)
            return Usage(command + QStringLiteral(": wrong number of arguments"));
        const int status = c.run(workspace, options, args);
        // Whatever the command made of its stopped computation, the run was
        // interrupted: it wrote nothing, and says so.
        if (Interrupt::Stopped()) {
            WriteErr(QStringLiteral("trelk-cli: ") + command + QStringLiteral(" stopped by the user (interrupt)."));
            return kExitStopped;
        }
        return status;
    }
    return Usage(QStringLiteral("unknown command ") + command);
}
