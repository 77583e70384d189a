#pragma once

#include "territories/ZoneSheet.h"

#include <QDialog>

#include <vector>

/// Tells which rows of a sheet could not be taken, and why. Nothing of the sheet was taken then.
class DialogRefusedRows : public QDialog
{
    Q_OBJECT

public:
    explicit DialogRefusedRows(const std::vector<SheetRefusal>& refusals,
                               QWidget* parent = nullptr);
};
