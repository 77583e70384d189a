#include "canvas/PixelLimit.h"

#include "canvas/tools/PaintTools.h"
#include "document/edits/LayerEdits.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Masks.h"
#include "tests/support/Painting.h"

#include <QApplication>
#include <QTest>

#include <functional>

namespace {

/// Pixels in eighths, so that all places below are whole numbers.
constexpr int Eighths = 8;
/// View pixels for a layer pixel.
constexpr int Scale = 4;

struct Place
{
    qint64 x;
    qint64 y;
};

using IsIn = std::function<bool(int x, int y)>;

Place Centre(int x, int y)
{
    return {Eighths * x + Eighths / 2, Eighths * y + Eighths / 2};
}

Place PlaceOf(QPointF position)
{
    return {qRound64(Eighths * position.x()), qRound64(Eighths * position.y())};
}

bool IsInRectangle(Place centre, const QRectF& rect)
{
    const Place from = PlaceOf(rect.topLeft());
    const Place to = PlaceOf(rect.bottomRight());
    return centre.x >= from.x && centre.x < to.x && centre.y >= from.y && centre.y < to.y;
}

bool IsInEllipse(Place centre, const QRectF& rect)
{
    const Place from = PlaceOf(rect.topLeft());
    const Place to = PlaceOf(rect.bottomRight());
    const qint64 width = to.x - from.x;
    const qint64 height = to.y - from.y;
    const qint64 x = (2 * centre.x - from.x - to.x) * height;
    const qint64 y = (2 * centre.y - from.y - to.y) * width;
    return width > 0 && height > 0 && x * x + y * y <= width * width * height * height;
}

bool IsOnLine(Place centre, QPointF start, QPointF end, int width)
{
    const Place a = PlaceOf(start);
    const Place b = PlaceOf(end);
    const qint64 x = b.x - a.x;
    const qint64 y = b.y - a.y;
    const qint64 length = x * x + y * y;
    const qint64 along = (centre.x - a.x) * x + (centre.y - a.y) * y;
    const qint64 radius = Eighths / 2 * width;
    if (along <= 0 || along >= length) {
        const Place tip = along <= 0 ? a : b;
        const qint64 awayX = centre.x - tip.x;
        const qint64 awayY = centre.y - tip.y;
        return awayX * awayX + awayY * awayY <= radius * radius;
    }
    const qint64 across = (centre.x - a.x) * y - (centre.y - a.y) * x;
    return across * across <= radius * radius * length;
}

/// A user who draws with random tools, and what the plain definitions say about it.
class Drawing
{
public:
    Drawing();

    /// Draws something, compares every pixel, and takes it back. Returns what is wrong.
    QString Draw();

private:
    void ChooseWithin();
    QPoint Pixel();
    QPointF At(QPoint pixel) const { return canvas.view.mapToScene(pixel); }
    void Send(QEvent::Type type, QPoint pixel, Qt::MouseButton button, Qt::MouseButtons buttons);
    IsIn DrawTwoCorners(PaintToolKind kind);
    IsIn DrawCorners(PaintToolKind kind);
    IsIn Fill();
    IsIn Area(QPoint seed);
    QString Compare(const QByteArray& before, const IsIn& isIn) const;
    QString Undo(const QByteArray& before);

