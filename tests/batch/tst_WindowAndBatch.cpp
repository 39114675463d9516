#include "app/FourPs.h"
#include "app/JobMenu.h"
#include "app/PanelJob.h"
#include "app/PanelSettings.h"
#include "batch/JobRun.h"
#include "batch/MapsRun.h"
#include "batch/ResultPath.h"
#include "input/AEPoint.h"
#include "input/AXafsData.h"
#include "input/AXafsFileSelect.h"
#include "jobs/JobWriter.h"
#include "results/HistogramFile.h"
#include "tests/batch/RandomJob.h"
#include "tests/model/MessageKinds.h"
#include "tests/model/PanelSession.h"
#include "tests/support/Files.h"
#include "tests/support/PanelActions.h"

#include <QDirIterator>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

/// Random jobs, run in the window and by the batch program: all that both say and write is the
/// same. DROVIK_SESSIONS sets how many (40 where it is not set), DROVIK_SEED the first seed; each
/// job is a row named by its seed, so that one can be run alone.
///
/// The window never empties a result field: beside a refusal it shows the text of the last result
/// that there was, of settings that may be others. The batch has one result of each kind, and none
/// where there is a refusal. A map that is refused is not written by the batch; "Write" in the
/// window writes the one that is there, so that nobody who sees the refusal presses it.
class tst_WindowAndBatch : public QObject
{
    Q_OBJECT

private:
    QStringList m_messages;
    int m_unreadable = 0;
    int m_written = 0;
    int m_programs = 0;
    int m_maps = 0;
    int m_refusedMaps = 0;
    int m_refusedSessions = 0;
    int m_sessions = 0;

private slots:
    void sameTextsAndFiles_data();
    void sameTextsAndFiles();
    void sameMaps_data() { sameTextsAndFiles_data(); }
    void sameMaps();
    void sessionsAsJobs_data() { sameTextsAndFiles_data(); }
    void sessionsAsJobs();
    void jobsReachedEverything();
    void windowKeepsAResultBesideARefusal();
};

namespace
{

using Files = QMap<QString, QByteArray>;

Files filesBelow(const QString& folder)
{
    Files files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        files[path] = contents(path);
    }
    return files;
}

void restore(const QString& folder, const Files& before)
{
    for (const QString& path : filesBelow(folder).keys())
        if (!before.contains(path))
            QFile::remove(path);
    for (auto it = before.constBegin(); it != before.constEnd(); ++it)
        create(it.key(), it.value());
}

/// The panel with a job's settings, and what its buttons bring.
class Window
{
public:
    explicit Window(const RandomJob& job)
    {
        applySettings(job.settings, job.files, panel);
        if (!job.result.isEmpty())
            panel.SaveFSelect->setFile(job.result);
        QObject::connect(&panel, &FourPs::messageAppended, &panel,
                         [this](const QString& line) { m_lines += line; });
        QObject::connect(&panel, &FourPs::refused, &panel, [this] { m_refused = true; });
        QObject::connect(&panel, &FourPs::written, &panel,
                         [this](const QString& path) { written += path; });
    }

    /// Presses a button.
    /// @param field  that shows its result, if one does
    /// @return text of the field; empty beside a refusal, which leaves the field as it is
    QString press(QAbstractButton* button, const QLineEdit* field = nullptr)
    {
        m_lines.clear();
        m_refused = false;
        const QString before = field != nullptr ? field->text() : QString();
        button->click();
        if (m_refused && field != nullptr && field->text() != before)
            return QStringLiteral("a refusal changes the field");
        return field != nullptr && !m_refused ? field->text() : QString();
    }

    void run(const RandomJob& job)
    {
        if (job.map)
            runMap(job);
        if (job.target) {
            calcRes = press(panel.CalcTargetB, panel.CalcRes);
            take();
        }
        if (job.lcf) {
            lcfRes = press(panel.LCFB, panel.LCFRes);
            take();
        }
    }

    FourPs panel;
    QStringList messages;
    QStringList written;
    QString calcRes;
    QString lcfRes;
    QString map; ///< size of the map, empty where it was refused
    bool refused = false;

private:
    void runMap(const RandomJob& job)
    {
        press(panel.CalcMapB);
        const QStringList lines = m_lines;
        if (!m_refused) {
            const MapResults& results = panel.lastMap();
            map = QStringLiteral("%1 x %2 pixels").arg(results.columns).arg(results.rows);
        }
        if (!m_refused && !job.result.isEmpty()) {
            press(panel.WriteB);
            if (m_lines.mid(0, lines.size()) != lines)
                m_lines += QStringLiteral("\"Write\" has other lines than the calculation");
        }
        take();
    }
    void take()
    {
        messages += m_lines;
        refused = refused || m_refused;
    }

