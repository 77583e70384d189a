#include "territories/TerritoryType.h"

#include "app/Ids.h"
#include "app/Log.h"
#include "app/Names.h"
#include "app/OutputFile.h"
#include "app/ProjectSettings.h"
#include "territories/Territory.h"
#include "territories/TerritoryRecords.h"
#include "territories/TerritoryTypeList.h"

#include <QDir>
#include <QXmlStreamWriter>

#include <algorithm>
#include <memory>

TerritoryType::TerritoryType()
    : TerritoryType(QString())
{
    setText(QStringLiteral("Territory type %1").arg(m_id));
}

TerritoryType::TerritoryType(const QString& name)
    : QStandardItem(name)
    , m_id(NextId<TerritoryType>())
{
    setCheckable(true);
    setEditable(true);
    QStandardItem::setData(m_id, Qt::UserRole);
}

TerritoryType::~TerritoryType()
{
    // Here, because the territories use this object as their type while they are destroyed.
    removeRows(0, rowCount());
}

QVector<Territory*> TerritoryType::Territories() const
{
    QVector<Territory*> territories;
    territories.reserve(rowCount());
    for (int row = 0; row < rowCount(); ++row) {
        if (auto* territory = dynamic_cast<Territory*>(child(row))) {
            territories.append(territory);
        }
    }
    std::sort(territories.begin(), territories.end(),
              [](const Territory* a, const Territory* b) { return a->Id() < b->Id(); });
    return territories;
}

SpawnCounts TerritoryType::Totals() const
{
    SpawnCounts totals;
    const QVector<Territory*> territories = Territories();
    for (const Territory* territory : territories) {
        totals += territory->Totals();
    }
    return totals;
}

void TerritoryType::TotalsChanged() const
{
    if (m_list && model() == m_list->model()) {
        m_list->TotalsChanged();
    }
}

Territory* TerritoryType::NewTerritory()
{
    auto* territory = new Territory;
    appendRow(territory);
    return territory;
}

void TerritoryType::AddTerritory(Territory* territory)
{
    if (territory && !territory->parent() && !territory->model()) {
        appendRow(territory);
    }
}

void TerritoryType::InsertTerritory(int row, std::unique_ptr<Territory> territory)
{
    if (territory && !territory->parent() && !territory->model()) {
        insertRow(qBound(0, row, rowCount()), territory.release());
    }
}

std::unique_ptr<Territory> TerritoryType::TakeTerritory(Territory& territory)
{
    if (territory.GetType() != this) {
        return nullptr;
    }
    takeRow(territory.row());
    return std::unique_ptr<Territory>(&territory);
}

Territory* TerritoryType::GetTerritory(int id) const
{
    const QVector<Territory*> territories = Territories();
    for (Territory* territory : territories) {
        if (territory->Id() == id) {
            return territory;
        }
    }
    return nullptr;
}

void TerritoryType::RemoveTerritory(int id)
{
    if (const Territory* territory = GetTerritory(id)) {
        removeRow(territory->row());
    }
}

void TerritoryType::SetVisible(bool isVisible, const Territory* alwaysShown)
{
    const QVector<Territory*> territories = Territories();
    for (Territory* territory : territories) {
        territory->SetVisible(isVisible || territory == alwaysShown);
        territory->setCheckState(isVisible ? Qt::Checked : Qt::Unchecked);
    }
}

void TerritoryType::UpdateVisibility()
{
    const QVector<Territory*> territories = Territories();
    for (Territory* territory : territories) {
        territory->SetVisible(territory->checkState() == Qt::Checked);
    }
}

void TerritoryType::setData(const QVariant& value, int role)
{
    if (role != Qt::EditRole) {
        QStandardItem::setData(value, role);
        return;
    }
    const QString name = value.toString();
    if (IsRename(text(), name)) {
        setText(name);
    }
}

TypeRecord TerritoryType::Record() const
{
    TypeRecord record{text(), {}};
    const QVector<Territory*> territories = Territories();
    record.territories.reserve(static_cast<std::size_t>(territories.size()));
    for (const Territory* territory : territories) {
        record.territories.push_back(territory->Record());
    }
    return record;
}

void TerritoryType::Write(QXmlStreamWriter& xml) const
{
    ::Write(xml, Record(), WorldScale(ProjectSettings::Instance()));
}

QByteArray TerritoryType::ToGameFile() const
{
    QByteArray document;
    QXmlStreamWriter xml(&document);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("territory-type"));
    const QVector<Territory*> territories = Territories();
    for (const Territory* territory : territories) {
        territory->Write(xml, true);
    }
    xml.writeEndElement();
    xml.writeEndDocument();
    return document;
}

bool TerritoryType::Export() const
{
    const QString name = text();
    if (name.contains(QLatin1Char('/')) || name.contains(QDir::separator())) {
        LogError(
            QStringLiteral("Territory type '%1' cannot be exported under this name.").arg(name));
        return false;
    }
    OutputFile file(ProjectSettings::Instance().TerritoryTypePath(name));
    return file.Open() && file.Write(ToGameFile()) && file.Commit();
}
