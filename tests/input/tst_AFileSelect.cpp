#include "input/AFileSelect.h"
#include "input/AXafsFileSelect.h"
#include "tests/support/PanelActions.h"

#include <QDir>
#include <QFileDialog>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

class tst_AFileSelect : public QObject
{
    Q_OBJECT

private slots:
    void openModeIsReadOnlyAndYellow();
    void saveModeIsEditableAndWhite();
    void otherModeChangesNothing();
    void severalFilesFromTheNextModeOn();
    void dialogFollowsTheMode();
    void dialogListsDataFilesFirst();
    void dialogChoiceReachesTheSelector();
    void selectButtonShowsTheDialog();
    void dialogFollowsTheFolder();
    void existingResultIsChosenWithoutAQuestion();
    void emptyListChangesNothing();
    void dragWithoutFilesIsNotLetIn();
    void saveSuffix_data();
    void saveSuffix();
    void fileIsShownAndAnnounced();
    void linksAreResolvedInTheFolder();
    void severalFilesShowTheirNames();
    void clearEmitsAnEmptyPath();
    void dropTakesTheFirstUrl();
    void dropOfOtherUrlsIsIgnored_data();
    void dropOfOtherUrlsIsIgnored();
    void dropOfFileUrls_data();
    void dropOfFileUrls();
    void dropOfANetworkPath();
    void dropOnAMultiFileSelector();
    void dropSimplifiesBlanks();
    void dropKeepsSpecialCharacters_data();
    void dropKeepsSpecialCharacters();
    void dropTakesTheWholeText();
    void dropOnTheLineReachesTheSelector();
    void typedNameStaysAsItIs();
    void noRecordBeforeTheFirstFile();
};

void tst_AFileSelect::openModeIsReadOnlyAndYellow()
{
    const AFileSelect select;
    QVERIFY(select.FileName->isReadOnly());
    QCOMPARE(select.FileName->styleSheet(),
             QStringLiteral("background-color: rgb(255, 255, 220);"));
}

void tst_AFileSelect::saveModeIsEditableAndWhite()
{
    const AFileSelect select(nullptr, AFileSelect::Save);
    QVERIFY(!select.FileName->isReadOnly());
    QCOMPARE(select.FileName->styleSheet(),
             QStringLiteral("background-color: rgb(255, 255, 255);"));
}

void tst_AFileSelect::otherModeChangesNothing()
{
    AFileSelect select(nullptr, AFileSelect::Save);
    select.setMode(7);
    QCOMPARE(select.mode(), 7);
    QVERIFY(!select.FileName->isReadOnly());
    QCOMPARE(select.FileName->styleSheet(),
             QStringLiteral("background-color: rgb(255, 255, 255);"));
    QCOMPARE(select.dialog()->acceptMode(), QFileDialog::AcceptSave); // as the last mode had it
    QCOMPARE(select.dialog()->fileMode(), QFileDialog::AnyFile);
}

void tst_AFileSelect::severalFilesFromTheNextModeOn()
{
    AFileSelect select;
    select.setMulti(true); // before the dialog is there
    QCOMPARE(select.dialog()->fileMode(), QFileDialog::ExistingFile);
    AFileSelect set;
    set.setMulti(true);
    set.setMode(AFileSelect::Open);
    QCOMPARE(set.dialog()->fileMode(), QFileDialog::ExistingFiles);
}

void tst_AFileSelect::dialogFollowsTheMode()
{
    AFileSelect select;
    QCOMPARE(select.dialog()->acceptMode(), QFileDialog::AcceptOpen);
    QCOMPARE(select.dialog()->fileMode(), QFileDialog::ExistingFile);
    select.setMulti(true);
    QCOMPARE(select.dialog()->fileMode(), QFileDialog::ExistingFile); // until the mode is set
    select.setMode(AFileSelect::Open);
    QCOMPARE(select.dialog()->fileMode(), QFileDialog::ExistingFiles);
    select.setMode(AFileSelect::Save);
    QCOMPARE(select.dialog()->acceptMode(), QFileDialog::AcceptSave);
    QCOMPARE(select.dialog()->fileMode(), QFileDialog::AnyFile);
}

void tst_AFileSelect::dialogListsDataFilesFirst()
{
    AFileSelect select;
    QCOMPARE(select.dialog()->nameFilters(),
             QStringList({QStringLiteral("Data Files (*.dat)"), QStringLiteral("All (* *.*)")}));
}

