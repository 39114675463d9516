#include "system/InputFile.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

std::unique_ptr<InputFile> open(const QString& path)
{
    return InputFile::open(path);
}

QByteArray read(const InputFile& file, std::size_t count, std::int64_t offset)
{
    QByteArray bytes(static_cast<int>(count), '\0');
    return file.read(bytes.data(), count, offset) ? bytes : QByteArray("unreadable");
}

} // namespace

class tst_InputFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void anyPlaceOfAFile();
    void emptyFile();
    void onlyRegularFiles();
    void reasons_data();
    void reasons();
    void whatIsAppendedIsNotRead();
    void whatIsShorterCannotBeRead();
    void removedFileIsReadToTheEnd();

private:
    QScopedPointer<QTemporaryDir> m_dir;
    QString m_path;
};

void tst_InputFile::init()
{
    m_dir.reset(new QTemporaryDir);
    m_path = m_dir->filePath(QStringLiteral("スペクトル 1.dat"));
    create(m_path, "0123456789");
}

void tst_InputFile::anyPlaceOfAFile()
{
    const auto file = open(m_path);
    QVERIFY(file);
    QCOMPARE(file->size(), std::int64_t{10});
    QCOMPARE(read(*file, 10, 0), QByteArray("0123456789"));
    QCOMPARE(read(*file, 3, 7), QByteArray("789"));
    QCOMPARE(read(*file, 2, 1), QByteArray("12"));
    QCOMPARE(read(*file, 0, 10), QByteArray());
}

void tst_InputFile::emptyFile()
{
    create(m_path, "");
    const auto file = open(m_path);
    QVERIFY(file);
    QCOMPARE(file->size(), std::int64_t{0});
}

void tst_InputFile::onlyRegularFiles()
{
    QVERIFY(!open(m_dir->filePath(QStringLiteral("missing"))));
    QVERIFY(!open(m_dir->path()));
    QVERIFY(!open(QString()));
    QVERIFY(!open(QStringLiteral("/dev/null")));
    QVERIFY(!open(QStringLiteral("/dev/zero")));
    const QString pipe = m_dir->filePath(QStringLiteral("pipe"));
    QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QVERIFY(!open(pipe)); // and nobody is waited for
    const QString link = m_dir->filePath(QStringLiteral("link"));
    QVERIFY(QFile::link(pipe, link));
    QVERIFY(!open(link));
    QVERIFY(QFile::remove(link));
    QVERIFY(QFile::link(m_path, link));
    QVERIFY(open(link));
}

void tst_InputFile::reasons_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("reason");
    const QString none = QStringLiteral("there is no such file");
    const QString irregular = QStringLiteral("it is no regular file");
    QTest::newRow("none") << QStringLiteral("none") << ENOENT << none;
    QTest::newRow("below a file") << QStringLiteral("file/x") << ENOTDIR << none;
    QTest::newRow("folder") << QStringLiteral(".") << EISDIR << QStringLiteral("it is a folder");
    QTest::newRow("device") << QStringLiteral("/dev/zero") << ENODEV << irregular;
    QTest::newRow("pipe") << QStringLiteral("pipe") << ENODEV << irregular;
    QTest::newRow("circle") << QStringLiteral("circle") << ELOOP
                            << QStringLiteral("its links lead in a circle");
    QTest::newRow("long name") << QString(300, QLatin1Char('x')) << ENAMETOOLONG
                               << QStringLiteral("its name is too long");
    if (geteuid() != 0) // who may read everything
        QTest::newRow("forbidden") << QStringLiteral("forbidden") << EACCES
                                   << QStringLiteral("there is no permission to read it");
}

void tst_InputFile::reasons()
{
    QFETCH(QString, path);
    QFETCH(int, error);
    QFETCH(QString, reason);
    const QDir folder(m_dir->path());
    create(folder.filePath(QStringLiteral("file")), "1");
    create(folder.filePath(QStringLiteral("forbidden")), "1");
    QVERIFY(QFile::setPermissions(folder.filePath(QStringLiteral("forbidden")),
                                  QFileDevice::WriteOwner));
    const QString pipe = folder.filePath(QStringLiteral("pipe"));
    QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const QString circle = folder.filePath(QStringLiteral("circle"));
    QVERIFY(QFile::link(circle, circle));
    int found = 0;
    QVERIFY(InputFile::open(m_path, &found));
    QCOMPARE(found, 0);
    QVERIFY(!InputFile::open(folder.filePath(path), &found));
    QCOMPARE(found, error);
    QCOMPARE(whyNotOpened(found), reason);
}

void tst_InputFile::whatIsAppendedIsNotRead()
{
    const auto file = open(m_path);
    QVERIFY(file);
    QFile writer(m_path);
    QVERIFY(writer.open(QIODevice::Append));
    writer.write("more");
    writer.close();
    QCOMPARE(file->size(), std::int64_t{10});
    QCOMPARE(read(*file, 10, 0), QByteArray("0123456789"));
}

void tst_InputFile::whatIsShorterCannotBeRead()
{
    const auto file = open(m_path);
    QVERIFY(file);
    QVERIFY(QFile::resize(m_path, 4));
    QCOMPARE(file->size(), std::int64_t{10});
    QCOMPARE(read(*file, 4, 0), QByteArray("0123"));
    errno = 0;
    QCOMPARE(read(*file, 5, 0), QByteArray("unreadable"));
    QCOMPARE(errno, EIO);
    QCOMPARE(read(*file, 1, 9), QByteArray("unreadable"));
}

void tst_InputFile::removedFileIsReadToTheEnd()
{
    const auto file = open(m_path);
    QVERIFY(file);
    QVERIFY(QFile::remove(m_path));
    create(m_path, "another one");
    QCOMPARE(read(*file, 10, 0), QByteArray("0123456789"));
}

QTEST_GUILESS_MAIN(tst_InputFile)
#include "tst_InputFile.moc"
