#include "display/DispABase.h"
#include "tests/support/CanvasActions.h"
#include "tests/support/PanelActions.h"
#include "text/NumberText.h"

#include <QButtonGroup>
#include <QFile>
#include <QFileDialog>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <functional>

namespace
{

using Curve = std::function<double(double)>;

/// mu-t of two valence states: flat lines below and above the edge, alike but for a bump at 8390.
Curve state(double scale, double bump)
{
    return [=](double e) {
        const double step = e < 8350 ? 0.0 : e < 8360 ? (e - 8350) / 10 : 1.0;
        const double x = (e - 8390) / 2;
        return scale * (0.2 + step + bump * std::exp(-x * x));
    };
}

/// Writes a spectrum in the beamline's format, 1 eV a step from 8200 to 8700 eV.
QString writeSpectrum(const QString& path, const Curve& mut)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return {};
    QByteArray text = "  made\n Mono : D= 3.1355316 A\n Offset 0 0\n";
    for (int e = 8200; e <= 8700; ++e) {
        const double sine = 12.398424360387684 * 1000 / (2 * 3.1355316 * e);
        const double angle = std::asin(sine) * 180.0 / 3.1415926535;
        text += "0 " + QByteArray::number(angle, 'g', 17) + " 1 1000000 " +
                QByteArray::number(1000000 * std::exp(-mut(e)), 'g', 17) + '\n';
    }
    file.write(text);
    return path;
}

const QString targetMissing = QStringLiteral("Target File1 is not valid.");
const QString ref1Missing = QStringLiteral("Ref File1 is not valid.");
const QString ref2Missing = QStringLiteral("Ref File2 is not valid.");
const QString mapVPoint = QStringLiteral("V Point is not selected");
const QString targetVPoint = QStringLiteral("V Point is not selected.");
const QString lcfRange =
    QStringLiteral("Energy Range is not selected, which should by selected by CB of TR.");

} // namespace

class tst_FourPs : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString m_ref1;
    QString m_ref2;
    QString m_target;
    QString m_blank;
    std::unique_ptr<FourPs> m_panel;

    int lines() const { return user::messages(*m_panel).size(); }
    QStringList since(int count) const { return user::messagesSince(*m_panel, count); }
    void loadAll()
    {
        user::drop(m_panel->RefFile1, m_ref1);
        user::drop(m_panel->RefFile2, m_ref2);
        user::drop(m_panel->TargetFile, m_target);
    }

private slots:
    void initTestCase()
    {
        m_ref1 = writeSpectrum(m_dir.filePath(QStringLiteral("ref1.dat")), state(1.0, 0.5));
        m_ref2 = writeSpectrum(m_dir.filePath(QStringLiteral("ref2.dat")), state(1.5, 0.1));
        const Curve target = [](double e) {
            return 0.25 * state(1.0, 0.5)(e) + 0.75 * state(1.0, 0.1)(e);
        };
        m_target = writeSpectrum(m_dir.filePath(QStringLiteral("target.dat")), target);
        m_blank = writeSpectrum(m_dir.filePath(QStringLiteral("blank.dat")),
                                [](double) { return 0.125; });
    }
    void init()
    {
        m_panel = std::make_unique<FourPs>();
        m_panel->show();
    }
    void cleanup() { m_panel.reset(); }

    void startsWithNineRefusals();
    void startsWithTheFormsDefaults();
    void vPointsAreOneGroup();
    void autoButtonsAreIndependent();
    void newSpectrumFillsItsColumn();
    void emptyEnergyHasNoMut();
    void energyTypedFillsTheRow();
    void edgeTypedRefitsWithoutColumns();
    void edgeMovesBothBounds();
    void displayFilesAreListed();
    void thicknessButtonAlwaysRecalculates();
    void eventsThatDoNotRecalculate();
    void checkBoxesRecalculate();
    void useVicSubtractsFromReferences();
    void useVicForTargetSubtractsFromTarget();
    void vicSideChangesAllColumnsButBlank();
    void vicSideRefreshesATypedBlank();
    void refusalsInOrder();
    void rowCountRefusal_data();
    void rowCountRefusal();
    void refusalKeepsEarlierResult();
    void threePointResult();
    void fourPointResults();
    void clearKeepsTheSpectrumAndRecalculates();
    void unreadableFileKeepsTheSpectrum();
    void emptyFileInvalidates();
    void displayFilesUnreadableAreSkipped();
    void displayFilesAtOnceAreAsOneByOne();
    void displayFileMakesTheTypedEdgeHold();
    void removeWithoutFiles();
    void removeChosenFile();
    void mapFilesGoToTheirRows();
    void directoryIsSharedButNotWithSave();
    void directoryOfDisplayFilesIsShared();
    void messageIsOneSimplifiedLine();
    void messageNeverLandsInASelection();
    void messagePaneFollows();
    void conditionsShowAndHide();
    void lcfWithoutFilesReportsNan();
    void lcfFindsTheFraction();
    void fitStandsAtItsOwnAxis();
    void onlyADoubleClickForgetsTheFits();
    void numbersIgnoreTheLocale();
    void graphWindowShows();
    void goesWithTheKeyboardInAField();
    void dialogsStartInTheCurrentFolder();
    void resultFileTakesAnyName();
    void vic2IsTheRatioOfTheEdgeJumps();
};

