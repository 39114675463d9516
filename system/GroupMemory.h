#pragma once

#include <cstddef>
#include <optional>
#include <string>

/// Bytes that the process's control group leaves: the least of what its own limit and those of the
/// groups around it leave, in either version of control groups. Pages of files that the system
/// would drop first count as free.
/// @param root  folder taken for the root of the file system; empty for the root itself
/// @return nothing where no group has a limit, or none can be read
std::optional<std::size_t> groupMemory(const std::string& root = {});
