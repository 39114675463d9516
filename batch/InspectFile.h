#pragma once

#include "batch/ExitStatus.h"

#include <QString>

/// Prints what a file holds, and draws it.
/// @param picture  path of a PNG file; empty for none, otherwise needs a QGuiApplication
ExitStatus inspect(const QString& path, const QString& picture);
