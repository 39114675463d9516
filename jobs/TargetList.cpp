#include "jobs/TargetList.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <map>

#include <glob.h>

namespace
{

/// A path where what the system's patterns are made of stands for itself.
QByteArray literally(const QByteArray& path)
{
    QByteArray result;
    for (const char c : path) {
        if (c == '*' || c == '?' || c == '[' || c == '\\')
            result += '\\';
        result += c;
    }
    return result;
}

/// The files that a name or a pattern of the job gives, in no order.
QByteArrayList filesOf(const Job& job, const JobFilePath& given)
{
    const QString path = QDir(job.folder).filePath(given.path);
    // A file of that very name is meant, whatever its characters mean in a pattern.
    if (QFileInfo::exists(path))
        return {QFile::encodeName(path)};
    glob_t found = {};
    QByteArrayList files;
    if (glob(wholePattern(job, given.path).constData(), GLOB_NOSORT, nullptr, &found) == 0)
        for (std::size_t i = 0; i < found.gl_pathc; ++i)
            if (QFileInfo(QFile::decodeName(found.gl_pathv[i])).isFile())
                files += found.gl_pathv[i];
    globfree(&found);
    return files;
}

} // namespace

QString literalPattern(const QString& path)
{
    return QFile::decodeName(literally(QFile::encodeName(path)));
}

QByteArray wholePattern(const Job& job, const QString& pattern)
{
    const QByteArray name = QFile::encodeName(pattern);
    return QDir::isAbsolutePath(pattern) ? name
                                         : literally(QFile::encodeName(job.folder)) + '/' + name;
}

std::vector<JobFilePath> presentTargets(const Job& job)
{
    std::map<QByteArray, JobPlace> places; // by the bytes of the path
    for (const JobFilePath& given : job.targets)
        for (const QByteArray& file : filesOf(job, given))
            places.emplace(QFile::encodeName(QDir::cleanPath(QFile::decodeName(file))),
                           given.place);
    std::vector<JobFilePath> targets;
    targets.reserve(places.size());
    for (const auto& [path, place] : places)
        targets.push_back({QFile::decodeName(path), place});
    return targets;
}

std::optional<std::vector<JobFilePath>> targetList(const Job& job, JobError& error)
{
    for (const JobFilePath& given : job.targets)
        if (filesOf(job, given).isEmpty()) {
            error = {given.place, QStringLiteral("no file is named, or matched by, %1")
                                      .arg(QDir(job.folder).filePath(given.path))};
            return std::nullopt;
        }
    return presentTargets(job);
}
