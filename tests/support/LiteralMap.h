#pragma once

#include <QByteArray>
#include <QImage>
#include <QVector>

/// A simple writer and reader of area maps that uses QImage::pixel and QImage::setPixel for each
/// pixel. Tests compare the real writer and importer with it.
namespace literal {

struct MapLayer
{
    QImage image;
    quint32 usageFlags;
    quint32 valueFlags;
};

/// The words of one section, rows in file order. flags holds the section's flags of each layer.
QVector<quint32> SectionWords(const QVector<QImage>& images, const QVector<quint32>& flags,
                              int bits, QSize size);

/// A whole map file.
QByteArray WriteMap(const QVector<MapLayer>& layers, QSize layerSize, QSize worldSize,
                    int usageTypeCount, int valueTypeCount);

struct FlagImage
{
    int flag;
    QImage image;
};

/// The flags of a section in the order in which they first occur.
QVector<FlagImage> SplitSection(const QVector<quint32>& words, int bits, QSize size,
                                int flagTypeCount);

/// The layers that an import of a well-formed map makes, usages first.
QVector<MapLayer> ReadMap(const QByteArray& map, int usageTypeCount, int valueTypeCount);

} // namespace literal
