#include "batch/InspectFile.h"

#include "batch/Console.h"
#include "batch/InputFiles.h"
#include "batch/InspectionPicture.h"
#include "batch/PictureFile.h"

namespace
{

/// The picture replaces no file that was looked at.
QString lostBy(const QString& path, const QString& picture)
{
    StackSource source;
    source.path = path;
    InputFiles files({}, path);
    std::vector<TargetJob> beside;
    for (const QString& file : stackFiles(source))
        beside.push_back({{file}});
    files.add(beside);
    return files.lostBy(picture);
}

ExitStatus draw(const Inspection& inspection, const QString& path, const QString& picture)
{
    if (!lostBy(path, picture).isEmpty()) {
        console::say(picture + QStringLiteral(": would be written over the file itself"));
        return ExitStatus::BadJob;
    }
    const QImage image = inspectionPicture(inspection);
    if (image.isNull()) {
        console::say(inOneLine(path) + QStringLiteral(": there is nothing to draw"));
        return ExitStatus::SomeRefused;
    }
    if (writePicture(picture, image).failed.isEmpty())
        return ExitStatus::Done;
    console::say(picture + QStringLiteral(": cannot be written"));
    return ExitStatus::FileFailed;
}

} // namespace

ExitStatus inspect(const QString& path, const QString& picture)
{
    const auto outcome = inspectFile(path);
    if (const auto* fault = std::get_if<FileFault>(&outcome)) {
        console::say(inOneLine(faultText(*fault)));
        return ExitStatus::BadJob;
    }
    const auto& inspection = std::get<Inspection>(outcome);
    if (!console::print(inspectionText(inspection))) {
        console::say(QStringLiteral("The text cannot be written."));
        return ExitStatus::FileFailed;
    }
    return picture.isEmpty() ? ExitStatus::Done : draw(inspection, path, picture);
}