    QStringList m_lines; ///< of the last button
    bool m_refused = false;
};

/// Whether the panel has no data of the file that stands in a line of the job.
bool isRefusedByThePanel(const RandomJob& job, int line, const FourPs& panel)
{
    const int spectrum = job.spectrumInLine(line);
    const int row = job.mapInLine(line);
    if (spectrum >= 0)
        return !panel.xafsSelects[spectrum]->data()->valid;
    return row >= 0 && !panel.ePoints[row]->mapData().valid;
}

/// The images of a random job as one map of a job that has many.
struct OneOfManyMaps {
    Job job;
    MapJob map;
    QString result;

    OneOfManyMaps(RandomJob& made, const Job& read, const QString& folder) : job(read)
    {
        QRandomGenerator random(made.text().size());
        job.output.path = folder + QStringLiteral("/many");
        job.report = false;
        map.name = random.bounded(2) == 0 ? QStringLiteral("50%1.b") : QStringLiteral("鉄 1");
        job.valenceHistogram = {QStringLiteral("-0.25"),
                                QStringLiteral("4.1"),
                                QString::number(2 + random.bounded(200)),
                                {}};
        made.settings.valenceHistogram = settingsOf(job).valenceHistogram;
        for (std::size_t i = 0; i < made.settings.points.size(); ++i) {
            const QString image = i < made.files.maps.size() ? made.files.maps[i] : QString();
            map.images.push_back({image, {}});
            // A point without an image is not used for the map.
            made.settings.points[i].use &= !image.isEmpty();
        }
        for (JobPoint& point : *job.points)
            point.map = {};
        result = mapResultFile(job, map);
    }
};

struct Output {
    int status = -1;
    QString text;
};

/// The real program, on a machine that cannot show a window.
Output runProgram(const QString& path)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("nonsense"));
    environment.insert(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral("/nowhere"));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(BATCH_PROGRAM), {path});
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput())};
}

/// Everything in a panel that a job holds.
QStringList textsOf(const FourPs& panel)
{
    QStringList texts;
    for (const QLineEdit* field :
         {panel.EdgeE, panel.PreEEndDE, panel.PostEStartDE, panel.Valence1, panel.Valence2,
          panel.HgAFrom, panel.HgATo, panel.HgABoxes, panel.HgTFrom, panel.HgTTo, panel.HgTBoxes,
          panel.SaveFSelect->FileName})
        texts << field->text();
    for (const AXafsFileSelect* select : panel.xafsSelects)
        texts << (select->isValid() ? select->FileName->text() : QString());
    for (const AEPoint* point : panel.ePoints) {
        for (const QLineEdit* field :
             {point->Energy, point->Mut1, point->Mut2, point->MutT, point->MutBlank})
            texts << field->text();
        texts << (point->mapData().valid ? point->MapFile->FileName->text() : QString());
        for (const QAbstractButton* button : {static_cast<QAbstractButton*>(point->UseCB),
                                              static_cast<QAbstractButton*>(point->TRatCB),
                                              static_cast<QAbstractButton*>(point->VPointCB)})
            texts << QString::number(button->isChecked());
    }
    for (const QAbstractButton* button :
         {static_cast<QAbstractButton*>(panel.TRSbyS), static_cast<QAbstractButton*>(panel.TRMean),
          static_cast<QAbstractButton*>(panel.TRLSquare),
          static_cast<QAbstractButton*>(panel.TRLSquareNB),
          static_cast<QAbstractButton*>(panel.TRVic2),
          static_cast<QAbstractButton*>(panel.UseVicCB),
          static_cast<QAbstractButton*>(panel.UseVicForTargetCB),
          static_cast<QAbstractButton*>(panel.TheVicIs1),
          static_cast<QAbstractButton*>(panel.TypeTMKisExact)})
        texts << QString::number(button->isChecked());
    return texts;
}

/// Types what a job cannot hold in a field again, as a number; leaves the field with Enter.
void typeNumber(QLineEdit* field, const QString& other)
{
    const double value = field->text().toDouble();
    const QString number = std::isfinite(value) ? QString::number(value) : other;
    user::type(field, isJobNumber(field->text()) ? field->text() : number);
}

