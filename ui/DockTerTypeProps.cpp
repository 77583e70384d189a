#include "ui/DockTerTypeProps.h"

#include "app/ProjectSettings.h"
#include "territories/TerritoryType.h"
#include "ui/widgets/WheelFocus.h"
#include "ui_DockTerTypeProps.h"

#include <QSignalBlocker>
#include <QStandardItemModel>

namespace {

constexpr float MinRadius = 50.0F;
constexpr float MaxRadius = 32768.0F;

float RadiusMetres(const Zone& zone)
{
    return zone.Radius() * ProjectSettings::Instance().metresPerPixelX;
}

void SetSilently(QSpinBox* box, int value)
{
    const QSignalBlocker notEdited(box);
    box->setValue(value);
}

/// Sums over foreign files may be any number.
int Sum(int a, int b)
{
    return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
}

} // namespace

DockTerTypeProps::DockTerTypeProps(QWidget* parent)
    : QDockWidget(parent)
    , m_ui(std::make_unique<Ui::DockTerTypeProps>())
{
    m_ui->setupUi(this);
    const QList<QRadioButton*> usages = {m_ui->rdoRest, m_ui->rdoGraze, m_ui->rdoWater,
                                         m_ui->rdoHunting, m_ui->rdoDynEvent};
    for (int i = 0; i < usages.size(); ++i) {
        m_ui->btngAIUsage->setId(usages[i], Zone::Rest + i);
    }
    for (QSpinBox* box :
         {m_ui->spbStaticMin, m_ui->spbStaticMax, m_ui->spbDynMin, m_ui->spbDynMax}) {
        TakeWheelOnlyWithFocus(box);
    }
    Connect();
    ShowNothing();
}

DockTerTypeProps::~DockTerTypeProps()
{
    // Boxes that lose the focus as they die end their editing.
    m_ui->spbStaticMax->disconnect(this);
    m_ui->spbDynMax->disconnect(this);
}

void DockTerTypeProps::Connect()
{
    const auto changed = qOverload<int>(&QSpinBox::valueChanged);
    connect(m_ui->txtSize, &QLineEdit::textEdited, this, &DockTerTypeProps::UpdateSize);
    connect(m_ui->spbStaticMin, changed, this, &DockTerTypeProps::UpdateStaticMin);
    connect(m_ui->spbStaticMax, changed, this, &DockTerTypeProps::UpdateStaticMax);
    connect(m_ui->spbDynMin, changed, this, &DockTerTypeProps::UpdateDynMin);
    connect(m_ui->spbDynMax, changed, this, &DockTerTypeProps::UpdateDynMax);
    for (QSpinBox* box : {m_ui->spbStaticMax, m_ui->spbDynMax}) {
        connect(box, &QSpinBox::editingFinished, this, &DockTerTypeProps::ShowStoredCounts);
    }
    connect(m_ui->btngAIUsage, &QButtonGroup::idClicked, this, &DockTerTypeProps::UpdateUsage);
    connect(m_ui->txtDynEvent, &QLineEdit::textEdited, this, &DockTerTypeProps::UpdateEvent);
    connect(m_ui->btnToFront, &QPushButton::clicked, this, &DockTerTypeProps::ToFront);
    connect(m_ui->btnToBack, &QPushButton::clicked, this, &DockTerTypeProps::ToBack);
    connect(m_ui->gboTerColor, &GroupBoxColor::ColorChanged, this, &DockTerTypeProps::UpdateColor);
    connect(m_ui->gboTerColor, &GroupBoxColor::AlphaChanged, this,
            &DockTerTypeProps::UpdateOpacity);
}

void DockTerTypeProps::ShowTerritory(Territory* territory)
{
    m_territory = territory;
    m_typeRow = QModelIndex();
    if (!territory) {
        ShowNothing();
        return;
    }
    setEnabled(true);
    RefreshTitle();
    m_ui->gboTerColor->setEnabled(true);
    {
        const QSignalBlocker notEdited(m_ui->gboTerColor);
        m_ui->gboTerColor->SetColor(territory->Color());
    }
    ShowTotals(territory->Totals());
}

