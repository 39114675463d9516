#include "formats/Hdf5File.h"

#include "formats/StackFault.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <memory>

namespace
{

constexpr int deepestLinks = 16;
constexpr std::size_t longestText = 4096;
constexpr hsize_t mostNumbers = 1000000;

/// The path behind all links; empty where there is none.
std::string realPath(const std::string& path)
{
    const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), std::free);
    return real ? std::string(real.get()) : std::string();
}

Hdf5Id openFile(const std::string& path)
{
    Hdf5Id file(H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), H5Fclose);
    if (!file.isValid())
        throw StackFault("is no HDF5 file that can be opened");
    return file;
}

const char* filterName(H5Z_filter_t filter)
{
    struct Known {
        H5Z_filter_t filter;
        const char* name;
    };
    static constexpr std::array<Known, 8> known{{{307, "bzip2"},
                                                 {32000, "lzf"},
                                                 {32001, "blosc"},
                                                 {32004, "lz4"},
                                                 {32008, "bitshuffle"},
                                                 {32013, "zfp"},
                                                 {32015, "zstandard"},
                                                 {32026, "blosc2"}}};
    for (const Known& k : known)
        if (k.filter == filter)
            return k.name;
    return "of unknown name";
}

void checkFilters(hid_t plist, const std::string& path)
{
    const int count = H5Pget_nfilters(plist);
    for (int i = 0; i < count; ++i) {
        unsigned flags = 0;
        std::size_t values = 0;
        const H5Z_filter_t filter = H5Pget_filter2(plist, static_cast<unsigned>(i), &flags, &values,
                                                   nullptr, 0, nullptr, nullptr);
        if (filter < 0 || H5Zfilter_avail(filter) <= 0)
            throw StackFault(path + " is compressed by the filter " + filterName(filter) + " (" +
                             std::to_string(filter) +
                             "), which is not installed; install its plug-in of HDF5, or write the "
                             "file anew with h5repack -f GZIP=1");
    }
}

PixelType numberType(hid_t data, const std::string& path, hid_t& memory)
{
    const Hdf5Id type(H5Dget_type(data), H5Tclose);
    const std::size_t size = type.isValid() ? H5Tget_size(type.get()) : 0;
    const H5T_class_t kind = type.isValid() ? H5Tget_class(type.get()) : H5T_NO_CLASS;
    const auto take = [&memory](hid_t id, PixelType pixel) {
        memory = id;
        return pixel;
    };
    if (kind == H5T_FLOAT)
        return size <= sizeof(float) ? take(H5T_NATIVE_FLOAT, PixelType::F32)
                                     : take(H5T_NATIVE_DOUBLE, PixelType::F64);
    if (kind != H5T_INTEGER)
        throw StackFault(path + " holds no numbers");
    const bool isSigned = H5Tget_sign(type.get()) == H5T_SGN_2;
    if (size == 1)
        return isSigned ? take(H5T_NATIVE_INT8, PixelType::I8)
                        : take(H5T_NATIVE_UINT8, PixelType::U8);
    if (size == 2)
        return isSigned ? take(H5T_NATIVE_INT16, PixelType::I16)
                        : take(H5T_NATIVE_UINT16, PixelType::U16);
    if (size <= 4)
        return isSigned ? take(H5T_NATIVE_INT32, PixelType::I32)
                        : take(H5T_NATIVE_UINT32, PixelType::U32);
    return take(H5T_NATIVE_DOUBLE, PixelType::F64);
}

/// Whether numbers are stored as this machine has them.
bool isNative(const Hdf5Data& data)
{
    const Hdf5Id type(H5Dget_type(data.id.get()), H5Tclose);
    return type.isValid() && H5Tequal(type.get(), data.memoryType) > 0;
}

/// Whether something stands before the HDF5 file, by which places are shifted.
bool hasUserBlock(hid_t data)
{
    const Hdf5Id file(H5Iget_file_id(data), H5Fclose);
    const Hdf5Id plist(H5Fget_create_plist(file.get()), H5Pclose);
    hsize_t size = 0;
    return !plist.isValid() || H5Pget_userblock(plist.get(), &size) < 0 || size > 0;
}

/// The name of the file that a set lies in, as it was opened.
std::string fileOf(hid_t data)
{
    std::array<char, longestText> name{};
    const ssize_t length = H5Fget_name(data, name.data(), name.size());
    return length > 0 && length < static_cast<ssize_t>(name.size()) ? name.data() : std::string();
}

