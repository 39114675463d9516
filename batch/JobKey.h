#pragma once

#include "batch/Digest.h"
#include "batch/JobData.h"
#include "batch/MapJob.h"
#include "batch/RecordedRow.h"

#include <QByteArray>
#include <QStringList>

#include <optional>
#include <vector>

/// The version of the program, which may calculate otherwise than another.
QByteArray programVersion();

/// What of a job's text its results depend on, in a form of its own: the same for other line ends,
/// comments, orders of keys and ways to write a number. Left out are the tables that name files or
/// are none of a target's business.
/// @param text  of a job that can be read
QByteArray settingsOfTargets(const QByteArray& text);

/// What the results of the targets depend on, themselves left aside: version, settings, references,
/// blank, and what aligns them.
/// @param common  with the digests of its spectra
Digest keyOfTargets(const QByteArray& settings, const JobData& common);

/// The same for the maps, their images left aside.
/// @param text  of the job
Digest keyOfMaps(const QByteArray& text, const JobData& common);

/// Whether two texts of jobs give the same results of the same files.
bool haveSameSettings(const QByteArray& text, const QByteArray& other);

/// Under which the row of a map is in the record.
/// @param images  digests of its images, one for each row of the point table; none for no image
Digest keyOfMap(const Digest& ofMaps, const MapJob& map,
                const std::vector<std::optional<Digest>>& images);

/// Of how a stack is read, its files left aside.
Digest digestOfStack(const JobStack& stack);

/// Under which the row of a target is in the record.
/// @param input   digest of its file, or digestOfStack()
/// @param others  the files of its stack, and the foil that was measured along with it
Digest keyOfTarget(const Digest& ofTargets, const Digest& input,
                   const std::vector<RecordedFile>& others);
