#include "app/Names.h"

#include <QRegExp>

namespace {

QRegExp ForbiddenCharacters()
{
    return QRegExp(QStringLiteral("[<>:\"/\\\\|?*]"));
}

} // namespace

bool IsValidName(const QString& name)
{
    return !name.trimmed().isEmpty() && !name.contains(ForbiddenCharacters());
}

bool LeadsUpward(const QString& name)
{
    return name.startsWith(QLatin1String("../")) || name.contains(QLatin1String("/../"));
}

QString ToValidName(const QString& name)
{
    QString valid = name;
    valid.replace(ForbiddenCharacters(), QStringLiteral("_"));
    return valid.trimmed().isEmpty() ? QStringLiteral("Unnamed") : valid;
}