    Random m_random;
    QSize m_size{m_random.Between(1, 40), m_random.Between(1, 30)};
    Painting canvas{m_size};
    Layer* m_second = canvas.AddLayer(Qt::blue);
    Layer* m_third = canvas.AddLayer(Qt::green);
    Qt::MouseButton m_button = Qt::LeftButton;
    Qt::KeyboardModifiers m_modifiers;
    PaintWithin m_within = PaintWithin::Anywhere;
    QByteArray m_limit;
};

Drawing::Drawing()
{
    canvas.view.scale(Scale, Scale);
    for (Layer* layer : {canvas.layer, m_second, m_third}) {
        layer->SetImage(RandomMask(m_random, m_size), layer->Color());
        layer->SetVisible(m_random.Below(2) == 0);
    }
    canvas.Edit(canvas.layer);
}

void Drawing::ChooseWithin()
{
    PaintOptions& options = canvas.Tools().Options();
    Layer* layers[] = {canvas.layer, m_second, m_third};
    m_within = static_cast<PaintWithin>(m_random.Below(3));
    options.within = m_within;
    options.withinLayer = layers[m_random.Below(3)];
    m_limit = Indices(options.withinLayer->Image());
}

/// Some lie beside the map.
QPoint Drawing::Pixel()
{
    const QPoint corner = canvas.view.mapFromScene(QPointF());
    return corner + QPoint(m_random.Between(-20, Scale * m_size.width() + 20),
                           m_random.Between(-20, Scale * m_size.height() + 20));
}

void Drawing::Send(QEvent::Type type, QPoint pixel, Qt::MouseButton button,
                   Qt::MouseButtons buttons)
{
    canvas.Mouse(type, pixel, button, buttons, m_modifiers);
}

IsIn Drawing::DrawTwoCorners(PaintToolKind kind)
{
    const QPoint start = Pixel();
    const QPoint end = Pixel();
    const int width = m_random.Between(1, 12);
    canvas.dock.SetSize(width);
    m_modifiers = {};
    if (kind != PaintToolKind::Line) {
        m_modifiers.setFlag(Qt::ShiftModifier, m_random.Below(3) == 0);
        m_modifiers.setFlag(Qt::ControlModifier, m_random.Below(3) == 0);
    }
    Send(QEvent::MouseButtonPress, start, m_button, m_button);
    Send(QEvent::MouseMove, Pixel(), Qt::NoButton, m_button);
    Send(QEvent::MouseButtonRelease, end, m_button, Qt::NoButton);
    const QPointF from = At(start);
    QPointF way = At(end) - from;
    if (kind == PaintToolKind::Line) {
        return [=](int x, int y) { return IsOnLine(Centre(x, y), from, from + way, width); };
    }
    if (m_modifiers.testFlag(Qt::ShiftModifier)) {
        const double side = std::max(std::abs(way.x()), std::abs(way.y()));
        way = {way.x() < 0 ? -side : side, way.y() < 0 ? -side : side};
    }
    const bool isCentred = m_modifiers.testFlag(Qt::ControlModifier);
    const QRectF rect = QRectF(isCentred ? from - way : from, from + way).normalized();
    m_modifiers = {};
    if (kind == PaintToolKind::Rectangle) {
        return [=](int x, int y) { return IsInRectangle(Centre(x, y), rect); };
    }
    return [=](int x, int y) { return IsInEllipse(Centre(x, y), rect); };
}

IsIn Drawing::DrawCorners(PaintToolKind kind)
{
    QPolygonF corners;
    const bool isLasso = kind == PaintToolKind::Lasso;
    QPoint pixel;
    for (int count = m_random.Between(1, 6); count > 0; --count) {
        const bool isFirst = corners.isEmpty();
        pixel = Pixel();
        if (corners.isEmpty() || corners.last() != At(pixel)) {
            corners.append(At(pixel));
        }
        if (isLasso && !isFirst) {
            Send(QEvent::MouseMove, pixel, Qt::NoButton, m_button);
        } else {
            Send(QEvent::MouseButtonPress, pixel, m_button, m_button);
        }
        if (!isLasso) {
            Send(QEvent::MouseButtonRelease, pixel, m_button, Qt::NoButton);
        }
        if (corners.size() > 1 && m_random.Below(6) == 0) {
            canvas.Key(Qt::Key_Backspace);
            corners.removeLast();
        }
    }
    if (isLasso) {
        corners.append(At(pixel));
        Send(QEvent::MouseButtonRelease, pixel, m_button, Qt::NoButton);
    } else if (m_random.Below(2) == 0) {
        canvas.Key(Qt::Key_Return);
    } else {
        // Its place is a corner, unless the click before has placed that.
        const QPoint way = canvas.view.mapFromScene(corners.last()) - pixel;
        if (way.manhattanLength() >= QApplication::startDragDistance()) {
            corners.append(At(pixel));
        }
        Send(QEvent::MouseButtonDblClick, pixel, m_button, m_button);
        Send(QEvent::MouseButtonRelease, pixel, m_button, Qt::NoButton);
    }
    return [=](int x, int y) {
        return corners.containsPoint(QPointF(x + 0.5, y + 0.5), Qt::OddEvenFill);
    };
}

IsIn Drawing::Fill()
{
    const QPoint pixel = Pixel();
    const QPointF place = At(pixel);
    canvas.Tools().Options().fillBounds = static_cast<FillBounds>(m_random.Below(3));
    IsIn isIn = Area({int(std::floor(place.x())), int(std::floor(place.y()))});
    Send(QEvent::MouseButtonPress, pixel, m_button, m_button);
    Send(QEvent::MouseButtonRelease, pixel, m_button, Qt::NoButton);
    return isIn;
}

IsIn Drawing::Area(QPoint seed)
{
    const FillBounds bounds = canvas.Tools().Options().fillBounds;
    const auto index = [width = m_size.width()](QPoint pixel) {
        return pixel.y() * width + pixel.x();
    };
    const QRect map(QPoint(), m_size);
    QVector<bool> isIn(m_size.width() * m_size.height());
    QVector<QByteArray> masks{canvas.Pixels()};
    for (const Layer* layer : {m_second, m_third}) {
        if (bounds == FillBounds::Ticked && layer->IsVisible()) {
            masks.append(Indices(layer->Image()));
        }
    }
    const auto isAlike = [&](QPoint pixel) {
        return std::all_of(masks.begin(), masks.end(), [&](const QByteArray& mask) {
            return mask[index(pixel)] == mask[index(seed)];
        });
    };
    QVector<QPoint> next;
    const auto add = [&](QPoint pixel) {
        if (map.contains(pixel) && !isIn[index(pixel)] && isAlike(pixel)) {
            isIn[index(pixel)] = true;
            next.append(pixel);
        }
    };
    if (map.contains(seed)) {
        add(seed);
        for (int i = 0; bounds == FillBounds::All && i < isIn.size(); ++i) {
            add({i % m_size.width(), i / m_size.width()});
        }
    }
    while (!next.isEmpty()) {
        const QPoint pixel = next.takeLast();
        for (const QPoint step : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)}) {
            add(pixel + step);
        }
    }
    return [isIn, width = m_size.width()](int x, int y) { return isIn[y * width + x]; };
}

