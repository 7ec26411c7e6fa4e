/// \file
/// IniFile: a line-based INI file with the semantics of the Windows private
/// profile calls. A read returns the default when the file, the section or the
/// key is missing, and at most bufferSize - 1 characters; a write changes only
/// that key's line and keeps every other line, comment and the order, appending
/// the key to its section, or the section to the file, when missing.
#pragma once

#include <QByteArray>
#include <QString>
#include <vector>

/// Note [INI lines]. A line ends at LF; a CR before the LF belongs to the line
/// end, so a file keeps CR LF or LF as it has them (new files get CR LF). After
/// trimming spaces and tabs, a line that starts with "[" and holds a "]" is a
/// section header named by the text up to the last "]"; a line that starts with
/// ";" is a comment; any other line holding "=" is a key line, named by the text
/// before the first "=" and valued by the text after it. Names are trimmed and
/// compare without regard to case; the first section of a name and the first
/// key of a name in it are the ones read and written. Key lines before the
/// first section belong to no section.
///
/// The text is UTF-8 (a byte-order mark is kept but not read as text), or
/// Windows-1251 when the bytes are not valid UTF-8; lines that a write does not
/// touch keep their bytes.
class IniFile {
public:
    /// The size of a private-profile read buffer: at most 199 characters come back.
    static constexpr int kReadBuffer = 200;

    /// Reads the file at path; a missing or unreadable file reads as empty.
    explicit IniFile(const QString& path);

    const QString& Path() const { return m_path; }

    /// The value of key in section, or defaultValue when the section or the key
    /// is missing (or either name is empty). A value enclosed in a pair of the
    /// same quote marks (" or ') loses them; trailing blanks of the default are
    /// dropped. The result is cut to bufferSize - 1 characters.
    QString Value(const QString& section, const QString& key, const QString& defaultValue,
                  int bufferSize = kReadBuffer) const;

    /// Sets key in section to value in memory. Returns false, changing nothing,
    /// when a name is empty or could not be read back ("]" in a section name,
    /// "=" in a key name, line breaks in either). Line breaks in the value
    /// become spaces, so that a value can never add lines to the file.
    bool SetValue(const QString& section, const QString& key, const QString& value);

    /// The file's bytes as they stand in memory.
    QByteArray Bytes() const;

    /// Writes the bytes back through QSaveFile, unless they are unchanged.
    /// A file that exists but is read-only is left alone (result false).
    bool Save() const;

    /// One private-profile read: reads the file at path and returns Value().
    static QString ReadString(const QString& path, const QString& section, const QString& key,
                              const QString& defaultValue, int bufferSize = kReadBuffer);
    /// One private-profile write: SetValue() and Save() on the file at path.
    static bool WriteString(const QString& path, const QString& section, const QString& key,
                            const QString& value);

private:
    enum class Kind { Other, Section, Key };

    /// One line of the file.
    struct Line {
        QByteArray bytes;  ///< the line as in the file, without its line end
        QByteArray end;    ///< its line end: "\r\n", "\n", or empty for a last line without one
        Kind kind = Kind::Other;
        QString name;      ///< section or key name, trimmed
        QString value;     ///< key value, trimmed (Kind::Key only)
    };

    void Parse(Line& line, bool first) const;
    QString Decode(const QByteArray& bytes) const;
    QByteArray Encode(const QString& text) const;
    /// Makes the file UTF-8 when text cannot be written in its Windows-1251.
    void EnsureEncodable(const QString& text);
    /// The index of the first section header named section, or -1.
    qsizetype FindSection(const QString& section) const;
    /// The index of the first key line named key in the section whose header
    /// is at sectionIndex, or -1.
    qsizetype FindKey(qsizetype sectionIndex, const QString& key) const;
    QByteArray LineEnd() const;

    QString m_path;
    std::vector<Line> m_lines;
    QByteArray m_original;  ///< the bytes as read, to skip writes that change nothing
    bool m_utf8 = true;     ///< false: the file is Windows-1251
};