/// The texts of a set or attribute by what reads it: fixed or of any length.
template <class Read>
std::vector<std::string> readTexts(hid_t type, hid_t space, const Read& read)
{
    const hssize_t points = H5Sget_simple_extent_npoints(space);
    std::vector<std::string> texts;
    if (H5Tget_class(type) != H5T_STRING || points < 1 ||
        points > static_cast<hssize_t>(longestText))
        return texts;
    const auto count = static_cast<std::size_t>(points);
    const Hdf5Id memory(H5Tcopy(H5T_C_S1), H5Tclose);
    H5Tset_cset(memory.get(), H5Tget_cset(type));
    if (H5Tis_variable_str(type) > 0) {
        H5Tset_size(memory.get(), H5T_VARIABLE);
        std::vector<char*> pointers(count, nullptr);
        if (read(memory.get(), pointers.data()) >= 0)
            for (const char* p : pointers)
                texts.emplace_back(p != nullptr ? p : "");
        return texts;
    }
    const std::size_t size = H5Tget_size(type) + 1;
    if (size > longestText)
        return texts;
    H5Tset_size(memory.get(), size);
    std::vector<char> bytes(count * size, '\0');
    if (read(memory.get(), bytes.data()) >= 0)
        for (std::size_t i = 0; i < count; ++i)
            texts.emplace_back(bytes.data() + i * size);
    return texts;
}

} // namespace

Hdf5File::Hdf5File(const std::string& path)
{
    H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
    const std::string real = realPath(path);
    m_folder = real.substr(0, real.rfind('/') + 1);
    m_file = openFile(path);
}

/// A file that a link or a virtual set names.
Hdf5Id Hdf5File::otherFile(const std::string& name) const
{
    const std::string real = realPath(name.empty() || name[0] == '/' ? name : m_folder + name);
    if (real.empty())
        throw StackFault("refers to the file " + name + ", which is not there");
    if (real.compare(0, m_folder.size(), m_folder) != 0)
        throw StackFault("refers to the file " + name + ", which is not below its own folder");
    return openFile(real);
}

/// What a name in a group stands for.
Hdf5Id Hdf5File::target(hid_t group, const std::string& name, hid_t root, int depth) const
{
    H5L_info_t info{};
    if (H5Lexists(group, name.c_str(), H5P_DEFAULT) <= 0 ||
        H5Lget_info(group, name.c_str(), &info, H5P_DEFAULT) < 0)
        return {};
    if (info.type == H5L_TYPE_HARD)
        return {H5Oopen(group, name.c_str(), H5P_DEFAULT), H5Oclose};
    if (depth >= deepestLinks)
        throw StackFault("has links that lead in a circle");
    std::array<char, longestText> value{};
    if (info.u.val_size >= value.size() ||
        H5Lget_val(group, name.c_str(), value.data(), value.size() - 1, H5P_DEFAULT) < 0)
        return {};
    if (info.type == H5L_TYPE_SOFT)
        return object(value[0] == '/' ? root : group, value.data(), depth + 1);
    const char* file = nullptr;
    const char* path = nullptr;
    unsigned flags = 0;
    if (info.type != H5L_TYPE_EXTERNAL ||
        H5Lunpack_elink_val(value.data(), info.u.val_size, &flags, &file, &path) < 0)
        return {};
    const Hdf5Id other = otherFile(file);
    return object(other.get(), path, depth + 1);
}

/// The object of a path, from a group on; none where there is none.
Hdf5Id Hdf5File::object(hid_t root, const std::string& path, int depth) const
{
    Hdf5Id current(H5Gopen2(root, path[0] == '/' ? "/" : ".", H5P_DEFAULT), H5Gclose);
    for (std::size_t begin = 0; begin < path.size() && current.isValid();) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        const std::string name = path.substr(begin, end - begin);
        begin = end + 1;
        if (name.empty() || name == ".")
            continue;
        if (H5Iget_type(current.get()) != H5I_GROUP)
            return {};
        current = target(current.get(), name, root, depth);
    }
    return current;
}

bool Hdf5File::has(const std::string& path) const
{
    return object(m_file.get(), path, 0).isValid();
}

bool Hdf5File::isGroup(const std::string& path) const
{
    const Hdf5Id found = object(m_file.get(), path, 0);
    return found.isValid() && H5Iget_type(found.get()) == H5I_GROUP;
}

/// Data that lie in other files.
void Hdf5File::checkSources(hid_t data, int depth) const
{
    const Hdf5Id plist(H5Dget_create_plist(data), H5Pclose);
    if (depth >= deepestLinks)
        throw StackFault("has virtual data that lead in a circle");
    const auto allowed = [this](const char* name) { return otherFile(name); };
    const int external = H5Pget_external_count(plist.get());
    for (int i = 0; i < external; ++i) {
        std::array<char, longestText> name{};
        off_t offset = 0;
        hsize_t size = 0;
        H5Pget_external(plist.get(), static_cast<unsigned>(i), name.size() - 1, name.data(),
                        &offset, &size);
        const std::string real = realPath(m_folder + name.data());
        if (name[0] == '/' || real.empty() || real.compare(0, m_folder.size(), m_folder) != 0)
            throw StackFault(std::string("refers to the file ") + name.data() +
                             ", which is not below its own folder");
    }
    if (H5Pget_layout(plist.get()) != H5D_VIRTUAL)
        return;
    std::size_t sources = 0;
    H5Pget_virtual_count(plist.get(), &sources);
    for (std::size_t i = 0; i < sources; ++i) {
        std::array<char, longestText> file{};
        std::array<char, longestText> path{};
        H5Pget_virtual_filename(plist.get(), i, file.data(), file.size() - 1);
        H5Pget_virtual_dsetname(plist.get(), i, path.data(), path.size() - 1);
        const bool own = std::string(file.data()) == ".";
        const Hdf5Id other = own ? Hdf5Id() : allowed(file.data());
        const Hdf5Id source = object(own ? m_file.get() : other.get(), path.data(), depth + 1);
        if (!source.isValid() || H5Iget_type(source.get()) != H5I_DATASET)
            throw StackFault(std::string("refers to data that are not there: ") + path.data());
        const Hdf5Id sourceList(H5Dget_create_plist(source.get()), H5Pclose);
        checkFilters(sourceList.get(), path.data());
        checkSources(source.get(), depth + 1);
    }
}

