/// \file
/// The batch front end's host: messages go to stderr, Ctrl-C stops the running
/// computation through its InProcess flag.
#pragma once

#include "grammar/Host.h"

#include <functional>

class CliHost final : public Host {
public:
    /// Installs the Ctrl-C handler; stop is called at the next yield after it.
    explicit CliHost(std::function<void()> stop = {});

    void critical(const QString& text) override;
    void information(const QString& text) override;
    bool okCancel(const QString& text) override;
    void yield() override;
    void status(StatusField, const QString&) override {}

    void setStop(std::function<void()> stop) { m_stop = std::move(stop); }

private:
    std::function<void()> m_stop;
};

/// Writes text to stdout in UTF-8 with LF line ends.
void WriteOut(const QString& text);
/// Writes text to stderr in UTF-8 with LF line ends, then a line end unless it has one.
void WriteErr(const QString& text);
