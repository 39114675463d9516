#include "formats/Stack.h"

#include "formats/CameraStack.h"
#include "formats/FileKind.h"
#include "formats/Hdf5Stack.h"
#include "formats/TiffStack.h"
#include "system/InputFile.h"

#include <QDir>
#include <QFileInfo>

namespace
{

std::unique_ptr<Stack> openKind(const StackSource& source, FileFault& fault)
{
    const QString& kind = source.kind;
    if (kind == QLatin1String("img") || kind == QLatin1String("his"))
        return openCameraStack(source, fault);
    if (kind == QLatin1String("tiff"))
        return openTiffStack(source, fault);
    if (!kind.isEmpty())
        return openHdf5Stack(source, fault);
    int error = 0;
    const auto file = InputFile::open(source.path, &error);
    if (!file) // a pattern, perhaps
        return openTiffStack(source, fault);
    const FileKind found = fileKindOf(*file);
    switch (found) {
    case FileKind::CameraFrame:
    case FileKind::CameraSequence:
    case FileKind::Beamline:
        return openCameraStack(source, fault);
    case FileKind::Tiff:
        return openTiffStack(source, fault);
    case FileKind::Hdf5:
        return openHdf5Stack(source, fault);
    default:
        break;
    }
    const QString reason = notReadReason(found);
    fault = {source.path, 0,
             reason.isEmpty() ? QStringLiteral("is %1 and no stack of images").arg(kindName(found))
                              : reason};
    return nullptr;
}

/// A name in a pattern of which it is a part.
QString literally(const QString& name)
{
    QString pattern;
    for (const QChar c : name)
        pattern += QStringLiteral("*?[").contains(c) ? QStringLiteral("[%1]").arg(c) : QString(c);
    return pattern;
}

/// Whether the images are those of TIFF files; a name of no file is a pattern of such.
bool isTiff(const StackSource& source)
{
    if (!source.kind.isEmpty())
        return source.kind == QLatin1String("tiff");
    const auto file = InputFile::open(source.path);
    return !file || fileKindOf(*file) == FileKind::Tiff;
}

} // namespace

QStringList stackFiles(const StackSource& source)
{
    QStringList files;
    for (const QString& path :
         {source.path, source.energies, source.flat, source.dark, source.reference}) {
        if (path.isEmpty())
            continue;
        const QFileInfo info(path);
        const QString name = info.fileName();
        if (info.isFile())
            files += path;
        const QStringList patterns{info.isFile() ? literally(name) : name,
                                   literally(name) + QStringLiteral("_*.img")};
        for (const QString& found : info.dir().entryList(patterns, QDir::Files))
            files += info.dir().filePath(found);
    }
    if (!files.isEmpty() && isTiff(source))
        files += tiffFilesBeside(source);
    files.removeDuplicates();
    return files;
}

QStringList presentStackFiles(const StackSource& source)
{
    const QFileInfo info(source.path);
    // First, so that of a stack that comes meanwhile nothing is told.
    const bool isThere =
        info.isFile() || !info.dir().entryList({info.fileName()}, QDir::Files).isEmpty();
    return isThere ? stackFiles(source) : QStringList();
}

std::unique_ptr<Stack> openStack(const StackSource& source, FileFault& fault)
{
    std::unique_ptr<Stack> stack = openKind(source, fault);
    if (stack)
        stack->shiftEnergies(source.shift);
    return stack;
}
