#include "platform/ErrorOutput.h"

namespace platform {

bool IsErrorOutputTerminal()
{
    return false;
}

ErrorOutputTurnedOff::ErrorOutputTurnedOff() = default;

ErrorOutputTurnedOff::~ErrorOutputTurnedOff()
{
    Q_UNUSED(m_before)
}

} // namespace platform
