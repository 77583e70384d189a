#pragma once

#include "tests/support/LiteralMap.h"
#include "tests/support/Random.h"

#include <QByteArray>
#include <QSize>
#include <QVector>

class QString;

/// Sets the project's layer size in pixels. Its world stays 15360 x 10240 metres.
void SetLayerSize(QSize size);

/// The project's flag types: "usage0", "usage1" ... and "value0" ...
void SetFlagTypes(int usageCount, int valueCount);
QVector<QString> FlagNames(const QString& prefix, int count);

constexpr const char* TooManyTypes =
    "Error: An area map holds at most 32 usage and 32 value flag types.";

/// Rows of test data whose columns "usageCount" and "valueCount" no map can have.
void AddTooManyTypes();

/// A random map. Some layers have another size, or no flags of one kind.
struct RandomMap
{
    explicit RandomMap(Random& random);

    QByteArray LiteralBytes() const;

    QSize size;
    int usageCount;
    int valueCount;
    QVector<literal::MapLayer> layers;
};
