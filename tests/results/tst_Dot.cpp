#include "results/Dot.h"
#include "tests/support/CanvasActions.h"

#include <QPainter>
#include <QtTest>

/// The marks of the graphs, painted with another pen in the painter's hand.
class tst_Dot : public QObject
{
    Q_OBJECT
private slots:
    void discIsOfOneColor();
    void dotAndRingAreOfThePen();
    void farMarksAreLeftOut();

private:
    template <class Paint>
    static QImage painted(const Paint& paint);
};

template <class Paint>
QImage tst_Dot::painted(const Paint& paint)
{
    QImage image(20, 20, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setPen(Qt::black);
    painter.setBrush(Qt::green);
    paint(painter);
    return image;
}

void tst_Dot::discIsOfOneColor()
{
    const QImage image =
        painted([](QPainter& painter) { drawDisc(painter, QPoint(10, 10), Qt::red); });
    const int red = canvas::count(image, Qt::red);
    QCOMPARE(red + canvas::count(image, Qt::white), 400);
    for (const QPoint& inside : {QPoint(10, 10), QPoint(7, 10), QPoint(12, 10), QPoint(10, 7)})
        QCOMPARE(QColor(image.pixel(inside)), QColor(Qt::red));
    QCOMPARE(QColor(image.pixel(6, 10)), QColor(Qt::white));
    QCOMPARE(QColor(image.pixel(10, 14)), QColor(Qt::white));
}

void tst_Dot::dotAndRingAreOfThePen()
{
    const QImage dot = painted([](QPainter& painter) { drawDot(painter, QPoint(10, 10)); });
    QVERIFY(canvas::count(dot, Qt::black) > 0);
    QCOMPARE(canvas::count(dot, Qt::black) + canvas::count(dot, Qt::white), 400);
    const QImage ring = painted([](QPainter& painter) { drawRing(painter, QPoint(10, 10)); });
    QVERIFY(canvas::count(ring, Qt::black) > canvas::count(dot, Qt::black));
    QCOMPARE(canvas::count(ring, Qt::black) + canvas::count(ring, Qt::white), 400);
}

void tst_Dot::farMarksAreLeftOut()
{
    const QImage image = painted([](QPainter& painter) {
        painter.scale(1e-3, 1e-3); // would bring it back onto the canvas
        drawDisc(painter, QPoint(0, 32769), Qt::red);
        drawDisc(painter, QPoint(-32769, 0), Qt::red);
    });
    QCOMPARE(canvas::count(image, Qt::white), 400);
}

QTEST_MAIN(tst_Dot)
#include "tst_Dot.moc"
