#include "batch/PictureFile.h"

#include "display/FramePainter.h"
#include "display/PngBytes.h"
#include "system/SafeFile.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QPainter>

namespace
{

constexpr QSize graphSize(560, 420);

} // namespace

void PictureFiles::add(const PictureFiles& more)
{
    written += more.written;
    failed += more.failed;
}

PictureFiles writePicture(const QString& path, const QImage& image)
{
    const QByteArray bytes = pngBytes(image);
    SafeFile file(path);
    if (!bytes.isEmpty() && QDir().mkpath(QFileInfo(path).path()) && file.open() &&
        file.write(bytes.constData(), bytes.size()) && file.commit())
        return {{path}, {}};
    return {{}, {path}};
}

QImage graphPicture(const QString& xTitle, const QString& yTitle,
                    const std::function<void(QPainter&, GraphFrame&)>& paint)
{
    QImage image(graphSize, QImage::Format_RGB32);
    GraphFrame frame;
    frame.xTitle = xTitle;
    frame.yTitle = yTitle;
    frame.xTitleInGraph = frame.yTitleInGraph = true;
    frame.begin(graphSize.width(), graphSize.height());
    QPainter painter(&image);
    paint(painter, frame);
    if (frame.coord.valid != 1)
        return {};
    drawAxisTitles(painter, frame);
    return image;
}
