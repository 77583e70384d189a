#pragma once

#include <QImage>
#include <QString>

/// Writes a picture as a PNG file, as a whole or not at all; false after a printed error.
bool WritePicture(const QString& path, const QImage& picture);
