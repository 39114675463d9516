#include "tests/hostile/HostileFiles.h"
#include "tests/model/PanelSession.h"

#include "app/FourPs.h"
#include "tests/support/PanelActions.h"

#include <QDirIterator>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>

namespace
{

/// No file of the process grows beyond a size while this lives: a disk that is full there.
class FullDisk
{
public:
    explicit FullDisk(rlim_t size) : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{size, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    void (*m_handler)(int);
    rlimit m_before{};
};

QMap<QString, QByteArray> filesIn(const QString& folder)
{
    QMap<QString, QByteArray> files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        files[file.fileName()] =
            file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("not readable");
    }
    return files;
}

} // namespace

/// Result files that cannot be written: one line in the message pane, and nothing else is touched.
class tst_FailingWrites : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cannotBeOpened_data();
    void cannotBeOpened();
    void readOnly_data();
    void readOnly();
    void vanishedFolder();
    void fullDisk();
    void fullDevice();
    void histogramFilesOfOddKinds_data();
    void histogramFilesOfOddKinds();
    void fullDiskOfAHistogram();

private:
    QString out(const char* name) const
    {
        return m_folder->filePath(QStringLiteral("out/") + QLatin1String(name));
    }
    QStringList write(const QString& path);

    std::unique_ptr<PanelSession> m_session;
    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_FailingWrites::init()
{
    m_session.reset();
    m_folder = std::make_unique<QTemporaryDir>();
    m_session = std::make_unique<PanelSession>(6, m_folder->path(), false);
    user::click(m_session->panel().ePoints.at(0)->UseCB); // three rows: no line of thickness ratios
    QVERIFY(m_session->panel().CalcRes->text().startsWith(QLatin1String("3ps")));
}

/// The lines that pressing "Write" adds.
QStringList tst_FailingWrites::write(const QString& path)
{
    FourPs& panel = m_session->panel();
    user::type(panel.SaveFSelect->FileName, path);
    const int lines = user::messages(panel).size();
    user::click(panel.WriteB);
    return user::messagesSince(panel, lines);
}

void tst_FailingWrites::cannotBeOpened_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("folder") << QStringLiteral("deep");
    QTest::newRow("folder with a slash") << QStringLiteral("deep/");
    QTest::newRow("in no folder") << QStringLiteral("no folder/result.dat");
    QTest::newRow("below a file") << QStringLiteral("file/result.dat");
    QTest::newRow("pipe") << QStringLiteral("pipe");
    QTest::newRow("circular link") << QStringLiteral("circle");
    QTest::newRow("too long a name") << QString(300, QLatin1Char('x'));
}

void tst_FailingWrites::cannotBeOpened()
{
    QFETCH(QString, name);
    hostile::write(out("file"), "earlier");
    hostile::unreadable(m_folder->filePath(QStringLiteral("out")));
    const QString path = m_folder->filePath(QStringLiteral("out/")) + name;
    const QMap<QString, QByteArray> before = filesIn(m_folder->path());
    QCOMPARE(write(path), QStringList({QStringLiteral("Can't open the file [%1]").arg(path)}));
    QCOMPARE(filesIn(m_folder->path()), before);
}

void tst_FailingWrites::readOnly_data()
{
    QTest::addColumn<bool>("folder");
    QTest::newRow("file") << false;
    QTest::newRow("folder") << true;
}

void tst_FailingWrites::readOnly()
{
    QFETCH(bool, folder);
    const QString path = out("result.dat");
    if (!folder)
        hostile::write(path, "earlier");
    const QString locked = folder ? QFileInfo(path).path() : path;
    const QMap<QString, QByteArray> before = filesIn(m_folder->path());
    QCOMPARE(chmod(QFile::encodeName(m_folder->path()).constData(), 0755), 0);
    QCOMPARE(chmod(QFile::encodeName(locked).constData(), folder ? 0555 : 0444), 0);
    QStringList lines;
    {
        const hostile::PlainUser plainUser;
        lines = write(path);
    }
    QCOMPARE(chmod(QFile::encodeName(locked).constData(), 0755), 0);
    QCOMPARE(lines, QStringList({QStringLiteral("Can't open the file [%1]").arg(path)}));
    QCOMPARE(filesIn(m_folder->path()), before);
}

