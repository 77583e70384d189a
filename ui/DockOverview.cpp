#include "ui/DockOverview.h"

#include "canvas/WidgetOverview.h"

DockOverview::DockOverview(Document& document, MainView& view, QWidget* parent)
    : QDockWidget(tr("Overview"), parent)
{
    setObjectName(QStringLiteral("DockOverview"));
    auto* overview = new WidgetOverview(document, view, this);
    overview->setObjectName(QStringLiteral("viewOverview"));
    overview->setToolTip(tr("Click or drag to move the map"));
    setWidget(overview);
    connect(this, &QDockWidget::visibilityChanged, overview, &WidgetOverview::SetSeen);
    connect(overview, &WidgetOverview::AboutToJump, this, &DockOverview::AboutToJump);
}
