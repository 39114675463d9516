#include "app/Body.h"
#include "app/FourPs.h"
#include "app/MapWindow.h"
#include "app/PanelSettings.h"
#include "display/PopBase.h"
#include "jobs/JobSettings.h"

#include <QApplication>
#include <QHash>
#include <QTranslator>

#include <algorithm>
#include <cstdio>

// Makes a picture of the guide: runs jobs in the real panel, one after the other, and saves the
// main window, the graph window, the map or a graph.

namespace
{

constexpr QSize graphWindow(1200, 960);
constexpr QSize mapWindow(700, 640);
constexpr QSize singleGraph(560, 420);
constexpr int longestPalette = 256;

// Names of the graphs, in the order of their panels.
const QStringList graphNames = {
    QStringLiteral("ref1"),        QStringLiteral("ref2"),       QStringLiteral("target"),
    QStringLiteral("muts"),        QStringLiteral("lcf-vs-4ps"), QStringLiteral("histogram-a"),
    QStringLiteral("histogram-t"), QStringLiteral("t-a"),        QStringLiteral("m2-m3")};

/// The colours that an image has most of, as many as a palette holds.
QVector<QRgb> commonColours(const QImage& image)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            ++counts[image.pixel(x, y)];
    QVector<QRgb> colours = counts.keys().toVector();
    std::sort(colours.begin(), colours.end(), [&counts](QRgb a, QRgb b) {
        return counts[a] != counts[b] ? counts[a] > counts[b] : a < b;
    });
    return colours.mid(0, longestPalette);
}

/// Saves what a widget shows, with a palette: a third of the bytes, and nobody sees it.
bool save(QWidget* widget, const QString& path)
{
    QApplication::processEvents(); // texts change the layout
    const QImage image = widget->grab().toImage().convertToFormat(QImage::Format_RGB32);
    return image.convertToFormat(QImage::Format_Indexed8, commonColours(image), Qt::AvoidDither)
        .save(path, "PNG", 0); // as small as it gets
}

bool saveWindow(Body& body, const QString& path)
{
    body.panel()->DispCondsB->setChecked(true);
    body.show();
    QApplication::processEvents();
    body.resize(body.sizeHint()); // the picture may be larger than the screen
    return save(&body, path);
}

bool saveGraphs(const FourPs* panel, const QString& path)
{
    panel->displays->show();
    panel->displays->resize(graphWindow);
    return save(panel->displays, path);
}

bool saveGraph(const FourPs* panel, int position, const QString& path)
{
    DispABase* graph = panel->displays->panel(position);
    graph->popDock();
    graph->pop->resize(singleGraph);
    const bool saved = save(graph->pop.get(), path);
    graph->popDock();
    return saved;
}

bool saveMap(FourPs* panel, const QString& path)
{
    MapWindow& map = panel->mapWindow();
    map.resize(mapWindow);
    map.show();
    QApplication::processEvents();
    return map.grab().save(path, "PNG", 0); // a palette would take steps out of the colour bar
}

/// @param what  "window", "graphs", "map" or the name of a graph; nothing is saved for any other
bool savePicture(const QString& what, Body& body, const QString& path)
{
    if (what == QLatin1String("window"))
        return saveWindow(body, path);
    if (what == QLatin1String("graphs"))
        return saveGraphs(body.panel(), path);
    if (what == QLatin1String("map"))
        return saveMap(body.panel(), path);
    const int position = graphNames.indexOf(what);
    return position >= 0 && saveGraph(body.panel(), position, path);
}

void press(const Job& job, const FourPs& panel)
{
    if (job.calculateMap)
        panel.CalcMapB->click();
    if (job.calculateTarget)
        panel.CalcTargetB->click();
    if (job.calculateLcf)
        panel.LCFB->click();
}

/// Makes a job's settings in the panel and presses its buttons; false, with the reason on the
/// standard error, where the job cannot be used.
bool load(const QString& path, FourPs* panel)
{
    JobError error;
    const std::optional<Job> job = readJob(path, error);
    if (!job) {
        std::fprintf(stderr, "%s\n", qPrintable(errorText(path, error)));
        return false;
    }
    applySettings(settingsOf(*job), filesOf(*job), *panel);
    press(*job, *panel);
    return true;
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 5) {
        std::fprintf(stderr, "drovik-pictures PICTURE.png window|graphs|map|GRAPH en|ja JOB...\n");
        return 2;
    }
    QTranslator catalogue;
    QTranslator extras;
    if (arguments[3] == QLatin1String("ja")) {
        for (const auto& [translator, name] :
             {std::pair(&catalogue, ":velk_ja_JP"), std::pair(&extras, ":/extras/extras_ja.qm")})
            if (translator->load(QString::fromLatin1(name)))
                QApplication::installTranslator(translator);
    }
    Body body;
    for (const QString& job : arguments.mid(4)) {
        if (!load(job, body.panel()))
            return 2;
    }
    if (savePicture(arguments[2], body, arguments[1]))
        return 0;
    std::fprintf(stderr, "%s cannot be made\n", qPrintable(arguments[1]));
    return 1;
}
