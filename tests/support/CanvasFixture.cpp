#include "tests/support/CanvasFixture.h"

#include <QApplication>
#include <QMouseEvent>

#include <memory>
#include <utility>

CanvasFixture::CanvasFixture(QSize layerSize)
    : project(layerSize, layerSize)
    , type(new TerritoryType(QStringLiteral("Deer")))
    , territory(type->NewTerritory())
    , dock(document.GetBrush())
{
    HeldKeys::Instance().ReleaseAll();
    types.AddType(type);
    view.resize(420, 380);
    view.SetDocument(document);
    document.SetEditable(true);
    view.SetBrushDock(&dock);
    view.SetSceneSize(layerSize.width(), layerSize.height());
    Scene().ChangeMode(SceneMode::None);
    view.show();
    QApplication::setActiveWindow(&view);
    view.setFocus();
    QCoreApplication::processEvents();
}

bool CanvasFixture::TakeModified()
{
    const bool isModified = IsModified();
    ProjectSettings::Instance().SetModified(false);
    return isModified;
}

Layer* CanvasFixture::AddLayer(const QColor& color, const QRect& part)
{
    auto layer = std::make_unique<Layer>(1, 1, &layers);
    Layer* added = layer.get();
    QImage mask = ProjectSettings::Instance().BlankLayerImage();
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            mask.setPixel(x, y, raster::MaskSet);
        }
    }
    added->SetImage(mask, color);
    layers.AddLayer(std::move(layer));
    return added;
}

void CanvasFixture::Edit(Layer* layer)
{
    document.SetCurrentLayer(layer);
    Scene().ChangeLayer(layer);
    dock.SetPaintColor(layer->Color().rgb());
    Scene().ChangeMode(SceneMode::Paint);
}

Zone* CanvasFixture::AddZone(QPointF position, float radius)
{
    auto* zone = new Zone(territory, radius);
    zone->setPos(position);
    territory->AddZone(zone);
    Scene().addItem(zone);
    return zone;
}

QGraphicsItem* CanvasFixture::ItemAt(qreal z)
{
    const QList<QGraphicsItem*> items = Scene().items();
    for (QGraphicsItem* item : items) {
        if (qFuzzyCompare(item->zValue(), z)) {
            return item;
        }
    }
    return nullptr;
}

void CanvasFixture::Mouse(QEvent::Type eventType, QPoint position, Qt::MouseButton button,
                          Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers)
{
    QMouseEvent event(eventType, position, view.viewport()->mapToGlobal(position), button, buttons,
                      modifiers);
    QCoreApplication::sendEvent(view.viewport(), &event);
}

void CanvasFixture::Press(QPointF position, Qt::MouseButton button, Qt::KeyboardModifiers modifiers)
{
    Mouse(QEvent::MouseButtonPress, At(position), button, button, modifiers);
}

void CanvasFixture::DoubleClick(QPointF position, Qt::MouseButton button)
{
    Mouse(QEvent::MouseButtonDblClick, At(position), button, button);
}

void CanvasFixture::Move(QPointF position, Qt::MouseButtons buttons,
                         Qt::KeyboardModifiers modifiers)
{
    Mouse(QEvent::MouseMove, At(position), Qt::NoButton, buttons, modifiers);
}

void CanvasFixture::Release(QPointF position, Qt::MouseButton button,
                            Qt::KeyboardModifiers modifiers)
{
    Mouse(QEvent::MouseButtonRelease, At(position), button, Qt::NoButton, modifiers);
}

void CanvasFixture::Click(QPointF position, Qt::MouseButton button)
{
    Press(position, button);
    Release(position, button);
}

void CanvasFixture::Drag(QPointF from, QPointF to, Qt::KeyboardModifiers modifiers)
{
    Press(from, Qt::LeftButton, modifiers);
    Move((from + to) / 2, Qt::LeftButton, modifiers);
    Move(to, Qt::LeftButton, modifiers);
    Release(to, Qt::LeftButton, modifiers);
}
