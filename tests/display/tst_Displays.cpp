#include "display/Displays.h"
#include "display/PopBase.h"
#include "tests/support/CanvasActions.h"

#include <QGridLayout>
#include <QtTest>

class TestDisplays : public QObject
{
    Q_OBJECT

private slots:
    void windowDefaults();
    void panelsAndCells_data();
    void panelsAndCells();
    void lastPanelIsNeverShown();
    void lastPanelCanPopOut();
    void routesRepaints();
    void panelRegisteredTwiceIsDrawnTwice();
    void strangersDrawNothing();
    void routesTheMouse();
    void doubleClicksAreNotRouted();
    void addsPanelsOutsideTheGrid();
    void positionsOutside();
    void updateReachesPoppedOutCanvases();
};

void TestDisplays::windowDefaults()
{
    const Displays displays;
    QCOMPARE(displays.objectName(), QStringLiteral("Displays"));
    QCOMPARE(displays.windowTitle(), QStringLiteral("Frame"));
    QCOMPARE(displays.frameShape(), QFrame::StyledPanel);
    QCOMPARE(displays.frameShadow(), QFrame::Raised);
    QCOMPARE(displays.layout()->contentsMargins(), QMargins(2, 2, 2, 2));
    QCOMPARE(displays.layout()->spacing(), 2);
    QCOMPARE(displays.DispL->spacing(), 2);
    QCOMPARE(displays.panels.size(), 9);
    QCOMPARE(displays.ids.size(), 9);
}

void TestDisplays::panelsAndCells_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QRect>("cell"); // column, row, column span, row span
    QTest::newRow("Ref1") << 0 << int(Displays::DispRef1) << QStringLiteral("Ref1")
                          << QRect(0, 0, 1, 1);
    QTest::newRow("Ref2") << 1 << int(Displays::DispRef2) << QStringLiteral("Ref2")
                          << QRect(1, 0, 1, 1);
    QTest::newRow("Target") << 2 << int(Displays::DispTarget) << QStringLiteral("Target")
                            << QRect(2, 0, 1, 1);
    QTest::newRow("Muts") << 3 << int(Displays::DispMuts) << QStringLiteral("Muts")
                          << QRect(0, 1, 2, 1);
    QTest::newRow("LCF vs 4PS") << 4 << int(Displays::DispLCFvs4PS) << QStringLiteral("LCF vs 4PS")
                                << QRect(2, 1, 1, 1);
    QTest::newRow("Histgram of a")
        << 5 << int(Displays::DispHistA) << QStringLiteral("Histgram of a") << QRect(0, 2, 1, 1);
    QTest::newRow("Histgram of t")
        << 6 << int(Displays::DispHistT) << QStringLiteral("Histgram of t") << QRect(1, 2, 1, 1);
    QTest::newRow("t/a") << 7 << int(Displays::DispTA) << QStringLiteral("t/a")
                         << QRect(2, 2, 1, 1);
    QTest::newRow("M2/M3") << 8 << int(Displays::DispM2M3) << QStringLiteral("M2/M3") << QRect();
}

void TestDisplays::panelsAndCells()
{
    QFETCH(int, position);
    QFETCH(int, id);
    QFETCH(QString, title);
    QFETCH(QRect, cell);
    QCOMPARE(id, position);
    const Displays displays;
    DispABase* panel = displays.panel(position);
    QCOMPARE(panel, displays.panels[position]);
    QCOMPARE(int(displays.ids[position]), id);
    QCOMPARE(panel->Title->text(), title);
    QCOMPARE(panel->xTitleInGraph, true);
    QCOMPARE(panel->yTitleInGraph, true);
    QCOMPARE(panel->parent(), static_cast<const QObject*>(&displays));
    const int index = displays.DispL->indexOf(panel);
    QCOMPARE(index >= 0, cell.isValid());
    if (index < 0)
        return;
    int row = 0;
    int column = 0;
    int rowSpan = 0;
    int columnSpan = 0;
    displays.DispL->getItemPosition(index, &row, &column, &rowSpan, &columnSpan);
    QCOMPARE(QRect(column, row, columnSpan, rowSpan), cell);
}

void TestDisplays::lastPanelIsNeverShown()
{
    Displays displays;
    for (int i = 0; i < 2; ++i) {
        displays.show();
        QVERIFY(QTest::qWaitForWindowExposed(&displays));
        for (int position = 0; position < 8; ++position)
            QVERIFY(displays.panel(position)->isVisible());
        QVERIFY(!displays.panel(8)->isVisible());
        displays.hide();
    }
    QCOMPARE(displays.layout()->indexOf(displays.panel(8)), -1);
}

void TestDisplays::lastPanelCanPopOut()
{
    Displays displays;
    int drawn = 0;
    connect(&displays, &Displays::draw, this,
            [&drawn](Displays::DispId id) { drawn += id == Displays::DispM2M3; });
    displays.panel(8)->popDock();
    QVERIFY(QTest::qWaitForWindowExposed(displays.panel(8)->pop.get()));
    QTRY_VERIFY(drawn > 0);
    displays.panel(8)->pop->close();
    QVERIFY(!displays.panel(8)->isVisible());
}