QString Drawing::Compare(const QByteArray& before, const IsIn& isIn) const
{
    const QByteArray after = canvas.Pixels();
    for (int y = 0; y < m_size.height(); ++y) {
        for (int x = 0; x < m_size.width(); ++x) {
            const int i = y * m_size.width() + x;
            const bool isAllowed = m_within == PaintWithin::Anywhere ||
                                   (m_limit[i] != 0) == (m_within == PaintWithin::Inside);
            const char painted = m_button == Qt::LeftButton ? '\xff' : '\0';
            const char wanted = isAllowed && isIn(x, y) ? painted : before[i];
            if (after[i] != wanted) {
                return QStringLiteral("Pixel %1, %2 is %3.").arg(x).arg(y).arg(uchar(after[i]));
            }
        }
    }
    return {};
}

QString Drawing::Undo(const QByteArray& before)
{
    const QByteArray after = canvas.Pixels();
    if (canvas.StepCount() > 0) {
        canvas.document.Undo();
        canvas.document.Redo();
        if (canvas.Pixels() != after) {
            return QStringLiteral("Redo gives other pixels.");
        }
        canvas.document.Undo();
    }
    if (canvas.Pixels() != before) {
        return QStringLiteral("Undo gives other pixels.");
    }
    canvas.document.History().clear();
    return {};
}

QString Drawing::Draw()
{
    constexpr PaintToolKind kinds[] = {PaintToolKind::Line,    PaintToolKind::Rectangle,
                                       PaintToolKind::Ellipse, PaintToolKind::Polygon,
                                       PaintToolKind::Lasso,   PaintToolKind::Fill};
    const PaintToolKind kind = kinds[m_random.Below(int(std::size(kinds)))];
    ChooseWithin();
    canvas.Tools().Choose(kind);
    m_button = m_random.Below(3) == 0 ? Qt::RightButton : Qt::LeftButton;
    const QByteArray before = canvas.Pixels();
    IsIn isIn;
    if (kind == PaintToolKind::Fill) {
        isIn = Fill();
    } else if (kind == PaintToolKind::Polygon || kind == PaintToolKind::Lasso) {
        isIn = DrawCorners(kind);
    } else {
        isIn = DrawTwoCorners(kind);
    }
    QString wrong = Compare(before, isIn);
    if (wrong.isEmpty()) {
        wrong = Undo(before);
    }
    return wrong.isEmpty() ? wrong
                           : QStringLiteral("%1 (tool %2, within %3)")
                                 .arg(wrong)
                                 .arg(int(kind))
                                 .arg(int(m_within));
}

} // namespace

class tst_PaintWithin : public QObject
{
    Q_OBJECT

private slots:
    void ShapesAndFillsPaintWithin();
    void BrushPaintsWithin_data();
    void BrushPaintsWithin();
    void LayerThatIsGoneRefuses();
    void PixelsOutsideStayInAnyFormat();
};

void tst_PaintWithin::ShapesAndFillsPaintWithin()
{
    constexpr int projects = 100;
    constexpr int shapes = 100;
    for (int i = 0; i < projects; ++i) {
        Drawing drawing;
        for (int j = 0; j < shapes; ++j) {
            const QString wrong = drawing.Draw();
            QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
        }
    }
}

void tst_PaintWithin::BrushPaintsWithin_data()
{
    QTest::addColumn<QString>("what");
    for (const char* what : {"greys", "no greys", "another paint", "another layer colour"}) {
        QTest::newRow(what) << QString::fromLatin1(what);
    }
}

