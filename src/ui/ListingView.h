/// \file
/// ListingView: the read-only output box Text2. A listing may run to millions
/// of lines (the LR(1) table of a large grammar), more than a text editor can
/// lay out in reasonable time and memory, so this view keeps the text once, as
/// given, with an index of where each line starts, and paints only the lines in
/// sight, in a monospace font where every character is one column wide.
/// Lines end with LF or CR LF; neither is shown. Selection is by mouse (drag,
/// Shift+click) or Ctrl+A, and Ctrl+C copies the selected part of the text
/// exactly as it was given.
#pragma once

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QString>
#include <QStringView>
#include <algorithm>
#include <vector>

class ListingView final : public QAbstractScrollArea {
    Q_OBJECT
public:
    explicit ListingView(QWidget* parent = nullptr);

    /// Blank pixels left of the text and above the first line.
    static constexpr int Margin = 4;

    /// Shows text from its beginning, nothing selected. The text is shared, not copied.
    void setText(const QString& text);
    /// The text as given to setText.
    const QString& text() const { return m_text; }

    /// The number of lines: one more than the line ends (an empty text has one empty line).
    int lineCount() const { return static_cast<int>(m_starts.size()); }
    /// Line i (0-based) without its line end.
    QStringView line(int i) const;
    /// The top line in sight.
    int firstVisibleLine() const;

    /// The selection as offsets into text(), start <= end.
    qsizetype selectionStart() const { return std::min(m_anchor, m_cursor); }
    qsizetype selectionEnd() const { return std::max(m_anchor, m_cursor); }
    bool hasSelection() const { return m_anchor != m_cursor; }
    QString selectedText() const;
    void selectAll();
    void clearSelection();
    /// Puts the selected text on the clipboard (nothing selected: the clipboard is left alone).
    void copy() const;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    qsizetype LineEnd(int i) const;
    /// The text offset nearest to a point of the viewport (clamped to the text).
    qsizetype OffsetAt(QPoint point) const;
    int LineOf(qsizetype offset) const;
    void UpdateMetrics();
    void UpdateScrollBars();
    void DragTo(QPoint point);

    QString m_text;
    std::vector<qsizetype> m_starts{0};  ///< where each line starts in m_text
    qsizetype m_longest = 0;             ///< characters in the longest line
    qsizetype m_anchor = 0;              ///< where the selection began
    qsizetype m_cursor = 0;              ///< where it ends (the moving end)
    int m_lineHeight = 1;
    int m_charWidth = 1;
    int m_ascent = 0;
    bool m_dragging = false;
    QPoint m_dragPoint;
    QBasicTimer m_autoScroll;  ///< scrolls while a drag holds the mouse outside the view
};
