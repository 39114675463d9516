#pragma once

#include "jobs/JobFile.h"

/// The text of a job file (TOML, UTF-8) that parseJob() reads as the same job. Files below the
/// job's folder are named from there, others by their whole path; what is as it would be without
/// its key is left out. A number that is no decimal one (words, infinity) has no key either.
/// @param job  with the folder of the file to come; its parts go together as parseJob() wants
QByteArray jobText(const Job& job);

/// Whether a text is a number that a job can hold as it is: "8350.0", not "8350." or "nan".
bool isJobNumber(const QString& text);
