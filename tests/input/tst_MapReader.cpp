#include "input/KnownPositions.h"
#include "input/MapReader.h"
#include "tests/support/ArrayBytes.h"
#include "tests/support/PlainMapReader.h"
#include "tests/support/PlainText.h"
#include "tests/support/Random.h"

#include <QTemporaryDir>
#include <QTextCodec>
#include <QTextStream>
#include <QtTest>

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace
{

bool sameBits(double x, double y)
{
    if (std::isnan(x) && std::isnan(y))
        return true; // which of the two not-a-numbers does not show anywhere
    return std::memcmp(&x, &y, sizeof x) == 0;
}

/// Empty where the data are those of the plain reader, otherwise what differs.
QString difference(const MapReadResult& result, const MapData& data, const plain::MapFile& plain)
{
    QStringList header;
    for (const QByteArray& line : data.header)
        header += plain::lineText(line);
    QStringList plainHeader;
    for (const QString& line : plain.header)
        plainHeader += plain::throughUtf8(line);
    if (header != plainHeader)
        return QStringLiteral("header: ") + header.join(QLatin1Char('|')) +
               QStringLiteral(" instead of ") + plainHeader.join(QLatin1Char('|'));
    if (result.energies != plain.energies)
        return QStringLiteral("energies");
    if (data.columns != plain.columns || data.rows != plain.rows || data.valid != plain.valid)
        return QStringLiteral("axes");
    if (data.mut.size() != static_cast<std::size_t>(plain.records.size()))
        return QStringLiteral("%1 records instead of %2")
            .arg(data.mut.size())
            .arg(plain.records.size());
    for (int i = 0; i < plain.records.size(); ++i) {
        const auto k = static_cast<std::size_t>(i);
        const plain::MapFile::Record& record = plain.records[i];
        const MapPosition& position = (*data.positions)[k];
        if (!sameBits(data.mut[k], record.mut()) || !sameBits(position.first, record.first) ||
            !sameBits(position.second, record.second))
            return QStringLiteral("record %1").arg(i);
    }
    return {};
}

/// The sanitizers take ten times as long for a line.
#ifdef __SANITIZE_ADDRESS__
constexpr int fewer = 10;
#else
constexpr int fewer = 1;
#endif

using Engine = std::mt19937_64;

template <class Choice>
const Choice& pick(Engine& random, const std::vector<Choice>& choices)
{
    return choices[random() % choices.size()];
}

QByteArray randomNumber(Engine& random)
{
    const double value = std::ldexp(static_cast<double>(static_cast<std::int64_t>(random())),
                                    static_cast<int>(random() % 90) - 80);
    switch (random() % 6) {
    case 0:
        return QByteArray::number(value, 'g', 17);
    case 1:
        return QByteArray::number(value, 'f', static_cast<int>(random() % 12));
    case 2:
        return QByteArray::number(value, 'e', static_cast<int>(random() % 19));
    case 3:
        return QByteArray::number(static_cast<qlonglong>(random() % 5000));
    case 4:
        return QByteArray::number(qulonglong{random() >> (random() % 64)});
    default:
        return QByteArray::number(static_cast<double>(random() % 100000) / 100.0);
    }
}

QByteArray randomToken(Engine& random)
{
    static const std::vector<QByteArray> odd = {"0",
                                                "-0",
                                                "0.0",
                                                "1",
                                                "-1",
                                                "+1",
                                                ".5",
                                                "5.",
                                                ".",
                                                "-",
                                                "+",
                                                "-.5",
                                                "1e5",
                                                "1E5",
                                                "1e",
                                                "e5",
                                                "1e400",
                                                "-1e400",
                                                "1e-400",
                                                "4.9e-324",
                                                "2e-324",
                                                "nan",
                                                "NaN",
                                                "inf",
                                                "-inf",
                                                "INF",
                                                "infinity",
                                                "0x10",
                                                "1,5",
                                                "1_000",
                                                "1.5.2",
                                                "--1",
                                                "1-",
                                                "#",
                                                "#1",
                                                "12a",
                                                "1d5",
                                                "1f",
                                                "9007199254740992",
                                                "9007199254740993",
                                                "9007199254740993.0",
                                                "0.30000000000000004",
                                                "123456789012345678901234567890",
                                                "0.0000000000000000000000000000000001",
                                                "179769313486231570000000000000000000000",
                                                "\xC3\xA9",
                                                "1\xC3\xA9",
                                                "\xE3\x80\x80",
                                                "1\xC2\xA0"
                                                "2",
                                                "\xE2\x88\x92"
                                                "5",
                                                "\xFF",
                                                "\xC3",
                                                "\xE3\x80",
                                                "\xEF\xBB\xBF"
                                                "1",
                                                "1\r2",
                                                "\r",
                                                "1\v2",
                                                "\f",
                                                "AXIS",
                                                "axis",
                                                "Axis",
                                                "ENERGY",
                                                "energy",
                                                "a\xC4\xB1is"};
    if (random() % 4 != 0)
        return randomNumber(random);
    return pick(random, odd);
}

QByteArray randomHeader(Engine& random)
{
    static const std::vector<QByteArray> headers = {"# AXIS 0 x share step 1 6 points",
                                                    "# axis 1 y thickness step 1 4 points",
                                                    "# Energy = 7090.5 eV",
                                                    "# ENERGY a b",
                                                    "#AXIS 0 x y z w v 5",
                                                    "#",
                                                    "# ",
                                                    "#\xC3\xA9t\xC3\xA9",
                                                    "# AXIS zero b c d e f 7",
                                                    "# AXIS 1 b c d e f seven",
                                                    "# AXIS 1 b c d e f -3",
                                                    "# AXIS 2 b c d e f 9",
                                                    "  # ENERGY = \xE2\x88\x92"
                                                    "5",
                                                    "\t#\tAXIS 1 b\tc d e f 12 #",
                                                    "# AXIS 0 b c d e f 2147483648",
                                                    "# ax\xC4\xB1s 0 b c d e f 8",
                                                    "# \xFF\xFE bytes"};
    return pick(random, headers);
}

QByteArray randomLine(Engine& random)
{
    static const std::vector<QByteArray> blanks = {" ",   " ",        " ",           " ",  "\t",
                                                   "  ",  " \t ",     "\v",          "\f", "\r",
                                                   " \r", "\xC2\xA0", "\xE3\x80\x80"};
    static const std::vector<QByteArray> plainBlanks = {" ", "\t", "   "};
    if (random() % 12 == 0)
        return randomHeader(random);
    const bool plain = random() % 3 != 0;
    const auto& separators = plain ? plainBlanks : blanks;
    const std::uint64_t count = random() % 3 == 0 ? random() % 11 : 3 + random() % 2;
    QByteArray line = random() % 8 == 0 ? pick(random, separators) : QByteArray();
    for (std::uint64_t i = 0; i < count; ++i) {
        if (i > 0)
            line += pick(random, separators);
        line += plain ? randomNumber(random) : randomToken(random);
    }
    if (random() % 8 == 0)
        line += pick(random, separators);
    return line;
}

QByteArray randomBytes(Engine& random)
{
    static const std::string alphabet =
        "0123456789.-+e \t\n\r#\v\f\x1b\x0e\x0f\xC3\xA9\xE3\x80\xFF";
    QByteArray bytes;
    for (std::uint64_t i = random() % 300; i > 0; --i)
        bytes += random() % 50 == 0 ? '\0' : alphabet[random() % alphabet.size()];
    return bytes;
}

struct Tally {
    int files = 0;
    int lines = 0;
};

/// Some files have no invalid bytes, some nothing but ASCII.
QByteArray cleaned(const QByteArray& text, std::uint64_t how)
{
    QByteArray result;
    if (how == 0)
        return text;
    if (how == 1)
        return QString::fromUtf8(text).toUtf8();
    std::copy_if(text.begin(), text.end(), std::back_inserter(result),
                 [](char c) { return static_cast<signed char>(c) >= 0; });
    return result;
}

QByteArray randomFile(Engine& random, Tally& tally)
{
    static const std::vector<QByteArray> marks = {"\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF",
                                                  QByteArray("\0\0\xFE\xFF", 4), "\xEF\xBB"};
    QByteArray text = random() % 50 == 0 ? pick(random, marks) : QByteArray();
    const QByteArray end = random() % 4 == 0 ? "\r\n" : "\n";
    const std::uint64_t count = random() % 300;
    for (std::uint64_t i = 0; i < count; ++i) {
        text += random() % 100 == 0 ? randomBytes(random) : randomLine(random);
        if (i + 1 < count || random() % 2 == 0)
            text += end;
    }
    ++tally.files;
    tally.lines += static_cast<int>(count);
    return cleaned(text, random() % 4);
}

/// What the plain reader finds in a file of these bytes.
plain::MapFile plainMap(const QByteArray& bytes)
{
    QString text = plain::text(bytes);
    QTextStream in(&text);
    plain::MapFile map;
    map.readFrom(in);
    return map;
}

} // namespace

