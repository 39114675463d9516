#include "jobs/MapName.h"

#include <QFile>

#include <algorithm>

namespace
{

/// Bytes; a name takes 255, and that of a map's files goes on behind it.
constexpr int longestName = 200;

} // namespace

QString whyNoFolderName(const QString& name)
{
    if (name.contains(QLatin1Char('/')))
        return QStringLiteral("cannot be the name of a folder: it has a /");
    if (name == QLatin1String(".") || name == QLatin1String(".."))
        return QStringLiteral("cannot be the name of a folder: %1 is one already").arg(name);
    if (std::any_of(name.begin(), name.end(),
                    [](QChar c) { return c.category() == QChar::Other_Control; }))
        return QStringLiteral("cannot be the name of a folder: it has a control character");
    const QByteArray bytes = QFile::encodeName(name);
    if (QFile::decodeName(bytes) != name)
        return QStringLiteral("cannot be the name of a folder in this locale: %1").arg(name);
    if (bytes.size() > longestName)
        return QStringLiteral("cannot be the name of a folder: it is longer than %1 bytes")
            .arg(longestName);
    return {};
}
