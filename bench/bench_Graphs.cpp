#include "app/Body.h"
#include "app/FourPs.h"
#include "bench/BenchSpectrum.h"
#include "bench/PairedTimes.h"
#include "display/FramePainter.h"
#include "display/PopBase.h"
#include "results/GridPainter.h"
#include "results/HistogramGraph.h"
#include "results/MapPicture.h"
#include "results/ThicknessGraph.h"
#include "tests/support/CanvasActions.h"
#include "tests/support/PlainBars.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QTemporaryDir>

#include <cmath>
#include <random>

namespace
{

constexpr std::size_t pointCount = 1000000;
constexpr ReferenceValences valences{2.0, 3.0};
constexpr AxisEnds valenceRange{1.5, 3.5};
constexpr AxisEnds thicknessRange{-0.2, 1.2};

/// Results of a map: valences and thicknesses spread as counting noise spreads them.
struct Cloud {
    std::vector<double> a;
    std::vector<double> t;
    std::uint64_t revision = 0;

    Cloud()
    {
        std::mt19937_64 random(20180917);
        const auto uniform = [&random] { return static_cast<double>(random() >> 11) * 0x1p-53; };
        const auto bell = [&] { return uniform() + uniform() + uniform() + uniform() - 2.0; };
        for (std::size_t i = 0; i < pointCount; ++i) {
            a.push_back(0.5 + 0.6 * bell());
            t.push_back(0.5 + 0.4 * bell());
        }
    }
    /// Writes all results anew, as a calculation does.
    void recalculate()
    {
        ++revision;
        const double shift = revision % 2 == 0 ? 0.001 : -0.001;
        for (double& fraction : a)
            fraction += shift;
        for (double& thickness : t)
            thickness += shift;
    }
    MapPoints points() const { return {a.data(), t.data(), a.size(), revision}; }
};

/// "t/a" on a canvas of 400 x 300 pixels.
class Graph : public DispABase
{
public:
    explicit Graph(const QString& x = QStringLiteral("Valence"),
                   const QString& y = QStringLiteral("Thick."))
    {
        xTitleInGraph = true;
        yTitleInGraph = true;
        setXYTitle(x, y);
        DispA->setFixedSize(400, 300);
    }

    QImage picture()
    {
        QImage image(400, 300, QImage::Format_RGB32);
        DispA->render(&image);
        return image;
    }
};

class ProgramGraph : public Graph
{
public:
    explicit ProgramGraph(const Cloud& cloud)
    {
        connect(this, &DispABase::draw, this, [this, &cloud](QStylePainter* painter) {
            m_graph.draw(*painter, graph, cloud.points(), valences, valenceRange, thicknessRange);
        });
    }

private:
    ThicknessGraph m_graph;
};

/// The same with one drawEllipse for each record.
class PlainGraph : public Graph
{
public:
    explicit PlainGraph(const Cloud& cloud)
    {
        connect(this, &DispABase::draw, this, [this, &cloud](QStylePainter* painter) {
            beginGraph(*painter, graph, true);
            setRangeOnce(valenceRange.from, thicknessRange.from, valenceRange.to,
                         thicknessRange.to);
            const ChCoord& coord = DispA->coord;
            drawGridColumns(*painter, coord, gridColumns(coord, valenceSteps(2.0, 3.0)));
            drawGridAtY(*painter, coord, tenths());
            painter->setPen(Qt::black);
            for (std::size_t i = 0; i < cloud.a.size(); ++i) {
                const double a = cloud.a[i];
                const int px = static_cast<int>(coord.xToScreen(2.0 * a + 3.0 * (1.0 - a)));
                const int py = static_cast<int>(coord.yToScreen(cloud.t[i]));
                painter->drawEllipse(QRect(QPoint(px - 1, py - 1), QPoint(px, py)));
            }
            DispA->drawFrame(painter, true);
        });
    }
};

/// Repaints after a calculation (new results each time) or with nothing changed.
void thicknessGraph(benchmark::State& state)
{
    const bool recalculated = state.range(0) != 0;
    Cloud cloud;
    ProgramGraph program(cloud);
    PlainGraph plain(cloud);
    if (program.picture() != plain.picture()) {
        state.SkipWithError("the pictures differ");
        return;
    }
    PairedTimes times;
    for (auto _ : state) {
        times.run(
            state, [&] { program.picture(); }, [&] { plain.picture(); },
            [&] {
                if (recalculated)
                    cloud.recalculate();
            });
    }
    times.report(state);
}

BENCHMARK(thicknessGraph)
    ->ArgName("recalculated")
    ->Arg(1)
    ->Arg(0)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(15);

/// A map of so many pixels a side, one in 500 of them without result.
struct LargeMap {
    explicit LargeMap(std::size_t side)
    {
        for (std::size_t i = 0; i < side * side; ++i) {
            const MapPosition position{static_cast<double>(i % side),
                                       static_cast<double>(i / side)};
            positions->append(&position, 1);
            a.push_back(i % 500 == 0 ? std::nan("") : position.first / static_cast<double>(side));
        }
        pixels.columns = pixels.rows = static_cast<int>(side);
        pixels.a = pixels.t = a.data();
        pixels.positions = positions;
    }

