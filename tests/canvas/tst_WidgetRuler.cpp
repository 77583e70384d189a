#include "canvas/WidgetRuler.h"

#include <QApplication>
#include <QMetaMethod>
#include <QPainter>
#include <QTest>

#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <utility>
#include <vector>

namespace {

constexpr float FloatInfinity = std::numeric_limits<float>::infinity();
constexpr float FloatNan = std::numeric_limits<float>::quiet_NaN();

/// One set of ticks. The gap is a share of the thickness.
struct Set
{
    int step;
    double gap;
    bool isLabelled;
};

/// All ticks of a ruler whose origin is at its start.
std::vector<RulerTick> TicksFromStart(const std::vector<Set>& sets, double zoom, double unit,
                                      double length, double thickness)
{
    std::vector<RulerTick> ticks;
    for (const Set& set : sets) {
        for (int n = 0; n * set.step * zoom <= length; ++n) {
            const QString label = QString::number(n * set.step * unit, 'g', 6);
            ticks.push_back(
                {n * set.step * zoom, set.gap * thickness, set.isLabelled ? label : QString()});
        }
    }
    return ticks;
}

void CompareTicks(const std::vector<RulerTick>& ticks, const std::vector<RulerTick>& expected)
{
    QCOMPARE(ticks.size(), expected.size());
    for (size_t i = 0; i < ticks.size(); ++i) {
        QCOMPARE(ticks[i].position, expected[i].position);
        QCOMPARE(ticks[i].gap, expected[i].gap);
        QCOMPARE(ticks[i].label, expected[i].label);
    }
}

/// "position:label" of the labelled ticks.
QStringList Labels(const std::vector<RulerTick>& ticks)
{
    QStringList labels;
    for (const RulerTick& tick : ticks) {
        if (!tick.label.isEmpty()) {
            labels << QStringLiteral("%1:%2").arg(tick.position).arg(tick.label);
        }
    }
    return labels;
}

class CountingRuler : public WidgetRuler
{
public:
    using WidgetRuler::WidgetRuler;

    /// The paint events since the last call.
    int TakePaints()
    {
        QCoreApplication::processEvents();
        return std::exchange(m_paints, 0);
    }

protected:
    void paintEvent(QPaintEvent* event) override
    {
        ++m_paints;
        WidgetRuler::paintEvent(event);
    }

private:
    int m_paints = 0;
};

QImage Rendered(WidgetRuler& ruler, double ratio)
{
    const QSize size(static_cast<int>(std::ceil(ruler.width() * ratio)),
                     static_cast<int>(std::ceil(ruler.height() * ratio)));
    QImage image(size, QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::red);
    ruler.render(&image);
    return image;
}

} // namespace

Q_DECLARE_METATYPE(std::vector<Set>)

class tst_WidgetRuler : public QObject
{
    Q_OBJECT

private slots:
    void HasItsInitialValues();
    void HasItsSlotsInOrder();
    void ChoosesTickSetsByZoom_data();
    void ChoosesTickSetsByZoom();
    void StaysReadableFromFarAway_data();
    void StaysReadableFromFarAway();
    void LabelsEveryHundredPixelsInMetres();
    void WalksFromWhereTheOriginLies_data();
    void WalksFromWhereTheOriginLies();
    void WritesLargeValuesWithAnExponent();
    void StandsDegenerateScales_data();
    void StandsDegenerateScales();
    void RepaintsOnlyForNewValues();
    void FollowsTheMouse();
    void PaintsWhatTheTicksSay_data();
    void PaintsWhatTheTicksSay();
    void PaintsLabelsAtTheirPlaces_data();
    void PaintsLabelsAtTheirPlaces();
    void PaintsTheCursorLineFaintly();
};

void tst_WidgetRuler::HasItsInitialValues()
{
    WidgetRuler ruler(0, nullptr);
    QVERIFY(ruler.IsHorizontal());
    QVERIFY(!WidgetRuler(1, nullptr).IsHorizontal());
    QCOMPARE(ruler.Origin(), 0.0F);
    QCOMPARE(ruler.Unit(), 1.0F);
    QCOMPARE(ruler.Zoom(), 1.0F);
    QCOMPARE(ruler.CursorPos(), QPoint(0, 0));
    QCOMPARE(ruler.minimumSizeHint(), QSize(32, 32));
    QCOMPARE(ruler.contentsMargins(), QMargins());
    QVERIFY(ruler.hasMouseTracking());
    QCOMPARE(ruler.font().family(), QStringLiteral("Helvetica"));
    QCOMPARE(ruler.font().pointSize(), 8);
    QCOMPARE(ruler.font().weight(), static_cast<int>(QFont::Normal));
    QVERIFY(!ruler.font().italic());
    QCOMPARE(ruler.font().styleHint(), QFont::Helvetica);
    QCOMPARE(ruler.font().hintingPreference(), QFont::PreferNoHinting);
    QVERIFY(!ruler.accessibleName().isEmpty());
}

