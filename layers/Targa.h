#pragma once

#include <QImage>
#include <QSize>
#include <QString>

/// Reads a layer bitmap: an 8-bit greyscale TGA file of exactly the project's layer size, as a
/// mask. Returns null on failure. A file that is missing or cannot be read is not logged; a file of
/// another kind or size logs an error.
QImage LoadTarga(const QString& fileName);
/// The same for another layer size.
QImage LoadTarga(const QString& fileName, QSize size);
/// Why LoadTarga gives no mask for the file, as a sentence about the bitmap.
QString WhyNotLoaded(const QString& fileName);

/// Writes a Format_Indexed8 image. Returns false after logging an error. A failed write leaves the
/// old file as it was.
bool SaveTarga(const QString& fileName, const QImage& image, bool compressed);
