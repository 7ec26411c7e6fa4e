/// \file
/// The Statistics dialog.
#include "ui/frmStat.h"

#include "grammar/Grammar.h"

#include <QFormLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

frmStat::frmStat(Grammar& grammar, QWidget* parent)
    : QDialog(parent)
    , m_grammar(grammar)
{
    setObjectName(QStringLiteral("frmStat"));
    setWindowTitle(QStringLiteral("Statistics"));
    auto* layout = new QVBoxLayout(this);
    auto* figures = new QFormLayout;
    lblRules = new QLabel;
    lblTokens = new QLabel;
    lblSymbols = new QLabel;
    lblEmptyRules = new QLabel;
    figures->addRow(QStringLiteral("Rules"), lblRules);
    figures->addRow(QStringLiteral("Tokens"), lblTokens);
    figures->addRow(QStringLiteral("Symbols"), lblSymbols);
    figures->addRow(QStringLiteral("Empty Rules"), lblEmptyRules);
    layout->addLayout(figures);
    layout->addWidget(new QLabel(QStringLiteral("Feature:")));
    List1 = new QListWidget;
    List1->setObjectName(QStringLiteral("List1"));
    List1->setMaximumHeight(60);
    layout->addWidget(List1);
    layout->addWidget(new QLabel(QStringLiteral("Symbols affected:")));
    List2 = new QListWidget;
    List2->setObjectName(QStringLiteral("List2"));
    QFont mono(QStringLiteral("Courier New"));
    mono.setStyleHint(QFont::Monospace);
    List2->setFont(mono);
    layout->addWidget(List2);
    cmdOK = new QPushButton(QStringLiteral("OK"));
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    layout->addWidget(cmdOK, 0, Qt::AlignRight);
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(List1, &QListWidget::currentRowChanged, this, &frmStat::List2Fill);
    connect(this, &QDialog::finished, this, [this] { m_stop = true; });
    Init();
}

void frmStat::Init()
{
    const Grammar& g = m_grammar;
    int empty = 0;
    for (int r = 1; r <= g.ruleCount && r < static_cast<int>(g.ruleIsEmpty.size()); ++r)
        empty += g.ruleIsEmpty[r] ? 1 : 0;
    lblRules->setText(QString::number(g.ruleCount));
    lblTokens->setText(QString::number(g.terminalCount));
    lblSymbols->setText(QString::number(g.lastCode));
    lblEmptyRules->setText(QString::number(empty));
    List1->clear();
    List1->addItems({QStringLiteral("Nullable Symbols"), QStringLiteral("Left Recursive Symbols")});
    List2->clear();
}

void frmStat::List2Fill(int feature)
{
    List2->clear();
    m_stop = false;
    const Grammar& g = m_grammar;
    const std::vector<char>& marks = feature == 0 ? g.nullable : g.leftRecursive;
    for (int a = g.firstNonterminal; a <= g.lastCode && a < static_cast<int>(marks.size()); ++a) {
        if (marks[a])
            List2->addItem(g.GetSymbolS(a));
        m_grammar.host().yield();
        if (m_stop)
            return;
    }
}
