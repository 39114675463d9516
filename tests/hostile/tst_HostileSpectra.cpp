#include "tests/fuzz/ReaderChecks.h"
#include "tests/hostile/HostileFiles.h"
#include "tests/model/PanelSession.h"

#include "app/FourPs.h"
#include "input/AXafsData.h"
#include "input/AXafsFileSelect.h"
#include "input/SpectrumReader.h"
#include "tests/support/PanelActions.h"

#include <QBuffer>
#include <QFileDialog>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <unistd.h>

namespace
{

constexpr int megabyte = 1 << 20;

/// Lines that the program wrote to the console.
QStringList consoleLines;

void countLine(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    Q_UNUSED(type)
    Q_UNUSED(context)
    consoleLines += text.split(QLatin1Char('\n'));
}

} // namespace

/// Spectrum files that nobody should give to the program: it goes on, in bounded memory, with at
/// most one line on the console for each, and keeps what it had where a file cannot be opened.
class tst_HostileSpectra : public QObject
{
    Q_OBJECT
private slots:
    void unreadableFilesChangeNothing();
    void namesOfAllKinds_data();
    void namesOfAllKinds();
    void nameThatIsNoText();
    void withoutData_data();
    void withoutData();
    void longLines_data();
    void longLines();
    void brokenOffAnywhere();

private:
    QTemporaryDir m_dir;
};

void tst_HostileSpectra::unreadableFilesChangeNothing()
{
    const QTemporaryDir folder;
    const QTemporaryDir odd;
    PanelSession session(1, folder.path(), false);
    const QStringList paths = hostile::unreadable(odd.path());
    const hostile::PlainUser plainUser;
    FourPs& panel = session.panel();
    const auto shown = [&] {
        QStringList texts{panel.CalcRes->text(), panel.LCFRes->text()};
        for (const AEPoint* point : qAsConst(panel.ePoints))
            texts += {point->Mut1->text(), point->Mut2->text(), point->MutT->text(),
                      point->MutBlank->text()};
        return texts;
    };
    user::click(panel.TRVic2);
    const QStringList before = shown();
    const QStringList lines = user::messages(panel);
    QVERIFY(before.first().startsWith(QLatin1String("4ps2")));
    for (const QString& path : paths) {
        consoleLines.clear();
        const QtMessageHandler handler = qInstallMessageHandler(countLine);
        for (AXafsFileSelect* select : qAsConst(panel.xafsSelects)) {
            const int count = user::messages(panel).size();
            user::drop(select, path);
            // The spectrum is still there, so the results are those of before.
            const QStringList since = user::messagesSince(panel, count);
            QCOMPARE(since, lines.mid(lines.size() - since.size()));
            QVERIFY2(select->isValid(), qPrintable(path));
        }
        panel.DispFSelect->newFiles({path});
        qInstallMessageHandler(handler);
        QCOMPARE(shown(), before);
        QCOMPARE(panel.SelectedFs->count(), 0);
        QVERIFY2(consoleLines.size() <= 5, qPrintable(consoleLines.join(QLatin1Char('\n'))));
    }
}

void tst_HostileSpectra::namesOfAllKinds_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("blanks") << QStringLiteral("a name with blanks.dat");
    QTest::newRow("quotes") << QStringLiteral("it's \"quoted\" `so`.dat");
    QTest::newRow("percent") << QStringLiteral("100%1 %2 %20 %n.dat");
    QTest::newRow("Japanese") << QStringLiteral("\u8a66\u6599 \u30b9\u30da\u30af\u30c8\u30eb.dat");
    QTest::newRow("hash and question mark") << QStringLiteral("#1? a&b=c;d.dat");
    QTest::newRow("backslash") << QStringLiteral("back\\slash.dat");
    QTest::newRow("tags") << QStringLiteral("<b>bold<br>.dat");
    QTest::newRow("long") << QString(240, QLatin1Char('x'));
    QTest::newRow("dots") << QStringLiteral("...");
    QTest::newRow("option") << QStringLiteral("-e");
}

void tst_HostileSpectra::namesOfAllKinds()
{
    QFETCH(QString, name);
    const QTemporaryDir folder;
    PanelSession session(2, folder.path(), false);
    const QString path = m_dir.filePath(name);
    QVERIFY(QFile::copy(session.files().spectra.at(1), path));
    QVERIFY2(session.drop(QStringLiteral("RefFile1"), path), qPrintable(session.report()));
    QCOMPARE(session.panel().RefFile1->data()->fileName, path);
    QVERIFY2(session.drop(QStringLiteral("1.2d"), path), qPrintable(session.report()));
    // A result file of that name, and one that cannot be opened.
    const QString target = folder.filePath(QStringLiteral("out/")) + name;
    QVERIFY2(session.type(QStringLiteral("SaveFSelect"), target), qPrintable(session.report()));
    QVERIFY2(session.push(QStringLiteral("WriteB")), qPrintable(session.report()));
    QVERIFY(QFile::exists(target));
    const QString nowhere = folder.filePath(QStringLiteral("out/no folder/")) + name;
    QVERIFY2(session.type(QStringLiteral("SaveFSelect"), nowhere), qPrintable(session.report()));
    QVERIFY2(session.push(QStringLiteral("WriteB")), qPrintable(session.report()));
    QCOMPARE(user::messages(session.panel()).last(),
             QStringLiteral("Can't open the file [%1]").arg(nowhere));
}

