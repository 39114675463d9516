#include "input/KnownPositions.h"

#include <algorithm>
#include <cstring>

namespace
{

/// Compares bits: not-a-number equals itself, and minus zero is not zero.
bool agree(const MapPositions& candidate, std::size_t first, const MapPositions& positions)
{
    return first + positions.size() <= candidate.size() &&
           std::memcmp(candidate.data() + first, positions.data(),
                       positions.size() * sizeof(MapPosition)) == 0;
}

} // namespace

std::vector<SharedPositions> KnownPositions::all() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<SharedPositions> alive;
    for (const auto& entry : m_known)
        if (SharedPositions positions = entry.lock())
            alive.push_back(std::move(positions));
    return alive;
}

void KnownPositions::add(const SharedPositions& positions)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto replaced = [&](const auto& entry) {
        return entry.expired() || entry.lock() == positions;
    };
    m_known.erase(std::remove_if(m_known.begin(), m_known.end(), replaced), m_known.end());
    m_known.push_back(positions);
}

bool PositionCollector::append(const MapPositions& positions)
{
    if (positions.empty())
        return true;
    if (!m_candidates.empty()) {
        m_last = m_candidates.front();
        const auto differs = [&](const SharedPositions& candidate) {
            return !agree(*candidate, m_size, positions);
        };
        m_candidates.erase(std::remove_if(m_candidates.begin(), m_candidates.end(), differs),
                           m_candidates.end());
        if (m_candidates.empty() && !keepOwn())
            return false;
    }
    m_size += positions.size();
    if (!m_candidates.empty())
        return true;
    return m_own.reserve(m_expected) && m_own.append(positions.data(), positions.size());
}

bool PositionCollector::keepOwn()
{
    return m_own.reserve(std::max(m_expected, m_size)) && m_own.append(m_last->data(), m_size);
}

SharedPositions PositionCollector::finish()
{
    if (m_size == 0)
        return nullptr;
    for (const SharedPositions& candidate : m_candidates)
        if (candidate->size() == m_size)
            return candidate;
    if (!m_candidates.empty()) {
        m_last = m_candidates.front();
        if (!keepOwn())
            return nullptr;
    }
    return std::make_shared<const MapPositions>(std::move(m_own));
}
