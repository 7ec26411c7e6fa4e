/// \file
/// TextSink: where generated text goes, piece by piece. Tables of large
/// grammars run to tens of megabytes of C; a sink lets the batch front end
/// stream them to a file or stdout while the window collects them in memory.
#pragma once

#include <QByteArray>
#include <QString>
#include <cstdio>

class TextSink {
public:
    virtual ~TextSink() = default;
    /// Appends UTF-8 bytes; every line end in them is CR LF.
    virtual void Write(const char* data, std::size_t size) = 0;
    void Write(const QByteArray& bytes) { Write(bytes.constData(), static_cast<std::size_t>(bytes.size())); }
    void Write(const QString& text) { Write(text.toUtf8()); }
};

/// Collects the text in memory.
class BufferSink final : public TextSink {
public:
    void Write(const char* data, std::size_t size) override { bytes.append(data, static_cast<qsizetype>(size)); }
    using TextSink::Write;
    QString Text() const { return QString::fromUtf8(bytes); }
    QByteArray bytes;
};

class QIODevice;

/// Writes to a device (a QSaveFile) through a buffer.
class DeviceSink final : public TextSink {
public:
    explicit DeviceSink(QIODevice& device)
        : m_device(device)
    {
    }
    ~DeviceSink() override { Flush(); }
    void Write(const char* data, std::size_t size) override;
    using TextSink::Write;
    void Flush();
    bool Ok() const { return m_ok; }

private:
    QIODevice& m_device;
    bool m_ok = true;
    QByteArray m_buffer;
};

/// Writes to a C stream through a buffer, optionally turning CR LF into LF.
class StreamSink final : public TextSink {
public:
    StreamSink(std::FILE* stream, bool lfOnly)
        : m_stream(stream)
        , m_lfOnly(lfOnly)
    {
    }
    ~StreamSink() override
    {
        m_closing = true;
        Flush();
    }
    void Write(const char* data, std::size_t size) override;
    using TextSink::Write;
    void Flush();
    /// False when a write to the stream failed.
    bool Ok() const { return m_ok; }

private:
    std::FILE* m_stream;
    bool m_lfOnly;
    bool m_ok = true;
    bool m_pendingCr = false;
    bool m_closing = false;
    QByteArray m_buffer;
};
