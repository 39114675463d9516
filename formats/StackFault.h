#pragma once

#include <stdexcept>

/// Why the reader of stacks cannot go on; told to the program that asked. Thrown in its own process
/// only.
struct StackFault : std::runtime_error {
    using std::runtime_error::runtime_error;
};
