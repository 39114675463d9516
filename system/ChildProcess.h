#pragma once

#include <cstddef>
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
    int signal = 0;   ///< that ended it; 0 for none
    std::string text; ///< what it wrote to its standard output
};

/// Runs a program and waits for its end; it is ended where it takes or says too much. It shares no
/// signals of the terminal, reads nothing, and its errors are not shown.
/// @param words       behind its name on the command line
/// @param handedOver  descriptor that it gets as number 3; -1 for none
/// @param seconds     that it may take
/// @param bytes       that it may say
ChildAnswer askChild(const std::string& program, const std::vector<std::string>& words,
                     int handedOver, double seconds, std::size_t bytes);