class tst_MapReader : public QObject
{
    Q_OBJECT

private slots:
    void variancesOfCounts_data();
    void variancesOfCounts();
    void mutOfAPixel_data();
    void mutOfAPixel();
    void recordsAndHeader();
    void threeTokensGetIncidentOne();
    void axisAndEnergyInAnyCase();
    void axisThatIsNoInteger();
    void axisWithoutItsSize();
    void withoutAxisReadButNotValid();
    void cannotOpenKeepsContents_data();
    void cannotOpenKeepsContents();
    void refusedKeepsContents();
    void fileLargerThanMemory();
    void recordsLargerThanMemory();
    void endlessLine();
    void endlessHeader();
    void hugeAxes();
    void aBadBlockRefusesTheFile_data();
    void aBadBlockRefusesTheFile();
    void headersInOtherEncodings();
    void characterAcrossTwoPieces();
    void fewPiecesWaitForOne();
    void equalPositionsAreKeptOnce();
    void positionsAreSharedOnlyWithThoseHandedOver();
    void positionsThatDifferAreNotShared();
    void progressRisesToOne();
    void progressComesFromTheThreadThatAsked();
    void equalsThePlainReader();
    void emptyAndOddFiles_data();
    void emptyAndOddFiles();

private:
    QString file(const QByteArray& text);

