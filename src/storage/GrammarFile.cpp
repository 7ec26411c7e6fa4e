/// \file
/// Reading and writing grammar text files, opening and saving a grammar with
/// its compiled companion.
#include "storage/GrammarFile.h"

#include "model/TextSink.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>
#include <algorithm>
#include <cerrno>
#include <cstring>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

/// Windows-1251, bytes 0x80..0xFF.
constexpr char16_t kCp1251High[128] = {
    0x0402, 0x0403, 0x201A, 0x0453, 0x201E, 0x2026, 0x2020, 0x2021, 0x20AC, 0x2030, 0x0409, 0x2039, 0x040A, 0x040C,
    0x040B, 0x040F, 0x0452, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0xFFFD, 0x2122, 0x0459, 0x203A,
    0x045A, 0x045C, 0x045B, 0x045F, 0x00A0, 0x040E, 0x045E, 0x0408, 0x00A4, 0x0490, 0x00A6, 0x00A7, 0x0401, 0x00A9,
    0x0404, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x0407, 0x00B0, 0x00B1, 0x0406, 0x0456, 0x0491, 0x00B5, 0x00B6, 0x00B7,
    0x0451, 0x2116, 0x0454, 0x00BB, 0x0458, 0x0405, 0x0455, 0x0457,
    // 0xC0..0xFF: А..я in order
    0x0410, 0x0411, 0x0412, 0x0413, 0x0414, 0x0415, 0x0416, 0x0417, 0x0418, 0x0419, 0x041A, 0x041B, 0x041C, 0x041D,
    0x041E, 0x041F, 0x0420, 0x0421, 0x0422, 0x0423, 0x0424, 0x0425, 0x0426, 0x0427, 0x0428, 0x0429, 0x042A, 0x042B,
    0x042C, 0x042D, 0x042E, 0x042F, 0x0430, 0x0431, 0x0432, 0x0433, 0x0434, 0x0435, 0x0436, 0x0437, 0x0438, 0x0439,
    0x043A, 0x043B, 0x043C, 0x043D, 0x043E, 0x043F, 0x0440, 0x0441, 0x0442, 0x0443, 0x0444, 0x0445, 0x0446, 0x0447,
    0x0448, 0x0449, 0x044A, 0x044B, 0x044C, 0x044D, 0x044E, 0x044F};

QString DecodeCp1251(const QByteArray& bytes)
{
    QString text;
    text.reserve(bytes.size());
    for (char ch : bytes) {
        const unsigned char b = static_cast<unsigned char>(ch);
        text += b < 0x80 ? QChar(char16_t(b)) : QChar(kCp1251High[b - 0x80]);
    }
    return text;
}

} // namespace

QString DecodeGrammarBytes(const QByteArray& bytes)
{
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8.decode(bytes);
    if (utf8.hasError())
        return DecodeCp1251(bytes);
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    return text;
}

QString JoinGrammarLines(const QString& decoded)
{
    QString text;
    text.reserve(decoded.size() + decoded.size() / 16);
    qsizetype start = 0;
    const qsizetype size = decoded.size();
    while (start < size) {
        qsizetype end = start;
        while (end < size && decoded[end] != QLatin1Char('\n') && decoded[end] != QLatin1Char('\r'))
            ++end;
        // Empty lines are skipped on purpose: the loaded text never holds blank lines.
        if (end > start) {
            text += QStringView(decoded).mid(start, end - start);
            text += QStringLiteral("\r\n");
        }
        if (end < size && decoded[end] == QLatin1Char('\r') && end + 1 < size && decoded[end + 1] == QLatin1Char('\n'))
            ++end;
        start = end + 1;
    }
    return text;
}

bool ReadGrammarFile(const QString& path, QString& text, QString& error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("cannot open ") + path + QStringLiteral(": ") + file.errorString();
        return false;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        error = QStringLiteral("cannot read ") + path + QStringLiteral(": ") + file.errorString();
        return false;
    }
    text = JoinGrammarLines(DecodeGrammarBytes(bytes));
    return true;
}

