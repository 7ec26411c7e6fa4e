/// \file
/// trelk-cli reads the settings as the workbench does at start-up, and never
/// writes them.
#include "cli/CliCommands.h"
#include "cli/CliHost.h"
#include "storage/Folders.h"
#include "storage/SettingsFile.h"


int LoadSettings(Workspace& workspace, const CliOptions& options)
{
    PINI ini;
    if (options.iniFile.isEmpty()) {
        ini.SetFile(DefaultSettingsPath());
    } else {
        // The workbench creates a missing settings file at close; the CLI never
        // writes one, so a named file that is missing can only be a mistake.
        if (!IsReadableFile(options.iniFile, QStringLiteral("settings file")))
            return kExitFile;
        ini.SetFile(options.iniFile);
    }
    // "Left" and "Top" are read too, so that a file the workbench would refuse
    // at start-up is refused here as well.
    QString error;
    if (!ReadSettings(ini, workspace.settings, ProgramFolder(), error)
        || !ReadWindowPosition(ini, workspace.settings, 0, 0, error)) {
        WriteErr(error);
        return kExitSettings;
    }
    return kExitOk;
}
