#include "tests/model/PanelSession.h"

#include "app/FourPs.h"
#include "display/DispABase.h"

#include <QLineEdit>
#include <QTemporaryDir>
#include <QtTest>

/// What nobody should type, in every line edit: each calculation, each file and each graph goes on,
/// and all numbers and lines are those of the rules.
class tst_HostileTexts : public QObject
{
    Q_OBJECT
private slots:
    void everyField_data();
    void everyField();
    void longTextKeyByKey();
};

void tst_HostileTexts::everyField_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text :
         {"nan", "inf", "-inf", "1e308", "-1e308", "1e999", "1e-320", "", "text", "   ", "0", "-0",
          "-5", "1,5", "1 5", "0x10", "1e", "%1 %2", "<b>2</b>"})
        QTest::newRow(*text ? text : "empty") << QString::fromLatin1(text);
    QTest::newRow("Japanese digits") << QStringLiteral("\uff18\uff13\uff15\uff10");
    QTest::newRow("minus sign") << QStringLiteral("\u22125");
    QTest::newRow("long") << QString(3000, QLatin1Char('7'));
}

void tst_HostileTexts::everyField()
{
    QFETCH(QString, text);
    const QTemporaryDir folder;
    PanelSession session(5, folder.path(), false);
    QVERIFY(session.push(QStringLiteral("2.tratio")));
    QVERIFY(session.push(QStringLiteral("4.tratio")));
    QVERIFY(session.type(QStringLiteral("SaveFSelect"),
                         folder.filePath(QStringLiteral("out/result.dat"))));
    session.panel().displays->show();
    int fields = 0;
    for (const QString& field : session.fields()) {
        // Selectors take no text, and a large number of boxes is refused (see the maps).
        const bool typed =
            !field.endsWith(QLatin1String("2d")) && !field.endsWith(QLatin1String("Select")) &&
            !field.contains(QLatin1String("File")) && !field.endsWith(QLatin1String("Res"));
        const bool boxes = field.endsWith(QLatin1String("Boxes"));
        if (!typed || (boxes && text.toDouble() > 1000))
            continue;
        const QString before = session.text(field);
        QVERIFY2(session.type(field, text), qPrintable(session.report()));
        for (const char* button : {"CalcTargetB", "LCFB", "WriteB"})
            QVERIFY2(session.push(QLatin1String(button)), qPrintable(session.report()));
        session.panel().displays->grab();
        QVERIFY2(session.type(field, before), qPrintable(session.report()));
        ++fields;
    }
    QVERIFY(fields > 45);
}

/// A session types what is long at once, since a field lays its text out again with every key.
void tst_HostileTexts::longTextKeyByKey()
{
    const QTemporaryDir folder;
    PanelSession session(5, folder.path(), false);
    auto* edge = session.panel().findChild<QLineEdit*>(QStringLiteral("EdgeE"));
    const QString text(3000, QLatin1Char('7'));
    edge->setFocus();
    edge->selectAll();
    QTest::keyClicks(edge, text);
    QTest::keyClick(edge, Qt::Key_Return);
    QCOMPARE(edge->text(), text);
    QVERIFY2(session.push(QStringLiteral("CalcTargetB")), qPrintable(session.report()));
}

QTEST_MAIN(tst_HostileTexts)
#include "tst_HostileTexts.moc"
