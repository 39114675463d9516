#pragma once

#include "analysis/MapCalculation.h"

#include <cstddef>
#include <vector>

/// The positions of the maps that are in memory, so that a new map of the same scan can share them.
/// A list of positions stays known as long as somebody holds it.
namespace KnownPositions
{

std::vector<SharedPositions> all();
void add(const SharedPositions& positions);

} // namespace KnownPositions

/// Collects the positions of a map; as long as they are those of a known map, bit by bit, they take
/// no memory.
class PositionCollector
{
public:
    PositionCollector() : m_candidates(KnownPositions::all()) {}

    /// Room for about this many, should they have to be kept.
    void expect(std::size_t count) { m_expected = count; }
    std::size_t size() const { return m_size; }
    bool shared() const { return !m_candidates.empty(); }

    /// False where the memory is refused.
    bool append(const MapPositions& positions);
    /// All positions; null where there are none or the memory is refused.
    SharedPositions finish();

private:
    bool keepOwn();

    std::vector<SharedPositions> m_candidates; ///< agree with all positions so far
    SharedPositions m_last;                    ///< agreed up to now
    MapPositions m_own;
    std::size_t m_size = 0;
    std::size_t m_expected = 0;
};
