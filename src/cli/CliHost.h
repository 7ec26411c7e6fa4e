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

/// Ctrl-C and the command's result. Until the command starts giving its
/// result, Ctrl-C stops it: the computation ends at its next yield, nothing is
/// written or printed, and trelk-cli exits 130. Once it gives the result:
///  - a file is written whole, later Ctrl-Cs ignored, so that a file is either
///    written whole or not at all;
///  - a text on stdout may be cut: Ctrl-C ends the program as it ends any
///    other (the shell reports 130), the text built and printed so far lost.
namespace Interrupt {
enum class Result { File, Text };
/// True when Ctrl-C came before the command started giving its result.
bool Stopped();
/// The command starts giving its result: false (give nothing) when Ctrl-C came first.
bool BeginResult(Result result);
/// For a result written where the command cannot ask first (the transformation
/// frame writes its own file): the result was whole, so a Ctrl-C that came
/// after the computation's last yield no longer counts.
void ResultWritten();
} // namespace Interrupt

/// Writes text to stdout in UTF-8 with LF line ends.
void WriteOut(const QString& text);
/// Writes text to stderr in UTF-8 with LF line ends, then a line end unless it has one.
void WriteErr(const QString& text);
