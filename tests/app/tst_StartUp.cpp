#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

namespace
{

/// The program as its user starts it. What it is told is all that it knows of displays.
class Start
{
public:
    explicit Start(const QMap<QString, QString>& variables, const QStringList& arguments = {})
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY", "WAYLAND_SOCKET",
                                       "QT_QPA_PLATFORM", "XDG_SESSION_TYPE"})
            environment.remove(QString::fromLatin1(name));
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_dir.path());
        for (auto it = variables.begin(); it != variables.end(); ++it)
            environment.insert(it.key(), it.value());
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(WINDOW_PROGRAM), arguments);
    }
    ~Start()
    {
        process.kill(); // this one only
        process.waitForFinished();
    }
    Start(const Start&) = delete;
    Start& operator=(const Start&) = delete;

    /// What the system tells of the running program.
    QByteArray fact(const char* name) const
    {
        QFile file(
            QStringLiteral("/proc/%1/%2").arg(process.processId()).arg(QString::fromLatin1(name)));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// The toolkit has begun to use a platform: the program goes on behind its check.
    bool uses(const char* platform) const { return fact("maps").contains(platform); }

    QProcess process;

private:
    QTemporaryDir m_dir;
};

/// The X server that this test has been started on.
QMap<QString, QString> realServer()
{
    QMap<QString, QString> variables{{QStringLiteral("DISPLAY"), qEnvironmentVariable("DISPLAY")}};
    if (qEnvironmentVariableIsSet("XAUTHORITY"))
        variables[QStringLiteral("XAUTHORITY")] = qEnvironmentVariable("XAUTHORITY");
    return variables;
}

/// What xdotool prints on the main window of a program, once it is shown.
QString windowFact(const Start& start, const QString& question)
{
    QProcess search;
    search.start(QStringLiteral("xdotool"),
                 {QStringLiteral("search"), QStringLiteral("--sync"),
                  QStringLiteral("--onlyvisible"), QStringLiteral("--pid"),
                  QString::number(start.process.processId()), QStringLiteral("--name"),
                  QStringLiteral("^drovik$"), question});
    return search.waitForFinished() ? QString::fromLatin1(search.readAllStandardOutput())
                                    : QString();
}

/// Size of the window on a screen of so many points an inch, in pixels of the screen.
QSize windowSize(int dotsPerInch)
{
    QMap<QString, QString> variables = realServer();
    variables[QStringLiteral("QT_FONT_DPI")] = QString::number(dotsPerInch);
    const Start start(variables, {QStringLiteral("-e")});
    const QString geometry = windowFact(start, QStringLiteral("getwindowgeometry"));
    const QRegularExpression size(QStringLiteral("Geometry: (\\d+)x(\\d+)"));
    const QRegularExpressionMatch match = size.match(geometry);
    return {match.captured(1).toInt(), match.captured(2).toInt()};
}

} // namespace

/// How the window's program starts, seen from outside.
class tst_StartUp : public QObject
{
    Q_OBJECT

private slots:
    void withoutDisplay_data();
    void withoutDisplay();
    void otherPlatforms_data();
    void otherPlatforms();
    void failedWritesAreReported();
    void realDisplay_data();
    void realDisplay();
    void everythingGrowsOnADenseScreen();
};

void tst_StartUp::withoutDisplay_data()
{
    QTest::addColumn<QStringList>("variables");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const QStringList& variables,
                        const QStringList& arguments, const char* expected) {
        QTest::newRow(name) << variables << arguments
                            << QStringLiteral("drovik: ") + QString::fromLatin1(expected) +
                                   QStringLiteral("; drovik-batch runs a job without one.\n");
    };
    const QString nowhere = QStringLiteral("DISPLAY=:98765");
    const QString wayland = QStringLiteral("WAYLAND_DISPLAY=wayland-7");
    row("nothing", {}, {}, "There is no display (DISPLAY and WAYLAND_DISPLAY are empty)");
    row("other options", {}, {QStringLiteral("-e"), QStringLiteral("xcb")},
        "There is no display (DISPLAY and WAYLAND_DISPLAY are empty)");
    row("no such X server", {nowhere}, {}, "The display :98765 cannot be reached");
    row("no such compositor", {wayland}, {}, "The display wayland-7 cannot be reached");
    row("neither", {nowhere, wayland}, {}, "The display :98765 or wayland-7 cannot be reached");
    row("long socket", {QStringLiteral("WAYLAND_DISPLAY=/") + QString(120, QLatin1Char('x'))}, {},
        QByteArray("The display /" + QByteArray(120, 'x') + " cannot be reached").constData());
    row("display as an option", {}, {QStringLiteral("-display"), QStringLiteral(":98766")},
        "The display :98766 cannot be reached");
    row("X asked for", {QStringLiteral("QT_QPA_PLATFORM=xcb"), wayland}, {},
        "There is no display (DISPLAY is empty)");
    row("X asked for by an option", {QStringLiteral("QT_QPA_PLATFORM=offscreen"), nowhere},
        {QStringLiteral("--platform"), QStringLiteral("xcb")},
        "The display :98765 cannot be reached");
    row("Wayland asked for", {QStringLiteral("QT_QPA_PLATFORM=wayland"), nowhere}, {},
        "There is no display (WAYLAND_DISPLAY is empty)");
    row("both asked for", {QStringLiteral("QT_QPA_PLATFORM=wayland;xcb"), nowhere}, {},
        "The display :98765 cannot be reached");
}

