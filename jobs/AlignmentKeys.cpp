#include "jobs/AlignmentKeys.h"

#include "jobs/SpectrumKeys.h"
#include "text/NumberText.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace
{

const QString nameMark = QStringLiteral("{name}");

KeyReader::Handler shift(KeyReader& reader, JobShift& shift)
{
    return [&reader, &shift](const toml::node& node, const QString& key) {
        reader.number(shift.energy, shift.place)(node, key);
        if (!shift.energy.isEmpty() &&
            !(std::abs(numberFromText(shift.energy)) <= largestGivenShift))
            reader.fail(node, key, QStringLiteral("must be between -100 and 100 eV"));
    };
}

} // namespace

KeyReader::Keys alignmentKeys(KeyReader& reader, JobAlignment& alignment)
{
    KeyReader::Keys keys;
    for (std::size_t i = 0; i < spectrumKeys.size(); ++i)
        keys.push_back({spectrumKeys[i], shift(reader, alignment.shifts[i])});
    keys.push_back({"shifts", reader.filePath(alignment.table)});
    keys.push_back({"foil", foilPattern(reader, alignment.foil)});
    return keys;
}

void checkAlignment(KeyReader& reader, const Job& job)
{
    const JobAlignment& alignment = job.alignment;
    const JobFilePath& foil = alignment.foil;
    const bool hasTable = !alignment.table.path.isEmpty();
    const bool hasFoils = !foil.path.isEmpty();
    if (hasTable && hasFoils)
        reader.fail(std::max(alignment.table.place, foil.place, isBefore),
                    QStringLiteral("shifts and foil exclude one another"));
    for (std::size_t i = 0; i < alignment.shifts.size(); ++i) {
        const JobShift& given = alignment.shifts[i];
        if (given.energy.isEmpty())
            continue;
        if (hasTable)
            reader.fail(std::max(given.place, alignment.table.place, isBefore),
                        QStringLiteral("%1 and shifts exclude one another: the table has the "
                                       "shifts of all files")
                            .arg(QLatin1String(spectrumKeys[i])));
        if (hasFoils && (i == SpectrumSet::Ref1 || i == SpectrumSet::Target))
            reader.fail(std::max(given.place, foil.place, isBefore),
                        QStringLiteral("%1 and foil exclude one another")
                            .arg(QLatin1String(spectrumKeys[i])));
    }
    if (!hasFoils)
        return;
    if (!foil.path.contains(nameMark))
        reader.fail(foil.place, QStringLiteral("needs {name}, the name of a spectrum's file "
                                               "without its suffix"));
    if (job.spectra[SpectrumSet::Ref1].path.isEmpty())
        reader.fail(foil.place, QStringLiteral("needs files.ref1, whose foil sets the scale"));
}

bool hasFoil(const JobAlignment& alignment, SpectrumSet::Index spectrum)
{
    return !alignment.foil.path.isEmpty() && alignment.shifts[spectrum].energy.isEmpty();
}

QString foilFile(const Job& job, const QString& path)
{
    QString name = job.alignment.foil.path;
    name.replace(nameMark, QFileInfo(path).completeBaseName());
    return QDir(job.folder).filePath(name);
}
