/// \file
/// The desktop program's message boxes.
#include "ui/GuiHost.h"
#include "grammar/Texts.h"

#include <QMessageBox>

namespace {
const QString& kTitle = kProductName;
}

GuiHost::GuiHost(QWidget* owner)
    : m_owner(owner)
{
}

void GuiHost::critical(const QString& text)
{
    QMessageBox::critical(m_owner, kTitle, text);
}

void GuiHost::information(const QString& text)
{
    QMessageBox::information(m_owner, kTitle, text);
}

bool GuiHost::okCancel(const QString& text)
{
    return QMessageBox::information(m_owner, kTitle, text, QMessageBox::Ok | QMessageBox::Cancel) == QMessageBox::Ok;
}

SaveAnswer AskSaveChanges(QWidget* owner, const QString& text)
{
    QMessageBox box(QMessageBox::Warning, kTitle, text, QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
                    owner);
    box.setDefaultButton(QMessageBox::Save);
    box.setEscapeButton(QMessageBox::Cancel);
    switch (box.exec()) {
    case QMessageBox::Save:
        return SaveAnswer::Save;
    case QMessageBox::Discard:
        return SaveAnswer::Discard;
    default:
        return SaveAnswer::Cancel;
    }
}
