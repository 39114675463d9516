#include "jobs/JobReader.h"

#include "analysis/PointTable.h"
#include "jobs/AlignmentKeys.h"
#include "jobs/JobSettings.h"
#include "jobs/MapName.h"
#include "jobs/MapPattern.h"
#include "jobs/SpectrumKeys.h"
#include "jobs/StackKeys.h"
#include "jobs/TargetList.h"
#include "text/NumberText.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace
{

void collectNames(const QString& path, const KeyReader::Keys& keys, QStringList& names)
{
    for (const KeyReader::Key& key : keys) {
        const QString name = path + QLatin1String(key.name);
        if (key.inside.empty())
            names += name;
        else
            collectNames(name + QLatin1Char('.'), key.inside, names);
    }
}

} // namespace

QStringList JobReader::names()
{
    QStringList names;
    collectNames(QString(), keys(), names);
    return names;
}

void JobReader::read(const toml::table& root)
{
    readTable(root, QString(), keys());
    job.typed = typed;
    if (error)
        return; // what is misspelt is missing elsewhere
    const Settings settings = settingsOf(job);
    checkHistogram(job.valenceHistogram, settings.valenceHistogram);
    checkHistogram(job.thicknessHistogram, settings.thicknessHistogram);
    checkAlignment(*this, job);
    checkTargets();
    checkMaps();
    checkOutput(root);
    if (!job.output.path.isEmpty() && !job.spectra[SpectrumSet::Target].path.isEmpty()) {
        job.targets = {job.spectra[SpectrumSet::Target]};
        job.targetSource = job.targets.front().source;
        job.targets.front().path = literalPattern(job.targets.front().path);
        job.spectra[SpectrumSet::Target] = {};
    }
}

KeyReader::Keys JobReader::keys()
{
    const auto call = [this](void (JobReader::*take)(const toml::node&, const QString&)) {
        return
            [this, take](const toml::node& node, const QString& key) { (this->*take)(node, key); };
    };
    const Handler maps = [this](const toml::node& node, const QString& key) {
        readTables(node, key, [&](const toml::table& table) { readMap(table, key); });
    };
    const Handler targets = [this](const toml::node& node, const QString& key) {
        readTables(node, key, [&](const toml::table& table) { readTarget(table, key); });
    };
    return {
        {"files", {}, fileKeys()},
        {"edge",
         {},
         {{"energy", number(job.edge, job.edgePlace)},
          {"pre_edge_end", number(job.preEdgeEnd, job.preEdgeEndPlace)},
          {"post_edge_start", number(job.postEdgeStart, job.postEdgeStartPlace)}}},
        {"valences", {}, {{"ref1", number(job.valence1)}, {"ref2", number(job.valence2)}}},
        {"point", call(&JobReader::readPoints), pointKeys(m_anyPoint)},
        {"conditions", {}, conditionKeys()},
        {"alignment", {}, alignmentKeys(*this, job.alignment)},
        {"noise", {}, noiseKeys()},
        {"systematics", {}, {{"uneven", belowOne(job.uneven)}}},
        {"rank", {}, {{"counts", positive(job.rankCounts)}, {"t_ts", positive(job.rankThickness)}}},
        {"target", targets, targetKeys(m_anyTarget)},
        {"map", maps, mapKeys(m_anyMap)},
        {"histogram",
         {},
         {{"valence", {}, histogramKeys(job.valenceHistogram)},
          {"thickness", {}, histogramKeys(job.thicknessHistogram)}}},
        {"output", {}, outputKeys()},
        {"calculate", call(&JobReader::readCalculate)}};
}

KeyReader::Keys JobReader::fileKeys()
{
    return {{"ref1", spectrumFile(*this, job.spectra[SpectrumSet::Ref1])},
            {"ref2", spectrumFile(*this, job.spectra[SpectrumSet::Ref2])},
            {"target", spectrumFile(*this, job.spectra[SpectrumSet::Target])},
            {"targets", targetFiles(*this, job.targets, job.targetSource)},
            {"blank", spectrumFile(*this, job.spectra[SpectrumSet::Blank])},
            {"map_result", filePath(job.mapResult)}};
}

