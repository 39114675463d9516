#include "results/ResultText.h"

#include <QTranslator>
#include <QtTest>

#include <limits>

/// The words of results and refusals, whole, in both languages.
class tst_ResultText : public QObject
{
    Q_OBJECT

private slots:
    void refusals_data();
    void refusals();
    void results();
    void linesOfATarget();
    void linesOfAMap();
    void filesThatAreNotWritten();
    void japanese();
    void japaneseOutsideTheCatalogue();
};

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

const ThicknessRatios ratios{1.5, 0.25, 2.0, -0.125, 1234567.0, 1e-7, notANumber};
const TargetResult threePoints{Method::ThreePoint, 0.3333333333, 2.6666666667, notANumber, {}};
const TargetResult exact{Method::FourPointExact, 0.25, 2.75, 1.0, ratios};
const TargetResult leastSquares{Method::FourPointLeastSquares, -0.0, 3.0, 0.5, ratios};
const LinearCombination fit{0.25, 0.75, -1e-17, {}};

} // namespace

void tst_ResultText::refusals_data()
{
    QTest::addColumn<int>("reason");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("mapText");
    const auto row = [](const char* name, Refusal reason, const char* text,
                        const char* mapText = nullptr) {
        QTest::newRow(name) << static_cast<int>(reason) << QString::fromLatin1(text)
                            << QString::fromLatin1(mapText != nullptr ? mapText : text);
    };
    row("V point", Refusal::NoVPoint, "V Point is not selected.", "V Point is not selected");
    row("Ref 1", Refusal::Ref1NotValid, "Ref File1 is not valid.");
    row("Ref 2", Refusal::Ref2NotValid, "Ref File2 is not valid.");
    row("target", Refusal::TargetNotValid, "Target File1 is not valid.");
    row("rows", Refusal::RowCount, "Number of selected data sets 6 is not 4.");
    row("range", Refusal::NoFitRange,
        "Energy Range is not selected, which should by selected by CB of TR.");
    row("map", Refusal::MapTooLarge, "The map is too large.");
    row("boxes", Refusal::TooManyBoxes, "The number of histogram boxes is too large.");
}

void tst_ResultText::refusals()
{
    QFETCH(int, reason);
    const RunRefusal refusal{static_cast<Refusal>(reason), 6};
    QTEST(ResultText::refusal(refusal), "text");
    QTEST(ResultText::mapRefusal(refusal), "mapText");
}

void tst_ResultText::results()
{
    QCOMPARE(ResultText::target(threePoints),
             QStringLiteral("3ps: a = 0.333333, Valence = 2.66667"));
    QCOMPARE(ResultText::target(exact), QStringLiteral("a = 0.25, Valence = 2.75, t/ts = 1"));
    QCOMPARE(ResultText::target(leastSquares),
             QStringLiteral("4ps2: a = 0, Valence = 3, t/ts = 0.5"));
    QCOMPARE(ResultText::ratios(ratios),
             QStringLiteral("sbys = 1.5, mean = 0.25, lsA = 2, lsB = -0.125, "
                            "lsA(NB) = 1.23457e+06, lsB(NB) = 1e-07, Vic2 = nan"));
    QCOMPARE(ResultText::lcfLine(fit), QStringLiteral("Result of LCF : 0.25 0.75 -1e-17"));
    QCOMPARE(ResultText::lcf(fit, {2.0, 3.0}),
             QStringLiteral("a : (1-a) = 0.25 : 0.75,  Valence = 2.75"));
    QCOMPARE(ResultText::lcf({1.0, -1.0, 0.0, {}}, {2.0, 3.0}),
             QStringLiteral("a : (1-a) = inf : -inf,  Valence = nan"));
}

void tst_ResultText::linesOfATarget()
{
    QCOMPARE(ResultText::lines(threePoints), QStringList{ResultText::target(threePoints)});
    QCOMPARE(ResultText::lines(exact),
             (QStringList{ResultText::ratios(ratios), ResultText::target(exact)}));
    QCOMPARE(ResultText::lines(leastSquares),
             (QStringList{ResultText::ratios(ratios), ResultText::target(leastSquares)}));
}

void tst_ResultText::linesOfAMap()
{
    MapRun run;
    QCOMPARE(ResultText::lines(run), QStringList());
    run.ratios = ratios;
    QCOMPARE(ResultText::lines(run), QStringList{ResultText::ratios(ratios)});
}

void tst_ResultText::filesThatAreNotWritten()
{
    const QString path = QStringLiteral("/data/50%1/result.dat");
    QCOMPARE(ResultText::notWritten(path, WriteOutcome::CannotOpen),
             QStringLiteral("Can't open the file [/data/50%1/result.dat]"));
    QCOMPARE(ResultText::notWritten(path, WriteOutcome::CannotWrite),
             QStringLiteral("Can't write the file [/data/50%1/result.dat]"));
}

void tst_ResultText::japanese()
{
    QTranslator catalogue;
    QVERIFY(catalogue.load(QStringLiteral(":/velk_ja_JP.qm")));
    QVERIFY(QCoreApplication::installTranslator(&catalogue));
    QCOMPARE(ResultText::target(threePoints),
             QStringLiteral("3 点法: a = 0.333333, 価数 = 2.66667"));
    QCOMPARE(ResultText::target(leastSquares),
             QStringLiteral("4 点法(最小二乗): a = 0, 価数 = 3, t/ts = 0.5"));
    QCOMPARE(ResultText::lcf(fit, {2.0, 3.0}),
             QStringLiteral("a : (1-a) = 0.25 : 0.75,  価数 = 2.75"));
    QCOMPARE(ResultText::lcfLine(fit), QStringLiteral("線形結合フィットの結果 : 0.25 0.75 -1e-17"));
    // The two wordings of one refusal.
    QCOMPARE(ResultText::refusal({Refusal::NoVPoint, 0}),
             QStringLiteral("V 点が選ばれていません。"));
    QCOMPARE(ResultText::mapRefusal({Refusal::NoVPoint, 0}),
             QStringLiteral("V 点が選ばれていません"));
    QCOMPARE(ResultText::mapRefusal({Refusal::RowCount, 5}),
             QStringLiteral("選ばれたデータの数 5 が 4 ではありません。"));
    QCOMPARE(ResultText::lines(exact).size(), 2);
    QCOMPARE(ResultText::lines(exact).constFirst(),
             QStringLiteral("和の比 = 1.5, 比の平均 = 0.25, 最小二乗 A = 2, 最小二乗 B = -0.125, "
                            "最小二乗 A(ブランク差引なし) = 1.23457e+06, "
                            "最小二乗 B(ブランク差引なし) = 1e-07, ビクトリーン = nan"));
    QCOMPARE(ResultText::lines(exact).constLast(),
             QStringLiteral("a = 0.25, 価数 = 2.75, t/ts = 1"));
}

void tst_ResultText::japaneseOutsideTheCatalogue()
{
    QTranslator catalogue;
    QVERIFY(catalogue.load(QStringLiteral(":/velk_ja_JP.qm")));
    QVERIFY(QCoreApplication::installTranslator(&catalogue));
    QCOMPARE(ResultText::refusal({Refusal::MapTooLarge, 4}),
             QStringLiteral("The map is too large."));
    QCOMPARE(ResultText::notWritten(QStringLiteral("a.dat"), WriteOutcome::CannotWrite),
             QStringLiteral("Can't write the file [a.dat]"));
}

QTEST_GUILESS_MAIN(tst_ResultText)
#include "tst_ResultText.moc"
