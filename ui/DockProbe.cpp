#include "ui/DockProbe.h"

#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "ui/NameList.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>

#include <cmath>
#include <utility>

namespace {

constexpr int NoId = -1;
/// The tree cuts off what does not fit.
constexpr int LongestName = 200;

enum DataRole
{
    LayerIdRole = Qt::UserRole,
    ZoneIdRole,
    SwatchRole,
};

QIcon Swatch(const QColor& color)
{
    constexpr int side = 12;
    QPixmap pixmap(side, side);
    pixmap.fill(QColor(color.rgb()));
    return QIcon(pixmap);
}

/// Metres with at most one decimal.
QString Metres(double metres)
{
    return QString::number(std::round(10 * metres) / 10);
}

QString PlaceText(const MapPlace& place)
{
    const QString metres = DockProbe::tr("X %1, Z %2").arg(Metres(place.x), Metres(place.z));
    return place.pixel ? DockProbe::tr("%1 (pixel %2, %3)")
                             .arg(metres)
                             .arg(place.pixel->x())
                             .arg(place.pixel->y())
                       : DockProbe::tr("%1: outside of the world").arg(metres);
}

int Depth(const QTreeWidgetItem* item)
{
    int depth = 0;
    while ((item = item->parent())) {
        ++depth;
    }
    return depth;
}

quint32 UsageFlagsOf(const Layer& layer)
{
    return layer.UsageFlags();
}

quint32 ValueFlagsOf(const Layer& layer)
{
    return layer.ValueFlags();
}

} // namespace

DockProbe::DockProbe(Document& document, Callbacks callbacks, QWidget* parent)
    : QDockWidget(tr("What is here"), parent)
    , m_document(document)
    , m_probe(document)
    , m_callbacks(std::move(callbacks))
    , m_hold(new QAction(tr("Hold"), this))
{
    setObjectName(QStringLiteral("DockProbe"));
    m_hold->setObjectName(QStringLiteral("actionProbeHold"));
    m_hold->setCheckable(true);
    m_hold->setShortcut(Qt::Key_H);
    m_hold->setToolTip(tr("Hold the place while the mouse goes elsewhere (H)"));
    m_hold->setEnabled(false);
    connect(this, &QDockWidget::visibilityChanged, this, &DockProbe::SetSeen);
    connect(&document, &Document::AboutToClear, this, &DockProbe::ForgetPlace);
    connect(m_hold, &QAction::toggled, this, &DockProbe::SetHeld);

    setWidget(MakeContents());
    m_refresh.setSingleShot(true);
    connect(&m_refresh, &QTimer::timeout, this, &DockProbe::Refresh);
    connect(&m_probe, &ProjectProbe::Changed, this, [this](const QRect& rect) {
        const QPoint pixel =
            m_place ? QPoint(int(std::floor(m_place->x())), int(std::floor(m_place->y())))
                    : QPoint();
        if (rect.isNull() || rect.contains(pixel)) {
            m_refresh.start();
        }
    });
    Refresh();
}

QWidget* DockProbe::MakeContents()
{
    m_placeLabel = new QLabel;
    m_placeLabel->setObjectName(QStringLiteral("lblProbePlace"));
    m_placeLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_placeLabel->setWordWrap(true);

    m_tree = new QTreeWidget;
    m_tree->setObjectName(QStringLiteral("treeProbe"));
    // A dock that is shown gets the least width.
    constexpr int widthOfZones = 220;
    m_tree->setMinimumWidth(widthOfZones);
    m_tree->setHeaderHidden(true);
    m_tree->setUniformRowHeights(true);
    m_tree->setItemsExpandable(false);
    m_tree->setRootIsDecorated(false);
    m_tree->setSelectionMode(QAbstractItemView::NoSelection);
    connect(m_tree, &QTreeWidget::itemClicked, this,
            [this](const QTreeWidgetItem* item) { Choose(*item); });

    auto* hold = new QToolButton;
    hold->setObjectName(QStringLiteral("btnProbeHold"));
    hold->setDefaultAction(m_hold);
    auto* copy = new QPushButton(tr("Copy as text"));
    copy->setObjectName(QStringLiteral("btnProbeCopy"));
    connect(copy, &QPushButton::clicked, this, &DockProbe::CopyText);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(hold);
    buttons->addWidget(copy);
    buttons->addStretch();

    auto* contents = new QWidget;
    auto* layout = new QVBoxLayout(contents);
    layout->addWidget(m_placeLabel);
    layout->addWidget(m_tree);
    layout->addLayout(buttons);
    return contents;
}

