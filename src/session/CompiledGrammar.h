/// \file
/// The compiled grammar file (.tkc): the companion of a grammar text file that
/// keeps the grammar's name, a snapshot of the workspace's analysis state and
/// the grammar file's path, so that a reopened grammar comes back analysed.
#pragma once

#include "storage/TkcCodec.h"

#include <QString>

class Grammar;
class Workspace;

/// The error report of a failed file operation: "Error encountered: " number,
/// CR LF, description, CR LF, "Source: " source, CR LF. Kept in the workspace's
/// lastFileError and shown through the host's critical message.
void ReportFileError(Workspace& workspace, int number, const QString& source);

/// What TKCRead found.
enum class TkcReadResult {
    Missing,   ///< no file: nothing restored, nothing reported
    Foreign,   ///< another format or version: nothing restored, nothing reported
    Restored,  ///< every slot restored
    Failed,    ///< an error after opening: reported; the slots before it stay restored
};

/// Writes the compiled grammar file at path from the workspace's state, with the
/// grammar file's path and the grammar's name. Any existing file is deleted
/// first; the new one is written through QSaveFile. On failure reports (source
/// "TKCSave") and returns false.
bool TKCSave(Workspace& workspace, const QString& path, const QString& grammarPath, const QString& grammarName);

/// Reads the compiled grammar file at path into the workspace's state and gives
/// back the grammar file's path and the grammar's name that it holds.
TkcReadResult TKCRead(Workspace& workspace, const QString& path, QString& grammarPath, QString& grammarName);

/// After TKCRead: keeps the restored state only when it belongs to text and
/// holds together, that is when parsing text gives the same symbols, rules and
/// parse-derived data, and every code, rule, state and item number in the
/// analysers' results lies within that grammar. Otherwise the grammar is
/// cleared and every analyser's results are reset, silently: nothing shown may
/// come from the results of another text. Returns true when the state was kept.
bool CheckRestoredState(Workspace& workspace, const QString& text);
