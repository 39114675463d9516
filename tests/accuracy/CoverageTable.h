#pragma once

#include "analysis/RatioInterval.h"

#include <QByteArray>

#include <optional>
#include <utility>
#include <vector>

/// How often intervals hold the truth, and what the deviations were said to be, over many draws.
struct Coverage {
    int draws = 0;
    int inOneSigma = 0; ///< of the interval of 68.3 %
    int inTwoSigma = 0; ///< of that of 95.4 %
    double sum = 0.0;
    double sumOfSquares = 0.0;
    double sumOfVariances = 0.0; ///< as predicted

    /// An interval without bounds holds everything.
    void add(double deviation, double predictedVariance, bool inOne, bool inTwo);
    void add(const Coverage& other);

    double percentOne() const { return 100.0 * inOneSigma / draws; }
    double percentTwo() const { return 100.0 * inTwoSigma / draws; }
    /// Root of the mean variance predicted over the standard deviation found.
    double predictedOverFound() const;
    /// A line of a table: name, draws, coverage of both intervals, predicted over found.
    QByteArray text(const QByteArray& name) const;
};

/// Whether an interval holds a value; one without bounds holds all.
bool holds(const std::optional<Interval>& interval, double value);

/// Coverages by name, in the order in which the names came.
class CoverageTable
{
public:
    Coverage& operator[](const QByteArray& name);
    const std::vector<std::pair<QByteArray, Coverage>>& cells() const { return m_cells; }
    /// A line with the number of cells, and from where to where their figures reach.
    QByteArray range(const QByteArray& name) const;
    /// Prints the lines of all cells, and that of their range.
    void print(const QByteArray& caption) const;

private:
    std::vector<std::pair<QByteArray, Coverage>> m_cells;
};

/// Draws for each case: few in a short run, as many as DROVIK_DRAWS says in a full one.
int drawsOr(int few);
bool isFull();