void DockProbe::SetSeen(bool isSeen)
{
    m_isSeen = isSeen;
    m_hold->setEnabled(isSeen);
    Refresh();
}

/// The place belongs to the project that is being closed.
void DockProbe::ForgetPlace()
{
    m_mouse.reset();
    m_place.reset();
    m_hold->setChecked(false);
    m_refresh.start();
}

void DockProbe::Follow(QPointF place)
{
    m_mouse = place;
    if (!m_hold->isChecked() || !m_place) {
        m_place = place;
        Refresh();
    }
}

void DockProbe::SetHeld(bool isHeld)
{
    if (!isHeld) {
        m_place = m_mouse;
        Refresh();
    }
}

void DockProbe::Refresh()
{
    m_refresh.stop();
    if (!m_isSeen) {
        return;
    }
    if (!m_place) {
        m_placeLabel->setText(tr("Move the mouse over the map."));
        ShowRows({});
        return;
    }
    const ProjectProbe::Found found = m_probe.Find(*m_place);
    m_placeLabel->setText(PlaceText(found.place));
    ShowRows(RowsOf(found));
}

DockProbe::Rows DockProbe::RowsOf(const ProjectProbe::Found& found) const
{
    Rows rows;
    if (found.place.pixel) {
        const AreaFlagTypes& types = ProjectSettings::Instance().FlagTypes();
        AddFlags(rows, tr("Usage"), types.usages, found.usage, UsageFlagsOf, found);
        AddFlags(rows, tr("Value"), types.values, found.value, ValueFlagsOf, found);
        const std::size_t title = rows.size();
        rows.emplace_back(0, tr("Layers without a flag in the map"));
        for (const ProjectProbe::FoundLayer& layer : found.layers) {
            const bool isInMap = (found.usage.value_or(0) & layer.layer->UsageFlags()) != 0 ||
                                 (found.value.value_or(0) & layer.layer->ValueFlags()) != 0;
            if (!isInMap) {
                AddLayer(rows, 1, layer);
            }
        }
        if (rows.size() == title + 1) {
            rows.pop_back();
        }
    }
    AddZones(rows, found);
    return rows;
}

void DockProbe::AddFlags(Rows& rows, const QString& title, const QVector<QString>& names,
                         const std::optional<quint32>& field, quint32 (*flagsOf)(const Layer&),
                         const ProjectProbe::Found& found) const
{
    if (!field) {
        rows.emplace_back(0, names.isEmpty()
                                 ? tr("%1: the project has no flags of this kind").arg(title)
                                 : tr("%1: the map holds nothing here").arg(title));
        return;
    }
    rows.emplace_back(0, tr("%1: %2").arg(title, QString::number(*field)));
    constexpr int bits = 32;
    for (int bit = 0; bit < bits; ++bit) {
        const quint32 flag = 1U << bit;
        if ((*field & flag) == 0) {
            continue;
        }
        rows.emplace_back(1, ShortText(AreaFlagTypes::BitName(bit, names), LongestName));
        for (const ProjectProbe::FoundLayer& layer : found.layers) {
            if ((flagsOf(*layer.layer) & flag) != 0) {
                AddLayer(rows, 2, layer);
            }
        }
    }
}

