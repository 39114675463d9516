#include "tests/support/CanvasActions.h"
#include "tests/support/GraphPanel.h"
#include "tests/support/GraphSamples.h"
#include "tests/support/ToolkitWarnings.h"

#include <QBuffer>
#include <QPageSize>
#include <QPdfWriter>
#include <QProcess>
#include <QSvgGenerator>
#include <QSvgRenderer>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

constexpr QSize canvasSize(400, 300);
constexpr int dotsPerInch = 96; // a unit of the painter is a pixel of the canvas

// So many pixels of the picture for one of the canvas, so that a line has whole pixels of its own.
constexpr int enlarged = 8;

QByteArray svg(GraphFrame& frame, const graphs::Sample& sample)
{
    QBuffer buffer;
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setResolution(dotsPerInch);
    generator.setSize(canvasSize);
    generator.setViewBox(QRect(QPoint(0, 0), canvasSize));
    QPainter painter(&generator);
    graphs::paint(painter, frame, canvasSize, sample);
    painter.end();
    return buffer.data();
}

QImage svgPicture(QSvgRenderer& renderer)
{
    QImage image(canvasSize * enlarged, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    renderer.render(&painter);
    return image;
}

void writePdf(const QString& path, GraphFrame& frame, const graphs::Sample& sample)
{
    constexpr double points = 72.0 / dotsPerInch;
    QPdfWriter writer(path);
    writer.setResolution(dotsPerInch);
    writer.setPageSize(QPageSize(QSizeF(canvasSize) * points, QPageSize::Point));
    writer.setPageMargins(QMarginsF());
    QPainter painter(&writer);
    graphs::paint(painter, frame, canvasSize, sample);
}

QImage pdfPicture(const QString& path)
{
    const QString picture = path + QStringLiteral("_picture");
    QProcess::execute(QStringLiteral("pdftoppm"),
                      {QStringLiteral("-r"), QString::number(dotsPerInch * enlarged),
                       QStringLiteral("-singlefile"), path, picture});
    return QImage(picture + QStringLiteral(".ppm"));
}

// What is to be seen and is not.
QString missing(const QImage& image, const ChCoord& coord, const graphs::Sample& sample)
{
    QStringList list;
    for (const graphs::Sight& sight : sample.sights) {
        const QPoint pixel(static_cast<int>(coord.xToScreen(sight.x)),
                           static_cast<int>(coord.yToScreen(sight.y)));
        const QColor found = image.pixelColor(((pixel + sight.moved) * enlarged).toPoint());
        if (found != sight.color)
            list << QStringLiteral("%1 at (%2, %3) is %4")
                        .arg(sight.color.name())
                        .arg(sight.x)
                        .arg(sight.y)
                        .arg(found.name());
    }
    return list.join(QLatin1Char('\n'));
}

} // namespace

class TestGraphDevices : public QObject
{
    Q_OBJECT

private slots:
    void pictureIsThatOfTheCanvas_data();
    void pictureIsThatOfTheCanvas();
    void svgShowsTheGraph_data();
    void svgShowsTheGraph();
    void pdfShowsTheGraph_data();
    void pdfShowsTheGraph();
    void withoutDataAllDevicesAreWhite();
    void cloudOnAPageIsOfDots();

private:
    static void addSamples();
    static graphs::Sample sample();
};

void TestGraphDevices::addSamples()
{
    QTest::addColumn<int>("number");
    int number = 0;
    for (const graphs::Sample& sample : graphs::all())
        QTest::newRow(sample.name) << number++;
}

graphs::Sample TestGraphDevices::sample()
{
    QFETCH(int, number);
    return graphs::all()[static_cast<std::size_t>(number)];
}

void TestGraphDevices::pictureIsThatOfTheCanvas_data()
{
    addSamples();
}

void TestGraphDevices::pictureIsThatOfTheCanvas()
{
    const graphs::Sample graph = sample();
    GraphPanel panel(graph.paint);
    GraphFrame frame;
    graphs::setTitles(panel.graph);
    graphs::setTitles(frame);
    for (const QSize& size : {QSize(400, 300), QSize(637, 411), QSize(90, 70), QSize(300, 900)}) {
        panel.DispA->setFixedSize(size);
        for (int view = 0; view < 3; ++view) {
            const QImage expected = panel.picture();
            if (view > 0)
                frame.coord.setRange(panel.coord().rx0, panel.coord().ry0, panel.coord().rx1,
                                     panel.coord().ry1);
            QImage image(size, QImage::Format_RGB32);
            QPainter painter(&image);
            graphs::paint(painter, frame, size, graph);
            painter.end();
            QCOMPARE(image, expected);
            canvas::wheel(panel.DispA, QPointF(50, 20), QPoint(0, view == 0 ? 120 : -120));
        }
        canvas::doubleClick(panel.DispA, QPointF(50, 20));
        frame.rangeSet = false;
    }
}

void TestGraphDevices::svgShowsTheGraph_data()
{
    addSamples();
}

void TestGraphDevices::svgShowsTheGraph()
{
    const graphs::Sample graph = sample();
    GraphFrame frame;
    graphs::setTitles(frame);
    const ToolkitWarnings warnings;
    const QByteArray file = svg(frame, graph);
    QSvgRenderer renderer(file);
    QVERIFY(renderer.isValid());
    QCOMPARE(renderer.viewBox(), QRect(QPoint(0, 0), canvasSize));
    const QString lacking = missing(svgPicture(renderer), frame.coord, graph);
    QVERIFY2(lacking.isEmpty(), qPrintable(lacking));
    for (const QByteArray& title : {QByteArray("across"), QByteArray("upward")})
        QCOMPARE(file.count('>' + title + '<'), 1);
    QCOMPARE(warnings.all(), QString());
}

void TestGraphDevices::pdfShowsTheGraph_data()
{
    addSamples();
}

void TestGraphDevices::pdfShowsTheGraph()
{
    const graphs::Sample graph = sample();
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("graph.pdf"));
    GraphFrame frame;
    graphs::setTitles(frame);
    const ToolkitWarnings warnings;
    writePdf(path, frame, graph);
    QCOMPARE(warnings.all(), QString());
    const QImage image = pdfPicture(path);
    QCOMPARE(image.size(), canvasSize * enlarged);
    const QString lacking = missing(image, frame.coord, graph);
    QVERIFY2(lacking.isEmpty(), qPrintable(lacking));
}

void TestGraphDevices::withoutDataAllDevicesAreWhite()
{
    const graphs::Sample empty{"",
                               [](QPainter& painter, GraphFrame& frame) {
                                   drawLcfGraph(painter, frame, {}, {2.0, 3.0});
                               },
                               {}};
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("graph.pdf"));
    GraphFrame frame;
    graphs::setTitles(frame);
    QSvgRenderer renderer(svg(frame, empty));
    writePdf(path, frame, empty);
    const QSize size = canvasSize * enlarged;
    for (const QImage& image : {svgPicture(renderer), pdfPicture(path)})
        QCOMPARE(canvas::count(image, Qt::white), size.width() * size.height());
    QVERIFY(!frame.rangeSet);
}

// On a canvas the dots of a map are one kept picture; enlarged on a page it would have steps.
void TestGraphDevices::cloudOnAPageIsOfDots()
{
    GraphFrame frame;
    const QByteArray file = svg(frame, graphs::thicknessAgainstValence());
    QCOMPARE(file.count("<image"), 0);
    // Three points, of which two are one dot, and none for the one beside the range.
    QCOMPARE(file.count("<circle") + file.count("<ellipse"), 2);
}

QTEST_MAIN(TestGraphDevices)
#include "tst_GraphDevices.moc"