void DockTerTypeProps::ShowType(TerritoryType* type)
{
    m_territory = nullptr;
    m_typeRow = type ? type->index() : QModelIndex();
    if (!type) {
        ShowNothing();
        return;
    }
    setEnabled(true);
    RefreshTitle();
    m_ui->gboTerColor->setEnabled(false);
    ShowTotals(type->Totals());
}

void DockTerTypeProps::ShowNothing()
{
    m_territory = nullptr;
    m_typeRow = QModelIndex();
    m_ui->gboTer->setTitle(tr("Territory"));
    ShowTotals({});
    ShowZone(nullptr);
    setEnabled(false);
}

TerritoryType* DockTerTypeProps::ShownType() const
{
    const auto* model = qobject_cast<const QStandardItemModel*>(m_typeRow.model());
    return model ? dynamic_cast<TerritoryType*>(model->itemFromIndex(m_typeRow)) : nullptr;
}

void DockTerTypeProps::RefreshTitle()
{
    if (const Territory* territory = m_territory) {
        m_ui->gboTer->setTitle(tr("Territory: %1").arg(territory->text()));
    } else if (const TerritoryType* type = ShownType()) {
        m_ui->gboTer->setTitle(tr("Territory type: %1").arg(type->text()));
    }
}

void DockTerTypeProps::RefreshTotals()
{
    if (const Territory* territory = m_territory) {
        ShowTotals(territory->Totals());
    } else if (const TerritoryType* type = ShownType()) {
        ShowTotals(type->Totals());
    }
}

void DockTerTypeProps::ShowTotals(const SpawnCounts& totals)
{
    m_ui->lblTerStaticMinVal->setNum(totals.staticMin);
    m_ui->lblTerStaticMaxVal->setNum(totals.staticMax);
    m_ui->lblTerDynMinVal->setNum(totals.dynamicMin);
    m_ui->lblTerDynMaxVal->setNum(totals.dynamicMax);
    m_ui->lblTerTotalMinVal->setNum(Sum(totals.staticMin, totals.dynamicMin));
    m_ui->lblTerTotalMaxVal->setNum(Sum(totals.staticMax, totals.dynamicMax));
}

void DockTerTypeProps::ShowZone(Zone* zone)
{
    m_zone = zone;
    ResetZone();
    m_ui->gboZone->setEnabled(zone != nullptr);
    if (zone) {
        FillZone(*zone);
        RememberTemplate();
    }
}

void DockTerTypeProps::ResetZone()
{
    m_ui->txtSize->clear();
    m_ui->txtDynEvent->clear();
    m_ui->txtDynEvent->setEnabled(false);
    // Of an exclusive group one button always stays checked.
    m_ui->btngAIUsage->setExclusive(false);
    const QList<QAbstractButton*> buttons = m_ui->btngAIUsage->buttons();
    for (QAbstractButton* button : buttons) {
        button->setChecked(false);
    }
    m_ui->btngAIUsage->setExclusive(true);
}

void DockTerTypeProps::FillZone(const Zone& zone)
{
    m_ui->txtSize->setText(QString::number(static_cast<double>(RadiusMetres(zone)), 'g', 6));
    ShowStoredCounts();
    if (QAbstractButton* button = m_ui->btngAIUsage->button(zone.GetUsage())) {
        button->setChecked(true);
    }
    if (zone.GetUsage() == Zone::DynamicEvent) {
        m_ui->txtDynEvent->setEnabled(true);
        m_ui->txtDynEvent->setText(zone.EventName());
    }
}

