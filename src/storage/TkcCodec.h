/// \file
/// The byte codec of the compiled grammar file (.tkc): the tagged values it is
/// made of, their writer and reader, and the error numbers a file operation
/// fails with. What the values mean is the slot table's business
/// (session/TkcSlots.h); the codec knows nothing of the workspace.
#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>
#include <algorithm>
#include <initializer_list>
#include <vector>

/// The error numbers of file operations and their descriptions, as the error
/// report shows them.
namespace FileErrorNumber {
constexpr int Overflow = 6;             ///< a text too long for a text value (more than 65535 bytes)
constexpr int OutOfMemory = 7;          ///< an array count that no file of ours holds
constexpr int SubscriptOutOfRange = 9;  ///< bounds or codes that do not fit the shared data
constexpr int TypeMismatch = 13;        ///< a value of another kind than the slot holds
constexpr int InputPastEnd = 62;        ///< the file ends inside a value
constexpr int FileAccess = 75;          ///< the file cannot be opened, written or replaced
} // namespace FileErrorNumber

/// "Overflow", "Out of memory", ...: the description of an error number.
QString FileErrorDescription(int number);

namespace Tkc {

/// Type tags. An array tag has Array set and the element type in the low bits:
/// a 16-bit dimension count, per dimension a 32-bit count and a 32-bit lower
/// bound, then the elements with the first index varying fastest. Elements of
/// type Variant are complete tagged values; others are their data alone.
namespace Tag {
constexpr quint16 Empty = 0;
constexpr quint16 Null = 1;
constexpr quint16 Int16 = 2;
constexpr quint16 Int32 = 3;
constexpr quint16 Single = 4;
constexpr quint16 Double = 5;
constexpr quint16 Date = 7;  ///< 8 bytes, as a double
constexpr quint16 Text = 8;  ///< 16-bit byte count, then the UTF-8 bytes
constexpr quint16 Bool = 11; ///< 16 bits: 0 false, all bits set true
constexpr quint16 Variant = 12;
constexpr quint16 Byte = 17;
constexpr quint16 Array = 0x2000;
} // namespace Tag

inline const QByteArray kSignature = QByteArrayLiteral("\r\n2010 KAVEN TRELK");  // 18 bytes, no length field
constexpr qint32 kVersion = 1;
constexpr qsizetype kMaxTextBytes = 0xFFFF;

/// A failure with its error number. The codec and the slot table throw it;
/// TKCSave and TKCRead catch it and report it: it never leaves them.
struct Failure {
    int number;
};
/// The file is of another format or version: stop without a message. Thrown
/// and caught as Failure is.
struct ForeignFile {};

} // namespace Tkc

/// Writes tagged values into bytes (numbers little-endian).
class TkcWriter {
public:
    QByteArray bytes;

    void U16(quint16 v)
    {
        const char le[2] = {char(v & 0xFF), char(v >> 8)};
        bytes.append(le, 2);
    }
    void I32(qint32 v)
    {
        const quint32 u = static_cast<quint32>(v);
        const char le[4] = {char(u & 0xFF), char((u >> 8) & 0xFF), char((u >> 16) & 0xFF), char(u >> 24)};
        bytes.append(le, 4);
    }
    /// Text data: the byte count and the UTF-8 bytes. Never cut: too long is an error.
    void TextData(const QString& text);
    void Text(const QString& text)
    {
        U16(Tkc::Tag::Text);
        TextData(text);
    }
    void BoolData(bool value) { U16(value ? 0xFFFF : 0); }
    void Bool(bool value)
    {
        U16(Tkc::Tag::Bool);
        BoolData(value);
    }
    void Int32(qint32 value)
    {
        U16(Tkc::Tag::Int32);
        I32(value);
    }
    void ArrayHeader(quint16 elementTag, std::size_t count, qint32 lower);
    /// An array of integers in the narrowest fixed type that holds every value:
    /// bytes (0..255), 16-bit or 32-bit integers. Readers widen it again.
    void IntArray(const std::vector<int>& values, qint32 lower);
    /// An integer as a 16-bit value when it fits, else as a 32-bit one.
    void Integer(qint32 value);
};

/// Reads tagged values from bytes it does not own. Every read past the end
/// throws Failure{InputPastEnd}; a value of another kind, Failure{TypeMismatch}.
class TkcReader {
public:
    explicit TkcReader(const QByteArray& bytes)
        : m_bytes(bytes)
    {
    }

    qsizetype Left() const { return m_bytes.size() - m_pos; }
    /// Up to n bytes ahead, without consuming them.
    QByteArray Peek(qsizetype n) const { return m_bytes.mid(m_pos, std::min(n, Left())); }
    QByteArray Bytes(qsizetype n)
    {
        Need(n);
        const QByteArray b = m_bytes.mid(m_pos, n);
        m_pos += n;
        return b;
    }
    quint16 U16()
    {
        Need(2);
        const auto* p = reinterpret_cast<const uchar*>(m_bytes.constData() + m_pos);
        m_pos += 2;
        return static_cast<quint16>(p[0] | (p[1] << 8));
    }
    qint32 I32()
    {
        Need(4);
        const auto* p = reinterpret_cast<const uchar*>(m_bytes.constData() + m_pos);
        m_pos += 4;
        return static_cast<qint32>(quint32(p[0]) | (quint32(p[1]) << 8) | (quint32(p[2]) << 16)
                                   | (quint32(p[3]) << 24));
    }
    QString TextData()
    {
        const quint16 n = U16();
        return QString::fromUtf8(Bytes(n));
    }
    /// True/false data: any bits set read as true.
    bool BoolData() { return U16() != 0; }

    void ExpectTag(quint16 expected);
    QString Text()
    {
        ExpectTag(Tkc::Tag::Text);
        return TextData();
    }

    /// The rest of an array header whose tag has been read: the dimension count
    /// must be lowers.size() and each lower bound as given. Returns the counts,
    /// refused before anything is allocated when they cannot be real: more
    /// elements than any file of ours holds, or more than the bytes left can
    /// hold at minElementBytes each.
    std::vector<std::size_t> Dimensions(std::initializer_list<qint32> lowers, int minElementBytes);
    /// A one-dimensional array of elementTag with the given lower bound; returns its count.
    std::size_t ArrayHeader(quint16 elementTag, qint32 lower, int minElementBytes);
    /// A one-dimensional array of integers of any width (byte, 16-bit, 32-bit),
    /// widened to int.
    std::vector<int> IntArray(qint32 lower);
    /// The rest of an integer array whose tag has been read (see IntArray).
    std::vector<int> IntArrayAfterTag(quint16 tag, qint32 lower);
    /// An integer value of any width, its tag already read; false for another kind.
    bool IntegerAfterTag(quint16 tag, qint32& value);

    /// Passes over one complete tagged value of any kind (reserved slots).
    void SkipValue(int depth = 0);

private:
    /// The data size of a scalar type; text counts as 2 (its count); -1 for no scalar type.
    static int FixedSize(quint16 tag);
    void Need(qsizetype n) const
    {
        if (n > Left())
            throw Tkc::Failure{FileErrorNumber::InputPastEnd};
    }

    const QByteArray& m_bytes;
    qsizetype m_pos = 0;
};
