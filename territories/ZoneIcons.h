#pragma once

#include <QPixmap>

/// The icons of the zone usages, loaded once for the whole process.
class ZoneIcons
{
public:
    /// Loads the icons from the resources, unless they are loaded. Needs the application object.
    static void Load();
    /// The icon of a usage; empty if the usage has none, and before Load.
    static QPixmap Icon(int usage);
    /// The same icon with more pixels, for dense screens and large zooms.
    static QPixmap DenseIcon(int usage);
};
