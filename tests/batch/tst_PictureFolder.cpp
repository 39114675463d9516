#include "batch/PictureFolder.h"

#include <QSet>
#include <QtTest>

class TestPictureFolder : public QObject
{
    Q_OBJECT

private slots:
    void namesAreSafe_data();
    void namesAreSafe();
    void differentTargetsHaveDifferentPaths();
    void longNamesAreShortened();
};

void TestPictureFolder::namesAreSafe_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("path");
    QTest::newRow("plain") << "s1.dat"
                           << "s1.dat";
    QTest::newRow("folder") << "scans/s_1-a.dat"
                            << "scans/s_1-a.dat";
    QTest::newRow("blank") << "scans/a b.dat"
                           << "scans/a=20b.dat";
    QTest::newRow("upward") << "../../x.dat"
                            << "=2E=2E/=2E=2E/x.dat";
    QTest::newRow("here") << "./x"
                          << "=2E/x";
    QTest::newRow("dots in a name") << "a..b"
                                    << "a..b";
    QTest::newRow("absolute") << "/data/x"
                              << "=2Fdata/x";
    QTest::newRow("empty name") << "a//b"
                                << "a/=/b";
    QTest::newRow("tag") << "<b>\"'&"
                         << "=3Cb=3E=22=27=26";
    QTest::newRow("Japanese") << QString::fromUtf8("試.dat") << "=E8=A9=A6.dat";
    QTest::newRow("line end") << "a\nb"
                              << "a=0Ab";
    QTest::newRow("own sign") << "a=20b"
                              << "a=3D20b";
}

void TestPictureFolder::namesAreSafe()
{
    QFETCH(QString, target);
    QTEST(picturePath(target), "path");
}

void TestPictureFolder::differentTargetsHaveDifferentPaths()
{
    QSet<QString> paths;
    const char* targets[] = {"a b", "a=20b",  "/a",  "=2Fa", "a/b", "a=2Fb", "a//b",
                             "..",  "=2E=2E", "./a", "../a", "",    "/",     "="};
    for (const char* target : targets)
        paths.insert(picturePath(QString::fromLatin1(target)));
    QCOMPARE(paths.size(), static_cast<int>(std::size(targets)));
}

void TestPictureFolder::longNamesAreShortened()
{
    const QString one = picturePath(QString(250, QLatin1Char('x')) + QStringLiteral("1/s.dat"));
    const QString other = picturePath(QString(250, QLatin1Char('x')) + QStringLiteral("2/s.dat"));
    QCOMPARE(one.size(), 200 + 6);
    QVERIFY(one.endsWith(QLatin1String("/s.dat")));
    QVERIFY(one != other);
    for (const QString& name : picturePath(QString(250, QLatin1Char(' '))).split(QLatin1Char('/')))
        QCOMPARE(name.size(), 200);
}

QTEST_APPLESS_MAIN(TestPictureFolder)
#include "tst_PictureFolder.moc"
