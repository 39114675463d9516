#include "display/CColors.h"

#include <QtTest>

class TestCColors : public QObject
{
    Q_OBJECT

private slots:
    void basePaletteThreeTimes();
    void isNeverShortened();
    void extendsTwoColors();
    void extendsTheBasePalette();
    void dampsPaleColors();
    void emptyListStaysEmpty();
};

void TestCColors::basePaletteThreeTimes()
{
    const int base[15][3] = {{0, 0, 0},       {255, 0, 0},     {0, 0, 255},     {120, 220, 120},
                             {200, 200, 0},   {240, 0, 240},   {0, 240, 240},   {160, 0, 0},
                             {0, 160, 0},     {0, 0, 160},     {255, 160, 160}, {160, 160, 160},
                             {120, 220, 120}, {160, 160, 255}, {240, 160, 0}};
    const CColors palette;
    QCOMPARE(palette.colors.size(), 45);
    for (int i = 0; i < 45; ++i)
        QCOMPARE(palette.colors[i], QColor(base[i % 15][0], base[i % 15][1], base[i % 15][2]));
}

void TestCColors::isNeverShortened()
{
    QCOMPARE(CColors(3).colors.size(), 45);
    QCOMPARE(CColors(-1).colors.size(), 45);
    QCOMPARE(CColors({QColor(1, 2, 3), QColor(4, 5, 6)}, 1).colors.size(), 2);
}

void TestCColors::extendsTwoColors()
{
    const CColors palette({QColor(255, 0, 0), QColor(0, 0, 255)}, 5);
    // Third: blue after red. Fourth: red after blue, the list's end. Fifth, in the second pass:
    // again blue after red.
    const QVector<QColor> expected{QColor(255, 0, 0), QColor(0, 0, 255), QColor(170, 0, 255),
                                   QColor(255, 0, 170), QColor(170, 0, 255)};
    QCOMPARE(palette.colors, expected);
}

void TestCColors::extendsTheBasePalette()
{
    const CColors palette(48);
    QCOMPARE(palette.colors.size(), 48);
    // Red after black, blue after red, pale green after blue: (120 + 0, 220, (120 + 510) / 3).
    QCOMPARE(palette.colors[45], QColor(255, 0, 0));
    QCOMPARE(palette.colors[46], QColor(170, 0, 255));
    // 120 + 220 + 210 is above 500: 96, 132, 168.
    QCOMPARE(palette.colors[47], QColor(96, 132, 168));
}

void TestCColors::dampsPaleColors()
{
    // (0 + 2 * 200) / 3 = 133, 200 and 200 sum up to 533: 106.4, 120, 160.
    const CColors palette({QColor(200, 200, 200), QColor(0, 200, 200)}, 3);
    QCOMPARE(palette.colors[2], QColor(106, 120, 160));
    // A sum of exactly 500 is not damped.
    const CColors bright({QColor(0, 0, 0), QColor(200, 200, 100)}, 3);
    QCOMPARE(bright.colors[2], QColor(200, 200, 100));
}

void TestCColors::emptyListStaysEmpty()
{
    QVERIFY(CColors(QVector<QColor>(), 5).colors.isEmpty());
}

QTEST_GUILESS_MAIN(TestCColors)
#include "tst_CColors.moc"
