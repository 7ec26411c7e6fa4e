/// \file
/// The frame of the Transform menu's commands: preconditions, the operation on
/// the working copy and the result file named with the command code.
#pragma once

#include <QString>

class Workspace;

/// One command of the Transform menu, without its user-interface effects:
///  - nothing at all for "GR" when the grammar has a single non-terminal;
///  - "Save Grammar first." (information) when the grammar has no path;
///  - editorText is parsed unless the grammar is parsed already; a text that
///    does not parse stops the command (the parser has shown its message);
///  - the working copy is made, the operation runs with InProcess raised (Stop
///    clears it), and InProcess is cleared again;
///  - newText is the grammar's text for "GR" and the returned lines, each
///    followed by CR LF, for the others;
///  - a run that was stopped, refused, passed a limit or ran out of memory
///    writes nothing and leaves newText empty (the host has shown why, but for a Stop);
///  - a result equal to the grammar writes nothing either: newText is left
///    empty and the host is told kNothingToChangeText (information);
///  - otherwise the result is written with WriteTextFile under TransformedPath.
/// Returns the written path, or "" when nothing was written; newText is empty
/// then, unless the result was made and only its writing failed (reported
/// through the host). The window shows the busy pointer around the call, then
/// runs File New, puts newText into the editor and opens the file.
QString RunTransformation(Workspace& workspace, const QString& code, const QString& editorText, QString& newText);

/// What a transformation that changes nothing says.
inline const QString kNothingToChangeText = QStringLiteral("The grammar has nothing to change: no file written.");
