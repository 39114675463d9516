#include "formats/Hdf5Reader.h"

#include "formats/Hdf5Layout.h"
#include "formats/Hdf5Places.h"
#include "formats/PixelSender.h"
#include "formats/PlaneNumbers.h"
#include "formats/StackFault.h"
#include "formats/StackShare.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <sstream>

namespace
{

using stack_words::line;

std::string text(double value)
{
    std::array<char, 32> digits{};
    std::snprintf(digits.data(), digits.size(), "%.17g", value);
    return digits.data();
}

Hdf5Layout layoutOf(const StackRequest& request)
{
    Hdf5Layout layout;
    layout.kind = request.value("kind");
    layout.data = request.value("data");
    layout.energies = request.value("energies");
    layout.flat = request.value("flat");
    layout.dark = request.value("dark");
    layout.values = static_cast<StackValues>(std::atoi(request.value("values").c_str()));
    return layout;
}

/// How many images a flat or dark set has, of the size of a stack's.
std::size_t imagesOf(const Hdf5Data& set, const Hdf5Data& stack, int dimension)
{
    const hsize_t rows = stack.size[dimension == 0 ? 1 : 0];
    const hsize_t columns = stack.size[dimension == 0 ? 2 : 1];
    const std::vector<hsize_t>& size = set.size;
    if (size.size() == 2 && size[0] == rows && size[1] == columns)
        return 1;
    if (size.size() == 3) {
        const auto at = static_cast<std::size_t>(dimension);
        std::vector<hsize_t> image = size;
        image.erase(image.begin() + dimension);
        if (image[0] == rows && image[1] == columns)
            return size[at];
    }
    throw StackFault(set.path + " has images of another size than " + stack.path);
}

/// Chunks that were never written hold no measurement.
std::string missingChunks(const Hdf5Data& stack)
{
    hsize_t written = 0;
    hsize_t all = 1;
    for (std::size_t i = 0; i < stack.size.size(); ++i)
        all *= stack.chunk[i] > 0 ? (stack.size[i] + stack.chunk[i] - 1) / stack.chunk[i] : 1;
    const Hdf5Id plist(H5Dget_create_plist(stack.id.get()), H5Pclose);
    const Hdf5Id space(H5Dget_space(stack.id.get()), H5Sclose); // H5S_ALL is refused by 1.10
    if (H5Pget_layout(plist.get()) != H5D_CHUNKED ||
        H5Dget_num_chunks(stack.id.get(), space.get(), &written) < 0 || written >= all)
        return {};
    return line("warning", std::to_string(all - written) + " of " + std::to_string(all) +
                               " chunks of " + stack.path + " were never written");
}

std::string describeSet(const Hdf5File& file, const std::string& fileName, const char* name,
                        const std::string& path, const Hdf5Data& stack, int dimension)
{
    if (path.empty())
        return {};
    const Hdf5Data set = file.data(path);
    const std::size_t images = imagesOf(set, stack, dimension);
    const std::string prefix = std::string(name) + '-';
    return line(name, path) + line(prefix + "images", std::to_string(images)) +
           line(prefix + "type", std::to_string(static_cast<int>(set.type))) +
           line(prefix + "places", placesOf(set, fileName, dimension));
}

/// Reads images of one set.
class ImageReader
{
public:
    ImageReader(const Hdf5Data& set, int dimension, const std::array<hsize_t, 4>& region)
        : m_set(set), m_dimension(set.size.size() == 2 ? -1 : dimension), m_region(region)
    {
    }

    std::size_t pixels() const { return m_region[2] * m_region[3]; }
    hsize_t images() const
    {
        return m_dimension < 0 ? 1 : m_set.size[static_cast<std::size_t>(m_dimension)];
    }

