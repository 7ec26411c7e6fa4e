/// \file
/// The desktop program's message boxes, titled with the product line.
#pragma once

#include "grammar/Host.h"

#include <QPointer>

class QWidget;

/// The answer to "save the changes?" before the editor's text is given up.
enum class SaveAnswer { Save, Discard, Cancel };

/// The three-way question with the Save, Discard and Cancel buttons (Save the
/// default, Esc answers Cancel), titled with the product line.
SaveAnswer AskSaveChanges(QWidget* owner, const QString& text);

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
