#pragma once

#include <cstddef>
#include <string>

/// Bytes that a large array may take now: what the system could hand out without swapping, within
/// the limits of the process and of its control group. The greatest size_t where nothing is known.
/// @param root  folder taken for the root of the file system; empty for the root itself
std::size_t availableMemory(const std::string& root = {});
