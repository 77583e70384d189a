#include "app/Names.h"

#include "app/Xml.h"

#include <QRegExp>

namespace {

QRegExp ForbiddenCharacters()
{
    return QRegExp(QStringLiteral("[<>:\"/\\\\|?*]"));
}

} // namespace

bool IsValidName(const QString& name)
{
    return !name.trimmed().isEmpty() && !name.contains(ForbiddenCharacters()) &&
           ToXmlText(name) == name;
}

bool IsRename(const QString& oldName, const QString& newName)
{
    return newName != oldName && IsValidName(newName);
}

bool LeadsUpward(const QString& name)
{
    return name.startsWith(QLatin1String("../")) || name.contains(QLatin1String("/../"));
}

QString ToValidName(const QString& name)
{
    QString valid = ToXmlText(name);
    valid.replace(ForbiddenCharacters(), QStringLiteral("_"));
    return valid.trimmed().isEmpty() ? QStringLiteral("Unnamed") : valid;
}

QString FreeNames::Take(const QString& base)
{
    QString name = base;
    int& number = m_lastNumbers[base];
    for (number = qMax(number, 1); m_taken.contains(name);) {
        ++number;
        name = QStringLiteral("%1 (%2)").arg(base, QString::number(number));
    }
    m_taken.insert(name);
    return name;
}
