#include "batch/JobFile.h"

#include "analysis/PointTable.h"
#include "batch/Nesting.h"
#include "system/InputFile.h"
#include "text/NearestName.h"
#include "text/TextBytes.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QStringList>

#include <toml++/toml.h>

#include <cerrno>
#include <cmath>
#include <functional>
#include <memory>
#include <string_view>

namespace
{

constexpr qint64 largestJob = 1 << 20; ///< bytes

int lineOf(const toml::source_region& source)
{
    return static_cast<int>(source.begin.line);
}

/// Goes through the parsed tables and fills the job. The first error in the file is kept, in
/// whatever order the keys are visited.
class JobReader
{
public:
    explicit JobReader(const QString& folder) : m_folder(folder) {}

    void read(const toml::table& root);

    Job job;
    std::optional<JobError> error;

private:
    using Handler = std::function<void(const toml::node&, const QString&)>;
    struct Key {
        const char* name;
        Handler handler;
    };
    using Keys = std::vector<Key>;

    void fail(int line, const QString& reason)
    {
        if (!error || line < error->line)
            error = JobError{line, reason};
    }
    void fail(const toml::node& node, const QString& reason)
    {
        fail(lineOf(node.source()), reason);
    }

    void readKeys(const toml::table& table, const QString& where, const Keys& keys);
    Handler table(const Keys& keys);
    Handler number(QString& text);
    Handler number(QString& text, int& line);
    Handler flag(std::optional<bool>& value);
    Handler flag(bool& value);
    Handler filePath(JobFilePath& file);
    Handler patterns(std::vector<JobFilePath>& files);
    template <typename Value>
    Handler choice(std::optional<Value>& value, std::vector<std::pair<const char*, Value>> choices);

    void readPoints(const toml::node& node);
    JobPoint readPoint(const toml::table& table);
    void checkVPoints(const toml::array& array, const std::vector<JobPoint>& points);
    void readCalculate(const toml::node& node);
    void checkTargets();

