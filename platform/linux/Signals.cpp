#include "platform/Signals.h"

#include <csignal>
#include <initializer_list>

namespace platform {

void LetTooLargeFilesFail()
{
    std::signal(SIGXFSZ, SIG_IGN);
}

void LetClosedPipesFail()
{
    std::signal(SIGPIPE, SIG_IGN);
}

void CatchRequestsToEnd(SignalHandler handler)
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction before = {};
        sigaction(number, nullptr, &before);
        if (before.sa_handler == SIG_IGN) {
            continue;
        }
        struct sigaction action = {};
        action.sa_handler = handler;
        // Without SA_RESTART: a full pipe that nobody empties shall not hold up the end.
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(number, &action, nullptr);
    }
}

} // namespace platform
