#include "batch/HtmlText.h"
#include "batch/Report.h"
#include "batch/UnseenErrors.h"
#include "batch/ValenceText.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

namespace
{

const QByteArrayList columns{"target",       "method",    "a",       "valence",
                             "t_ts",         "edge_jump", "lcf_a",   "lcf_valence",
                             "lcf_r_factor", "refusal",   "warnings"};

QByteArrayList row(const QByteArray& target, const QByteArray& valence,
                   const QByteArray& refusal = {}, const QByteArray& warnings = {})
{
    return {target, "4ps",   "0.123456789", valence, "0.5",   "1.25",
            "0.25", valence, "0.0001",      refusal, warnings};
}

ReportFacts facts(const std::vector<QByteArrayList>& rows)
{
    ReportFacts some;
    some.jobName = "night.toml";
    some.jobText = "[files]\n";
    some.version = "1.2.3";
    some.targets = ReportTargets(columns);
    for (const QByteArrayList& fields : rows)
        some.targets.add(fields);
    return some;
}

const QByteArrayList sureColumns{
    "target",        "valence",           "lcf_valence",     "refusal",
    "sigma_valence", "sigma_valence_ref", "valence_low",     "valence_high",
    "lcf_sigma_a",   "lcf_sigma_valence", "lcf_sigma_a_ref", "closure_ref1",
    "closure_ref2",  "dvalence_shift",    "dvalence_leak",   "warnings"};

/// Of targets whose rows have the figures of trust.
ReportFacts sureFacts(const std::vector<QByteArray>& rows, const QByteArray& unseen = {})
{
    ReportFacts some = facts({});
    some.targets = ReportTargets(sureColumns);
    for (const QByteArray& fields : rows)
        some.targets.add(fields.split(','), unseen);
    return some;
}

/// The texts of the cells of a table's rows, of each row the first few.
QByteArrayList targetsOf(const QByteArray& page)
{
    QByteArrayList names;
    const QByteArray table = page.mid(page.indexOf("id=\"targets\""));
    QRegularExpression heading(QStringLiteral("<th scope=\"row\"><bdi>(.*?)</bdi>"));
    auto matches = heading.globalMatch(QString::fromUtf8(table.left(table.indexOf("</table>"))));
    while (matches.hasNext())
        names.append(matches.next().captured(1).toUtf8());
    return names;
}

} // namespace

class TestReport : public QObject
{
    Q_OBJECT

private slots:
    void textsAreEscaped_data();
    void textsAreEscaped();
    void hostileNamesDoNothing();
    void refusedTargetsComeFirst();
    void figuresHaveSixDigits();
    void onlySoManyTargetsAreListed();
    void trendHasAMarkForEachValue();
    void valuesFarOffAreCounted();
    void manyTargetsShareStrokes();
    void withoutValuesThereIsNoTrend();
    void deviationsHaveDigitsThatMeanSomething_data();
    void deviationsHaveDigitsThatMeanSomething();
    void eachValenceSaysHowSureItIs();
    void closureThatFailsStandsAtTheTop_data();
    void closureThatFailsStandsAtTheTop();
    void titleOfTheTrendIsBesideItsNumbers();
    void barsReachOneDeviation();
    void whatCountingDoesNotSee();
    void aPictureThatIsMissingIsNamed();
    void aDamagedReadOutIsLeftOut();
    void pageIsInItsLanguage();
    void sameFactsGiveTheSamePage();
    void pageAsksNobody();
};

void TestReport::textsAreEscaped_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("tag") << QByteArray("<b>&\"") << QByteArray("&lt;b&gt;&amp;&quot;");
    QTest::newRow("not UTF-8") << QByteArray("a\xff") << QByteArray("a\xef\xbf\xbd");
    QTest::newRow("controls") << QByteArray("a\x01\x1b[1m\x7f")
                              << QByteArray("a\xef\xbf\xbd\xef\xbf\xbd[1m\xef\xbf\xbd");
    QTest::newRow("line end and tab") << QByteArray("a\n\tb") << QByteArray("a\n\tb");
    QTest::newRow("nul") << QByteArray("a\0b", 3)
                         << QByteArray("a\xef\xbf\xbd"
                                       "b");
    QTest::newRow("Japanese") << QByteArray("試料") << QByteArray("試料");
    QTest::newRow("beyond 16 bits")
        << QByteArray("\xf0\x9f\x94\xac") << QByteArray("\xf0\x9f\x94\xac");
    QTest::newRow("no character") << QByteArray("\xef\xbf\xbe") << QByteArray("\xef\xbf\xbd");
}

