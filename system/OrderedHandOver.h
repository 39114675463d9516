#pragma once

#include "system/Workers.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

/// Takes numbered blocks from several threads and hands them to one consumer in the order of their
/// numbers. The thread that brings the next block has it consumed, and with it those behind it that
/// have come in the meantime; the others go on with their work, or wait where too many blocks do.
///
/// Blocks must be begun in rising order: the one that all others wait for is then always in work,
/// and whoever brings it never waits. A block that will never come must be told by stop().
template <class Block>
class OrderedHandOver
{
public:
    /// @param waiting  so many blocks may wait for one before them
    explicit OrderedHandOver(std::size_t waiting) : m_maxWaiting(waiting) {}

    bool stopped() const { return m_stopped; }

    /// Nothing more is consumed; whoever waits goes on.
    void stop()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_stopped = true;
        m_room.notify_all();
    }

    /// A block, used before where there is one; null where memory is refused.
    std::unique_ptr<Block> take()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_spare.empty())
            return std::unique_ptr<Block>(new (std::nothrow) Block);
        std::unique_ptr<Block> block = std::move(m_spare.back());
        m_spare.pop_back();
        return block;
    }

    /// @param consume  bool(Block&), called for this block and for others, one at a time in the
    ///                 order of their numbers; false stops the hand-over
    template <class Consume>
    void deliver(std::size_t number, std::unique_ptr<Block> block, const Consume& consume)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_room.wait(
            lock, [&] { return m_stopped || number == m_next || m_waiting.size() < m_maxWaiting; });
        if (m_stopped)
            return;
        m_waiting.emplace(number, std::move(block));
        while (!m_consuming && !m_stopped && !m_waiting.empty() &&
               m_waiting.begin()->first == m_next)
            consumeNext(lock, consume);
    }

private:
    template <class Consume>
    void consumeNext(std::unique_lock<std::mutex>& lock, const Consume& consume)
    {
        std::unique_ptr<Block> block = std::move(m_waiting.begin()->second);
        m_waiting.erase(m_waiting.begin());
        m_consuming = true;
        lock.unlock();
        const bool goOn = consume(*block);
        lock.lock();
        m_consuming = false;
        m_spare.push_back(std::move(block));
        ++m_next;
        m_stopped = m_stopped || !goOn;
        m_room.notify_all();
    }

    std::atomic<bool> m_stopped{false}; ///< set under the mutex, read anywhere

    std::mutex m_mutex; ///< guards what follows
    std::condition_variable m_room;
    std::size_t m_maxWaiting;
    std::map<std::size_t, std::unique_ptr<Block>> m_waiting;
    std::vector<std::unique_ptr<Block>> m_spare;
    std::size_t m_next = 0; ///< number of the block that is consumed next
    bool m_consuming = false;
};

/// Makes the blocks 0 to count - 1 on all threads and consumes them in order, one at a time.
/// @param produce  bool(std::size_t number, unsigned worker, Block&); the block may have been used
///                 before
/// @param consume  bool(Block&)
/// @return false where one of them did, or memory was refused; then not all was consumed. What one
///         of them throws is thrown again.
template <class Block, class Produce, class Consume>
bool runInOrder(Workers& workers, std::size_t count, const Produce& produce, const Consume& consume)
{
    constexpr std::size_t waitingForEach = 4;
    OrderedHandOver<Block> handOver(waitingForEach * workers.size());
    workers.run(count, [&](std::size_t number, unsigned worker) {
        if (handOver.stopped())
            return;
        try {
            std::unique_ptr<Block> block = handOver.take();
            if (block && produce(number, worker, *block))
                handOver.deliver(number, std::move(block), consume);
            else
                handOver.stop();
        } catch (...) {
            handOver.stop();
            throw;
        }
    });
    return !handOver.stopped();
}
