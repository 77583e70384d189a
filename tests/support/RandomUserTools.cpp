#include "tests/support/RandomUser.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QMouseEvent>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

// What the tools of the Paint mode are for.

Qt::MouseButton RandomUser::LeftOrRight()
{
    return m_random.Below(3) == 0 ? Qt::RightButton : Qt::LeftButton;
}

void RandomUser::EscapeStroke()
{
    const Qt::MouseButton button = LeftOrRight();
    Mouse(QEvent::MouseButtonPress, SomewhereOnMap(), button, button);
    Mouse(QEvent::MouseMove, SomewhereOnMap(), Qt::NoButton, button);
    QTest::keyClick(&View(), Qt::Key_Escape);
    Mouse(QEvent::MouseMove, SomewhereOnMap(), Qt::NoButton, button);
    Mouse(QEvent::MouseButtonRelease, SomewhereOnMap(), button, Qt::NoButton);
}

void RandomUser::ChooseTool()
{
    static const char* const tools[] = {"toolBrush",   "toolLine",  "toolRectangle", "toolEllipse",
                                        "toolPolygon", "toolLasso", "toolFill",      "toolPick"};
    QAction* action = Action(tools[m_random.Below(int(std::size(tools)))]);
    // Without the bar there may be keys still.
    if (m_random.Below(2) == 0) {
        QTest::keyClick(&View(), Qt::Key(action->shortcut()[0]));
    } else if (auto* bar = qobject_cast<QToolBar*>(OneOf({"toolBarTools"}))) {
        QTest::mouseClick(bar->widgetForAction(action), Qt::LeftButton);
    }
}

void RandomUser::ChoosePaintOption()
{
    auto* box =
        qobject_cast<QComboBox*>(OneOf({"cboFillBounds", "cboPaintWithin", "cboPaintWithinLayer"}));
    if (box && box->count() > 0) {
        box->setCurrentIndex(m_random.Below(box->count()));
    }
}

/// Corners of a polygon, and what may come between them.
void RandomUser::DrawCorners()
{
    const Qt::MouseButton button = LeftOrRight();
    if (m_random.Below(2) == 0) {
        Action("toolPolygon")->trigger();
    }
    for (int corners = m_random.Between(1, 5); corners > 0; --corners) {
        const QPoint position = SomewhereOnMap();
        Mouse(QEvent::MouseMove, position, Qt::NoButton, Qt::NoButton);
        Mouse(QEvent::MouseButtonPress, position, button, button);
        Mouse(QEvent::MouseButtonRelease, position, button, Qt::NoButton);
        switch (m_random.Below(12)) {
        case 0:
            QTest::keyClick(&View(), Qt::Key_Backspace);
            break;
        case 1:
            TurnWheel();
            break;
        case 2:
            ClickRow();
            break;
        case 3:
            TriggerRowAction();
            break;
        default:
            break;
        }
    }
    switch (m_random.Below(4)) {
    case 0:
        DoubleClickMap();
        break;
    case 1:
        QTest::keyClick(&View(), Qt::Key_Escape);
        break;
    case 2:
        QTest::keyClick(&View(), Qt::Key_Return);
        break;
    default:
        break;
    }
}

void RandomUser::DrawShape()
{
    const Qt::MouseButton button = LeftOrRight();
    const Qt::KeyboardModifiers modifiers(
        (m_random.Below(3) == 0 ? Qt::ShiftModifier : Qt::NoModifier) |
        (m_random.Below(3) == 0 ? Qt::ControlModifier : Qt::NoModifier));
    QWidget* viewport = View().viewport();
    const auto send = [&](QEvent::Type type, Qt::MouseButton changed, Qt::MouseButtons buttons) {
        const QPoint position = SomewhereOnMap();
        QMouseEvent event(type, position, viewport->mapToGlobal(position), changed, buttons,
                          modifiers);
        if (viewport->isEnabled() && viewport->isVisible()) {
            QApplication::sendEvent(viewport, &event);
        }
    };
    send(QEvent::MouseButtonPress, button, button);
    for (int moves = m_random.Below(4); moves > 0; --moves) {
        send(QEvent::MouseMove, Qt::NoButton, button);
    }
    if (m_random.Below(8) == 0) {
        ChooseTool();
    }
    send(QEvent::MouseButtonRelease, button, Qt::NoButton);
}
