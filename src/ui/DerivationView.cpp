/// \file
/// The derivation trees drawn.
#include "ui/DerivationView.h"

#include "grammar/Grammar.h"

#include <QDir>
#include <QFontMetrics>
#include <QPainter>
#include <QSvgGenerator>
#include <algorithm>
#include <functional>

namespace {

constexpr qreal kGap = 10;      ///< between neighbouring leaves
constexpr qreal kPadX = 6;      ///< inside a node's box
constexpr qreal kLevel = 44;    ///< from one level of a tree to the next
constexpr qreal kMargin = 8;

int Depth(const DerivationTree& tree)
{
    int deepest = 0;
    for (const DerivationTree& child : tree.children)
        deepest = std::max(deepest, Depth(child));
    return tree.children.empty() ? 0 : deepest + 1;
}

} // namespace

class DerivationView::Canvas final : public QWidget {
public:
    explicit Canvas(DerivationView& view)
        : m_view(view)
    {
        setBackgroundRole(QPalette::Base);
        setAutoFillBackground(true);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter p(this);
        m_view.Paint(p, palette(), font());
    }

private:
    DerivationView& m_view;
};

DerivationView::DerivationView(QWidget* parent)
    : QScrollArea(parent)
    , m_canvas(new Canvas(*this))
{
    setObjectName(QStringLiteral("derivationView"));
    setWidget(m_canvas);
    setWidgetResizable(false);
    m_canvas->resize(1, 1);
}

void DerivationView::Clear()
{
    m_trees.clear();
    m_canvas->resize(1, 1);
    m_canvas->update();
}

void DerivationView::SetTrees(const Grammar& g, const std::vector<DerivationTree>& trees, const QStringList& captions)
{
    m_trees.clear();
    const QFontMetrics metrics(m_canvas->font());
    const qreal boxHeight = metrics.height() + 6;
    // The trees stand side by side, each under its caption, their leaves along one bottom row.
    const qreal top = kMargin + metrics.height() + 6;
    qreal width = kMargin;
    qreal height = 0;
    // The leaves of all the trees along one bottom row, so that they read as one form.
    int depth = 0;
    for (const DerivationTree& tree : trees)
        depth = std::max(depth, Depth(tree));
    for (std::size_t t = 0; t < trees.size(); ++t) {
        Placed placed;
        placed.caption = captions.value(static_cast<qsizetype>(t));
        placed.left = width;
        qreal nextLeafX = width;
        // Leaves take the next place along the bottom row; an inner node stands
        // above the middle of its children at its own level.
        std::function<int(const DerivationTree&, int, int)> place = [&](const DerivationTree& node, int level, int parent) {
            const int index = static_cast<int>(placed.nodes.size());
            Node n;
            n.text = g.GetSymbolS(node.symbol);
            n.parent = parent;
            n.leaf = node.children.empty();
            const qreal w = metrics.horizontalAdvance(n.text) + 2 * kPadX;
            placed.nodes.push_back(n);
            qreal centre = 0;
            qreal y = top + level * kLevel;
            if (n.leaf) {
                // A non-terminal left unexpanded is a symbol of the form too: it goes down with the others.
                y = top + depth * kLevel;
                centre = nextLeafX + w / 2;
                nextLeafX += w + kGap;
            } else {
                qreal first = 0, last = 0;
                for (std::size_t c = 0; c < node.children.size(); ++c) {
                    const int child = place(node.children[c], level + 1, index);
                    const qreal x = placed.nodes[static_cast<std::size_t>(child)].box.center().x();
                    if (c == 0)
                        first = x;
                    last = x;
                }
                centre = (first + last) / 2;
            }
            placed.nodes[static_cast<std::size_t>(index)].box = QRectF(centre - w / 2, y, w, boxHeight);
            return index;
        };
        place(trees[t], 0, -1);
        qreal right = width + metrics.horizontalAdvance(placed.caption);
        for (const Node& n : placed.nodes)
            right = std::max(right, n.box.right());
        width = right + 4 * kGap;
        height = std::max(height, top + depth * kLevel + boxHeight + kMargin);
        m_trees.push_back(std::move(placed));
    }
    m_canvas->resize(static_cast<int>(width) + 1, static_cast<int>(height) + 1);
    m_canvas->update();
}
QSize DerivationView::DrawingSize() const
{
    return m_canvas->size();
}

void DerivationView::Paint(QPainter& p, const QPalette& palette, const QFont& font) const
{
    p.setRenderHint(QPainter::Antialiasing);
    const QColor edge = palette.color(QPalette::Mid);
    for (const Placed& tree : m_trees) {
        if (!tree.nodes.empty()) {
            QFont bold = font;
            bold.setBold(true);
            p.setFont(bold);
            p.setPen(palette.color(QPalette::Text));
            const QRectF root = tree.nodes.front().box;
            p.drawText(QPointF(tree.left, root.top() - 8), tree.caption);
            p.setFont(font);
        }
        p.setPen(QPen(edge, 1.2));
        for (const Node& node : tree.nodes)
            if (node.parent >= 0) {
                const QRectF from = tree.nodes[static_cast<std::size_t>(node.parent)].box;
                p.drawLine(QPointF(from.center().x(), from.bottom()), QPointF(node.box.center().x(), node.box.top()));
            }
        for (const Node& node : tree.nodes) {
            p.setPen(palette.color(QPalette::Text));
            p.setBrush(node.leaf ? QColor(0xfff3d6) : QColor(0xdde8f6));
            p.drawRoundedRect(node.box, 4, 4);
            p.drawText(node.box, Qt::AlignCenter, node.text);
        }
    }
}

bool DerivationView::SaveSvg(const QString& path, const QString& title, QString& error) const
{
    const QSize size = DrawingSize();
    QSvgGenerator svg;
    svg.setFileName(path);
    svg.setSize(size);
    svg.setViewBox(QRect(QPoint(0, 0), size));
    svg.setTitle(title);
    svg.setResolution(m_canvas->logicalDpiX());
    QPainter p;
    if (!p.begin(&svg)) {
        error = QStringLiteral("Cannot write ") + QDir::toNativeSeparators(path) + QLatin1Char('.');
        return false;
    }
    p.fillRect(QRect(QPoint(0, 0), size), m_canvas->palette().color(QPalette::Base));
    Paint(p, m_canvas->palette(), m_canvas->font());
    if (!p.end()) {
        error = QStringLiteral("Cannot write ") + QDir::toNativeSeparators(path) + QLatin1Char('.');
        return false;
    }
    return true;
}

QStringList DerivationView::LeafTexts(int tree) const
{
    QStringList leaves;
    if (tree < 0 || tree >= TreeCount())
        return leaves;
    for (const Node& n : m_trees[static_cast<std::size_t>(tree)].nodes)
        if (n.leaf)
            leaves << n.text;
    return leaves;
}
