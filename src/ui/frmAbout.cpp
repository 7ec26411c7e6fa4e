/// \file
/// The About box.
#include "ui/frmAbout.h"
#include "grammar/Texts.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

frmAbout::frmAbout(QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About..."));
    auto* layout = new QVBoxLayout(this);
    auto* icon = new QLabel;
    icon->setPixmap(windowIcon().isNull() ? style()->standardIcon(QStyle::SP_ComputerIcon).pixmap(48, 48)
                                          : windowIcon().pixmap(48, 48));
    layout->addWidget(icon, 0, Qt::AlignHCenter);
    auto* product = new QLabel(kProductName);
    product->setObjectName(QStringLiteral("lblProduct"));
    QFont big = product->font();
    big.setPointSize(big.pointSize() + 4);
    big.setBold(true);
    product->setFont(big);
    layout->addWidget(product, 0, Qt::AlignHCenter);
    auto* version = new QLabel(QStringLiteral("Version ") + QString::number(TRELK_VERSION_MAJOR) + QLatin1Char('.')
                               + QString::number(TRELK_VERSION_MINOR));
    version->setObjectName(QStringLiteral("lblVersion"));
    layout->addWidget(version, 0, Qt::AlignHCenter);
    layout->addWidget(new QLabel(QStringLiteral("A workbench for context-free grammars.")), 0, Qt::AlignHCenter);
    cmdClose = new QPushButton(QStringLiteral("Close"));
    cmdClose->setObjectName(QStringLiteral("cmdClose"));
    layout->addWidget(cmdClose, 0, Qt::AlignHCenter);
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::accept);
}
