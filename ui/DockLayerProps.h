#pragma once

#include "app/Tracked.h"
#include "layers/Layer.h"

#include <QDockWidget>
#include <QList>
#include <QVector>

#include <memory>

class Document;
class QCheckBox;
class QGridLayout;
class QGroupBox;

namespace Ui {
class DockLayerProps;
}

/// The dock that shows and edits the flags, colour and opacity of the selected layer. It is
/// disabled without one.
class DockLayerProps : public QDockWidget
{
    Q_OBJECT

public:
    /// document: the project; it outlives the dock.
    explicit DockLayerProps(Document& document, QWidget* parent = nullptr);
    ~DockLayerProps() override;
    Q_DISABLE_COPY(DockLayerProps)

    /// Adds a box for each of the project's area flag types. Existing boxes stay.
    void BuildFlagBoxes();
    /// Replaces the boxes if the project's area flag types have changed, and shows the layer again.
    void Refresh();
    /// Shows a layer, or none for null. With announce, emits its colour and opacity.
    void SetLayer(Layer* layer, bool announce);

signals:
    void ColorChanged();
    /// 0 to 1.
    void OpacityChanged(float opacity);

private:
    void AddBoxes(const QVector<QString>& names, QGroupBox* group, QGridLayout* grid,
                  QList<QCheckBox*>& boxes);
    void OrderTabs();
    void UpdateFlags();
    void UpdateColor(const QColor& color);
    void UpdateAlpha(int alpha, float opacity);

    void Follow(const Layer* layer);

    Document& m_document;
    std::unique_ptr<Ui::DockLayerProps> m_ui;
    QList<QCheckBox*> m_usageBoxes;
    QList<QCheckBox*> m_valueBoxes;
    Tracked<Layer> m_layer;
};
