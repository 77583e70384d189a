#include "ui/dialogs/DialogAlignZones.h"

#include "document/edits/ZoneEdits.h"
#include "ui/widgets/WheelFocus.h"
#include "ui_DialogAlignZones.h"

#include <cmath>
#include <numeric>

namespace {

/// At which the zones move least.
int MeanDistance(const std::vector<QPointF>& centres)
{
    if (centres.empty()) {
        return 0;
    }
    const auto count = static_cast<double>(centres.size());
    const QPointF middle = std::accumulate(centres.begin(), centres.end(), QPointF()) / count;
    double sum = 0;
    for (const QPointF& centre : centres) {
        sum += std::hypot(centre.x() - middle.x(), centre.y() - middle.y());
    }
    constexpr double most = 1e9;
    return static_cast<int>(std::lround(std::fmin(sum / count, most)));
}

} // namespace

DialogAlignZones::DialogAlignZones(const std::vector<QPointF>& centres, QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::DialogAlignZones>())
{
    m_ui->setupUi(this);
    setWindowTitle(tr("Align %1").arg(Edits::ZonesText(static_cast<int>(centres.size()))));
    const struct
    {
        QString text;
        ZoneArrangement arrangement;
    } entries[] = {
        {tr("Align left"), ZoneArrangement::AlignLeft},
        {tr("Align centres along X"), ZoneArrangement::AlignCentreX},
        {tr("Align right"), ZoneArrangement::AlignRight},
        {tr("Align top"), ZoneArrangement::AlignTop},
        {tr("Align centres along Z"), ZoneArrangement::AlignCentreZ},
        {tr("Align bottom"), ZoneArrangement::AlignBottom},
        {tr("Distribute evenly along X"), ZoneArrangement::DistributeX},
        {tr("Distribute evenly along Z"), ZoneArrangement::DistributeZ},
        {tr("Arrange on a circle"), ZoneArrangement::Circle},
    };
    for (const auto& entry : entries) {
        m_ui->cboAlign->addItem(entry.text, static_cast<int>(entry.arrangement));
    }
    TakeWheelOnlyWithFocus(m_ui->cboAlign);
    TakeWheelOnlyWithFocus(m_ui->spnAlignRadius);
    m_ui->spnAlignRadius->setValue(MeanDistance(centres));
    const auto showRadius = [this] {
        m_ui->spnAlignRadius->setEnabled(Arrangement() == ZoneArrangement::Circle);
    };
    connect(m_ui->cboAlign, qOverload<int>(&QComboBox::currentIndexChanged), this, showRadius);
    connect(m_ui->btnOk, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_ui->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
    showRadius();
    m_ui->cboAlign->setFocus();
}

DialogAlignZones::~DialogAlignZones() = default;

ZoneArrangement DialogAlignZones::Arrangement() const
{
    return static_cast<ZoneArrangement>(m_ui->cboAlign->currentData().toInt());
}

int DialogAlignZones::Radius() const
{
    return m_ui->spnAlignRadius->value();
}