    QTemporaryDir m_dir;
};

QString tst_MapReader::file(const QByteArray& text)
{
    const QString path = m_dir.filePath(QStringLiteral("map.dat"));
    QFile::remove(path); // overwriting would wait for the disk
    QFile out(path);
    if (!out.open(QIODevice::WriteOnly) || out.write(text) != text.size())
        qFatal("cannot write the test's file");
    return path;
}

void tst_MapReader::mutOfAPixel_data()
{
    QTest::addColumn<QByteArray>("intensities");
    QTest::addColumn<double>("mut");
    QTest::newRow("both") << QByteArray("2 8") << std::log(4.0);
    QTest::newRow("no incident") << QByteArray("3.5 0") << 3.5;
    QTest::newRow("no incident, minus zero") << QByteArray("3.5 -0") << 3.5;
    QTest::newRow("no transmitted") << QByteArray("0 8") << 1.0;
    QTest::newRow("neither") << QByteArray("0 0") << 0.0;
    QTest::newRow("one negative") << QByteArray("-2 8") << qQNaN();
    QTest::newRow("both negative") << QByteArray("-2 -8") << std::log(4.0);
    QTest::newRow("not a number") << QByteArray("nan 8") << qQNaN();
    QTest::newRow("no number counts as zero") << QByteArray("x 8") << 1.0;
    QTest::newRow("infinite incident") << QByteArray("2 inf") << qInf();
    QTest::newRow("three tokens") << QByteArray("0.5") << std::log(2.0);
}

void tst_MapReader::mutOfAPixel()
{
    QFETCH(QByteArray, intensities);
    QFETCH(double, mut);
    MapData data;
    readMapData(file("1 2 " + intensities + "\n"), data);
    QCOMPARE(data.mut.size(), std::size_t{1});
    QVERIFY(sameBits(data.mut[0], mut));
}

void tst_MapReader::recordsAndHeader()
{
    MapData data;
    const MapReadResult result = readMapData(file("# first\n"
                                                  "# AXIS 0 x share step 1 2 points\n"
                                                  "# AXIS 1 y thickness step 1 1 points\n"
                                                  "# ENERGY = 7090 eV\n"
                                                  "10 20 1 2\n"
                                                  "\n"
                                                  "1 2\n"
                                                  "  #  later\theader \n"
                                                  "11 21 4 4 9 9 9\n"),
                                             data);
    QCOMPARE(result.outcome, ReadOutcome::Read);
    QCOMPARE(result.energies, QStringList{QStringLiteral("7090")});
    QVERIFY(data.valid);
    QCOMPARE(data.columns, 2);
    QCOMPARE(data.rows, 1);
    QCOMPARE(data.header, (QByteArrayList{"# first", "# AXIS 0 x share step 1 2 points",
                                          "# AXIS 1 y thickness step 1 1 points",
                                          "# ENERGY = 7090 eV", "  #  later\theader "}));
    QCOMPARE(data.mut.size(), std::size_t{2});
    QCOMPARE(data.mut[0], std::log(2.0));
    QCOMPARE(data.mut[1], 0.0);
    QCOMPARE(data.positions->size(), std::size_t{2});
    QCOMPARE((*data.positions)[0].first, 10.0);
    QCOMPARE((*data.positions)[0].second, 20.0);
    QCOMPARE((*data.positions)[1].first, 11.0);
    QCOMPARE((*data.positions)[1].second, 21.0);
}

void tst_MapReader::threeTokensGetIncidentOne()
{
    MapData data;
    readMapData(file("1 2 4\n"), data);
    QCOMPARE(data.mut.size(), std::size_t{1});
    QCOMPARE(data.mut[0], std::log(1.0 / 4.0));
}

