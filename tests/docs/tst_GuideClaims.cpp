// What the guide claims beside the steps that it takes: its table of what a wrong energy scale
// costs, and its way from two columns to a spectrum file.

#include "examples/BeamlineFile.h"
#include "examples/MixedSample.h"
#include "input/SpectrumReader.h"
#include "tests/docs/GuideSteps.h"
#include "tests/support/PanelActions.h"
#include "tests/support/SpectrumFile.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

QString page(const QString& language, const char* name)
{
    QFile file(
        QStringLiteral(SOURCE_FOLDER "/docs/%1/%2").arg(language, QString::fromLatin1(name)));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// The cells of a table's row that begins with this one.
QStringList row(const QString& text, const QString& first)
{
    for (const QString& line : text.split(QLatin1Char('\n')))
        if (line.startsWith(QStringLiteral("| %1 |").arg(first)))
            return line.mid(2, line.size() - 4).split(QStringLiteral(" | "));
    return {};
}

/// A noise-free measurement of the example, with energies that read too high.
QByteArray measured(Measurement measurement, double tooHigh)
{
    std::vector<ScanStep> steps;
    for (const double energy : spectra::grid(8000.0, 9250.0, 0.5))
        steps.push_back(
            {energy + tooHigh, 1e6 * std::exp(muT(MixedSample(), measurement, energy)), 1e6});
    return beamlineText("made", steps);
}

} // namespace

class tst_GuideClaims : public QObject
{
    Q_OBJECT

    /// `a` by the conditions for spectra with a blank, where one measurement reads too high.
    static QString fractionFrom(const QString& vPoint, Measurement wrong, double tooHigh)
    {
        const QTemporaryDir dir;
        FourPs panel;
        user::click(panel.UseVicCB);
        user::click(panel.TRSbyS);
        user::type(panel.ePoints[2]->Energy, vPoint);
        AFileSelect* const selectors[] = {panel.RefFile1, panel.RefFile2, panel.TargetFile,
                                          panel.BlankFile};
        for (int i = 0; i < 4; ++i) {
            const auto measurement = static_cast<Measurement>(i);
            const QByteArray text = measured(measurement, measurement == wrong ? tooHigh : 0.0);
            user::drop(selectors[i], spectra::write(dir, "made.dat", text));
        }
        static const QRegularExpression fraction(QStringLiteral("^4ps2: a = ([0-9.]+),"));
        const double a = fraction.match(panel.CalcRes->text()).captured(1).toDouble();
        return QString::number(a, 'f', 3);
    }

private slots:
    void aWrongEnergyScaleCostsWhatThePageSays_data()
    {
        QTest::addColumn<QString>("energy");
        for (const char* const energy : {"8347.5", "8370", "8390"})
            QTest::newRow(energy) << QString::fromLatin1(energy);
    }
    void aWrongEnergyScaleCostsWhatThePageSays()
    {
        QFETCH(QString, energy);
        const MixedSample sample;
        const double difference = (muT(sample, Measurement::Ref1, energy.toDouble()) -
                                   muT(sample, Measurement::Blank, energy.toDouble())) /
                                      sample.thickness1 -
                                  (muT(sample, Measurement::Ref2, energy.toDouble()) -
                                   muT(sample, Measurement::Blank, energy.toDouble())) /
                                      sample.thickness2;
        QStringList expected = {energy, QString::number(std::abs(difference), 'f', 3)};
        for (const auto wrong : {Measurement::Ref1, Measurement::Ref2, Measurement::Target})
            expected.append(fractionFrom(energy, wrong, 0.1));
        for (const QString& language : {QStringLiteral("en"), QStringLiteral("ja")})
            QCOMPARE(row(page(language, "points.md"), energy), expected);
    }

    void twoColumnsBecomeASpectrum_data()
    {
        QTest::addColumn<QString>("language");
        QTest::newRow("English") << QStringLiteral("en");
        QTest::newRow("Japanese") << QStringLiteral("ja");
    }
    void twoColumnsBecomeASpectrum()
    {
        QFETCH(QString, language);
        const QVector<GuideStep> steps = guideSteps(page(language, "files.md"));
        QCOMPARE(steps.size(), 1);
        QCOMPARE(steps.first().words, QStringList{QStringLiteral("shell")});
        const QTemporaryDir dir;
        spectra::write(
            dir, "sample.xy",
            "# a sample\nenergy mu-t\n8300 0.1\n8333.25\t0.205\n\n8350.5 1.25e0\n9000 -0.05\n");
        QProcess shell;
        shell.setWorkingDirectory(dir.path());
        shell.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), steps.first().shown});
        QVERIFY(shell.waitForFinished());
        QCOMPARE(shell.readAllStandardError(), QByteArray());
        QCOMPARE(shell.exitCode(), 0);
        SpectrumPoints points;
        QCOMPARE(readSpectrum(dir.filePath(QStringLiteral("sample.dat")), points),
                 ReadOutcome::Read);
        const double energies[] = {8300.0, 8333.25, 8350.5, 9000.0};
        const double values[] = {0.1, 0.205, 1.25, -0.05};
        QCOMPARE(points.size(), std::size_t(4));
        for (std::size_t i = 0; i < points.size(); ++i) {
            QVERIFY(std::abs(points[i].energy - energies[i]) < 1e-5);
            QVERIFY(std::abs(points[i].mut - values[i]) < 1e-9);
        }
    }
};

QTEST_MAIN(tst_GuideClaims)
#include "tst_GuideClaims.moc"
