#include "tests/support/CanvasActions.h"

#include "canvas/WidgetRuler.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QGraphicsEllipseItem>
#include <QKeyEvent>
#include <QPainter>
#include <QRubberBand>
#include <QStyleOptionGraphicsItem>
#include <QTimerEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cstdlib>

QImage Shown(MainScene& scene, QSize size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    scene.render(&painter, QRectF(QPointF(), size), QRectF(QPointF(), size));
    return image;
}

QImage PictureOf(QGraphicsItem& item)
{
    QStyleOptionGraphicsItem option;
    option.exposedRect = item.boundingRect();
    QImage image(item.boundingRect().size().toSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    item.paint(&painter, &option, nullptr);
    return image;
}

int Area(const Layer& layer)
{
    int area = 0;
    for (int y = 0; y < layer.Image().height(); ++y) {
        const uchar* row = layer.Image().constScanLine(y);
        area += int(std::count(row, row + layer.Image().width(), raster::MaskSet));
    }
    return area;
}

bool IsSet(const Layer& layer, int x, int y)
{
    return layer.Image().pixelIndex(x, y) == raster::MaskSet;
}

QGraphicsEllipseItem* BrushCursor(CanvasFixture& canvas)
{
    return ItemOf<QGraphicsEllipseItem>(canvas, BrushZ);
}

WidgetRuler* Ruler(const MainView& view, bool isHorizontal)
{
    const QList<WidgetRuler*> rulers = view.findChildren<WidgetRuler*>();
    for (WidgetRuler* ruler : rulers) {
        if (ruler->IsHorizontal() == isHorizontal) {
            return ruler;
        }
    }
    return nullptr;
}

QRubberBand* Band(const MainView& view)
{
    return view.findChild<QRubberBand*>();
}

void Wheel(MainView& view, QPoint position, int delta, Qt::KeyboardModifiers modifiers)
{
    QWheelEvent event(position, view.viewport()->mapToGlobal(position), {}, {0, delta},
                      Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(view.viewport(), &event);
}

void Zoom(MainView& view, int steps)
{
    for (int i = 0; i < std::abs(steps); ++i) {
        Wheel(view, view.viewport()->rect().center(), steps < 0 ? -120 : 120, Qt::ControlModifier);
    }
}

void Tick(MainView& view)
{
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(&view);
    for (const auto& timer : timers) {
        if (timer.interval == 60) {
            QTimerEvent event(timer.timerId);
            QCoreApplication::sendEvent(&view, &event);
        }
    }
}

void SendKey(MainView& view, QEvent::Type type, int key, quint32 scanCode, bool isAutoRepeat)
{
    QKeyEvent event(type, key, Qt::NoModifier, scanCode, 0, 0, QString(), isAutoRepeat);
    QCoreApplication::sendEvent(&view, &event);
}