void tst_MapReader::axisAndEnergyInAnyCase()
{
    MapData data;
    const MapReadResult result = readMapData(file("# aXiS 0 a b c d 3\n"
                                                  "# axis 0 a b c d 5\n"
                                                  "# Axis 1 a b c d 7\n"
                                                  "# energy is 1.50\n"
                                                  "# Energy is 0x and more\n"),
                                             data);
    QCOMPARE(data.columns, 5);
    QCOMPARE(data.rows, 7);
    QCOMPARE(result.energies, (QStringList{QStringLiteral("1.50"), QStringLiteral("0x")}));
    QVERIFY(!data.valid);
}

void tst_MapReader::axisThatIsNoInteger()
{
    MapData data;
    readMapData(file("# AXIS x a b c d 3\n# AXIS 1 a b c d 4.5\n1 1 1\n"), data);
    QCOMPARE(data.columns, 3);
    QCOMPARE(data.rows, 0);
    QVERIFY(!data.valid);
}

void tst_MapReader::axisWithoutItsSize()
{
    MapData data;
    readMapData(file("# AXIS 0 a b c d 3\n# AXIS 1 a b c d 2\n"
                     "# AXIS 0 a b c d\n# AXIS 1 a b c d\n1 1 1\n"),
                data);
    QCOMPARE(data.columns, 3);
    QCOMPARE(data.rows, 2);
}

void tst_MapReader::withoutAxisReadButNotValid()
{
    MapData data;
    data.valid = true;
    QCOMPARE(readMapData(file("1 2 3 4\n"), data).outcome, ReadOutcome::Read);
    QVERIFY(!data.valid);
    QCOMPARE(data.mut.size(), std::size_t{1});
    QCOMPARE(data.columns, 0);
}

void tst_MapReader::cannotOpenKeepsContents_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing") << QStringLiteral("/nowhere/map.dat");
    QTest::newRow("empty path") << QString();
    QTest::newRow("folder") << QDir::tempPath();
    QTest::newRow("endless device") << QStringLiteral("/dev/zero");
}

void tst_MapReader::cannotOpenKeepsContents()
{
    QFETCH(QString, path);
    MapData data;
    readMapData(file("# AXIS 0 a b c d 1\n# AXIS 1 a b c d 1\n1 2 3 4\n"), data);
    QVERIFY(data.valid);
    QCOMPARE(readMapData(path, data).outcome, ReadOutcome::CannotOpen);
    QVERIFY(!data.valid);
    QCOMPARE(data.mut.size(), std::size_t{1});
    QCOMPARE(data.columns, 1);
    QCOMPARE(data.rows, 1);
    QCOMPARE(data.header.size(), 2);
}

void tst_MapReader::refusedKeepsContents()
{
    MapData data;
    readMapData(file("# AXIS 0 a b c d 1\n# AXIS 1 a b c d 1\n1 2 3 4\n"), data);
    MapReadOptions options;
    options.memory = 20;
    const QString path = file("# ENERGY is 5\n1 2 3 4\n1 2 3 4\n");
    const MapReadResult result = readMapData(path, data, options);
    QCOMPARE(result.outcome, ReadOutcome::TooLarge);
    QCOMPARE(result.reason, QStringLiteral("The 2D data file [%1] is too large.").arg(path));
    QVERIFY(result.energies.isEmpty());
    QVERIFY(!data.valid);
    QCOMPARE(data.mut.size(), std::size_t{1});
    QCOMPARE(data.columns, 1);
}

void tst_MapReader::fileLargerThanMemory()
{
    const QString path = file("1 2 3 4\n");
    // A hole in the file costs no room on the disk.
    QVERIFY(QFile::resize(path, qint64{1} << 42));
    MapData data;
    QCOMPARE(readMapData(path, data).outcome, ReadOutcome::TooLarge);
}

void tst_MapReader::recordsLargerThanMemory()
{
    // Positions 0 to 999 take 16 bytes each, beside 8 for the value; the text takes 8.
    QByteArray text;
    for (int i = 0; i < 1000; ++i)
        text += "1 2 3 4\n";
    KnownPositions known;
    MapReadOptions options;
    options.knownPositions = &known;
    options.chunkBytes = 512;
    MapData data;
    options.memory = 23999;
    QCOMPARE(readMapData(file(text), data, options).outcome, ReadOutcome::TooLarge);
    options.memory = 24000;
    QCOMPARE(readMapData(file(text), data, options).outcome, ReadOutcome::Read);
    options.memory = 8000; // the positions are known now
    QCOMPARE(readMapData(file(text), data, options).outcome, ReadOutcome::Read);
    QByteArray header;
    for (int i = 0; i < 4000; ++i)
        header += "#\n";
    QCOMPARE(readMapData(file(header), data, options).outcome, ReadOutcome::TooLarge);
}