void tst_AFileSelect::dialogChoiceReachesTheSelector()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a  b.dat"));
    AFileSelect select;
    QSignalSpy paths(&select, &AFileSelect::newFilePath);
    emit select.dialog()->currentChanged(path); // highlighting is no choice
    QCOMPARE(paths.count(), 0);
    emit select.dialog()->fileSelected(path);
    QCOMPARE(paths.count(), 1);
    QCOMPARE(paths[0][0].toString(), path); // blanks as they are
    QSignalSpy lists(&select, &AFileSelect::newFilePaths);
    emit select.dialog()->filesSelected({path});
    QCOMPARE(lists.count(), 1);
}

void tst_AFileSelect::selectButtonShowsTheDialog()
{
    AFileSelect select;
    select.dialog()->setOption(QFileDialog::DontUseNativeDialog);
    select.show();
    user::click(select.SelectB);
    QVERIFY(select.dialog()->isVisible());
    select.dialog()->reject();
}

void tst_AFileSelect::dialogFollowsTheFolder()
{
    const QTemporaryDir dir;
    const QTemporaryDir next;
    AFileSelect select;
    select.setDir(dir.path());
    QCOMPARE(select.dialog()->directory().canonicalPath(), QDir(dir.path()).canonicalPath());
    select.setDir(next.path()); // the dialog is there already
    QCOMPARE(select.dialog()->directory().canonicalPath(), QDir(next.path()).canonicalPath());
    select.setFile(dir.filePath(QStringLiteral("x.dat")));
    QCOMPARE(select.dialog()->directory().canonicalPath(), QDir(dir.path()).canonicalPath());
}

void tst_AFileSelect::existingResultIsChosenWithoutAQuestion()
{
    const QTemporaryDir dir;
    QFile there(dir.filePath(QStringLiteral("there.dat")));
    QVERIFY(there.open(QIODevice::WriteOnly));
    there.close();
    AFileSelect select(nullptr, AFileSelect::Save);
    QDialog* dialog = select.dialog();
    select.dialog()->setOption(QFileDialog::DontUseNativeDialog);
    dialog->show();
    select.dialog()->selectFile(there.fileName());
    bool asked = false;
    QTimer answer; // a question would wait for it
    connect(&answer, &QTimer::timeout, &select, [&asked] {
        if (QWidget* question = QApplication::activeModalWidget()) {
            asked = true;
            question->close();
        }
    });
    answer.start(0);
    dialog->accept();
    QVERIFY(!asked);
    QVERIFY(!dialog->isVisible());
    QCOMPARE(select.FileName->text(), there.fileName());
}

void tst_AFileSelect::emptyListChangesNothing()
{
    const QTemporaryDir dir;
    AFileSelect select;
    select.newFiles({dir.filePath(QStringLiteral("a.dat"))});
    QSignalSpy dirs(&select, &AFileSelect::newDir);
    QSignalSpy lists(&select, &AFileSelect::newFilePaths);
    const QString folder = select.dir();
    select.newFiles({});
    QCOMPARE(select.FileName->text(), QStringLiteral("a.dat "));
    QCOMPARE(select.dir(), folder);
    QVERIFY(dirs.isEmpty());
    QVERIFY(lists.isEmpty());
}

void tst_AFileSelect::dragWithoutFilesIsNotLetIn()
{
    AFileSelect select;
    select.show();
    QMimeData words;
    words.setText(QStringLiteral("file:///tmp/a.dat"));
    words.removeFormat(QStringLiteral("text/uri-list"));
    QVERIFY(!user::dropData(&select, words));
    QMimeData file;
    file.setUrls({QUrl(QStringLiteral("file:///tmp/a.dat"))});
    QVERIFY(user::dropData(&select, file));
}

void tst_AFileSelect::saveSuffix_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("shown");
    QTest::newRow("none") << QStringLiteral("/tmp/x") << QStringLiteral("/tmp/x.dat");
    QTest::newRow("other") << QStringLiteral("/tmp/x.txt") << QStringLiteral("/tmp/x.txt.dat");
    QTest::newRow("same") << QStringLiteral("/tmp/x.dat") << QStringLiteral("/tmp/x.dat");
    QTest::newRow("two dots") << QStringLiteral("/tmp/x.tar.dat")
                              << QStringLiteral("/tmp/x.tar.dat");
    QTest::newRow("two dots, the first the same")
        << QStringLiteral("/tmp/x.dat.txt") << QStringLiteral("/tmp/x.dat.txt.dat");
    QTest::newRow("case") << QStringLiteral("/tmp/x.DAT") << QStringLiteral("/tmp/x.DAT.dat");
}

void tst_AFileSelect::saveSuffix()
{
    QFETCH(QString, name);
    AFileSelect select(nullptr, AFileSelect::Save);
    select.setFile(name);
    QTEST(select.FileName->text(), "shown");
    AFileSelect open;
    open.setFile(name);
    QCOMPARE(open.FileName->text(), name);
}

