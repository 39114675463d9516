#include "text/NearestName.h"

#include <QtTest>

class tst_NearestName : public QObject
{
    Q_OBJECT
private slots:
    void names_data();
    void names();
};

void tst_NearestName::names_data()
{
    QTest::addColumn<QString>("misspelt");
    QTest::addColumn<QString>("meant");
    const auto row = [](const char* misspelt, const char* meant) {
        QTest::newRow(misspelt) << QString::fromUtf8(misspelt) << QString::fromUtf8(meant);
    };
    row("taget", "target");   // one left out
    row("targett", "target"); // one put in: as near to "targets", which stands later
    row("tarqet", "target");  // one exchanged
    row("target", "target");
    row("trget_", "target"); // two of six
    row("trge__", "");       // three of six
    row("ref", "ref1");
    row("x", "");
    row("r", "");
    row("", "");
    row("blnak", ""); // two neighbours exchanged are two changes, of five letters
    row("\u8a66\u6599", "");
    QTest::newRow("a thousand letters") << QString(1000, QLatin1Char('r')) << QString();
}

void tst_NearestName::names()
{
    QFETCH(QString, misspelt);
    const QStringList known{QStringLiteral("ref1"), QStringLiteral("ref2"),
                            QStringLiteral("target"), QStringLiteral("targets"),
                            QStringLiteral("blank")};
    QTEST(nearestName(misspelt, known), "meant");
}

QTEST_GUILESS_MAIN(tst_NearestName)
#include "tst_NearestName.moc"