void tst_MapReader::endlessLine()
{
    const QString path = file("# begins like a header ");
    QVERIFY(QFile::resize(path, qint64{100} << 20));
    MapData data;
    QCOMPARE(readMapData(path, data).outcome, ReadOutcome::TooLarge);
}

/// A header line counts with 64 bytes and its text, and all of them have 64 MiB.
void tst_MapReader::endlessHeader()
{
    constexpr int most = (64 << 20) / 65;
    MapData data;
    const QByteArray record = "1 2 3 4\n";
    MapReadResult result = readMapData(file(QByteArray("#\n").repeated(most) + record), data);
    QCOMPARE(result.outcome, ReadOutcome::Read);
    QCOMPARE(data.header.size(), most);
    result = readMapData(file(QByteArray("#\n").repeated(most + 1) + record), data);
    QCOMPARE(result.outcome, ReadOutcome::TooLarge);
}

void tst_MapReader::hugeAxes()
{
    MapData data;
    readMapData(file("# AXIS 0 a b c d 2000000000\n# AXIS 1 a b c d 2000000000\n1 2 3 4\n"), data);
    QVERIFY(data.valid);
    QCOMPARE(data.columns, 2000000000);
    QCOMPARE(data.rows, 2000000000);
    QCOMPARE(data.mut.size(), std::size_t{1});
}

void tst_MapReader::aBadBlockRefusesTheFile_data()
{
    QTest::addColumn<int>("threads");
    QTest::newRow("one") << 1;
    QTest::newRow("four") << 4;
}

// What stands behind the block would move to the place of what is in it.
void tst_MapReader::aBadBlockRefusesTheFile()
{
    QFETCH(int, threads);
    Workers workers(static_cast<unsigned>(threads));
    const QByteArray text = "# AXIS 0 a b c d 100\n# AXIS 1 a b c d 100\n# ENERGY is 5\n" +
                            QByteArray("1 2 3 4\n").repeated(10000);
    MapReadOptions options;
    options.chunkBytes = 4096;
    for (const int badFrom : {0, 3, 5000, text.size() / 2, text.size() - 1}) {
        MapData data;
        data.columns = 7;
        data.valid = true;
        const MapReadResult result = readMapData(ArrayBytes(text, badFrom), data, options, workers);
        QCOMPARE(result.outcome, ReadOutcome::Unreadable);
        QVERIFY(result.energies.isEmpty());
        QVERIFY(!data.valid);
        QCOMPARE(data.columns, 7);
        QCOMPARE(data.mut.size(), std::size_t{0});
    }
    MapData data;
    QCOMPARE(readMapData(ArrayBytes(text, text.size()), data, options, workers).outcome,
             ReadOutcome::Read);
    QCOMPARE(data.mut.size(), std::size_t{10000});
}

// Only ASCII has a meaning in a header; a comment is kept byte by byte, whatever it is written in.
void tst_MapReader::headersInOtherEncodings()
{
    const QByteArrayList comments{"# sample \xBB\xEE\xCE\xC1 in EUC-JP",
                                  "# sample \x8E\x8E\x97\xBF in Shift_JIS",
                                  "# sample \x1B$B;nNA\x1B(B in ISO-2022-JP",
                                  "# Gr\xFC\xDF"
                                  "e in Latin-1",
                                  QByteArray("# a \0 byte", 10),
                                  "# \xE8\xA9\xA6\xE6\x96\x99 in UTF-8"};
    MapData data;
    const MapReadResult result =
        readMapData(ArrayBytes(comments.join("\r\n") + "\n# ENERGY \xBB 8390\n1 2 3 4\n"), data);
    QCOMPARE(data.header.mid(0, comments.size()), comments);
    QCOMPARE(result.energies, QStringList{QStringLiteral("8390")});
    QCOMPARE(data.mut.size(), std::size_t{1});

    // What a mark shows to be UTF-16 is kept in UTF-8.
    const QString text = QStringLiteral("# \u8a66\u6599 ").repeated(20000) +
                         QStringLiteral("\U0001F4A1\r\n1 2 3 4\n");
    for (const char* const name : {"UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"}) {
        // Shifted, so that every kind of character comes to stand at the end of a piece.
        for (int shift = 0; shift < 3; ++shift) {
            const QString shifted = QLatin1Char('#') + QString(shift, QLatin1Char('x')) + text;
            readMapData(ArrayBytes(QTextCodec::codecForName(name)->fromUnicode(shifted)), data);
            QCOMPARE(data.header,
                     QByteArrayList{shifted.section(QLatin1Char('\r'), 0, 0).toUtf8()});
            QCOMPARE(data.mut.size(), std::size_t{1});
        }
    }
}

