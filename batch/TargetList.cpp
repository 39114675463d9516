#include "batch/TargetList.h"

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

/// The regular files that a pattern matches, in no order.
/// @param folder   what the pattern starts from, if it is relative
QByteArrayList matches(const QString& folder, const QString& pattern)
{
    const QByteArray name = QFile::encodeName(pattern);
    const QByteArray whole =
        QDir::isAbsolutePath(pattern) ? name : literally(QFile::encodeName(folder)) + '/' + name;
    glob_t found = {};
    QByteArrayList files;
    if (glob(whole.constData(), GLOB_NOSORT, nullptr, &found) == 0)
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

std::optional<std::vector<JobFilePath>> targetList(const Job& job, JobError& error)
{
    std::map<QByteArray, JobPlace> places; // by the bytes of the path
    for (const JobFilePath& given : job.targets) {
        const QString path = QDir(job.folder).filePath(given.path);
        QByteArrayList files{QFile::encodeName(path)};
        // A file of that very name is meant, whatever its characters mean in a pattern.
        if (!QFileInfo::exists(path))
            files = matches(job.folder, given.path);
        if (files.isEmpty()) {
            error = {given.place, QStringLiteral("no file is named, or matched by, %1").arg(path)};
            return std::nullopt;
        }
        for (const QByteArray& file : files)
            places.emplace(QFile::encodeName(QDir::cleanPath(QFile::decodeName(file))),
                           given.place);
    }
    std::vector<JobFilePath> targets;
    targets.reserve(places.size());
    for (const auto& [path, place] : places)
        targets.push_back({QFile::decodeName(path), place});
    return targets;
}
