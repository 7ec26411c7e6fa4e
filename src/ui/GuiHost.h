/// \file
/// The desktop program's message boxes, titled with the product line.
#pragma once

#include "grammar/Host.h"

#include <QPointer>

class QWidget;

class GuiHost final : public Host {
public:
    explicit GuiHost(QWidget* owner);

    void critical(const QString& text) override;
    void information(const QString& text) override;
    bool okCancel(const QString& text) override;
    /// The window that owns this host runs the event loop itself.
    void yield() override {}
    void status(StatusField, const QString&) override {}

private:
    QPointer<QWidget> m_owner;
};
