#include "tests/fuzz/ReaderChecks.h"

#include <QDir>
#include <QFile>
#include <QtTest>

/// Every oddity of the corpus, among them all that the fuzzer found, read by the program and by the
/// literal reading.
class tst_Corpus : public QObject
{
    Q_OBJECT
private slots:
    void spectra_data() { list("spectrum"); }
    void spectra();
    void maps_data() { list("map"); }
    void maps();
    void jobs_data() { list("job"); }
    void jobs();
    void formats_data() { list("formats"); }
    void formats();

private:
    static void list(const char* kind);
};

void tst_Corpus::list(const char* kind)
{
    QTest::addColumn<QByteArray>("text");
    const QDir folder(QStringLiteral(SOURCE_FOLDER "/tests/fuzz/corpus/") + QLatin1String(kind));
    const QStringList names = folder.entryList(QDir::Files);
    QVERIFY(names.size() > 10);
    for (const QString& name : names) {
        QFile file(folder.filePath(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QTest::newRow(qPrintable(name)) << file.readAll();
    }
}

void tst_Corpus::spectra()
{
    QFETCH(QByteArray, text);
    const char* difference = check::spectrumDifference(text);
    QVERIFY2(!difference, difference);
}

void tst_Corpus::maps()
{
    QFETCH(QByteArray, text);
    for (const std::size_t chunkBytes : {0, 1, 2, 3, 7, 16, 40}) {
        const char* difference = check::mapDifference(text, chunkBytes);
        QVERIFY2(!difference, difference);
    }
}

void tst_Corpus::jobs()
{
    QFETCH(QByteArray, text);
    const char* difference = check::jobDifference(text);
    QVERIFY2(!difference, difference);
}

void tst_Corpus::formats()
{
    QFETCH(QByteArray, text);
    const char* difference = check::formatDifference(text);
    QVERIFY2(!difference, difference);
}

QTEST_GUILESS_MAIN(tst_Corpus)
#include "tst_Corpus.moc"