void TestDisplays::routesRepaints()
{
    Displays displays;
    QVector<int> ids;
    connect(&displays, &Displays::draw, this,
            [&](Displays::DispId id, DispABase* panel, QStylePainter* painter) {
                QCOMPARE(panel, displays.panel(id));
                QVERIFY(painter->isActive());
                ids << id;
            });
    for (int position = 0; position < 9; ++position)
        canvas::picture(displays.panel(position)->DispA);
    QCOMPARE(ids, (QVector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8}));
}

void TestDisplays::panelRegisteredTwiceIsDrawnTwice()
{
    Displays displays;
    displays.panels << displays.panel(2);
    displays.ids << Displays::DispTA;
    QVector<int> ids;
    connect(&displays, &Displays::draw, this, [&](Displays::DispId id) { ids << id; });
    canvas::picture(displays.panel(2)->DispA);
    QCOMPARE(ids, (QVector<int>{Displays::DispTarget, Displays::DispTA}));
}

void TestDisplays::strangersDrawNothing()
{
    Displays displays;
    DispABase stranger;
    int drawn = 0;
    connect(&displays, &Displays::draw, this, [&drawn] { ++drawn; });
    connect(&stranger, &DispABase::draw, &displays,
            [&](QStylePainter* painter) { displays.receiveDraw(&stranger, painter); });
    canvas::picture(stranger.DispA);
    displays.receiveDraw(nullptr, nullptr); // no panel at all
    QCOMPARE(drawn, 0);
}

void TestDisplays::routesTheMouse()
{
    Displays displays;
    QStringList names;
    const auto record = [&](void (Displays::*signal)(DispABase*, MouseC*), const QString& name) {
        connect(&displays, signal, this, [&, name](DispABase* panel, MouseC* mouse) {
            QCOMPARE(mouse, &panel->DispA->mouse);
            names << name + QString::number(displays.panels.indexOf(panel));
        });
    };
    record(&Displays::mPressed, QStringLiteral("pressed "));
    record(&Displays::mDragging, QStringLiteral("dragging "));
    record(&Displays::mReleased, QStringLiteral("released "));
    for (const int position : {0, 4, 8})
        canvas::drag(displays.panel(position)->DispA, {QPointF(50, 50)});
    QCOMPARE(names, (QStringList{QStringLiteral("pressed 0"), QStringLiteral("dragging 0"),
                                 QStringLiteral("released 0"), QStringLiteral("pressed 4"),
                                 QStringLiteral("dragging 4"), QStringLiteral("released 4"),
                                 QStringLiteral("pressed 8"), QStringLiteral("dragging 8"),
                                 QStringLiteral("released 8")}));
}

void TestDisplays::doubleClicksAreNotRouted()
{
    for (const char* name : {"mDClicked", "mDClicked(DispABase*,MouseC*)"})
        QCOMPARE(Displays::staticMetaObject.indexOfSignal(name), -1);
    Displays displays;
    int clicked = 0;
    connect(displays.panel(4), &DispABase::mDClicked, this, [&clicked] { ++clicked; });
    canvas::doubleClick(displays.panel(4)->DispA, QPointF(50, 50));
    QCOMPARE(clicked, 1);
}

void TestDisplays::addsPanelsOutsideTheGrid()
{
    Displays displays;
    auto* placed = new DispABase(&displays);
    displays.addDisp(placed, QStringLiteral("Another"), Displays::DispTA, 0, 3, 2, 1);
    QCOMPARE(displays.panel(9), placed);
    QCOMPARE(displays.ids[9], Displays::DispTA);
    QVERIFY(displays.DispL->indexOf(placed) >= 0);
    for (const QPoint cell : {QPoint(-1, 0), QPoint(0, -1)}) {
        auto* panel = new DispABase(&displays);
        displays.addDisp(panel, QStringLiteral("Aside"), Displays::DispTA, cell.x(), cell.y(), 1,
                         1);
        QCOMPARE(displays.DispL->indexOf(panel), -1);
        displays.show();
        QVERIFY(!panel->isVisible());
        QVERIFY(placed->isVisible());
    }
}

void TestDisplays::positionsOutside()
{
    const Displays displays;
    QCOMPARE(displays.panel(-1), nullptr);
    QCOMPARE(displays.panel(9), nullptr);
}

void TestDisplays::updateReachesPoppedOutCanvases()
{
    Displays displays;
    displays.show();
    QVERIFY(QTest::qWaitForWindowExposed(&displays));
    DispABase* panel = displays.panel(3);
    panel->popDock();
    QVERIFY(QTest::qWaitForWindowExposed(panel->pop.get()));
    QCoreApplication::processEvents();
    int inside = 0;
    int outside = 0;
    connect(&displays, &Displays::draw, this, [&](Displays::DispId id) {
        inside += id == Displays::DispRef1;
        outside += id == Displays::DispMuts;
    });
    displays.update();
    QTRY_VERIFY(inside > 0 && outside > 0);
    displays.hide(); // a window of its own stays
    outside = 0;
    displays.update();
    QTRY_VERIFY(outside > 0);
}

QTEST_MAIN(TestDisplays)
#include "tst_Displays.moc"
