#pragma once

#include "canvas/tools/MapTool.h"
#include "canvas/tools/PaintOptions.h"
#include "canvas/tools/PaintTool.h"

#include <functional>
#include <map>
#include <memory>
#include <utility>

class TwoCornerTool;

/// The tools of the Paint mode, of which one is chosen and gets the events; at first it is the
/// brush. A press on a layer whose pixels stay is refused with a message.
class PaintTools : public MapTool
{
public:
    explicit PaintTools(const MapToolParts& parts);

    /// Plain letters choose tools.
    static Qt::Key KeyOf(PaintToolKind kind);

    PaintToolKind Kind() const { return m_kind; }
    /// Takes back what another tool has under way; a stroke of the brush stays.
    void Choose(PaintToolKind kind);
    /// Is called when a tool was chosen; may be empty.
    void SetChosen(std::function<void(PaintToolKind)> callback) { m_chosen = std::move(callback); }
    /// Whether the chosen tool paints with the width of the brush.
    bool ShowsBrush() const;
    PaintTool& Brush() { return *m_brush; }
    /// The project ends, and with it what the tools know of its map.
    void LeaveProject();
    PaintOptions& Options() { return m_options; }
    const PaintOptions& Options() const { return m_options; }

    /// callback: called with the layer that toolPick chose; may be empty.
    void SetLayerPicked(std::function<void(Layer&)> callback) { m_picked = std::move(callback); }
    void PickLayer(Layer& layer) const;
    /// Removes the cursor of a refused press, because its reason may no longer hold.
    void ForgetRefusal() { ShowRefused(false); }
    /// Why the current layer may not be painted now, as one sentence; empty when it may.
    QString WhyNot() const;

    void Press(QGraphicsSceneMouseEvent& event) override;
    void DoublePress(QGraphicsSceneMouseEvent& event) override;
    void Move(QGraphicsSceneMouseEvent& event) override;
    void Release(QGraphicsSceneMouseEvent& event) override;
    bool PressKey(const QKeyEvent& event) override;
    void RepeatKeys() override { m_brush->RepeatKeys(); }
    bool IsBusy() const override { return Chosen().IsBusy(); }
    void Finish() override { Chosen().Finish(); }
    bool IsUnderWay() const override { return Chosen().IsUnderWay(); }
    void Cancel() override { Chosen().Cancel(); }
    void CancelPress() override { Chosen().CancelPress(); }
    void Leave() override { Chosen().Leave(); }
    Qt::CursorShape Cursor() const override;
    void FollowModifiers(Qt::KeyboardModifiers modifiers) override;
    void FollowLayer(Layer* layer) override { Chosen().FollowLayer(layer); }

private:
    MapTool& Chosen() const { return *m_tools.at(m_kind); }
    bool IsRefused(const QGraphicsSceneMouseEvent& event);
    void ShowRefused(bool isRefused);

    std::map<PaintToolKind, std::unique_ptr<MapTool>> m_tools;
    PaintTool* m_brush;
    TwoCornerTool* m_line;
    PaintToolKind m_kind = PaintToolKind::Brush;
    PaintOptions m_options;
    std::function<void(PaintToolKind)> m_chosen;
    std::function<void(Layer&)> m_picked;
    /// The last press was refused, and the mouse is still there.
    bool m_isRefused = false;
};
