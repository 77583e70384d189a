#include "document/journal/Journal.h"

#include "app/ProjectDocument.h"
#include "app/ProjectFile.h"
#include "app/ProjectReader.h"
#include "app/ProjectSettings.h"
#include "document/edits/BackgroundEdits.h"
#include "document/edits/ChangeValue.h"
#include "document/edits/LayerEdits.h"
#include "document/edits/PaintMask.h"
#include "document/edits/TerritoryEdits.h"
#include "document/journal/JournalReader.h"
#include "document/journal/Recovery.h"
#include "layers/raster/Mask.h"
#include "layers/raster/MaskDelta.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "tests/support/FailingDisk.h"
#include "tests/support/Files.h"
#include "tests/support/JournalSession.h"
#include "tests/support/Masks.h"
#include "tests/support/OrderedEvents.h"
#include "tests/support/ProjectFixture.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QGraphicsScene>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>
#include <QXmlStreamWriter>

#include <algorithm>
#include <functional>

namespace {

/// The tiles at the right and at the bottom are cut off.
constexpr int Side = 200;

} // namespace

class tst_Journal : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void NothingIsWrittenWithoutAChange();
    void EachEditIsKept_data();
    void EachEditIsKept();
    void RandomEditsAreKept();
    void EditsAreKeptWithoutBeingAskedFor();
    void TheTextIsThatOfASave();
    void MasksThatNoFileHoldsAreKept();
    void AStrokeUnderWayIsNotKept();
    void TheStateBeforeAStrokeIsKept();
    void NothingIsReadDuringALoad();
    void SavesMayReplaceBitmaps();
    void BitmapsMayGoAway();
    void ReplacedBitmapsAreNoBase();
    void EndsWithTheReason_data();
    void EndsWithTheReason();
    void KeepsChangesAfterASave();
    void TellsOnceWhatFails_data();
    void TellsOnceWhatFails();
    void FolderThatVanishesIsTold();
    void MovesAway();
    void TellsTheOldestChange();
    void LongLogsAreWrittenAnew();
    void MasksStayUnshared();

private:
    using Action = std::function<void(tst_Journal&)>;

    Layer* AddLayer();
    Layer* LayerAt(int row) const { return m_document->Layers().LayerAt(row); }
    Zone* FirstZone() const { return m_territory->Zones().first(); }
    /// Fills the rectangle with the value, as a step.
    void Fill(Layer& layer, const QRect& rect, uchar value);
    /// A stroke as the brush makes it: the mask changes in place before there is an edit.
    void Stroke(Layer& layer, const QRect& rect, uchar value, bool isEnded = true);
    bool Save();
    QString ProjectPath() const { return m_project->Path("project.xml"); }
    QByteArray Text() const;
    void ActAtRandom(Random& random);
    void ActOnRows(Random& random, int action);
    void ActOnZones(Random& random, int action);
    bool IsAnythingWritten() const { return !FilesBelow(m_data->Path()).isEmpty(); }
    /// Why the journal of the folder does not hold the present state; empty when it does.
    QString Difference(const QString& folder) const;

    std::unique_ptr<QWidget> m_window;
    std::unique_ptr<DataFolder> m_data;
    std::unique_ptr<ProjectFixture> m_project;
    std::unique_ptr<QGraphicsScene> m_scene;
    std::unique_ptr<Document> m_document;
    std::unique_ptr<Journal> m_journal;
    TerritoryType* m_type = nullptr;
    Territory* m_territory = nullptr;
};

void tst_Journal::init()
{
    // Layers and territories have check boxes and names while there is a window.
    m_window = std::make_unique<QWidget>();
    m_data = std::make_unique<DataFolder>();
    m_project = std::make_unique<ProjectFixture>(QSize(Side, Side), QSize(Side, Side));
    m_scene = std::make_unique<QGraphicsScene>(0, 0, Side, Side);
    m_document = std::make_unique<Document>();
    m_document->SetZoneScene(m_scene.get());
    m_document->SetEditable(true);
    auto type = std::make_unique<TerritoryType>("Deer");
    m_type = type.get();
    m_document->Do(Edits::AddType(m_document->Types(), std::move(type)));
    m_document->Do(Edits::AddTerritory(*m_type, std::make_unique<Territory>("North")));
    m_territory = dynamic_cast<Territory*>(m_type->child(0));
    m_document->Do(Edits::InsertZone(*m_territory, {10, 20}, {}));
    for (int i = 0; i < 3; ++i) {
        Fill(*AddLayer(), {20 * i, 10, 100, 90}, static_cast<uchar>(255 - i));
    }
    QVERIFY(Save());
    m_document->BeginHistory(true);
    m_journal = std::make_unique<Journal>(*m_document);
    // As after a load.
    m_document->BeginHistory(true);
}

