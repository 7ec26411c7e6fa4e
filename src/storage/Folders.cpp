/// \file
/// Folder normalisation and the program folder.
#include "storage/Folders.h"

#include <QCoreApplication>
#include <QDir>

QString NormaliseFolder(const QString& folder)
{
    if (folder.isEmpty())
        return folder;
    const QChar separator = QDir::separator();
    QString result = folder;
    for (QChar& ch : result) {
        if (ch == QLatin1Char('/') || ch == QLatin1Char('\\'))
            ch = separator;
    }
    // Only one separator is added; a text that already ends in several keeps them.
    if (!result.endsWith(separator))
        result += separator;
    return result;
}

QString ProgramFolder()
{
    return NormaliseFolder(QCoreApplication::applicationDirPath());
}
