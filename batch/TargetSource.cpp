#include "batch/TargetSource.h"

#include "batch/JobKey.h"
#include "batch/SourceFile.h"
#include "formats/StackSpectrum.h"
#include "input/SpectrumReader.h"

#include <QDir>

#include <mutex>

namespace
{

class FileSource : public TargetSource
{
public:
    FileSource(SourceFile file, QString name) : m_file(std::move(file)), m_name(std::move(name)) {}

    /// A file that is no spectrum by its size is not read.
    SourceInputs inputs() const override
    {
        if (m_file.bytes().size() > largestSpectrum)
            return {};
        return {m_file.digest(), {}};
    }

    std::optional<SpectrumRecord> spectrum(const SpectrumSource& readAs, const FitBounds& bounds,
                                           QString& why) const override
    {
        return readSpectrumRecord(m_file.bytes(), m_name, readAs, bounds, why);
    }

    QString changed(const SourceInputs& inputs) const override
    {
        return inputs.input && !m_file.isStill(*inputs.input) ? m_name : QString();
    }

private:
    SourceFile m_file;
    QString m_name;
};

/// So many pixels are large: then one region is read after the other, whatever the threads are.
constexpr std::int64_t largeRegion = std::int64_t{1} << 20;

std::unique_lock<std::mutex> turnOf(const Stack& stack, const Region& region)
{
    static std::mutex mutex;
    const StackFacts& facts = stack.facts();
    const bool whole = region.width == 0;
    const std::int64_t pixels = std::int64_t{whole ? facts.columns : region.width} *
                                std::int64_t{whole ? facts.rows : region.height};
    return pixels > largeRegion ? std::unique_lock<std::mutex>(mutex)
                                : std::unique_lock<std::mutex>();
}

class RegionSource : public TargetSource
{
public:
    RegionSource(QString folder, std::shared_ptr<const RegionTarget> region, FileDigests& digests)
        : m_folder(std::move(folder)), m_region(std::move(region)), m_digests(digests)
    {
    }

    SourceInputs inputs() const override
    {
        SourceInputs found;
        for (const QString& path : m_region->files) {
            const auto digest = m_digests.of(path);
            if (!digest)
                return {};
            found.files.push_back({shown(path).toUtf8(), *digest});
        }
        found.input = digestOfStack(m_region->stack);
        return found;
    }

    std::optional<SpectrumRecord> spectrum(const SpectrumSource& readAs, const FitBounds& bounds,
                                           QString& why) const override;

    QString changed(const SourceInputs& inputs) const override
    {
        if (inputs.input)
            for (const QString& path : m_region->files)
                if (!m_digests.isStill(path))
                    return shown(path);
        return {};
    }

private:
    QString shown(const QString& path) const { return QDir(m_folder).relativeFilePath(path); }

    QString m_folder; ///< of the job
    std::shared_ptr<const RegionTarget> m_region;
    FileDigests& m_digests;
};

std::optional<SpectrumRecord> RegionSource::spectrum(const SpectrumSource& /*readAs*/,
                                                     const FitBounds& bounds, QString& why) const
{
    const JobStack& given = m_region->stack;
    FileFault fault;
    const std::unique_ptr<Stack> stack = openStack(given.source, fault);
    StackSpectrum found;
    std::optional<FileFault> wrong = fault;
    if (stack) {
        const auto turn = turnOf(*stack, given.region);
        wrong =
            stackSpectrum(*stack, given.source.path, given.region, {given.tilt, given.row0}, found);
    }
    if (wrong) {
        // As the job names the file, wherever the job is.
        why = faultText(*wrong).remove(m_folder + QLatin1Char('/'));
        return std::nullopt;
    }
    SpectrumRecord record =
        recordOf(std::move(found.points), m_region->name, bounds,
                 stack->facts().assumed + stack->facts().warnings + found.warnings);
    record.readings = std::move(found.readings);
    return record;
}

} // namespace

std::unique_ptr<TargetSource> openTarget(const Job& job, const TargetJob& target,
                                         const QString& name, FileDigests& digests, QString& why)
{
    if (target.region)
        return std::make_unique<RegionSource>(job.folder, target.region, digests);
    QString reason;
    auto file = SourceFile::open(target.file.path, reason);
    if (file)
        return std::make_unique<FileSource>(std::move(*file), name);
    why = QStringLiteral("cannot open %1: %2").arg(name, reason);
    return nullptr;
}