QString WriteErrorText(const QString& path, const QString& reason)
{
    return QStringLiteral("Cannot write ") + path + QStringLiteral(": ") + reason;
}

namespace {

/// Writes into an unbuffered QSaveFile through a buffer of its own. The device
/// reports a write it could take only in part as a short count without a
/// reason; the rest is written again, so that a failure comes with the
/// system's reason ("File too large", "No space left on device").
class SaveFileSink final : public TextSink {
public:
    explicit SaveFileSink(QSaveFile& file)
        : m_file(file)
    {
    }
    void Write(const char* data, std::size_t size) override
    {
        if (!m_ok)
            return;
        m_buffer.append(data, static_cast<qsizetype>(size));
        if (m_buffer.size() >= (1 << 16))
            Flush();
    }
    using TextSink::Write;
    /// Writes what is buffered; false once a write has failed.
    bool Flush()
    {
        const char* data = m_buffer.constData();
        qint64 left = m_buffer.size();
        while (m_ok && left > 0) {
            const qint64 written = m_file.write(data, left);
            if (written <= 0) {
                m_ok = false;
                m_reason = m_file.errorString();
            }
            data += std::max<qint64>(written, 0);
            left -= std::max<qint64>(written, 0);
        }
        m_buffer.clear();
        return m_ok;
    }
    QString Reason() const { return m_reason; }

private:
    QSaveFile& m_file;
    QByteArray m_buffer;
    bool m_ok = true;
    QString m_reason;
};

} // namespace

bool WriteStreamedFile(const QString& path, const std::function<void(TextSink&)>& fill, QString& error)
{
    // QSaveFile would rename its new file over a device or a pipe of that name.
    const QFileInfo target(path);
    if (target.exists() && !target.isFile() && !target.isDir()) {
        error = WriteErrorText(path, QStringLiteral("not a regular file"));
        return false;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        error = WriteErrorText(path, file.errorString());
        return false;
    }
    SaveFileSink sink(file);
    fill(sink);
    if (!sink.Flush()) {
        error = WriteErrorText(path, sink.Reason());
        return false;  // the QSaveFile removes its temporary file: the old file stays
    }
#ifdef Q_OS_UNIX
    // commit() syncs the file too, but does not look at the result; a file that
    // did not reach the disk (an I/O error, a full network share) must not
    // replace the old one. A file system that cannot sync has nothing to lose.
    if (::fdatasync(file.handle()) != 0 && errno != EINVAL && errno != EROFS) {
        error = WriteErrorText(path, QString::fromLocal8Bit(std::strerror(errno)));
        file.cancelWriting();
        return false;
    }
#endif
    if (!file.commit()) {
        error = WriteErrorText(path, file.errorString());
        return false;
    }
    return true;
}

bool WriteWholeFile(const QString& path, const QByteArray& bytes, QString& error)
{
    return WriteStreamedFile(path, [&bytes](TextSink& out) { out.Write(bytes); }, error);
}

bool WriteTextFile(const QString& path, const QString& text, QString& error)
{
    return WriteWholeFile(path, (text + QStringLiteral("\r\n")).toUtf8(), error);
}

QString CompanionPath(const QString& grammarPath)
{
    // On purpose: the last "." wherever it is, even in a folder name, and the
    // bare "tkc" in the current folder for a path without one, as companions
    // have always been named.
    const qsizetype dot = grammarPath.lastIndexOf(QLatin1Char('.'));
    return grammarPath.left(dot + 1) + QStringLiteral("tkc");
}

std::optional<QString> GrammarNameOf(const QString& path)
{
    const qsizetype separator = std::max(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\')));
    const QString fileName = path.mid(separator + 1);
    if (fileName.size() < 4)
        return std::nullopt;
    // On purpose: the last four characters go whatever they are.
    return fileName.chopped(4);
}
