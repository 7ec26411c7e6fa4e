/// \file
/// Folder texts as the settings and the file dialogs keep them: platform
/// separators and exactly one trailing separator.
#pragma once

#include <QString>

/// Folder normalisation, used for every folder setting when it is read, when it
/// is written and when it is handed to a file dialog: an empty text stays empty;
/// otherwise every "/" and "\" becomes the platform separator and one separator
/// is appended unless the text already ends with one.
QString NormaliseFolder(const QString& folder);

/// The program's own folder (where the executable lies), normalised. Needs a
/// QCoreApplication.
QString ProgramFolder();
