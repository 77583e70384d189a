#pragma once

#include "app/Tracked.h"
#include "territories/SpawnCounts.h"

#include <QPointer>
#include <QStandardItem>
#include <QVector>

class QXmlStreamWriter;
class Territory;
class TerritoryTypeList;

/// A named group of territories; a top-level row of the territory tree. It owns its territories,
/// which are its child rows. Its name becomes the name of its export file.
class TerritoryType : public QStandardItem
{
public:
    /// Named "Territory type ID".
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
    /// Tells the list that they may have changed.
    void TotalsChanged() const;

    Territory* NewTerritory();
    /// Takes the territory over, as the last row; nothing for null and for a territory that another
    /// item or a model owns, or this type already.
    void AddTerritory(Territory* territory);
    /// Null when there is none.
    Territory* GetTerritory(int id) const;
    /// Destroys the territory and its zones; an unknown id does nothing.
    void RemoveTerritory(int id);

    /// Shows or hides all territories, and checks or unchecks them to match. One of them may be
    /// named that is shown in any case.
    void SetVisible(bool isVisible, const Territory* alwaysShown = nullptr);
    /// Shows exactly the territories that are checked.
    void UpdateVisibility();

    /// A rename that is no valid name is silently dropped.
    void setData(const QVariant& value, int role = Qt::UserRole + 1) override;

    void Write(QXmlStreamWriter& xml) const;
    /// The type's file for the game, with all territories, shown or not.
    QByteArray ToGameFile() const;
    /// Writes the type's file for the game into the project's "territoryTypes" folder, shown or
    /// not. False when that fails; a name that would lead out of the folder is refused with an
    /// error.
    bool Export() const;

private:
    friend class TerritoryTypeList;

    Lifetime m_lifetime;
    int m_id;
    QPointer<TerritoryTypeList> m_list;
};
