#pragma once

#include <QByteArray>
#include <QColor>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QVector>

/// What a project document says of its layers, read without opening the project.
struct ProjectOutline
{
    struct Layer
    {
        QString name;
        /// The alpha is the layer's opacity.
        QColor color;
        bool isVisible = false;
    };

    /// The size of every layer in pixels.
    QSize layerSize;
    /// Topmost first. Those before a fault in the document.
    QVector<Layer> layers;
};

ProjectOutline OutlineOf(const QByteArray& document);

/// The document as it is, or, when it is malformed, what stands before the fault, with all elements
/// ended. It can be opened then, where the document itself may not.
QByteArray UpToFault(const QByteArray& document);

/// The document with no layers but these.
QByteArray WithLayers(const QByteArray& document, const QStringList& names);
