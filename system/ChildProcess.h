#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/// What became of a program that was asked something.
struct ChildAnswer {
    enum Outcome {
        Answered,
        NotStarted, ///< there is no such program, or the system refuses another process
        Failed,     ///< it ended by a signal, or with another status than 0
        TookTooLong,
        SaidTooMuch,
    };
    Outcome outcome = NotStarted;
    int signal = 0;           ///< that ended it; 0 for none
    std::string text;         ///< what it wrote to its standard output
    std::size_t received = 0; ///< bytes of memory that it filled
};

/// Runs a program and waits for its end; it is ended where it takes or says too much. It shares no
/// signals of the terminal, reads nothing, and its errors are not shown.
/// @param words       behind its name on the command line
/// @param handedOver  descriptor that it gets as number 3; -1 for none
/// @param seconds     that it may take
/// @param bytes       that it may say
ChildAnswer askChild(const std::string& program, const std::vector<std::string>& words,
                     int handedOver, double seconds, std::size_t bytes);

/// Memory that several runs fill together.
struct FilledMemory {
    char* data = nullptr;
    std::size_t size = 0;
};

/// The same for several runs at once, each of which sends pieces of the memory (PieceStream.h) by
/// its descriptor 3.
/// @param words    of each run
/// @param isFault  whether what a run answered is a fault; those behind the first one are ended,
/// and
///                 have no answer
/// @return [words.size()]
std::vector<ChildAnswer> askChildren(const std::string& program,
                                     const std::vector<std::vector<std::string>>& words,
                                     const FilledMemory& memory, double seconds, std::size_t bytes,
                                     const std::function<bool(const ChildAnswer&)>& isFault);