/// After this every mu-t in the table is of the files, and a job can hold all.
void makeKeepable(FourPs& panel)
{
    for (QLineEdit* field :
         {panel.EdgeE, panel.PreEEndDE, panel.PostEStartDE, panel.Valence1, panel.Valence2})
        typeNumber(field, QStringLiteral("3"));
    for (const auto& [field, number] :
         {std::pair(panel.HgAFrom, "-0.50"), std::pair(panel.HgATo, "4"),
          std::pair(panel.HgABoxes, "7"), std::pair(panel.HgTFrom, "0"),
          std::pair(panel.HgTTo, "1.5"), std::pair(panel.HgTBoxes, "11")})
        user::type(field, QLatin1String(number));
    for (AXafsFileSelect* select : panel.xafsSelects)
        if (select->isValid() && select->FileName->text() != select->path())
            user::drop(select, select->path());
    bool later = false;
    for (int row = panel.ePoints.size() - 1; row >= 0; --row) {
        const AEPoint* point = panel.ePoints[row];
        if (point->mapData().valid && point->MapFile->FileName->text() != point->mapPath())
            user::drop(point->MapFile, point->mapPath());
        later = later || point->UseCB->isChecked() || point->TRatCB->isChecked() ||
                point->VPointCB->isChecked() || point->mapData().valid ||
                !point->Energy->text().isEmpty();
        if (later && point->mapData().valid && isJobNumber(point->mapEnergy()))
            user::type(point->Energy, point->mapEnergy());
        else if (later)
            typeNumber(point->Energy, QStringLiteral("8300"));
    }
    const bool pre = panel.TheVicIs1->isChecked();
    (pre ? panel.TheVicIs2 : panel.TheVicIs1)->click(); // fills all columns
    (pre ? panel.TheVicIs1 : panel.TheVicIs2)->click();
}

/// Rows and energies of somebody who knows what to measure.
void chooseGoodPoints(FourPs& panel)
{
    const char* const energies[] = {"8313", "8381.0", "8390", "8404.50"};
    for (int row = 0; row < panel.ePoints.size(); ++row) {
        const AEPoint* point = panel.ePoints[row];
        const bool used = row < 4;
        if (used && point->mapEnergy().isEmpty())
            user::type(point->Energy, QLatin1String(energies[row]));
        if (point->UseCB->isChecked() != used)
            point->UseCB->click();
        if (point->TRatCB->isChecked() != (used && row != 2))
            point->TRatCB->click();
    }
    panel.ePoints[2]->VPointCB->click();
}

/// What the buttons of a panel bring, as the batch has it.
struct Pressed {
    QStringList messages;
    QString calcRes;
    QString lcfRes;

    Pressed(FourPs& panel, const Job& job)
    {
        if (job.calculateMap)
            press(panel, panel.CalcMapB);
        if (job.calculateTarget)
            calcRes = press(panel, panel.CalcTargetB) ? QString() : panel.CalcRes->text();
        if (job.calculateLcf)
            lcfRes = press(panel, panel.LCFB) ? QString() : panel.LCFRes->text();
    }

private:
    /// @return whether it was refused
    bool press(FourPs& panel, QAbstractButton* button)
    {
        const QSignalSpy refused(&panel, &FourPs::refused);
        const int before = user::messages(panel).size();
        button->click();
        messages += user::messagesSince(panel, before);
        return !refused.isEmpty();
    }
};

int expectedStatus(const RunReport& report)
{
    if (report.resultNotWritten)
        return 2;
    return report.refused || !areFinite(report.results) ? 1 : 0;
}

} // namespace

void tst_WindowAndBatch::sameTextsAndFiles_data()
{
    QTest::addColumn<quint32>("seed");
    bool set = false;
    int count = qEnvironmentVariableIntValue("DROVIK_SESSIONS", &set);
    if (!set)
        count = 40;
    const int first = qEnvironmentVariableIntValue("DROVIK_SEED");
    qInfo("%d jobs from seed %d on", count, first);
    for (int i = 0; i < count; ++i) {
        const auto seed = static_cast<quint32>(first + i);
        QTest::newRow(qPrintable(QString::number(seed))) << seed;
    }
}