    QString m_folder;
    int m_mapLine = 0; ///< where a map is asked for
};

QString quoted(const QString& text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

void JobReader::readKeys(const toml::table& table, const QString& where, const Keys& keys)
{
    for (const auto& [key, node] : table) {
        const auto known = std::find_if(keys.begin(), keys.end(),
                                        [&key = key](const Key& k) { return key.str() == k.name; });
        const QString name = textFromUtf8(key.str());
        if (known != keys.end()) {
            known->handler(node, name);
            continue;
        }
        QStringList names;
        for (const Key& k : keys)
            names += QLatin1String(k.name);
        const QString meant = nearestName(name, names);
        fail(lineOf(key.source()),
             QStringLiteral("unknown key %1%2%3; known are: %4")
                 .arg(quoted(name), where,
                      meant.isEmpty() ? QString() : QStringLiteral(", did you mean ") + meant,
                      names.join(QStringLiteral(", "))));
    }
}

JobReader::Handler JobReader::table(const Keys& keys)
{
    return [this, keys](const toml::node& node, const QString& name) {
        if (const toml::table* table = node.as_table())
            readKeys(*table, QStringLiteral(" in [%1]").arg(name), keys);
        else
            fail(node, QStringLiteral("%1 is a table: [%1]").arg(name));
    };
}

/// The text that types the number into a line edit, with all its digits.
JobReader::Handler JobReader::number(QString& text)
{
    return [this, &text](const toml::node& node, const QString& name) {
        if (const auto whole = node.value_exact<int64_t>())
            text = QString::number(static_cast<qlonglong>(*whole));
        else if (const auto real = node.value_exact<double>(); real && std::isfinite(*real))
            text = QString::number(*real, 'g', QLocale::FloatingPointShortest);
        else
            fail(node, QStringLiteral("%1 is a finite number").arg(name));
    };
}

JobReader::Handler JobReader::number(QString& text, int& line)
{
    return [this, &text, &line](const toml::node& node, const QString& name) {
        line = lineOf(node.source());
        number(text)(node, name);
    };
}

JobReader::Handler JobReader::flag(std::optional<bool>& value)
{
    return [this, &value](const toml::node& node, const QString& name) {
        value = node.value_exact<bool>();
        if (!value)
            fail(node, QStringLiteral("%1 is true or false").arg(name));
    };
}

JobReader::Handler JobReader::flag(bool& value)
{
    return [this, &value](const toml::node& node, const QString& name) {
        std::optional<bool> given;
        flag(given)(node, name);
        value = given.value_or(value);
    };
}

JobReader::Handler JobReader::filePath(JobFilePath& file)
{
    return [this, &file](const toml::node& node, const QString& name) {
        const auto text = node.value_exact<std::string_view>();
        if (text && !text->empty())
            file = {QDir(m_folder).filePath(textFromUtf8(*text)), lineOf(node.source())};
        else
            fail(node, QStringLiteral("%1 is the path of a file, in quotation marks").arg(name));
    };
}

/// The texts are kept as they are.
JobReader::Handler JobReader::patterns(std::vector<JobFilePath>& files)
{
    return [this, &files](const toml::node& node, const QString& name) {
        const toml::array* array = node.as_array();
        const QString wanted =
            QStringLiteral("%1 is a list of names and patterns of files, each in quotation marks")
                .arg(name);
        if (array == nullptr || array->empty()) {
            fail(node, wanted);
            return;
        }
        for (const toml::node& item : *array) {
            const auto text = item.value_exact<std::string_view>();
            if (text && !text->empty())
                files.push_back({textFromUtf8(*text), lineOf(item.source())});
            else
                fail(item, wanted);
        }
    };
}

template <typename Value>
JobReader::Handler JobReader::choice(std::optional<Value>& value,
                                     std::vector<std::pair<const char*, Value>> choices)
{
    return [this, &value, choices](const toml::node& node, const QString& name) {
        const auto text = node.value_exact<std::string_view>();
        QStringList names;
        for (const auto& [choiceName, choiceValue] : choices) {
            if (text && *text == choiceName)
                value = choiceValue;
            names += quoted(QLatin1String(choiceName));
        }
        if (!value)
            fail(node,
                 QStringLiteral("%1 is one of %2").arg(name, names.join(QStringLiteral(", "))));
    };
}

JobPoint JobReader::readPoint(const toml::table& table)
{
    JobPoint point;
    readKeys(table, QStringLiteral(" in [[point]]"),
             {{"energy", number(point.energy, point.line)},
              {"use", flag(point.use)},
              {"t_ratio", flag(point.tRatio)},
              {"v_point", flag(point.vPoint)},
              {"map", filePath(point.map)}});
    if (!table.contains("energy"))
        fail(table, QStringLiteral("a [[point]] needs an energy"));
    return point;
}

/// The V.Point buttons of the rows exclude one another, and one of them is always down.
void JobReader::checkVPoints(const toml::array& array, const std::vector<JobPoint>& points)
{
    int count = 0;
    for (std::size_t i = 0; i < points.size(); ++i)
        if (points[i].vPoint && ++count == 2)
            fail(array[i], QStringLiteral("only one [[point]] can have v_point = true"));
    if (count == 0)
        fail(array, QStringLiteral("one [[point]] needs v_point = true"));
}

void JobReader::readPoints(const toml::node& node)
{
    const toml::array* array = node.as_array();
    if (array == nullptr || !array->is_array_of_tables()) {
        fail(node, QStringLiteral("points are tables: [[point]]"));
        return;
    }
    if (array->size() > pointTableRows) {
        fail((*array)[pointTableRows], QStringLiteral("there are more than %1 [[point]] tables")
                                           .arg(static_cast<int>(pointTableRows)));
        return;
    }
    std::vector<JobPoint> points;
    for (const toml::node& row : *array)
        points.push_back(readPoint(*row.as_table()));
    if (!error)
        checkVPoints(*array, points);
    job.points = points;
}

void JobReader::readCalculate(const toml::node& node)
{
    job.calculateTarget = false;
    job.calculateLcf = false;
    job.calculateMap = false;
    const toml::array* array = node.as_array();
    if (array == nullptr || array->empty()) {
        fail(node, QStringLiteral("calculate is a list of \"target\", \"lcf\", \"map\""));
        return;
    }
    for (const toml::node& item : *array) {
        const auto name = item.value_exact<std::string_view>();
        if (name && *name == "target")
            job.calculateTarget = true;
        else if (name && *name == "lcf")
            job.calculateLcf = true;
        else if (name && *name == "map")
            job.calculateMap = true;
        else
            fail(item, QStringLiteral("calculate is a list of \"target\", \"lcf\", \"map\""));
        if (name && *name == "map")
            m_mapLine = lineOf(item.source());
    }
}

/// Many targets go into a folder of results; there is no window for them, and no map.
void JobReader::checkTargets()
{
    if (job.targets.empty()) {
        if (!job.output.path.isEmpty())
            fail(job.output.line, QStringLiteral("[output] is for targets; there are none"));
        return;
    }
    const int line = job.targets.front().line;
    const JobFilePath& target = job.spectra[SpectrumSet::Target];
    if (!target.path.isEmpty())
        fail(std::max(line, target.line), QStringLiteral("target and targets exclude one another"));
    if (job.output.path.isEmpty())
        fail(line, QStringLiteral("targets need a folder for their results: [output] folder"));
    if (m_mapLine > 0)
        fail(m_mapLine, QStringLiteral("a map is not calculated together with targets"));
    if (!job.mapResult.path.isEmpty())
        fail(job.mapResult.line, QStringLiteral("map_result is not written together with targets"));
}

void JobReader::read(const toml::table& root)
{
    const Keys files{{"ref1", filePath(job.spectra[SpectrumSet::Ref1])},
                     {"ref2", filePath(job.spectra[SpectrumSet::Ref2])},
                     {"target", filePath(job.spectra[SpectrumSet::Target])},
                     {"targets", patterns(job.targets)},
                     {"blank", filePath(job.spectra[SpectrumSet::Blank])},
                     {"map_result", filePath(job.mapResult)}};
    const Keys edge{{"energy", number(job.edge, job.edgeLine)},
                    {"pre_edge_end", number(job.preEdgeEnd, job.preEdgeEndLine)},
                    {"post_edge_start", number(job.postEdgeStart, job.postEdgeStartLine)}};
    const Keys valences{{"ref1", number(job.valence1)}, {"ref2", number(job.valence2)}};
    const Keys conditions{
        {"thickness",
         choice<ThicknessType>(job.thickness,
                               {{"sum-by-sum", ThicknessType::SumBySum},
                                {"mean", ThicknessType::Mean},
                                {"least-squares", ThicknessType::LeastSquares},
                                {"least-squares-no-blank", ThicknessType::LeastSquaresNoBlank},
                                {"victreen", ThicknessType::EdgeJumps}})},
        {"references_minus_victreen", flag(job.referencesMinusVictreen)},
        {"target_minus_victreen", flag(job.targetMinusVictreen)},
        {"victreen", choice<bool>(job.victreenIsPre, {{"pre", true}, {"post", false}})},
        {"method", choice<bool>(job.exactMethod, {{"exact", true}, {"least-squares", false}})}};
    readKeys(
        root, QString(),
        {{"files", table(files)},
         {"edge", table(edge)},
         {"valences", table(valences)},
         {"point", [this](const toml::node& node, const QString&) { readPoints(node); }},
         {"conditions", table(conditions)},
         {"output", table({{"folder", filePath(job.output)}})},
         {"calculate", [this](const toml::node& node, const QString&) { readCalculate(node); }}});
    checkTargets();
}

} // namespace

QString errorText(const QString& file, const JobError& error)
{
    if (error.line == 0)
        return QStringLiteral("%1: %2").arg(file, error.reason);
    return QStringLiteral("%1:%2: %3").arg(file, QString::number(error.line), error.reason);
}

std::optional<Job> parseJob(const QByteArray& text, const QString& folder, JobError& error)
{
    const std::string_view toml(text.constData(), static_cast<std::size_t>(text.size()));
    if (const int line = lineOfDeepNesting(toml); line > 0) {
        error = {line, QStringLiteral("is nested too deeply for a job")};
        return std::nullopt;
    }
    JobReader reader(folder);
    try {
        reader.read(toml::parse(toml));
    } catch (const toml::parse_error& syntax) {
        error = {lineOf(syntax.source()), textFromUtf8(syntax.description()).simplified()};
        return std::nullopt;
    }
    if (reader.error) {
        error = *reader.error;
        return std::nullopt;
    }
    reader.job.folder = folder;
    return reader.job;
}

std::optional<Job> readJob(const QString& path, JobError& error)
{
    int number = 0;
    const std::unique_ptr<InputFile> file = InputFile::open(path, &number);
    if (!file) {
        error = {0, QStringLiteral("cannot be opened: ") + whyNotOpened(number)};
        return std::nullopt;
    }
    if (file->size() > largestJob) {
        error = {0, QStringLiteral("is larger than 1 MiB and no job")};
        return std::nullopt;
    }
    QByteArray text(static_cast<int>(file->size()), Qt::Uninitialized);
    if (!file->read(text.data(), static_cast<std::size_t>(text.size()), 0)) {
        error = {0, QStringLiteral("cannot be read: ") + qt_error_string(errno)};
        return std::nullopt;
    }
    return parseJob(text, QFileInfo(path).absolutePath(), error);
}