void TestReport::textsAreEscaped()
{
    QFETCH(QByteArray, bytes);
    QTEST(htmlText(bytes), "text");
}

// Wherever a text of a job or a file can stand.
void TestReport::hostileNamesDoNothing()
{
    const QByteArray name = "<script>alert('x')</script>\"><img src=x onerror=alert(1)>";
    ReportFacts some = facts({row(name, "2.5", name, name)});
    some.jobName = some.jobText = some.version = name;
    some.inputs = {{name, name}};
    some.messages = {name, "</ul>" + name};
    some.graphs += QString::fromUtf8("/nowhere/" + name);
    some.mapColumns = {"map", "method", "valence_mean", "refusal"};
    some.maps = {{{name, name, name, name}, {QString::fromUtf8(name)}, {}}};
    const QByteArray page = reportPage(some);
    QVERIFY(!page.contains("<script>alert"));
    QVERIFY(!page.contains("<img src=x"));
    QCOMPARE(page.count("<script"), 1); // the page's own
    QVERIFY(page.count("&lt;script&gt;alert(") >= 10);
}

void TestReport::refusedTargetsComeFirst()
{
    const QByteArray page =
        reportPage(facts({row("a", "2.5"), row("b", "", "V Point is not selected."),
                          row("c", "2.6"), row("d", "", "no spectrum in d")}));
    QCOMPARE(targetsOf(page).join(' '), QByteArray("b d a c"));
    QVERIFY(page.contains("<strong>Refused:</strong> <bdi>no spectrum in d</bdi>"));
    QVERIFY(page.contains("<dt>Targets</dt><dd>4</dd>"));
    QVERIFY(page.contains("<dt>refused</dt><dd>2</dd>"));
}

void TestReport::figuresHaveSixDigits()
{
    const QByteArray page = reportPage(facts({row("a", "2.3456789012345678"), row("b", "1e-07")}));
    QVERIFY(page.contains("<td class=\"number\">2.34568</td>"));
    QVERIFY(page.contains("<td class=\"number\">1e-07</td>"));
    QVERIFY(page.contains("<td class=\"number\">0.123457</td>"));
}

void TestReport::onlySoManyTargetsAreListed()
{
    std::vector<QByteArrayList> rows;
    for (int i = 0; i < 5000; ++i)
        rows.push_back(row(QByteArray::number(i), "2.5", i % 2 == 0 ? "no" : ""));
    const QByteArray page = reportPage(facts(rows));
    const QByteArrayList names = targetsOf(page);
    QCOMPARE(names.size(), 4000);
    QCOMPARE(names.first(), QByteArray("0"));
    QCOMPARE(names.at(1999), QByteArray("3998"));
    QCOMPARE(names.at(2000), QByteArray("1"));
    QVERIFY(page.contains("1000 more targets are in results.csv."));
}

void TestReport::trendHasAMarkForEachValue()
{
    const QByteArray page = reportPage(facts({row("a", "2.0"), row("b", ""), row("c", "3.0")}));
    const QRegularExpression path(
        QStringLiteral("<path class=\"(lcf|points)\" d=\"([^\"]*)\"/>\n"));
    auto matches = path.globalMatch(QString::fromUtf8(page));
    QStringList found;
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        found.append(match.captured(1) + QLatin1Char(' ') +
                     QString::number(match.captured(2).count(QLatin1Char('M'))));
    }
    QCOMPARE(found.join(QLatin1Char(',')), QStringLiteral("lcf 2,points 2"));
    // Of three places between 56 and 776 the middles of the first and the last; 2 and 3 lie a
    // twentieth of the height from the ends, as the scale goes from 1.95 to 3.05.
    QVERIFY2(page.contains("d=\"M176 258.27V258.27M656 23.73V23.73\""), page);
    QVERIFY(page.contains("<svg viewBox=\"0 0 800 316\"") && page.contains("translate(14 141)"));
}

