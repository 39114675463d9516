#include "examples/MapSample.h"
#include "examples/StackFiles.h"
#include "formats/StackMaps.h"
#include "formats/StackProcess.h"
#include "formats/StackSpectrum.h"
#include "tests/support/Files.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <hdf5.h>
#include <tiffio.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <functional>

/// HDF5 and TIFF files that are damaged, or that nobody should give to the program.
class tst_DamagedStacks : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void damaged_data();
    void damaged();
    void hostile_data();
    void hostile();
    void linksBelowTheFolder_data() { linkKinds(); }
    void linksBelowTheFolder();
    void linksOutOfTheFolder_data() { linkKinds(); }
    void linksOutOfTheFolder();
    void chunksNeverWritten();
    void unorderedAndDoubleEnergies();
    void groupsInThemselves();
    void oneImageForAll();
    void behindAUserBlock();
    void stripsInAnyOrder();
    void faultOfTheFirstSet();
    void imagesBeyondCounting();

private:
    static void linkKinds();
    QString file(const QString& name) const { return m_dir.filePath(name); }

    QTemporaryDir m_dir;
};

namespace
{

/// An HDF5 file in the making: identifiers are given back with the file.
class Hdf5Writer
{
public:
    /// @param userBlock  bytes before what the library writes
    explicit Hdf5Writer(const QString& path, hsize_t userBlock = 0)
    {
        const hid_t access = H5Pcreate(H5P_FILE_ACCESS);
        H5Pset_fclose_degree(access, H5F_CLOSE_STRONG);
        const hid_t creation = H5Pcreate(H5P_FILE_CREATE);
        H5Pset_userblock(creation, userBlock);
        m_file = H5Fcreate(QFile::encodeName(path).constData(), H5F_ACC_TRUNC, creation, access);
        H5Pclose(creation);
        H5Pclose(access);
        if (m_file < 0)
            qFatal("no HDF5 file can be made");
    }
    ~Hdf5Writer() { H5Fclose(m_file); }
    Hdf5Writer(const Hdf5Writer&) = delete;
    Hdf5Writer& operator=(const Hdf5Writer&) = delete;

