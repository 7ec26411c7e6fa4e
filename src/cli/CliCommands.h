/// \file
/// The commands of trelk-cli and what they share.
#pragma once

#include "session/Views.h"
#include "session/Workspace.h"

#include <QString>
#include <QStringList>

/// Exit statuses of trelk-cli.
constexpr int kExitOk = 0;
constexpr int kExitGrammar = 1;  ///< notation and definition errors
constexpr int kExitSettings = 1; ///< a numeric setting that holds no number
constexpr int kExitUsage = 2;
constexpr int kExitFile = 3;
constexpr int kExitRequire = 4;  ///< summary --require METHOD: the grammar fails METHOD
constexpr int kExitRejected = 5; ///< parse: the table rejects the sentence
constexpr int kExitStopped = 130; ///< stopped by Ctrl-C, as shells report an interrupt

/// Global options, given before the command.
struct CliOptions {
    QString iniFile;  ///< --ini FILE: where the settings are read from
};

/// Reads the settings from --ini FILE, or from where the workbench keeps them,
/// into the workspace; never writes them. Returns kExitOk, or reports on stderr
/// and returns kExitSettings or (a named file that is missing) kExitFile.
int LoadSettings(Workspace& workspace, const CliOptions& options);

/// True when path names a regular file; otherwise says on stderr what it is
/// instead (missing, a folder, a device ...), what being "grammar file" or
/// "settings file".
bool IsReadableFile(const QString& path, const QString& what);

/// Reads GRAMMAR as File Open does and puts it into the workspace (text, path
/// and the kept state of its companion .tkc). Returns kExitOk, or reports on
/// stderr and returns kExitFile.
int LoadGrammar(Workspace& workspace, const QString& path, QString& text);

/// Parses text into the workspace's grammar; on failure the message is already
/// on stderr (a blank text gets its own) and kExitGrammar is returned.
int ParseGrammar(Workspace& workspace, const QString& path, const QString& text);

/// Reads GRAMMAR and runs Analyse on view as the window does; output is what the
/// output box then shows. Returns an exit status.
int RunView(Workspace& workspace, const QString& path, int view, QString& output, bool wantsOutput = true);

/// What Analyse on analyser view (6-11) left: a table, a refusal of the grammar
/// (left recursion, empty rules, ...: a verdict, with its text in the view), or
/// neither: a limit ("DFA States Overflow.", "Cycles Overflow.") stopped the
/// run after showing its message.
enum class TableOutcome { Built, Refused, Limited };
TableOutcome OutcomeOf(const Workspace& workspace, int view);

/// For commands that need the table (table, export): kExitOk when it was built;
/// otherwise kExitGrammar, with the refusal's verdict, as the view shows it,
/// put on stderr (a limit has shown its message already).
int RequireTable(Workspace& workspace, int view);

/// The analyser view (6-11) that command was given as arg; -1, with the usage
/// message on stderr, for anything else.
int AnalyserView(const QString& command, const QString& arg);

/// Reads GRAMMAR and runs Analyse on analyser view without building its
/// listing: kExitOk when its table was built, otherwise the exit status
/// (interrupted, unreadable, or as RequireTable says).
int RunTable(Workspace& workspace, const QString& path, int view);

// The commands; args holds what follows the command name (GRAMMAR first).
int CmdCheck(Workspace& workspace, const CliOptions& options, const QStringList& args);
int CmdTable(Workspace& workspace, const CliOptions& options, const QStringList& args);
int CmdExport(Workspace& workspace, const CliOptions& options, const QStringList& args);
int CmdSummary(Workspace& workspace, const CliOptions& options, const QStringList& args);
int CmdView(Workspace& workspace, const CliOptions& options, const QStringList& args);
int CmdSets(Workspace& workspace, const CliOptions& options, const QStringList& args);
int CmdCompile(Workspace& workspace, const CliOptions& options, const QStringList& args);
/// transform GRAMMAR CODE: writes GRAMMAR's name + "-CODE.tkg" and prints its path.
/// explain GRAMMAR VIEW [--json] [--budget MS]: the conflicts of VIEW explained.
int CmdExplain(Workspace& workspace, const CliOptions& options, const QStringList& args);
/// parse GRAMMAR VIEW SENTENCE [--json] [--trace]: the sentence run through VIEW's table.
int CmdParse(Workspace& workspace, const CliOptions& options, const QStringList& args);
/// graph GRAMMAR VIEW [--state N --depth K] [--format dot|svg]: the automaton of an LR view.
int CmdGraph(Workspace& workspace, const CliOptions& options, const QStringList& args);
int CmdTransform(Workspace& workspace, const CliOptions& options, const QStringList& args);