void tst_WidgetRuler::HasItsSlotsInOrder()
{
    QStringList signatures;
    const QMetaObject& meta = WidgetRuler::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
        signatures << QString::fromLatin1(meta.method(i).methodSignature());
    }
    QCOMPARE(signatures,
             QStringList({"SetOrigin(float)", "SetUnit(float)", "SetZoom(float)",
                          "SetCursorPos(QPoint)", "SetMouseTrack(bool)", "FlipSign(bool)"}));
}

void tst_WidgetRuler::ChoosesTickSetsByZoom_data()
{
    const std::vector<Set> near = {{25, 0.5, true}, {50, 0.25, false}, {100, 0, false}};
    const std::vector<Set> middle = {{25, 0.5, false}, {50, 0.25, true}, {100, 0, false}};
    const std::vector<Set> usual = {{25, 0.5, false}, {50, 0.25, false}, {100, 0, true}};
    const std::vector<Set> far = {
        {25, 0.5, false}, {50, 0.25, false}, {100, 0, false}, {200, 0, true}};
    const std::vector<Set> farthest = {
        {25, 0.5, false}, {50, 0.25, false}, {100, 0, false}, {400, 0, true}};
    const std::vector<Set> eighth = {
        {50, 0.5, false}, {100, 0.25, false}, {200, 0, false}, {800, 0, true}};
    const std::vector<Set> sixteenth = {
        {100, 0.5, false}, {200, 0.25, false}, {400, 0, false}, {1600, 0, true}};
    const std::pair<float, std::vector<Set>> rows[] = {
        {12.5F, near},     {6.25F, near},       {6.0F, near},     {5.75F, middle},
        {3.25F, middle},   {3.0F, middle},      {2.75F, usual},   {1.0F, usual},
        {0.75F, usual},    {0.5078125F, usual}, {0.5F, far},      {0.2578125F, far},
        {0.25F, farthest}, {0.1875F, farthest}, {0.125F, eighth}, {0.0625F, sixteenth}};
    QTest::addColumn<float>("zoom");
    QTest::addColumn<std::vector<Set>>("sets");
    for (const auto& [zoom, sets] : rows) {
        QTest::addRow("%g", static_cast<double>(zoom)) << zoom << sets;
    }
}

void tst_WidgetRuler::ChoosesTickSetsByZoom()
{
    QFETCH(float, zoom);
    QFETCH(std::vector<Set>, sets);
    const RulerScale scale = {0, 7.5F, zoom, false};
    CompareTicks(RulerTicks(scale, 1200, 32),
                 TicksFromStart(sets, static_cast<double>(zoom), 7.5, 1200, 32));
}

void tst_WidgetRuler::StaysReadableFromFarAway_data()
{
    QTest::addColumn<float>("zoom");
    QTest::addColumn<float>("unit");
    for (const float zoom : {0.2F, 0.125F, 0.0625F}) {
        for (const float unit : {0.01F, 0.9375F, 4.0F, 7.32421875F, 12345.67F}) {
            QTest::addRow("%g, %g m", static_cast<double>(zoom), static_cast<double>(unit))
                << zoom << unit;
        }
    }
}

void tst_WidgetRuler::StaysReadableFromFarAway()
{
    QFETCH(float, zoom);
    QFETCH(float, unit);
    WidgetRuler ruler(0, nullptr);
    ruler.resize(1200, 32);
    ruler.SetZoom(zoom);
    ruler.SetUnit(unit);
    ruler.SetOrigin(-40);
    const QFontMetrics metrics(ruler.font());
    double freeFrom = -1000;
    int labelCount = 0;
    std::map<double, double> lastOfGap;
    for (const RulerTick& tick : ruler.Ticks()) {
        if (tick.label.isEmpty()) {
            const auto last = lastOfGap.find(tick.gap);
            QVERIFY(last == lastOfGap.end() || tick.position - last->second >= 3);
            lastOfGap[tick.gap] = tick.position;
        } else {
            QVERIFY2(tick.position > freeFrom, qPrintable(tick.label));
            freeFrom = tick.position + 1 + metrics.horizontalAdvance(tick.label);
            ++labelCount;
        }
    }
    QVERIFY(labelCount >= 4);
    QVERIFY(!lastOfGap.empty());
}

