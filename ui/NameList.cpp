#include "ui/NameList.h"

#include <QCoreApplication>

QString NameList(const QStringList& names)
{
    constexpr int maxNames = 5;
    const QString first = QStringList(names.mid(0, maxNames)).join(QLatin1String(", "));
    return names.size() <= maxNames ? first
                                    : QCoreApplication::translate("NameList", "%1 and %2 more")
                                          .arg(first)
                                          .arg(names.size() - maxNames);
}
