/// \file
/// frmMain: the main window — the grammar editor Text1 and the output box Text2.
#pragma once

#include "analysers/Workspace.h"
#include "ui/GuiHost.h"

#include <QMainWindow>

class QPlainTextEdit;

class frmMain : public QMainWindow {
    Q_OBJECT
public:
    frmMain();

    /// Opens a grammar text file into the editor; false (with a message) when it cannot be read.
    bool TKGOpen(const QString& path);
    /// "2016 KAVEN TRELK — name", or "[New]" for a grammar without a file.
    void SetCaption();

    QPlainTextEdit* Text1 = nullptr;  ///< the grammar editor
    QPlainTextEdit* Text2 = nullptr;  ///< the output of the selected view

private:
    GuiHost m_host;
    Workspace m_workspace;
};
