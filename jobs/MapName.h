#pragma once

#include <QString>

/// Why the name of a map can be no folder's: it is of several folders or of none, has characters
/// that no name has or that the locale cannot write, or is so long that the names of the map's
/// files would be too long. Empty where it can be one.
QString whyNoFolderName(const QString& name);
