#include "batch/ReportMaps.h"

#include "batch/HtmlText.h"
#include "batch/MapPictures.h"
#include "batch/MapReadOut.h"
#include "batch/ReportTable.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QtEndian>

#include <algorithm>

namespace
{

/// What pictures and read-outs may add to a page that is still to be opened on a phone.
constexpr qint64 mostPictureBytes = qint64{32} << 20;
constexpr std::size_t mostReadOutBytes = std::size_t{16} << 20;
constexpr qint64 largestPicture = qint64{16} << 20;

struct Caption {
    const char* ending; ///< of the file's name
    const char* text;
};

constexpr Caption captions[] = {
    {"-valence-masked.png",
     QT_TRANSLATE_NOOP("Output", "Map of valences that mean something: dark red where t/ts is not "
                                 "known to a third")},
    {"-sigma-valence.png",
     QT_TRANSLATE_NOOP("Output", "Standard deviation of each pixel's valence, by counting alone")},
    {"-sigma-thickness.png",
     QT_TRANSLATE_NOOP("Output", "Standard deviation of each pixel's t/ts, by counting alone")},
    {"-valence-by-thickness.png",
     QT_TRANSLATE_NOOP("Output", "Valence by thickness: thin pixels are pale")},
    {"-histogram-valence.png", QT_TRANSLATE_NOOP("Output", "Histogram of valences")},
    {"-histogram-thickness.png", QT_TRANSLATE_NOOP("Output", "Histogram of t/ts")},
    {"-valence.png", QT_TRANSLATE_NOOP("Output", "Map of valences")},
    {"-thickness.png", QT_TRANSLATE_NOOP("Output", "Map of t/ts")},
    {"-t-a.png", QT_TRANSLATE_NOOP("Output", "t/ts against valence")},
    {"LCF vs 4PS.png",
     QT_TRANSLATE_NOOP("Output", "Valence by the point method against that by the fit")},
    {"Ref 1.png", QT_TRANSLATE_NOOP("Output", "Reference 1")},
    {"Ref 2.png", QT_TRANSLATE_NOOP("Output", "Reference 2")},
    {"Blank sample.png", QT_TRANSLATE_NOOP("Output", "Blank")},
};

QString captionOf(const QString& path, const OutputWords& words)
{
    for (const Caption& caption : captions)
        if (path.endsWith(QLatin1String(caption.ending)))
            return words(caption.text);
    return QFileInfo(path).completeBaseName();
}

/// Takes pictures into the page as long as it does not become too large.
class Pictures
{
public:
    explicit Pictures(const OutputWords& words) : m_words(words) {}

    QByteArray figure(const QString& path, bool withReadOut)
    {
        const QString caption = captionOf(path, m_words);
        QFile file(path);
        const QString name = QFileInfo(path).fileName();
        if (!file.open(QIODevice::ReadOnly) || file.size() > largestPicture)
            return note(m_words("The picture %1 is missing.").arg(name));
        if (m_bytes + file.size() > mostPictureBytes)
            return note(m_words("The picture %1 is left to its file, as the page would be too "
                                "large.")
                            .arg(name));
        m_bytes += file.size();
        const QByteArray bytes = file.readAll();
        QImageReader reader(path);
        const QSize size = reader.size();
        const QString plot = reader.text(QString::fromLatin1(plotAreaKey));
        QByteArray html = "<figure>\n<div class=\"picture\"><img alt=\"" + htmlText(caption) +
                          "\" width=\"" + QByteArray::number(size.width()) + "\" height=\"" +
                          QByteArray::number(size.height()) + '"';
        if (withReadOut && !plot.isEmpty())
            html += " data-plot=\"" + htmlText(plot) + R"(" tabindex="0")";
        html += " src=\"data:image/png;base64," + bytes.toBase64() + "\"></div>\n<figcaption>" +
                htmlText(caption) + "</figcaption>\n</figure>\n";
        return html;
    }

private:
    static QByteArray note(const QString& text) { return "<p>" + htmlText(text) + "</p>\n"; }

    const OutputWords& m_words;
    qint64 m_bytes = 0;
};

QByteArray numbers(const std::vector<double>& values)
{
    QByteArray json;
    for (const double value : values)
        json += (json.isEmpty() ? "" : ",") + QByteArray::number(value, 'g', 12);
    return '[' + json + ']';
}

QByteArray base64(const std::vector<float>& values)
{
    QByteArray bytes(static_cast<int>(values.size() * sizeof(float)), '\0');
    for (std::size_t i = 0; i < values.size(); ++i)
        qToLittleEndian(values[i], bytes.data() + i * sizeof(float));
    return bytes.toBase64();
}

