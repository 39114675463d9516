#include "app/Body.h"
#include "app/FourPs.h"
#include "app/Language.h"
#include "display/PopBase.h"
#include "input/AFileSelect.h"

#include <QFileDialog>
#include <QMenuBar>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTimer>
#include <QtTest>

class tst_Body : public QObject
{
    Q_OBJECT

private slots:
    void languageChoice_data();
    void languageChoice();
    void titleAndNames();
    void growsToThePanel();
    void closingEndsTheProgram();
    void closingTakesEveryFileDialogAlong();
};

void tst_Body::languageChoice_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("japanese");
    QTest::newRow("none") << QStringLiteral("drovik") << true;
    QTest::newRow("English") << QStringLiteral("drovik -e") << false;
    QTest::newRow("Japanese") << QStringLiteral("drovik -j") << true;
    QTest::newRow("last wins, Japanese") << QStringLiteral("drovik -e -j") << true;
    QTest::newRow("last wins, English") << QStringLiteral("drovik -j -e") << false;
    QTest::newRow("case") << QStringLiteral("drovik -E") << true;
    QTest::newRow("two dashes") << QStringLiteral("drovik --e") << true;
    QTest::newRow("others between") << QStringLiteral("drovik -e file.dat -x") << false;
    QTest::newRow("the program's name does not count") << QStringLiteral("-e") << true;
}

void tst_Body::languageChoice()
{
    QFETCH(QString, line);
    QTEST(wantsJapanese(line.split(QLatin1Char(' '))), "japanese");
}

void tst_Body::titleAndNames()
{
    const Body body;
    QCOMPARE(body.windowTitle(), QStringLiteral("drovik"));
    QCOMPARE(body.objectName(), QStringLiteral("Body"));
    QCOMPARE(body.size(), QSize(869, 121));
    QVERIFY(body.menuBar()->actions().isEmpty());
    QCOMPARE(body.centralWidget()->objectName(), QStringLiteral("centralwidget"));
    QCOMPARE(body.panel()->parentWidget(), body.centralWidget());
}

void tst_Body::growsToThePanel()
{
    Body body;
    body.show();
    QVERIFY(body.height() >= body.panel()->minimumSizeHint().height());
    QVERIFY(body.width() >= body.panel()->minimumSizeHint().width());
    // It fits on the smallest screen in use, the conditions shown.
    body.panel()->DispCondsB->setChecked(true);
    QVERIFY(body.minimumSizeHint().width() <= 1280);
    QVERIFY(body.minimumSizeHint().height() <= 800);
}

void tst_Body::closingEndsTheProgram()
{
    Body body;
    body.show();
    Displays* graphs = body.panel()->displays;
    graphs->show();
    DispABase* muts = graphs->panel(Displays::DispMuts);
    muts->popDock();
    QSignalSpy lastWindow(qApp, &QGuiApplication::lastWindowClosed);
    graphs->close();
    QVERIFY(muts->pop->isVisible());
    graphs->show();
    QVERIFY(lastWindow.isEmpty());
    QTimer::singleShot(0, &body, [&body] { // only a running program has a last window
        body.close();
        QApplication::exit();
    });
    QApplication::exec();
    QVERIFY(!graphs->isVisible());
    QVERIFY(!muts->pop->isVisible());
    QVERIFY(muts->docked);
    QCOMPARE(lastWindow.size(), 1);
}

void tst_Body::closingTakesEveryFileDialogAlong()
{
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    Body body;
    body.show();
    const QList<AFileSelect*> selectors = body.panel()->findChildren<AFileSelect*>();
    QCOMPARE(selectors.size(), 15); // five of spectra, the result, a row each, all rows
    for (AFileSelect* select : selectors) {
        QTest::mouseClick(select->SelectB, Qt::LeftButton);
        QVERIFY(select->dialog()->isVisible());
    }
    QSignalSpy lastWindow(qApp, &QGuiApplication::lastWindowClosed);
    bool endless = false;
    QTimer watchdog;
    connect(&watchdog, &QTimer::timeout, &body, [&endless] {
        endless = true;
        QApplication::exit();
    });
    watchdog.start(10000);
    QTimer::singleShot(0, &body, [&body] { body.close(); });
    QApplication::exec(); // ends by itself, with the last window
    QVERIFY(!endless);
    QCOMPARE(lastWindow.size(), 1);
    for (const QWidget* window : QApplication::topLevelWidgets())
        QVERIFY2(!window->isVisible(), window->metaObject()->className());
    for (AFileSelect* select : selectors)
        QCOMPARE(select->FileName->text(), QString()); // closed with nothing chosen
}

QTEST_MAIN(tst_Body)
#include "tst_Body.moc"
