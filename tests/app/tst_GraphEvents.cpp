#include "display/PopBase.h"
#include "tests/support/LoadedPanel.h"
#include "tests/support/Random.h"

#include <QtTest>

namespace
{

int warnings = 0;
QString firstWarning;

void countWarnings(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    // The offscreen platform says this of every window.
    if (type == QtInfoMsg || text.contains(QLatin1String("propagateSizeHints")))
        return;
    if (warnings++ == 0)
        firstWarning = text;
}

} // namespace

class TestGraphEvents : public QObject
{
    Q_OBJECT

private slots:
    void randomMouseAndKeys();

private:
    QPointF anyPlace(const QWidget* widget);
    void anyEvent(LoadedPanel& loaded, DispABase* graph);

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

void TestGraphEvents::randomMouseAndKeys()
{
    LoadedPanel loaded;
    const QtMessageHandler before = qInstallMessageHandler(countWarnings);
    for (int i = 0; i < 10000; ++i) {
        anyEvent(loaded, loaded.graph(m_random.below(9)));
        if (i % 5 == 0)
            QCoreApplication::processEvents();
    }
    // After all of it the graphs come back.
    for (int position = 0; position < 9; ++position) {
        DispABase* graph = loaded.graph(position);
        if (!graph->docked)
            graph->pop->close();
        canvas::release(graph->DispA, QPointF(1, 1));
        QVERIFY(graph->docked);
    }
    loaded.panel().displays->resize(1200, 900);
    loaded.panel().EdgeE->setText(QStringLiteral("8350"));
    loaded.panel().PreEEndDE->setText(QStringLiteral("-50"));
    loaded.panel().PostEStartDE->setText(QStringLiteral("100"));
    for (int row = 0; row < 4; ++row)
        loaded.panel().ePoints[row]->Energy->setText(
            QStringList{QStringLiteral("8313"), QStringLiteral("8381"), QStringLiteral("8390"),
                        QStringLiteral("8404.5")}[row]);
    loaded.panel().setEdge();
    loaded.panel().lcf();
    QCoreApplication::processEvents();
    LoadedPanel fresh;
    fresh.panel().lcf();
    for (int position = 0; position < 9; ++position) {
        if (position == Displays::DispLCFvs4PS)
            continue; // its points tell the whole story
        canvas::doubleClick(loaded.area(position), QPointF(1, 1));
        canvas::doubleClick(fresh.area(position), QPointF(1, 1));
        QVERIFY2(!loaded.picture(position).isNull(), qPrintable(QString::number(position)));
        QCOMPARE(loaded.area(position)->coord.valid, fresh.area(position)->coord.valid);
    }
    qInstallMessageHandler(before);
    QVERIFY2(warnings == 0,
             qPrintable(QStringLiteral("%1, first: %2").arg(warnings).arg(firstWarning)));
}

QTEST_MAIN(TestGraphEvents)
#include "tst_GraphEvents.moc"
