/// \file
/// frmReplace: the Rename symbols dialog. A thin layer over RenameSymbol: the
/// list of symbols, the selected name, the new name and the two buttons.
#pragma once

#include <QDialog>

class Grammar;
class QLineEdit;
class QListWidget;
class QPushButton;

class frmReplace final : public QDialog {
    Q_OBJECT
public:
    explicit frmReplace(Grammar& grammar, QWidget* parent = nullptr);
    /// Fills the list from the grammar's symbols.
    void Init();
    /// List1 afresh: the names of symbol codes 1 to the last, in code order.
    void ListInit();
    /// Clearing it during a rename stops the duplicate test.
    void SetInProcess(bool value) { m_inProcess = value; }
    bool InProcess() const { return m_inProcess; }

    QListWidget* List1 = nullptr;
    QLineEdit* Text2 = nullptr;  ///< the selected symbol
    QLineEdit* Text1 = nullptr;  ///< the new name
    QPushButton* cmdReplace = nullptr;
    QPushButton* cmdClose = nullptr;

Q_SIGNALS:
    /// A symbol was renamed: text is the grammar's regenerated text, for the
    /// window to put into the editor and save.
    void ResetText(const QString& text);

private:
    /// The Rename button.
    void Replace();

    Grammar& m_grammar;
    bool m_inProcess = false;
};
