#include "tests/monkey/Monkey.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

/// Random events on all windows, in rounds with new windows each. DROVIK_MONKEY_ROUNDS sets how
/// many (one where it is not set), DROVIK_SEED the seed of the first. What it looks for are
/// crashes, and what the sanitizers and valgrind report.
class tst_Monkey : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void survives_data();
    void survives();
    void cleanupTestCase() { QVERIFY(QDir::setCurrent(m_before)); }

private:
    QTemporaryDir m_folder;
    QString m_before = QDir::currentPath();
};

void tst_Monkey::initTestCase()
{
    QVERIFY(m_folder.isValid());
    QVERIFY(QDir::setCurrent(m_folder.path())); // what is written without a folder stays here
}

void tst_Monkey::survives_data()
{
    QTest::addColumn<quint32>("seed");
    bool set = false;
    int rounds = qEnvironmentVariableIntValue("DROVIK_MONKEY_ROUNDS", &set);
    if (!set)
        rounds = 1;
    for (int i = 0; i < rounds; ++i) {
        const auto seed = static_cast<quint32>(qEnvironmentVariableIntValue("DROVIK_SEED") + i);
        QTest::newRow(qPrintable(QString::number(seed))) << seed;
    }
}

void tst_Monkey::survives()
{
    QFETCH(quint32, seed);
    Monkey monkey(seed, m_folder.path());
    bool set = false;
    int events = qEnvironmentVariableIntValue("DROVIK_MONKEY_EVENTS", &set);
    if (!set)
        events = 2000;
    for (int i = 0; i < events; ++i)
        monkey.act();
}

QTEST_MAIN(tst_Monkey)
#include "tst_Monkey.moc"
