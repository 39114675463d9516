#include "results/MapLegend.h"

#include "results/MapFrame.h"
#include "results/RoundSteps.h"
#include "text/NumberText.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

namespace
{

constexpr int barWidth = 18;
constexpr int fieldWidth = 84; // of the two-dimensional legend
constexpr int textGap = 6;
constexpr int entryGap = 18;

int squareSide(const QFontMetrics& metrics)
{
    return metrics.ascent();
}

int entryWidth(const QFontMetrics& metrics, const LegendEntry& entry)
{
    const int square = qAlpha(entry.colour) == 0 ? 0 : squareSide(metrics) + textGap;
    return square + metrics.horizontalAdvance(entry.text);
}

/// Places of the entries from the top left corner; an entry that does not fit into what is left of
/// a line begins another one.
QVector<QPoint> entryPlaces(const QFontMetrics& metrics, const QVector<LegendEntry>& entries,
                            int width)
{
    QVector<QPoint> places;
    int x = 0;
    int y = 0;
    for (const LegendEntry& entry : entries) {
        const int own = entryWidth(metrics, entry);
        if (x > 0 && x + own > width) {
            x = 0;
            y += metrics.lineSpacing();
        }
        places.append({x, y});
        x += own + entryGap;
    }
    return places;
}

AxisEnds colourRange(MapQuantity quantity, const MapRanges& ranges)
{
    return quantity == MapQuantity::Thickness ? ranges.thickness : ranges.valence;
}

AxisMarks barMarks(const QFontMetrics& metrics, const AxisEnds& range, int height)
{
    return axisMarks(range.from, range.to, std::max(1, height / (2 * metrics.height())));
}

int widest(const QFontMetrics& metrics, const std::vector<QString>& texts)
{
    int width = 0;
    for (const QString& text : texts)
        width = std::max(width, metrics.horizontalAdvance(text));
    return width;
}

/// The colours from the lowest value up, full at the right where they fade.
QImage colourField(MapQuantity quantity)
{
    const bool fades = quantity == MapQuantity::ValenceByThickness;
    const int columns = fades ? MapColours::strengths : 1;
    const std::vector<QRgb>& table = MapColours::table(quantity);
    QImage image(columns, 256, QImage::Format_RGB32);
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < columns; ++x)
            image.setPixel(x, y,
                           table[MapColours::code(255 - y, fades ? x : MapColours::strengths - 1)]);
    return image;
}

void drawValueMarks(QPainter& painter, const QRect& field, const AxisEnds& range)
{
    const QFontMetrics metrics = painter.fontMetrics();
    const AxisMarks marks = barMarks(metrics, range, field.height());
    const double low = std::min(range.from, range.to);
    const double high = std::max(range.from, range.to);
    for (std::size_t i = 0; i < marks.values.size(); ++i) {
        const double part = (marks.values[i] - low) / (high - low);
        const int y = field.bottom() - qRound(part * (field.height() - 1));
        const int x = field.right() + 1;
        painter.drawLine(x, y, x + mapFrame::markLength, y);
        painter.drawText(x + mapFrame::markLength + 3, y + metrics.ascent() / 2 - 1,
                         marks.texts[i]);
    }
}

/// Marks of the strengths under the field, so few that their texts stand apart, and their title.
void drawStrengthMarks(QPainter& painter, const QRect& field, const AxisEnds& range,
                       const QString& title)
{
    constexpr int most = 2;
    const QFontMetrics metrics = painter.fontMetrics();
    const AxisMarks marks = axisMarks(range.from, range.to, most);
    const double low = std::min(range.from, range.to);
    const double high = std::max(range.from, range.to);
    const int y = field.bottom() + 1;
    for (std::size_t i = 0; i < marks.values.size(); ++i) {
        const double part = (marks.values[i] - low) / (high - low);
        const int x = field.left() + qRound(part * (field.width() - 1));
        painter.drawLine(x, y, x, y + mapFrame::markLength);
        painter.drawText(x - metrics.horizontalAdvance(marks.texts[i]) / 2,
                         y + mapFrame::markLength + metrics.ascent(), marks.texts[i]);
    }
    const int left = field.center().x() - metrics.horizontalAdvance(title) / 2;
    painter.drawText(left, y + mapFrame::markLength + metrics.ascent() + metrics.lineSpacing(),
                     title);
}

} // namespace

