/// \file
/// The elapsed-time text.
#include "grammar/Texts.h"

QString ElapsedText(qint64 milliseconds)
{
    const qint64 s = milliseconds / 1000;
    const QString ms = QStringLiteral("%1").arg(milliseconds % 1000, 3, 10, QLatin1Char('0'));
    auto two = [](qint64 v) { return QStringLiteral("%1").arg(v, 2, 10, QLatin1Char('0')); };
    if (s < 60)
        return QString::number(s) + QLatin1Char(',') + ms;
    if (s < 3600)
        return QString::number(s / 60) + QLatin1Char(':') + two(s % 60) + QLatin1Char(',') + ms;
    return QString::number(s / 3600) + QLatin1Char(':') + two(s / 60 % 60) + QLatin1Char(':') + two(s % 60)
         + QLatin1Char(',') + ms;
}
