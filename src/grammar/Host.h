/// \file
/// The host: everything the core may ask of its surroundings (messages, a turn
/// of the message loop, the three status labels of an analysis run).
#pragma once

#include <QString>

/// The three status labels of the main window that an analysis run writes.
enum class StatusField { State, Pass, Elapsed };

/// What a computation in the core needs from whoever runs it. The desktop
/// program answers with message boxes and its event loop, the batch front end
/// with stderr, the tests with a recording. The core never shows a window.
class Host {
public:
    virtual ~Host() = default;
    /// A modal message with the critical icon; returns when the user has read it.
    virtual void critical(const QString& text) = 0;
    /// A modal message with the information icon.
    virtual void information(const QString& text) = 0;
    /// A modal OK/Cancel question with the information icon; true for OK.
    virtual bool okCancel(const QString& text) = 0;
    /// Give the message loop a turn, so that Stop can be clicked. Computations
    /// test their InProcess flag after it.
    virtual void yield() = 0;
    /// Show a text in one of the status labels (repainted at once).
    virtual void status(StatusField field, const QString& text) = 0;
};

/// A host that shows nothing and never interrupts; the default of a grammar
/// that nobody has given a host.
class SilentHost final : public Host {
public:
    void critical(const QString&) override {}
    void information(const QString&) override {}
    bool okCancel(const QString&) override { return true; }
    void yield() override {}
    void status(StatusField, const QString&) override {}

    /// The one shared instance (it has no state).
    static SilentHost& Instance();
};
