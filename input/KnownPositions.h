#pragma once

#include "analysis/MapCalculation.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

/// The positions of maps that belong together, so that a new map of the same scan can share them. A
/// list of positions stays known as long as somebody else holds it. May be used by several threads.
class KnownPositions
{
public:
    std::vector<SharedPositions> all() const;
    void add(const SharedPositions& positions); ///< once, however often they are added

private:
    mutable std::mutex m_mutex; ///< guards what follows
    std::vector<std::weak_ptr<const MapPositions>> m_known;
};

/// Collects the positions of a map; as long as they are those of a known map, bit by bit, they take
/// no memory.
class PositionCollector
{
public:
    explicit PositionCollector(std::vector<SharedPositions> known) : m_candidates(std::move(known))
    {
    }

    /// Room for about this many, should they have to be kept.
    void expect(std::size_t count) { m_expected = count; }
    std::size_t size() const { return m_size; }
    bool shared() const { return !m_candidates.empty(); }

    /// False where the memory is refused.
    bool append(const MapPositions& positions);
    /// All positions, those of a known map where they are equal; null where there are none or the
    /// memory is refused.
    SharedPositions finish();

private:
    bool keepOwn();

    std::vector<SharedPositions> m_candidates; ///< agree with all positions so far
    SharedPositions m_last;                    ///< agreed up to now
    MapPositions m_own;
    std::size_t m_size = 0;
    std::size_t m_expected = 0;
};
