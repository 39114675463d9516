#pragma once

#include "analysis/SpectrumNoise.h"

#include <cstddef>

/// How the number of a pixel is stored, in the machine's byte order.
enum class PixelType { U8, U16, U32, I8, I16, I32, F32, F64 };

constexpr std::size_t bytesOf(PixelType type)
{
    switch (type) {
    case PixelType::U8:
    case PixelType::I8:
        return 1;
    case PixelType::U16:
    case PixelType::I16:
        return 2;
    case PixelType::F64:
        return 8;
    default:
        return 4;
    }
}

/// "16 bits unsigned".
constexpr const char* nameOf(PixelType type)
{
    constexpr const char* names[] = {"8 bits unsigned", "16 bits unsigned", "32 bits unsigned",
                                     "8 bits signed",   "16 bits signed",   "32 bits signed",
                                     "32 bits real",    "64 bits real"};
    return names[static_cast<int>(type)];
}

/// An image as it is stored, row after row from the top.
struct Plane {
    PixelType type = PixelType::U16;
    const char* pixels = nullptr; ///< null where there is none
};

/// What the numbers of a stack are.
enum class StackValues {
    Unknown,
    MuT,
    Transmission, ///< mu-t = -ln T
    Counts,       ///< mu-t = ln((flat - dark) / (frame - dark))
};

/// A frame with what its mu-t is made of.
struct Frame {
    StackValues values = StackValues::MuT;
    Plane frame;
    Plane flat;             ///< of counts
    Plane dark;             ///< of counts; its absence is a dark of `darkLevel`
    double darkLevel = 0.0; ///< counts without light
    double added = 0.0;     ///< to mu-t: ln(I0 of the frame / I0 of the flat)
    double weight = 1.0;    ///< of this frame in a mean or between neighbours
};

/// What the mean mu-t of pixels is formed from. A pixel without a number, in the frame or in what
/// belongs to it, is left out; one that is dark counts.
struct FrameSums {
    std::size_t pixels = 0;   ///< that have numbers
    double incident = 0.0;    ///< flat - dark of counts, otherwise 1 a pixel
    double transmitted = 0.0; ///< frame - dark of counts, otherwise the numbers as they are

    /// The logarithm of the mean intensities, or the mean of mu-t; not-a-number where there is
    /// none.
    double meanMut(const Frame& frame) const;
};

/// Sums over the first pixels of a frame; in an order that does not depend on threads.
FrameSums sumsOf(const Frame& frame, std::size_t count);

/// mu-t of some pixels, in double precision: not-a-number where an intensity is not positive.
/// @param mut  [count]; the weighted mu-t is added to it, or put there
void addMut(const Frame& frame, std::size_t first, std::size_t count, double* mut, bool add);

/// Variances of the mu-t of some pixels of counts, by the counting of the frame alone or of its
/// flat too; not-a-number where an intensity is not positive.
/// @param ownFlat   whether the flat is of this frame only: one that all frames share moves all
/// mu-t
///                  of a pixel alike
/// @param variance  [count]; what a mean of this weight has of it is added to it, or put there
void addVariance(const Frame& frame, const DetectorGains& gains, bool ownFlat, std::size_t first,
                 std::size_t count, float* variance, bool add);
