#include "formats/FileKind.h"

#include "formats/CameraHeader.h"
#include "formats/TextTable.h"
#include "system/ByteSource.h"
#include "text/LineTokens.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace
{

using namespace std::string_view_literals;

bool beginsWith(std::string_view text, std::string_view beginning)
{
    return text.substr(0, beginning.size()) == beginning;
}

/// HDF5 may have a block of the user's before it, whose size is a power of two from 512 on.
bool isHdf5(const ByteSource& file)
{
    constexpr std::string_view signature = "\x89HDF\r\n\x1a\n"sv;
    std::array<char, signature.size()> bytes{};
    for (std::int64_t at = 0; at + static_cast<std::int64_t>(bytes.size()) <= file.size();
         at = at == 0 ? 512 : at * 2) {
        if (!file.read(bytes.data(), bytes.size(), at))
            return false;
        if (std::string_view(bytes.data(), bytes.size()) == signature)
            return true;
    }
    return false;
}

FileKind binaryKind(std::string_view head)
{
    for (const auto mark : {"II*\0"sv, "MM\0*"sv, "II+\0"sv, "MM\0+"sv})
        if (beginsWith(head, mark))
            return FileKind::Tiff;
    if (beginsWith(head, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"sv))
        return FileKind::Ole;
    if (beginsWith(head, "\x1F\x8B"sv) || beginsWith(head, "PK\x03\x04"sv) ||
        beginsWith(head, "BZh"sv) || beginsWith(head, "\xFD\x37zXZ"sv))
        return FileKind::Compressed;
    return FileKind::Unknown;
}

FileKind namedTextKind(std::string_view head)
{
    if (beginsWith(head, "# XDI/"))
        return FileKind::Xdi;
    if (beginsWith(head, "# Athena project file"))
        return FileKind::AthenaProject;
    if (beginsWith(head, "ScanDefinition ="))
        return FileKind::StxmHeader;
    const std::size_t brace = head.find_first_not_of("\r\n ");
    if (brace != std::string_view::npos && head[brace] == '{' &&
        (head.find("Dim_1") != std::string_view::npos ||
         head.find("HeaderID") != std::string_view::npos))
        return FileKind::Edf;
    return FileKind::Unknown;
}

/// What one line shows; Unknown where it shows nothing.
FileKind lineKind(std::string_view line)
{
    LineTokens tokens(line);
    const std::string_view first = tokens.next();
    if (!first.empty() && first.front() == '#') {
        const std::string_view second = tokens.next();
        const bool axis = first == "#" && (second == "AXIS" || second == "axis");
        return axis ? FileKind::MapText : FileKind::Unknown;
    }
    for (std::string_view token = first; !token.empty(); token = tokens.next())
        if (token == "Offset" || token == "D=")
            return FileKind::Beamline;
    return FileKind::Unknown;
}

FileKind textKind(std::string_view head)
{
    bool numbers = false;
    while (!head.empty()) {
        const std::string_view line = head.substr(0, head.find_first_of("\r\n"));
        head.remove_prefix(std::min(line.size() + 1, head.size()));
        if (const FileKind kind = lineKind(line); kind != FileKind::Unknown)
            return kind;
        numbers = numbers || isRowLike(line);
    }
    return numbers ? FileKind::Columns : FileKind::Unknown;
}

} // namespace

FileKind fileKindOf(const ByteSource& file)
{
    if (file.size() == 0)
        return FileKind::Empty;
    std::string bytes(static_cast<std::size_t>(std::min(headBytes, file.size())), '\0');
    if (!file.read(bytes.data(), bytes.size(), 0))
        return FileKind::Unknown;
    if (const FileKind kind = binaryKind(bytes); kind != FileKind::Unknown)
        return kind;
    if (isHdf5(file))
        return FileKind::Hdf5;
    if (const auto header = cameraHeaderAt(file, 0))
        return header->frames > 1 ? FileKind::CameraSequence : FileKind::CameraFrame;
    const std::string head = plainText(std::move(bytes));
    if (const FileKind kind = namedTextKind(head); kind != FileKind::Unknown)
        return kind;
    const bool binary = head.find('\0') != std::string::npos;
    return binary ? FileKind::Unknown : textKind(head);
}

QString kindName(FileKind kind)
{
    switch (kind) {
    case FileKind::Empty:
        return QStringLiteral("an empty file");
    case FileKind::Unknown:
        return QStringLiteral("a file of no known kind");
    case FileKind::Beamline:
        return QStringLiteral("a beamline's spectrum");
    case FileKind::MapText:
        return QStringLiteral("2D data as text");
    case FileKind::Xdi:
        return QStringLiteral("an XDI spectrum");
    case FileKind::Columns:
        return QStringLiteral("a text of columns");
    case FileKind::CameraFrame:
        return QStringLiteral("a camera frame (img)");
    case FileKind::CameraSequence:
        return QStringLiteral("a sequence of camera frames (his)");
    case FileKind::Tiff:
        return QStringLiteral("a TIFF image");
    case FileKind::Hdf5:
        return QStringLiteral("an HDF5 file");
    case FileKind::Ole:
        return QStringLiteral("an OLE2 file, as Xradia microscopes write (.xrm, .txrm)");
    case FileKind::Edf:
        return QStringLiteral("an ESRF data file (EDF)");
    case FileKind::StxmHeader:
        return QStringLiteral("a header of STXM images (.hdr)");
    case FileKind::AthenaProject:
        return QStringLiteral("an Athena project (.prj)");
    case FileKind::Compressed:
        break;
    }
    return QStringLiteral("a compressed file, as an Athena project is (.prj)");
}

QString notReadReason(FileKind kind)
{
    const auto instead = [kind](const QString& what) {
        return QStringLiteral("is %1, which is not read; %2").arg(kindName(kind), what);
    };
    switch (kind) {
    case FileKind::Empty:
        return QStringLiteral("is empty");
    case FileKind::Unknown:
        return QStringLiteral("is of no known kind");
    case FileKind::Ole:
        return instead(QStringLiteral("export the images as TIFF"));
    case FileKind::Edf:
        return instead(QStringLiteral("convert it to TIFF or HDF5"));
    case FileKind::StxmHeader:
        return instead(QStringLiteral("export the images as TIFF"));
    case FileKind::AthenaProject:
        return instead(QStringLiteral("export each group as mu(E)"));
    case FileKind::Compressed:
        return instead(QStringLiteral("unpack it, or export each group of a project as mu(E)"));
    default:
        return {};
    }
}
