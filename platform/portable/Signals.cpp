#include "platform/Signals.h"

#include <csignal>

namespace platform {
namespace {

SignalHandler taken = nullptr;

extern "C" void TakeOnce(int number)
{
    // Some systems have done so already.
    std::signal(number, SIG_DFL);
    taken(number);
}

void Catch(int number)
{
    if (std::signal(number, TakeOnce) == SIG_IGN) {
        std::signal(number, SIG_IGN);
    }
}

} // namespace

// The standard library names what the system has.
void LetTooLargeFilesFail()
{
#ifdef SIGXFSZ
    std::signal(SIGXFSZ, SIG_IGN);
#endif
}

void LetClosedPipesFail()
{
#ifdef SIGPIPE
    std::signal(SIGPIPE, SIG_IGN);
#endif
}

void CatchRequestsToEnd(SignalHandler handler)
{
    taken = handler;
    Catch(SIGINT);
    Catch(SIGTERM);
#ifdef SIGHUP
    Catch(SIGHUP);
#endif
}

} // namespace platform
