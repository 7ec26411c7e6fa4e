/// \file
/// The desktop program's host.
#include "ui/GuiHost.h"

#include <QCoreApplication>
#include <QLabel>
#include <QMessageBox>

namespace {
const QString kTitle = QStringLiteral("2016 KAVEN TRELK");
}

GuiHost::GuiHost(QWidget* owner)
    : m_owner(owner)
{
    m_sinceYield.start();
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

void GuiHost::yield()
{
    // A computation may call this per rule; the event loop gets a turn at most
    // every 10 ms, which keeps Stop responsive without slowing the work.
    if (m_sinceYield.elapsed() < 10)
        return;
    QCoreApplication::processEvents();
    m_sinceYield.restart();
}

void GuiHost::status(StatusField field, const QString& text)
{
    QLabel* label = field == StatusField::State ? m_state : field == StatusField::Pass ? m_pass : m_elapsed;
    if (!label)
        return;
    label->setText(text);
    label->repaint();
}

void GuiHost::setStatusLabels(QLabel* state, QLabel* pass, QLabel* elapsed)
{
    m_state = state;
    m_pass = pass;
    m_elapsed = elapsed;
}
