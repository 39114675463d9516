#include "formats/Hdf5Layout.h"

#include "formats/StackFault.h"

#include <algorithm>
#include <cstdlib>

namespace
{

constexpr std::size_t stackDimensions = 3;

bool endsWith(const std::string& text, const std::string& end)
{
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

void take(std::string& to, const std::string& path)
{
    if (to.empty())
        to = path;
}

/// The first of some paths that is there.
std::string firstOf(const Hdf5File& file, const std::vector<std::string>& paths)
{
    for (const std::string& path : paths)
        if (file.has(path))
            return path;
    return {};
}

/// "18.5nm", in micrometres; 0 for any other text.
double micrometres(const std::string& text)
{
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    const std::string unit(end);
    if (unit.find("nm") != std::string::npos)
        return value / 1000.0;
    return unit.find("um") != std::string::npos ? value : 0.0;
}

double firstNumber(const Hdf5File& file, const std::string& path)
{
    if (!file.has(path))
        return 0.0;
    const std::vector<double> numbers = file.numbers(path);
    return numbers.empty() ? 0.0 : numbers.front();
}

void takeFxi(const Hdf5File& file, const std::string& fileName, Hdf5Layout& layout)
{
    if (endsWith(fileName, "_img_only.h5") && layout.values == StackValues::Unknown)
        throw StackFault("holds counts less dark under the name of a transmission; say what they "
                         "are: values = \"counts\", with a flat");
    layout.kind = "fxi";
    take(layout.data, "/img_xanes");
    take(layout.energies, "/X_eng");
    if (layout.values == StackValues::Unknown)
        layout.values = StackValues::Transmission;
    layout.pixelWidth = layout.pixelHeight = micrometres(file.text("/Pixel Size"));
}

void takeExchange(const Hdf5File& file, Hdf5Layout& layout)
{
    layout.kind = "exchange";
    take(layout.data, "/exchange/data");
    take(layout.energies, "/exchange/energy");
    take(layout.flat,
         firstOf(file, {"/exchange/data_white", "/exchange/data_flat", "/exchange/white_data"}));
    take(layout.dark, firstOf(file, {"/exchange/data_dark", "/exchange/dark_data"}));
    if (layout.values == StackValues::Unknown)
        layout.values = StackValues::Counts;
}

void takeMistral(const Hdf5File& file, Hdf5Layout& layout)
{
    const std::string group = "/SpecNormalized/";
    layout.kind = "mistral";
    take(layout.data, firstOf(file, {group + "spectroscopy_normalized_aligned",
                                     group + "spectroscopy_normalized"}));
    take(layout.energies, group + "energy");
    if (layout.values == StackValues::Unknown)
        layout.values = StackValues::Transmission;
    layout.pixelWidth = firstNumber(file, group + "x_pixel_size");
    layout.pixelHeight = firstNumber(file, group + "y_pixel_size");
}

std::string firstText(const std::vector<std::string>& texts)
{
    return texts.empty() ? std::string() : texts.front();
}

/// The group of the default data: by `default` from the root on, otherwise the first NXdata in the
/// first NXentry.
std::string defaultData(const Hdf5File& file)
{
    std::string group = "/";
    for (const char* const wanted : {"NXentry", "NXdata"}) {
        std::string next = firstText(file.attribute(group, "default"));
        for (const std::string& name :
             next.empty() ? file.names(group) : std::vector<std::string>())
            if (next.empty() && firstText(file.attribute(group + name, "NX_class")) == wanted)
                next = name;
        if (next.empty() || next.find('/') != std::string::npos)
            return {};
        group += next + '/';
    }
    return group;
}

/// The axis that is the energy: named so, or with its unit, otherwise the first.
std::string energyAxis(const Hdf5File& file, const std::string& group,
                       const std::vector<std::string>& axes)
{
    const auto is = [&](const std::string& axis) {
        const std::string unit = firstText(file.attribute(group + axis, "units"));
        return axis.find("nergy") != std::string::npos || unit == "eV" || unit == "keV";
    };
    const auto found = std::find_if(axes.begin(), axes.end(), is);
    return found != axes.end() ? *found : axes.front();
}

bool takeNexus(const Hdf5File& file, Hdf5Layout& layout)
{
    const std::string group = defaultData(file);
    if (group.empty())
        return false;
    const std::string signal = firstText(file.attribute(group, "signal"));
    const std::vector<std::string> axes = file.attribute(group, "axes");
    if (signal.empty())
        throw StackFault("has NXdata of before 2014 without a signal attribute of the group; name "
                         "the paths: data = \"...\", energies = \"...\"");
    layout.kind = "nxdata";
    take(layout.data, group + signal);
    if (!file.has(layout.data))
        throw StackFault("has no " + layout.data);
    if (file.data(layout.data).size.size() < stackDimensions)
        throw StackFault("is a NeXus file of a spectrum, as NXxas and BLISS write, which is not "
                         "read; export it as columns or XDI");
    if (layout.energies.empty() && !axes.empty())
        layout.energies = group + energyAxis(file, group, axes);
    if (layout.values == StackValues::Unknown)
        throw StackFault("does not say what its values are: values = \"mu-t\", \"transmission\" or "
                         "\"counts\"");
    return true;
}

bool isKind(const Hdf5Layout& layout, const char* kind)
{
    return layout.kind.empty() || layout.kind == kind;
}

void findKind(const Hdf5File& file, const std::string& fileName, Hdf5Layout& layout)
{
    if (isKind(layout, "fxi") && file.has("/img_xanes"))
        return takeFxi(file, fileName, layout);
    if (isKind(layout, "exchange") && file.has("/exchange/data"))
        return takeExchange(file, layout);
    if (isKind(layout, "mistral") && file.has("/SpecNormalized"))
        return takeMistral(file, layout);
    if (isKind(layout, "nxdata") && takeNexus(file, layout))
        return;
    throw StackFault(layout.kind.empty()
                         ? "has no stack of a known kind; name the paths: data = \"...\", energies "
                           "= \"...\""
                         : "is of another kind than " + layout.kind);
}

} // namespace

void completeLayout(const Hdf5File& file, const std::string& fileName, Hdf5Layout& layout)
{
    if (layout.kind.empty() && !layout.data.empty())
        layout.kind = "paths";
    else
        findKind(file, fileName, layout);
    if (layout.data.empty())
        throw StackFault("has no stack of the kind " + layout.kind);
    if (layout.values == StackValues::Unknown)
        throw StackFault("does not say what its values are: values = \"mu-t\", \"transmission\" or "
                         "\"counts\"");
    if (!layout.energies.empty() && file.has(layout.energies))
        layout.unit = firstText(file.attribute(layout.energies, "units"));
}

int energyDimension(const Hdf5Data& stack, std::size_t energies)
{
    if (stack.size.size() != stackDimensions)
        throw StackFault(stack.path + " has " + std::to_string(stack.size.size()) +
                         " dimensions and is no stack of images");
    if (energies == 0)
        return 0;
    const bool first = stack.size.front() == energies;
    const bool last = stack.size.back() == energies;
    if (first && last)
        throw StackFault("has as many energies as frames and as columns, so that its order cannot "
                         "be told");
    if (first || last)
        return first ? 0 : 2;
    throw StackFault("has " + std::to_string(energies) + " energies, and " + stack.path +
                     " is as long in none of its outer dimensions");
}
