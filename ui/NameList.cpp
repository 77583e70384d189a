#include "ui/NameList.h"

#include <QCoreApplication>

QString ShortText(const QString& text, int length)
{
    const QString line = text.left(length + 1).simplified();
    return line.size() <= length ? line : line.left(length - 1) + QChar(0x2026);
}

QString NameList(const QStringList& names)
{
    constexpr int maxNames = 5;
    QStringList shown;
    for (int i = 0; i < qMin(names.size(), maxNames); ++i) {
        shown.append(ShortText(names[i]));
    }
    const QString first = shown.join(QLatin1String(", "));
    return names.size() <= maxNames ? first
                                    : QCoreApplication::translate("NameList", "%1 and %2 more")
                                          .arg(first, QString::number(names.size() - maxNames));
}
