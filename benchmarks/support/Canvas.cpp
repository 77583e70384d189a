#include "benchmarks/support/Canvas.h"

#include "app/ProjectSettings.h"
#include "benchmarks/support/Shapes.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"

#include <QCoreApplication>
#include <QMouseEvent>

#include <memory>
#include <utility>

void SendMouse(MainView& view, QEvent::Type type, QPoint position, Qt::MouseButtons buttons)
{
    const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, position, view.viewport()->mapToGlobal(position), button, buttons,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(view.viewport(), &event);
}

Canvas::Canvas(int side)
{
    constexpr QSize viewSize(1200, 800);
    constexpr int metres = 15360;
    ProjectSettings::Instance().SetSizes(side, side, metres, metres);
    view.resize(viewSize);
    view.SetDocument(document);
    view.SetBrushDock(&dock);
    view.SetSceneSize(side, side);
    view.show();
    QCoreApplication::processEvents();
}

void Canvas::AddLayers(int count)
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    const QImage first = NaturalMask(settings.LayerSize(), 7);
    for (int i = 0; i < count; ++i) {
        auto layer = std::make_unique<Layer>(1, 1, &layers, QStringLiteral("%1").arg(i));
        // Each layer has a mask of its own, but with the same shapes, because making shapes takes
        // longer than the measured work.
        layer->SetImage(i == 0 ? first : first.copy(), QColor::fromHsv(i * 11, 200, 200, 128));
        layers.AddLayer(std::move(layer));
    }
}

void Canvas::ShowLayers(int first)
{
    scene()->ClearLayers();
    const QVector<Layer*> all = layers.Layers();
    for (int i = first; i < all.size(); ++i) {
        scene()->AddLayer(all.at(i));
    }
}

void Canvas::SetZoom(double zoom)
{
    view.setTransform(QTransform::fromScale(zoom, zoom));
    view.centerOn(view.sceneRect().center());
    QCoreApplication::processEvents();
}
