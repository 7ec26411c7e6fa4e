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
    "  check GRAMMAR        parse and check the grammar\n";

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
    host.setStop([&workspace] { workspace.grammar.SetInProcess(false); });

    // name, least and most arguments after the command, handler
    struct Command {
        const char* name;
        int least, most;
        int (*run)(Workspace&, const CliOptions&, const QStringList&);
    };
    static const Command commands[] = {
        {"check", 1, 1, CmdCheck},
    };
    for (const Command& c : commands) {
        if (command != QLatin1String(c.name))
            continue;
        if (args.size() < c.least || args.size() > c.most)
            return Usage(command + QStringLiteral(": wrong number of arguments"));
        return c.run(workspace, options, args);
    }
    return Usage(QStringLiteral("unknown command ") + command);
}
