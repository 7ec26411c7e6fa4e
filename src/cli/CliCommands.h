/// \file
/// The commands of trelk-cli and what they share.
#pragma once

#include "analysers/Workspace.h"

#include <QString>
#include <QStringList>

/// Exit statuses of trelk-cli.
constexpr int kExitOk = 0;
constexpr int kExitGrammar = 1;  ///< notation and definition errors
constexpr int kExitUsage = 2;
constexpr int kExitFile = 3;

/// Global options, given before the command.
struct CliOptions {
    QString iniFile;  ///< --ini FILE: where the settings are read from
};

/// Reads GRAMMAR as File Open does and puts it into the workspace (text and
/// path). Returns kExitOk, or reports on stderr and returns kExitFile.
int LoadGrammar(Workspace& workspace, const QString& path, QString& text);

/// Parses text into the workspace's grammar; on failure the message is already
/// on stderr (a blank text gets its own) and kExitGrammar is returned.
int ParseGrammar(Workspace& workspace, const QString& path, const QString& text);

// The commands; args holds what follows the command name (GRAMMAR first).
int CmdCheck(Workspace& workspace, const CliOptions& options, const QStringList& args);
