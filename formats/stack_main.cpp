#include "formats/Hdf5Contents.h"
#include "formats/Hdf5Reader.h"
#include "formats/Hdf5Writer.h"
#include "formats/StackFault.h"
#include "formats/TiffReader.h"
#include "formats/TiffWriter.h"

#include <csignal>
#include <cstdlib>
#include <new>
#include <sys/prctl.h>
#include <sys/resource.h>

namespace
{

void limitTo(int resource, const std::string& value)
{
    const auto number = std::strtoull(value.c_str(), nullptr, 10);
    if (number == 0)
        return;
    const rlimit limit{number, number};
    setrlimit(static_cast<__rlimit_resource_t>(resource), &limit);
}

/// Ends with the program that asked, writes no image of its memory, and is held to limits.
void beModest(const StackRequest& request)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    limitTo(RLIMIT_CPU, request.value("seconds"));
    // The sanitizers need more addresses than any machine has memory.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    limitTo(RLIMIT_AS, request.value("memory"));
#endif
    // Data of other files lie beside a file, not where somebody happens to be.
    setenv("HDF5_EXTFILE_PREFIX", "${ORIGIN}", 1);
    setenv("HDF5_VDS_PREFIX", "${ORIGIN}", 1);
    setenv("HDF5_USE_FILE_LOCKING", "FALSE", 1); // files of results have one writer
}

std::string answer(const StackRequest& request)
{
    const std::string verb = request.words.empty() ? std::string() : request.words.front();
    if (verb == "describe")
        return describeHdf5(request);
    if (verb == "contents")
        return contentsOfHdf5(request);
    if (verb == "planes")
        return planesOfHdf5(request);
    if (verb == "describe-tiff")
        return describeTiff(request);
    if (verb == "planes-tiff")
        return planesOfTiff(request);
    if (verb == "write-map")
        return writeMap(request);
    if (verb == "write-run")
        return writeRun(request);
    if (verb == "write-tiff")
        return writeTiff(request);
    throw StackFault("is asked for what is not known");
}

} // namespace

/// Reads stacks, and writes results, by libraries that may fail on damaged files, for a program
/// that goes on when this one does.
int main(int argc, char* argv[])
{
    StackRequest request{{argv + 1, argv + argc}};
    beModest(request);
    std::string said;
    try {
        said = answer(request) + stack_words::line("done", "");
    } catch (const StackFault& fault) {
        said = stack_words::line("refused", fault.what());
    } catch (const std::bad_alloc&) {
        said = stack_words::line("refused", "needs more memory than it may have");
    } catch (const std::exception& fault) {
        said = stack_words::line("refused", fault.what());
    }
    stack_words::tell(said);
    std::_Exit(0); // what a damaged file left of a library is not cleaned up
}
