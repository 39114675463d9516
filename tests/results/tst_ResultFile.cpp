#include "results/ResultFile.h"
#include "tests/support/Files.h"
#include "tests/support/Random.h"

#include <QTemporaryDir>
#include <QTextStream>
#include <QtTest>

#include <array>
#include <atomic>
#include <limits>
#include <random>
#include <thread>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();

struct Pixel {
    double first;
    double second;
    double a;
    double t;
};

MapResults resultsOf(int columns, int rows, const std::vector<Pixel>& pixels)
{
    MapResults results;
    results.columns = columns;
    results.rows = rows;
    auto positions = std::make_shared<MapPositions>();
    for (const Pixel& pixel : pixels) {
        const MapPosition position{pixel.first, pixel.second};
        positions->append(&position, 1);
        results.a.append(&pixel.a, 1);
        results.t.append(&pixel.t, 1);
    }
    results.positions = positions;
    return results;
}

/// The file written in the plainest way, by the toolkit's text stream and its own formatting.
QByteArray plainText(const QByteArrayList& header, const MapResults& results, double v1, double v2)
{
    QByteArray text;
    QTextStream out(&text);
    for (const QByteArray& line : header)
        out << line << "\n";
    if (!header.isEmpty())
        out << "\n";
    for (int r = 0; r < results.rows; ++r) {
        for (int c = 0; c < results.columns; ++c) {
            const auto k = static_cast<std::size_t>(r * results.columns + c);
            const bool there = k < results.size();
            const double a = there ? results.a[k] : 0.0;
            out << QStringLiteral(" %1 %2    %3 %4 %5\n")
                       .arg(there ? results.position(k).first : 0.0, 10)
                       .arg(there ? results.position(k).second : 0.0, 10)
                       .arg(a, 10)
                       .arg(v1 * a + v2 * (1 - a), 10)
                       .arg(there ? results.t[k] : 0.0, 10);
        }
        out << "\n";
    }
    out.flush();
    return text;
}

} // namespace

class tst_ResultFile : public QObject
{
    Q_OBJECT

private slots:
    void oneLine();
    void blocksOfRows();
    void pixelsWithoutResult();
    void oddNumbers();
    void headerLines();
    void headerByteByByte();
    void emptyMap_data();
    void emptyMap();
    void overwrites();
    void killedInTheMiddle();
    void cannotOpen_data();
    void cannotOpen();
    void fullDisk();
    void progressRisesToOne();
    void progressIsToldInTheAskingThread();
    void equalsThePlainText();

private:
    QString path() const { return m_dir.filePath(QStringLiteral("res.dat")); }

    QTemporaryDir m_dir;
};

void tst_ResultFile::oneLine()
{
    const MapResults results = resultsOf(1, 1, {{1, 2, 0.25, 0.8}});
    QCOMPARE(writeResultFile(path(), {}, results, {2, 3}), WriteOutcome::Written);
    QCOMPARE(contents(path()),
             QByteArray("          1          2          0.25       2.75        0.8\n\n"));
}

void tst_ResultFile::blocksOfRows()
{
    const MapResults results = resultsOf(
        2, 3, {{0, 0, 0, 1}, {1, 0, 0, 2}, {0, 1, 0, 3}, {1, 1, 0, 4}, {0, 2, 0, 5}, {1, 2, 0, 6}});
    QCOMPARE(writeResultFile(path(), {}, results, {2, 3}), WriteOutcome::Written);
    const QByteArray line = "          %1          %2             0          3          %3\n";
    QByteArray expected;
    int t = 0;
    for (char y = '0'; y < '3'; ++y) {
        for (char x = '0'; x < '2'; ++x)
            expected += QByteArray(line)
                            .replace("%1", QByteArray(1, x))
                            .replace("%2", QByteArray(1, y))
                            .replace("%3", QByteArray::number(++t));
        expected += "\n";
    }
    QCOMPARE(contents(path()), expected);
}

