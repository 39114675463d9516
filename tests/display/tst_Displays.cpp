#include "display/DispABase.h"
#include "display/Displays.h"
#include "display/PopBase.h"

#include <QtTest>

class TestDisplays : public QObject
{
    Q_OBJECT

private slots:
    void ninePanels();
};

void TestDisplays::ninePanels()
{
    Displays displays;
    QCOMPARE(displays.panels.size(), 9);
    displays.show();
    QVERIFY(QTest::qWaitForWindowExposed(&displays));
    for (int i = 0; i < 8; ++i)
        QVERIFY(displays.panel(i)->isVisible());
    QVERIFY(!displays.panel(8)->isVisible());
}

QTEST_MAIN(TestDisplays)
#include "tst_Displays.moc"
