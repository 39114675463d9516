#pragma once

#include "formats/FileFault.h"
#include "system/PixelArray.h"
#include "system/SafeFile.h"

#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class Workers;

/// Limits of the process that reads and writes HDF5 and TIFF files.
struct StackLimits {
    double seconds = 60.0;                            ///< beside those for the pixels
    std::size_t memory = std::size_t{2} << 30;        ///< bytes beside those of the pixels
    std::size_t bytesASecond = std::size_t{5} << 20;  ///< that a slow disk gives
    std::size_t bytesAProcess = std::size_t{1} << 24; ///< pixels for which another one is started
    bool alwaysAsked = false; ///< for pixels that lie in a file as in memory, too; for tests
};

/// The program that does; found beside this one unless a place is given here. For tests.
void setStackProgram(const QString& path, const StackLimits& limits = {});

/// Whether pixels may be read without the process where that is possible.
bool mayReadRaw();

/// Memory for pixels that another process reads.
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

    /// The first value, or one behind it; empty where there is none.
    std::string value(const std::string& key, std::size_t at = 0) const
    {
        const auto [first, last] = values.equal_range(key);
        const auto count = static_cast<std::size_t>(std::distance(first, last));
        return at < count ? std::next(first, static_cast<std::ptrdiff_t>(at))->second
                          : std::string();
    }
    long number(const std::string& key, std::size_t at = 0) const;
};

/// Asks the process. What fails there is a fault here, and nothing worse.
/// @param path    of the file that the words name, for the fault
/// @param pixels  that it reads; null for none
/// @param answer  what it said before a fault, too
/// @param copied  bytes that it copies from file to file, for its time
std::optional<FileFault> askStackProcess(const QString& path, std::vector<std::string> words,
                                         const PixelMemory* pixels, StackWords& answer,
                                         std::size_t copied = 0);

/// Memory for pixels that processes send; not touched before they come.
/// @return null where there is not as much
std::shared_ptr<PixelArray<char>> pixelsToCome(std::size_t bytes);

/// Asks several processes at once, each of which sends its share of the pixels; one where they are
/// few. The fault is that of the first share that has one.
/// @param workers  a process for each; one where they are null
/// @param answer  of that share, or of the first
std::optional<FileFault> askForPixels(const QString& path, const std::vector<std::string>& words,
                                      PixelArray<char>& pixels, const Workers* workers,
                                      StackWords& answer);

/// Has the process write a file that is put into its place when it is whole.
/// @param words  without the file
/// @return why it was not
WriteOutcome writeByStackProcess(const QString& path, std::vector<std::string> words,
                                 const PixelMemory& pixels, std::size_t copied = 0);