/// Files of two bytes a character are converted in pieces of 64 KiB; this one has the two halves of
/// a character on either side of a piece's end.
void tst_MapReader::characterAcrossTwoPieces()
{
    const QByteArray header = "# " + QByteArray(32764, 'x') + "\xf0\x9f\x94\xac end";
    const QString text = QString::fromUtf8(header + "\n1 2 3 4\n");
    QByteArray bytes("\xff\xfe");
    for (const QChar c : text)
        bytes.append(static_cast<char>(c.cell())).append(static_cast<char>(c.row()));
    QCOMPARE(text.at(32766).isHighSurrogate(), true);
    MapData data;
    QCOMPARE(readMapData(file(bytes), data).outcome, ReadOutcome::Read);
    QCOMPARE(data.header, QByteArrayList{header});
    QCOMPARE(data.mut.size(), std::size_t{1});
}

namespace
{

/// A file whose first piece comes only when all that may be read before it have been read.
class SlowStart : public ByteSource
{
public:
    SlowStart(const QByteArray& bytes, std::size_t waitFor) : m_bytes(bytes), m_waitFor(waitFor) {}

    std::int64_t size() const override { return m_bytes.size(); }
    bool read(char* to, std::size_t count, std::int64_t offset) const override
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        if (offset == 0 && count > 4) {
            // As many as there ever will be; one more would show that there is no bound.
            m_changed.wait_for(lock, std::chrono::seconds(20),
                               [&] { return m_reads >= m_waitFor; });
            m_readBeforeTheFirst = m_reads;
        } else if (offset > 0) {
            ++m_reads;
            m_changed.notify_all();
        }
        std::memcpy(to, m_bytes.constData() + offset, count);
        return true;
    }
    std::size_t readBeforeTheFirst() const { return m_readBeforeTheFirst; }

private:
    QByteArray m_bytes;
    std::size_t m_waitFor;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    mutable std::size_t m_reads = 0;
    mutable std::size_t m_readBeforeTheFirst = 0;
};

} // namespace

// Pieces that are read wait in memory for those before them; all of a file must not.
void tst_MapReader::fewPiecesWaitForOne()
{
    constexpr std::size_t chunkBytes = 10000;
    const QByteArray text = QByteArray("1 2 3 4\n").repeated(1000 * chunkBytes / 8);
    MapReadOptions options;
    options.chunkBytes = chunkBytes;
    // Four for each thread may wait, and the others hold one each that they want to hand over.
    Workers workers(3);
    constexpr std::size_t atMost = 4 * 3 + 2;
    const SlowStart file(text, atMost);
    MapData data;
    QCOMPARE(readMapData(file, data, options, workers).outcome, ReadOutcome::Read);
    QCOMPARE(file.readBeforeTheFirst(), atMost);
    QCOMPARE(data.mut.size(), std::size_t{1000 * chunkBytes / 8});
}

void tst_MapReader::equalPositionsAreKeptOnce()
{
    KnownPositions known;
    MapReadOptions options;
    options.knownPositions = &known;
    options.chunkBytes = 16;
    MapData first;
    MapData second;
    MapData third;
    readMapData(file("1 2 3 4\n-0 nan 5 6\n7 8 9 10\n"), first, options);
    readMapData(file("# other\n1 2 5 6\n-0 nan 5 6\n7 8 1 1\n"), second, options);
    QCOMPARE(second.positions.get(), first.positions.get());
    QCOMPARE(known.all(), std::vector<SharedPositions>{first.positions});
    QCOMPARE(second.mut[0], std::log(6.0 / 5.0));
    // As soon as nobody holds them they are forgotten.
    std::weak_ptr<const MapPositions> forgotten = first.positions;
    first = MapData();
    second = MapData();
    QVERIFY(forgotten.expired());
    readMapData(file("1 2 3 4\n-0 nan 5 6\n7 8 9 10\n"), third, options);
    QCOMPARE(third.positions->size(), std::size_t{3});
    QCOMPARE(known.all(), std::vector<SharedPositions>{third.positions});
}

// What one analysis has read is nothing to another one, which may run at the same time.
void tst_MapReader::positionsAreSharedOnlyWithThoseHandedOver()
{
    const QString path = file("1 2 3 4\n5 6 7 8\n");
    KnownPositions known;
    KnownPositions others;
    std::array<MapData, 4> data;
    for (std::size_t i = 0; i < data.size(); ++i) {
        MapReadOptions options;
        options.knownPositions = i < 2 ? &known : i == 2 ? &others : nullptr;
        readMapData(path, data[i], options);
        QCOMPARE(data[i].positions->size(), std::size_t{2});
    }
    QVERIFY(data[1].positions == data[0].positions);
    QVERIFY(data[2].positions != data[0].positions);
    QVERIFY(data[3].positions != data[0].positions);
    QVERIFY(data[3].positions != data[2].positions);
}

