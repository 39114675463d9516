#include "jobs/JobTemplate.h"

#include "jobs/JobFile.h"
#include "jobs/JobSettings.h"

#include <QRegularExpression>
#include <QtTest>

/// The job that `drovik-batch --template` prints.
class tst_JobTemplate : public QObject
{
    Q_OBJECT

private slots:
    void isAJob();
    void keepsTheForm();
    void hasEveryKeyAndNoOther();
    void whatIsCommentedOutIsRight_data();
    void whatIsCommentedOutIsRight();
};

namespace
{

std::optional<Job> parsed(const QByteArray& text, QString& why)
{
    JobError error;
    auto job = parseJob(text, QStringLiteral("/data"), error);
    why = errorText(QStringLiteral("template"), error);
    return job;
}

/// "files.ref1" for each line that sets a key, commented out or not, and for keys in braces.
QStringList keysOf(const QByteArray& text)
{
    static const QRegularExpression table(QStringLiteral("^\\[\\[?([a-z]+)\\]\\]?$"));
    static const QRegularExpression key(QStringLiteral("^(# )?([a-z_0-9]+) = (.*)$"));
    static const QRegularExpression inside(QStringLiteral("([a-z]+) = "));
    QStringList keys;
    QString path;
    for (const QString& line : QString::fromUtf8(text).split(QLatin1Char('\n'))) {
        if (const auto found = table.match(line); found.hasMatch())
            path = found.captured(1) + QLatin1Char('.');
        const auto found = key.match(line);
        if (!found.hasMatch())
            continue;
        const QString name = path + found.captured(2);
        auto more = inside.globalMatch(found.captured(3));
        if (!more.hasNext())
            keys += name;
        while (more.hasNext())
            keys += name + QLatin1Char('.') + more.next().captured(1);
    }
    keys.removeDuplicates();
    keys.sort();
    return keys;
}

} // namespace

void tst_JobTemplate::isAJob()
{
    QString why;
    const std::optional<Job> job = parsed(jobTemplate(), why);
    QVERIFY2(job, qPrintable(why));
    QCOMPARE(job->targets.size(), std::size_t(1));
    QCOMPARE(job->stackTargets.size(), std::size_t(1));
    QCOMPARE(job->maps.size(), std::size_t(3));
    QCOMPARE(job->points->size(), std::size_t(4));
}

/// Its settings are those of the window at its start, which it is said to show.
void tst_JobTemplate::keepsTheForm()
{
    QString why;
    const std::optional<Job> job = parsed(jobTemplate(), why);
    QVERIFY2(job, qPrintable(why));
    const Settings given = settingsOf(*job);
    const Settings form = settingsOf(Job());
    QCOMPARE(given.edge, form.edge);
    QCOMPARE(given.preEdgeEnd, form.preEdgeEnd);
    QCOMPARE(given.postEdgeStart, form.postEdgeStart);
    QCOMPARE(given.valences.ref1, form.valences.ref1);
    QCOMPARE(given.valences.ref2, form.valences.ref2);
    QVERIFY(given.conditions.thickness == form.conditions.thickness);
    QCOMPARE(given.conditions.referencesMinusVictreen, form.conditions.referencesMinusVictreen);
    QCOMPARE(given.conditions.targetMinusVictreen, form.conditions.targetMinusVictreen);
    QCOMPARE(given.conditions.victreenIsPre, form.conditions.victreenIsPre);
    QCOMPARE(given.conditions.exact, form.conditions.exact);
    for (std::size_t i = 0; i < 4; ++i) {
        QCOMPARE(given.points[i].energy, form.points[i].energy);
        QCOMPARE(given.points[i].use, form.points[i].use);
        QCOMPARE(given.points[i].vPoint, form.points[i].vPoint);
    }
    for (const auto& [mine, theirs] :
         {std::pair(&given.valenceHistogram, &form.valenceHistogram),
          std::pair(&given.thicknessHistogram, &form.thicknessHistogram)}) {
        QCOMPARE(mine->first, theirs->first);
        QCOMPARE(mine->last, theirs->last);
        QCOMPARE(mine->boxes, theirs->boxes);
    }
    const Job nothing;
    QCOMPARE(job->calculateTarget, nothing.calculateTarget);
    QCOMPARE(job->calculateLcf, nothing.calculateLcf);
    QCOMPARE(job->calculateMap, nothing.calculateMap);
    QCOMPARE(job->pictures, nothing.pictures);
    QCOMPARE(job->report, nothing.report);
    QCOMPARE(job->mapFiles, nothing.mapFiles);
    QCOMPARE(job->tiff, nothing.tiff);
    QCOMPARE(job->hdf5, nothing.hdf5);
    QVERIFY(job->language == nothing.language);
}

void tst_JobTemplate::hasEveryKeyAndNoOther()
{
    QStringList known = jobKeys();
    known.sort();
    QCOMPARE(keysOf(jobTemplate()), known);
}

void tst_JobTemplate::whatIsCommentedOutIsRight_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QByteArrayList>("instead"); ///< of these
    const QByteArrayList ofStack{
        "[[target]]",    "stack = ", "kind = ",  "values = ", "flat = ",           "dark = ",
        "pixel_size = ", "row0 = ",  "shift = ", "region = ", "tilt_ev_per_row = "};
    QTest::newRow("target") << QByteArray("target") << QByteArrayList{"targets = "};
    QTest::newRow("map_result") << QByteArray("map_result")
                                << QByteArrayList{"targets = ",   "[[map]]",     "name = ",
                                                  "images = ",    "pattern = ",  "[output]",
                                                  "folder = ",    "pictures = ", "report = ",
                                                  "map_files = ", "tiff = ",     "hdf5 = ",
                                                  "language = "} +
                                       ofStack;
    QTest::newRow("map") << QByteArray("map")
                         << QByteArrayList{"[[map]]", "name = ", "images = ", "pattern = "} +
                                ofStack;
}

void tst_JobTemplate::whatIsCommentedOutIsRight()
{
    QFETCH(QByteArray, key);
    QFETCH(QByteArrayList, instead);
    QByteArray text = '\n' + jobTemplate();
    const QByteArray commented = "\n# " + key + " = ";
    QCOMPARE(text.count(commented), 1);
    text.replace(commented, '\n' + key + " = ");
    for (const QByteArray& other : instead)
        text.replace('\n' + other, "\n# " + other);
    QString why;
    QVERIFY2(parsed(text, why), qPrintable(why));
}

QTEST_GUILESS_MAIN(tst_JobTemplate)
#include "tst_JobTemplate.moc"
