/// \file
/// The automaton pane: the DOT text of the session, drawn by the render layer,
/// shown through Qt SVG; the drawn states are found again by their element ids.
#include "ui/AutomatonPane.h"

#include "render/DotToSvg.h"
#include "session/AutomatonGraph.h"
#include "session/Export.h"
#include "session/Views.h"
#include "ui/FileDialogs.h"
#include "ui/TableGrid.h"
#include "ui/frmMain.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGraphicsScene>
#include <QGraphicsSvgItem>
#include <QGraphicsView>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QSplitter>
#include <QSvgRenderer>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <algorithm>

namespace {

QString ElementId(int state)
{
    return QStringLiteral("s%1").arg(state);
}

} // namespace

AutomatonPane::AutomatonPane(frmMain& window, QWidget* parent)
    : QWidget(parent)
    , m_window(window)
{
    wholeBox = new QCheckBox(QStringLiteral("Whole"));
    wholeBox->setObjectName(QStringLiteral("automatonWhole"));
    wholeBox->setToolTip(QStringLiteral("Every state, or only those near the chosen state"));
    stateSpin = new QSpinBox;
    stateSpin->setObjectName(QStringLiteral("automatonState"));
    stateSpin->setPrefix(QStringLiteral("State "));
    stateSpin->setToolTip(QStringLiteral("The state whose neighbourhood is drawn"));
    depthSpin = new QSpinBox;
    depthSpin->setObjectName(QStringLiteral("automatonDepth"));
    depthSpin->setPrefix(QStringLiteral("Depth "));
    depthSpin->setRange(0, 50);
    depthSpin->setValue(2);
    depthSpin->setToolTip(QStringLiteral("How many transitions, either way, a drawn state may be from the chosen one"));
    fitButton = new QPushButton(QStringLiteral("Fit"));
    fitButton->setToolTip(QStringLiteral("The whole picture in the pane (Ctrl + wheel zooms)"));
    dotButton = new QPushButton(QStringLiteral("Export DOT"));
    dotButton->setObjectName(QStringLiteral("automatonExportDot"));
    svgButton = new QPushButton(QStringLiteral("Export SVG"));
    svgButton->setObjectName(QStringLiteral("automatonExportSvg"));
    message = new QLabel;
    message->setObjectName(QStringLiteral("automatonMessage"));
    message->setWordWrap(true);

    m_scene = new QGraphicsScene(this);
    view = new QGraphicsView(m_scene);
    view->setObjectName(QStringLiteral("automatonView"));
    view->setDragMode(QGraphicsView::ScrollHandDrag);
    view->setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
    view->setRenderHint(QPainter::Antialiasing);
    view->viewport()->installEventFilter(this);
    items = new QPlainTextEdit;
    items->setObjectName(QStringLiteral("automatonItems"));
    items->setReadOnly(true);
    items->setLineWrapMode(QPlainTextEdit::NoWrap);
    items->setPlaceholderText(QStringLiteral("Click a state to list its items."));
    QFont mono(QStringLiteral("Courier New"));
    mono.setStyleHint(QFont::Monospace);
    items->setFont(mono);

    auto* controls = new QHBoxLayout;
    controls->addWidget(wholeBox);
    controls->addWidget(stateSpin);
    controls->addWidget(depthSpin);
    controls->addWidget(fitButton);
    controls->addStretch(1);
    controls->addWidget(dotButton);
    controls->addWidget(svgButton);
    auto* split = new QSplitter(Qt::Horizontal);
    split->addWidget(view);
    split->addWidget(items);
    split->setStretchFactor(0, 3);
    split->setStretchFactor(1, 1);
    split->setSizes({3000, 1000});  // in proportion, once the pane has its size
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addLayout(controls);
    layout->addWidget(message);
    layout->addWidget(split, 1);

    auto changed = [this] {
        if (m_setting)
            return;
        m_stale = true;
        Redraw();
    };
    connect(wholeBox, &QCheckBox::toggled, this, changed);
    connect(stateSpin, &QSpinBox::valueChanged, this, changed);
    connect(depthSpin, &QSpinBox::valueChanged, this, changed);
    connect(fitButton, &QPushButton::clicked, this, [this] {
        if (m_picture)
            view->fitInView(m_picture, Qt::KeepAspectRatio);
    });
    connect(dotButton, &QPushButton::clicked, this, &AutomatonPane::ExportDot);
    connect(svgButton, &QPushButton::clicked, this, &AutomatonPane::ExportSvg);
    ShowView(-1);
}