void tst_FourPs::startsWithNineRefusals()
{
    const QStringList once = {mapVPoint, ref1Missing, lcfRange};
    QCOMPARE(user::messages(*m_panel), once + once + once);
}

void tst_FourPs::startsWithTheFormsDefaults()
{
    QCOMPARE(m_panel->Valence1->text(), QStringLiteral("2"));
    QCOMPARE(m_panel->Valence2->text(), QStringLiteral("3"));
    QCOMPARE(m_panel->EdgeE->text(), QStringLiteral("8350"));
    QCOMPARE(m_panel->PreEEndDE->text(), QStringLiteral("-50"));
    QCOMPARE(m_panel->PostEStartDE->text(), QStringLiteral("100"));
    const char* energies[] = {"8313", "8381", "8390", "8404.5", "8460", "8475", "", ""};
    for (int i = 0; i < 8; ++i) {
        const AEPoint* point = m_panel->ePoints[i];
        QCOMPARE(point->Energy->text(), QLatin1String(energies[i]));
        QCOMPARE(point->UseCB->isChecked(), i < 4);
        QCOMPARE(point->TRatCB->isChecked(), false);
        QCOMPARE(point->VPointCB->isChecked(), i == 2);
    }
    QVERIFY(m_panel->TRVic2->isChecked());
    QVERIFY(m_panel->UseVicCB->isChecked());
    QVERIFY(!m_panel->UseVicForTargetCB->isChecked());
    QVERIFY(m_panel->TheVicIs2->isChecked());
    QVERIFY(m_panel->TypeTMKisLS->isChecked());
    QVERIFY(m_panel->NBy2Vics->isChecked());
    QCOMPARE(m_panel->TRVic2->text(), QStringLiteral("Victreen"));
    QVERIFY(!m_panel->CConds->isVisible());
}

void tst_FourPs::vPointsAreOneGroup()
{
    user::click(m_panel->ePoints[6]->VPointCB);
    for (int i = 0; i < 8; ++i)
        QCOMPARE(m_panel->ePoints[i]->VPointCB->isChecked(), i == 6);
    // Other groups are left alone.
    QVERIFY(m_panel->TRVic2->isChecked());
    QVERIFY(m_panel->TheVicIs2->isChecked());
}

void tst_FourPs::autoButtonsAreIndependent()
{
    user::click(m_panel->HgAAuto);
    user::click(m_panel->HgTAuto);
    QVERIFY(m_panel->HgAAuto->isChecked());
    QVERIFY(m_panel->HgTAuto->isChecked());
    user::click(m_panel->HgAAuto);
    QVERIFY(!m_panel->HgAAuto->isChecked());
    QVERIFY(m_panel->HgTAuto->isChecked());
}

void tst_FourPs::newSpectrumFillsItsColumn()
{
    const int before = lines();
    user::drop(m_panel->BlankFile, m_blank);
    for (int i = 0; i < 8; ++i)
        QCOMPARE(m_panel->ePoints[i]->MutBlank->text(),
                 i < 6 ? QStringLiteral("0.125") : QString());
    QCOMPARE(m_panel->BlankFile->FileName->text(), m_blank);
    QCOMPARE(since(before), QStringList({mapVPoint, ref1Missing, lcfRange}));
    user::drop(m_panel->RefFile1, m_ref1);
    QCOMPARE(since(before + 3), QStringList({mapVPoint, ref2Missing, lcfRange}));
}

void tst_FourPs::emptyEnergyHasNoMut()
{
    user::drop(m_panel->BlankFile, m_blank);
    AEPoint* point = m_panel->ePoints[0];
    user::type(point->Energy, {});
    QCOMPARE(point->MutBlank->text(), QString());
    // Text that is no number counts as 0 eV, where the line through the origin is 0.
    user::type(point->Energy, QStringLiteral("abc"));
    QCOMPARE(point->MutBlank->text(), QStringLiteral("0"));
}

