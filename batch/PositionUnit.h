#pragma once

/// What the positions of a map's pixels count: units of the stage that a text file does not name,
/// or pixels of a camera, of a size that is known or not.
enum class PositionUnit { Stage, Pixels, Micrometres };

/// @param pixelSize  of a stack, micrometres; 0 where it is not known
constexpr PositionUnit unitOfPixels(double pixelSize)
{
    return pixelSize > 0.0 ? PositionUnit::Micrometres : PositionUnit::Pixels;
}
