#include "display/DispArea.h"
#include "display/MarkLine.h"
#include "display/MarkLines.h"
#include "tests/support/CanvasActions.h"
#include "tests/support/Exact.h"

#include <QLineEdit>

#include <utility>

/// Names of the signals in the order in which they came.
class Recorder : public QObject
{
public:
    QStringList names;
    QVector<QPointF> positions;

    explicit Recorder(const DispArea* area)
    {
        connect(area, &DispArea::nowPos, this, [this](double x, double y) {
            names << QStringLiteral("nowPos");
            positions << QPointF(x, y);
        });
        record(area, &DispArea::mPressed, QStringLiteral("mPressed"));
        record(area, &DispArea::mDragging, QStringLiteral("mDragging"));
        record(area, &DispArea::mReleased, QStringLiteral("mReleased"));
        record(area, &DispArea::mDClicked, QStringLiteral("mDClicked"));
    }

    void watch(const MarkLines* lines)
    {
        connect(lines, &MarkLines::moving, this, [this] { names << QStringLiteral("moving"); });
        connect(lines, &MarkLines::newPos, this, [this] { names << QStringLiteral("newPos"); });
    }

    QStringList take()
    {
        const QStringList taken = names;
        names.clear();
        return taken;
    }

private:
    void record(const DispArea* area, void (DispArea::*signal)(MouseC*), const QString& name)
    {
        connect(area, signal, this, [this, area, name](MouseC* mouse) {
            QCOMPARE(mouse, &area->mouse);
            names << name;
        });
    }
};

class TestDispArea : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void construction();
    void repaintPreparesTheCoordinates();
    void repaintKeepsARangeThatIsSet();
    void painterIsOpenOnTheCanvas();
    void recordsPressMoveRelease();
    void positionsAreRounded();
    void doubleClickRecorder();
    void movesWithoutButtonReadOut();
    void plainPressDragRelease();
    void pressesThatEmitNothing_data();
    void pressesThatEmitNothing();
    void modifiersOfThePressCount();
    void shiftDragPans();
    void panningFollowsThePreviousPosition();
    void doubleClickForgetsTheRange();
    void wheelZoomsAtTheLastPosition_data();
    void wheelZoomsAtTheLastPosition();
    void zoomOverMargins_data();
    void zoomOverMargins();
    void wheelLeavesRangeSet();
    void whatMovesTheViewRepaintsIt();
    void dragsALine();
    void dragsAHorizontalLine();
    void dragsARelativeLine();
    void textThatIsNoNumberSitsAtZero();
    void pressBesideLinesPicksNone();
    void firstOfEquallyNearLines();
    void releaseOfAnyButtonEndsTheDrag();
    void pressDuringADragEndsItFirst();
    void clearDuringADragEndsItSilently();
    void clearFromTheSignals();
    void emptySetOfLines();
    void frameColors();
    void frameLabels_data();
    void frameLabels();
    void eachEndHasItsLabel();
    void absurdCoordinates();

private:
    void setRange(double x0, double y0, double x1, double y1);
    MarkLine* addLine(const QString& text, int kind, int reference = -1);

    std::unique_ptr<DispArea> m_area;
    std::unique_ptr<MarkLines> m_lines;
    std::vector<std::unique_ptr<MarkLine>> m_marks;
    std::vector<std::unique_ptr<QLineEdit>> m_edits;
    std::unique_ptr<Recorder> m_recorder;
};

// A canvas of 400 x 300 whose plot area, 340 x 255 pixels, starts with one unit for each pixel.
void TestDispArea::init()
{
    m_area = std::make_unique<DispArea>();
    m_area->resize(400, 300);
    connect(m_area.get(), &DispArea::draw, this, [this] { m_area->coord.applyMargins(); });
    setRange(0, 0, 340, 255);
    canvas::picture(m_area.get());
    m_recorder = std::make_unique<Recorder>(m_area.get());
    m_lines = std::make_unique<MarkLines>(nullptr);
    m_recorder->watch(m_lines.get());
}

void TestDispArea::cleanup()
{
    m_area.reset();
    m_marks.clear();
    m_edits.clear();
}

void TestDispArea::setRange(double x0, double y0, double x1, double y1)
{
    m_area->coord.setRange(x0, y0, x1, y1);
    m_area->rangeSet = true;
}