void tst_Journal::cleanup()
{
    m_journal.reset();
    m_document.reset();
    m_scene.reset();
    m_project.reset();
    m_data.reset();
    m_window.reset();
}

Layer* tst_Journal::AddLayer()
{
    m_document->Do(Edits::AddPaintedLayer(m_document->Layers(), raster::BlankMask({Side, Side})));
    return LayerAt(m_document->Layers().model()->rowCount() - 1);
}

void tst_Journal::Fill(Layer& layer, const QRect& rect, uchar value)
{
    QImage mask = layer.Image().copy();
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        std::fill_n(mask.scanLine(y) + rect.left(), rect.width(), value);
    }
    m_document->Do(std::make_unique<PaintMask>("Fill", layer, mask));
}

void tst_Journal::Stroke(Layer& layer, const QRect& rect, uchar value, bool isEnded)
{
    m_document->SetHandBusy(true);
    QImage mask = layer.Image();
    layer.TakePaintedMask({});
    raster::MaskDelta delta;
    delta.Touch(mask, rect);
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        std::fill_n(mask.scanLine(y) + rect.left(), rect.width(), value);
    }
    layer.TakePaintedMask(mask);
    mask = {};
    if (!isEnded) {
        return;
    }
    m_document->SetHandBusy(false);
    delta.DropUnchanged(layer.Image());
    m_document->Do(std::make_unique<PaintMask>("Stroke", layer, std::move(delta), rect));
}

bool tst_Journal::Save()
{
    m_document->SetFilesBusy(true);
    const ProjectParts parts{
        -1,
        [this](QXmlStreamWriter& xml) { m_document->GetBrush().WriteXml(xml); },
        {},
        m_document->Layers(),
        m_document->Types()};
    const bool isSaved = SaveProjectTo(ProjectPath(), parts);
    if (isSaved) {
        m_document->SetPath(ProjectPath());
        m_document->SetSaved();
    }
    m_document->SetFilesBusy(false);
    return isSaved;
}

QByteArray tst_Journal::Text() const
{
    QByteArray text;
    QXmlStreamWriter xml(&text);
    WriteProjectText(xml,
                     {-1, ProjectSettings::Instance(),
                      [this](QXmlStreamWriter& brush) { m_document->GetBrush().WriteXml(brush); },
                      m_document->Layers().Records(), m_document->Types().Records()});
    return text;
}

QString tst_Journal::Difference(const QString& folder) const
{
    QString reason;
    const auto reader = JournalReader::Open(folder, &reason);
    if (!reader) {
        return "it cannot be read: " + reason;
    }
    if (reader->Text() != Text()) {
        return "the text is\n" + reader->Text() + "\ninstead of\n" + Text();
    }
    const QVector<Layer*> layers = m_document->Layers().Layers();
    if (reader->LayerCount() != layers.size()) {
        return "the number of layers";
    }
    for (int row = 0; row < layers.size(); ++row) {
        if (reader->Mask(row) != layers[row]->Image()) {
            return "the mask of " + layers[row]->text();
        }
    }
    const bool isSame = reader->ProjectPath() == m_document->Path() &&
                        reader->LayerSize() == ProjectSettings::Instance().LayerSize();
    return isSame ? QString() : "the header";
}

// QVERIFY and QCOMPARE leave the function that they stand in.
#define VERIFY_KEPT()                                                                              \
    do {                                                                                           \
        QVERIFY(m_journal->Flush());                                                               \
        QCOMPARE(Difference(m_journal->Folder()), QString());                                      \
    } while (false)