void tst_StartUp::withoutDisplay()
{
    QFETCH(QStringList, variables);
    QFETCH(QStringList, arguments);
    QFETCH(QString, expected);
    QMap<QString, QString> environment;
    for (const QString& variable : variables)
        environment[variable.section(QLatin1Char('='), 0, 0)] =
            variable.section(QLatin1Char('='), 1);
    Start start(environment, arguments);
    QVERIFY(start.process.waitForFinished());
    QCOMPARE(start.process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(start.process.exitCode(), 1);
    QCOMPARE(QString::fromUtf8(start.process.readAllStandardError()), expected);
    QCOMPARE(start.process.readAllStandardOutput(), QByteArray());
}

void tst_StartUp::otherPlatforms_data()
{
    QTest::addColumn<QString>("platform");
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("by the environment") << QStringLiteral("offscreen") << QStringList{};
    QTest::newRow("by an option") << QString()
                                  << QStringList{QStringLiteral("-platform"),
                                                 QStringLiteral("offscreen")};
    QTest::newRow("as a way out") << QStringLiteral("xcb;offscreen") << QStringList{};
    QTest::newRow("with parameters") << QStringLiteral("offscreen:x=1") << QStringList{};
}

/// Nothing is said where the toolkit needs no display.
void tst_StartUp::otherPlatforms()
{
    QFETCH(QString, platform);
    QFETCH(QStringList, arguments);
    Start start({{QStringLiteral("QT_QPA_PLATFORM"), platform}}, arguments);
    QTRY_VERIFY(start.uses("libqoffscreen"));
    QCOMPARE(start.process.state(), QProcess::Running);
    QVERIFY(!start.process.readAllStandardError().contains("drovik-batch"));
}

/// A limit on the size of files is a write that fails, and not the end of the program.
void tst_StartUp::failedWritesAreReported()
{
    Start start({{QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen")}});
    QTRY_VERIFY(start.uses("libqoffscreen"));
    const QByteArray status = start.fact("status");
    const int place = status.indexOf("SigIgn:\t") + 8;
    const quint64 ignored = status.mid(place, 16).toULongLong(nullptr, 16);
    for (const int signal : {SIGXFSZ, SIGPIPE})
        QVERIFY((ignored >> (signal - 1)) & 1);
}

void tst_StartUp::realDisplay_data()
{
    QTest::addColumn<bool>("byOption");
    QTest::newRow("by the environment") << false;
    QTest::newRow("by an option") << true;
}

void tst_StartUp::realDisplay()
{
    QFETCH(bool, byOption);
    if (qEnvironmentVariable("QT_QPA_PLATFORM") != QLatin1String("xcb"))
        QSKIP("there is no X server");
    QMap<QString, QString> variables = realServer();
    QStringList arguments;
    if (byOption)
        arguments =
            QStringList{QStringLiteral("-platform"), QStringLiteral("xcb"),
                        QStringLiteral("-display"), variables.take(QStringLiteral("DISPLAY"))};
    const Start start(variables, arguments);
    QVERIFY(windowFact(start, QStringLiteral("getwindowname")).startsWith(QLatin1String("drovik")));
}

/// Letters and what is drawn grow alike: the window keeps its shape.
void tst_StartUp::everythingGrowsOnADenseScreen()
{
    if (qEnvironmentVariable("QT_QPA_PLATFORM") != QLatin1String("xcb"))
        QSKIP("there is no X server");
    const QSize usual = windowSize(96);
    QVERIFY(!usual.isEmpty());
    const QSize dense = windowSize(120); // five quarters of 96
    const QSize expected(qRound(usual.width() * 1.25), qRound(usual.height() * 1.25));
    QVERIFY2(qAbs(dense.width() - expected.width()) <= 2 &&
                 qAbs(dense.height() - expected.height()) <= 2,
             qPrintable(QStringLiteral("%1 x %2").arg(dense.width()).arg(dense.height())));
}

QTEST_GUILESS_MAIN(tst_StartUp)
#include "tst_StartUp.moc"