    /// Images whose indices rise, one behind the other.
    void read(const std::vector<hsize_t>& indices, hid_t memoryType, std::size_t pixelBytes,
              char* to) const;

private:
    void readBand(const std::vector<hsize_t>& indices, hsize_t first, hsize_t rows,
                  hid_t memoryType, std::size_t pixelBytes, char* to) const;
    Hdf5Id select(hid_t space, const std::vector<hsize_t>& indices, hsize_t first,
                  hsize_t rows) const;
    hsize_t bandRows(std::size_t images) const;
    /// The first dimension of an image's rows.
    std::size_t rowDimension() const { return m_dimension == 0 ? 1 : 0; }

    const Hdf5Data& m_set;
    int m_dimension; ///< of the energies; -1 for a single image
    std::array<hsize_t, 4> m_region;
};

/// Rows that are read at once: whole chunks, so that none is read twice.
hsize_t ImageReader::bandRows(std::size_t images) const
{
    constexpr hsize_t bandPixels = hsize_t{1} << 22;
    if (m_dimension == 0)
        return m_region[3]; // goes straight to its place
    const hsize_t chunkRows = std::max<hsize_t>(1, m_set.chunk[rowDimension()]);
    const hsize_t rows = bandPixels / std::max<hsize_t>(1, m_region[2] * images);
    return std::max(rows / chunkRows, hsize_t{1}) * chunkRows;
}

/// Selects rows of some images.
/// @return the memory that they are read into, of the same order
Hdf5Id ImageReader::select(hid_t space, const std::vector<hsize_t>& indices, hsize_t first,
                           hsize_t rows) const
{
    const hsize_t images = indices.size();
    H5S_seloper_t how = H5S_SELECT_SET;
    // Neighbours are one block.
    const bool block = indices.back() - indices.front() + 1 == images;
    const hsize_t atOnce = block ? images : 1;
    std::array<hsize_t, 3> count{rows, m_region[2], atOnce};
    if (m_dimension == 0)
        count = {atOnce, rows, m_region[2]};
    for (hsize_t k = 0; k < images; k += atOnce) {
        std::array<hsize_t, 3> start{first, m_region[0], indices[k]};
        if (m_dimension == 0)
            start = {indices[k], first, m_region[0]};
        if (H5Sselect_hyperslab(space, how, start.data(), nullptr, count.data(), nullptr) < 0)
            throw StackFault(m_set.path + " cannot be read");
        how = H5S_SELECT_OR;
    }
    const hsize_t total = images * rows * m_region[2];
    // Where memory has the shape of the block, the library takes whole rows; else single pixels.
    const int rank = block ? static_cast<int>(m_set.size.size()) : 1;
    return {H5Screate_simple(rank, block ? count.data() : &total, nullptr), H5Sclose};
}

void ImageReader::readBand(const std::vector<hsize_t>& indices, hsize_t first, hsize_t rows,
                           hid_t memoryType, std::size_t pixelBytes, char* to) const
{
    const hsize_t images = indices.size();
    const Hdf5Id space(H5Dget_space(m_set.id.get()), H5Sclose);
    const Hdf5Id memory = select(space.get(), indices, first, rows);
    std::vector<char> band;
    const bool straight = m_dimension <= 0 && (m_dimension == 0 || images == 1);
    if (!straight)
        band.resize(images * rows * m_region[2] * pixelBytes);
    char* const place = straight ? to : band.data();
    if (H5Dread(m_set.id.get(), memoryType, memory.get(), space.get(), H5P_DEFAULT, place) < 0)
        throw StackFault(m_set.path + " cannot be read");
    if (straight)
        return;
    // The images of a pixel lie side by side.
    const std::size_t bandPixels = rows * m_region[2];
    for (std::size_t image = 0; image < images; ++image) {
        char* out = to + image * pixels() * pixelBytes;
        for (std::size_t i = 0; i < bandPixels; ++i)
            std::memcpy(out + i * pixelBytes, place + (i * images + image) * pixelBytes,
                        pixelBytes);
    }
}

void ImageReader::read(const std::vector<hsize_t>& indices, hid_t memoryType,
                       std::size_t pixelBytes, char* to) const
{
    const hsize_t end = m_region[1] + m_region[3];
    const hsize_t band = bandRows(indices.size());
    for (hsize_t first = m_region[1]; first < end;) {
        const hsize_t next = std::min(end, (first / band + 1) * band);
        const hsize_t last = m_dimension == 0 ? end : next;
        readBand(indices, first, last - first, memoryType, pixelBytes,
                 to + (first - m_region[1]) * m_region[2] * pixelBytes);
        first = last;
    }
}

/// The mean of all images, in the order of the set.
void readMean(const ImageReader& reader, const Hdf5Data& set, double* to)
{
    PixelArray<char> image;
    if (!image.resize(reader.pixels() * bytesOf(set.type)))
        throw std::bad_alloc();
    for (hsize_t k = 0; k < reader.images(); ++k) {
        reader.read({k}, set.memoryType, bytesOf(set.type), image.data());
        addToMean(MeanWay::SumOverCount, {set.type, image.data()}, reader.pixels(), k,
                  reader.images(), to);
    }
}

std::vector<hsize_t> numbersOf(const std::string& list)
{
    std::vector<hsize_t> numbers;
    std::istringstream in(list);
    for (std::string word; std::getline(in, word, ',');)
        numbers.push_back(std::strtoull(word.c_str(), nullptr, 10));
    return numbers;
}

/// A set that is asked for.
struct Wanted {
    Hdf5Data data;
    bool mean = false;
    std::vector<hsize_t> indices;

