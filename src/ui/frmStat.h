/// \file
/// frmStat: the Statistics dialog — the grammar's figures and, for a chosen
/// feature, the non-terminals that have it.
#pragma once

#include <QDialog>

class Grammar;
class QLabel;
class QListWidget;
class QPushButton;

class frmStat final : public QDialog {
    Q_OBJECT
public:
    frmStat(Grammar& grammar, QWidget* parent = nullptr);
    /// Takes the figures from the grammar and lists the features.
    void Init();
    /// Fills List2 with the non-terminals that have feature (0 nullable, 1 left-recursive).
    void List2Fill(int feature);

    QLabel* lblRules = nullptr;
    QLabel* lblTokens = nullptr;
    QLabel* lblSymbols = nullptr;
    QLabel* lblEmptyRules = nullptr;
    QListWidget* List1 = nullptr;
    QListWidget* List2 = nullptr;
    QPushButton* cmdOK = nullptr;

private:
    Grammar& m_grammar;
    bool m_stop = false;  ///< set when the dialog closes, ending a long fill
};
