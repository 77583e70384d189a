#include "app/ControlCharacters.h"

bool IsControlCharacter(QChar character)
{
    return character.category() == QChar::Other_Control;
}

QString ToConsoleLine(QString text)
{
    for (QChar& character : text) {
        const QChar::Category category = character.category();
        if (IsControlCharacter(character) || category == QChar::Separator_Line ||
            category == QChar::Separator_Paragraph) {
            character = QLatin1Char(' ');
        }
    }
    return text;
}
