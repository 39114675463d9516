#include "display/PopBase.h"
#include "tests/support/LoadedPanel.h"
#include "tests/support/Random.h"
#include "tests/support/ToolkitWarnings.h"

#include <QtTest>

class TestGraphEvents : public QObject
{
    Q_OBJECT

private slots:
    void randomMouseAndKeys();

private:
    QPointF anyPlace(const QWidget* widget);
    void anyEvent(LoadedPanel& loaded, DispABase* graph);
    static void typeDefaults(const FourPs& panel);

    Random m_random;
};

// Mostly on the canvas, now and then beside it, where a drag may lead.
QPointF TestGraphEvents::anyPlace(const QWidget* widget)
{
    const double reach = m_random.oneIn(20) ? 5000.0 : 0.0;
    return {m_random.uniform(-reach, widget->width() + reach),
            m_random.uniform(-reach, widget->height() + reach)};
}

void TestGraphEvents::anyEvent(LoadedPanel& loaded, DispABase* graph)
{
    static const Qt::MouseButton buttons[] = {Qt::LeftButton, Qt::LeftButton, Qt::LeftButton,
                                              Qt::RightButton, Qt::MiddleButton};
    static const Qt::KeyboardModifier modifiers[] = {
        Qt::NoModifier, Qt::NoModifier, Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier};
    static const Qt::Key keys[] = {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Tab,  Qt::Key_Space,
                                   Qt::Key_Delete, Qt::Key_Left,   Qt::Key_Plus, Qt::Key_A};
    DispArea* area = graph->DispA;
    const QPointF place = anyPlace(area);
    const Qt::MouseButton button = buttons[m_random.below(5)];
    const Qt::KeyboardModifiers held = modifiers[m_random.below(5)];
    switch (m_random.below(16)) {
    case 0:
    case 1:
    case 2:
        return canvas::press(area, place, button, held);
    case 3:
    case 4:
        return canvas::release(area, place, button, held);
    case 5:
        return canvas::doubleClick(area, place);
    case 6:
    case 7:
        return canvas::wheel(area, place,
                             QPoint(m_random.below(3) * 120 - 120, m_random.below(5) * 120 - 240));
    case 8:
        return QTest::keyClick(area, keys[m_random.below(8)], held);
    case 9:
        if (m_random.oneIn(20))
            graph->popDock();
        return;
    case 10:
        if (m_random.oneIn(20))
            loaded.panel().displays->resize(100 + m_random.below(1300), 80 + m_random.below(900));
        return;
    default:
        return canvas::move(area, place, m_random.oneIn(3) ? Qt::NoButton : Qt::LeftButton, held);
    }
}

// What the lines in the graphs may have been drawn away from.
void TestGraphEvents::typeDefaults(const FourPs& panel)
{
    panel.EdgeE->setText(QStringLiteral("8350"));
    panel.PreEEndDE->setText(QStringLiteral("-50"));
    panel.PostEStartDE->setText(QStringLiteral("100"));
    emit panel.PostEStartDE->editingFinished();
    const char* const energies[] = {"8313", "8381", "8390", "8404.5", "8460", "8475", "", ""};
    for (int row = 0; row < panel.ePoints.size(); ++row) {
        panel.ePoints[row]->Energy->setText(QLatin1String(energies[row]));
        emit panel.ePoints[row]->Energy->editingFinished();
    }
}

void TestGraphEvents::randomMouseAndKeys()
{
    LoadedPanel loaded;
    const ToolkitWarnings warnings;
    for (int i = 0; i < 10000; ++i) {
        anyEvent(loaded, loaded.graph(m_random.below(9)));
        if (i % 5 == 0)
            QCoreApplication::processEvents();
    }
    for (int position = 0; position < 9; ++position) {
        DispABase* graph = loaded.graph(position);
        if (!graph->docked)
            graph->pop->close();
        canvas::release(graph->DispA, QPointF(1, 1));
        QVERIFY(graph->docked);
    }
    // After all of it the graphs are those of a panel that nobody has touched.
    LoadedPanel fresh;
    typeDefaults(loaded.panel());
    loaded.panel().displays->resize(fresh.panel().displays->size());
    for (FourPs* panel : {&loaded.panel(), &fresh.panel()}) {
        panel->clearLCFvs4PS(nullptr);
        panel->calcBoth();
        for (int position = 0; position < 9; ++position)
            panel->displays->panel(position)->DispA->rangeSet = false;
    }
    QCoreApplication::processEvents();
    QCOMPARE(loaded.panel().CalcRes->text(), fresh.panel().CalcRes->text());
    QCOMPARE(loaded.panel().LCFRes->text(), fresh.panel().LCFRes->text());
    for (int position = 0; position < 9; ++position) {
        const QImage expected = fresh.picture(position);
        QVERIFY2(position == Displays::DispM2M3 ||
                     canvas::count(expected, Qt::white) < expected.width() * expected.height(),
                 qPrintable(QString::number(position)));
        QVERIFY2(loaded.picture(position) == expected, qPrintable(QString::number(position)));
    }
    QCOMPARE(warnings.all(), QString());
}

QTEST_MAIN(TestGraphEvents)
#include "tst_GraphEvents.moc"
