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
template <class T>
class BlockValues
{
public:
    /// @param values    of the image's pixels
    /// @param gridSize  pixels of the grid
    BlockValues(const T* values, const MapImage& image, int gridColumns, std::size_t gridSize)
        : m_values(values), m_image(image), m_columns(gridColumns)
    {
        if (image.columns != gridColumns || image.size < gridSize)
            m_copy.resize(kernelBlock); // no memory is asked for once the calculation runs
    }

    bool hasAll(std::size_t first, std::size_t count) const
    {
        return m_image.columns == m_columns && first + count <= m_image.size;
    }

    /// The values of the grid's pixels first to first + count - 1 [count]; the image's own array
    /// where that holds them in this order.
    const T* at(std::size_t first, std::size_t count)
    {
        if (hasAll(first, count))
            return m_values + first;
        for (std::size_t i = 0; i < count; ++i)
            m_copy[i] = pixel(first + i);
        return m_copy.data();
    }

private:
    T pixel(std::size_t i) const
    {
        const auto columns = static_cast<std::size_t>(m_columns);
        const auto x = static_cast<std::int64_t>(i % columns);
        const auto y = static_cast<std::int64_t>(i / columns);
        const std::int64_t index = y * m_image.columns + x;
        if (index < 0 || static_cast<std::uint64_t>(index) >= m_image.size)
            return T{missingPixel};
        return m_values[index];
    }

    const T* m_values;
    MapImage m_image;
    int m_columns;
    std::vector<T> m_copy;
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
        : m_v(valuesOf(task, task.choice.vPoint, gridSize))
    {
        const std::size_t needed = task.method == Method::ThreePoint ? 2 : 3;
        for (const std::size_t row : task.choice.normalization)
            m_points.push_back(valuesOf(task, row, gridSize));
        while (m_points.size() < needed)
            m_points.push_back(m_v);
        m_inputs.t.resize(m_points.size());
    }

    const BlockInputs& at(std::size_t first, std::size_t count)
    {
        m_inputs.mayMiss = !m_v.hasAll(first, count);
        for (std::size_t i = 0; i < m_points.size(); ++i) {
            m_inputs.t[i] = m_points[i].at(first, count);
            m_inputs.mayMiss = m_inputs.mayMiss || !m_points[i].hasAll(first, count);
        }
        m_inputs.tV = m_v.at(first, count);
        return m_inputs;
    }

private:
    static BlockValues<double> valuesOf(const MapTask& task, std::size_t row, std::size_t gridSize)
    {
        const MapImage& image = task.images[row];
        return {image.mut, image, task.columns, gridSize};
    }

    std::vector<BlockValues<double>> m_points;
    BlockValues<double> m_v;
    BlockInputs m_inputs;
};

/// Variances of a block in the order of BlockSource's target values.
class BlockVarianceSource
{
public:
    BlockVarianceSource(const MapTask& task, std::size_t gridSize)
    {
        for (const std::size_t row : task.choice.normalization)
            add(task, row, gridSize);
        const std::size_t needed = task.method == Method::ThreePoint ? 2 : 3;
        while (m_all.size() < needed)
            add(task, task.choice.vPoint, gridSize);
        add(task, task.choice.vPoint, gridSize);
        m_variances.t.resize(m_all.size() - 1);
    }

    const BlockVariances& at(std::size_t first, std::size_t count)
    {
        for (std::size_t i = 0; i < m_all.size(); ++i) {
            MapVariance& variance = i < m_variances.t.size() ? m_variances.t[i] : m_variances.tV;
            variance.all = m_all[i];
            variance.each = m_hasEach[i] ? m_each[i].at(first, count) : nullptr;
        }
        return m_variances;
    }

private:
    void add(const MapTask& task, std::size_t row, std::size_t gridSize)
    {
        const MapVariance& noise = task.sigmas->noise[row];
        m_hasEach.push_back(noise.each != nullptr);
        m_all.push_back(noise.all);
        m_each.emplace_back(noise.each, task.images[row], task.columns, gridSize);
    }

    std::vector<double> m_all;
    std::vector<bool> m_hasEach;
    std::vector<BlockValues<float>> m_each;
    BlockVariances m_variances;
};

/// Forms the standard deviations beside the results, for all threads.
class SigmaBlocks
{
public:
    SigmaBlocks(const MapTask& task, std::size_t count, unsigned threads)
        : m_sigmas(task.sigmas), m_kernel(task.method, task.points, task.choice, task.rho)
    {
        if (m_sigmas == nullptr)
            return;
        m_sources.resize(threads, BlockVarianceSource(task, count));
        m_sums.resize((count + taskSize - 1) / taskSize);
    }

    bool makeRoom(std::size_t count)
    {
        return m_sigmas == nullptr || (m_sigmas->a.resize(count) && m_sigmas->t.resize(count));
    }
    /// @param number  of the task that the block belongs to
    void calculate(std::size_t number, unsigned worker, std::size_t first, const BlockInputs& in,
                   const BlockResults& out)
    {
        if (m_sigmas != nullptr)
            m_sums[number] += m_kernel(in, m_sources[worker].at(first, out.count), out,
                                       {m_sigmas->a.data() + first, m_sigmas->t.data() + first});
    }
    /// Adds the tasks up in their order.
    void finish()
    {
        if (m_sigmas == nullptr)
            return;
        m_sigmas->sums = MapSums();
        for (const MapSums& sums : m_sums)
            m_sigmas->sums += sums;
    }

private:
    MapSigmas* m_sigmas;
    MapSigmaKernel m_kernel;
    std::vector<BlockVarianceSource> m_sources;
    std::vector<MapSums> m_sums; ///< of each task
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
    SigmaBlocks sigmas(task, count, workers.size());
    const Workers::Task calculate = [&](std::size_t number, unsigned worker) {
        const std::size_t end = std::min((number + 1) * taskSize, count);
        for (std::size_t first = number * taskSize; first < end; first += kernelBlock) {
            const BlockResults out{results.a.data() + first, results.t.data() + first,
                                   std::min(kernelBlock, end - first)};
            const BlockInputs& in = sources[worker].at(first, out.count);
            kernel(in, out);
            sigmas.calculate(number, worker, first, in, out);
            if (sink)
                sink(worker, out.a, out.t, out.count);
        }
    };
    if (!sigmas.makeRoom(count) || !makeRoom(results, count))
        return false;
    // From here on nothing can fail: the earlier results are there until they are written over.
    results.columns = task.columns;
    results.rows = task.rows;
    results.positions = task.positions;
    workers.run((count + taskSize - 1) / taskSize, calculate);
    sigmas.finish();
    return true;
}
