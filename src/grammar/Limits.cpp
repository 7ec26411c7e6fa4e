/// \file
/// The texts of the limits.
#include "grammar/Limits.h"

QString SizeText(std::uint64_t bytes)
{
    struct Unit {
        std::uint64_t size;
        const char* name;
    };
    static const Unit units[] = {{1'000'000'000, "GB"}, {1'000'000, "MB"}, {1'000, "KB"}};
    for (const Unit& unit : units) {
        if (bytes < unit.size)
            continue;
        // One decimal below ten units, whole units above; never rounded up past the value.
        const std::uint64_t tenths = bytes / (unit.size / 10);
        const QString number = tenths < 100 ? QString::number(tenths / 10) + QLatin1Char('.')
                                                  + QString::number(tenths % 10)
                                            : QString::number(tenths / 10);
        const QString cleaned = number.endsWith(QStringLiteral(".0")) ? number.chopped(2) : number;
        return cleaned + QLatin1Char(' ') + QLatin1String(unit.name);
    }
    return QString::number(bytes) + QStringLiteral(" bytes");
}

QString TableTooLargeText(const QString& table, std::uint64_t bytes)
{
    return QStringLiteral("The ") + table + QStringLiteral(" would need ") + SizeText(bytes)
         + QStringLiteral(": too large for this grammar.");
}

QString SetsTooLargeText(const QString& sets, std::uint64_t limit)
{
    return QStringLiteral("The ") + sets + QStringLiteral(" need more than ") + SizeText(limit)
         + QStringLiteral(": too large for this grammar.");
}
