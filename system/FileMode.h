#pragma once

#include <sys/types.h>

/// The permissions of a new file, before the user's mask takes some away.
constexpr mode_t readAndWriteForAll = 0666;
