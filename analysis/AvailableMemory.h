#pragma once

#include <cstddef>

/// Bytes that a large array may take now: what the system could hand out without swapping, within
/// the limits of the process and of its control group. The greatest size_t where nothing is known.
std::size_t availableMemory();
