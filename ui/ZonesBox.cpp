#include "ui/ZonesBox.h"

#include "app/Log.h"
#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "document/edits/ZoneEdits.h"
#include "territories/BulkEntry.h"
#include "territories/rules/ZoneRules.h"
#include "ui/widgets/WheelFocus.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>

#include <algorithm>
#include <utility>

namespace {

constexpr int Columns = 2;

/// The fields from left to right and from top to bottom.
const struct NumberField
{
    ZoneColumn column;
    const char* name;
    const char* label;
    /// In tips, messages and the texts of steps.
    const char* title;
} NumberFields[] = {
    {ZoneColumn::X, "txtZonesX", QT_TRANSLATE_NOOP("ZonesBox", "X"),
     QT_TRANSLATE_NOOP("ZonesBox", "X")},
    {ZoneColumn::Z, "txtZonesZ", QT_TRANSLATE_NOOP("ZonesBox", "Z"),
     QT_TRANSLATE_NOOP("ZonesBox", "Z")},
    {ZoneColumn::Radius, "txtZonesRadius", QT_TRANSLATE_NOOP("ZonesBox", "Radius"),
     QT_TRANSLATE_NOOP("ZonesBox", "radius")},
    {ZoneColumn::Depth, "txtZonesDepth", QT_TRANSLATE_NOOP("ZonesBox", "Depth"),
     QT_TRANSLATE_NOOP("ZonesBox", "depth")},
    {ZoneColumn::StaticMin, "txtZonesStaticMin", QT_TRANSLATE_NOOP("ZonesBox", "Static"),
     QT_TRANSLATE_NOOP("ZonesBox", "static minimum")},
    {ZoneColumn::StaticMax, "txtZonesStaticMax", QT_TRANSLATE_NOOP("ZonesBox", "to"),
     QT_TRANSLATE_NOOP("ZonesBox", "static maximum")},
    {ZoneColumn::DynamicMin, "txtZonesDynamicMin", QT_TRANSLATE_NOOP("ZonesBox", "Dynamic"),
     QT_TRANSLATE_NOOP("ZonesBox", "dynamic minimum")},
    {ZoneColumn::DynamicMax, "txtZonesDynamicMax", QT_TRANSLATE_NOOP("ZonesBox", "to"),
     QT_TRANSLATE_NOOP("ZonesBox", "dynamic maximum")},
};

QString TitleOf(ZoneColumn column)
{
    const auto* field =
        std::find_if(std::begin(NumberFields), std::end(NumberFields),
                     [column](const NumberField& each) { return each.column == column; });
    return ZonesBox::tr(field->title);
}

QString TipOf(const NumberField& field)
{
    const bool isPlace = field.column == ZoneColumn::X || field.column == ZoneColumn::Z;
    const NumberRange range = RangeOf(field.column);
    const QString what = isPlace ? ZonesBox::tr("%1 in metres").arg(ZonesBox::tr(field.title))
                                 : ZonesBox::tr("%1, from %2 to %3")
                                       .arg(ZonesBox::tr(field.title), QString::number(range.least),
                                            QString::number(range.most));
    return ZonesBox::tr("<p>%1</p><p>500 sets, =-50 sets a negative number, +50 adds, -50 "
                        "subtracts, *1.1 multiplies.</p>")
        .arg(what);
}

/// What the function says of all rows; empty where they differ.
template <typename Say>
QString Common(const std::vector<ZoneRow>& rows, Say say)
{
    if (rows.empty()) {
        return {};
    }
    const QString text = say(rows.front());
    const bool isCommon = std::all_of(std::next(rows.begin()), rows.end(),
                                      [&](const ZoneRow& row) { return say(row) == text; });
    return isCommon ? text : QString();
}

} // namespace