KeyReader::Keys JobReader::conditionKeys()
{
    return {{"thickness",
             choice<ThicknessType>([this](ThicknessType type) { job.thickness = type; },
                                   {{"sum-by-sum", ThicknessType::SumBySum},
                                    {"mean", ThicknessType::Mean},
                                    {"least-squares", ThicknessType::LeastSquares},
                                    {"least-squares-no-blank", ThicknessType::LeastSquaresNoBlank},
                                    {"victreen", ThicknessType::EdgeJumps}})},
            {"references_minus_victreen", flag(job.referencesMinusVictreen)},
            {"target_minus_victreen", flag(job.targetMinusVictreen)},
            {"victreen", choice<bool>([this](bool pre) { job.victreenIsPre = pre; },
                                      {{"pre", true}, {"post", false}})},
            {"method", choice<bool>([this](bool exact) { job.exactMethod = exact; },
                                    {{"exact", true}, {"least-squares", false}})}};
}

KeyReader::Handler JobReader::positive(QString& text)
{
    return [this, &text](const toml::node& node, const QString& key) {
        number(text)(node, key);
        if (!text.isEmpty() && !(numberFromText(text) > 0.0))
            fail(node, key, QStringLiteral("must be above 0"));
    };
}

KeyReader::Handler JobReader::belowOne(QString& text)
{
    return [this, &text](const toml::node& node, const QString& key) {
        positive(text)(node, key);
        if (!text.isEmpty() && !(numberFromText(text) < 1.0))
            fail(node, key, QStringLiteral("must be below 1"));
    };
}

KeyReader::Keys JobReader::noiseKeys()
{
    return {{"model", choice<NoiseModel>([this](NoiseModel model) { job.noise = model; },
                                         {{"scatter", NoiseModel::Scatter},
                                          {"counts", NoiseModel::Counts},
                                          {"none", NoiseModel::None}})},
            {"gain", positive(job.gain)},
            {"gain0", positive(job.gain0)},
            {"level", belowOne(job.level)},
            {"map_scatter", positive(job.mapScatter)}};
}

KeyReader::Keys JobReader::outputKeys()
{
    return {
        {"folder", filePath(job.output)},
        {"pictures", flag(job.pictures)},
        {"report", flag(job.report)},
        {"map_files", flag(job.mapFiles)},
        {"tiff", flag(job.tiff)},
        {"hdf5", flag(job.hdf5)},
        {"language", choice<Language>([this](Language language) { job.language = language; },
                                      {{"en", Language::English}, {"ja", Language::Japanese}})}};
}

KeyReader::Keys JobReader::histogramKeys(JobHistogram& histogram)
{
    const auto placed = [&histogram](const Handler& take) {
        return [&histogram, take](const toml::node& node, const QString& key) {
            const JobPlace place = placeOf(node.source(), key);
            if (histogram.place.line == 0)
                histogram.place = place;
            take(node, key);
        };
    };
    return {{"from", placed(number(histogram.from))},
            {"to", placed(number(histogram.to))},
            {"boxes", placed(wholeNumber(histogram.boxes))}};
}

KeyReader::Handler JobReader::energy(JobPoint& point)
{
    return [this, &point](const toml::node& node, const QString& key) {
        point.place = placeOf(node.source(), key);
        takeNumber(node, key, point.energy);
        point.energyText = asTyped(node, point.energy);
    };
}

KeyReader::Keys JobReader::pointKeys(JobPoint& point)
{
    return {{"energy", energy(point)},
            {"use", flag(point.use)},
            {"t_ratio", flag(point.tRatio)},
            {"v_point", flag(point.vPoint)},
            {"map", filePath(point.map)}};
}

KeyReader::Keys JobReader::mapKeys(JobMap& map)
{
    if (!map.stack)
        map.stack.emplace(); // taken back where no stack is named
    Keys keys{{"name", text(map.name, map.place, "a name")},
              {"images", texts(map.images, "a list of files", true)},
              {"pattern", text(map.pattern.path, map.pattern.place, "a pattern of files")},
              {"stack", filePath(m_stack)}};
    const Keys others = stackKeys(*this, *map.stack);
    keys.insert(keys.end(), others.begin(), others.end());
    return keys;
}

KeyReader::Keys JobReader::targetKeys(JobStackTarget& target)
{
    Keys keys{{"name", text(target.name, target.place, "a name")}, {"stack", filePath(m_stack)}};
    const Keys others = stackKeys(*this, target.stack);
    keys.insert(keys.end(), others.begin(), others.end());
    return keys;
}