MarkLine* TestDispArea::addLine(const QString& text, int kind, int reference)
{
    m_edits.push_back(std::make_unique<QLineEdit>(text));
    m_marks.push_back(std::make_unique<MarkLine>(m_edits.back().get(), kind, nullptr));
    MarkLine* line = m_marks.back().get();
    line->relative = reference >= 0;
    line->refIndex = reference;
    m_lines->lines.append(line);
    m_area->markLines = m_lines.get();
    return line;
}

void TestDispArea::construction()
{
    const DispArea area;
    QCOMPARE(area.size(), QSize(400, 300));
    QCOMPARE(area.frameShape(), QFrame::StyledPanel);
    QCOMPARE(area.frameShadow(), QFrame::Raised);
    QCOMPARE(area.objectName(), QStringLiteral("DispArea"));
    QCOMPARE(area.windowTitle(), QStringLiteral("Frame"));
    QVERIFY(area.hasMouseTracking());
    QVERIFY(!area.rangeSet);
    QCOMPARE(area.markLines, nullptr);
    QCOMPARE(area.mouse.pressed, false);
    QCOMPARE(area.mouse.x, 0);
    QCOMPARE(int(area.mouse.pressModifiers), 0);
    QCOMPARE(area.text.current, -1);
}

void TestDispArea::repaintPreparesTheCoordinates()
{
    DispArea area;
    area.resize(320, 240);
    area.coord.valid = 0;
    area.coord.setRange(5, 6, 7, 8);
    int repaints = 0;
    connect(&area, &DispArea::draw, this, [&](QStylePainter*) {
        ++repaints;
        const ChCoord& coord = area.coord;
        QCOMPARE(coord.valid, 1);
        COMPARE_EXACT(coord.wx0, 0.0);
        COMPARE_EXACT(coord.wy0, 240.0);
        COMPARE_EXACT(coord.wx1, 320.0);
        COMPARE_EXACT(coord.wy1, 0.0);
        COMPARE_EXACT(coord.px1, 320.0);
        COMPARE_EXACT(coord.py0, 240.0);
        COMPARE_EXACT(coord.rx0, 0.0);
        COMPARE_EXACT(coord.ry0, 0.0);
        COMPARE_EXACT(coord.rx1, 1.0);
        COMPARE_EXACT(coord.ry1, 1.0);
    });
    canvas::picture(&area);
    QCOMPARE(repaints, 1);
}

void TestDispArea::repaintKeepsARangeThatIsSet()
{
    canvas::picture(m_area.get());
    COMPARE_EXACT(m_area->coord.rx1, 340.0);
    m_area->rangeSet = false;
    canvas::picture(m_area.get());
    COMPARE_EXACT(m_area->coord.rx1, 1.0);
}

void TestDispArea::painterIsOpenOnTheCanvas()
{
    connect(m_area.get(), &DispArea::draw, this, [this](QStylePainter* painter) {
        QVERIFY(painter->isActive());
        QVERIFY(!painter->testRenderHint(QPainter::Antialiasing));
        painter->fillRect(10, 20, 3, 2, Qt::red);
        Q_UNUSED(this)
    });
    const QImage image = canvas::picture(m_area.get());
    QCOMPARE(QColor(image.pixel(10, 20)), QColor(Qt::red));
    QCOMPARE(QColor(image.pixel(12, 21)), QColor(Qt::red));
    QCOMPARE(canvas::count(image, Qt::red), 6);
}

