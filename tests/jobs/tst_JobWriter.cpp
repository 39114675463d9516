#include "jobs/JobWriter.h"
#include "tests/support/Random.h"

#include <QtTest>

/// Random jobs that parseJob() gives back as they were.
class tst_JobWriter : public QObject
{
    Q_OBJECT
private slots:
    void anEmptyJobIsShort();
    void filesAreNamedFromTheFolder_data();
    void filesAreNamedFromTheFolder();
    void numbersStandAsTyped_data();
    void numbersStandAsTyped();
    void whatIsNoNumberHasNoKey();
    void randomJobsComeBack();
};

namespace
{

const QString folder = QStringLiteral("/data/night 1");

Job readBack(const QByteArray& text)
{
    JobError error;
    const std::optional<Job> job = parseJob(text, folder, error);
    if (!job)
        qFatal("%s\n%s", qPrintable(errorText(QStringLiteral("job"), error)), text.constData());
    return *job;
}

/// All that a job holds, but for the places in its text.
class Described
{
public:
    explicit Described(const Job& job)
    {
        for (const JobFilePath& file : job.spectra)
            add(file);
        for (const JobFilePath& file : job.targets)
            add(file);
        add({{}, {}, job.targetSource});
        for (const JobStackTarget& target : job.stackTargets)
            add(JobMap{target.name, {}, {}, {}, target.stack});
        for (const JobMap& map : job.maps)
            add(map);
        for (const JobShift& shift : job.alignment.shifts)
            lines << shift.energy;
        for (const JobFilePath& file :
             {job.output, job.mapResult, job.alignment.table, job.alignment.foil})
            add(file);
        lines << job.edge << job.preEdgeEnd << job.postEdgeStart << job.valence1 << job.valence2
              << job.gain << job.gain0 << job.level << job.mapScatter << job.uneven
              << job.rankCounts << job.rankThickness;
        for (const JobHistogram& histogram : {job.valenceHistogram, job.thicknessHistogram})
            lines << histogram.from << histogram.to << histogram.boxes;
        if (job.points)
            for (const JobPoint& point : *job.points) {
                lines << point.energy << point.energyText;
                add({int(point.use), int(point.tRatio), int(point.vPoint)});
                add(point.map);
            }
        add({int(job.points.has_value()), int(job.pictures), int(job.report), int(job.mapFiles),
             int(job.tiff), int(job.hdf5), int(job.language),
             job.thickness ? int(*job.thickness) : -1, flag(job.referencesMinusVictreen),
             flag(job.targetMinusVictreen), flag(job.victreenIsPre), flag(job.exactMethod),
             int(job.noise), int(job.calculateTarget), int(job.calculateLcf),
             int(job.calculateMap)});
        QStringList typed;
        for (auto it = job.typed.begin(); it != job.typed.end(); ++it)
            typed << it.key() + QLatin1Char('=') + it.value();
        typed.sort();
        lines << typed;
    }

    QStringList lines;

private:
    static int flag(const std::optional<bool>& value) { return value ? int(*value) : -1; }
    void add(const std::vector<int>& numbers)
    {
        for (const int number : numbers)
            lines << QString::number(number);
    }
    void add(double number) { lines << QString::number(number, 'g', 17); }
    void add(const JobFilePath& file)
    {
        const ChosenColumns& columns = file.source.columns;
        lines << QStringLiteral("file ") + file.path;
        add({int(file.source.kind), columns.energy, columns.mut, columns.i0, columns.i,
             int(columns.unit)});
        add(columns.spacing);
    }
    void add(const JobMap& map)
    {
        lines << map.name << map.pattern.path;
        for (const JobFilePath& image : map.images)
            add(image);
        if (!map.stack)
            return;
        const StackSource& source = map.stack->source;
        const Region& region = map.stack->region;
        lines << source.path << source.kind << source.data << source.energies << source.flat
              << source.dark << source.reference;
        add({int(source.values), int(source.darkLevel.has_value()), region.x, region.y,
             region.width, region.height});
        for (const double number : {source.darkLevel.value_or(0.0), source.pixelSize, source.shift,
                                    map.stack->tilt, map.stack->row0})
            add(number);
    }
};

/// A job whose parts go together.
class AnyJob
{
public:
    explicit AnyJob(Random& random) : m_random(random)
    {
        job.folder = folder;
        numbers();
        conditions();
        alignment();
        points();
        if (m_random.oneIn(2))
            outputs();
        else
            files();
    }

