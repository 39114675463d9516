#pragma once

#include "batch/Digest.h"

#include <QByteArrayList>

#include <cstdint>
#include <optional>
#include <vector>

/// A file that a row was made from, or that was written for it.
struct RecordedFile {
    QByteArray path; ///< of an input against the job's folder, of an output against the record's
    Digest digest{};
};

/// What the record of a run keeps of a target or of a map.
struct RecordedRow {
    std::int64_t run = 0;        ///< the run in which it was calculated
    std::optional<Digest> key;   ///< none for what could not be read and is to be tried again
    std::optional<Digest> input; ///< of the target's file, or of how its stack is read
    bool good = false;           ///< nothing refused, all figures finite
    double seconds = 0.0;        ///< that the calculation took
    QByteArrayList fields;       ///< of its row in results.csv or maps.csv; the first is its name
    QByteArray messages;         ///< lines that the calculation left behind
    QByteArray readOut;          ///< for the report: of a map, or UnseenErrors of a target
    std::vector<RecordedFile> inputs;  ///< images of a map; stack and foil of a target
    std::vector<RecordedFile> outputs; ///< written for it

    const QByteArray& name() const { return fields.front(); }
};

/// A run of the program, as its record has it.
struct RecordedRun {
    QByteArray version;
    QByteArray jobText;
    QByteArray jobFile;               ///< path against the record's folder
    QByteArray shard;                 ///< "2/8"; empty for a run of all
    QByteArray began;                 ///< ISO 8601, UTC
    std::vector<RecordedFile> inputs; ///< of all rows; paths against the job's folder
};