void TestDispArea::recordsPressMoveRelease()
{
    const MouseC& mouse = m_area->mouse;
    canvas::move(m_area.get(), QPointF(5, 6), Qt::NoButton);
    canvas::press(m_area.get(), QPointF(100, 101), Qt::LeftButton, Qt::MetaModifier);
    QCOMPARE(QPoint(mouse.prevX, mouse.prevY), QPoint(5, 6));
    QCOMPARE(QPoint(mouse.x, mouse.y), QPoint(100, 101));
    QCOMPARE(QPoint(mouse.pressX, mouse.pressY), QPoint(100, 101));
    QCOMPARE(mouse.pressed, true);
    QCOMPARE(mouse.pressButton, Qt::LeftButton);
    QCOMPARE(mouse.pressModifiers, Qt::KeyboardModifiers(Qt::MetaModifier));
    canvas::move(m_area.get(), QPointF(120, 121), Qt::LeftButton, Qt::ShiftModifier);
    QCOMPARE(QPoint(mouse.prevX, mouse.prevY), QPoint(100, 101));
    QCOMPARE(QPoint(mouse.x, mouse.y), QPoint(120, 121));
    QCOMPARE(QPoint(mouse.pressX, mouse.pressY), QPoint(100, 101));
    QCOMPARE(mouse.moveButton, Qt::NoButton);
    QCOMPARE(mouse.moveModifiers, Qt::KeyboardModifiers(Qt::ShiftModifier));
    canvas::release(m_area.get(), QPointF(130, 131), Qt::LeftButton, Qt::ControlModifier);
    QCOMPARE(QPoint(mouse.prevX, mouse.prevY), QPoint(120, 121));
    QCOMPARE(QPoint(mouse.releaseX, mouse.releaseY), QPoint(130, 131));
    QCOMPARE(QPoint(mouse.x, mouse.y), QPoint(130, 131));
    QCOMPARE(mouse.pressed, false);
    QCOMPARE(mouse.releaseButton, Qt::LeftButton);
    QCOMPARE(mouse.releaseModifiers, Qt::KeyboardModifiers(Qt::ControlModifier));
}

void TestDispArea::positionsAreRounded()
{
    canvas::move(m_area.get(), QPointF(10.5, -3.5), Qt::NoButton);
    QCOMPARE(QPoint(m_area->mouse.x, m_area->mouse.y), QPoint(11, -3));
    canvas::move(m_area.get(), QPointF(10.4, -3.6), Qt::NoButton);
    QCOMPARE(QPoint(m_area->mouse.x, m_area->mouse.y), QPoint(10, -4));
}

void TestDispArea::doubleClickRecorder()
{
    MouseC mouse;
    mouse.x = 7;
    QMouseEvent event(QEvent::MouseButtonDblClick, QPointF(30.5, 40.4), Qt::RightButton,
                      Qt::RightButton, Qt::AltModifier);
    QCOMPARE(mouse.doubleClicked(&event), Qt::KeyboardModifiers(Qt::AltModifier));
    QCOMPARE(QPoint(mouse.dclickX, mouse.dclickY), QPoint(31, 40));
    QCOMPARE(mouse.dclickButton, Qt::RightButton);
    QCOMPARE(mouse.dclickModifiers, Qt::KeyboardModifiers(Qt::AltModifier));
    QCOMPARE(mouse.x, 7);
    // The canvas does not use it.
    canvas::doubleClick(m_area.get(), QPointF(50, 60));
    QCOMPARE(QPoint(m_area->mouse.dclickX, m_area->mouse.dclickY), QPoint(0, 0));
}

void TestDispArea::movesWithoutButtonReadOut()
{
    canvas::move(m_area.get(), QPointF(140, 170), Qt::NoButton);
    QCOMPARE(m_recorder->take(), QStringList{QStringLiteral("nowPos")});
    QCOMPARE(m_recorder->positions.last(), QPointF(100, 100));
}

void TestDispArea::plainPressDragRelease()
{
    canvas::press(m_area.get(), QPointF(100, 100));
    QCOMPARE(m_recorder->take(), QStringList{QStringLiteral("mPressed")});
    canvas::move(m_area.get(), QPointF(110, 100));
    QCOMPARE(m_recorder->take(),
             (QStringList{QStringLiteral("nowPos"), QStringLiteral("mDragging")}));
    canvas::release(m_area.get(), QPointF(110, 100));
    QCOMPARE(m_recorder->take(), QStringList{QStringLiteral("mReleased")});
    canvas::move(m_area.get(), QPointF(120, 100), Qt::NoButton);
    QCOMPARE(m_recorder->take(), QStringList{QStringLiteral("nowPos")});
    COMPARE_EXACT(m_area->coord.rx0, 0.0);
}

void TestDispArea::pressesThatEmitNothing_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("right") << int(Qt::RightButton) << int(Qt::NoModifier);
    QTest::newRow("middle") << int(Qt::MiddleButton) << int(Qt::NoModifier);
    QTest::newRow("Control") << int(Qt::LeftButton) << int(Qt::ControlModifier);
    QTest::newRow("Alt") << int(Qt::LeftButton) << int(Qt::AltModifier);
    QTest::newRow("Shift and Control")
        << int(Qt::LeftButton) << int(Qt::ShiftModifier | Qt::ControlModifier);
    QTest::newRow("Shift and Alt")
        << int(Qt::LeftButton) << int(Qt::ShiftModifier | Qt::AltModifier);
    QTest::newRow("right with Shift") << int(Qt::RightButton) << int(Qt::ShiftModifier);
}

