#include "analysis/PointTable.h"
#include "tests/support/Exact.h"

#include <QtTest>

namespace
{

/// mu-t of one value everywhere between 8000 and 9000 eV; lines of the values 0.25 below the edge
/// and 0.5 above.
FittedSpectrum flat(double mut)
{
    FittedSpectrum spectrum;
    spectrum.setPoints({{14.0, 8000.0, mut}, {12.0, 9000.0, mut}});
    spectrum.preVic = {0.25, 0.0, 0.0};
    spectrum.postVic = {0.5, 0.0, 0.0};
    return spectrum;
}

struct Spectra {
    FittedSpectrum ref1 = flat(1.0);
    FittedSpectrum ref2 = flat(2.0);
    FittedSpectrum target = flat(3.0);
    FittedSpectrum blank = flat(0.125);

    SpectrumSet set() const { return {{&ref1, &ref2, &target, &blank}}; }
};

Conditions with(bool references, bool target, bool pre)
{
    Conditions conditions;
    conditions.referencesMinusVictreen = references;
    conditions.targetMinusVictreen = target;
    conditions.victreenIsPre = pre;
    return conditions;
}

} // namespace

class tst_PointTable : public QObject
{
    Q_OBJECT

private slots:
    void eachCondition_data();
    void eachCondition();
    void marksAreTaken();
    void missingSpectraCountAsZero();
    void rowsWithoutEnergyHaveNoMut();
    void energiesThatASpectrumDoesNotReach();
    void sixDigitsDecide();
    void sixDigitsAreTakenBehindTheSubtraction();
};

void tst_PointTable::eachCondition_data()
{
    QTest::addColumn<bool>("references");
    QTest::addColumn<bool>("target");
    QTest::addColumn<bool>("pre");
    QTest::addColumn<double>("mut1");
    QTest::addColumn<double>("mut2");
    QTest::addColumn<double>("mutTarget");
    const auto row = [](const char* name, bool references, bool target, bool pre, double mut1,
                        double mut2, double mutTarget) {
        QTest::newRow(name) << references << target << pre << mut1 << mut2 << mutTarget;
    };
    row("none, post", false, false, false, 1.0, 2.0, 3.0);
    row("none, pre", false, false, true, 1.0, 2.0, 3.0);
    row("references, post", true, false, false, 0.5, 1.5, 3.0);
    row("references, pre", true, false, true, 0.75, 1.75, 3.0);
    row("target, post", false, true, false, 1.0, 2.0, 2.5);
    row("target, pre", false, true, true, 1.0, 2.0, 2.75);
    row("all, post", true, true, false, 0.5, 1.5, 2.5);
    row("all, pre", true, true, true, 0.75, 1.75, 2.75);
}

void tst_PointTable::eachCondition()
{
    QFETCH(bool, references);
    QFETCH(bool, target);
    QFETCH(bool, pre);
    QFETCH(double, mut1);
    QFETCH(double, mut2);
    QFETCH(double, mutTarget);
    const Spectra spectra;
    const PointRows table =
        pointTable({{8350.0, true, false, false}}, spectra.set(), with(references, target, pre));
    QCOMPARE(table.size(), std::size_t{1});
    COMPARE_EXACT(table[0].energy, 8350.0);
    COMPARE_EXACT(table[0].mut1, mut1);
    COMPARE_EXACT(table[0].mut2, mut2);
    COMPARE_EXACT(table[0].mutTarget, mutTarget);
    COMPARE_EXACT(table[0].mutBlank, 0.125); // the blank loses no line
    QCOMPARE(table[0].useVicRefs, references);
    QCOMPARE(table[0].useVicTarget, target);
}

void tst_PointTable::marksAreTaken()
{
    const PointRows table = pointTable(
        {{8300.0, true, false, false}, {8310.0, false, true, false}, {8320.0, false, false, true}},
        {}, Conditions());
    QCOMPARE(table.size(), std::size_t{3});
    for (std::size_t i = 0; i < 3; ++i) {
        COMPARE_EXACT(table[i].energy, 8300.0 + 10.0 * static_cast<double>(i));
        QCOMPARE(table[i].use, i == 0);
        QCOMPARE(table[i].tRatio, i == 1);
        QCOMPARE(table[i].vPoint, i == 2);
    }
    QVERIFY(pointTable({}, {}, Conditions()).empty());
}

void tst_PointTable::missingSpectraCountAsZero()
{
    const Spectra spectra;
    const FittedSpectrum empty;
    SpectrumSet set = spectra.set();
    set.all[SpectrumSet::Ref2] = nullptr;
    set.all[SpectrumSet::Blank] = nullptr;
    set.all[SpectrumSet::Target] = &empty;
    const PointRow row =
        pointTable({{8350.0, true, false, false}}, set, with(true, true, true)).at(0);
    COMPARE_EXACT(row.mut1, 0.75);
    COMPARE_EXACT(row.mut2, 0.0);
    COMPARE_EXACT(row.mutTarget, 0.0);
    COMPARE_EXACT(row.mutBlank, 0.0);
}

void tst_PointTable::rowsWithoutEnergyHaveNoMut()
{
    const Spectra spectra;
    const PointRow row =
        pointTable({{std::nullopt, true, true, false}}, spectra.set(), with(true, true, true))
            .at(0);
    QVERIFY(row.use && row.tRatio);
    for (const double value : {row.energy, row.mut1, row.mut2, row.mutTarget, row.mutBlank})
        COMPARE_EXACT(value, 0.0);
}

void tst_PointTable::energiesThatASpectrumDoesNotReach()
{
    Spectra spectra;
    spectra.ref2.setPoints({{14.0, 8000.0, 2.0}, {13.0, 8300.0, 2.0}});
    const PointRows table = pointTable({{8350.0, true, false, false}, {4000.0, true, false, false}},
                                       spectra.set(), with(false, false, false));
    COMPARE_EXACT(table[0].mut1, 1.0);
    COMPARE_EXACT(table[0].mut2, 0.0); // above the last point
    COMPARE_EXACT(table[1].mut1, 0.5); // below the first one, on the line through the origin
    COMPARE_EXACT(table[1].mut2, 1.0);
}

/// A difference in the seventh digit is none.
void tst_PointTable::sixDigitsDecide()
{
    Spectra spectra;
    spectra.ref1 = flat(0.12345649);
    spectra.ref2 = flat(0.1234562);
    spectra.target = flat(-1234567.0);
    spectra.blank = flat(9.9999951e-5);
    const PointRow row =
        pointTable({{8350.0, true, false, false}}, spectra.set(), with(false, false, false)).at(0);
    COMPARE_EXACT(row.mut1, 0.123456);
    COMPARE_EXACT(row.mut2, 0.123456);
    COMPARE_EXACT(row.reference1() - row.reference2(), 0.0);
    COMPARE_EXACT(row.mutTarget, -1234570.0);
    COMPARE_EXACT(row.mutBlank, 0.0001);
}

/// 1.2345678 - 0.25 is 0.9845678, of which six digits are 0.984568; of 1.23457 they were 0.98457.
void tst_PointTable::sixDigitsAreTakenBehindTheSubtraction()
{
    Spectra spectra;
    spectra.ref1 = flat(1.2345678);
    const PointRow row =
        pointTable({{8350.0, true, false, false}}, spectra.set(), with(true, false, true)).at(0);
    COMPARE_EXACT(row.mut1, 0.984568);
}

QTEST_APPLESS_MAIN(tst_PointTable)
#include "tst_PointTable.moc"
