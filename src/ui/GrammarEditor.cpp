/// \file
/// The grammar editor with line numbers and notation highlighting.
#include "ui/GrammarEditor.h"

#include "grammar/Grammar.h"
#include "session/TableCells.h"

#include <QPainter>
#include <QRegularExpression>
#include <QTextBlock>

namespace {

class LineNumberArea final : public QWidget {
public:
    explicit LineNumberArea(GrammarEditor* editor)
        : QWidget(editor)
        , m_editor(editor)
    {
    }
    QSize sizeHint() const override { return QSize(m_editor->LineNumberAreaWidth(), 0); }

protected:
    void paintEvent(QPaintEvent* event) override { m_editor->PaintLineNumbers(event); }

private:
    GrammarEditor* m_editor;
};

} // namespace

GrammarHighlighter::GrammarHighlighter(QTextDocument* document)
    : QSyntaxHighlighter(document)
{
    m_nonterminal.setForeground(QColor(0x1a, 0x4f, 0x9c));
    m_nonterminal.setFontWeight(QFont::DemiBold);
    m_terminal.setForeground(QColor(0x1b, 0x7a, 0x2e));
    m_operator.setForeground(QColor(0xb0, 0x30, 0x30));
    m_operator.setFontWeight(QFont::Bold);
    m_comment.setForeground(QColor(0x80, 0x80, 0x80));
    m_comment.setFontItalic(true);
    m_goal.setBackground(QColor(0xee, 0xf3, 0xfb));
}

void GrammarHighlighter::highlightBlock(const QString& text)
{
    // A line without "<" is a comment; text before the first "<" is cut off.
    const qsizetype first = text.indexOf(QLatin1Char('<'));
    if (first < 0) {
        setFormat(0, static_cast<int>(text.size()), m_comment);
        return;
    }
    if (first > 0)
        setFormat(0, static_cast<int>(first), m_comment);
    qsizetype i = first;
    bool rightSide = false;
    while (i < text.size()) {
        const QChar c = text[i];
        if (c == QLatin1Char('<')) {
            const qsizetype close = text.indexOf(QLatin1Char('>'), i + 1);
            const qsizetype end = close < 0 ? text.size() : close + 1;
            setFormat(static_cast<int>(i), static_cast<int>(end - i), m_nonterminal);
            i = end;
        } else if (c == QLatin1Char('[') && rightSide) {
            qsizetype close = text.indexOf(QLatin1Char(']'), i + 1);
            if (close == i + 1)  // "[]]" names the terminal "]"
                close = text.indexOf(QLatin1Char(']'), i + 2);
            const qsizetype end = close < 0 ? text.size() : close + 1;
            setFormat(static_cast<int>(i), static_cast<int>(end - i), m_terminal);
            i = end;
        } else if (c == QLatin1Char('=') || c == QLatin1Char('.')) {
            setFormat(static_cast<int>(i), 1, m_operator);
            rightSide = true;
            ++i;
        } else {
            ++i;
        }
    }
    if (currentBlock().blockNumber() == 0 || previousBlockState() == -1) {
        // The first non-blank line names the goal.
        bool blankBefore = true;
        for (QTextBlock b = currentBlock().previous(); b.isValid(); b = b.previous())
            if (!b.text().trimmed().isEmpty()) {
                blankBefore = false;
                break;
            }
        if (blankBefore && !text.trimmed().isEmpty())
            setFormat(0, static_cast<int>(text.size()), m_goal);
    }
    setCurrentBlockState(text.trimmed().isEmpty() ? -1 : 1);
}

GrammarEditor::GrammarEditor(QWidget* parent)
    : QPlainTextEdit(parent)
    , m_lineNumbers(new LineNumberArea(this))
{
    QFont mono(QStringLiteral("Courier New"));
    mono.setStyleHint(QFont::Monospace);
    mono.setPointSize(10);
    setFont(mono);
    setLineWrapMode(QPlainTextEdit::NoWrap);
    new GrammarHighlighter(document());
    connect(this, &QPlainTextEdit::blockCountChanged, this, [this] { setViewportMargins(LineNumberAreaWidth(), 0, 0, 0); });
    connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect& rect, int dy) {
        if (dy)
            m_lineNumbers->scroll(0, dy);
        else
            m_lineNumbers->update(0, rect.y(), m_lineNumbers->width(), rect.height());
    });
    setViewportMargins(LineNumberAreaWidth(), 0, 0, 0);
}

