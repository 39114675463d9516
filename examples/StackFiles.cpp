#include "examples/StackFiles.h"

#include "examples/BeamlineFile.h"
#include "examples/MapSample.h"
#include "examples/MixedSampleFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <hdf5.h>
#include <tiffio.h>

#include <cmath>
#include <functional>

namespace
{

constexpr double darkCounts = 100.0;
constexpr double brightCounts = 60000.0;

bool writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray energyText(const CountedStack& stack)
{
    QByteArray text = "# eV\n";
    for (const double energy : stack.energies)
        text += QByteArray::number(energy, 'g', 12) + '\n';
    return text;
}

/// An HDF5 file in the making; a step that fails is remembered.
class Writer
{
public:
    explicit Writer(const QString& path)
        : m_file(H5Fcreate(QFile::encodeName(path).constData(), H5F_ACC_TRUNC, H5P_DEFAULT,
                           H5P_DEFAULT))
    {
    }
    ~Writer()
    {
        if (m_file >= 0)
            H5Fclose(m_file);
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    bool isGood() const { return m_file >= 0 && m_good; }

    void group(const char* name)
    {
        const hid_t id = H5Gcreate2(m_file, name, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT);
        m_good = m_good && id >= 0 && H5Gclose(id) >= 0;
    }

    /// @param chunk  empty for none
    void data(const char* name, const std::vector<hsize_t>& size, hid_t type, const void* numbers,
              const std::vector<hsize_t>& chunk = {})
    {
        const hid_t space = H5Screate_simple(static_cast<int>(size.size()), size.data(), nullptr);
        const hid_t plist = H5Pcreate(H5P_DATASET_CREATE);
        if (!chunk.empty())
            H5Pset_chunk(plist, static_cast<int>(chunk.size()), chunk.data());
        const hid_t id = H5Dcreate2(m_file, name, type, space, H5P_DEFAULT, plist, H5P_DEFAULT);
        m_good =
            m_good && id >= 0 && H5Dwrite(id, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, numbers) >= 0;
        H5Dclose(id);
        H5Pclose(plist);
        H5Sclose(space);
    }

    void text(const char* owner, const char* name, const std::vector<const char*>& values)
    {
        const hid_t object = H5Oopen(m_file, owner, H5P_DEFAULT);
        const hid_t type = H5Tcopy(H5T_C_S1);
        H5Tset_size(type, H5T_VARIABLE);
        const hsize_t count = values.size();
        const hid_t space =
            count == 1 ? H5Screate(H5S_SCALAR) : H5Screate_simple(1, &count, nullptr);
        const hid_t id = H5Acreate2(object, name, type, space, H5P_DEFAULT, H5P_DEFAULT);
        m_good = m_good && id >= 0 && H5Awrite(id, type, values.data()) >= 0;
        H5Aclose(id);
        H5Sclose(space);
        H5Tclose(type);
        H5Oclose(object);
    }

private:
    hid_t m_file;
    bool m_good = true;
};

std::vector<hsize_t> sizeOf(const CountedStack& stack)
{
    return {stack.energies.size(), static_cast<hsize_t>(stack.rows),
            static_cast<hsize_t>(stack.columns)};
}

/// The energies' dimension put last.
std::vector<std::uint16_t> turned(const CountedStack& stack, const std::vector<std::uint16_t>& from)
{
    const std::size_t n = stack.energies.size();
    std::vector<std::uint16_t> to(from.size());
    for (std::size_t k = 0; k < n; ++k)
        for (std::size_t i = 0; i < stack.pixels(); ++i)
            to[i * n + k] = from[k * stack.pixels() + i];
    return to;
}

bool writePages(const QString& path, const CountedStack& stack,
                const std::vector<std::uint16_t>& counts)
{
    TIFF* const file = TIFFOpen(QFile::encodeName(path).constData(), "w");
    if (file == nullptr)
        return false;
    bool good = true;
    for (std::size_t first = 0; first < counts.size(); first += stack.pixels()) {
        TIFFSetField(file, TIFFTAG_IMAGEWIDTH, stack.columns);
        TIFFSetField(file, TIFFTAG_IMAGELENGTH, stack.rows);
        TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, 16);
        TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, 1);
        TIFFSetField(file, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, 4);
        std::vector<std::uint16_t> row(static_cast<std::size_t>(stack.columns));
        for (int y = 0; y < stack.rows; ++y) {
            const auto at = first + static_cast<std::size_t>(y) * row.size();
            std::copy_n(counts.begin() + static_cast<std::ptrdiff_t>(at), row.size(), row.begin());
            good = good && TIFFWriteScanline(file, row.data(), static_cast<std::uint32_t>(y)) == 1;
        }
        good = good && TIFFWriteDirectory(file) == 1;
    }
    TIFFClose(file);
    return good;
}