    Job job;

private:
    bool chance() { return m_random.oneIn(2); }

    QString name()
    {
        static const QStringList parts{
            QStringLiteral("ref1.dat"),    QStringLiteral("a \"b\" 'c'"), QStringLiteral("酸化鉄"),
            QStringLiteral("back\\slash"), QStringLiteral("#[x]=1"),      QStringLiteral("tab\t"),
            QStringLiteral("line\nend"),   QString(QChar(0xFEFF)),        QString(QChar(0x7F)),
            QStringLiteral(".."),          QStringLiteral("{row}"),       QStringLiteral("  ")};
        return parts.at(m_random.below(parts.size()));
    }
    JobFilePath path()
    {
        static const QStringList folders{folder + QLatin1Char('/'),
                                         folder + QStringLiteral("/sub/"), QStringLiteral("/data/"),
                                         QStringLiteral("/")};
        return {folders.at(m_random.below(folders.size())) + name()};
    }
    /// No whole number beyond those of 64 bits, which comes back as it had to be written: "1e20" is
    /// "100000000000000000000.0".
    double real()
    {
        const double number = m_random.anyNumber();
        return std::abs(number) > 1e18 && std::abs(number) < 1e22 ? 1.0 : number;
    }
    static QString shortest(double value)
    {
        return QString::number(value, 'g', QLocale::FloatingPointShortest);
    }
    QString maybe(double value) { return chance() ? shortest(value) : QString(); }
    std::optional<bool> maybeFlag()
    {
        return chance() ? std::optional<bool>(chance()) : std::nullopt;
    }
    double positive() { return std::abs(real()) + 1e-300; }
    void typedAs(const char* key, QString& field, const char* typed)
    {
        field = shortest(QByteArray(typed).toDouble());
        job.typed[QLatin1String(key)] = QLatin1String(typed);
    }

    SpectrumSource source()
    {
        SpectrumSource source;
        const FileKind kinds[] = {FileKind::Unknown, FileKind::Beamline, FileKind::Xdi,
                                  FileKind::Columns};
        source.kind = kinds[m_random.below(4)];
        ChosenColumns& columns = source.columns;
        for (int* column : {&columns.energy, &columns.mut, &columns.i0, &columns.i})
            *column = m_random.below(4);
        const EnergyUnit units[] = {EnergyUnit::Unknown, EnergyUnit::ElectronVolt,
                                    EnergyUnit::KiloElectronVolt, EnergyUnit::Degrees};
        columns.unit = units[m_random.below(4)];
        columns.spacing = chance() ? 3.1356 : 0.0;
        return source;
    }

    void numbers()
    {
        job.edge = maybe(real());
        job.preEdgeEnd = maybe(real());
        job.postEdgeStart = maybe(real());
        job.valence1 = maybe(real());
        job.gain = maybe(positive());
        job.gain0 = maybe(positive());
        job.mapScatter = maybe(positive());
        job.level = chance() ? QStringLiteral("0.683") : QString();
        job.uneven = chance() ? QStringLiteral("0.05") : QString();
        job.rankCounts = maybe(positive());
        job.rankThickness = maybe(positive());
        if (chance())
            typedAs("edge.energy", job.edge, "8350.0");
        if (chance())
            typedAs("valences.ref2", job.valence2, "+2");
        if (chance())
            job.thicknessHistogram = {maybe(-std::abs(m_random.uniform(0, 1))),
                                      maybe(m_random.uniform(1, 2)),
                                      chance() ? QString::number(2 + m_random.below(100))
                                               : QString(),
                                      {}};
    }
    void conditions()
    {
        if (chance())
            job.thickness = static_cast<ThicknessType>(m_random.below(5));
        job.referencesMinusVictreen = maybeFlag();
        job.targetMinusVictreen = maybeFlag();
        job.victreenIsPre = maybeFlag();
        job.exactMethod = maybeFlag();
        const NoiseModel models[] = {NoiseModel::Scatter, NoiseModel::Counts, NoiseModel::None};
        job.noise = models[m_random.below(3)];
        job.calculateTarget = chance();
        job.calculateLcf = chance() || !job.calculateTarget;
    }
    void points()
    {
        if (chance())
            return;
        job.points.emplace(1 + static_cast<std::size_t>(m_random.below(8)));
        for (JobPoint& point : *job.points) {
            point.energy = shortest(real());
            point.energyText = point.energy;
            point.use = chance();
            point.tRatio = chance();
        }
        job.points->front().vPoint = true;
        job.points->front().energy = QStringLiteral("8390");
        job.points->front().energyText = QStringLiteral("8.3900e3");
    }

