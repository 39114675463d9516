#include "batch/ProgressLine.h"

#include <QtTest>

class tst_ProgressLine : public QObject
{
    Q_OBJECT
private slots:
    void texts_data();
    void texts();
};

void tst_ProgressLine::texts_data()
{
    QTest::addColumn<int>("done");
    QTest::addColumn<int>("total");
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("half") << 50 << 100 << 2.0
                          << QStringLiteral("[##########          ] 50 of 100, 25/s, 2 s left");
    QTest::newRow("rounded up") << 3 << 4 << 2.0
                                << QStringLiteral("[###############     ] 3 of 4, 1.5/s, 1 s left");
    QTest::newRow("all") << 7 << 7 << 1.0
                         << QStringLiteral("[####################] 7 of 7, 7/s, 0 s left");
    QTest::newRow("none yet") << 0 << 9 << 1.0 << QStringLiteral("[                    ] 0 of 9");
    QTest::newRow("no time yet") << 1 << 2 << 0.0
                                 << QStringLiteral("[##########          ] 1 of 2");
    QTest::newRow("nothing to do")
        << 0 << 0 << 0.0 << QStringLiteral("[####################] 0 of 0");
}

void tst_ProgressLine::texts()
{
    QFETCH(int, done);
    QFETCH(int, total);
    QFETCH(double, seconds);
    QTEST(ProgressLine::text(static_cast<std::size_t>(done), static_cast<std::size_t>(total),
                             seconds),
          "text");
}

QTEST_GUILESS_MAIN(tst_ProgressLine)
#include "tst_ProgressLine.moc"
