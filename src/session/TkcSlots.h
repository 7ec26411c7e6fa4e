/// \file
/// Saving and reading the compiled grammar file (.tkc) through its slot table:
/// the grammar's name, a snapshot of the workspace's analysis state and the
/// grammar file's path, in 85 slots of the codec's values.
#pragma once

#include <QString>

class Workspace;

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