void TestDispArea::pressesThatEmitNothing()
{
    QFETCH(int, button);
    QFETCH(int, modifiers);
    const auto with = static_cast<Qt::MouseButton>(button);
    const Qt::KeyboardModifiers held(modifiers);
    addLine(QStringLiteral("60"), 0);
    canvas::press(m_area.get(), QPointF(100, 100), with, held);
    QVERIFY(m_recorder->take().isEmpty());
    QCOMPARE(m_area->mouse.pressed, true);
    QCOMPARE(m_area->mouse.pressX, 100);
    QVERIFY(!m_lines->isMoving);
    canvas::move(m_area.get(), QPointF(150, 130), with, held);
    QCOMPARE(m_recorder->take(), QStringList{QStringLiteral("nowPos")});
    COMPARE_EXACT(m_area->coord.rx0, 0.0);
    QCOMPARE(m_edits[0]->text(), QStringLiteral("60"));
    // The release is passed on all the same.
    canvas::release(m_area.get(), QPointF(150, 130), with, held);
    QCOMPARE(m_recorder->take(), QStringList{QStringLiteral("mReleased")});
}

void TestDispArea::modifiersOfThePressCount()
{
    // Pressed without, Shift is held later: still a drag.
    canvas::press(m_area.get(), QPointF(100, 100));
    canvas::move(m_area.get(), QPointF(110, 100), Qt::LeftButton, Qt::ShiftModifier);
    QVERIFY(m_recorder->take().contains(QStringLiteral("mDragging")));
    COMPARE_EXACT(m_area->coord.rx0, 0.0);
    canvas::release(m_area.get(), QPointF(110, 100));
    // Pressed with Shift, let go later: still panning.
    canvas::press(m_area.get(), QPointF(100, 100), Qt::LeftButton, Qt::ShiftModifier);
    m_recorder->take();
    canvas::move(m_area.get(), QPointF(110, 100));
    QCOMPARE(m_recorder->take(), QStringList{QStringLiteral("nowPos")});
    COMPARE_EXACT(m_area->coord.rx0, -10.0);
}

void TestDispArea::shiftDragPans()
{
    canvas::press(m_area.get(), QPointF(100, 100), Qt::LeftButton, Qt::ShiftModifier);
    QVERIFY(m_recorder->take().isEmpty());
    canvas::move(m_area.get(), QPointF(110, 95), Qt::LeftButton, Qt::ShiftModifier);
    // Read out before the range moves.
    QCOMPARE(m_recorder->take(), QStringList{QStringLiteral("nowPos")});
    COMPARE_EXACT(m_area->coord.rx0, -10.0);
    COMPARE_EXACT(m_area->coord.rx1, 330.0);
    COMPARE_EXACT(m_area->coord.ry0, -5.0);
    COMPARE_EXACT(m_area->coord.ry1, 250.0);
    QVERIFY(m_area->rangeSet);
}

void TestDispArea::panningFollowsThePreviousPosition()
{
    canvas::drag(m_area.get(), {QPointF(100, 100), QPointF(107, 100), QPointF(130, 100)},
                 Qt::ShiftModifier);
    QCOMPARE(m_area->coord.rx0, -30.0);
    QCOMPARE(m_area->coord.rx1, 310.0);
    QCOMPARE(m_area->coord.screenToX(130), 60.0); // what was under the press
}

void TestDispArea::doubleClickForgetsTheRange()
{
    canvas::wheel(m_area.get(), QPointF(200, 150), QPoint(0, 120));
    m_recorder->take();
    canvas::doubleClick(m_area.get(), QPointF(200, 150));
    QCOMPARE(m_recorder->take(),
             (QStringList{QStringLiteral("mPressed"), QStringLiteral("mReleased"),
                          QStringLiteral("mDClicked"), QStringLiteral("mReleased")}));
    QVERIFY(!m_area->rangeSet);
}

