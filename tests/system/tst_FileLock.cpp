#include "system/FileLock.h"

#include <QCoreApplication>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

/// One process at a time.
class tst_FileLock : public QObject
{
    Q_OBJECT
private slots:
    void onlyOne();
    void closingTheFileElsewhereGivesNothingUp();
    void goesWithItsProcess();
    void placeThatCannotBe();

private:
    QString path() const { return m_folder.filePath(QStringLiteral("lock")); }

    QTemporaryDir m_folder;
};

void tst_FileLock::onlyOne()
{
    bool held = true;
    QString why;
    std::unique_ptr<FileLock> lock = FileLock::take(path(), held, why);
    QVERIFY(lock);
    QVERIFY(!held);
    QVERIFY(!FileLock::take(path(), held, why));
    QVERIFY(held);
    QCOMPARE(why, QStringLiteral("process %1 on %2")
                      .arg(QCoreApplication::applicationPid())
                      .arg(QSysInfo::machineHostName()));
    lock.reset();
    QVERIFY(FileLock::take(path(), held, why));
    QVERIFY(QFile::exists(path()));
}

void tst_FileLock::closingTheFileElsewhereGivesNothingUp()
{
    bool held = false;
    QString why;
    const std::unique_ptr<FileLock> lock = FileLock::take(path(), held, why);
    QVERIFY(lock);
    QFile file(path());
    QVERIFY(file.open(QIODevice::ReadOnly));
    file.close();
    QVERIFY(!FileLock::take(path(), held, why));
}

void tst_FileLock::goesWithItsProcess()
{
    int ready[2];
    QCOMPARE(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
        bool held = false;
        QString why;
        const std::unique_ptr<FileLock> lock = FileLock::take(path(), held, why);
        (void)!write(ready[1], lock ? "y" : "n", 1);
        for (;;)
            pause();
    }
    char answer = 0;
    QCOMPARE(read(ready[0], &answer, 1), ssize_t{1});
    QCOMPARE(answer, 'y');
    bool held = false;
    QString why;
    QVERIFY(!FileLock::take(path(), held, why));
    QVERIFY(held);
    QVERIFY(why.startsWith(QStringLiteral("process %1 on ").arg(child)));
    QCOMPARE(kill(child, SIGKILL), 0);
    QCOMPARE(waitpid(child, nullptr, 0), child);
    QVERIFY(FileLock::take(path(), held, why));
}

void tst_FileLock::placeThatCannotBe()
{
    bool held = true;
    QString why;
    QVERIFY(!FileLock::take(m_folder.filePath(QStringLiteral("none/lock")), held, why));
    QVERIFY(!held);
    QCOMPARE(why, QStringLiteral("No such file or directory"));
}

QTEST_GUILESS_MAIN(tst_FileLock)
#include "tst_FileLock.moc"
