#include "ui/Jumps.h"

#include "canvas/MainView.h"

#include <QLineF>

namespace {

constexpr int MostPlaces = 200;

/// Whether nobody could see a difference.
bool IsSame(const ViewPlace& a, const ViewPlace& b)
{
    const auto zoom = static_cast<qreal>(a.zoom);
    return qFuzzyCompare(a.zoom, b.zoom) && QLineF(a.center, b.center).length() * zoom < 1;
}

} // namespace

Jumps::Jumps(MainView& view)
    : m_view(view)
{
}

void Jumps::Note()
{
    Remember(m_view.Moves().Place());
}

void Jumps::To(const ViewPlace& place)
{
    const ViewPlace before = m_view.Moves().Place();
    m_view.Moves().Show(place);
    if (!IsSame(before, m_view.Moves().Place())) {
        Remember(before);
    }
}

void Jumps::Remember(const ViewPlace& place)
{
    m_forward.clear();
    if (m_back.isEmpty() || !IsSame(m_back.last(), place)) {
        m_back.append(place);
    }
    if (m_back.size() > MostPlaces) {
        m_back.removeFirst();
    }
}

void Jumps::Back()
{
    Go(m_back, m_forward);
}

void Jumps::Forward()
{
    Go(m_forward, m_back);
}

void Jumps::Go(QVector<ViewPlace>& from, QVector<ViewPlace>& to)
{
    const ViewPlace present = m_view.Moves().Place();
    // A click in the overview may have led nowhere else.
    while (!from.isEmpty() && IsSame(from.constLast(), present)) {
        from.removeLast();
    }
    if (!from.isEmpty()) {
        to.append(present);
        m_view.Moves().Show(from.takeLast());
    }
}

void Jumps::Clear()
{
    m_back.clear();
    m_forward.clear();
}
