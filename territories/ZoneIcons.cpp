#include "territories/ZoneIcons.h"

#include "territories/Zone.h"

#include <QCoreApplication>
#include <QHash>

namespace {

struct Pictures
{
    QPixmap normal;
    QPixmap dense;
};

QHash<int, Pictures>& Cache()
{
    static QHash<int, Pictures> cache;
    return cache;
}

Pictures Read(const QString& name)
{
    return {QPixmap(name), QPixmap(name + QStringLiteral("@2x"))};
}

} // namespace

void ZoneIcons::Load()
{
    QHash<int, Pictures>& cache = Cache();
    if (!cache.isEmpty()) {
        return;
    }
    cache.insert(Zone::Rest, Read(QStringLiteral(":/zone/rest")));
    cache.insert(Zone::Graze, Read(QStringLiteral(":/zone/graze")));
    cache.insert(Zone::Water, Read(QStringLiteral(":/zone/water")));
    cache.insert(Zone::HuntingGround, Read(QStringLiteral(":/zone/hunting")));
    cache.insert(Zone::DynamicEvent, Read(QStringLiteral(":/zone/event")));
    // Pixmaps must not outlive the application.
    qAddPostRoutine([] { Cache().clear(); });
}

QPixmap ZoneIcons::Icon(int usage)
{
    return Cache().value(usage).normal;
}

QPixmap ZoneIcons::DenseIcon(int usage)
{
    return Cache().value(usage).dense;
}
