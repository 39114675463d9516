#include "tests/model/MessageKinds.h"
#include "tests/model/PanelSession.h"

#include <QTemporaryDir>
#include <QtTest>

/// Random sessions at the real panel against its model. DROVIK_SESSIONS sets how many (30 where it
/// is not set), DROVIK_SEED the first seed; each session is a row named by its seed, so that one
/// can be run alone.
class tst_RandomSessions : public QObject
{
    Q_OBJECT

private:
    QStringList m_messages;
    int m_drags = 0;
    int m_written = 0;

private slots:
    void panelAndModelAgree_data();
    void panelAndModelAgree();
    void sessionsReachedEverything();
};

void tst_RandomSessions::panelAndModelAgree_data()
{
    QTest::addColumn<quint32>("seed");
    bool set = false;
    int count = qEnvironmentVariableIntValue("DROVIK_SESSIONS", &set);
    if (!set)
        count = 30;
    const int first = qEnvironmentVariableIntValue("DROVIK_SEED");
    for (int i = 0; i < count; ++i) {
        const auto seed = static_cast<quint32>(first + i);
        QTest::newRow(qPrintable(QString::number(seed))) << seed;
    }
}

void tst_RandomSessions::panelAndModelAgree()
{
    QFETCH(quint32, seed);
    const QTemporaryDir folder;
    QVERIFY(folder.isValid());
    PanelSession session(seed, folder.path());
    for (int i = 0; i < 50; ++i)
        QVERIFY2(session.step(), qPrintable(session.report()));
    m_messages += session.messages();
    m_drags += session.drags();
    m_written += session.written();
}

void tst_RandomSessions::sessionsReachedEverything()
{
    const QStringList missing = kindsNotReached(m_messages);
    QVERIFY2(missing.isEmpty() || qEnvironmentVariableIsSet("DROVIK_SESSIONS"),
             qPrintable(missing.join(QLatin1Char('\n'))));
    qInfo("%6d marker lines dragged, %d result files written", m_drags, m_written);
    QVERIFY((m_drags > 0 && m_written > 0) || qEnvironmentVariableIsSet("DROVIK_SESSIONS"));
}

QTEST_MAIN(tst_RandomSessions)
#include "tst_RandomSessions.moc"
