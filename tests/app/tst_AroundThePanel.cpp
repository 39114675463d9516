// What lies around the panel: the menu of the results, the words in the status bar, the place of
// the graph window, the way of the Tab key.

#include "app/Body.h"
#include "display/ScreenRoom.h"
#include "examples/MixedSampleFiles.h"
#include "tests/support/CanvasActions.h"
#include "tests/support/Files.h"
#include "tests/support/GraphFiles.h"
#include "tests/support/PanelActions.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QScreen>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

class tst_AroundThePanel : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    std::unique_ptr<Body> m_body;

    FourPs& panel() const { return *m_body->panel(); }
    QString file(Measurement measurement) const { return m_dir.filePath(fileName(measurement)); }

    void loadExample()
    {
        for (const int row : {0, 3})
            panel().ePoints[row]->TRatCB->click();
        panel().RefFile1->setFile(file(Measurement::Ref1));
        panel().RefFile2->setFile(file(Measurement::Ref2));
        panel().TargetFile->setFile(file(Measurement::Target));
    }

    /// What stays in the status bar; empty where it is hidden.
    QString hint() const
    {
        const auto* label = m_body->findChild<QLabel*>(QStringLiteral("StatusHint"));
        return label->isVisibleTo(m_body->statusBar()) ? label->text() : QString();
    }
    /// What is said there for some time.
    QString note() const { return m_body->statusBar()->currentMessage(); }

