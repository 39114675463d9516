#pragma once

#include "formats/StackAnswer.h"

/// "write-tiff": an image of numbers in single precision as a TIFF file of one page. Words: file,
/// columns, rows, description, and width and height of a pixel in micrometres (0: not known). The
/// shared memory has the numbers, row after row from the top.
std::string writeTiff(const StackRequest& request);