void tst_ResultFile::pixelsWithoutResult()
{
    const MapResults results = resultsOf(2, 1, {{5, 6, 1, 0.5}});
    QCOMPARE(writeResultFile(path(), {}, results, {2, 3}), WriteOutcome::Written);
    QCOMPARE(contents(path()),
             QByteArray("          5          6             1          2        0.5\n"
                        "          0          0             0          3          0\n\n"));
}

void tst_ResultFile::oddNumbers()
{
    const MapResults results = resultsOf(1, 3,
                                         {{-0.0, 1234565, infinity, notANumber},
                                          {-0.000123456789, 1e-300, notANumber, -infinity},
                                          {100000.5, 1e22, -0.0, -524288.5}});
    QCOMPARE(writeResultFile(path(), {}, results, {2, 3}), WriteOutcome::Written);
    QCOMPARE(contents(path()),
             QByteArray("          0 1.23457e+06           inf        nan        nan\n\n"
                        " -0.000123457     1e-300           nan        nan       -inf\n\n"
                        "     100001      1e+22             0          3    -524289\n\n"));
}

void tst_ResultFile::headerLines()
{
    const MapResults results = resultsOf(1, 1, {{1, 2, 1, 1}});
    const QByteArrayList header{"# first", "  #\tsecond "};
    QCOMPARE(writeResultFile(path(), header, results, {2, 3}), WriteOutcome::Written);
    QCOMPARE(contents(path()),
             QByteArray("# first\n  #\tsecond \n\n"
                        "          1          2             1          2          1\n\n"));
}

// A comment in the encoding of another computer comes out as it went in.
void tst_ResultFile::headerByteByByte()
{
    const QByteArrayList header{"# \xCE\xBCt \xE9\x89\x84", "# \xA6\xCCt \xC5\xB4",
                                "# \x83\xCAt \xFF", QByteArray("# a \0 byte", 10)};
    writeResultFile(path(), header, resultsOf(0, 0, {}), {2, 3});
    QCOMPARE(contents(path()), header.join('\n') + "\n\n");
}

void tst_ResultFile::emptyMap_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<int>("rows");
    QTest::newRow("nothing") << 0 << 0;
    QTest::newRow("no columns") << 0 << 5;
    QTest::newRow("no rows") << 5 << 0;
    QTest::newRow("negative") << -5 << -5;
}

void tst_ResultFile::emptyMap()
{
    QFETCH(int, columns);
    QFETCH(int, rows);
    const MapResults results = resultsOf(columns, rows, {});
    QCOMPARE(writeResultFile(path(), {"# h"}, results, {2, 3}), WriteOutcome::Written);
    QCOMPARE(contents(path()), QByteArray("# h\n\n"));
    QCOMPARE(writeResultFile(path(), {}, results, {2, 3}), WriteOutcome::Written);
    QCOMPARE(contents(path()), QByteArray());
}

void tst_ResultFile::overwrites()
{
    const MapResults large = resultsOf(1, 2, {{1, 2, 1, 1}, {1, 2, 1, 1}});
    const MapResults small = resultsOf(1, 1, {{1, 2, 1, 1}});
    writeResultFile(path(), {}, small, {2, 3});
    const QByteArray expected = contents(path());
    writeResultFile(path(), {}, large, {2, 3});
    writeResultFile(path(), {}, small, {2, 3});
    QCOMPARE(contents(path()), expected);
}

/// The writer is killed when it has shown some progress: the earlier results are whole.
void tst_ResultFile::killedInTheMiddle()
{
    QVERIFY(writeResultFile(path(), {}, resultsOf(1, 1, {{1, 2, 1, 1}}), {2, 3}) ==
            WriteOutcome::Written);
    const QByteArray earlier = contents(path());
    const MapResults results = resultsOf(300, 300, std::vector<Pixel>(90000, {1, 2, 1, 1}));
    const pid_t child = fork();
    if (child == 0) {
        Workers one(1);
        const auto die = [](double part) {
            if (part > 0.5)
                raise(SIGKILL);
        };
        writeResultFile(path(), {}, results, {2, 3}, die, one);
        _exit(0);
    }
    int status = 0;
    QCOMPARE(waitpid(child, &status, 0), child);
    QVERIFY(WIFSIGNALED(status));
    QCOMPARE(contents(path()), earlier);
}