void TestDispArea::wheelZoomsAtTheLastPosition_data()
{
    QTest::addColumn<QPoint>("angle");
    QTest::addColumn<double>("width"); // of the range afterwards
    QTest::newRow("away") << QPoint(0, 120) << 340.0 / 1.1;
    QTest::newRow("toward") << QPoint(0, -120) << 340.0 * 1.1;
    QTest::newRow("toward, a fraction of a notch") << QPoint(0, -8) << 340.0 * 1.1;
    QTest::newRow("no angle") << QPoint(0, 0) << 340.0 / 1.1;
    QTest::newRow("sideways away") << QPoint(120, 0) << 340.0 / 1.1;
    QTest::newRow("sideways toward") << QPoint(-120, 0) << 340.0 * 1.1;
    QTest::newRow("the upright angle counts") << QPoint(120, -120) << 340.0 * 1.1;
}

void TestDispArea::wheelZoomsAtTheLastPosition()
{
    QFETCH(QPoint, angle);
    QFETCH(double, width);
    canvas::move(m_area.get(), QPointF(140, 170), Qt::NoButton);
    canvas::wheel(m_area.get(), QPointF(300, 60), angle); // the event's own place does not count
    QCOMPARE(m_area->coord.rx1 - m_area->coord.rx0, width);
    QCOMPARE(m_area->coord.ry1 - m_area->coord.ry0, width * 255.0 / 340.0);
    QCOMPARE(m_area->coord.screenToX(140), 100.0);
    QCOMPARE(m_area->coord.screenToY(170), 100.0);
}

void TestDispArea::zoomOverMargins_data()
{
    QTest::addColumn<QPointF>("pointer");
    QTest::addColumn<bool>("changesX");
    QTest::addColumn<bool>("changesY");
    QTest::newRow("left margin") << QPointF(5, 150) << false << true;
    QTest::newRow("bottom margin") << QPointF(200, 295) << true << false;
    QTest::newRow("corner") << QPointF(5, 295) << true << true;
    QTest::newRow("middle") << QPointF(200, 150) << true << true;
}

void TestDispArea::zoomOverMargins()
{
    QFETCH(QPointF, pointer);
    QFETCH(bool, changesX);
    QFETCH(bool, changesY);
    canvas::move(m_area.get(), pointer, Qt::NoButton);
    canvas::wheel(m_area.get(), pointer, QPoint(0, 120));
    QCOMPARE(m_area->coord.rx1 - m_area->coord.rx0 != 340.0, changesX);
    QCOMPARE(m_area->coord.ry1 - m_area->coord.ry0 != 255.0, changesY);
}

void TestDispArea::wheelLeavesRangeSet()
{
    canvas::wheel(m_area.get(), QPointF(200, 150), QPoint(0, 120));
    QVERIFY(m_area->rangeSet);
    m_area->rangeSet = false;
    canvas::wheel(m_area.get(), QPointF(200, 150), QPoint(0, 120));
    QVERIFY(!m_area->rangeSet);
}

void TestDispArea::whatMovesTheViewRepaintsIt()
{
    m_area->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_area.get()));
    QCoreApplication::processEvents();
    int repaints = 0;
    connect(m_area.get(), &DispArea::draw, this, [&repaints] { ++repaints; });
    const auto repainted = [&repaints] {
        QCoreApplication::processEvents();
        return std::exchange(repaints, 0) > 0;
    };
    const QPointF place(200, 150);
    canvas::move(m_area.get(), place, Qt::NoButton);
    QVERIFY(!repainted()); // the view stays
    canvas::wheel(m_area.get(), place, QPoint(0, 120));
    QVERIFY(repainted());
    canvas::press(m_area.get(), place, Qt::LeftButton, Qt::ShiftModifier);
    QVERIFY(!repainted());
    canvas::move(m_area.get(), place + QPointF(10, 5), Qt::LeftButton, Qt::ShiftModifier);
    QVERIFY(repainted());
    canvas::release(m_area.get(), place + QPointF(10, 5), Qt::LeftButton, Qt::ShiftModifier);
    QVERIFY(!repainted());
    canvas::send(m_area.get(), QEvent::MouseButtonDblClick, place, Qt::LeftButton, Qt::LeftButton,
                 Qt::NoModifier);
    QVERIFY(repainted());
}

