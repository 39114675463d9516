#pragma once

#include "formats/FileFault.h"
#include "system/SafeFile.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// Limits of the process that reads and writes HDF5 and TIFF files.
struct StackLimits {
    double seconds = 60.0;                           ///< beside those for the pixels
    std::size_t memory = std::size_t{2} << 30;       ///< bytes beside those of the pixels
    std::size_t bytesASecond = std::size_t{5} << 20; ///< that a slow disk gives
};

/// The program that does; found beside this one unless a place is given here. For tests.
void setStackProgram(const QString& path, const StackLimits& limits = {});

/// Memory for pixels that another process fills or reads.
class PixelMemory
{
public:
    explicit PixelMemory(std::size_t bytes);
    ~PixelMemory();
    PixelMemory(const PixelMemory&) = delete;
    PixelMemory& operator=(const PixelMemory&) = delete;

    bool isThere() const { return m_data != nullptr; } ///< false where the system refuses
    char* data() const { return m_data; }
    std::size_t size() const { return m_bytes; }
    int descriptor() const { return m_descriptor; }

private:
    std::size_t m_bytes;
    int m_descriptor = -1;
    char* m_data = nullptr;
};

/// What the process answered: all values of each key.
struct StackWords {
    std::multimap<std::string, std::string> values;

    std::string value(const std::string& key) const
    {
        const auto found = values.find(key);
        return found == values.end() ? std::string() : found->second;
    }
    long number(const std::string& key) const;
};

/// Asks the process. What fails there is a fault here, and nothing worse.
/// @param path    of the file that the words name, for the fault
/// @param pixels  that it fills, or reads; null for none
/// @param copied  bytes that it copies from file to file, for its time
std::optional<FileFault> askStackProcess(const QString& path, std::vector<std::string> words,
                                         const PixelMemory* pixels, StackWords& answer,
                                         std::size_t copied = 0);

/// Has the process write a file that is put into its place when it is whole.
/// @param words  without the file
/// @return why it was not
WriteOutcome writeByStackProcess(const QString& path, std::vector<std::string> words,
                                 const PixelMemory& pixels, std::size_t copied = 0);