void tst_WindowAndBatch::sameTextsAndFiles()
{
    QFETCH(quint32, seed);
    const QTemporaryDir folder;
    const RandomJob made(seed, folder.path());
    const QString out = folder.filePath(QStringLiteral("out"));
    const Files before = filesBelow(out);
    Window window(made);
    QVERIFY(filesBelow(out) == before); // settings write nothing

    JobError error;
    const std::optional<Job> job = readJob(made.path(), error);
    QVERIFY2(job, qPrintable(errorText(made.path(), error)));
    const std::optional<JobData> data = readJobData(*job, error);
    if (!data) {
        QVERIFY2(isRefusedByThePanel(made, error.place.line, window.panel),
                 qPrintable(error.reason));
        ++m_unreadable;
        return;
    }
    const RunReport report = runJob(*job, *data);
    const Files byBatch = filesBelow(out);
    restore(out, before);
    window.run(made);
    const Files byWindow = filesBelow(out);

    QCOMPARE(report.messages, window.messages);
    QCOMPARE(report.refused, window.refused);
    QCOMPARE(report.calcRes, window.calcRes);
    QCOMPARE(report.lcfRes, window.lcfRes);
    if (made.map && !window.map.isEmpty())
        QCOMPARE(report.map, window.map);
    QCOMPARE(report.written, window.written);
    QCOMPARE(byBatch.keys(), byWindow.keys());
    for (auto it = byBatch.constBegin(); it != byBatch.constEnd(); ++it)
        QVERIFY2(it.value() == byWindow[it.key()], qPrintable(it.key()));
    m_messages += report.messages;
    m_written += report.written.size();

    if (seed % 8 != 0 || checkResultPath(*job, made.path()))
        return;
    restore(out, before);
    const Output program = runProgram(made.path());
    QCOMPARE(program.text, reportText(*job, report));
    QCOMPARE(program.status, expectedStatus(report));
    QVERIFY(filesBelow(out) == byWindow);
    ++m_programs;
}

/// What a job of many maps writes for each is what "Write" writes, byte by byte.
void tst_WindowAndBatch::sameMaps()
{
    QFETCH(quint32, seed);
    const QTemporaryDir folder;
    RandomJob made(seed, folder.path());
    JobError error;
    const std::optional<Job> read = readJob(made.path(), error);
    QVERIFY(read);
    if (!read->points)
        return; // a map has points
    const OneOfManyMaps many(made, *read, folder.path());
    const std::optional<JobData> common = readJobData(many.job, error);
    if (!common)
        return; // sameTextsAndFiles has those that cannot be read
    Workers workers(1 + seed % 3);
    const MapOutcome outcome = analyseMap(many.job, *common, many.map, workers);

    const QString beside = folder.filePath(QStringLiteral("window"));
    QVERIFY(QDir().mkpath(beside));
    made.result = beside + QLatin1Char('/') + QFileInfo(many.result).fileName();
    made.target = made.lcf = false;
    made.map = true;
    // Histograms are written only where there are some.
    const QStringList names{mapResultFile(many.job, many.map),
                            mapHistogramFile(many.job, many.map, valenceHistogramTag),
                            mapHistogramFile(many.job, many.map, thicknessHistogramTag)};
    for (int i : {1, 2})
        create(beside + QLatin1Char('/') + QFileInfo(names[i]).fileName(), {});
    Window window(made);
    const bool unreadable =
        std::any_of(window.panel.ePoints.begin(), window.panel.ePoints.end(), [](AEPoint* point) {
            return !point->mapData().valid && !point->MapFile->FileName->text().isEmpty();
        });
    window.run(made);
    QVERIFY(!outcome.fileFailed);
    if (unreadable || window.map.isEmpty()) {
        QVERIFY(!outcome.row.refusal.isEmpty());
        if (!unreadable)
            QCOMPARE(outcome.row.refusal, window.messages.last());
        QCOMPARE(outcome.files, QStringList());
        ++m_refusedMaps;
        return;
    }
    QCOMPARE(outcome.row.refusal, QString());
    QCOMPARE(outcome.row.messages, window.messages);
    QCOMPARE(QStringLiteral("%1 x %2 pixels").arg(outcome.row.columns).arg(outcome.row.rows),
             window.map);
    QCOMPARE(outcome.files, names);
    for (const QString& name : names)
        QVERIFY2(contents(name) == contents(beside + QLatin1Char('/') + QFileInfo(name).fileName()),
                 qPrintable(name));
    ++m_maps;
}

