/// \file
/// The desktop program's host: message boxes, a rate-limited turn of the event
/// loop, and the three status labels.
#pragma once

#include "grammar/Host.h"

#include <QElapsedTimer>
#include <QPointer>

class QLabel;
class QWidget;

class GuiHost final : public Host {
public:
    explicit GuiHost(QWidget* owner);

    void critical(const QString& text) override;
    void information(const QString& text) override;
    bool okCancel(const QString& text) override;
    void yield() override;
    void status(StatusField field, const QString& text) override;

    /// The labels that status() writes (any may be null).
    void setStatusLabels(QLabel* state, QLabel* pass, QLabel* elapsed);

private:
    QPointer<QWidget> m_owner;
    QPointer<QLabel> m_state, m_pass, m_elapsed;
    QElapsedTimer m_sinceYield;
};
