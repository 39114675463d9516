#pragma once

#include "batch/ExitStatus.h"
#include "batch/JobChecks.h"

#include <QString>

#include <vector>

/// What the program says on the standard error, a line each; the standard output is for data.
namespace console
{

void say(const QString& text);

/// Says why the program ends.
/// @return its exit status
int complain(const QString& text, ExitStatus status = ExitStatus::BadJob);

/// "file:line:column: warning: reason" for each doubt.
void warn(const QString& path, const std::vector<JobError>& doubts);

/// Writes to the standard output at once.
/// @return false where not all could be written
bool print(const QByteArray& text);

} // namespace console
