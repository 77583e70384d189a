#include "territories/TerritoryTypeList.h"

#include "app/ProjectSettings.h"
#include "app/Xml.h"
#include "territories/Territory.h"
#include "territories/TerritoryRecords.h"
#include "territories/TerritoryType.h"

#include <QXmlStreamReader>

#include <algorithm>
#include <memory>
#include <utility>

TerritoryTypeList::TerritoryTypeList(QObject* parent)
    : QObject(parent)
    , m_model(new RowModel)
{
    connect(m_model, &QStandardItemModel::rowsInserted, this, &TerritoryTypeList::TotalsChanged);
    connect(m_model, &QStandardItemModel::rowsRemoved, this, &TerritoryTypeList::TotalsChanged);
}

TerritoryTypeList::~TerritoryTypeList()
{
    // The object that shows the totals may be in destruction too.
    m_totalsCallback = nullptr;
    Clear();
    m_model->deleteLater();
}

QVector<TerritoryType*> TerritoryTypeList::Types() const
{
    QVector<TerritoryType*> types;
    types.reserve(m_model->rowCount());
    for (int row = 0; row < m_model->rowCount(); ++row) {
        if (auto* type = dynamic_cast<TerritoryType*>(m_model->item(row))) {
            types.append(type);
        }
    }
    std::sort(types.begin(), types.end(),
              [](const TerritoryType* a, const TerritoryType* b) { return a->Id() < b->Id(); });
    return types;
}

bool TerritoryTypeList::AddType(TerritoryType* type)
{
    return Insert(m_model->rowCount(), type);
}

bool TerritoryTypeList::InsertType(int row, std::unique_ptr<TerritoryType> type)
{
    const bool isAdded = Insert(row, type.get());
    if (isAdded) {
        Q_UNUSED(type.release())
    }
    return isAdded;
}

bool TerritoryTypeList::Insert(int row, TerritoryType* type)
{
    if (!type || type->parent() || (type->model() && type->model() != m_model)) {
        return false;
    }
    if (!type->model()) {
        type->m_list = this;
        m_model->insertRow(qBound(0, row, m_model->rowCount()), type);
    }
    return true;
}

std::unique_ptr<TerritoryType> TerritoryTypeList::TakeType(TerritoryType& type)
{
    if (type.model() != m_model) {
        return nullptr;
    }
    m_model->takeRow(type.row());
    return std::unique_ptr<TerritoryType>(&type);
}

void TerritoryTypeList::Clear()
{
    m_model->removeRows(0, m_model->rowCount());
    m_model->clear();
}

void TerritoryTypeList::UpdateVisibility()
{
    const QVector<TerritoryType*> types = Types();
    for (TerritoryType* type : types) {
        type->UpdateVisibility();
    }
}

void TerritoryTypeList::SetTotalsCallback(std::function<void()> callback)
{
    m_totalsCallback = std::move(callback);
}

void TerritoryTypeList::TotalsChanged() const
{
    if (m_totalsCallback) {
        m_totalsCallback();
    }
}

namespace {

/// Reads the "territory" element that the reader is on, with its zones.
std::unique_ptr<Territory> ReadTerritory(QXmlStreamReader& xml, QGraphicsScene* scene)
{
    const QString name = TextAttribute(xml, QLatin1String("name"));
    const QRgb color = UIntAttribute(xml, QLatin1String("color"), 0);
    const bool isVisible = IntAttribute(xml, QLatin1String("visible"), 0) > 0;
    auto territory = std::make_unique<Territory>(name);
    territory->Read(xml, scene);
    territory->SetRgba(color);
    territory->SetZonesEditable(false);
    territory->SetVisible(isVisible);
    territory->setCheckState(isVisible ? Qt::Checked : Qt::Unchecked);
    return territory;
}

} // namespace

bool TerritoryTypeList::Read(QXmlStreamReader& xml, QGraphicsScene* scene)
{
    std::unique_ptr<TerritoryType> open;
    const XmlHandlers handlers = {
        {QLatin1String("territory-type"),
         [&open](QXmlStreamReader& element) {
             if (!open) {
                 open =
                     std::make_unique<TerritoryType>(TextAttribute(element, QLatin1String("name")));
             }
             return true;
         },
         [this, &open] {
             if (AddType(open.get())) {
                 Q_UNUSED(open.release())
             }
         }},
        {QLatin1String("territory"),
         [&open, scene](QXmlStreamReader& element) {
             if (open) {
                 open->AddTerritory(ReadTerritory(element, scene).release());
             } else {
                 element.skipCurrentElement();
             }
             return true;
         }},
    };
    WalkXml(xml, handlers, QLatin1String("territory-type-list"));
    return !xml.hasError();
}

std::vector<TypeRecord> TerritoryTypeList::Records() const
{
    const QVector<TerritoryType*> types = Types();
    std::vector<TypeRecord> records;
    records.reserve(static_cast<std::size_t>(types.size()));
    for (const TerritoryType* type : types) {
        records.push_back(type->Record());
    }
    return records;
}

void TerritoryTypeList::Write(QXmlStreamWriter& xml) const
{
    ::Write(xml, Records(), WorldScale(ProjectSettings::Instance()));
}

bool TerritoryTypeList::ExportAll() const
{
    const QVector<TerritoryType*> types = Types();
    return std::all_of(types.begin(), types.end(),
                       [](const TerritoryType* type) { return type->Export(); });
}

bool TerritoryTypeList::ExportChecked() const
{
    const QVector<TerritoryType*> types = Types();
    return std::all_of(types.begin(), types.end(), [](const TerritoryType* type) {
        return type->checkState() != Qt::Checked || type->Export();
    });
}
