#pragma once

#include <cstddef>

/// mu-t from intensities, for many pixels at once. The logarithm is written out in additions,
/// multiplications and divisions of IEEE numbers: it has the same bits on every machine and for
/// every width of its vectors, and errs by less than one unit of its last digit. std::log takes 1.6
/// times as long (bench_Stacks --benchmark_filter=logarithms).

/// ln(incident / transmitted); not-a-number unless both are positive and finite.
double logarithmOfRatio(double incident, double transmitted);

/// The same for many pixels, bit by bit.
/// @param incident     [count]
/// @param transmitted  [count]
/// @param logarithms   [count]; none of the others
void logarithmsOfRatios(const double* incident, const double* transmitted, std::size_t count,
                        double* logarithms);