    std::size_t bytes(std::size_t pixels) const
    {
        return mean ? pixels * sizeof(double) : indices.size() * pixels * bytesOf(data.type);
    }
};

/// What is read at once: images of a set, or all of them for their mean.
struct Piece {
    const Wanted* wanted = nullptr;
    std::vector<hsize_t> indices; ///< none for a mean
    std::size_t offset = 0;       ///< among all bytes
    std::size_t work = 0;         ///< images
};

/// How many energies are read together: those of a chunk, so that it is read once.
hsize_t energiesAtOnce(const Hdf5Data& set, int dimension)
{
    if (set.size.size() != 3 || (dimension == 0 && set.isPlain))
        return 1;
    return std::max<hsize_t>(1, set.chunk[static_cast<std::size_t>(dimension)]);
}

void addPieces(const Wanted& wanted, int dimension, std::size_t pixels, std::size_t offset,
               std::vector<Piece>& pieces)
{
    if (wanted.mean) {
        const ImageReader reader(wanted.data, dimension, {});
        constexpr hsize_t mostWork = hsize_t{1} << 30; // a damaged file may have any number
        pieces.push_back({&wanted, {}, offset, std::min(reader.images(), mostWork)});
        return;
    }
    const std::vector<hsize_t>& indices = wanted.indices;
    const hsize_t atOnce = energiesAtOnce(wanted.data, dimension);
    for (std::size_t first = 0; first < indices.size();) {
        std::size_t last = first + 1;
        while (last < indices.size() && indices[last] / atOnce == indices[first] / atOnce)
            ++last;
        pieces.push_back({&wanted,
                          {indices.begin() + static_cast<std::ptrdiff_t>(first),
                           indices.begin() + static_cast<std::ptrdiff_t>(last)},
                          offset + first * pixels * bytesOf(wanted.data.type),
                          last - first});
        first = last;
    }
}

void checkRegion(const Wanted& wanted, int dimension, const std::array<hsize_t, 4>& region)
{
    std::vector<hsize_t> image = wanted.data.size;
    hsize_t images = 1;
    if (image.size() == 3) {
        images = image[static_cast<std::size_t>(dimension)];
        image.erase(image.begin() + dimension);
    }
    const bool within = image.size() == 2 && region[1] + region[3] <= image[0] &&
                        region[0] + region[2] <= image[1] && images > 0 &&
                        std::all_of(wanted.indices.begin(), wanted.indices.end(),
                                    [images](hsize_t i) { return i < images; });
    if (!within)
        throw StackFault("is not as large as it was");
}

} // namespace

