#include "system/Workers.h"

#include <algorithm>
#include <system_error>

namespace
{

/// More threads than this gain nothing: memory is the bound by then.
constexpr unsigned maxSharedThreads = 16;

/// Takes the threads for the length of a run, unless they are taken.
class Turn
{
public:
    explicit Turn(std::atomic<bool>& taken) : m_taken(taken), m_mine(!taken.exchange(true)) {}
    ~Turn()
    {
        if (m_mine)
            m_taken = false;
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    bool mine() const { return m_mine; }

private:
    std::atomic<bool>& m_taken;
    bool m_mine;
};

} // namespace

Workers::Workers(unsigned threads)
{
    m_threads.reserve(std::max(1U, threads) - 1);
    try {
        for (unsigned worker = 1; worker < threads; ++worker)
            m_threads.emplace_back([this, worker] { loop(worker); });
    } catch (const std::system_error&) {
        // The system gives no more threads; the work is done by those that there are.
    }
}

Workers::~Workers()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_quit = true;
    }
    m_start.notify_all();
    for (std::thread& thread : m_threads)
        thread.join();
}

Workers& Workers::shared()
{
    static Workers workers(std::min(std::thread::hardware_concurrency(), maxSharedThreads));
    return workers;
}

void Workers::run(std::size_t count, const Task& task)
{
    const Turn turn(m_taken);
    if (turn.mine())
        return runWithThreads(count, task);
    for (std::size_t i = 0; i < count; ++i)
        task(i, 0);
}

void Workers::runWithThreads(std::size_t count, const Task& task)
{
    m_next = 0;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_error = nullptr;
        m_task = &task;
        m_count = count;
        m_busy = count > 1 ? m_threads.size() : 0;
        if (m_busy > 0)
            ++m_run;
    }
    m_start.notify_all();
    work(task, count, 0);
    std::unique_lock<std::mutex> lock(m_mutex);
    m_done.wait(lock, [this] { return m_busy == 0; });
    m_task = nullptr;
    if (m_error)
        std::rethrow_exception(m_error);
}

void Workers::loop(unsigned worker)
{
    std::uint64_t seen = 0;
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        m_start.wait(lock, [&] { return m_quit || m_run != seen; });
        if (m_quit)
            return;
        seen = m_run;
        const Task& task = *m_task;
        const std::size_t count = m_count;
        lock.unlock();
        work(task, count, worker);
        lock.lock();
        if (--m_busy == 0)
            m_done.notify_one();
    }
}

void Workers::work(const Task& task, std::size_t count, unsigned worker)
{
    try {
        for (std::size_t i = m_next++; i < count; i = m_next++)
            task(i, worker);
    } catch (...) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_next = count;
        if (!m_error)
            m_error = std::current_exception();
    }
}
