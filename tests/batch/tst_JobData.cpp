#include "batch/JobData.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

/// The files of a job, read without a panel.
class tst_JobData : public QObject
{
    Q_OBJECT

private slots:
    void mapsOfOneScanKeepItsPositionsOnce();
    void lastEnergyOfAHeaderIsTaken();

private:
    QString file(const char* name, const QByteArray& text) const;

    QTemporaryDir m_dir;
};

QString tst_JobData::file(const char* name, const QByteArray& text) const
{
    QFile file(m_dir.filePath(QLatin1String(name)));
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        qFatal("cannot write");
    return file.fileName();
}

void tst_JobData::mapsOfOneScanKeepItsPositionsOnce()
{
    const QByteArray axes = "# AXIS 0 a b c d 2\n# AXIS 1 a b c d 1\n";
    Job job;
    job.points.emplace(3);
    (*job.points)[0].map.path = file("one", axes + "1 2 3 4\n5 6 7 8\n");
    (*job.points)[1].map.path = file("two", axes + "1 2 9 9\n5 6 9 9\n");
    (*job.points)[2].map.path = file("moved", axes + "1 2 3 4\n5 6.5 7 8\n");
    JobError error;
    const std::optional<JobData> data = readJobData(job, error);
    QVERIFY2(data, qPrintable(error.reason));
    QCOMPARE(data->maps[0].positions->size(), std::size_t{2});
    QVERIFY(data->maps[1].positions == data->maps[0].positions);
    QVERIFY(data->maps[2].positions != data->maps[0].positions);
}

void tst_JobData::lastEnergyOfAHeaderIsTaken()
{
    const QByteArray axes = "# AXIS 0 a b c d 1\n# AXIS 1 a b c d 1\n";
    Job job;
    job.points.emplace(2);
    (*job.points)[0].energy = QStringLiteral("8313");
    (*job.points)[1].energy = QStringLiteral("8381");
    (*job.points)[1].map.path =
        file("twice", axes + "# ENERGY = 7090 eV\n# ENERGY = 7125.5 eV\n1 2 3 4\n");
    JobError error;
    const std::optional<JobData> data = readJobData(job, error);
    QVERIFY2(data, qPrintable(error.reason));
    QCOMPARE(data->settings.points[0].energy, std::optional(8313.0));
    QCOMPARE(data->settings.points[1].energy, std::optional(7125.5));
}

QTEST_GUILESS_MAIN(tst_JobData)
#include "tst_JobData.moc"
