#pragma once

#include <QString>

#include <vector>

/// The number of the form 1, 2 or 5 times a power of ten that is next at or above a positive value;
/// 1 for anything else.
double roundNumberFrom(double value);
/// The same, next at or below it.
double roundNumberUpTo(double value);

/// Values at which an axis has marks, with their texts.
struct AxisMarks {
    std::vector<double> values; ///< rising, multiples of one round number
    std::vector<QString> texts; ///< all with as many decimals as tell them apart
};

/// Marks of a range, about so many or fewer.
/// @param most  at least 1
AxisMarks axisMarks(double from, double to, int most);
