#include "tests/support/Painting.h"

#include "tests/support/Masks.h"

#include <QTest>

namespace {

const QColor Ink(255, 0, 0);

} // namespace

Painting::Painting(QSize size)
    : CanvasFixture(size)
    , layer(AddLayer(Ink, Wood & QRect(QPoint(), size)))
    , m_composition(document, view)
{
    layer->setText(QStringLiteral("Forest"));
    Edit(layer);
    dock.SetSize(10);
    TakeModified();
}

void Painting::AddGreys()
{
    Random random;
    layer->SetImage(RandomMask(random, layer->Image().size()), Ink);
    Edit(layer);
}

QByteArray Painting::Pixels() const
{
    return Indices(layer->Image());
}

void Painting::PaintStroke(QPointF from, QPointF to, Qt::MouseButton button,
                           Qt::KeyboardModifiers modifiers)
{
    Press(from, button, modifiers);
    Move((from + to) / 2, button, modifiers);
    Move(to, button, modifiers);
    Release(to, button, modifiers);
}

void Painting::Key(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(&view, key, modifiers);
}