void JobReader::readPoint(const toml::table& table, const QString& key)
{
    JobPoint point;
    readTable(table, key, pointKeys(point));
    if (!table.contains("energy"))
        fail(table, key, QStringLiteral("a [[point]] needs an energy"));
    job.points->push_back(point);
}

/// The V.Point buttons of the rows exclude one another, and one of them is always down.
void JobReader::checkVPoints(const toml::array& array, const QString& key)
{
    int count = 0;
    for (std::size_t i = 0; i < job.points->size(); ++i)
        if ((*job.points)[i].vPoint && ++count == 2)
            fail(array[i], key, QStringLiteral("only one [[point]] can have v_point = true"));
    if (count == 0)
        fail(array, key, QStringLiteral("one [[point]] needs v_point = true"));
}

void JobReader::readPoints(const toml::node& node, const QString& key)
{
    const toml::array* array = node.as_array();
    if (array != nullptr && array->is_array_of_tables() && array->size() > pointTableRows)
        return fail((*array)[pointTableRows], key,
                    QStringLiteral("there are more than %1 [[point]] tables")
                        .arg(static_cast<int>(pointTableRows)));
    job.points.emplace();
    const bool wasGood = !error;
    readTables(node, key, [&](const toml::table& table) { readPoint(table, key); });
    if (array != nullptr && !job.points->empty() && (!error || !wasGood))
        checkVPoints(*array, key);
}

void JobReader::readCalculate(const toml::node& node, const QString& key)
{
    job.calculateTarget = false;
    job.calculateLcf = false;
    job.calculateMap = false;
    const QString wanted = QStringLiteral("must be a list of \"target\", \"lcf\", \"map\"");
    const toml::array* array = node.as_array();
    if (array == nullptr || array->empty())
        return fail(node, key, wanted);
    for (const toml::node& item : *array) {
        const auto name = item.value_exact<std::string_view>();
        if (name && *name == "target")
            job.calculateTarget = true;
        else if (name && *name == "lcf")
            job.calculateLcf = true;
        else if (name && *name == "map")
            job.calculateMap = true;
        else
            fail(item, key, wanted);
        if (name && *name == "map")
            m_calculateMap = placeOf(item.source(), key);
    }
}

/// What a map is made from: one of three.
void JobReader::checkSource(const toml::table& table, const QString& key, JobMap& map)
{
    const bool stack = table.contains("stack");
    if (int{table.contains("images")} + int{table.contains("pattern")} + int{stack} != 1)
        return fail(table, key, QStringLiteral("a [[map]] needs one of images, pattern and stack"));
    if (!map.pattern.path.isEmpty())
        if (const QString why = mapPattern::fault(map.pattern.path); !why.isEmpty())
            fail(map.pattern.place, why);
    constexpr std::size_t ofImages = 2; // a name, and images or a pattern
    if (!stack && table.size() > ofImages)
        fail(table, key, QStringLiteral("only a [[map]] of a stack has other keys than its name"));
    checkStack(*this, table, key, *map.stack);
    if (stack) {
        map.stack->source.path = m_stack.path;
        map.stack->place = m_stack.place;
    } else {
        map.stack.reset();
    }
}

/// A folder has the name of a map, and that of a target's pictures.
/// @param names  of the tables before
void JobReader::checkName(const toml::table& table, const QString& key, const QString& name,
                          const JobPlace& place, QSet<QString>& names)
{
    if (!table.contains("name"))
        fail(table, key, QStringLiteral("a [[%1]] needs a name").arg(key));
    else if (const QString why = whyNoFolderName(name); !why.isEmpty())
        fail(place, why);
    else if (!name.isEmpty() && names.contains(name))
        fail(place, QStringLiteral("another [[%1]] has the same name").arg(key));
    names += name;
}

void JobReader::readMap(const toml::table& table, const QString& key)
{
    JobMap map;
    m_stack = {};
    map.place = placeOf(table.source(), key);
    readTable(table, key, mapKeys(map));
    if (error)
        return;
    checkName(table, key, map.name, map.place, m_mapNames);
    checkSource(table, key, map);
    job.maps.push_back(map);
}

