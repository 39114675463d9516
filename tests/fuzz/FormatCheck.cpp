#include "formats/BeamlineText.h"
#include "formats/CameraHeader.h"
#include "formats/FileKind.h"
#include "formats/SpectrumFile.h"
#include "formats/StackEnergies.h"
#include "tests/fuzz/ReaderChecks.h"
#include "tests/support/ArrayBytes.h"

#include <algorithm>
#include <cmath>

namespace
{

const char* faultDifference(const FileFault& fault, const QByteArray& text)
{
    if (fault.reason.isEmpty() || fault.reason.contains(QLatin1Char('\n')))
        return "the reason of the refusal";
    const auto lines = text.count('\n') + text.count('\r') + 1;
    const bool utf8 = !text.startsWith("\xff\xfe") && !text.startsWith("\xfe\xff") &&
                      !text.startsWith(QByteArray("\0\0\xfe\xff", 4));
    if (utf8 && (fault.line < 0 || fault.line > lines))
        return "the line of the refusal";
    return nullptr;
}

/// A frame lies within what its file can hold, at every place.
const char* cameraDifference(const ArrayBytes& file)
{
    for (const std::int64_t offset : {std::int64_t{0}, file.size() / 2, file.size()}) {
        const auto header = cameraHeaderAt(file, offset);
        if (!header)
            continue;
        const std::int64_t bytes = header->end() - offset;
        if (header->columns < 1 || header->rows < 1 || header->begin < offset || bytes < 1)
            return "the place of a camera's frame";
        if (header->frames < 1 ||
            (header->frames > 1 && header->frames * bytes > file.size() - offset))
            return "the number of a camera's frames";
    }
    return nullptr;
}

const char* energiesDifference(const ArrayBytes& file)
{
    QString reason;
    const std::vector<double> energies = energiesOf(file, reason);
    return energies.empty() == reason.isEmpty() ? "energies, or why there are none" : nullptr;
}

/// What is written for the window has as many points.
const char* textDifference(const SpectrumPoints& points)
{
    constexpr std::size_t most = 4; // the others are written alike
    const SpectrumPoints some(points.begin(), points.begin() + static_cast<std::ptrdiff_t>(
                                                                   std::min(most, points.size())));
    const BeamlineText written = beamlineText("points", some);
    if (written.text.isEmpty())
        return nullptr; // a mu-t beyond all intensities
    const auto outcome = readSpectrumFile(ArrayBytes(written.text), {});
    const auto* found = std::get_if<FoundSpectrum>(&outcome);
    if (found == nullptr || found->points.size() != some.size())
        return "the points of a text for the window";
    for (std::size_t i = 0; i < some.size(); ++i)
        if (std::abs(found->points[i].mut - some[i].mut) > 1e-12 * (1.0 + std::abs(some[i].mut)))
            return "a mu-t of a text for the window";
    return nullptr;
}

} // namespace

const char* check::formatDifference(const QByteArray& text)
{
    const ArrayBytes file(text);
    if (const char* difference = cameraDifference(file))
        return difference;
    if (const char* difference = energiesDifference(file))
        return difference;
    for (const FileKind kind : {FileKind::Unknown, FileKind::Xdi}) {
        SpectrumSource source;
        source.kind = kind;
        const auto outcome = readSpectrumFile(file, source);
        if (const auto* fault = std::get_if<FileFault>(&outcome)) {
            if (const char* difference = faultDifference(*fault, text))
                return difference;
            continue;
        }
        const auto& spectrum = std::get<FoundSpectrum>(outcome);
        if (spectrum.points.empty())
            return "a spectrum without points";
        if (spectrum.kind == FileKind::Beamline)
            continue; // the window's reader, which has a check of its own
        for (const SpectrumPoint& point : spectrum.points)
            if (!(point.energy > 0.0) || !std::isfinite(point.energy) || !std::isfinite(point.mut))
                return "a point that is no number";
        if (const char* difference = textDifference(spectrum.points))
            return difference;
    }
    return nullptr;
}
