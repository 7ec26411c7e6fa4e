/// \file
/// trelk: the desktop workbench.
///   trelk [--ini FILE] [GRAMMAR]      open GRAMMAR (or the grammar used last)
///   trelk --screenshot DIR [GRAMMAR]  render the window and the dialogs into DIR and quit
#include "ui/Screenshots.h"
#include "ui/Startup.h"
#include "ui/frmMain.h"

#include <QApplication>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    app.setApplicationName(QStringLiteral("TRELK"));
    QStringList args = app.arguments();
    args.removeFirst();
    StartupOptions options;
    QString screenshots;
    while (args.size() >= 2 && (args[0] == QStringLiteral("--ini") || args[0] == QStringLiteral("--screenshot"))) {
        (args[0] == QStringLiteral("--ini") ? options.settingsFile : screenshots) = args[1];
        args = args.mid(2);
    }
    options.commandLine = args.join(QLatin1Char(' '));
    int status = 0;
    frmMain* window = Main(options, status);
    if (!window)
        return status;
    if (!screenshots.isEmpty())
        return TakeScreenshots(*window, screenshots);
    const int result = app.exec();
    delete window;
    return result;
}