/// A session at the window, saved as a job: the batch and a fresh window have the same.
void tst_WindowAndBatch::sessionsAsJobs()
{
    QFETCH(quint32, seed);
    const QTemporaryDir folder;
    PanelSession session(seed, folder.path(), seed % 3 == 0);
    for (int i = 0; i < 12; ++i)
        QVERIFY2(session.step(), qPrintable(session.report()));
    FourPs& used = session.panel();
    if (seed % 2 == 0)
        chooseGoodPoints(used);
    makeKeepable(used);
    const QString path = folder.filePath(QStringLiteral("session.toml"));
    QCOMPARE(jobOf(used, folder.path()).lost.join(QLatin1Char(';')), QString());
    used.findChild<JobMenu*>()->save(path);

    JobError error;
    const std::optional<Job> job = readJob(path, error);
    QVERIFY2(job, qPrintable(errorText(path, error)));
    FourPs fresh;
    fresh.findChild<JobMenu*>()->open(path);
    QCOMPARE(textsOf(fresh), textsOf(used));
    const Pressed inUsed(used, *job);
    const Pressed inFresh(fresh, *job);
    QCOMPARE(inFresh.messages, inUsed.messages);
    QCOMPARE(inFresh.calcRes, inUsed.calcRes);
    QCOMPARE(inFresh.lcfRes, inUsed.lcfRes);

    Job printing = *job;
    printing.mapResult = {}; // what is written has its own test
    const std::optional<JobData> data = readJobData(printing, error);
    QVERIFY2(data, qPrintable(errorText(path, error)));
    const RunReport report = runJob(printing, *data);
    QCOMPARE(report.messages, inUsed.messages);
    QCOMPARE(report.calcRes, inUsed.calcRes);
    QCOMPARE(report.lcfRes, inUsed.lcfRes);
    ++m_sessions;
    m_refusedSessions += report.refused ? 1 : 0;
    if (seed % 8 != 0 || checkResultPath(*job, path))
        return;
    create(path, jobText(printing));
    const Output program = runProgram(path);
    QCOMPARE(program.text, reportText(printing, report));
    QCOMPARE(program.status, expectedStatus(report));
}

void tst_WindowAndBatch::jobsReachedEverything()
{
    const bool judge = !qEnvironmentVariableIsSet("DROVIK_SESSIONS");
    const QStringList missing = kindsNotReached(m_messages);
    QVERIFY2(missing.isEmpty() || !judge, qPrintable(missing.join(QLatin1Char('\n'))));
    qInfo("%6d files written, %d jobs by the program, %d unreadable", m_written, m_programs,
          m_unreadable);
    qInfo("%6d maps of many, %d refused", m_maps, m_refusedMaps);
    QVERIFY((m_written > 0 && m_programs > 0 && m_unreadable > 0) || !judge);
    QVERIFY((m_maps > 0 && m_refusedMaps > 0) || !judge);
    qInfo("%6d sessions as jobs, %d of them refused in part", m_sessions, m_refusedSessions);
    QVERIFY((m_refusedSessions > 0 && m_refusedSessions < m_sessions) || !judge);
}

void tst_WindowAndBatch::windowKeepsAResultBesideARefusal()
{
    const QTemporaryDir folder;
    RandomJob made(0, folder.path());
    made.settings = Settings();
    made.files = {};
    Window window(made);
    window.panel.CalcRes->setText(QStringLiteral("an earlier result"));
    window.panel.LCFRes->setText(QStringLiteral("an earlier fit"));
    window.panel.CalcTargetB->click();
    window.panel.LCFB->click();
    QCOMPARE(window.panel.CalcRes->text(), QStringLiteral("an earlier result"));
    QCOMPARE(window.panel.LCFRes->text(), QStringLiteral("an earlier fit"));

    JobError error;
    const std::optional<Job> job = parseJob("", folder.path(), error);
    QVERIFY(job);
    const std::optional<JobData> data = readJobData(*job, error);
    QVERIFY(data);
    const RunReport report = runJob(*job, *data);
    QVERIFY(report.refused);
    QCOMPARE(report.calcRes, QString());
    QCOMPARE(report.lcfRes, QString());
    QCOMPARE(reportText(*job, report),
             QStringLiteral("Ref File1 is not valid.\nEnergy Range is not selected, which should "
                            "by selected by CB of TR.\nCalcRes: \nLCFRes: \n"));
}

QTEST_MAIN(tst_WindowAndBatch)
#include "tst_WindowAndBatch.moc"
