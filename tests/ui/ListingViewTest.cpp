// The output box: line index, scrolling by keys, selection and copying.
#include "ui/ListingView.h"

#include <QApplication>
#include <QClipboard>
#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>

namespace {

/// A shown view of 400 x 200 pixels holding text.
struct Box {
    ListingView view;
    explicit Box(const QString& text)
    {
        QFont mono(QStringLiteral("Courier New"));
        mono.setStyleHint(QFont::Monospace);
        view.setFont(mono);
        view.resize(400, 200);
        view.show();
        view.setText(text);
    }
    /// The viewport point in the middle of the left edge of column `column` of the visible row `row`.
    QPoint At(int row, int column) const
    {
        const QFontMetrics m(view.font());
        return QPoint(ListingView::Margin + column * m.horizontalAdvance(QLatin1Char('M')),
                      ListingView::Margin + row * m.lineSpacing() + m.lineSpacing() / 2);
    }
    QStringList Lines() const
    {
        QStringList lines;
        for (int i = 0; i < view.lineCount(); ++i)
            lines << view.line(i).toString();
        return lines;
    }
};

QString Numbered(int count, const char* eol)
{
    QString text;
    for (int i = 0; i < count; ++i)
        text += QStringLiteral("line %1").arg(i) + QString::fromLatin1(eol);
    return text;
}

TEST(ListingView, IndexesLinesEndingInLfOrCrLfAndKeepsTheTextAsGiven)
{
    const QString mixed = QStringLiteral("first\r\nsecond\n\r\nfourth\rstill fourth\r\n");
    Box box(mixed);
    EXPECT_EQ(box.view.text(), mixed);
    EXPECT_EQ(box.Lines(), (QStringList{QStringLiteral("first"), QStringLiteral("second"), QString(),
                                        QStringLiteral("fourth\rstill fourth"), QString()}));
    box.view.setText(QStringLiteral("no line end"));
    EXPECT_EQ(box.Lines(), QStringList{QStringLiteral("no line end")});
    box.view.setText(QString());
    EXPECT_EQ(box.Lines(), QStringList{QString()});
    box.view.setText(QStringLiteral("\n\n"));
    EXPECT_EQ(box.Lines(), (QStringList{QString(), QString(), QString()}));
}

TEST(ListingView, KeysScrollAndANewTextShowsItsBeginning)
{
    Box box(Numbered(1000, "\r\n"));
    QScrollBar* v = box.view.verticalScrollBar();
    const int page = v->pageStep();
    ASSERT_GT(page, 1);
    QTest::keyClick(&box.view, Qt::Key_PageDown);
    EXPECT_EQ(box.view.firstVisibleLine(), page);
    QTest::keyClick(&box.view, Qt::Key_Down);
    QTest::keyClick(&box.view, Qt::Key_Down);
    QTest::keyClick(&box.view, Qt::Key_Up);
    EXPECT_EQ(box.view.firstVisibleLine(), page + 1);
    QTest::keyClick(&box.view, Qt::Key_End);
    // The last line is in sight at the bottom: 1000 lines and the empty one after the last line end.
    EXPECT_EQ(box.view.firstVisibleLine(), 1001 - page);
    QTest::keyClick(&box.view, Qt::Key_PageUp);
    EXPECT_EQ(box.view.firstVisibleLine(), 1001 - 2 * page);
    QTest::keyClick(&box.view, Qt::Key_Home);
    EXPECT_EQ(box.view.firstVisibleLine(), 0);

    // A line wider than the view scrolls sideways; a new text starts at the top left.
    box.view.setText(QString(500, QLatin1Char('x')) + QStringLiteral("\n") + Numbered(100, "\n"));
    QScrollBar* h = box.view.horizontalScrollBar();
    const int column = QFontMetrics(box.view.font()).horizontalAdvance(QLatin1Char('M'));
    QTest::keyClick(&box.view, Qt::Key_Right);
    EXPECT_EQ(h->value(), column);
    // Scrolled right to the end, the last column of the long line is in sight, and the first is not.
    h->setValue(h->maximum());
    const int lastRight = ListingView::Margin + 500 * column - h->value();
    EXPECT_LE(lastRight, box.view.viewport()->width());
    EXPECT_GT(lastRight, box.view.viewport()->width() - column);
    QTest::keyClick(&box.view, Qt::Key_PageDown);
    box.view.setText(Numbered(3000, "\n"));
    EXPECT_EQ(box.view.firstVisibleLine(), 0);
    EXPECT_EQ(h->value(), 0);
    EXPECT_EQ(v->maximum(), 3001 - page);
}

TEST(ListingView, MouseAndKeysSelectAndCopyTheTextAsGiven)
{
    const QString text = QStringLiteral("alpha beta\r\ngamma delta\r\nepsilon\r\n");
    Box box(text);
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->setText(QStringLiteral("before"));
    QTest::keyClick(&box.view, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard->text(), QStringLiteral("before"));  // nothing selected, nothing copied

    QTest::keyClick(&box.view, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&box.view, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard->text(), text);

    // A drag from line 0 column 6 to line 1 column 5 takes the line end along.
    QWidget* port = box.view.viewport();
    QTest::mousePress(port, Qt::LeftButton, Qt::NoModifier, box.At(0, 6));
    QTest::mouseMove(port, box.At(1, 2));
    QTest::mouseMove(port, box.At(1, 5));
    QTest::mouseRelease(port, Qt::LeftButton, Qt::NoModifier, box.At(1, 5));
    EXPECT_EQ(box.view.selectedText(), QStringLiteral("beta\r\ngamma"));
    // Shift+click moves the far end; dragging backwards selects the same way.
    QTest::mouseClick(port, Qt::LeftButton, Qt::ShiftModifier, box.At(2, 3));
    EXPECT_EQ(box.view.selectedText(), QStringLiteral("beta\r\ngamma delta\r\neps"));
    QTest::mousePress(port, Qt::LeftButton, Qt::NoModifier, box.At(1, 11));
    QTest::mouseMove(port, box.At(0, 40));
    QTest::mouseRelease(port, Qt::LeftButton, Qt::NoModifier, box.At(0, 40));
    EXPECT_EQ(box.view.selectedText(), QStringLiteral("\r\ngamma delta"));  // past the end of line 0
    QTest::mouseDClick(port, Qt::LeftButton, Qt::NoModifier, box.At(1, 8));
    EXPECT_EQ(box.view.selectedText(), QStringLiteral("delta"));
    QTest::keyClick(&box.view, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard->text(), QStringLiteral("delta"));

    box.view.setText(QStringLiteral("new"));
    EXPECT_FALSE(box.view.hasSelection());
}

} // namespace
