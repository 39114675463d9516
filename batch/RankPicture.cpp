#include "batch/RankPicture.h"

#include "results/MutsGraph.h"
#include "results/RoundSteps.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace
{

constexpr int width = 900;
constexpr int height = 900;
constexpr int leftRoom = 80;
constexpr int rightRoom = 24;
constexpr int markLength = 5;
constexpr int mostMarks = 8;

const QColor ref1Colour(27, 79, 138);
const QColor ref2Colour(217, 95, 2);
const QColor pointColour(90, 90, 90);
const QColor bestColour(138, 28, 0);
const QColor otherColour(150, 150, 150);

/// A plot area with its ranges.
struct Panel {
    QRectF area;
    AxisEnds x;
    AxisEnds y;

    QPointF at(double u, double v) const
    {
        return {area.left() + (u - x.from) / (x.to - x.from) * area.width(),
                area.bottom() - (v - y.from) / (y.to - y.from) * area.height()};
    }
};

AxisEnds withRoom(double low, double high)
{
    constexpr double part = 0.05;
    const double room = high > low ? part * (high - low) : std::max(std::abs(low), 1e-6) * part;
    return {low - room, high + room};
}

void drawAxes(QPainter& painter, const Panel& panel, const QString& xTitle, const QString& yTitle)
{
    const QFontMetrics metrics = painter.fontMetrics();
    painter.setPen(Qt::black);
    painter.drawRect(panel.area);
    const AxisMarks x = axisMarks(panel.x.from, panel.x.to, mostMarks);
    for (std::size_t i = 0; i < x.values.size(); ++i) {
        const QPointF at = panel.at(x.values[i], panel.y.from);
        painter.drawLine(at, at + QPointF(0, markLength));
        painter.drawText(at + QPointF(-metrics.horizontalAdvance(x.texts[i]) / 2.0,
                                      markLength + metrics.ascent() + 1),
                         x.texts[i]);
    }
    const AxisMarks y = axisMarks(panel.y.from, panel.y.to, mostMarks);
    for (std::size_t i = 0; i < y.values.size(); ++i) {
        const QPointF at = panel.at(panel.x.from, y.values[i]);
        painter.drawLine(at, at - QPointF(markLength, 0));
        painter.drawText(at - QPointF(markLength + 3 + metrics.horizontalAdvance(y.texts[i]),
                                      -metrics.ascent() / 2.0 + 1),
                         y.texts[i]);
    }
    painter.drawText(QPointF(panel.area.center().x() - metrics.horizontalAdvance(xTitle) / 2.0,
                             panel.area.bottom() + markLength + 2 * metrics.lineSpacing()),
                     xTitle);
    painter.save();
    painter.translate(metrics.ascent() + 4, panel.area.center().y());
    painter.rotate(-90);
    painter.drawText(QPointF(-metrics.horizontalAdvance(yTitle) / 2.0, 0), yTitle);
    painter.restore();
}

void drawCurve(QPainter& painter, const Panel& panel, const std::vector<QPointF>& curve,
               const QColor& colour)
{
    QPainterPath path;
    bool begun = false;
    for (const QPointF& point : curve) {
        if (!std::isfinite(point.y()) || point.x() < panel.x.from || point.x() > panel.x.to)
            continue;
        const QPointF at = panel.at(point.x(), std::clamp(point.y(), panel.y.from, panel.y.to));
        if (begun)
            path.lineTo(at);
        else
            path.moveTo(at);
        begun = true;
    }
    painter.setPen(QPen(colour, 2));
    painter.drawPath(path);
}

/// A line at an energy of the choice.
QPointF drawEnergy(QPainter& painter, const Panel& panel, double energy, const QColor& colour)
{
    const QPointF top = panel.at(energy, panel.y.to);
    painter.setPen(QPen(colour, 1, Qt::DashLine));
    painter.drawLine(top, panel.at(energy, panel.y.from));
    painter.setPen(colour);
    return top;
}

/// With its text on top, upright, behind the line.
void drawPoint(QPainter& painter, const Panel& panel, double energy, const QString& text)
{
    const QFontMetrics metrics = painter.fontMetrics();
    const QPointF top = drawEnergy(painter, panel, energy, pointColour);
    painter.save();
    painter.translate(top + QPointF(metrics.ascent() + 1, 6 + metrics.horizontalAdvance(text)));
    painter.rotate(-90);
    painter.drawText(QPointF(0, 0), text);
    painter.restore();
}

/// With its text before the foot of the edge, where no curve is.
void drawVPoint(QPainter& painter, const Panel& panel, double energy, const QString& text)
{
    const QFontMetrics metrics = painter.fontMetrics();
    const QPointF top = drawEnergy(painter, panel, energy, bestColour);
    painter.drawText(
        QPointF(top.x() - 12 - metrics.horizontalAdvance(text), panel.area.center().y()), text);
}

void drawSpectra(QPainter& painter, const QRectF& area, const SpectrumSet& spectra,
                 const RankedChoice& best, const OutputWords& words)
{
    constexpr double around = 30.0; // eV
    std::vector<double> energies = best.points;
    energies.push_back(best.vPoint);
    const auto [low, high] = std::minmax_element(energies.begin(), energies.end());
    const AxisEnds range{*low - around, *high + around};
    const auto curve1 = normalizedCurve(*spectra[SpectrumSet::Ref1], Normalization::ByTwoLines);
    const auto curve2 = normalizedCurve(*spectra[SpectrumSet::Ref2], Normalization::ByTwoLines);
    const Panel panel{area, range, curveRange({curve1, curve2}, range)};
    drawCurve(painter, panel, curve1, ref1Colour);
    drawCurve(painter, panel, curve2, ref2Colour);
    const auto number = [](double energy) { return QString::number(energy, 'f', 1); };
    for (const double energy : best.points)
        drawPoint(painter, panel, energy, number(energy));
    drawVPoint(painter, panel, best.vPoint, words("V point %1").arg(number(best.vPoint)));
    drawAxes(painter, panel, words("Energy (eV)"), words("mu-t, normalized"));
    const int line = painter.fontMetrics().lineSpacing();
    const QPointF key(area.right() - 150, area.bottom() - 2 * line);
    painter.setPen(ref1Colour);
    painter.drawText(key, words("Reference 1"));
    painter.setPen(ref2Colour);
    painter.drawText(key + QPointF(0, line), words("Reference 2"));
}

void drawDot(QPainter& painter, const QPointF& at, double radius, const QColor& colour)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawEllipse(at, radius, radius);
    painter.setBrush(Qt::NoBrush);
}