void TestReport::valuesFarOffAreCounted()
{
    std::vector<QByteArrayList> rows;
    for (int i = 0; i < 40; ++i)
        rows.push_back(row(QByteArray::number(i), i == 7 ? "91" : i % 2 == 0 ? "2.4" : "2.6"));
    const QByteArray page = reportPage(facts(rows));
    QVERIFY(page.contains("Values beyond the scale, shown at its edge: 2"));
    rows[7] = row("7", "2.5");
    QVERIFY(!reportPage(facts(rows)).contains("Values beyond the scale"));
}

void TestReport::manyTargetsShareStrokes()
{
    std::vector<QByteArrayList> rows;
    for (int i = 0; i < 2500; ++i) // three in a stroke
        rows.push_back(row(QByteArray::number(i), QByteArray::number(2.0 + i % 3 * 0.25)));
    const QByteArray page = reportPage(facts(rows));
    const QByteArray path = page.mid(page.indexOf("<path class=\"points\""));
    QCOMPARE(path.left(path.indexOf("/>")).count('M'), 834);
    QVERIFY(page.contains("A stroke reaches from the lowest to the highest of neighbours."));
}

void TestReport::withoutValuesThereIsNoTrend()
{
    const QByteArray page = reportPage(facts({row("a", "", "no"), row("b", "nan")}));
    QVERIFY(!page.contains("id=\"trend\""));
    QVERIFY(page.contains("id=\"targets\""));
    QVERIFY(!reportPage(facts({})).contains("id=\"targets\""));
}

void TestReport::deviationsHaveDigitsThatMeanSomething_data()
{
    QTest::addColumn<QList<double>>(
        "numbers"); // valence, own, common, shift; not-a-number for none
    QTest::addColumn<QString>("english");
    QTest::addColumn<QString>("japanese");
    const double none = std::nan("");
    const auto add = [](const char* name, const QList<double>& numbers, const char* english,
                        const char* japanese) {
        QTest::newRow(name) << numbers << QString::fromUtf8(english) << QString::fromUtf8(japanese);
    };
    add("all", {2.66023, 0.00061, 0.00093, 0.02384},
        "2.660 ± 0.001 (counting) ± 0.001 (references), +0.024 for +0.1 eV",
        "2.660 ± 0.001（計数） ± 0.001（参照試料）、+0.1 eV で +0.024");
    add("one part is small", {2.5, 0.21, 0.000312, none},
        "2.5 ± 0.2 (counting) ± 0.0003 (references)", "2.5 ± 0.2（計数） ± 0.0003（参照試料）");
    add("references not known", {2.5, 0.0021, none, -0.0093},
        "2.500 ± 0.002 (counting), -0.0093 for +0.1 eV",
        "2.500 ± 0.002（計数）、+0.1 eV で -0.0093");
    add("nothing known", {2.3456789, none, none, none}, "2.34568", "2.34568");
    add("no noise at all", {2.5, 0.0, 0.0, 0.0},
        "2.5 ± 0 (counting) ± 0 (references), 0 for +0.1 eV",
        "2.5 ± 0（計数） ± 0（参照試料）、+0.1 eV で 0");
    add("larger than the valence", {12.3, 35.2, 1.4, 7.66},
        "12 ± 35 (counting) ± 1 (references), +7.7 for +0.1 eV",
        "12 ± 35（計数） ± 1（参照試料）、+0.1 eV で +7.7");
}

void TestReport::deviationsHaveDigitsThatMeanSomething()
{
    QFETCH(QList<double>, numbers);
    const auto number = [&numbers](int i) {
        return std::isnan(numbers[i]) ? std::nullopt : std::optional(numbers[i]);
    };
    const ValenceErrors errors{numbers[0], number(1), number(2), number(3)};
    QTEST(valenceText(errors, OutputWords(QStringLiteral("en"))), "english");
    QTEST(valenceText(errors, OutputWords(QStringLiteral("ja"))), "japanese");
}

