/// \file
/// The file dialogs.
#include "ui/FileDialogs.h"

#include "storage/Folders.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

namespace {
std::function<QString(const KAVENDialog&)>& Scripted()
{
    static std::function<QString(const KAVENDialog&)> answer;
    return answer;
}
} // namespace

QString TextFilesFilter()
{
    return QStringLiteral("Text Files (*.txt)");
}

QString GrammarFilesFilter()
{
    return QStringLiteral("TRELK Grammar Files (*.tkg)");
}

QString AllFilesFilter()
{
    return QStringLiteral("All Files (*.*)");
}

QString CFilesFilter()
{
    return QStringLiteral("C Files (*.c)");
}

void KAVENDialog::SetScriptedAnswer(std::function<QString(const KAVENDialog&)> answer)
{
    Scripted() = std::move(answer);
}

bool KAVENDialog::GetFileName()
{
    QString chosen;
    if (Scripted()) {
        chosen = Scripted()(*this);
    } else {
        QFileDialog dialog(Owner, Title, InitDir.isEmpty() ? QFileInfo(File).absolutePath() : InitDir);
        dialog.setAcceptMode(Saving() ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
        dialog.setFileMode(Saving() ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
        dialog.setNameFilters(Filter);
        if (FilterIndex >= 1 && FilterIndex <= Filter.size())
            dialog.selectNameFilter(Filter[FilterIndex - 1]);
        dialog.setDefaultSuffix(DefaultExt);
        if (!File.isEmpty())
            dialog.selectFile(File);
        if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
            chosen = dialog.selectedFiles().first();
    }
    if (chosen.isEmpty())
        return false;
    const QFileInfo info(chosen);
    File = QDir::toNativeSeparators(info.absoluteFilePath());
    FileTitle = info.fileName();
    InitDir = NormaliseFolder(info.absolutePath());
    return true;
}

KAVENOpen::KAVENOpen()
{
    Title = QStringLiteral("Open File");
    InitDir = NormaliseFolder(QDir::rootPath());
    Filter = {AllFilesFilter()};
}

KAVENSave::KAVENSave()
{
    Title = QStringLiteral("Save File As");
    InitDir = NormaliseFolder(QDir::rootPath());
    Filter = {AllFilesFilter()};
}
