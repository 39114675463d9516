#include "batch/RecordWriter.h"

#include <algorithm>
#include <new>

namespace
{

constexpr std::size_t mostWaiting = 4096; ///< rows

/// A transaction stays open for as long as commits take a tenth of the time, within bounds: a run
/// that is killed loses no more.
constexpr int timesTheCommit = 10;
constexpr std::chrono::steady_clock::duration shortest = std::chrono::milliseconds(20);
constexpr std::chrono::steady_clock::duration longest = std::chrono::milliseconds(500);

} // namespace

RecordWriter::RecordWriter(RunRecord& record, RecordedRun run)
    : m_record(record), m_run(std::move(run)), m_thread([this] { loop(); })
{
}

RecordWriter::~RecordWriter()
{
    finish();
}

bool RecordWriter::put(RowKind kind, RecordedRow row)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_room.wait(lock, [this] { return m_failure || m_rows.size() < mostWaiting; });
    if (m_failure)
        return false;
    m_rows.emplace_back(kind, std::move(row));
    m_work.notify_one();
    return true;
}

std::optional<RecordFailure> RecordWriter::finish()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_finish = true;
        m_work.notify_one();
    }
    if (m_thread.joinable())
        m_thread.join();
    return m_failure;
}

void RecordWriter::loop()
{
    try {
        writeAll();
    } catch (const RecordFailure& failure) {
        fail(failure);
    } catch (const std::bad_alloc&) { // would end the program, being in a thread of its own
        fail({RecordFailure::Kind::Disk,
              QStringLiteral("there is not enough memory for %1").arg(m_record.path())});
    }
}

void RecordWriter::fail(const RecordFailure& failure)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_failure = failure;
    m_room.notify_all();
}

void RecordWriter::writeAll()
{
    const Clock::time_point start = Clock::now();
    Clock::duration open = shortest;
    std::optional<std::int64_t> run;
    for (bool more = true; more;) {
        more = waitForRows();
        if (!more && !run && !m_record.isNew())
            return;
        m_record.begin();
        if (!run)
            run = m_record.beginRun(m_run);
        const Clock::time_point end = Clock::now() + open;
        while (more && Clock::now() < end)
            more = putRows(*run, end);
        const Clock::time_point begun = Clock::now();
        if (!more)
            m_record.endRun(*run, std::chrono::duration<double>(begun - start).count());
        m_record.commit();
        open = std::clamp(timesTheCommit * (Clock::now() - begun), shortest, longest);
    }
}

/// @return false where all is written and no more will come
bool RecordWriter::waitForRows()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_work.wait(lock, [this] { return m_finish || !m_rows.empty(); });
    return !m_finish || !m_rows.empty();
}

/// Puts what there is, or comes until then.
/// @return false where all is written and no more will come
bool RecordWriter::putRows(std::int64_t run, Clock::time_point until)
{
    Rows rows;
    bool more = true;
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_work.wait_until(lock, until, [this] { return m_finish || !m_rows.empty(); });
        more = !m_finish || !m_rows.empty();
        rows.swap(m_rows);
        m_room.notify_all();
    }
    for (auto& [kind, row] : rows) {
        row.run = run;
        m_record.put(kind, row);
    }
    return more;
}
