#pragma once

#include <QImage>
#include <QString>

class QFile;

/// What keeps a file from being read as a picture, as far as its beginning and its length tell;
/// empty when it is open and good so far. Pictures that would take more than 2 GiB are refused.
QString OpenPicture(QFile& file);

/// Null after a printed error.
QImage ReadPicture(const QString& path);

/// Writes a picture as a PNG file, as a whole or not at all; false after a printed error.
bool WritePicture(const QString& path, const QImage& picture);
