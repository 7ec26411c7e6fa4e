/// \file
/// The main window.
#include "ui/frmMain.h"

#include "storage/GrammarFile.h"

#include <QFileInfo>
#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QSplitter>

frmMain::frmMain()
    : m_host(this)
    , m_workspace(&m_host)
{
    setObjectName(QStringLiteral("frmMain"));
    QFont mono(QStringLiteral("Courier New"));
    mono.setStyleHint(QFont::Monospace);

    Text1 = new QPlainTextEdit;
    Text1->setObjectName(QStringLiteral("Text1"));
    Text1->setFont(mono);
    Text1->setLineWrapMode(QPlainTextEdit::NoWrap);
    Text2 = new QPlainTextEdit;
    Text2->setObjectName(QStringLiteral("Text2"));
    Text2->setFont(mono);
    Text2->setReadOnly(true);
    Text2->setLineWrapMode(QPlainTextEdit::NoWrap);

    auto* split = new QSplitter(Qt::Horizontal);
    split->addWidget(Text1);
    split->addWidget(Text2);
    split->setStretchFactor(0, 1);
    split->setStretchFactor(1, 1);
    setCentralWidget(split);
    resize(1000, 700);
    SetCaption();
}

bool frmMain::TKGOpen(const QString& path)
{
    QString text, error;
    if (!ReadGrammarFile(path, text, error)) {
        m_host.critical(error);
        return false;
    }
    Text1->setPlainText(text);
    m_workspace.grammar.Clear();
    m_workspace.grammar.SetPath(QFileInfo(path).absoluteFilePath());
    SetCaption();
    return true;
}

void frmMain::SetCaption()
{
    const QString name = m_workspace.grammar.Name();
    setWindowTitle(QStringLiteral("2016 KAVEN TRELK") + QStringLiteral(" \u2014 ")
                   + (name.isEmpty() ? QStringLiteral("[New]") : name));
}
