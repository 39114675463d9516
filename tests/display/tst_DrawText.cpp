#include "display/DrawText.h"
#include "tests/support/CanvasActions.h"

#include <QFont>
#include <QPainter>
#include <QtTest>

namespace
{

constexpr int fitted = 1;
constexpr int unfitted = 0;
const QString sample = QStringLiteral("Eng.[eV]");

QImage blank()
{
    QImage image(400, 200, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

/// Size in points that a text gets, told by the debug line.
QString debugLine;
void catchDebugLine(QtMsgType, const QMessageLogContext&, const QString& text)
{
    debugLine = text;
}

double sizeOf(const QRectF& box, const QString& text, double maxSize, int mode = fitted)
{
    QImage image = blank();
    QPainter painter(&image);
    const QtMessageHandler before = qInstallMessageHandler(catchDebugLine);
    DrawText::putText(&painter, box, QFont(), Qt::AlignLeft, mode, text, maxSize, true);
    qInstallMessageHandler(before);
    const QString lead = QStringLiteral("actual font size  ");
    return debugLine.startsWith(lead) ? debugLine.mid(lead.size()).toDouble() : -1.0;
}

QRectF boundsAtTenPoints(const QString& text)
{
    QImage image = blank();
    QPainter painter(&image);
    QFont font;
    font.setPointSizeF(10);
    painter.setFont(font);
    return painter.boundingRect(QRectF(0, 0, 1000, 1000), Qt::AlignLeft, text);
}

} // namespace

class TestDrawText : public QObject
{
    Q_OBJECT

private slots:
    void startState();
    void excess_data();
    void excess();
    void fillsTheBox();
    void keepsToTheCap();
    void negativeHeightFitsTheWidth();
    void staysWithin_data();
    void staysWithin();
    void emptyText();
    void unfittedKeepsTheFont();
    void returnsTheBoundsAtTenPoints();
    void leavesThePaintersFont();
    void noDebugLineUnlessAsked();
    void familyOfTheFontIsNotUsed();
    void measuresInWholePoints();
    void measuringLeavesFontsAlone();
    void measuringUnfitted();
    void legendBox_data();
    void legendBox();
    void takenBoxes();
    void absurdBoxes();
};

void TestDrawText::startState()
{
    const DrawText text;
    QCOMPARE(text.current, -1);
    QVERIFY(text.items.isEmpty());
    QCOMPARE(text.borderColor, QColor(0, 220, 220));
    QCOMPARE(text.onColor, QColor(170, 255, 170));
    QCOMPARE(text.offColor, QColor(140, 180, 140));
    QCOMPARE(text.textColor, QColor(0, 0, 0));
}

void TestDrawText::excess_data()
{
    QTest::addColumn<QSizeF>("text");
    QTest::addColumn<QSizeF>("box");
    QTest::addColumn<double>("expected");
    QTest::newRow("too wide") << QSizeF(100, 10) << QSizeF(50, 20) << 2.0;
    QTest::newRow("too high") << QSizeF(10, 60) << QSizeF(50, 20) << 3.0;
    QTest::newRow("smaller") << QSizeF(25, 5) << QSizeF(50, 20) << 0.5;
    QTest::newRow("negative height") << QSizeF(25, 500) << QSizeF(50, -20) << 0.5;
    QTest::newRow("no width") << QSizeF(25, 5) << QSizeF(0, 20) << 1.0;
    QTest::newRow("no height") << QSizeF(25, 5) << QSizeF(50, 0) << 1.0;
    QTest::newRow("no box") << QSizeF(25, 5) << QSizeF(0, 0) << 1.0;
    QTest::newRow("no text") << QSizeF(0, 0) << QSizeF(50, 20) << 1.0;
    QTest::newRow("no width of the text, negative height")
        << QSizeF(0, 5) << QSizeF(50, -20) << 1.0;
}

void TestDrawText::excess()
{
    QFETCH(QSizeF, text);
    QFETCH(QSizeF, box);
    QFETCH(double, expected);
    QCOMPARE(textExcess(text.width(), text.height(), box.width(), box.height()), expected);
}

void TestDrawText::fillsTheBox()
{
    const QSizeF text = boundsAtTenPoints(sample).size();
    QCOMPARE(sizeOf(QRectF(0, 0, text.width() / 2, 1000), sample, 0), 5.0);
    QCOMPARE(sizeOf(QRectF(0, 0, 1000, text.height() / 2), sample, 0), 5.0);
    QCOMPARE(sizeOf(QRectF(0, 0, text.width() * 3, text.height() * 2), sample, 0), 20.0);
}

void TestDrawText::keepsToTheCap()
{
    const QSizeF text = boundsAtTenPoints(sample).size();
    const QRectF large(0, 0, text.width() * 4, text.height() * 4);
    QCOMPARE(sizeOf(large, sample, 12), 12.0);
    QCOMPARE(sizeOf(large, sample, 0), 40.0);
    QCOMPARE(sizeOf(large, sample, -1), 40.0);
    QCOMPARE(sizeOf(QRectF(0, 0, text.width() / 2, 1000), sample, 12), 5.0);
}

void TestDrawText::negativeHeightFitsTheWidth()
{
    const QSizeF text = boundsAtTenPoints(sample).size();
    QCOMPARE(sizeOf(QRectF(0, 100, text.width() / 2, -1), sample, 0), 5.0);
    QCOMPARE(sizeOf(QRectF(0, 100, text.width() * 2, -1), sample, 12), 12.0);
}

void TestDrawText::staysWithin_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("above");
    QTest::addColumn<int>("below");
    QTest::newRow("room enough") << QStringLiteral("Thick.") << 40 << 40;
    QTest::newRow("little above") << QStringLiteral("Thick.") << 4 << 40;
    QTest::newRow("little below") << QStringLiteral("Eng.[eV]") << 40 << 5;
    QTest::newRow("little") << QStringLiteral("Eng.[eV]") << 5 << 6;
}

void TestDrawText::staysWithin()
{
    QFETCH(QString, text);
    QFETCH(int, above);
    QFETCH(int, below);
    constexpr int middle = 100;
    QImage image = blank();
    QPainter painter(&image);
    const double size = DrawText::sizeWithin(painter, text, above, below, 12);
    DrawText::putText(&painter, QRectF(0, middle + 8, 400, -16), QFont(),
                      Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextDontClip, fitted, text, size,
                      false);
    painter.end();
    QRect ink;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qGray(image.pixel(x, y)) < 128)
                ink |= QRect(x, y, 1, 1);
    // Letters are set on whole pixels.
    QVERIFY2(ink.top() >= middle - above - 1, qPrintable(QString::number(ink.top())));
    QVERIFY2(ink.bottom() <= middle + below + 1, qPrintable(QString::number(ink.bottom())));
    if (above == 40 && below == 40)
        QCOMPARE(size, 12.0);
    else // as large as it can be
        QVERIFY(ink.top() <= middle - above + 2 || ink.bottom() >= middle + below - 2);
}

