#include "analysis/ThreadedCounts.h"

#include <utility>

namespace
{

/// Up to here a histogram for each of a dozen threads is less than what the processor keeps at
/// hand.
constexpr std::size_t maxBinsOfAPart = std::size_t{1} << 14;

} // namespace

ThreadedCounts::ThreadedCounts(const HistogramSettings& settings, unsigned threads) : m_parts(1)
{
    m_parts.front().reset(settings);
    if (m_parts.front().counts.size() <= maxBinsOfAPart)
        m_parts.resize(threads, HistogramCounts(m_parts.front()));
}

void ThreadedCounts::add(unsigned thread, const double* values, std::size_t count)
{
    if (m_parts.size() > 1)
        return m_parts[thread].add(values, count);
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_parts.front().add(values, count);
}

HistogramCounts ThreadedCounts::take()
{
    HistogramCounts sum = std::move(m_parts.front());
    for (std::size_t i = 1; i < m_parts.size(); ++i)
        sum.merge(m_parts[i]);
    return sum;
}
