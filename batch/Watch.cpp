#include "batch/Watch.h"

#include "batch/ExitStatus.h"
#include "batch/WatchedFiles.h"
#include "jobs/AlignmentKeys.h"
#include "jobs/TargetList.h"
#include "system/Signals.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <glob.h>
#include <set>

namespace
{

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// Without a notice the files are looked at so often; with many files not all the time.
constexpr milliseconds betweenLooks{400};
constexpr int timesTheLook = 4;

/// A notice is rarely the only one.
constexpr milliseconds afterNotice{50};

QByteArrayList foldersMatching(const QByteArray& pattern)
{
    glob_t found = {};
    QByteArrayList folders;
    if (glob(pattern.constData(), GLOB_NOSORT, nullptr, &found) == 0)
        for (std::size_t i = 0; i < found.gl_pathc; ++i)
            if (QFileInfo(QFile::decodeName(found.gl_pathv[i])).isDir())
                folders += found.gl_pathv[i];
    globfree(&found);
    return folders;
}

bool isPattern(const QByteArray& name)
{
    return name.contains('*') || name.contains('?') || name.contains('[');
}

/// @param pattern  from the root on
void addFolders(const QByteArray& pattern, std::set<QByteArray>& folders)
{
    const QByteArrayList names = pattern.split('/');
    QByteArrayList above{"/"};
    QByteArray path;
    for (int i = 1; i < names.size(); ++i) {
        const bool last = i + 1 == names.size();
        path += '/' + names[i];
        const QByteArrayList here = last ? QByteArrayList() : foldersMatching(path);
        if (last || here.isEmpty() || isPattern(names[i]))
            folders.insert(above.begin(), above.end());
        if (here.isEmpty())
            return;
        above = here;
    }
}

std::vector<QByteArray> imagesOf(const MapJob& map)
{
    std::vector<QByteArray> images;
    for (const JobFilePath& image : map.images)
        if (!image.path.isEmpty())
            images.push_back(QFile::encodeName(image.path));
    return images;
}

/// The target's file, or those of its stack, and its foil's.
std::vector<QByteArray> filesOf(const Job& job, const TargetJob& target)
{
    std::vector<QByteArray> files;
    for (const QString& path : target.files())
        files.push_back(QFile::encodeName(path));
    if (hasFoil(job.alignment, SpectrumSet::Target))
        files.push_back(QFile::encodeName(foilFile(job, target.path())));
    return files;
}

/// Unlike the path of any file.
QByteArray nameOf(const MapJob& map)
{
    return "map " + map.name.toUtf8();
}

/// The path of its file, or for a region a name that no file has as its path.
QByteArray nameOf(const TargetJob& target)
{
    return target.region ? "region " + target.path().toUtf8() : QFile::encodeName(target.file.path);
}

class Watch
{
public:
    Watch(PreparedJob& prepared, WatchedFiles seen, const WatchActions& actions,
          FolderWatch& folders)
        : m_prepared(prepared), m_files(std::move(seen)), m_actions(actions), m_folders(folders)
    {
        for (const TargetJob& target : m_prepared.list.targets)
            m_shown.insert(nameOf(target));
        for (const MapJob& map : m_prepared.list.maps)
            m_shown.insert(nameOf(map));
    }

    int run()
    {
        milliseconds look = betweenLooks;
        while (stopSignal() == 0) {
            m_folders.setFolders(watchedFolders(m_prepared.job));
            const milliseconds pause = m_files.anyPending() ? WatchedFiles::quiet / 4 : look;
            if (m_folders.wait(static_cast<int>(pause.count())) && stopSignal() == 0)
                m_folders.wait(static_cast<int>(afterNotice.count()));
            if (stopSignal() != 0)
                break;
            const Clock::time_point begun = Clock::now();
            if (const auto status = lookAround())
                return *status;
            look = std::max(betweenLooks, std::chrono::duration_cast<milliseconds>(
                                              timesTheLook * (Clock::now() - begun)));
        }
        return static_cast<int>(ExitStatus::Stopped) + stopSignal();
    }

private:
    void setDone(const JobList& list);
    std::optional<int> lookAround();
    JobList listNow() const;
    bool isReady(const QByteArray& file, Clock::time_point now);
    template <class Item>
    void sort(const Item& item, const std::vector<QByteArray>& files, const QByteArray& name,
              Clock::time_point now, std::vector<Item>& due, std::vector<Item>& ready,
              std::set<QByteArray>& shown);

