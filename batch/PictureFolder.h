#pragma once

#include <QString>

/// A path in which every folder of the target's path is kept and every byte that a file's name
/// should not have is written as "=XX": "scans/a b.dat" is "scans/a=20b.dat", "../x" is "=2E=2E/x",
/// "/x" is "=2Fx". Different targets have different paths, names of any length have one, and none
/// leads out of the folder that it is put into.
QString picturePath(const QString& target);
