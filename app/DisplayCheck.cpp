#include "app/DisplayCheck.h"

#include <QFile>
#include <QStringList>

#include <algorithm>
#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xcb.h>

namespace
{

/// The value of an option of the toolkit, "-name VALUE" or "--name VALUE"; the last one counts.
QByteArray optionValue(int argc, char* argv[], const char* name)
{
    QByteArray value;
    for (int i = 1; i + 1 < argc; ++i) {
        const char* const argument = argv[i];
        if (argument[0] == '-' && std::strcmp(argument + (argument[1] == '-' ? 2 : 1), name) == 0)
            value = argv[i + 1];
    }
    return value;
}

/// Platforms that are asked for, "wayland;xcb"; none where the toolkit chooses.
QStringList askedPlatforms(int argc, char* argv[])
{
    QByteArray text = optionValue(argc, argv, "platform");
    if (text.isEmpty())
        text = qgetenv("QT_QPA_PLATFORM");
    QStringList names;
    for (const QByteArray& platform : text.split(';'))
        if (!platform.isEmpty())
            names += QString::fromLocal8Bit(platform).section(QLatin1Char(':'), 0, 0);
    return names;
}

bool isX11(const QString& platform)
{
    return platform == QLatin1String("xcb");
}

bool isWayland(const QString& platform)
{
    return platform.startsWith(QLatin1String("wayland"));
}

bool x11Answers(const QByteArray& display)
{
    xcb_connection_t* const connection = xcb_connect(display.constData(), nullptr);
    const bool answers = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return answers;
}

bool waylandAnswers(const QByteArray& display)
{
    QByteArray path = display;
    if (!path.startsWith('/'))
        path = qgetenv("XDG_RUNTIME_DIR") + '/' + path;
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (static_cast<std::size_t>(path.size()) >= sizeof address.sun_path)
        return false;
    std::copy(path.begin(), path.end(), address.sun_path);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool answers =
        connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(descriptor);
    return answers;
}

const QString instead = QStringLiteral("; drovik-batch runs a job without one.");

QString notReached(const QStringList& displays)
{
    return QStringLiteral("The display %1 cannot be reached")
               .arg(displays.join(QStringLiteral(" or "))) +
           instead;
}

QString noneNamed(bool triesX11, bool triesWayland)
{
    QStringList empty;
    if (triesX11)
        empty += QStringLiteral("DISPLAY");
    if (triesWayland)
        empty += QStringLiteral("WAYLAND_DISPLAY");
    return QStringLiteral("There is no display (%1 empty)")
               .arg(empty.join(QStringLiteral(" and ")) +
                    (empty.size() > 1 ? QStringLiteral(" are") : QStringLiteral(" is"))) +
           instead;
}

} // namespace

QString missingDisplay(int argc, char* argv[])
{
    const QStringList asked = askedPlatforms(argc, argv);
    const bool others = std::any_of(asked.begin(), asked.end(), [](const QString& platform) {
        return !isX11(platform) && !isWayland(platform);
    });
    // A compositor that starts the program itself leaves it an open connection.
    if (others || !qEnvironmentVariableIsEmpty("WAYLAND_SOCKET"))
        return {};
    QByteArray x11 = optionValue(argc, argv, "display");
    if (x11.isEmpty())
        x11 = qgetenv("DISPLAY");
    const QByteArray wayland = qgetenv("WAYLAND_DISPLAY");
    const bool triesX11 = asked.isEmpty() || std::any_of(asked.begin(), asked.end(), isX11);
    const bool triesWayland = asked.isEmpty() || std::any_of(asked.begin(), asked.end(), isWayland);
    QStringList tried;
    if (triesX11 && !x11.isEmpty()) {
        if (x11Answers(x11))
            return {};
        tried += QString::fromLocal8Bit(x11);
    }
    if (triesWayland && !wayland.isEmpty()) {
        if (waylandAnswers(wayland))
            return {};
        tried += QString::fromLocal8Bit(wayland);
    }
    return tried.isEmpty() ? noneNamed(triesX11, triesWayland) : notReached(tried);
}
