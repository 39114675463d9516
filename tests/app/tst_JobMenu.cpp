// A job out of the window and into it. That a saved session gives the same results is seen in
// tests/batch/tst_WindowAndBatch.

#include "app/Body.h"
#include "app/FileQuestion.h"
#include "app/JobMenu.h"
#include "examples/MixedSampleFiles.h"
#include "tests/support/CanvasActions.h"
#include "tests/support/Files.h"
#include "tests/support/GraphFiles.h"
#include "tests/support/PanelActions.h"

#include <QContextMenuEvent>
#include <QFileDialog>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QtTest>

#include <memory>

class tst_JobMenu : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    std::unique_ptr<Body> m_body;

    FourPs& panel() const { return *m_body->panel(); }
    JobMenu* menu() const { return panel().findChild<JobMenu*>(); }
    QString file(const char* name) const { return m_dir.filePath(QString::fromLatin1(name)); }
    QString job(const QByteArray& text) const { return create(file("job.toml"), text); }

    void choose(const char* entry, const QString& path) const
    {
        panel().findChild<QAction*>(QString::fromLatin1(entry))->trigger();
        QFileDialog* dialog = panel().fileQuestion().dialog();
        QVERIFY(dialog->isVisible());
        emit dialog->fileSelected(path);
        dialog->close();
    }

    /// All fields and buttons, and what the results say.
    QStringList everything() const
    {
        QStringList texts;
        for (const QLineEdit* field : panel().findChildren<QLineEdit*>())
            texts << field->text();
        for (const QAbstractButton* button : panel().findChildren<QAbstractButton*>())
            texts << QString::number(button->isChecked());
        return texts << panel().filesRead() << panel().resultsAsTable();
    }

    void loadExample() const
    {
        for (const int row : {0, 3})
            panel().ePoints[row]->TRatCB->click();
        panel().RefFile1->setFile(file("ref1.dat"));
        panel().RefFile2->setFile(file("ref2.dat"));
        panel().BlankFile->setFile(file("blank.dat"));
        panel().TargetFile->setFile(file("target.dat"));
    }

