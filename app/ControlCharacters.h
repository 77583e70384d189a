#pragma once

#include <QChar>
#include <QString>

/// True for U+0000 to U+001F and U+007F to U+009F.
bool IsControlCharacter(QChar character);

/// The text as one line for a console: control characters and the separators of lines and
/// paragraphs become blanks. Texts hold names from files, where a line break could forge another
/// message and an escape sequence could change what the terminal shows.
QString ToConsoleLine(QString text);
