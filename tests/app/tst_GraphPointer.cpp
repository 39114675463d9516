#include "display/MarkLines.h"
#include "display/PopBase.h"
#include "input/AXafsData.h"
#include "tests/support/Exact.h"
#include "tests/support/LoadedPanel.h"
#include "tests/support/PanelActions.h"
#include "text/NumberText.h"

#include <QProcess>
#include <QtTest>

/// The graph window under the X server's own pointer and keyboard, moved by xdotool.
class TestGraphPointer : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void movesReadOutThePosition();
    void wheelZooms();
    void shiftDragPans();
    void dragLeavesTheCanvas();
    void doubleClickResets();
    void controlPressDoesNothing();
    void buttonPopsOutAndDocks();
    void dragInThePopOut();

private:
    static void tell(const QStringList& arguments);
    void point(const QWidget* widget, QPointF place) const;
    DispArea* muts() const { return m_loaded->area(Displays::DispMuts); }
    double shownWidth() const { return muts()->coord.rx1 - muts()->coord.rx0; }
    double edge() const { return numberFromText(m_loaded->panel().EdgeE->text()); }

    std::unique_ptr<LoadedPanel> m_loaded;
};

void TestGraphPointer::tell(const QStringList& arguments)
{
    QCOMPARE(QProcess::execute(QStringLiteral("xdotool"), arguments), 0);
}

void TestGraphPointer::point(const QWidget* widget, QPointF place) const
{
    const QPoint global = widget->mapToGlobal(place.toPoint());
    tell({QStringLiteral("mousemove"), QString::number(global.x()), QString::number(global.y())});
}

void TestGraphPointer::initTestCase()
{
    QVERIFY2(QProcess::execute(QStringLiteral("xdotool"), {QStringLiteral("version")}) == 0,
             "xdotool is needed");
}

void TestGraphPointer::init()
{
    m_loaded = std::make_unique<LoadedPanel>(false);
    QWidget* window = m_loaded->panel().displays;
    window->move(0, 0);
    QVERIFY(QTest::qWaitForWindowExposed(window));
    point(window, QPointF(2, 2));
    m_loaded->picture(Displays::DispMuts); // its coordinates are known from here on
}

void TestGraphPointer::cleanup()
{
    tell({QStringLiteral("mouseup"), QStringLiteral("1")});
    m_loaded.reset();
}

void TestGraphPointer::movesReadOutThePosition()
{
    point(muts(), QPointF(200, 100));
    QTRY_COMPARE(muts()->mouse.x, 200);
    QCOMPARE(muts()->mouse.y, 100);
    QCOMPARE(m_loaded->graph(Displays::DispMuts)->XPos->text(),
             textFromNumber(muts()->coord.screenToX(200)));
    QCOMPARE(m_loaded->graph(Displays::DispMuts)->YPos->text(),
             textFromNumber(muts()->coord.screenToY(100)));
}

void TestGraphPointer::wheelZooms()
{
    point(muts(), QPointF(muts()->width() * 0.5, muts()->height() * 0.5));
    QTRY_COMPARE(muts()->mouse.x, qRound(muts()->width() * 0.5));
    const double width = shownWidth();
    tell({QStringLiteral("click"), QStringLiteral("4")}); // a notch away from the user
    QTRY_VERIFY(qFuzzyCompare(shownWidth(), width / 1.1));
    tell({QStringLiteral("click"), QStringLiteral("5")});
    QTRY_VERIFY(qFuzzyCompare(shownWidth(), width));
    // With Alt the toolkit reports the wheel sideways; it zooms all the same.
    tell({QStringLiteral("keydown"), QStringLiteral("alt"), QStringLiteral("click"),
          QStringLiteral("5"), QStringLiteral("keyup"), QStringLiteral("alt")});
    QTRY_VERIFY(qFuzzyCompare(shownWidth(), width * 1.1));
}

void TestGraphPointer::shiftDragPans()
{
    const double from = muts()->coord.rx0;
    point(muts(), QPointF(200, 100));
    tell({QStringLiteral("keydown"), QStringLiteral("shift"), QStringLiteral("mousedown"),
          QStringLiteral("1")});
    QTRY_VERIFY(muts()->mouse.pressed);
    const double perPixel = muts()->coord.screenToDx(1);
    point(muts(), QPointF(230, 100));
    tell({QStringLiteral("mouseup"), QStringLiteral("1"), QStringLiteral("keyup"),
          QStringLiteral("shift")});
    QTRY_VERIFY(!muts()->mouse.pressed);
    QCOMPARE(muts()->coord.rx0, from - 30 * perPixel);
    COMPARE_EXACT(edge(), 8350.0);
}

