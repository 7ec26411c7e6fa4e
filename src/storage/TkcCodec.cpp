/// \file
/// The tagged values of the compiled grammar file: writing them, and reading
/// them with every count and bound checked before anything is allocated.
#include "storage/TkcCodec.h"

#include <cstdint>

using namespace FileErrorNumber;
using namespace Tkc;

QString FileErrorDescription(int number)
{
    switch (number) {
    case FileErrorNumber::Overflow:
        return QStringLiteral("Overflow");
    case FileErrorNumber::OutOfMemory:
        return QStringLiteral("Out of memory");
    case FileErrorNumber::SubscriptOutOfRange:
        return QStringLiteral("Subscript out of range");
    case FileErrorNumber::TypeMismatch:
        return QStringLiteral("Type mismatch");
    case FileErrorNumber::InputPastEnd:
        return QStringLiteral("Input past end of file");
    case FileErrorNumber::FileAccess:
        return QStringLiteral("Path/File access error");
    default:
        return QStringLiteral("Application-defined or object-defined error");
    }
}

namespace {

/// No grammar of ours comes near this many elements in one array: a count
/// beyond it is a damaged file, refused before anything is allocated.
constexpr quint64 kMaxElements = quint64{1} << 28;
/// Our values nest two deep; deeper nesting is a damaged file.
constexpr int kMaxDepth = 8;

} // namespace

// ---- Writing ----------------------------------------------------------------------

void TkcWriter::TextData(const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    if (utf8.size() > kMaxTextBytes)
        throw Failure{Overflow};
    U16(static_cast<quint16>(utf8.size()));
    bytes.append(utf8);
}

void TkcWriter::ArrayHeader(quint16 elementTag, std::size_t count, qint32 lower)
{
    U16(Tag::Array | elementTag);
    U16(1);
    I32(static_cast<qint32>(count));
    I32(lower);
}

void TkcWriter::IntArray(const std::vector<int>& values, qint32 lower)
{
    // Most tables of ours hold codes, rules and states well below 32768: the
    // narrowest type halves or quarters the file.
    int least = 0, most = 0;
    for (int v : values) {
        least = std::min(least, v);
        most = std::max(most, v);
    }
    const int width = least >= 0 && most <= 0xFF ? 1 : least >= INT16_MIN && most <= INT16_MAX ? 2 : 4;
    ArrayHeader(width == 1 ? Tag::Byte : width == 2 ? Tag::Int16 : Tag::Int32, values.size(), lower);
    // The elements go straight into their place, little-endian: the arrays of a
    // large automaton hold tens of millions of them.
    const qsizetype start = bytes.size();
    bytes.resize(start + static_cast<qsizetype>(values.size()) * width);
    char* out = bytes.data() + start;
    for (int v : values) {
        const quint32 u = static_cast<quint32>(v);
        for (int i = 0; i < width; ++i)
            *out++ = char((u >> (8 * i)) & 0xFF);
    }
}

void TkcWriter::Integer(qint32 value)
{
    if (value >= INT16_MIN && value <= INT16_MAX) {
        U16(Tag::Int16);
        U16(static_cast<quint16>(value));
    } else {
        Int32(value);
    }
}

// ---- Reading ----------------------------------------------------------------------

void TkcReader::ExpectTag(quint16 expected)
{
    if (U16() != expected)
        throw Failure{TypeMismatch};
}

std::vector<std::size_t> TkcReader::Dimensions(std::initializer_list<qint32> lowers, int minElementBytes)
{
    if (U16() != lowers.size())
        throw Failure{SubscriptOutOfRange};
    std::vector<std::size_t> counts;
    quint64 total = 1;
    for (qint32 lower : lowers) {
        const quint32 count = static_cast<quint32>(I32());
        if (I32() != lower)
            throw Failure{SubscriptOutOfRange};
        total *= count;
        if (total > kMaxElements)
            throw Failure{OutOfMemory};
        counts.push_back(count);
    }
    if (total * static_cast<quint64>(minElementBytes) > static_cast<quint64>(Left()))
        throw Failure{InputPastEnd};
    return counts;
}

std::size_t TkcReader::ArrayHeader(quint16 elementTag, qint32 lower, int minElementBytes)
{
    ExpectTag(Tag::Array | elementTag);
    return Dimensions({lower}, minElementBytes)[0];
}

std::vector<int> TkcReader::IntArray(qint32 lower)
{
    return IntArrayAfterTag(U16(), lower);
}

std::vector<int> TkcReader::IntArrayAfterTag(quint16 tag, qint32 lower)
{
    const quint16 element = tag & ~Tag::Array;
    const int size = element == Tag::Byte ? 1 : element == Tag::Int16 ? 2 : element == Tag::Int32 ? 4 : 0;
    if (!(tag & Tag::Array) || size == 0)
        throw Failure{TypeMismatch};
    std::vector<int> values(Dimensions({lower}, size)[0]);
    const auto* p = reinterpret_cast<const uchar*>(m_bytes.constData() + m_pos);
    Need(static_cast<qsizetype>(values.size()) * size);
    m_pos += static_cast<qsizetype>(values.size()) * size;
    for (int& v : values) {
        if (size == 1)
            v = p[0];
        else if (size == 2)
            v = static_cast<qint16>(quint16(p[0] | (p[1] << 8)));
        else
            v = static_cast<qint32>(quint32(p[0]) | (quint32(p[1]) << 8) | (quint32(p[2]) << 16) | (quint32(p[3]) << 24));
        p += size;
    }
    return values;
}

bool TkcReader::IntegerAfterTag(quint16 tag, qint32& value)
{
    if (tag == Tag::Int32)
        value = I32();
    else if (tag == Tag::Int16)
        value = static_cast<qint16>(U16());
    else if (tag == Tag::Byte)
        value = static_cast<uchar>(Bytes(1)[0]);
    else
        return false;
    return true;
}

void TkcReader::SkipValue(int depth)
{
    const quint16 tag = U16();
    if (tag & Tag::Array) {
        const quint16 element = tag & ~Tag::Array;
        const int size = FixedSize(element);
        if (depth >= kMaxDepth || (size < 0 && element != Tag::Variant))
            throw Failure{TypeMismatch};
        const quint16 dims = U16();
        quint64 total = dims == 0 ? 0 : 1;
        for (quint16 d = 0; d < dims; ++d) {
            total *= static_cast<quint32>(I32());
            I32();
            if (total > kMaxElements)
                throw Failure{OutOfMemory};
        }
        if (size == 0)
            return;  // empty or null elements have no data
        if (total * static_cast<quint64>(size < 0 ? 2 : size) > static_cast<quint64>(Left()))
            throw Failure{InputPastEnd};
        for (quint64 i = 0; i < total; ++i) {
            if (element == Tag::Variant)
                SkipValue(depth + 1);
            else if (element == Tag::Text)
                TextData();
            else
                Bytes(size);
        }
        return;
    }
    if (tag == Tag::Text) {
        TextData();
        return;
    }
    const int size = FixedSize(tag);
    if (size < 0)
        throw Failure{TypeMismatch};
    Bytes(size);
}

int TkcReader::FixedSize(quint16 tag)
{
    switch (tag) {
    case Tag::Empty:
    case Tag::Null:
        return 0;
    case Tag::Byte:
        return 1;
    case Tag::Int16:
    case Tag::Bool:
    case Tag::Text:
        return 2;
    case Tag::Int32:
    case Tag::Single:
        return 4;
    case Tag::Double:
    case Tag::Date:
        return 8;
    default:
        return -1;
    }
}
