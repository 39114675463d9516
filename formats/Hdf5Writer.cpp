#include "formats/Hdf5Writer.h"

#include "formats/Hdf5Output.h"
#include "formats/SharedPixels.h"
#include "formats/StackFault.h"

#include <array>
#include <cstdlib>
#include <sstream>

namespace
{

using namespace hdf5_output;

constexpr const char* micrometre = "um";
constexpr const char* noUnit = "1";

std::vector<std::string> fieldsOf(const std::string& word)
{
    std::vector<std::string> fields;
    std::istringstream in(word);
    for (std::string field; std::getline(in, field, '\t');)
        fields.push_back(field);
    return fields;
}

std::size_t whole(const StackRequest& request, const char* key)
{
    return std::strtoull(request.value(key).c_str(), nullptr, 10);
}

double real(const StackRequest& request, const char* key)
{
    return std::strtod(request.value(key).c_str(), nullptr);
}

/// A map as it was asked for.
struct Map {
    explicit Map(const StackRequest& request)
        : name(request.value("name")), columns(whole(request, "columns")),
          rows(whole(request, "rows")), pixel{real(request, "pixel-width"),
                                              real(request, "pixel-height")},
          ofEach(request.value("axes") == "2")
    {
    }

    hsize_t pixels() const { return columns * rows; }
    hsize_t places() const { return ofEach ? 2 * pixels() : columns + rows; }
    bool hasUnit() const { return pixel[0] > 0.0 && pixel[1] > 0.0; }

    std::string name;
    hsize_t columns;
    hsize_t rows;
    std::array<double, 2> pixel; ///< width and height
    bool ofEach;                 ///< a place for each pixel
};

/// x and y, and the size of a pixel.
/// @return where the numbers of the images are
const double* writeAxes(hid_t entry, const Map& map, const double* numbers)
{
    const std::vector<hsize_t> image{map.rows, map.columns};
    for (const auto& [name, count] : {std::pair("x", map.columns), std::pair("y", map.rows)}) {
        const std::vector<hsize_t> size = map.ofEach ? image : std::vector<hsize_t>{count};
        const Hdf5Id data = writeNumbers(entry, name, size, numbers);
        if (map.hasUnit())
            setAttribute(data.get(), "units", micrometre);
        numbers += map.ofEach ? map.pixels() : count;
    }
    if (map.hasUnit()) {
        const Hdf5Id size = writeNumbers(entry, "pixel_size", {2}, map.pixel.data());
        setAttribute(size.get(), "units", micrometre);
    }
    return numbers;
}

/// An NXdata of one kind of values.
/// @return where the numbers of the next one are
const double* writeData(hid_t entry, const Map& map, const std::string& word, const double* numbers)
{
    const std::vector<std::string> fields = fieldsOf(word);
    if (fields.size() != 3)
        throw StackFault("is asked for without values");
    const std::string& name = fields[0];
    const Hdf5Id group = createGroup(entry, name, "NXdata");
    setAttribute(group.get(), "signal", name);
    setAttribute(group.get(), "axes", std::vector<std::string>{"y", "x"});
    for (const char* const axis : {"x", "y"}) {
        link(entry, axis, group.get(), axis);
        if (map.ofEach)
            setAttribute(group.get(), std::string(axis) + "_indices", std::vector<int>{0, 1});
    }
    const std::vector<hsize_t> size{map.rows, map.columns};
    const Hdf5Id data = writeNumbers(group.get(), name, size, numbers);
    setAttribute(data.get(), "long_name", fields[1]);
    setAttribute(data.get(), "units", noUnit);
    numbers += map.pixels();
    if (fields[2] != "1")
        return numbers;
    const Hdf5Id errors = writeNumbers(group.get(), name + "_errors", size, numbers);
    setAttribute(errors.get(), "long_name", "standard deviation of " + fields[1]);
    setAttribute(errors.get(), "units", noUnit);
    return numbers + map.pixels();
}

/// The texts behind the numbers, one after the other.
class Texts
{
public:
    Texts(const char* begin, const char* end) : m_at(begin), m_end(end) {}

