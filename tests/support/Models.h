#pragma once

#include <QStringList>

class QAbstractItemModel;

/// The texts of the top-level rows of a model, in order.
QStringList RowTexts(const QAbstractItemModel& model);
