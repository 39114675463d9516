#include "analysis/LinearCombinationFit.h"
#include "app/Application.h"
#include "app/Body.h"
#include "tests/support/FailingMemory.h"
#include "tests/support/LoadedPanel.h"
#include "tests/support/PanelActions.h"

#include <QProgressBar>
#include <QSignalSpy>
#include <QStatusBar>
#include <QtTest>

#include <stdexcept>

namespace
{

/// Throws at each event that is posted to it.
class Throwing : public QObject
{
public:
    std::function<void()> doThrow;

    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::User)
            doThrow();
        return QObject::event(event);
    }
};

} // namespace

Q_DECLARE_METATYPE(std::function<void()>)

class tst_Application : public QObject
{
    Q_OBJECT

private slots:
    void exceptionEndsTheHandlerAlone_data();
    void exceptionEndsTheHandlerAlone();
    void loopGoesOn();
    void exceptionOutOfTheFailureLine();
    void panelTellsAndKeepsWhatItHas();
    void brokenOperationLeavesTheStatusBar();
    void memoryRefusedDuringTheFit();
    void fitThatIsBrokenOffIsWhole();
};

void tst_Application::exceptionEndsTheHandlerAlone_data()
{
    using Throw = std::function<void()>;
    QTest::addColumn<Throw>("doThrow");
    QTest::addColumn<QString>("line");
    QTest::newRow("memory") << Throw([] { throw std::bad_alloc(); })
                            << QStringLiteral("There is not enough memory.");
    QTest::newRow("an array without end") << Throw([] { throw std::bad_array_new_length(); })
                                          << QStringLiteral("There is not enough memory.");
    QTest::newRow("other") << Throw([] { throw std::runtime_error("no way out"); })
                           << QStringLiteral("The operation failed: no way out");
}

void tst_Application::exceptionEndsTheHandlerAlone()
{
    QFETCH(std::function<void()>, doThrow);
    QFETCH(QString, line);
    QSignalSpy failed(qApp, SIGNAL(failed(QString)));
    Throwing receiver;
    receiver.doThrow = doThrow;
    QEvent event(QEvent::User);
    QVERIFY(!QApplication::sendEvent(&receiver, &event));
    QCOMPARE(failed.count(), 1);
    QCOMPARE(failed[0][0].toString(), line);
    receiver.doThrow = [] {};
    QApplication::sendEvent(&receiver, &event);
    QCOMPARE(failed.count(), 1);
}

void tst_Application::loopGoesOn()
{
    QSignalSpy failed(qApp, SIGNAL(failed(QString)));
    Throwing receiver;
    int after = 0;
    receiver.doThrow = [] { throw std::bad_alloc(); };
    for (int i = 0; i < 3; ++i)
        QApplication::postEvent(&receiver, new QEvent(QEvent::User));
    QTimer::singleShot(0, &receiver, [] { throw std::runtime_error("timer"); });
    QTimer::singleShot(1, &receiver, [&after] {
        ++after;
        QApplication::exit(7);
    });
    QCOMPARE(QApplication::exec(), 7);
    QCOMPARE(after, 1);
    QCOMPARE(failed.count(), 4);
}

void tst_Application::exceptionOutOfTheFailureLine()
{
    Throwing receiver;
    receiver.doThrow = [] { throw std::bad_alloc(); };
    QObject listener;
    connect(qobject_cast<Application*>(qApp), &Application::failed, &listener,
            [] { throw std::runtime_error("nor is there a line"); });
    QEvent event(QEvent::User);
    QTest::ignoreMessage(QtWarningMsg, "nor is there a line");
    QVERIFY(!QApplication::sendEvent(&receiver, &event));
}

