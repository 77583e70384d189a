#include "document/ProjectNumbers.h"

#include "app/ProjectSettings.h"
#include "document/LiveLayers.h"
#include "document/edits/TerritoryEdits.h"
#include "layers/AreaMap.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "tests/support/Files.h"
#include "tests/support/LiteralMap.h"
#include "tests/support/LiveGraph.h"
#include "tests/support/LogSpy.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

namespace {

constexpr int Side = DocumentFixture::Side;
using Wanted = ProjectNumbers::Wanted;

PixelNumbers Literal(const QImage& mask)
{
    PixelNumbers numbers;
    for (int y = 0; y < mask.height(); ++y) {
        for (int x = 0; x < mask.width(); ++x) {
            const int value = mask.pixelIndex(x, y);
            numbers.pixels += value != 0 ? 1 : 0;
            numbers.greys += value != 0 && value != 255 ? 1 : 0;
            numbers.bounds |= value != 0 ? QRect(x, y, 1, 1) : QRect();
        }
    }
    return numbers;
}

bool IsSame(const std::optional<PixelNumbers>& counted, const PixelNumbers& literal)
{
    return counted && counted->pixels == literal.pixels && counted->bounds == literal.bounds;
}

/// A document with layers that follow one another, whose numbers are counted.
struct CountedProject
{
    explicit CountedProject(Random& random)
        : graph(random)
        , document(graph.fixture.document)
        , numbers(document)
    {
        AreaFlagTypes types;
        types.usages = {"A", "B", "C"};
        types.values = {"X"};
        document.Do(Edits::ImportFlagTypes(document.Layers(), types, false));
        numbers.Want(user, Wanted::All);
    }

    void Settle()
    {
        document.Live().Finish();
        QTRY_VERIFY(numbers.IsUpToDate());
    }

    /// Compares with the exported map, which is read back pixel by pixel.
    QString WrongFlags() const
    {
        const AreaFlagTypes& types = ProjectSettings::Instance().FlagTypes();
        const QString path = folder.filePath(QStringLiteral("numbers.map"));
        if (!SaveAreaMap(document.Layers(), path)) {
            return QStringLiteral("no map");
        }
        const QVector<literal::MapLayer> flags =
            literal::ReadMap(ReadBytes(path), types.usages.size(), types.values.size());
        QVector<PixelNumbers> usages(types.usages.size());
        QVector<PixelNumbers> values(types.values.size());
        for (const literal::MapLayer& flag : flags) {
            const auto bit = [](quint32 bits) { return int(std::log2(bits)); };
            if (flag.usageFlags != 0) {
                usages[bit(flag.usageFlags)] = Literal(flag.image);
            } else {
                values[bit(flag.valueFlags)] = Literal(flag.image);
            }
        }
        for (int i = 0; i < usages.size(); ++i) {
            if (!IsSame(numbers.Layers().OfUsage(i), usages.at(i))) {
                return QStringLiteral("usage %1").arg(i);
            }
        }
        for (int i = 0; i < values.size(); ++i) {
            if (!IsSame(numbers.Layers().OfValue(i), values.at(i))) {
                return QStringLiteral("value %1").arg(i);
            }
        }
        return {};
    }

    /// What is wrong; empty when nothing is.
    QString Wrong() const
    {
        const QVector<Layer*> layers = document.Layers().Layers();
        for (const Layer* layer : layers) {
            const auto counted = numbers.Layers().OfLayer(layer->Id());
            const PixelNumbers literal = Literal(layer->Image());
            if (!IsSame(counted, literal) || counted->greys != literal.greys) {
                return QStringLiteral("layer %1").arg(layer->text());
            }
        }
        ZoneNumbers zones;
        for (const Zone* zone : graph.fixture.territory->Zones()) {
            zones.Add(zone->Values());
        }
        const auto counted = numbers.Zones(*graph.fixture.territory);
        if (!counted || counted->All().zones != zones.All().zones ||
            counted->All().creaturesMax != zones.All().creaturesMax ||
            counted->All().squareKm != zones.All().squareKm) {
            return QStringLiteral("zones");
        }
        return WrongFlags();
    }

