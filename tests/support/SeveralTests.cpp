#include "tests/support/SeveralTests.h"

#include <cstdio>
#include <map>
#include <string>

namespace
{

std::map<std::string, SeveralTests::Main>& tests()
{
    static std::map<std::string, SeveralTests::Main> all;
    return all;
}

} // namespace

SeveralTests::Entry::Entry(const char* name, Main main)
{
    tests().emplace(name, main);
}

int main(int argc, char** argv)
{
    const std::string path = argc > 0 ? argv[0] : "";
    const auto test = tests().find(path.substr(path.rfind('/') + 1));
    if (test != tests().end())
        return test->second(argc, argv);
    std::fprintf(stderr, "%s holds several tests; start one of these names:\n", path.c_str());
    for (const auto& known : tests())
        std::fprintf(stderr, "  %s\n", known.first.c_str());
    return 2;
}
