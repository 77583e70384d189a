#pragma once

#include <QStringList>

class QAbstractItemModel;

/// What the top-level rows of a model show, in order.
QStringList RowTexts(const QAbstractItemModel& model);