void TestReport::eachValenceSaysHowSureItIs()
{
    const QByteArray page = reportPage(sureFacts(
        {"a,2.66023,2.6611,,0.00061,0.00093,2.6591,2.66134,0.0005,0.001,0.0003,1.007,"
         "-0.002,0.02384,-0.0317,",
         "b,2.6,,no fit,7,0.001,,,,,,1.007,-0.002,,,", "c,,,no spectrum in c,,,,,,,,,,,,"}));
    const QByteArray section = page.mid(page.indexOf("id=\"errors\""));
    // The fit's common part is 0.0003 of a, and a valence is twice as much.
    QVERIFY(section.contains("<bdi>a</bdi></th><td class=\"sure\">2.660 ± 0.001 (counting) ± 0.001 "
                             "(references), +0.024 for +0.1 "
                             "eV</td><td>2.6591 to 2.6613</td><td>-0.032</td><td "
                             "class=\"sure\">2.661 ± 0.001 (counting) ± 0.001 "
                             "(references)</td></tr>"));
    QVERIFY(section.contains(
        "<bdi>b</bdi></th><td class=\"sure\">3 ± 7 (counting) ± 0.001 (references)</td>"
        "<td>has no bounds</td><td></td><td class=\"sure\"></td></tr>"));
    QVERIFY(!section.left(section.indexOf("</table>")).contains("<bdi>c</bdi>"));
    QVERIFY(section.contains("<p>Closure: with Ref 1 and Ref 2 in the target's place the method "
                             "finds a = 1.007 and -0.002; it should find 1 and 0.</p>"));
    QVERIFY(section.contains("68.3 % interval"));
    QVERIFY(
        section.contains("In 1 of 1 targets 0.1 eV of the energy changes the valence by more "));
    QVERIFY(reportPage(sureFacts({"a,2.66,,,0.001,0.001,2.65,2.67,,,,1.0004,-0.0004,0.02,-0.03,"}))
                .contains("finds a = 1.000 and 0.000;"));
    QVERIFY(!reportPage(facts({row("a", "2.5")})).contains("id=\"errors\""));
}

void TestReport::closureThatFailsStandsAtTheTop_data()
{
    QTest::addColumn<QByteArray>("closure");
    QTest::addColumn<bool>("alarm");
    QTest::newRow("closes") << QByteArray("1.007,-0.002") << false;
    QTest::newRow("hardly") << QByteArray("0.951,0.049") << false;
    QTest::newRow("Ref 1") << QByteArray("0.740,-0.002") << true;
    QTest::newRow("Ref 2") << QByteArray("1.007,-0.055") << true;
    QTest::newRow("not known") << QByteArray(",") << false;
}

void TestReport::closureThatFailsStandsAtTheTop()
{
    QFETCH(QByteArray, closure);
    QFETCH(bool, alarm);
    const QByteArray page =
        reportPage(sureFacts({"a,2.66,,,0.001,0.001,2.65,2.67,,,," + closure + ",0.02,-0.03,"}));
    const QByteArray top = page.left(page.indexOf("<main>"));
    QCOMPARE(top.contains("<strong>The valences are doubtful.</strong> Closure: with Ref 1"),
             alarm);
}

/// A number of five characters moves the title by the width of a digit.
void TestReport::titleOfTheTrendIsBesideItsNumbers()
{
    const QByteArray page = reportPage(facts({row("a", "2.65")}));
    QVERIFY2(page.contains(">2.650</text>"), page);
    QVERIFY(page.contains("<svg viewBox=\"-8.5 0 808.5 316\""));
    QVERIFY(page.contains("<text transform=\"translate(5.5 141) rotate(-90)\""));
}

