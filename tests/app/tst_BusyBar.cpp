#include "app/BusyBar.h"

#include <QLabel>
#include <QMainWindow>
#include <QProgressBar>
#include <QStatusBar>
#include <QTimer>
#include <QtTest>

namespace
{

constexpr int hour = 3600000; // ms

} // namespace

/// Counts its repaints.
class Canvas : public QWidget
{
public:
    int paints = 0;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        ++paints;
        QWidget::paintEvent(event);
    }
};

class tst_BusyBar : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_window = std::make_unique<QMainWindow>();
        m_canvas = new Canvas;
        m_window->setCentralWidget(m_canvas);
        m_window->resize(400, 300);
        m_window->statusBar();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }
    void cleanup() { m_window.reset(); }

    void shortWorkShowsNothing();
    void longWorkShowsItsPart();
    void onlyTheStatusBarIsPainted();
    void partWithoutBeginningShowsNothing();

private:
    QLabel* label() const { return m_window->findChild<QLabel*>(QStringLiteral("BusyText")); }
    QProgressBar* bar() const
    {
        return m_window->findChild<QProgressBar*>(QStringLiteral("BusyProgress"));
    }

    std::unique_ptr<QMainWindow> m_window;
    Canvas* m_canvas = nullptr;
};

void tst_BusyBar::shortWorkShowsNothing()
{
    BusyBar busy(m_window->statusBar(), hour);
    for (const double part : {0.0, 0.25, 0.75, 1.0}) {
        busy.show(QStringLiteral("Reading map.dat"), part);
        QVERIFY(!label()->isVisible());
        QVERIFY(!bar()->isVisible());
    }
}

void tst_BusyBar::longWorkShowsItsPart()
{
    BusyBar busy(m_window->statusBar(), 0);
    busy.show(QStringLiteral("Reading map.dat"), 0.0);
    QVERIFY(!label()->isVisible());
    busy.show(QStringLiteral("Reading map.dat"), 0.25);
    QVERIFY(label()->isVisible());
    QCOMPARE(label()->text(), QStringLiteral("Reading map.dat"));
    QVERIFY(bar()->isVisible());
    QCOMPARE(bar()->value() * 4, bar()->maximum());
    QVERIFY(bar()->width() > 50);
    QVERIFY(m_window->statusBar()->rect().contains(
        bar()->mapTo(m_window->statusBar(), bar()->rect().center())));
    busy.show(QStringLiteral("Reading map.dat"), 1.0);
    QVERIFY(!label()->isVisible());
    QVERIFY(!bar()->isVisible());
    busy.show(QStringLiteral("Writing res.dat"), 0.0);
    busy.show(QStringLiteral("Writing res.dat"), 0.5);
    QCOMPARE(label()->text(), QStringLiteral("Writing res.dat"));
    QCOMPARE(bar()->value() * 2, bar()->maximum());
}

void tst_BusyBar::onlyTheStatusBarIsPainted()
{
    const int height = m_window->statusBar()->sizeHint().height();
    BusyBar busy(m_window->statusBar(), 0);
    QCOMPARE(m_window->statusBar()->sizeHint().height(), height);
    QCoreApplication::processEvents();
    bool otherEvent = false;
    QTimer::singleShot(0, m_canvas, [&] { otherEvent = true; });
    const int paints = m_canvas->paints;
    busy.show(QStringLiteral("Reading map.dat"), 0.0);
    busy.show(QStringLiteral("Reading map.dat"), 0.5);
    QCOMPARE(m_canvas->paints, paints);
    QVERIFY(!otherEvent);
    QTRY_VERIFY(otherEvent);
}

void tst_BusyBar::partWithoutBeginningShowsNothing()
{
    BusyBar busy(m_window->statusBar(), 0);
    busy.show(QStringLiteral("Reading map.dat"), 0.5);
    QVERIFY(!bar()->isVisible());
}

QTEST_MAIN(tst_BusyBar)
#include "tst_BusyBar.moc"