void tst_WidgetRuler::LabelsEveryHundredPixelsInMetres()
{
    WidgetRuler ruler(0, nullptr);
    ruler.resize(350, 32);
    ruler.SetUnit(7.5F);
    QCOMPARE(Labels(ruler.Ticks()),
             QStringList({QStringLiteral("0:0"), QStringLiteral("100:750"),
                          QStringLiteral("200:1500"), QStringLiteral("300:2250")}));
    WidgetRuler vertical(1, nullptr);
    vertical.resize(32, 350);
    vertical.SetUnit(7.5F);
    vertical.FlipSign(true);
    vertical.SetOrigin(340);
    QCOMPARE(Labels(vertical.Ticks()),
             QStringList({QStringLiteral("340:0"), QStringLiteral("240:750"),
                          QStringLiteral("140:1500"), QStringLiteral("40:2250")}));
}

void tst_WidgetRuler::WalksFromWhereTheOriginLies_data()
{
    QTest::addColumn<float>("origin");
    QTest::addColumn<bool>("flipSign");
    QTest::addColumn<QString>("labels");
    QTest::newRow("inside") << 120.0F << false << "120:0 220:100 20:-100";
    QTest::newRow("inside, flipped") << 120.0F << true << "120:0 220:-100 20:100";
    QTest::newRow("at the start") << 0.0F << false << "0:0 100:100 200:200";
    QTest::newRow("at the end") << 250.0F << false << "250:0 150:-100 50:-200";
    QTest::newRow("before, first tick outside") << -230.0F << false << "-30:200 70:300 170:400";
    QTest::newRow("before, within a step") << -30.0F << false << "-30:0 70:100 170:200";
    QTest::newRow("before by whole steps") << -300.0F << false << "0:300 100:400 200:500";
    QTest::newRow("after, first tick outside") << 480.0F << false << "280:-200 180:-300 80:-400";
    QTest::newRow("after, flipped") << 480.0F << true << "280:200 180:300 80:400";
    QTest::newRow("after, within a step") << 251.0F << false << "251:0 151:-100 51:-200";
    QTest::newRow("after by whole steps") << 450.0F << false << "250:-200 150:-300 50:-400";
}

void tst_WidgetRuler::WalksFromWhereTheOriginLies()
{
    QFETCH(float, origin);
    QFETCH(bool, flipSign);
    QFETCH(QString, labels);
    const RulerScale scale = {origin, 1, 1, flipSign};
    QCOMPARE(Labels(RulerTicks(scale, 250, 32)), labels.split(QLatin1Char(' ')));
}

void tst_WidgetRuler::WritesLargeValuesWithAnExponent()
{
    const RulerScale scale = {0, 10000, 1, false};
    QCOMPARE(Labels(RulerTicks(scale, 150, 32)),
             QStringList({QStringLiteral("0:0"), QStringLiteral("100:1e+06")}));
    const RulerScale odd = {0, 12345.67F, 1, false};
    QCOMPARE(Labels(RulerTicks(odd, 150, 32)).value(1), QStringLiteral("100:1.23457e+06"));
    const RulerScale small = {0, 0.123456F, 1, false};
    QCOMPARE(Labels(RulerTicks(small, 150, 32)).value(1), QStringLiteral("100:12.3456"));
}