/// The scale goes from 1.95 to 3.05, from 270 to 12.
void TestReport::barsReachOneDeviation()
{
    const QByteArray page = reportPage(sureFacts(
        {"a,2.0,2.0,,0.3,0.4,,,,,,,,,,", "b,,,,,,,,,,,,,,,", "c,3.0,3.0,,0.25,,,,,,,,,,,"}));
    QVERIFY(page.contains("<path class=\"bars\" d=\"M176 141V270M656 12V82.36\"/>"));
    QVERIFY(!page.contains("class=\"fit-bars\" d="));
    QVERIFY(page.contains("A bar reaches one standard deviation, by target and references "
                          "together, to either side."));
    const QByteArray plain = reportPage(facts({row("a", "2.0")}));
    QVERIFY(!plain.contains("bars\" d=") && !plain.contains("A bar reaches"));
}

void TestReport::whatCountingDoesNotSee()
{
    UnseenErrors errors;
    errors.targetShift = 0.024;
    errors.fitWeights = 1.0123;
    ReportFacts some = sureFacts({"<a>,2.66,,,0.001,0.001,2.65,2.67,,,,,,,,"}, unseenText(errors));
    QVERIFY(reportPage(some).contains(
        "<details open><summary>What counting does not see: <bdi>&lt;a&gt;</bdi></summary>\n<ul>\n"
        "<li>target 0.1 eV higher: valence +0.024</li>\n"
        "<li>weights of the fit: sum 1.01</li>\n</ul>\n</details>"));
    some.language = QStringLiteral("ja");
    QVERIFY(reportPage(some).contains("<li>試料が 0.1 eV 高い: 価数 +0.024</li>"));
    const std::vector<QByteArray> rows(203, "a,2.66,,,0.001,0.001,2.65,2.67,,,,,,,,");
    const QByteArray many = reportPage(sureFacts(rows, unseenText(errors)));
    QCOMPARE(many.count("<details>"), 200);
    QVERIFY(
        many.contains("role=\"region\" aria-label=\"What counting does not see:\">\n<details>"));
    QVERIFY(many.contains("What counting does not see of 3 more targets is told by drovik-batch"));
}

void TestReport::aPictureThatIsMissingIsNamed()
{
    ReportFacts some = facts({});
    some.graphs += QStringLiteral("/nowhere/Ref 1.png");
    const QByteArray page = reportPage(some);
    QVERIFY(page.contains("The picture Ref 1.png is missing."));
    QVERIFY(!page.contains("/nowhere"));
}

void TestReport::aDamagedReadOutIsLeftOut()
{
    ReportFacts some = facts({});
    some.mapColumns = {"map", "refusal"};
    some.maps = {{{"area", ""}, {}, QByteArray("no read-out")}};
    const QByteArray page = reportPage(some);
    QVERIFY(page.contains("<h3><bdi>area</bdi></h3>"));
    QVERIFY(!page.contains("class=\"readout\""));
}

void TestReport::pageIsInItsLanguage()
{
    ReportFacts some = facts({row("a", "", "Number of selected data sets 5 is not 4.")});
    some.messages = {"a: V Point is not selected."};
    QVERIFY(reportPage(some).startsWith("<!DOCTYPE html>\n<html lang=\"en\">"));
    some.language = QStringLiteral("ja");
    const QByteArray page = reportPage(some);
    QVERIFY(page.startsWith("<!DOCTYPE html>\n<html lang=\"ja\">"));
    QVERIFY(page.contains("<title>night.toml の報告</title>"));
    QVERIFY(page.contains("選ばれたデータの数 5 が 4 ではありません。"));
    QVERIFY(page.contains("<li><bdi>a: V 点が選ばれていません。</bdi></li>"));
}

void TestReport::sameFactsGiveTheSamePage()
{
    const std::vector<QByteArrayList> rows{row("a", "2.5"), row("b", "", "no")};
    QCOMPARE(reportPage(facts(rows)), reportPage(facts(rows)));
}

// Neither a link nor a source of anything but pictures within the page.
void TestReport::pageAsksNobody()
{
    const QByteArray page = reportPage(facts({row("a", "2.5")}));
    QVERIFY(page.contains("default-src 'none'"));
    for (const char* word : {"http:", "https:", "//cdn", "href=", "@import", "url("})
        QVERIFY2(!page.contains(word), word);
}

QTEST_APPLESS_MAIN(TestReport)
#include "tst_Report.moc"
