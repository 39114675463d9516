#include "display/DrawText.h"

#include <QDebug>
#include <QFont>
#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace
{

constexpr int fitted = 1;
constexpr double probePointSize = 10.0;
constexpr double probeSide = 1000.0;

// Sizes outside are not readable, and the toolkit's fonts are not made for them.
constexpr double smallestPointSize = 0.5;
constexpr double largestPointSize = 1000.0;

double boundedPointSize(double size)
{
    return std::max(smallestPointSize, std::min(size, largestPointSize));
}

QRectF textBox(QPainter* p, QRectF box, int flags, const QString& text)
{
    return p->boundingRect(QRectF(box.x(), box.y() + box.height(), probeSide, probeSide), flags,
                           text);
}

double excess(const QRectF& bounds, const QRectF& box)
{
    return textExcess(bounds.width(), bounds.height(), box.width(), box.height());
}

/// Room that there is by room that is needed; 1 where none is needed.
double roomRatio(double room, double needed)
{
    return needed > 0.0 ? std::max(0.0, room / needed) : 1.0;
}

} // namespace

double textExcess(double textWidth, double textHeight, double boxWidth, double boxHeight)
{
    const double widthRatio = boxWidth == 0.0 ? 1.0 : textWidth / boxWidth;
    const double heightRatio = boxHeight == 0.0 ? 1.0 : textHeight / boxHeight;
    const double larger = std::max(widthRatio, heightRatio);
    return larger > 0.0 ? larger : 1.0;
}

DrawText::DrawText(QObject* parent) : QObject(parent) {}

QRectF DrawText::putText(QPainter* p, QRectF box, const QFont& font, int flags, int mode,
                         const QString& text, double maxSize, bool debug)
{
    QRectF bounds;
    QFont actual = font;
    if (mode == fitted) {
        actual = QFont();
        actual.setPointSizeF(probePointSize);
        p->setFont(actual);
        bounds = textBox(p, box, flags, text);
        const double size = probePointSize / excess(bounds, box);
        actual.setPointSizeF(boundedPointSize(maxSize > 0.0 ? std::min(size, maxSize) : size));
    }
    p->setFont(actual);
    if (debug)
        qDebug() << "actual font size " << p->font().pointSizeF();
    p->drawText(box, flags, text);
    p->setFont(font);
    return bounds;
}

double DrawText::sizeWithin(const QPainter& p, const QString& text, double above, double below,
                            double maxSize)
{
    QFont font;
    font.setPointSizeF(maxSize);
    const QFontMetricsF metrics(font, p.device());
    const QRectF ink = metrics.tightBoundingRect(text); // from the base line
    const double baseLine = (metrics.ascent() - metrics.descent()) / 2.0;
    const double part = std::min(
        {1.0, roomRatio(above, -ink.top() - baseLine), roomRatio(below, ink.bottom() + baseLine)});
    return boundedPointSize(maxSize * part);
}

QRectF DrawText::measureText(QPainter* p, QRectF box, QFont& font, int flags, int mode,
                             const QString& text)
{
    const QFont before = p->font();
    QFont actual = font;
    if (mode == fitted) {
        const double size = font.pointSize() / excess(textBox(p, box, flags, text), box);
        actual.setPointSize(static_cast<int>(std::max(1.0, boundedPointSize(size))));
    }
    p->setFont(actual);
    const QRectF bounds = p->boundingRect(box, flags, text);
    p->setFont(before);
    return bounds;
}

void DrawText::drawLegendBox(QPainter* p, bool on, const QString& text, int x, int width, int y,
                             int h) const
{
    const QRect square(QPoint(x, y - h), QPoint(x + h - 1, y - 1));
    p->fillRect(square, on ? onColor : offColor);
    p->setPen(borderColor);
    p->setBrush(Qt::NoBrush);
    p->drawRect(square);
    p->setPen(textColor);
    const QRectF box(x + 1.2 * h, y - 0.95 * h, width - 1.2 * h, 0.9 * h);
    putText(p, box, p->font(), Qt::AlignLeft | Qt::AlignVCenter, fitted, text, 0.0, false);
}

void DrawText::addItem(QRectF box)
{
    items.append(box);
}

bool DrawText::overlaps(QRectF box) const
{
    return std::any_of(items.cbegin(), items.cend(),
                       [&box](const QRectF& item) { return box.intersects(item); });
}
