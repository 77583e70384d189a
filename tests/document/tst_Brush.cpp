#include "document/Brush.h"

#include "tests/support/Random.h"

#include <QImage>
#include <QPainter>
#include <QTest>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <cmath>
#include <cstring>
#include <limits>

namespace {

constexpr QRgb Ground = 0xFF112233;

/// One operation of the brush.
struct Operation
{
    bool isDab = true;
    bool isErasing = false;
    int size = 32;
    QPointF from;
    QPointF to;

    Brush MakeBrush() const
    {
        Brush brush;
        brush.SetSize(size);
        brush.SetPaintColor(QColor(200, 30, 60));
        brush.SetPosition(to);
        return brush;
    }

    void Draw(QImage& image, const BrushPatch& patch) const
    {
        const Brush brush = MakeBrush();
        if (isDab) {
            isErasing ? brush.EraseDab(image, patch) : brush.PaintDab(image, patch);
        } else if (isErasing) {
            brush.EraseSegment(image, from, to, patch);
        } else {
            brush.PaintSegment(image, from, to, patch);
        }
    }

    /// Draws the operation into a whole picture with plain QPainter calls.
    void DrawLiterally(QImage& image) const
    {
        QPainter painter(&image);
        painter.setCompositionMode(isErasing ? QPainter::CompositionMode_Clear
                                             : QPainter::CompositionMode_SourceOver);
        const QColor color = isErasing ? QColor(Qt::transparent) : QColor(200, 30, 60);
        if (isDab) {
            const double radius = size / 2.0;
            painter.setPen(QPen(QColor(Qt::transparent)));
            painter.setBrush(QBrush(color, Qt::SolidPattern));
            painter.drawEllipse(to, radius, radius);
        } else {
            painter.setPen(QPen(QBrush(color, Qt::SolidPattern), size, Qt::SolidLine, Qt::RoundCap,
                                Qt::RoundJoin));
            painter.drawLine(from, to);
        }
    }

    QRect Touched() const
    {
        const Brush brush = MakeBrush();
        return isDab ? brush.DabRect() : brush.SegmentRect(from, to);
    }

    QByteArray Text() const
    {
        const auto number = [](qreal value) { return QString::number(value, 'g', 17); };
        return QStringLiteral("%1 %2, size %3, from %4, %5 to %6, %7")
            .arg(isErasing ? QStringLiteral("erase") : QStringLiteral("paint"),
                 isDab ? QStringLiteral("dab") : QStringLiteral("segment"), QString::number(size),
                 number(from.x()), number(from.y()), number(to.x()), number(to.y()))
            .toLatin1();
    }
};

QImage Picture(const QSize& size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Ground);
    return image;
}

void CopyInto(QImage& image, const QImage& patch, const QPoint& at)
{
    for (int y = 0; y < patch.height(); ++y) {
        std::memcpy(image.scanLine(at.y() + y) + 4 * at.x(), patch.constScanLine(y),
                    static_cast<size_t>(patch.width()) * 4);
    }
}

class RandomOperations
{
public:
    explicit RandomOperations(const QSize& size)
        : m_size(size)
    {
    }

    Operation Next()
    {
        Operation operation;
        operation.isDab = m_random.Below(2) == 0;
        operation.isErasing = m_random.Below(2) == 0;
        const int sizes[] = {1, 3, 32, 256};
        operation.size = m_random.Between(1, sizes[m_random.Below(4)]);
        operation.from = {Coordinate(m_size.width()), Coordinate(m_size.height())};
        operation.to = {Coordinate(m_size.width()), Coordinate(m_size.height())};
        if (m_random.Below(2) == 0) { // A mouse move, not a jump.
            operation.to = operation.from + QPointF(m_random.Between(-40, 40) / 2.0,
                                                    m_random.Between(-80, 80) / 3.0);
        }
        return operation;
    }

private:
    double Coordinate(int extent)
    {
        const double fine = m_random.Below(1 << 20) / static_cast<double>(1 << 20);
        const int within = m_random.Between(-extent / 8 - 1, extent + extent / 8 + 1);
        switch (m_random.Below(6)) {
        case 0:
            return within;
        case 1:
            return within + 0.5;
        case 2: // Nearly whole numbers, as inverted zooms give.
            return within + (fine - 0.5) * std::pow(10.0, -m_random.Between(4, 15));
        case 3: // Far outside.
            return m_random.Between(-2 * extent - 500, 3 * extent + 500) + fine;
        case 4: // Ties in the rounding of the painter's fixed-point numbers.
            return within + m_random.Below(128) / 128.0;
        default:
            return within + fine;
        }
    }