QByteArray readOutScript(const MapReadOut& readOut)
{
    return R"(<script type="application/json" class="values">{"columns":)" +
           QByteArray::number(readOut.columns) + ",\"rows\":" + QByteArray::number(readOut.rows) +
           ",\"x\":" + numbers(readOut.xEdges) + ",\"y\":" + numbers(readOut.yEdges) +
           R"(,"valence":")" + base64(readOut.valence) + R"(","thickness":")" +
           base64(readOut.thickness) + "\"}</script>\n";
}

QByteArray readOutLine(const MapReadOut& readOut, const OutputWords& words)
{
    const QString what =
        readOut.block == 1
            ? words("The values under the pointer are those of each pixel.")
            : words("The values under the pointer are those of one pixel out of each block of "
                    "%1 x %1.")
                  .arg(readOut.block);
    QByteArray html = "<p class=\"hint\">" +
                      htmlText(words("Point at a map, or choose it with Tab and move with the "
                                     "arrow keys.")) +
                      ' ' + htmlText(what) + "</p>\n";
    const QString place =
        readOut.inPositionUnits ? words("position (%1, %2): ") : words("column %1, row %2: ");
    html += R"(<output class="readout" data-place=")" + htmlText(place) + "\" data-valence=\"" +
            htmlText(words("valence %1")) + "\" data-thickness=\"" + htmlText(words(", t/ts %1")) +
            "\" data-none=\"" + htmlText(words("no result")) + "\">&nbsp;</output>\n";
    return html;
}

/// By how much read-outs are reduced so that all of them fit.
int readOutFactor(const std::vector<MapReadOut>& readOuts)
{
    int factor = 1;
    const auto bytes = [&] {
        std::size_t sum = 0;
        for (const MapReadOut& readOut : readOuts)
            sum += readOut.bytes() / static_cast<std::size_t>(factor * factor);
        return sum;
    };
    while (bytes() > mostReadOutBytes && factor < 256)
        factor *= 2;
    return factor;
}

std::vector<MapReadOut> readOutsOf(const std::vector<ReportMap>& maps)
{
    std::vector<MapReadOut> readOuts;
    readOuts.reserve(maps.size());
    for (const ReportMap& map : maps)
        readOuts.push_back(readOutFromBytes(map.readOut).value_or(MapReadOut()));
    const int factor = readOutFactor(readOuts);
    if (factor > 1)
        for (MapReadOut& readOut : readOuts)
            if (readOut.columns > 0)
                readOut = readOut.reduced(factor);
    return readOuts;
}

} // namespace

QByteArray mapsSection(const ReportFacts& facts, const OutputWords& words)
{
    if (facts.maps.empty())
        return {};
    QByteArray html = "<section id=\"maps\">\n<h2>" + htmlText(words("Maps")) + "</h2>\n";
    html += mapsTable(facts, words);
    const std::vector<MapReadOut> readOuts = readOutsOf(facts.maps);
    Pictures pictures(words);
    const int name = facts.mapColumns.indexOf("map");
    const int refusal = facts.mapColumns.indexOf("refusal");
    for (std::size_t i = 0; i < facts.maps.size(); ++i) {
        const ReportMap& map = facts.maps[i];
        html += "<article class=\"map\">\n<h3><bdi>" + htmlText(map.fields.value(name)) +
                "</bdi></h3>\n";
        const QByteArray reason = map.fields.value(refusal);
        if (!reason.isEmpty())
            html += "<p><strong>" + htmlText(words("Refused:")) + "</strong> " +
                    htmlText(words.line(QString::fromUtf8(reason))) + "</p>\n";
        const bool withReadOut = readOuts[i].columns > 0;
        if (withReadOut)
            html += readOutLine(readOuts[i], words) + readOutScript(readOuts[i]);
        html += "<div class=\"figures\">\n";
        for (const QString& path : map.pictures)
            html += pictures.figure(path, withReadOut);
        html += "</div>\n</article>\n";
    }
    return html + "</section>\n";
}

QByteArray graphsSection(const ReportFacts& facts, const OutputWords& words)
{
    if (facts.graphs.isEmpty())
        return {};
    QByteArray html = "<section id=\"graphs\">\n<h2>" + htmlText(words("Graphs")) +
                      "</h2>\n<div class=\"figures\">\n";
    Pictures pictures(words);
    for (const QString& path : facts.graphs)
        html += pictures.figure(path, false);
    return html + "</div>\n</section>\n";
}
