#pragma once

#include "app/Tracked.h"
#include "territories/SpawnCounts.h"

#include <QPointer>
#include <QStandardItem>
#include <QVector>

#include <memory>

class QXmlStreamWriter;
class Territory;
class TerritoryTypeList;
struct TypeRecord;

/// A named group of territories. It is a top-level row of the territory tree and owns its
/// territories, which are its child rows. Its name is also the name of its export file.
class TerritoryType : public QStandardItem
{
public:
    /// The name is "Territory type ID".
    TerritoryType();
    explicit TerritoryType(const QString& name);
    ~TerritoryType() override;
    Q_DISABLE_COPY(TerritoryType)

    const Lifetime& GetLifetime() const { return m_lifetime; }
    /// Unique in the process and never reused; also the item data under Qt::UserRole.
    int Id() const { return m_id; }
    /// By ascending id.
    QVector<Territory*> Territories() const;
    /// The sums over the territories.
    SpawnCounts Totals() const;
    /// Tells the list that the totals may have changed.
    void TotalsChanged() const;

    /// Appends a new territory.
    Territory* NewTerritory();
    /// Takes ownership of the territory, as the last row. Does nothing for null and for a territory
    /// that already belongs to an item or a model.
    void AddTerritory(Territory* territory);
    /// As AddTerritory, for another place than the end: the territory becomes that row, or the last
    /// one.
    void InsertTerritory(int row, std::unique_ptr<Territory> territory);
    /// Takes the territory out of the type with its zones; null when it is not in it.
    std::unique_ptr<Territory> TakeTerritory(Territory& territory);
    /// Null when there is none.
    Territory* GetTerritory(int id) const;
    /// Destroys the territory and its zones. An unknown id is ignored.
    void RemoveTerritory(int id);

    /// Shows or hides all territories, and checks or unchecks them accordingly. One territory may
    /// be given that is always shown.
    void SetVisible(bool isVisible, const Territory* alwaysShown = nullptr);
    /// Shows the checked territories and hides the others.
    void UpdateVisibility();

    /// A rename to an invalid name is ignored without a message.
    void setData(const QVariant& value, int role = Qt::UserRole + 1) override;

    /// What the project's document holds of the type and its territories.
    TypeRecord Record() const;
    void Write(QXmlStreamWriter& xml) const;
    /// Writes the content of the type's file for the game, with all territories, visible or not.
    QByteArray ToGameFile() const;
    /// Writes the type's file for the game into the project's "territoryTypes" folder. Returns
    /// false if that fails. A name that would lead out of the folder is refused with an error.
    bool Export() const;

private:
    friend class TerritoryTypeList;

    Lifetime m_lifetime;
    int m_id;
    QPointer<TerritoryTypeList> m_list;
};
