#include "app/Body.h"
#include "app/FourPs.h"
#include "batch/PanelDriver.h"
#include "display/PopBase.h"

#include <QApplication>
#include <QDir>
#include <QTranslator>

#include <cstdio>

// Makes the pictures of the guide: runs jobs in the real panel, one after the other, and saves the
// main window, the graph window and each graph.

namespace
{

constexpr QSize graphWindow(1200, 960);
constexpr QSize singleGraph(560, 420);

// Names of the graphs' files, in the order of their panels.
const char* const graphNames[] = {"ref1",        "ref2",        "target", "muts", "lcf-vs-4ps",
                                  "histogram-a", "histogram-t", "t-a",    "m2-m3"};

/// Saves pictures of widgets into a folder, "name-language.png".
class Album
{
public:
    Album(const QString& folder, const QString& language) : m_folder(folder), m_language(language)
    {
        QDir().mkpath(folder);
    }

    void save(QWidget* widget, const QString& name)
    {
        QApplication::processEvents(); // texts change the layout
        const QString path =
            m_folder.filePath(name + QLatin1Char('-') + m_language + QStringLiteral(".png"));
        if (widget->grab().save(path, "PNG", 0)) // as small as it gets
            return;
        std::fprintf(stderr, "%s cannot be written\n", qPrintable(path));
        m_complete = false;
    }

    bool isComplete() const { return m_complete; }

private:
    QDir m_folder;
    QString m_language;
    bool m_complete = true;
};

void saveWindows(Album& album, Body& body)
{
    const FourPs* panel = body.panel();
    panel->DispCondsB->setChecked(true);
    body.show();
    QApplication::processEvents();
    body.resize(body.sizeHint()); // the picture may be larger than the screen
    album.save(&body, QStringLiteral("window"));
    panel->displays->show();
    panel->displays->resize(graphWindow);
    QApplication::processEvents();
    album.save(panel->displays, QStringLiteral("graphs"));
}

void saveGraphs(Album& album, const FourPs* panel)
{
    for (int position = 0; position < panel->displays->panels.size(); ++position) {
        DispABase* graph = panel->displays->panel(position);
        graph->popDock();
        graph->pop->resize(singleGraph);
        album.save(graph->pop.get(), QString::fromLatin1(graphNames[position]));
        graph->popDock();
    }
}

/// Runs a job in the panel; false, with the reason on the standard error, where it cannot be used.
bool load(const QString& path, FourPs* panel)
{
    JobError error;
    const std::optional<Job> job = readJob(path, error);
    std::optional<JobError> refusal = job ? applyJob(*job, *panel) : error;
    if (refusal) {
        std::fprintf(stderr, "%s\n", qPrintable(errorText(path, *refusal)));
        return false;
    }
    runJob(*job, *panel);
    return true;
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 4) {
        std::fprintf(stderr, "drovik-pictures FOLDER en|ja JOB...\n");
        return 2;
    }
    const bool japanese = arguments[2] == QLatin1String("ja");
    QTranslator catalogue;
    if (japanese && catalogue.load(QStringLiteral(":velk_ja_JP")))
        QApplication::installTranslator(&catalogue);
    Body body;
    for (const QString& job : arguments.mid(3)) {
        if (!load(job, body.panel()))
            return 2;
    }
    Album album(arguments[1], arguments[2]);
    saveWindows(album, body);
    if (!japanese) // alone, graphs hardly differ between the languages
        saveGraphs(album, body.panel());
    return album.isComplete() ? 0 : 1;
}
