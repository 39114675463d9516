#include "tests/fuzz/LiteralJob.h"

#include <QDir>
#include <QLocale>
#include <QStringList>

#include <toml++/toml.h>

#include <cmath>

namespace literal
{

namespace
{

std::string_view view(const QByteArray& text)
{
    return {text.constData(), static_cast<std::size_t>(text.size())};
}

/// The toolkit takes U+FEFF at the beginning for a mark of the byte order, so it is not put there.
QString fromUtf8(const std::string& text)
{
    return QString::fromStdString("x" + text).mid(1);
}

bool onlyKeys(const toml::table& table, const QStringList& known)
{
    for (const auto& entry : table) {
        if (!known.contains(fromUtf8(std::string(entry.first.str()))))
            return false;
    }
    return true;
}

/// The values of one table by their keys; `ok` falls where one has not the type asked for.
struct Reading {
    const toml::table* table = nullptr;
    bool ok = true;

    const toml::node* node(const char* key) const { return table ? table->get(key) : nullptr; }

    QString number(const char* key)
    {
        const toml::node* value = node(key);
        if (!value)
            return {};
        if (value->is_integer())
            return QString::number(static_cast<qlonglong>(**value->as_integer()));
        if (value->is_floating_point() && std::isfinite(**value->as_floating_point()))
            return QString::number(**value->as_floating_point(), 'g',
                                   QLocale::FloatingPointShortest);
        ok = false;
        return {};
    }

    std::optional<bool> flag(const char* key)
    {
        const toml::node* value = node(key);
        if (!value)
            return std::nullopt;
        if (value->is_boolean())
            return **value->as_boolean();
        ok = false;
        return std::nullopt;
    }

    std::optional<int> word(const char* key, const QStringList& words)
    {
        const toml::node* value = node(key);
        if (!value)
            return std::nullopt;
        const int index = value->is_string() ? words.indexOf(fromUtf8(**value->as_string())) : -1;
        if (index >= 0)
            return index;
        ok = false;
        return std::nullopt;
    }

