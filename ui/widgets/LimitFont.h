#pragma once

class QWidget;

/// For a form whose size is fixed: makes its font at most 12 logical pixels large, which is 9
/// points at 96 dpi. What the form holds then fits also where the desktop's font is larger.
void LimitFont(QWidget& form);