void tst_Journal::NothingIsWrittenWithoutAChange()
{
    QVERIFY(m_journal->Flush());
    m_document->NoteChange();
    m_document->SetCurrentLayer(LayerAt(1));
    QCoreApplication::processEvents();
    QVERIFY(!m_document->Do(Edits::SetLayerOpacity(*LayerAt(0), LayerAt(0)->Color().alpha())));
    QCoreApplication::processEvents();
    QVERIFY(m_journal->Flush());

    QVERIFY(!IsAnythingWritten());
    QVERIFY(!m_journal->OldestUnsaved().isValid());
    m_document->BeginHistory(true);
    Fill(*LayerAt(0), {0, 0, 5, 5}, 1);
    m_document->Undo();
    QCoreApplication::processEvents();
    QVERIFY(m_journal->Flush());
    QVERIFY(!IsAnythingWritten());
    QCOMPARE(m_journal->Folder(), QString());
    m_document->SetCurrentLayer(nullptr);
    AddLayer();
    VERIFY_KEPT();
}

void tst_Journal::EachEditIsKept_data()
{
    QTest::addColumn<Action>("action");
    const auto add = [](const char* name, const Action& action) { QTest::newRow(name) << action; };
    const QRect part(60, 60, 70, 10);
    add("fill", [part](tst_Journal& t) { t.Fill(*t.LayerAt(1), part, 7); });
    add("stroke", [part](tst_Journal& t) { t.Stroke(*t.LayerAt(1), part, 9); });
    add("the last pixel", [](tst_Journal& t) {
        t.Stroke(*t.LayerAt(1), {Side - 1, Side - 1, 1, 1}, 9);
    });
    add("whole mask",
        [](tst_Journal& t) { t.Fill(*t.LayerAt(2), t.LayerAt(2)->Image().rect(), 0); });
    add("add layer", [](tst_Journal& t) { t.AddLayer(); });
    add("add and paint layer",
        [part](tst_Journal& t) { t.Fill(*t.AddLayer(), part, raster::MaskSet); });
    add("remove layer",
        [](tst_Journal& t) { t.m_document->Do(Edits::RemoveLayer(*t.LayerAt(1))); });
    add("move layer", [](tst_Journal& t) { t.m_document->Do(Edits::MoveLayer(*t.LayerAt(2), 0)); });
    add("rename layer",
        [](tst_Journal& t) { t.m_document->Do(Edits::Rename(*t.LayerAt(0), "Forest")); });
    add("take the name of a bitmap", [](tst_Journal& t) {
        const QString name = t.LayerAt(1)->text();
        t.m_document->Do(Edits::RemoveLayer(*t.LayerAt(1)));
        t.m_document->Do(Edits::Rename(*t.LayerAt(0), name));
    });
    add("equal names", [](tst_Journal& t) {
        t.m_document->Do(Edits::Rename(*t.LayerAt(0), t.LayerAt(1)->text()));
    });
    add("modify layer", [](tst_Journal& t) {
        t.m_document->Do(
            Edits::ModifyLayer(*t.LayerAt(0), "Computed", "code", FullMask({Side, Side})));
    });
    add("colour",
        [](tst_Journal& t) { t.m_document->Do(Edits::SetLayerColor(*t.LayerAt(0), Qt::red)); });
    add("flag types", [](tst_Journal& t) {
        t.m_document->Do(Edits::ImportFlagTypes(t.m_document->Layers(), {{"a"}, {"b"}}, true));
    });
    add("background",
        [](tst_Journal& t) { t.m_document->Do(Edits::SetBackgroundColor(Qt::green)); });
    add("zone", [](tst_Journal& t) {
        t.m_document->Do(Edits::InsertZone(*t.m_territory, {33, 44}, {}));
    });
    add("nudge", [](tst_Journal& t) {
        Zone* zone = t.FirstZone();
        t.m_document->Do(Edits::MoveZones({{zone, zone->pos(), {1, 2}}}, true));
    });
    add("territory",
        [](tst_Journal& t) { t.m_document->Do(Edits::RemoveTerritory(*t.m_territory)); });
    add("brush", [](tst_Journal& t) {
        t.AddLayer();
        QVERIFY(t.m_journal->Flush());
        t.m_document->GetBrush().SetSize(77);
        t.Stroke(*t.LayerAt(0), {0, 0, 5, 5}, 1);
    });
}

