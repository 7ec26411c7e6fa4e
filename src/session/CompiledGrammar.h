/// \file
/// The compiled grammar file (.tkc): the companion of a grammar text file that
/// keeps the grammar's name, a snapshot of the workspace's analysis state and
/// the grammar file's path, so that a reopened grammar comes back analysed.
/// Its parts: the byte codec with the error numbers (storage/TkcCodec.h),
/// TKCSave and TKCRead over the slot table (TkcSlots.h), and the check of a
/// restored state (RestoredState.h); here, the error report they share with
/// the grammar file commands.
#pragma once

#include "session/RestoredState.h"
#include "session/TkcSlots.h"
#include "storage/TkcCodec.h"

#include <QString>

class Workspace;

/// The error report of a failed file operation: "Error encountered: " number,
/// CR LF, description, CR LF, "Source: " source, CR LF. Kept in the workspace's
/// lastFileError and shown through the host's critical message. A detail (the
/// file and the system's reason, "Cannot write PATH: REASON") follows the
/// description after ": ", so the user learns which file failed and why.
void ReportFileError(Workspace& workspace, int number, const QString& source, const QString& detail = QString());
