#include "input/AXafsData.h"

#include "input/SpectrumReader.h"

#include <QDebug>

#include <new>
#include <utility>

namespace
{

/// Why a file was not taken; empty for one that was read and for one that cannot be opened, of
/// which nothing is said.
QString refusalText(ReadOutcome outcome, const QString& path)
{
    if (outcome == ReadOutcome::TooLarge)
        return QStringLiteral("The spectrum file [%1] is too large.").arg(path);
    if (outcome == ReadOutcome::Unreadable)
        return QStringLiteral("The spectrum file [%1] cannot be read.").arg(path);
    return {};
}

} // namespace

bool AXafsData::read(const QString& path)
{
    SpectrumPoints found;
    const ReadOutcome outcome = readSpectrum(path, found);
    return take(outcome, std::move(found), path);
}

bool AXafsData::read(const ByteSource& bytes, const QString& path, std::vector<Readings>* readings)
{
    try {
        SpectrumPoints found;
        const ReadOutcome outcome = readSpectrum(bytes, found, 0, readings);
        return take(outcome, std::move(found), path);
    } catch (const std::bad_alloc&) {
        return take(ReadOutcome::TooLarge, {}, path);
    }
}

bool AXafsData::take(ReadOutcome outcome, SpectrumPoints found, const QString& path)
{
    refusal = refusalText(outcome, path);
    if (outcome == ReadOutcome::CannotOpen)
        qDebug() << "Can't open a XAFS file" << path;
    if (outcome != ReadOutcome::Read)
        return false;
    fileName = path;
    setPoints(std::move(found));
    valid = !points.empty();
    fitVictreens();
    return valid;
}