/// What a stroke does without the limit says what it does with it.
void tst_PaintWithin::BrushPaintsWithin()
{
    QFETCH(QString, what);
    Random random;
    Painting canvas({60, 50});
    Layer* other = canvas.AddLayer(Qt::blue);
    const auto point = [&random] {
        return QPointF(random.Between(-9, 69), random.Between(-9, 59));
    };
    for (int i = 0; i < 200; ++i) {
        for (Layer* layer : {canvas.layer, other}) {
            const QImage mask = RandomMask(random, {60, 50});
            layer->SetImage(
                what == "greys"
                    ? mask
                    : raster::ImageToMask(raster::MaskToDisplay(mask, 0xffffffff), 0xffffffff),
                Qt::red);
        }
        // The painter has the colours that it has loaded.
        const auto stroke = [&](QPointF from, QPointF to, Qt::MouseButton button) {
            canvas.layer->SetColor(Qt::red);
            canvas.Edit(canvas.layer);
            if (what == "another paint") {
                canvas.dock.GetBrush()->SetPaintColor(Qt::yellow);
            } else if (what == "another layer colour") {
                canvas.layer->SetColor(Qt::green);
            }
            canvas.PaintStroke(from, to, button);
        };
        canvas.dock.SetSize(random.Between(1, 20));
        PaintOptions& options = canvas.Tools().Options();
        options.withinLayer = random.Below(3) == 0 ? canvas.layer : other;
        const QByteArray before = canvas.Pixels();
        const QByteArray limit = Indices(options.withinLayer->Image());
        const auto button = random.Below(3) == 0 ? Qt::RightButton : Qt::LeftButton;
        const QPointF from = point();
        const QPointF to = point();
        options.within = PaintWithin::Anywhere;
        stroke(from, to, button);
        const QByteArray free = canvas.Pixels();
        const bool isStep = canvas.StepCount() > 0;
        canvas.document.Undo();
        QCOMPARE(canvas.Pixels(), before);
        for (const PaintWithin within : {PaintWithin::Inside, PaintWithin::Outside}) {
            QByteArray wanted = before;
            for (int pixel = 0; pixel < wanted.size(); ++pixel) {
                if ((limit[pixel] != 0) == (within == PaintWithin::Inside)) {
                    wanted[pixel] = free[pixel];
                }
            }
            options.within = within;
            stroke(from, to, button);
            QCOMPARE(canvas.Pixels(), wanted);
            canvas.document.Undo();
            QCOMPARE(canvas.Pixels(), before);
        }
        // A stroke after those is as it was before.
        options.within = PaintWithin::Anywhere;
        stroke(from, to, button);
        QCOMPARE(canvas.Pixels(), free);
        QCOMPARE(canvas.StepCount() > 0, isStep);
        canvas.document.History().clear();
    }
}

void tst_PaintWithin::LayerThatIsGoneRefuses()
{
    Painting canvas;
    LogSpy log;
    Layer* other = canvas.AddLayer(Qt::blue, {100, 100, 20, 20});
    canvas.Tools().Options().within = PaintWithin::Outside;
    canvas.Tools().Options().withinLayer = other;
    const QByteArray before = canvas.Pixels();
    canvas.document.Do(Edits::RemoveLayer(*other));
    for (const PaintToolKind kind :
         {PaintToolKind::Brush, PaintToolKind::Ellipse, PaintToolKind::Fill}) {
        canvas.Tools().Choose(kind);
        canvas.Drag({90, 30}, {150, 90});
        QCOMPARE(canvas.view.viewport()->cursor().shape(), Qt::ForbiddenCursor);
        QCOMPARE(log.Take(), QStringList("Info: There is no layer to paint within."));
    }
    canvas.document.History().clear();
    canvas.Drag({90, 30}, {150, 90});
    QCOMPARE(canvas.Pixels(), before);
}

void tst_PaintWithin::PixelsOutsideStayInAnyFormat()
{
    const QImage mask = MaskFromArt({".#+.", "#..+"});
    for (const QImage::Format format :
         {QImage::Format_Indexed8, QImage::Format_ARGB32_Premultiplied}) {
        QImage before(4, 2, format);
        QImage painted(2, 2, format);
        before.fill(1);
        painted.fill(2);
        const auto row = [&](bool isInside, int y) {
            QImage part = painted.copy();
            PixelLimit(mask, isInside).PutBack(part, {1, 0}, before);
            const auto at = [&](int x) {
                return format == QImage::Format_Indexed8 ? uint(part.pixelIndex(x, y))
                                                         : part.pixel(x, y);
            };
            const auto unchanged = format == QImage::Format_Indexed8 ? 1U : before.pixel(0, 0);
            return QVector<bool>{at(0) != unchanged, at(1) != unchanged};
        };
        QCOMPARE(row(true, 0), QVector<bool>({true, true}));
        QCOMPARE(row(true, 1), QVector<bool>({false, false}));
        QCOMPARE(row(false, 0), QVector<bool>({false, false}));
        QCOMPARE(row(false, 1), QVector<bool>({true, true}));
    }
}

QTEST_MAIN(tst_PaintWithin)
#include "tst_PaintWithin.moc"
