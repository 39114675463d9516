#include "batch/MapPictures.h"

#include "batch/MapReadOut.h"
#include "batch/SigmaPixels.h"
#include "results/HistogramGraph.h"
#include "results/ThicknessGraph.h"

#include <QFont>
#include <QPainter>

#include <array>
#include <optional>
#include <utility>

namespace
{

AxisEnds ends(const HistogramSettings& settings)
{
    return {settings.first, settings.last};
}

/// From the first to the last box, so that a picture counts as "below" and "above" what the row of
/// the map does.
AxisEnds boxes(const HistogramCounts& histogram, const HistogramSettings& settings)
{
    return histogram.from < histogram.to ? AxisEnds{histogram.from, histogram.to} : ends(settings);
}

class MapPainter
{
public:
    MapPainter(const QString& name, const MapPictureInput& input, const QString& language)
        : m_input(input), m_words(language),
          m_captions(mapCaptions(m_words, name, input.positions)),
          m_pixels(mapPixels(input.results, input.valences, input.missing)),
          m_grid(std::make_shared<const MapGrid>(m_pixels)),
          m_ranges{boxes(input.valenceHistogram, input.valenceSettings),
                   boxes(input.thicknessHistogram, input.thicknessSettings)},
          m_xRange(ends(input.valenceSettings)), m_yRange(ends(input.thicknessSettings))
    {
        if (input.sigmas != nullptr)
            m_sigmas.emplace(m_pixels, *input.sigmas);
    }

    QImage map(MapQuantity quantity) const
    {
        return painted(m_pixels, quantity, m_ranges, m_captions);
    }

    /// Without pixels whose valence means nothing.
    QImage masked() const
    {
        MapPixels pixels = m_pixels;
        pixels.meaningless = m_sigmas->meaningless();
        return painted(pixels, MapQuantity::Valence, m_ranges, m_captions);
    }

    /// Standard deviations.
    QImage sigma(MapQuantity quantity) const
    {
        MapCaptions captions = m_captions;
        captions.valence = m_words("σ of the valence");
        captions.thickness = m_words("σ of t/ts");
        return painted(m_sigmas->pixels(), quantity, m_sigmas->ranges(), captions);
    }

    QImage painted(const MapPixels& pixels, MapQuantity quantity, const MapRanges& ranges,
                   const MapCaptions& captions) const
    {
        MapPicture picture;
        picture.setMap(pixels, m_grid, quantity, ranges);
        GraphFrame frame;
        QImage image = mapImage(picture, captions, frame);
        image.setText(QString::fromLatin1(plotAreaKey), plotAreaText(frame.coord, image.size()));
        return image;
    }

    QImage valenceHistogram() const
    {
        return graphPicture(m_words("Valence"), m_words.ofPanel("Num."),
                            [this](QPainter& painter, GraphFrame& frame) {
                                drawValenceHistogram(painter, frame, m_input.valenceHistogram,
                                                     m_xRange, m_input.valences);
                            });
    }

    QImage thicknessHistogram() const
    {
        return graphPicture(m_words.ofPanel("Thick."), m_words.ofPanel("Num."),
                            [this](QPainter& painter, GraphFrame& frame) {
                                drawThicknessHistogram(painter, frame, m_input.thicknessHistogram,
                                                       m_yRange);
                            });
    }