QString GrammarEditor::CrLfText() const
{
    QString text = toPlainText();
    return text.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
}

void GrammarEditor::GoToMessagePlace(int line, int position)
{
    int seen = 0;
    for (QTextBlock b = document()->begin(); b.isValid(); b = b.next()) {
        const QString text = b.text();
        if (QString(text).remove(QLatin1Char(' ')).isEmpty())
            continue;  // blank lines do not count
        if (++seen != line)
            continue;
        int column = 0;
        if (position > 0) {
            // Walk the line: skip to the first "<", then count non-space characters.
            const qsizetype first = text.indexOf(QLatin1Char('<'));
            int counted = 0;
            for (qsizetype i = first < 0 ? 0 : first; i < text.size(); ++i) {
                if (text[i] == QLatin1Char(' '))
                    continue;
                if (++counted == position) {
                    column = static_cast<int>(i);
                    break;
                }
                column = static_cast<int>(i) + 1;
            }
        }
        QTextCursor cursor(b);
        cursor.movePosition(QTextCursor::Right, QTextCursor::MoveAnchor, column);
        setTextCursor(cursor);
        centerCursor();
        setFocus();
        return;
    }
}

int GrammarEditor::LineNumberAreaWidth() const
{
    const int digits = static_cast<int>(QString::number(std::max(1, blockCount())).size());
    return 10 + fontMetrics().horizontalAdvance(QLatin1Char('9')) * std::max(digits, 2);
}

void GrammarEditor::resizeEvent(QResizeEvent* event)
{
    QPlainTextEdit::resizeEvent(event);
    const QRect r = contentsRect();
    m_lineNumbers->setGeometry(QRect(r.left(), r.top(), LineNumberAreaWidth(), r.height()));
}

void GrammarEditor::PaintLineNumbers(QPaintEvent* event)
{
    QPainter painter(m_lineNumbers);
    painter.fillRect(event->rect(), QColor(0xf2, 0xf2, 0xf2));
    painter.setPen(QColor(0x90, 0x90, 0x90));
    QTextBlock block = firstVisibleBlock();
    int top = qRound(blockBoundingGeometry(block).translated(contentOffset()).top());
    while (block.isValid() && top <= event->rect().bottom()) {
        const int height = qRound(blockBoundingRect(block).height());
        if (block.isVisible())
            painter.drawText(0, top, m_lineNumbers->width() - 5, fontMetrics().height(), Qt::AlignRight,
                             QString::number(block.blockNumber() + 1));
        top += height;
        block = block.next();
    }
}

void GrammarEditor::MarkRuleLines(const Grammar& g, const std::vector<int>& rules)
{
    auto squeezed = [](QString text) {
        text.remove(QLatin1Char(' '));
        text.remove(QLatin1Char('\t'));
        return text;
    };
    QList<QTextEdit::ExtraSelection> marks;
    QTextBlock first;
    for (int r : rules) {
        if (r <= 0 || r >= static_cast<int>(g.rules.size()))
            continue;  // rule 0, <'>, has no line of its own
        const QString rule = RuleText(g, r);
        const qsizetype equals = rule.indexOf(QLatin1Char('='));
        const QString left = rule.left(equals + 1);
        const QString right = rule.mid(equals + 1);
        QTextBlock found, ofLeft;
        for (QTextBlock b = document()->begin(); b.isValid() && !found.isValid(); b = b.next()) {
            const QString line = squeezed(b.text());
            if (line == rule)
                found = b;
            else if (line.startsWith(left)) {
                if (!ofLeft.isValid())
                    ofLeft = b;
                if (line.mid(left.size()).split(QLatin1Char('|')).contains(right))
                    found = b;
            }
        }
        if (!found.isValid())
            found = ofLeft;
        if (!found.isValid())
            continue;
        if (!first.isValid())
            first = found;
        QTextEdit::ExtraSelection mark;
        mark.cursor = QTextCursor(found);
        mark.cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        mark.format.setBackground(QColor(0xffe2a8));
        mark.format.setProperty(QTextFormat::FullWidthSelection, true);
        marks << mark;
    }
    setExtraSelections(marks);
    if (first.isValid()) {
        QTextCursor cursor(first);
        cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        setTextCursor(cursor);
        ensureCursorVisible();
    }
}
