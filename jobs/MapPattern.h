#pragma once

#include <QString>

/// The name of a map's images: "area_{row}.txt", where {row} is the number of the [[point]], 1 for
/// the first, and {energy} the text of its energy.
namespace mapPattern
{

/// @return why a text is none; empty where it is one
QString fault(const QString& pattern);

/// The name of one image.
QString filled(const QString& pattern, int row, const QString& energy);

} // namespace mapPattern