Hdf5Data Hdf5File::data(const std::string& path) const
{
    Hdf5Data data;
    data.path = path;
    data.id = object(m_file.get(), path, 0);
    if (!data.id.isValid())
        throw StackFault("has no " + path);
    if (H5Iget_type(data.id.get()) != H5I_DATASET)
        throw StackFault(path + " holds no numbers");
    const Hdf5Id space(H5Dget_space(data.id.get()), H5Sclose);
    const int dimensions = H5Sget_simple_extent_ndims(space.get());
    std::array<hsize_t, H5S_MAX_RANK> size{};
    if (dimensions < 0 || H5Sget_simple_extent_dims(space.get(), size.data(), nullptr) < 0)
        throw StackFault(path + " has no size");
    data.size.assign(size.begin(), size.begin() + dimensions);
    data.chunk = data.size;
    data.type = numberType(data.id.get(), path, data.memoryType);
    const Hdf5Id plist(H5Dget_create_plist(data.id.get()), H5Pclose);
    checkFilters(plist.get(), path);
    checkSources(data.id.get(), 0);
    const H5D_layout_t layout = H5Pget_layout(plist.get());
    data.isPlain = layout == H5D_CONTIGUOUS;
    data.isAsInMemory =
        (data.isPlain || layout == H5D_CHUNKED) && H5Pget_nfilters(plist.get()) == 0 &&
        H5Pget_external_count(plist.get()) == 0 && isNative(data) && !hasUserBlock(data.id.get());
    data.file = fileOf(data.id.get());
    if (layout == H5D_CHUNKED && H5Pget_chunk(plist.get(), dimensions, size.data()) == dimensions)
        data.chunk.assign(size.begin(), size.begin() + dimensions);
    return data;
}

std::vector<double> Hdf5File::numbers(const std::string& path) const
{
    const Hdf5Data set = data(path);
    hsize_t count = 1;
    for (const hsize_t n : set.size)
        if (count <= mostNumbers)
            count *= std::min(n, mostNumbers + 1);
    if (count > mostNumbers)
        throw StackFault(path + " has more than a million numbers");
    std::vector<double> values(count);
    if (count > 0 &&
        H5Dread(set.id.get(), H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()) < 0)
        throw StackFault(path + " cannot be read");
    return values;
}

std::vector<std::string> Hdf5File::attribute(const std::string& path, const char* name) const
{
    const Hdf5Id owner = object(m_file.get(), path, 0);
    if (!owner.isValid() || H5Aexists(owner.get(), name) <= 0)
        return {};
    const Hdf5Id id(H5Aopen(owner.get(), name, H5P_DEFAULT), H5Aclose);
    const Hdf5Id type(H5Aget_type(id.get()), H5Tclose);
    const Hdf5Id space(H5Aget_space(id.get()), H5Sclose);
    return readTexts(type.get(), space.get(),
                     [&id](hid_t memory, void* to) { return H5Aread(id.get(), memory, to); });
}

std::string Hdf5File::text(const std::string& path) const
{
    const Hdf5Id id = object(m_file.get(), path, 0);
    if (!id.isValid() || H5Iget_type(id.get()) != H5I_DATASET)
        return {};
    const Hdf5Id type(H5Dget_type(id.get()), H5Tclose);
    const Hdf5Id space(H5Dget_space(id.get()), H5Sclose);
    const auto texts = readTexts(type.get(), space.get(), [&id](hid_t memory, void* to) {
        return H5Dread(id.get(), memory, H5S_ALL, H5S_ALL, H5P_DEFAULT, to);
    });
    return texts.empty() ? std::string() : texts.front();
}

std::vector<std::string> Hdf5File::names(const std::string& path) const
{
    const Hdf5Id group = object(m_file.get(), path, 0);
    std::vector<std::string> found;
    if (!group.isValid() || H5Iget_type(group.get()) != H5I_GROUP)
        return found;
    const auto add = [](hid_t, const char* name, const H5L_info_t*, void* to) -> herr_t {
        auto& names = *static_cast<std::vector<std::string>*>(to);
        names.emplace_back(name);
        return names.size() < longestText ? 0 : 1;
    };
    hsize_t index = 0;
    H5Literate(group.get(), H5_INDEX_NAME, H5_ITER_INC, &index, add, &found);
    return found;
}
