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

QString ToValidName(const QString& name)
{
    QString valid = name;
    valid.replace(ForbiddenCharacters(), QStringLiteral("_"));
    return valid.trimmed().isEmpty() ? QStringLiteral("Unnamed") : valid;
}
