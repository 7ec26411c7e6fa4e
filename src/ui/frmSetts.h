/// \file
/// frmSetts: the Options dialog — six check boxes bound to settings; a click
/// changes the setting in memory at once (there is no Cancel).
#pragma once

#include <QDialog>
#include <array>

class QCheckBox;
class QPushButton;
struct Settings;

class frmSetts final : public QDialog {
    Q_OBJECT
public:
    frmSetts(Settings& settings, QWidget* parent = nullptr);
    /// Sets every check box from its setting (the click handlers ignore this).
    void Init();

    std::array<QCheckBox*, 4> chkRules{};  ///< rules table, reverse table, comment, sample parser
    QCheckBox* chkItems = nullptr;         ///< display all LR items
    QCheckBox* chkLetters = nullptr;       ///< letters for new symbols
    QPushButton* cmdOK = nullptr;

private:
    Settings& m_settings;
    bool m_loading = false;
};