void tst_AFileSelect::fileIsShownAndAnnounced()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("x.dat"));
    AFileSelect select;
    QStringList heard;
    connect(&select, &AFileSelect::newDir, [&](const QString& d) { heard << d; });
    connect(&select, &AFileSelect::newFilePath, [&](const QString& p) { heard << p; });
    select.setFile(path);
    const QString folder = QDir(dir.path()).canonicalPath();
    QCOMPARE(heard, QStringList({folder, path})); // the folder first
    QCOMPARE(select.dir(), folder);
    QCOMPARE(select.fileName(), QStringLiteral("x.dat"));
    QCOMPARE(select.FileName->text(), path);
}

void tst_AFileSelect::linksAreResolvedInTheFolder()
{
    const QTemporaryDir dir;
    QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("real")));
    QVERIFY(
        QFile::link(dir.filePath(QStringLiteral("real")), dir.filePath(QStringLiteral("link"))));
    AFileSelect select;
    select.setFile(dir.filePath(QStringLiteral("link/x.dat")));
    QCOMPARE(select.dir(), QDir(dir.filePath(QStringLiteral("real"))).canonicalPath());
    QCOMPARE(select.FileName->text(), dir.filePath(QStringLiteral("link/x.dat")));
}

void tst_AFileSelect::severalFilesShowTheirNames()
{
    const QTemporaryDir dir;
    const QStringList paths = {dir.filePath(QStringLiteral("a.dat")),
                               dir.filePath(QStringLiteral("b.dat")),
                               dir.filePath(QStringLiteral("c d.dat"))};
    AFileSelect select;
    QSignalSpy dirs(&select, &AFileSelect::newDir);
    QSignalSpy lists(&select, &AFileSelect::newFilePaths);
    QSignalSpy single(&select, &AFileSelect::newFilePath);
    select.newFiles(paths);
    QCOMPARE(select.FileName->text(), QStringLiteral("a.dat b.dat c d.dat "));
    QCOMPARE(dirs.count(), 1);
    QCOMPARE(lists.count(), 1);
    QCOMPARE(lists[0][0].toStringList(), paths);
    QCOMPARE(single.count(), 0);
}

void tst_AFileSelect::clearEmitsAnEmptyPath()
{
    AFileSelect select;
    select.show();
    select.setFile(QStringLiteral("/tmp/x.dat"));
    QSignalSpy paths(&select, &AFileSelect::newFilePath);
    QSignalSpy dirs(&select, &AFileSelect::newDir);
    user::click(select.ClearB);
    QCOMPARE(select.FileName->text(), QString());
    QCOMPARE(paths.count(), 1);
    QCOMPARE(paths[0][0].toString(), QString());
    QCOMPARE(dirs.count(), 0);
}

void tst_AFileSelect::dropTakesTheFirstUrl()
{
    AFileSelect select;
    select.show();
    user::dropUrls(&select, {QUrl::fromLocalFile(QStringLiteral("/tmp/a.dat")),
                             QUrl::fromLocalFile(QStringLiteral("/tmp/b.dat"))});
    QCOMPARE(select.FileName->text(), QStringLiteral("/tmp/a.dat"));
}

void tst_AFileSelect::dropOfOtherUrlsIsIgnored_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::newRow("web") << QUrl(QStringLiteral("http://example.org/a.dat"));
    QTest::newRow("ftp") << QUrl(QStringLiteral("ftp://example.org/a.dat"));
    QTest::newRow("empty") << QUrl();
    QTest::newRow("relative") << QUrl(QStringLiteral("a.dat"));
    QTest::newRow("a file without a place") << QUrl(QStringLiteral("file:a.dat"));
    QTest::newRow("a file in a folder without a place") << QUrl(QStringLiteral("file:data/a.dat"));
}

void tst_AFileSelect::dropOfOtherUrlsIsIgnored()
{
    QFETCH(QUrl, url);
    AFileSelect select;
    select.show();
    QSignalSpy paths(&select, &AFileSelect::newFilePath);
    user::dropUrls(&select, {url});
    QCOMPARE(paths.count(), 0);
    QCOMPARE(select.FileName->text(), QString());
}

// As the desktop hands them over: the bytes of a list of URLs.
void tst_AFileSelect::dropOfFileUrls_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QString>("shown");
    QTest::newRow("three slashes")
        << QByteArray("file:///tmp/a.dat\r\n") << QStringLiteral("/tmp/a.dat");
    // The text of an absolute path's URL always has them.
    QTest::newRow("one slash") << QByteArray("file:/tmp/a.dat\r\n") << QStringLiteral("/tmp/a.dat");
    QTest::newRow("host") << QByteArray("file://host/share/a.dat\r\n")
                          << QStringLiteral("//host/share/a.dat");
    QTest::newRow("no slash") << QByteArray("file:a.dat\r\n") << QString();
    QTest::newRow("no slash, the next with three")
        << QByteArray("file:a.dat\r\nfile:///tmp/b.dat\r\n") << QString();
}