void tst_FourPs::energyTypedFillsTheRow()
{
    user::drop(m_panel->BlankFile, m_blank);
    AEPoint* point = m_panel->ePoints[7];
    const int before = lines();
    user::type(point->Energy, QStringLiteral("8300"));
    QCOMPARE(point->MutBlank->text(), QStringLiteral("0.125"));
    QCOMPARE(point->Mut1->text(), QString());
    user::type(point->Energy, QStringLiteral("9000"));
    QCOMPARE(point->MutBlank->text(), QString());
    QCOMPARE(lines(), before); // an energy does not recalculate
}

void tst_FourPs::edgeTypedRefitsWithoutColumns()
{
    loadAll();
    const QString mut = m_panel->ePoints[0]->Mut1->text();
    const double jump = m_panel->RefFile1->edgeJump();
    const int before = lines();
    user::type(m_panel->EdgeE, QStringLiteral("8345"));
    QVERIFY(m_panel->RefFile1->edgeJump() != jump);
    QCOMPARE(m_panel->ePoints[0]->Mut1->text(), mut);
    QCOMPARE(lines(), before);
}

void tst_FourPs::edgeMovesBothBounds()
{
    loadAll();
    user::type(m_panel->EdgeE, QStringLiteral("8360"));
    for (const AXafsFileSelect* select : {m_panel->RefFile1, m_panel->RefFile2}) {
        QCOMPARE(select->data()->preEdgeEnd, 8310.0);
        QCOMPARE(select->data()->edge, 8360.0);
        QCOMPARE(select->data()->postEdgeStart, 8460.0);
        QCOMPARE(select->data()->preVic.c, fitVictreenBelow(select->data()->points, 8310.0).full.c);
        QCOMPARE(select->data()->postVic.c,
                 fitVictreenAbove(select->data()->points, 8460.0).full.c);
    }
    user::type(m_panel->PreEEndDE, QStringLiteral("-20"));
    user::type(m_panel->PostEStartDE, QStringLiteral("not a number"));
    QCOMPARE(m_panel->RefFile1->data()->preEdgeEnd, 8340.0);
    QCOMPARE(m_panel->RefFile1->data()->postEdgeStart, 8360.0);
}

void tst_FourPs::displayFilesAreListed()
{
    m_panel->DispFSelect->newFiles({m_ref1, m_ref2});
    QCOMPARE(m_panel->SelectedFs->count(), 2);
    QCOMPARE(m_panel->SelectedFs->itemText(0), m_ref1);
    QCOMPARE(m_panel->DispFSelect->FileName->text(), QStringLiteral("ref1.dat ref2.dat "));
}

void tst_FourPs::thicknessButtonAlwaysRecalculates()
{
    m_panel->DispCondsB->setChecked(true);
    const int before = lines();
    user::click(m_panel->TRVic2); // checked already
    QCOMPARE(since(before), QStringList({mapVPoint, ref1Missing, lcfRange}));
    user::click(m_panel->TRMean);
    QCOMPARE(lines(), before + 6);
}

void tst_FourPs::eventsThatDoNotRecalculate()
{
    m_panel->DispCondsB->setChecked(true);
    const int before = lines();
    user::click(m_panel->TypeTMKisExact);
    user::click(m_panel->NNone);
    user::type(m_panel->Valence1, QStringLiteral("1"));
    user::type(m_panel->EdgeE, QStringLiteral("8351"));
    user::type(m_panel->PreEEndDE, QStringLiteral("-51"));
    user::type(m_panel->PostEStartDE, QStringLiteral("101"));
    user::type(m_panel->HgAFrom, QStringLiteral("1"));
    user::click(m_panel->ShowFourPs);
    user::drop(m_panel->ePoints[0]->MapFile, m_ref1);
    QCOMPARE(lines(), before);
    QVERIFY(m_panel->TypeTMKisExact->isChecked());
}

void tst_FourPs::checkBoxesRecalculate()
{
    int before = lines();
    AEPoint* point = m_panel->ePoints[4];
    for (QAbstractButton* button : std::initializer_list<QAbstractButton*>{
             point->UseCB, point->TRatCB, point->VPointCB, point->VPointCB}) {
        user::click(button);
        QCOMPARE(lines(), before + 3);
        before += 3;
    }
    m_panel->DispCondsB->setChecked(true);
    for (QAbstractButton* button : std::initializer_list<QAbstractButton*>{
             m_panel->UseVicCB, m_panel->UseVicForTargetCB, m_panel->TheVicIs1}) {
        user::click(button);
        QCOMPARE(lines(), before + 3);
        before += 3;
    }
}

