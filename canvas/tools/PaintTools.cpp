#include "canvas/tools/PaintTools.h"

#include "app/Log.h"
#include "canvas/MainScene.h"
#include "canvas/tools/FillTool.h"
#include "canvas/tools/PickTool.h"
#include "canvas/tools/PolygonTool.h"
#include "canvas/tools/TwoCornerTool.h"
#include "document/Document.h"

#include <QGraphicsSceneMouseEvent>
#include <QKeyEvent>

PaintTools::PaintTools(const MapToolParts& parts)
    : MapTool(parts)
{
    auto brush = std::make_unique<PaintTool>(parts);
    m_brush = brush.get();
    m_tools[PaintToolKind::Brush] = std::move(brush);
    auto line = std::make_unique<TwoCornerTool>(parts, PaintToolKind::Line);
    m_line = line.get();
    m_tools[PaintToolKind::Line] = std::move(line);
    for (const PaintToolKind kind : {PaintToolKind::Rectangle, PaintToolKind::Ellipse}) {
        m_tools[kind] = std::make_unique<TwoCornerTool>(parts, kind);
    }
    for (const PaintToolKind kind : {PaintToolKind::Polygon, PaintToolKind::Lasso}) {
        m_tools[kind] = std::make_unique<PolygonTool>(parts, kind);
    }
    m_tools[PaintToolKind::Fill] = std::make_unique<FillTool>(parts);
    m_tools[PaintToolKind::Pick] = std::make_unique<PickTool>(parts);
}

Qt::Key PaintTools::KeyOf(PaintToolKind kind)
{
    static const std::map<PaintToolKind, Qt::Key> keys{
        {PaintToolKind::Brush, Qt::Key_B},     {PaintToolKind::Line, Qt::Key_L},
        {PaintToolKind::Rectangle, Qt::Key_R}, {PaintToolKind::Ellipse, Qt::Key_E},
        {PaintToolKind::Polygon, Qt::Key_P},   {PaintToolKind::Lasso, Qt::Key_Q},
        {PaintToolKind::Fill, Qt::Key_F},      {PaintToolKind::Pick, Qt::Key_K},
    };
    return keys.at(kind);
}

void PaintTools::Choose(PaintToolKind kind)
{
    if (kind != m_kind) {
        Leave();
        m_kind = kind;
        m_isRefused = false;
        Parts().scene.ShowToolCursor();
    }
    if (m_chosen) {
        m_chosen(kind);
    }
}

void PaintTools::LeaveProject()
{
    Leave();
    m_line->Forget();
}

bool PaintTools::ShowsBrush() const
{
    return m_kind == PaintToolKind::Brush || m_kind == PaintToolKind::Line;
}

void PaintTools::PickLayer(Layer& layer) const
{
    if (m_picked) {
        m_picked(layer);
    }
}

QString PaintTools::WhyNot() const
{
    // The brush paints into the layer of the scene, which stays when all layers are hidden.
    const Layer* layer = Parts().scene.CurrentLayer();
    if (!layer) {
        return {};
    }
    const QString reason = Parts().document.WhyPixelsStay(*layer);
    return reason.isEmpty() && !m_options.IsUsable(layer->Image().size())
               ? Document::tr("There is no layer to paint within.")
               : reason;
}

/// Logs last, because that processes events.
bool PaintTools::IsRefused(const QGraphicsSceneMouseEvent& event)
{
    const bool isPaint = m_kind != PaintToolKind::Pick &&
                         (event.button() == Qt::LeftButton || event.button() == Qt::RightButton);
    const QString reason = isPaint ? WhyNot() : QString();
    ShowRefused(!reason.isEmpty());
    if (reason.isEmpty()) {
        return false;
    }
    Finish();
    LogInfo(reason);
    return true;
}

/// The cursor tells it until the mouse goes on: a click is too short to be seen.
void PaintTools::ShowRefused(bool isRefused)
{
    if (isRefused != m_isRefused) {
        m_isRefused = isRefused;
        Parts().scene.ShowToolCursor();
    }
}

Qt::CursorShape PaintTools::Cursor() const
{
    return m_isRefused ? Qt::ForbiddenCursor : Chosen().Cursor();
}

void PaintTools::Press(QGraphicsSceneMouseEvent& event)
{
    if (!IsRefused(event)) {
        Chosen().Press(event);
    }
}

void PaintTools::DoublePress(QGraphicsSceneMouseEvent& event)
{
    if (!IsRefused(event)) {
        Chosen().DoublePress(event);
    }
}

void PaintTools::Move(QGraphicsSceneMouseEvent& event)
{
    if (event.buttons() == Qt::NoButton) {
        ShowRefused(false);
    }
    Chosen().Move(event);
}

void PaintTools::Release(QGraphicsSceneMouseEvent& event)
{
    Chosen().Release(event);
}

bool PaintTools::PressKey(const QKeyEvent& event)
{
    if (Chosen().PressKey(event) || m_brush->PressKey(event)) {
        return true;
    }
    if (event.modifiers() != Qt::NoModifier) {
        return false;
    }
    for (const auto& tool : m_tools) {
        if (KeyOf(tool.first) == event.key()) {
            Choose(tool.first);
            return true;
        }
    }
    return false;
}

void PaintTools::FollowModifiers(Qt::KeyboardModifiers modifiers)
{
    Chosen().FollowModifiers(modifiers);
}