    QSize m_size;
    Random m_random;
};

Brush Read(const QString& text)
{
    QXmlStreamReader xml(text);
    xml.readNextStartElement();
    Brush brush;
    brush.ReadXml(xml);
    return brush;
}

QString Written(const Brush& brush)
{
    QString text;
    QXmlStreamWriter xml(&text);
    brush.WriteXml(xml);
    xml.writeEndDocument();
    return text;
}

int CountOf(const QImage& image, QRgb color)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += image.pixel(x, y) == color ? 1 : 0;
        }
    }
    return count;
}

} // namespace

class tst_Brush : public QObject
{
    Q_OBJECT

private slots:
    void HasItsInitialValues();
    void KeepsHalfTheSizeAsRadius_data();
    void KeepsHalfTheSizeAsRadius();
    void PaintsOnlyThePaintColor();
    void ErasesToTransparent();
    void DrawsWhatAPainterDraws();
    void DrawsTheSameIntoAPatch_data();
    void DrawsTheSameIntoAPatch();
    void DrawsNothingWithoutAPlace_data();
    void DrawsNothingWithoutAPlace();
    void StandsStrangeSizes_data();
    void StandsStrangeSizes();
    void KnowsWhatItTouches_data();
    void KnowsWhatItTouches();
    void TakesTheWholeLayerForFarShapes_data();
    void TakesTheWholeLayerForFarShapes();
    void ReadsAttributes_data();
    void ReadsAttributes();
    void WritesAttributesInOrder();
    void IsCopied();
};

void tst_Brush::HasItsInitialValues()
{
    const Brush brush;
    QCOMPARE(brush.Color(), QColor(Qt::white));
    QCOMPARE(brush.OutlineColor(), QColor(Qt::black));
    QCOMPARE(brush.PaintColor(), QColor(Qt::white));
    QCOMPARE(brush.Position(), QPointF(0, 0));
    QCOMPARE(brush.OutlineWidth(), 1);
    QVERIFY(brush.HasOutline());
    QCOMPARE(brush.Radius(), 16.0F);
    QCOMPARE(brush.Size(), 32);
}

void tst_Brush::KeepsHalfTheSizeAsRadius_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<float>("radius");
    QTest::newRow("1") << 1 << 0.5F;
    QTest::newRow("7") << 7 << 3.5F;
    QTest::newRow("256") << 256 << 128.0F;
    QTest::newRow("0") << 0 << 0.0F;
    QTest::newRow("-3") << -3 << -1.5F;
}

void tst_Brush::KeepsHalfTheSizeAsRadius()
{
    QFETCH(int, size);
    QFETCH(float, radius);
    Brush brush;
    brush.SetSize(size);
    QCOMPARE(brush.Size(), size);
    QCOMPARE(brush.Radius(), radius);
}

void tst_Brush::PaintsOnlyThePaintColor()
{
    QImage image = Picture({64, 64});
    Operation operation;
    operation.size = 21;
    operation.to = {30.25, 31.75};
    operation.Draw(image, {});
    operation.isDab = false;
    operation.from = {3, 60};
    operation.Draw(image, {});
    const int painted = CountOf(image, qRgb(200, 30, 60));
    QVERIFY(painted > 300);
    QCOMPARE(painted + CountOf(image, Ground), 64 * 64);
}

void tst_Brush::ErasesToTransparent()
{
    QImage image = Picture({64, 64});
    Operation operation;
    operation.isErasing = true;
    operation.size = 20;
    operation.to = {32, 32};
    operation.Draw(image, {});
    operation.isDab = false;
    operation.from = {5, 5};
    operation.Draw(image, {});
    const int erased = CountOf(image, 0);
    QVERIFY(erased > 300);
    QCOMPARE(erased + CountOf(image, Ground), 64 * 64);
}

void tst_Brush::DrawsWhatAPainterDraws()
{
    const QSize size(120, 90);
    RandomOperations operations(size);
    for (int i = 0; i < 2000; ++i) {
        const Operation operation = operations.Next();
        QImage drawn = Picture(size);
        operation.Draw(drawn, {});
        QImage expected = Picture(size);
        operation.DrawLiterally(expected);
        QVERIFY2(drawn == expected, operation.Text());
    }
}

void tst_Brush::DrawsTheSameIntoAPatch_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("count");
    QTest::newRow("square") << QSize(300, 300) << 4000;
    QTest::newRow("smaller than the brush") << QSize(40, 30) << 4000;
    QTest::newRow("one pixel") << QSize(1, 1) << 500;
    QTest::newRow("wide") << QSize(16384, 24) << 400;
    QTest::newRow("high") << QSize(24, 16384) << 400;
}