AutomatonPane::~AutomatonPane()
{
    // The picture draws through the renderer: it goes first.
    m_scene->clear();
}

void AutomatonPane::ShowView(int view)
{
    m_view = view;
    m_highlight = -1;
    const int states = AutomatonStates(m_window.workspace(), view);
    m_setting = true;
    stateSpin->setRange(0, std::max(0, states - 1));
    stateSpin->setValue(0);
    // A large automaton opens on the nearest neighbours of its first state.
    const bool fits = WholeAutomatonFits(m_window.workspace(), view);
    wholeBox->setChecked(fits);
    wholeBox->setEnabled(fits);
    if (states > 0)
        depthSpin->setValue(fits ? 2 : 1);
    m_setting = false;
    items->clear();
    m_stale = true;
    if (isVisible())
        Redraw();
}

void AutomatonPane::Clear(const QString& why)
{
    m_scene->clear();
    m_picture = nullptr;
    m_renderer.reset();
    m_drawn.clear();
    m_dot.clear();
    m_svg.clear();
    message->setText(why);
    dotButton->setEnabled(false);
    svgButton->setEnabled(false);
}

void AutomatonPane::Redraw()
{
    if (!m_stale)
        return;
    m_stale = false;
    const bool whole = wholeBox->isChecked();
    stateSpin->setEnabled(!whole);
    depthSpin->setEnabled(!whole);
    if (!HasAutomaton(m_view)) {
        Clear(QStringLiteral("The LR views (SLR(1), LALR(1), LR(1)) have an automaton to draw."));
        return;
    }
    GraphOptions options;
    options.centre = whole ? -1 : stateSpin->value();
    options.depth = depthSpin->value();
    options.highlight = m_highlight;
    const AutomatonGraph graph = BuildAutomatonGraph(m_window.workspace(), m_view, options);
    if (!graph.error.isEmpty()) {
        Clear(graph.error);
        return;
    }
    const SvgPicture picture = DotToSvg(graph.dot.toUtf8());
    if (!picture.Ok()) {
        Clear(picture.error);
        return;
    }
    auto renderer = std::make_unique<QSvgRenderer>(picture.svg);
    if (!renderer->isValid()) {
        Clear(QStringLiteral("The picture Graphviz drew could not be shown."));
        return;
    }
    const QTransform kept = view->transform();
    const bool first = m_picture == nullptr;
    m_scene->clear();
    m_renderer = std::move(renderer);
    m_picture = new QGraphicsSvgItem;
    m_picture->setSharedRenderer(m_renderer.get());
    m_scene->addItem(m_picture);
    m_scene->setSceneRect(m_picture->boundingRect());
    m_drawn = graph.states;
    m_dot = graph.dot;
    m_svg = picture.svg;
    dotButton->setEnabled(true);
    svgButton->setEnabled(true);
    message->setText(whole ? QStringLiteral("%1 states.").arg(graph.totalStates)
                           : QStringLiteral("%1 of %2 states: those within %3 transitions of state %4.")
                                 .arg(graph.states.size()).arg(graph.totalStates).arg(options.depth).arg(options.centre));
    if (first)
        view->resetTransform();
    else
        view->setTransform(kept);
    const QRectF filled = StateRect(m_highlight);
    view->centerOn((filled.isEmpty() ? StateRect(whole ? 0 : options.centre) : filled).center());
}

QRectF AutomatonPane::StateRect(int state) const
{
    if (!m_picture || !std::binary_search(m_drawn.begin(), m_drawn.end(), state))
        return {};
    const QString id = ElementId(state);
    if (!m_renderer->elementExists(id))
        return {};
    const QRectF svgRect = m_renderer->transformForElement(id).mapRect(m_renderer->boundsOnElement(id));
    // The item draws the view box scaled to its default size.
    const QRectF box = m_renderer->viewBoxF();
    const QSizeF size = m_picture->boundingRect().size();
    if (box.width() <= 0 || box.height() <= 0)
        return {};
    const qreal sx = size.width() / box.width(), sy = size.height() / box.height();
    const QRectF itemRect((svgRect.x() - box.x()) * sx, (svgRect.y() - box.y()) * sy, svgRect.width() * sx,
                          svgRect.height() * sy);
    return m_picture->mapRectToScene(itemRect);
}

