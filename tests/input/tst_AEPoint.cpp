#include "input/AEPoint.h"
#include "tests/support/PanelActions.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

QString writeText(const QTemporaryDir& dir, const QByteArray& text)
{
    QFile file(dir.filePath(QStringLiteral("map.dat")));
    if (!file.open(QIODevice::WriteOnly))
        return {};
    file.write(text);
    return file.fileName();
}

} // namespace

class tst_AEPoint : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

private slots:
    void formTexts();
    void rowReadsTheWidgets();
    void energyFieldAnnouncesItsNumber();
    void clicksAnnounceAChange();
    void directoryIsPassedOn();
    void energyLineSetsTheField();
    void severalEnergyLinesInOrder();
    void sizesMakeItValid();
    void withoutAxisLinesItIsNotValid();
    void unreadableFileKeepsTheRecords();
    void readingIsAtItsEndWhateverTheFile_data();
    void readingIsAtItsEndWhateverTheFile();
};

void tst_AEPoint::formTexts()
{
    const AEPoint point;
    QCOMPARE(point.windowTitle(), QStringLiteral("Frame"));
    QCOMPARE(point.UseCB->text(), QStringLiteral("Use"));
    QCOMPARE(point.TRatCB->text(), QStringLiteral("   T. Rat."));
    QCOMPARE(point.VPointCB->text(), QStringLiteral("  V. Point"));
    QCOMPARE(point.EnergyLabel->text(), QStringLiteral("  Energy(eV)"));
    QCOMPARE(point.Mut1Label->text(), QStringLiteral("  mut(Ref 1)"));
    QCOMPARE(point.MutBlankLabel->text(), QStringLiteral("   mut(Blank)"));
    QCOMPARE(point.MapLabel->text(), QStringLiteral("   2D "));
}

void tst_AEPoint::rowReadsTheWidgets()
{
    AEPoint point;
    point.UseCB->setChecked(true);
    point.TRatCB->setChecked(true);
    point.VPointCB->setChecked(true);
    point.useVic = true;
    point.useVicForTarget = true;
    point.Energy->setText(QStringLiteral("8390.5"));
    point.Mut1->setText(QStringLiteral("1e-3"));
    point.Mut2->setText(QStringLiteral("-2"));
    point.MutT->setText(QStringLiteral("1,5")); // no number
    const PointRow row = point.row();
    QVERIFY(row.use && row.tRatio && row.vPoint && row.useVicRefs && row.useVicTarget);
    QCOMPARE(row.energy, 8390.5);
    QCOMPARE(row.mut1, 1e-3);
    QCOMPARE(row.mut2, -2.0);
    QCOMPARE(row.mutTarget, 0.0);
    QCOMPARE(row.mutBlank, 0.0);
}

void tst_AEPoint::energyFieldAnnouncesItsNumber()
{
    AEPoint point;
    point.show();
    QSignalSpy energies(&point, &AEPoint::newEnergy);
    user::type(point.Energy, QStringLiteral("8400"));
    QCOMPARE(energies.count(), 1);
    QCOMPARE(energies[0][0].toDouble(), 8400.0);
    point.Energy->setText(QStringLiteral("8500")); // as a dragged marker does
    QCOMPARE(energies.count(), 1);
}

void tst_AEPoint::clicksAnnounceAChange()
{
    AEPoint point;
    point.show();
    QSignalSpy changes(&point, &AEPoint::changedCB);
    user::click(point.UseCB);
    user::click(point.TRatCB);
    user::click(point.VPointCB);
    user::click(point.VPointCB); // checked already
    QCOMPARE(changes.count(), 4);
    point.UseCB->setChecked(false); // not by the user
    QCOMPARE(changes.count(), 4);
}

void tst_AEPoint::directoryIsPassedOn()
{
    AEPoint point;
    QSignalSpy dirs(&point, &AEPoint::newDir);
    point.MapFile->setFile(m_dir.filePath(QStringLiteral("missing.dat")));
    QCOMPARE(dirs.count(), 1);
    QCOMPARE(dirs[0][0].toString(), QDir(m_dir.path()).canonicalPath());
}