    QImage cloud() const
    {
        return graphPicture(m_words("Valence"), m_words.ofPanel("Thick."),
                            [this](QPainter& painter, GraphFrame& frame) {
                                const MapPoints points{m_pixels.a, m_pixels.t, m_pixels.size(), 0};
                                ThicknessGraph().draw(painter, frame, points, m_input.valences,
                                                      m_xRange, m_yRange);
                            });
    }

private:
    const MapPictureInput& m_input;
    OutputWords m_words;
    MapCaptions m_captions;
    MapPixels m_pixels;
    std::shared_ptr<const MapGrid> m_grid;
    MapRanges m_ranges;
    AxisEnds m_xRange; ///< of the graphs, as in the window
    AxisEnds m_yRange;
    std::optional<SigmaPixels> m_sigmas;
};

struct Kind {
    const char* name;
    bool ofThickness;
    QImage (*paint)(const MapPainter&);
    bool ofSigmas = false;
};

constexpr std::array<Kind, 9> kinds{{
    {"valence", false, [](const MapPainter& map) { return map.map(MapQuantity::Valence); }},
    {"thickness", true, [](const MapPainter& map) { return map.map(MapQuantity::Thickness); }},
    {"valence-by-thickness", true,
     [](const MapPainter& map) { return map.map(MapQuantity::ValenceByThickness); }},
    {"histogram-valence", false, [](const MapPainter& map) { return map.valenceHistogram(); }},
    {"histogram-thickness", true, [](const MapPainter& map) { return map.thicknessHistogram(); }},
    {"t-a", true, [](const MapPainter& map) { return map.cloud(); }},
    {"valence-masked", false, [](const MapPainter& map) { return map.masked(); }, true},
    {"sigma-valence", false, [](const MapPainter& map) { return map.sigma(MapQuantity::Valence); },
     true},
    {"sigma-thickness", true,
     [](const MapPainter& map) { return map.sigma(MapQuantity::Thickness); }, true},
}};

std::pair<const char*, const char*> axisTitles(PositionUnit unit)
{
    switch (unit) {
    case PositionUnit::Pixels:
        return {QT_TRANSLATE_NOOP("Output", "x (pixels)"),
                QT_TRANSLATE_NOOP("Output", "y (pixels)")};
    case PositionUnit::Micrometres:
        return {QT_TRANSLATE_NOOP("Output", "x (µm)"), QT_TRANSLATE_NOOP("Output", "y (µm)")};
    case PositionUnit::Stage:
        break;
    }
    return {QT_TRANSLATE_NOOP("Output", "Position 1 (units of the stage)"),
            QT_TRANSLATE_NOOP("Output", "Position 2 (units of the stage)")};
}

} // namespace

QImage mapImage(MapPicture& picture, const MapCaptions& captions, GraphFrame& frame)
{
    const QFont font;
    QImage image(picture.goodSize(font, captions), QImage::Format_RGB32);
    frame.begin(image.width(), image.height());
    QPainter painter(&image);
    painter.setFont(font);
    picture.draw(painter, frame, captions);
    return image;
}

MapCaptions mapCaptions(const OutputWords& words, const QString& title, PositionUnit unit)
{
    MapCaptions captions;
    captions.title = title;
    captions.valence = words("Valence");
    captions.thickness = words("t/ts");
    captions.missing = words("no result: %1");
    captions.below = words("below %1: %2");
    captions.above = words("above %1: %2");
    captions.thinner = words("t/ts below %1, shown palest: %2");
    captions.thicker = words("t/ts above %1, shown fullest: %2");
    captions.hidden = words("covered by other pixels: %1");
    captions.reduced = words("a dot shows one of %1 x %2 pixels");
    captions.stretched = words("the axes have different scales");
    const auto [first, second] = axisTitles(unit);
    captions.first = words(first);
    captions.second = words(second);
    captions.column = words("Column");
    captions.row = words("Row");
    captions.meaningless = words("valence means nothing: %1");
    return captions;
}

QString plotAreaText(const ChCoord& coord, QSize canvas)
{
    QString text = QStringLiteral("%1 %2").arg(canvas.width()).arg(canvas.height());
    for (const double number :
         {coord.px0, coord.py0, coord.px1, coord.py1, coord.rx0, coord.ry0, coord.rx1, coord.ry1})
        text += QLatin1Char(' ') + QString::number(number, 'g', 17);
    return text;
}

MapPixels mapPixels(const MapResults& results, const ReferenceValences& valences,
                    const MissingPixels* missing)
{
    MapPixels pixels;
    pixels.columns = results.columns;
    pixels.rows = results.rows;
    pixels.a = results.a.data();
    pixels.t = results.t.data();
    pixels.positions = results.positions;
    pixels.valences = valences;
    pixels.missing = missing;
    return pixels;
}

PictureFiles drawMapPictures(const QString& folder, const QString& name,
                             const MapPictureInput& input, const QString& language,
                             Workers& workers)
{
    const MapPainter painter(name, input, language);
    std::array<PictureFiles, kinds.size()> files;
    workers.run(kinds.size(), [&](std::size_t i, unsigned) {
        if ((kinds[i].ofThickness && !input.hasThickness) ||
            (kinds[i].ofSigmas && input.sigmas == nullptr))
            return;
        const QImage image = kinds[i].paint(painter);
        if (!image.isNull())
            files[i] = writePicture(folder + QLatin1Char('/') + name + QLatin1Char('-') +
                                        QLatin1String(kinds[i].name) + QStringLiteral(".png"),
                                    image);
    });
    PictureFiles all;
    for (const PictureFiles& some : files)
        all.add(some);
    return all;
}

QByteArray mapReadOut(const MapPictureInput& input)
{
    const MapPixels pixels = mapPixels(input.results, input.valences, input.missing);
    return readOutBytes(mapReadOut(pixels, MapGrid(pixels), input.hasThickness));
}
