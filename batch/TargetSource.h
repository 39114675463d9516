#pragma once

#include "batch/FileDigests.h"
#include "batch/RecordedRow.h"
#include "batch/SpectrumRecord.h"
#include "batch/TargetJob.h"

#include <memory>

/// What a spectrum is made from, as the record keeps it.
struct SourceInputs {
    std::optional<Digest> input; ///< of its file, or of how its stack is read; none where not all
                                 ///< can be read
    std::vector<RecordedFile> files; ///< of its stack
};

/// Where the spectrum of a target comes from.
class TargetSource
{
public:
    TargetSource() = default;
    virtual ~TargetSource() = default;
    TargetSource(const TargetSource&) = delete;
    TargetSource& operator=(const TargetSource&) = delete;

    /// Reads all of it for the digests.
    virtual SourceInputs inputs() const = 0;

    /// @param readAs  how a file is read
    /// @param why     in one line, where nothing comes back
    virtual std::optional<SpectrumRecord> spectrum(const SpectrumSource& readAs,
                                                   const FitBounds& bounds, QString& why) const = 0;

    /// The file that is not what its digest was formed of any more; empty where all are.
    virtual QString changed(const SourceInputs& inputs) const = 0;
};

/// @param name     of the target
/// @param digests  of files that targets share
/// @param why      "cannot open ...", where nothing comes back
std::unique_ptr<TargetSource> openTarget(const Job& job, const TargetJob& target,
                                         const QString& name, FileDigests& digests, QString& why);
