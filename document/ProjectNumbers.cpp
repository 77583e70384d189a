#include "document/ProjectNumbers.h"

#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "layers/raster/FieldLayout.h"
#include "layers/raster/MaskDelta.h"
#include "layers/raster/MaskTile.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"

#include <algorithm>
#include <vector>

namespace {

constexpr qint64 SliceNanoseconds = 1'500'000;
/// Between two signals during a long count.
constexpr int ShowMilliseconds = 250;
constexpr int NoId = -1;

} // namespace

ProjectNumbers::ProjectNumbers(Document& document)
    : m_document(document)
{
    connect(&m_timer, &QTimer::timeout, this, &ProjectNumbers::Work);
    m_layers.SetCountsFlags(false);
}

void ProjectNumbers::Want(const QObject& user, Wanted wanted)
{
    if (!m_users.contains(&user)) {
        connect(&user, &QObject::destroyed, this, [this, gone = &user] {
            m_users.remove(gone);
            Follow(m_users.isEmpty() ? Wanted::Nothing
                                     : *std::max_element(m_users.cbegin(), m_users.cend()));
        });
    }
    m_users.insert(&user, wanted);
    Follow(*std::max_element(m_users.cbegin(), m_users.cend()));
}

void ProjectNumbers::Follow(Wanted wanted)
{
    if (wanted == m_wanted) {
        return;
    }
    const bool wasFollowing = m_wanted != Wanted::Nothing;
    m_wanted = wanted;
    if (wanted == Wanted::Nothing) {
        m_document.disconnect(this);
        m_document.Layers().model()->disconnect(this);
        m_document.Types().model()->disconnect(this);
        m_timer.stop();
        m_isStale = false;
        m_layers.Clear();
        m_zones.clear();
        return;
    }
    if (!wasFollowing) {
        ConnectDocument();
        ConnectZones();
    }
    m_layers.SetCountsFlags(wanted == Wanted::All);
    if (wanted != Wanted::All) {
        m_layers.SetOverlap(NoId, NoId);
        m_zones.clear();
    }
    m_areZonesStale = true;
    StaleList();
}

void ProjectNumbers::ConnectDocument()
{
    connect(&m_document, &Document::LayerChanged, this,
            [this](const Layer* layer, Document::LayerAspect aspect, const QRect& rect) {
                FollowLayer(*layer, static_cast<int>(aspect), rect);
            });
    connect(&m_document, &Document::Painted, this, [this](const Layer* layer, const QRect& rect) {
        m_layers.Touch(layer->Id(), rect);
        Wake();
    });
    connect(&m_document, &Document::FlagTypesChanged, this, &ProjectNumbers::StaleList);
    connect(&m_document, &Document::AboutToClear, this, &ProjectNumbers::Forget);
    connect(&m_document, &Document::HistoryBegan, this, &ProjectNumbers::Forget);
    // A stroke, a load or a save has ended.
    connect(&m_document, &Document::HistoryChanged, this, [this] {
        if (m_isStale) {
            Wake();
        }
    });
    const RowModel* layers = m_document.Layers().model();
    connect(layers, &QAbstractItemModel::rowsInserted, this, &ProjectNumbers::StaleList);
    connect(layers, &QAbstractItemModel::rowsRemoved, this, &ProjectNumbers::StaleList);
}

void ProjectNumbers::ConnectZones()
{
    connect(&m_document, &Document::ZonesChanged, this, &ProjectNumbers::StaleZones);
    connect(&m_document, &Document::TerritoryChanged, this, &ProjectNumbers::StaleZones);
    const auto stale = [this] { StaleZones(nullptr); };
    connect(&m_document, &Document::TypeChanged, this, stale);
    const QAbstractItemModel* types = m_document.Types().model();
    connect(types, &QAbstractItemModel::rowsInserted, this, stale);
    connect(types, &QAbstractItemModel::rowsRemoved, this, stale);
}

void ProjectNumbers::Forget()
{
    m_layers.Clear();
    m_zones.clear();
    m_areZonesStale = true;
    StaleList();
}

void ProjectNumbers::Wake()
{
    m_isStale = true;
    // Otherwise HistoryChanged tells when the hand rests.
    if (!m_document.IsBusy() && !m_timer.isActive()) {
        m_timer.start();
    }
}

