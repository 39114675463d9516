#pragma once

#include <cstddef>
#include <cstdlib>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

/// The part of a work that one of several processes does: what follows one another, about as much
/// for each.
/// @param work   of each piece
/// @param share  "k/n": share k, from 0, of n; all where it is empty
/// @return the first piece, and the one behind the last
inline std::pair<std::size_t, std::size_t> shareOf(const std::vector<std::size_t>& work,
                                                   const std::string& share)
{
    const std::size_t slash = share.find('/');
    if (slash == std::string::npos)
        return {0, work.size()};
    const std::size_t own = std::strtoul(share.c_str(), nullptr, 10);
    const std::size_t shares = std::strtoul(share.c_str() + slash + 1, nullptr, 10);
    const std::size_t all = std::accumulate(work.begin(), work.end(), std::size_t{0});
    std::size_t before = 0;
    std::size_t first = 0;
    std::size_t last = 0;
    for (const std::size_t piece : work) {
        // A piece belongs to the share in which its middle lies.
        const std::size_t its = (2 * before + piece) * shares / (2 * all);
        first += its < own ? 1 : 0;
        last += its <= own ? 1 : 0;
        before += piece;
    }
    return {first, last};
}
