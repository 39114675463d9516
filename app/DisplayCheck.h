#pragma once

#include <QString>

/// Asks, as the toolkit is going to, for a display on which windows can be shown: an X server or a
/// Wayland compositor, whichever the environment and the options of the toolkit let it try. Without
/// one the toolkit would end the program with a core dump and the advice to install it again.
/// @return what is missing, one line; empty where a display answers, or where another platform than
///         these two is asked for
QString missingDisplay(int argc, char* argv[]);
