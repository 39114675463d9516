#include "app/MapWindow.h"

#include "app/FourPs.h"
#include "app/GraphMenu.h"
#include "display/ScreenRoom.h"
#include "system/Workers.h"
#include "text/NumberText.h"

#include <QComboBox>
#include <QLabel>
#include <QShowEvent>
#include <QVBoxLayout>

#include <cstdlib>

namespace
{

constexpr QSize usualSize(760, 720);
const QString thicknessCaption = QStringLiteral("t/ts"); // in every language
const QColor regionColor(255, 128, 0);
constexpr int veilAlpha = 120;

/// A rectangle between two pixels of a canvas, in data units: top is the lower end.
QRectF dataBetween(const ChCoord& coord, QPoint a, QPoint b)
{
    return QRectF(QPointF(coord.screenToX(a.x()), coord.screenToY(a.y())),
                  QPointF(coord.screenToX(b.x()), coord.screenToY(b.y())))
        .normalized();
}

QString meanText(const RegionMean& region)
{
    if (!region.mean)
        return QStringLiteral("-");
    const QString mean = textFromNumber(*region.mean);
    return region.deviation ? QStringLiteral("%1 ± %2").arg(mean, textFromNumber(*region.deviation))
                            : mean;
}

} // namespace

MapWindow::MapWindow(FourPs& panel)
    : m_panel(panel), m_canvas(new DispArea), m_quantity(new QComboBox), m_pointer(new QLabel),
      m_mean(new QLabel)
{
    build();
    connect(m_canvas, &DispArea::draw, this, [this](QStylePainter* painter) { draw(*painter); });
    connect(m_canvas, &DispArea::nowPos, this, &MapWindow::tellPointer);
    connect(m_canvas, &DispArea::mDragging, this, [this] { m_canvas->update(); });
    connect(m_canvas, &DispArea::mReleased, this, [this](const MouseC* mouse) { endDrag(*mouse); });
    connect(m_quantity, QOverload<int>::of(&QComboBox::activated), this, [this] {
        m_fresh = false;
        m_canvas->update();
    });
    connect(&panel, &FourPs::calculated, this, [this](FourPs::Result result) {
        if (result == FourPs::Result::Map) {
            m_fresh = false;
            m_canvas->update();
        }
    });
    watchCloud();
}

MapWindow::~MapWindow() = default;

void MapWindow::build()
{
    setObjectName(QStringLiteral("MapWindow"));
    setWindowTitle(tr("Map"));
    resize(usualSize);
    m_canvas->setObjectName(QStringLiteral("MapCanvas"));
    m_canvas->setAccessibleName(tr("Map"));
    m_quantity->setObjectName(QStringLiteral("MapQuantity"));
    m_quantity->addItems({tr("Valence"), thicknessCaption, tr("Valence by thickness")});
    m_quantity->setAccessibleName(tr("What the map shows"));
    m_pointer->setObjectName(QStringLiteral("MapPointer"));
    m_mean->setObjectName(QStringLiteral("MapMean"));
    for (QLabel* label : {m_pointer, m_mean}) {
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    }
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_quantity);
    layout->addWidget(m_canvas, 1);
    layout->addWidget(m_pointer);
    layout->addWidget(m_mean);
    m_pointer->setText(QStringLiteral(" "));
    m_mean->setText(tr("Drag over the map for the mean of a region."));
    new GraphMenu(m_panel, *m_canvas, tr("Map"),
                  [this] { return m_panel.graphTable(Displays::DispTA); });
}

/// A rectangle dragged in "t/a" while this window is open is a region as well.
void MapWindow::watchCloud()
{
    connect(m_panel.displays, &Displays::mReleased, this, [this](DispABase* graph, MouseC* mouse) {
        const bool plain =
            mouse->pressButton == Qt::LeftButton && mouse->pressModifiers == Qt::NoModifier;
        if (graph != m_panel.displays->panel(Displays::DispTA) || !isVisible() || !plain)
            return;
        refresh();
        if (m_pixels.size() == 0 ||
            (mouse->pressX == mouse->releaseX && mouse->pressY == mouse->releaseY))
            return;
        take(pixelsBetween(m_pixels, dataBetween(graph->graph.coord, {mouse->pressX, mouse->pressY},
                                                 {mouse->releaseX, mouse->releaseY})));
    });
}

void MapWindow::showEvent(QShowEvent* event)
{
    QFrame::showEvent(event);
    fitToScreen(*this, *event);
}

void MapWindow::refresh()
{
    if (m_fresh)
        return;
    const MapPixels pixels = m_panel.mapPixels();
    const bool another = pixels.positions != m_pixels.positions || pixels.size() != m_pixels.size();
    m_pixels = pixels;
    if (another || !m_grid) {
        m_grid = std::make_shared<const MapGrid>(m_pixels);
        m_canvas->rangeSet = false;
        take({});
    }
    m_picture.setMap(m_pixels, m_grid, static_cast<MapQuantity>(m_quantity->currentIndex()),
                     m_panel.mapRanges(), &Workers::shared());
    m_fresh = true;
    if (!m_region.empty())
        take(m_region); // the same pixels, their new values
}

