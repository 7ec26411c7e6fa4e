/// \file
/// KAVENOpen and KAVENSave: the file dialogs of File Open and Save As, with
/// their titles, filter lists and remembered folders. Tests put an answer in
/// place of the dialog through SetScriptedAnswer.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>

class QWidget;

/// The filter entries ("label (pattern)"). English texts: the interface-language flag is fixed at 1.
QString TextFilesFilter();     ///< "Text Files (*.txt)"
QString GrammarFilesFilter();  ///< "TRELK Grammar Files (*.tkg)"
QString AllFilesFilter();      ///< "All Files (*.*)"
QString CFilesFilter();        ///< "C Files (*.c)"

class KAVENDialog {
public:
    virtual ~KAVENDialog() = default;

    QString DefaultExt;  ///< extension given to a name typed without one
    QString InitDir;     ///< folder shown first; after a choice, the chosen file's folder
    QString File;        ///< full path: the starting name, then the chosen file
    QString FileTitle;   ///< the chosen file's name without its folder
    QStringList Filter;  ///< filter entries, first one chosen
    int FilterIndex = 1;
    QWidget* Owner = nullptr;
    QString Title;

    /// Shows the dialog; true when the user chose a file (File, FileTitle and InitDir then describe it).
    bool GetFileName();

    /// Replaces the dialog in tests: the function gets the dialog and returns the
    /// chosen path, or "" for Cancel. An empty function restores the real dialog.
    static void SetScriptedAnswer(std::function<QString(const KAVENDialog&)> answer);

protected:
    virtual bool Saving() const = 0;
};

class KAVENOpen final : public KAVENDialog {
public:
    KAVENOpen();

protected:
    bool Saving() const override { return false; }
};

class KAVENSave final : public KAVENDialog {
public:
    KAVENSave();

protected:
    bool Saving() const override { return true; }
};
