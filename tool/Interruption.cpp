#include "tool/Interruption.h"

#include <csignal>
#include <initializer_list>

namespace Interruption {
namespace {

volatile std::sig_atomic_t signalNumber = 0;

extern "C" void TakeSignal(int number)
{
    signalNumber = number;
}

} // namespace

void Watch()
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction before = {};
        sigaction(number, nullptr, &before);
        if (before.sa_handler == SIG_IGN) {
            continue;
        }
        struct sigaction action = {};
        action.sa_handler = TakeSignal;
        // Without SA_RESTART: a full pipe that nobody empties shall not hold up the end.
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(number, &action, nullptr);
    }
}

bool HasCome()
{
    return signalNumber != 0;
}

int ExitCode()
{
    return 128 + signalNumber;
}

} // namespace Interruption