QVector<LegendEntry> countEntries(const MapCaptions& captions, const MapCounts& counts,
                                  MapQuantity quantity, const MapRanges& ranges)
{
    const AxisEnds range = colourRange(quantity, ranges);
    const auto number = [](double value) { return textFromNumber(value); };
    QVector<LegendEntry> entries{
        {captions.missing.arg(counts.missing), MapColours::missingColour(quantity)},
        {captions.below.arg(number(std::min(range.from, range.to))).arg(counts.below),
         MapColours::table(quantity)[MapColours::below]},
        {captions.above.arg(number(std::max(range.from, range.to))).arg(counts.above),
         MapColours::table(quantity)[MapColours::above]}};
    if (counts.meaningless)
        entries.append({captions.meaningless.arg(*counts.meaningless),
                        MapColours::table(quantity)[MapColours::meaningless]});
    if (quantity != MapQuantity::ValenceByThickness)
        return entries;
    const AxisEnds& strengths = ranges.thickness;
    entries.append(
        {captions.thinner.arg(number(std::min(strengths.from, strengths.to))).arg(counts.thinner)});
    entries.append(
        {captions.thicker.arg(number(std::max(strengths.from, strengths.to))).arg(counts.thicker)});
    return entries;
}

int legendHeight(const QFont& font, const QVector<LegendEntry>& entries, int width)
{
    const QFontMetrics metrics(font);
    const QVector<QPoint> places = entryPlaces(metrics, entries, width);
    return places.isEmpty() ? 0 : places.last().y() + metrics.lineSpacing();
}

void drawLegend(QPainter& painter, const QRect& box, const QVector<LegendEntry>& entries)
{
    const QFontMetrics metrics = painter.fontMetrics();
    const QVector<QPoint> places = entryPlaces(metrics, entries, box.width());
    const int side = squareSide(metrics);
    for (int i = 0; i < entries.size(); ++i) {
        QPoint at = box.topLeft() + places[i];
        if (qAlpha(entries[i].colour) != 0) {
            const QRect square(at.x(), at.y() + (metrics.height() - side) / 2, side, side);
            painter.fillRect(square, QColor(entries[i].colour));
            painter.setPen(mapFrame::colour);
            painter.drawRect(square.adjusted(0, 0, -1, -1));
            at.rx() += side + textGap;
        }
        painter.setPen(Qt::black);
        painter.drawText(at.x(), at.y() + metrics.ascent(), entries[i].text);
    }
}

int colourBarWidth(const QFont& font, MapQuantity quantity, const MapRanges& ranges, int height)
{
    const QFontMetrics metrics(font);
    const AxisMarks marks = barMarks(metrics, colourRange(quantity, ranges), height);
    const int field = quantity == MapQuantity::ValenceByThickness ? fieldWidth : barWidth;
    return field + mapFrame::markLength + 3 + widest(metrics, marks.texts) + textGap;
}

void drawColourBar(QPainter& painter, const QRect& box, MapQuantity quantity,
                   const MapRanges& ranges, const MapCaptions& captions)
{
    const bool fades = quantity == MapQuantity::ValenceByThickness;
    const QFontMetrics metrics = painter.fontMetrics();
    QRect field(box.left(), box.top(), fades ? fieldWidth : barWidth, box.height());
    if (fades)
        field.setHeight(
            std::max(1, box.height() - 2 * metrics.lineSpacing() - mapFrame::markLength));
    painter.drawImage(field, colourField(quantity));
    painter.setPen(mapFrame::colour);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(field.adjusted(-1, -1, 0, 0));
    painter.setPen(Qt::black);
    drawValueMarks(painter, field, colourRange(quantity, ranges));
    if (fades)
        drawStrengthMarks(painter, field, ranges.thickness, captions.thickness);
    const QString title =
        quantity == MapQuantity::Thickness ? captions.thickness : captions.valence;
    painter.drawText(box.left(), box.top() - textGap - metrics.descent(), title);
}
