#include "tests/hostile/HostileFiles.h"

#include <QFile>

#include <cstring>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace
{

QByteArray encoded(const QString& path)
{
    return QFile::encodeName(path);
}

void require(bool done, const QString& path)
{
    if (!done)
        qFatal("%s cannot be made", qPrintable(path));
}

void makeSocket(const QString& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray name = encoded(path);
    require(static_cast<std::size_t>(name.size()) < sizeof address.sun_path, path);
    std::memcpy(address.sun_path, name.constData(), static_cast<std::size_t>(name.size()));
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    require(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0,
            path);
    close(descriptor);
}

} // namespace

QString hostile::write(const QString& path, const QByteArray& content)
{
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(), path);
    return path;
}

QString hostile::writeLong(const QString& path, const QByteArray& head, const QByteArray& block,
                           qint64 size)
{
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(head) == head.size(), path);
    const QByteArray piece = block.repeated((1 << 20) / block.size());
    for (qint64 written = 0; written < size; written += piece.size())
        require(file.write(piece) == piece.size(), path);
    return path;
}

QStringList hostile::unreadable(const QString& folder)
{
    const auto in = [&](const char* name) {
        return folder + QLatin1Char('/') + QLatin1String(name);
    };
    require(mkfifo(encoded(in("pipe")).constData(), 0600) == 0, in("pipe"));
    makeSocket(in("socket"));
    require(symlink("nothing", encoded(in("broken link")).constData()) == 0, in("broken link"));
    require(symlink("circle", encoded(in("circle")).constData()) == 0, in("circle"));
    write(in("secret"), "Offset\n0 13 0 2 1\n");
    require(chmod(encoded(in("secret")).constData(), 0) == 0, in("secret"));
    QStringList paths{folder,       in("pipe"),   in("socket"),  in("broken link"),
                      in("circle"), in("secret"), in("missing"), in("secret/below a file")};
    for (const char* device : {"/dev/zero", "/dev/null", "/dev/full", "/dev/urandom", "/dev/tty"})
        paths.append(QLatin1String(device));
    return paths;
}

hostile::PlainUser::PlainUser()
{
    constexpr uid_t nobody = 65534;
    m_changed = geteuid() == 0 && seteuid(nobody) == 0;
}

hostile::PlainUser::~PlainUser()
{
    if (m_changed && seteuid(0) != 0)
        qFatal("the superuser's privileges do not come back");
}

hostile::MemoryWatch::MemoryWatch()
{
    QFile reset(QStringLiteral("/proc/self/clear_refs"));
    if (reset.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        reset.write("5"); // the peak starts again from what is there now
    m_start = peak();
}

qint64 hostile::MemoryWatch::growth() const
{
    return peak() - m_start;
}

qint64 hostile::MemoryWatch::peak()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray text = status.readAll();
    const int at = text.indexOf("VmHWM:");
    return at < 0 ? 0 : text.mid(at + 6).simplified().split(' ').first().toLongLong() * 1024;
}

int hostile::scale()
{
    return qEnvironmentVariableIsSet("DROVIK_HOSTILE_FULL") ? 16 : 1;
}
