#pragma once

#include "analysis/EnergyAlignment.h"
#include "batch/RecordedRow.h"
#include "batch/ShiftTable.h"
#include "jobs/JobFile.h"
#include "system/ByteSource.h"

#include <array>
#include <memory>
#include <optional>
#include <vector>

/// What is added to the energies of a spectrum.
struct EnergyShift {
    double shift = 0.0; ///< eV
    double sigma = 0.0; ///< its standard deviation; 0 where it was not found but given
};

using EnergyShifts = std::array<EnergyShift, SpectrumSet::count>;

/// The [alignment] of a job: its numbers, its table, or what the foils of its own spectra show.
class Alignment
{
public:
    /// @param bounds  of the fits; the foils' edge is the job's
    /// @param error   where nothing comes back
    static std::shared_ptr<const Alignment> read(const Job& job, const FitBounds& bounds,
                                                 JobError& error);

    /// The shift of one of the job's own spectra.
    const EnergyShift& of(SpectrumSet::Index spectrum) const { return m_shifts.at(spectrum); }

    /// That of a target.
    /// @param path  of it, from the job's folder or the root on
    /// @param foil  the bytes of its foil; null where it has none
    /// @param why   in one line, where nothing comes back
    std::optional<EnergyShift> ofTarget(const QString& path, const ByteSource* foil,
                                        QString& why) const;

    /// The path of the foil of a target; empty where it has none.
    QString targetFoil(const QString& path) const;
    /// A path against the job's folder.
    QString shown(const QString& path) const;
    /// Why a file has no shift in the table; empty where it has, or where there is no table.
    QString whyNotNamed(const QString& path) const;
    const JobPlace& tablePlace() const { return m_job.alignment.table.place; }

    /// The table and the foils of the job's own spectra; paths against the job's folder.
    const std::vector<RecordedFile>& inputs() const { return m_inputs; }

private:
    Alignment(const Job& job, const FitBounds& bounds) : m_job(job), m_bounds(bounds) {}

    bool readTable(JobError& error);
    std::optional<FittedSpectrum> readFoil(const QString& path, JobError& error);
    bool readShift(SpectrumSet::Index spectrum, JobError& error);
    std::optional<EnergyShift> foundFor(const FittedSpectrum& foil, const QString& path,
                                        QString& why) const;

    Job m_job;
    FitBounds m_bounds;
    ShiftTable m_table;
    std::optional<FittedSpectrum> m_scale; ///< the foil of Ref 1
    EnergyShifts m_shifts{};
    std::vector<RecordedFile> m_inputs;
};
