#include "results/DotCloud.h"

#include "display/Pixel.h"
#include "results/Dot.h"

#include <QPaintEngine>
#include <QPainter>

#include <algorithm>
#include <tuple>

#ifdef __x86_64__
#include <immintrin.h>
#endif

namespace
{

constexpr QRgb opaqueBlack = 0xff000000U;

// A dot whose own pixel lies beside the canvas reaches as far again.
constexpr int imageMargin = 2 * dotReach;

// Beyond the dots that reach into the canvas one more line of cells takes all others.
constexpr int cellMargin = dotReach + 1;

// The toolkit's fills leave the upper halves of the vector registers in use. Until they are cleared
// every instruction on the lower halves waits for them, and the loop takes three times as long.
#ifdef __x86_64__
__attribute__((target("avx"))) void clearUpperHalves()
{
    _mm256_zeroupper();
}

void releaseRegisters()
{
    if (__builtin_cpu_supports("avx"))
        clearUpperHalves();
}
#else
void releaseRegisters() {}
#endif

// Two numbers that are worked on at once, each as it would be alone.
using Pair = double __attribute__((vector_size(2 * sizeof(double))));

// Not-a-number goes to the low end.
Pair keptBetween(Pair v, double low, double high)
{
    v = v > low ? v : Pair{low, low};
    return v < high ? v : Pair{high, high};
}

// Device pixels for one pixel of the canvas, where that is a whole number and the canvas sits on
// whole device pixels; else 0. A page or a drawing has no pixels.
int wholeScale(const QPainter& painter)
{
    if (painter.paintEngine()->type() != QPaintEngine::Raster)
        return 0;
    const QTransform& transform = painter.deviceTransform();
    if (transform.type() > QTransform::TxScale || transform.m11() != transform.m22())
        return 0;
    const double scale = transform.m11();
    const auto isWhole = [](double v) { return v == truncToInt(v); };
    if (scale < 1.0 || !isWhole(scale) || !isWhole(transform.dx()) || !isWhole(transform.dy()))
        return 0;
    return truncToInt(scale);
}

// The cells of a canvas's pixels: the factors of xToScreen() and yToScreen(), formed once. All that
// lies farther off falls into the outermost cells.
class CellFinder
{
public:
    CellFinder(const ChCoord& coord, QSize cells, double valence1, double valence2)
        : m_valence1(valence1), m_valence2(valence2), m_px0(coord.px0), m_py0(coord.py0),
          m_rx0(coord.rx0), m_ry0(coord.ry0),
          m_xScale((coord.px1 - coord.px0) / (coord.rx1 - coord.rx0)),
          m_yScale((coord.py1 - coord.py0) / (coord.ry1 - coord.ry0)),
          m_xEnd(cells.width() - cellMargin - 1), m_yEnd(cells.height() - cellMargin - 1),
          m_columns(cells.width())
    {
    }