void tst_AEPoint::energyLineSetsTheField()
{
    AEPoint point;
    QSignalSpy energies(&point, &AEPoint::newEnergy);
    point.MapFile->setFile(writeText(m_dir, "# energy = 8404.50 eV\n"));
    QCOMPARE(point.Energy->text(), QStringLiteral("8404.50")); // the token as it stands
    QCOMPARE(energies.count(), 1);
    QCOMPARE(energies[0][0].toDouble(), 8404.5);
}

void tst_AEPoint::severalEnergyLinesInOrder()
{
    AEPoint point;
    QSignalSpy energies(&point, &AEPoint::newEnergy);
    point.MapFile->setFile(writeText(m_dir, "# ENERGY = 1\n#x Energy : word\n# ENERGY =\n"));
    QCOMPARE(point.Energy->text(), QStringLiteral("word"));
    QCOMPARE(energies.count(), 2);
    QCOMPARE(energies[0][0].toDouble(), 1.0);
    QCOMPARE(energies[1][0].toDouble(), 0.0);
}

void tst_AEPoint::sizesMakeItValid()
{
    AEPoint point;
    point.MapFile->setFile(writeText(m_dir, "# AXIS 0 x share step 1 2 points\n"
                                            "# axis 1 y thickness step 1 1 points\n"
                                            "0 0 1 2\n1 0 0.25\n"));
    QVERIFY(point.mapData().valid);
    QCOMPARE(point.mapData().columns, 2);
    QCOMPARE(point.mapData().rows, 1);
    QCOMPARE(point.mapData().mut.size(), std::size_t(2));
    QCOMPARE(point.mapData().mut[0], std::log(2.0));
    QCOMPARE(point.mapData().mut[1], std::log(1.0 / 0.25)); // three tokens: I0 is 1
    QCOMPARE(point.mapData().header.size(), 2);
}

void tst_AEPoint::withoutAxisLinesItIsNotValid()
{
    AEPoint point;
    point.MapFile->setFile(writeText(m_dir, "0 0 1 2\n"));
    QVERIFY(!point.mapData().valid);
    QCOMPARE(point.mapData().mut.size(), std::size_t(1));
}

void tst_AEPoint::unreadableFileKeepsTheRecords()
{
    AEPoint point;
    point.MapFile->setFile(
        writeText(m_dir, "# AXIS 0 x s s 1 1 p\n# AXIS 1 y t s 1 1 p\n0 0 1 2\n"));
    QVERIFY(point.mapData().valid);
    point.MapFile->setFile(m_dir.filePath(QStringLiteral("missing.dat")));
    QVERIFY(!point.mapData().valid);
    QCOMPARE(point.mapData().mut.size(), std::size_t(1));
    QCOMPARE(point.mapData().columns, 1);
    QCOMPARE(point.mapData().header.size(), 2);
}

void tst_AEPoint::readingIsAtItsEndWhateverTheFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("map") << QStringLiteral("map.dat");
    QTest::newRow("missing") << QStringLiteral("missing.dat");
    QTest::newRow("empty") << QStringLiteral("empty.dat");
    QTest::newRow("folder") << QStringLiteral("folder.dat");
    QTest::newRow("no file") << QString();
}

void tst_AEPoint::readingIsAtItsEndWhateverTheFile()
{
    QFETCH(QString, name);
    writeText(m_dir, "# AXIS 0 x s s 1 1 p\n# AXIS 1 y t s 1 1 p\n0 0 1 2\n");
    QFile empty(m_dir.filePath(QStringLiteral("empty.dat")));
    QVERIFY(empty.open(QIODevice::WriteOnly));
    QDir(m_dir.path()).mkdir(QStringLiteral("folder.dat"));
    AEPoint point;
    QSignalSpy progress(&point, &AEPoint::progress);
    point.loadData(name.isEmpty() ? name : m_dir.filePath(name));
    QVERIFY(progress.count() >= 2);
    for (const QList<QVariant>& step : qAsConst(progress))
        QCOMPARE(step[0].toString(), QStringLiteral("Reading ") + name);
    QCOMPARE(progress.first()[1].toDouble(), 0.0);
    QCOMPARE(progress.last()[1].toDouble(), 1.0);
}

QTEST_MAIN(tst_AEPoint)
#include "tst_AEPoint.moc"