void tst_WidgetRuler::StandsDegenerateScales_data()
{
    QTest::addColumn<float>("origin");
    QTest::addColumn<float>("unit");
    QTest::addColumn<float>("zoom");
    QTest::addColumn<bool>("hasTicks");
    QTest::addColumn<bool>("hasLabels");
    QTest::newRow("zoom 0") << 0.0F << 1.0F << 0.0F << false << false;
    QTest::newRow("zoom negative") << 0.0F << 1.0F << -1.0F << false << false;
    QTest::newRow("zoom nan") << 0.0F << 1.0F << FloatNan << false << false;
    QTest::newRow("zoom infinite") << 0.0F << 1.0F << FloatInfinity << false << false;
    QTest::newRow("zoom tiny") << 0.0F << 1.0F << 1e-30F << false << false;
    QTest::newRow("zoom huge") << 0.0F << 1.0F << 1e30F << true << true;
    QTest::newRow("zoom huge, origin before") << -5.0F << 1.0F << 1e30F << true << true;
    QTest::newRow("zoom below a pixel for the closest set")
        << 0.0F << 1.0F << 0.03F << true << true;
    QTest::newRow("unit 0") << 0.0F << 0.0F << 1.0F << true << true;
    QTest::newRow("unit nan") << 0.0F << FloatNan << 1.0F << true << false;
    QTest::newRow("unit infinite") << 50.0F << FloatInfinity << 1.0F << true << false;
    QTest::newRow("origin nan") << FloatNan << 1.0F << 1.0F << false << false;
    QTest::newRow("origin infinite") << FloatInfinity << 1.0F << 1.0F << false << false;
    QTest::newRow("origin -infinite") << -FloatInfinity << 1.0F << 1.0F << false << false;
    QTest::newRow("origin huge") << 1e30F << 1.0F << 1.0F << false << false;
    QTest::newRow("origin -huge") << -3e38F << 1.0F << 1.0F << false << false;
    QTest::newRow("origin far") << 1e9F << 1.0F << 1.0F << true << true;
}

void tst_WidgetRuler::StandsDegenerateScales()
{
    QFETCH(float, origin);
    QFETCH(float, unit);
    QFETCH(float, zoom);
    QFETCH(bool, hasTicks);
    QFETCH(bool, hasLabels);
    for (const int orientation : {WidgetRuler::Horizontal, WidgetRuler::Vertical}) {
        WidgetRuler ruler(orientation, nullptr);
        ruler.SetOrigin(origin);
        ruler.SetUnit(unit);
        ruler.SetZoom(zoom);
        ruler.resize(400, 400);
        const std::vector<RulerTick> ticks = ruler.Ticks();
        QCOMPARE(!ticks.empty(), hasTicks);
        QVERIFY(ticks.size() < 1200);
        // With a unit of NaN at most the label 0 is left.
        QCOMPARE(Labels(ticks).size() > 0, hasLabels);
        Rendered(ruler, 1);
        ruler.resize(0, 0);
        QVERIFY(ruler.Ticks().empty());
    }
}

void tst_WidgetRuler::RepaintsOnlyForNewValues()
{
    CountingRuler ruler(0, nullptr);
    ruler.resize(200, 32);
    ruler.show();
    QVERIFY(QTest::qWaitForWindowExposed(&ruler));
    ruler.TakePaints();
    const std::vector<std::function<void()>> changes = {
        [&] { ruler.SetOrigin(5); }, [&] { ruler.SetUnit(7.5F); }, [&] { ruler.SetZoom(2); },
        [&] { ruler.SetMouseTrack(false); }, [&] { ruler.FlipSign(true); }};
    for (const auto& change : changes) {
        change();
        QCOMPARE(ruler.TakePaints(), 1);
        change();
        QCOMPARE(ruler.TakePaints(), 0);
    }
    for (int i = 0; i < 2; ++i) {
        ruler.SetCursorPos({3, 4});
        QCOMPARE(ruler.TakePaints(), 1);
    }
}

void tst_WidgetRuler::FollowsTheMouse()
{
    QWidget window;
    CountingRuler ruler(0, &window);
    ruler.setGeometry(40, 10, 200, 32);
    window.resize(300, 100);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    ruler.TakePaints();
    ruler.SetCursorPos(ruler.mapToGlobal(QPoint(17, -200)));
    QCOMPARE(ruler.CursorPos(), QPoint(17, -200));
    ruler.TakePaints();
    QTest::mouseMove(&ruler, QPoint(50, 6));
    QCOMPARE(ruler.TakePaints(), 1);
    QCOMPARE(ruler.CursorPos(), QPoint(50, 6));
}

void tst_WidgetRuler::PaintsWhatTheTicksSay_data()
{
    QTest::addColumn<int>("orientation");
    QTest::addColumn<double>("ratio");
    for (const double ratio : {1.0, 1.25, 2.0}) {
        QTest::addRow("horizontal %g", ratio) << 0 << ratio;
        QTest::addRow("vertical %g", ratio) << 1 << ratio;
    }
}