    QString path(const char* key, const QString& folder)
    {
        const toml::node* value = node(key);
        if (!value)
            return {};
        if (value->is_string() && !value->as_string()->get().empty())
            return QDir(folder).filePath(fromUtf8(**value->as_string()));
        ok = false;
        return {};
    }
};

Reading section(const toml::table& root, const char* key, const char* keys)
{
    Reading reading;
    const toml::node* node = root.get(key);
    if (!node)
        return reading;
    reading.table = node->as_table();
    reading.ok = reading.table &&
                 onlyKeys(*reading.table, QString::fromLatin1(keys).split(QLatin1Char(' ')));
    return reading;
}

bool isReal(const toml::node* node)
{
    return node == nullptr || node->is_integer() ||
           (node->is_floating_point() && std::isfinite(**node->as_floating_point()));
}

double realOf(const toml::node* node, double otherwise)
{
    return node != nullptr ? *node->value<double>() : otherwise;
}

bool isWhole(const toml::node* node, int64_t least, int64_t most)
{
    return node == nullptr ||
           (node->is_integer() && **node->as_integer() >= least && **node->as_integer() <= most);
}

int wholeOf(const toml::node* node)
{
    return node != nullptr ? static_cast<int>(**node->as_integer()) : 0;
}

/// How a spectrum is read, in a table with the key `needed`.
bool readSource(const toml::table& table, const char* needed, SpectrumSource& source)
{
    Reading reading{&table, onlyKeys(table, {QLatin1String(needed), QStringLiteral("format"),
                                             QStringLiteral("columns"), QStringLiteral("unit"),
                                             QStringLiteral("d")})};
    const FileKind kinds[] = {FileKind::Beamline, FileKind::Xdi, FileKind::Columns};
    if (const auto kind = reading.word("format", {QStringLiteral("beamline"), QStringLiteral("xdi"),
                                                  QStringLiteral("columns")}))
        source.kind = kinds[*kind];
    const EnergyUnit units[] = {EnergyUnit::ElectronVolt, EnergyUnit::KiloElectronVolt,
                                EnergyUnit::Degrees};
    if (const auto unit = reading.word(
            "unit", {QStringLiteral("eV"), QStringLiteral("keV"), QStringLiteral("degrees")}))
        source.columns.unit = units[*unit];
    const toml::node* spacing = reading.node("d");
    if (!isReal(spacing) || (spacing && !(realOf(spacing, 0) > 0)))
        return false;
    source.columns.spacing = realOf(spacing, 0);
    if (const toml::node* columns = reading.node("columns")) {
        if (!columns->is_table())
            return false;
        const toml::table& names = *columns->as_table();
        if (!onlyKeys(names, {QStringLiteral("energy"), QStringLiteral("mut"), QStringLiteral("i0"),
                              QStringLiteral("i")}))
            return false;
        for (const auto& entry : names)
            if (!isWhole(&entry.second, 1, 1000))
                return false;
        source.columns.energy = wholeOf(names.get("energy"));
        source.columns.mut = wholeOf(names.get("mut"));
        source.columns.i0 = wholeOf(names.get("i0"));
        source.columns.i = wholeOf(names.get("i"));
    }
    return reading.ok && table.contains(needed);
}

bool readTargets(const toml::node& targets, Job& job)
{
    if (const toml::table* table = targets.as_table())
        return readSource(*table, "files", job.targetSource) && !table->get("files")->is_table() &&
               readTargets(*table->get("files"), job);
    if (!targets.is_array() || targets.as_array()->empty())
        return false;
    for (const toml::node& item : *targets.as_array()) {
        if (!item.is_string() || item.as_string()->get().empty())
            return false;
        job.targets.push_back({fromUtf8(**item.as_string()), {}});
    }
    return true;
}

bool readFiles(const toml::table& root, const QString& folder, Job& job)
{
    Reading files = section(root, "files", "ref1 ref2 target targets blank map_result");
    const char* const names[] = {"ref1", "ref2", "target", "blank"};
    for (std::size_t i = 0; i < 4; ++i) {
        const toml::node* node = files.node(names[i]);
        JobFilePath& file = job.spectra.at(i);
        if (!node || !node->is_table()) {
            file.path = files.path(names[i], folder);
            continue;
        }
        Reading inside{node->as_table(), readSource(*node->as_table(), "file", file.source)};
        file.path = inside.path("file", folder);
        files.ok = files.ok && inside.ok;
    }
    job.mapResult.path = files.path("map_result", folder);
    if (const toml::node* targets = files.node("targets"))
        files.ok = readTargets(*targets, job) && files.ok;
    return files.ok;
}

bool isPositive(const QString& text)
{
    return text.isEmpty() || text.toDouble() > 0;
}

bool readNoise(const toml::table& root, Job& job)
{
    Reading noise = section(root, "noise", "model gain gain0 level map_scatter");
    const auto model = noise.word(
        "model", {QStringLiteral("scatter"), QStringLiteral("counts"), QStringLiteral("none")});
    const NoiseModel models[] = {NoiseModel::Scatter, NoiseModel::Counts, NoiseModel::None};
    job.noise = models[model.value_or(0)];
    job.gain = noise.number("gain");
    job.gain0 = noise.number("gain0");
    job.level = noise.number("level");
    job.mapScatter = noise.number("map_scatter");
    Reading systematics = section(root, "systematics", "uneven");
    job.uneven = systematics.number("uneven");
    Reading rank = section(root, "rank", "counts t_ts");
    job.rankCounts = rank.number("counts");
    job.rankThickness = rank.number("t_ts");
    return noise.ok && rank.ok && systematics.ok && isPositive(job.mapScatter) &&
           isPositive(job.uneven) && (job.uneven.isEmpty() || job.uneven.toDouble() < 1) &&
           isPositive(job.gain) && isPositive(job.gain0) && isPositive(job.level) &&
           (job.level.isEmpty() || job.level.toDouble() < 1) && isPositive(job.rankCounts) &&
           isPositive(job.rankThickness);
}

bool readAlignment(const toml::table& root, const QString& folder, Job& job)
{
    Reading reading = section(root, "alignment", "ref1 ref2 target blank shifts foil");
    const char* const names[] = {"ref1", "ref2", "target", "blank"};
    int numbers = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        QString& shift = job.alignment.shifts.at(i).energy;
        shift = reading.number(names[i]);
        numbers += shift.isEmpty() ? 0 : 1;
        reading.ok = reading.ok && (shift.isEmpty() || std::abs(shift.toDouble()) <= 100);
    }
    job.alignment.table.path = reading.path("shifts", folder);
    JobFilePath& foil = job.alignment.foil;
    const toml::node* node = reading.node("foil");
    if (!node)
        return reading.ok && (!reading.node("shifts") || numbers == 0);
    if (node->is_table()) {
        reading.ok = readSource(*node->as_table(), "file", foil.source) && reading.ok;
        node = node->as_table()->get("file");
    }
    if (!node || !node->is_string())
        return false;
    foil.path = fromUtf8(**node->as_string());
    return reading.ok && foil.path.contains(QStringLiteral("{name}")) && !reading.node("shifts") &&
           !reading.node("ref1") && !reading.node("target") && !job.spectra.at(0).path.isEmpty();
}

bool readOutput(const toml::table& root, const QString& folder, Job& job)
{
    Reading output = section(root, "output", "folder pictures report map_files tiff hdf5 language");
    job.output.path = output.path("folder", folder);
    job.pictures = output.flag("pictures").value_or(false);
    job.report = output.flag("report").value_or(true);
    job.mapFiles = output.flag("map_files").value_or(true);
    job.tiff = output.flag("tiff").value_or(false);
    job.hdf5 = output.flag("hdf5").value_or(false);
    const auto language =
        output.word("language", {QStringLiteral("en"), QStringLiteral("ja")}).value_or(0);
    job.language = language == 0 ? Language::English : Language::Japanese;
    return output.ok && (!output.table || !job.output.path.isEmpty());
}

bool readHistogram(const toml::table& root, const char* key, double from, double to,
                   JobHistogram& histogram)
{
    Reading reading = section(root, key, "from to boxes");
    histogram.from = reading.number("from");
    histogram.to = reading.number("to");
    histogram.boxes = reading.number("boxes");
    if (const toml::node* boxes = reading.node("boxes"); boxes && !boxes->is_integer())
        return false;
    if (!histogram.from.isEmpty())
        from = histogram.from.toDouble();
    if (!histogram.to.isEmpty())
        to = histogram.to.toDouble();
    const double boxes = histogram.boxes.isEmpty() ? 41 : histogram.boxes.toDouble();
    const double width = (to - from) / (boxes - 1);
    return reading.ok && boxes >= 2 && boxes <= 10000000 && std::isfinite(width) && width > 0 &&
           from + width != from;
}

bool readHistograms(const toml::table& root, Job& job)
{
    const Reading both = section(root, "histogram", "valence thickness");
    if (!both.table)
        return both.ok;
    return both.ok && readHistogram(*both.table, "valence", 1.5, 3.5, job.valenceHistogram) &&
           readHistogram(*both.table, "thickness", -0.2, 1.2, job.thicknessHistogram);
}

/// No folder has such a name, or the files in it could have none.
bool isNoName(const QString& name)
{
    if (name.isEmpty() || name == QStringLiteral(".") || name == QStringLiteral("..") ||
        name.contains(QLatin1Char('/')) || name.toUtf8().size() > 200)
        return true;
    for (const QChar c : name)
        if (c < QChar(0x20) || (c >= QChar(0x7F) && c < QChar(0xA0)))
            return true;
    return false;
}

/// Only {row} and {energy}, and at least one of them.
bool isPattern(QString text)
{
    const int length = text.size();
    text.remove(QStringLiteral("{row}")).remove(QStringLiteral("{energy}"));
    return text.size() < length && !text.contains(QLatin1Char('{'));
}

bool readRegion(const toml::node* node, Region& region)
{
    if (!node)
        return true;
    if (!node->is_table())
        return false;
    const toml::table& table = *node->as_table();
    if (!onlyKeys(table, {QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("width"),
                          QStringLiteral("height")}))
        return false;
    constexpr int64_t most = 2147483647;
    if (!isWhole(table.get("x"), 0, most) || !isWhole(table.get("y"), 0, most) ||
        !isWhole(table.get("width"), 1, most) || !isWhole(table.get("height"), 1, most))
        return false;
    region = {wholeOf(table.get("x")), wholeOf(table.get("y")), wholeOf(table.get("width")),
              wholeOf(table.get("height"))};
    return region.width > 0 && region.height > 0;
}

bool readStack(const toml::table& table, const QString& folder, JobStack& stack)
{
    Reading reading{&table, true};
    StackSource& source = stack.source;
    const QStringList kinds =
        QStringLiteral("fxi exchange mistral nxdata tiff img his").split(QLatin1Char(' '));
    source.path = reading.path("stack", folder);
    if (const auto kind = reading.word("kind", kinds))
        source.kind = kinds[*kind];
    source.data = reading.path("data", folder);
    source.energies = reading.path("energies", folder);
    source.flat = reading.path("flat", folder);
    source.reference = reading.path("reference", folder);
    const StackValues values[] = {StackValues::MuT, StackValues::Transmission, StackValues::Counts};
    if (const auto value =
            reading.word("values", {QStringLiteral("mu-t"), QStringLiteral("transmission"),
                                    QStringLiteral("counts")}))
        source.values = values[*value];
    const toml::node* dark = reading.node("dark");
    if (dark && dark->is_number())
        source.darkLevel = realOf(dark, 0);
    else
        source.dark = reading.path("dark", folder);
    for (const char* const key : {"pixel_size", "tilt_ev_per_row", "row0", "shift"})
        reading.ok = reading.ok && isReal(reading.node(key));
    if (!reading.ok || !isReal(dark && dark->is_number() ? dark : nullptr))
        return false;
    source.pixelSize = realOf(reading.node("pixel_size"), 0);
    source.shift = realOf(reading.node("shift"), 0);
    stack.tilt = realOf(reading.node("tilt_ev_per_row"), 0);
    stack.row0 = realOf(reading.node("row0"), 0);
    return (!reading.node("pixel_size") || source.pixelSize > 0) &&
           readRegion(reading.node("region"), stack.region);
}

bool readMap(const toml::table& table, const QString& folder, Job& job)
{
    QStringList keys{QStringLiteral("name"), QStringLiteral("images"), QStringLiteral("pattern")};
    if (table.contains("stack"))
        keys = QStringLiteral("name stack kind data energies values flat dark reference pixel_size "
                              "tilt_ev_per_row row0 shift region")
                   .split(QLatin1Char(' '));
    Reading reading{&table, onlyKeys(table, keys)};
    JobMap map;
    const toml::node* name = reading.node("name");
    map.name = name && name->is_string() ? fromUtf8(**name->as_string()) : QString();
    if (isNoName(map.name) ||
        table.contains("images") + table.contains("pattern") + table.contains("stack") != 1)
        return false;
    if (table.contains("stack") && !readStack(table, folder, map.stack.emplace()))
        return false;
    for (const JobMap& other : job.maps)
        if (other.name == map.name)
            return false;
    if (const toml::node* pattern = reading.node("pattern")) {
        map.pattern.path = pattern->is_string() ? fromUtf8(**pattern->as_string()) : QString();
        if (!isPattern(map.pattern.path))
            return false;
    }
    if (const toml::node* images = reading.node("images")) {
        if (!images->is_array() || images->as_array()->empty())
            return false;
        for (const toml::node& item : *images->as_array()) {
            if (!item.is_string())
                return false;
            const QString path = fromUtf8(**item.as_string());
            map.images.push_back({path.isEmpty() ? path : QDir(folder).filePath(path), {}});
        }
    }
    job.maps.push_back(map);
    return reading.ok;
}

bool readStackTarget(const toml::table& table, const QString& folder, Job& job)
{
    const QStringList keys =
        QStringLiteral("name stack kind data energies values flat dark reference pixel_size "
                       "tilt_ev_per_row row0 shift region")
            .split(QLatin1Char(' '));
    JobStackTarget target;
    const toml::node* name = table.get("name");
    target.name = name && name->is_string() ? fromUtf8(**name->as_string()) : QString();
    if (!onlyKeys(table, keys) || isNoName(target.name) || !table.contains("stack") ||
        !readStack(table, folder, target.stack))
        return false;
    for (const JobStackTarget& other : job.stackTargets)
        if (other.name == target.name)
            return false;
    job.stackTargets.push_back(target);
    return true;
}

bool readStackTargets(const toml::table& root, const QString& folder, Job& job)
{
    const toml::node* node = root.get("target");
    if (!node)
        return true;
    const toml::array* array = node->as_array();
    if (!array || array->empty())
        return false;
    for (const toml::node& target : *array)
        if (!target.is_table() || !readStackTarget(*target.as_table(), folder, job))
            return false;
    return true;
}

bool readMaps(const toml::table& root, const QString& folder, Job& job)
{
    const toml::node* node = root.get("map");
    if (!node)
        return true;
    const toml::array* array = node->as_array();
    if (!array || array->empty())
        return false;
    for (const toml::node& map : *array)
        if (!map.is_table() || !readMap(*map.as_table(), folder, job))
            return false;
    return true;
}

bool mapsFit(const Job& job)
{
    if (job.maps.empty())
        return true;
    if (!job.points || job.output.path.isEmpty())
        return false;
    for (std::size_t i = 0; i < job.points->size(); ++i) {
        const JobPoint& point = job.points->at(i);
        if (!point.map.path.isEmpty())
            return false;
        for (const JobMap& map : job.maps)
            if (point.vPoint && i < map.images.size() && map.images[i].path.isEmpty())
                return false;
    }
    for (const JobMap& map : job.maps)
        if (!map.images.empty() && map.images.size() != job.points->size())
            return false;
    return true;
}

/// A folder holds the results of targets, of which one may be named alone, and of maps.
bool targetsFit(Job& job)
{
    JobFilePath& target = job.spectra.at(2);
    if (!target.path.isEmpty() && !job.targets.empty())
        return false;
    if (job.output.path.isEmpty())
        return job.targets.empty() && job.stackTargets.empty();
    if (!job.mapResult.path.isEmpty() || (job.calculateMap && job.maps.empty()))
        return false;
    if (!target.path.isEmpty()) {
        // The one path that it matches is its own.
        QString pattern;
        for (const QChar c : target.path)
            pattern += QStringLiteral("*?[\\").contains(c) ? QStringLiteral("\\") + c : QString(c);
        job.targets.push_back({pattern, {}});
        target.path.clear();
    }
    return !job.targets.empty() || !job.stackTargets.empty() || !job.maps.empty();
}

bool readNumbers(const toml::table& root, Job& job)
{
    Reading edge = section(root, "edge", "energy pre_edge_end post_edge_start");
    job.edge = edge.number("energy");
    job.preEdgeEnd = edge.number("pre_edge_end");
    job.postEdgeStart = edge.number("post_edge_start");
    Reading valences = section(root, "valences", "ref1 ref2");
    job.valence1 = valences.number("ref1");
    job.valence2 = valences.number("ref2");
    return edge.ok && valences.ok;
}

bool readConditions(const toml::table& root, Job& job)
{
    Reading conditions =
        section(root, "conditions",
                "thickness references_minus_victreen target_minus_victreen victreen method");
    const QString ratios =
        QStringLiteral("sum-by-sum mean least-squares least-squares-no-blank victreen");
    const ThicknessType types[] = {ThicknessType::SumBySum, ThicknessType::Mean,
                                   ThicknessType::LeastSquares, ThicknessType::LeastSquaresNoBlank,
                                   ThicknessType::EdgeJumps};
    if (const auto ratio = conditions.word("thickness", ratios.split(QLatin1Char(' '))))
        job.thickness = types[*ratio];
    job.referencesMinusVictreen = conditions.flag("references_minus_victreen");
    job.targetMinusVictreen = conditions.flag("target_minus_victreen");
    if (const auto line =
            conditions.word("victreen", {QStringLiteral("post"), QStringLiteral("pre")}))
        job.victreenIsPre = *line == 1;
    if (const auto method =
            conditions.word("method", {QStringLiteral("least-squares"), QStringLiteral("exact")}))
        job.exactMethod = *method == 1;
    return conditions.ok;
}

bool readPoint(const toml::table& table, const QString& folder, std::vector<JobPoint>& points)
{
    Reading reading{&table, onlyKeys(table, {QStringLiteral("energy"), QStringLiteral("use"),
                                             QStringLiteral("t_ratio"), QStringLiteral("v_point"),
                                             QStringLiteral("map")})};
    JobPoint point;
    point.energy = reading.number("energy");
    point.use = reading.flag("use").value_or(true);
    point.tRatio = reading.flag("t_ratio").value_or(false);
    point.vPoint = reading.flag("v_point").value_or(false);
    point.map.path = reading.path("map", folder);
    points.push_back(point);
    return reading.ok && table.contains("energy");
}

bool readPoints(const toml::table& root, const QString& folder, Job& job)
{
    const toml::node* node = root.get("point");
    if (!node)
        return true;
    const toml::array* array = node->as_array();
    if (!array || array->empty() || array->size() > 8)
        return false;
    std::vector<JobPoint> points;
    int vPoints = 0;
    for (const toml::node& row : *array) {
        if (!row.is_table() || !readPoint(*row.as_table(), folder, points))
            return false;
        vPoints += points.back().vPoint ? 1 : 0;
    }
    job.points = points;
    return vPoints == 1;
}

bool readCalculate(const toml::table& root, Job& job)
{
    const toml::node* node = root.get("calculate");
    if (!node)
        return true;
    const toml::array* array = node->as_array();
    if (!array || array->empty())
        return false;
    QStringList names;
    for (const toml::node& item : *array)
        names.append(item.is_string() ? fromUtf8(**item.as_string()) : QString());
    job.calculateTarget = names.contains(QStringLiteral("target"));
    job.calculateLcf = names.contains(QStringLiteral("lcf"));
    job.calculateMap = names.contains(QStringLiteral("map"));
    names.removeAll(QStringLiteral("map"));
    names.removeAll(QStringLiteral("target"));
    names.removeAll(QStringLiteral("lcf"));
    return names.isEmpty();
}

} // namespace

bool readJob(const QByteArray& text, const QString& folder, Job& job)
{
    toml::table root;
    try {
        root = toml::parse(view(text));
    } catch (const toml::parse_error&) {
        return false;
    }
    const QStringList keys{
        QStringLiteral("files"),     QStringLiteral("edge"),       QStringLiteral("valences"),
        QStringLiteral("point"),     QStringLiteral("conditions"), QStringLiteral("calculate"),
        QStringLiteral("output"),    QStringLiteral("map"),        QStringLiteral("histogram"),
        QStringLiteral("noise"),     QStringLiteral("rank"),       QStringLiteral("systematics"),
        QStringLiteral("alignment"), QStringLiteral("target")};
    return onlyKeys(root, keys) && readFiles(root, folder, job) && readNumbers(root, job) &&
           readConditions(root, job) && readPoints(root, folder, job) && readCalculate(root, job) &&
           readNoise(root, job) && readAlignment(root, folder, job) &&
           readOutput(root, folder, job) && readHistograms(root, job) &&
           readStackTargets(root, folder, job) && readMaps(root, folder, job) && mapsFit(job) &&
           targetsFit(job);
}

} // namespace literal
