#include "batch/InspectionPicture.h"

#include "batch/GraphPictures.h"
#include "batch/MapPictures.h"
#include "results/MapPicture.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace
{

/// The colours span all values but a hundredth at each end: hot pixels would take them all.
AxisEnds rangeOf(const PixelArray<double>& values)
{
    std::vector<double> numbers;
    numbers.reserve(values.size());
    std::copy_if(values.begin(), values.end(), std::back_inserter(numbers),
                 [](double value) { return std::isfinite(value); });
    if (numbers.empty())
        return {0.0, 1.0};
    constexpr std::size_t hundredth = 100;
    const auto at = [&numbers](std::size_t i) {
        const auto place = numbers.begin() + static_cast<std::ptrdiff_t>(i);
        std::nth_element(numbers.begin(), place, numbers.end());
        return *place;
    };
    const std::size_t cut = numbers.size() / hundredth;
    return {at(cut), at(numbers.size() - 1 - cut)};
}

QImage imageOf(const Inspection& inspection, const OutputWords& words)
{
    const MapData& map = *inspection.image;
    MapPixels pixels;
    pixels.columns = map.columns;
    pixels.rows = map.rows;
    pixels.a = map.mut.data();
    pixels.t = map.mut.data();
    pixels.positions = map.positions;
    pixels.valences = {1.0, 0.0}; // whose mean is the value itself
    MapCaptions captions =
        mapCaptions(words, inOneLine(inspection.imageTitle), inspection.positions);
    captions.valence = inspection.imageValues;
    MapPicture picture;
    const AxisEnds range = rangeOf(map.mut);
    picture.setMap(pixels, std::make_shared<const MapGrid>(pixels), MapQuantity::Valence,
                   {range, range});
    GraphFrame frame;
    return mapImage(picture, captions, frame);
}

QImage spectrumOf(const FittedSpectrum& spectrum, bool isMut, const OutputWords& words)
{
    PreviewCaptions captions;
    QString values = QStringLiteral("numbers");
    if (isMut)
        values = words.ofWindow(spectrumWords, "mut");
    if (isMut && std::isfinite(spectrum.edgeJump()) && std::isfinite(spectrum.edgeJumpNoC()))
        captions = previewCaptions(words);
    return graphPicture(words.ofWindow(spectrumWords, "Eng.[eV]"), values,
                        [&](QPainter& painter, GraphFrame& frame) {
                            drawSpectrumPreview(painter, frame, &spectrum, captions);
                        });
}

QImage sideBySide(const QImage& left, const QImage& right)
{
    if (left.isNull() || right.isNull())
        return left.isNull() ? right : left;
    QImage both(left.width() + right.width(), std::max(left.height(), right.height()),
                QImage::Format_RGB32);
    both.fill(Qt::white);
    QPainter painter(&both);
    painter.drawImage(0, 0, left);
    painter.drawImage(left.width(), 0, right);
    return both;
}

} // namespace

QImage inspectionPicture(const Inspection& inspection)
{
    const OutputWords words(QStringLiteral("en"));
    const QImage image = inspection.image ? imageOf(inspection, words) : QImage();
    const QImage graph =
        inspection.spectrum ? spectrumOf(*inspection.spectrum, inspection.isMut, words) : QImage();
    return sideBySide(image, graph);
}