void tst_FourPs::useVicSubtractsFromReferences()
{
    m_panel->DispCondsB->setChecked(true);
    loadAll();
    user::drop(m_panel->BlankFile, m_blank);
    const AXafsData* data = m_panel->RefFile1->data();
    AEPoint* point = m_panel->ePoints[1];
    const double raw = *interpolateMut(data->points, 8381);
    QCOMPARE(point->Mut1->text(), textFromNumber(raw - data->postVicAt(8381)));
    const QString target = point->MutT->text();
    user::click(m_panel->UseVicCB);
    QCOMPARE(point->Mut1->text(), textFromNumber(raw));
    QCOMPARE(point->MutT->text(), target);
    QCOMPARE(point->MutBlank->text(), QStringLiteral("0.125"));
    QVERIFY(!point->row().useVicRefs);
    user::click(m_panel->UseVicCB);
    QVERIFY(point->row().useVicRefs);
}

void tst_FourPs::useVicForTargetSubtractsFromTarget()
{
    m_panel->DispCondsB->setChecked(true);
    loadAll();
    const AXafsData* data = m_panel->TargetFile->data();
    AEPoint* point = m_panel->ePoints[1];
    const double raw = *interpolateMut(data->points, 8381);
    QCOMPARE(point->MutT->text(), textFromNumber(raw));
    user::click(m_panel->UseVicForTargetCB);
    QCOMPARE(point->MutT->text(), textFromNumber(raw - data->postVicAt(8381)));
    QVERIFY(point->row().useVicTarget);
    // Switching the line's side refreshes the column as well.
    user::click(m_panel->TheVicIs1);
    QCOMPARE(point->MutT->text(), textFromNumber(raw - data->preVicAt(8381)));
}

void tst_FourPs::vicSideChangesAllColumnsButBlank()
{
    m_panel->DispCondsB->setChecked(true);
    loadAll();
    user::drop(m_panel->BlankFile, m_blank);
    user::click(m_panel->TheVicIs1);
    for (const AEPoint* point : qAsConst(m_panel->ePoints)) {
        if (point->Energy->text().isEmpty())
            continue;
        const double e = point->energy();
        const AXafsData* ref2 = m_panel->RefFile2->data();
        QCOMPARE(point->Mut2->text(),
                 textFromNumber(*interpolateMut(ref2->points, e) - ref2->preVicAt(e)));
        QCOMPARE(point->MutBlank->text(), QStringLiteral("0.125"));
    }
}

void tst_FourPs::vicSideRefreshesATypedBlank()
{
    m_panel->DispCondsB->setChecked(true);
    user::drop(m_panel->BlankFile, m_blank);
    user::type(m_panel->ePoints[1]->MutBlank, QStringLiteral("7"));
    user::click(m_panel->TheVicIs1);
    QCOMPARE(m_panel->ePoints[1]->MutBlank->text(), QStringLiteral("0.125"));
}

void tst_FourPs::refusalsInOrder()
{
    int before = lines();
    const auto calc = [&] {
        before = lines();
        user::click(m_panel->CalcTargetB);
        return since(before);
    };
    for (AEPoint* point : qAsConst(m_panel->ePoints))
        point->UseCB->setChecked(false);
    QCOMPARE(calc(), QStringList({targetVPoint})); // no row in use comes first
    for (const int i : {0, 1, 3})
        m_panel->ePoints[i]->UseCB->setChecked(true);
    QCOMPARE(calc(), QStringList({targetVPoint})); // three rows, the V point not among them
    m_panel->ePoints[2]->UseCB->setChecked(true);
    QCOMPARE(calc(), QStringList({ref1Missing})); // not the missing target
    user::drop(m_panel->RefFile1, m_ref1);
    QCOMPARE(calc(), QStringList({ref2Missing}));
    user::drop(m_panel->RefFile2, m_ref2);
    QCOMPARE(calc(), QStringList({targetMissing}));
    before = lines();
    user::click(m_panel->CalcMapB);
    QCOMPARE(since(before), QStringList({mapVPoint}));
}

void tst_FourPs::rowCountRefusal_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<bool>("exact");
    QTest::addColumn<QString>("text");
    QTest::newRow("two") << 2 << false
                         << QStringLiteral("Number of selected data sets 2 is not 4.");
    QTest::newRow("five, exact") << 5 << true
                                 << QStringLiteral("Number of selected data sets 5 is not 4.");
    QTest::newRow("eight, exact") << 8 << true
                                  << QStringLiteral("Number of selected data sets 8 is not 4.");
}