void TestDispArea::dragsALine()
{
    addLine(QStringLiteral("60"), 0);
    canvas::press(m_area.get(), QPointF(109.4, 20)); // 9 pixels beside the line
    QVERIFY(m_lines->isMoving);
    QCOMPARE(m_lines->selected, 0);
    QCOMPARE(m_recorder->take(), QStringList{QStringLiteral("mPressed")});
    canvas::move(m_area.get(), QPointF(140, 200));
    QCOMPARE(m_recorder->take(), (QStringList{QStringLiteral("nowPos"), QStringLiteral("moving"),
                                              QStringLiteral("mDragging")}));
    QCOMPARE(m_edits[0]->text(), QStringLiteral("100"));
    canvas::release(m_area.get(), QPointF(143, 200));
    QCOMPARE(m_recorder->take(), (QStringList{QStringLiteral("moving"), QStringLiteral("newPos"),
                                              QStringLiteral("mReleased")}));
    QCOMPARE(m_edits[0]->text(), QStringLiteral("103"));
    QVERIFY(!m_lines->isMoving);
    QCOMPARE(m_lines->selected, -1);
    canvas::move(m_area.get(), QPointF(200, 200), Qt::NoButton);
    QCOMPARE(m_edits[0]->text(), QStringLiteral("103"));
}

void TestDispArea::dragsAHorizontalLine()
{
    setRange(0, 0, 340, 1);
    addLine(QStringLiteral("0.5"), 1);
    canvas::drag(m_area.get(), {QPointF(300, 142), QPointF(300, 185)});
    QCOMPARE(m_edits[0]->text(), QStringLiteral("0.333333")); // 85 of 255 pixels, six digits
}

void TestDispArea::dragsARelativeLine()
{
    addLine(QStringLiteral("100"), 0);
    addLine(QStringLiteral("-50"), 0, 0);
    canvas::press(m_area.get(), QPointF(90, 20)); // at 50
    QCOMPARE(m_lines->selected, 1);
    canvas::move(m_area.get(), QPointF(70, 20));
    QCOMPARE(m_edits[1]->text(), QStringLiteral("-70"));
    QCOMPARE(m_edits[0]->text(), QStringLiteral("100"));
    canvas::release(m_area.get(), QPointF(70, 20));
    // The reference line carries it along.
    canvas::drag(m_area.get(), {QPointF(140, 20), QPointF(240, 20)});
    QCOMPARE(m_edits[0]->text(), QStringLiteral("200"));
    QCOMPARE(m_edits[1]->text(), QStringLiteral("-70"));
    COMPARE_EXACT(m_lines->position(1), 130.0);
}

void TestDispArea::textThatIsNoNumberSitsAtZero()
{
    addLine(QStringLiteral("no number"), 0);
    canvas::drag(m_area.get(), {QPointF(40, 20), QPointF(65, 20)});
    QCOMPARE(m_edits[0]->text(), QStringLiteral("25"));
}

void TestDispArea::pressBesideLinesPicksNone()
{
    addLine(QStringLiteral("60"), 0);
    canvas::press(m_area.get(), QPointF(110, 20)); // ten pixels
    QVERIFY(!m_lines->isMoving);
    canvas::move(m_area.get(), QPointF(100, 20));
    QCOMPARE(m_edits[0]->text(), QStringLiteral("60"));
    m_recorder->take();
    canvas::release(m_area.get(), QPointF(100, 20));
    QCOMPARE(m_recorder->take(), QStringList{QStringLiteral("mReleased")});
}

void TestDispArea::firstOfEquallyNearLines()
{
    addLine(QStringLiteral("65"), 0);
    addLine(QStringLiteral("55"), 0);
    canvas::press(m_area.get(), QPointF(100, 20));
    QCOMPARE(m_lines->selected, 0);
}

void TestDispArea::releaseOfAnyButtonEndsTheDrag()
{
    addLine(QStringLiteral("60"), 0);
    canvas::press(m_area.get(), QPointF(100, 20));
    canvas::release(m_area.get(), QPointF(120, 20), Qt::RightButton, Qt::ControlModifier);
    QCOMPARE(m_edits[0]->text(), QStringLiteral("80"));
    QVERIFY(!m_lines->isMoving);
    QVERIFY(m_recorder->take().contains(QStringLiteral("newPos")));
}

