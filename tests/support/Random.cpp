#include "tests/support/Random.h"

#include <QtDebug>

namespace {

quint32 Seed()
{
    const QByteArray wanted = qgetenv("QUILLMAP_SEED");
    return wanted.isEmpty() ? std::random_device()() : wanted.toUInt();
}

} // namespace

Random::Random()
{
    const quint32 seed = Seed();
    qInfo("QUILLMAP_SEED=%u", seed);
    m_engine.seed(seed);
}

int Random::Below(int bound)
{
    return static_cast<int>(Bits() % static_cast<quint32>(bound));
}