void tst_MapReader::positionsThatDifferAreNotShared()
{
    KnownPositions known;
    MapReadOptions options;
    options.knownPositions = &known;
    options.chunkBytes = 8;
    MapData first;
    readMapData(file("1 2 1\n3 4 1\n5 6 1\n"), first, options);
    for (const QByteArray& text :
         {QByteArray("1 2 1\n3 4 1\n"), QByteArray("1 2 1\n3 4 1\n5 6 1\n7 8 1\n"),
          QByteArray("1 2 1\n3 4 1\n5 6.5 1\n"), QByteArray("1.5 2 1\n3 4 1\n5 6 1\n")}) {
        MapData second;
        const QString path = file(text);
        const MapReadResult result = readMapData(path, second, options);
        QVERIFY(second.positions != first.positions);
        QCOMPARE(difference(result, second, plainMap(text)), QString());
    }
}

void tst_MapReader::progressRisesToOne()
{
    QByteArray text;
    for (int i = 0; i < 1000; ++i)
        text += "1 2 3 4\n";
    MapReadOptions options;
    options.chunkBytes = 100;
    std::vector<double> parts;
    options.progress = [&](double part) { parts.push_back(part); };
    MapData data;
    Workers one(1);
    readMapData(file(text), data, options, one);
    QVERIFY(parts.size() > 50);
    QVERIFY(std::is_sorted(parts.begin(), parts.end()));
    QCOMPARE(parts.back(), 1.0);
}

namespace
{

/// Lets the thread that asks and another one go on only when both read something.
class ReadByBoth : public ByteSource
{
public:
    explicit ReadByBoth(const QByteArray& bytes) : m_bytes(bytes) {}

    std::int64_t size() const override { return m_bytes.size(); }
    bool read(char* to, std::size_t count, std::int64_t offset) const override
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        const bool asker = std::this_thread::get_id() == m_asker;
        if (!asker || count > 4) { // what is read before the work is shared
            (asker ? m_askerReads : m_otherReads) = true;
            m_changed.notify_all();
            m_changed.wait_for(lock, std::chrono::seconds(20),
                               [&] { return m_askerReads && m_otherReads; });
        }
        std::memcpy(to, m_bytes.constData() + offset, count);
        return true;
    }

private:
    QByteArray m_bytes;
    std::thread::id m_asker = std::this_thread::get_id();
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    mutable bool m_askerReads = false;
    mutable bool m_otherReads = false;
};

} // namespace

/// What shows it belongs to that thread.
void tst_MapReader::progressComesFromTheThreadThatAsked()
{
    const ReadByBoth source(QByteArray("1 2 3 4\n").repeated(1000));
    MapReadOptions options;
    options.chunkBytes = 100;
    const std::thread::id asker = std::this_thread::get_id();
    std::atomic<int> calls{0};
    std::atomic<int> elsewhere{0};
    options.progress = [&](double) {
        ++calls;
        elsewhere += std::this_thread::get_id() != asker;
    };
    MapData data;
    Workers two(2);
    QCOMPARE(readMapData(source, data, options, two).outcome, ReadOutcome::Read);
    QVERIFY(calls > 0);
    QCOMPARE(elsewhere.load(), 0);
}

void tst_MapReader::equalsThePlainReader()
{
    constexpr int lines = 1000000;
    const quint64 seed = Random::seed();
    qInfo("seed %llu", seed);
    Engine random(seed);
    static const std::array<unsigned, 4> threads = {1, 2, 3, 8};
    std::vector<std::unique_ptr<Workers>> workers;
    for (const unsigned n : threads)
        workers.push_back(std::make_unique<Workers>(n));
    Tally tally;
    while (tally.lines < lines / fewer) {
        const QByteArray text = randomFile(random, tally);
        const QString path = file(text);
        MapReadOptions options;
        options.chunkBytes = 1 + random() % (random() % 2 == 0 ? 40 : 20000);
        MapData data;
        const MapReadResult result =
            readMapData(path, data, options, *workers[random() % workers.size()]);
        const QString differs = difference(result, data, plainMap(text));
        QVERIFY2(differs.isEmpty(),
                 qPrintable(differs + QStringLiteral(" in file %1").arg(tally.files)));
    }
}

