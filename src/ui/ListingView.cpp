/// \file
/// The read-only listing view.
#include "ui/ListingView.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <climits>

namespace {

constexpr int kAutoScrollMs = 40;   ///< how often a drag outside the view scrolls it

bool IsWordChar(QChar c)
{
    return c.isLetterOrNumber() || c == QLatin1Char('_');
}

} // namespace

ListingView::ListingView(QWidget* parent)
    : QAbstractScrollArea(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setCursor(Qt::IBeamCursor);
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setAutoFillBackground(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    UpdateMetrics();
    UpdateScrollBars();
}

void ListingView::setText(const QString& text)
{
    m_text = text;
    // One pass over the text: where each line starts, and the longest line for
    // the horizontal scroll range.
    m_starts.assign(1, 0);
    m_longest = 0;
    const QStringView view(m_text);
    qsizetype start = 0;
    for (qsizetype lf = view.indexOf(u'\n'); lf >= 0; lf = view.indexOf(u'\n', start)) {
        const qsizetype end = lf > start && view[lf - 1] == u'\r' ? lf - 1 : lf;
        m_longest = std::max(m_longest, end - start);
        start = lf + 1;
        m_starts.push_back(start);
    }
    m_longest = std::max(m_longest, view.size() - start);
    m_anchor = m_cursor = 0;
    m_dragging = false;
    m_autoScroll.stop();
    UpdateScrollBars();
    verticalScrollBar()->setValue(0);
    horizontalScrollBar()->setValue(0);
    viewport()->update();
}

qsizetype ListingView::LineEnd(int i) const
{
    if (i + 1 >= lineCount())
        return m_text.size();
    qsizetype end = m_starts[i + 1] - 1;  // the LF
    if (end > m_starts[i] && m_text.at(end - 1) == u'\r')
        --end;
    return end;
}

QStringView ListingView::line(int i) const
{
    if (i < 0 || i >= lineCount())
        return {};
    return QStringView(m_text).mid(m_starts[i], LineEnd(i) - m_starts[i]);
}

int ListingView::firstVisibleLine() const
{
    return verticalScrollBar()->value();
}

int ListingView::LineOf(qsizetype offset) const
{
    const auto it = std::upper_bound(m_starts.begin(), m_starts.end(), offset);
    return static_cast<int>(it - m_starts.begin()) - 1;
}

qsizetype ListingView::OffsetAt(QPoint point) const
{
    const int row = point.y() < Margin ? -1 : (point.y() - Margin) / m_lineHeight;
    const int line = std::clamp(firstVisibleLine() + row, 0, lineCount() - 1);
    const qsizetype x = qsizetype(point.x()) - Margin + horizontalScrollBar()->value();
    const qsizetype column = x <= 0 ? 0 : (x + m_charWidth / 2) / m_charWidth;
    return m_starts[line] + std::min(column, LineEnd(line) - m_starts[line]);
}

QString ListingView::selectedText() const
{
    return m_text.mid(selectionStart(), selectionEnd() - selectionStart());
}

void ListingView::selectAll()
{
    m_anchor = 0;
    m_cursor = m_text.size();
    viewport()->update();
}

void ListingView::clearSelection()
{
    m_anchor = m_cursor;
    viewport()->update();
}

void ListingView::copy() const
{
    if (hasSelection())
        QGuiApplication::clipboard()->setText(selectedText());
}

void ListingView::UpdateMetrics()
{
    const QFontMetrics metrics(font());
    m_lineHeight = std::max(1, metrics.lineSpacing());
    m_charWidth = std::max(1, metrics.horizontalAdvance(QLatin1Char('M')));
    m_ascent = metrics.ascent();
}

void ListingView::UpdateScrollBars()
{
    const int rows = std::max(1, (viewport()->height() - Margin) / m_lineHeight);
    QScrollBar* v = verticalScrollBar();
    v->setRange(0, std::max(0, lineCount() - rows));
    v->setPageStep(rows);
    v->setSingleStep(1);
    const qsizetype width = m_longest * m_charWidth + 2 * Margin;
    QScrollBar* h = horizontalScrollBar();
    h->setRange(0, static_cast<int>(std::clamp<qsizetype>(width - viewport()->width(), 0, INT_MAX)));
    h->setPageStep(std::max(1, viewport()->width()));
    h->setSingleStep(m_charWidth);
}

void ListingView::paintEvent(QPaintEvent* event)
{
    QPainter p(viewport());
    p.setFont(font());
    const QPalette& pal = palette();
    const int first = firstVisibleLine();
    const int shift = horizontalScrollBar()->value();
    // Only the columns in sight are drawn: a line may be far wider than the view.
    const qsizetype firstColumn = std::max(0, shift - Margin) / m_charWidth;
    const qsizetype columns = viewport()->width() / m_charWidth + 2;
    const int top = std::max(0, (event->rect().top() - Margin) / m_lineHeight);
    const int bottom = (event->rect().bottom() - Margin) / m_lineHeight;
    const qsizetype selStart = selectionStart();
    const qsizetype selEnd = selectionEnd();
    for (int row = top; row <= bottom && first + row < lineCount(); ++row) {
        const int line = first + row;
        const qsizetype start = m_starts[line];
        const qsizetype end = LineEnd(line);
        const int y = Margin + row * m_lineHeight;
        const qsizetype length = end - start;
        QString visible;
        if (firstColumn < length)
            visible = m_text.mid(start + firstColumn, std::min(columns, length - firstColumn));
        const int x = Margin + static_cast<int>(firstColumn * m_charWidth) - shift;
        p.setPen(pal.color(QPalette::Text));
        if (!visible.isEmpty())
            p.drawText(x, y + m_ascent, visible);
        if (selStart == selEnd || selEnd < start || selStart > end)
            continue;
        // The selected part of this line; a selected line end shows as half a column.
        const qsizetype from = std::max(selStart, start) - start;
        const qsizetype to = std::min(selEnd, end) - start;
        const qint64 left = Margin + from * m_charWidth - shift;
        const qint64 right = Margin + to * m_charWidth - shift + (selEnd > end ? m_charWidth / 2 : 0);
        const QRect band(static_cast<int>(std::clamp<qint64>(left, -1, INT_MAX / 2)), y,
                         static_cast<int>(std::clamp<qint64>(right - left, 0, INT_MAX / 2)), m_lineHeight);
        if (band.isEmpty())
            continue;
        p.fillRect(band, pal.brush(QPalette::Highlight));
        p.save();
        p.setClipRect(band);
        p.setPen(pal.color(QPalette::HighlightedText));
        if (!visible.isEmpty())
            p.drawText(x, y + m_ascent, visible);
        p.restore();
    }
}

void ListingView::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    UpdateScrollBars();
}

