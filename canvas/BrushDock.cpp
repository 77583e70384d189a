#include "canvas/BrushDock.h"

#include "ui/widgets/WheelFocus.h"
#include "ui_BrushDock.h"

#include <algorithm>
#include <limits>

namespace {

/// A project may hold any size, even one at which adding a step would overflow.
int Sum(int size, qint64 step)
{
    constexpr qint64 lowest = std::numeric_limits<int>::min();
    constexpr qint64 highest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(size + step, lowest, highest));
}

} // namespace

BrushDock::BrushDock(Brush& brush, QWidget* parent)
    : QDockWidget(parent)
    , m_brush(brush)
    , m_ui(std::make_unique<Ui::BrushDock>())
{
    m_ui->setupUi(this);
    TakeWheelOnlyWithFocus(m_ui->sldBrushSize);
    TakeWheelOnlyWithFocus(m_ui->sldBrushOutlineWidth);
    InitForm();
    Connect();
}

BrushDock::~BrushDock() = default;

/// The outline box stays unchecked although the brush has an outline. Users are used to an outlined
/// cursor at the start; the box is right from the first click or project on.
void BrushDock::InitForm()
{
    m_ui->gboBrushColor->SetColor(m_brush.Color());
    m_ui->btnOutlineColor->SetColor(m_brush.OutlineColor().rgb(), false);
    m_ui->sldBrushSize->setValue(m_brush.Size());
    m_ui->lblBrushSize->setText(QString::number(m_brush.Size()));
    m_ui->sldBrushOutlineWidth->setValue(m_brush.OutlineWidth());
    m_ui->lblBrushOutlineWidth->setText(QString::number(m_brush.OutlineWidth()));
}

void BrushDock::Connect()
{
    connect(m_ui->sldBrushSize, &QSlider::valueChanged, this, &BrushDock::SetSize);
    connect(m_ui->gboBrushColor, &GroupBoxColor::ColorChanged, this, &BrushDock::SetColor);
    connect(m_ui->gboBrushColor, &GroupBoxColor::AlphaChanged, this, &BrushDock::SetAlpha);
    connect(m_ui->btnOutlineColor, &ButtonColor::ColorChanged, this, &BrushDock::SetOutlineColor);
    connect(m_ui->sldBrushOutlineWidth, &QSlider::valueChanged, this, &BrushDock::SetOutlineWidth);
    connect(m_ui->gboBrushOutline, &QGroupBox::clicked, this, &BrushDock::SetOutline);
}

void BrushDock::SetSize(int size)
{
    QSlider* slider = m_ui->sldBrushSize;
    const int bounded = qBound(slider->minimum(), size, slider->maximum());
    if (slider->value() != bounded) {
        slider->setValue(bounded); // Calls this slot again with the new value.
        return;
    }
    m_ui->lblBrushSize->setText(QString::number(bounded));
    m_brush.SetSize(bounded);
    emit Changed();
}

void BrushDock::GrowBy(int step)
{
    SetSize(Sum(m_brush.Size(), step));
}

void BrushDock::ShrinkBy(int step)
{
    SetSize(Sum(m_brush.Size(), -static_cast<qint64>(step)));
}

void BrushDock::SetColor(const QColor& color)
{
    QColor opaque = color;
    opaque.setAlpha(m_brush.Color().alpha());
    m_brush.SetColor(opaque);
    emit Changed();
}

void BrushDock::SetAlpha(int alpha, float /*opacity*/)
{
    QColor color = m_brush.Color();
    color.setAlpha(alpha);
    m_brush.SetColor(color);
    emit Changed();
}

void BrushDock::SetOutlineColor(const QColor& color)
{
    m_brush.SetOutlineColor(color);
    emit Changed();
}

void BrushDock::SetOutlineWidth(int width)
{
    m_ui->lblBrushOutlineWidth->setText(QString::number(width));
    m_brush.SetOutlineWidth(width);
    emit Changed();
}

void BrushDock::SetOutline(bool isOn)
{
    m_brush.SetOutline(isOn);
    emit Changed();
}

void BrushDock::SetPaintColor(QRgb rgb)
{
    QColor color(rgb);
    color.setAlpha(m_brush.PaintColor().alpha());
    m_brush.SetPaintColor(color);
    emit Changed();
}

void BrushDock::Refresh()
{
    m_ui->gboBrushColor->SetColor(m_brush.Color());
    m_ui->btnOutlineColor->SetColor(m_brush.OutlineColor().rgb(), false);
    m_ui->sldBrushSize->setValue(m_brush.Size());
    m_ui->gboBrushOutline->setChecked(m_brush.HasOutline());
    m_ui->sldBrushOutlineWidth->setValue(m_brush.OutlineWidth());
    SetSize(m_brush.Size());
    m_ui->lblBrushOutlineWidth->setText(QString::number(m_brush.OutlineWidth()));
}
