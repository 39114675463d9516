#include "batch/GraphPictures.h"

#include "batch/PictureFolder.h"
#include "results/FourPointGraph.h"
#include "results/LcfGraph.h"
#include "results/MutsGraph.h"
#include "system/SafeFile.h"

#include <QImage>

namespace
{

/// Writes the pictures of a folder; graphs that show nothing have none.
class Pictures
{
public:
    Pictures(const GraphPictureOptions& options, const QString& folder)
        : words(options.language), m_folder(options.folder + QStringLiteral("/pictures/") + folder)
    {
        dropUnfinishedFiles(m_folder);
    }

    void add(const QString& name, const QImage& image)
    {
        if (!image.isNull())
            files.add(writePicture(m_folder + name + QStringLiteral(".png"), image));
    }

    QImage preview(const FittedSpectrum* spectrum) const
    {
        const PreviewCaptions captions = previewCaptions(words);
        return graphPicture(words.ofWindow(spectrumWords, "Eng.[eV]"),
                            words.ofWindow(spectrumWords, "mut"),
                            [&](QPainter& painter, GraphFrame& frame) {
                                drawSpectrumPreview(painter, frame, spectrum, captions);
                            });
    }

    OutputWords words;
    PictureFiles files;

private:
    QString m_folder;
};

MutsContent mutsContent(const Settings& settings, const AnalysisInput& input,
                        const FittedSpectrum* fit)
{
    MutsContent content;
    content.edge = settings.edge;
    content.preEndOffset = settings.preEdgeEnd;
    content.postStartOffset = settings.postEdgeStart;
    content.rows = input.table;
    content.selected.assign(input.spectra.all.begin(), input.spectra.all.end());
    content.fit = fit;
    return content;
}

} // namespace

PreviewCaptions previewCaptions(const OutputWords& words)
{
    return {words.ofWindow(spectrumWords, "Edge Jump(1) : %1"),
            words.ofWindow(spectrumWords, "Edge Jump(2) : %1")};
}

PictureFiles drawReferenceGraphs(const AnalysisInput& input, const GraphPictureOptions& options)
{
    Pictures pictures(options, QString());
    for (const auto& [index, name] :
         {std::pair(SpectrumSet::Ref1, "Ref 1"), std::pair(SpectrumSet::Ref2, "Ref 2"),
          std::pair(SpectrumSet::Blank, "Blank sample")})
        pictures.add(QString::fromLatin1(name), pictures.preview(input.spectra[index]));
    return pictures.files;
}

PictureFiles drawTargetGraphs(const QString& target, const Settings& settings,
                              const AnalysisInput& input, const LinearCombination* fit,
                              const GraphPictureOptions& options)
{
    Pictures pictures(options, picturePath(target) + QLatin1Char('/'));
    const OutputWords& words = pictures.words;
    pictures.add(QStringLiteral("Target"), pictures.preview(input.spectra[SpectrumSet::Target]));
    FittedSpectrum curve;
    if (fit != nullptr)
        curve.points = fit->curve;
    const MutsContent content = mutsContent(settings, input, fit != nullptr ? &curve : nullptr);
    pictures.add(QStringLiteral("Muts"),
                 graphPicture(words.ofPanel("Eng.[eV]"), words.ofPanel("mut"),
                              [&](QPainter& painter, GraphFrame& frame) {
                                  drawMutsGraph(painter, frame, content);
                              }));
    const double rho = thicknessRatios(input).selected(input.conditions.thickness);
    pictures.add(QStringLiteral("M2M3"), graphPicture(words.ofPanel("M2"), words.ofPanel("M3"),
                                                      [&](QPainter& painter, GraphFrame& frame) {
                                                          drawFourPointGraph(painter, frame,
                                                                             input.table, rho);
                                                      }));
    return pictures.files;
}

PictureFiles drawComparisonGraph(const std::vector<LCFvs4PSPoint>& points,
                                 const ReferenceValences& valences,
                                 const GraphPictureOptions& options)
{
    Pictures pictures(options, QString());
    const OutputWords& words = pictures.words;
    pictures.add(QStringLiteral("LCF vs 4PS"),
                 graphPicture(words.ofPanel("LCF"), words.ofPanel("4ps"),
                              [&](QPainter& painter, GraphFrame& frame) {
                                  drawLcfGraph(painter, frame, points, valences);
                              }));
    return pictures.files;
}
