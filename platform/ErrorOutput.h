#pragma once

#include <QtGlobal>

namespace platform {

/// Whether the standard error is a terminal. False where that cannot be told.
bool IsErrorOutputTerminal();

/// While it lives, nothing gets to the standard error, where the system can do that.
class ErrorOutputTurnedOff
{
public:
    ErrorOutputTurnedOff();
    ~ErrorOutputTurnedOff();
    Q_DISABLE_COPY(ErrorOutputTurnedOff)

private:
    int m_before = -1;
};

} // namespace platform
