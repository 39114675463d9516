#include "display/PngBytes.h"

#include <QImage>
#include <QtTest>

class TestPngBytes : public QObject
{
    Q_OBJECT

private slots:
    void anotherReaderFindsThePixels_data();
    void anotherReaderFindsThePixels();
    void nothingOfANullImage();
};

void TestPngBytes::anotherReaderFindsThePixels_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("one") << QSize(1, 1);
    QTest::newRow("line") << QSize(5, 1);
    QTest::newRow("column") << QSize(1, 7);
    QTest::newRow("large") << QSize(301, 233);
}

// The toolkit's reader refuses a file whose checksums are wrong.
void TestPngBytes::anotherReaderFindsThePixels()
{
    QFETCH(QSize, size);
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb(x * 7 % 256, y * 11 % 256, (x + y) * 13 % 256));
    image.setText(QStringLiteral("PlotArea"), QStringLiteral("1 2.5"));
    const QByteArray bytes = pngBytes(image);
    QVERIFY(bytes.startsWith("\x89PNG\r\n\x1a\n"));
    const QImage read = QImage::fromData(bytes, "PNG");
    QCOMPARE(read.size(), size);
    QCOMPARE(read.convertToFormat(QImage::Format_RGB32), image);
    QCOMPARE(read.text(QStringLiteral("PlotArea")), QStringLiteral("1 2.5"));
    QByteArray damaged = bytes;
    damaged[20] = static_cast<char>(damaged[20] ^ 1); // the width, under a checksum
    QVERIFY(QImage::fromData(damaged, "PNG").isNull());
}

void TestPngBytes::nothingOfANullImage()
{
    QCOMPARE(pngBytes(QImage()), QByteArray());
}

QTEST_APPLESS_MAIN(TestPngBytes)
#include "tst_PngBytes.moc"