void tst_FourPs::rowCountRefusal()
{
    QFETCH(int, rows);
    QFETCH(bool, exact);
    loadAll();
    m_panel->ePoints[0]->VPointCB->setChecked(true);
    for (int i = 0; i < 8; ++i)
        m_panel->ePoints[i]->UseCB->setChecked(i < rows);
    (exact ? m_panel->TypeTMKisExact : m_panel->TypeTMKisLS)->setChecked(true);
    const int before = lines();
    QSignalSpy refused(m_panel.get(), &FourPs::refused);
    user::click(m_panel->CalcTargetB);
    QTEST(since(before).join(QLatin1Char('|')), "text");
    QCOMPARE(refused.count(), 1);
}

void tst_FourPs::refusalKeepsEarlierResult()
{
    loadAll();
    const QString result = m_panel->CalcRes->text();
    QVERIFY(!result.isEmpty());
    const double a = m_panel->lastA();
    m_panel->TypeTMKisExact->setChecked(true);
    user::click(m_panel->ePoints[4]->UseCB);
    QCOMPARE(m_panel->CalcRes->text(), result);
    QCOMPARE(m_panel->lastA(), a);
}

void tst_FourPs::threePointResult()
{
    loadAll();
    const int before = lines();
    user::click(m_panel->ePoints[3]->UseCB); // leaves rows 1, 2 and the V point
    const auto field = [&](int i, QLineEdit* AEPoint::*mut) {
        return numberFromText((m_panel->ePoints[i]->*mut)->text());
    };
    const auto scaled = [&](QLineEdit* AEPoint::*mut) {
        return (field(2, mut) - field(0, mut)) / (field(1, mut) - field(0, mut));
    };
    const double k = scaled(&AEPoint::Mut2);
    const double a = (scaled(&AEPoint::MutT) - k) / (scaled(&AEPoint::Mut1) - k);
    const QString text =
        QStringLiteral("3ps: a = %1, Valence = %2").arg(a).arg(2 * a + 3 * (1 - a));
    QCOMPARE(m_panel->CalcRes->text(), text);
    QCOMPARE(since(before), QStringList({mapVPoint, text, lcfRange}));
    QCOMPARE(m_panel->lastValence(), 2 * a + 3 * (1 - a));
    QVERIFY(std::abs(a - 0.25) < 0.01);
}

void tst_FourPs::fourPointResults()
{
    loadAll();
    const QString leastSquares = m_panel->CalcRes->text();
    QVERIFY2(leastSquares.startsWith(QLatin1String("4ps2: a = ")), qPrintable(leastSquares));
    QVERIFY2(user::messages(*m_panel).at(lines() - 3).startsWith(QLatin1String("sbys = ")),
             qPrintable(user::messages(*m_panel).at(lines() - 3)));
    m_panel->TypeTMKisExact->setChecked(true);
    user::click(m_panel->CalcTargetB);
    QVERIFY(m_panel->CalcRes->text().startsWith(QLatin1String("a = ")));
    // Three normalization points: both forms are the same line.
    QCOMPARE(m_panel->CalcRes->text().mid(0, 9), leastSquares.mid(6, 9));
}

void tst_FourPs::clearKeepsTheSpectrumAndRecalculates()
{
    loadAll();
    const QString result = m_panel->CalcRes->text();
    m_panel->CalcRes->clear();
    user::click(m_panel->TargetFile->ClearB);
    QCOMPARE(m_panel->TargetFile->FileName->text(), QString());
    QVERIFY(m_panel->TargetFile->isValid());
    QCOMPARE(m_panel->CalcRes->text(), result);
}

void tst_FourPs::unreadableFileKeepsTheSpectrum()
{
    loadAll();
    const QString mut = m_panel->ePoints[0]->MutT->text();
    user::drop(m_panel->TargetFile, m_dir.filePath(QStringLiteral("missing.dat")));
    QVERIFY(m_panel->TargetFile->isValid());
    QCOMPARE(m_panel->ePoints[0]->MutT->text(), mut);
}

