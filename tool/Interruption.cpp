#include "tool/Interruption.h"

#include "platform/Signals.h"

#include <csignal>

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
    platform::CatchRequestsToEnd(TakeSignal);
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