void TestDispArea::pressDuringADragEndsItFirst()
{
    addLine(QStringLiteral("60"), 0);
    addLine(QStringLiteral("160"), 0);
    canvas::press(m_area.get(), QPointF(100, 20));
    m_recorder->take();
    canvas::press(m_area.get(), QPointF(300, 20)); // beside all lines: the drag stays open
    QCOMPARE(m_recorder->take(), QStringList{QStringLiteral("mPressed")});
    QCOMPARE(m_lines->selected, 0);
    canvas::press(m_area.get(), QPointF(200, 20));
    QCOMPARE(m_recorder->take(),
             (QStringList{QStringLiteral("newPos"), QStringLiteral("mPressed")}));
    QCOMPARE(m_lines->selected, 1);
    QVERIFY(m_lines->isMoving);
}

void TestDispArea::clearDuringADragEndsItSilently()
{
    addLine(QStringLiteral("60"), 0);
    canvas::press(m_area.get(), QPointF(100, 20));
    m_lines->clear();
    QVERIFY(m_lines->lines.isEmpty());
    QCOMPARE(m_lines->selected, -1);
    m_recorder->take();
    canvas::release(m_area.get(), QPointF(120, 20));
    QCOMPARE(m_recorder->take(), QStringList{QStringLiteral("mReleased")});
    QCOMPARE(m_edits[0]->text(), QStringLiteral("60"));
}

void TestDispArea::clearFromTheSignals()
{
    addLine(QStringLiteral("60"), 0);
    addLine(QStringLiteral("160"), 0);
    connect(m_lines.get(), &MarkLines::moving, m_lines.get(), &MarkLines::clear);
    canvas::drag(m_area.get(), {QPointF(200, 20), QPointF(210, 20)});
    QVERIFY(!m_lines->isMoving);
    QCOMPARE(m_edits[1]->text(), QStringLiteral("160")); // a move by nothing came first
}

void TestDispArea::emptySetOfLines()
{
    m_area->markLines = m_lines.get();
    canvas::drag(m_area.get(), {QPointF(100, 20), QPointF(120, 20)});
    QVERIFY(!m_recorder->take().contains(QStringLiteral("moving")));
    m_lines->isMoving = true; // a selection outside the set moves nothing
    m_lines->selected = 3;
    canvas::press(m_area.get(), QPointF(100, 20));
    canvas::move(m_area.get(), QPointF(120, 20));
    QVERIFY(!m_recorder->take().contains(QStringLiteral("moving")));
}

void TestDispArea::frameColors()
{
    const QColor red(Qt::red);
    const QColor white(Qt::white);
    const QColor grey(150, 150, 150);
    for (const bool clearMargins : {true, false}) {
        DispArea area;
        area.resize(400, 300);
        connect(&area, &DispArea::draw, this, [&](QStylePainter* painter) {
            area.coord.applyMargins();
            painter->fillRect(area.rect(), red);
            area.drawFrame(painter, clearMargins);
        });
        const QImage image = canvas::picture(&area);
        const QColor margin = clearMargins ? white : red;
        for (const QPoint corner :
             {QPoint(40, 15), QPoint(380, 15), QPoint(40, 270), QPoint(380, 270)})
            QCOMPARE(QColor(image.pixel(corner)), grey);
        QCOMPARE(canvas::rowsOf(image, grey, 200, 0, 299), (QVector<int>{15, 270}));
        QCOMPARE(canvas::columnsOf(image, grey, 140, 0, 399), (QVector<int>{40, 380}));
        for (const QPoint inside : {QPoint(41, 16), QPoint(379, 269), QPoint(200, 140)})
            QCOMPARE(QColor(image.pixel(inside)), red);
        for (const QPoint outside : {QPoint(39, 140), QPoint(381, 140), QPoint(200, 14),
                                     QPoint(200, 271), QPoint(0, 0), QPoint(399, 299)})
            QCOMPARE(QColor(image.pixel(outside)), margin);
    }
}

void TestDispArea::frameLabels_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("onY");
    QTest::addColumn<QString>("onX");
    QTest::newRow("cut") << 1.23456 << QStringLiteral("1.234") << QStringLiteral("1.2345");
    QTest::newRow("small negative")
        << -0.000125 << QStringLiteral("-0.00") << QStringLiteral("-0.000");
    QTest::newRow("energy") << 8313.25 << QStringLiteral("8313.") << QStringLiteral("8313.2");
    QTest::newRow("six digits at most")
        << 123456789.0 << QStringLiteral("1.234") << QStringLiteral("1.2345");
    QTest::newRow("short") << 2.0 << QStringLiteral("2") << QStringLiteral("2");
    QTest::newRow("not a number") << std::nan("") << QStringLiteral("nan") << QStringLiteral("nan");
}

