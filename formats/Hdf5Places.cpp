#include "formats/Hdf5Places.h"

#include <array>

namespace
{

/// The images of a set, one behind the other.
struct Images {
    hsize_t count = 1;
    hsize_t bytes = 0; ///< of each
    bool isStack = false;
};

Images imagesIn(const Hdf5Data& set)
{
    Images images;
    images.isStack = set.size.size() == 3;
    images.count = images.isStack ? set.size[0] : 1;
    images.bytes =
        set.size[images.isStack ? 1 : 0] * set.size[images.isStack ? 2 : 1] * bytesOf(set.type);
    return images;
}

/// The place of an image that is a chunk, or of one of those that follow one another.
haddr_t placeOf(const Hdf5Data& set, const Images& images, hsize_t image)
{
    if (set.isPlain) {
        const haddr_t begin = H5Dget_offset(set.id.get());
        return begin == HADDR_UNDEF ? begin : begin + image * images.bytes;
    }
    const std::array<hsize_t, 3> at{images.isStack ? image : 0, 0, 0};
    unsigned filters = 0;
    hsize_t bytes = 0;
    haddr_t place = HADDR_UNDEF;
    const bool found =
        H5Dget_chunk_info_by_coord(set.id.get(), at.data(), &filters, &place, &bytes) >= 0;
    return found && bytes == images.bytes ? place : HADDR_UNDEF;
}

/// Whether all images of a set may have places.
bool mayHavePlaces(const Hdf5Data& set, const Images& images)
{
    constexpr hsize_t mostChunks = 512; // each of them is searched for from the first one on
    constexpr hsize_t mostImages = 100000;
    if (images.count > mostImages)
        return false;
    if (set.isPlain)
        return H5Dget_storage_size(set.id.get()) == images.count * images.bytes;
    std::vector<hsize_t> image = set.size;
    if (images.isStack)
        image.front() = 1;
    return set.chunk == image && images.count <= mostChunks;
}

} // namespace

std::string placesOf(const Hdf5Data& set, const std::string& path, int dimension)
{
    const Images images = imagesIn(set);
    if ((images.isStack && dimension != 0) || !set.isAsInMemory || set.file != path ||
        !mayHavePlaces(set, images))
        return {};
    std::string places;
    for (hsize_t k = 0; k < images.count; ++k) {
        const haddr_t place = placeOf(set, images, k);
        if (place == HADDR_UNDEF)
            return {};
        places += std::to_string(place) + ' ';
    }
    return places;
}
