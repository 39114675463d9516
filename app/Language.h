#pragma once

#include <QStringList>

/// Whether the command line asks for Japanese: the last of "-j" and "-e" counts, Japanese without
/// either, anything else is ignored.
/// @param arguments  the program's name first
bool wantsJapanese(const QStringList& arguments);
