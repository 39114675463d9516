#include "batch/PictureFolder.h"

#include <QByteArrayList>
#include <QCryptographicHash>
#include <QFile>

namespace
{

/// A name may have 255 bytes on usual file systems; this leaves room for files in the folder.
constexpr int longestName = 200;

bool isPlain(char byte)
{
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') || byte == '.' || byte == '_' || byte == '-';
}

QByteArray written(char byte)
{
    return '=' + QByteArray(1, byte).toHex().toUpper();
}

/// A name of dots alone is no name but a way.
bool isWay(const QByteArray& name)
{
    return name == "." || name == "..";
}

QByteArray safeName(const QByteArray& name)
{
    if (name.isEmpty())
        return QByteArrayLiteral("=");
    QByteArray safe;
    for (const char byte : name)
        safe += isPlain(byte) && !isWay(name) ? QByteArray(1, byte) : written(byte);
    if (safe.size() <= longestName)
        return safe;
    const QByteArray hash =
        QCryptographicHash::hash(name, QCryptographicHash::Sha256).toHex().left(32);
    return safe.left(longestName - 34) + "==" + hash;
}

} // namespace

QString picturePath(const QString& target)
{
    QByteArrayList names;
    const QByteArray path = QFile::encodeName(target);
    const bool absolute = path.startsWith('/');
    for (const QByteArray& name : path.mid(absolute ? 1 : 0).split('/'))
        names.append(safeName(name));
    if (absolute)
        names.first().prepend(written('/'));
    return QString::fromLatin1(names.join('/'));
}