void MapWindow::draw(QPainter& painter)
{
    refresh();
    MapCaptions captions;
    captions.valence = tr("Valence");
    captions.thickness = thicknessCaption;
    captions.missing = tr("no result: %1");
    captions.below = tr("below %1: %2");
    captions.above = tr("above %1: %2");
    captions.thinner = tr("t/ts below %1, shown palest: %2");
    captions.thicker = tr("t/ts above %1, shown fullest: %2");
    captions.hidden = tr("covered by other pixels: %1");
    captions.reduced = tr("a dot shows one of %1 x %2 pixels");
    captions.stretched = tr("the axes have different scales");
    captions.first = tr("Position 1 (units of the stage)");
    captions.second = tr("Position 2 (units of the stage)");
    captions.column = tr("Column");
    captions.row = tr("Row");
    painter.setFont(font());
    m_picture.draw(painter, m_canvas->graph, captions);
    if (m_canvas->coord.valid == 1)
        drawRegion(painter);
}

/// Neighbours together: a region may have very many pixels.
void MapWindow::drawRegionRow(QPainter& painter, int row) const
{
    const ChCoord& coord = m_canvas->coord;
    QColor veil = regionColor;
    veil.setAlpha(veilAlpha);
    const auto isIn = [this, row](int column) {
        const std::ptrdiff_t pixel = m_grid->pixel(column, row);
        return pixel != MapGrid::none && m_inRegion[static_cast<std::size_t>(pixel)];
    };
    const auto y = static_cast<std::size_t>(row);
    for (int column = 0; column < m_grid->columns(); ++column) {
        const auto first = static_cast<std::size_t>(column);
        while (column < m_grid->columns() && isIn(column))
            ++column;
        const auto behind = static_cast<std::size_t>(column);
        if (behind > first)
            painter.fillRect(QRectF(QPointF(coord.xToScreen(m_grid->xEdges[first]),
                                            coord.yToScreen(m_grid->yEdges[y + 1])),
                                    QPointF(coord.xToScreen(m_grid->xEdges[behind]),
                                            coord.yToScreen(m_grid->yEdges[y]))),
                             veil);
    }
}

/// The region's pixels, and the rectangle while it is dragged.
void MapWindow::drawRegion(QPainter& painter) const
{
    const ChCoord& coord = m_canvas->coord;
    const MouseC& mouse = m_canvas->mouse;
    painter.save();
    painter.setClipRect(QRectF(QPointF(coord.px0, coord.py1), QPointF(coord.px1, coord.py0)));
    for (int row = 0; !m_inRegion.empty() && row < m_grid->rows(); ++row)
        drawRegionRow(painter, row);
    if (mouse.pressed && mouse.pressButton == Qt::LeftButton &&
        mouse.pressModifiers == Qt::NoModifier) {
        painter.setPen(QPen(Qt::black, 1, Qt::DashLine));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(
            QRect(QPoint(mouse.pressX, mouse.pressY), QPoint(mouse.x, mouse.y)).normalized());
    }
    painter.restore();
}

void MapWindow::tellPointer(double x, double y)
{
    refresh();
    const std::ptrdiff_t pixel = m_pixels.size() > 0 ? m_grid->pixelAt(x, y) : MapGrid::none;
    const QString place = QStringLiteral("x: %1  y: %2").arg(textFromNumber(x), textFromNumber(y));
    if (pixel == MapGrid::none || !m_pixels.isMeasured(static_cast<std::size_t>(pixel)))
        return m_pointer->setText(place);
    const auto i = static_cast<std::size_t>(pixel);
    m_pointer->setText(
        tr("%1  Valence: %2  t/ts: %3")
            .arg(place, textFromNumber(m_pixels.valence(i)), textFromNumber(m_pixels.t[i])));
}

/// A rectangle is a region, a click with Shift the pixel there and its neighbours; a plain click
/// forgets the region.
void MapWindow::endDrag(const MouseC& mouse)
{
    const QPoint from(mouse.pressX, mouse.pressY);
    const QPoint to(mouse.releaseX, mouse.releaseY);
    if (mouse.pressButton != Qt::LeftButton || m_pixels.size() == 0)
        return;
    const ChCoord& coord = m_canvas->coord;
    if (mouse.pressModifiers == Qt::NoModifier)
        return take(from == to ? std::vector<std::size_t>()
                               : pixelsIn(m_pixels, *m_grid, dataBetween(coord, from, to)));
    if (mouse.pressModifiers != Qt::ShiftModifier || from != to)
        return; // the view was moved
    const double width = (m_grid->xEdges.back() - m_grid->xEdges.front()) / m_grid->columns();
    const double height = (m_grid->yEdges.back() - m_grid->yEdges.front()) / m_grid->rows();
    const QPointF place(coord.screenToX(to.x()), coord.screenToY(to.y()));
    take(pixelsIn(m_pixels, *m_grid,
                  QRectF(place - QPointF(width, height), QSizeF(2 * width, 2 * height))));
}

void MapWindow::take(std::vector<std::size_t> region)
{
    m_region = std::move(region);
    m_inRegion.assign(m_region.empty() ? 0 : m_pixels.size(), false);
    for (const std::size_t i : m_region)
        m_inRegion[i] = true;
    m_mean->setText(m_region.empty() ? tr("Drag over the map for the mean of a region.")
                                     : tr("%1 pixels: Valence %2, t/ts %3")
                                           .arg(m_region.size())
                                           .arg(meanText(valenceOf(m_pixels, m_region)),
                                                meanText(thicknessOf(m_pixels, m_region))));
    m_panel.highlight(m_region);
    m_canvas->update();
}
