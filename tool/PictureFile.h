#pragma once

#include <QImage>
#include <QString>

class QFile;

/// Opens a picture and checks its beginning and its length. Returns what is wrong; empty if nothing
/// is. Pictures that would take more than 2 GiB are refused.
QString OpenPicture(QFile& file);

/// Returns a null image after printing an error.
QImage ReadPicture(const QString& path);

/// Writes a picture as a PNG file, completely or not at all. Returns false after printing an error.
bool WritePicture(const QString& path, const QImage& picture);
