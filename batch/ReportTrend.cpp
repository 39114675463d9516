#include "batch/ReportTrend.h"

#include "batch/HtmlText.h"
#include "results/RoundSteps.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr double left = 56.0;
constexpr double right = 776.0; // room for half a number
constexpr double top = 12.0;
constexpr double bottom = 270.0;
constexpr std::size_t mostDots = 1000; // one for each target
constexpr double crossArm = 4.0;       // so that it shows behind a dot
constexpr int xMarks = 8;
constexpr int yMarks = 6;

/// A coordinate with two decimals, which no eye tells from more.
QByteArray coordinate(double v)
{
    return QByteArray::number(std::round(v * 100.0) / 100.0, 'g', 8);
}

using Value = double ReportTargets::Point::*;

struct Range {
    double low = 0.0;
    double high = 1.0;

    double y(double value) const
    {
        const double part = (std::clamp(value, low, high) - low) / (high - low);
        return bottom - part * (bottom - top);
    }
    bool contains(double value) const { return value >= low && value <= high; }
};

std::vector<double> finiteValues(const std::vector<ReportTargets::Point>& points)
{
    std::vector<double> values;
    for (const ReportTargets::Point& point : points)
        for (const double value : {point.valence, point.lcfValence})
            if (std::isfinite(value))
                values.push_back(value);
    std::sort(values.begin(), values.end());
    return values;
}

/// All values, but for those that lie farther from the bulk than the bulk is wide.
/// @param values  sorted, at least one
Range rangeOf(const std::vector<double>& values)
{
    const auto at = [&values](double part) {
        return values[static_cast<std::size_t>(part * static_cast<double>(values.size() - 1))];
    };
    const double low = at(0.05);
    const double high = at(0.95);
    const double width = std::max(high - low, 0.05);
    Range range{std::max(values.front(), low - width), std::min(values.back(), high + width)};
    const double room = std::max((range.high - range.low) * 0.05, 0.01);
    return {range.low - room, range.high + room};
}

class Trend
{
public:
    Trend(const std::vector<ReportTargets::Point>& points, const Range& range)
        : m_points(points), m_range(range), m_inStroke((points.size() + mostDots - 1) / mostDots)
    {
    }

    std::size_t outside = 0;

    bool hasStrokes() const { return m_inStroke > 1; }

    /// One path for all marks of a method.
    QByteArray path(Value value, bool cross)
    {
        QByteArray data;
        for (std::size_t i = 0; i < m_points.size(); i += m_inStroke) {
            double low = INFINITY;
            double high = -INFINITY;
            const std::size_t end = std::min(m_points.size(), i + m_inStroke);
            for (std::size_t k = i; k < end; ++k)
                include(m_points[k].*value, low, high);
            if (low <= high)
                data += mark(x(static_cast<double>(i + end - 1) / 2.0), m_range.y(high),
                             m_range.y(low), cross);
        }
        return data;
    }

    /// A bar of one standard deviation to both sides of each value within the scale.
    QByteArray bars(Value value, Value sigma) const
    {
        QByteArray data;
        for (std::size_t i = 0; i < m_points.size(); ++i) {
            const double middle = m_points[i].*value;
            const double half = m_points[i].*sigma;
            if (!hasStrokes() && m_range.contains(middle) && std::isfinite(half))
                data += mark(x(static_cast<double>(i)), m_range.y(middle + half),
                             m_range.y(middle - half), false);
        }
        return data;
    }

    double x(double place) const
    {
        const auto last = static_cast<double>(m_points.size());
        return left + (place + 0.5) / last * (right - left);
    }

private:
    void include(double v, double& low, double& high)
    {
        if (!std::isfinite(v))
            return;
        outside += m_range.contains(v) ? 0 : 1;
        low = std::min(low, v);
        high = std::max(high, v);
    }

    static QByteArray mark(double x, double y1, double y2, bool cross)
    {
        if (!cross || y1 != y2)
            return 'M' + coordinate(x) + ' ' + coordinate(y1) + 'V' + coordinate(y2);
        const QByteArray arm = coordinate(2.0 * crossArm);
        return 'M' + coordinate(x - crossArm) + ' ' + coordinate(y1 - crossArm) + 'l' + arm + ' ' +
               arm + "m-" + arm + " 0l" + arm + " -" + arm;
    }

    const std::vector<ReportTargets::Point>& m_points;
    Range m_range;
    std::size_t m_inStroke; ///< targets that share a mark
};

QByteArray text(double x, double y, const char* anchor, const QByteArray& words)
{
    return "<text x=\"" + coordinate(x) + "\" y=\"" + coordinate(y) + "\" text-anchor=\"" + anchor +
           "\">" + words + "</text>\n";
}