    std::vector<double> a;
    std::shared_ptr<MapPositions> positions = std::make_shared<MapPositions>();
    MapPixels pixels;
};

/// A repaint of a map with nothing changed or with the view moved each time.
void mapPicture(benchmark::State& state)
{
    const LargeMap map(static_cast<std::size_t>(state.range(0)));
    const bool moved = state.range(1) != 0;
    MapPicture picture;
    picture.setMap(map.pixels, std::make_shared<const MapGrid>(map.pixels), MapQuantity::Valence,
                   MapRanges());
    QImage image(700, 600, QImage::Format_RGB32);
    GraphFrame frame;
    for (auto _ : state) {
        if (moved)
            frame.coord.setXRange(frame.coord.rx0 + 1e-3, frame.coord.rx1 + 1e-3);
        frame.begin(image.width(), image.height());
        QPainter painter(&image);
        picture.draw(painter, frame, MapCaptions());
    }
}

BENCHMARK(mapPicture)
    ->ArgNames({"side", "moved"})
    ->ArgsProduct({{1024, 4096}, {0, 1}})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(50);

/// A repaint of "Histgram of a" with as many bins as are allowed, and with every bar drawn.
void manyBins(benchmark::State& state)
{
    HistogramCounts histogram;
    histogram.reset({1.5, 3.5, 1e7, false});
    std::mt19937_64 random(20180917);
    for (int& count : histogram.counts)
        count = static_cast<int>(random() % 40);
    histogram.maxCount = 39;
    const bool mirrored = state.range(0) != 0; // without, no bar has a pixel
    const AxisEnds range = mirrored ? AxisEnds{3.5, 1.5} : valenceRange;
    const QString x = QStringLiteral("Valence");
    const QString y = QStringLiteral("Num.");
    Graph program(x, y);
    QObject::connect(&program, &DispABase::draw, &program, [&](QStylePainter* painter) {
        drawValenceHistogram(*painter, program.graph, histogram, range, valences);
    });
    Graph plainly(x, y);
    QObject::connect(&plainly, &DispABase::draw, &plainly, [&](QStylePainter* painter) {
        drawValenceHistogram(*painter, plainly.graph, histogram, range, valences);
        plain::drawBars(plainly.DispA->coord, histogram, *painter, QColor(255, 200, 200));
        plainly.DispA->drawFrame(painter, true);
    });
    if (program.picture() != plainly.picture()) {
        state.SkipWithError("the pictures differ");
        return;
    }
    PairedTimes times;
    for (auto _ : state)
        times.run(
            state, [&] { program.picture(); }, [&] { plainly.picture(); }, [] {});
    times.report(state);
}

BENCHMARK(manyBins)
    ->ArgName("mirrored")
    ->Arg(0)
    ->Arg(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);

/// The panel with four spectra, 20 display-only ones, all of 1000 points, and the graph window.
struct Session {
    QTemporaryDir dir;
    Body body;

    Session()
    {
        FourPs* panel = body.panel();
        body.show();
        const auto write = [this](int i) {
            return writeBenchSpectrum(dir.filePath(QString::number(i)), 0.02 * i);
        };
        for (int i = 0; i < 4; ++i)
            panel->xafsSelects[i]->setFile(write(i));
        QStringList paths;
        for (int i = 0; i < 20; ++i)
            paths << write(i + 4);
        panel->receiveNewDispFiles(paths);
        panel->displays->show();
        panel->displays->resize(1100, 720); // of one size on every screen
        QApplication::processEvents();
    }
};

/// One move of a dragged line: its field, the fits of all spectra, all graphs.
void dragMarker(benchmark::State& state)
{
    Session session;
    const FourPs* panel = session.body.panel();
    const auto place = static_cast<int>(state.range(0));
    DispArea* area = panel->displays->panel(place)->DispA;
    const QPointF edge(area->coord.xToScreen(panel->EdgeE->text().toDouble()), 50);
    canvas::press(area, edge);
    const QString before = panel->EdgeE->text();
    int step = 0;
    for (auto _ : state) {
        ++step;
        canvas::move(area, edge + QPointF(1 + step % 9, 0));
        QApplication::processEvents();
    }
    if (panel->EdgeE->text() == before)
        state.SkipWithError("the line did not move");
    canvas::release(area, edge);
}

BENCHMARK(dragMarker)
    ->ArgName("panel")
    ->Arg(Displays::DispMuts)
    ->Arg(Displays::DispRef1)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(9);

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
