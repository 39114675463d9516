#pragma once

/// What became of a file that was to be read.
enum class ReadOutcome {
    Read,
    CannotOpen, ///< there is no such file, or what has the name is no file
    TooLarge,   ///< it does not fit in memory, or cannot be what it is taken for
    Unreadable, ///< a part of it cannot be read
};