/// By how much the title of the first axis gives way to numbers of more than four characters.
double roomForNumbers(const AxisMarks& marks)
{
    constexpr double widthOfDigit = 8.5;
    int longest = 4;
    for (const QString& number : marks.texts)
        longest = std::max(longest, static_cast<int>(number.size()));
    return widthOfDigit * (longest - 4);
}

QByteArray axes(const Trend& trend, const AxisMarks& y, const Range& range, std::size_t count,
                const OutputWords& words)
{
    QByteArray svg;
    for (std::size_t i = 0; i < y.values.size(); ++i) {
        const double at = range.y(y.values[i]);
        svg += R"(<path class="grid" d="M)" + coordinate(left) + ' ' + coordinate(at) + 'H' +
               coordinate(right) + "\"/>\n";
        svg += text(left - 6.0, at + 4.0, "end", y.texts[i].toLatin1());
    }
    const AxisMarks x = axisMarks(1.0, static_cast<double>(count), xMarks);
    for (const double number : x.values)
        if (number >= 1.0 && number == std::floor(number))
            svg += text(trend.x(number - 1.0), bottom + 18.0, "middle",
                        QByteArray::number(number, 'f', 0));
    if (x.values.empty())
        svg += text(trend.x(0.0), bottom + 18.0, "middle", "1");
    svg += text((left + right) / 2.0, bottom + 38.0, "middle",
                htmlText(words("number of the target")));
    svg += "<text transform=\"translate(" + coordinate(14.0 - roomForNumbers(y)) + ' ' +
           coordinate((top + bottom) / 2.0) + ") rotate(-90)\" text-anchor=\"middle\">" +
           htmlText(words("Valence")) + "</text>\n";
    svg += R"(<path class="frame" d="M)" + coordinate(left) + ' ' + coordinate(top) + 'V' +
           coordinate(bottom) + 'H' + coordinate(right) + "\"/>\n";
    return svg;
}

/// A sample of a mark before what it stands for.
QByteArray key(const char* kind, const char* path, const QString& words)
{
    return QByteArray("<span class=\"key\"><svg viewBox=\"0 0 14 14\" width=\"14\" height=\"14\" "
                      "aria-hidden=\"true\"><path class=\"") +
           kind + "\" d=\"" + path + "\"/></svg> " + htmlText(words) + "</span> ";
}

} // namespace

QByteArray trendFigure(const std::vector<ReportTargets::Point>& points, const OutputWords& words)
{
    const std::vector<double> values = finiteValues(points);
    if (values.empty())
        return {};
    const Range range = rangeOf(values);
    Trend trend(points, range);
    const QByteArray dots = trend.path(&ReportTargets::Point::valence, false);
    const QByteArray crosses = trend.path(&ReportTargets::Point::lcfValence, !trend.hasStrokes());
    const AxisMarks marks = axisMarks(range.low, range.high, yMarks);
    const double room = roomForNumbers(marks);
    QByteArray html =
        "<figure class=\"trend\">\n<div class=\"wide\" tabindex=\"0\"><svg viewBox=\"" +
        coordinate(-room) + " 0 " + coordinate(800.0 + room) + R"( 316" role="img" aria-label=")" +
        htmlText(words("Valence of each target, in the order of the job")) + "\">\n";
    html += axes(trend, marks, range, points.size(), words);
    const QByteArray fitBars =
        trend.bars(&ReportTargets::Point::lcfValence, &ReportTargets::Point::lcfSigma);
    const QByteArray bars =
        trend.bars(&ReportTargets::Point::valence, &ReportTargets::Point::sigma);
    if (!fitBars.isEmpty())
        html += R"(<path class="fit-bars" d=")" + fitBars + "\"/>\n";
    if (!bars.isEmpty())
        html += R"(<path class="bars" d=")" + bars + "\"/>\n";
    html += R"(<path class="lcf" d=")" + crosses + "\"/>\n";
    html += R"(<path class="points" d=")" + dots + "\"/>\n</svg></div>\n<figcaption>";
    html += key("points", "M7 7V7", words("point method"));
    html += key("lcf", trend.hasStrokes() ? "M7 2V12" : "M3 3l8 8m-8 0l8 -8",
                words("linear combination fit"));
    if (trend.hasStrokes())
        html +=
            htmlText(words("A stroke reaches from the lowest to the highest of neighbours.")) + ' ';
    if (!bars.isEmpty() || !fitBars.isEmpty())
        html += htmlText(words("A bar reaches one standard deviation, by target and references "
                               "together, to either side.")) +
                ' ';
    if (trend.outside > 0)
        html +=
            htmlText(words("Values beyond the scale, shown at its edge: %1").arg(trend.outside));
    return html + "</figcaption>\n</figure>\n";
}
