#pragma once

/// Several tests in one program, which runs the one under whose name it is started.
namespace SeveralTests
{

using Main = int (*)(int argc, char** argv);

/// An entry of the list of tests, made before the program begins.
class Entry
{
public:
    Entry(const char* name, Main main);
};

} // namespace SeveralTests
