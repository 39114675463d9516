#include "display/ScreenRoom.h"

#include <QScreen>
#include <QShowEvent>
#include <QWidget>
#include <QtTest>

namespace
{

/// A window that fits itself to the screen when it is shown.
class Window : public QWidget
{
protected:
    void showEvent(QShowEvent* event) override { fitToScreen(*this, *event); }
};

} // namespace

class tst_ScreenRoom : public QObject
{
    Q_OBJECT

private slots:
    void roomLeavesAFrame();
    void windowOpensNoLargerThanTheRoom();
    void smallWindowKeepsItsSize();
    void sizeOfTheDesktopIsKept_data();
    void sizeOfTheDesktopIsKept();
    void windowThatComesBackKeepsItsSize();
};

void tst_ScreenRoom::roomLeavesAFrame()
{
    const QWidget window;
    QCOMPARE(screenRoom(window), window.screen()->availableSize() - QSize(4, 30));
}

void tst_ScreenRoom::windowOpensNoLargerThanTheRoom()
{
    Window window;
    window.resize(5000, 4000);
    window.show();
    QCOMPARE(window.size(), screenRoom(window));
}

void tst_ScreenRoom::smallWindowKeepsItsSize()
{
    Window window;
    window.resize(300, 200);
    window.show();
    QCOMPARE(window.size(), QSize(300, 200));
}

void tst_ScreenRoom::sizeOfTheDesktopIsKept_data()
{
    QTest::addColumn<int>("state");
    QTest::newRow("maximized") << static_cast<int>(Qt::WindowMaximized);
    QTest::newRow("full screen") << static_cast<int>(Qt::WindowFullScreen);
}

// What the desktop makes of such a window is larger than a window with a frame may be.
void tst_ScreenRoom::sizeOfTheDesktopIsKept()
{
    QFETCH(int, state);
    QWidget window;
    window.resize(5000, 4000);
    window.setWindowState(static_cast<Qt::WindowState>(state));
    fitToScreen(window, QShowEvent());
    QCOMPARE(window.size(), QSize(5000, 4000));
}

void tst_ScreenRoom::windowThatComesBackKeepsItsSize()
{
    QWidget window;
    window.resize(5000, 4000);
    QShowEvent ofTheDesktop;
    QSpontaneKeyEvent::setSpontaneous(&ofTheDesktop);
    QVERIFY(ofTheDesktop.spontaneous());
    fitToScreen(window, ofTheDesktop);
    QCOMPARE(window.size(), QSize(5000, 4000));
    fitToScreen(window, QShowEvent());
    QCOMPARE(window.size(), screenRoom(window));
}

QTEST_MAIN(tst_ScreenRoom)
#include "tst_ScreenRoom.moc"
