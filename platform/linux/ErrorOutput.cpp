#include "platform/ErrorOutput.h"

#include <fcntl.h>
#include <unistd.h>

namespace platform {

bool IsErrorOutputTerminal()
{
    return isatty(STDERR_FILENO) == 1;
}

ErrorOutputTurnedOff::ErrorOutputTurnedOff()
    : m_before(dup(STDERR_FILENO))
{
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (m_before >= 0 && nowhere >= 0) {
        dup2(nowhere, STDERR_FILENO);
    }
    close(nowhere);
}

ErrorOutputTurnedOff::~ErrorOutputTurnedOff()
{
    if (m_before >= 0) {
        dup2(m_before, STDERR_FILENO);
        close(m_before);
    }
}

} // namespace platform