void tst_FourPs::emptyFileInvalidates()
{
    loadAll();
    QFile file(m_dir.filePath(QStringLiteral("empty.dat")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    const int before = lines();
    user::drop(m_panel->TargetFile, file.fileName());
    QVERIFY(!m_panel->TargetFile->isValid());
    QCOMPARE(m_panel->ePoints[0]->MutT->text(), QString());
    QCOMPARE(since(before), QStringList({mapVPoint, targetMissing, lcfRange}));
}

void tst_FourPs::displayFilesUnreadableAreSkipped()
{
    const int before = lines();
    m_panel->DispFSelect->newFiles(
        {m_ref1, m_dir.filePath(QStringLiteral("missing.dat")), m_target});
    QCOMPARE(m_panel->SelectedFs->count(), 2);
    QCOMPARE(m_panel->SelectedFs->itemText(1), m_target);
    QCOMPARE(lines(), before);
}

void tst_FourPs::displayFilesAtOnceAreAsOneByOne()
{
    const QStringList paths = {m_ref1, m_dir.filePath(QStringLiteral("missing.dat")), m_ref2,
                               m_target, m_blank};
    loadAll();
    user::click(m_panel->ShowDAB);
    m_panel->EdgeE->setText(QStringLiteral("8352")); // typed, the field not left
    m_panel->DispFSelect->newFiles(paths);
    FourPs plain;
    plain.show();
    user::drop(plain.RefFile1, m_ref1);
    user::drop(plain.RefFile2, m_ref2);
    user::drop(plain.TargetFile, m_target);
    user::click(plain.ShowDAB);
    plain.EdgeE->setText(QStringLiteral("8352"));
    for (const QString& path : paths)
        plain.DispFSelect->newFiles({path});
    for (FourPs* panel : {m_panel.get(), &plain}) {
        QCOMPARE(panel->SelectedFs->count(), 4);
        panel->displays->resize(1100, 720);
    }
    QCoreApplication::processEvents();
    for (int chosen = 0; chosen < 4; ++chosen) {
        m_panel->SelectedFs->setCurrentIndex(chosen);
        plain.SelectedFs->setCurrentIndex(chosen);
        QCOMPARE(m_panel->SelectedFs->itemText(chosen), plain.SelectedFs->itemText(chosen));
        QCOMPARE(canvas::picture(m_panel->displays->panel(Displays::DispMuts)->DispA),
                 canvas::picture(plain.displays->panel(Displays::DispMuts)->DispA));
    }
}

void tst_FourPs::displayFileMakesTheTypedEdgeHold()
{
    loadAll();
    m_panel->EdgeE->setText(QStringLiteral("8352")); // typed, the field not left
    m_panel->DispFSelect->newFiles({m_dir.filePath(QStringLiteral("missing.dat"))});
    QCOMPARE(m_panel->RefFile1->data()->edge, 8350.0);
    m_panel->DispFSelect->newFiles({m_ref1, m_ref2});
    for (const AXafsFileSelect* select :
         {m_panel->RefFile1, m_panel->RefFile2, m_panel->TargetFile}) {
        QCOMPARE(select->data()->edge, 8352.0);
        QCOMPARE(select->data()->preEdgeEnd, 8302.0);
        QCOMPARE(select->data()->postVic.c,
                 fitVictreenAbove(select->data()->points, 8452.0).full.c);
    }
}

void tst_FourPs::removeWithoutFiles()
{
    user::click(m_panel->RemoveAFile);
    QCOMPARE(m_panel->SelectedFs->count(), 0);
    m_panel->DispFSelect->newFiles({m_ref1});
    m_panel->SelectedFs->setCurrentIndex(-1);
    user::click(m_panel->RemoveAFile);
    QCOMPARE(m_panel->SelectedFs->count(), 1);
}

void tst_FourPs::removeChosenFile()
{
    m_panel->DispFSelect->newFiles({m_ref1, m_ref2, m_target});
    m_panel->SelectedFs->setCurrentIndex(1);
    user::click(m_panel->RemoveAFile);
    QCOMPARE(m_panel->SelectedFs->count(), 2);
    QCOMPARE(m_panel->SelectedFs->itemText(1), m_target);
}

void tst_FourPs::mapFilesGoToTheirRows()
{
    user::drop(m_panel->ePoints[3]->MapFile, m_target);
    m_panel->mapFileSelect->newFiles({m_ref1, m_ref2, m_blank});
    const QStringList expected = {m_ref1, m_ref2, m_blank, m_target, {}, {}, {}, {}};
    for (int i = 0; i < 8; ++i)
        QCOMPARE(m_panel->ePoints[i]->MapFile->FileName->text(), expected[i]);
    QStringList ten;
    for (int i = 0; i < 10; ++i)
        ten << m_dir.filePath(QString::number(i));
    m_panel->mapFileSelect->newFiles(ten);
    for (int i = 0; i < 8; ++i)
        QCOMPARE(m_panel->ePoints[i]->MapFile->FileName->text(), ten[i]);
}

void tst_FourPs::directoryIsSharedButNotWithSave()
{
    const QString folder = QFileInfo(m_ref1).canonicalPath();
    user::drop(m_panel->BlankFile, m_blank);
    for (const AEPoint* point : qAsConst(m_panel->ePoints))
        QCOMPARE(point->MapFile->dir(), folder);
    for (const AXafsFileSelect* select : qAsConst(m_panel->xafsSelects))
        QCOMPARE(select->dir(), folder);
    QCOMPARE(m_panel->DispFSelect->dir(), folder);
    QCOMPARE(m_panel->mapFileSelect->dir(), folder);
    QCOMPARE(m_panel->SaveFSelect->dir(), QString());
    QCOMPARE(m_panel->TargetFile->dialog()->directory().canonicalPath(), folder);
}

void tst_FourPs::directoryOfDisplayFilesIsShared()
{
    const QString folder = QFileInfo(m_ref1).canonicalPath();
    QVERIFY(m_panel->RefFile1->dir() != folder);
    m_panel->DispFSelect->newFiles({m_ref1});
    for (const AXafsFileSelect* select : qAsConst(m_panel->xafsSelects))
        QCOMPARE(select->dir(), folder);
    QCOMPARE(m_panel->mapFileSelect->dir(), folder);
}

void tst_FourPs::messageIsOneSimplifiedLine()
{
    const int before = lines();
    m_panel->appendMessage(QStringLiteral("  two\n  words\t"));
    QCOMPARE(since(before), QStringList({QStringLiteral("two words")}));
    QVERIFY(m_panel->Message->toPlainText().endsWith(QLatin1Char('\n')));
}

void tst_FourPs::messageNeverLandsInASelection()
{
    const int before = lines();
    m_panel->Message->selectAll();
    m_panel->appendMessage(QStringLiteral("new"));
    QCOMPARE(lines(), before + 1);
    QCOMPARE(user::messages(*m_panel).last(), QStringLiteral("new"));
}

void tst_FourPs::messagePaneFollows()
{
    for (int i = 0; i < 200; ++i)
        m_panel->appendMessage(QStringLiteral("line"));
    const QScrollBar* bar = m_panel->Message->verticalScrollBar();
    QVERIFY(bar->maximum() > 0);
    m_panel->Message->moveCursor(QTextCursor::Start); // the reader looks at what was
    QVERIFY(bar->value() < bar->maximum() / 2);
    m_panel->appendMessage(QStringLiteral("the latest"));
    QVERIFY(m_panel->Message->textCursor().atEnd());
    QVERIFY(m_panel->Message->viewport()->rect().contains(m_panel->Message->cursorRect()));
}

void tst_FourPs::conditionsShowAndHide()
{
    user::click(m_panel->DispCondsB);
    QVERIFY(m_panel->CConds->isVisible());
    user::click(m_panel->DispCondsB);
    QVERIFY(!m_panel->CConds->isVisible());
}

void tst_FourPs::lcfWithoutFilesReportsNan()
{
    m_panel->ePoints[0]->TRatCB->setChecked(true);
    m_panel->ePoints[3]->TRatCB->setChecked(true);
    const int before = lines();
    user::click(m_panel->LCFB);
    QCOMPARE(since(before), QStringList({QStringLiteral("Result of LCF : nan nan nan")}));
    QCOMPARE(m_panel->LCFRes->text(), QStringLiteral("a : (1-a) = nan : nan,  Valence = nan"));
}

void tst_FourPs::lcfFindsTheFraction()
{
    loadAll();
    m_panel->ePoints[0]->TRatCB->setChecked(true);
    m_panel->ePoints[3]->TRatCB->setChecked(true);
    user::click(m_panel->LCFB);
    const QRegularExpression form(
        QStringLiteral("^a : \\(1-a\\) = (\\S+) : (\\S+),  Valence = (\\S+)$"));
    const QRegularExpressionMatch match = form.match(m_panel->LCFRes->text());
    QVERIFY2(match.hasMatch(), qPrintable(m_panel->LCFRes->text()));
    QVERIFY(std::abs(match.captured(1).toDouble() - 0.25) < 1e-3);
    QVERIFY(std::abs(match.captured(3).toDouble() - 2.75) < 1e-3);
}

// The latest result has a red ring: the fit along x, the point method along y.
void tst_FourPs::fitStandsAtItsOwnAxis()
{
    m_panel->ePoints[0]->TRatCB->setChecked(true);
    m_panel->ePoints[3]->TRatCB->setChecked(true);
    loadAll();
    const QRegularExpression valence(QStringLiteral("Valence = (\\S+?),?( |$)"));
    const double points = valence.match(m_panel->CalcRes->text()).captured(1).toDouble();
    m_panel->Valence2->setText(QStringLiteral("5"));
    user::click(m_panel->LCFB); // the point method's valence is still that of 2 and 3
    const double fit = valence.match(m_panel->LCFRes->text()).captured(1).toDouble();
    QVERIFY2(std::abs(fit - 4.25) < 1e-2, qPrintable(m_panel->LCFRes->text()));
    QVERIFY2(points > 2 && points < 3, qPrintable(m_panel->CalcRes->text()));
    user::click(m_panel->ShowDAB);
    DispArea* area = m_panel->displays->panel(Displays::DispLCFvs4PS)->DispA;
    const QImage image = canvas::picture(area);
    QRect ring;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) == QColor(Qt::red).rgb())
                ring |= QRect(x, y, 1, 1);
    QVERIFY(!ring.isEmpty());
    QVERIFY(std::abs(ring.center().x() - area->coord.xToScreen(fit)) <= 3);
    QVERIFY(std::abs(ring.center().y() - area->coord.yToScreen(points)) <= 3);
}

