#include "app/FourPs.h"
#include "app/PanelSettings.h"
#include "batch/GraphPictures.h"
#include "batch/JobData.h"
#include "batch/MapPictures.h"
#include "examples/MapSample.h"
#include "examples/MixedSampleFiles.h"
#include "tests/support/CanvasActions.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

// The example's map with its target, so that every graph has something to show.
const char* const jobText = R"(
calculate = ["target", "lcf", "map"]
[files]
ref1 = "ref1.dat"
ref2 = "ref2.dat"
blank = "blank.dat"
target = "target.dat"
map_result = "result.dat"
[conditions]
thickness = "sum-by-sum"
[[point]]
energy = 8313
t_ratio = true
map = "map_1.dat"
[[point]]
energy = 8381
t_ratio = true
map = "map_2.dat"
[[point]]
energy = 8390
v_point = true
map = "map_3.dat"
[[point]]
energy = 8404.5
t_ratio = true
map = "map_4.dat"
)";

/// Of a picture in the folder, painted by the program.
QImage picture(const QTemporaryDir& folder, const QByteArray& name)
{
    return QImage(folder.filePath(QString::fromLatin1(name))).convertToFormat(QImage::Format_RGB32);
}

} // namespace

/// The pictures of the batch beside the canvases of the window, pixel by pixel.
class TestGraphPictures : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void pictureIsThatOfTheWindow_data();
    void pictureIsThatOfTheWindow();
    void emptyGraphsHaveNoPicture();
    void emptyFitHasNoPicture();

private:
    void paintAll(const QString& language);
    QImage canvasOf(Displays::DispId id);

    QTemporaryDir m_folder;
    Job m_job;
    JobData m_data;
    std::unique_ptr<FourPs> m_panel;
};

void TestGraphPictures::initTestCase()
{
    QCOMPARE(writeMap(m_folder.path(), MapSample()), QString());
    QCOMPARE(writeSample(m_folder.path(), MixedSample(), std::nullopt), QString());
    JobError error;
    const std::optional<Job> job = parseJob(jobText, m_folder.path(), error);
    QVERIFY2(job, qPrintable(error.reason));
    m_job = *job;
    std::optional<JobData> data = readJobData(m_job, error);
    QVERIFY2(data, qPrintable(error.reason));
    m_data = std::move(*data);
    paintAll(QStringLiteral("en"));

    m_panel = std::make_unique<FourPs>();
    applySettings(settingsOf(m_job), filesOf(m_job), *m_panel);
    m_panel->CalcMapB->click();
    m_panel->CalcTargetB->click();
    m_panel->clearLCFvs4PS(nullptr); // fits that were made while the files were named
    m_panel->LCFB->click();
    m_panel->displays->resize(1200, 960);
    m_panel->displays->show();
}

void TestGraphPictures::paintAll(const QString& language)
{
    const GraphPictureOptions options{m_folder.filePath(language), language};
    QCOMPARE(drawReferenceGraphs(m_data.input, options).written.size(), 3);
    const auto fit = lcfResult(m_data.input);
    const auto* combination = std::get_if<LinearCombination>(&fit);
    QVERIFY(combination != nullptr);
    const PictureFiles ofTarget = drawTargetGraphs(QStringLiteral("scans/a b.dat"), m_data.settings,
                                                   m_data.input, combination, options);
    QCOMPARE(ofTarget.failed, QStringList());
    QCOMPARE(ofTarget.written.size(), 3);
    const auto result = std::get<TargetResult>(targetResult(m_data.input));
    const ReferenceValences& valences = m_data.settings.valences;
    const LCFvs4PSPoint point{result.a, result.valence, combination->share1(),
                              combination->valence(valences)};
    QCOMPARE(drawComparisonGraph({point}, valences, options).written.size(), 1);

    MapResults results;
    HistogramCounts ofValence;
    HistogramCounts ofThickness;
    const Settings& settings = m_data.settings;
    QVERIFY(!mapResult(m_data.input, m_data.mapSources(), results,
                       {ofValence, ofThickness, settings.valenceHistogram,
                        settings.thicknessHistogram, valences})
                 .refusal);
    const MapPictureInput input{
        results,  ofValence, ofThickness, settings.valenceHistogram, settings.thicknessHistogram,
        valences, true,      nullptr};
    Workers workers(2);
    QCOMPARE(drawMapPictures(options.folder, QStringLiteral("map"), input, language, workers)
                 .written.size(),
             6);
}

QImage TestGraphPictures::canvasOf(Displays::DispId id)
{
    const int position = m_panel->displays->ids.indexOf(id);
    DispArea* canvas = m_panel->displays->panel(position)->DispA;
    canvas->setFixedSize(560, 420);
    QCoreApplication::processEvents();
    return canvas::picture(canvas).convertToFormat(QImage::Format_RGB32);
}

void TestGraphPictures::pictureIsThatOfTheWindow_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QByteArray>("file");
    const auto row = [](const char* name, Displays::DispId id, const char* file) {
        QTest::newRow(name) << static_cast<int>(id) << QByteArray(file);
    };
    row("Ref1", Displays::DispRef1, "pictures/Ref 1.png");
    row("Ref2", Displays::DispRef2, "pictures/Ref 2.png");
    row("Target", Displays::DispTarget, "pictures/scans/a=20b.dat/Target.png");
    row("Muts", Displays::DispMuts, "pictures/scans/a=20b.dat/Muts.png");
    row("M2/M3", Displays::DispM2M3, "pictures/scans/a=20b.dat/M2M3.png");
    row("LCF vs 4PS", Displays::DispLCFvs4PS, "pictures/LCF vs 4PS.png");
    row("Histgram of a", Displays::DispHistA, "map-histogram-valence.png");
    row("Histgram of t", Displays::DispHistT, "map-histogram-thickness.png");
    row("t/a", Displays::DispTA, "map-t-a.png");
}

void TestGraphPictures::pictureIsThatOfTheWindow()
{
    QFETCH(int, id);
    QFETCH(QByteArray, file);
    const QImage found = picture(m_folder, "en/" + file);
    QCOMPARE(found.size(), QSize(560, 420));
    QVERIFY(canvas::count(found, Qt::white) < 560 * 420 - 1000);
    QVERIFY(canvasOf(static_cast<Displays::DispId>(id)) == found);
}

void TestGraphPictures::emptyGraphsHaveNoPicture()
{
    const QTemporaryDir folder;
    const GraphPictureOptions options{folder.path(), QStringLiteral("en")};
    AnalysisInput nothing;
    QCOMPARE(drawReferenceGraphs(nothing, options).written, QStringList());
    const PictureFiles files =
        drawTargetGraphs(QStringLiteral("x"), Settings(), nothing, nullptr, options);
    QCOMPARE(files.written + files.failed, QStringList());
    QVERIFY(QDir(folder.path()).isEmpty());
}

void TestGraphPictures::emptyFitHasNoPicture()
{
    const QTemporaryDir folder;
    const PictureFiles files =
        drawComparisonGraph({}, ReferenceValences(), {folder.path(), QStringLiteral("en")});
    QCOMPARE(files.written + files.failed, QStringList());
}

QTEST_MAIN(TestGraphPictures)
#include "tst_GraphPictures.moc"
