#pragma once

#include "batch/Inspection.h"

#include <QImage>

/// Draws a file: its image, its spectrum with the edge, or both side by side, by the painters of
/// the window. Needs a QGuiApplication.
/// @return a null image where there is nothing to draw
QImage inspectionPicture(const Inspection& inspection);
