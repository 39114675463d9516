#include "formats/FileKind.h"
#include "formats/SpectrumFile.h"
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

} // namespace

const char* check::formatDifference(const QByteArray& text)
{
    const ArrayBytes file(text);
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
    }
    return nullptr;
}
