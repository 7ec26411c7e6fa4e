/// \file
/// Pictures of the workbench for the manual: the main window on several views
/// and each dialog, rendered into a folder.
#pragma once

#include <QString>

class frmMain;

/// Analyses the window's grammar on a few views and saves a PNG of each, then
/// of each dialog, into folder. Returns 0, or 1 when a picture could not be saved.
int TakeScreenshots(frmMain& window, const QString& folder);
