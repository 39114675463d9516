#pragma once

#include <array>

/// Powers of ten that a double holds exactly: a whole number of up to 15 digits times or over one
/// of them is rounded once (W. D. Clinger, How to Read Floating Point Numbers Accurately, PLDI
/// 1990).
constexpr std::array<double, 23> exactPowersOfTen = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                     1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                     1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
