#pragma once

#include "app/Finding.h"

#include <QSize>
#include <QString>

/// What the rules of a project's settings look at.
struct SettingsFacts
{
    /// Pixels.
    QSize layerSize;
    /// Metres.
    QSize worldSize;
    int usageCount = 0;
    int valueCount = 0;
    /// As the document says, and what is wrong with the file, such as "does not exist."; an empty
    /// fault for a good one.
    QString background;
    QString backgroundFault;
};

/// Appends what is wrong with sizes, the number of flag types and the background.
void CheckSettings(const SettingsFacts& facts, Findings& findings);

/// What is wrong with a size of layers, as a sentence; empty if nothing is.
QString LayerSizeError(QSize size);
/// Such as "800x600".
QString SizeText(QSize size);
