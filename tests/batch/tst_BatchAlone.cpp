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
    const Output example = run(QStringLiteral(BATCH_PROGRAM),
                               {QStringLiteral(EXAMPLES "/nickel/job.toml")}, environment);
    QCOMPARE(example.errors, QString());
    QCOMPARE(example.status, 0);
}

QTEST_GUILESS_MAIN(tst_BatchAlone)
#include "tst_BatchAlone.moc"
