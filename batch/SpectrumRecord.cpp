#include "batch/SpectrumRecord.h"

#include <utility>

namespace
{

/// A spectrum that the window does not read: XDI, columns. Of its noise nothing is known but what
/// its points show.
std::optional<SpectrumRecord> readOther(const ByteSource& bytes, const QString& name,
                                        const SpectrumSource& source, const FitBounds& bounds,
                                        QString& why)
{
    auto outcome = readSpectrumFile(bytes, source);
    if (const auto* fault = std::get_if<FileFault>(&outcome)) {
        why = faultText({name, fault->line, fault->reason});
        return std::nullopt;
    }
    auto& found = std::get<FoundSpectrum>(outcome);
    return recordOf(std::move(found.points), name, bounds, found.assumed + found.warnings);
}

} // namespace

SpectrumRecord recordOf(SpectrumPoints points, const QString& name, const FitBounds& bounds,
                        const QStringList& warnings)
{
    SpectrumRecord record;
    record.warnings = warnings;
    record.spectrum = std::make_shared<AXafsData>();
    record.spectrum->fileName = name;
    record.spectrum->setBounds(bounds);
    record.spectrum->setPoints(std::move(points));
    record.spectrum->valid = true;
    record.spectrum->fitVictreens();
    return record;
}

std::optional<SpectrumRecord> readSpectrumRecord(const ByteSource& bytes, const QString& name,
                                                 const SpectrumSource& source,
                                                 const FitBounds& bounds, QString& why)
{
    FileKind kind = source.kind;
    if (kind == FileKind::Unknown)
        kind = source.columns.any() ? FileKind::Columns : fileKindOf(bytes);
    // What looks like nothing is left to the reader of the window, which says so.
    if (kind != FileKind::Beamline && kind != FileKind::Unknown && kind != FileKind::Empty &&
        kind != FileKind::MapText)
        return readOther(bytes, name, source, bounds, why);
    SpectrumRecord record;
    record.spectrum = std::make_shared<AXafsData>();
    record.spectrum->setBounds(bounds);
    if (record.spectrum->read(bytes, name, &record.readings))
        return record;
    why = record.spectrum->refusal.isEmpty() ? QStringLiteral("no spectrum in %1").arg(name)
                                             : record.spectrum->refusal;
    return std::nullopt;
}