void ListingView::changeEvent(QEvent* event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        UpdateMetrics();
        UpdateScrollBars();
        viewport()->update();
    }
}

bool ListingView::event(QEvent* event)
{
    // Copy and Select All belong to the view while it has the focus, not to a
    // window shortcut with the same keys.
    if (event->type() == QEvent::ShortcutOverride) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key == QKeySequence::Copy || key == QKeySequence::SelectAll) {
            event->accept();
            return true;
        }
    }
    return QAbstractScrollArea::event(event);
}

void ListingView::keyPressEvent(QKeyEvent* event)
{
    QScrollBar* v = verticalScrollBar();
    QScrollBar* h = horizontalScrollBar();
    if (event == QKeySequence::Copy) {
        copy();
    } else if (event == QKeySequence::SelectAll) {
        selectAll();
    } else {
        switch (event->key()) {
        case Qt::Key_Up:
            v->triggerAction(QAbstractSlider::SliderSingleStepSub);
            break;
        case Qt::Key_Down:
            v->triggerAction(QAbstractSlider::SliderSingleStepAdd);
            break;
        case Qt::Key_PageUp:
            v->triggerAction(QAbstractSlider::SliderPageStepSub);
            break;
        case Qt::Key_PageDown:
            v->triggerAction(QAbstractSlider::SliderPageStepAdd);
            break;
        case Qt::Key_Left:
            h->triggerAction(QAbstractSlider::SliderSingleStepSub);
            break;
        case Qt::Key_Right:
            h->triggerAction(QAbstractSlider::SliderSingleStepAdd);
            break;
        case Qt::Key_Home:
            v->setValue(v->minimum());
            h->setValue(h->minimum());
            break;
        case Qt::Key_End:
            v->setValue(v->maximum());
            h->setValue(h->minimum());
            break;
        default:
            QAbstractScrollArea::keyPressEvent(event);
            return;
        }
    }
    event->accept();
}