void tst_FailingWrites::vanishedFolder()
{
    const QString path = out("deep/result.dat");
    QCOMPARE(write(path), QStringList());
    QVERIFY(QFile::exists(path));
    QVERIFY(QDir(out("deep")).removeRecursively());
    QCOMPARE(write(path), QStringList({QStringLiteral("Can't open the file [%1]").arg(path)}));
    QVERIFY(!QFile::exists(out("deep")));
}

void tst_FailingWrites::fullDisk()
{
    const QString path = out("result.dat");
    QCOMPARE(write(path), QStringList());
    const QMap<QString, QByteArray> before = filesIn(m_folder->path());
    QStringList lines;
    {
        const FullDisk disk(100);
        lines = write(path);
    }
    QCOMPARE(lines, QStringList({QStringLiteral("Can't write the file [%1]").arg(path)}));
    QVERIFY(before[path].size() > 100);
    QCOMPARE(filesIn(m_folder->path()), before); // the earlier result, and nothing beside it
    // With room again the same file is written whole.
    QCOMPARE(write(path), QStringList());
    QCOMPARE(filesIn(m_folder->path()), before);
}

void tst_FailingWrites::fullDevice()
{
    const QString path = QStringLiteral("/dev/full");
    if (!QFile::exists(path))
        QSKIP("there is no /dev/full");
    QCOMPARE(write(path), QStringList({QStringLiteral("Can't write the file [/dev/full]")}));
}

void tst_FailingWrites::histogramFilesOfOddKinds_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* kind : {"pipe", "folder", "broken link", "locked", "missing"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

/// A histogram file is written only where one is; what is not a file is none. All of it silently.
void tst_FailingWrites::histogramFilesOfOddKinds()
{
    QFETCH(QString, kind);
    const QString path = out("result_HGAlpha.dat");
    const QByteArray name = QFile::encodeName(path);
    if (kind == QLatin1String("pipe"))
        QVERIFY(mkfifo(name.constData(), 0666) == 0 && chmod(name.constData(), 0666) == 0);
    else if (kind == QLatin1String("folder"))
        QVERIFY(QDir().mkdir(path));
    else if (kind == QLatin1String("broken link"))
        QVERIFY(QFile::link(out("nothing"), path));
    else if (kind == QLatin1String("locked"))
        QCOMPARE(chmod(QFile::encodeName(hostile::write(path, "earlier")).constData(), 0444), 0);
    QCOMPARE(chmod(QFile::encodeName(m_folder->path()).constData(), 0755), 0);
    QCOMPARE(chmod(QFile::encodeName(out("")).constData(), 0777), 0);
    QStringList lines;
    {
        const hostile::PlainUser plainUser;
        lines = write(out("result.dat"));
    }
    QCOMPARE(lines, QStringList());
    QVERIFY(QFileInfo(out("result.dat")).size() > 100);
    QVERIFY(!QFile::exists(out("nothing")));
    QFile file(path);
    if (kind == QLatin1String("locked"))
        QVERIFY(file.open(QIODevice::ReadOnly) && file.readAll() == "earlier");
    QCOMPARE(QFileInfo(path).isFile(), kind == QLatin1String("locked"));
}

void tst_FailingWrites::fullDiskOfAHistogram()
{
    hostile::write(out("result_HGThick.dat"), QByteArray(5000, 'x'));
    const QMap<QString, QByteArray> before = filesIn(m_folder->path());
    QStringList lines;
    {
        const FullDisk disk(100);
        lines = write(out("deep")); // a folder: only the histogram is left to write
    }
    QCOMPARE(lines, QStringList({QStringLiteral("Can't open the file [%1]").arg(out("deep"))}));
    QCOMPARE(filesIn(m_folder->path()), before); // beside another file's name
    {
        const FullDisk disk(100);
        lines = write(out("result.dat"));
    }
    QCOMPARE(lines,
             QStringList({QStringLiteral("Can't write the file [%1]").arg(out("result.dat"))}));
    QCOMPARE(filesIn(m_folder->path()), before);
}

QTEST_MAIN(tst_FailingWrites)
#include "tst_FailingWrites.moc"