private slots:
    void initTestCase()
    {
        QCOMPARE(writeSample(m_dir.path(), MixedSample(), std::nullopt), QString());
    }
    void init()
    {
        m_body = std::make_unique<Body>();
        m_body->show();
    }
    void cleanup() { m_body.reset(); }

    void resultsAreCopied()
    {
        loadExample();
        panel().findChild<QAction*>(QStringLiteral("CopyResults"))->trigger();
        const QStringList lines =
            QApplication::clipboard()->text().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 2);
        const QStringList names = lines[0].split(QLatin1Char('\t'));
        const QStringList values = lines[1].split(QLatin1Char('\t'));
        QCOMPARE(names.size(), values.size());
        const auto value = [&](const char* name) {
            return values.value(names.indexOf(QString::fromLatin1(name)));
        };
        QCOMPARE(value("Target"), fileName(Measurement::Target));
        QCOMPARE(value("Ref 1"), fileName(Measurement::Ref1));
        QCOMPARE(value("Ref 2"), fileName(Measurement::Ref2));
        QCOMPARE(value("Blank"), QString());
        // The fields and the line show the same figures.
        QCOMPARE(QStringLiteral("4ps2: a = %1, Valence = %2, t/ts = %3")
                     .arg(value("a"), value("Valence"), value("t/ts")),
                 panel().CalcRes->text());
        QCOMPARE(QStringLiteral("sbys = %1, mean = %2, lsA = %3, lsB = %4, lsA(NB) = %5, "
                                "lsB(NB) = %6, Vic2 = %7")
                     .arg(value("sbys"), value("mean"), value("lsA"), value("lsB"),
                          value("lsA(NB)"), value("lsB(NB)"), value("Vic2")),
                 user::messages(panel()).filter(QStringLiteral("sbys")).last());
        QVERIFY(panel().LCFRes->text().startsWith(
            QStringLiteral("a : (1-a) = %1 : ").arg(value("LCF a"))));
        QVERIFY(panel().LCFRes->text().endsWith(
            QStringLiteral("Valence = %1").arg(value("LCF Valence"))));
        QCOMPARE(QStringLiteral("Result of LCF : %1 %2 %3")
                     .arg(value("LCF p1"), value("LCF p2"), value("LCF p3")),
                 user::messages(panel()).last());
    }

    void withoutResultsTheNamesAreCopied()
    {
        const QStringList lines = panel().resultsAsTable().split(QLatin1Char('\n'));
        QCOMPARE(lines.size(), 3);
        QVERIFY(
            lines[0].startsWith(QLatin1String("Target\tRef 1\tRef 2\tBlank\ta\tValence\tt/ts\t")));
        QCOMPARE(lines[1], QString(lines[0].count(QLatin1Char('\t')), QLatin1Char('\t')));
    }

    void threePointsHaveNoThickness()
    {
        loadExample();
        panel().ePoints[3]->UseCB->click();
        QVERIFY(panel().CalcRes->text().startsWith(QLatin1String("3ps: ")));
        const QStringList lines = panel().resultsAsTable().split(QLatin1Char('\n'));
        const int place = lines[0].split(QLatin1Char('\t')).indexOf(QStringLiteral("t/ts"));
        QCOMPARE(lines[1].split(QLatin1Char('\t'))[place], QString());
    }

    void menuOfResultsKeepsTheToolkits_data()
    {
        QTest::addColumn<QString>("name");
        for (const char* name : {"CalcRes", "LCFRes", "Message"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }
    void menuOfResultsKeepsTheToolkits()
    {
        QFETCH(QString, name);
        auto* widget = panel().findChild<QWidget*>(name);
        QWidget* target = name == QLatin1String("Message") ? panel().Message->viewport() : widget;
        const QPoint at(3, 3);
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, target->mapToGlobal(at));
        QApplication::sendEvent(target, &event);
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        QVERIFY(menu);
        const QList<QAction*> actions = menu->actions();
        QCOMPARE(actions.last()->objectName(), QStringLiteral("CopyResults"));
        QVERIFY(actions.last()->text().contains(QLatin1Char('&')));
        std::unique_ptr<QMenu> standard(
            name == QLatin1String("Message")
                ? panel().Message->createStandardContextMenu()
                : qobject_cast<QLineEdit*>(widget)->createStandardContextMenu());
        QVERIFY(actions.size() > 2);
        QCOMPARE(actions.size(), standard->actions().size() + 2); // a line and the entry
        for (int i = 0; i < standard->actions().size(); ++i)
            QCOMPARE(actions[i]->text(), standard->actions()[i]->text());
        menu->close();
    }

    void nothingIsSaidOfFreshResults()
    {
        QCOMPARE(hint(), QString());
        loadExample();
        QVERIFY(!panel().CalcRes->text().isEmpty());
        QCOMPARE(hint(), QString());
    }

    void nothingIsSaidWithoutResults()
    {
        user::type(panel().EdgeE, QStringLiteral("8351"));
        user::type(panel().Valence1, QStringLiteral("1"));
        QCOMPARE(hint(), QString());
    }

    void typedValenceIsNotUsedYet()
    {
        loadExample();
        const int lines = user::messages(panel()).size();
        user::type(panel().Valence2, QStringLiteral("4"));
        QCOMPARE(hint(),
                 QStringLiteral("Not used yet: Ref 2, Valence. Press [Target, Calc.] [LCF]."));
        QCOMPARE(user::messages(panel()).size(), lines);
        user::click(panel().CalcTargetB);
        QCOMPARE(hint(), QStringLiteral("Not used yet: Ref 2, Valence. Press [LCF]."));
        user::click(panel().LCFB);
        QCOMPARE(hint(), QString());
    }

    void typingItBackIsUse()
    {
        loadExample();
        user::type(panel().Valence2, QStringLiteral("4"));
        user::type(panel().Valence2, QStringLiteral("3"));
        QCOMPARE(hint(), QString());
    }

    void typedEnergyIsNotUsedYet()
    {
        loadExample();
        user::type(panel().ePoints[1]->Energy, QStringLiteral("8385"));
        QCOMPARE(hint(), QStringLiteral("Not used yet: No. 2, Energy[eV], …. Press "
                                        "[Target, Calc.] [LCF]."));
        panel().calcBoth();
        QCOMPARE(hint(), QString());
    }

    void draggedEnergyNeedsItsField()
    {
        loadExample();
        QLineEdit* energy = panel().ePoints[1]->Energy;
        energy->setText(QStringLiteral("8385")); // as a dragged line does it
        panel().calcBoth();                      // as its release does
        QCOMPARE(hint(), QStringLiteral("No. 2: mut of the energy before. Press Enter in its "
                                        "energy field."));
        energy->setFocus();
        QTest::keyClick(energy, Qt::Key_Return);
        QCOMPARE(hint(), QStringLiteral("Not used yet: No. 2, mut(Ref.1), …. Press "
                                        "[Target, Calc.] [LCF]."));
    }

    void rowsThatAreNotInUseDoNotCount()
    {
        loadExample();
        panel().ePoints[4]->Energy->setText(QStringLiteral("8461"));
        panel().calcBoth();
        QCOMPARE(hint(), QString());
        panel().ePoints[4]->UseCB->click();
        QCOMPARE(hint(), QStringLiteral("No. 5: mut of the energy before. Press Enter in its "
                                        "energy field."));
    }

    void typedEdgeNeedsTheLinesAgain()
    {
        loadExample();
        user::type(panel().EdgeE, QStringLiteral("8351"));
        QCOMPARE(hint(), QStringLiteral("mut of the Victreen lines before. Click Use Vic off and "
                                        "on again."));
        user::click(panel().UseVicCB);
        QCOMPARE(hint(), QString()); // without a line the edge does not count
        user::click(panel().UseVicCB);
        QCOMPARE(hint(), QString());
    }

    void typedMutIsMeant()
    {
        loadExample();
        QLineEdit* mut = panel().ePoints[0]->Mut1;
        panel().ePoints[0]->Energy->setText(QStringLiteral("8314"));
        for (QLineEdit* field : {mut, panel().ePoints[0]->Mut2, panel().ePoints[0]->MutT})
            user::type(field, QStringLiteral("0.25"));
        QCOMPARE(hint(), QStringLiteral("Not used yet: No. 1, Energy[eV], …. Press "
                                        "[Target, Calc.] [LCF]."));
    }

    void mapIsOfBeforeToo()
    {
        for (int row = 0; row < 4; ++row) {
            const QString path = m_dir.filePath(QStringLiteral("m%1.dat").arg(row));
            writeMapFile(path, panel().ePoints[row]->energy(), 4, 3);
            panel().ePoints[row]->MapFile->setFile(path);
        }
        loadExample();
        QVERIFY(panel().lastMap().size() == 12);
        user::type(panel().Valence1, QStringLiteral("1"));
        QCOMPARE(hint(), QStringLiteral("Not used yet: Ref 1, Valence. Press [2D Data, Calc.] "
                                        "[Target, Calc.] [LCF]."));
        user::click(panel().CalcMapB);
        QCOMPARE(hint(),
                 QStringLiteral("Not used yet: Ref 1, Valence. Press [Target, Calc.] [LCF]."));
    }

    void wordsNeverWidenTheWindow()
    {
        loadExample();
        QApplication::processEvents();
        const QSize before = m_body->minimumSizeHint();
        const QSize size = m_body->size();
        user::type(panel().ePoints[1]->Energy, QStringLiteral("8385"));
        QApplication::processEvents();
        QVERIFY(!hint().isEmpty());
        QCOMPARE(m_body->minimumSizeHint(), before);
        QCOMPARE(m_body->size(), size);
    }

    void unreadFileIsTold_data()
    {
        QTest::addColumn<QString>("selector");
        for (const char* name : {"RefFile1", "TargetFile", "BlankFile", "MapFile"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }
    void unreadFileIsTold()
    {
        QFETCH(QString, selector);
        auto* select = selector == QLatin1String("MapFile")
                           ? panel().ePoints[0]->MapFile
                           : panel().findChild<AFileSelect*>(selector);
        user::drop(select, m_dir.filePath(QStringLiteral("not  there.dat")));
        QCOMPARE(note(), QStringLiteral("Nothing could be read from not there.dat."));
        m_body->statusBar()->clearMessage();
        create(m_dir.filePath(QStringLiteral("words.dat")), "only words\n");
        user::drop(select, m_dir.filePath(QStringLiteral("words.dat")));
        QCOMPARE(note(), QStringLiteral("Nothing could be read from words.dat."));
        m_body->statusBar()->clearMessage();
        user::click(select->ClearB);
        QCOMPARE(note(), QString());
    }

    void unreadDisplayFileIsTold()
    {
        panel().receiveNewDispFiles({file(Measurement::Ref1), QStringLiteral("/nowhere/x.dat")});
        QCOMPARE(note(), QStringLiteral("Nothing could be read from x.dat."));
        QCOMPARE(panel().SelectedFs->count(), 1);
    }

    void writtenFilesAreTold()
    {
        const QString result = m_dir.filePath(QStringLiteral("out.dat"));
        const QString histogram = m_dir.filePath(QStringLiteral("out_HGAlpha.dat"));
        create(histogram, "");
        panel().SaveFSelect->setFile(result);
        panel().write(); // of no map: nothing but the header, of which there is none
        QCOMPARE(note(), QStringLiteral("Written: %1 (0 bytes), %2 (%3 bytes)")
                             .arg(result, histogram)
                             .arg(QFileInfo(histogram).size()));
    }

    void graphsOpenBesideTheWindow_data()
    {
        QTest::addColumn<QRect>("first");
        QTest::addColumn<QRect>("screen");
        QTest::addColumn<QRect>("place");
        const QRect full(0, 0, 1920, 1080);
        // Wants 1240 x 750, takes 478 x 370; four pixels more for the frame, and 30 in height.
        QTest::newRow("room at the right")
            << QRect(0, 0, 600, 500) << full << QRect(600, 0, 1240, 750);
        QTest::newRow("less than wanted")
            << QRect(0, 100, 939, 595) << full << QRect(939, 100, 977, 750);
        QTest::newRow("more room at the left")
            << QRect(980, 100, 940, 595) << full << QRect(3, 100, 976, 750);
        QTest::newRow("low") << QRect(0, 900, 600, 500) << full << QRect(600, 300, 1240, 750);
        QTest::newRow("small screen")
            << QRect(0, 0, 939, 595) << QRect(0, 0, 1366, 768) << QRect(884, 0, 478, 738);
        QTest::newRow("second screen")
            << QRect(1920, 20, 939, 595) << QRect(1920, 20, 1366, 748) << QRect(2804, 20, 478, 718);
        QTest::newRow("smaller than both")
            << QRect(0, 0, 800, 600) << QRect(0, 0, 400, 300) << QRect(0, 0, 478, 370);
    }
    void graphsOpenBesideTheWindow()
    {
        QFETCH(QRect, first);
        QFETCH(QRect, screen);
        QTEST(placeBeside(first, screen, QSize(1240, 750), QSize(478, 370)), "place");
    }

    void graphsAreReachedWithTheWindow()
    {
        QApplication::processEvents();
        panel().ShowDAB->click();
        const QRect window = m_body->frameGeometry();
        const QRect graphs = panel().displays->frameGeometry();
        const QRect screen = m_body->screen()->availableGeometry();
        QVERIFY(graphs != screen);
        QVERIFY(!window.contains(graphs));
        QVERIFY(!graphs.contains(window));
        // Afterwards they are where the user puts them.
        panel().displays->setGeometry(30, 40, 700, 500);
        panel().displays->close();
        panel().ShowDAB->click();
        QCOMPARE(panel().displays->geometry(), QRect(30, 40, 700, 500));
    }

    void tabEntersTheMarkedPoint()
    {
        QVERIFY(QTest::qWaitForWindowActive(m_body.get()));
        for (const int marked : {2, 5, 0}) { // at first the third row is
            panel().ePoints[marked]->VPointCB->setChecked(true);
            panel().ePoints[0]->UseCB->setFocus();
            QVector<int> entered;
            while (QApplication::focusWidget() != panel().CalcTargetB) {
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
                for (int row = 0; row < 8; ++row)
                    if (QApplication::focusWidget() == panel().ePoints[row]->VPointCB)
                        entered << row;
            }
            QCOMPARE(entered, QVector<int>{marked});
        }
    }

    void arrowsStillGoFromPointToPoint()
    {
        QVERIFY(QTest::qWaitForWindowActive(m_body.get()));
        panel().ePoints[2]->VPointCB->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
        QVERIFY(panel().ePoints[3]->VPointCB->isChecked());
        QCOMPARE(QApplication::focusWidget(), panel().ePoints[3]->VPointCB);
    }
};

QTEST_MAIN(tst_AroundThePanel)
#include "tst_AroundThePanel.moc"
