#pragma once

#include <QRgb>

#include <array>

/// Colours for the values from the lowest to the highest.
using ColourMap = std::array<QRgb, 256>;

/// From dark violet by blue and green to yellow: equal steps of a value look equal, also in grey
/// and to the colour-blind.
const ColourMap& viridis();