    hid_t id() const { return m_file; }
    /// @param plist    of its creation
    /// @param numbers  null for none
    void set(const char* path, const std::vector<hsize_t>& size, hid_t type, const void* numbers,
             hid_t plist = H5P_DEFAULT) const
    {
        const hid_t space = H5Screate_simple(static_cast<int>(size.size()), size.data(), nullptr);
        const hid_t data = H5Dcreate2(m_file, path, type, space, H5P_DEFAULT, plist, H5P_DEFAULT);
        if (data < 0 || (numbers != nullptr &&
                         H5Dwrite(data, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, numbers) < 0))
            qFatal("%s cannot be written", path);
        H5Dclose(data);
        H5Sclose(space);
    }
    void energies(const std::vector<double>& energies, const char* path = "/X_eng") const
    {
        set(path, {energies.size()}, H5T_NATIVE_DOUBLE, energies.data());
    }
    void group(const char* path) const
    {
        H5Gclose(H5Gcreate2(m_file, path, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
    }

private:
    hid_t m_file = -1;
};

using Write = std::function<void(const Hdf5Writer&)>;

constexpr hsize_t frames = 5;
constexpr hsize_t rows = 9;
constexpr hsize_t columns = 13;
const std::vector<hsize_t> stackSize{frames, rows, columns};

CountedStack counted()
{
    MapSample map;
    map.columns = static_cast<int>(columns);
    map.rows = static_cast<int>(rows);
    return countedStack(map, {8313, 8381, 8390, 8404.5, 8460});
}

hid_t chunked(const std::vector<hsize_t>& chunk)
{
    const hid_t plist = H5Pcreate(H5P_DATASET_CREATE);
    H5Pset_chunk(plist, static_cast<int>(chunk.size()), chunk.data());
    return plist;
}

/// fxi in compressed chunks, with a checksum each, in a file of the newest kind.
bool writeCompressed(const QString& path, const CountedStack& stack)
{
    const Hdf5Writer file(path);
    const hid_t plist = chunked({1, rows, columns});
    H5Pset_shuffle(plist);
    H5Pset_deflate(plist, 6);
    H5Pset_fletcher32(plist);
    file.set("/img_xanes", stackSize, H5T_NATIVE_FLOAT, stack.transmission().data(), plist);
    H5Pclose(plist);
    file.energies(stack.energies);
    return true;
}

/// Pages of mu-t in float32.
/// @param mode  of libtiff: "wb" has the other byte order, "w8" is BigTIFF
bool writeFloatPages(const QString& path, const CountedStack& stack, const char* mode, bool tiles,
                     bool compressed)
{
    TIFF* const file = TIFFOpen(QFile::encodeName(path).constData(), mode);
    if (file == nullptr)
        return false;
    constexpr std::uint32_t side = 16;
    const std::vector<double> muts = stack.mut();
    for (std::size_t page = 0; page < frames; ++page) {
        TIFFSetField(file, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(columns));
        TIFFSetField(file, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(rows));
        TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, 32);
        TIFFSetField(file, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP);
        TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, 1);
        TIFFSetField(file, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        if (compressed)
            TIFFSetField(file, TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE);
        if (tiles) {
            TIFFSetField(file, TIFFTAG_TILEWIDTH, side);
            TIFFSetField(file, TIFFTAG_TILELENGTH, side);
        } else {
            TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, 4);
        }
        std::vector<float> tile(side * side);
        for (std::uint32_t y = 0; y < rows; ++y) {
            float* const row = tile.data() + (tiles ? y * side : 0);
            for (std::size_t x = 0; x < columns; ++x)
                row[x] = static_cast<float>(muts[(page * rows + y) * columns + x]);
            if (!tiles && TIFFWriteScanline(file, row, y) != 1)
                return false;
        }
        if (tiles && TIFFWriteTile(file, tile.data(), 0, 0, 0, 0) < 0)
            return false;
        if (TIFFWriteDirectory(file) != 1)
            return false;
    }
    TIFFClose(file);
    QByteArray energies;
    for (const double energy : stack.energies)
        energies += QByteArray::number(energy) + '\n';
    create(path.left(path.lastIndexOf(QLatin1Char('.'))) + QStringLiteral(".txt"), energies);
    return true;
}

/// A layout that is damaged.
struct Layout {
    const char* name;
    std::function<bool(const QString&, const CountedStack&)> write;
    StackValues values; ///< Unknown where the layout says it
};

const std::vector<Layout>& layouts()
{
    const auto exchange = [](bool last) {
        return
            [last](const QString& p, const CountedStack& s) { return writeExchange(p, s, last); };
    };
    const auto pages = [](const char* mode, bool tiles, bool compressed) {
        return [=](const QString& path, const CountedStack& stack) {
            return writeFloatPages(path, stack, mode, tiles, compressed);
        };
    };
    static const std::vector<Layout> all{
        {"fxi.h5", writeFxi, StackValues::Unknown},
        {"exchange.h5", exchange(false), StackValues::Unknown},
        {"last.h5", exchange(true), StackValues::Unknown},
        {"mistral.h5", writeMistral, StackValues::Unknown},
        {"nexus.h5", writeNxdata, StackValues::MuT},
        {"gzip.h5", writeCompressed, StackValues::Unknown},
        {"strips.tif", pages("w", false, false), StackValues::MuT},
        {"tiles.tif", pages("w8", true, false), StackValues::MuT},
        {"zip.tif", pages("w", false, true), StackValues::MuT},
        {"big-endian.tif", pages("wb", true, true), StackValues::MuT},
        {"scan.his", writeHisStack, StackValues::Unknown},
        {"scan.dat", writeImgStack, StackValues::Unknown}};
    return all;
}

/// Numbers of which sizes, places and counts in a file are made.
void putHostileNumber(QRandomGenerator& random, QByteArray& bytes, int at)
{
    static constexpr std::array<std::uint64_t, 9> numbers{0,
                                                          1,
                                                          0x7fffffff,
                                                          0xffffffff,
                                                          0x80000000,
                                                          0x10000000,
                                                          0xffffffffffffffff,
                                                          0x7fffffffffffffff,
                                                          0x0100000000000000};
    const std::uint64_t number =
        numbers[static_cast<std::size_t>(random.bounded(static_cast<int>(numbers.size())))];
    const int size = std::min(1 << random.bounded(4), bytes.size() - at);
    std::memcpy(bytes.data() + at, &number, static_cast<std::size_t>(size));
}

/// Cut off, bits turned, bytes changed, sizes out of all proportion, a piece put elsewhere.
QByteArray damagedBytes(const QByteArray& whole, QRandomGenerator& random)
{
    QByteArray bytes = whole;
    // Most of what describes the file stands at its beginning.
    const auto place = [&](int round) {
        const int end = round % 2 == 0 ? bytes.size() : std::min(bytes.size(), 4096);
        return random.bounded(end);
    };
    const int kind = random.bounded(5);
    if (kind == 0) {
        bytes.truncate(place(0));
        return bytes;
    }
    const int changes = 1 + random.bounded(kind == 4 ? 2 : 8);
    for (int k = 0; k < changes; ++k) {
        const int at = place(k);
        if (kind == 1)
            bytes[at] = static_cast<char>(bytes[at] ^ (1 << random.bounded(8)));
        else if (kind == 2)
            bytes[at] = static_cast<char>(random.bounded(256));
        else if (kind == 3)
            putHostileNumber(random, bytes, at & ~3);
        else
            bytes.replace(at, 64, bytes.mid(place(k + 1), 64));
    }
    return bytes;
}

/// What became of damaged files.
struct Counts {
    int refused = 0; ///< with a reason of the reader's
    int failed = 0;  ///< the process failed
    int tooLong = 0; ///< or was ended
    int read = 0;
    qint64 longest = 0; ///< ms, of one question

