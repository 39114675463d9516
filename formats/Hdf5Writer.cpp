#include "formats/Hdf5Writer.h"

#include "formats/Hdf5File.h"
#include "formats/SharedPixels.h"
#include "formats/StackFault.h"

#include <array>
#include <cstdlib>
#include <sstream>

namespace
{

std::vector<std::string> fieldsOf(const std::string& word)
{
    std::vector<std::string> fields;
    std::istringstream in(word);
    for (std::string field; std::getline(in, field, '\t');)
        fields.push_back(field);
    return fields;
}

hid_t need(hid_t id)
{
    if (id < 0)
        throw StackFault("cannot be written");
    return id;
}

Hdf5Id createFile(const std::string& path)
{
    return {need(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT)), H5Fclose};
}

Hdf5Id textType(std::size_t size)
{
    Hdf5Id type(need(H5Tcopy(H5T_C_S1)), H5Tclose);
    H5Tset_size(type.get(), size > 0 ? size : 1);
    H5Tset_cset(type.get(), H5T_CSET_UTF8);
    return type;
}

void setAttribute(hid_t owner, const char* name, const std::string& value)
{
    const Hdf5Id type = textType(value.size());
    const Hdf5Id space(need(H5Screate(H5S_SCALAR)), H5Sclose);
    const Hdf5Id attribute(
        need(H5Acreate2(owner, name, type.get(), space.get(), H5P_DEFAULT, H5P_DEFAULT)), H5Aclose);
    need(H5Awrite(attribute.get(), type.get(), value.c_str()));
}

/// The names of the axes of an image, the slower one first.
void setAxes(hid_t owner)
{
    const Hdf5Id type = textType(1);
    const hsize_t count = 2;
    const Hdf5Id space(need(H5Screate_simple(1, &count, nullptr)), H5Sclose);
    const Hdf5Id attribute(
        need(H5Acreate2(owner, "axes", type.get(), space.get(), H5P_DEFAULT, H5P_DEFAULT)),
        H5Aclose);
    need(H5Awrite(attribute.get(), type.get(), "yx"));
}

Hdf5Id createGroup(hid_t parent, const std::string& name, const char* nexusClass)
{
    Hdf5Id group(need(H5Gcreate2(parent, name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT)),
                 H5Gclose);
    setAttribute(group.get(), "NX_class", nexusClass);
    return group;
}

void writeText(hid_t group, const char* name, const std::string& value)
{
    const Hdf5Id type = textType(value.size());
    const Hdf5Id space(need(H5Screate(H5S_SCALAR)), H5Sclose);
    const Hdf5Id data(need(H5Dcreate2(group, name, type.get(), space.get(), H5P_DEFAULT,
                                      H5P_DEFAULT, H5P_DEFAULT)),
                      H5Dclose);
    const std::string padded = value.empty() ? std::string(1, '\0') : value;
    need(H5Dwrite(data.get(), type.get(), H5S_ALL, H5S_ALL, H5P_DEFAULT, padded.data()));
}

Hdf5Id writeNumbers(hid_t group, const std::string& name, const std::vector<hsize_t>& size,
                    const double* values)
{
    const Hdf5Id space(need(H5Screate_simple(static_cast<int>(size.size()), size.data(), nullptr)),
                       H5Sclose);
    const Hdf5Id plist(need(H5Pcreate(H5P_DATASET_CREATE)), H5Pclose);
    H5Pset_obj_track_times(plist.get(), false); // equal runs write equal files
    Hdf5Id data(need(H5Dcreate2(group, name.c_str(), H5T_IEEE_F64LE, space.get(), H5P_DEFAULT,
                                plist.get(), H5P_DEFAULT)),
                H5Dclose);
    need(H5Dwrite(data.get(), H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, values));
    return data;
}

/// A map as it was asked for.
struct Map {
    std::string name;
    hsize_t columns = 0;
    hsize_t rows = 0;
    std::array<double, 4> grid{}; ///< x0, dx, y0, dy
    std::string unit;

    hsize_t pixels() const { return columns * rows; }
};

