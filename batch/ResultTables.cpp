#include "batch/ResultTables.h"

#include "batch/ClosureLine.h"
#include "batch/GraphPictures.h"
#include "batch/JobKey.h"
#include "batch/MapRow.h"
#include "batch/Report.h"
#include "batch/RunFileRows.h"
#include "batch/TargetRow.h"
#include "system/SafeFile.h"
#include "text/Csv.h"

#include <QDir>
#include <QFileInfo>

#include <cmath>

namespace
{

/// The report lists no more; the standard error told all.
constexpr int mostMessages = 1000;

class Results
{
public:
    Results(RunRecord& record, const PreparedJob& prepared)
        : m_record(record), m_prepared(prepared), m_job(prepared.job),
          m_folder(prepared.job.output.path)
    {
    }

    ResultsWritten write()
    {
        m_facts.targets = ReportTargets(targetColumns());
        dropUnfinishedFiles(m_folder.path());
        if (m_job.hasTargets())
            writeTargets();
        if (const auto& uncertainty = m_prepared.common.uncertainty)
            m_written.closure = closureLine(uncertainty->closure, std::move(m_fractions),
                                            m_prepared.common.settings.valences);
        if (!m_job.maps.empty())
            writeMaps();
        if (m_job.pictures)
            drawGraphs();
        if (m_job.hdf5 && !m_prepared.isWatched)
            writeHdf5();
        if (m_job.report)
            writeReport();
        return m_written;
    }

private:
    void writeTargets();
    void writeMaps();
    void drawGraphs();
    void writeHdf5();
    void writeReport();
    void takeTarget(const RecordedRow& row);
    void takeMap(const RecordedRow& row);
    void message(const QByteArray& name, const QByteArray& text);
    void wrote(const QString& path, bool done);
    void wrote(const PictureFiles& pictures);

    /// A table of the rows of these names.
    void writeTable(RowKind kind, const QString& path, const QByteArrayList& columns,
                    std::size_t count, const std::function<QByteArray(std::size_t)>& nameOf,
                    const std::function<void(const RecordedRow&)>& take);