void DockProbe::AddLayer(Rows& rows, int depth, const ProjectProbe::FoundLayer& found) const
{
    constexpr int drawn = 255;
    Row row(depth, ShortText(found.layer->text(), LongestName));
    row.swatch = found.layer->Color();
    row.layerId = found.layer->Id();
    // The current one is drawn all the same.
    if (!found.layer->IsVisible() && found.layer != m_document.CurrentLayer()) {
        row.text = tr("%1 (hidden)").arg(row.text);
    }
    if (found.grey != drawn) {
        row.text = tr("%1 (grey %2, not drawn)").arg(row.text, QString::number(found.grey));
    }
    row.tip = tr("Click to edit the layer. It counts in the map whether it is shown or not.");
    rows.push_back(row);
}

void DockProbe::AddZones(Rows& rows, const ProjectProbe::Found& found) const
{
    if (found.zones.empty()) {
        return;
    }
    rows.emplace_back(0, tr("Zones"));
    for (const ProjectProbe::FoundZone& zone : found.zones) {
        const Territory* territory = zone.zone->Holder();
        const QString type = ShortText(territory->GetType()->text(), LongestName);
        const QString name = ShortText(territory->text(), LongestName);
        // Long names are cut off at the right.
        Row row(1, tr("Zone %1, %2 m: %3 / %4")
                       .arg(QString::number(zone.number), Metres(zone.distance), type, name));
        if (territory->checkState() != Qt::Checked && territory != m_document.CurrentTerritory()) {
            row.text = tr("%1 (hidden)").arg(row.text);
        }
        row.swatch = territory->Color();
        row.zoneId = zone.zone->Id();
        row.tip = tr("Zone %1 of %2 / %3, %4 m from its centre. Click to select it.")
                      .arg(QString::number(zone.number), type, name, Metres(zone.distance));
        rows.push_back(row);
    }
}

void DockProbe::ShowRows(const Rows& rows)
{
    // Rows of the same depths are changed where they are: the mouse moves often.
    QVector<QTreeWidgetItem*> items;
    bool isSameTree = true;
    for (QTreeWidgetItemIterator it(m_tree); *it; ++it) {
        const auto index = static_cast<std::size_t>(items.size());
        isSameTree = isSameTree && index < rows.size() && rows[index].depth == Depth(*it);
        items.append(*it);
    }
    if (!isSameTree || static_cast<std::size_t>(items.size()) != rows.size()) {
        m_tree->clear();
        items.clear();
        QVector<QTreeWidgetItem*> parents{m_tree->invisibleRootItem()};
        for (const Row& row : rows) {
            parents.resize(row.depth + 1);
            items.append(new QTreeWidgetItem(parents.constLast()));
            parents.append(items.constLast());
        }
        m_tree->expandAll();
    }
    for (int i = 0; i < items.size(); ++i) {
        QTreeWidgetItem& item = *items[i];
        const Row& row = rows[static_cast<std::size_t>(i)];
        if (item.text(0) != row.text) {
            item.setText(0, row.text);
        }
        if (item.data(0, SwatchRole).value<QColor>() != row.swatch) {
            item.setData(0, SwatchRole, row.swatch);
            item.setIcon(0, row.swatch.isValid() ? Swatch(row.swatch) : QIcon());
        }
        item.setToolTip(0, row.tip);
        item.setData(0, LayerIdRole, row.layerId);
        item.setData(0, ZoneIdRole, row.zoneId);
    }
}

void DockProbe::Choose(const QTreeWidgetItem& item)
{
    // The choice may change the tree.
    const int layerId = item.data(0, LayerIdRole).toInt();
    const int zoneId = item.data(0, ZoneIdRole).toInt();
    if (Layer* layer = layerId == NoId ? nullptr : m_document.Layers().LayerById(layerId)) {
        m_callbacks.layerChosen(*layer);
        return;
    }
    const QVector<TerritoryType*> types = m_document.Types().Types();
    for (const TerritoryType* type : types) {
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            if (Zone* zone = territory->Zones().value(zoneId)) {
                m_callbacks.zoneChosen(*zone);
                return;
            }
        }
    }
}

void DockProbe::CopyText() const
{
    QStringList lines{m_placeLabel->text()};
    for (QTreeWidgetItemIterator it(m_tree); *it; ++it) {
        lines.append(QString(2 * Depth(*it), QLatin1Char(' ')) + (*it)->text(0));
    }
    QApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}
