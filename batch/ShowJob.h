#pragma once

#include <QString>

/// Starts the window with a job, which takes the place of this program: the one beside it, or else
/// the first in PATH. The window's command line is empty; the job is handed over in the environment.
/// @return why it cannot be started; does not come back otherwise
QString showJob(const QString& path);
