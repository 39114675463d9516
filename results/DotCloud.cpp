#include "results/DotCloud.h"

#include "analysis/PointRow.h"
#include "display/Pixel.h"
#include "results/Dot.h"

#include <QPainter>

#include <tuple>

namespace
{

constexpr QRgb opaqueBlack = 0xff000000U;

// Device pixels for one pixel of the canvas, where that is a whole number and the canvas sits on
// whole device pixels; else 0.
int wholeScale(const QTransform& transform)
{
    if (transform.type() > QTransform::TxScale || transform.m11() != transform.m22())
        return 0;
    const double scale = transform.m11();
    const auto isWhole = [](double v) { return v == truncToInt(v); };
    if (scale < 1.0 || !isWhole(scale) || !isWhole(transform.dx()) || !isWhole(transform.dy()))
        return 0;
    return truncToInt(scale);
}

// The device pixels of one dot, counted from the first device pixel of its own pixel. They come
// from the painter itself, so that a stamped dot is the drawn one.
std::vector<QPoint> dotPattern(int scale)
{
    constexpr int side = 2 * dotReach + 1;
    QImage image(side * scale, side * scale, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.scale(scale, scale);
    painter.setPen(Qt::black);
    drawDot(&painter, QPoint(dotReach, dotReach));
    painter.end();
    std::vector<QPoint> pattern;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == opaqueBlack)
                pattern.emplace_back(x - dotReach * scale, y - dotReach * scale);
        }
    }
    return pattern;
}

QImage stampedImage(QSize canvas, int scale, const std::vector<QPoint>& dots)
{
    QImage image(canvas * scale, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    image.fill(Qt::transparent);
    const std::vector<QPoint> pattern = dotPattern(scale);
    const QRect inside = image.rect();
    for (const QPoint dot : dots) {
        for (const QPoint offset : pattern) {
            const QPoint pixel = dot * scale + offset;
            if (inside.contains(pixel))
                reinterpret_cast<QRgb*>(image.scanLine(pixel.y()))[pixel.x()] = opaqueBlack;
        }
    }
    image.setDevicePixelRatio(scale);
    return image;
}

QSize canvasSize(const ChCoord& coord)
{
    return {truncToInt(coord.wx1 - coord.wx0), truncToInt(coord.wy0 - coord.wy1)};
}

DotPixels marked(const ChCoord& coord, const MapPoints& points, double valence1, double valence2)
{
    DotPixels dots(canvasSize(coord));
    dots.mark(coord, points, valence1, valence2);
    return dots;
}

} // namespace

DotPixels::DotPixels(QSize canvas)
    : m_size(canvas.expandedTo(QSize(0, 0)) + QSize(2 * dotReach, 2 * dotReach)),
      m_marks(static_cast<std::size_t>(m_size.width()) * static_cast<std::size_t>(m_size.height()))
{
}

void DotPixels::mark(const ChCoord& coord, const MapPoints& points, double valence1,
                     double valence2)
{
    // The factors of xToScreen() and yToScreen(), formed once.
    const double xScale = (coord.px1 - coord.px0) / (coord.rx1 - coord.rx0);
    const double yScale = (coord.py1 - coord.py0) / (coord.ry1 - coord.ry0);
    const double xEnd = m_size.width() - dotReach;
    const double yEnd = m_size.height() - dotReach;
    const auto columns = static_cast<std::size_t>(m_size.width());
    for (std::size_t i = 0; i < points.size; ++i) {
        const double x =
            coord.px0 + xScale * (meanValence(valence1, valence2, points.a[i]) - coord.rx0);
        const double y = coord.py0 + yScale * (points.t[i] - coord.ry0);
        if (!(x > -dotReach - 1 && x < xEnd && y > -dotReach - 1 && y < yEnd))
            continue;
        const auto column = static_cast<std::size_t>(static_cast<int>(x) + dotReach);
        const auto row = static_cast<std::size_t>(static_cast<int>(y) + dotReach);
        m_marks[row * columns + column] = 1;
    }
}

std::vector<QPoint> DotPixels::pixels() const
{
    std::vector<QPoint> found;
    std::size_t i = 0;
    for (int y = 0; y < m_size.height(); ++y) {
        for (int x = 0; x < m_size.width(); ++x) {
            if (m_marks[i++])
                found.emplace_back(x - dotReach, y - dotReach);
        }
    }
    return found;
}

bool DotCloud::Key::operator==(const Key& other) const
{
    const auto all = [](const Key& k) {
        return std::tie(k.revision, k.size, k.valence1, k.valence2, k.px0, k.px1, k.py0, k.py1,
                        k.rx0, k.rx1, k.ry0, k.ry1, k.scale);
    };
    return all(*this) == all(other) && canvas == other.canvas;
}

void DotCloud::draw(QPainter* painter, const ChCoord& coord, const MapPoints& points,
                    double valence1, double valence2)
{
    painter->setPen(Qt::black);
    const int scale = wholeScale(painter->deviceTransform());
    if (scale == 0) { // dots differ from place to place
        for (const QPoint dot : marked(coord, points, valence1, valence2).pixels())
            drawDot(painter, dot);
        return;
    }
    const Key key{points.revision, points.size, valence1,          valence2,  coord.px0,
                  coord.px1,       coord.py0,   coord.py1,         coord.rx0, coord.rx1,
                  coord.ry0,       coord.ry1,   canvasSize(coord), scale};
    if (!m_key || !(*m_key == key)) {
        m_image =
            stampedImage(key.canvas, scale, marked(coord, points, valence1, valence2).pixels());
        m_key = key;
    }
    painter->drawImage(0, 0, m_image);
}

void DotCloud::clear()
{
    m_key.reset();
    m_image = QImage();
}