void tst_FourPs::onlyADoubleClickForgetsTheFits()
{
    m_panel->ePoints[0]->TRatCB->setChecked(true);
    m_panel->ePoints[3]->TRatCB->setChecked(true);
    loadAll();
    user::click(m_panel->ShowDAB);
    DispArea* area = m_panel->displays->panel(Displays::DispLCFvs4PS)->DispA;
    const auto rings = [area] { return canvas::count(canvas::picture(area), Qt::red); };
    QVERIFY(rings() > 0);
    const QPointF middle = QRectF(area->rect()).center();
    canvas::press(area, middle);
    QVERIFY(rings() > 0);
    canvas::move(area, middle);
    canvas::release(area, middle);
    QVERIFY(rings() > 0);
    canvas::doubleClick(area, middle);
    QCOMPARE(rings(), 0);
}

void tst_FourPs::numbersIgnoreTheLocale()
{
    loadAll();
    const QString result = m_panel->CalcRes->text();
    const QStringList pane = user::messages(*m_panel);
    QLocale::setDefault(QLocale(QLocale::German));
    m_panel = std::make_unique<FourPs>();
    loadAll();
    QLocale::setDefault(QLocale::c());
    QCOMPARE(m_panel->CalcRes->text(), result);
    QCOMPARE(user::messages(*m_panel), pane);
}