ZonesBox::ZonesBox(QWidget* parent)
    : QGroupBox(parent)
{
    constexpr int spacing = 4;
    auto* grid = new QGridLayout(this);
    grid->setObjectName(QStringLiteral("ltZones"));
    grid->setSpacing(spacing);
    grid->setContentsMargins(spacing, spacing / 2, spacing, spacing);
    const int count = static_cast<int>(std::size(NumberFields));
    m_fields.reserve(std::size(NumberFields));
    for (int i = 0; i < count; ++i) {
        AddNumber(*grid, i);
    }
    AddUsage(*grid, count / Columns);
    AddEvent(*grid, count / Columns + 1);
    m_refresh.setSingleShot(true);
    m_refresh.setInterval(0);
    connect(&m_refresh, &QTimer::timeout, this, &ZonesBox::Refresh);
    Refresh();
}

void ZonesBox::AddNumber(QGridLayout& grid, int index)
{
    const NumberField& field = NumberFields[index];
    auto* line = new QLineEdit;
    line->setObjectName(QLatin1String(field.name));
    line->setToolTip(TipOf(field));
    line->setAccessibleName(tr("Selected zones, %1").arg(tr(field.title)));
    auto* label = new QLabel(tr(field.label));
    label->setBuddy(line);
    const int row = index / Columns;
    const int column = index % Columns * 2;
    grid.addWidget(label, row, column);
    grid.addWidget(line, row, column + 1);
    grid.setColumnStretch(column + 1, 1);
    m_fields.push_back({field.column, line, QString()});
    const std::size_t place = m_fields.size() - 1;
    connect(line, &QLineEdit::editingFinished, this, [this, place] { Commit(m_fields[place]); });
}

void ZonesBox::AddUsage(QGridLayout& grid, int row)
{
    constexpr int letters = 6;
    m_usage = new QComboBox;
    m_usage->setObjectName(QStringLiteral("cboZonesUsage"));
    m_usage->addItems(
        {tr("Rest"), tr("Graze"), tr("Water"), tr("HuntingGround"), tr("Dynamic event")});
    m_usage->setToolTip(tr("What creatures do in all selected zones"));
    m_usage->setAccessibleName(tr("Selected zones, usage"));
    // The dock is as wide as its other boxes need.
    m_usage->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_usage->setMinimumContentsLength(letters);
    TakeWheelOnlyWithFocus(m_usage);
    auto* label = new QLabel(tr("Usage"));
    label->setBuddy(m_usage);
    grid.addWidget(label, row, 0);
    grid.addWidget(m_usage, row, 1, 1, 2 * Columns - 1);
    connect(m_usage, qOverload<int>(&QComboBox::currentIndexChanged), this, &ZonesBox::CommitUsage);
}

void ZonesBox::AddEvent(QGridLayout& grid, int row)
{
    m_event = new QLineEdit;
    m_event->setObjectName(QStringLiteral("txtZonesEvent"));
    m_event->setToolTip(tr("The name of an event makes all selected zones places of this event"));
    m_event->setAccessibleName(tr("Selected zones, event name"));
    auto* label = new QLabel(tr("Event"));
    label->setBuddy(m_event);
    grid.addWidget(label, row, 0);
    grid.addWidget(m_event, row, 1, 1, 2 * Columns - 1);
    connect(m_event, &QLineEdit::editingFinished, this, &ZonesBox::CommitEvent);
}

bool ZonesBox::CommitPending()
{
    bool wasTyped = false;
    for (Field& field : m_fields) {
        wasTyped |= field.line->isModified();
        Commit(field);
    }
    wasTyped |= m_event->isModified();
    CommitEvent();
    return wasTyped;
}

void ZonesBox::SetDocument(Document& document)
{
    m_document = &document;
    // An edit may change zones of many territories.
    connect(&document, &Document::ZonesChanged, &m_refresh, qOverload<>(&QTimer::start));
    connect(&document, &Document::HistoryChanged, this, &ZonesBox::FollowHistory);
}

void ZonesBox::ShowZones(const QVector<Zone*>& zones)
{
    m_zones.clear();
    m_zones.reserve(zones.size());
    for (Zone* zone : zones) {
        m_zones.append(zone);
    }
    Refresh();
}

/// An edit is complete now.
void ZonesBox::FollowHistory()
{
    if (m_refresh.isActive()) {
        Refresh();
    }
}

