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

QTEST_GUILESS_MAIN(tst_JobData)
#include "tst_JobData.moc"
