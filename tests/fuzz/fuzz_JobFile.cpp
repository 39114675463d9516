#include "batch/JobFile.h"
#include "tests/fuzz/FuzzText.h"
#include "tests/fuzz/LiteralJob.h"

// Any bytes as a job file: what the program takes is a job by the literal reading too, with the
// same settings; what it refuses has a line of the text and a reason of one line.

namespace
{

void comparePoints(const Job& job, const Job& expected)
{
    fuzz::require(job.points.has_value() == expected.points.has_value(), "rows given");
    if (!job.points)
        return;
    fuzz::require(job.points->size() == expected.points->size(), "number of rows");
    for (std::size_t i = 0; i < job.points->size(); ++i) {
        const JobPoint& a = (*job.points)[i];
        const JobPoint& b = (*expected.points)[i];
        fuzz::require(a.energy == b.energy && a.use == b.use && a.tRatio == b.tRatio &&
                          a.vPoint == b.vPoint,
                      "row");
    }
}

void compare(const Job& job, const Job& expected)
{
    for (std::size_t i = 0; i < job.spectra.size(); ++i)
        fuzz::require(job.spectra.at(i).path == expected.spectra.at(i).path, "path");
    fuzz::require(job.edge == expected.edge && job.preEdgeEnd == expected.preEdgeEnd &&
                      job.postEdgeStart == expected.postEdgeStart,
                  "edge");
    fuzz::require(job.valence1 == expected.valence1 && job.valence2 == expected.valence2,
                  "valences");
    fuzz::require(job.thickness == expected.thickness &&
                      job.referencesMinusVictreen == expected.referencesMinusVictreen &&
                      job.targetMinusVictreen == expected.targetMinusVictreen &&
                      job.victreenIsPre == expected.victreenIsPre &&
                      job.exactMethod == expected.exactMethod,
                  "conditions");
    fuzz::require(job.calculateTarget == expected.calculateTarget &&
                      job.calculateLcf == expected.calculateLcf,
                  "calculations");
    comparePoints(job, expected);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char*>(bytes), static_cast<int>(size));
    const QString folder = QStringLiteral("/data");
    JobError error;
    const std::optional<Job> job = parseJob(text, folder, error);
    Job expected;
    fuzz::require(literal::readJob(text, folder, expected) == job.has_value(), "taken or refused");
    if (job) {
        compare(*job, expected);
        return 0;
    }
    fuzz::require(error.line >= 1 && error.line <= text.count('\n') + 1, "line of the error");
    fuzz::require(!error.reason.isEmpty() && !error.reason.contains(QLatin1Char('\n')),
                  "reason of the error");
    return 0;
}