QVector<Zone*> ZonesBox::Present() const
{
    QVector<Zone*> zones;
    for (const Tracked<Zone>& zone : m_zones) {
        if (zone && zone->Holder()) {
            zones.append(zone);
        }
    }
    return zones;
}

void ZonesBox::Refresh()
{
    m_refresh.stop();
    const WorldScale scale(ProjectSettings::Instance());
    std::vector<ZoneRow> rows;
    const QVector<Zone*> zones = Present();
    for (const Zone* zone : zones) {
        rows.push_back(NamelessRow(zone->Record(), scale));
    }
    for (Field& field : m_fields) {
        const ZoneColumn column = field.column;
        field.shown = Common(rows, [column](const ZoneRow& row) { return CellText(row, column); });
        field.line->setText(field.shown);
    }
    {
        const QSignalBlocker blocker(m_usage);
        const QString usage =
            Common(rows, [](const ZoneRow& row) { return QString::number(row.values.usage); });
        m_usage->setCurrentIndex(usage.toInt() - Zone::Rest);
    }
    const bool areEvents = !rows.empty() && m_usage->currentIndex() == m_usage->count() - 1;
    m_event->setText(areEvents
                         ? Common(rows, [](const ZoneRow& row) { return row.values.eventName; })
                         : QString());
    setTitle(tr("Selected zones (%1)").arg(zones.size()));
    setEnabled(!zones.isEmpty());
}

/// change: gives the zone as it is to be. One step, or none when nothing changes.
template <typename Change>
void ZonesBox::ChangeZones(const QString& what, Change change)
{
    std::vector<Edits::ZoneChange> changes;
    const QVector<Zone*> zones = Present();
    for (Zone* zone : zones) {
        const ZoneRecord changed = change(zone->Record());
        changes.push_back({zone, changed.values, changed.place});
    }
    std::unique_ptr<Edit> edit = Edits::ChangeZones(
        tr("Change %1 of %2").arg(what, Edits::ZonesText(zones.size())), changes);
    if (m_document && edit->Changes()) {
        m_document->Do(std::move(edit));
    }
    Refresh();
}

void ZonesBox::Commit(Field& field)
{
    const QString text = field.line->text();
    if (!field.line->isModified()) {
        return;
    }
    const std::optional<BulkEntry> entry = ParseBulkEntry(text);
    if (text.trimmed().isEmpty() || text == field.shown || !entry) {
        field.line->setText(field.shown);
        if (!entry && !text.trimmed().isEmpty()) {
            // This handles events.
            LogInfo(tr("'%1' is no entry for the %2 of zones. Write 500, =-50, +50, -50 or *1.1.")
                        .arg(text, TitleOf(field.column)));
        }
        return;
    }
    const ZoneColumn column = field.column;
    const WorldScale scale(ProjectSettings::Instance());
    ChangeZones(TitleOf(column),
                [&](const ZoneRecord& zone) { return Applied(*entry, column, zone, scale); });
}

void ZonesBox::CommitUsage(int index)
{
    if (index < 0) {
        return;
    }
    ChangeZones(tr("usage"), [index](ZoneRecord zone) {
        zone.values.usage = Zone::Rest + index;
        return zone;
    });
}

void ZonesBox::CommitEvent()
{
    const QString name = m_event->text();
    if (!m_event->isModified()) {
        return;
    }
    ZoneValues named;
    named.SetName(name);
    const QString resembled = ResembledUsage(name);
    if (name.trimmed().isEmpty() || named.usage != Zone::DynamicEvent || !resembled.isEmpty()) {
        Refresh();
        if (!resembled.isEmpty()) {
            LogInfo(
                tr("An event cannot be called '%1', because it would be taken for the usage %2.")
                    .arg(name, resembled));
        } else if (!name.trimmed().isEmpty()) {
            LogInfo(tr("An event cannot be called '%1', because that is a usage.").arg(name));
        }
        return;
    }
    ChangeZones(tr("event"), [&named](ZoneRecord zone) {
        zone.values.usage = named.usage;
        zone.values.eventName = named.eventName;
        return zone;
    });
}
