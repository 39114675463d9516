#include "formats/RawImages.h"

#include "system/InputFile.h"
#include "system/Workers.h"

#include <QFile>

#include <algorithm>
#include <atomic>
#include <map>
#include <sstream>

namespace
{

using Files = std::map<QString, std::unique_ptr<InputFile>>;

/// Rows of one image, or of all images of a mean.
struct RowsTask {
    const RawImages* images = nullptr;
    std::size_t image = 0; ///< unless it is a mean
    int row = 0;           ///< of the region
    int rows = 0;
};

/// Reads the rows of a region.
class RegionReader
{
public:
    RegionReader(int columns, const Region& region, char* memory)
        : m_columns(columns), m_region(region), m_memory(memory)
    {
    }

    /// Opens the files; false where an image does not lie within its own.
    bool open(const RawImages& images)
    {
        const std::int64_t rows = std::int64_t{m_region.y} + m_region.height;
        const std::int64_t needed = rows * m_columns * bytesIn(images.type);
        return std::all_of(images.images.begin(), images.images.end(), [&](const RawImage& image) {
            std::unique_ptr<InputFile>& file = m_files[image.path];
            if (!file) {
                file = InputFile::open(image.path);
                m_states[image.path] = fileState(QFile::encodeName(image.path));
            }
            return file && image.offset >= 0 && image.offset <= file->size() - needed &&
                   image.state && image.state == m_states[image.path];
        });
    }

    void addTasks(const RawImages& images, std::vector<RowsTask>& tasks) const
    {
        const int rows = rowsAtOnce(images);
        for (std::size_t k = 0; k < (images.isMean ? 1 : images.images.size()); ++k)
            for (int row = 0; row < m_region.height; row += rows)
                tasks.push_back({&images, k, row, std::min(rows, m_region.height - row)});
    }

    bool read(const RowsTask& task) const
    {
        const RawImages& all = *task.images;
        const std::size_t pixels = pixelsOf(task.rows);
        const std::size_t before = pixelsOf(task.row);
        char* const memory = m_memory + all.offset;
        if (!all.isMean)
            return readRows(all, task.image, task,
                            memory + (task.image * pixelsOf(m_region.height) + before) *
                                         bytesOf(all.type));
        std::vector<char> rows(pixels * bytesOf(all.type));
        void* const place = memory;
        double* const mean = static_cast<double*>(place) + before;
        for (std::size_t k = 0; k < all.images.size(); ++k) {
            if (!readRows(all, k, task, rows.data()))
                return false;
            addToMean(all.way, {all.type, rows.data()}, pixels, k, all.images.size(), mean);
        }
        return true;
    }

private:
    static std::int64_t bytesIn(PixelType type) { return static_cast<std::int64_t>(bytesOf(type)); }

    /// Rows of a task: about a megabyte, or what a core's second cache holds of a mean.
    int rowsAtOnce(const RawImages& all) const
    {
        const std::int64_t bytes = std::int64_t{1} << (all.isMean ? 17 : 20);
        return static_cast<int>(std::clamp<std::int64_t>(
            bytes / (m_region.width * bytesIn(all.type)), 1, m_region.height));
    }

    std::size_t pixelsOf(int rows) const
    {
        return static_cast<std::size_t>(m_region.width) * static_cast<std::size_t>(rows);
    }

    bool readRows(const RawImages& all, std::size_t image, const RowsTask& task, char* to) const
    {
        const RawImage& from = all.images[image];
        const InputFile& file = *m_files.at(from.path);
        const std::int64_t pixel = bytesIn(all.type);
        const bool whole = m_region.width == m_columns; // rows follow one another
        const int lines = whole ? 1 : task.rows;
        const std::size_t count = pixelsOf(whole ? task.rows : 1) * bytesOf(all.type);
        for (int k = 0; k < lines; ++k, to += count) {
            const std::int64_t row = std::int64_t{m_region.y} + task.row + k;
            if (!file.read(to, count, from.offset + (row * m_columns + m_region.x) * pixel))
                return false;
        }
        return true;
    }

    int m_columns;
    Region m_region;
    char* m_memory;
    Files m_files;
    std::map<QString, std::optional<FileState>> m_states;
};

} // namespace

std::vector<std::int64_t> rawPlaces(const std::string& text, std::size_t images)
{
    std::vector<std::int64_t> places;
    std::istringstream numbers(text);
    for (std::int64_t place = 0; numbers >> place;)
        places.push_back(place);
    if (places.size() != images)
        places.clear();
    return places;
}

bool readRawImages(const std::vector<RawImages>& all, int columns, const Region& region,
                   char* memory, Workers* workers)
{
    RegionReader reader(columns, region, memory);
    std::vector<RowsTask> tasks;
    for (const RawImages& images : all) {
        if (!reader.open(images))
            return false;
        reader.addTasks(images, tasks);
    }
    std::atomic<bool> isRead{true};
    const auto read = [&](std::size_t task, unsigned) {
        if (isRead && !reader.read(tasks[task]))
            isRead = false;
    };
    if (workers != nullptr)
        workers->run(tasks.size(), read);
    else
        for (std::size_t k = 0; k < tasks.size(); ++k)
            read(k, 0);
    return isRead;
}