    void add(const QString& reason)
    {
        if (reason.contains(QStringLiteral("makes its reader fail")))
            ++failed;
        else if (reason.contains(QStringLiteral("takes longer than")))
            ++tooLong;
        else
            ++refused;
    }
};

bool isOfTheReader(const std::optional<FileFault>& fault)
{
    return fault && (fault->reason.contains(QStringLiteral("makes its reader fail")) ||
                     fault->reason.contains(QStringLiteral("takes longer than")));
}

/// What is wrong with a file does not depend on how it is read. What the library makes of a damaged
/// chunk may: of memory that nobody has set.
void checkSame(const std::optional<FileFault>& one, const std::optional<FileFault>& other)
{
    if (isOfTheReader(one) || isOfTheReader(other)) // that fails by chance, or because others work
        return;
    const QString a = one ? faultText(*one) : QString();
    const QString b = other ? faultText(*other) : QString();
    if (a != b)
        qFatal("\"%s\" in one way, \"%s\" in another", qPrintable(a), qPrintable(b));
}

/// Opens and reads a file, and lists what is in it.
/// @return why it is refused
QString faultOf(const StackSource& source, StackLimits limits, Counts& counts)
{
    QElapsedTimer timer;
    const auto tell = [&](const FileFault& fault) {
        counts.longest = std::max(counts.longest, timer.restart());
        return fault.reason;
    };
    timer.start();
    if (source.path.endsWith(QStringLiteral(".h5"))) {
        StackWords words;
        (void)askStackProcess(source.path,
                              {"contents", "file=" + QFile::encodeName(source.path).toStdString()},
                              nullptr, words);
        counts.longest = std::max(counts.longest, timer.restart());
    }
    FileFault fault;
    const auto stack = openStack(source, fault);
    if (!stack)
        return tell(fault);
    counts.longest = std::max(counts.longest, timer.restart());
    std::vector<MapData> maps;
    const std::vector<double>& energies = stack->facts().energies;
    const double energy = energies[energies.size() / 2];
    const auto read = [&](unsigned processes, bool alwaysAsked) {
        limits.alwaysAsked = alwaysAsked;
        setStackProgram(QStringLiteral(STACK_PROGRAM), limits);
        Workers workers(processes);
        const auto wrong = stackMaps(*stack, source.path, {energy}, {}, maps, workers);
        counts.longest = std::max(counts.longest, timer.restart());
        return wrong;
    };
    const auto wrong = read(1, false);
    checkSame(wrong, read(2, true));
    StackSpectrum spectrum; // of all frames
    if (!stackSpectrum(*stack, source.path, {}, {}, spectrum) &&
        (spectrum.points.size() < 2 || spectrum.points.size() > energies.size()))
        qFatal("a spectrum of %zu points", spectrum.points.size());
    return tell(wrong ? *wrong : FileFault());
}

StackSource sourceOf(const QString& path, StackValues values = StackValues::Unknown)
{
    StackSource source;
    source.path = path;
    source.values = values;
    if (path.endsWith(QStringLiteral(".dat")))
        source.reference = path + QStringLiteral(".ref");
    if (path.endsWith(QStringLiteral(".his"))) {
        source.flat = path + QStringLiteral(".flat");
        source.dark = path + QStringLiteral(".dark");
        source.energies = path + QStringLiteral(".txt");
    }
    return source;
}

/// The file of a stack that is damaged: of a camera's index the frame that is read.
QString victimOf(const QString& path)
{
    return path.endsWith(QStringLiteral(".dat")) ? path + QStringLiteral("_002.img") : path;
}

QString faultOf(const QString& path)
{
    Counts counts;
    return faultOf(sourceOf(path), StackLimits(), counts);
}

} // namespace

Q_DECLARE_METATYPE(Write)

void tst_DamagedStacks::initTestCase()
{
    setStackProgram(QStringLiteral(STACK_PROGRAM));
    H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
    QVERIFY(m_dir.isValid());
}

void tst_DamagedStacks::damaged_data()
{
    QTest::addColumn<int>("layout");
    for (std::size_t i = 0; i < layouts().size(); ++i)
        QTest::newRow(layouts()[i].name) << static_cast<int>(i);
}

