/// \file
/// GrammarEditor: the grammar box Text1 — a plain text editor in a fixed-pitch
/// font with line numbers and highlighting of the notation (non-terminals,
/// terminals, "=", the end marker, comment lines).
#pragma once

#include <QPlainTextEdit>
#include <QSyntaxHighlighter>

class GrammarHighlighter final : public QSyntaxHighlighter {
public:
    explicit GrammarHighlighter(QTextDocument* document);

protected:
    void highlightBlock(const QString& text) override;

private:
    QTextCharFormat m_nonterminal, m_terminal, m_operator, m_comment, m_goal;
};

class GrammarEditor final : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit GrammarEditor(QWidget* parent = nullptr);

    /// The text with CR LF line ends, as the parser and the files have it.
    QString CrLfText() const;
    /// Puts the cursor on a non-blank line (1-based, blank lines not counted, as
    /// messages count them) at a position (1-based, on the line cut before its
    /// first "<" with spaces removed); position 0 means the start of the line.
    void GoToMessagePlace(int line, int position);

    int LineNumberAreaWidth() const;
    void PaintLineNumbers(QPaintEvent* event);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* m_lineNumbers;
};