void tst_Brush::DrawsTheSameIntoAPatch()
{
    QFETCH(QSize, size);
    QFETCH(int, count);
    RandomOperations operations(size);
    for (int i = 0; i < count; ++i) {
        const Operation operation = operations.Next();
        QImage expected = Picture(size);
        operation.DrawLiterally(expected);

        QImage composed = Picture(size);
        const QRect patch = Brush::PatchRect(operation.Touched(), size);
        if (!patch.isEmpty()) {
            QImage part = Picture(patch.size());
            operation.Draw(part, {patch.topLeft(), size});
            CopyInto(composed, part, patch.topLeft());
        }
        QVERIFY2(composed == expected, operation.Text());
    }
}

void tst_Brush::DrawsNothingWithoutAPlace_data()
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QPointF>("to");
    QTest::newRow("to nan") << QPointF(3, 3) << QPointF(nan, 3);
    QTest::newRow("to infinity") << QPointF(3, 3) << QPointF(3, infinity);
    QTest::newRow("from nan") << QPointF(3, nan) << QPointF(nan, nan);
    QTest::newRow("from infinity") << QPointF(-infinity, 3) << QPointF(infinity, 3);
}

void tst_Brush::DrawsNothingWithoutAPlace()
{
    QFETCH(QPointF, from);
    QFETCH(QPointF, to);
    for (const bool isDab : {false, true}) {
        const Operation operation = {isDab, false, 32, from, to};
        QImage image = Picture({16, 16});
        operation.Draw(image, {});
        QCOMPARE(image, Picture({16, 16}));
        QVERIFY(operation.Touched().isEmpty());
        QImage null;
        operation.Draw(null, {});
        QVERIFY(null.isNull());
    }
}

void tst_Brush::StandsStrangeSizes_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {0, -1, -300, 257, 100000, 2147483647, -2147483647 - 1}) {
        QTest::addRow("%d", size) << size;
    }
}

void tst_Brush::StandsStrangeSizes()
{
    QFETCH(int, size);
    for (const bool isDab : {false, true}) {
        const Operation operation = {isDab, false, size, {2, 3}, {9.5, 9}};
        QImage whole = Picture({32, 32});
        operation.Draw(whole, {});
        QVERIFY(operation.Touched().isValid());
        QVERIFY(operation.Touched().contains(QPoint(9, 9)));
        QImage null;
        operation.Draw(null, {});
    }
}

void tst_Brush::KnowsWhatItTouches_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<QRect>("rect");
    QTest::newRow("dab") << 10 << QPointF(50, 60) << QPointF(50, 60)
                         << QRect(QPoint(43, 53), QPoint(57, 67));
    QTest::newRow("half") << 3 << QPointF(0.5, 0) << QPointF(0.5, 0)
                          << QRect(QPoint(-3, -4), QPoint(4, 4));
    QTest::newRow("segment") << 2 << QPointF(10, 40) << QPointF(20, 30)
                             << QRect(QPoint(7, 27), QPoint(23, 43));
    const int far = 1 << 29;
    QTest::newRow("far") << 2 << QPointF(-1e300, 0) << QPointF(1e300, 0)
                         << QRect(QPoint(-far, -3), QPoint(far, 3));
}

void tst_Brush::KnowsWhatItTouches()
{
    QFETCH(int, size);
    QFETCH(QPointF, from);
    QFETCH(QPointF, to);
    QFETCH(QRect, rect);
    Brush brush;
    brush.SetSize(size);
    QCOMPARE(brush.SegmentRect(from, to), rect);
    QCOMPARE(brush.SegmentRect(to, from), rect);
    if (from == to) {
        brush.SetPosition(to);
        QCOMPARE(brush.DabRect(), rect);
    }
}

void tst_Brush::TakesTheWholeLayerForFarShapes_data()
{
    QTest::addColumn<QRect>("touched");
    QTest::addColumn<QRect>("patch");
    const QRect layer(0, 0, 16384, 16384);
    QTest::newRow("inside") << QRect(5, 6, 7, 8) << QRect(5, 6, 7, 8);
    QTest::newRow("across the corner") << QRect(-5, -6, 10, 10) << QRect(0, 0, 5, 4);
    QTest::newRow("outside") << QRect(-50, 5, 10, 10) << QRect();
    QTest::newRow("far outside") << QRect(-50000, 5, 100, 10) << QRect();
    QTest::newRow("as far as goes")
        << QRect(QPoint(100, 5), QPoint(32767, 9)) << QRect(QPoint(100, 5), QPoint(16383, 9));
    QTest::newRow("too far right") << QRect(QPoint(100, 5), QPoint(32768, 9)) << layer;
    QTest::newRow("too far down") << QRect(QPoint(5, 100), QPoint(9, 32768)) << layer;
    QTest::newRow("too far left") << QRect(QPoint(-32768, 5), QPoint(-1 + 2, 9)) << layer;
    QTest::newRow("too wide") << QRect(QPoint(-20000, 5), QPoint(20000, 9)) << layer;
}

