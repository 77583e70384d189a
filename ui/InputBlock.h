#pragma once

#include <QObject>

/// While the object exists, keys, clicks, the wheel and drops reach only open dialogs. Logging
/// processes events, so without the block the user could change data that is being read or written.
/// Closing a window and releasing keys and buttons still work.
class InputBlock : public QObject
{
public:
    InputBlock();

    bool eventFilter(QObject* watched, QEvent* event) override;
};
