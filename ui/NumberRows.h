#pragma once

#include "ui/NumbersModel.h"

#include <QRectF>
#include <QString>
#include <QVector>

class Document;
class ProjectNumbers;

/// What a row of the dock Numbers is about.
struct NumberSubject
{
    enum class Kind
    {
        Layer,
        Usage,
        Value,
        AllZones,
        Type,
        Territory,
        /// Of zones.
        ZoneUsage,
    };

    Kind kind = Kind::AllZones;
    /// Of the layer, type or territory; the bit of a flag.
    int id = -1;
    /// As files hold it.
    QString zoneUsage;
};

/// The rows of a table and what each is about.
struct NumberRows
{
    QVector<NumbersModel::Row> rows;
    QVector<NumberSubject> subjects;
};

QVector<NumbersModel::Column> LayerNumberColumns();
QVector<NumbersModel::Column> FlagNumberColumns();
QVector<NumbersModel::Column> ZoneNumberColumns();

/// The layers in the order of their list.
NumberRows LayerNumberRows(const Document& document, const ProjectNumbers& numbers);
/// The flag types in the order of their bits, and bits without a type that the map has somewhere.
NumberRows FlagNumberRows(const ProjectNumbers& numbers);
/// All zones, then each type with its territories, then the usages.
NumberRows ZoneNumberRows(const Document& document, const ProjectNumbers& numbers);

/// Where on the map it is, in scene units; empty when it is nowhere, and for things that are gone.
QRectF AreaOf(const NumberSubject& subject, const Document& document,
              const ProjectNumbers& numbers);
