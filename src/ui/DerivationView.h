/// \file
/// DerivationView: derivation trees drawn as trees — each node a box with its
/// symbol, edges from a node to the symbols of its rule's right side, the
/// leaves of all the trees along one bottom row. The trees stand side by side, each
/// under a caption, and the view scrolls when they do not fit.
#pragma once

#include "session/Derivation.h"

#include <QRectF>
#include <QSize>
#include <QScrollArea>
#include <QStringList>
#include <vector>

class Grammar;
class QPainter;

class DerivationView final : public QScrollArea {
    Q_OBJECT
public:
    explicit DerivationView(QWidget* parent = nullptr);

    /// Draws the trees, one per caption (missing captions stay empty).
    void SetTrees(const Grammar& g, const std::vector<DerivationTree>& trees, const QStringList& captions);
    void Clear();

    /// A placed node: its symbol's text, its box, its parent (-1 for the root).
    struct Node {
        QString text;
        QRectF box;
        int parent = -1;
        bool leaf = false;
    };
    struct Placed {
        QString caption;
        qreal left = 0;  ///< where the tree and its caption begin
        std::vector<Node> nodes;  ///< preorder
    };
    const std::vector<Placed>& Trees() const { return m_trees; }
    int TreeCount() const { return static_cast<int>(m_trees.size()); }
    /// The texts of a tree's leaves, left to right.
    QStringList LeafTexts(int tree) const;
    /// The size the trees take, margins included.
    QSize DrawingSize() const;
    /// Draws the trees as the view shows them, in the colours of palette.
    void Paint(QPainter& painter, const QPalette& palette, const QFont& font) const;
    /// Writes the drawing as an SVG picture; false, with error set, when the file cannot be written.
    bool SaveSvg(const QString& path, const QString& title, QString& error) const;

private:
    class Canvas;
    Canvas* m_canvas;
    std::vector<Placed> m_trees;
};
