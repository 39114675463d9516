#include "app/FourPs.h"
#include "input/AEPoint.h"
#include "input/AXafsFileSelect.h"
#include "tests/model/RandomFiles.h"
#include "tests/support/PanelActions.h"

#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

/// All files again and again (DROVIK_RELOADS times, 100 where it is not set): the memory stays
/// where it is. The message pane keeps its lines by rule and is emptied here.
class tst_Reloads : public QObject
{
    Q_OBJECT
private slots:
    void memoryIsFlat();

private:
    static qint64 residentBytes();
    static void loadEverything(FourPs& panel, const RandomFiles& files);
};

qint64 tst_Reloads::residentBytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

void tst_Reloads::loadEverything(FourPs& panel, const RandomFiles& files)
{
    for (int i = 0; i < 4; ++i)
        user::drop(panel.xafsSelects.at(i), files.spectra.at(i));
    for (int i = 0; i < 8; ++i)
        user::drop(panel.ePoints.at(i)->MapFile, files.images.at(i));
    panel.DispFSelect->newFiles(files.spectra);
    while (panel.SelectedFs->count() > 0)
        user::click(panel.RemoveAFile);
    user::click(panel.CalcMapB);
    user::click(panel.LCFB);
    panel.displays->grab();
    panel.clearLCFvs4PS(nullptr);
    panel.Message->clear();
    QApplication::processEvents();
}

void tst_Reloads::memoryIsFlat()
{
    bool set = false;
    int reloads = qEnvironmentVariableIntValue("DROVIK_RELOADS", &set);
    if (!set)
        reloads = 100;
    const QTemporaryDir folder;
    const RandomFiles files(1, folder.path(), false);
    FourPs panel;
    panel.show();
    panel.displays->show();
    panel.ePoints.at(0)->TRatCB->setChecked(true);
    panel.ePoints.at(3)->TRatCB->setChecked(true);
    constexpr int warmUp = 20;
    for (int i = 0; i < warmUp; ++i)
        loadEverything(panel, files);
    const qint64 before = residentBytes();
    for (int i = 0; i < reloads; ++i)
        loadEverything(panel, files);
    const qint64 growth = residentBytes() - before;
    qInfo("%d reloads: %lld kB more", reloads, growth / 1024);
#ifndef __SANITIZE_ADDRESS__ // which keeps freed memory for a while
    constexpr qint64 allowed = 256 << 10;
    QVERIFY(growth < allowed);
#endif
    QVERIFY(panel.CalcRes->text().startsWith(QLatin1String("4ps2")));
}

QTEST_MAIN(tst_Reloads)
#include "tst_Reloads.moc"
