#include "ui/widgets/GroupBoxColor.h"

#include "ui/widgets/ButtonColor.h"
#include "ui/widgets/WheelFocus.h"

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>

#include <cmath>

namespace {

constexpr QSize BoxSize(260, 70);
constexpr int HighestAlpha = 255;
constexpr int FirstAlpha = 128;

} // namespace

GroupBoxColor::GroupBoxColor(QWidget* parent)
    : NamedGroupBox(parent)
    , m_button(new ButtonColor(this))
    , m_slider(new QSlider(Qt::Horizontal, this))
    , m_label(new QLabel(this))
{
    BuildForm();
    connect(m_button, &ButtonColor::ColorChanged, this, &GroupBoxColor::ColorChanged);
    connect(m_slider, &QSlider::valueChanged, this, &GroupBoxColor::SliderMoved);
}

void GroupBoxColor::BuildForm()
{
    setFixedSize(BoxSize);
    setBaseSize(BoxSize);
    QFont bold = font();
    bold.setBold(true);
    setFont(bold);

    m_button->setObjectName(QStringLiteral("button"));
    m_slider->setObjectName(QStringLiteral("slider"));
    m_slider->setRange(0, HighestAlpha);
    m_slider->setValue(FirstAlpha);
    m_slider->setAccessibleName(tr("Opacity"));
    m_slider->setToolTip(tr("Opacity, from transparent to opaque"));
    TakeWheelOnlyWithFocus(m_slider);
    m_label->setObjectName(QStringLiteral("label"));
    m_label->setText(tr("<b>50%</b>"));
    m_label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    // With this fixed width of the label the slider keeps its length.
    m_label->setMinimumWidth(QFontMetrics(bold).horizontalAdvance(QStringLiteral("100%")));
    m_label->setBuddy(m_slider);

    auto* row = new QHBoxLayout(this);
    row->setObjectName(QStringLiteral("layout"));
    // The box is too low for the usual margins around a button of 32 pixels.
    const QMargins usual = row->contentsMargins();
    row->setContentsMargins(usual.left(), 0, usual.right(), 0);
    row->addWidget(m_button);
    row->addWidget(m_slider);
    row->addWidget(m_label);
}

void GroupBoxColor::SetColor(const QColor& color)
{
    SetColor(color.alpha(), color.rgb());
}

void GroupBoxColor::SetColor(int alpha, QRgb rgb)
{
    m_slider->setValue(qBound(m_slider->minimum(), alpha, m_slider->maximum()));
    ShowOpacity();
    m_button->SetColor(rgb, false);
}

void GroupBoxColor::SliderMoved(int val)
{
    ShowOpacity();
    emit AlphaChanged(val, static_cast<float>(val) / static_cast<float>(m_slider->maximum()));
}

void GroupBoxColor::ShowOpacity()
{
    const float percentPerStep = 100.0F / static_cast<float>(m_slider->maximum());
    const long percent = std::lround(percentPerStep * static_cast<float>(m_slider->value()));
    m_label->setText(tr("<strong>%1%</strong>").arg(percent));
}