void TestDrawText::emptyText()
{
    QCOMPARE(sizeOf(QRectF(0, 0, 100, 20), QString(), 0), 10.0);
    QCOMPARE(sizeOf(QRectF(0, 0, 100, 20), QString(), 8), 8.0);
}

void TestDrawText::unfittedKeepsTheFont()
{
    QFont font;
    font.setPointSizeF(31);
    QImage image = blank();
    QPainter painter(&image);
    const QtMessageHandler before = qInstallMessageHandler(catchDebugLine);
    const QRectF bounds = DrawText::putText(&painter, QRectF(0, 0, 10, 10), font, Qt::AlignLeft,
                                            unfitted, sample, 12, true);
    qInstallMessageHandler(before);
    QCOMPARE(debugLine, QStringLiteral("actual font size  31"));
    QCOMPARE(bounds, QRectF(0, 0, 0, 0));
}

void TestDrawText::returnsTheBoundsAtTenPoints()
{
    QImage image = blank();
    QPainter painter(&image);
    const QRectF bounds = DrawText::putText(&painter, QRectF(30, 40, 50, 20), QFont(),
                                            Qt::AlignLeft, fitted, sample, 12, false);
    QCOMPARE(bounds.topLeft(), QPointF(30, 60)); // the probe stands on the box
    QCOMPARE(bounds.size(), boundsAtTenPoints(sample).size());
}

void TestDrawText::leavesThePaintersFont()
{
    QImage image = blank();
    QPainter painter(&image);
    QFont font;
    font.setPointSizeF(17);
    font.setItalic(true);
    for (const int mode : {fitted, unfitted}) {
        DrawText::putText(&painter, QRectF(0, 0, 50, 20), font, Qt::AlignLeft, mode, sample, 0,
                          false);
        QCOMPARE(painter.font().pointSizeF(), 17.0);
        QVERIFY(painter.font().italic());
    }
}

void TestDrawText::noDebugLineUnlessAsked()
{
    debugLine.clear();
    QImage image = blank();
    QPainter painter(&image);
    const QtMessageHandler before = qInstallMessageHandler(catchDebugLine);
    DrawText::putText(&painter, QRectF(0, 0, 50, 20), QFont(), Qt::AlignLeft, fitted, sample, 0,
                      false);
    qInstallMessageHandler(before);
    QVERIFY(debugLine.isEmpty());
}

void TestDrawText::familyOfTheFontIsNotUsed()
{
    QFont bold;
    bold.setBold(true);
    bold.setItalic(true);
    QImage plain = blank();
    QImage styled = blank();
    const QRectF box(10, 10, 200, 100);
    {
        QPainter onPlain(&plain);
        DrawText::putText(&onPlain, box, QFont(), Qt::AlignLeft, fitted, sample, 0, false);
        QPainter onStyled(&styled);
        DrawText::putText(&onStyled, box, bold, Qt::AlignLeft, fitted, sample, 0, false);
    }
    QCOMPARE(styled, plain);
    QVERIFY(plain != blank());
}

