#include "canvas/OverviewPicture.h"

#include "canvas/MainScene.h"
#include "document/Document.h"
#include "layers/raster/Mask.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"

#include <QElapsedTimer>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace {

constexpr int SliceMilliseconds = 4;
/// The rows that are sampled or composed before the clock is read again.
constexpr int BandHeight = 16;
/// A zone is shown as a square that reaches this many pixels from its centre.
constexpr int DotReach = 1;

QSize SmallSize(QSize map)
{
    if (map.isEmpty()) {
        return {};
    }
    const QSize largest(OverviewPicture::LongerSide, OverviewPicture::LongerSide);
    const bool isLarge = map.width() > largest.width() || map.height() > largest.height();
    return isLarge ? map.scaled(largest, Qt::KeepAspectRatio).expandedTo({1, 1}) : map;
}

/// Takes some rows off the top of the rectangle and returns them.
QRect TakeBand(QRect& stale)
{
    QRect band = stale;
    band.setHeight(std::min(BandHeight, stale.height()));
    stale.setTop(band.bottom() + 1);
    if (stale.isEmpty()) {
        stale = QRect();
    }
    return band;
}

} // namespace

OverviewPicture::OverviewPicture(Document& document, MainScene& scene)
    : m_document(document)
    , m_scene(scene)
{
    connect(&m_timer, &QTimer::timeout, this, &OverviewPicture::Work);
}

OverviewPicture::~OverviewPicture()
{
    SetActive(false);
}

void OverviewPicture::SetActive(bool isActive)
{
    if (isActive == m_isActive) {
        return;
    }
    m_isActive = isActive;
    if (isActive) {
        ConnectDocument();
        BeginAnew();
        return;
    }
    m_document.disconnect(this);
    m_document.Layers().model()->disconnect(this);
    m_document.Types().model()->disconnect(this);
    m_scene.disconnect(this);
    m_scene.SetWorldChanged({});
    m_timer.stop();
    m_sampler.reset();
    m_masks.clear();
    m_shown.clear();
    m_world = QImage();
    m_zones = QImage();
    m_picture = QImage();
    m_stale = QRect();
}

void OverviewPicture::ConnectDocument()
{
    connect(&m_document, &Document::LayerChanged, this,
            [this](const Layer* layer, Document::LayerAspect aspect, const QRect& rect) {
                if (aspect == Document::LayerAspect::Pixels) {
                    Stale(*layer, rect);
                } else {
                    StaleList();
                }
            });
    connect(&m_document, &Document::Painted, this,
            [this](const Layer* layer, const QRect& rect) { Stale(*layer, rect); });
    connect(&m_document, &Document::CurrentLayerChanged, this, &OverviewPicture::StaleList);
    connect(&m_document, &Document::LayerMarksChanged, this, [this](const Layer* layer) {
        // Only one layer is shown, or all checked ones.
        if (!layer) {
            StaleList();
        }
    });
    connect(&m_document, &Document::ZonesChanged, this, &OverviewPicture::StaleZones);
    connect(&m_document, &Document::TerritoryChanged, this, &OverviewPicture::StaleZones);
    connect(&m_document, &Document::TypeChanged, this, &OverviewPicture::StaleZones);
    connect(&m_document, &Document::SoloTerritoryChanged, this, &OverviewPicture::StaleZones);
    connect(&m_document, &Document::HistoryBegan, this, &OverviewPicture::BeginAnew);
    const RowModel* layers = m_document.Layers().model();
    connect(layers, &QAbstractItemModel::rowsInserted, this, &OverviewPicture::StaleList);
    connect(layers, &QAbstractItemModel::rowsRemoved, this, &OverviewPicture::StaleList);
    // Territories and types that come, go, or are shown and hidden.
    const QAbstractItemModel* types = m_document.Types().model();
    connect(types, &QAbstractItemModel::rowsInserted, this, &OverviewPicture::StaleZones);
    connect(types, &QAbstractItemModel::rowsRemoved, this, &OverviewPicture::StaleZones);
    connect(types, &QAbstractItemModel::dataChanged, this, &OverviewPicture::StaleZones);
    connect(&m_scene, &QGraphicsScene::sceneRectChanged, this, &OverviewPicture::BeginAnew);
    m_scene.SetWorldChanged([this] { StaleWorld(); });
}

void OverviewPicture::BeginAnew()
{
    m_isSizeStale = true;
    m_timer.start();
}

QRect OverviewPicture::SmallRect(const QRect& rect) const
{
    // A pixel more on each side covers all ways of rounding.
    return m_toSmall.mapRect(QRectF(rect)).toAlignedRect().adjusted(-1, -1, 1, 1) &
           m_picture.rect();
}

void OverviewPicture::Stale(const Layer& layer, const QRect& rect)
{
    const auto small = m_masks.find(layer.Id());
    if (small != m_masks.end() && !rect.isEmpty()) {
        small->stale |= SmallRect(rect);
        m_timer.start();
    }
}

void OverviewPicture::StaleList()
{
    m_isListStale = true;
    m_timer.start();
}