void DockTerTypeProps::ShowStoredCounts()
{
    if (const Zone* zone = m_zone) {
        SetSilently(m_ui->spbStaticMin, zone->Counts().staticMin);
        SetSilently(m_ui->spbStaticMax, zone->Counts().staticMax);
        SetSilently(m_ui->spbDynMin, zone->Counts().dynamicMin);
        SetSilently(m_ui->spbDynMax, zone->Counts().dynamicMax);
    }
}

void DockTerTypeProps::RememberTemplate()
{
    if (const Zone* zone = m_zone) {
        m_template = Template{RadiusMetres(*zone), zone->Counts(), zone->GetUsage(),
                              zone->EventName(), zone->zValue()};
    }
}

void DockTerTypeProps::ApplyToNewZone(Zone* zone)
{
    if (!zone || !m_template) {
        return;
    }
    zone->SetRadius(m_template->radiusMetres);
    if (const Territory* territory = zone->Holder()) {
        zone->SetColor(territory->Color());
    }
    zone->SetStaticMin(m_template->counts.staticMin);
    zone->SetStaticMax(m_template->counts.staticMax);
    zone->SetDynamicMin(m_template->counts.dynamicMin);
    zone->SetDynamicMax(m_template->counts.dynamicMax);
    zone->SetUsage(m_template->usage);
    zone->SetEventName(m_template->eventName);
    zone->setZValue(m_template->depth);
}

void DockTerTypeProps::ForgetTemplate()
{
    m_template.reset();
}

void DockTerTypeProps::ZoneEdited()
{
    ProjectSettings::Instance().modified = true;
    RememberTemplate();
}

void DockTerTypeProps::UpdateSize(const QString& text)
{
    const float metres = text.toFloat();
    if (m_zone && metres >= MinRadius && metres <= MaxRadius) {
        m_zone->SetRadius(metres);
        ZoneEdited();
    }
}

void DockTerTypeProps::UpdateColor(const QColor& color)
{
    if (m_territory) {
        m_territory->SetColor(color);
        ProjectSettings::Instance().modified = true;
    }
}

void DockTerTypeProps::UpdateOpacity(int alpha)
{
    if (m_territory) {
        m_territory->SetAlpha(alpha);
        ProjectSettings::Instance().modified = true;
        emit Changed(QRectF());
    }
}

void DockTerTypeProps::SetCount(void (Zone::*setter)(int), int count)
{
    if (m_zone) {
        (m_zone.Get()->*setter)(count);
        ZoneEdited();
    }
}

void DockTerTypeProps::UpdateStaticMin(int count)
{
    SetCount(&Zone::SetStaticMin, count);
}

void DockTerTypeProps::UpdateStaticMax(int count)
{
    SetCount(&Zone::SetStaticMax, m_zone ? qMax(count, m_zone->Counts().staticMin) : count);
}

void DockTerTypeProps::UpdateDynMin(int count)
{
    SetCount(&Zone::SetDynamicMin, count);
}

void DockTerTypeProps::UpdateDynMax(int count)
{
    SetCount(&Zone::SetDynamicMax, m_zone ? qMax(count, m_zone->Counts().dynamicMin) : count);
}

void DockTerTypeProps::ToFront()
{
    if (m_zone) {
        m_zone->BringToFront();
        ZoneEdited();
    }
}

void DockTerTypeProps::ToBack()
{
    if (m_zone) {
        m_zone->SendToBack();
        ZoneEdited();
    }
}

void DockTerTypeProps::UpdateUsage(int usage)
{
    if (!m_zone) {
        return;
    }
    m_zone->SetUsage(usage);
    ZoneEdited();
    if (usage != 0) {
        m_ui->txtDynEvent->setEnabled(usage == Zone::DynamicEvent);
        emit Changed(m_zone->sceneBoundingRect());
    }
}

void DockTerTypeProps::UpdateEvent(const QString& text)
{
    if (m_zone && m_zone->GetUsage() == Zone::DynamicEvent && m_zone->EventName() != text) {
        m_zone->SetEventName(text);
        ZoneEdited();
    }
}
