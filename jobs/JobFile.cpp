#include "jobs/JobFile.h"

#include "jobs/JobReader.h"
#include "jobs/Nesting.h"
#include "system/InputFile.h"
#include "text/TextBytes.h"

#include <QFileInfo>

#include <cerrno>
#include <memory>
#include <string_view>

namespace
{

constexpr qint64 largestJob = 1 << 20; ///< bytes

/// "file:line:column: "
QString placeText(const QString& file, const JobPlace& place)
{
    QString text = file + QLatin1Char(':');
    for (const int number : {place.line, place.column})
        if (number > 0)
            text += QString::number(number) + QLatin1Char(':');
    return text + QLatin1Char(' ');
}

} // namespace

bool isBefore(const JobPlace& place, const JobPlace& other)
{
    return place.line < other.line || (place.line == other.line && place.column < other.column);
}

QString errorText(const QString& file, const JobError& error)
{
    const QString& key = error.place.key;
    return placeText(file, error.place) + (key.isEmpty() ? key : key + QStringLiteral(": ")) +
           error.reason;
}

QString warningText(const QString& file, const JobError& doubt)
{
    return placeText(file, doubt.place) + QStringLiteral("warning: ") + doubt.reason;
}

std::optional<Job> parseJob(const QByteArray& text, const QString& folder, JobError& error)
{
    const std::string_view toml(text.constData(), static_cast<std::size_t>(text.size()));
    if (const int line = lineOfDeepNesting(toml); line > 0) {
        error = {{line, 0, {}}, QStringLiteral("is nested too deeply for a job")};
        return std::nullopt;
    }
    JobReader reader(text, folder);
    try {
        reader.read(toml::parse(toml));
    } catch (const toml::parse_error& syntax) {
        error = {KeyReader::placeOf(syntax.source(), {}),
                 textFromUtf8(syntax.description()).simplified()};
        return std::nullopt;
    }
    if (reader.error) {
        error = *reader.error;
        return std::nullopt;
    }
    reader.job.folder = folder;
    return reader.job;
}

std::optional<QByteArray> readJobText(const QString& path, JobError& error)
{
    int number = 0;
    const std::unique_ptr<InputFile> file = InputFile::open(path, &number);
    if (!file) {
        error = {{}, QStringLiteral("cannot be opened: ") + whyNotOpened(number)};
        return std::nullopt;
    }
    if (file->size() > largestJob) {
        error = {{}, QStringLiteral("is larger than 1 MiB and no job")};
        return std::nullopt;
    }
    QByteArray text(static_cast<int>(file->size()), Qt::Uninitialized);
    if (!file->read(text.data(), static_cast<std::size_t>(text.size()), 0)) {
        error = {{}, QStringLiteral("cannot be read: ") + qt_error_string(errno)};
        return std::nullopt;
    }
    return text;
}

std::optional<Job> readJob(const QString& path, JobError& error)
{
    const std::optional<QByteArray> text = readJobText(path, error);
    return text ? parseJob(*text, QFileInfo(path).absolutePath(), error) : std::nullopt;
}

QStringList jobKeys()
{
    return JobReader({}, {}).names();
}
