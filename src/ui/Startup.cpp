/// \file
/// Start-up of the desktop program.
#include "ui/Startup.h"
#include "grammar/Texts.h"

#include "storage/Folders.h"
#include "storage/PINI.h"
#include "storage/SettingsFile.h"
#include "ui/GuiHost.h"
#include "ui/frmMain.h"
#include "session/OpenSave.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QScreen>

QString ScreenCheckMessage(QSize screen)
{
    // The two limits are fixed on purpose; there is no way round them.
    if (screen.width() < 1024)
        return QStringLiteral("Not enough screen width.\r\n1024 pixels width are required.");
    if (screen.height() < 768)
        return QStringLiteral("Not enough screen height.\r\n768 pixels height are required.");
    return QString();
}

frmMain* Main(const StartupOptions& options, int& status)
{
    status = 0;
    GuiHost boxes(nullptr);
    Host& messages = options.messages ? *options.messages : boxes;

    const QScreen* screen = QGuiApplication::primaryScreen();
    const QString refusal = ScreenCheckMessage(screen ? screen->geometry().size() : QSize());
    if (!refusal.isEmpty()) {
        messages.critical(refusal);
        status = 1;
        return nullptr;
    }

    PINI ini;
    ini.SetFile(options.settingsFile.isEmpty() ? DefaultSettingsPath() : options.settingsFile);
    Settings settings;
    QString error;
    // A window of the size the main window opens with, centred, is the default position.
    const QSize window(1100, 720);
    const QRect area = screen->geometry();
    if (!ReadSettings(ini, settings, ProgramFolder(), error)
        || !ReadWindowPosition(ini, settings, (area.width() - window.width()) / 2,
                               (area.height() - window.height()) / 2, error)) {
        messages.critical(error);
        status = 1;
        return nullptr;
    }

    auto* main = new frmMain(options.messages, ini.File());
    main->workspace().settings = settings;
    main->move(static_cast<int>(settings.left), static_cast<int>(settings.top));
    main->show();

    // The whole command line as given: quotation marks are not removed, so a quoted
    // path names no file and the last grammar opens instead.
    if (!options.commandLine.isEmpty() && QFileInfo(options.commandLine).isFile())
        main->TKGOpen(options.commandLine);
    else if (!settings.filePath.isEmpty() && QFileInfo(settings.filePath).isFile())
        main->TKGOpen(settings.filePath);
    main->SetCaption();
    return main;
}
