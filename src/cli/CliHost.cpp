/// \file
/// The batch front end's host.
#include "cli/CliHost.h"

#include <csignal>
#include <cstdio>

namespace {

volatile std::sig_atomic_t g_interrupted = 0;

void OnInterrupt(int)
{
    g_interrupted = 1;
}

QByteArray Lf(const QString& text)
{
    QString copy = text;
    copy.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return copy.toUtf8();
}

} // namespace

void WriteOut(const QString& text)
{
    const QByteArray bytes = Lf(text);
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
}

void WriteErr(const QString& text)
{
    QByteArray bytes = Lf(text);
    if (!bytes.endsWith('\n'))
        bytes += '\n';
    std::fflush(stdout);
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
}

CliHost::CliHost(std::function<void()> stop)
    : m_stop(std::move(stop))
{
    std::signal(SIGINT, OnInterrupt);
}

void CliHost::critical(const QString& text)
{
    WriteErr(text);
}

void CliHost::information(const QString& text)
{
    WriteErr(text);
}

bool CliHost::okCancel(const QString& text)
{
    // No one to ask: the message is shown and the computation ends as it would
    // after either answer.
    WriteErr(text);
    return true;
}

void CliHost::yield()
{
    if (g_interrupted && m_stop) {
        m_stop();
    }
}
