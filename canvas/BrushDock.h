#pragma once

#include "document/Brush.h"

#include <QDockWidget>

#include <memory>

namespace Ui {
class BrushDock;
}

/// The dock in which the user sets the brush's size, cursor colour and outline.
class BrushDock : public QDockWidget
{
    Q_OBJECT

public:
    /// brush: that of the project; it outlives the dock.
    explicit BrushDock(Brush& brush, QWidget* parent = nullptr);
    ~BrushDock() override;
    Q_DISABLE_COPY(BrushDock)

    Brush* GetBrush() { return &m_brush; }

    /// The diameter in layer pixels, clamped to the slider's range.
    void SetSize(int size);
    void GrowBy(int step);
    void ShrinkBy(int step);
    /// The cursor's colour; keeps its alpha.
    void SetColor(const QColor& color);
    /// The cursor's alpha, 0 to 255.
    void SetAlpha(int alpha, float opacity);
    /// Sets the colour with its alpha.
    void SetOutlineColor(const QColor& color);
    void SetOutlineWidth(int width);
    void SetOutline(bool isOn);
    /// The colour that is painted; keeps its alpha.
    void SetPaintColor(QRgb rgb);
    /// Shows a brush that was read from a project. A size that the slider cannot show is clamped.
    void Refresh();

signals:
    /// A setting of the brush changed.
    void Changed();

private:
    void InitForm();
    void Connect();

    Brush& m_brush;
    std::unique_ptr<Ui::BrushDock> m_ui;
};
