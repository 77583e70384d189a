#pragma once

#include "canvas/MaskSampler.h"

#include <QHash>
#include <QImage>
#include <QObject>
#include <QRect>
#include <QTimer>

#include <optional>
#include <vector>

class Document;
class Layer;
class MainScene;

/// The whole map as a small picture: the background, the layers as the map shows them, and a dot
/// for each visible zone.
///
/// Each shown layer has a small mask, whose pixels are those that the map shows when it is zoomed
/// out. A change of a layer samples only the changed part of its small mask anew, and composes only
/// that part of the picture. All work is done in slices of a few milliseconds when no events are
/// waiting, so a large project does not stop the window. No mask of a layer is held.
class OverviewPicture : public QObject
{
    Q_OBJECT

public:
    /// The longer side of the picture; smaller maps are shown at their own size.
    static constexpr int LongerSide = 512;

    /// Both outlive the picture, which is inactive at first.
    OverviewPicture(Document& document, MainScene& scene);
    ~OverviewPicture() override;

    /// While inactive it keeps nothing and follows nothing. It begins anew when it becomes active.
    void SetActive(bool isActive);
    /// Whether the picture shows the present map.
    bool IsUpToDate() const { return !m_timer.isActive(); }
    /// In Format_ARGB32_Premultiplied; null while inactive and for a map without pixels.
    const QImage& Picture() const { return m_picture; }

signals:
    /// In pixels of the picture.
    void Changed(const QRect& rect);

private:
    struct SmallMask
    {
        QImage mask;
        /// In pixels of the small mask.
        QRect stale;
    };
    struct ShownLayer
    {
        int id;
        /// Premultiplied.
        QRgb color;

        bool operator==(const ShownLayer& other) const
        {
            return id == other.id && color == other.color;
        }
    };

    void ConnectDocument();
    void BeginAnew();
    void SetSize();
    /// The pixels of the picture that may show these layer pixels.
    QRect SmallRect(const QRect& rect) const;
    void Stale(const Layer& layer, const QRect& rect);
    void StaleList();
    void StaleWorld();
    void StaleZones();
    void Work();
    /// Each does a part of the work that is left, and returns false if there is none.
    bool ListLayers();
    bool DrawWorld();
    bool DrawZones();
    bool SampleBand();
    bool ComposeBand();
    void Compose(const QRect& part);

    Document& m_document;
    MainScene& m_scene;
    QTimer m_timer;
    bool m_isActive = false;
    bool m_isSizeStale = false;
    bool m_isListStale = false;
    bool m_isWorldStale = false;
    bool m_areZonesStale = false;
    /// From layer pixels to those of the picture.
    std::optional<MaskSampler> m_sampler;
    QTransform m_toSmall;
    /// By the layer's id; layers that are not shown need none.
    QHash<int, SmallMask> m_masks;
    /// Topmost first.
    std::vector<ShownLayer> m_shown;
    QImage m_world;
    QImage m_zones;
    QImage m_picture;
    /// The part of the picture that must be composed anew.
    QRect m_stale;
};