    PreparedJob& m_prepared;
    WatchedFiles m_files;
    const WatchActions& m_actions;
    FolderWatch& m_folders;
    std::set<QByteArray> m_shown; ///< names of targets and maps in the results
};

JobList Watch::listNow() const
{
    JobList list = presentListOf(m_prepared.job);
    // None of the results is an input.
    const QString output = QFileInfo(m_prepared.job.output.path).canonicalFilePath();
    const auto isOwn = [&output](const TargetJob& target) {
        return !target.region && !output.isEmpty() &&
               QFileInfo(target.file.path)
                   .canonicalFilePath()
                   .startsWith(output + QLatin1Char('/'));
    };
    list.targets.erase(std::remove_if(list.targets.begin(), list.targets.end(), isOwn),
                       list.targets.end());
    return list;
}

/// Whether a file is as it was when it was analysed, or has stopped growing.
bool Watch::isReady(const QByteArray& file, Clock::time_point now)
{
    return m_files.look(file, now) && (!m_files.isPending(file) || m_files.isDue(file, now));
}

/// @param due    gets what is whole and has changed
/// @param ready  gets what has results or will have: what is being written keeps its row until then
template <class Item>
void Watch::sort(const Item& item, const std::vector<QByteArray>& files, const QByteArray& name,
                 Clock::time_point now, std::vector<Item>& due, std::vector<Item>& ready,
                 std::set<QByteArray>& shown)
{
    bool isWhole = true;
    bool isPending = false;
    for (const QByteArray& file : files) {
        isWhole = isReady(file, now) && isWhole;
        isPending = m_files.isPending(file) || isPending;
    }
    if (isWhole && isPending)
        due.push_back(item);
    if (!isWhole && m_shown.count(name) == 0)
        return;
    ready.push_back(item);
    shown.insert(name);
}

void Watch::setDone(const JobList& list)
{
    for (const TargetJob& target : list.targets)
        for (const QByteArray& file : filesOf(m_prepared.job, target))
            m_files.setDone(file);
    for (const MapJob& map : list.maps)
        for (const QByteArray& image : imagesOf(map))
            m_files.setDone(image);
}

std::optional<int> Watch::lookAround()
{
    const Clock::time_point now = Clock::now();
    const JobList list = listNow();
    JobList due;
    JobList ready;
    std::set<QByteArray> shown;
    for (const TargetJob& target : list.targets)
        sort(target, filesOf(m_prepared.job, target), nameOf(target), now, due.targets,
             ready.targets, shown);
    for (const MapJob& map : list.maps)
        sort(map, imagesOf(map), nameOf(map), now, due.maps, ready.maps, shown);
    const bool anyDue = !due.targets.empty() || !due.maps.empty();
    if (!anyDue && shown == m_shown)
        return std::nullopt;
    m_prepared.list = due;
    bool any = false;
    if (anyDue)
        if (const auto status = m_actions.calculate(m_prepared, any))
            return status;
    setDone(due);
    m_prepared.list = std::move(ready);
    std::swap(m_shown, shown);
    return any || m_shown != shown ? m_actions.write(m_prepared) : std::nullopt;
}

} // namespace

QByteArrayList watchedFolders(const Job& job)
{
    std::set<QByteArray> folders;
    for (const JobFilePath& given : job.targets)
        addFolders(wholePattern(job, given.path), folders);
    for (const JobStackTarget& target : job.stackTargets)
        for (const QString& path :
             stackFiles(target.stack.source) + QStringList(target.stack.source.path))
            addFolders(QFile::encodeName(literalPattern(path)), folders);
    if (hasFoil(job.alignment, SpectrumSet::Target))
        addFolders(QFile::encodeName(literalPattern(foilFile(job, QStringLiteral("foil")))),
                   folders);
    for (const QString& image : imagesOfMaps(job))
        addFolders(QFile::encodeName(literalPattern(image)), folders);
    QByteArrayList list;
    for (const QByteArray& folder : folders)
        list += folder;
    return list;
}

void lookAt(const Job& job, const JobList& list, WatchedFiles& files)
{
    const Clock::time_point now = Clock::now();
    for (const TargetJob& target : list.targets)
        for (const QByteArray& file : filesOf(job, target))
            files.takeAsDone(file, now);
    for (const MapJob& map : list.maps)
        for (const QByteArray& image : imagesOf(map))
            files.takeAsDone(image, now);
}

int watchJob(PreparedJob& prepared, WatchedFiles seen, const WatchActions& actions,
             FolderWatch& folders)
{
    return Watch(prepared, std::move(seen), actions, folders).run();
}
