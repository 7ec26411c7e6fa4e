/// \file
/// trelk: the desktop workbench. Opens the grammar named on the command line.
/// "--screenshot FILE" renders the window into FILE (PNG) and quits, for the
/// documentation pictures.
#include "ui/frmMain.h"

#include <QApplication>
#include <QFileInfo>
#include <QTimer>

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QStringList args = app.arguments();
    args.removeFirst();
    QString screenshot;
    if (args.size() >= 2 && args[0] == QStringLiteral("--screenshot")) {
        screenshot = args[1];
        args = args.mid(2);
    }
    frmMain window;
    if (!args.isEmpty() && QFileInfo(args[0]).isFile())
        window.TKGOpen(args[0]);
    window.show();
    if (!screenshot.isEmpty()) {
        QTimer::singleShot(500, &window, [&] {
            window.grab().save(screenshot);
            app.quit();
        });
    }
    return app.exec();
}