void tst_AFileSelect::dropOfFileUrls()
{
    QFETCH(QByteArray, list);
    QFETCH(QString, shown);
    AFileSelect select;
    select.show();
    QSignalSpy paths(&select, &AFileSelect::newFilePath);
    QMimeData data;
    data.setData(QStringLiteral("text/uri-list"), list);
    user::dropData(&select, data);
    QCOMPARE(select.FileName->text(), shown);
    QCOMPARE(paths.count(), shown.isEmpty() ? 0 : 1);
}

void tst_AFileSelect::dropOfANetworkPath()
{
    AFileSelect select;
    select.show();
    user::dropUrls(&select, {QUrl(QStringLiteral("file://server/share/a.dat"))});
    QCOMPARE(select.FileName->text(), QStringLiteral("//server/share/a.dat"));
}

void tst_AFileSelect::dropOnAMultiFileSelector()
{
    AFileSelect select;
    select.setMulti(true);
    select.setMode(AFileSelect::Open);
    select.show();
    QSignalSpy single(&select, &AFileSelect::newFilePath);
    QSignalSpy lists(&select, &AFileSelect::newFilePaths);
    user::drop(&select, QStringLiteral("/tmp/a.dat"));
    QCOMPARE(select.FileName->text(), QStringLiteral("/tmp/a.dat"));
    QCOMPARE(single.count(), 1);
    QCOMPARE(lists.count(), 0);
}

void tst_AFileSelect::dropSimplifiesBlanks()
{
    AFileSelect select;
    select.show();
    user::drop(&select, QStringLiteral("/tmp/a   b .dat"));
    QCOMPARE(select.FileName->text(), QStringLiteral("/tmp/a b .dat"));
}

void tst_AFileSelect::dropKeepsSpecialCharacters_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("percent") << QStringLiteral("/tmp/100%1 %20.dat");
    QTest::newRow("hash") << QStringLiteral("/tmp/run#3?.dat");
    QTest::newRow("quotes") << QStringLiteral("/tmp/\"it's\".dat");
    QTest::newRow("Japanese") << QString::fromUtf8("/tmp/\u8a66\u6599.dat");
    QTest::newRow("drive letter") << QStringLiteral("/C:/data/a.dat");
}

void tst_AFileSelect::dropKeepsSpecialCharacters()
{
    QFETCH(QString, path);
    AFileSelect select;
    select.show();
    user::drop(&select, path);
    QCOMPARE(select.FileName->text(), path);
}

void tst_AFileSelect::dropTakesTheWholeText()
{
    AFileSelect select;
    select.show();
    user::dropUrls(&select, {QUrl(QStringLiteral("file:///tmp/run?3#4%25.dat"))});
    QCOMPARE(select.FileName->text(), QStringLiteral("/tmp/run?3#4%.dat"));
}

void tst_AFileSelect::dropOnTheLineReachesTheSelector()
{
    AFileSelect select(nullptr, AFileSelect::Save);
    select.show();
    QVERIFY(!select.FileName->acceptDrops());
    user::drop(&select, QStringLiteral("/tmp/result"));
    QCOMPARE(select.FileName->text(), QStringLiteral("/tmp/result.dat"));
}

void tst_AFileSelect::typedNameStaysAsItIs()
{
    AFileSelect select(nullptr, AFileSelect::Save);
    select.show();
    QSignalSpy paths(&select, &AFileSelect::newFilePath);
    user::type(select.FileName, QStringLiteral("/tmp/result"));
    QCOMPARE(select.FileName->text(), QStringLiteral("/tmp/result"));
    QCOMPARE(paths.count(), 0);
}

void tst_AFileSelect::noRecordBeforeTheFirstFile()
{
    AXafsFileSelect select;
    double mut = 7;
    QVERIFY(!select.muTAt(8350, mut));
    QCOMPARE(mut, 0.0);
    QCOMPARE(select.edgeJump(), 0.0);
    QVERIFY(!select.isValid());
    select.setFile(QStringLiteral("/nowhere/missing.dat"));
    mut = 7;
    QVERIFY(!select.muTAt(8350, mut)); // an empty record leaves the value alone
    QCOMPARE(mut, 7.0);
}

QTEST_MAIN(tst_AFileSelect)
#include "tst_AFileSelect.moc"
