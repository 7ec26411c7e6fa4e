/// \file
/// The streaming text sink.
#include "model/TextSink.h"

#include <QIODevice>
#include <cstring>

void StreamSink::Write(const char* data, std::size_t size)
{
    if (m_lfOnly) {
        // Spans without CR are copied whole; a CR is held back until the next
        // byte shows whether it starts a CR LF.
        const char* p = data;
        const char* end = data + size;
        while (p < end) {
            if (m_pendingCr) {
                if (*p != '\n')
                    m_buffer.append('\r');
                m_pendingCr = false;
            }
            const char* cr = static_cast<const char*>(std::memchr(p, '\r', static_cast<std::size_t>(end - p)));
            const char* stop = cr ? cr : end;
            m_buffer.append(p, static_cast<qsizetype>(stop - p));
            if (!cr)
                break;
            m_pendingCr = true;
            p = cr + 1;
        }
    } else {
        m_buffer.append(data, static_cast<qsizetype>(size));
    }
    if (m_buffer.size() >= (1 << 16))
        Flush();
}

void StreamSink::Flush()
{
    if (m_pendingCr && m_closing) {
        m_buffer.append('\r');
        m_pendingCr = false;
    }
    if (m_buffer.isEmpty())
        return;
    if (std::fwrite(m_buffer.constData(), 1, static_cast<std::size_t>(m_buffer.size()), m_stream)
        != static_cast<std::size_t>(m_buffer.size()))
        m_ok = false;
    m_buffer.clear();
}

void DeviceSink::Write(const char* data, std::size_t size)
{
    m_buffer.append(data, static_cast<qsizetype>(size));
    if (m_buffer.size() >= (1 << 16))
        Flush();
}

void DeviceSink::Flush()
{
    if (m_buffer.isEmpty())
        return;
    if (m_device.write(m_buffer) != m_buffer.size())
        m_ok = false;
    m_buffer.clear();
}
