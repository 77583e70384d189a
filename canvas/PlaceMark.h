#pragma once

#include <QObject>
#include <QPointF>
#include <QTimer>

class QGraphicsView;
class QPainter;

/// A ring that shows for two seconds where on the map a place is. It is no item of the scene, so
/// that clicks go through it. The view owns it and draws it over the map.
class PlaceMark : public QObject
{
public:
    explicit PlaceMark(QGraphicsView& view);

    /// place: in the scene.
    void Show(QPointF place);
    bool IsShown() const { return m_timer.isActive(); }
    QPointF Place() const { return m_place; }
    /// The painter works in scene coordinates. The ring has the same size at every zoom.
    void Draw(QPainter& painter) const;

private:
    void Repaint();

    QGraphicsView& m_view;
    QPointF m_place;
    QTimer m_timer;
};
