#include "ui/DockLayerProps.h"

#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "document/edits/LayerEdits.h"
#include "ui/widgets/ButtonColor.h"
#include "ui_DockLayerProps.h"

#include <QCheckBox>
#include <QSignalBlocker>

namespace {

constexpr char BitProperty[] = "bit";
constexpr float FullAlpha = 255.0F;

quint32 BitOf(const QCheckBox& box)
{
    return static_cast<quint32>(box.property(BitProperty).toInt());
}

quint32 CheckedBits(const QList<QCheckBox*>& boxes)
{
    quint32 bits = 0;
    for (const QCheckBox* box : boxes) {
        bits |= box->isChecked() ? BitOf(*box) : 0;
    }
    return bits;
}

void Check(const QList<QCheckBox*>& boxes, quint32 bits)
{
    for (QCheckBox* box : boxes) {
        box->setChecked((bits & BitOf(*box)) != 0);
    }
}

} // namespace

DockLayerProps::DockLayerProps(Document& document, QWidget* parent)
    : QDockWidget(parent)
    , m_document(document)
    , m_ui(std::make_unique<Ui::DockLayerProps>())
{
    m_ui->setupUi(this);
    setEnabled(false);
    connect(m_ui->gboLayerClrOp, &GroupBoxColor::ColorChanged, this, &DockLayerProps::UpdateColor);
    connect(m_ui->gboLayerClrOp, &GroupBoxColor::AlphaChanged, this, &DockLayerProps::UpdateAlpha);
    connect(&document, &Document::LayerChanged, this, &DockLayerProps::Follow);
    connect(&document, &Document::FlagTypesChanged, this, &DockLayerProps::Refresh);
}

DockLayerProps::~DockLayerProps() = default;

void DockLayerProps::BuildFlagBoxes()
{
    const AreaFlagTypes& types = ProjectSettings::Instance().FlagTypes();
    AddBoxes(types.usages, m_ui->gboLayerUsageFlags, m_ui->layoutAreaUsageFlags, m_usageBoxes);
    AddBoxes(types.values, m_ui->gboLayerValueFlags, m_ui->layoutAreaValueFlags, m_valueBoxes);
    OrderTabs();
}

/// New widgets come last in the window's tab order. The flag boxes belong before the colour button.
void DockLayerProps::OrderTabs()
{
    auto* button = m_ui->gboLayerClrOp->findChild<ButtonColor*>();
    QWidget* last = button;
    const QList<QCheckBox*> boxes = m_usageBoxes + m_valueBoxes;
    for (QCheckBox* box : boxes) {
        QWidget::setTabOrder(last, box);
        last = box;
    }
    QWidget::setTabOrder(last, button);
}

void DockLayerProps::AddBoxes(const QVector<QString>& names, QGroupBox* group, QGridLayout* grid,
                              QList<QCheckBox*>& boxes)
{
    constexpr int columns = 2;
    for (int i = 0; i < names.size(); ++i) {
        auto* box = new QCheckBox(names[i], group);
        const quint32 bit = 1U << (i % AreaFlagTypes::MaxCount);
        box->setProperty(BitProperty, static_cast<int>(bit));
        grid->addWidget(box, i / columns, i % columns);
        connect(box, &QCheckBox::clicked, this, &DockLayerProps::UpdateFlags);
        boxes.append(box);
    }
}

void DockLayerProps::Refresh()
{
    qDeleteAll(m_usageBoxes);
    qDeleteAll(m_valueBoxes);
    m_usageBoxes.clear();
    m_valueBoxes.clear();
    BuildFlagBoxes();
    SetLayer(m_layer, false);
}

void DockLayerProps::SetLayer(Layer* layer, bool announce)
{
    m_layer = layer;
    setEnabled(layer != nullptr);
    Check(m_usageBoxes, layer ? layer->UsageFlags() : 0);
    Check(m_valueBoxes, layer ? layer->ValueFlags() : 0);
    if (!layer) {
        return;
    }
    {
        const QSignalBlocker notEdited(m_ui->gboLayerClrOp);
        m_ui->gboLayerClrOp->SetColor(layer->Color().alpha(), layer->Color().rgb());
    }
    if (announce) {
        const float opacity = static_cast<float>(layer->Color().alpha()) / FullAlpha;
        emit ColorChanged();
        emit OpacityChanged(opacity);
    }
}

/// Undo changes what is shown here.
void DockLayerProps::Follow(const Layer* layer)
{
    if (m_document.IsTravelling() && layer && layer == m_layer) {
        SetLayer(m_layer, false);
    }
}

void DockLayerProps::UpdateFlags()
{
    if (Layer* layer = m_layer) {
        m_document.Do(
            Edits::SetLayerFlags(*layer, CheckedBits(m_usageBoxes), CheckedBits(m_valueBoxes)));
    }
}

void DockLayerProps::UpdateColor(const QColor& color)
{
    if (Layer* layer = m_layer) {
        m_document.Do(Edits::SetLayerColor(*layer, color));
        emit ColorChanged();
    }
}

void DockLayerProps::UpdateAlpha(int alpha, float opacity)
{
    if (Layer* layer = m_layer) {
        m_document.Do(Edits::SetLayerOpacity(*layer, alpha));
        emit OpacityChanged(opacity);
    }
}
