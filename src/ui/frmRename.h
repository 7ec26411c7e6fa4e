/// \file
/// frmRename: the Rename Grammar dialog. The name field takes only the
/// characters a grammar file name may have here; Enter renames.
#pragma once

#include <QDialog>

class QLineEdit;
class QPushButton;

class frmRename final : public QDialog {
    Q_OBJECT
public:
    explicit frmRename(const QString& currentName, QWidget* parent = nullptr);
    /// Whether the field accepts the character (backspace included).
    static bool Allowed(QChar c);
    QString NewName() const;

    QLineEdit* Text1 = nullptr;
    QPushButton* cmdRename = nullptr;
    QPushButton* cmdCancel = nullptr;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};
