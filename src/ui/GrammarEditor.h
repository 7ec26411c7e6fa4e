/// \file
/// GrammarEditor: the grammar box Text1 — a plain text editor in a fixed-pitch
/// font with line numbers and highlighting of the notation (non-terminals,
/// terminals, "=", the end marker, comment lines).
#pragma once

#include <QPlainTextEdit>
#include <QSyntaxHighlighter>
#include <vector>

class Grammar;

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
    /// Marks the lines of rules of g (rule 0 has none) and selects the first,
    /// scrolled into view; no rules clears the marks. Rules keep no line of
    /// their own: a rule's line is the first that reads as the rule (spaces
    /// aside), or one of whose alternatives does, failing that the first line
    /// of its left side.
    void MarkRuleLines(const Grammar& g, const std::vector<int>& rules);

    int LineNumberAreaWidth() const;
    void PaintLineNumbers(QPaintEvent* event);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* m_lineNumbers;
};
