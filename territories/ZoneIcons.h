#pragma once

#include <QPixmap>

/// The pictures of the zone usages, made once for the whole process.
class ZoneIcons
{
public:
    /// Reads the icons from the resources, unless there are some already. Needs the application.
    static void Load();
    /// Empty for a usage without an icon, and before Load.
    static QPixmap Icon(int usage);
    /// The same picture with more pixels, for dense screens and large zooms; likewise.
    static QPixmap DenseIcon(int usage);
};
