#pragma once

#include "document/Edit.h"

#include <memory>
#include <utility>

class Document;
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

/// Where it is on the map, in scene units. Empty for a layer, which is everywhere.
QRectF AreaOf(const Layer& layer);
QRectF AreaOf(const TerritoryType& type);
QRectF AreaOf(const Territory& territory);

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
    void Do(Document& document) override { SetPresent(document, m_doesAdd); }
    void Undo(Document& document) override { SetPresent(document, !m_doesAdd); }

private:
    void SetPresent(Document& document, bool isPresent)
    {
        if (isPresent) {
            PutIn(document, std::move(m_kept), m_row, m_parent);
        } else {
            m_kept = TakeOut(document, *m_item);
        }
    }

    Item* m_item;
    std::unique_ptr<Item> m_kept;
    int m_row;
    TerritoryType* m_parent;
    bool m_doesAdd;
};
