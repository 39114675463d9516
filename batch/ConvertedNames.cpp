#include "batch/ConvertedNames.h"

#include <QDir>
#include <QFileInfo>

QString ConvertedNames::below(const QString& path) const
{
    const QString place = QDir::cleanPath(QDir(m_from).relativeFilePath(path));
    const bool outside = QDir::isAbsolutePath(place) || place == QLatin1String("..") ||
                         place.startsWith(QLatin1String("../"));
    return outside ? QStringLiteral("files/") + QFileInfo(path).fileName() : place;
}

QString ConvertedNames::placeOf(const QString& path, const SpectrumSource& source)
{
    const ChosenColumns& c = source.columns;
    const QString key = QStringLiteral("%1/%2/%3/%4/%5/%6/%7/")
                            .arg(static_cast<int>(source.kind))
                            .arg(c.energy)
                            .arg(c.mut)
                            .arg(c.i0)
                            .arg(c.i)
                            .arg(static_cast<int>(c.unit))
                            .arg(c.spacing, 0, 'g', 17) +
                        QDir::cleanPath(path);
    const auto known = m_places.constFind(key);
    if (known != m_places.constEnd())
        return *known;
    const QFileInfo usual(below(path));
    QString place = usual.filePath();
    for (int i = 2; m_taken.contains(place); ++i)
        place = QStringLiteral("%1/%2-%3").arg(usual.path()).arg(i).arg(usual.fileName());
    place = QDir::cleanPath(place);
    m_taken.insert(place);
    m_places.insert(key, place);
    return place;
}

QString ConvertedNames::whole(const QString& place) const
{
    return QDir(m_to).filePath(place);
}