QByteArray cameraFrame(const CountedStack& stack, const std::uint16_t* counts, quint32 frames)
{
    constexpr int headerBytes = 64;
    const QByteArray comment = "made by the program";
    QByteArray bytes(headerBytes, '\0');
    const auto put = [&bytes](int at, int value) {
        qToLittleEndian(static_cast<quint16>(value), bytes.data() + at);
    };
    bytes.replace(0, 2, "IM");
    put(2, comment.size());
    put(4, stack.columns);
    put(6, stack.rows);
    put(12, 2);
    qToLittleEndian(frames, bytes.data() + 14);
    bytes += comment;
    for (std::size_t i = 0; i < stack.pixels(); ++i) {
        const auto little = qToLittleEndian<quint16>(counts[i]);
        bytes.append(reinterpret_cast<const char*>(&little), sizeof little);
    }
    return bytes;
}

/// The text beside the frames; I0 of the reference is another one.
QByteArray indexText(const CountedStack& stack, double incident)
{
    std::vector<ScanStep> steps;
    for (const double energy : stack.energies)
        steps.push_back({energy, incident, 1.0});
    return beamlineText("index of frames", steps);
}

} // namespace

std::vector<float> CountedStack::transmission() const
{
    std::vector<float> values;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const int black = dark[i % pixels()];
        values.push_back(static_cast<float>(counts[i] - black) /
                         static_cast<float>(flats[i] - black));
    }
    return values;
}

std::vector<double> CountedStack::mut() const
{
    std::vector<double> values;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const int black = dark[i % pixels()];
        values.push_back(std::log(double(flats[i] - black) / double(counts[i] - black)));
    }
    return values;
}

CountedStack countedStack(const MapSample& map, const std::vector<double>& energies)
{
    CountedStack stack;
    stack.columns = map.columns;
    stack.rows = map.rows;
    stack.energies = energies;
    for (std::size_t k = 0; k < energies.size(); ++k)
        for (int y = 0; y < map.rows; ++y)
            for (int x = 0; x < map.columns; ++x) {
                const double bright = brightCounts * (1.0 - 0.001 * x) - 50.0 * double(k);
                const double dark = darkCounts + y;
                const double light = (bright - dark) * std::exp(-map.muT(x, y, energies[k]));
                stack.flats.push_back(static_cast<std::uint16_t>(std::lround(bright)));
                stack.counts.push_back(static_cast<std::uint16_t>(std::lround(dark + light)));
                if (k == 0)
                    stack.dark.push_back(static_cast<std::uint16_t>(std::lround(dark)));
            }
    return stack;
}

bool writeFxi(const QString& path, const CountedStack& stack)
{
    Writer file(path);
    std::vector<double> kilo;
    for (const double energy : stack.energies)
        kilo.push_back(energy / 1000.0);
    const std::vector<float> values = stack.transmission();
    file.data("/img_xanes", sizeOf(stack), H5T_NATIVE_FLOAT, values.data());
    file.data("/X_eng", {kilo.size()}, H5T_NATIVE_DOUBLE, kilo.data());
    return file.isGood();
}

bool writeExchange(const QString& path, const CountedStack& stack, bool energyLast)
{
    Writer file(path);
    file.group("/exchange");
    const std::vector<hsize_t> size = sizeOf(stack);
    std::vector<hsize_t> dark = size;
    dark[0] = 3;
    std::vector<std::uint16_t> darks;
    for (const int off : {-1, 0, 1})
        for (const std::uint16_t level : stack.dark)
            darks.push_back(static_cast<std::uint16_t>(level + off));
    if (energyLast) {
        const std::vector<hsize_t> last{size[1], size[2], size[0]};
        const std::vector<hsize_t> chunk{3, 5, std::min<hsize_t>(2, size[0])};
        file.data("/exchange/data", last, H5T_NATIVE_UINT16, turned(stack, stack.counts).data(),
                  chunk);
        file.data("/exchange/data_white", last, H5T_NATIVE_UINT16,
                  turned(stack, stack.flats).data());
        const CountedStack three{stack.columns, stack.rows, {1, 2, 3}, {}, {}, {}};
        file.data("/exchange/data_dark", {size[1], size[2], 3}, H5T_NATIVE_UINT16,
                  turned(three, darks).data());
    } else {
        file.data("/exchange/data", size, H5T_NATIVE_UINT16, stack.counts.data(),
                  {1, size[1], size[2]});
        file.data("/exchange/data_white", size, H5T_NATIVE_UINT16, stack.flats.data());
        file.data("/exchange/data_dark", dark, H5T_NATIVE_UINT16, darks.data());
    }
    file.data("/exchange/energy", {size[0]}, H5T_NATIVE_DOUBLE, stack.energies.data());
    return file.isGood();
}

