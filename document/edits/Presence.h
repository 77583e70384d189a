#pragma once

#include "document/Edit.h"
#include "layers/raster/MaskDelta.h"

#include <QSize>

#include <memory>
#include <utility>

class Document;
class HistoryMemory;
class Layer;
class Territory;
class TerritoryType;

/// Takes a row out of its list and announces it. It leaves the map too.
std::unique_ptr<Layer> TakeOut(Document& document, Layer& layer);
std::unique_ptr<TerritoryType> TakeOut(Document& document, TerritoryType& type);
std::unique_ptr<Territory> TakeOut(Document& document, Territory& territory);
/// Puts a row where it was, and what belongs to it on the map, and announces it. parent: the type
/// of a territory.
void PutIn(Document& document, std::unique_ptr<Layer> layer, int row, TerritoryType* parent);
void PutIn(Document& document, std::unique_ptr<TerritoryType> type, int row, TerritoryType* parent);
void PutIn(Document& document, std::unique_ptr<Territory> territory, int row,
           TerritoryType* parent);

/// The area of the item on the map, in scene units. Empty for a layer, which is everywhere.
QRectF AreaOf(const Layer& layer);
QRectF AreaOf(const TerritoryType& type);
QRectF AreaOf(const Territory& territory);

/// How an edit stores an item that is not in the project: unchanged.
template <typename Item>
class Storage
{
public:
    void Begin(Document& /*document*/, const Edit& /*edit*/) {}
    void Pack(Item& /*item*/) {}
    bool Unpack(Item& /*item*/) { return true; }
};

/// The mask of a layer is packed, and counts in the memory of the history.
template <>
class Storage<Layer>
{
public:
    Storage() = default;
    ~Storage();
    Q_DISABLE_COPY(Storage)

    /// Before the first change; the edit is newer than those before.
    void Begin(Document& document, const Edit& edit);
    /// Packs the mask. When there is no memory for that, the layer keeps it.
    void Pack(Layer& layer);
    /// Unpacks the mask. False when it cannot be read back or there is no memory; it stays packed.
    bool Unpack(Layer& layer);

private:
    QSize m_size;
    raster::MaskDelta m_mask;
    bool m_isPacked = false;
    HistoryMemory* m_memory = nullptr;
    int m_number = 0;
};

/// Adds or removes a layer, a territory type or a territory. What is not in the project is kept
/// here, so that whoever points to it still does when it comes back.
template <typename Item>
class Presence : public Edit
{
public:
    /// Adds the item as the row of its list; parent: the type of a territory.
    Presence(const QString& text, std::unique_ptr<Item> item, int row,
             TerritoryType* parent = nullptr)
        : Edit(text)
        , m_item(item.get())
        , m_kept(std::move(item))
        , m_row(row)
        , m_parent(parent)
        , m_doesAdd(true)
    {
    }

    /// Removes the item.
    Presence(const QString& text, Item& item, TerritoryType* parent = nullptr)
        : Edit(text)
        , m_item(&item)
        , m_row(item.row())
        , m_parent(parent)
        , m_doesAdd(false)
    {
    }

    EditPlace Place() const override
    {
        const QRectF area = AreaOf(*m_item);
        return m_kept ? EditPlace(m_parent, area) : EditPlace(m_item, area);
    }

protected:
    const Item& Added() const { return *m_item; }
    void Do(Document& document) override { SetPresent(document, m_doesAdd); }
    void Undo(Document& document) override { SetPresent(document, !m_doesAdd); }

private:
    void SetPresent(Document& document, bool isPresent)
    {
        m_storage.Begin(document, *this);
        if (!isPresent) {
            m_kept = TakeOut(document, *m_item);
            m_storage.Pack(*m_item);
        } else if (m_storage.Unpack(*m_item)) {
            PutIn(document, std::move(m_kept), m_row, m_parent);
        } else {
            Fail();
        }
    }

    Item* m_item;
    std::unique_ptr<Item> m_kept;
    Storage<Item> m_storage;
    int m_row;
    TerritoryType* m_parent;
    bool m_doesAdd;
};
