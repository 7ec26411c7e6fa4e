/// \file
/// Texts the whole program shares: the product name that titles windows,
/// messages and generated C, the line end of everything the program writes,
/// and the elapsed-time text of the status bar.
#pragma once

#include <QString>

/// The product name: window titles, message boxes, the About box, the
/// settings' application name and the header of generated C.
inline const QString kProductName = QStringLiteral("2016 KAVEN TRELK");

/// The line end of every text the program writes: reports, C, grammar files.
inline const QString kEol = QStringLiteral("\r\n");

/// "7,045", "2:05,045", "1:02:05,045": whole milliseconds as elapsed time, with a
/// comma before the milliseconds whatever the locale.
QString ElapsedText(qint64 milliseconds);
