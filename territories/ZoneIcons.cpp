#include "territories/ZoneIcons.h"

#include "territories/Zone.h"

#include <QCoreApplication>
#include <QHash>

namespace {

QHash<int, QPixmap>& Cache()
{
    static QHash<int, QPixmap> cache;
    return cache;
}

} // namespace

void ZoneIcons::Load()
{
    QHash<int, QPixmap>& cache = Cache();
    if (!cache.isEmpty()) {
        return;
    }
    cache.insert(Zone::Rest, QPixmap(QStringLiteral(":/zone/rest")));
    cache.insert(Zone::Graze, QPixmap(QStringLiteral(":/zone/graze")));
    cache.insert(Zone::Water, QPixmap(QStringLiteral(":/zone/water")));
    cache.insert(Zone::HuntingGround, QPixmap(QStringLiteral(":/zone/hunting")));
    cache.insert(Zone::DynamicEvent, QPixmap(QStringLiteral(":/zone/event")));
    // Pixmaps must not outlive the application.
    qAddPostRoutine([] { Cache().clear(); });
}

QPixmap ZoneIcons::Icon(int usage)
{
    return Cache().value(usage);
}
