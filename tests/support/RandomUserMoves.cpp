#include "tests/support/RandomUser.h"

// What moves the map in the view.

void RandomUser::MoveMap()
{
    static const char* const actions[] = {
        "actionZoomIn",       "actionZoomOut",     "actionFitMap",
        "actionFitSelection", "actionGoBack",      "actionGoTo",
        "actionGoForward",    "actionZoomAtMouse", "actionBookmarkAdd"};
    // Some moves happen in the middle of a stroke or a drag.
    const bool isInStroke = m_random.Below(4) == 0;
    const Qt::MouseButtons left = isInStroke ? Qt::LeftButton : Qt::NoButton;
    QPoint position = SomewhereOnMap();
    if (isInStroke) {
        Mouse(QEvent::MouseButtonPress, position, Qt::LeftButton, left);
    }
    if (m_random.Below(2) == 0) {
        Trigger(actions[m_random.Below(int(std::size(actions)))]);
    } else {
        Mouse(QEvent::MouseButtonPress, position, Qt::MiddleButton, left | Qt::MiddleButton);
        position = SomewhereOnMap();
        Mouse(QEvent::MouseMove, position, Qt::NoButton, left | Qt::MiddleButton);
        // The release may be lost.
        if (m_random.Below(4) != 0) {
            Mouse(QEvent::MouseButtonRelease, position, Qt::MiddleButton, left);
        }
    }
    if (isInStroke) {
        Mouse(QEvent::MouseButtonRelease, SomewhereOnMap(), Qt::LeftButton, Qt::NoButton);
    }
}
