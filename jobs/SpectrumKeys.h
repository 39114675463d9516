#pragma once

#include "jobs/KeyReader.h"

/// Takes a spectrum: the path of a file, or a table with the file and how it is read,
/// { file = "b.txt", format = "columns", columns = { energy = 1, i0 = 2, i = 3 }, unit = "keV" }.
KeyReader::Handler spectrumFile(KeyReader& reader, JobFilePath& file);

/// The same with a pattern, which is kept as it stands.
KeyReader::Handler foilPattern(KeyReader& reader, JobFilePath& file);

/// Takes targets: names and patterns of files, or a table with them as `files` and how they are
/// read.
KeyReader::Handler targetFiles(KeyReader& reader, std::vector<JobFilePath>& files,
                               SpectrumSource& source);
