#pragma once

#include <cstddef>
#include <vector>

/// What is typed for a histogram.
struct HistogramSettings {
    double first = 0.0; ///< centre of the first bin
    double last = 0.0;  ///< centre of the last bin
    double boxes = 0.0; ///< number of bins, truncated toward zero
    bool autoRange = false;

    /// False for a number of bins that nobody can want: it would take the memory, and minutes to
    /// draw.
    bool acceptable() const;

    /// Memory of the bins; to be asked of acceptable settings.
    std::size_t bytes() const;
};

/// A histogram: equal bins between two settings that are the centres of the first and the last bin.
class HistogramCounts
{
public:
    double from = 0.0;  ///< lower edge of the first bin
    double to = 0.0;    ///< upper edge of the last bin
    double width = 0.0; ///< of a bin
    int boxes = 0;      ///< number of bins; none for 0 and below
    bool autoRange = false;
    int maxCount = 0;        ///< largest count of any bin
    std::vector<int> counts; ///< [max(boxes, 0)]
    int under = 0; ///< values below the first bin, not-a-number and quotients beyond 32 bits
    int over = 0;  ///< values at or beyond the end of the last bin

    /// Takes new settings and empties the histogram.
    /// @return false, and nothing changed, where the settings are not acceptable
    bool reset(const HistogramSettings& settings);

    /// Counts one value. The quotient (value - from) / width is truncated toward zero, so that the
    /// first bin also takes values up to one bin width below it.
    void add(double value);
    /// As add() for each of the values [count].
    void add(const double* values, std::size_t count);
    /// Adds the counts of a histogram that was reset with the same settings.
    void merge(const HistogramCounts& part);

private:
    void addSome(const double* values, std::size_t count);
};
