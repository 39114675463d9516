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

} // namespace

QStringList stackFiles(const StackSource& source)
{
    QStringList files;
    for (const QString& path :
         {source.path, source.energies, source.flat, source.dark, source.reference}) {
        if (path.isEmpty())
            continue;
        const QFileInfo info(path);
        const QString frames = info.fileName() + QStringLiteral("_*.img");
        for (const QString& name : info.dir().entryList({info.fileName(), frames}, QDir::Files))
            files += info.dir().filePath(name);
    }
    files.removeDuplicates();
    return files;
}

std::unique_ptr<Stack> openStack(const StackSource& source, FileFault& fault)
{
    std::unique_ptr<Stack> stack = openKind(source, fault);
    if (stack)
        stack->shiftEnergies(source.shift);
    return stack;
}
