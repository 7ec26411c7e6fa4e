/// \file
/// frmAbout: the About box.
#pragma once

#include <QDialog>

class QPushButton;

class frmAbout final : public QDialog {
    Q_OBJECT
public:
    explicit frmAbout(QWidget* parent = nullptr);
    QPushButton* cmdClose = nullptr;
};