void JobReader::readTarget(const toml::table& table, const QString& key)
{
    JobStackTarget target;
    m_stack = {};
    target.place = placeOf(table.source(), key);
    readTable(table, key, targetKeys(target));
    if (error)
        return;
    checkName(table, key, target.name, target.place, m_targetNames);
    checkStack(*this, table, key, target.stack);
    if (!table.contains("stack"))
        fail(table, key, QStringLiteral("a [[target]] needs a stack"));
    target.stack.source.path = m_stack.path;
    target.stack.place = m_stack.place;
    job.stackTargets.push_back(target);
}

void JobReader::checkHistogram(const JobHistogram& given, const HistogramSettings& settings)
{
    if (given.place.line == 0)
        return;
    constexpr double mostBoxes = 1e7;
    const double width = (settings.last - settings.first) / (settings.boxes - 1.0);
    if (settings.boxes < 2.0 || settings.boxes > mostBoxes)
        fail(given.place, QStringLiteral("a histogram has 2 to 10000000 boxes"));
    else if (!std::isfinite(width) || !(settings.first + width > settings.first))
        fail(given.place, QStringLiteral("a histogram goes from a number to a higher one"));
}

/// Many targets go into a folder of results; there is no window for them.
void JobReader::checkTargets()
{
    const JobFilePath& target = job.spectra[SpectrumSet::Target];
    const JobFilePath& folder = job.output;
    if (!job.targets.empty()) {
        const JobPlace& place = job.targets.front().place;
        if (!target.path.isEmpty())
            fail(std::max(place, target.place, isBefore),
                 QStringLiteral("target and targets exclude one another"));
        if (folder.path.isEmpty())
            fail(place, QStringLiteral("targets need a folder for their results: [output] folder"));
    }
    if (folder.path.isEmpty() && !job.stackTargets.empty())
        fail(job.stackTargets.front().place,
             QStringLiteral("a [[target]] needs a folder for its results: [output] folder"));
    if (folder.path.isEmpty())
        return;
    if (!job.hasTargets() && target.path.isEmpty() && job.maps.empty())
        fail(folder.place,
             QStringLiteral("is for the results of targets and of [[map]]; there are none"));
    if (m_calculateMap.line > 0 && job.maps.empty())
        fail(m_calculateMap, QStringLiteral("the maps of a job with [output] folder are [[map]]"));
    if (!job.mapResult.path.isEmpty())
        fail(job.mapResult.place,
             QStringLiteral("the result of a [[map]] goes into [output] folder"));
}

/// A point without an image is not used for the map; the V point, whose image owns the grid, must
/// have one.
void JobReader::checkImages(const JobMap& map)
{
    if (map.images.empty())
        return;
    const std::vector<JobPoint>& points = *job.points;
    const JobPlace& place = map.images.front().place;
    if (map.images.size() != points.size())
        return fail(place, QStringLiteral("%1 images for %2 [[point]] tables; \"\" stands for none")
                               .arg(map.images.size())
                               .arg(points.size()));
    for (std::size_t i = 0; i < points.size(); ++i)
        if (points[i].vPoint && map.images[i].path.isEmpty())
            fail(map.images[i].place, QStringLiteral("the [[point]] with v_point needs an image"));
}

void JobReader::checkMaps()
{
    if (job.maps.empty())
        return;
    const JobPlace& place = job.maps.front().place;
    if (job.output.path.isEmpty())
        fail(place, QStringLiteral("a [[map]] needs a folder for its results: [output] folder"));
    if (!job.points || job.points->empty())
        return fail(place, QStringLiteral("a [[map]] needs [[point]] tables"));
    for (const JobPoint& point : *job.points)
        if (!point.map.path.isEmpty())
            fail(point.map.place,
                 QStringLiteral("the images of a job with [[map]] are those of its [[map]]"));
    for (JobMap& map : job.maps) {
        checkImages(map);
        for (JobFilePath& image : map.images)
            if (!image.path.isEmpty())
                image.path = inFolder(image.path);
    }
}

void JobReader::checkOutput(const toml::table& root)
{
    const toml::table* output = root["output"].as_table();
    if (output != nullptr && !output->contains("folder"))
        fail(*output, QStringLiteral("output"), QStringLiteral("[output] needs a folder"));
}