void tst_Application::panelTellsAndKeepsWhatItHas()
{
    Body body;
    connect(qobject_cast<Application*>(qApp), &Application::failed, &body, &Body::tellFailure);
    body.show();
    FourPs& panel = *body.panel();
    QTemporaryDir dir;
    QCOMPARE(writeSample(dir.path(), MixedSample(), std::nullopt), QString());
    panel.RefFile1->setFile(dir.filePath(QStringLiteral("ref1.dat")));
    panel.RefFile2->setFile(dir.filePath(QStringLiteral("ref2.dat")));
    panel.TargetFile->setFile(dir.filePath(QStringLiteral("target.dat")));
    const QString result = panel.CalcRes->text();
    QVERIFY(result.startsWith(QLatin1String("4ps2: a = ")));
    const int lines = user::messages(panel).size();
    QSignalSpy refused(&panel, &FourPs::refused);
    QObject breaker; // a listener without memory, between the calculation's two lines
    connect(&panel, &FourPs::messageAppended, &breaker, [&](const QString& line) {
        if (line.startsWith(QLatin1String("sbys = ")))
            throw std::bad_alloc();
    });
    panel.CalcRes->setText(QStringLiteral("there"));
    user::click(panel.CalcTargetB);
    QCOMPARE(panel.CalcRes->text(), QStringLiteral("there"));
    QCOMPARE(user::messagesSince(panel, lines).mid(1),
             QStringList{QStringLiteral("There is not enough memory.")});
    QCOMPARE(refused.count(), 1);
    QVERIFY(panel.RefFile1->isValid() && panel.TargetFile->isValid());
    breaker.disconnect();
    disconnect(&panel, nullptr, &breaker, nullptr);
    user::click(panel.CalcTargetB);
    QCOMPARE(panel.CalcRes->text(), result);
}

void tst_Application::brokenOperationLeavesTheStatusBar()
{
    Body body;
    connect(qobject_cast<Application*>(qApp), &Application::failed, &body, &Body::tellFailure);
    body.show();
    auto* bar = body.findChild<QProgressBar*>(QStringLiteral("BusyProgress"));
    QVERIFY(bar);
    const QString text = QStringLiteral("Reading x.dat");
    emit body.panel()->progress(text, 0.0);
    QTRY_VERIFY_WITH_TIMEOUT((emit body.panel()->progress(text, 0.5), bar->isVisible()), 5000);
    Throwing receiver;
    receiver.doThrow = [] { throw std::bad_alloc(); };
    QEvent event(QEvent::User);
    QApplication::sendEvent(&receiver, &event);
    QVERIFY(!bar->isVisible());
    QCOMPARE(user::messages(*body.panel()).last(), QStringLiteral("There is not enough memory."));
}

void tst_Application::memoryRefusedDuringTheFit()
{
    LoadedPanel loaded(false);
    FourPs& panel = loaded.panel();
    panel.lcf();
    // How often a fit alone asks for memory.
    constexpr std::size_t plenty = 1000000;
    std::size_t requests = 0;
    {
        const memory::RefusedAfter counted(plenty);
        fitLinearCombination(*panel.RefFile1->data(), *panel.RefFile2->data(),
                             *panel.TargetFile->data(), {8313.0, 8404.5});
        requests = plenty - memory::requestsLeft;
    }
    QVERIFY2(requests > 10, qPrintable(QString::number(requests)));
    const QString result = panel.LCFRes->text();
    const int lines = user::messages(panel).size();
    const QImage points = loaded.picture(Displays::DispLCFvs4PS);
    const QImage curves = loaded.picture(Displays::DispMuts);
    panel.Valence1->setText(QStringLiteral("1")); // another fit would give another result
    for (std::size_t i = 0; i < requests; ++i) {
        const memory::RefusedAfter refused(i);
        bool thrown = false;
        try {
            panel.lcf();
        } catch (const std::bad_alloc&) {
            thrown = true;
        }
        memory::requestsLeft = memory::never;
        QVERIFY(thrown);
        QCOMPARE(panel.LCFRes->text(), result);
        QCOMPARE(user::messages(panel).size(), lines);
    }
    panel.Valence1->setText(QStringLiteral("2"));
    QCOMPARE(loaded.picture(Displays::DispLCFvs4PS), points);
    QCOMPARE(loaded.picture(Displays::DispMuts), curves);
}

// The point of the fit, its curve and its result belong together, wherever it is broken off.
void tst_Application::fitThatIsBrokenOffIsWhole()
{
    LoadedPanel broken(false);
    QObject breaker;
    connect(&broken.panel(), &FourPs::messageAppended, &breaker, [] { throw std::bad_alloc(); });
    QVERIFY_EXCEPTION_THROWN(broken.panel().lcf(), std::bad_alloc);
    LoadedPanel whole(false);
    whole.panel().lcf();
    for (const int graph : {Displays::DispLCFvs4PS, Displays::DispMuts})
        QCOMPARE(broken.picture(graph), whole.picture(graph));
}

int main(int argc, char* argv[])
{
    Application application(argc, argv);
    tst_Application test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_Application.moc"