    Pair column(Pair a) const
    {
        const Pair valence = m_valence1 * a + m_valence2 * (1.0 - a);
        return keptBetween(m_px0 + m_xScale * (valence - m_rx0), -cellMargin, m_xEnd);
    }
    Pair row(Pair t) const
    {
        return keptBetween(m_py0 + m_yScale * (t - m_ry0), -cellMargin, m_yEnd);
    }
    std::ptrdiff_t place(int column, int row) const
    {
        return std::ptrdiff_t{row + cellMargin} * m_columns + column + cellMargin;
    }

private:
    double m_valence1, m_valence2;
    double m_px0, m_py0;
    double m_rx0, m_ry0;
    double m_xScale, m_yScale;
    double m_xEnd, m_yEnd;
    int m_columns;
};

bool isWithin(int pixel, int cells)
{
    return pixel >= -dotReach && pixel < cells - cellMargin - 1;
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
    drawDot(painter, QPoint(dotReach, dotReach));
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

// The dots on a transparent ground, with room around the canvas in which they end. Stamped by their
// places in memory: each has the pattern's pixels at the same distances.
QImage stampedImage(QSize canvas, int scale, const std::vector<QPoint>& dots)
{
    const QSize size = canvas + 2 * QSize(imageMargin, imageMargin);
    QImage image(size * scale, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    image.fill(Qt::transparent);
    const std::ptrdiff_t line = image.width();
    const auto place = [line](QPoint pixel) { return pixel.y() * line + pixel.x(); };
    std::vector<std::ptrdiff_t> pattern;
    for (const QPoint offset : dotPattern(scale))
        pattern.push_back(place(offset));
    QRgb* first = reinterpret_cast<QRgb*>(image.bits());
    for (const QPoint dot : dots) {
        QRgb* own = first + place((dot + QPoint(imageMargin, imageMargin)) * scale);
        for (const std::ptrdiff_t offset : pattern)
            own[offset] = opaqueBlack;
    }
    image.setDevicePixelRatio(scale);
    return image;
}

DotPixels marked(const ChCoord& coord, const MapPoints& points, double valence1, double valence2)
{
    DotPixels dots(coord.canvasSize());
    dots.mark(coord, points, valence1, valence2);
    return dots;
}

} // namespace

DotPixels::DotPixels(QSize canvas)
    : m_size(canvas.expandedTo(QSize(0, 0)) + 2 * QSize(cellMargin, cellMargin)),
      m_cells(static_cast<std::size_t>(m_size.width()) * static_cast<std::size_t>(m_size.height()))
{
}

void DotPixels::mark(const ChCoord& coord, const MapPoints& points, double valence1,
                     double valence2)
{
    releaseRegisters();
    const CellFinder cellOf(coord, m_size, valence1, valence2);
    unsigned char* cells = m_cells.data();
    const auto markPair = [=](Pair a, Pair t) {
        const Pair x = cellOf.column(a);
        const Pair y = cellOf.row(t);
        for (int i = 0; i < 2; ++i)
            cells[cellOf.place(static_cast<int>(x[i]), static_cast<int>(y[i]))] = 1;
    };
    const double* a = points.a;
    const double* t = points.t;
    const std::size_t size = points.size;
    for (std::size_t i = 0; i + 1 < size; i += 2)
        markPair(Pair{a[i], a[i + 1]}, Pair{t[i], t[i + 1]});
    if (size % 2 == 1)
        markPair(Pair{a[size - 1], a[size - 1]}, Pair{t[size - 1], t[size - 1]});
}

std::vector<QPoint> DotPixels::pixels() const
{
    std::vector<QPoint> found;
    found.reserve(static_cast<std::size_t>(std::count(m_cells.begin(), m_cells.end(), 1)));
    const unsigned char* cell = m_cells.data();
    for (int y = -cellMargin; y < m_size.height() - cellMargin; ++y) {
        for (int x = -cellMargin; x < m_size.width() - cellMargin; ++x) {
            if (*cell++ && isWithin(x, m_size.width()) && isWithin(y, m_size.height()))
                found.emplace_back(x, y);
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

void DotCloud::draw(QPainter& painter, const ChCoord& coord, const MapPoints& points,
                    double valence1, double valence2)
{
    painter.setPen(Qt::black);
    const int scale = wholeScale(painter);
    if (scale == 0) { // dots differ from place to place, or may be enlarged
        for (const QPoint dot : marked(coord, points, valence1, valence2).pixels())
            drawDot(painter, dot);
        return;
    }
    const Key key{points.revision, points.size, valence1,           valence2,  coord.px0,
                  coord.px1,       coord.py0,   coord.py1,          coord.rx0, coord.rx1,
                  coord.ry0,       coord.ry1,   coord.canvasSize(), scale};
    if (!m_key || !(*m_key == key)) {
        m_image =
            stampedImage(key.canvas, scale, marked(coord, points, valence1, valence2).pixels());
        m_key = key;
    }
    painter.drawImage(-imageMargin, -imageMargin, m_image);
}

void DotCloud::clear()
{
    m_key.reset();
    m_image = QImage();
}
