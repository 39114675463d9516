#include "input/AEPoint.h"
#include "input/AXafsFileSelect.h"
#include "tests/monkey/Monkey.h"
#include "tests/support/PanelActions.h"
#include "tests/support/ToolkitWarnings.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

/// Random events on all windows, in rounds with new windows each. DROVIK_MONKEY_ROUNDS sets how
/// many (one where it is not set), DROVIK_SEED the seed of the first. Beside crashes, and what the
/// sanitizers and valgrind report, it looks for complaints of the toolkit, fields that no longer
/// answer, and results that a fresh panel with the same settings does not have.
class tst_Monkey : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void survives_data();
    void survives();
    void cleanupTestCase() { QVERIFY(QDir::setCurrent(m_before)); }

private:
    void everyControlAnswers(const FourPs& panel);
    static void typeSample(const FourPs& panel, const RandomFiles& files);

    QTemporaryDir m_folder;
    QString m_before = QDir::currentPath();
};

void tst_Monkey::initTestCase()
{
    QVERIFY(m_folder.isValid());
    QVERIFY(QDir(m_folder.path()).mkpath(QStringLiteral("out")));
    QVERIFY(QDir(m_folder.path()).mkpath(QStringLiteral("whole")));
    // What is written without a folder stays here, and so does what file dialogs remember.
    QVERIFY(QDir::setCurrent(m_folder.filePath(QStringLiteral("out"))));
    qputenv("XDG_CONFIG_HOME", m_folder.path().toLocal8Bit());
}

void tst_Monkey::survives_data()
{
    QTest::addColumn<quint32>("seed");
    bool set = false;
    int rounds = qEnvironmentVariableIntValue("DROVIK_MONKEY_ROUNDS", &set);
    if (!set)
        rounds = 1;
    for (int i = 0; i < rounds; ++i) {
        const auto seed = static_cast<quint32>(qEnvironmentVariableIntValue("DROVIK_SEED") + i);
        QTest::newRow(qPrintable(QString::number(seed))) << seed;
    }
}

void tst_Monkey::survives()
{
    QFETCH(quint32, seed);
    const ToolkitWarnings warnings;
    const QDir out(m_folder.filePath(QStringLiteral("out")));
    QFile::remove(out.filePath(QStringLiteral("result.dat")));
    Monkey monkey(seed, m_folder.path());
    bool set = false;
    int events = qEnvironmentVariableIntValue("DROVIK_MONKEY_EVENTS", &set);
    if (!set)
        events = 2000;
    for (int i = 0; i < events; ++i)
        monkey.act();
    monkey.calmDown();
    QVERIFY(monkey.dialogsAnswered() > 0);
    QVERIFY(out.exists(QStringLiteral("result.dat")));

    // Whatever has become of the settings, then everything typed anew.
    QCOMPARE(TwinPanel(monkey.panel(), monkey.maps()).difference(out.path()), QString());
    everyControlAnswers(monkey.panel());
    typeSample(monkey.panel(),
               RandomFiles(seed, m_folder.filePath(QStringLiteral("whole")), false));
    TwinPanel twin(monkey.panel(), monkey.maps());
    QCOMPARE(twin.difference(out.path()), QString());
    QVERIFY(twin.calculated());
    QCOMPARE(warnings.all(), QString());
}

void tst_Monkey::everyControlAnswers(const FourPs& panel)
{
    const QString file = m_folder.filePath(QStringLiteral("ref1.dat"));
    for (AFileSelect* select : panel.findChildren<AFileSelect*>()) {
        user::drop(select, file);
        QCOMPARE(select->FileName->text(), file);
    }
    for (QLineEdit* field : controlsOf<QLineEdit>(panel)) {
        if (field->isReadOnly())
            continue;
        user::type(field, QStringLiteral("2.5"));
        QCOMPARE(field->text(), QStringLiteral("2.5"));
    }
    for (QAbstractButton* button : controlsOf<QAbstractButton>(panel)) {
        if (!button->isCheckable())
            continue;
        const bool expected = button->autoExclusive() || button->group() || !button->isChecked();
        button->click();
        QVERIFY2(button->isChecked() == expected, qPrintable(button->objectName()));
    }
}

void tst_Monkey::typeSample(const FourPs& panel, const RandomFiles& files)
{
    const char* const energies[] = {"8250", "8300", "8350", "8420", "8450", "8460", "8470", "8480"};
    const std::pair<QLineEdit*, const char*> texts[] = {
        {panel.EdgeE, "8345"}, {panel.PreEEndDE, "-30"}, {panel.PostEStartDE, "40"},
        {panel.Valence1, "2"}, {panel.Valence2, "3"},    {panel.HgAFrom, "1"},
        {panel.HgATo, "4"},    {panel.HgABoxes, "41"},   {panel.HgTFrom, "0"},
        {panel.HgTTo, "2"},    {panel.HgTBoxes, "41"}};
    for (const auto& [field, text] : texts)
        user::type(field, QLatin1String(text));
    for (int i = 0; i < 4; ++i)
        user::drop(panel.xafsSelects[i], files.spectra[i]);
    for (int row = 0; row < panel.ePoints.size(); ++row) {
        AEPoint* point = panel.ePoints[row];
        user::drop(point->MapFile, files.images[row]);
        user::type(point->Energy, QLatin1String(energies[row]));
        point->UseCB->setChecked(row < 4);
        point->TRatCB->setChecked(row < 4 && row != 2);
    }
    panel.ePoints[2]->VPointCB->click();
    panel.TRSbyS->click();
    panel.TypeTMKisLS->click();
}

QTEST_MAIN(tst_Monkey)
#include "tst_Monkey.moc"