    LogSpy log;
    QTemporaryDir folder;
    LiveGraph graph;
    Document& document;
    QObject user;
    ProjectNumbers numbers;
};

/// Edits a project as a user does.
class RandomEditor
{
public:
    RandomEditor(Random& random, CountedProject& project)
        : m_random(random)
        , m_document(project.document)
        , m_territory(*project.graph.fixture.territory)
    {
    }

    void Edit()
    {
        switch (m_random.Below(14)) {
        case 0:
            EditRows();
            break;
        case 1:
        case 2:
            SetFlags();
            break;
        case 3:
        case 4:
        case 5:
            EditZones();
            break;
        case 6:
        case 7:
        case 8:
            Travel();
            break;
        default:
            Paint();
        }
    }

private:
    Layer* AnyLayer()
    {
        const QVector<Layer*> layers = m_document.Layers().Layers();
        return layers.isEmpty() ? nullptr : layers.at(m_random.Below(layers.size()));
    }
    QRect AnyRect()
    {
        const QRect rect(m_random.Below(Side), m_random.Below(Side), m_random.Between(1, 90),
                         m_random.Between(1, 90));
        return rect & QRect(0, 0, Side, Side);
    }
    void Paint()
    {
        Layer* layer = AnyLayer();
        if (!layer || !m_document.WhyPixelsStay(*layer).isEmpty()) {
            return;
        }
        Stroke stroke(m_document, *layer);
        for (int i = m_random.Between(1, 4); i > 0; --i) {
            stroke.Step(AnyRect(), uchar(m_random.Below(3) * 127));
            QCoreApplication::processEvents();
        }
        if (m_random.Below(5) == 0) {
            stroke.Cancel();
        } else {
            stroke.End();
        }
    }
    void SetFlags()
    {
        if (m_random.Below(4) == 0) {
            AreaFlagTypes types;
            for (int i = m_random.Below(6); i > 0; --i) {
                types.usages.append(QString::number(i));
            }
            for (int i = m_random.Below(4); i > 0; --i) {
                types.values.append(QString::number(i));
            }
            m_document.Do(
                Edits::ImportFlagTypes(m_document.Layers(), types, m_random.Below(8) == 0));
        } else if (Layer* layer = AnyLayer()) {
            m_document.Do(Edits::SetLayerFlags(*layer, quint32(m_random.Below(64)),
                                               quint32(m_random.Below(16))));
        }
    }
    void EditRows()
    {
        Layer* layer = AnyLayer();
        const int count = m_document.Layers().model()->rowCount();
        if (count < 4) {
            m_document.Do(
                Edits::AddPaintedLayer(m_document.Layers(), RandomMask(m_random, {Side, Side})));
        } else if (m_random.Below(2) == 0) {
            m_document.Do(Edits::MoveLayer(*layer, m_random.Below(count)));
        } else {
            m_document.Do(Edits::RemoveLayer(*layer));
        }
    }
    void EditZones()
    {
        const QList<Zone*> zones = m_territory.Zones().values();
        ZoneValues values;
        values.radius = float(m_random.Below(100));
        values.usage = m_random.Between(ZoneValues::Rest, ZoneValues::DynamicEvent);
        values.counts = {m_random.Below(9), m_random.Below(9), m_random.Below(9),
                         m_random.Below(9)};
        if (zones.isEmpty() || m_random.Below(2) == 0) {
            m_document.Do(Edits::InsertZone(m_territory, {10, 20}, values));
        } else if (m_random.Below(3) == 0) {
            m_document.Do(Edits::RemoveZones({zones.at(m_random.Below(zones.size()))}));
        } else {
            m_document.Do(Edits::ChangeZone(*zones.at(m_random.Below(zones.size())), values,
                                            Property::ZoneRadius));
        }
    }
    void Travel()
    {
        const bool isBack = m_random.Below(3) != 0;
        for (int i = m_random.Between(1, 5); i > 0; --i) {
            if (isBack) {
                m_document.Undo();
            } else {
                m_document.Redo();
            }
        }
    }

    Random& m_random;
    Document& m_document;
    Territory& m_territory;
};

} // namespace

class tst_ProjectNumbers : public QObject
{
    Q_OBJECT

private slots:
    void EqualTheMapAfterRandomEdits();
    void RestWhileTheHandIsAtWork();
    void HoldNoMask();
    void CountNothingThatNobodyWants();
    void ForgetAProjectThatGoes();
};

