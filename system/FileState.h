#pragma once

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <tuple>

/// What tells a file from what it was: device, number, size, and times of the last change to
/// contents and status, ns. Two changes within a tick of the file system's clock look like one.
using FileState =
    std::tuple<std::uint64_t, std::uint64_t, std::int64_t, std::int64_t, std::int64_t>;

/// @return nothing where there is no such file
std::optional<FileState> fileState(const QByteArray& path);

/// When it last changed, ns since 1970.
std::int64_t lastChange(const FileState& state);
