#include "app/GraphPicture.h"

#include "display/DispArea.h"

#include <QBuffer>
#include <QPageSize>
#include <QPdfWriter>
#include <QSvgGenerator>

#include <algorithm>

namespace
{

constexpr double metresPerInch = 0.0254;
constexpr double pointsPerInch = 72.0;

/// Device pixels for one of the canvas: of a small graph more.
int fineness(QSize canvas)
{
    constexpr int finest = 4;
    constexpr int longestSide = 4000;
    const int side = std::max({canvas.width(), canvas.height(), 1});
    return std::max(1, std::min(finest, longestSide / side));
}

int dotsPerMetre(double dotsPerInch)
{
    return qRound(dotsPerInch / metresPerInch);
}

void writePng(QBuffer& buffer, DispArea& canvas)
{
    graphImage(canvas).save(&buffer, "PNG");
}

void writeSvg(QBuffer& buffer, DispArea& canvas, const QString& title)
{
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setResolution(canvas.logicalDpiX());
    generator.setSize(canvas.size());
    generator.setViewBox(canvas.rect());
    generator.setTitle(title);
    canvas.paintOn(generator);
}

void writePdf(QBuffer& buffer, DispArea& canvas, const QString& title)
{
    QPdfWriter writer(&buffer);
    writer.setResolution(canvas.logicalDpiX());
    writer.setPageSize(QPageSize(QSizeF(canvas.size()) * pointsPerInch / canvas.logicalDpiX(),
                                 QPageSize::Point, QString(), QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF());
    writer.setTitle(title);
    canvas.paintOn(writer);
}

} // namespace

QImage graphImage(DispArea& canvas)
{
    const int scale = fineness(canvas.size());
    QImage image(canvas.size() * scale, QImage::Format_RGB32);
    if (image.isNull())
        return image;
    image.fill(Qt::white);
    // While it is painted, letters are as large as on the canvas.
    image.setDotsPerMeterX(dotsPerMetre(canvas.logicalDpiX()));
    image.setDotsPerMeterY(dotsPerMetre(canvas.logicalDpiY()));
    image.setDevicePixelRatio(scale);
    canvas.paintOn(image);
    image.setDevicePixelRatio(1.0);
    image.setDotsPerMeterX(dotsPerMetre(canvas.logicalDpiX() * scale));
    image.setDotsPerMeterY(dotsPerMetre(canvas.logicalDpiY() * scale));
    return image;
}

QStringList pictureSuffixes()
{
    return {QStringLiteral("png"), QStringLiteral("svg"), QStringLiteral("pdf")};
}

QByteArray graphPicture(DispArea& canvas, const QString& suffix, const QString& title)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (suffix == QLatin1String("svg"))
        writeSvg(buffer, canvas, title);
    else if (suffix == QLatin1String("pdf"))
        writePdf(buffer, canvas, title);
    else
        writePng(buffer, canvas);
    return buffer.data();
}
