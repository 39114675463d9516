#include "system/SafeFile.h"

#include "system/FileMode.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr mode_t permissionBits = 07777;

constexpr char besideName[] = ".drovik-XXXXXX"; ///< six letters take the place of those at its end

/// Without a name until it asks for one, where the file system knows how: then nothing is left of
/// it when the program ends before.
class FileBeside : public QTemporaryFile
{
public:
    using QTemporaryFile::open;
    using QTemporaryFile::QTemporaryFile;
};

/// The file behind a chain of links to one that is not there yet; empty for a circle.
QString behindLinks(const QString& path)
{
    constexpr int longestChain = 40; // as the system's
    QFileInfo file(path);
    for (int i = 0; i < longestChain; ++i) {
        if (!file.isSymLink())
            return file.filePath();
        file.setFile(file.symLinkTarget());
    }
    return {};
}

bool isOwnOutput(const struct stat& file)
{
    for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO}) {
        struct stat own = {};
        if (fstat(descriptor, &own) == 0 && own.st_dev == file.st_dev && own.st_ino == file.st_ino)
            return true;
    }
    return false;
}

/// Whether another file can be put in the place of this one.
bool canBeReplaced(const struct stat& file, const QString& folder)
{
    const QByteArray name = QFile::encodeName(folder);
    struct stat status = {};
    if (stat(name.constData(), &status) != 0 || status.st_dev != file.st_dev ||
        faccessat(AT_FDCWD, name.constData(), W_OK | X_OK, AT_EACCESS) != 0)
        return false;
    const uid_t user = geteuid();
    return (status.st_mode & S_ISVTX) == 0 || user == 0 || user == file.st_uid ||
           user == status.st_uid;
}

/// What a new file gets. The system tells it only by changing it for a moment.
mode_t usualMode()
{
    const mode_t mask = umask(0);
    umask(mask);
    return readAndWriteForAll & ~mask;
}

} // namespace

SafeFile::~SafeFile() = default;

bool SafeFile::open()
{
    const QByteArray name = QFile::encodeName(m_path);
    struct stat status = {};
    if (m_path.isEmpty() || m_path.endsWith(QLatin1Char('/')))
        return false;
    const bool there = stat(name.constData(), &status) == 0;
    // Opening a pipe would wait for somebody who reads it.
    if (there ? S_ISFIFO(status.st_mode) : errno != ENOENT)
        return false;
    m_place = there ? QFileInfo(m_path).canonicalFilePath() : behindLinks(m_path);
    const QString folder = QFileInfo(m_place).path();
    if (!there) {
        m_mode = usualMode();
        return openBeside(folder);
    }
    const int descriptor = ::open(name.constData(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || isOwnOutput(status) ||
        !canBeReplaced(status, folder))
        return openDirectly(descriptor);
    close(descriptor); // was opened to see that it may be written
    m_replaces = true;
    m_mode = status.st_mode & permissionBits;
    m_owner = status.st_uid;
    m_group = status.st_gid;
    return openBeside(folder);
}

/// The name owes nothing to that of the file, which may be as long as names can be.
bool SafeFile::openBeside(const QString& folder)
{
    auto file = std::make_unique<FileBeside>(folder + QLatin1Char('/') + QLatin1String(besideName));
    if (!file->open(QIODevice::WriteOnly | QIODevice::Text))
        return false;
    m_beside = file.get();
    m_file = std::move(file);
    return true;
}

bool SafeFile::openDirectly(int descriptor)
{
    struct stat status = {};
    auto file = std::make_unique<QFile>();
    if (fstat(descriptor, &status) != 0 || S_ISFIFO(status.st_mode) ||
        !file->open(descriptor, QIODevice::WriteOnly | QIODevice::Text,
                    QFileDevice::AutoCloseHandle)) {
        close(descriptor);
        return false;
    }
    m_file = std::move(file);
    // A device may take its time.
    fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
    return true;
}

/// A file that is written directly loses what it held not before something is written.
void SafeFile::begin()
{
    m_begun = true;
    struct stat status = {};
    const int descriptor = m_file->handle();
    if (m_beside == nullptr && fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode))
        m_failed = ftruncate(descriptor, 0) != 0;
}

bool SafeFile::write(const char* text, qint64 size)
{
    if (!m_begun)
        begin();
    m_failed = m_failed || m_file->write(text, size) != size;
    return !m_failed;
}

QString SafeFile::beside() const
{
    return m_beside != nullptr ? m_beside->fileName() : QString();
}

bool SafeFile::commit()
{
    if (!m_begun)
        begin();
    m_failed = !m_file->flush() || m_failed;
    if (m_beside)
        return !m_failed && putInPlace();
    m_file->close();
    return !m_failed && m_file->error() == QFileDevice::NoError;
}

/// On the disk before it takes the earlier file's place: else a power failure could leave neither,
/// and a remote disk says only then that it is full.
bool SafeFile::putInPlace()
{
    const int descriptor = m_beside->handle();
    // Only the superuser gives files away. Whoever else writes owns the file, as a new one.
    if (m_replaces && fchown(descriptor, m_owner, m_group) != 0)
        (void)!fchown(descriptor, geteuid(), m_group);
    if (fchmod(descriptor, m_mode) != 0 || fsync(descriptor) != 0 ||
        std::rename(QFile::encodeName(m_beside->fileName()).constData(),
                    QFile::encodeName(m_place).constData()) != 0)
        return false;
    m_beside->setAutoRemove(false);
    return true;
}

void dropUnfinishedFiles(const QString& folder)
{
    QString pattern = QLatin1String(besideName);
    pattern.replace(QLatin1Char('X'), QLatin1Char('?'));
    QDir place(folder);
    for (const QString& name : place.entryList({pattern}, QDir::Files | QDir::Hidden))
        place.remove(name);
}