void ProjectNumbers::FollowLayer(const Layer& layer, int aspect, const QRect& rect)
{
    switch (static_cast<Document::LayerAspect>(aspect)) {
    case Document::LayerAspect::Pixels:
        break;
    case Document::LayerAspect::Rows:
    case Document::LayerAspect::Flags:
    case Document::LayerAspect::Name:
        StaleList();
        return;
    default:
        return;
    }
    if (const raster::MaskDelta* changed = m_document.ChangedTiles()) {
        const QSize size = ProjectSettings::Instance().LayerSize();
        changed->ForEachTile([this, &layer, size](int tile) {
            m_layers.Touch(layer.Id(), raster::TileRect(size, tile));
        });
    } else if (rect.isEmpty()) {
        m_layers.TouchAll(layer.Id());
    } else {
        m_layers.Touch(layer.Id(), rect);
    }
    Wake();
}

void ProjectNumbers::StaleList()
{
    m_isListStale = true;
    Wake();
}

/// Null: territories came or went.
void ProjectNumbers::StaleZones(const Territory* territory)
{
    if (territory) {
        m_zones.remove(territory->Id());
    }
    m_areZonesStale = true;
    Wake();
}

void ProjectNumbers::SetOverlap(const Layer* first, const Layer* second)
{
    const bool areBoth = first && second;
    if (m_layers.SetOverlap(areBoth ? first->Id() : NoId, areBoth ? second->Id() : NoId)) {
        Wake();
    }
}

std::optional<ZoneNumbers> ProjectNumbers::Zones(const Territory& territory) const
{
    const auto found = m_zones.constFind(territory.Id());
    return found == m_zones.cend() ? std::nullopt : std::optional<ZoneNumbers>(*found);
}

void ProjectNumbers::Work()
{
    if (m_document.IsBusy()) {
        m_timer.stop();
        return;
    }
    if (m_document.IsApplying()) {
        return;
    }
    QElapsedTimer clock;
    clock.start();
    // Each slice does a bit, however busy the machine is.
    const std::function<bool()> isTimeUp = [&clock, parts = 0]() mutable {
        return ++parts > 1 && clock.nsecsElapsed() > SliceNanoseconds;
    };
    if (m_isListStale) {
        ListLayers();
    }
    if (CountPixels(isTimeUp) && CountZones(isTimeUp)) {
        m_timer.stop();
        m_isStale = false;
        m_sinceChanged.invalidate();
        emit Changed();
    } else if (!m_sinceChanged.isValid()) {
        m_sinceChanged.start();
    } else if (m_sinceChanged.hasExpired(ShowMilliseconds)) {
        m_sinceChanged.restart();
        emit Changed();
    }
}

void ProjectNumbers::ListLayers()
{
    m_isListStale = false;
    const ProjectSettings& settings = ProjectSettings::Instance();
    std::vector<CountedLayer> listed;
    const QVector<Layer*> layers = m_document.Layers().Layers();
    listed.reserve(static_cast<std::size_t>(layers.size()));
    for (const Layer* layer : layers) {
        listed.push_back({layer->Id(), layer->UsageFlags(), layer->ValueFlags()});
    }
    m_layers.SetLayers(settings.LayerSize(), raster::FieldBits(settings.FlagTypes().usages.size()),
                       raster::FieldBits(settings.FlagTypes().values.size()), listed);
}

bool ProjectNumbers::CountPixels(const std::function<bool()>& isTimeUp)
{
    QHash<int, const Layer*> layers;
    const QVector<Layer*> all = m_document.Layers().Layers();
    for (const Layer* layer : all) {
        layers.insert(layer->Id(), layer);
    }
    // A mask is read where it is: one that is shared could not be painted in place.
    const auto maskOf = [&layers](int id) {
        const Layer* layer = layers.value(id);
        return layer ? &layer->Image() : nullptr;
    };
    return m_layers.Count(maskOf, isTimeUp);
}

bool ProjectNumbers::CountZones(const std::function<bool()>& isTimeUp)
{
    if (m_wanted != Wanted::All || !m_areZonesStale) {
        return true;
    }
    const QVector<TerritoryType*> types = m_document.Types().Types();
    for (const TerritoryType* type : types) {
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            if (m_zones.contains(territory->Id())) {
                continue;
            }
            if (isTimeUp()) {
                return false;
            }
            ZoneNumbers numbers;
            for (const Zone* zone : territory->Zones()) {
                numbers.Add(zone->Values());
            }
            m_zones.insert(territory->Id(), numbers);
        }
    }
    m_areZonesStale = false;
    return true;
}
