#include "batch/Alignment.h"

#include "batch/SourceFile.h"
#include "batch/SpectrumRecord.h"
#include "input/SpectrumReader.h"
#include "jobs/AlignmentKeys.h"
#include "text/NumberText.h"

#include <QDir>
#include <QFile>

namespace
{

/// A file that all results depend on, as it was read.
struct CommonFile {
    SourceFile source;
    RecordedFile recorded;
};

std::optional<CommonFile> openCommon(const QString& path, const QString& shown,
                                     std::int64_t largest, QString& why)
{
    std::optional<SourceFile> source = SourceFile::open(path, why);
    if (!source) {
        why = QStringLiteral("cannot open %1: %2").arg(shown, why);
        return std::nullopt;
    }
    if (source->bytes().size() > largest) {
        why = QStringLiteral("%1 is too large").arg(shown);
        return std::nullopt;
    }
    const std::optional<Digest> digest = source->digest();
    if (!digest) {
        why = QStringLiteral("cannot read %1").arg(shown);
        return std::nullopt;
    }
    return CommonFile{std::move(*source), {shown.toUtf8(), *digest}};
}

} // namespace

std::shared_ptr<const Alignment> Alignment::read(const Job& job, const FitBounds& bounds,
                                                 JobError& error)
{
    std::shared_ptr<Alignment> alignment(new Alignment(job, bounds));
    if (!job.alignment.table.path.isEmpty() && !alignment->readTable(error))
        return nullptr;
    for (const auto spectrum :
         {SpectrumSet::Ref1, SpectrumSet::Ref2, SpectrumSet::Target, SpectrumSet::Blank})
        if (!alignment->readShift(spectrum, error))
            return nullptr;
    return alignment;
}

QString Alignment::shown(const QString& path) const
{
    return QDir(m_job.folder).relativeFilePath(path);
}

bool Alignment::readTable(JobError& error)
{
    const JobFilePath& file = m_job.alignment.table;
    const QString name = shown(file.path);
    error.place = file.place;
    const auto table = openCommon(file.path, name, largestShiftTable, error.reason);
    if (!table)
        return false;
    const ByteSource& bytes = table->source.bytes();
    QByteArray text(static_cast<int>(bytes.size()), Qt::Uninitialized);
    if (!bytes.read(text.data(), static_cast<std::size_t>(text.size()), 0) ||
        !table->source.isStill(table->recorded.digest)) {
        error.reason = QStringLiteral("%1 changes while it is read").arg(name);
        return false;
    }
    FileFault fault{name, 0, {}};
    auto shifts = readShiftTable(text, m_job.folder, fault);
    if (!shifts) {
        error.reason = faultText(fault);
        return false;
    }
    m_table = std::move(*shifts);
    m_inputs.push_back(table->recorded);
    return true;
}

std::optional<FittedSpectrum> Alignment::readFoil(const QString& path, JobError& error)
{
    const JobFilePath& foil = m_job.alignment.foil;
    const QString name = shown(path);
    error.place = foil.place;
    const auto file = openCommon(path, name, largestSpectrum, error.reason);
    if (!file)
        return std::nullopt;
    const auto record =
        readSpectrumRecord(file->source.bytes(), name, foil.source, m_bounds, error.reason);
    if (!record)
        return std::nullopt;
    if (!file->source.isStill(file->recorded.digest)) {
        error.reason = QStringLiteral("%1 changes while it is read").arg(name);
        return std::nullopt;
    }
    m_inputs.push_back(file->recorded);
    return *record->spectrum;
}

bool Alignment::readShift(SpectrumSet::Index spectrum, JobError& error)
{
    const QString& path = m_job.spectra[spectrum].path;
    const QString& given = m_job.alignment.shifts[spectrum].energy;
    if (!given.isEmpty())
        m_shifts[spectrum] = {numberFromText(given), 0.0};
    if (path.isEmpty())
        return true;
    if (!m_job.alignment.table.path.isEmpty()) {
        error = {tablePlace(), whyNotNamed(path)};
        m_shifts[spectrum] = {m_table.value(shiftTableName(m_job.folder, path)), 0.0};
        return error.reason.isEmpty();
    }
    if (!hasFoil(m_job.alignment, spectrum))
        return true;
    const QString foilPath = foilFile(m_job, path);
    auto foil = readFoil(foilPath, error);
    if (!foil)
        return false;
    if (spectrum == SpectrumSet::Ref1) {
        m_scale = std::move(foil);
        return true;
    }
    const auto shift = foundFor(*foil, foilPath, error.reason);
    m_shifts[spectrum] = shift.value_or(EnergyShift());
    return shift.has_value();
}

std::optional<EnergyShift> Alignment::foundFor(const FittedSpectrum& foil, const QString& path,
                                               QString& why) const
{
    if (const auto found = foundShift(foil, *m_scale))
        return EnergyShift{found->shift, found->sigma};
    why = QStringLiteral("no shift up to 5 eV brings %1 upon %2")
              .arg(shown(path), shown(foilFile(m_job, m_job.spectra[SpectrumSet::Ref1].path)));
    return std::nullopt;
}

QString Alignment::targetFoil(const QString& path) const
{
    return hasFoil(m_job.alignment, SpectrumSet::Target) ? foilFile(m_job, path) : QString();
}

QString Alignment::whyNotNamed(const QString& path) const
{
    const QString& table = m_job.alignment.table.path;
    if (table.isEmpty() || m_table.contains(shiftTableName(m_job.folder, path)))
        return {};
    return QStringLiteral("%1 has no shift of %2").arg(shown(table), shown(path));
}

std::optional<EnergyShift> Alignment::ofTarget(const QString& path, const ByteSource* foil,
                                               QString& why) const
{
    const QString foilPath = targetFoil(path);
    if (foilPath.isEmpty()) {
        why = whyNotNamed(path);
        if (!why.isEmpty())
            return std::nullopt;
        return m_job.alignment.table.path.isEmpty()
                   ? of(SpectrumSet::Target)
                   : EnergyShift{m_table.value(shiftTableName(m_job.folder, path)), 0.0};
    }
    if (foil == nullptr) {
        why = QStringLiteral("there is no foil %1").arg(shown(foilPath));
        return std::nullopt;
    }
    const auto record =
        readSpectrumRecord(*foil, shown(foilPath), m_job.alignment.foil.source, m_bounds, why);
    if (!record)
        return std::nullopt;
    return foundFor(*record->spectrum, foilPath, why);
}