void tst_FourPs::graphWindowShows()
{
    QVERIFY(!m_panel->displays->isVisible());
    user::click(m_panel->ShowDAB);
    QVERIFY(m_panel->displays->isVisible());
}

void tst_FourPs::goesWithTheKeyboardInAField()
{
    QApplication::setActiveWindow(m_panel.get());
    m_panel->EdgeE->setFocus();
    QVERIFY(m_panel->EdgeE->hasFocus());
    // The field tells that it is left when its window goes, and must still reach a whole panel.
    QObject* panel = m_panel.get();
    bool wholeThen = false;
    connect(m_panel->EdgeE, &QLineEdit::editingFinished, this,
            [=, &wholeThen] { wholeThen = qobject_cast<FourPs*>(panel) != nullptr; });
    m_panel.reset();
    QVERIFY(wholeThen);
}

void tst_FourPs::dialogsStartInTheCurrentFolder()
{
    for (const AFileSelect* select : m_panel->findChildren<AFileSelect*>()) {
        if (select != m_panel->SaveFSelect)
            QCOMPARE(select->dir(), QDir::currentPath());
    }
}

void tst_FourPs::resultFileTakesAnyName()
{
    QCOMPARE(m_panel->SaveFSelect->mode(), static_cast<int>(AFileSelect::Save));
    QVERIFY(!m_panel->SaveFSelect->FileName->isReadOnly());
    user::type(m_panel->SaveFSelect->FileName, QStringLiteral("result"));
    QCOMPARE(m_panel->SaveFSelect->FileName->text(), QStringLiteral("result"));
}

void tst_FourPs::vic2IsTheRatioOfTheEdgeJumps()
{
    loadAll();
    const double jump1 = m_panel->RefFile1->edgeJump();
    const double jump2 = m_panel->RefFile2->edgeJump();
    QVERIFY(std::abs(jump1 - jump2) > 0.1);
    m_panel->calcTarget();
    QCOMPARE(m_panel->thicknessRatioFigures().trVic2, jump1 / jump2);
}

QTEST_MAIN(tst_FourPs)
#include "tst_FourPs.moc"