void tst_HostileSpectra::nameThatIsNoText()
{
    // Bytes that are no UTF-8; such a name has no text, and the file is one that cannot be opened.
    const QByteArray name = m_dir.path().toLocal8Bit() + "/\xff\xfe.dat";
    const int descriptor = open(name.constData(), O_CREAT | O_WRONLY, 0600);
    QVERIFY(descriptor >= 0);
    close(descriptor);
    const QTemporaryDir folder;
    PanelSession session(3, folder.path(), false);
    AXafsFileSelect* select = session.panel().TargetFile;
    user::dropUrls(select,
                   {QUrl(QString::fromLatin1(
                       "file://" + QUrl::toPercentEncoding(QString::fromLatin1(name), "/")))});
    QVERIFY(select->isValid());
    user::dropUrls(select, {QUrl::fromEncoded("file://" + m_dir.path().toUtf8() + "/%FF%FE.dat")});
    QVERIFY(select->isValid());
    emit select->dialog()->fileSelected(QFile::decodeName(name));
    QVERIFY(select->isValid());
    user::dropUrls(select, {QUrl(QStringLiteral("file:///tmp/%00"))});
    user::dropUrls(select, {QUrl(QStringLiteral("file:"))});
    user::dropUrls(select, {QUrl()});
    QVERIFY(select->isValid());
    QCOMPARE(unlink(name.constData()), 0);
}

void tst_HostileSpectra::withoutData_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one line end") << QByteArray("\n");
    QTest::newRow("NUL") << QByteArray(1000, '\0');
    QByteArray binary;
    for (int i = 0; i < 100000; ++i)
        binary.append(static_cast<char>((i * 2654435761u) >> 13));
    QTest::newRow("binary") << binary;
    QTest::newRow("marker only") << QByteArray("Offset");
    QTest::newRow("header only") << QByteArray("a header\nD= 3.1\n");
    QTest::newRow("half a row") << QByteArray("Offset\n0 13.2 1 5");
}

void tst_HostileSpectra::withoutData()
{
    QFETCH(QByteArray, content);
    const QTemporaryDir folder;
    PanelSession session(4, folder.path(), false);
    const QString path = hostile::write(m_dir.filePath(QStringLiteral("no data")), content);
    const QString result = session.panel().CalcRes->text();
    QVERIFY2(session.drop(QStringLiteral("RefFile2"), path), qPrintable(session.report()));
    QVERIFY(!session.panel().RefFile2->isValid());
    QCOMPARE(session.panel().CalcRes->text(), result);
    QVERIFY(user::messages(session.panel()).contains(QStringLiteral("Ref File2 is not valid.")));
}

void tst_HostileSpectra::longLines_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<QByteArray>("block");
    QTest::newRow("NUL bytes") << QByteArray() << QByteArray(1024, '\0');
    QTest::newRow("one token") << QByteArray() << QByteArray("x");
    QTest::newRow("one number") << QByteArray("Offset\n0 13.") << QByteArray("1234567890");
    QTest::newRow("many tokens") << QByteArray("Offset\n0 13.2 1 5 6") << QByteArray(" 17");
    QTest::newRow("blanks") << QByteArray("Offset\n0 13.2 1 5 ") << QByteArray(" ");
    QTest::newRow("no blanks of ASCII")
        << QByteArray("Offset\n0") << QByteArray("\xc2\xa0\xe3\x80\x80x");
    QTest::newRow("returns") << QByteArray("Offset\n0 13.2 1 5 6") << QByteArray("\r");
    QTest::newRow("spacings") << QByteArray("Offset\n") << QByteArray("D= 3.1 ");
}

/// A line of a megabyte is read as any other; with a much longer one the file is refused, and the
/// spectrum of before is still there.
void tst_HostileSpectra::longLines()
{
    QFETCH(QByteArray, head);
    QFETCH(QByteArray, block);
    const char* difference =
        check::spectrumDifference(head + block.repeated(megabyte / block.size()));
    QVERIFY2(!difference, difference);

    const QString path = hostile::writeLong(m_dir.filePath(QStringLiteral("long")), head, block,
                                            qint64{64} * megabyte * hostile::scale());
    AXafsData data;
    QVERIFY(
        data.read(hostile::write(m_dir.filePath(QStringLiteral("short")), "Offset\n0 13 0 2 1\n")));
    const hostile::MemoryWatch memory;
    QElapsedTimer clock;
    clock.start();
    QVERIFY(!data.read(path));
    const qint64 took = clock.elapsed();
    qInfo("%lld MB in %lld ms with %lld kB", 64LL * hostile::scale(), took, memory.growth() / 1024);
    QFile::remove(path);
    QCOMPARE(data.refusal, QStringLiteral("The spectrum file [%1] is too large.").arg(path));
    QVERIFY(data.valid);
    QCOMPARE(data.points.size(), std::size_t{1});
    QVERIFY(hostile::memoryIsPadded() || memory.growth() < 64 * megabyte);
    QVERIFY2(took < hostile::patienceMs(), qPrintable(QString::number(took)));
}

void tst_HostileSpectra::brokenOffAnywhere()
{
    QByteArray text = "  9809\nMono : D= 3.13551 A\r\nd\xc3\xa9j\xc3\xa0 vu\nOffset 0 0\n";
    for (int i = 0; i < 12; ++i)
        text += " 13." + QByteArray::number(90 - 3 * i) + " 13." + QByteArray::number(90 - 3 * i) +
                " 1.00 " + QByteArray::number(1e5) + "  " + QByteArray::number(7e4 - 3e3 * i) +
                "\r\n";
    for (int size = 0; size <= text.size(); ++size) {
        const char* difference = check::spectrumDifference(text.left(size));
        QVERIFY2(!difference, difference);
    }
}

QTEST_MAIN(tst_HostileSpectra)
#include "tst_HostileSpectra.moc"