private slots:
    void initTestCase()
    {
        QCOMPARE(writeSample(m_dir.path(), MixedSample(), std::nullopt), QString());
        writeMapFile(file("map.dat"), 8390, 4, 3);
    }
    void init()
    {
        m_body = std::make_unique<Body>();
        m_body->show();
        QVERIFY(QTest::qWaitForWindowActive(m_body.get()));
    }
    void cleanup() { m_body.reset(); }

    void savedByTheKeys()
    {
        loadExample();
        user::type(panel().EdgeE, QStringLiteral("8350.50"));
        user::type(panel().ePoints[1]->Energy, QStringLiteral("8381.0"));
        user::click(panel().UseVicCB);
        const int lines = user::messages(panel()).size();
        const QString path = file("saved.toml");
        QTest::keyClick(m_body.get(), Qt::Key_S, Qt::ControlModifier);
        QFileDialog* dialog = panel().fileQuestion().dialog();
        QVERIFY(dialog->isVisible());
        emit dialog->fileSelected(file("saved")); // gets the suffix
        QCOMPARE(user::messagesSince(panel(), lines), QStringList());
        QCOMPARE(m_body->statusBar()->currentMessage(),
                 QStringLiteral("Written: %1 (%2 bytes)").arg(path).arg(QFileInfo(path).size()));
        QCOMPARE(
            contents(path).constData(),
            "# A job for drovik-batch and the window (TOML). Energies are in eV.\n"
            "calculate = [\"target\", \"lcf\"]\n\n"
            "[files]\nref1 = \"ref1.dat\"\nref2 = \"ref2.dat\"\ntarget = \"target.dat\"\n"
            "blank = \"blank.dat\"\n\n"
            "[edge]\nenergy = 8350.50\npre_edge_end = -50\npost_edge_start = 100\n\n"
            "[valences]\nref1 = 2\nref2 = 3\n\n"
            "[conditions]\nthickness = \"victreen\"\nreferences_minus_victreen = false\n"
            "target_minus_victreen = false\nvictreen = \"post\"\nmethod = \"least-squares\"\n\n"
            "[[point]]\nenergy = 8313\nuse = true\nt_ratio = true\nv_point = false\n\n"
            "[[point]]\nenergy = 8381.0\nuse = true\nt_ratio = false\nv_point = false\n\n"
            "[[point]]\nenergy = 8390\nuse = true\nt_ratio = false\nv_point = true\n\n"
            "[[point]]\nenergy = 8404.5\nuse = true\nt_ratio = true\nv_point = false\n\n"
            "[[point]]\nenergy = 8460\nuse = false\nt_ratio = false\nv_point = false\n\n"
            "[[point]]\nenergy = 8475\nuse = false\nt_ratio = false\nv_point = false\n\n"
            "[histogram.valence]\nfrom = 1.5\nto = 3.5\nboxes = 41\n\n"
            "[histogram.thickness]\nfrom = -0.2\nto = 1.2\nboxes = 41\n");
    }

    void whatAJobCannotHoldIsTold()
    {
        loadExample();
        user::type(panel().ePoints[1]->MutT, QStringLiteral("0.25"));
        user::type(panel().ePoints[3]->Energy, QStringLiteral("nan"));
        user::type(panel().HgABoxes, QStringLiteral("40.5"));
        const int lines = user::messages(panel()).size();
        menu()->save(file("lost.toml"));
        QCOMPARE(user::messagesSince(panel(), lines),
                 QStringList(QStringLiteral("A job cannot hold: No. 4, Energy[eV]; Hist G. II/III; "
                                            "No. 2, mut(Target)")));
        QVERIFY(contents(file("lost.toml")).contains("[files]"));
    }

    void draggedEnergyWithoutItsMutIsTold()
    {
        loadExample();
        panel().ePoints[0]->Energy->setText(QStringLiteral("8300")); // as a dragged line does it
        menu()->save(file("dragged.toml"));
        QCOMPARE(user::messages(panel()).last(),
                 QStringLiteral("A job cannot hold: No. 1, mut(Ref.1); No. 1, mut(Ref.2); No. 1, "
                                "mut(Target); No. 1, mut(Blank)"));
    }

    void anEnergyBesideThatOfTheMapIsTold()
    {
        const int lines = user::messages(panel()).size();
        create(file("energy.dat"),
               "# ENERGY of 8391\n# AXIS 0 a b c d 1\n# AXIS 1 a b c d 1\n0 0 1 2\n");
        panel().ePoints[0]->MapFile->setFile(file("energy.dat"));
        menu()->save(file("energy.toml"));
        QCOMPARE(user::messagesSince(panel(), lines), QStringList());
        user::type(panel().ePoints[0]->Energy, QStringLiteral("8392"));
        menu()->save(file("energy.toml"));
        QCOMPARE(user::messagesSince(panel(), lines),
                 QStringList(QStringLiteral("A job cannot hold: No. 1, Energy[eV]")));
    }

    void nothingThatIsShownIsWrittenOver()
    {
        loadExample();
        const QByteArray before = contents(file("ref1.dat"));
        menu()->save(file("ref1.dat"));
        QCOMPARE(user::messages(panel()).last(),
                 QStringLiteral("The file [%1] is one that is shown: choose another name.")
                     .arg(file("ref1.dat")));
        QCOMPARE(contents(file("ref1.dat")), before);
    }

    void openedByTheKeys()
    {
        user::type(panel().Valence1, QStringLiteral("9"));
        const QString path = job("calculate = [\"lcf\"]\n[files]\nref1 = \"ref1.dat\"\n"
                                 "ref2 = \"ref2.dat\"\ntarget = \"target.dat\"\n"
                                 "[edge]\nenergy = 8350.50\n[valences]\nref2 = 3.0\n"
                                 "[[point]]\nenergy = 8313.0\nt_ratio = true\nmap = \"map.dat\"\n"
                                 "[[point]]\nenergy = 8390\nv_point = true\nt_ratio = true\n"
                                 "[conditions]\nthickness = \"mean\"\nmethod = \"exact\"\n"
                                 "[histogram]\nvalence = { from = 1.0, boxes = 11 }\n");
        QTest::keyClick(m_body.get(), Qt::Key_O, Qt::ControlModifier);
        QFileDialog* dialog = panel().fileQuestion().dialog();
        QVERIFY(dialog->isVisible());
        QCOMPARE(dialog->acceptMode(), QFileDialog::AcceptOpen);
        emit dialog->fileSelected(path);
        QCOMPARE(panel().EdgeE->text(), QStringLiteral("8350.50"));
        QCOMPARE(panel().Valence1->text(), QStringLiteral("2")); // as at the start
        QCOMPARE(panel().Valence2->text(), QStringLiteral("3.0"));
        QCOMPARE(panel().ePoints[0]->Energy->text(), QStringLiteral("8313.0"));
        QCOMPARE(panel().ePoints[2]->Energy->text(), QString());
        QVERIFY(!panel().ePoints[2]->UseCB->isChecked());
        QVERIFY(panel().ePoints[1]->VPointCB->isChecked());
        QVERIFY(panel().TRMean->isChecked() && panel().TypeTMKisExact->isChecked());
        QCOMPARE(panel().HgAFrom->text(), QStringLiteral("1.0"));
        QCOMPARE(panel().HgABoxes->text(), QStringLiteral("11"));
        QCOMPARE(panel().filesRead(), QStringList({file("ref1.dat"), file("ref2.dat"),
                                                   file("target.dat"), file("map.dat")}));
        QVERIFY(!panel().ePoints[0]->MutT->text().isEmpty());
        QVERIFY(panel().LCFRes->text().startsWith(QLatin1String("a : (1-a)")));
    }

    void everythingIsCalculatedOnce()
    {
        qRegisterMetaType<FourPs::Result>("FourPs::Result");
        const QSignalSpy calculated(&panel(), &FourPs::calculated);
        menu()->open(job("[files]\nref1 = \"ref1.dat\"\nref2 = \"ref2.dat\"\n"
                         "target = \"target.dat\"\n[conditions]\nthickness = \"mean\"\n"));
        QCOMPARE(calculated.size(), 3); // map, target and fit
    }

    void whatWasShownIsForgotten()
    {
        loadExample();
        panel().ePoints[0]->MapFile->setFile(file("map.dat"));
        menu()->open(job("# nothing\n"));
        QCOMPARE(panel().filesRead(), QStringList());
        QCOMPARE(panel().CalcRes->text(), QString());
        QCOMPARE(panel().LCFRes->text(), QString());
        QCOMPARE(panel().ePoints[0]->Mut1->text(), QString());
        QCOMPARE(panel().lastMap().size(), std::size_t(0));
        const QStringList values = panel().resultsAsTable().split(QLatin1Char('\n'));
        QCOMPARE(values[1], QString(values[0].count(QLatin1Char('\t')), QLatin1Char('\t')));
    }

    void whatTheWindowDoesNotShowIsToldInOneLine()
    {
        create(file("columns.txt"), "8300 0.1\n8400 0.2\n8500 0.3\n");
        menu()->open(
            job("[files]\nref1 = { file = \"columns.txt\", columns = { energy = 1, mut = 2 } }\n"
                "targets = [\"ref*.dat\"]\n[noise]\ngain = 2\n[rank]\ncounts = 1e8\n"
                "[[point]]\nenergy = 8390\nv_point = true\n"
                "[[target]]\nname = \"a\"\nstack = \"scan.h5\"\n"
                "[[map]]\nname = \"a\"\nimages = [\"map.dat\"]\n"
                "[output]\nfolder = \"results\"\n"));
        QCOMPARE(user::messages(panel()).last(),
                 QStringLiteral("The window does not show of the job: targets; ref1; [rank]; "
                                "[noise]; [[target]]; [[map]]; [output]"));
        QCOMPARE(user::messages(panel()).filter(QStringLiteral("of the job")).size(), 1);
        QCOMPARE(panel().filesRead(), QStringList());
    }

    void theOnlyTargetOfManyIsShown()
    {
        menu()->open(job("[files]\ntarget = \"target.dat\"\n[output]\nfolder = \"results\"\n"));
        QCOMPARE(panel().TargetFile->path(), file("target.dat"));
        QCOMPARE(user::messages(panel()).last(),
                 QStringLiteral("The window does not show of the job: [output]"));
    }

    void aBadJobChangesNothing_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("reason");
        const auto row = [](const char* name, const QByteArray& text, const QString& reason) {
            QTest::newRow(name) << text << reason;
        };
        row("misspelt key", "[edge]\nenergie = 1\n",
            QStringLiteral("2:1: edge.energie: unknown key, did you mean energy; known are: "
                           "energy, pre_edge_end, post_edge_start"));
        row("words", "[edge]\nenergy = \"high\"\n",
            QStringLiteral("2:10: edge.energy: must be a finite number"));
        row("no spectrum file", "[edge]\nenergy = 1\n[files]\nref2 = \"nowhere.dat\"\n",
            QStringLiteral("4:8: files.ref2: cannot open %1: there is no such file")
                .arg(file("nowhere.dat")));
        row("no spectrum in it", "[files]\nblank = \"empty.dat\"\n",
            QStringLiteral("2:9: files.blank: no spectrum in %1").arg(file("empty.dat")));
        row("no map file",
            "[files]\nref1 = \"ref1.dat\"\n[[point]]\nenergy = 1\nv_point = true\n"
            "map = \"nowhere.dat\"\n",
            QStringLiteral("6:7: point.map: cannot open %1: there is no such file")
                .arg(file("nowhere.dat")));
        row("no map in it", "[[point]]\nenergy = 1\nv_point = true\nmap = \"ref1.dat\"\n",
            QStringLiteral("4:7: point.map: no 2D data with axes in %1").arg(file("ref1.dat")));
    }
    void aBadJobChangesNothing()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, reason);
        create(file("empty.dat"), "");
        loadExample();
        const QStringList before = everything();
        const int lines = user::messages(panel()).size();
        choose("OpenJob", job(text));
        QCOMPARE(user::messagesSince(panel(), lines),
                 QStringList(file("job.toml") + QLatin1Char(':') + reason));
        QCOMPARE(everything(), before);
    }

    void aMissingJobIsRefused()
    {
        const int lines = user::messages(panel()).size();
        menu()->open(file("none.toml"));
        QCOMPARE(user::messagesSince(panel(), lines),
                 QStringList(file("none.toml") +
                             QStringLiteral(": cannot be opened: there is no such file")));
    }

    void aJobThatWasHandedOverIsOpened()
    {
        const QString path = job("[edge]\nenergy = 7120\n");
        qputenv("DROVIK_SHOW_JOB", QFile::encodeName(path));
        m_body->openGivenJob();
        QCOMPARE(panel().EdgeE->text(), QStringLiteral("7120"));
        QVERIFY(!qEnvironmentVariableIsSet("DROVIK_SHOW_JOB"));
        user::type(panel().EdgeE, QStringLiteral("7000"));
        m_body->openGivenJob(); // once
        QCOMPARE(panel().EdgeE->text(), QStringLiteral("7000"));
    }

    void aJobIsDroppedOnFreeSpace()
    {
        const QString path = job("[edge]\nenergy = 7120\n");
        user::drop(&panel(), path);
        QCOMPARE(panel().EdgeE->text(), QStringLiteral("7120"));
        // Everything else is no business of free space.
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(file("ref1.dat"))});
        QVERIFY(!user::dropData(&panel(), data));
        QVERIFY(!user::dropData(&panel(), QMimeData()));
        // A selector takes whatever is dropped on it, as a spectrum.
        user::drop(panel().RefFile1, path);
        QCOMPARE(panel().RefFile1->FileName->text(), path);
    }

    void theMenuIsThatOfFreeSpace()
    {
        const auto menuAt = [](QWidget* widget, const QPoint& at) {
            QContextMenuEvent event(QContextMenuEvent::Mouse, at, widget->mapToGlobal(at));
            QApplication::sendEvent(widget, &event);
            QWidget* popup = QApplication::activePopupWidget();
            const QString name = popup ? popup->objectName() : QString();
            if (popup)
                popup->close();
            return name;
        };
        QCOMPARE(menuAt(panel().SpectraHeading, QPoint(3, 3)), QStringLiteral("JobMenu"));
        QCOMPARE(menuAt(panel().findChild<QWidget*>(QStringLiteral("PanelContents")), QPoint(1, 1)),
                 QStringLiteral("JobMenu"));
        QCOMPARE(menuAt(panel().RefFile1->SelectB, QPoint(3, 3)), QString());
        QCOMPARE(menuAt(panel().ePoints[0]->UseCB, QPoint(3, 3)), QString());
    }

    void theGuideOpensInAWindow()
    {
        QDir(m_dir.path()).mkpath(QStringLiteral("bin"));
        QDir(m_dir.path()).mkpath(QStringLiteral("share/drovik/guide/ja"));
        create(file("share/drovik/guide/ja/index.html"),
               "<h1>one</h1><a href='other.html#there'>x</a>");
        create(file("share/drovik/guide/ja/other.html"), "<h2 id='there'>two</h2>");
        panel().showGuide(file("bin"));
        const auto windows = QApplication::topLevelWidgets();
        const auto found = std::find_if(windows.begin(), windows.end(), [](QWidget* window) {
            return window->objectName() == QLatin1String("GuideWindow");
        });
        QVERIFY(found != windows.end());
        auto* guide = qobject_cast<QTextBrowser*>(*found);
        QVERIFY(guide->isVisible());
        QVERIFY(!guide->accessibleName().isEmpty());
        QCOMPARE(guide->toPlainText(), QStringLiteral("one\nx"));
        guide->setSource(guide->source().resolved(QUrl(QStringLiteral("other.html#there"))));
        QCOMPARE(guide->toPlainText(), QStringLiteral("two"));
        m_body->close();
        QVERIFY(!guide->isVisible());
    }

    void theMissingGuideIsTold()
    {
        const int lines = user::messages(panel()).size();
        QTest::keyClick(m_body.get(), Qt::Key_F1); // no guide beside the test
        QCOMPARE(m_body->statusBar()->currentMessage(),
                 QStringLiteral("The guide is not installed."));
        QCOMPARE(user::messages(panel()).size(), lines);
    }

    void entriesHaveMnemonics()
    {
        QSet<QChar> mnemonics;
        QStringList names;
        for (const QAction* action : menu()->actions()) {
            if (action->isSeparator())
                continue;
            names << action->objectName();
            const QString text = action->text();
            mnemonics << text.at(text.indexOf(QLatin1Char('&')) + 1).toLower();
        }
        QCOMPARE(names, QStringList({QStringLiteral("SaveJob"), QStringLiteral("OpenJob"),
                                     QStringLiteral("ShowGuide")}));
        QCOMPARE(mnemonics.size(), names.size());
        QCOMPARE(menu()->accessibleName(), QStringLiteral("Job"));
    }
};

QTEST_MAIN(tst_JobMenu)
#include "tst_JobMenu.moc"
