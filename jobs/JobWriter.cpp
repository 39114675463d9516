#include "jobs/JobWriter.h"

#include "text/NumberText.h"

#include <QDir>
#include <QLocale>
#include <QRegularExpression>

#include <cmath>

namespace
{

const char* flagText(bool value)
{
    return value ? "true" : "false";
}

QByteArray quoted(const QString& text)
{
    QByteArray result = "\"";
    for (const char c : text.toUtf8()) {
        const auto code = static_cast<unsigned char>(c);
        constexpr unsigned char del = 0x7f;
        if (c == '"' || c == '\\')
            result += '\\';
        if (code < ' ' || code == del)
            result += "\\u00" + QByteArray(1, c).toHex();
        else
            result += c;
    }
    return result + '"';
}

/// The shortest text of the number that TOML takes for the same one.
QByteArray numberText(double value)
{
    if (value == 0.0)
        return std::signbit(value) ? "-0.0" : "0";
    const QByteArray text = QByteArray::number(value, 'g', QLocale::FloatingPointShortest);
    // Beyond these a whole number of TOML may lie between two of ours.
    constexpr double exact = 9007199254740992.0;
    const bool isWhole = std::abs(value) <= exact;
    return isWhole || text.contains('.') || text.contains('e') ? text : text + ".0";
}

const char* nameOf(ThicknessType type)
{
    switch (type) {
    case ThicknessType::SumBySum:
        return "sum-by-sum";
    case ThicknessType::Mean:
        return "mean";
    case ThicknessType::LeastSquares:
        return "least-squares";
    case ThicknessType::LeastSquaresNoBlank:
        return "least-squares-no-blank";
    case ThicknessType::EdgeJumps:
        break;
    }
    return "victreen";
}

const char* nameOf(FileKind kind)
{
    return kind == FileKind::Beamline ? "beamline" : kind == FileKind::Xdi ? "xdi" : "columns";
}

const char* nameOf(EnergyUnit unit)
{
    return unit == EnergyUnit::ElectronVolt       ? "eV"
           : unit == EnergyUnit::KiloElectronVolt ? "keV"
                                                  : "degrees";
}

const char* nameOf(StackValues values)
{
    return values == StackValues::MuT            ? "mu-t"
           : values == StackValues::Transmission ? "transmission"
                                                 : "counts";
}

const char* nameOf(NoiseModel model)
{
    return model == NoiseModel::Counts ? "counts" : "none";
}

/// Lines of a job; a table is begun by its first key.
class JobText
{
public:
    explicit JobText(const Job& job) : m_job(job) {}

    QByteArray text = "# A job for drovik-batch and the window (TOML). Energies are in eV.\n";

    void begin(const QByteArray& header, const char* path)
    {
        m_header = header;
        m_path = QString::fromLatin1(path);
    }
    void line(const char* key, const QByteArray& value)
    {
        if (!m_header.isEmpty())
            text += '\n' + m_header + '\n';
        m_header.clear();
        text += QByteArray(key) + " = " + value + '\n';
    }
    void number(const char* key, const QString& value)
    {
        const QByteArray number =
            written(m_job.typed.value(m_path + QLatin1Char('.') + QLatin1String(key), value));
        if (!number.isEmpty())
            line(key, number);
    }
    void file(const char* key, const QString& path)
    {
        if (!path.isEmpty())
            line(key, quoted(shortest(path)));
    }
    template <typename Value>
    void word(const char* key, const Value& value)
    {
        line(key, quoted(QLatin1String(nameOf(value))));
    }
    void flag(const char* key, const std::optional<bool>& value)
    {
        if (value)
            line(key, flagText(*value));
    }
    void real(const char* key, double value)
    {
        if (value != 0.0)
            line(key, numberText(value));
    }
    void spectrum(const char* key, const JobFilePath& file);
    void pattern(const char* key, const JobFilePath& file);
    void targets();
    /// A list, an item a line.
    void list(const char* key, const std::vector<JobFilePath>& files, bool ofPaths)
    {
        line(key, listText(files, ofPaths));
    }
    /// Empty where a text is no number.
    static QByteArray written(const QString& typed);

private:
    /// From the job's folder where the file is below it.
    QString shortest(const QString& path) const;
    QByteArray listText(const std::vector<JobFilePath>& files, bool ofPaths) const;
    static QByteArray sourceText(const SpectrumSource& source);

