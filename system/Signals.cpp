#include "system/Signals.h"

#include <csignal>

void reportFailedWrites()
{
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
}
