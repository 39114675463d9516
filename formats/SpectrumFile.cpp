#include "formats/SpectrumFile.h"

#include "formats/TableSpectrum.h"
#include "input/SpectrumReader.h"
#include "system/InputFile.h"
#include "text/LineTokens.h"

#include <algorithm>
#include <array>
#include <new>
#include <sstream>

namespace
{

using Outcome = std::variant<FoundSpectrum, FileFault>;

Outcome fault(const QString& reason, int line = 0)
{
    return FileFault{QString(), line, reason};
}

/// The line "Mode" says what the columns hold: 1 is I0, 2 is I, 3 the fluorescence. The fourth and
/// the fifth are taken for I0 and I, whatever it says.
QString modeWarning(const ByteSource& file)
{
    constexpr std::size_t modeTokens = 5;
    constexpr std::size_t incident = 3;
    constexpr std::size_t transmitted = 4;
    std::string head(static_cast<std::size_t>(std::min(headBytes, file.size())), '\0');
    if (!file.read(head.data(), head.size(), 0))
        return {};
    std::istringstream lines(plainText(std::move(head)));
    for (std::string line; std::getline(lines, line);) {
        LineTokens tokens(line);
        std::array<std::string_view, modeTokens> mode;
        for (std::string_view& token : mode)
            token = tokens.next();
        if (mode.front() == "Offset")
            break;
        if (mode.front() != "Mode" || (mode[incident] == "1" && mode[transmitted] == "2"))
            continue;
        return QStringLiteral("the line \"Mode\" does not say that the fourth and fifth column are "
                              "I0 and I of transmission, as which they are read");
    }
    return {};
}

Outcome readBeamline(const ByteSource& file)
{
    FoundSpectrum spectrum;
    spectrum.kind = FileKind::Beamline;
    switch (readSpectrum(file, spectrum.points)) {
    case ReadOutcome::TooLarge:
        return fault(QStringLiteral("is too large"));
    case ReadOutcome::Read:
        break;
    default:
        return fault(QStringLiteral("cannot be read"));
    }
    if (spectrum.points.empty())
        return fault(QStringLiteral("has no rows behind a line with \"Offset\""));
    if (const QString warning = modeWarning(file); !warning.isEmpty())
        spectrum.warnings += warning;
    return spectrum;
}

Outcome readColumns(const ByteSource& file, FileKind kind, const ChosenColumns& columns)
{
    TextTable table;
    if (const auto wrong = readTable(file, table))
        return fault(wrong->reason, wrong->line);
    const auto meaning = columnMeaning(table, columns);
    if (const auto* reason = std::get_if<QString>(&meaning))
        return fault(*reason);
    FoundSpectrum spectrum;
    spectrum.kind = kind;
    if (const auto wrong = tableSpectrum(table, std::get<ColumnMeaning>(meaning), spectrum))
        return fault(wrong->reason, wrong->line);
    return spectrum;
}

} // namespace

Outcome readSpectrumFile(const ByteSource& file, const SpectrumSource& source)
{
    FileKind kind = source.kind;
    if (kind == FileKind::Unknown)
        kind = source.columns.any() ? FileKind::Columns : fileKindOf(file);
    switch (kind) {
    case FileKind::Beamline:
        return readBeamline(file);
    case FileKind::Xdi:
    case FileKind::Columns:
        return readColumns(file, kind, source.columns);
    default:
        break;
    }
    const QString reason = notReadReason(kind);
    return fault(reason.isEmpty() ? QStringLiteral("is %1 and no spectrum").arg(kindName(kind))
                                  : reason);
}

Outcome readSpectrumFile(const QString& path, const SpectrumSource& source)
{
    int error = 0;
    const auto file = InputFile::open(path, &error);
    if (!file)
        return FileFault{path, 0, QStringLiteral("cannot be opened: ") + whyNotOpened(error)};
    try {
        Outcome outcome = readSpectrumFile(*file, source);
        if (auto* wrong = std::get_if<FileFault>(&outcome))
            wrong->path = path;
        return outcome;
    } catch (const std::bad_alloc&) {
        return FileFault{path, 0, QStringLiteral("does not fit in memory")};
    }
}
