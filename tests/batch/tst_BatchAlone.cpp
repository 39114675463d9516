#include "tests/support/Files.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

/// The batch program needs nothing of a desktop: neither its libraries nor its plugins.
class tst_BatchAlone : public QObject
{
    Q_OBJECT

private slots:
    void linksNoWidgets();
    void runsWithoutAPlatform();
    void showStartsTheWindow();
    void showNeedsAWindow();
    void showRefusesABadJobBefore();
};

namespace
{

struct Output {
    int status = -1;
    QString text;
    QString errors;
};

Output run(const QString& program, const QStringList& arguments,
           const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment())
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

/// A script in the place of the window: prints its name, its arguments and the job, fails by 7.
void makeWindow(const QString& folder, const QByteArray& name)
{
    QDir().mkpath(folder);
    QFile file(create(folder + QStringLiteral("/drovik"),
                      "#!/bin/sh\necho \"" + name + " $# $DROVIK_SHOW_JOB\"\nexit 7\n"));
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

/// The system's environment with another PATH.
QProcessEnvironment withPath(const QString& path)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PATH"), path);
    return environment;
}

/// A desktop whose platform does not exist and whose plugins are nowhere.
QProcessEnvironment withoutPlatform()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY", "XDG_RUNTIME_DIR"})
        environment.remove(QString::fromLatin1(name));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("nonsense"));
    environment.insert(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral("/nowhere"));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM_PLUGIN_PATH"), QStringLiteral("/nowhere"));
    return environment;
}

} // namespace

void tst_BatchAlone::linksNoWidgets()
{
    // The window's program shows that the libraries would be seen.
    const QString widgets = QStringLiteral("libQt5Widgets");
    const Output window = run(QStringLiteral("ldd"), {QStringLiteral(WINDOW_PROGRAM)});
    QCOMPARE(window.status, 0);
    QVERIFY2(window.text.contains(widgets), qPrintable(window.text));
    const Output batch = run(QStringLiteral("ldd"), {QStringLiteral(BATCH_PROGRAM)});
    QCOMPARE(batch.status, 0);
    QVERIFY2(batch.text.contains(QStringLiteral("libQt5Core")), qPrintable(batch.text));
    QVERIFY2(!batch.text.contains(widgets), qPrintable(batch.text));
}

void tst_BatchAlone::runsWithoutAPlatform()
{
    const QProcessEnvironment environment = withoutPlatform();
    QVERIFY(run(QStringLiteral(WINDOW_PROGRAM), {}, environment).status != 0);
    const QTemporaryDir folder;
    const QString job = folder.filePath(QStringLiteral("job.toml"));
    QFile file(job);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("# Without spectra.\n");
    file.close();
    const Output output = run(QStringLiteral(BATCH_PROGRAM), {job}, environment);
    QCOMPARE(output.text,
             QStringLiteral("Ref File1 is not valid.\nEnergy Range is not selected, which should "
                            "by selected by CB of TR.\nCalcRes: \nLCFRes: \n"));
    QCOMPARE(output.errors, QString());
    QCOMPARE(output.status, 1);
    const Output example =
        run(QStringLiteral(BATCH_PROGRAM),
            {QStringLiteral(BUILD_FOLDER "/examples/nickel/job.toml")}, environment);
    QCOMPARE(example.errors, QString());
    QCOMPARE(example.status, 0);
}

void tst_BatchAlone::showStartsTheWindow()
{
    const QTemporaryDir folder;
    const QString alone = folder.filePath(QStringLiteral("bin/drovik-batch"));
    const QString inPath = folder.filePath(QStringLiteral("path"));
    makeWindow(inPath, "in PATH");
    makeWindow(folder.filePath(QStringLiteral("bin")), "beside");
    QVERIFY(QFile::copy(QStringLiteral(BATCH_PROGRAM), alone));
    const QString job = create(folder.filePath(QStringLiteral("a \"job\".toml")), "# nothing\n");
    QProcess process;
    process.setWorkingDirectory(folder.path());
    process.setProcessEnvironment(withPath(inPath + QStringLiteral(":/usr/bin:/bin")));
    const QStringList arguments{QStringLiteral("--show"), QStringLiteral("a \"job\".toml")};
    for (const char* const name : {"beside", "in PATH"}) {
        process.start(alone, arguments);
        QVERIFY(process.waitForFinished());
        QCOMPARE(QString::fromUtf8(process.readAllStandardOutput()),
                 QStringLiteral("%1 0 %2\n").arg(QLatin1String(name), job));
        QCOMPARE(process.readAllStandardError(), QByteArray());
        QCOMPARE(process.exitCode(), 7);
        QFile::remove(folder.filePath(QStringLiteral("bin/drovik"))); // then that in PATH
    }
}

void tst_BatchAlone::showNeedsAWindow()
{
    const QTemporaryDir folder;
    const QString alone = folder.filePath(QStringLiteral("drovik-batch"));
    QVERIFY(QFile::copy(QStringLiteral(BATCH_PROGRAM), alone));
    const QString job = create(folder.filePath(QStringLiteral("job.toml")), "# nothing\n");
    const Output output = run(alone, {QStringLiteral("--show"), job}, withPath(folder.path()));
    QCOMPARE(output.text, QString());
    QCOMPARE(output.errors, QStringLiteral("The window cannot be started: there is no drovik "
                                           "beside drovik-batch or in PATH.\n"));
    QCOMPARE(output.status, 2);
}

void tst_BatchAlone::showRefusesABadJobBefore()
{
    const QTemporaryDir folder;
    makeWindow(folder.path(), "window");
    const QString job = create(folder.filePath(QStringLiteral("job.toml")), "edge = 1\n");
    const Output output = run(QStringLiteral(BATCH_PROGRAM), {QStringLiteral("--show"), job},
                              withPath(folder.path() + QStringLiteral(":/usr/bin:/bin")));
    QCOMPARE(output.text, QString());
    QCOMPARE(output.errors, job + QStringLiteral(":1:8: edge: must be a table: [edge]\n"));
    QCOMPARE(output.status, 2);
}

QTEST_GUILESS_MAIN(tst_BatchAlone)
#include "tst_BatchAlone.moc"
