#pragma once

#include "jobs/JobFile.h"

#include <QByteArray>
#include <QString>

namespace literal
{

/// True if the text is TOML whose keys, types, words and rows are all those of a job file. Then the
/// job holds what the text gives.
bool readJob(const QByteArray& text, const QString& folder, Job& job);

} // namespace literal
