#include "ui/DockTerTypeProps.h"

#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "document/edits/TerritoryEdits.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "ui/widgets/WheelFocus.h"
#include "ui_DockTerTypeProps.h"

#include <QScopedValueRollback>
#include <QScrollBar>
#include <QSignalBlocker>

#include <algorithm>

namespace {

float RadiusMetres(const Zone& zone)
{
    return ProjectSettings::Instance().MetresPerPixelX() * zone.Radius();
}

/// The name as a title. Ampersands are doubled, because a single one would mark a shortcut.
QString TitleText(QString name)
{
    return name.replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace

DockTerTypeProps::DockTerTypeProps(Document& document, QWidget* parent)
    : QDockWidget(parent)
    , m_document(document)
    , m_ui(std::make_unique<Ui::DockTerTypeProps>())
{
    m_ui->setupUi(this);
    m_ui->btngAIUsage->setId(m_ui->rdoRest, Zone::Rest);
    m_ui->btngAIUsage->setId(m_ui->rdoGraze, Zone::Graze);
    m_ui->btngAIUsage->setId(m_ui->rdoWater, Zone::Water);
    m_ui->btngAIUsage->setId(m_ui->rdoHunting, Zone::HuntingGround);
    m_ui->btngAIUsage->setId(m_ui->rdoDynEvent, Zone::DynamicEvent);
    m_totalsTimer.setSingleShot(true);
    m_totalsTimer.setInterval(0);
    // When the dock is shown, its contents get their places only in the next turn of the event
    // loop.
    m_reveal.setSingleShot(true);
    m_reveal.setInterval(0);
    m_ui->gboZones->SetDocument(document);
    // The tree of the dock above, and the field over it, get their share of the height.
    m_ui->scrProperties->SetHintedUpTo(m_ui->gboZone, m_ui->txtSize->sizeHint().height() +
                                                          m_ui->ltZone->spacing());
    Connect();
    ShowNothing();
}

DockTerTypeProps::~DockTerTypeProps() = default;

/// Connects signals that only the user's actions emit. The controls are filled in ways that do not
/// emit these signals, or with signals blocked.
void DockTerTypeProps::Connect()
{
    connect(m_ui->gboTerClrOp, &GroupBoxColor::ColorChanged, this, &DockTerTypeProps::UpdateColor);
    connect(m_ui->gboTerClrOp, &GroupBoxColor::AlphaChanged, this,
            &DockTerTypeProps::UpdateOpacity);
    connect(m_ui->txtSize, &QLineEdit::textEdited, this, &DockTerTypeProps::UpdateSize);
    connect(m_ui->txtSize, &QLineEdit::editingFinished, this, &DockTerTypeProps::ShowSize);
    const struct
    {
        QSpinBox* box;
        void (DockTerTypeProps::*update)(int);
    } spinBoxes[] = {
        {m_ui->spbStaticMin, &DockTerTypeProps::UpdateStaticMin},
        {m_ui->spbStaticMax, &DockTerTypeProps::UpdateStaticMax},
        {m_ui->spbDynMin, &DockTerTypeProps::UpdateDynMin},
        {m_ui->spbDynMax, &DockTerTypeProps::UpdateDynMax},
    };
    for (const auto& spinBox : spinBoxes) {
        TakeWheelOnlyWithFocus(spinBox.box);
        connect(spinBox.box, QOverload<int>::of(&QSpinBox::valueChanged), this, spinBox.update);
        connect(spinBox.box, &QSpinBox::editingFinished, this, &DockTerTypeProps::ShowCounts);
    }
    connect(m_ui->btngAIUsage, &QButtonGroup::idClicked, this, &DockTerTypeProps::UpdateUsage);
    connect(m_ui->txtDynEvent, &QLineEdit::textEdited, this, &DockTerTypeProps::UpdateEvent);
    connect(m_ui->btnToFront, &QToolButton::clicked, this, &DockTerTypeProps::ToFront);
    connect(m_ui->btnToBack, &QToolButton::clicked, this, &DockTerTypeProps::ToBack);
    connect(&m_document, &Document::ZonesChanged, this, &DockTerTypeProps::FollowZones);
    connect(&m_document, &Document::TerritoryChanged, this, &DockTerTypeProps::FollowTerritory);
    connect(&m_totalsTimer, &QTimer::timeout, this, &DockTerTypeProps::RefreshTotals);
    connect(&m_reveal, &QTimer::timeout, this, &DockTerTypeProps::RevealZones);
    connect(this, &QDockWidget::visibilityChanged, &m_reveal, QOverload<>::of(&QTimer::start));
}

void DockTerTypeProps::ShowNothing()
{
    m_territory = nullptr;
    m_type = nullptr;
    m_ui->gboTer->setTitle(tr("Territory"));
    ShowTotals({});
    ShowEnabled();
}

void DockTerTypeProps::ShowZones(const QVector<Zone*>& zones)
{
    m_areZonesSelected = !zones.isEmpty();
    ShowEnabled();
    m_ui->gboZones->ShowZones(zones);
    const bool areSeveral = zones.size() > 1;
    if (areSeveral && !m_areSeveralSelected) {
        m_reveal.start();
    }
    m_areSeveralSelected = areSeveral;
}

/// Scrolls to the box for several zones.
void DockTerTypeProps::RevealZones()
{
    if (m_areSeveralSelected) {
        m_ui->scrProperties->verticalScrollBar()->setValue(m_ui->gboZones->y());
    }
}

MovingBox& DockTerTypeProps::Moving() const
{
    return *m_ui->gboMoving;
}

void DockTerTypeProps::ShowEnabled()
{
    const bool hasRow = m_territory || m_type;
    m_ui->gboTer->setEnabled(hasRow);
    setEnabled(hasRow || m_areZonesSelected);
}

void DockTerTypeProps::ShowTerritory(Territory* territory)
{
    if (!territory) {
        ShowNothing();
        return;
    }
    m_territory = territory;
    m_type = nullptr;
    ShowEnabled();
    m_ui->gboTer->setTitle(tr("Territory: %1").arg(TitleText(territory->text())));
    m_ui->gboTerClrOp->setEnabled(true);
    const QSignalBlocker blocker(m_ui->gboTerClrOp);
    m_ui->gboTerClrOp->SetColor(territory->Color());
    ShowTotals(territory->Totals());
}

void DockTerTypeProps::ShowType(TerritoryType* type)
{
    if (!type) {
        ShowNothing();
        return;
    }
    m_territory = nullptr;
    m_type = type;
    ShowEnabled();
    m_ui->gboTer->setTitle(tr("Territory type: %1").arg(TitleText(type->text())));
    m_ui->gboTerClrOp->setEnabled(false);
    ShowTotals(type->Totals());
}

void DockTerTypeProps::RefreshTotals()
{
    m_totalsTimer.stop();
    if (const Territory* territory = m_territory) {
        ShowTotals(territory->Totals());
    } else if (const TerritoryType* type = m_type) {
        ShowTotals(type->Totals());
    }
}

void DockTerTypeProps::RefreshTotalsLater()
{
    if (!m_totalsTimer.isActive()) {
        m_totalsTimer.start();
    }
}

void DockTerTypeProps::ShowTotals(const SpawnCounts& totals)
{
    // Counts from a file may be so large that their sums wrap around.
    const auto sum = [](int a, int b) {
        return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
    };
    m_ui->lblTerStaticMinVal->setNum(totals.staticMin);
    m_ui->lblTerStaticMaxVal->setNum(totals.staticMax);
    m_ui->lblTerDynMinVal->setNum(totals.dynamicMin);
    m_ui->lblTerDynMaxVal->setNum(totals.dynamicMax);
    m_ui->lblTerTotalMinVal->setNum(sum(totals.staticMin, totals.dynamicMin));
    m_ui->lblTerTotalMaxVal->setNum(sum(totals.staticMax, totals.dynamicMax));
}

void DockTerTypeProps::ShowZone(Zone* zone)
{
    m_zone = zone;
    m_ui->gboZone->setEnabled(zone != nullptr);
    ShowSize();
    ShowCounts();
    ShowUsage();
    if (zone) {
        m_shown = zone->Values();
        m_document.SetZoneTemplate(m_shown);
    }
}

void DockTerTypeProps::ShowSize()
{
    if (const Zone* zone = m_zone) {
        const auto metres = static_cast<double>(RadiusMetres(*zone));
        m_ui->txtSize->setText(QString::number(metres, 'g', 6));
    } else {
        m_ui->txtSize->clear();
    }
}

void DockTerTypeProps::ShowCounts()
{
    const Zone* zone = m_zone;
    const SpawnCounts counts = zone ? zone->Counts() : SpawnCounts();
    const auto show = [](QSpinBox* box, int count) {
        const QSignalBlocker blocker(box);
        box->setValue(count);
    };
    show(m_ui->spbStaticMin, counts.staticMin);
    show(m_ui->spbStaticMax, counts.staticMax);
    show(m_ui->spbDynMin, counts.dynamicMin);
    show(m_ui->spbDynMax, counts.dynamicMax);
}

void DockTerTypeProps::ShowUsage()
{
    m_ui->txtDynEvent->clear();
    m_ui->txtDynEvent->setEnabled(false);
    // In an exclusive group the last checked button cannot be unchecked.
    m_ui->btngAIUsage->setExclusive(false);
    const QList<QAbstractButton*> buttons = m_ui->btngAIUsage->buttons();
    for (QAbstractButton* button : buttons) {
        button->setChecked(false);
    }
    m_ui->btngAIUsage->setExclusive(true);
    const Zone* zone = m_zone;
    if (!zone) {
        return;
    }
    if (QAbstractButton* button = m_ui->btngAIUsage->button(zone->GetUsage())) {
        button->setChecked(true);
    }
    if (zone->GetUsage() == Zone::DynamicEvent) {
        m_ui->txtDynEvent->setEnabled(true);
        m_ui->txtDynEvent->setText(zone->EventName());
    }
}

/// Undo, the box below and the table change what is shown here.
void DockTerTypeProps::FollowZones()
{
    const Zone* zone = m_zone;
    if (m_document.IsTravelling() || (zone && !m_isEditing && zone->Values() != m_shown)) {
        ShowZone(m_zone);
    }
}

void DockTerTypeProps::FollowTerritory(const Territory* territory)
{
    if (m_document.IsTravelling() && territory == m_territory) {
        ShowTerritory(m_territory);
        emit Changed(QRectF());
    }
}

void DockTerTypeProps::EditZone(const ZoneValues& values, Property property)
{
    {
        const QScopedValueRollback<bool> editing(m_isEditing, true);
        m_document.Do(Edits::ChangeZone(*m_zone, values, property));
    }
    m_shown = m_zone->Values();
    m_document.SetZoneTemplate(m_shown);
}

void DockTerTypeProps::UpdateSize(const QString& text)
{
    bool isNumber = false;
    const float metres = text.toFloat(&isNumber);
    const Zone* zone = m_zone;
    if (zone && isNumber && metres >= ZoneValues::MinRadius && metres <= ZoneValues::MaxRadius) {
        ZoneValues values = zone->Values();
        values.radius = metres;
        EditZone(values, Property::ZoneRadius);
    }
}

void DockTerTypeProps::UpdateColor(const QColor& color)
{
    if (Territory* territory = m_territory) {
        m_document.Do(Edits::SetTerritoryColor(*territory, color));
    }
}

void DockTerTypeProps::UpdateOpacity(int alpha)
{
    if (Territory* territory = m_territory) {
        m_document.Do(Edits::SetTerritoryOpacity(*territory, alpha));
        emit Changed(QRectF());
    }
}

void DockTerTypeProps::UpdateCount(int count, int SpawnCounts::*value, Property property)
{
    if (const Zone* zone = m_zone) {
        ZoneValues values = zone->Values();
        values.counts.*value = count;
        EditZone(values, property);
        RefreshTotals();
    }
}

void DockTerTypeProps::UpdateStaticMin(int count)
{
    UpdateCount(count, &SpawnCounts::staticMin, Property::ZoneStaticMin);
}

void DockTerTypeProps::UpdateStaticMax(int count)
{
    if (const Zone* zone = m_zone) {
        UpdateCount(std::max(count, zone->Counts().staticMin), &SpawnCounts::staticMax,
                    Property::ZoneStaticMax);
    }
}

void DockTerTypeProps::UpdateDynMin(int count)
{
    UpdateCount(count, &SpawnCounts::dynamicMin, Property::ZoneDynamicMin);
}

void DockTerTypeProps::UpdateDynMax(int count)
{
    if (const Zone* zone = m_zone) {
        UpdateCount(std::max(count, zone->Counts().dynamicMin), &SpawnCounts::dynamicMax,
                    Property::ZoneDynamicMax);
    }
}

void DockTerTypeProps::UpdateDepth(int depth)
{
    ZoneValues values = m_zone->Values();
    values.depth = depth;
    EditZone(values, Property::ZoneDepth);
}

void DockTerTypeProps::ToFront()
{
    if (const Zone* zone = m_zone) {
        UpdateDepth(zone->DepthInFront());
    }
}

void DockTerTypeProps::ToBack()
{
    if (const Zone* zone = m_zone) {
        UpdateDepth(zone->DepthBehind());
    }
}

void DockTerTypeProps::UpdateUsage(int id)
{
    const Zone* zone = m_zone;
    if (!zone) {
        return;
    }
    ZoneValues values = zone->Values();
    values.usage = id;
    EditZone(values, Property::ZoneUsage);
    if (id == 0) {
        return;
    }
    const bool isEvent = id == Zone::DynamicEvent;
    m_ui->txtDynEvent->setEnabled(isEvent);
    if (isEvent) {
        // The zone may have been for an event before.
        m_ui->txtDynEvent->setText(zone->EventName());
    }
    emit Changed(zone->sceneBoundingRect());
}

void DockTerTypeProps::UpdateEvent(const QString& text)
{
    const Zone* zone = m_zone;
    if (zone && zone->GetUsage() == Zone::DynamicEvent && zone->EventName() != text) {
        ZoneValues values = zone->Values();
        values.eventName = text;
        EditZone(values, Property::ZoneEvent);
    }
}