void TestDrawText::measuresInWholePoints()
{
    QImage image = blank();
    QPainter painter(&image);
    QFont font;
    font.setPointSize(20);
    painter.setFont(font);
    const QRectF probe = painter.boundingRect(QRectF(0, 0, 1000, 1000), Qt::AlignLeft, sample);
    // 20 / (1 / 0.57) = 11.4 points, whole: 11.
    const QRectF box(5, 6, probe.width() * 0.57, 1000);
    const QRectF bounds = DrawText::measureText(&painter, box, font, Qt::AlignLeft, fitted, sample);
    QFont eleven = font;
    eleven.setPointSize(11);
    painter.setFont(eleven);
    QCOMPARE(bounds, painter.boundingRect(box, Qt::AlignLeft, sample));
}

void TestDrawText::measuringLeavesFontsAlone()
{
    QImage image = blank();
    {
        QPainter painter(&image);
        QFont own;
        own.setPointSize(33);
        painter.setFont(own);
        QFont font;
        font.setPointSize(20);
        DrawText::measureText(&painter, QRectF(0, 0, 50, 20), font, Qt::AlignLeft, fitted, sample);
        QCOMPARE(font.pointSize(), 20);
        QCOMPARE(painter.font().pointSize(), 33);
    }
    QCOMPARE(image, blank());
}

void TestDrawText::measuringUnfitted()
{
    QImage image = blank();
    QPainter painter(&image);
    QFont font;
    font.setPointSize(20);
    const QRectF bounds = DrawText::measureText(&painter, QRectF(0, 0, 400, 20), font,
                                                Qt::AlignLeft, unfitted, sample);
    painter.setFont(font);
    QCOMPARE(bounds, painter.boundingRect(QRectF(0, 0, 400, 20), Qt::AlignLeft, sample));
    QVERIFY(DrawText::measureText(&painter, QRectF(0, 0, 400, 20), font, Qt::AlignLeft, unfitted,
                                  QString())
                .isEmpty());
}

void TestDrawText::legendBox_data()
{
    QTest::addColumn<bool>("on");
    QTest::addColumn<QColor>("filled");
    QTest::newRow("on") << true << QColor(170, 255, 170);
    QTest::newRow("off") << false << QColor(140, 180, 140);
}

void TestDrawText::legendBox()
{
    QFETCH(bool, on);
    QFETCH(QColor, filled);
    QImage image = blank();
    QPainter painter(&image);
    painter.setBrush(Qt::yellow); // left by what was drawn before
    DrawText().drawLegendBox(&painter, on, sample, 20, 100, 60, 16);
    painter.end();
    QCOMPARE(QColor(image.pixel(20, 44)), QColor(0, 220, 220));
    QCOMPARE(QColor(image.pixel(20, 59)), QColor(0, 220, 220));
    QCOMPARE(QColor(image.pixel(21, 45)), filled);
    QCOMPARE(QColor(image.pixel(34, 58)), filled);
    QCOMPARE(QColor(image.pixel(19, 50)), QColor(Qt::white));
    QCOMPARE(QColor(image.pixel(28, 43)), QColor(Qt::white));
    // The text stands at the right, from 20 + 1.2 * 16 on, between y 44.8 and 59.2.
    QVERIFY(canvas::count(image.copy(39, 44, 81, 16), Qt::black) > 0);
    QCOMPARE(canvas::count(image.copy(121, 0, 279, 200), Qt::white), 279 * 200);
}

void TestDrawText::takenBoxes()
{
    DrawText text;
    QVERIFY(!text.overlaps(QRectF(0, 0, 10, 10)));
    text.addItem(QRectF(0, 0, 10, 10));
    text.addItem(QRectF(100, 0, 10, 10));
    QCOMPARE(text.items.size(), 2);
    QVERIFY(text.overlaps(QRectF(5, 5, 10, 10)));
    QVERIFY(text.overlaps(QRectF(105, -5, 1, 10)));
    QVERIFY(!text.overlaps(QRectF(10, 0, 10, 10))); // side by side
    QVERIFY(!text.overlaps(QRectF(50, 50, 10, 10)));
}

void TestDrawText::absurdBoxes()
{
    QImage image = blank();
    QPainter painter(&image);
    QFont font;
    const double nan = std::nan("");
    const QVector<QRectF> boxes{QRectF(0, 0, 1e-9, 1e-9), QRectF(0, 0, -5, -5),
                                QRectF(0, 0, 1e9, 1e9),   QRectF(nan, nan, nan, nan),
                                QRectF(0, 0, 5, -1e9),    QRectF(1e300, 1e300, 10, 10)};
    static int lines;
    lines = 0;
    const QtMessageHandler before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString&) { ++lines; });
    for (const QRectF& box : boxes) {
        for (const QString& text : {sample, QStringLiteral(" "), QString()}) {
            DrawText::putText(&painter, box, font, Qt::AlignLeft, fitted, text, 0, false);
            DrawText::measureText(&painter, box, font, Qt::AlignLeft, fitted, text);
        }
    }
    qInstallMessageHandler(before);
    QCOMPARE(lines, 0); // no warning about a size
    QVERIFY(font.pointSize() > 0);
}

QTEST_MAIN(TestDrawText)
#include "tst_DrawText.moc"
