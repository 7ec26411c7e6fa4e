/// \file
/// The settings class over the private-profile INI file.
#include "storage/PINI.h"
#include "storage/IniFile.h"
#include "storage/SettingsFile.h"

namespace {

/// ReadLong reads into a buffer of 100 characters.
constexpr int kLongBuffer = 100;

} // namespace

QString PINI::GetSetting(const QString&, const QString& section, const QString& key,
                         const QString& defaultValue) const
{
    return IniFile::ReadString(m_file, section, key, defaultValue);
}

void PINI::SaveSetting(const QString&, const QString& section, const QString& key, const QString& value) const
{
    IniFile::WriteString(m_file, section, key, value);
}

qint32 PINI::ReadLong(const QString& section, const QString& key, qint32 defaultValue, bool* ok) const
{
    if (ok)
        *ok = true;
    // On purpose 0 and not the default: nothing can be read without all three names.
    if (section.isEmpty() || m_file.isEmpty() || key.isEmpty())
        return 0;
    const QString text = IniFile::ReadString(m_file, section, key, QString::number(defaultValue), kLongBuffer);
    qint32 value = 0;
    if (ConvertToInteger(text, INT32_MIN, INT32_MAX, value) != NumberCheck::Ok) {
        if (ok)
            *ok = false;
        return defaultValue;
    }
    return value;
}

void PINI::WriteLong(const QString& section, const QString& key, qint32 value) const
{
    IniFile::WriteString(m_file, section, key, QString::number(value));
}
