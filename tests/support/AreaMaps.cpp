#include "tests/support/AreaMaps.h"

#include "app/ProjectSettings.h"
#include "tests/support/Masks.h"

#include <QTest>

namespace {

constexpr QSize WorldSize(15360, 10240);

} // namespace

void SetLayerSize(QSize size)
{
    ProjectSettings::Instance().SetSizes(size.width(), size.height(), WorldSize.width(),
                                         WorldSize.height());
}

void SetFlagTypes(int usageCount, int valueCount)
{
    ProjectSettings::Instance().SetFlagTypes({FlagNames(QStringLiteral("usage"), usageCount),
                                              FlagNames(QStringLiteral("value"), valueCount)});
}

QVector<QString> FlagNames(const QString& prefix, int count)
{
    QVector<QString> names;
    for (int i = 0; i < count; ++i) {
        names.append(prefix + QString::number(i));
    }
    return names;
}

void AddTooManyTypes()
{
    QTest::addColumn<int>("usageCount");
    QTest::addColumn<int>("valueCount");
    QTest::newRow("33 usages") << 33 << 0;
    QTest::newRow("33 values") << 32 << 33;
    QTest::newRow("1000 of each") << 1000 << 1000;
}

RandomMap::RandomMap(Random& random)
    : size{random.Between(1, 80), random.Between(1, 20)}
    , usageCount(random.Below(33))
    , valueCount(random.Below(33))
{
    for (int count = random.Below(6); count > 0; --count) {
        const QSize layerSize = random.Below(4) == 0 ? size.transposed() : size;
        const quint32 usages = random.Below(3) == 0 ? 0 : random.Bits();
        const quint32 values = random.Below(3) == 0 ? 0 : random.Bits();
        layers.append({RandomMask(random, layerSize), usages, values});
    }
}

QByteArray RandomMap::LiteralBytes() const
{
    return literal::WriteMap(layers, size, WorldSize, usageCount, valueCount);
}