void tst_ProjectNumbers::EqualTheMapAfterRandomEdits()
{
    constexpr int edits = 1000;
    constexpr int editsPerCheck = 5;
    Random random;
    CountedProject project(random);
    RandomEditor editor(random, project);
    for (int i = 1; i <= edits; ++i) {
        editor.Edit();
        if (i % editsPerCheck == 0) {
            project.Settle();
            const QString wrong = project.Wrong();
            QVERIFY2(wrong.isEmpty(), qPrintable(QString("after %1 edits: %2").arg(i).arg(wrong)));
        } else if (random.Below(2) == 0) {
            QCoreApplication::processEvents();
        }
    }
}

void tst_ProjectNumbers::RestWhileTheHandIsAtWork()
{
    Random random;
    CountedProject project(random);
    project.Settle();
    Layer& layer = *project.graph.painted.first();
    const qint64 before = project.numbers.Layers().OfLayer(layer.Id())->pixels;
    Stroke stroke(project.document, layer);
    stroke.Step({0, 0, Side, Side}, 0);
    QTest::qWait(20);
    QVERIFY(!project.numbers.IsUpToDate());
    QVERIFY(!project.numbers.Layers().OfLayer(layer.Id()));
    stroke.Cancel();
    project.Settle();
    QCOMPARE(project.numbers.Layers().OfLayer(layer.Id())->pixels, before);
    project.document.SetFilesBusy(true);
    project.graph.fixture.Fill(layer, {0, 0, Side, Side}, 0);
    QTest::qWait(20);
    QVERIFY(!project.numbers.IsUpToDate());
    project.document.SetFilesBusy(false);
    project.Settle();
    QCOMPARE(project.numbers.Layers().OfLayer(layer.Id())->pixels, qint64(0));
}

/// A mask that is shared would be copied as a whole by the next step of the brush.
void tst_ProjectNumbers::HoldNoMask()
{
    Random random;
    CountedProject project(random);
    for (int i = 0; i < 20; ++i) {
        project.graph.fixture.Fill(*project.graph.painted.first(), {i, i, 50, 50},
                                   i % 2 == 0 ? 255 : 0);
        QCoreApplication::processEvents();
        QVERIFY(project.graph.painted.first()->Image().isDetached());
    }
}

void tst_ProjectNumbers::CountNothingThatNobodyWants()
{
    Random random;
    CountedProject project(random);
    project.Settle();
    const Layer& layer = *project.graph.painted.first();
    int changes = 0;
    connect(&project.numbers, &ProjectNumbers::Changed, this, [&changes] { ++changes; });
    {
        const QObject other;
        project.numbers.Want(other, Wanted::Layers);
        project.numbers.Want(project.user, Wanted::Nothing);
        project.graph.fixture.Fill(*project.graph.painted.first(), {0, 0, 9, 9}, 255);
        project.Settle();
        QVERIFY(changes > 0);
        QVERIFY(project.numbers.Layers().OfLayer(layer.Id()));
        QVERIFY(!project.numbers.Layers().OfUsage(0));
        QVERIFY(!project.numbers.Zones(*project.graph.fixture.territory));
    }
    changes = 0;
    QVERIFY(!project.numbers.Layers().OfLayer(layer.Id()));
    project.graph.fixture.Fill(*project.graph.painted.first(), {0, 0, 9, 9}, 0);
    QTest::qWait(20);
    QCOMPARE(changes, 0);
    project.numbers.Want(project.user, Wanted::All);
    project.Settle();
    QCOMPARE(project.Wrong(), QString());
}

void tst_ProjectNumbers::ForgetAProjectThatGoes()
{
    Random random;
    CountedProject project(random);
    project.Settle();
    const int id = project.graph.painted.first()->Id();
    project.document.Clear();
    QVERIFY(!project.numbers.Layers().OfLayer(id));
    QTRY_VERIFY(project.numbers.IsUpToDate());
    QCOMPARE(project.numbers.Layers().OfUsage(0)->pixels, qint64(0));
}

QTEST_MAIN(tst_ProjectNumbers)
#include "tst_ProjectNumbers.moc"
