#include "results/MapAxes.h"

#include "display/Pixel.h"
#include "results/MapFrame.h"
#include "results/RoundSteps.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace
{

constexpr int gap = 4;
constexpr double scaleBarPart = 0.25; // of the plot's width, at most

AxisMarks yMarks(const QFontMetrics& metrics, double from, double to, int height)
{
    return axisMarks(from, to, std::max(1, height / (3 * metrics.height())));
}

/// Marks of the first axis, so few that their texts stand apart.
AxisMarks xMarks(const QFontMetrics& metrics, double from, double to, int width)
{
    for (int most = std::max(1, width / (3 * metrics.height())); most > 1; --most) {
        AxisMarks marks = axisMarks(from, to, most);
        int needed = 0;
        for (const QString& text : marks.texts)
            needed += metrics.horizontalAdvance(text) + 2 * metrics.averageCharWidth();
        if (needed <= width)
            return marks;
    }
    return axisMarks(from, to, 1);
}

QRect plotArea(const ChCoord& coord)
{
    return {QPoint(truncToInt(coord.px0), truncToInt(coord.py1)),
            QPoint(truncToInt(coord.px1) - 1, truncToInt(coord.py0) - 1)};
}

void drawXMarks(QPainter& painter, const ChCoord& coord, const QRect& plot)
{
    const QFontMetrics metrics = painter.fontMetrics();
    const AxisMarks marks = xMarks(metrics, coord.rx0, coord.rx1, plot.width());
    for (std::size_t i = 0; i < marks.values.size(); ++i) {
        const int x = truncToInt(coord.xToScreen(marks.values[i]));
        painter.drawLine(x, plot.bottom() + 1, x, plot.bottom() + mapFrame::markLength);
        const int width = metrics.horizontalAdvance(marks.texts[i]);
        painter.drawText(x - width / 2,
                         plot.bottom() + mapFrame::markLength + gap / 2 + metrics.ascent(),
                         marks.texts[i]);
    }
}

void drawYMarks(QPainter& painter, const ChCoord& coord, const QRect& plot)
{
    const QFontMetrics metrics = painter.fontMetrics();
    const AxisMarks marks = yMarks(metrics, coord.ry0, coord.ry1, plot.height());
    for (std::size_t i = 0; i < marks.values.size(); ++i) {
        const int y = truncToInt(coord.yToScreen(marks.values[i]));
        painter.drawLine(plot.left() - 1, y, plot.left() - mapFrame::markLength, y);
        const int width = metrics.horizontalAdvance(marks.texts[i]);
        painter.drawText(plot.left() - mapFrame::markLength - gap - width,
                         y + metrics.ascent() / 2 - 1, marks.texts[i]);
    }
}

} // namespace

int mapAxisWidth(const QFont& font, double from, double to, int height)
{
    const QFontMetrics metrics(font);
    int width = 0;
    for (const QString& text : yMarks(metrics, from, to, height).texts)
        width = std::max(width, metrics.horizontalAdvance(text));
    return metrics.lineSpacing() + gap + width + gap + mapFrame::markLength;
}

int mapAxisHeight(const QFont& font)
{
    const QFontMetrics metrics(font);
    return mapFrame::markLength + gap + 2 * metrics.lineSpacing();
}

void drawMapAxes(QPainter& painter, const ChCoord& coord, const QString& xTitle,
                 const QString& yTitle)
{
    const QFontMetrics metrics = painter.fontMetrics();
    const QRect plot = plotArea(coord);
    painter.setPen(mapFrame::colour);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(plot.adjusted(-1, -1, 0, 0));
    painter.setPen(Qt::black);
    drawXMarks(painter, coord, plot);
    drawYMarks(painter, coord, plot);
    const int under = plot.bottom() + mapFrame::markLength + gap / 2 + metrics.lineSpacing();
    painter.drawText(QRect(plot.left(), under, plot.width(), metrics.lineSpacing()),
                     Qt::AlignHCenter | Qt::AlignTop | Qt::TextDontClip, xTitle);
    painter.save();
    painter.translate(0, plot.bottom() + 1);
    painter.rotate(270.0);
    painter.drawText(QRect(0, gap / 2, plot.height(), metrics.lineSpacing()),
                     Qt::AlignHCenter | Qt::AlignTop | Qt::TextDontClip, yTitle);
    painter.restore();
}

void drawScaleBar(QPainter& painter, const ChCoord& coord)
{
    const QFontMetrics metrics = painter.fontMetrics();
    const QRect plot = plotArea(coord);
    const double length = roundNumberUpTo(std::fabs(coord.rx1 - coord.rx0) * scaleBarPart);
    const int pixels = truncToInt(std::fabs(coord.dxToScreen(length)));
    if (pixels < 1 || pixels > plot.width())
        return;
    const int y = plot.top() - gap - metrics.height() / 2;
    const int left = plot.right() + 1 - pixels;
    painter.fillRect(left, y - 1, pixels, 3, Qt::black);
    const QString text = QString::number(length, 'g', 6);
    painter.setPen(Qt::black);
    painter.drawText(left - gap - metrics.horizontalAdvance(text), y + metrics.ascent() / 2, text);
}
