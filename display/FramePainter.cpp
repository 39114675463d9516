#include "display/FramePainter.h"

#include "display/DrawText.h"
#include "display/Pixel.h"
#include "text/NumberText.h"

#include <QFont>
#include <QPainter>

#include <cmath>

namespace
{

const QColor borderGrey(150, 150, 150);
constexpr double textMaxSize = 12.0;
constexpr int yLabelLength = 5;
constexpr int xLabelLength = 6;

/// A text that stays on the canvas; `above` and `below` are the room on either side of the box's
/// middle. Uncut, as all text of a graph: fonts do not scale evenly, and a number without its last
/// digit is another number.
void putWithin(QPainter& painter, const QRectF& box, int side, const QString& text, double above,
               double below)
{
    DrawText::putText(&painter, box, QFont(), side | Qt::AlignVCenter | Qt::TextDontClip, 1, text,
                      DrawText::sizeWithin(painter, text, above, below, textMaxSize), false);
}

// Heights are negative here: the window's bottom is wy0.
void fillMargins(QPainter& painter, const ChCoord& coord)
{
    const int left = truncToInt(coord.wx0);
    const int bottom = truncToInt(coord.wy0);
    const int width = truncToInt(coord.wx1 - coord.wx0);
    const int height = truncToInt(coord.wy1 - coord.wy0);
    painter.fillRect(left, bottom, truncToInt(coord.px0 - coord.wx0), height, Qt::white);
    painter.fillRect(left, bottom, width, truncToInt(coord.py0 - coord.wy0), Qt::white);
    painter.fillRect(left, truncToInt(coord.py1), width, truncToInt(coord.wy1 - coord.py1),
                     Qt::white);
    painter.fillRect(truncToInt(coord.px1), bottom, truncToInt(coord.wx1 - coord.px1), height,
                     Qt::white);
}

void drawRangeLabels(QPainter& painter, const ChCoord& coord)
{
    const LabelSlot slot = coord.labelSlot();
    const int m = slot.margin;
    const int top = truncToInt(coord.py1);
    const int bottom = truncToInt(coord.py0);
    const auto put = [&](double value, int length, const QRectF& box, int side) {
        const double middle = box.center().y();
        putWithin(painter, box, side, textFromNumber(value).left(length), middle - coord.wy1,
                  coord.wy0 - middle);
    };
    put(coord.ry1, yLabelLength, QRectF(0, top - slot.pitch, m * 0.95, slot.height),
        Qt::AlignRight);
    put(coord.ry0, yLabelLength, QRectF(0, bottom, m * 0.95, slot.height), Qt::AlignRight);
    put(coord.rx0, xLabelLength,
        QRectF(truncToInt(coord.px0), bottom - slot.pitch, 2 * m, slot.height), Qt::AlignLeft);
    put(coord.rx1, xLabelLength,
        QRectF(truncToInt(coord.px1) - 2 * m, bottom - slot.pitch, 2 * m, slot.height),
        Qt::AlignRight);
}

void drawXTitle(QPainter& painter, const ChCoord& coord, const QString& title)
{
    const LabelSlot slot = coord.labelSlot();
    const QRectF strip(truncToInt(coord.px0), truncToInt(coord.py0) - slot.pitch,
                       truncToInt(std::fabs(coord.px1 - coord.px0)), slot.height);
    const double middle = strip.center().y();
    putWithin(painter, strip, Qt::AlignHCenter, title, middle - coord.py0, coord.wy0 - middle);
}

void drawYTitle(QPainter& painter, const ChCoord& coord, const QString& title)
{
    const int length = coord.canvasSize().height();
    const int height = coord.labelSlot().height;
    painter.rotate(270.0);
    const QRectF strip(-length, -height, length, height);
    const double middle = strip.center().y();
    putWithin(painter, strip, Qt::AlignHCenter, title, middle, coord.px0 - coord.wx0 - middle);
    painter.rotate(-270.0);
}

} // namespace

bool beginGraph(QPainter& painter, GraphFrame& frame, bool hasData)
{
    ChCoord& coord = frame.coord;
    coord.applyMargins();
    painter.fillRect(QRect(QPoint(0, 0), coord.canvasSize()), Qt::white);
    if (!hasData)
        coord.valid = 0;
    return hasData;
}

void drawGraphFrame(QPainter& painter, const ChCoord& coord, bool clearMargins)
{
    painter.setPen(borderGrey);
    if (clearMargins)
        fillMargins(painter, coord);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(truncToInt(coord.px0), truncToInt(coord.py1),
                     truncToInt(std::fabs(coord.px1 - coord.px0)),
                     truncToInt(std::fabs(coord.py1 - coord.py0)));
    painter.setPen(Qt::black);
    drawRangeLabels(painter, coord);
}

void drawAxisTitles(QPainter& painter, const GraphFrame& frame)
{
    painter.setPen(Qt::black);
    if (frame.xTitleInGraph)
        drawXTitle(painter, frame.coord, frame.xTitle);
    if (frame.yTitleInGraph)
        drawYTitle(painter, frame.coord, frame.yTitle);
}
