#include "batch/Inspection.h"

#include "batch/InspectedSpectrum.h"
#include "batch/InspectedStack.h"
#include "system/InputFile.h"

#include <new>

namespace
{

std::optional<FileFault> inspectKind(const QString& path, FileKind kind, Inspection& inspection)
{
    switch (kind) {
    case FileKind::Beamline:
        if (hasCameraFrames(path))
            return inspectCameraIndex(path, inspection);
        return inspectSpectrum(path, inspection);
    case FileKind::Xdi:
    case FileKind::Columns:
        return inspectSpectrum(path, inspection);
    case FileKind::MapText:
        return inspectMapText(path, inspection);
    case FileKind::CameraFrame:
    case FileKind::CameraSequence:
        return inspectCameraFile(path, inspection);
    case FileKind::Tiff:
    case FileKind::Hdf5:
        return inspectStackFile(path, kind, inspection);
    default:
        return FileFault{path, 0, notReadReason(kind)};
    }
}

} // namespace

void Inspection::add(const char* name, const QString& value)
{
    if (!value.isEmpty())
        lines.emplace_back(QString::fromLatin1(name), value);
}

void Inspection::add(const char* name, const QStringList& values)
{
    for (const QString& value : values)
        add(name, value);
}

std::variant<Inspection, FileFault> inspectFile(const QString& path)
{
    try {
        int error = 0;
        const auto file = InputFile::open(path, &error);
        if (!file)
            return FileFault{path, 0, QStringLiteral("cannot be opened: ") + whyNotOpened(error)};
        const FileKind kind = fileKindOf(*file);
        Inspection inspection;
        inspection.add("format", kindName(kind));
        if (auto fault = inspectKind(path, kind, inspection))
            return *fault;
        return inspection;
    } catch (const std::bad_alloc&) {
        return FileFault{path, 0, QStringLiteral("does not fit in memory")};
    }
}

QString inOneLine(QString text)
{
    constexpr int longest = 300;
    if (text.size() > longest)
        text = text.left(longest) + QStringLiteral("...");
    for (QChar& c : text)
        if (c.category() == QChar::Other_Control || c.category() == QChar::Other_Format ||
            c.category() == QChar::Separator_Line || c.category() == QChar::Separator_Paragraph)
            c = QLatin1Char('?');
    return text;
}

QByteArray inspectionText(const Inspection& inspection)
{
    QString text;
    for (const auto& [name, value] : inspection.lines)
        text += name + QStringLiteral(": ") + inOneLine(value) + QLatin1Char('\n');
    return text.toUtf8();
}