/// Any damage is refused, or seen by nobody; the program goes on. DROVIK_DAMAGED files of each
/// layout, from DROVIK_SEED.
void tst_DamagedStacks::damaged()
{
    QFETCH(int, layout);
    const Layout& kind = layouts()[static_cast<std::size_t>(layout)];
    const QString path = file(QString::fromLatin1(kind.name));
    QVERIFY(kind.write(path, counted()));
    const StackSource source = sourceOf(path, kind.values);
    Counts counts;
    StackLimits limits;
    limits.bytesAProcess = 1;
    QCOMPARE(faultOf(source, limits, counts), QString());
    const QString victim = victimOf(path);
    const QByteArray whole = contents(victim);
    const bool full = qEnvironmentVariableIsSet("DROVIK_DAMAGED");
    const int files = full ? qEnvironmentVariableIntValue("DROVIK_DAMAGED") : 4;
    const std::array<quint32, 2> seed{
        static_cast<quint32>(qEnvironmentVariableIntValue("DROVIK_SEED")),
        static_cast<quint32>(layout)};
    QRandomGenerator random(seed.data(), static_cast<int>(seed.size()));
    limits.seconds = full ? 3.0 : 1.0;
    setStackProgram(QStringLiteral(STACK_PROGRAM), limits);
    counts = {};
    for (int i = 0; i < files; ++i) {
        create(victim, damagedBytes(whole, random));
        const QString reason = faultOf(source, limits, counts);
        QVERIFY2(!reason.contains(QLatin1Char('\n')), qPrintable(reason));
        if (reason.isEmpty())
            ++counts.read;
        else
            counts.add(reason);
    }
    setStackProgram(QStringLiteral(STACK_PROGRAM));
    QCOMPARE(counts.read + counts.refused + counts.failed + counts.tooLong, files);
    if (full)
        qInfo("%s: %d files: %d read, %d refused, %d made the process fail, %d ended by the limit, "
              "longest question %lld ms",
              kind.name, files, counts.read, counts.refused, counts.failed, counts.tooLong,
              counts.longest);
}

void tst_DamagedStacks::hostile_data()
{
    QTest::addColumn<Write>("write");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char* name, const Write& write, const char* reason) {
        QTest::newRow(name) << write << QString::fromUtf8(reason);
    };
    const auto zeros = [](const Hdf5Writer& h5) {
        h5.set("/img_xanes", {2, 2, 3}, H5T_NATIVE_FLOAT, std::vector<float>(12).data());
    };
    const auto sparse = [](const Hdf5Writer& h5, hsize_t height, hsize_t width) {
        const hid_t plist = chunked({1, 1024, 1024});
        h5.set("/img_xanes", {2, height, width}, H5T_NATIVE_FLOAT, nullptr, plist);
        H5Pclose(plist);
        h5.energies({7.1, 7.2});
    };
    row(
        "links in a circle",
        [](const Hdf5Writer& h5) {
            H5Lcreate_soft("/b", h5.id(), "/img_xanes", H5P_DEFAULT, H5P_DEFAULT);
            H5Lcreate_soft("/img_xanes", h5.id(), "/b", H5P_DEFAULT, H5P_DEFAULT);
        },
        "has links that lead in a circle");
    row(
        "a link to nothing",
        [](const Hdf5Writer& h5) {
            H5Lcreate_external("none.h5", "/data", h5.id(), "/img_xanes", H5P_DEFAULT, H5P_DEFAULT);
        },
        "refers to the file none.h5, which is not there");
    row(
        "a file that links to itself",
        [](const Hdf5Writer& h5) {
            H5Lcreate_external("hostile.h5", "/img_xanes", h5.id(), "/img_xanes", H5P_DEFAULT,
                               H5P_DEFAULT);
        },
        "has links that lead in a circle");
    row(
        "virtual data of themselves",
        [](const Hdf5Writer& h5) {
            const std::vector<hsize_t> size{2, 2, 3};
            const hid_t space = H5Screate_simple(3, size.data(), nullptr);
            const hid_t plist = H5Pcreate(H5P_DATASET_CREATE);
            H5Pset_virtual(plist, space, ".", "/img_xanes", space);
            h5.set("/img_xanes", size, H5T_NATIVE_FLOAT, nullptr, plist);
            H5Pclose(plist);
            H5Sclose(space);
            h5.energies({7.1, 7.2});
        },
        "has virtual data that lead in a circle");
    row(
        "a filter that is missing",
        [](const Hdf5Writer& h5) {
            constexpr H5Z_filter_t bitshuffle = 32008;
            const hid_t plist = chunked({1, 2, 3});
            H5Pset_filter(plist, bitshuffle, H5Z_FLAG_OPTIONAL, 0, nullptr);
            h5.set("/img_xanes", {2, 2, 3}, H5T_NATIVE_FLOAT, nullptr, plist);
            H5Pclose(plist);
            h5.energies({7.1, 7.2});
        },
        "/img_xanes is compressed by the filter bitshuffle (32008), which is not installed; "
        "install "
        "its plug-in of HDF5, or write the file anew with h5repack -f GZIP=1");
    row(
        "images beyond all memory",
        [sparse](const Hdf5Writer& h5) { sparse(h5, 1 << 20, 1 << 20); }, "does not fit in memory");
    row(
        "images beyond all cameras", [sparse](const Hdf5Writer& h5) { sparse(h5, 1 << 21, 1024); },
        "has images of a size that makes no sense");
    row(
        "more frames than energies",
        [zeros](const Hdf5Writer& h5) {
            zeros(h5);
            h5.energies({7.1, 7.2, 7.3, 7.4});
        },
        "has 4 energies, and /img_xanes is as long in none of its outer dimensions");
    row(
        "too many energies",
        [zeros](const Hdf5Writer& h5) {
            zeros(h5);
            const hid_t plist = chunked({1024});
            h5.set("/X_eng", {hsize_t{1} << 60}, H5T_NATIVE_DOUBLE, nullptr, plist);
            H5Pclose(plist);
        },
        "/X_eng has more than a million numbers");
    row(
        "words for a stack",
        [](const Hdf5Writer& h5) {
            h5.set("/img_xanes", {1, 1, 1}, H5T_C_S1, "a");
            h5.energies({7.1});
        },
        "/img_xanes holds no numbers");
    row(
        "a group for a stack",
        [](const Hdf5Writer& h5) {
            h5.group("/img_xanes");
            h5.energies({7.1});
        },
        "/img_xanes holds no numbers");
    row(
        "words for energies",
        [zeros](const Hdf5Writer& h5) {
            zeros(h5);
            h5.set("/X_eng", {2}, H5T_C_S1, "ab");
        },
        "/X_eng holds no numbers");
    row("no energies", zeros, "has no /X_eng");
    row(
        "two dimensions",
        [](const Hdf5Writer& h5) {
            h5.set("/img_xanes", {2, 3}, H5T_NATIVE_FLOAT, std::vector<float>(6).data());
            h5.energies({7.1, 7.2});
        },
        "/img_xanes has 2 dimensions and is no stack of images");
    row(
        "an energy that is no number",
        [zeros](const Hdf5Writer& h5) {
            zeros(h5);
            h5.energies({7.1, std::nan("")});
        },
        "energy 2 is no positive number");
    row(
        "a negative energy",
        [zeros](const Hdf5Writer& h5) {
            zeros(h5);
            h5.energies({-7.1, 7.2});
        },
        "energy 1 is no positive number");
}

