/// \file
/// The private-profile INI file: reading, in-place writing, and the line rules
/// of note [INI lines].
#include "storage/IniFile.h"
#include "storage/GrammarFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>
#include <array>

namespace {

/// Windows-1251 characters of the bytes 0x80..0xFF, taken from the grammar
/// files' decoder so that both read the same text.
const std::array<char16_t, 128>& Cp1251High()
{
    static const std::array<char16_t, 128> table = [] {
        std::array<char16_t, 128> t{};
        for (int b = 0x80; b < 0x100; ++b) {
            // A lone byte of 0x80 or above is never valid UTF-8, so it decodes as Windows-1251.
            t[b - 0x80] = DecodeGrammarBytes(QByteArray(1, char(b))).at(0).unicode();
        }
        return t;
    }();
    return table;
}

bool IsValidUtf8(const QByteArray& bytes)
{
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString ignored = utf8.decode(bytes);
    return !utf8.hasError();
}

/// The Windows-1251 byte of ch, or -1 when it has none.
int Cp1251Byte(QChar ch)
{
    if (ch.unicode() < 0x80)
        return ch.unicode();
    if (ch.unicode() == 0xFFFD)
        return -1;  // the decoder's stand-in for the one unassigned byte, not a character
    const auto& high = Cp1251High();
    for (int i = 0; i < 128; ++i) {
        if (high[i] == ch.unicode())
            return 0x80 + i;
    }
    return -1;
}

/// Only ASCII blanks are trimmed, so that the shape of a line (section, key,
/// comment) never depends on how its other characters decode.
bool IsBlank(QChar ch)
{
    return ch == QLatin1Char(' ') || ch == QLatin1Char('\t') || ch == QLatin1Char('\r')
           || ch == QLatin1Char('\v') || ch == QLatin1Char('\f');
}

QStringView Trim(QStringView text)
{
    qsizetype start = 0, end = text.size();
    while (start < end && IsBlank(text[start]))
        ++start;
    while (end > start && IsBlank(text[end - 1]))
        --end;
    return text.mid(start, end - start);
}

bool SameName(const QString& a, const QString& b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

/// What a read hands back: at most bufferSize - 1 characters, never half of a
/// surrogate pair.
QString Returned(const QString& text, int bufferSize)
{
    qsizetype room = bufferSize > 0 ? bufferSize - 1 : 0;
    if (text.size() <= room)
        return text;
    if (room > 0 && text[room - 1].isHighSurrogate())
        --room;
    return text.left(room);
}

} // namespace

IniFile::IniFile(const QString& path)
    : m_path(path)
{
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly))
        return;
    m_original = file.readAll();
    m_utf8 = IsValidUtf8(m_original);
    qsizetype pos = 0;
    const qsizetype size = m_original.size();
    while (pos < size) {
        Line line;
        const qsizetype newline = m_original.indexOf('\n', pos);
        if (newline < 0) {
            line.bytes = m_original.mid(pos);
            pos = size;
        } else {
            line.bytes = m_original.mid(pos, newline - pos);
            line.end = QByteArrayLiteral("\n");
            if (line.bytes.endsWith('\r')) {
                line.bytes.chop(1);
                line.end = QByteArrayLiteral("\r\n");
            }
            pos = newline + 1;
        }
        Parse(line, m_lines.empty());
        m_lines.push_back(std::move(line));
    }
}

QString IniFile::Decode(const QByteArray& bytes) const
{
    if (m_utf8)
        return QString::fromUtf8(bytes);
    QString text;
    text.reserve(bytes.size());
    const auto& high = Cp1251High();
    for (char ch : bytes) {
        const unsigned char b = static_cast<unsigned char>(ch);
        text += b < 0x80 ? QChar(char16_t(b)) : QChar(high[b - 0x80]);
    }
    return text;
}

QByteArray IniFile::Encode(const QString& text) const
{
    if (m_utf8)
        return text.toUtf8();
    QByteArray bytes;
    bytes.reserve(text.size());
    for (QChar ch : text)
        bytes += char(Cp1251Byte(ch));  // EnsureEncodable has made sure every character has a byte
    return bytes;
}

void IniFile::EnsureEncodable(const QString& text)
{
    if (m_utf8)
        return;
    for (QChar ch : text) {
        if (Cp1251Byte(ch) < 0) {
            for (Line& line : m_lines)
                line.bytes = Decode(line.bytes).toUtf8();
            m_utf8 = true;
            return;
        }
    }
}

void IniFile::Parse(Line& line, bool first) const
{
    QString text = Decode(line.bytes);
    if (first && m_utf8 && text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    const QStringView trimmed = Trim(text);
    line.kind = Kind::Other;
    line.name.clear();
    line.value.clear();
    if (trimmed.startsWith(QLatin1Char('['))) {
        const qsizetype close = trimmed.lastIndexOf(QLatin1Char(']'));
        if (close > 0) {
            line.kind = Kind::Section;
            line.name = Trim(trimmed.mid(1, close - 1)).toString();
            return;
        }
    }
    if (trimmed.startsWith(QLatin1Char(';')))
        return;
    const qsizetype equals = trimmed.indexOf(QLatin1Char('='));
    if (equals < 0)
        return;
    line.kind = Kind::Key;
    line.name = Trim(trimmed.left(equals)).toString();
    line.value = Trim(trimmed.mid(equals + 1)).toString();
}

qsizetype IniFile::FindSection(const QString& section) const
{
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
        if (m_lines[i].kind == Kind::Section && SameName(m_lines[i].name, section))
            return qsizetype(i);
    }
    return -1;
}

