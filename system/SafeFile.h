#pragma once

#include <QFileDevice>
#include <QString>

#include <memory>
#include <utility>

class QTemporaryFile;

/// What became of a file that was to be written.
enum class WriteOutcome {
    Written,
    CannotOpen,
    CannotWrite, ///< a full disk or the like; a file that was there before is as it was
};

/// A file that is written beside its place and put there when it is whole: whoever reads the place
/// finds the earlier file or the new one, whatever ends the program in between, and of several
/// writers the last one wins. A link keeps pointing to its file, which is the one replaced; the
/// permissions of the earlier file stay, and its owner as far as the system allows.
///
/// Some places are written directly, since nothing can be put there: devices, the file that is the
/// program's own output, and an earlier file that may be written but not replaced (its folder lets
/// nothing be made in it or moved over it, or the file is mounted on its own). There a write that
/// is broken off leaves a part.
class SafeFile
{
public:
    explicit SafeFile(QString path) : m_path(std::move(path)) {}
    ~SafeFile(); ///< without commit() the place is as it was
    SafeFile(const SafeFile&) = delete;
    SafeFile& operator=(const SafeFile&) = delete;

    /// Nothing of the place changes yet.
    /// @return false where nothing can be written: no folder, no permission, a folder, a pipe
    bool open();

    /// @return false where not all was taken, now or before
    bool write(const char* text, qint64 size);

    /// The file beside the place, for another process to write: it is there and empty. For a file
    /// that is open and to which nothing was written.
    /// @return an empty path where the place is written directly
    QString beside() const;

    /// Puts the file into its place. What was refused before is refused here.
    /// @return false where the file could not be written whole; a file put beside is gone then
    bool commit();

private:
    bool openBeside(const QString& folder);
    bool openDirectly(int descriptor);
    void begin();
    bool putInPlace();

    QString m_path;
    QString m_place;         ///< m_path behind all links
    bool m_replaces = false; ///< there is an earlier file
    bool m_begun = false;
    bool m_failed = false;
    unsigned m_mode = 0; ///< permissions of the file to come
    unsigned m_owner = 0;
    unsigned m_group = 0;
    std::unique_ptr<QFileDevice> m_file;
    QTemporaryFile* m_beside = nullptr; ///< m_file where it is not written directly
};

/// Removes what SafeFiles of killed programs have left beside their places. For folders in which
/// nobody else writes meanwhile.
void dropUnfinishedFiles(const QString& folder);