void OverviewPicture::StaleWorld()
{
    m_isWorldStale = true;
    m_timer.start();
}

void OverviewPicture::StaleZones()
{
    m_areZonesStale = true;
    m_timer.start();
}

void OverviewPicture::Work()
{
    QElapsedTimer time;
    time.start();
    if (std::exchange(m_isSizeStale, false)) {
        SetSize();
    }
    if (m_picture.isNull()) {
        m_timer.stop();
        return;
    }
    while (ListLayers() || DrawWorld() || DrawZones() || SampleBand() || ComposeBand()) {
        if (time.elapsed() >= SliceMilliseconds) {
            return;
        }
    }
    m_timer.stop();
}

void OverviewPicture::SetSize()
{
    const QSize map = m_scene.sceneRect().size().toSize();
    const QSize size = SmallSize(map);
    m_masks.clear();
    m_shown.clear();
    m_sampler.reset();
    m_picture = QImage(size, QImage::Format_ARGB32_Premultiplied);
    if (!m_picture.isNull()) {
        m_picture.fill(Qt::transparent);
        m_toSmall = QTransform::fromScale(static_cast<qreal>(size.width()) / map.width(),
                                          static_cast<qreal>(size.height()) / map.height());
        m_sampler.emplace(m_toSmall, map, m_picture.rect());
    }
    m_world = m_picture;
    m_zones = m_picture;
    m_stale = m_picture.rect();
    m_isListStale = true;
    m_isWorldStale = true;
    m_areZonesStale = true;
}

bool OverviewPicture::ListLayers()
{
    if (!std::exchange(m_isListStale, false)) {
        return false;
    }
    std::vector<ShownLayer> shown;
    const auto add = [&shown](const Layer& layer) {
        shown.push_back({layer.Id(), qPremultiply(layer.Color().rgba())});
    };
    // The map shows the current layer on top of the others, also one that is hidden.
    const Layer* current = m_document.CurrentLayer();
    if (current) {
        add(*current);
    }
    const QVector<Layer*> layers = m_document.Layers().Layers();
    QHash<int, SmallMask> masks;
    for (const Layer* layer : layers) {
        const auto known = m_masks.find(layer->Id());
        if (known != m_masks.end()) {
            masks.insert(layer->Id(), *known);
        }
        if (layer != current && m_document.IsShown(*layer)) {
            add(*layer);
        }
    }
    m_masks = std::move(masks);
    for (const ShownLayer& layer : shown) {
        if (!m_masks.contains(layer.id)) {
            m_masks.insert(layer.id, {raster::BlankMask(m_picture.size()), m_picture.rect()});
        }
    }
    if (shown != m_shown) {
        m_shown = std::move(shown);
        m_stale = m_picture.rect();
    }
    return true;
}

bool OverviewPicture::DrawWorld()
{
    if (!std::exchange(m_isWorldStale, false)) {
        return false;
    }
    m_world.fill(Qt::transparent);
    QPainter painter(&m_world);
    painter.setTransform(m_toSmall);
    m_scene.PaintWorld(painter);
    m_stale = m_picture.rect();
    return true;
}

bool OverviewPicture::DrawZones()
{
    if (!std::exchange(m_areZonesStale, false)) {
        return false;
    }
    m_zones.fill(Qt::transparent);
    QPainter painter(&m_zones);
    const QVector<TerritoryType*> types = m_document.Types().Types();
    for (const TerritoryType* type : types) {
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            for (const Zone* zone : territory->Zones()) {
                const QPoint center = m_toSmall.map(zone->pos()).toPoint();
                if (zone->isVisible() && zone->opacity() > 0) {
                    painter.fillRect(QRect(center, QSize(1, 1))
                                         .adjusted(-DotReach, -DotReach, DotReach, DotReach),
                                     QColor(zone->Color().rgb()));
                }
            }
        }
    }
    m_stale = m_picture.rect();
    return true;
}

bool OverviewPicture::SampleBand()
{
    for (const ShownLayer& shown : m_shown) {
        SmallMask& small = m_masks[shown.id];
        const Layer* layer = m_document.Layers().LayerById(shown.id);
        if (layer && !small.stale.isEmpty()) {
            const QRect band = TakeBand(small.stale);
            m_sampler->SampleInto(small.mask, layer->Image(), band);
            m_stale |= band;
            return true;
        }
    }
    return false;
}

bool OverviewPicture::ComposeBand()
{
    if (m_stale.isEmpty()) {
        return false;
    }
    Compose(TakeBand(m_stale));
    return true;
}

void OverviewPicture::Compose(const QRect& part)
{
    QImage layers(part.size(), QImage::Format_ARGB32_Premultiplied);
    layers.fill(Qt::transparent);
    const MaskSampler sampler({}, m_picture.size(), part);
    for (const ShownLayer& shown : m_shown) {
        sampler.DrawBeneath(layers, m_masks.value(shown.id).mask, shown.color);
    }
    QPainter painter(&m_picture);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(part.topLeft(), m_world, part);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.drawImage(part.topLeft(), layers);
    painter.drawImage(part.topLeft(), m_zones, part);
    painter.end();
    emit Changed(part);
}
