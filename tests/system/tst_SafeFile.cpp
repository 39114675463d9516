#include "system/SafeFile.h"
#include "tests/support/Files.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

bool write(SafeFile& file, const QByteArray& text)
{
    return file.write(text.constData(), text.size());
}

/// The whole way.
bool written(const QString& path, const QByteArray& text)
{
    SafeFile file(path);
    return file.open() && write(file, text) && file.commit();
}

struct stat statusOf(const QString& path)
{
    struct stat status = {};
    stat(QFile::encodeName(path).constData(), &status);
    return status;
}

unsigned modeOf(const QString& path)
{
    return statusOf(path).st_mode & 07777U;
}

void setMode(const QString& path, mode_t mode)
{
    if (chmod(QFile::encodeName(path).constData(), mode) != 0)
        qFatal("the permissions of the test's files cannot be set");
}

/// Runs something in a process of its own, as a plain user where the tests run as the superuser,
/// for whom nothing is without permission. Its result is the exit status.
template <typename Run>
int inAChild(Run run)
{
    constexpr uid_t nobody = 65534;
    const pid_t child = fork();
    if (child == 0)
        _exit(geteuid() == 0 && setuid(nobody) != 0 ? 100 : run());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

class tst_SafeFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void newFile();
    void replacesOnlyWhenWhole();
    void givenUp();
    void killedInTheMiddle();
    void leftoversAreDropped();
    void twoWritersNeverMix();
    void permissionsStay_data();
    void permissionsStay();
    void newFilePermissionsFollowTheMask();
    void ownerStays();
    void linksStay_data();
    void linksStay();
    void otherNamesKeepTheEarlierFile();
    void longNames();
    void refused_data();
    void refused();
    void readOnlyFileIsRefused();
    void folderWithoutPermission();
    void stickyFolder();
    void devices();
    void ownOutputIsWrittenDirectly();
    void limitOfSize();

private:
    QString in(const char* name) const { return m_dir->filePath(QString::fromUtf8(name)); }
    QStringList names() const
    {
        return QDir(m_dir->path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    std::unique_ptr<QTemporaryDir> m_dir;
};

void tst_SafeFile::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void tst_SafeFile::newFile()
{
    QVERIFY(written(in("a.dat"), "one\ntwo\n"));
    QCOMPARE(contents(in("a.dat")), QByteArray("one\ntwo\n"));
    QCOMPARE(names(), QStringList({QStringLiteral("a.dat")}));
    QVERIFY(written(in("a.dat"), ""));
    QCOMPARE(contents(in("a.dat")), QByteArray());
}

void tst_SafeFile::replacesOnlyWhenWhole()
{
    create(in("a.dat"), "earlier");
    SafeFile file(in("a.dat"));
    QVERIFY(file.open());
    QVERIFY(write(file, QByteArray(1000000, 'x')));
    QCOMPARE(contents(in("a.dat")), QByteArray("earlier"));
    QVERIFY(file.commit());
    QCOMPARE(contents(in("a.dat")), QByteArray(1000000, 'x'));
    QCOMPARE(names(), QStringList({QStringLiteral("a.dat")}));
}

void tst_SafeFile::givenUp()
{
    create(in("a.dat"), "earlier");
    for (const char* const name : {"a.dat", "new.dat"}) {
        SafeFile file(in(name));
        QVERIFY(file.open());
        QVERIFY(write(file, QByteArray(1000000, 'x')));
    }
    QCOMPARE(contents(in("a.dat")), QByteArray("earlier"));
    QCOMPARE(names(), QStringList({QStringLiteral("a.dat")}));
}

void tst_SafeFile::killedInTheMiddle()
{
    create(in("a.dat"), "earlier");
    int ready[2];
    QCOMPARE(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
        SafeFile file(in("a.dat"));
        const bool half = file.open() && write(file, QByteArray(1000000, 'x'));
        (void)!::write(ready[1], half ? "y" : "n", 1);
        pause();
        _exit(0);
    }
    char answer = 0;
    QCOMPARE(read(ready[0], &answer, 1), ssize_t(1));
    QCOMPARE(kill(child, SIGKILL), 0);
    int status = 0;
    QCOMPARE(waitpid(child, &status, 0), child);
    QVERIFY(WIFSIGNALED(status));
    QCOMPARE(answer, 'y');
    QCOMPARE(contents(in("a.dat")), QByteArray("earlier"));
}

void tst_SafeFile::leftoversAreDropped()
{
    for (const char* name : {".drovik-aB3xyZ", ".drovik-note", ".drovik-aB3xyZ7", "a.dat"})
        create(in(name), "");
    QVERIFY(QDir(m_dir->path()).mkdir(QStringLiteral(".drovik-folder")));
    dropUnfinishedFiles(m_dir->path());
    QCOMPARE(names(),
             QStringList({QStringLiteral(".drovik-aB3xyZ7"), QStringLiteral(".drovik-folder"),
                          QStringLiteral(".drovik-note"), QStringLiteral("a.dat")}));
    dropUnfinishedFiles(in("nowhere"));
}

void tst_SafeFile::twoWritersNeverMix()
{
    SafeFile first(in("a.dat"));
    SafeFile second(in("a.dat"));
    QVERIFY(first.open() && second.open());
    const QByteArray a(300000, 'a');
    const QByteArray b(500000, 'b');
    QVERIFY(write(second, b) && write(first, a) && write(second, b) && write(first, a));
    QVERIFY(second.commit());
    QCOMPARE(contents(in("a.dat")), b + b);
    QVERIFY(first.commit());
    QCOMPARE(contents(in("a.dat")), a + a);
    QCOMPARE(names(), QStringList({QStringLiteral("a.dat")}));
}

void tst_SafeFile::permissionsStay_data()
{
    QTest::addColumn<unsigned>("mode");
    for (const unsigned mode : {0600U, 0640U, 0644U, 0666U, 0755U, 0200U})
        QTest::newRow(QByteArray::number(mode, 8).constData()) << mode;
}

void tst_SafeFile::permissionsStay()
{
    QFETCH(unsigned, mode);
    create(in("a.dat"), "earlier");
    setMode(in("a.dat"), mode);
    QVERIFY(written(in("a.dat"), "new"));
    QCOMPARE(modeOf(in("a.dat")), mode);
}

void tst_SafeFile::newFilePermissionsFollowTheMask()
{
    for (const mode_t mask : {mode_t(022), mode_t(077), mode_t(002)}) {
        const mode_t before = umask(mask);
        const bool done = written(in("a.dat"), "new");
        QCOMPARE(umask(before), mask);
        QVERIFY(done);
        QCOMPARE(modeOf(in("a.dat")), 0666U & ~mask);
        QVERIFY(QFile::remove(in("a.dat")));
    }
}

void tst_SafeFile::ownerStays()
{
    if (geteuid() != 0)
        QSKIP("only the superuser writes the files of others and leaves them theirs");
    create(in("a.dat"), "earlier");
    QCOMPARE(chown(QFile::encodeName(in("a.dat")).constData(), 1234, 2345), 0);
    QVERIFY(written(in("a.dat"), "new"));
    QCOMPARE(statusOf(in("a.dat")).st_uid, uid_t(1234));
    QCOMPARE(statusOf(in("a.dat")).st_gid, gid_t(2345));
}

void tst_SafeFile::linksStay_data()
{
    QTest::addColumn<bool>("exists");
    QTest::newRow("to a file") << true;
    QTest::newRow("to a file that is not there yet") << false;
}

void tst_SafeFile::linksStay()
{
    QFETCH(bool, exists);
    QVERIFY(QDir(m_dir->path()).mkdir(QStringLiteral("deep")));
    if (exists)
        create(in("deep/target.dat"), "earlier");
    QCOMPARE(symlink("deep/second", QFile::encodeName(in("first")).constData()), 0);
    QCOMPARE(symlink("target.dat", QFile::encodeName(in("deep/second")).constData()), 0);
    QVERIFY(written(in("first"), "new"));
    QCOMPARE(contents(in("deep/target.dat")), QByteArray("new"));
    QVERIFY(QFileInfo(in("first")).isSymLink() && QFileInfo(in("deep/second")).isSymLink());
    QVERIFY(!QFileInfo(in("deep/target.dat")).isSymLink());
    QCOMPARE(names(), QStringList({QStringLiteral("deep"), QStringLiteral("first")}));
}

void tst_SafeFile::otherNamesKeepTheEarlierFile()
{
    create(in("a.dat"), "earlier");
    QCOMPARE(link(QFile::encodeName(in("a.dat")).constData(),
                  QFile::encodeName(in("b.dat")).constData()),
             0);
    QVERIFY(written(in("a.dat"), "new"));
    QCOMPARE(contents(in("a.dat")), QByteArray("new"));
    QCOMPARE(contents(in("b.dat")), QByteArray("earlier"));
}

void tst_SafeFile::longNames()
{
    const QString name(255, QLatin1Char('x'));
    for (const char* const text : {"first", "second"}) {
        QVERIFY(written(m_dir->filePath(name), text));
        QCOMPARE(contents(m_dir->filePath(name)), QByteArray(text));
    }
    QVERIFY(!written(m_dir->filePath(name + QLatin1Char('x')), "too long"));
    QCOMPARE(names(), QStringList({name}));
}

void tst_SafeFile::refused_data()
{
    QTest::addColumn<QString>("name");
    for (const char* const name :
         {"deep", "deep/", "deep/.", "new/", "nowhere/a.dat", "a.dat/b.dat", "pipe", "circle"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void tst_SafeFile::refused()
{
    QFETCH(QString, name);
    create(in("a.dat"), "earlier");
    QVERIFY(QDir(m_dir->path()).mkdir(QStringLiteral("deep")));
    QCOMPARE(mkfifo(QFile::encodeName(in("pipe")).constData(), 0600), 0);
    QCOMPARE(symlink("circle", QFile::encodeName(in("circle")).constData()), 0);
    // Somebody reads the pipe: opening it would not wait, and it is no file all the same.
    const int reader = open(QFile::encodeName(in("pipe")).constData(), O_RDONLY | O_NONBLOCK);
    const QStringList before = names();
    SafeFile file(m_dir->filePath(name));
    QVERIFY(!file.open());
    close(reader);
    QCOMPARE(names(), before);
    QCOMPARE(contents(in("a.dat")), QByteArray("earlier"));
    SafeFile nameless{QString()};
    QVERIFY(!nameless.open());
}

void tst_SafeFile::readOnlyFileIsRefused()
{
    create(in("a.dat"), "earlier");
    setMode(m_dir->path(), 0777);
    setMode(in("a.dat"), 0444);
    QCOMPARE(inAChild([this] { return SafeFile(in("a.dat")).open() ? 1 : 0; }), 0);
    QCOMPARE(contents(in("a.dat")), QByteArray("earlier"));
}

/// Nothing can be made beside the file, which may be written: so it is, as users expect.
void tst_SafeFile::folderWithoutPermission()
{
    create(in("a.dat"), "earlier and longer");
    setMode(in("a.dat"), 0666);
    setMode(m_dir->path(), 0555);
    QCOMPARE(inAChild([this] { return written(in("a.dat"), "new") ? 0 : 1; }), 0);
    QCOMPARE(inAChild([this] { return written(in("b.dat"), "new") ? 0 : 1; }), 1);
    setMode(m_dir->path(), 0755);
    QCOMPARE(contents(in("a.dat")), QByteArray("new"));
    QCOMPARE(names(), QStringList({QStringLiteral("a.dat")}));
}

/// In a folder like /tmp nobody moves a file over that of another.
void tst_SafeFile::stickyFolder()
{
    if (geteuid() != 0)
        QSKIP("needs a file of another user");
    create(in("a.dat"), "earlier and longer");
    setMode(in("a.dat"), 0666);
    setMode(m_dir->path(), 01777);
    QCOMPARE(inAChild([this] { return written(in("a.dat"), "new") ? 0 : 1; }), 0);
    QCOMPARE(contents(in("a.dat")), QByteArray("new"));
    QCOMPARE(statusOf(in("a.dat")).st_uid, uid_t(0));
    QCOMPARE(names(), QStringList({QStringLiteral("a.dat")}));
}

void tst_SafeFile::devices()
{
    QVERIFY(written(QStringLiteral("/dev/null"), QByteArray(1000000, 'x')));
    QVERIFY(S_ISCHR(statusOf(QStringLiteral("/dev/null")).st_mode));
    if (!QFile::exists(QStringLiteral("/dev/full")))
        QSKIP("there is no /dev/full");
    for (const int size : {1, 1000000}) {
        SafeFile full(QStringLiteral("/dev/full"));
        QVERIFY(full.open());
        write(full, QByteArray(size, 'x'));
        QVERIFY(!full.commit());
    }
}

/// What the program prints goes on into the same file.
void tst_SafeFile::ownOutputIsWrittenDirectly()
{
    create(in("a.dat"), "earlier");
    setMode(m_dir->path(), 0777);
    setMode(in("a.dat"), 0666);
    const ino_t before = statusOf(in("a.dat")).st_ino;
    const QByteArray name = QFile::encodeName(in("a.dat"));
    for (const char* const way : {"/dev/stdout", "a.dat"}) {
        const QString path = way[0] == '/' ? QString::fromLatin1(way) : in(way);
        QCOMPARE(inAChild([&] {
                     const int output = open(name.constData(), O_WRONLY);
                     return dup2(output, STDOUT_FILENO) >= 0 && written(path, way) ? 0 : 1;
                 }),
                 0);
        QCOMPARE(contents(in("a.dat")), QByteArray(way));
        QCOMPARE(statusOf(in("a.dat")).st_ino, before);
    }
}

void tst_SafeFile::limitOfSize()
{
    create(in("a.dat"), "earlier");
    setMode(m_dir->path(), 0777);
    setMode(in("a.dat"), 0666);
    for (const int size : {101, 1000000}) {
        QCOMPARE(inAChild([&] {
                     std::signal(SIGXFSZ, SIG_IGN);
                     const rlimit limit{100, 100};
                     if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
                         return 2;
                     SafeFile file(in("a.dat"));
                     if (!file.open())
                         return 3;
                     write(file, QByteArray(size, 'x'));
                     return file.commit() ? 1 : 0;
                 }),
                 0);
        QCOMPARE(contents(in("a.dat")), QByteArray("earlier"));
        QCOMPARE(names(), QStringList({QStringLiteral("a.dat")}));
    }
}

QTEST_GUILESS_MAIN(tst_SafeFile)
#include "tst_SafeFile.moc"
