/// \file
/// AutomatonPane: the LR automaton of the selected view as a picture that
/// zooms (Ctrl + wheel) and scrolls, drawn whole or as the neighbourhood of a
/// state. Clicking a state lists its items and chooses its row in the grid;
/// HighlightState fills a state (the one a parse has come to). The picture is
/// drawn only while the pane is on screen.
#pragma once

#include <QByteArray>
#include <QRectF>
#include <QString>
#include <QWidget>
#include <memory>
#include <vector>

class QCheckBox;
class QGraphicsScene;
class QGraphicsSvgItem;
class QGraphicsView;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QSpinBox;
class QSvgRenderer;
class frmMain;

class AutomatonPane final : public QWidget {
    Q_OBJECT
public:
    explicit AutomatonPane(frmMain& window, QWidget* parent = nullptr);
    ~AutomatonPane() override;

    /// Follows the selected view: an analysed LR view is drawn whole, or when
    /// larger than a picture holds, around state 0; other views draw nothing.
    void ShowView(int view);
    /// Shows state's items and chooses its row in the grid.
    void ChooseState(int state);
    /// The state drawn at a point of the view's viewport; -1 for none.
    int StateAt(const QPoint& viewportPoint) const;
    /// Where state is drawn, in scene coordinates; empty when it is not drawn.
    QRectF StateRect(int state) const;
    /// The states drawn now, ascending.
    const std::vector<int>& DrawnStates() const { return m_drawn; }
    const QString& Dot() const { return m_dot; }
    const QByteArray& Svg() const { return m_svg; }
    /// Asks where to write the DOT text or the SVG picture, and writes it.
    void ExportDot();
    void ExportSvg();

    QCheckBox* wholeBox = nullptr;
    QSpinBox* stateSpin = nullptr;
    QSpinBox* depthSpin = nullptr;
    QPushButton* fitButton = nullptr;
    QPushButton* dotButton = nullptr;
    QPushButton* svgButton = nullptr;
    QLabel* message = nullptr;
    QGraphicsView* view = nullptr;
    QPlainTextEdit* items = nullptr;

public Q_SLOTS:
    /// Draws state filled, re-centring the neighbourhood on it when it lies outside.
    void HighlightState(int state);

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Redraw();
    void Clear(const QString& why);
    void Export(bool svg);

    frmMain& m_window;
    int m_view = -1;
    int m_highlight = -1;
    bool m_stale = true;  ///< the picture does not show the current choices yet
    bool m_setting = false;  ///< the controls are being set, not changed by the user
    std::vector<int> m_drawn;
    QString m_dot;
    QByteArray m_svg;
    QGraphicsScene* m_scene = nullptr;
    std::unique_ptr<QSvgRenderer> m_renderer;
    QGraphicsSvgItem* m_picture = nullptr;
};