namespace
{

// A range label, drawn step by step.
void putLabel(QPainter& painter, double x, double y, double width, double height, int flags,
              const QString& text)
{
    QFont font;
    font.setPointSizeF(10);
    painter.setFont(font);
    const QRectF bounds = painter.boundingRect(QRectF(x, y + height, 1000, 1000), flags, text);
    double ratio = std::max(bounds.width() / width, bounds.height() / height);
    if (ratio == 0)
        ratio = 1;
    double size = 10 / ratio;
    if (size > 12)
        size = 12;
    font.setPointSizeF(size);
    painter.setFont(font);
    painter.drawText(QRectF(x, y, width, height), flags, text);
}

/// Frame of a canvas of 400 x 300 pixels, with the labels of x0, y0, x1 and y1.
QImage frameWithLabels(const QStringList& labels)
{
    // h = trunc(-255 / 10) = -25, b = trunc(-25 * 0.85) = -21, m = 40.
    QImage expected(400, 300, QImage::Format_RGB32);
    expected.fill(Qt::white);
    QPainter painter(&expected);
    painter.setPen(QColor(150, 150, 150));
    painter.drawRect(40, 15, 340, 255);
    painter.setPen(Qt::black);
    const int right = Qt::AlignRight | Qt::AlignVCenter;
    const int left = Qt::AlignLeft | Qt::AlignVCenter;
    putLabel(painter, 0, 15 + 25, 38, -21, right, labels[3]);
    putLabel(painter, 0, 270, 38, -21, right, labels[1]);
    putLabel(painter, 40, 270 + 25, 80, -21, left, labels[0]);
    putLabel(painter, 380 - 80, 270 + 25, 80, -21, right, labels[2]);
    painter.end();
    return expected;
}

} // namespace

void TestDispArea::frameLabels()
{
    QFETCH(double, value);
    QFETCH(QString, onY);
    QFETCH(QString, onX);
    connect(m_area.get(), &DispArea::draw, this, [&](QStylePainter* painter) {
        painter->fillRect(m_area->rect(), Qt::white);
        m_area->coord.setRange(value, value, value, value);
        m_area->drawFrame(painter, true);
    });
    QCOMPARE(canvas::picture(m_area.get()), frameWithLabels({onX, onY, onX, onY}));
}

void TestDispArea::eachEndHasItsLabel()
{
    connect(m_area.get(), &DispArea::draw, this, [&](QStylePainter* painter) {
        painter->fillRect(m_area->rect(), Qt::white);
        m_area->coord.setRange(1, 2, 3, 4);
        m_area->drawFrame(painter, true);
    });
    const QStringList labels = {QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"),
                                QStringLiteral("4")};
    QCOMPARE(canvas::picture(m_area.get()), frameWithLabels(labels));
}

void TestDispArea::absurdCoordinates()
{
    connect(m_area.get(), &DispArea::draw, this,
            [this](QStylePainter* painter) { m_area->drawFrame(painter, true); });
    for (const double v : {std::nan(""), 1e300, -1e300, HUGE_VAL, -HUGE_VAL, 0.0}) {
        addLine(QString::number(v), 0);
        setRange(v, -v, -v, v);
        canvas::drag(m_area.get(), {QPointF(100, 20), QPointF(1e9, -1e9), QPointF(-1e300, 1e300)});
        canvas::drag(m_area.get(), {QPointF(100, 20), QPointF(120, 30)}, Qt::ShiftModifier);
        canvas::wheel(m_area.get(), QPointF(100, 20), QPoint(0, 120));
        QCOMPARE(canvas::picture(m_area.get()).size(), QSize(400, 300));
    }
    for (const QSize size : {QSize(1, 1), QSize(0, 0), QSize(1, 3000), QSize(3000, 1)}) {
        m_area->resize(size);
        canvas::picture(m_area.get());
        canvas::drag(m_area.get(), {QPointF(0, 0), QPointF(1, 1)}, Qt::ShiftModifier);
        canvas::wheel(m_area.get(), QPointF(0, 0), QPoint(0, -120));
    }
}

QTEST_MAIN(TestDispArea)
#include "tst_DispArea.moc"
