#pragma once

#include <QColor>

/// What the frame of a map and those of its legends have in common.
namespace mapFrame
{

constexpr int markLength = 4; ///< of an axis, pixels
const QColor colour(90, 90, 90);

} // namespace mapFrame