void tst_ResultFile::cannotOpen_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("no path") << QString();
    QTest::newRow("folder") << QDir::tempPath();
    QTest::newRow("missing folder") << QStringLiteral("/nowhere/res.dat");
}

void tst_ResultFile::cannotOpen()
{
    QFETCH(QString, path);
    const MapResults results = resultsOf(1, 1, {{1, 2, 1, 1}});
    QCOMPARE(writeResultFile(path, {}, results, {2, 3}), WriteOutcome::CannotOpen);
}

void tst_ResultFile::fullDisk()
{
    if (!QFile::exists(QStringLiteral("/dev/full")))
        QSKIP("no device that is always full");
    const MapResults results = resultsOf(1, 1, {{1, 2, 1, 1}});
    QCOMPARE(writeResultFile(QStringLiteral("/dev/full"), {}, results, {2, 3}),
             WriteOutcome::CannotWrite);
    const std::vector<Pixel> many(100000, {1, 2, 1, 1});
    QCOMPARE(
        writeResultFile(QStringLiteral("/dev/full"), {"#"}, resultsOf(1000, 100, many), {2, 3}),
        WriteOutcome::CannotWrite);
}

void tst_ResultFile::progressRisesToOne()
{
    const MapResults results = resultsOf(300, 300, std::vector<Pixel>(90000, {1, 2, 1, 1}));
    std::vector<double> parts;
    Workers one(1);
    writeResultFile(
        path(), {}, results, {2, 3}, [&](double part) { parts.push_back(part); }, one);
    QVERIFY(parts.size() > 5);
    QVERIFY(std::is_sorted(parts.begin(), parts.end()));
    QCOMPARE(parts.back(), 1.0);
}

/// A window shows it: widgets are touched by their own thread only.
void tst_ResultFile::progressIsToldInTheAskingThread()
{
    const MapResults results = resultsOf(1000, 500, std::vector<Pixel>(500000, {1, 2, 1, 1}));
    const std::thread::id asking = std::this_thread::get_id();
    std::atomic<int> elsewhere{0};
    Workers workers(4);
    const auto count = [&](double) { elsewhere += std::this_thread::get_id() != asking; };
    QCOMPARE(writeResultFile(path(), {}, results, {2, 3}, count, workers), WriteOutcome::Written);
    QCOMPARE(elsewhere.load(), 0);
}

void tst_ResultFile::equalsThePlainText()
{
    const quint64 seed = Random::seed();
    qInfo("seed %llu", seed);
    std::mt19937_64 random(seed);
    const auto value = [&] {
        static const std::array<double, 5> odd = {0.0, -0.0, notANumber, infinity, -infinity};
        if (random() % 50 == 0)
            return odd[random() % odd.size()];
        return std::ldexp(static_cast<double>(static_cast<std::int64_t>(random())),
                          static_cast<int>(random() % 40) - 83);
    };
    for (const unsigned threads : {1U, 2U, 3U, 8U}) {
        Workers workers(threads);
        for (const int columns : {1, 7, 250, 30000}) {
            const int rows = 30000 / columns + 1;
            const auto count = static_cast<std::size_t>(columns * rows) - random() % 3;
            std::vector<Pixel> pixels(count);
            for (Pixel& pixel : pixels)
                pixel = {value(), value(), value(), value()};
            const MapResults results = resultsOf(columns, rows, pixels);
            const QByteArrayList header{"# h"};
            const double v1 = value();
            const double v2 = value();
            QCOMPARE(writeResultFile(path(), header, results, {v1, v2}, {}, workers),
                     WriteOutcome::Written);
            // No QCOMPARE: on failure it would print the megabytes.
            QVERIFY(contents(path()) == plainText(header, results, v1, v2));
        }
    }
}

QTEST_GUILESS_MAIN(tst_ResultFile)
#include "tst_ResultFile.moc"
