#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

/// A few threads that wait for work which can be cut into independent tasks.
///
/// The thread that asks takes part and comes back when everything is done; an event handler that
/// uses them is as synchronous as without.
///
/// QtConcurrent::blockingMap takes up to twice as long and tells no task its thread;
/// tbb::parallel_for is as fast or faster, but begins its tasks in no order, and OrderedHandOver
/// needs them in rising order (bench_Libraries --benchmark_filter=shareOut).
class Workers
{
public:
    /// One task: its number, and the number of the thread that does it (0 is the one that asked).
    using Task = std::function<void(std::size_t task, unsigned worker)>;

    /// @param threads  all in all, the asking one included; at least 1. Fewer where the system
    ///                 refuses.
    explicit Workers(unsigned threads);
    ~Workers();
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    /// The program's workers, one thread a core.
    static Workers& shared();

    unsigned size() const { return static_cast<unsigned>(m_threads.size()) + 1; }

    /// Does the tasks 0 to count - 1, handed out in rising order, and waits for the last one. An
    /// exception of a task stops the handing out and is thrown again here. While the threads are
    /// taken, by another thread's run or by the run that this one is called from, the calling
    /// thread does all tasks alone, as worker 0: it never waits for a run that may be waiting for
    /// it.
    void run(std::size_t count, const Task& task);

private:
    void runWithThreads(std::size_t count, const Task& task);
    void loop(unsigned worker);
    void work(const Task& task, std::size_t count, unsigned worker);

    std::atomic<bool> m_taken{false}; ///< by one run at a time
    std::mutex m_mutex;               ///< guards what follows, m_next excepted
    std::condition_variable m_start;
    std::condition_variable m_done;
    const Task* m_task = nullptr;
    std::size_t m_count = 0;
    std::uint64_t m_run = 0; ///< counts the runs, so that a waiting thread knows a new one
    std::size_t m_busy = 0;  ///< threads that have not finished the present run
    bool m_quit = false;
    std::exception_ptr m_error;
    std::atomic<std::size_t> m_next{0};
    std::vector<std::thread> m_threads;
};
