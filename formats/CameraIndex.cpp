#include "formats/CameraIndex.h"

#include "formats/TextTable.h"
#include "input/SpectrumReader.h"
#include "system/InputFile.h"
#include "text/LineTokens.h"
#include "text/NumberText.h"

#include <array>
#include <sstream>

namespace
{

/// I0 of the rows that the reader of spectra takes for such: five tokens, behind "Offset".
std::vector<double> incidentOf(const std::string& text)
{
    constexpr std::size_t rowTokens = 5;
    constexpr std::size_t incidentToken = 3;
    std::vector<double> incident;
    bool started = false;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        LineTokens tokens(line);
        std::array<std::string_view, rowTokens> row;
        for (std::string_view& token : row)
            token = tokens.next();
        if (started && !row.back().empty())
            incident.push_back(numberFromToken(row[incidentToken]));
        started = started || line.find("Offset") != std::string::npos;
    }
    return incident;
}

} // namespace

std::optional<FileFault> readCameraIndex(const QString& path, CameraIndex& index)
{
    const auto fault = [&path](const QString& reason) { return FileFault{path, 0, reason}; };
    int error = 0;
    const auto file = InputFile::open(path, &error);
    if (!file)
        return fault(QStringLiteral("cannot be opened: ") + whyNotOpened(error));
    if (file->size() > static_cast<std::int64_t>(largestTable))
        return fault(QStringLiteral("is larger than 64 MiB and no index of frames"));
    SpectrumPoints points;
    std::string bytes(static_cast<std::size_t>(file->size()), '\0');
    if (readSpectrum(*file, points) != ReadOutcome::Read ||
        !file->read(bytes.data(), bytes.size(), 0))
        return fault(QStringLiteral("cannot be read"));
    index.incident = incidentOf(plainText(std::move(bytes)));
    if (points.empty() || index.incident.size() != points.size())
        return fault(QStringLiteral("is no index of frames: it has no rows behind \"Offset\""));
    for (const SpectrumPoint& point : points)
        index.energies.push_back(point.energy);
    return std::nullopt;
}