void ListingView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        QAbstractScrollArea::mousePressEvent(event);
        return;
    }
    const qsizetype offset = OffsetAt(event->position().toPoint());
    if (!(event->modifiers() & Qt::ShiftModifier))
        m_anchor = offset;
    m_cursor = offset;
    m_dragging = true;
    m_dragPoint = event->position().toPoint();
    viewport()->update();
}

void ListingView::DragTo(QPoint point)
{
    m_dragPoint = point;
    m_cursor = OffsetAt(point);
    const QRect area = viewport()->rect();
    if (area.contains(point))
        m_autoScroll.stop();
    else if (!m_autoScroll.isActive())
        m_autoScroll.start(kAutoScrollMs, this);
    viewport()->update();
}

void ListingView::mouseMoveEvent(QMouseEvent* event)
{
    if (m_dragging && (event->buttons() & Qt::LeftButton))
        DragTo(event->position().toPoint());
}

void ListingView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !m_dragging)
        return;
    m_dragging = false;
    m_autoScroll.stop();
    QClipboard* clipboard = QGuiApplication::clipboard();
    if (hasSelection() && clipboard->supportsSelection())
        clipboard->setText(selectedText(), QClipboard::Selection);
}

void ListingView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    // The word under the pointer, within its line.
    const qsizetype offset = OffsetAt(event->position().toPoint());
    const int line = LineOf(offset);
    const qsizetype begin = m_starts[line];
    const qsizetype end = LineEnd(line);
    qsizetype from = offset, to = offset;
    while (from > begin && IsWordChar(m_text.at(from - 1)))
        --from;
    while (to < end && IsWordChar(m_text.at(to)))
        ++to;
    m_anchor = from;
    m_cursor = to;
    viewport()->update();
}

void ListingView::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_autoScroll.timerId()) {
        QAbstractScrollArea::timerEvent(event);
        return;
    }
    const QRect area = viewport()->rect();
    QScrollBar* v = verticalScrollBar();
    QScrollBar* h = horizontalScrollBar();
    if (m_dragPoint.y() < area.top())
        v->triggerAction(QAbstractSlider::SliderSingleStepSub);
    else if (m_dragPoint.y() > area.bottom())
        v->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    if (m_dragPoint.x() < area.left())
        h->triggerAction(QAbstractSlider::SliderSingleStepSub);
    else if (m_dragPoint.x() > area.right())
        h->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    m_cursor = OffsetAt(m_dragPoint);
    viewport()->update();
}

void ListingView::contextMenuEvent(QContextMenuEvent* event)
{
    QMenu menu(this);
    QAction* copyAction = menu.addAction(tr("&Copy"), this, &ListingView::copy);
    copyAction->setShortcut(QKeySequence::Copy);
    copyAction->setEnabled(hasSelection());
    QAction* all = menu.addAction(tr("Select &All"), this, &ListingView::selectAll);
    all->setShortcut(QKeySequence::SelectAll);
    all->setEnabled(!m_text.isEmpty());
    menu.exec(event->globalPos());
}
