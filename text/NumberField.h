#pragma once

/// Room for the longest number, "-1.23457e-308", and for writing sixteen bytes at once.
constexpr int longestNumber = 16;

/// Width of a number's column in a result file.
constexpr int fieldWidth = 10;

/// Writes a number in general format with six significant digits: the text of
/// QString::number(value, 'g', 6) for every double, exact ties rounded away from zero and minus
/// zero as 0 included. Four times as fast as std::to_chars, six times as {fmt}, which both round
/// ties to even and write -0 (bench_Libraries --benchmark_filter=writeNumbers counts such texts).
/// @param out  [longestNumber], may be written in full
/// @return end of the text
char* writeNumber(double value, char* out);

/// Writes a number as writeNumber() does, right-aligned in a field of fieldWidth blanks; a longer
/// text takes more.
/// @param out  [fieldWidth + longestNumber], may be written in full
/// @return end of the text
char* writeField(double value, char* out);
