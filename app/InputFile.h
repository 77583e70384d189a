#pragma once

#include <QIODevice>
#include <QString>

class QFile;

// Opening files that anybody may have written. What is wrong is told in the words of
// `quillmap-tool`, without the file's name, such as "does not exist."; nothing for a file that is
// open. Only regular files are opened: opening a pipe would wait for a writer, maybe for ever.

QString OpenForReading(QFile& file, QIODevice::OpenMode flags = {});
/// The same for a picture that can be read, which is opened at its beginning. Its pixels are not
/// unpacked.
QString OpenPictureForReading(QFile& file);
