#include "app/ScreenScroll.h"
#include "display/ScreenRoom.h"

#include <QScrollBar>
#include <QVBoxLayout>
#include <QtTest>

namespace
{

/// What a main window has around its panel.
constexpr QSize surroundings(16, 30);

} // namespace

class tst_ScreenScroll : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void asksForTheWholeWhereThereIsRoom();
    void highContentsMakeRoomForABarBesideThem();
    void broadContentsMakeRoomForABarBelowThem();
    void largeContentsAskForTheScreen();
    void growsWithItsContents();

private:
    QSize room() const { return screenRoom(*m_scroll) - surroundings; }
    void setContents(QSize size) const { m_contents->setMinimumSize(size); }

    std::unique_ptr<ScreenScroll> m_scroll;
    QWidget* m_contents = nullptr; ///< inside the widget of the scroll area
};

void tst_ScreenScroll::init()
{
    m_scroll = std::make_unique<ScreenScroll>();
    auto* widget = new QWidget;
    auto* layout = new QVBoxLayout(widget);
    layout->setContentsMargins(QMargins());
    m_contents = new QWidget;
    layout->addWidget(m_contents);
    m_contents->setMinimumSize(100, 80);
    m_scroll->setWidget(widget);
}

void tst_ScreenScroll::asksForTheWholeWhereThereIsRoom()
{
    setContents(QSize(300, 200));
    QCOMPARE(m_scroll->minimumSizeHint(), QSize(300, 200));
    QCOMPARE(m_scroll->sizeHint(), QSize(300, 200));
    for (const QSize& justFits :
         {room(), QSize(300, room().height()), QSize(room().width(), 200)}) {
        setContents(justFits);
        QCOMPARE(m_scroll->minimumSizeHint(), justFits);
    }
}

void tst_ScreenScroll::highContentsMakeRoomForABarBesideThem()
{
    setContents(QSize(300, room().height() + 1));
    QCOMPARE(m_scroll->minimumSizeHint(),
             QSize(300 + m_scroll->verticalScrollBar()->sizeHint().width(), room().height()));
    QCOMPARE(m_scroll->sizeHint(), QSize(300, room().height() + 1));
}

void tst_ScreenScroll::broadContentsMakeRoomForABarBelowThem()
{
    setContents(QSize(room().width() + 1, 200));
    QCOMPARE(m_scroll->minimumSizeHint(),
             QSize(room().width(), 200 + m_scroll->horizontalScrollBar()->sizeHint().height()));
}

void tst_ScreenScroll::largeContentsAskForTheScreen()
{
    setContents(QSize(9000, 9000));
    QCOMPARE(m_scroll->minimumSizeHint(), room());
    QCOMPARE(m_scroll->sizeHint(), QSize(9000, 9000));
}

// As when the conditions are shown: what is around the area learns of it.
void tst_ScreenScroll::growsWithItsContents()
{
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    layout->setContentsMargins(QMargins());
    layout->addWidget(m_scroll.release()); // goes with the window
    window.resize(100, 80);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    setContents(QSize(350, 250));
    QTRY_COMPARE(window.size(), QSize(350, 250));
}

QTEST_MAIN(tst_ScreenScroll)
#include "tst_ScreenScroll.moc"
