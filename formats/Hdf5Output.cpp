#include "formats/Hdf5Output.h"

#include "formats/StackFault.h"

namespace
{

hid_t need(hid_t id)
{
    if (id < 0)
        throw StackFault("cannot be written");
    return id;
}

/// Names of groups and sets in UTF-8.
Hdf5Id linkProperties()
{
    Hdf5Id properties(need(H5Pcreate(H5P_LINK_CREATE)), H5Pclose);
    need(H5Pset_char_encoding(properties.get(), H5T_CSET_UTF8));
    return properties;
}

Hdf5Id textType()
{
    Hdf5Id type(need(H5Tcopy(H5T_C_S1)), H5Tclose);
    need(H5Tset_size(type.get(), H5T_VARIABLE));
    need(H5Tset_cset(type.get(), H5T_CSET_UTF8));
    return type;
}

/// No dimension is a single value.
Hdf5Id spaceOf(const std::vector<hsize_t>& size)
{
    return {need(size.empty()
                     ? H5Screate(H5S_SCALAR)
                     : H5Screate_simple(static_cast<int>(size.size()), size.data(), nullptr)),
            H5Sclose};
}

Hdf5Id createData(hid_t group, const std::string& name, hid_t type,
                  const std::vector<hsize_t>& size)
{
    const Hdf5Id space = spaceOf(size);
    const Hdf5Id links = linkProperties();
    const Hdf5Id properties(need(H5Pcreate(H5P_DATASET_CREATE)), H5Pclose);
    need(H5Pset_obj_track_times(properties.get(), false));
    return {need(H5Dcreate2(group, name.c_str(), type, space.get(), links.get(), properties.get(),
                            H5P_DEFAULT)),
            H5Dclose};
}

void putAttribute(hid_t owner, const std::string& name, hid_t type,
                  const std::vector<hsize_t>& size, const void* values)
{
    const Hdf5Id space = spaceOf(size);
    const Hdf5Id attribute(
        need(H5Acreate2(owner, name.c_str(), type, space.get(), H5P_DEFAULT, H5P_DEFAULT)),
        H5Aclose);
    need(H5Awrite(attribute.get(), type, values));
}

std::vector<const char*> pointersTo(const std::vector<std::string>& texts)
{
    std::vector<const char*> pointers;
    pointers.reserve(texts.size());
    for (const std::string& text : texts)
        pointers.push_back(text.c_str());
    return pointers;
}

} // namespace

void hdf5_output::beQuiet()
{
    H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
}

Hdf5Id hdf5_output::createFile(const std::string& path)
{
    return {need(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT)), H5Fclose};
}

void hdf5_output::closeFile(Hdf5Id& file)
{
    need(H5Fflush(file.get(), H5F_SCOPE_GLOBAL));
    need(H5Fclose(file.release()));
}

Hdf5Id hdf5_output::createGroup(hid_t parent, const std::string& name, const char* nexusClass)
{
    const Hdf5Id links = linkProperties();
    Hdf5Id group(need(H5Gcreate2(parent, name.c_str(), links.get(), H5P_DEFAULT, H5P_DEFAULT)),
                 H5Gclose);
    setAttribute(group.get(), "NX_class", nexusClass);
    return group;
}

Hdf5Id hdf5_output::copyGroup(const std::string& fromFile, const std::string& name, hid_t to)
{
    const Hdf5Id from(need(H5Fopen(fromFile.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT)), H5Fclose);
    const Hdf5Id links = linkProperties();
    need(H5Ocopy(from.get(), name.c_str(), to, name.c_str(), H5P_DEFAULT, links.get()));
    return {need(H5Gopen2(to, name.c_str(), H5P_DEFAULT)), H5Gclose};
}

void hdf5_output::link(hid_t group, const std::string& name, hid_t toGroup,
                       const std::string& toName)
{
    const Hdf5Id links = linkProperties();
    need(H5Lcreate_hard(group, name.c_str(), toGroup, toName.c_str(), links.get(), H5P_DEFAULT));
}

void hdf5_output::setAttribute(hid_t owner, const std::string& name, const std::string& value)
{
    const char* const text = value.c_str();
    putAttribute(owner, name, textType().get(), {}, &text);
}

void hdf5_output::setAttribute(hid_t owner, const std::string& name,
                               const std::vector<std::string>& values)
{
    putAttribute(owner, name, textType().get(), {values.size()}, pointersTo(values).data());
}

void hdf5_output::setAttribute(hid_t owner, const std::string& name, const std::vector<int>& values)
{
    putAttribute(owner, name, H5T_NATIVE_INT, {values.size()}, values.data());
}

Hdf5Id hdf5_output::writeNumbers(hid_t group, const std::string& name,
                                 const std::vector<hsize_t>& size, const double* values)
{
    Hdf5Id data = createData(group, name, H5T_IEEE_F64LE, size);
    need(H5Dwrite(data.get(), H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, values));
    return data;
}

void hdf5_output::writeTexts(hid_t group, const std::string& name, const std::vector<hsize_t>& size,
                             const std::vector<std::string>& values)
{
    const Hdf5Id type = textType();
    const Hdf5Id data = createData(group, name, type.get(), size);
    if (!values.empty())
        need(H5Dwrite(data.get(), type.get(), H5S_ALL, H5S_ALL, H5P_DEFAULT,
                      pointersTo(values).data()));
}