void TestGraphPointer::dragLeavesTheCanvas()
{
    // The button holds the pointer: the line follows it beyond the canvas and the window.
    point(muts(), QPointF(muts()->coord.xToScreen(8350), 60));
    tell({QStringLiteral("mousedown"), QStringLiteral("1")});
    QTRY_VERIFY(muts()->markLines->isMoving);
    const QPointF beyond(muts()->width() + 150, muts()->height() + 150);
    point(muts(), beyond);
    const QString expected = textFromNumber(muts()->coord.screenToX(qRound(beyond.x())));
    QTRY_COMPARE(m_loaded->panel().EdgeE->text(), expected);
    tell({QStringLiteral("mouseup"), QStringLiteral("1")});
    QTRY_VERIFY(!muts()->markLines->isMoving);
    COMPARE_EXACT(m_loaded->panel().RefFile1->data()->edge, numberFromText(expected));
}

void TestGraphPointer::doubleClickResets()
{
    const double width = shownWidth();
    point(muts(), QPointF(muts()->width() * 0.7, muts()->height() * 0.5));
    QTRY_COMPARE(muts()->mouse.x, qRound(muts()->width() * 0.7));
    tell({QStringLiteral("click"), QStringLiteral("4"), QStringLiteral("click"),
          QStringLiteral("4")});
    QTRY_VERIFY(qFuzzyCompare(shownWidth(), width / 1.1 / 1.1));
    tell({QStringLiteral("click"), QStringLiteral("--repeat"), QStringLiteral("2"),
          QStringLiteral("--delay"), QStringLiteral("20"), QStringLiteral("1")});
    QTRY_VERIFY(qFuzzyCompare(shownWidth(), width));
}

void TestGraphPointer::controlPressDoesNothing()
{
    const double x = muts()->coord.xToScreen(8350);
    point(muts(), QPointF(x, 60));
    tell({QStringLiteral("keydown"), QStringLiteral("ctrl"), QStringLiteral("mousedown"),
          QStringLiteral("1")});
    QTRY_VERIFY(muts()->mouse.pressed);
    point(muts(), QPointF(x + 40, 60));
    QTRY_COMPARE(muts()->mouse.x, qRound(x + 40));
    tell({QStringLiteral("mouseup"), QStringLiteral("1"), QStringLiteral("keyup"),
          QStringLiteral("ctrl")});
    QTRY_VERIFY(!muts()->mouse.pressed);
    COMPARE_EXACT(edge(), 8350.0);
}

void TestGraphPointer::buttonPopsOutAndDocks()
{
    DispABase* graph = m_loaded->graph(Displays::DispRef1);
    const QPointF middle = QRectF(graph->PopDockB->rect()).center();
    point(graph->PopDockB, middle);
    tell({QStringLiteral("click"), QStringLiteral("1")});
    QTRY_VERIFY(!graph->docked);
    QVERIFY(QTest::qWaitForWindowExposed(graph->pop.get()));
    graph->pop->move(0, 100); // beside the button, wherever the server put it
    graph->pop->close();
    QTRY_VERIFY(graph->docked);
    QTRY_VERIFY(graph->DispA->isVisible());
}

void TestGraphPointer::dragInThePopOut()
{
    DispABase* graph = m_loaded->graph(Displays::DispMuts);
    graph->popDock();
    QVERIFY(QTest::qWaitForWindowExposed(graph->pop.get()));
    graph->pop->move(0, 0);
    graph->pop->raise();
    QTRY_VERIFY(graph->DispA->width() > 700);
    m_loaded->picture(Displays::DispMuts);
    int repaints = 0;
    connect(graph, &DispABase::draw, this, [&repaints] { ++repaints; });
    const double x = muts()->coord.xToScreen(8350);
    point(muts(), QPointF(x, 60));
    QTRY_COMPARE(muts()->mouse.x, qRound(x));
    tell({QStringLiteral("mousedown"), QStringLiteral("1")});
    QTRY_VERIFY(muts()->markLines->isMoving);
    repaints = 0;
    point(muts(), QPointF(x + 50, 60));
    QTRY_COMPARE(m_loaded->panel().EdgeE->text(),
                 textFromNumber(muts()->coord.screenToX(qRound(x + 50))));
    QTRY_VERIFY(repaints > 0); // the canvas follows its own line
    tell({QStringLiteral("mouseup"), QStringLiteral("1")});
    QTRY_VERIFY(!muts()->markLines->isMoving);
}

QTEST_MAIN(TestGraphPointer)
#include "tst_GraphPointer.moc"