Map mapOf(const std::string& word)
{
    const std::vector<std::string> fields = fieldsOf(word);
    constexpr std::size_t needed = 7;
    if (fields.size() < needed)
        throw StackFault("is asked for without a map");
    Map map;
    map.name = fields[0];
    map.columns = std::strtoull(fields[1].c_str(), nullptr, 10);
    map.rows = std::strtoull(fields[2].c_str(), nullptr, 10);
    for (std::size_t i = 0; i < map.grid.size(); ++i)
        map.grid[i] = std::strtod(fields[3 + i].c_str(), nullptr);
    map.unit = fields.size() > needed ? fields[needed] : std::string();
    return map;
}

void writeAxis(hid_t group, const char* name, hsize_t count, double first, double step,
               const std::string& unit)
{
    std::vector<double> places(count);
    for (hsize_t i = 0; i < count; ++i)
        places[i] = first + step * static_cast<double>(i);
    const Hdf5Id data = writeNumbers(group, name, {count}, places.data());
    if (!unit.empty())
        setAttribute(data.get(), "units", unit);
}

void writeProcess(hid_t entry, const StackRequest& request, const std::string& job,
                  const std::string& inputs)
{
    const Hdf5Id process = createGroup(entry, "process", "NXprocess");
    writeText(process.get(), "program", request.value("program"));
    writeText(process.get(), "version", request.value("version"));
    writeText(process.get(), "job", job);
    writeText(process.get(), "inputs", inputs);
}

/// An NXdata of one kind of values.
/// @return where the numbers of the next one are
const double* writeData(hid_t entry, const Map& map, const std::string& word, const double* values)
{
    const std::vector<std::string> fields = fieldsOf(word);
    if (fields.size() < 3)
        throw StackFault("is asked for without values");
    const std::string& name = fields[0];
    const Hdf5Id group = createGroup(entry, name, "NXdata");
    setAttribute(group.get(), "signal", name);
    setAxes(group.get());
    writeAxis(group.get(), "x", map.columns, map.grid[0], map.grid[1], map.unit);
    writeAxis(group.get(), "y", map.rows, map.grid[2], map.grid[3], map.unit);
    const Hdf5Id data = writeNumbers(group.get(), name, {map.rows, map.columns}, values);
    setAttribute(data.get(), "long_name", fields[1]);
    values += map.pixels();
    if (fields[2] != "1")
        return values;
    writeNumbers(group.get(), name + "_errors", {map.rows, map.columns}, values);
    return values + map.pixels();
}

} // namespace

std::string writeHdf5(const StackRequest& request)
{
    H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
    const Map map = mapOf(request.value("map"));
    const std::vector<std::string> all = request.values("data");
    const auto length = [&](const char* key) {
        return std::strtoull(request.value(key).c_str(), nullptr, 10);
    };
    const std::size_t texts = (length("job-bytes") + length("inputs-bytes") + 7) / 8 * 8;
    std::size_t images = all.size();
    for (const std::string& word : all)
        images += word.back() == '1' ? 1 : 0;
    SharedPixels shared(stack_words::sharedMemory, texts + images * map.pixels() * sizeof(double));
    const std::string job(shared.data(), length("job-bytes"));
    const std::string inputs(shared.data() + job.size(), length("inputs-bytes"));

    const Hdf5Id file = createFile(request.value("file"));
    setAttribute(file.get(), "default", map.name);
    setAttribute(file.get(), "NX_class", "NXroot");
    const Hdf5Id entry = createGroup(file.get(), map.name, "NXentry");
    if (!all.empty())
        setAttribute(entry.get(), "default", fieldsOf(all.front()).front());
    writeProcess(entry.get(), request, job, inputs);
    const double* values = shared.doublesAt(shared.data() + texts);
    for (const std::string& word : all)
        values = writeData(entry.get(), map, word, values);
    need(H5Fflush(file.get(), H5F_SCOPE_GLOBAL));
    return {};
}

std::string joinHdf5(const StackRequest& request)
{
    H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
    const Hdf5Id file = createFile(request.value("file"));
    setAttribute(file.get(), "NX_class", "NXroot");
    bool first = true;
    for (const std::string& path : request.values("part")) {
        const Hdf5File part(path);
        const Hdf5Id id(H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), H5Fclose);
        for (const std::string& name : part.names("/")) {
            if (first)
                setAttribute(file.get(), "default", name);
            first = false;
            need(H5Ocopy(id.get(), name.c_str(), file.get(), name.c_str(), H5P_DEFAULT,
                         H5P_DEFAULT));
        }
    }
    need(H5Fflush(file.get(), H5F_SCOPE_GLOBAL));
    return {};
}
