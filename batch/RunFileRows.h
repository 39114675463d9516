#pragma once

#include "batch/RecordedRow.h"
#include "formats/RunFile.h"

/// Gathers from the rows of a record what goes into one HDF5 file of the run.
class RunFileRows
{
public:
    /// The columns of results.csv: all but a few have numbers.
    void setTargetColumns(const QByteArrayList& columns);
    void addTarget(const RecordedRow& row);
    /// A map without a file of its own is left out.
    /// @param folder  what the paths of the row's files start from
    /// @param common  the files that all maps were calculated with
    void addMap(const RecordedRow& row, const QString& folder,
                const std::vector<RecordedFile>& common);

    const RunContents& contents() const { return m_contents; }

private:
    RunContents m_contents;
};