    void files()
    {
        for (JobFilePath& file : job.spectra)
            if (chance()) {
                file = path();
                file.source = chance() ? source() : SpectrumSource();
            }
        job.calculateMap = chance();
        if (chance())
            job.mapResult = path();
        if (job.points)
            for (JobPoint& point : *job.points)
                if (chance())
                    point.map = path();
    }
    void alignment()
    {
        JobAlignment& alignment = job.alignment;
        const int kind = m_random.below(4);
        for (std::size_t i = 0; i < alignment.shifts.size(); ++i)
            if (kind == 0 || (kind == 1 && (i == SpectrumSet::Ref2 || i == SpectrumSet::Blank)))
                alignment.shifts[i].energy = maybe(m_random.uniform(-100, 100));
        if (kind == 1) {
            job.spectra[SpectrumSet::Ref1] = path();
            alignment.foil = {QStringLiteral("foil/{name}") + name()};
            alignment.foil.source = chance() ? source() : SpectrumSource();
        } else if (kind == 2) {
            alignment.table = path();
        }
    }
    void outputs()
    {
        job.output = path();
        job.targetSource = source();
        job.targets = {{name() + QStringLiteral("*.dat")}, {QStringLiteral("/other/?") + name()}};
        if (chance())
            job.stackTargets = {{QStringLiteral("grain \"1\""), {}, stack()},
                                {QStringLiteral("[鉄]"), {}, stack()}};
        job.pictures = chance();
        job.report = chance();
        job.mapFiles = chance();
        job.tiff = chance();
        job.hdf5 = chance();
        job.language = chance() ? Language::Japanese : Language::English;
        if (!job.points)
            return;
        job.maps.resize(3);
        job.maps[0].name = QStringLiteral("area \"1\"");
        job.maps[0].images.resize(job.points->size());
        for (JobFilePath& image : job.maps[0].images)
            image = chance() ? path() : JobFilePath();
        job.maps[0].images.front() = path();
        job.maps[1].name = QStringLiteral("鉄");
        job.maps[1].pattern.path = QStringLiteral("x\\{row}_{energy}.txt");
        job.maps[2].name = QStringLiteral("c");
        job.maps[2].stack = stack();
    }
    JobStack stack()
    {
        JobStack stack;
        StackSource& source = stack.source;
        source.path = path().path;
        source.kind = chance() ? QStringLiteral("nxdata") : QString();
        source.data = chance() ? QStringLiteral("/data/night 1/images") : QString();
        source.energies = chance() ? path().path : QString();
        source.values = static_cast<StackValues>(m_random.below(4));
        source.flat = chance() ? QStringLiteral("/entry/flat") : QString();
        if (chance())
            source.darkLevel = real();
        else
            source.dark = path().path;
        source.reference = chance() ? path().path : QString();
        source.pixelSize = chance() ? positive() : 0.0;
        source.shift = real();
        stack.tilt = real();
        stack.row0 = real();
        if (chance())
            stack.region = {m_random.below(5), m_random.below(5), 1 + m_random.below(9),
                            1 + m_random.below(9)};
        return stack;
    }

    Random& m_random;
};

} // namespace

void tst_JobWriter::anEmptyJobIsShort()
{
    QCOMPARE(jobText(Job()),
             QByteArray("# A job for drovik-batch and the window (TOML). Energies are in eV.\n"
                        "calculate = [\"target\", \"lcf\"]\n"));
}