    const Job& m_job;
    QByteArray m_header;
    QString m_path; ///< of the table: "histogram.valence"
};

QByteArray JobText::written(const QString& typed)
{
    if (typed.isEmpty())
        return {};
    bool isWhole = false;
    (void)typed.toLongLong(&isWhole);
    const bool decimal = isJobNumber(typed);
    if (decimal && isWhole && numberFromText(typed) != 0.0)
        return typed.toLatin1();
    if (decimal && !isWhole && typed.contains(QRegularExpression(QStringLiteral("[.eE]"))))
        return typed.toLatin1();
    const double value = numberFromText(typed);
    if (!std::isfinite(value))
        return {};
    return numberText(value);
}

QString JobText::shortest(const QString& path) const
{
    const QString below = m_job.folder + QLatin1Char('/');
    const QString rest = path.startsWith(below) ? path.mid(below.size()) : QString();
    const bool isSame = !rest.isEmpty() && QDir(m_job.folder).filePath(rest) == path;
    return isSame ? rest : path;
}

QByteArray JobText::listText(const std::vector<JobFilePath>& files, bool ofPaths) const
{
    QByteArrayList items;
    for (const JobFilePath& file : files)
        items += quoted(ofPaths && !file.path.isEmpty() ? shortest(file.path) : file.path);
    return '[' + items.join(",\n  ") + ']';
}

/// The keys behind that of the file; empty where it is read as it is found to be.
QByteArray JobText::sourceText(const SpectrumSource& source)
{
    QByteArray text;
    const ChosenColumns& columns = source.columns;
    if (source.kind != FileKind::Unknown)
        text += QByteArray(", format = \"") + nameOf(source.kind) + '"';
    if (columns.any()) {
        QByteArrayList named;
        for (const auto& [key, column] :
             {std::pair("energy", columns.energy), std::pair("mut", columns.mut),
              std::pair("i0", columns.i0), std::pair("i", columns.i)})
            if (column > 0)
                named += QByteArray(key) + " = " + QByteArray::number(column);
        text += ", columns = { " + named.join(", ") + " }";
    }
    if (columns.unit != EnergyUnit::Unknown)
        text += QByteArray(", unit = \"") + nameOf(columns.unit) + '"';
    if (columns.spacing > 0.0)
        text += ", d = " + numberText(columns.spacing);
    return text;
}

void JobText::spectrum(const char* key, const JobFilePath& file)
{
    const QByteArray source = sourceText(file.source);
    if (source.isEmpty())
        return this->file(key, file.path);
    line(key, "{ file = " + quoted(shortest(file.path)) + source + " }");
}

void JobText::pattern(const char* key, const JobFilePath& file)
{
    if (file.path.isEmpty())
        return;
    const QByteArray source = sourceText(file.source);
    line(key,
         source.isEmpty() ? quoted(file.path) : "{ file = " + quoted(file.path) + source + " }");
}

void JobText::targets()
{
    if (m_job.targets.empty())
        return;
    const QByteArray source = sourceText(m_job.targetSource);
    const QByteArray files = listText(m_job.targets, false);
    line("targets", source.isEmpty() ? files : "{ files = " + files + source + " }");
}

void writeCalculations(const Job& job, JobText& to)
{
    QByteArrayList names;
    for (const auto& [name, wanted] :
         {std::pair("target", job.calculateTarget), std::pair("lcf", job.calculateLcf),
          std::pair("map", job.calculateMap)})
        if (wanted)
            names += '"' + QByteArray(name) + '"';
    to.line("calculate", '[' + names.join(", ") + ']');
}

void writeFiles(const Job& job, JobText& to)
{
    to.begin("[files]", "files");
    for (std::size_t i = 0; i < spectrumKeys.size(); ++i)
        to.spectrum(spectrumKeys[i], job.spectra[i]);
    to.targets();
    to.file("map_result", job.mapResult.path);
}

void writeNumbers(const Job& job, JobText& to)
{
    to.begin("[edge]", "edge");
    to.number("energy", job.edge);
    to.number("pre_edge_end", job.preEdgeEnd);
    to.number("post_edge_start", job.postEdgeStart);
    to.begin("[valences]", "valences");
    to.number("ref1", job.valence1);
    to.number("ref2", job.valence2);
    to.begin("[rank]", "rank");
    to.number("counts", job.rankCounts);
    to.number("t_ts", job.rankThickness);
}

void writeConditions(const Job& job, JobText& to)
{
    to.begin("[conditions]", "conditions");
    if (job.thickness)
        to.word("thickness", *job.thickness);
    to.flag("references_minus_victreen", job.referencesMinusVictreen);
    to.flag("target_minus_victreen", job.targetMinusVictreen);
    if (job.victreenIsPre)
        to.line("victreen", *job.victreenIsPre ? "\"pre\"" : "\"post\"");
    if (job.exactMethod)
        to.line("method", *job.exactMethod ? "\"exact\"" : "\"least-squares\"");
    to.begin("[alignment]", "alignment");
    for (std::size_t i = 0; i < spectrumKeys.size(); ++i)
        to.number(spectrumKeys[i], job.alignment.shifts[i].energy);
    to.file("shifts", job.alignment.table.path);
    to.pattern("foil", job.alignment.foil);
    to.begin("[noise]", "noise");
    if (job.noise != NoiseModel::Scatter)
        to.word("model", job.noise);
    to.number("gain", job.gain);
    to.number("gain0", job.gain0);
    to.number("level", job.level);
    to.number("map_scatter", job.mapScatter);
    to.begin("[systematics]", "systematics");
    to.number("uneven", job.uneven);
}

void writePoint(const JobPoint& point, JobText& to)
{
    to.begin("[[point]]", "point");
    const bool stands = JobText::written(point.energyText).isEmpty();
    to.number("energy", stands ? point.energy : point.energyText);
    to.flag("use", point.use);
    to.flag("t_ratio", point.tRatio);
    to.flag("v_point", point.vPoint);
    to.file("map", point.map.path);
}

void writeStack(const JobStack& stack, JobText& to)
{
    const StackSource& source = stack.source;
    to.file("stack", source.path);
    if (!source.kind.isEmpty())
        to.line("kind", quoted(source.kind));
    to.file("data", source.data);
    to.file("energies", source.energies);
    if (source.values != StackValues::Unknown)
        to.word("values", source.values);
    to.file("flat", source.flat);
    if (source.darkLevel)
        to.line("dark", numberText(*source.darkLevel));
    else
        to.file("dark", source.dark);
    to.file("reference", source.reference);
    to.real("pixel_size", source.pixelSize);
    to.real("tilt_ev_per_row", stack.tilt);
    to.real("row0", stack.row0);
    to.real("shift", source.shift);
    const Region& region = stack.region;
    if (region.width > 0)
        to.line("region", QStringLiteral("{ x = %1, y = %2, width = %3, height = %4 }")
                              .arg(region.x)
                              .arg(region.y)
                              .arg(region.width)
                              .arg(region.height)
                              .toLatin1());
}

void writeTarget(const JobStackTarget& target, JobText& to)
{
    to.begin("[[target]]", "target");
    to.line("name", quoted(target.name));
    writeStack(target.stack, to);
}

void writeMap(const JobMap& map, JobText& to)
{
    to.begin("[[map]]", "map");
    to.line("name", quoted(map.name));
    if (map.stack)
        writeStack(*map.stack, to);
    else if (!map.pattern.path.isEmpty())
        to.line("pattern", quoted(map.pattern.path));
    else
        to.list("images", map.images, true);
}

void writeHistogram(const JobHistogram& histogram, const char* path, JobText& to)
{
    to.begin(QByteArray("[") + path + ']', path);
    to.number("from", histogram.from);
    to.number("to", histogram.to);
    to.number("boxes", histogram.boxes);
}

void writeOutput(const Job& job, JobText& to)
{
    if (job.output.path.isEmpty())
        return;
    to.begin("[output]", "output");
    to.file("folder", job.output.path);
    to.flag("pictures", job.pictures);
    to.flag("report", job.report);
    to.flag("map_files", job.mapFiles);
    to.flag("tiff", job.tiff);
    to.flag("hdf5", job.hdf5);
    to.line("language", job.language == Language::Japanese ? "\"ja\"" : "\"en\"");
}

} // namespace

bool isJobNumber(const QString& text)
{
    static const QRegularExpression decimal(QRegularExpression::anchoredPattern(
        QStringLiteral("[+-]?(0|[1-9][0-9]*)(\\.[0-9]+)?([eE][+-]?[0-9]+)?")));
    return decimal.match(text).hasMatch() && std::isfinite(numberFromText(text));
}

QByteArray jobText(const Job& job)
{
    JobText to(job);
    writeCalculations(job, to);
    writeFiles(job, to);
    writeNumbers(job, to);
    writeConditions(job, to);
    if (job.points)
        for (const JobPoint& point : *job.points)
            writePoint(point, to);
    for (const JobStackTarget& target : job.stackTargets)
        writeTarget(target, to);
    for (const JobMap& map : job.maps)
        writeMap(map, to);
    writeHistogram(job.valenceHistogram, "histogram.valence", to);
    writeHistogram(job.thicknessHistogram, "histogram.thickness", to);
    writeOutput(job, to);
    return to.text;
}
