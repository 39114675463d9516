#pragma once

#include <QByteArray>
#include <QMap>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

/// What a run of the program left.
struct BatchOutput {
    int status = -1; ///< -1 where it was killed or did not end
    QByteArray text;
    QString errors;
};

/// Fields of the first row of a table, by the names of the columns.
QMap<QByteArray, QByteArray> firstRow(const QByteArray& table);

/// A folder with the references and the blank of the example, targets in "scans" and a job for
/// them, and the program to run there.
class BatchFolder
{
public:
    /// @param percents  of Ref 1 in each target, which is its file's name: "scans/35.dat"
    explicit BatchFolder(const QList<int>& percents = {80, 10, 35});

    QString path() const { return m_dir.path(); }
    QString file(const QString& name) const { return m_dir.filePath(name); }
    QString file(const char* name) const { return file(QString::fromUtf8(name)); }
    /// The bytes of results.csv.
    QByteArray results() const;

    /// job.toml.
    /// @param more     behind the points
    /// @param targets  the list's items
    void writeJob(const QByteArray& more = {}, const QByteArray& targets = "\"scans/*.dat\"") const;
    void write(const char* name, const QByteArray& text) const;
    /// Makes "scans/PREFIX0000.dat" and so on, copies of 35.dat with a comment of their own.
    void addTargets(int count, const char* prefix = "copy") const;

    /// Makes images of a map, "images/NAME_1.txt" to "images/NAME_4.txt", of 3 x 2 pixels.
    /// @return the job's table of the map
    QByteArray addMap(const char* name) const;
    /// The bytes of all files in the output folder that are results; not records, not locks.
    QMap<QString, QByteArray> resultFiles() const;

    /// Runs the program to its end, with "job.toml" behind the arguments.
    BatchOutput run(const QStringList& arguments = {}) const;
    /// The same with these arguments only.
    BatchOutput runPlainly(const QStringList& arguments) const;
    /// Names of the targets that a run to its end calculates, with these arguments besides.
    QStringList calculated(const QStringList& arguments = {}) const;
    /// Starts the program, or another one, in the folder.
    void start(QProcess& process, const QStringList& arguments, const QString& program = {}) const;
    /// What a process left that has been started.
    static BatchOutput outputOf(QProcess& process);

    static const QByteArray points; ///< of the job

private:
    QTemporaryDir m_dir;
};
