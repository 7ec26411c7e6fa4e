/// \file
/// The Rename Grammar dialog.
#include "ui/frmRename.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

frmRename::frmRename(const QString& currentName, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmRename"));
    setWindowTitle(QStringLiteral("Rename Grammar"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Enter new name:")));
    Text1 = new QLineEdit(currentName);
    Text1->setObjectName(QStringLiteral("Text1"));
    Text1->installEventFilter(this);
    layout->addWidget(Text1);
    auto* buttons = new QHBoxLayout;
    cmdRename = new QPushButton(QStringLiteral("&Rename"));
    cmdRename->setObjectName(QStringLiteral("cmdRename"));
    cmdCancel = new QPushButton(QStringLiteral("&Cancel"));
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    buttons->addStretch();
    buttons->addWidget(cmdRename);
    buttons->addWidget(cmdCancel);
    layout->addLayout(buttons);
    connect(cmdRename, &QPushButton::clicked, this, [this] {
        if (!NewName().isEmpty())
            accept();
    });
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

bool frmRename::Allowed(QChar c)
{
    // On purpose a fixed set: letters, digits and a few marks that are safe in file names.
    const char16_t u = c.unicode();
    return u == 8 || (u >= u'A' && u <= u'Z') || (u >= u'a' && u <= u'z') || (u >= u'0' && u <= u'9')
        || (u >= 94 && u <= 96) || u == u'-' || u == u'!' || (u >= 35 && u <= 41) || u == u'{' || u == u'}'
        || u == u'~';
}

QString frmRename::NewName() const
{
    return Text1->text();
}

bool frmRename::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == Text1 && event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            cmdRename->click();
            return true;
        }
        const QString text = key->text();
        // Editing keys (arrows, Delete, shortcuts) carry no text and pass; typed
        // characters outside the set are discarded.
        if (!text.isEmpty() && text[0].isPrint() && !Allowed(text[0]))
            return true;
    }
    return QDialog::eventFilter(watched, event);
}
