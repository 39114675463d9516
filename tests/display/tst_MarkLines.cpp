#include "display/MarkLine.h"
#include "display/MarkLines.h"
#include "tests/support/Exact.h"

#include <QLineEdit>
#include <QSignalSpy>

class TestMarkLines : public QObject
{
    Q_OBJECT

private slots:
    void startState();
    void lineWithoutAFieldMakesItsOwn();
    void fieldGivenIsNotOwned();
    void positionOfAText_data();
    void positionOfAText();
    void relativeToAnotherLine();
    void referenceOutsideTheSet();
    void movesWithSixDigits();
    void clears();
};

void TestMarkLines::startState()
{
    QLineEdit edit;
    const MarkLine line(&edit, 1, nullptr);
    QCOMPARE(line.reserved, 0);
    QCOMPARE(line.edit, &edit);
    QCOMPARE(line.kind, 1);
    QVERIFY(!line.isXLine());
    QCOMPARE(line.relative, false);
    QCOMPARE(line.refIndex, -1);
    const MarkLines set(nullptr);
    QVERIFY(set.lines.isEmpty());
    QCOMPARE(set.isMoving, false);
    QCOMPARE(set.selected, -1);
}

void TestMarkLines::lineWithoutAFieldMakesItsOwn()
{
    const MarkLine line(nullptr, 0, nullptr);
    QVERIFY(line.edit);
    QCOMPARE(line.edit->parent(), nullptr);
    line.edit->setText(QStringLiteral("7.5"));
    COMPARE_EXACT(line.number(), 7.5);
}

void TestMarkLines::fieldGivenIsNotOwned()
{
    QLineEdit edit(QStringLiteral("3"));
    delete new MarkLine(&edit, 0, nullptr);
    QCOMPARE(edit.text(), QStringLiteral("3"));
}

void TestMarkLines::positionOfAText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("position");
    QTest::newRow("number") << QStringLiteral("8313.25") << 8313.25;
    QTest::newRow("exponent") << QStringLiteral("-1e-3") << -0.001;
    QTest::newRow("empty") << QString() << 0.0;
    QTest::newRow("words") << QStringLiteral("edge") << 0.0;
    QTest::newRow("decimal comma") << QStringLiteral("1,5") << 0.0;
}

void TestMarkLines::positionOfAText()
{
    QFETCH(QString, text);
    QFETCH(double, position);
    QLineEdit edit(text);
    MarkLine line(&edit, 0, nullptr);
    MarkLines set(nullptr);
    set.lines = {&line};
    COMPARE_EXACT(set.position(0), position);
}

void TestMarkLines::relativeToAnotherLine()
{
    QLineEdit edge(QStringLiteral("8350"));
    QLineEdit offset(QStringLiteral("-50"));
    MarkLine edgeLine(&edge, 0, nullptr);
    MarkLine offsetLine(&offset, 0, nullptr);
    offsetLine.relative = true;
    offsetLine.refIndex = 0;
    MarkLines set(nullptr);
    set.lines = {&edgeLine, &offsetLine};
    COMPARE_EXACT(set.position(1), 8300.0);
    edge.setText(QStringLiteral("8360"));
    COMPARE_EXACT(set.position(1), 8310.0);
    offset.setText(QStringLiteral("nothing"));
    COMPARE_EXACT(set.position(1), 8360.0);
    set.moveTo(1, 8320.0);
    QCOMPARE(offset.text(), QStringLiteral("-40"));
    QCOMPARE(edge.text(), QStringLiteral("8360"));
}

void TestMarkLines::referenceOutsideTheSet()
{
    QLineEdit edit(QStringLiteral("5"));
    MarkLine line(&edit, 0, nullptr);
    line.relative = true;
    MarkLines set(nullptr);
    set.lines = {&line};
    for (const int reference : {-1, 1, 1000}) {
        line.refIndex = reference;
        COMPARE_EXACT(set.position(0), 5.0);
    }
}

void TestMarkLines::movesWithSixDigits()
{
    QLineEdit edit;
    MarkLine line(&edit, 0, nullptr);
    MarkLines set(nullptr);
    set.lines = {&line};
    QSignalSpy moving(&set, &MarkLines::moving);
    QSignalSpy newPos(&set, &MarkLines::newPos);
    set.moveTo(0, 8313.256789);
    QCOMPARE(edit.text(), QStringLiteral("8313.26"));
    set.moveTo(0, 0.00001234567);
    QCOMPARE(edit.text(), QStringLiteral("1.23457e-05"));
    QCOMPARE(moving.size(), 2);
    QCOMPARE(newPos.size(), 0);
}

void TestMarkLines::clears()
{
    QLineEdit edit;
    MarkLine line(&edit, 0, nullptr);
    MarkLines set(nullptr);
    set.lines = {&line};
    set.isMoving = true;
    set.selected = 0;
    QSignalSpy newPos(&set, &MarkLines::newPos);
    set.clear();
    QVERIFY(set.lines.isEmpty());
    QVERIFY(!set.isMoving);
    QCOMPARE(set.selected, -1);
    QCOMPARE(newPos.size(), 0);
}

QTEST_MAIN(TestMarkLines)
#include "tst_MarkLines.moc"
