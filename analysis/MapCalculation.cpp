#include "analysis/MapCalculation.h"

#include "analysis/AvailableMemory.h"
#include "analysis/FourPoint.h"
#include "analysis/ThreePoint.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace
{

/// Pixels of one task: small enough that its numbers stay in a core's cache.
constexpr std::size_t blockSize = 4096;

/// Target value of a pixel that an image does not have.
constexpr double missingPixel = -1.0;

/// Target values of one block at one row of the table.
class BlockValues
{
public:
    BlockValues(const MapImage& image, int gridColumns) : m_image(image), m_columns(gridColumns) {}

    /// The values of the grid's pixels first to first + count - 1 [count]; the image's own array
    /// where that holds them in this order.
    const double* at(std::size_t first, std::size_t count)
    {
        const bool sameGrid = m_image.columns == m_columns;
        if (sameGrid && first + count <= m_image.size)
            return m_image.mut + first;
        m_copy.resize(count);
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

/// Where a block's results go.
struct BlockResults {
    double* a;
    double* t;
    std::size_t count;
};

using BlockInputs = std::vector<const double*>; ///< normalization points, then the V point

void threePointBlock(const ThreePoint& method, const BlockInputs& in, const BlockResults& out)
{
    const double* t0 = in[0];
    const double* t1 = in[1];
    const double* tV = in.back();
    for (std::size_t i = 0; i < out.count; ++i) {
        out.a[i] = method.fraction(t0[i], t1[i], tV[i]);
        out.t[i] = method.thickness(t0[i], t1[i]);
    }
}

void exactBlock(const FourPointExact& method, const VPointFraction& fraction, const BlockInputs& in,
                const BlockResults& out)
{
    const double* tV = in.back();
    for (std::size_t i = 0; i < out.count; ++i) {
        const TargetScale scale = method.scale(in[0][i], in[1][i], in[2][i]);
        out.a[i] = fraction.at(scale, tV[i]);
        out.t[i] = scale.thickness();
    }
}

void leastSquaresBlock(const FourPointLeastSquares& method, const VPointFraction& fraction,
                       const BlockInputs& in, const BlockResults& out)
{
    const std::size_t n = method.size();
    std::vector<double> target(n);
    for (std::size_t i = 0; i < out.count; ++i) {
        for (std::size_t k = 0; k < n; ++k)
            target[k] = in[k][i];
        const TargetScale scale = method.scale(target.data());
        out.a[i] = fraction.at(scale, in.back()[i]);
        out.t[i] = scale.thickness();
    }
}

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

/// Rows of the table that a kernel takes its target values from: the normalization points and,
/// last, the V point. A table with too few normalization points is filled up with the V point; the
/// results are not-a-number then, whatever the values.
std::vector<std::size_t> inputRows(const MapTask& task)
{
    const std::size_t needed = task.method == Method::ThreePoint ? 2 : 3;
    std::vector<std::size_t> rows = task.choice.normalization;
    while (rows.size() < needed)
        rows.push_back(task.choice.vPoint);
    rows.push_back(task.choice.vPoint);
    return rows;
}

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

bool mapFits(int columns, int rows, const MapResults& earlier)
{
    const std::size_t count = pixelCount(columns, rows);
    const std::size_t there = std::min(earlier.a.capacity(), earlier.t.capacity());
    return count <= there || count <= availableMemory() / (2 * sizeof(double));
}

bool calculateMap(const MapTask& task, MapResults& results, const MapBlockSink& sink,
                  Workers& workers)
{
    const std::size_t count = pixelCount(task.columns, task.rows);
    if (!mapFits(task.columns, task.rows, results) || !makeRoom(results, count))
        return false;
    results.columns = task.columns;
    results.rows = task.rows;
    results.positions = task.positions;

    const Kernel kernel(task);
    const std::vector<std::size_t> rows = inputRows(task);
    workers.run((count + blockSize - 1) / blockSize, [&](std::size_t block, unsigned worker) {
        const std::size_t first = block * blockSize;
        const std::size_t n = std::min(blockSize, count - first);
        std::vector<BlockValues> values;
        BlockInputs in;
        for (const std::size_t row : rows)
            values.emplace_back(task.images[row], task.columns);
        for (BlockValues& value : values)
            in.push_back(value.at(first, n));
        const BlockResults out{results.a.data() + first, results.t.data() + first, n};
        kernel(in, out);
        if (sink)
            sink(worker, out.a, out.t, n);
    });
    return true;
}