    RunRecord& m_record;
    const PreparedJob& m_prepared;
    const Job& m_job;
    RunFolder m_folder;
    ReportFacts m_facts;
    RunFileRows m_rows;
    std::vector<ReportInput> m_images;
    std::vector<LCFvs4PSPoint> m_points;
    std::vector<double> m_fractions; ///< of the targets, finite ones
    ResultsWritten m_written;
};

void Results::wrote(const QString& path, bool done)
{
    if (done)
        m_written.files += path;
    else if (m_written.failed.isEmpty())
        m_written.failed = path;
}

void Results::wrote(const PictureFiles& pictures)
{
    if (!pictures.failed.isEmpty())
        wrote(pictures.failed.first(), false);
    m_written.files += pictures.written;
    m_facts.graphs += pictures.written;
}

void Results::message(const QByteArray& name, const QByteArray& text)
{
    if (m_facts.messages.size() < mostMessages && !text.isEmpty())
        m_facts.messages += name + ": " + text;
}

void Results::writeTable(RowKind kind, const QString& path, const QByteArrayList& columns,
                         std::size_t count, const std::function<QByteArray(std::size_t)>& nameOf,
                         const std::function<void(const RecordedRow&)>& take)
{
    SafeFile file(path);
    bool done = file.open();
    const auto write = [&](const QByteArrayList& fields) {
        const QByteArray line = csv::line(fields);
        done = done && file.write(line.constData(), line.size());
    };
    write(columns);
    m_record.forEach(kind, count, nameOf, [&](std::size_t, const std::optional<RecordedRow>& row) {
        if (!row)
            return;
        m_written.allGood = m_written.allGood && row->good;
        write(row->fields);
        take(*row);
    });
    wrote(path, done && file.commit());
}

void Results::writeTargets()
{
    const std::vector<TargetJob>& targets = m_prepared.list.targets;
    if (m_job.hdf5)
        m_rows.setTargetColumns(targetColumns());
    writeTable(
        RowKind::Target, m_folder.results(), targetColumns(), targets.size(),
        [&](std::size_t i) { return targetName(m_job, targets[i]).toUtf8(); },
        [this](const RecordedRow& row) { takeTarget(row); });
}

void Results::takeTarget(const RecordedRow& row)
{
    static const QByteArrayList columns = targetColumns();
    const auto field = [&](const char* column) { return row.fields[columns.indexOf(column)]; };
    message(row.name(), field("refusal"));
    if (!field("warnings").isEmpty())
        message(row.name(), "warning: " + field("warnings"));
    bool isNumber = false;
    if (const double a = field("a").toDouble(&isNumber); isNumber && std::isfinite(a))
        m_fractions.push_back(a);
    if (m_job.report)
        m_facts.targets.add(row.fields, row.readOut);
    if (m_job.hdf5)
        m_rows.addTarget(row);
    if (m_job.pictures && !field("a").isEmpty() && !field("lcf_a").isEmpty())
        m_points.push_back({field("a").toDouble(), field("valence").toDouble(),
                            field("lcf_a").toDouble(), field("lcf_valence").toDouble()});
}

void Results::writeMaps()
{
    const std::vector<MapJob>& maps = m_prepared.list.maps;
    writeTable(
        RowKind::Map, m_folder.maps(), mapColumns(), maps.size(),
        [&](std::size_t i) { return maps[i].name.toUtf8(); },
        [this](const RecordedRow& row) { takeMap(row); });
}

void Results::takeMap(const RecordedRow& row)
{
    message(row.name(), row.fields.last());
    for (const QByteArray& line : row.messages.split('\n'))
        message(row.name(), line);
    for (const RecordedFile& image : row.inputs)
        m_images.push_back({image.path, toBytes(image.digest).toHex()});
    if (m_job.hdf5)
        m_rows.addMap(row, m_folder.path(), commonInputs(m_prepared));
    ReportMap map;
    map.fields = row.fields;
    map.readOut = row.readOut;
    for (const RecordedFile& file : row.outputs)
        if (file.path.endsWith(".png"))
            map.pictures += QDir(m_folder.path()).filePath(QFile::decodeName(file.path));
    m_facts.maps.push_back(map);
}

void Results::drawGraphs()
{
    const GraphPictureOptions options{m_folder.path(), languageName(m_job)};
    wrote(drawReferenceGraphs(m_prepared.common.input, options));
    if (!m_points.empty())
        wrote(drawComparisonGraph(m_points, m_prepared.common.settings.valences, options));
}

void Results::writeHdf5()
{
    RunContents run = m_rows.contents();
    run.program = "drovik";
    run.version = programVersion();
    run.job = m_prepared.text;
    wrote(m_folder.hdf5(), writeRunFile(m_folder.hdf5(), run) == WriteOutcome::Written);
}

void Results::writeReport()
{
    m_facts.language = languageName(m_job);
    m_facts.jobName = QFile::encodeName(QFileInfo(m_prepared.path).fileName());
    m_facts.jobText = m_prepared.text;
    m_facts.version = programVersion();
    m_facts.level = m_prepared.common.noise.level;
    for (const RecordedFile& file : commonInputs(m_prepared))
        m_facts.inputs.push_back({file.path, toBytes(file.digest).toHex()});
    m_facts.inputs.insert(m_facts.inputs.end(), m_images.begin(), m_images.end());
    m_facts.mapColumns = mapColumns();
    const QByteArray page = reportPage(m_facts);
    SafeFile file(m_folder.report());
    wrote(m_folder.report(),
          file.open() && file.write(page.constData(), page.size()) && file.commit());
}

} // namespace

ResultsWritten writeResults(RunRecord& record, const PreparedJob& prepared)
{
    return Results(record, prepared).write();
}