    std::string next()
    {
        const char* const from = m_at;
        while (m_at != m_end && *m_at != '\0')
            ++m_at;
        if (m_at == m_end)
            throw StackFault("is asked for with too few texts");
        return {from, m_at++};
    }

private:
    const char* m_at;
    const char* m_end;
};

/// What a run asks for besides its file.
struct Run {
    explicit Run(const StackRequest& request)
        : table(request.value("table")), rows(whole(request, "rows")), maps(whole(request, "maps"))
    {
        for (const std::string& word : request.values("column")) {
            const std::vector<std::string> fields = fieldsOf(word);
            if (fields.size() != 2)
                throw StackFault("is asked for without a column");
            columns.emplace_back(fields[0], fields[1] == "number");
            numbers += columns.back().second ? rows : 0;
        }
    }

    std::string table;
    hsize_t rows;
    std::size_t maps;
    std::vector<std::pair<std::string, bool>> columns; ///< name, and whether it has numbers
    std::size_t numbers = 0;
};

void writeProcess(hid_t entry, const StackRequest& request, const std::string& job,
                  const std::string& inputs)
{
    const Hdf5Id process = createGroup(entry, "process", "NXprocess");
    writeTexts(process.get(), "program", {}, {request.value("program")});
    writeTexts(process.get(), "version", {}, {request.value("version")});
    writeTexts(process.get(), "job", {}, {job});
    writeTexts(process.get(), "inputs", {}, {inputs});
}

/// A column "sigma_a" is found as "a_errors" too, as readers of NXdata look for it.
void linkErrors(hid_t group, const std::string& name)
{
    constexpr const char* sign = "sigma_";
    const std::size_t at = name.find(sign);
    if (at == std::string::npos || name.find("_ref") != std::string::npos)
        return;
    const std::string of = name.substr(0, at) + name.substr(at + std::string(sign).size());
    link(group, name, group, of + "_errors");
}

void writeTable(hid_t file, const Run& run, const double* numbers, Texts& texts)
{
    const Hdf5Id group = createGroup(file, run.table, "NXcollection");
    for (const auto& [name, isNumber] : run.columns) {
        if (isNumber) {
            writeNumbers(group.get(), name, {run.rows}, numbers);
            numbers += run.rows;
            linkErrors(group.get(), name);
            continue;
        }
        std::vector<std::string> column(run.rows);
        for (std::string& text : column)
            text = texts.next();
        writeTexts(group.get(), name, {run.rows}, column);
    }
}

} // namespace

std::string writeMap(const StackRequest& request)
{
    beQuiet();
    const Map map(request);
    const std::vector<std::string> all = request.values("data");
    std::size_t images = all.size();
    for (const std::string& word : all)
        images += word.back() == '1' ? 1 : 0;
    SharedPixels shared(stack_words::sharedMemory,
                        (map.places() + images * map.pixels()) * sizeof(double));
    Hdf5Id file = createFile(request.value("file"));
    setAttribute(file.get(), "NX_class", "NXroot");
    setAttribute(file.get(), "default", map.name);
    {
        const Hdf5Id entry = createGroup(file.get(), map.name, "NXentry");
        if (!all.empty())
            setAttribute(entry.get(), "default", fieldsOf(all.front()).front());
        const double* numbers = writeAxes(entry.get(), map, SharedPixels::doublesAt(shared.data()));
        for (const std::string& word : all)
            numbers = writeData(entry.get(), map, word, numbers);
    }
    closeFile(file);
    return {};
}

std::string writeRun(const StackRequest& request)
{
    beQuiet();
    const Run run(request);
    SharedPixels shared(stack_words::sharedMemory, whole(request, "bytes"));
    const std::size_t texts = run.numbers * sizeof(double);
    if (texts > shared.size())
        throw StackFault("is asked for with too few numbers");
    Texts next(shared.data() + texts, shared.data() + shared.size());
    const std::string job = next.next();
    Hdf5Id file = createFile(request.value("file"));
    setAttribute(file.get(), "NX_class", "NXroot");
    for (std::size_t i = 0; i < run.maps; ++i) {
        const std::string name = next.next();
        if (i == 0)
            setAttribute(file.get(), "default", name);
        const Hdf5Id entry = copyGroup(next.next(), name, file.get());
        writeProcess(entry.get(), request, job, next.next());
    }
    if (run.maps == 0)
        setAttribute(file.get(), "default", run.table);
    if (!run.table.empty())
        writeTable(file.get(), run, SharedPixels::doublesAt(shared.data()), next);
    closeFile(file);
    return {};
}
