#pragma once

#include "formats/Frame.h"

#include <hdf5.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

/// An identifier of the HDF5 library, given back at the end.
class Hdf5Id
{
public:
    Hdf5Id() = default;
    /// @param close  of the library, for this kind of identifier
    Hdf5Id(hid_t id, herr_t (*close)(hid_t)) : m_id(id), m_close(close) {}
    Hdf5Id(Hdf5Id&& other) noexcept : m_id(std::exchange(other.m_id, -1)), m_close(other.m_close) {}
    Hdf5Id& operator=(Hdf5Id&& other) noexcept
    {
        std::swap(m_id, other.m_id);
        std::swap(m_close, other.m_close);
        return *this;
    }
    Hdf5Id(const Hdf5Id&) = delete;
    Hdf5Id& operator=(const Hdf5Id&) = delete;
    ~Hdf5Id()
    {
        if (m_id >= 0)
            m_close(m_id);
    }

    bool isValid() const { return m_id >= 0; }
    hid_t get() const { return m_id; }
    /// Whoever gets it gives it back.
    hid_t release() { return std::exchange(m_id, -1); }

private:
    hid_t m_id = -1;
    herr_t (*m_close)(hid_t) = nullptr;
};

/// A set of numbers in an HDF5 file.
struct Hdf5Data {
    Hdf5Id id;
    std::string path;
    std::vector<hsize_t> size;  ///< of each dimension
    std::vector<hsize_t> chunk; ///< of each dimension; the size itself where there are no chunks
    bool isPlain = false;       ///< its numbers lie one behind the other, without chunks
    bool isAsInMemory = false;  ///< its bytes are those of its numbers, in `file`
    std::string file;           ///< that it lies in, which a link may have led to
    PixelType type = PixelType::U16; ///< that holds its numbers
    hid_t memoryType = -1;
};

/// An HDF5 file, open for reading. All functions throw StackFault. Links and data of other files
/// are followed below the file's own folder only.
class Hdf5File
{
public:
    explicit Hdf5File(const std::string& path);

    bool has(const std::string& path) const;
    bool isGroup(const std::string& path) const;
    /// Numbers, their filters there, their sources allowed.
    Hdf5Data data(const std::string& path) const;
    /// All numbers of a small set, at most a million.
    std::vector<double> numbers(const std::string& path) const;
    /// The texts of an attribute, or of a set; none where there is no such thing.
    std::vector<std::string> attribute(const std::string& path, const char* name) const;
    std::string text(const std::string& path) const;
    /// Names in a group, in the order of the alphabet.
    std::vector<std::string> names(const std::string& path) const;

private:
    Hdf5Id object(hid_t root, const std::string& path, int depth) const;
    Hdf5Id target(hid_t group, const std::string& name, hid_t root, int depth) const;
    Hdf5Id otherFile(const std::string& name) const;
    void checkSources(hid_t data, int depth) const;

    std::string m_folder; ///< of the file, behind all links
    Hdf5Id m_file;
};
