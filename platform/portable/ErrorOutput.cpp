#include "platform/ErrorOutput.h"

namespace platform {

bool IsErrorOutputTerminal()
{
    return false;
}

ErrorOutputTurnedOff::ErrorOutputTurnedOff()
{
    Q_UNUSED(m_before)
}

ErrorOutputTurnedOff::~ErrorOutputTurnedOff() = default;

} // namespace platform
