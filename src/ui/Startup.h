/// \file
/// Start-up of the desktop program: the screen check, the settings, the main
/// window and the grammar it opens first.
#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

class frmMain;
class Host;

/// The message that refuses a screen below 1024 x 768 pixels (width tested
/// first), or "" when the screen is large enough.
QString ScreenCheckMessage(QSize screenPixels);

/// What Main does before the event loop runs. messages: where message boxes go
/// (null: real ones). On success returns the shown window; on a refusal (the
/// screen, the settings file) shows the message and returns null, with the
/// exit status in status.
struct StartupOptions {
    QString settingsFile;    ///< TRELK.ini to use ("": where the program keeps it)
    QString commandLine;     ///< the arguments as given, joined by blanks
    Host* messages = nullptr;
};
frmMain* Main(const StartupOptions& options, int& status);