int AutomatonPane::StateAt(const QPoint& viewportPoint) const
{
    const QPointF at = view->mapToScene(viewportPoint);
    for (int s : m_drawn)
        if (StateRect(s).contains(at))
            return s;
    return -1;
}

void AutomatonPane::ChooseState(int state)
{
    const QStringList lines = StateItemLines(m_window.workspace(), m_view, state);
    if (lines.isEmpty())
        return;
    QString text = QStringLiteral("State %1\n").arg(state);
    for (const QString& line : lines)
        text += QStringLiteral("    ") + line + QLatin1Char('\n');
    for (const Conflict& c : ConflictsOf(m_window.workspace(), m_view))
        if (c.row == state)
            text += LrConflictText(c) + QLatin1Char('\n');
    items->setPlainText(text);
    TableGrid* grid = m_window.Picture1;
    if (grid->Model().View() == m_view && state < grid->Model().rowCount()) {
        // The grid chooses single cells; its whole row is chosen here all the same.
        const QModelIndex first = grid->Model().index(state, 0);
        grid->selectionModel()->setCurrentIndex(first, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        grid->scrollTo(first);
    }
}

void AutomatonPane::HighlightState(int state)
{
    const int states = AutomatonStates(m_window.workspace(), m_view);
    m_highlight = state >= 0 && state < states ? state : -1;
    if (m_highlight >= 0 && !wholeBox->isChecked()
        && !std::binary_search(m_drawn.begin(), m_drawn.end(), m_highlight)) {
        m_setting = true;
        stateSpin->setValue(m_highlight);
        m_setting = false;
    }
    m_stale = true;
    if (isVisible())
        Redraw();
}

void AutomatonPane::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    Redraw();
}

bool AutomatonPane::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == view->viewport()) {
        if (event->type() == QEvent::MouseButtonPress) {
            const auto* mouse = static_cast<QMouseEvent*>(event);
            const int state = StateAt(mouse->position().toPoint());
            if (state >= 0 && mouse->button() == Qt::LeftButton)
                ChooseState(state);
        } else if (event->type() == QEvent::Wheel) {
            const auto* wheel = static_cast<QWheelEvent*>(event);
            if (wheel->modifiers() & Qt::ControlModifier) {
                const qreal factor = wheel->angleDelta().y() > 0 ? 1.25 : 0.8;
                view->scale(factor, factor);
                return true;
            }
        }
    }
    return QWidget::eventFilter(watched, event);
}

void AutomatonPane::ExportDot()
{
    Export(false);
}

void AutomatonPane::ExportSvg()
{
    Export(true);
}

void AutomatonPane::Export(bool svg)
{
    if (m_dot.isEmpty() || !FindView(m_view))
        return;
    KAVENSave dialog;
    dialog.Filter = {svg ? QStringLiteral("SVG Pictures (*.svg)") : QStringLiteral("Graphviz DOT Files (*.dot)"),
                     AllFilesFilter()};
    dialog.DefaultExt = svg ? QStringLiteral("svg") : QStringLiteral("dot");
    const QString grammar = m_window.workspace().grammar.Path();
    if (!grammar.isEmpty()) {
        dialog.File = ExportBaseName(grammar) + QStringLiteral("-automaton-") + QString::fromLatin1(ViewOf(m_view).name)
                    + QLatin1Char('.') + dialog.DefaultExt;
        dialog.InitDir = QFileInfo(grammar).absolutePath();
    }
    dialog.Owner = this;
    dialog.Title = svg ? QStringLiteral("Export the Automaton as SVG") : QStringLiteral("Export the Automaton as DOT");
    if (!dialog.GetFileName())
        return;
    const QByteArray bytes = svg ? m_svg : m_dot.toUtf8();
    QFile file(dialog.File);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size() || !file.flush()) {
        m_window.workspace().host().critical(QStringLiteral("Cannot write ") + QDir::toNativeSeparators(dialog.File)
                                             + QStringLiteral(": ") + file.errorString());
        return;
    }
}
