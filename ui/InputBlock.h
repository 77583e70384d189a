#pragma once

#include <QObject>

/// While it lives, keys, clicks, the wheel and drops reach no window but open dialogs. Messages
/// process events, so without it the user could change what is being read or written. Closing a
/// window and letting go of what is held still work.
class InputBlock : public QObject
{
public:
    InputBlock();

    bool eventFilter(QObject* watched, QEvent* event) override;
};
