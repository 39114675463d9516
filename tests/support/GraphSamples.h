#pragma once

#include "analysis/FittedSpectrum.h"
#include "display/CColors.h"
#include "display/FramePainter.h"
#include "display/SpectrumPreview.h"
#include "results/FourPointGraph.h"
#include "results/HistogramGraph.h"
#include "results/LcfGraph.h"
#include "results/MutsGraph.h"
#include "results/ThicknessGraph.h"
#include "tests/support/TableRow.h"

#include <QColor>
#include <QPainter>

#include <functional>
#include <vector>

/// One graph of each kind with data of a few figures, and what is to be seen on it.
namespace graphs
{

/// A colour at a point in data units, moved by so many pixels.
struct Sight {
    double x;
    double y;
    QColor color;
    QPointF moved;
};

struct Sample {
    const char* name;
    std::function<void(QPainter&, GraphFrame&)> paint;
    std::vector<Sight> sights;
};

/// Victreen lines at the constants pre and post, points at the given mu-t.
inline FittedSpectrum spectrum(const std::vector<QPointF>& points, double pre, double post)
{
    FittedSpectrum data;
    for (const QPointF& point : points)
        data.points.push_back({0.0, point.x(), point.y()});
    data.energyMin = points.front().x();
    data.energyMax = points.back().x();
    data.mutMin = 0.0;
    data.mutMax = 4.0;
    data.preEdgeEnd = 8120;
    data.edge = 8160;
    data.postEdgeStart = 8260;
    data.preVic.c = pre;
    data.postVic.c = post;
    return data;
}

inline Sample preview()
{
    const FittedSpectrum data =
        spectrum({{8000, 1}, {8100, 0}, {8200, 4}, {8300, 2}, {8400, 2}}, 0.5, 3.0);
    return {"preview",
            [data](QPainter& painter, GraphFrame& frame) {
                drawSpectrumPreview(painter, frame, &data,
                                    {QStringLiteral("Jump(1) %1"), QStringLiteral("Jump(2) %1")});
            },
            {{8350, 2, Qt::black, {}},
             {8050, 0.5, QColor(0, 200, 0), {}},
             {8050, 3, QColor(0, 0, 200), {}},
             {8160, 0.2, QColor(255, 0, 0), {}},
             {8120, 3.5, QColor(255, 200, 200), {}},
             {8390, 1, Qt::white, {}}}};
}

inline Sample muts()
{
    const auto level = [](double y) {
        return spectrum({{8000, y}, {8300, y}, {8470, y}, {8700, y}}, 0.0, 1.0);
    };
    PointRow row;
    row.energy = 8430;
    row.use = true;
    row.tRatio = true;
    const auto paint = [low = level(0.2), high = level(0.9), only = level(0.7),
                        row](QPainter& painter, GraphFrame& frame) {
        MutsContent content;
        content.edge = 8350;
        content.preEndOffset = -50;
        content.postStartOffset = 120;
        content.rows = {row};
        content.selected = {&low, &high, nullptr, nullptr};
        content.displayOnly = {&only};
        drawMutsGraph(painter, frame, content);
    };
    const CColors palette;
    return {"Muts",
            paint,
            {{8400, 0.2, palette.colors[0], {}},
             {8400, 0.9, palette.colors[1], {}},
             {8400, 0.7, palette.colors[4], {}},
             {8400, 0.5, QColor(200, 200, 200), {}},
             {8350, 0.4, QColor(80, 255, 80), {}},
             {8430, 0.4, QColor(255, 0, 0), {}},
             {8400, 0.4, Qt::white, {}}}};
}

inline Sample lcf()
{
    const std::vector<LCFvs4PSPoint> points{{0.0, 2.95, 0.0, 2.15}, {0.0, 2.15, 0.0, 2.95}};
    return {"LCF vs 4PS",
            [points](QPainter& painter, GraphFrame& frame) {
                drawLcfGraph(painter, frame, points, {2.0, 3.0});
            },
            {{2.5, 2.5, QColor(0, 200, 0), {}},
             {2.3, 2.65, QColor(200, 200, 255), {}},
             {2.15, 2.95, Qt::black, {-1, 0}},
             {2.95, 2.15, QColor(255, 0, 0), {-2, 0}},
             {2.75, 2.25, Qt::white, {}}}};
}

inline HistogramCounts counts(double first, double last)
{
    HistogramCounts histogram;
    histogram.reset({first, last, 4.0, false});
    histogram.counts = {10, 0, 40, 20};
    histogram.maxCount = 40;
    histogram.under = 5;
    return histogram;
}

inline Sample valences()
{
    const HistogramCounts histogram = counts(1.75, 3.25); // bins half a valence wide, from 1.5
    return {"Histgram of a",
            [histogram](QPainter& painter, GraphFrame& frame) {
                drawValenceHistogram(painter, frame, histogram, {1.0, 4.0}, {2.0, 3.0});
            },
            {{1.75, 5, QColor(255, 200, 200), {}},
             {2.75, 35, QColor(255, 200, 200), {}},
             {1.25, 2, QColor(255, 200, 200), {}},
             {2.5, 42, QColor(200, 200, 255), {}},
             {1.75, 15, Qt::white, {}}}};
}

inline Sample thicknesses()
{
    const HistogramCounts histogram = counts(0.125, 0.875); // bins a quarter wide, from 0
    return {"Histgram of t",
            [histogram](QPainter& painter, GraphFrame& frame) {
                drawThicknessHistogram(painter, frame, histogram, {-0.2, 1.2});
            },
            {{0.125, 5, QColor(200, 255, 200), {}},
             {0.625, 35, QColor(200, 255, 200), {}},
             {0.4, 35, QColor(200, 200, 255), {}},
             {-0.15, 10, QColor(200, 200, 255), {}},
             {1.15, 35, Qt::white, {}}}};
}

inline Sample thicknessAgainstValence()
{
    struct Cloud {
        std::vector<double> a{0.75, 0.25, 0.25, 2.0};
        std::vector<double> t{0.95, 0.05, 0.05, 0.5}; // two on one another, one beside the range
        ThicknessGraph graph;
    };
    const auto cloud = std::make_shared<Cloud>();
    return {"t/a",
            [cloud](QPainter& painter, GraphFrame& frame) {
                cloud->graph.draw(painter, frame,
                                  {cloud->a.data(), cloud->t.data(), cloud->a.size(), 1},
                                  {2.0, 3.0}, {1.5, 3.5}, {-0.2, 1.2});
            },
            {{2.25, 0.95, Qt::black, {-1, 0}},
             {2.75, 0.05, Qt::black, {-1, 0}},
             {2.5, 0.75, QColor(200, 200, 255), {}},
             {1.75, 0.3, QColor(200, 200, 255), {}},
             {2.55, 0.55, Qt::white, {}}}};
}

/// References of thickness 2 and 1, a target of a quarter of the first state.
inline Sample fourPoints()
{
    const PointRows rows{row(100, 2, 1, 1.5), row(110, 4, 2, 3),
                         vRow(120, 6, 2, 1.5 * (0.25 * 3 + 0.75 * 2)), row(135, 8, 4, 6)};
    return {"M2/M3",
            [rows](QPainter& painter, GraphFrame& frame) {
                drawFourPointGraph(painter, frame, rows, 2.0);
            },
            {{6, 2, QColor(255, 0, 0), {}},
             {4, 2, QColor(0, 0, 255), {}},
             {8, 4, QColor(0, 0, 255), {}},
             {3, 1.5, QColor(255, 255, 0), {}},
             {3, 3.75, QColor(255, 0, 255), {}}, // the target's sum of both, 6.75
             {3, 2.5, QColor(0, 255, 255), {}},  // the target, (4.5, 2.25), and V lie on it
             {6, 0.5, Qt::black, {}},
             {1, 3, Qt::white, {}}}};
}

inline std::vector<Sample> all()
{
    return {preview(),   muts(), lcf(), valences(), thicknesses(), thicknessAgainstValence(),
            fourPoints()};
}

/// As whoever owns a painter paints a graph on a canvas of a size.
inline void paint(QPainter& painter, GraphFrame& frame, const QSize& size, const Sample& sample)
{
    frame.begin(size.width(), size.height());
    sample.paint(painter, frame);
    if (frame.coord.valid == 1)
        drawAxisTitles(painter, frame);
}

/// Gives a frame the titles that all samples have.
inline void setTitles(GraphFrame& frame)
{
    frame.xTitle = QStringLiteral("across");
    frame.yTitle = QStringLiteral("upward");
    frame.xTitleInGraph = true;
    frame.yTitleInGraph = true;
}

} // namespace graphs