void tst_DamagedStacks::hostile()
{
    QFETCH(Write, write);
    QFETCH(QString, reason);
    {
        const Hdf5Writer h5(file(QStringLiteral("hostile.h5")));
        write(h5);
    }
    QCOMPARE(faultOf(file(QStringLiteral("hostile.h5"))), reason);
}

void tst_DamagedStacks::linkKinds()
{
    QTest::addColumn<QString>("kind");
    for (const char* const kind : {"link", "virtual", "raw"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

namespace
{

/// A file whose stack lies in another one.
/// @param other  of raw numbers for "raw", otherwise an HDF5 file with "/data"
void writeReference(const QString& path, const QString& kind, const QByteArray& other)
{
    const Hdf5Writer h5(path);
    h5.energies(counted().energies);
    if (kind == QLatin1String("link")) {
        H5Lcreate_external(other.constData(), "/data", h5.id(), "/img_xanes", H5P_DEFAULT,
                           H5P_DEFAULT);
        return;
    }
    const hid_t plist = H5Pcreate(H5P_DATASET_CREATE);
    const hid_t space = H5Screate_simple(3, stackSize.data(), nullptr);
    if (kind == QLatin1String("virtual"))
        H5Pset_virtual(plist, space, other.constData(), "/data", space);
    else
        H5Pset_external(plist, other.constData(), 0, frames * rows * columns * sizeof(float));
    h5.set("/img_xanes", stackSize, H5T_NATIVE_FLOAT, nullptr, plist);
    H5Sclose(space);
    H5Pclose(plist);
}

void writeOther(const QString& path, const QString& kind)
{
    const std::vector<float> values = counted().transmission();
    if (kind == QLatin1String("raw"))
        create(path, QByteArray(reinterpret_cast<const char*>(values.data()),
                                static_cast<int>(values.size() * sizeof(float))));
    else
        Hdf5Writer(path).set("/data", stackSize, H5T_NATIVE_FLOAT, values.data());
}

} // namespace

void tst_DamagedStacks::linksBelowTheFolder()
{
    QFETCH(QString, kind);
    const QTemporaryDir dir;
    QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("below")));
    writeOther(dir.filePath(QStringLiteral("below/other")), kind);
    const QString path = dir.filePath(QStringLiteral("scan.h5"));
    writeReference(path, kind, "below/other");
    FileFault fault;
    const auto stack = openStack(sourceOf(path), fault);
    QVERIFY2(stack, qPrintable(fault.reason));
    std::vector<MapData> maps;
    QVERIFY(!stackMaps(*stack, path, {8390}, {}, maps));
    const CountedStack truth = counted();
    for (std::size_t i = 0; i < truth.pixels(); ++i)
        QVERIFY(std::abs(maps[0].mut[i] - truth.mut()[2 * truth.pixels() + i]) < 2e-7);
}

/// By a name from the root, by dots, and by a link of the file system.
void tst_DamagedStacks::linksOutOfTheFolder()
{
    QFETCH(QString, kind);
    const QTemporaryDir dir;
    const QDir folder(dir.path());
    QVERIFY(folder.mkdir(QStringLiteral("own")));
    writeOther(folder.filePath(QStringLiteral("other")), kind);
    QVERIFY(QFile::link(folder.filePath(QStringLiteral("other")),
                        folder.filePath(QStringLiteral("own/link"))));
    const QString path = folder.filePath(QStringLiteral("own/scan.h5"));
    for (const QByteArray& other : {QByteArray("../other"), QByteArray("link"),
                                    QFile::encodeName(folder.filePath(QStringLiteral("other")))}) {
        writeReference(path, kind, other);
        QCOMPARE(faultOf(path), QStringLiteral("refers to the file %1, which is not below its own "
                                               "folder")
                                    .arg(QString::fromUtf8(other)));
    }
}

/// They are told, and have no value.
void tst_DamagedStacks::chunksNeverWritten()
{
    const QString path = file(QStringLiteral("sparse.h5"));
    const CountedStack truth = counted();
    {
        const Hdf5Writer h5(path);
        const hid_t plist = chunked({1, rows, columns});
        h5.set("/img_xanes", stackSize, H5T_NATIVE_FLOAT, nullptr, plist);
        H5Pclose(plist);
        h5.energies(truth.energies);
        const hid_t data = H5Dopen2(h5.id(), "/img_xanes", H5P_DEFAULT);
        const hid_t space = H5Dget_space(data);
        const std::array<hsize_t, 3> start{2, 0, 0};
        const std::array<hsize_t, 3> count{1, rows, columns};
        H5Sselect_hyperslab(space, H5S_SELECT_SET, start.data(), nullptr, count.data(), nullptr);
        const hid_t memory = H5Screate_simple(3, count.data(), nullptr);
        const std::vector<float> values = truth.transmission();
        QVERIFY(H5Dwrite(data, H5T_NATIVE_FLOAT, memory, space, H5P_DEFAULT,
                         values.data() + 2 * truth.pixels()) >= 0);
    }
    FileFault fault;
    const auto stack = openStack(sourceOf(path), fault);
    QVERIFY2(stack, qPrintable(fault.reason));
    QCOMPARE(stack->facts().warnings,
             QStringList(QStringLiteral("4 of 5 chunks of /img_xanes were never written")));
    std::vector<MapData> maps;
    QVERIFY(!stackMaps(*stack, path, {8390, 8381}, {}, maps));
    QVERIFY(std::abs(maps[0].mut[5] - truth.mut()[2 * truth.pixels() + 5]) < 2e-7);
    QVERIFY(std::isnan(maps[1].mut[5]));
}

/// Two frames of one energy are averaged, wherever they stand.
void tst_DamagedStacks::unorderedAndDoubleEnergies()
{
    const QString path = file(QStringLiteral("double.h5"));
    const std::vector<double> muts{4.0, 1.0, 2.0, 3.0};
    {
        const Hdf5Writer h5(path);
        h5.set("/stack", {4, 1, 1}, H5T_NATIVE_DOUBLE, muts.data());
        h5.energies({7400, 7100, 7200, 7100}, "/e");
    }
    StackSource source = sourceOf(path, StackValues::MuT);
    source.data = QStringLiteral("/stack");
    source.energies = QStringLiteral("/e");
    FileFault fault;
    const auto stack = openStack(source, fault);
    QVERIFY2(stack, qPrintable(fault.reason));
    std::vector<MapData> maps;
    QVERIFY(!stackMaps(*stack, path, {7100, 7150, 7300}, {}, maps));
    QCOMPARE(maps[0].mut[0], 2.0);
    QCOMPARE(maps[1].mut[0], 2.0);
    QCOMPARE(maps[2].mut[0], 3.0);
}

/// What is in them comes to an end.
void tst_DamagedStacks::groupsInThemselves()
{
    const QString path = file(QStringLiteral("round.h5"));
    {
        const Hdf5Writer h5(path);
        h5.group("/a");
        for (const char* const name : {"/a/b", "/a/c", "/a/d"})
            H5Lcreate_hard(h5.id(), "/a", h5.id(), name, H5P_DEFAULT, H5P_DEFAULT);
        h5.energies({7.1}, "/a/x");
    }
    StackWords words;
    QVERIFY(!askStackProcess(path, {"contents", "file=" + QFile::encodeName(path).toStdString()},
                             nullptr, words));
    QVERIFY(words.values.count("set") > 0);
    QVERIFY(words.values.count("set") <= 200);
}

namespace
{

/// Counts as they are, with one flat and one dark image.
void writeCounts(const QString& path, const CountedStack& stack, hid_t plist = H5P_DEFAULT)
{
    const Hdf5Writer h5(path);
    h5.set("/counts", stackSize, H5T_NATIVE_UINT16, stack.counts.data(), plist);
    h5.set("/flat", {rows, columns}, H5T_NATIVE_UINT16, stack.flats.data(), H5P_DEFAULT);
    h5.set("/dark", {1, rows, columns}, H5T_NATIVE_UINT16, stack.dark.data(), H5P_DEFAULT);
    h5.energies(stack.energies, "/e");
}

StackSource countsOf(const QString& path)
{
    StackSource source = sourceOf(path, StackValues::Counts);
    source.data = QStringLiteral("/counts");
    source.energies = QStringLiteral("/e");
    source.flat = QStringLiteral("/flat");
    source.dark = QStringLiteral("/dark");
    return source;
}

} // namespace

/// It stays as it is stored: a mean in double precision would take four times the memory.
void tst_DamagedStacks::oneImageForAll()
{
    const QString path = file(QStringLiteral("counts.h5"));
    const CountedStack truth = counted();
    writeCounts(path, truth);
    FileFault fault;
    const auto stack = openStack(countsOf(path), fault);
    QVERIFY2(stack, qPrintable(fault.reason));
    FrameSet set;
    QVERIFY(!stack->read({1, 3}, {0, 0, truth.columns, truth.rows}, set));
    for (const auto& [plane, numbers] :
         {std::pair(set.shared.flat, &truth.flats), std::pair(set.shared.dark, &truth.dark)}) {
        QCOMPARE(static_cast<int>(plane.type), static_cast<int>(PixelType::U16));
        QVERIFY(std::memcmp(plane.pixels, numbers->data(), 2 * truth.pixels()) == 0);
    }
    std::vector<MapData> maps;
    QVERIFY(!stackMaps(*stack, path, {8390}, {}, maps));
    for (std::size_t i = 0; i < truth.pixels(); ++i)
        QVERIFY(std::abs(maps[0].mut[i] -
                         std::log((truth.flats[i] - truth.dark[i]) /
                                  static_cast<double>(truth.counts[2 * truth.pixels() + i] -
                                                      truth.dark[i]))) < 1e-12);
}

/// Places in the file are counted from behind it.
void tst_DamagedStacks::behindAUserBlock()
{
    const QString path = file(QStringLiteral("block.h5"));
    const CountedStack truth = counted();
    {
        constexpr hsize_t blockBytes = 512;
        const Hdf5Writer h5(path, blockBytes);
        const hid_t plist = chunked({1, rows, columns});
        const std::vector<float> values = truth.transmission();
        h5.set("/img_xanes", stackSize, H5T_NATIVE_FLOAT, values.data(), plist);
        h5.energies(truth.energies);
        H5Pclose(plist);
    }
    FileFault fault;
    const auto stack = openStack(sourceOf(path), fault);
    QVERIFY2(stack, qPrintable(fault.reason));
    std::vector<MapData> maps;
    QVERIFY(!stackMaps(*stack, path, {8390}, {}, maps));
    for (std::size_t i = 0; i < truth.pixels(); ++i)
        QVERIFY(std::abs(maps[0].mut[i] - truth.mut()[2 * truth.pixels() + i]) < 2e-7);
}

/// The last strip of a page stands first in the file.
void tst_DamagedStacks::stripsInAnyOrder()
{
    const QString path = file(QStringLiteral("turned.tif"));
    const CountedStack truth = counted();
    TIFF* const pages = TIFFOpen(QFile::encodeName(path).constData(), "w");
    QVERIFY(pages != nullptr);
    std::vector<std::uint16_t> counts = truth.counts;
    for (std::size_t page = 0; page < frames; ++page) {
        TIFFSetField(pages, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(columns));
        TIFFSetField(pages, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(rows));
        TIFFSetField(pages, TIFFTAG_BITSPERSAMPLE, 16);
        TIFFSetField(pages, TIFFTAG_SAMPLESPERPIXEL, 1);
        TIFFSetField(pages, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        TIFFSetField(pages, TIFFTAG_ROWSPERSTRIP, 3);
        for (const std::uint32_t strip : {2U, 0U, 1U})
            QVERIFY(TIFFWriteEncodedStrip(
                        pages, strip, counts.data() + (page * rows + strip * 3) * columns,
                        static_cast<tmsize_t>(3 * columns * sizeof(std::uint16_t))) > 0);
        QVERIFY(TIFFWriteDirectory(pages) == 1);
    }
    TIFFClose(pages);
    create(file(QStringLiteral("turned.txt")), "8313\n8381\n8390\n8404.5\n8460\n");
    FileFault fault;
    const auto stack = openStack(sourceOf(path, StackValues::MuT), fault);
    QVERIFY2(stack, qPrintable(fault.reason));
    std::vector<MapData> maps;
    QVERIFY(!stackMaps(*stack, path, {8390}, {}, maps));
    for (std::size_t i = 0; i < truth.pixels(); ++i)
        QCOMPARE(maps[0].mut[i], static_cast<double>(truth.counts[2 * truth.pixels() + i]));
}

/// Of a set that is gone and a chunk that cannot be read the former is told, and of two such chunks
/// nothing else, by however many processes they are read.
void tst_DamagedStacks::faultOfTheFirstSet()
{
    const QString path = file(QStringLiteral("checked.h5"));
    const CountedStack truth = counted();
    const hid_t plist = chunked({1, rows, columns});
    H5Pset_fletcher32(plist);
    writeCounts(path, truth, plist);
    H5Pclose(plist);
    FileFault fault;
    const auto stack = openStack(countsOf(path), fault);
    QVERIFY2(stack, qPrintable(fault.reason));
    StackLimits limits;
    limits.bytesAProcess = 1;
    limits.alwaysAsked = true;
    setStackProgram(QStringLiteral(STACK_PROGRAM), limits);
    const auto reasons = [&] {
        QStringList all;
        for (const unsigned processes : {1U, 2U, 3U, 16U}) {
            Workers workers(processes);
            std::vector<MapData> maps;
            const auto wrong = stackMaps(*stack, path, {8313, 8381, 8390, 8460}, {}, maps, workers);
            all += wrong ? wrong->reason : QStringLiteral("read");
        }
        all.removeDuplicates();
        return all.join(QLatin1Char('|'));
    };
    QCOMPARE(reasons(), QStringLiteral("read"));
    QByteArray bytes = contents(path);
    for (const std::size_t frame : {1U, 4U}) {
        const int at = bytes.indexOf(
            QByteArray(reinterpret_cast<const char*>(truth.counts.data() + frame * truth.pixels()),
                       static_cast<int>(2 * truth.pixels())));
        QVERIFY(at > 0);
        bytes[at] = static_cast<char>(bytes[at] ^ 1);
    }
    create(path, bytes);
    QCOMPARE(reasons(), QStringLiteral("/counts cannot be read"));
    bytes.replace("dark", "park");
    create(path, bytes);
    QCOMPARE(reasons(), QStringLiteral("has no /dark"));
    setStackProgram(QStringLiteral(STACK_PROGRAM));
}

/// Darks of which none was written: their number is taken for nothing but the limit of time.
void tst_DamagedStacks::imagesBeyondCounting()
{
    const QString path = file(QStringLiteral("beyond.h5"));
    const CountedStack truth = counted();
    {
        constexpr hsize_t images = hsize_t{1} << 60;
        const Hdf5Writer h5(path);
        const hid_t plist = chunked({1, rows, columns});
        h5.set("/counts", stackSize, H5T_NATIVE_UINT16, truth.counts.data());
        h5.set("/flat", {rows, columns}, H5T_NATIVE_UINT16, truth.flats.data());
        h5.set("/dark", {images, rows, columns}, H5T_NATIVE_UINT16, nullptr, plist);
        h5.energies(truth.energies, "/e");
        H5Pclose(plist);
    }
    FileFault fault;
    const auto stack = openStack(countsOf(path), fault);
    QVERIFY2(stack, qPrintable(fault.reason));
    StackLimits limits;
    limits.seconds = 0.5;
    setStackProgram(QStringLiteral(STACK_PROGRAM), limits);
    std::vector<MapData> maps;
    const auto wrong = stackMaps(*stack, path, {8390}, {}, maps);
    setStackProgram(QStringLiteral(STACK_PROGRAM));
    // A frame and a flat of 16 bits, a mean in double precision.
    const double bytes = static_cast<double>(truth.pixels() * (2 + 2 + 8));
    QCOMPARE(wrong ? wrong->reason : QString(),
             QStringLiteral("takes longer than %1 s to read; it may be damaged")
                 .arg(0.5 + bytes / static_cast<double>(limits.bytesASecond)));
}

QTEST_GUILESS_MAIN(tst_DamagedStacks)
#include "tst_DamagedStacks.moc"