Q_DECLARE_METATYPE(std::function<void(tst_Journal&)>)

void tst_Journal::EachEditIsKept()
{
    QFETCH(Action, action);
    action(*this);
    VERIFY_KEPT();
    Fill(*LayerAt(0), {1, 1, 2, 2}, 3);
    VERIFY_KEPT();
    m_document->Undo();
    VERIFY_KEPT();
    m_document->Undo();
    QVERIFY(m_journal->Flush());
    m_document->Redo();
    VERIFY_KEPT();
    m_document->Redo();
    VERIFY_KEPT();
    QCOMPARE(QDir(Recovery::Folder()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 1);
}

void tst_Journal::ActAtRandom(Random& random)
{
    const int layerCount = m_document->Layers().model()->rowCount();
    const int action = random.Below(12);
    if (action < 4 && layerCount > 0) {
        const int left = random.Below(Side);
        const int top = random.Below(Side);
        const QRect rect(left, top, random.Between(1, Side - left), random.Between(1, Side - top));
        const auto value = static_cast<uchar>(random.Below(3) * 100);
        Layer* layer = LayerAt(random.Below(layerCount));
        if (action < 3) {
            Stroke(*layer, rect, value);
        } else {
            Fill(*layer, rect, value);
        }
    } else if (action < 6) {
        m_document->Undo();
    } else if (action == 6) {
        m_document->Redo();
    } else if (action < 9) {
        ActOnRows(random, action);
    } else {
        ActOnZones(random, action);
    }
}

void tst_Journal::ActOnRows(Random& random, int action)
{
    const int layerCount = m_document->Layers().model()->rowCount();
    if (layerCount < 2) {
        AddLayer();
        return;
    }
    Layer* layer = LayerAt(random.Below(layerCount));
    if (action == 7) {
        m_document->Do(Edits::MoveLayer(*layer, random.Below(layerCount)));
    } else if (random.Below(2) == 0) {
        m_document->Do(Edits::RemoveLayer(*layer));
    } else {
        m_document->Do(Edits::Rename(*layer, QString("layer %1").arg(random.Below(5))));
    }
}

void tst_Journal::ActOnZones(Random& random, int action)
{
    if (m_territory->Zones().isEmpty() || action == 9) {
        m_document->Do(
            Edits::InsertZone(*m_territory, QPointF(random.Below(Side), random.Below(Side)), {}));
        return;
    }
    Zone* zone = FirstZone();
    if (action == 10) {
        m_document->Do(Edits::RemoveZones({zone}));
    } else {
        const QPointF place(random.Below(Side), random.Below(Side));
        m_document->Do(Edits::MoveZones({{zone, zone->pos(), place}}, random.Below(2) == 0));
        m_document->EndGesture();
    }
}

void tst_Journal::RandomEditsAreKept()
{
    Random random;
    for (int i = 0; i < 600; ++i) {
        ActAtRandom(random);
        if (random.Below(3) == 0) {
            QCoreApplication::processEvents();
        }
        const int check = random.Below(60);
        if (check == 0) {
            QVERIFY(Save());
        } else if (check < 10) {
            QVERIFY(m_journal->Flush());
            if (m_journal->OldestUnsaved().isValid()) {
                QCOMPARE(Difference(m_journal->Folder()), QString());
            }
        }
    }
}

void tst_Journal::EditsAreKeptWithoutBeingAskedFor()
{
    const auto isKept = [this] {
        const QString folder = m_journal->Folder();
        return !folder.isEmpty() && Difference(folder).isEmpty();
    };
    Fill(*LayerAt(1), {0, 0, 90, 90}, 4);
    QTRY_VERIFY(isKept());
    m_document->Do(Edits::InsertZone(*m_territory, {3, 4}, {}));
    QTRY_VERIFY(isKept());
    // The bitmaps, too.
    QTRY_VERIFY(
        QFileInfo::exists(m_journal->Folder() + QString("/base-%1.tga").arg(LayerAt(2)->Id())));
    QVERIFY(QDir(m_project->Path("layers")).removeRecursively());
    QTRY_VERIFY(isKept());
}

void tst_Journal::TheTextIsThatOfASave()
{
    m_document->Do(Edits::Rename(*LayerAt(0), "Forest"));
    QVERIFY(m_journal->Flush());
    const auto reader = JournalReader::Open(m_journal->Folder());
    QVERIFY(reader);
    const QByteArray text = reader->Text();
    QVERIFY(Save());
    QCOMPARE(text, ReadBytes(ProjectPath()));
}

void tst_Journal::MasksThatNoFileHoldsAreKept()
{
    m_document->BeginHistory(false);
    QVERIFY(m_journal->OldestUnsaved().isValid());
    VERIFY_KEPT();
    Stroke(*LayerAt(0), {0, 0, 100, 100}, 0);
    VERIFY_KEPT();
    QVERIFY(QDir(m_project->Path("layers")).removeRecursively());
    VERIFY_KEPT();
}

void tst_Journal::AStrokeUnderWayIsNotKept()
{
    Fill(*LayerAt(0), {0, 0, 5, 5}, 1);
    VERIFY_KEPT();
    const QByteArray before = RestoredState(m_journal->Folder()).value();

    Stroke(*LayerAt(1), {10, 10, 100, 100}, 77, false);
    QCoreApplication::processEvents();
    QVERIFY(m_journal->Flush());
    QCOMPARE(RestoredState(m_journal->Folder()).value(), before);

    m_document->SetHandBusy(false);
    m_document->Do(Edits::Rename(*LayerAt(0), "Forest"));
    QVERIFY(m_journal->Flush());
    QVERIFY(RestoredState(m_journal->Folder()).value() != before);
}

void tst_Journal::TheStateBeforeAStrokeIsKept()
{
    m_document->Do(Edits::InsertZone(*m_territory, {33, 44}, {}));
    Fill(*LayerAt(0), {0, 0, 99, 5}, 1);
    const QByteArray text = Text();
    // No event is handled in between, so nothing is written yet.
    Stroke(*LayerAt(1), {10, 10, 100, 100}, 77, false);
    FirstZone()->setPos(50, 50);
    QVERIFY(m_journal->Flush());

    const auto reader = JournalReader::Open(m_journal->Folder());
    QVERIFY(reader);
    QVERIFY(!reader->HasProjectChanged());
    QCOMPARE(reader->Text(), text);
    QCOMPARE(reader->Mask(0), LayerAt(0)->Image());
    QVERIFY(reader->Mask(1) != LayerAt(1)->Image());
}

void tst_Journal::NothingIsReadDuringALoad()
{
    m_document->SetFilesBusy(true);
    Fill(*LayerAt(0), {0, 0, 5, 5}, 1);
    QCoreApplication::processEvents();
    QVERIFY(!IsAnythingWritten());
    m_document->SetFilesBusy(false);
    QTRY_VERIFY(IsAnythingWritten());
    VERIFY_KEPT();
}

/// A kill between the last bitmap's replacement and the end of the journal must lose nothing.
void tst_Journal::SavesMayReplaceBitmaps()
{
    Fill(*LayerAt(0), {0, 0, 5, 5}, 1);
    m_document->SetFilesBusy(true);
    QVERIFY(QDir(m_project->Path("layers")).removeRecursively());
    QCOMPARE(Difference(m_journal->Folder()), QString());
}

void tst_Journal::BitmapsMayGoAway()
{
    Fill(*LayerAt(0), {0, 0, 5, 5}, 1);
    QVERIFY(m_journal->Flush());
    QVERIFY(QDir(m_project->Path("layers")).removeRecursively());
    QCOMPARE(Difference(m_journal->Folder()), QString());
    QVERIFY(JournalReader::Open(m_journal->Folder()).value().HasProjectChanged());
    Fill(*LayerAt(0), {0, 0, 50, 5}, 2);
    VERIFY_KEPT();
}

void tst_Journal::ReplacedBitmapsAreNoBase()
{
    WriteBytes(m_project->Path("layers/" + LayerAt(1)->text() + ".tga"), "another");
    QVERIFY(QFile::remove(m_project->Path("layers/" + LayerAt(2)->text() + ".tga")));
    Fill(*LayerAt(0), {0, 0, 5, 5}, 1);
    Fill(*LayerAt(1), {100, 0, 5, 5}, 2);
    VERIFY_KEPT();
    Fill(*LayerAt(2), {0, 0, Side, Side}, 0);
    VERIFY_KEPT();
}

void tst_Journal::EndsWithTheReason_data()
{
    QTest::addColumn<Action>("end");
    const auto add = [](const char* name, const Action& end) { QTest::newRow(name) << end; };
    add("save", [](tst_Journal& t) { QVERIFY(t.Save()); });
    add("other project", [](tst_Journal& t) {
        t.m_document->Clear();
        t.m_document->BeginHistory(true);
    });
    add("load that fails", [](tst_Journal& t) { t.m_document->Clear(); });
    add("clean close", [](tst_Journal& t) {
        t.m_journal->End();
        t.m_document->Do(Edits::Rename(*t.LayerAt(0), "too late"));
    });
    add("end", [](tst_Journal& t) { t.m_journal.reset(); });
    add("undo", [](tst_Journal& t) {
        t.m_document->Undo();
        QTRY_VERIFY(FilesBelow(Recovery::Folder()).isEmpty());
    });
}

void tst_Journal::EndsWithTheReason()
{
    QFETCH(Action, end);
    Fill(*LayerAt(0), {0, 0, 5, 5}, 1);
    QVERIFY(m_journal->Flush());
    QVERIFY(!m_journal->Folder().isEmpty());

    end(*this);

    if (m_journal) {
        QCoreApplication::processEvents();
        m_journal->Flush();
        QCOMPARE(m_journal->Folder(), QString());
    }
    QCOMPARE(FilesBelow(Recovery::Folder()).keys(), QStringList());
}

void tst_Journal::KeepsChangesAfterASave()
{
    for (int i = 1; i < 4; ++i) {
        Fill(*LayerAt(0), {0, 0, 20 * i, 5}, static_cast<uchar>(i));
        m_document->Do(Edits::Rename(*LayerAt(0), QString("name %1").arg(i)));
        VERIFY_KEPT();
        if (i == 2) {
            m_document->Undo();
            m_document->Undo();
            VERIFY_KEPT();
        }
        QVERIFY(Save());
    }
}

void tst_Journal::TellsOnceWhatFails_data()
{
    QTest::addColumn<Action>("act");
    const auto add = [](const char* name, const Action& act) { QTest::newRow(name) << act; };
    const auto edit = [](tst_Journal& t) {
        for (int i = 0; i < 5; ++i) {
            t.Fill(*t.LayerAt(0), {0, 0, 50, 5 * i + 1}, 1);
            t.m_document->Do(Edits::InsertZone(*t.m_territory, QPointF(i, i), {}));
            QCoreApplication::processEvents();
            t.m_journal->Flush();
            QCoreApplication::processEvents();
        }
    };
    add("missing", [edit](tst_Journal& t) {
        const QByteArray before = qgetenv("XDG_DATA_HOME");
        const QString file = t.m_data->Path() + "/file";
        WriteBytes(file, "no folder");
        qputenv("XDG_DATA_HOME", file.toLocal8Bit() + "/data");
        edit(t);
        qputenv("XDG_DATA_HOME", before);
        QVERIFY(QFile::remove(file));
    });
    add("read-only", [edit](tst_Journal& t) {
        const ReadOnlyFolder folder(t.m_data->Path());
        edit(t);
    });
    for (const int bytes : {0, 100, 1000, 3000}) {
        const QByteArray name = "full after " + QByteArray::number(bytes);
        add(name.constData(), [edit, bytes](tst_Journal& t) {
            const FileSizeLimit limit(static_cast<quint64>(bytes));
            edit(t);
        });
    }
}

void tst_Journal::TellsOnceWhatFails()
{
    QFETCH(Action, act);
    QSignalSpy failures(m_journal.get(), &Journal::Failed);
    act(*this);

    QCOMPARE(failures.size(), 1);
    QVERIFY(!failures.first().first().toString().isEmpty());
    QVERIFY(!m_journal->Flush());
    QVERIFY(m_journal->OldestUnsaved().isValid());
    // Editing goes on, and after the next save the journal does, too.
    QCOMPARE(m_territory->Zones().size(), 6);
    QVERIFY(Save());
    Fill(*LayerAt(0), {7, 0, 5, 5}, 3);
    VERIFY_KEPT();
    QCOMPARE(failures.size(), 1);
}

void tst_Journal::FolderThatVanishesIsTold()
{
    QSignalSpy failures(m_journal.get(), &Journal::Failed);
    AddLayer();
    QVERIFY(m_journal->Flush());
    QVERIFY(QDir(m_journal->Folder()).removeRecursively());
    AddLayer();
    QVERIFY(!m_journal->Flush());
    QCOMPARE(failures.size(), 1);
}

void tst_Journal::MovesAway()
{
    const QString target = m_data->Path() + "/versions/one";
    QVERIFY(!m_journal->MoveTo(target));
    Fill(*LayerAt(0), {0, 0, 50, 5}, 1);
    Fill(*AddLayer(), {60, 60, 50, 5}, 1);
    const QByteArray text = Text();

    QVERIFY(m_journal->MoveTo(target));
    QCOMPARE(Difference(target), QString());
    // The changes are still unsaved.
    Fill(*LayerAt(1), {0, 0, 50, 5}, 1);
    m_document->Do(Edits::Rename(*LayerAt(0), "Forest"));
    VERIFY_KEPT();
    QVERIFY(m_journal->Folder() != target);
    m_journal->End();
    QCOMPARE(JournalReader::Open(target).value().Text(), text);
}

void tst_Journal::TellsTheOldestChange()
{
    QSignalSpy changes(m_journal.get(), &Journal::UnsavedChanged);
    Zone* zone = FirstZone();
    m_document->Do(Edits::MoveZones({{zone, zone->pos(), {1, 2}}}, true));
    const QDateTime first = m_journal->OldestUnsaved();
    QVERIFY(first.isValid());
    QCOMPARE(changes.size(), 1);
    Fill(*LayerAt(0), {0, 0, 50, 5}, 1);
    QCOMPARE(m_journal->OldestUnsaved(), first);
    m_document->Undo();
    QCOMPARE(changes.size(), 1);

    m_document->Undo();
    QVERIFY(!m_journal->OldestUnsaved().isValid());
    QCOMPARE(changes.size(), 2);
    m_document->Redo();
    QVERIFY(m_journal->OldestUnsaved().isValid());
    QVERIFY(Save());
    QVERIFY(!m_journal->OldestUnsaved().isValid());
    QCOMPARE(changes.size(), 4);
    m_document->BeginHistory(false);
    QVERIFY(m_journal->OldestUnsaved().isValid());
}

void tst_Journal::LongLogsAreWrittenAnew()
{
    Random random;
    const auto logLength = [this] { return QFileInfo(m_journal->Folder() + "/log").size(); };
    qint64 longest = 0;
    qint64 written = 0;
    while (written < 40'000'000) {
        const qint64 before = logLength();
        for (int i = 0; i < 20; ++i) {
            QImage noise = raster::BlankMask({Side, Side});
            std::generate_n(noise.bits(), noise.sizeInBytes(),
                            [&random] { return static_cast<uchar>(random.Bits()); });
            m_document->Do(std::make_unique<PaintMask>("Noise", *LayerAt(i % 2), noise));
            QVERIFY(m_journal->Flush());
        }
        longest = qMax(longest, logLength());
        written += qMax<qint64>(logLength() - before, 0);
    }
    QVERIFY2(longest < 20'000'000, qPrintable(QString::number(longest)));
    VERIFY_KEPT();
}

void tst_Journal::MasksStayUnshared()
{
    m_document->BeginHistory(false);
    Fill(*LayerAt(0), {0, 0, 50, 5}, 1);
    const uchar* pixels = LayerAt(1)->Image().constBits();
    VERIFY_KEPT();
    QVERIFY(LayerAt(1)->Image().isDetached());
    QCOMPARE(LayerAt(1)->Image().constBits(), pixels);
}

int main(int argc, char* argv[])
{
    OrderedApplication application(argc, argv);
    tst_Journal test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_Journal.moc"
