#pragma once

class QWidget;

/// Lets a slider or spin box take the wheel only while it has the focus, and the wheel does not
/// give it the focus. Otherwise scrolling past it would change its value unnoticed; the wheel goes
/// on to its parent instead.
void TakeWheelOnlyWithFocus(QWidget* widget);