void drawFront(QPainter& painter, const QRectF& area, const std::vector<RankedChoice>& ranked,
               const ReferenceValences& valences, const OutputWords& words)
{
    const double perA = std::abs(valences.ref1 - valences.ref2);
    std::vector<QPointF> all;
    std::vector<QPointF> front;
    for (const RankedChoice& choice : ranked) {
        const QPointF at(perA * choice.sigmaA[1], perA * std::abs(choice.shift));
        if (!std::isfinite(at.x()) || !std::isfinite(at.y()))
            continue;
        all.push_back(at);
        if (choice.front)
            front.push_back(at);
    }
    if (all.empty())
        return;
    const auto byX = [](const QPointF& a, const QPointF& b) { return a.x() < b.x(); };
    const auto byY = [](const QPointF& a, const QPointF& b) { return a.y() < b.y(); };
    const auto [left, right] = std::minmax_element(all.begin(), all.end(), byX);
    const auto [low, high] = std::minmax_element(all.begin(), all.end(), byY);
    const Panel panel{area, withRoom(left->x(), right->x()), withRoom(low->y(), high->y())};
    for (const QPointF& point : all)
        drawDot(painter, panel.at(point.x(), point.y()), 2.5, otherColour);
    std::sort(front.begin(), front.end(), byX);
    QPainterPath path;
    for (const QPointF& point : front) {
        const QPointF at = panel.at(point.x(), point.y());
        if (path.elementCount() == 0)
            path.moveTo(at);
        else
            path.lineTo(at);
        drawDot(painter, at, 4, ref1Colour);
    }
    painter.setPen(QPen(ref1Colour, 1));
    painter.drawPath(path);
    drawDot(painter, panel.at(all.front().x(), all.front().y()), 6, bestColour);
    drawAxes(painter, panel, words("standard deviation of the valence at a = 1/2, by counting"),
             words("change of the valence for 0.1 eV"));
    const int line = painter.fontMetrics().lineSpacing();
    QPointF key(area.right() - 330, area.top() + line + 4);
    for (const auto& [colour, text] :
         {std::pair(bestColour, words("the best, drawn above")),
          std::pair(ref1Colour, words("front: beaten by none in both")),
          std::pair(otherColour, words("other choices"))}) {
        drawDot(painter, key - QPointF(10, line / 4.0), 4, colour);
        painter.setPen(Qt::black);
        painter.drawText(key, text);
        key.ry() += line;
    }
}

} // namespace

QImage rankPicture(const SpectrumSet& spectra, const std::vector<RankedChoice>& ranked,
                   const ReferenceValences& valences, const OutputWords& words)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    constexpr double plotHeight = 360.0;
    constexpr double topRoom = 20.0;
    constexpr double between = 90.0;
    const double plotWidth = width - leftRoom - rightRoom;
    drawSpectra(painter, {leftRoom, topRoom, plotWidth, plotHeight}, spectra, ranked.front(),
                words);
    drawFront(painter, {leftRoom, topRoom + plotHeight + between, plotWidth, plotHeight}, ranked,
              valences, words);
    return image;
}
