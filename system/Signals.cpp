#include "system/Signals.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <initializer_list>
#include <sys/eventfd.h>
#include <unistd.h>

namespace
{

std::atomic<int> caught{0};
std::atomic<int> event{-1};

void keep(int signal)
{
    const int before = errno;
    int none = 0;
    caught.compare_exchange_strong(none, signal);
    if (event >= 0)
        (void)!eventfd_write(event, 1);
    errno = before;
}

} // namespace

void reportFailedWrites()
{
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
}

void keepStopSignals()
{
    if (event < 0)
        event = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        struct sigaction before = {};
        struct sigaction action = {};
        action.sa_handler = keep;
        action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
        sigemptyset(&action.sa_mask);
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
}

int stopSignal()
{
    return caught;
}

int stopDescriptor()
{
    return event;
}