void tst_JobWriter::filesAreNamedFromTheFolder_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const char* name, const char* path, const char* text) {
        QTest::newRow(name) << QString::fromUtf8(path) << QByteArray(text);
    };
    row("in it", "/data/night 1/a.dat", "a.dat");
    row("below it", "/data/night 1/sub/a.dat", "sub/a.dat");
    row("above it", "/data/a.dat", "/data/a.dat");
    row("beside it", "/data/night 12/a.dat", "/data/night 12/a.dat");
    row("the folder itself", "/data/night 1/", "/data/night 1/");
    row("two strokes", "/data/night 1//a.dat", "/data/night 1//a.dat");
    row("marks", "/data/night 1/a\"\\\t\x7f.dat", "a\\\"\\\\\\u0009\\u007f.dat");
}

void tst_JobWriter::filesAreNamedFromTheFolder()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, text);
    Job job;
    job.folder = folder;
    job.spectra[SpectrumSet::Ref1].path = path;
    const QByteArray written = jobText(job);
    QVERIFY2(written.contains("[files]\nref1 = \"" + text + "\"\n"), written.constData());
    QCOMPARE(readBack(written).spectra[SpectrumSet::Ref1].path, path);
}

void tst_JobWriter::numbersStandAsTyped_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("shown");
    const auto row = [](const char* typed, const char* text, const char* shown) {
        QTest::newRow(typed) << QString::fromLatin1(typed) << QByteArray(text)
                             << QString::fromLatin1(shown);
    };
    row("8350.0", "8350.0", "8350.0");
    row("8350.10", "8350.10", "8350.10");
    row("+2", "+2", "+2");
    row("2E0", "2E0", "2E0");
    row("1e-07", "1e-07", "1e-07");
    row("-50", "-50", "-50");
    // What TOML writes otherwise.
    row(" 8350 ", "8350", "8350");
    row("8350.", "8350", "8350");
    row(".5", "0.5", "0.5");
    row("0350", "350", "350");
    row("-0", "-0.0", "-0.0");
    row("18446744073709551616", "18446744073709552000.0", "18446744073709552000.0");
    row("text", "0", "0");
    row("1,5", "0", "0");
}

void tst_JobWriter::numbersStandAsTyped()
{
    QFETCH(QString, typed);
    QFETCH(QByteArray, text);
    QFETCH(QString, shown);
    Job job;
    job.edge = typed;
    job.points.emplace(1);
    job.points->front().energy = typed;
    job.points->front().energyText = typed;
    job.points->front().vPoint = true;
    const QByteArray written = jobText(job);
    QVERIFY2(written.contains("[edge]\nenergy = " + text + '\n'), written.constData());
    QVERIFY2(written.contains("[[point]]\nenergy = " + text + '\n'), written.constData());
    const Job back = readBack(written);
    QCOMPARE(back.typed.value(QStringLiteral("edge.energy"), back.edge), shown);
    QCOMPARE(back.points->front().energyText, shown);
    QCOMPARE(back.edge.toDouble(), typed.toDouble());
}

void tst_JobWriter::whatIsNoNumberHasNoKey()
{
    for (const char* text : {"nan", "inf", "-inf", ""}) {
        Job job;
        job.edge = QLatin1String(text);
        QVERIFY(!jobText(job).contains("energy ="));
    }
}

void tst_JobWriter::randomJobsComeBack()
{
    Random random;
    QByteArray all;
    for (int i = 0; i < 500; ++i) {
        const Job job = AnyJob(random).job;
        const QByteArray text = jobText(job);
        QCOMPARE(Described(readBack(text)).lines, Described(job).lines);
        all += text;
    }
    // A key that the writer does not know would be lost without a word.
    for (const QString& key : jobKeys()) {
        const QByteArray name = key.section(QLatin1Char('.'), -1).toLatin1();
        QVERIFY2(all.contains(name + " = "), qPrintable(key));
    }
}

QTEST_APPLESS_MAIN(tst_JobWriter)
#include "tst_JobWriter.moc"
