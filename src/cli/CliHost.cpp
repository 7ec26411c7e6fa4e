/// \file
/// The batch front end's host.
#include "cli/CliHost.h"

#include <atomic>
#include <csignal>
#include <cstdio>

namespace {

/// Where the run stands for Ctrl-C. One atomic word, changed only by
/// compare-and-swap, so that the handler and BeginResult cannot both win.
enum RunState : int { Running, Interrupted, WritingResult };
std::atomic<int> g_state{Running};
static_assert(std::atomic<int>::is_always_lock_free, "the signal handler needs a lock-free atomic");

void OnInterrupt(int)
{
    int expected = Running;
    g_state.compare_exchange_strong(expected, Interrupted);
}

/// UTF-8 with every CR LF turned into LF, in one pass (texts run to megabytes).
QByteArray Lf(const QString& text)
{
    QByteArray bytes = text.toUtf8();
    qsizetype out = 0;
    const qsizetype size = bytes.size();
    char* data = bytes.data();
    for (qsizetype i = 0; i < size; ++i)
        if (!(data[i] == '\r' && i + 1 < size && data[i + 1] == '\n'))
            data[out++] = data[i];
    bytes.truncate(out);
    return bytes;
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
    if (g_state.load() == Interrupted && m_stop)
        m_stop();
}

bool Interrupt::Stopped()
{
    return g_state.load() == Interrupted;
}

bool Interrupt::BeginResult(Result result)
{
    // From here Ctrl-C ends a printing program at once; one that came before
    // has been seen by the handler and is answered below.
    if (result == Result::Text)
        std::signal(SIGINT, SIG_DFL);
    int expected = Running;
    return g_state.compare_exchange_strong(expected, WritingResult) || expected == WritingResult;
}

void Interrupt::ResultWritten()
{
    g_state.store(WritingResult);
}
