#pragma once

#include "jobs/JobFile.h"

/// Prints which energies to measure, by the references and the blank of a job, and draws them.
/// @param path     of the job
/// @param picture  path of a PNG file, which replaces nothing that the job reads; empty for none.
///                 A picture needs a QGuiApplication
/// @return the exit status of the program
int rankJob(const QString& path, const Job& job, const QString& picture);