std::string describeHdf5(const StackRequest& request)
{
    const std::string path = request.value("file");
    const Hdf5File file(path);
    Hdf5Layout layout = layoutOf(request);
    completeLayout(file, path, layout);
    const Hdf5Data stack = file.data(layout.data);
    std::size_t count = std::strtoull(request.value("count").c_str(), nullptr, 10);
    std::string energies;
    if (count == 0) {
        if (layout.energies.empty())
            throw StackFault("has no energies; name them: energies = \"...\"");
        for (const double energy : file.numbers(layout.energies)) {
            energies += text(energy) + ' ';
            ++count;
        }
    }
    const int dimension = energyDimension(stack, count);
    const bool first = dimension == 0;
    return line("kind", layout.kind) + line("data", layout.data) +
           line("columns", std::to_string(stack.size[first ? 2 : 1])) +
           line("rows", std::to_string(stack.size[first ? 1 : 0])) +
           line("frames", std::to_string(stack.size[first ? 0 : 2])) +
           line("dimension", std::to_string(dimension)) +
           line("type", std::to_string(static_cast<int>(stack.type))) +
           line("places", placesOf(stack, path, dimension)) +
           line("values", std::to_string(static_cast<int>(layout.values))) +
           line("energies", energies) + line("unit", layout.unit) +
           line("pixel-width", text(layout.pixelWidth)) +
           line("pixel-height", text(layout.pixelHeight)) +
           describeSet(file, path, "flat", layout.flat, stack, dimension) +
           describeSet(file, path, "dark", layout.dark, stack, dimension) + missingChunks(stack);
}

std::string planesOfHdf5(const StackRequest& request)
{
    const Hdf5File file(request.value("file"));
    const int dimension = std::atoi(request.value("dimension").c_str()) == 0 ? 0 : 2;
    std::array<hsize_t, 4> region{};
    const std::vector<hsize_t> numbers = numbersOf(request.value("region"));
    std::copy_n(numbers.begin(), std::min(numbers.size(), region.size()), region.begin());
    const std::size_t pixels = region[2] * region[3];
    std::vector<Wanted> all;
    std::size_t bytes = 0;
    for (const std::string& word : request.values("set")) {
        const std::size_t tab = word.find('\t');
        Wanted wanted{file.data(word.substr(0, tab)), word.substr(tab + 1) == "mean", {}};
        if (!wanted.mean)
            wanted.indices = numbersOf(word.substr(tab + 1));
        checkRegion(wanted, dimension, region);
        bytes += wanted.bytes(pixels);
        all.push_back(std::move(wanted));
    }
    if (request.value("bytes") != std::to_string(bytes))
        throw StackFault("is not as large as it was");
    std::vector<Piece> pieces;
    std::size_t offset = 0;
    for (const Wanted& wanted : all) {
        addPieces(wanted, dimension, pixels, offset, pieces);
        offset += wanted.bytes(pixels);
    }
    std::vector<std::size_t> work;
    work.reserve(pieces.size());
    for (const Piece& piece : pieces)
        work.push_back(piece.work);
    const auto [first, last] = shareOf(work, request.value("share"));
    PixelSender sender;
    for (std::size_t k = first; k < last; ++k) {
        const Hdf5Data& set = pieces[k].wanted->data;
        const ImageReader reader(set, dimension, region);
        const std::vector<hsize_t>& indices = pieces[k].indices;
        const std::size_t pixelBytes = bytesOf(set.type);
        if (pieces[k].wanted->mean)
            readMean(reader, set, sender.doubles(pixels));
        else
            reader.read(indices, set.memoryType, pixelBytes,
                        sender.room(indices.size() * pixels * pixelBytes));
        sender.send(pieces[k].offset);
    }
    return {};
}
