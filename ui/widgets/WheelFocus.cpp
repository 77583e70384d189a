#include "ui/widgets/WheelFocus.h"

#include <QEvent>
#include <QWidget>

namespace {

class WheelFilter : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        const auto* widget = qobject_cast<QWidget*>(watched);
        if (event->type() != QEvent::Wheel || !widget || widget->hasFocus()) {
            return false;
        }
        event->ignore();
        return true;
    }
};

} // namespace

void TakeWheelOnlyWithFocus(QWidget* widget)
{
    widget->setFocusPolicy(Qt::StrongFocus);
    widget->installEventFilter(new WheelFilter(widget));
}
