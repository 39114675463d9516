#pragma once

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <sys/uio.h>
#include <unistd.h>

/// Pixels that one process sends to another by a pipe, in pieces. Memory that both share would be
/// handed out page by page to either of them, which takes three times as long.

/// What stands before the bytes of a piece.
struct PieceHead {
    std::uint64_t offset = 0; ///< in the memory of the one that receives
    std::uint64_t bytes = 0;
};

/// Sends a piece; false where nobody receives it.
inline bool sendPiece(int pipe, std::size_t offset, char* bytes, std::size_t count)
{
    PieceHead head{offset, count};
    std::array<iovec, 2> parts{{{&head, sizeof head}, {bytes, count}}};
    for (std::size_t left = sizeof head + count; left > 0;) {
        const ssize_t written = writev(pipe, parts.data(), static_cast<int>(parts.size()));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        left -= static_cast<std::size_t>(written);
        auto done = static_cast<std::size_t>(written);
        for (iovec& part : parts) {
            const std::size_t its = std::min(done, part.iov_len);
            part.iov_base = static_cast<char*>(part.iov_base) + its;
            part.iov_len -= its;
            done -= its;
        }
    }
    return true;
}

/// Puts pieces into memory.
class PieceReceiver
{
public:
    PieceReceiver() = default; ///< has no memory
    PieceReceiver(char* memory, std::size_t size) : m_memory(memory), m_size(size) {}

    /// Takes what a pipe has, which is not empty; waits otherwise.
    /// @return false at its end, and where a piece does not lie within the memory
    bool receive(int pipe)
    {
        const bool isHead = m_left == 0;
        char* const place = isHead ? reinterpret_cast<char*>(&m_head) + m_headBytes
                                   : m_memory + m_head.offset + (m_head.bytes - m_left);
        const ssize_t got = read(pipe, place, isHead ? sizeof m_head - m_headBytes : m_left);
        if (got < 0 && errno == EINTR)
            return true;
        if (got <= 0)
            return false;
        if (!isHead) {
            m_left -= static_cast<std::size_t>(got);
            m_received += static_cast<std::size_t>(got);
            return true;
        }
        m_headBytes += static_cast<std::size_t>(got);
        if (m_headBytes < sizeof m_head)
            return true;
        m_headBytes = 0;
        if (m_head.offset > m_size || m_head.bytes > m_size - m_head.offset)
            return false;
        m_left = m_head.bytes;
        return true;
    }

    std::size_t received() const { return m_received; } ///< bytes of pieces

private:
    char* m_memory = nullptr;
    std::size_t m_size = 0;
    PieceHead m_head;
    std::size_t m_headBytes = 0; ///< that are there
    std::size_t m_left = 0;      ///< of the piece
    std::size_t m_received = 0;
};
