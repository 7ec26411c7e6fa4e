/// \file
/// Opening and saving a grammar together with its compiled companion, as File
/// Open and the save handler do.
#pragma once

#include <QString>

class Workspace;

/// Opens a grammar file as File Open does: reads the text, starts the
/// workspace afresh (grammar cleared, every analyser's results reset), sets the
/// grammar's Path, reads the companion with TKCRead and keeps what it restored
/// only when it belongs to this text (CheckRestoredState). Companion failures
/// are reported through the host. Returns the editor text; false, with error
/// set and the workspace untouched, when the grammar file cannot be read.
bool TKGOpen(Workspace& workspace, const QString& path, QString& text, QString& error);

/// The main save routine: sets the grammar's Path to targetPath, writes the
/// companion first (TKCSave, with the grammar's Name), then editorText with the
/// text writer. Both go through QSaveFile, so an interrupted save leaves the old
/// files whole. Failures are reported through the host. True when both were written.
bool GrammarSaveAs(Workspace& workspace, const QString& targetPath, const QString& editorText);
