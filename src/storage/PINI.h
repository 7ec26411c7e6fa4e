/// \file
/// PINI: the settings class through which every setting is read and written,
/// a thin layer of private-profile reads and writes over IniFile.
#pragma once

#include <QString>
#include <QtGlobal>

class PINI {
public:
    /// The full path of the settings file.
    QString File() const { return m_file; }
    void SetFile(const QString& file) { m_file = file; }

    /// Reads key in section of File(), or defaultValue when the file, section
    /// or key is missing; at most 199 characters come back. The application
    /// name is accepted and ignored on purpose: every caller passes the same one.
    QString GetSetting(const QString& application, const QString& section, const QString& key,
                       const QString& defaultValue) const;

    /// Writes value under key in section of File(). The application name is
    /// ignored. A failed write reports nothing; a read-only file keeps its values.
    void SaveSetting(const QString& application, const QString& section, const QString& key,
                     const QString& value) const;

    /// Reads key as a 32-bit integer (at most 99 characters are read), with the
    /// default's decimal text as the default. Returns 0, not the default, when
    /// section, File() or key is empty. A text that is not a number in range
    /// gives the default, and false in *ok when ok is given.
    qint32 ReadLong(const QString& section, const QString& key, qint32 defaultValue, bool* ok = nullptr) const;

    /// Writes value's decimal text under key in section of File().
    void WriteLong(const QString& section, const QString& key, qint32 value) const;

private:
    QString m_file;  ///< the full path of the settings file
};