bool writeMistral(const QString& path, const CountedStack& stack)
{
    Writer file(path);
    file.group("/SpecNormalized");
    const std::vector<hsize_t> size = sizeOf(stack);
    const std::vector<float> values = stack.transmission();
    const double pixel = 0.5;
    file.data("/SpecNormalized/spectroscopy_normalized_aligned", size, H5T_NATIVE_FLOAT,
              values.data(), {1, size[1], size[2]});
    file.data("/SpecNormalized/energy", {size[0]}, H5T_NATIVE_DOUBLE, stack.energies.data());
    file.data("/SpecNormalized/x_pixel_size", {1}, H5T_NATIVE_DOUBLE, &pixel);
    file.data("/SpecNormalized/y_pixel_size", {1}, H5T_NATIVE_DOUBLE, &pixel);
    return file.isGood();
}

bool writeNxdata(const QString& path, const CountedStack& stack)
{
    Writer file(path);
    file.group("/entry");
    file.group("/entry/stack");
    const std::vector<hsize_t> size = sizeOf(stack);
    const std::vector<double> values = stack.mut();
    file.data("/entry/stack/absorption", size, H5T_NATIVE_DOUBLE, values.data(), {2, 7, 5});
    file.data("/entry/stack/energy", {size[0]}, H5T_NATIVE_DOUBLE, stack.energies.data());
    file.text("/", "default", {"entry"});
    file.text("/entry", "NX_class", {"NXentry"});
    file.text("/entry", "default", {"stack"});
    file.text("/entry/stack", "NX_class", {"NXdata"});
    file.text("/entry/stack", "signal", {"absorption"});
    file.text("/entry/stack", "axes", {"energy", "y", "x"});
    file.text("/entry/stack/energy", "units", {"eV"});
    return file.isGood();
}

bool writeTiffStack(const QString& path, const CountedStack& stack)
{
    const QFileInfo info(path);
    const QString stem = info.path() + QLatin1Char('/') + info.completeBaseName();
    return writePages(path, stack, stack.counts) &&
           writePages(stem + QStringLiteral("-flat.tif"), stack, stack.flats) &&
           writePages(stem + QStringLiteral("-dark.tif"), stack, stack.dark) &&
           writeBytes(stem + QStringLiteral(".txt"), energyText(stack));
}

bool writeImgStack(const QString& path, const CountedStack& stack)
{
    const QString reference = path + QStringLiteral(".ref");
    bool good =
        writeBytes(path, indexText(stack, 1e6)) && writeBytes(reference, indexText(stack, 1e6)) &&
        writeBytes(path + QStringLiteral("_dk0.img"), cameraFrame(stack, stack.dark.data(), 1));
    for (std::size_t k = 0; good && k < stack.energies.size(); ++k) {
        const QString number =
            QStringLiteral("_%1.img").arg(static_cast<int>(k), 3, 10, QLatin1Char('0'));
        const std::size_t at = k * stack.pixels();
        good = writeBytes(path + number, cameraFrame(stack, stack.counts.data() + at, 1)) &&
               writeBytes(reference + number, cameraFrame(stack, stack.flats.data() + at, 1));
    }
    return good;
}

bool writeHisStack(const QString& path, const CountedStack& stack)
{
    const auto frames = static_cast<quint32>(stack.energies.size());
    QByteArray counts;
    QByteArray flats;
    for (std::size_t k = 0; k < stack.energies.size(); ++k) {
        counts += cameraFrame(stack, stack.counts.data() + k * stack.pixels(), frames);
        flats += cameraFrame(stack, stack.flats.data() + k * stack.pixels(), frames);
    }
    return writeBytes(path, counts) && writeBytes(path + QStringLiteral(".flat"), flats) &&
           writeBytes(path + QStringLiteral(".dark"), cameraFrame(stack, stack.dark.data(), 1)) &&
           writeBytes(path + QStringLiteral(".txt"), energyText(stack));
}

QString writeStackExample(const QString& folder, const MapSample& map)
{
    if (QString failed = writeSample(folder, map.sample, std::nullopt); !failed.isEmpty())
        return failed;
    const CountedStack stack = countedStack(map, mapEnergies());
    const QDir place(folder);
    const auto exchange = [](const QString& path, const CountedStack& all) {
        return writeExchange(path, all);
    };
    using Write = std::function<bool(const QString&, const CountedStack&)>;
    for (const auto& [name, write] :
         std::vector<std::pair<const char*, Write>>{{"fxi.h5", writeFxi},
                                                    {"exchange.h5", exchange},
                                                    {"mistral.hdf5", writeMistral},
                                                    {"nexus.nxs", writeNxdata},
                                                    {"pages.tif", writeTiffStack},
                                                    {"scan.dat", writeImgStack},
                                                    {"scan.his", writeHisStack}}) {
        QString path = place.filePath(QLatin1String(name));
        if (!write(path, stack))
            return path;
    }
    return {};
}
