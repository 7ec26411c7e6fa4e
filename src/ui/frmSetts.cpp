/// \file
/// The Options dialog.
#include "ui/frmSetts.h"

#include "model/Settings.h"

#include <QCheckBox>
#include <QPushButton>
#include <QVBoxLayout>

frmSetts::frmSetts(Settings& settings, QWidget* parent)
    : QDialog(parent)
    , m_settings(settings)
{
    setObjectName(QStringLiteral("frmSetts"));
    setWindowTitle(QStringLiteral("Options"));
    auto* layout = new QVBoxLayout(this);
    const char* labels[] = {"Generate rules Table", "Generate reverse rules Table", "Comment Syntax Table",
                            "Generate sample Parser"};
    int* targets[] = {&m_settings.generateRules, &m_settings.generateRuleReverse, &m_settings.generateComment,
                      &m_settings.generateRecognizer};
    for (int i = 0; i < 4; ++i) {
        chkRules[i] = new QCheckBox(QString::fromLatin1(labels[i]));
        chkRules[i]->setObjectName(QStringLiteral("chkRules_%1").arg(i));
        layout->addWidget(chkRules[i]);
        int* target = targets[i];
        connect(chkRules[i], &QCheckBox::toggled, this, [this, target](bool on) {
            if (!m_loading)
                *target = on ? 1 : 0;
        });
    }
    chkItems = new QCheckBox(QStringLiteral("Display all LR Items"));
    chkItems->setObjectName(QStringLiteral("chkItems"));
    chkLetters = new QCheckBox(QStringLiteral("Generate letters ( not ' ) for new symbols"));
    chkLetters->setObjectName(QStringLiteral("chkLetters"));
    layout->addWidget(chkItems);
    layout->addWidget(chkLetters);
    connect(chkItems, &QCheckBox::toggled, this, [this](bool on) {
        if (!m_loading)
            m_settings.displayAllItems = on ? 1 : 0;
    });
    connect(chkLetters, &QCheckBox::toggled, this, [this](bool on) {
        if (!m_loading)
            m_settings.lfLetters = on ? 1 : 0;
    });
    cmdOK = new QPushButton(QStringLiteral("OK"));
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    layout->addWidget(cmdOK, 0, Qt::AlignRight);
    // Every change has taken effect already: OK only closes.
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    Init();
}

void frmSetts::Init()
{
    m_loading = true;
    chkRules[0]->setChecked(m_settings.generateRules != 0);
    chkRules[1]->setChecked(m_settings.generateRuleReverse != 0);
    chkRules[2]->setChecked(m_settings.generateComment != 0);
    chkRules[3]->setChecked(m_settings.generateRecognizer != 0);
    chkItems->setChecked(m_settings.displayAllItems != 0);
    chkLetters->setChecked(m_settings.lfLetters != 0);
    m_loading = false;
}