qsizetype IniFile::FindKey(qsizetype sectionIndex, const QString& key) const
{
    for (std::size_t i = std::size_t(sectionIndex) + 1; i < m_lines.size(); ++i) {
        if (m_lines[i].kind == Kind::Section)
            break;
        if (m_lines[i].kind == Kind::Key && SameName(m_lines[i].name, key))
            return qsizetype(i);
    }
    return -1;
}

QByteArray IniFile::LineEnd() const
{
    for (const Line& line : m_lines) {
        if (!line.end.isEmpty())
            return line.end;
    }
    return QByteArrayLiteral("\r\n");
}

QString IniFile::Value(const QString& section, const QString& key, const QString& defaultValue,
                       int bufferSize) const
{
    if (!section.isEmpty() && !key.isEmpty()) {
        const qsizetype s = FindSection(section);
        const qsizetype k = s < 0 ? -1 : FindKey(s, key);
        if (k >= 0) {
            QString value = m_lines[std::size_t(k)].value;
            // A quoted value loses its quotes, as private-profile reads have always done.
            if (value.size() >= 2 && (value[0] == QLatin1Char('"') || value[0] == QLatin1Char('\''))
                && value.back() == value[0])
                value = value.mid(1, value.size() - 2);
            return Returned(value, bufferSize);
        }
    }
    QString fallback = defaultValue;
    while (!fallback.isEmpty() && (fallback.back() == QLatin1Char(' ') || fallback.back() == QLatin1Char('\t')))
        fallback.chop(1);
    return Returned(fallback, bufferSize);
}

bool IniFile::SetValue(const QString& section, const QString& key, const QString& value)
{
    auto hasLineBreak = [](const QString& text) {
        return text.contains(QLatin1Char('\n')) || text.contains(QLatin1Char('\r'));
    };
    if (section.isEmpty() || Trim(section) != section || section.contains(QLatin1Char(']'))
        || hasLineBreak(section))
        return false;
    if (key.isEmpty() || Trim(key) != key || key.contains(QLatin1Char('=')) || key.startsWith(QLatin1Char('['))
        || key.startsWith(QLatin1Char(';')) || hasLineBreak(key))
        return false;
    QString text = value;
    text.replace(QLatin1Char('\r'), QLatin1Char(' '));
    text.replace(QLatin1Char('\n'), QLatin1Char(' '));
    EnsureEncodable(section + key + text);

    const qsizetype s = FindSection(section);
    if (s >= 0) {
        const qsizetype k = FindKey(s, key);
        if (k >= 0) {
            // The key's own spelling and spacing up to the value stay as they are.
            Line& line = m_lines[std::size_t(k)];
            qsizetype cut = line.bytes.indexOf('=') + 1;
            while (cut < line.bytes.size() && (line.bytes[cut] == ' ' || line.bytes[cut] == '\t'))
                ++cut;
            line.bytes = line.bytes.left(cut) + Encode(text);
            Parse(line, k == 0);
            return true;
        }
        // After the last key line of the section, so that comments and blank
        // lines that lead into the next section stay with it.
        qsizetype after = s;
        for (std::size_t i = std::size_t(s) + 1; i < m_lines.size() && m_lines[i].kind != Kind::Section; ++i) {
            if (m_lines[i].kind == Kind::Key)
                after = qsizetype(i);
        }
        if (m_lines[std::size_t(after)].end.isEmpty())
            m_lines[std::size_t(after)].end = LineEnd();
        Line line;
        line.bytes = Encode(key + QLatin1Char('=') + text);
        line.end = LineEnd();
        Parse(line, false);
        m_lines.insert(m_lines.begin() + after + 1, std::move(line));
        return true;
    }

    const QByteArray end = LineEnd();
    if (!m_lines.empty()) {
        Line& last = m_lines.back();
        if (last.end.isEmpty())
            last.end = end;
        if (!Trim(Decode(last.bytes)).isEmpty()) {
            Line blank;
            blank.end = end;
            m_lines.push_back(std::move(blank));
        }
    }
    Line header;
    header.bytes = Encode(QLatin1Char('[') + section + QLatin1Char(']'));
    header.end = end;
    Parse(header, m_lines.empty());
    m_lines.push_back(std::move(header));
    Line line;
    line.bytes = Encode(key + QLatin1Char('=') + text);
    line.end = end;
    Parse(line, false);
    m_lines.push_back(std::move(line));
    return true;
}

QByteArray IniFile::Bytes() const
{
    QByteArray bytes;
    for (const Line& line : m_lines)
        bytes += line.bytes + line.end;
    return bytes;
}

bool IniFile::Save() const
{
    const QByteArray bytes = Bytes();
    if (bytes == m_original && QFileInfo::exists(m_path))
        return true;
    // QSaveFile replaces the file by renaming, which would get past a read-only
    // file in a writable folder; a read-only settings file keeps its values.
    // The mode bits count too, as the administrator may write anything.
    const QFileInfo info(m_path);
    const auto writeBits = QFileDevice::WriteOwner | QFileDevice::WriteGroup | QFileDevice::WriteOther;
    if (m_path.isEmpty() || (info.exists() && (!info.isWritable() || !(info.permissions() & writeBits))))
        return false;
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

QString IniFile::ReadString(const QString& path, const QString& section, const QString& key,
                            const QString& defaultValue, int bufferSize)
{
    return IniFile(path).Value(section, key, defaultValue, bufferSize);
}

bool IniFile::WriteString(const QString& path, const QString& section, const QString& key,
                          const QString& value)
{
    IniFile file(path);
    return file.SetValue(section, key, value) && file.Save();
}
