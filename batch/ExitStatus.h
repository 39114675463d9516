#pragma once

/// How the program ends.
enum class ExitStatus {
    Done = 0,
    SomeRefused = 1, ///< or found no finite number; the rest is done
    BadJob = 2,      ///< or an unreadable file; nothing was written
    FileFailed = 3,  ///< a file could not be written, or the disk
    Stopped = 128,   ///< and the number of the signal
};
