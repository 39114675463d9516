#pragma once

#include "jobs/JobFile.h"
#include "system/FileLock.h"

#include <QString>

#include <memory>

/// A part of a job's list, for one of several machines: every N-th, from the K-th.
struct Shard {
    unsigned number = 1; ///< K, from 1
    unsigned count = 0;  ///< N; 0: no part but all

    static constexpr unsigned most = 1000000;
    /// Of "K/N"; nothing from what makes no sense.
    static std::optional<Shard> fromText(const QString& text);

    bool isAll() const { return count == 0; }
    bool has(std::size_t place) const { return place % count == number - 1; }
    QString text() const { return QStringLiteral("%1/%2").arg(number).arg(count); }
};

/// Where a job's results lie in its output folder.
class RunFolder
{
public:
    explicit RunFolder(const QString& path) : m_path(path) {}
    explicit RunFolder(const Job& job) : RunFolder(job.output.path) {}

    const QString& path() const { return m_path; }
    QString results() const { return in(QStringLiteral("results.csv")); }
    QString maps() const { return in(QStringLiteral("maps.csv")); }
    QString hdf5() const { return in(QStringLiteral("results.h5")); }
    QString report() const { return in(QStringLiteral("report.html")); }
    QString record() const { return in(QStringLiteral("run.sqlite")); }
    QString shards() const { return in(QStringLiteral("shards")); }
    /// "shards/2-of-8.sqlite"
    QString record(const Shard& shard) const;

    /// Makes the folder of a record and takes the right to write the record.
    /// @param why  one line, where nothing comes back
    /// @param inUse  is set to whether another process has it
    static std::unique_ptr<FileLock> lock(const QString& record, QString& why, bool& inUse);

private:
    QString in(const QString& name) const;

    QString m_path;
};
