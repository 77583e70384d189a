#pragma once

#include <QPointer>
#include <QRectF>
#include <QString>

#include <vector>

class Document;
class QGraphicsView;
class QPainter;
class Zone;

/// The numbers of zones and their counts, which the map shows from a zoom of 200 % on. A label
/// stands below the icon of its zone, where the circle has room for it. The view owns the labels
/// and draws them over the map.
class ZoneLabels
{
public:
    /// View pixels for each layer pixel.
    static constexpr qreal LowestZoom = 2;

    struct Label
    {
        const Zone* zone = nullptr;
        /// The number in the territory, as the table counts; below it the counts, where there is
        /// room: "12" or "12\n2–4 | 0–1", static and dynamic.
        QString text;
        /// View pixels, from the zone's centre.
        QRectF place;
    };

    explicit ZoneLabels(QGraphicsView& view)
        : m_view(view)
    {
    }

    void SetDocument(Document& document);
    bool AreShown() const { return m_areShown; }
    void SetShown(bool areShown);
    /// The labels of the zones that are seen in the area (scene units).
    std::vector<Label> Labels(const QRectF& area, qreal zoom) const;
    /// The painter works in scene coordinates. Text has the same size at every zoom.
    void Draw(QPainter& painter, const QRectF& area) const;

private:
    void Repaint() const;

    QGraphicsView& m_view;
    QPointer<Document> m_document;
    bool m_areShown = false;
};
