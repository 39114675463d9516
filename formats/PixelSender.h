#pragma once

#include "formats/StackFault.h"
#include "system/PieceStream.h"
#include "system/PixelArray.h"

#include <cstddef>
#include <new>

/// Sends images to the program that asked for them, by the pipe that was handed over.
class PixelSender
{
public:
    static constexpr int pipe = 3; ///< its descriptor

    /// Memory for the image that is sent next; what was there is gone.
    char* room(std::size_t bytes)
    {
        m_image.clear();
        if (!m_image.resize(bytes))
            throw std::bad_alloc();
        return m_image.data();
    }
    /// The same for numbers in double precision.
    double* doubles(std::size_t count)
    {
        void* const place = room(count * sizeof(double));
        return static_cast<double*>(place);
    }
    /// @param offset  among all bytes that were asked for
    void send(std::size_t offset)
    {
        if (!sendPiece(pipe, offset, m_image.data(), m_image.size()))
            throw StackFault("has nobody who takes its pixels");
    }

private:
    PixelArray<char> m_image;
};