void tst_MapReader::emptyAndOddFiles_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one line feed") << QByteArray("\n");
    QTest::newRow("no line end") << QByteArray("1 2 3");
    QTest::newRow("carriage returns only") << QByteArray("1 2 3\r4 5 6\r");
    QTest::newRow("carriage return at the end") << QByteArray("1 2 3 4\r");
    QTest::newRow("number cut by a carriage return") << QByteArray("1 2 3 4\r5\r\n");
    QTest::newRow("zero bytes") << QByteArray("1 2 3\0 4\n\0\n", 11);
    QTest::newRow("mark of UTF-8 only") << QByteArray("\xEF\xBB\xBF");
    QTest::newRow("mark of UTF-8") << QByteArray("\xEF\xBB\xBF# \xC3\xA9\n1 2 3 4\n");
    QTest::newRow("mark of UTF-16") << QByteArray("\xFF\xFE"
                                                  "1\0 \0"
                                                  "2\0 \0"
                                                  "3\0\n\0",
                                                  14);
    QTest::newRow("binary") << QByteArray("\x7f"
                                          "ELF\x02\x01\x01\0\xff\xfe 1 2 3 4\n\n\n",
                                          21);
    // A text stream decodes its file in blocks of 16384 bytes.
    for (const char* broken : {"\xE3\x80", "\xE3\x80\x41", "\xF0\x9F\x98", "\xC3\xC3\xA9"})
        for (int before = 16380; before <= 16384; ++before)
            QTest::addRow("broken character at %d, %d bytes", before,
                          static_cast<int>(qstrlen(broken)))
                << QByteArray("#").leftJustified(before, 'x') + broken + "y\n1 2 3 4\n";
    QTest::newRow("long tokens") << QByteArray(30000, '1') + " 0." + QByteArray(30000, '0') +
                                        "1e30001 " + QByteArray(20000, '0') + "5 6\n";
    QTest::newRow("wide blanks") << QByteArray(50000, ' ') + "1" + QByteArray(50000, '\t') +
                                        "2 3 4" + QByteArray(50000, ' ') + "\n5 6 7 8\n";
}

void tst_MapReader::emptyAndOddFiles()
{
    QFETCH(QByteArray, text);
    const QString path = file(text);
    const plain::MapFile plain = plainMap(text);
    for (const std::size_t chunkBytes : {1, 7, 1000, 1000000}) {
        MapReadOptions options;
        options.chunkBytes = chunkBytes;
        MapData data;
        const MapReadResult result = readMapData(path, data, options);
        QCOMPARE(difference(result, data, plain), QString());
    }
}

void tst_MapReader::variancesOfCounts_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QVector<double>>("expected");
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const QByteArray axes = "# AXIS 0 x mm step 1 3 points\n# AXIS 1 y mm step 1 1 points\n";
    // With the gains 2 and 3 of the detectors before and behind the sample.
    QTest::newRow("counts") << axes + "0 0 4 16\n1 0 30 100\n2 0 1 1e1\n"
                            << QVector<double>{0.875, 0.12, 3.2};
    QTest::newRow("no counts") << axes + "0 0 0 16\n1 0 -3 100\n2 0 3 100\n"
                               << QVector<double>{nan, nan, 1.02};
    QTest::newRow("some without I0") << axes + "0 0 4 16\n1 0 0.3\n2 0 1 10\n"
                                     << QVector<double>{0.875, nan, 3.2};
    // What only the slow way reads, in the midst of others.
    QTest::newRow("odd blanks") << axes + "0 0 4 16\n1\v0 30 100\n2 0 1 10\n1\v0 7\n"
                                << QVector<double>{0.875, 0.12, 3.2, nan};
    QTest::newRow("none with I0") << axes + "0 0 4\n1 0 30\n2 0 1\n" << QVector<double>{};
}

void tst_MapReader::variancesOfCounts()
{
    QFETCH(QByteArray, text);
    QFETCH(QVector<double>, expected);
    for (const std::size_t chunk : {std::size_t{7}, std::size_t{1} << 20}) {
        MapReadOptions options;
        options.chunkBytes = chunk;
        MapData data;
        QCOMPARE(readMapData(ArrayBytes(text), data, options).outcome, ReadOutcome::Read);
        QVERIFY(data.variance.empty());
        options.gains = DetectorGains{2.0, 3.0};
        QCOMPARE(readMapData(ArrayBytes(text), data, options).outcome, ReadOutcome::Read);
        QCOMPARE(data.variance.size(), static_cast<std::size_t>(expected.size()));
        for (int i = 0; i < expected.size(); ++i) {
            const float found = data.variance[static_cast<std::size_t>(i)];
            QVERIFY(std::isnan(expected[i]) ? std::isnan(found)
                                            : found == static_cast<float>(expected[i]));
        }
    }
}

QTEST_GUILESS_MAIN(tst_MapReader)
#include "tst_MapReader.moc"
