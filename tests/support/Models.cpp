#include "tests/support/Models.h"

#include <QAbstractItemModel>

QStringList RowTexts(const QAbstractItemModel& model)
{
    QStringList texts;
    for (int row = 0; row < model.rowCount(); ++row) {
        texts.append(model.index(row, 0).data().toString());
    }
    return texts;
}
