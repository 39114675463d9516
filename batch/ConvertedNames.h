#pragma once

#include "formats/SpectrumFile.h"

#include <QHash>
#include <QSet>
#include <QString>

/// Where the files of a job go in the folder of its conversion: below it as they were below the
/// job's own folder, others into "files". One file that is read in two ways goes to two places.
class ConvertedNames
{
public:
    /// @param from  folder of the job
    /// @param to    of the conversion
    ConvertedNames(const QString& from, const QString& to) : m_from(from), m_to(to) {}

    /// Keeps a path in the folder, "job.toml", for itself.
    void keep(const QString& path) { m_taken.insert(path); }
    /// The place of a file, from the folder on; the same one for the same file.
    QString placeOf(const QString& path, const SpectrumSource& source = {});
    QString whole(const QString& place) const;

private:
    QString below(const QString& path) const;

    QString m_from;
    QString m_to;
    QSet<QString> m_taken;
    QHash<QString, QString> m_places;
};
