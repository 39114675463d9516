#include "analysis/MapCalculation.h"

#include "analysis/MapKernels.h"
#include "system/AvailableMemory.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace
{

/// Pixels of one task.
constexpr std::size_t taskSize = 16 * kernelBlock;

/// Target value of a pixel that an image does not have.
constexpr double missingPixel = -1.0;

/// Target values of one block at one row of the table.
class BlockValues
{
public:
    /// @param gridSize  pixels of the grid
    BlockValues(const MapImage& image, int gridColumns, std::size_t gridSize)
        : m_image(image), m_columns(gridColumns)
    {
        if (image.columns != gridColumns || image.size < gridSize)
            m_copy.resize(kernelBlock); // no memory is asked for once the calculation runs
    }

    /// The values of the grid's pixels first to first + count - 1 [count]; the image's own array
    /// where that holds them in this order.
    const double* at(std::size_t first, std::size_t count)
    {
        const bool sameGrid = m_image.columns == m_columns;
        if (sameGrid && first + count <= m_image.size)
            return m_image.mut + first;
        for (std::size_t i = 0; i < count; ++i)
            m_copy[i] = pixel(first + i);
        return m_copy.data();
    }

private:
    double pixel(std::size_t i) const
    {
        const auto columns = static_cast<std::size_t>(m_columns);
        const auto x = static_cast<std::int64_t>(i % columns);
        const auto y = static_cast<std::int64_t>(i / columns);
        const std::int64_t index = y * m_image.columns + x;
        if (index < 0 || static_cast<std::uint64_t>(index) >= m_image.size)
            return missingPixel;
        return m_image.mut[index];
    }

    MapImage m_image;
    int m_columns;
    std::vector<double> m_copy;
};

/// The chosen method with everything that does not depend on the target.
class Kernel
{
public:
    explicit Kernel(const MapTask& task)
        : m_method(task.method), m_threePoint(task.points, task.choice),
          m_exact(task.points, task.choice), m_leastSquares(task.points, task.choice),
          m_fraction(vPointFraction(task.points, task.choice, task.rho))
    {
    }

    void operator()(const BlockInputs& in, const BlockResults& out) const
    {
        switch (m_method) {
        case Method::ThreePoint:
            return threePointBlock(m_threePoint, in, out);
        case Method::FourPointExact:
            return exactBlock(m_exact, m_fraction, in, out);
        case Method::FourPointLeastSquares:
            return leastSquaresBlock(m_leastSquares, m_fraction, in, out);
        }
    }

private:
    Method m_method;
    ThreePoint m_threePoint;
    FourPointExact m_exact;
    FourPointLeastSquares m_leastSquares;
    VPointFraction m_fraction;
};

/// Target values of a block at all points. A table with too few normalization points is filled up
/// with the V point; the results are not-a-number then, whatever the values.
class BlockSource
{
public:
    BlockSource(const MapTask& task, std::size_t gridSize)
        : m_v(task.images[task.choice.vPoint], task.columns, gridSize)
    {
        const std::size_t needed = task.method == Method::ThreePoint ? 2 : 3;
        for (const std::size_t row : task.choice.normalization)
            m_points.emplace_back(task.images[row], task.columns, gridSize);
        while (m_points.size() < needed)
            m_points.push_back(m_v);
        m_inputs.t.resize(m_points.size());
    }

    const BlockInputs& at(std::size_t first, std::size_t count)
    {
        for (std::size_t i = 0; i < m_points.size(); ++i)
            m_inputs.t[i] = m_points[i].at(first, count);
        m_inputs.tV = m_v.at(first, count);
        return m_inputs;
    }

private:
    std::vector<BlockValues> m_points;
    BlockValues m_v;
    BlockInputs m_inputs;
};

std::size_t pixelCount(int columns, int rows)
{
    if (columns <= 0 || rows <= 0)
        return 0;
    return static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows);
}

/// Arrays of the right size; the present ones where they are not much too large. False where the
/// memory is refused.
bool makeRoom(MapResults& results, std::size_t count)
{
    MapResults fresh;
    const bool keep = count <= results.a.capacity() && count >= results.a.capacity() / 2;
    if (!keep && (!fresh.a.resize(count) || !fresh.t.resize(count)))
        return false;
    if (!keep) {
        results.a = std::move(fresh.a);
        results.t = std::move(fresh.t);
    }
    return results.a.resize(count) && results.t.resize(count);
}

} // namespace

std::size_t mapBytes(int columns, int rows, const MapResults& earlier)
{
    const std::size_t count = pixelCount(columns, rows);
    const std::size_t there = std::min(earlier.a.capacity(), earlier.t.capacity());
    return count <= there ? 0 : count * 2 * sizeof(double);
}

bool mapFits(int columns, int rows, std::size_t measured, const MapResults& earlier)
{
    constexpr std::size_t always = std::size_t{4} << 20; // 64 MiB of results
    constexpr std::size_t gridOverMeasured = 16;
    const std::size_t count = pixelCount(columns, rows);
    if (count > always && count / gridOverMeasured > measured)
        return false;
    const std::size_t there = std::min(earlier.a.capacity(), earlier.t.capacity());
    return count <= there || count <= availableMemory() / (2 * sizeof(double));
}

bool calculatePixels(const MapTask& task, MapResults& results, const MapBlockSink& sink,
                     Workers& workers)
{
    const std::size_t count = pixelCount(task.columns, task.rows);
    const std::size_t measured = task.positions ? task.positions->size() : 0;
    if (!mapFits(task.columns, task.rows, measured, results))
        return false;
    const Kernel kernel(task);
    std::vector<BlockSource> sources(workers.size(), BlockSource(task, count));
    const Workers::Task calculate = [&](std::size_t number, unsigned worker) {
        const std::size_t end = std::min((number + 1) * taskSize, count);
        for (std::size_t first = number * taskSize; first < end; first += kernelBlock) {
            const BlockResults out{results.a.data() + first, results.t.data() + first,
                                   std::min(kernelBlock, end - first)};
            kernel(sources[worker].at(first, out.count), out);
            if (sink)
                sink(worker, out.a, out.t, out.count);
        }
    };
    if (!makeRoom(results, count))
        return false;
    // From here on nothing can fail: the earlier results are there until they are written over.
    results.columns = task.columns;
    results.rows = task.rows;
    results.positions = task.positions;
    workers.run((count + taskSize - 1) / taskSize, calculate);
    return true;
}
