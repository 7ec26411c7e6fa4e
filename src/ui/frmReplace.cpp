/// \file
/// The Rename symbols dialog.
#include "ui/frmReplace.h"

#include "grammar/Grammar.h"
#include "transform/RenameSymbol.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

frmReplace::frmReplace(Grammar& grammar, QWidget* parent)
    : QDialog(parent)
    , m_grammar(grammar)
{
    setObjectName(QStringLiteral("frmReplace"));
    setWindowTitle(QStringLiteral("Rename"));
    setFont(QFont(QStringLiteral("Tahoma")));
    QFont mono(QStringLiteral("Courier New"));
    mono.setStyleHint(QFont::Monospace);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Select symbol in a list:")));
    List1 = new QListWidget;
    List1->setObjectName(QStringLiteral("List1"));
    List1->setFont(mono);
    layout->addWidget(List1);
    Text2 = new QLineEdit;
    Text2->setObjectName(QStringLiteral("Text2"));
    Text2->setFont(mono);
    Text2->setReadOnly(true);
    layout->addWidget(Text2);
    layout->addWidget(new QLabel(QStringLiteral("Enter replace symbol:")));
    Text1 = new QLineEdit;
    Text1->setObjectName(QStringLiteral("Text1"));
    Text1->setFont(mono);
    layout->addWidget(Text1);
    auto* buttons = new QHBoxLayout;
    cmdReplace = new QPushButton(QStringLiteral("&Rename"));
    cmdReplace->setObjectName(QStringLiteral("cmdReplace"));
    cmdClose = new QPushButton(QStringLiteral("&Close"));
    cmdClose->setObjectName(QStringLiteral("cmdClose"));
    buttons->addStretch();
    buttons->addWidget(cmdReplace);
    buttons->addWidget(cmdClose);
    layout->addLayout(buttons);

    connect(List1, &QListWidget::currentRowChanged, this, [this](int row) {
        Text2->setText(row >= 0 ? List1->item(row)->text() : QString());
    });
    connect(cmdReplace, &QPushButton::clicked, this, &frmReplace::Replace);
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::accept);
    // Closing the dialog ends a duplicate test that is still running.
    connect(this, &QDialog::finished, this, [this] { m_inProcess = false; });
    Init();
}

void frmReplace::Init()
{
    ListInit();
}

void frmReplace::ListInit()
{
    List1->clear();
    List1->addItems(SymbolList(m_grammar));
    Text2->clear();
}

void frmReplace::Replace()
{
    m_inProcess = true;
    const RenameOutcome outcome = RenameSymbol(m_grammar, List1->currentRow(), Text2->text(), Text1->text(), m_inProcess);
    m_inProcess = false;
    if (outcome != RenameOutcome::Renamed)
        return;
    Q_EMIT ResetText(m_grammar.Text());
    ListInit();
}
