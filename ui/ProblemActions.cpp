#include "ui/ProblemActions.h"

#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "document/Document.h"
#include "territories/Zone.h"
#include "ui/DockLayerProps.h"
#include "ui/DockLayers.h"
#include "ui/DockTerTypeProps.h"
#include "ui/DockTerTypes.h"
#include "ui/GoActions.h"
#include "ui/ProblemBadge.h"
#include "ui/QuillmapWindow.h"
#include "ui_QuillmapWindow.h"

#include <QCheckBox>

#include <algorithm>
#include <cmath>

namespace {

/// The boxes in which the user mends what a rule finds.
const struct
{
    const char* rule;
    const char* box;
} Boxes[] = {
    {"zone-radius", "txtSize"},
    {"event-like-usage", "rdoDynEvent"},
    {"event-without-name", "txtDynEvent"},
    {"zone-place", "txtZonesX"},
    {"zone-outside-world", "txtZonesX"},
    {"zone-partly-outside", "txtZonesX"},
    {"zone-equal", "txtZonesX"},
    {"zone-contained", "txtZonesX"},
    {"zone-overlap", "txtZonesX"},
};

QString BoxOf(const Finding& finding)
{
    if (finding.rule == QLatin1String("zone-min-above-max")) {
        return finding.part == FindingPart::StaticCounts ? QStringLiteral("spbStaticMax")
                                                         : QStringLiteral("spbDynMax");
    }
    const auto* box = std::find_if(std::begin(Boxes), std::end(Boxes), [&](const auto& each) {
        return finding.rule == QLatin1String(each.rule);
    });
    return box == std::end(Boxes) ? QString() : QLatin1String(box->box);
}

/// The first widget within that takes the focus.
void FocusWithin(QWidget& within)
{
    const QList<QWidget*> widgets = within.findChildren<QWidget*>();
    for (QWidget* widget : widgets) {
        if (widget->focusPolicy() != Qt::NoFocus && widget->isEnabled() && widget->isVisible()) {
            widget->setFocus(Qt::OtherFocusReason);
            return;
        }
    }
}

void Focus(const QWidget& within, const QString& name)
{
    if (auto* widget = within.findChild<QWidget*>(name)) {
        widget->setFocus(Qt::OtherFocusReason);
    }
}

} // namespace

ProblemActions::ProblemActions(const EditorParts& parts, ProjectNumbers& numbers, GoActions& go)
    : m_parts(parts)
    , m_go(go)
    , m_problems(parts.document, numbers)
    , m_accepted(parts.document, m_problems)
    , m_dock(
          parts.document, m_problems, m_accepted,
          [this](const Problem& problem) { ShowThing(problem); }, &parts.window)
{
    parts.window.addDockWidget(Qt::BottomDockWidgetArea, &m_dock);
    m_dock.hide();
    QAction* action = parts.form.actionProblems;
    connect(action, &QAction::triggered, &m_dock, &QWidget::setVisible);
    connect(&m_dock, &DockProblems::Fixed, this, &ProblemActions::ShowFixed);
    auto* badge = new ProblemBadge;
    parts.form.toolBarEdit->addSeparator();
    parts.form.toolBarEdit->addWidget(badge);
    connect(badge, &ProblemBadge::Clicked, this, [this] {
        m_dock.show();
        m_dock.raise();
    });
    const auto count = [this, badge] {
        const int errors = m_accepted.OpenErrorCount();
        badge->SetCounts(errors, m_accepted.OpenCount() - errors, m_problems.IsUpToDate());
    };
    connect(&m_accepted, &AcceptedFindings::Changed, badge, count);
    connect(&m_problems, &Problems::StateChanged, badge, count);
}

void ProblemActions::ShowThing(const Problem& problem)
{
    using Kind = FindingSubject::Kind;
    if (m_parts.document.IsBusy()) {
        return;
    }
    // Nothing is chosen in a project that is only viewed.
    if (!m_parts.document.IsEditable()) {
        if (const Zone* zone = problem.zone) {
            JumpTo(zone->sceneBoundingRect());
        }
        return;
    }
    switch (problem.finding.subject.kind) {
    case Kind::Layer:
        ShowLayer(problem);
        break;
    case Kind::Type:
        ShowRow(*problem.type, nullptr);
        break;
    case Kind::Territory:
        ShowRow(*problem.territory, problem.territory);
        break;
    case Kind::Zone:
        ShowZone(problem);
        break;
    case Kind::UsageType:
    case Kind::ValueType:
        ShowFlag(problem.finding.subject.kind == Kind::UsageType, problem.finding.subject.index);
        break;
    case Kind::Background:
        FocusWithin(*m_parts.form.gboBgOver);
        break;
    case Kind::Project:
    case Kind::Bitmap:
        break;
    }
}

void ProblemActions::ShowLayer(const Problem& problem)
{
    Layer* layer = problem.layer;
    if (!layer) {
        // A load left it out.
        return;
    }
    m_parts.window.ShowLayers(true);
    m_parts.layers.raise();
    m_parts.layers.SelectItem(layer);
    m_parts.window.LayerSelected(layer);
    const QString& rule = problem.finding.rule;
    if (rule == QLatin1String("layer-without-flags") || rule == QLatin1String("unnamed-flag")) {
        ShowFlag(problem.finding.part != FindingPart::ValueFlags, 0);
    } else {
        Focus(m_parts.layers, QStringLiteral("treeLayers"));
    }
}

/// The box of the flag, while a layer is edited.
void ProblemActions::ShowFlag(bool isUsage, int index)
{
    m_parts.window.ShowLayers(true);
    m_parts.layerProps.raise();
    const auto* group = m_parts.layerProps.findChild<QWidget*>(
        isUsage ? QStringLiteral("gboLayerUsageFlags") : QStringLiteral("gboLayerValueFlags"));
    const QList<QCheckBox*> boxes = group ? group->findChildren<QCheckBox*>() : QList<QCheckBox*>();
    if (QCheckBox* box = boxes.value(index)) {
        box->setFocus(Qt::OtherFocusReason);
    }
}

void ProblemActions::ShowRow(QStandardItem& row, const Territory* territory)
{
    m_parts.window.ShowTerritoryTypes(true);
    m_parts.terTypes.raise();
    m_parts.terTypes.SelectRow(&row);
    Focus(m_parts.terTypes, QStringLiteral("treeTerTypes"));
    QRectF area;
    if (territory) {
        for (const Zone* zone : territory->Zones()) {
            area |= zone->sceneBoundingRect();
        }
    }
    JumpTo(area);
}

void ProblemActions::ShowZone(const Problem& problem)
{
    Zone* zone = problem.zone;
    m_parts.window.ShowTerritoryTypes(true);
    m_parts.scene.SelectZones({zone});
    JumpTo(zone->sceneBoundingRect());
    const QString box = BoxOf(problem.finding);
    if (!box.isEmpty()) {
        m_parts.terTypeProps.raise();
        Focus(m_parts.terTypeProps, box);
    }
}

/// Brings the middle of the area (scene units) to the middle of the view. Files may hold places
/// that are no numbers.
void ProblemActions::JumpTo(const QRectF& area)
{
    const QPointF center = area.center();
    if (!area.isNull() && std::isfinite(center.x()) && std::isfinite(center.y())) {
        m_go.Jump({center, m_parts.view.Moves().Place().zoom});
    }
}

/// The docks follow what their own controls change, and undo.
void ProblemActions::ShowFixed()
{
    m_parts.layerProps.SetLayer(m_parts.document.CurrentLayer(), false);
    m_parts.window.ZoneSelected(m_parts.scene.selectedItems());
}