/// Every tick is a column of pure black on white, from its gap to the far edge.
void tst_WidgetRuler::PaintsWhatTheTicksSay()
{
    QFETCH(int, orientation);
    QFETCH(double, ratio);
    WidgetRuler ruler(orientation, nullptr);
    ruler.resize(orientation == 0 ? QSize(400, 32) : QSize(32, 400));
    ruler.SetMouseTrack(false);
    ruler.SetUnit(FloatNan); // Without the labels, which would hide some ticks.
    ruler.SetOrigin(-20.1F); // No tick is between two device pixels.
    QImage image = Rendered(ruler, ratio);
    QImage expected(image.size(), QImage::Format_RGB32);
    expected.fill(Qt::white);
    for (const RulerTick& tick : ruler.Ticks()) {
        const auto along = static_cast<int>(std::floor(tick.position * ratio));
        const int across = orientation == 0 ? image.height() : image.width();
        for (auto i = static_cast<int>(std::floor(tick.gap * ratio)); i < across; ++i) {
            const QPoint pixel = orientation == 0 ? QPoint(along, i) : QPoint(i, along);
            if (expected.rect().contains(pixel)) {
                expected.setPixel(pixel, qRgb(0, 0, 0));
            }
        }
    }
    image.setDevicePixelRatio(1);
    QCOMPARE(image, expected);
}

void tst_WidgetRuler::PaintsLabelsAtTheirPlaces_data()
{
    QTest::addColumn<int>("orientation");
    QTest::addColumn<float>("zoom");
    QTest::addColumn<QPoint>("place");
    // The tick of 100 scene units and the gaps 16, 8 and 0 of a ruler of 32 pixels.
    QTest::newRow("horizontal, hundreds") << 0 << 1.0F << QPoint(101, 11);
    QTest::newRow("horizontal, fifties") << 0 << 3.0F << QPoint(301, 19);
    QTest::newRow("horizontal, twenty-fives") << 0 << 6.0F << QPoint(601, 27);
    QTest::newRow("vertical, hundreds") << 1 << 1.0F << QPoint(1, 98);
    QTest::newRow("vertical, fifties") << 1 << 3.0F << QPoint(1, 298);
    QTest::newRow("vertical, twenty-fives") << 1 << 6.0F << QPoint(1, 598);
    QTest::newRow("truncated") << 0 << 1.126F << QPoint(113, 11);
}

void tst_WidgetRuler::PaintsLabelsAtTheirPlaces()
{
    QFETCH(int, orientation);
    QFETCH(float, zoom);
    QFETCH(QPoint, place);
    WidgetRuler ruler(orientation, nullptr);
    ruler.resize(orientation == 0 ? QSize(640, 32) : QSize(32, 640));
    ruler.SetMouseTrack(false);
    ruler.SetZoom(zoom);
    const QImage with = Rendered(ruler, 1);
    ruler.SetUnit(FloatNan);
    QImage expected = Rendered(ruler, 1);
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setFont(ruler.font());
    painter.drawText(place, QStringLiteral("100"));
    painter.end();
    const QRect around =
        orientation == 0 ? QRect(place.x() - 1, 0, 20, 32) : QRect(0, place.y() - 12, 32, 14);
    QCOMPARE(with.copy(around), expected.copy(around));
}

void tst_WidgetRuler::PaintsTheCursorLineFaintly()
{
    for (const int orientation : {WidgetRuler::Horizontal, WidgetRuler::Vertical}) {
        WidgetRuler ruler(orientation, nullptr);
        ruler.resize(64, 64);
        ruler.SetZoom(0); // No ticks.
        ruler.SetCursorPos(ruler.mapToGlobal(QPoint(10, 20)));
        const QImage image = Rendered(ruler, 1);
        const bool isHorizontal = orientation == WidgetRuler::Horizontal;
        for (int i = 0; i < 64; ++i) {
            const QPoint on = isHorizontal ? QPoint(10, i) : QPoint(i, 20);
            QCOMPARE(qGray(image.pixel(on)), 153); // 60 % of white.
            const QPoint beside = isHorizontal ? QPoint(11, i) : QPoint(i, 21);
            QCOMPARE(qGray(image.pixel(beside)), 255);
        }
        ruler.SetMouseTrack(false);
        QCOMPARE(qGray(Rendered(ruler, 1).pixel(10, 20)), 255);
    }
}

QTEST_MAIN(tst_WidgetRuler)
#include "tst_WidgetRuler.moc"
