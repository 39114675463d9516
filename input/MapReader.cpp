#include "input/MapReader.h"

#include "analysis/AvailableMemory.h"
#include "input/NumberText.h"

#include <QFile>
#include <QFileInfo>
#include <QTextStream>
#include <cmath>

namespace
{

double mutFrom(double transmitted, double incident)
{
    if (incident == 0.0)
        return transmitted;
    if (transmitted == 0.0)
        return 1.0;
    return std::log(incident / transmitted);
}

void readHeaderLine(const QString& line, const QStringList& tokens, MapData& data,
                    MapReadResult& result)
{
    data.header.append(line);
    const QString keyword = tokens.value(1).toUpper();
    if (tokens.size() >= 8 && keyword == QLatin1String("AXIS")) {
        const int axis = tokens[2].toInt();
        if (axis == 0)
            data.columns = tokens[7].toInt();
        else if (axis == 1)
            data.rows = tokens[7].toInt();
    }
    if (tokens.size() >= 4 && keyword == QLatin1String("ENERGY"))
        result.energies.append(tokens[3]);
}

} // namespace

MapReadResult readMapData(const QString& path, MapData& data, const MapReadOptions& options,
                          Workers&)
{
    MapReadResult result;
    data.valid = false;
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly | QIODevice::Text))
        return result;
    const std::size_t memory = options.memory > 0 ? options.memory : availableMemory();
    if (static_cast<std::size_t>(file.size()) > memory) {
        result.outcome = MapReadResult::Refused;
        result.reason = QStringLiteral("The 2D data file [%1] is too large.").arg(path);
        return result;
    }
    MapData read;
    auto positions = std::make_shared<MapPositions>();
    QTextStream in(&file);
    QString line;
    while (in.readLineInto(&line)) {
        const QStringList tokens = line.simplified().split(QLatin1Char(' '));
        if (tokens[0].startsWith(QLatin1Char('#'))) {
            readHeaderLine(line, tokens, read, result);
        } else if (tokens.size() >= 3) {
            const double incident = tokens.size() > 3 ? numberFromText(tokens[3]) : 1.0;
            const double mut = mutFrom(numberFromText(tokens[2]), incident);
            const MapPosition position{numberFromText(tokens[0]), numberFromText(tokens[1])};
            read.mut.append(&mut, 1);
            positions->append(&position, 1);
        }
    }
    read.positions = positions;
    read.valid = read.columns > 0 && read.rows > 0 && !read.mut.empty();
    data = std::move(read);
    result.outcome = MapReadResult::Read;
    return result;
}