void tst_Brush::TakesTheWholeLayerForFarShapes()
{
    QFETCH(QRect, touched);
    QFETCH(QRect, patch);
    const QRect got = Brush::PatchRect(touched, {16384, 16384});
    QCOMPARE(got.isEmpty(), patch.isEmpty());
    if (!patch.isEmpty()) {
        QCOMPARE(got, patch);
    }
    QVERIFY(Brush::PatchRect(touched, {0, 0}).isEmpty());
    QVERIFY(Brush::PatchRect(touched, {-1, -1}).isEmpty());
}

void tst_Brush::ReadsAttributes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QRgb>("color");
    QTest::addColumn<QRgb>("outlineColor");
    QTest::addColumn<bool>("hasOutline");
    QTest::addColumn<int>("outlineWidth");
    QTest::addColumn<int>("size");
    QTest::newRow("none") << QStringLiteral("<brush/>") << 3U << 2U << false << 1 << 32;
    QTest::newRow("all") << QStringLiteral(
                                "<brush color='4294901760' outline='1' outline_color='2147483903'"
                                " outline_width='4' size='7'/>")
                         << 0xFFFF0000U << 0x800000FFU << true << 4 << 7;
    QTest::newRow("empty") << QStringLiteral("<brush color='' outline='' outline_color=''"
                                             " outline_width='' size=''/>")
                           << 3U << 2U << false << 1 << 32;
    QTest::newRow("unparsable") << QStringLiteral("<brush color='x' outline='x' outline_color='x'"
                                                  " outline_width='x' size='x'/>")
                                << 0U << 0U << false << 0 << 0;
    QTest::newRow("any outline but 0")
        << QStringLiteral("<brush outline='-2'/>") << 3U << 2U << true << 1 << 32;
    QTest::newRow("size beyond the slider")
        << QStringLiteral("<brush size='300'/>") << 3U << 2U << false << 1 << 300;
    QTest::newRow("signed") << QStringLiteral("<brush outline_width='-5' size='-6'/>") << 3U << 2U
                            << false << -5 << -6;
}

void tst_Brush::ReadsAttributes()
{
    QFETCH(QString, text);
    const Brush brush = Read(text);
    QTEST(brush.Color().rgba(), "color");
    QTEST(brush.OutlineColor().rgba(), "outlineColor");
    QTEST(brush.HasOutline(), "hasOutline");
    QTEST(brush.OutlineWidth(), "outlineWidth");
    QTEST(brush.Size(), "size");
    QCOMPARE(brush.Radius(), static_cast<float>(brush.Size()) * 0.5F);
    QCOMPARE(brush.Position(), QPointF());
    QCOMPARE(brush.PaintColor(), QColor(Qt::white));
}

void tst_Brush::WritesAttributesInOrder()
{
    Brush brush;
    QCOMPARE(Written(brush).trimmed(),
             QStringLiteral("<brush color=\"4294967295\" outline=\"1\""
                            " outline_color=\"4278190080\" outline_width=\"1\" size=\"32\"/>"));
    brush.SetColor(QColor(1, 2, 3, 0));
    brush.SetOutline(false);
    brush.SetOutlineColor(QColor(0, 0, 1, 128));
    brush.SetOutlineWidth(-7);
    brush.SetSize(300);
    brush.SetPosition({5, 5});
    brush.SetPaintColor(Qt::red);
    const QString text = Written(brush);
    QCOMPARE(text.trimmed(),
             QStringLiteral("<brush color=\"66051\" outline=\"0\" outline_color=\"2147483649\""
                            " outline_width=\"-7\" size=\"300\"/>"));
    QCOMPARE(Written(Read(text)), text);
}

void tst_Brush::IsCopied()
{
    Brush brush;
    brush.SetSize(9);
    const Brush copy = brush;
    brush.SetSize(10);
    QCOMPARE(copy.Size(), 9);
}

QTEST_GUILESS_MAIN(tst_Brush)
#include "tst_Brush.moc"
