#pragma once

class QWidget;

/// Makes a slider or spin box react to the wheel only while it has the focus, and prevents the
/// wheel from giving it the focus. Otherwise scrolling past it would change its value unnoticed.
/// Its parent gets the wheel instead.
void TakeWheelOnlyWithFocus(QWidget* widget);
