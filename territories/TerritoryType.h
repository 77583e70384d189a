#pragma once

#include "territories/SpawnCounts.h"

#include <QStandardItem>
#include <QVector>

#include <functional>

class QXmlStreamWriter;
class Territory;

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

    /// Unique in the process and never reused; also the item data under Qt::UserRole.
    int Id() const { return m_id; }
    /// By ascending id.
    QVector<Territory*> Territories() const;
    /// The sums over the territories.
    SpawnCounts Totals() const;
    /// Called when zones came, went or changed their counts. It may come in the middle of a change:
    /// the callback only notes it.
    void SetTotalsListener(const std::function<void()>& listener) { m_totalsListener = listener; }
    void TotalsChanged() const;

    Territory* NewTerritory();
    /// Takes the territory over, as the last row; nothing for null and for a territory that another
    /// item or a model owns, or this type already.
    void AddTerritory(Territory* territory);
    /// Null when there is none.
    Territory* GetTerritory(int id) const;
    /// Destroys the territory and its zones; an unknown id does nothing.
    void RemoveTerritory(int id);

    /// Shows or hides all territories, and checks or unchecks them to match.
    void SetVisible(bool isVisible);
    /// Shows exactly the territories that are checked.
    void UpdateVisibility();

    /// A rename that is no valid name is silently dropped.
    void setData(const QVariant& value, int role = Qt::UserRole + 1) override;

    void Write(QXmlStreamWriter& xml) const;
    /// Writes the type's file for the game into the project's "territoryTypes" folder, shown or
    /// not. False when that fails; a name that would lead out of the folder is refused with an
    /// error.
    bool Export() const;

private:
    int m_id;
    std::function<void()> m_totalsListener;
};
