#pragma once

#include "analysis/HistogramCounts.h"

#include <mutex>
#include <vector>

/// A histogram that several threads count at once. Few bins are counted by each thread for itself,
/// many in one place, so that the memory is that of the histogram however many threads there are.
class ThreadedCounts
{
public:
    /// Memory is asked for here and nowhere later.
    /// @param settings  acceptable ones
    /// @param threads   that will count
    ThreadedCounts(const HistogramSettings& settings, unsigned threads);

    /// Counts the values [count]; to be called by several threads, each with its own number.
    void add(unsigned thread, const double* values, std::size_t count);

    /// The histogram of all values, when all threads are done. To be called once.
    HistogramCounts take();

private:
    std::vector<HistogramCounts> m_parts; ///< one a thread, or one for all
    std::mutex m_mutex;                   ///< guards one for all
};
