#pragma once

#include <QColor>
#include <QVector>

/// An opaque, strong colour that differs from the taken ones as clearly as possible. The same
/// colours give the same answer.
QColor ColorOfItsOwn(const QVector<QColor>& taken);
