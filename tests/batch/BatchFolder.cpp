#include "tests/batch/BatchFolder.h"

#include "examples/MixedSample.h"
#include "examples/MixedSampleFiles.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QDirIterator>

const QByteArray BatchFolder::points =
    "[[point]]\nenergy = 8313\nt_ratio = true\n[[point]]\nenergy = 8381\nt_ratio = true\n"
    "[[point]]\nenergy = 8390\nv_point = true\n[[point]]\nenergy = 8404.5\nt_ratio = true\n";

QMap<QByteArray, QByteArray> firstRow(const QByteArray& table)
{
    const QList<QByteArray> lines = table.split('\n');
    const QList<QByteArray> names = lines.value(0).trimmed().split(',');
    const QList<QByteArray> fields = lines.value(1).trimmed().split(',');
    QMap<QByteArray, QByteArray> row;
    for (int i = 0; i < names.size(); ++i)
        row[names[i]] = fields.value(i);
    return row;
}

BatchFolder::BatchFolder(const QList<int>& percents)
{
    if (!QDir(path()).mkdir(QStringLiteral("scans")))
        qFatal("no folder can be made in %s", qPrintable(path()));
    for (const int percent : percents) {
        MixedSample sample;
        sample.fraction = percent / 100.0;
        if (!writeSample(path(), sample, std::nullopt).isEmpty() ||
            !QFile::rename(file("target.dat"), file(QStringLiteral("scans/%1.dat").arg(percent))))
            qFatal("no sample can be written in %s", qPrintable(path()));
    }
}

QByteArray BatchFolder::results() const
{
    return contents(file("results/results.csv"));
}

void BatchFolder::writeJob(const QByteArray& more, const QByteArray& targets) const
{
    write("job.toml", "[files]\nref1 = \"ref1.dat\"\nref2 = \"ref2.dat\"\nblank = \"blank.dat\"\n"
                      "targets = [" +
                          targets + "]\n[output]\nfolder = \"results\"\n" + points + more);
}

void BatchFolder::write(const char* name, const QByteArray& text) const
{
    create(file(name), text);
}

void BatchFolder::addTargets(int count, const char* prefix) const
{
    const QByteArray scan = contents(file("scans/35.dat"));
    for (int i = 0; i < count; ++i) {
        const QByteArray name = prefix + QByteArray::number(i).rightJustified(4, '0');
        write("scans/" + name + ".dat", "  " + name + '\n' + scan);
    }
}

QByteArray BatchFolder::addMap(const char* name) const
{
    QDir(path()).mkpath(QStringLiteral("images"));
    for (int row = 1; row <= 4; ++row) {
        QByteArray text = "# AXIS 0 a b c d 3\n# AXIS 1 a b c d 2\n";
        for (int pixel = 0; pixel < 6; ++pixel)
            text += QByteArray::number(pixel % 3) + ' ' + QByteArray::number(pixel / 3) + ' ' +
                    QByteArray::number(900 - 90 * row - 7 * pixel * row) + " 1000\n";
        write(("images/" + QByteArray(name) + '_' + QByteArray::number(row) + ".txt").constData(),
              text);
    }
    return "[[map]]\nname = \"" + QByteArray(name) + "\"\npattern = \"images/" + name +
           "_{row}.txt\"\n";
}

QMap<QString, QByteArray> BatchFolder::resultFiles() const
{
    QMap<QString, QByteArray> files;
    QDirIterator it(file("results"), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString name = QDir(file("results")).relativeFilePath(it.next());
        if (!name.contains(QStringLiteral(".sqlite")))
            files[name] = contents(it.filePath());
    }
    return files;
}

BatchOutput BatchFolder::run(const QStringList& arguments) const
{
    return runPlainly(arguments + QStringList{QStringLiteral("job.toml")});
}

BatchOutput BatchFolder::runPlainly(const QStringList& arguments) const
{
    QProcess process;
    start(process, arguments);
    return outputOf(process);
}

QStringList BatchFolder::calculated(const QStringList& arguments) const
{
    const BatchOutput output = run(QStringList{QStringLiteral("--verbose")} + arguments);
    QStringList names;
    for (const QString& line : output.errors.split(QLatin1Char('\n')))
        if (line.contains(QStringLiteral(": calculated in ")))
            names += line.section(QLatin1Char(':'), 0, 0);
    return names;
}

void BatchFolder::start(QProcess& process, const QStringList& arguments,
                        const QString& program) const
{
    QProcessEnvironment environment = process.processEnvironment();
    if (environment.isEmpty())
        environment = QProcessEnvironment::systemEnvironment();
    // A run that is killed or limited must not break off the counts of the lines that others reach.
    environment.insert(QStringLiteral("GCOV_PREFIX"), file("counts"));
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(path());
    process.start(program.isEmpty() ? QStringLiteral(BATCH_PROGRAM) : program, arguments);
}

BatchOutput BatchFolder::outputOf(QProcess& process)
{
    constexpr int longestRun = 120000; // ms; sanitizers on a busy machine take their time
    if (!process.waitForFinished(longestRun))
        return {};
    const int status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return {status, process.readAllStandardOutput(),
            QString::fromUtf8(process.readAllStandardError())};
}
