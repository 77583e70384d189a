#include "ui/MovingBox.h"

#include "ui/widgets/WheelFocus.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QSettings>
#include <QSignalBlocker>
#include <QSpinBox>

#include <algorithm>

namespace {

QSettings Settings()
{
    return QSettings(QStringLiteral("Halvern Works"), QStringLiteral("Quillmap"));
}

const QString NudgeKey = QStringLiteral("nudgeMetres");
const QString SnapKey = QStringLiteral("snapTo");
const QString GridKey = QStringLiteral("snapGrid");

constexpr int NudgeMetres[] = {0, 1, 10, 50};
/// Of the settings, in the order of SnapTo.
const char* const SnapNames[] = {"nothing", "grid", "zones"};
constexpr int LargestGrid = 10000;

} // namespace

MovingBox::MovingBox(QWidget* parent)
    : QGroupBox(parent)
    , m_nudge(new QComboBox)
    , m_snap(new QComboBox)
    , m_grid(new QSpinBox)
{
    constexpr int spacing = 4;
    constexpr int letters = 6;
    m_nudge->setObjectName(QStringLiteral("cboNudge"));
    m_nudge->setToolTip(tr("How far an arrow key moves the selected zones: Shift makes it five "
                           "times, Ctrl ten times as far"));
    m_nudge->setAccessibleName(tr("Step of the arrow keys"));
    for (const int metres : NudgeMetres) {
        m_nudge->addItem(metres == 0 ? tr("1 layer pixel") : tr("%1 m").arg(metres), metres);
    }
    m_snap->setObjectName(QStringLiteral("cboSnap"));
    m_snap->setToolTip(tr("What zones snap to while they are dragged; Ctrl suspends it"));
    m_snap->setAccessibleName(tr("Dragged zones snap to"));
    m_snap->addItems({tr("Nothing"), tr("Grid"), tr("Zones")});
    m_grid->setObjectName(QStringLiteral("spnSnapGrid"));
    m_grid->setToolTip(tr("The grid: places at multiples of so many metres"));
    m_grid->setAccessibleName(tr("Grid in metres"));
    m_grid->setSuffix(tr(" m"));
    m_grid->setRange(1, LargestGrid);
    m_grid->setValue(MoveOptions().gridMetres);
    auto* grid = new QGridLayout(this);
    grid->setObjectName(QStringLiteral("ltMoving"));
    grid->setSpacing(spacing);
    grid->setContentsMargins(spacing, spacing / 2, spacing, spacing);
    auto* nudgeLabel = new QLabel(tr("Arrow keys"));
    nudgeLabel->setBuddy(m_nudge);
    auto* snapLabel = new QLabel(tr("Snap to"));
    snapLabel->setBuddy(m_snap);
    auto* gridLabel = new QLabel(tr("Grid"));
    gridLabel->setBuddy(m_grid);
    grid->addWidget(nudgeLabel, 0, 0);
    grid->addWidget(m_nudge, 0, 1);
    grid->addWidget(snapLabel, 1, 0);
    grid->addWidget(m_snap, 1, 1);
    grid->addWidget(gridLabel, 2, 0);
    grid->addWidget(m_grid, 2, 1);
    grid->setColumnStretch(1, 1);
    for (QComboBox* choice : {m_nudge, m_snap}) {
        // The dock is as wide as its other boxes need.
        choice->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        choice->setMinimumContentsLength(letters);
        TakeWheelOnlyWithFocus(choice);
    }
    TakeWheelOnlyWithFocus(m_grid);
    connect(m_nudge, qOverload<int>(&QComboBox::currentIndexChanged), this, &MovingBox::Change);
    connect(m_snap, qOverload<int>(&QComboBox::currentIndexChanged), this, &MovingBox::Change);
    connect(m_grid, qOverload<int>(&QSpinBox::valueChanged), this, &MovingBox::Change);
    Change();
}

MoveOptions MovingBox::Options() const
{
    return {m_nudge->currentData().toInt(), static_cast<SnapTo>(m_snap->currentIndex()),
            m_grid->value()};
}

void MovingBox::Remember()
{
    const QSettings settings = Settings();
    const QString snap = settings.value(SnapKey).toString();
    const auto* name =
        std::find_if(std::begin(SnapNames), std::end(SnapNames),
                     [&snap](const char* each) { return snap == QLatin1String(each); });
    // Missing settings keep their defaults.
    m_nudge->setCurrentIndex(std::max(m_nudge->findData(settings.value(NudgeKey).toInt()), 0));
    if (name != std::end(SnapNames)) {
        m_snap->setCurrentIndex(static_cast<int>(name - std::begin(SnapNames)));
    }
    if (const int metres = settings.value(GridKey).toInt(); metres > 0) {
        m_grid->setValue(metres);
    }
    m_isRemembered = true;
}

void MovingBox::Change()
{
    const MoveOptions options = Options();
    m_grid->setEnabled(options.snapTo == SnapTo::Grid);
    if (m_isRemembered) {
        QSettings settings = Settings();
        settings.setValue(NudgeKey, options.nudgeMetres);
        settings.setValue(SnapKey, QLatin1String(SnapNames[m_snap->currentIndex()]));
        settings.setValue(GridKey, options.gridMetres);
    }
    emit OptionsChanged(options);
}
