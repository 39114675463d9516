#pragma once

#include "batch/RunRecord.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

/// Writes the rows of a run into a record in a thread of its own, many in a transaction, since each
/// waits for the disk. While it lives nobody else uses the record. A run without rows is not
/// recorded, unless the record is new.
class RecordWriter
{
public:
    RecordWriter(RunRecord& record, RecordedRun run);
    ~RecordWriter(); ///< what was put is written before
    RecordWriter(const RecordWriter&) = delete;
    RecordWriter& operator=(const RecordWriter&) = delete;

    /// Waits where many rows are not yet written. The row gets the run's number.
    /// @return false where the record could not be written before; the row is lost
    bool put(RowKind kind, RecordedRow row);

    /// Ends the thread when all is on the disk.
    /// @return why not all could be written, if so
    std::optional<RecordFailure> finish();

private:
    using Clock = std::chrono::steady_clock;
    using Rows = std::vector<std::pair<RowKind, RecordedRow>>;

    void loop();
    void fail(const RecordFailure& failure);
    void writeAll();
    bool waitForRows();
    bool putRows(std::int64_t run, Clock::time_point until);

    RunRecord& m_record;
    RecordedRun m_run;
    std::mutex m_mutex; ///< guards what follows
    std::condition_variable m_work;
    std::condition_variable m_room;
    Rows m_rows;
    bool m_finish = false;
    std::optional<RecordFailure> m_failure;
    std::thread m_thread;
};
