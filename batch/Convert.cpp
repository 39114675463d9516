#include "batch/Convert.h"

#include "batch/Console.h"
#include "batch/ConvertedNames.h"
#include "batch/InputFiles.h"
#include "batch/PreparedJob.h"
#include "formats/BeamlineText.h"
#include "formats/MapText.h"
#include "formats/StackMaps.h"
#include "formats/StackSpectrum.h"
#include "input/KnownPositions.h"
#include "jobs/AlignmentKeys.h"
#include "jobs/JobWriter.h"
#include "jobs/TargetList.h"
#include "system/FileLock.h"
#include "system/InputFile.h"
#include "system/SafeFile.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace
{

/// Why a conversion ends early.
struct Ended {
    ExitStatus status;
    QString reason;
};

/// One file to be copied, or converted as a spectrum.
struct FileStep {
    QString path;
    QString place; ///< in the folder
    SpectrumSource source;
    bool isSpectrum = false;
    bool isTarget = false; ///< one that cannot be read stops no other
    JobPlace from;
};

/// One spectrum to be made of a region of a stack.
struct RegionStep {
    std::shared_ptr<const RegionTarget> region;
    QString place;
};

/// One map to be made of a stack.
struct MapStep {
    const JobMap* map = nullptr;
    std::vector<QString> places; ///< for each [[point]]; empty for none
};

/// The spectra that the window does not read.
bool isOfOthers(const ByteSource& file, const SpectrumSource& source)
{
    FileKind kind = source.kind;
    if (kind == FileKind::Unknown)
        kind = source.columns.any() ? FileKind::Columns : fileKindOf(file);
    return kind != FileKind::Beamline && kind != FileKind::Unknown && kind != FileKind::Empty &&
           kind != FileKind::MapText;
}

const QString unwritten = QStringLiteral(": has a mu-t that no intensities have");

class Conversion
{
public:
    Conversion(const QString& path, const Job& job, const QString& folder)
        : m_path(path), m_job(job), m_new(job), m_names(job.folder, folder), m_inputs(job, path),
          m_jobName(QFileInfo(path).fileName())
    {
        m_new.folder = folder;
        m_names.keep(m_jobName);
    }

    /// Chooses the places of all files; nothing is written yet.
    void plan()
    {
        JobError error;
        const auto list = listOf(m_job, error);
        if (!list)
            throw Ended{ExitStatus::BadJob, errorText(m_path, error)};
        m_inputs.add(list->targets);
        m_inputs.add(list->maps);
        planTargets(list->targets);
        for (JobFilePath& spectrum : m_new.spectra)
            planSpectrum(spectrum);
        if (m_new.points)
            for (JobPoint& point : *m_new.points)
                planCopy(point.map);
        for (std::size_t i = 0; i < m_new.maps.size(); ++i)
            planMap(list->maps[i], m_new.maps[i]);
        planAlignment();
        for (JobFilePath* const result : {&m_new.output, &m_new.mapResult})
            if (!result->path.isEmpty())
                result->path = m_names.whole(m_names.placeOf(result->path));
        m_text = jobText(m_new);
        checkText();
        checkPlaces();
    }

    void write()
    {
        for (const FileStep& step : m_files)
            writeFile(step);
        for (const RegionStep& step : m_regions)
            writeRegion(step);
        for (const MapStep& step : m_maps)
            writeMap(step);
        writeText(m_jobName, m_text);
        sayWhatIsLost();
    }

    bool isWhole() const { return m_unread == 0; }
    QString written() const { return m_names.whole(m_jobName); }

private:
    void planTargets(const std::vector<TargetJob>& targets);
    void planSpectrum(JobFilePath& spectrum);
    void planCopy(JobFilePath& file);
    void planMap(const MapJob& files, JobMap& map);
    void planAlignment();
    void planFoil(const QString& path, const QString& place, bool isTarget);
    void checkText() const;
    void checkPlaces();
    bool converts(const QString& path, const SpectrumSource& source) const;

    void writeFile(const FileStep& step);
    void writeSpectrum(const FileStep& step);
    void writeRegion(const RegionStep& step);
    void writeText(const QString& place, const QByteArray& text);
    bool writePoints(const QString& name, const QString& place, const SpectrumPoints& points);
    void copy(const FileStep& step) const;
    void writeMap(const MapStep& step);
    void sayWhatIsLost() const;
    [[noreturn]] void fail(const QString& place) const
    {
        throw Ended{ExitStatus::FileFailed,
                    m_names.whole(place) + QStringLiteral(": cannot be written")};
    }
    void makeFolderOf(const QString& place) const
    {
        if (!QDir().mkpath(QFileInfo(m_names.whole(place)).path()))
            fail(place);
    }

    QString m_path;
    const Job& m_job;
    Job m_new;
    ConvertedNames m_names;
    InputFiles m_inputs;
    QString m_jobName;
    QByteArray m_text;
    std::vector<FileStep> m_files;
    std::vector<RegionStep> m_regions;
    std::vector<MapStep> m_maps;
    std::size_t m_unread = 0;    ///< targets
    double m_energyChange = 0.0; ///< the largest by the digits of a text, eV
    double m_mutChange = 0.0;
};

bool Conversion::converts(const QString& path, const SpectrumSource& source) const
{
    const auto file = InputFile::open(path);
    return file && isOfOthers(*file, source);
}

/// A region becomes a file like any other.
void Conversion::planTargets(const std::vector<TargetJob>& targets)
{
    m_new.targets.clear();
    m_new.stackTargets.clear();
    for (const TargetJob& target : targets) {
        const JobFilePath& file = target.file;
        const QString place =
            target.region
                ? m_names.placeOf(
                      QDir(m_job.folder)
                          .filePath(QStringLiteral("targets/%1.dat").arg(target.region->name)))
                : m_names.placeOf(file.path, m_job.targetSource);
        if (target.region)
            m_regions.push_back({target.region, place});
        else
            m_files.push_back({file.path, place, m_job.targetSource, true, true, file.place});
        m_new.targets.push_back({literalPattern(place)});
    }
    if (m_job.targetSource.kind != FileKind::Beamline)
        m_new.targetSource = {};
}

void Conversion::planSpectrum(JobFilePath& spectrum)
{
    if (spectrum.path.isEmpty())
        return;
    const QString place = m_names.placeOf(spectrum.path, spectrum.source);
    m_files.push_back({spectrum.path, place, spectrum.source, true, false, spectrum.place});
    if (converts(spectrum.path, spectrum.source))
        spectrum.source = {};
    spectrum.path = m_names.whole(place);
}

void Conversion::planCopy(JobFilePath& file)
{
    if (file.path.isEmpty())
        return;
    const QString place = m_names.placeOf(file.path);
    m_files.push_back({file.path, place, {}, false, false, file.place});
    file.path = m_names.whole(place);
}

void Conversion::planMap(const MapJob& files, JobMap& map)
{
    map.pattern = {};
    if (!map.stack) {
        map.images = files.images;
        for (JobFilePath& image : map.images)
            planCopy(image);
        return;
    }
    MapStep step;
    step.map = &m_job.maps[static_cast<std::size_t>(&map - m_new.maps.data())];
    map.stack.reset();
    map.images.clear();
    int row = 0;
    for (const JobPoint& point : *m_job.points) {
        ++row;
        const bool wanted = point.use || point.vPoint;
        const QString name = QStringLiteral("maps/%1/%2.txt").arg(map.name).arg(row);
        step.places.push_back(wanted ? m_names.placeOf(QDir(m_job.folder).filePath(name))
                                     : QString());
        map.images.push_back({wanted ? m_names.whole(step.places.back()) : QString()});
    }
    m_maps.push_back(std::move(step));
}

/// The foil of a spectrum, by the name that the spectrum has in the folder.
void Conversion::planFoil(const QString& path, const QString& place, bool isTarget)
{
    const JobFilePath& foil = m_job.alignment.foil;
    const QString from = foilFile(m_job, path);
    const QString to = QDir(m_new.folder).relativeFilePath(foilFile(m_new, m_names.whole(place)));
    if (!QFileInfo::exists(from))
        return; // the target is refused for it, as it was
    m_names.keep(to);
    m_files.push_back({from, to, foil.source, true, isTarget, foil.place});
    if (converts(from, foil.source))
        m_new.alignment.foil.source = {};
}

void Conversion::planAlignment()
{
    JobAlignment& alignment = m_new.alignment;
    const auto sayMoved = [&](const QString& from, const QString& to) {
        if (!alignment.table.path.isEmpty())
            console::say(
                QStringLiteral("%1 is %2 now; the table of shifts has its old name").arg(from, to));
    };
    for (const FileStep& step : m_files)
        if (step.isSpectrum && QDir(m_job.folder).relativeFilePath(step.path) != step.place)
            sayMoved(step.path, step.place);
    for (const RegionStep& step : m_regions)
        sayMoved(step.region->name, step.place);
    planCopy(alignment.table);
    if (alignment.foil.path.isEmpty())
        return;
    const QString suffix = QFileInfo(alignment.foil.path).suffix();
    alignment.foil.path = QStringLiteral("foils/{name}");
    if (!suffix.isEmpty() && !suffix.contains(QLatin1Char('}')))
        alignment.foil.path += QLatin1Char('.') + suffix;
    const std::vector<FileStep> spectra = m_files;
    for (const FileStep& step : spectra)
        if (step.isSpectrum)
            planFoil(step.path, step.place, step.isTarget);
    for (const RegionStep& step : m_regions)
        planFoil(step.region->name, step.place, true);
}

/// The job to come is one.
void Conversion::checkText() const
{
    JobError error;
    if (!parseJob(m_text, m_new.folder, error))
        throw Ended{ExitStatus::BadJob, QStringLiteral("The converted job would be none: ") +
                                            errorText(m_names.whole(m_jobName), error)};
}

void Conversion::checkPlaces()
{
    QStringList places{m_jobName};
    for (const FileStep& step : m_files)
        places += step.place;
    for (const RegionStep& step : m_regions)
        places += step.place;
    for (const MapStep& step : m_maps)
        for (const QString& place : step.places)
            places += place;
    for (const QString& place : places) {
        const QString path = m_names.whole(place);
        const QString lost = place.isEmpty() ? QString() : m_inputs.lostBy(path);
        if (!lost.isEmpty())
            throw Ended{ExitStatus::BadJob,
                        QStringLiteral("%1 would be written over %2").arg(path, lost)};
    }
}

void Conversion::writeFile(const FileStep& step)
{
    makeFolderOf(step.place);
    if (step.isSpectrum && converts(step.path, step.source))
        writeSpectrum(step);
    else
        copy(step);
}

void Conversion::writeSpectrum(const FileStep& step)
{
    const auto outcome = readSpectrumFile(step.path, step.source);
    QString reason;
    if (const auto* fault = std::get_if<FileFault>(&outcome)) {
        reason = faultText(*fault);
    } else {
        const auto& found = std::get<FoundSpectrum>(outcome);
        if (!writePoints(QFileInfo(step.path).fileName(), step.place, found.points))
            reason = step.path + unwritten;
        for (const QString& warning : found.warnings)
            console::say(QStringLiteral("%1: %2").arg(step.path, warning));
    }
    if (!reason.isEmpty()) {
        if (!step.isTarget)
            throw Ended{ExitStatus::BadJob, errorText(m_path, {step.from, reason})};
        ++m_unread;
        console::say(reason + QStringLiteral("; it is copied as it is"));
        return copy(step);
    }
}

/// @return false where a mu-t cannot be written
bool Conversion::writePoints(const QString& name, const QString& place,
                             const SpectrumPoints& points)
{
    const BeamlineText text = beamlineText(name.toUtf8(), points);
    if (text.text.isEmpty())
        return false;
    m_energyChange = std::max(m_energyChange, text.energyChange);
    m_mutChange = std::max(m_mutChange, text.mutChange);
    writeText(place, text.text);
    return true;
}

void Conversion::writeText(const QString& place, const QByteArray& text)
{
    SafeFile file(m_names.whole(place));
    if (!file.open() || !file.write(text.constData(), text.size()) || !file.commit())
        fail(place);
}

/// A stack that cannot be read stops no other target: a text says why there is no spectrum.
void Conversion::writeRegion(const RegionStep& step)
{
    makeFolderOf(step.place);
    const JobStack& given = step.region->stack;
    FileFault fault;
    StackSpectrum found;
    const std::unique_ptr<Stack> stack = openStack(given.source, fault);
    std::optional<FileFault> wrong = fault;
    if (stack)
        wrong =
            stackSpectrum(*stack, given.source.path, given.region, {given.tilt, given.row0}, found);
    QString reason = wrong ? faultText(*wrong) : QString();
    if (!wrong && !writePoints(step.region->name, step.place, found.points))
        reason = given.source.path + unwritten;
    for (const QString& warning : found.warnings)
        console::say(QStringLiteral("target %1: %2").arg(step.region->name, warning));
    if (!found.readings.empty() && m_job.noise == NoiseModel::Counts)
        console::say(QStringLiteral("target %1: counts are not carried, and with them its noise")
                         .arg(step.region->name));
    if (reason.isEmpty())
        return;
    ++m_unread;
    console::say(QStringLiteral("target %1: %2; its file says so").arg(step.region->name, reason));
    writeText(step.place, "# no spectrum: " + reason.toUtf8().replace("Offset", "offset") + '\n');
}

void Conversion::copy(const FileStep& step) const
{
    constexpr std::int64_t piece = std::int64_t{1} << 20;
    int error = 0;
    const auto from = InputFile::open(step.path, &error);
    if (!from)
        throw Ended{ExitStatus::BadJob,
                    errorText(m_path, {step.from, QStringLiteral("cannot open %1: %2")
                                                      .arg(step.path, whyNotOpened(error))})};
    SafeFile to(m_names.whole(step.place));
    if (!to.open())
        fail(step.place);
    std::vector<char> bytes(static_cast<std::size_t>(std::min(piece, from->size())));
    for (std::int64_t at = 0; at < from->size(); at += piece) {
        const auto count = static_cast<std::size_t>(std::min(piece, from->size() - at));
        if (!from->read(bytes.data(), count, at))
            throw Ended{ExitStatus::BadJob, step.path + QStringLiteral(": cannot be read")};
        if (!to.write(bytes.data(), static_cast<qint64>(count)))
            fail(step.place);
    }
    if (!to.commit())
        fail(step.place);
}

void Conversion::writeMap(const MapStep& step)
{
    const JobStack& given = *step.map->stack;
    const Settings settings = settingsOf(m_job);
    FileFault fault;
    const std::unique_ptr<Stack> stack = openStack(given.source, fault);
    std::vector<double> energies;
    QStringList places;
    for (std::size_t i = 0; i < step.places.size(); ++i)
        if (!step.places[i].isEmpty() && settings.points[i].energy) {
            energies.push_back(*settings.points[i].energy);
            places += step.places[i];
        }
    std::vector<MapData> images;
    std::optional<FileFault> wrong = fault;
    if (stack)
        wrong = stackMaps(*stack, given.source.path, energies, given.region, images);
    if (wrong)
        throw Ended{ExitStatus::BadJob, errorText(m_path, {given.place, faultText(*wrong)})};
    if (given.tilt != 0.0)
        console::say(QStringLiteral("map %1: tilt_ev_per_row is not carried: in the window the "
                                    "references are taken at the energies of the points")
                         .arg(step.map->name));
    if (stack->facts().values == StackValues::Counts && m_job.noise != NoiseModel::None)
        console::say(QStringLiteral("map %1: counts are not carried, and with them the noise of "
                                    "its images")
                         .arg(step.map->name));
    for (std::size_t k = 0; k < images.size(); ++k) {
        const QString& place = places[static_cast<int>(k)];
        makeFolderOf(place);
        SafeFile file(m_names.whole(place));
        if (!file.open() || !writeMapText(file, images[k], energies[k]) || !file.commit())
            fail(place);
    }
}

void Conversion::sayWhatIsLost() const
{
    if (m_job.alignment.any())
        console::say(
            QStringLiteral("[alignment] is carried for drovik-batch alone: the window shows "
                           "the energies of the files"));
    if (m_energyChange > 0.0 || m_mutChange > 0.0)
        console::say(QStringLiteral("the spectra are carried to %1 eV and %2 of mu-t")
                         .arg(m_energyChange, 0, 'g', 2)
                         .arg(m_mutChange, 0, 'g', 2));
}

/// The right to write a folder: an empty or a new one, or one of an earlier conversion.
std::unique_ptr<FileLock> takeFolder(const QString& folder)
{
    const QString lockPath = QDir(folder).filePath(QStringLiteral(".convert.lock"));
    if (QFileInfo(folder).exists() && !QFileInfo(folder).isDir())
        throw Ended{ExitStatus::BadJob, QStringLiteral("%1 is no folder").arg(folder)};
    if (!QFileInfo::exists(lockPath) && !QDir(folder).isEmpty(QDir::AllEntries | QDir::Hidden |
                                                              QDir::System | QDir::NoDotAndDotDot))
        throw Ended{ExitStatus::BadJob,
                    QStringLiteral("%1 is not empty, and no earlier conversion").arg(folder)};
    if (!QDir().mkpath(folder))
        throw Ended{ExitStatus::FileFailed,
                    QStringLiteral("cannot make the folder %1").arg(folder)};
    bool inUse = false;
    QString why;
    auto lock = FileLock::take(lockPath, inUse, why);
    if (!lock)
        throw Ended{inUse ? ExitStatus::BadJob : ExitStatus::FileFailed,
                    inUse ? QStringLiteral("%1 is being written by %2").arg(folder, why)
                          : QStringLiteral("cannot write %1: %2").arg(lockPath, why)};
    return lock;
}

} // namespace

ExitStatus convertJob(const QString& path, const Job& job, const QString& folder, bool quiet)
{
    try {
        const QString to = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
        Conversion conversion(path, job, to);
        conversion.plan();
        const std::unique_ptr<FileLock> lock = takeFolder(to);
        conversion.write();
        if (!quiet)
            console::say(QStringLiteral("Written: ") + conversion.written());
        return conversion.isWhole() ? ExitStatus::Done : ExitStatus::SomeRefused;
    } catch (const Ended& ended) {
        console::say(ended.reason);
        return ended.status;
    }
}
