#include "document/journal/Journal.h"

#include "document/edits/BackgroundEdits.h"
#include "document/edits/FormulaEdits.h"
#include "document/edits/LayerEdits.h"
#include "document/edits/PaintMask.h"
#include "document/edits/TerritoryEdits.h"
#include "document/journal/JournalReader.h"
#include "document/journal/Recovery.h"
#include "layers/Formula.h"
#include "layers/raster/Mask.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "tests/support/FailingDisk.h"
#include "tests/support/Files.h"
#include "tests/support/JournalledDocument.h"
#include "tests/support/Masks.h"
#include "tests/support/OrderedEvents.h"

#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <functional>

namespace {

constexpr int Side = DocumentFixture::Side;

using Action = std::function<void(JournalledDocument&)>;

} // namespace

Q_DECLARE_METATYPE(Action)

class tst_Journal : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_work = std::make_unique<JournalledDocument>(); }
    void cleanup() { m_work.reset(); }
    void NothingIsWrittenWithoutAChange();
    void EachEditIsKept_data();
    void EachEditIsKept();
    void RandomEditsAreKept();
    void EditsAreKeptWithoutBeingAskedFor();
    void TheTextIsThatOfASave();
    void FormulasAreKeptAsTheyAreNow();
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
    void ActAtRandom(Random& random);
    void ActOnRows(Random& random, int action);
    void ActOnZones(Random& random, int action);

    std::unique_ptr<JournalledDocument> m_work;
};

void tst_Journal::NothingIsWrittenWithoutAChange()
{
    QVERIFY(m_work->journal->Flush());
    m_work->document.NoteChange();
    m_work->document.SetCurrentLayer(m_work->LayerAt(1));
    QCoreApplication::processEvents();
    QVERIFY(!m_work->document.Do(
        Edits::SetLayerOpacity(*m_work->LayerAt(0), m_work->LayerAt(0)->Color().alpha())));
    QCoreApplication::processEvents();
    QVERIFY(m_work->journal->Flush());

    QVERIFY(!m_work->IsAnythingWritten());
    QVERIFY(!m_work->journal->OldestUnsaved().isValid());
    m_work->document.BeginHistory(true);
    m_work->Fill(*m_work->LayerAt(0), {0, 0, 5, 5}, 1);
    m_work->document.Undo();
    QCoreApplication::processEvents();
    QVERIFY(m_work->journal->Flush());
    QVERIFY(!m_work->IsAnythingWritten());
    QCOMPARE(m_work->journal->Folder(), QString());
    m_work->document.SetCurrentLayer(nullptr);
    m_work->AddLayer();
    QCOMPARE(m_work->Unkept(), QString());
}

void tst_Journal::EachEditIsKept_data()
{
    QTest::addColumn<Action>("action");
    const auto add = [](const char* name, const Action& action) { QTest::newRow(name) << action; };
    const QRect part(60, 60, 70, 10);
    add("fill", [part](JournalledDocument& d) { d.Fill(*d.LayerAt(1), part, 7); });
    add("stroke", [part](JournalledDocument& d) { d.Stroke(*d.LayerAt(1), part, 9); });
    add("the last pixel", [](JournalledDocument& d) {
        d.Stroke(*d.LayerAt(1), {Side - 1, Side - 1, 1, 1}, 9);
    });
    add("whole mask",
        [](JournalledDocument& d) { d.Fill(*d.LayerAt(2), d.LayerAt(2)->Image().rect(), 0); });
    add("add layer", [](JournalledDocument& d) { d.AddLayer(); });
    add("add and paint layer",
        [part](JournalledDocument& d) { d.Fill(*d.AddLayer(), part, raster::MaskSet); });
    add("remove layer",
        [](JournalledDocument& d) { d.document.Do(Edits::RemoveLayer(*d.LayerAt(1))); });
    add("move layer",
        [](JournalledDocument& d) { d.document.Do(Edits::MoveLayer(*d.LayerAt(2), 0)); });
    add("rename layer",
        [](JournalledDocument& d) { d.document.Do(Edits::Rename(*d.LayerAt(0), "Forest")); });
    add("take the name of a bitmap", [](JournalledDocument& d) {
        const QString name = d.LayerAt(1)->text();
        d.document.Do(Edits::RemoveLayer(*d.LayerAt(1)));
        d.document.Do(Edits::Rename(*d.LayerAt(0), name));
    });
    add("equal names", [](JournalledDocument& d) {
        d.document.Do(Edits::Rename(*d.LayerAt(0), d.LayerAt(1)->text()));
    });
    add("modify layer", [](JournalledDocument& d) {
        d.document.Do(
            Edits::ModifyLayer(*d.LayerAt(0), "Computed", "code", FullMask({Side, Side})));
    });
    add("colour",
        [](JournalledDocument& d) { d.document.Do(Edits::SetLayerColor(*d.LayerAt(0), Qt::red)); });
    add("flag types", [](JournalledDocument& d) {
        d.document.Do(Edits::ImportFlagTypes(d.document.Layers(), {{"a"}, {"b"}}, true));
    });
    add("background",
        [](JournalledDocument& d) { d.document.Do(Edits::SetBackgroundColor(Qt::green)); });
    add("zone", [](JournalledDocument& d) {
        d.document.Do(Edits::InsertZone(*d.territory, {33, 44}, {}));
    });
    add("nudge", [](JournalledDocument& d) {
        Zone* zone = d.FirstZone();
        d.document.Do(Edits::MoveZones({{zone, zone->pos(), {1, 2}}}, true));
    });
    add("territory",
        [](JournalledDocument& d) { d.document.Do(Edits::RemoveTerritory(*d.territory)); });
    add("brush", [](JournalledDocument& d) {
        d.AddLayer();
        QVERIFY(d.journal->Flush());
        d.document.GetBrush().SetSize(77);
        d.Stroke(*d.LayerAt(0), {0, 0, 5, 5}, 1);
    });
}

void tst_Journal::EachEditIsKept()
{
    QFETCH(Action, action);
    action(*m_work);
    QCOMPARE(m_work->Unkept(), QString());
    m_work->Fill(*m_work->LayerAt(0), {1, 1, 2, 2}, 3);
    QCOMPARE(m_work->Unkept(), QString());
    m_work->document.Undo();
    QCOMPARE(m_work->Unkept(), QString());
    m_work->document.Undo();
    QVERIFY(m_work->journal->Flush());
    m_work->document.Redo();
    QCOMPARE(m_work->Unkept(), QString());
    m_work->document.Redo();
    QCOMPARE(m_work->Unkept(), QString());
    QCOMPARE(QDir(Recovery::Folder()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 1);
}

void tst_Journal::ActAtRandom(Random& random)
{
    const int layerCount = m_work->document.Layers().model()->rowCount();
    const int action = random.Below(12);
    if (action < 4 && layerCount > 0) {
        const int left = random.Below(Side);
        const int top = random.Below(Side);
        const QRect rect(left, top, random.Between(1, Side - left), random.Between(1, Side - top));
        const auto value = static_cast<uchar>(random.Below(3) * 100);
        Layer* layer = m_work->LayerAt(random.Below(layerCount));
        if (action < 3) {
            m_work->Stroke(*layer, rect, value);
        } else {
            m_work->Fill(*layer, rect, value);
        }
    } else if (action < 6) {
        m_work->document.Undo();
    } else if (action == 6) {
        m_work->document.Redo();
    } else if (action < 9) {
        ActOnRows(random, action);
    } else {
        ActOnZones(random, action);
    }
}

void tst_Journal::ActOnRows(Random& random, int action)
{
    const int layerCount = m_work->document.Layers().model()->rowCount();
    if (layerCount < 2) {
        m_work->AddLayer();
        return;
    }
    Layer* layer = m_work->LayerAt(random.Below(layerCount));
    if (action == 7) {
        m_work->document.Do(Edits::MoveLayer(*layer, random.Below(layerCount)));
    } else if (random.Below(2) == 0) {
        m_work->document.Do(Edits::RemoveLayer(*layer));
    } else {
        m_work->document.Do(Edits::Rename(*layer, QString("layer %1").arg(random.Below(5))));
    }
}

void tst_Journal::ActOnZones(Random& random, int action)
{
    if (m_work->territory->Zones().isEmpty() || action == 9) {
        m_work->document.Do(Edits::InsertZone(*m_work->territory,
                                              QPointF(random.Below(Side), random.Below(Side)), {}));
        return;
    }
    Zone* zone = m_work->FirstZone();
    if (action == 10) {
        m_work->document.Do(Edits::RemoveZones({zone}));
    } else {
        const QPointF place(random.Below(Side), random.Below(Side));
        m_work->document.Do(Edits::MoveZones({{zone, zone->pos(), place}}, random.Below(2) == 0));
        m_work->document.EndGesture();
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
            QVERIFY(m_work->Save());
        } else if (check < 10) {
            QVERIFY(m_work->journal->Flush());
            if (m_work->journal->OldestUnsaved().isValid()) {
                QCOMPARE(m_work->Difference(m_work->journal->Folder()), QString());
            }
        }
    }
}

void tst_Journal::EditsAreKeptWithoutBeingAskedFor()
{
    const auto isKept = [this] {
        const QString folder = m_work->journal->Folder();
        return !folder.isEmpty() && m_work->Difference(folder).isEmpty();
    };
    m_work->Fill(*m_work->LayerAt(1), {0, 0, 90, 90}, 4);
    QTRY_VERIFY(isKept());
    m_work->document.Do(Edits::InsertZone(*m_work->territory, {3, 4}, {}));
    QTRY_VERIFY(isKept());
    // The bitmaps, too.
    QTRY_VERIFY(QFileInfo::exists(m_work->journal->Folder() +
                                  QString("/base-%1.tga").arg(m_work->LayerAt(2)->Id())));
    QVERIFY(QDir(m_work->Path("layers")).removeRecursively());
    QTRY_VERIFY(isKept());
}

void tst_Journal::TheTextIsThatOfASave()
{
    m_work->document.Do(Edits::Rename(*m_work->LayerAt(0), "Forest"));
    QVERIFY(m_work->journal->Flush());
    const auto reader = JournalReader::Open(m_work->journal->Folder());
    QVERIFY(reader);
    const QByteArray text = reader->Text();
    QVERIFY(m_work->Save());
    QCOMPARE(text, ReadBytes(m_work->DocumentPath()));
}

void tst_Journal::FormulasAreKeptAsTheyAreNow()
{
    Document& document = m_work->document;
    Layer& lake = *m_work->LayerAt(0);
    const QString code = Formula{OperationDilation, {lake.Id()}, 5}.Code();
    document.Do(Edits::AddComputedLayer(document.Layers(), QStringLiteral("shore"), code,
                                        EvaluateAtLayerSize(document.Layers(), code)));
    Layer& shore = *document.Layers().LayerByName(QStringLiteral("shore"));
    QCOMPARE(m_work->Unkept(), QString());
    document.Do(Edits::MakeLayerLive(shore, {}));
    QCOMPARE(m_work->Unkept(), QString());
    m_work->Stroke(lake, {20, 20, 30, 30}, 255);
    QCOMPARE(m_work->Unkept(), QString());
    QVERIFY(m_work->Text().contains("live=\"1\""));
    document.Undo();
    QCOMPARE(m_work->Unkept(), QString());
}

void tst_Journal::MasksThatNoFileHoldsAreKept()
{
    m_work->document.BeginHistory(false);
    QVERIFY(m_work->journal->OldestUnsaved().isValid());
    QCOMPARE(m_work->Unkept(), QString());
    m_work->Stroke(*m_work->LayerAt(0), {0, 0, 100, 100}, 0);
    QCOMPARE(m_work->Unkept(), QString());
    QVERIFY(QDir(m_work->Path("layers")).removeRecursively());
    QCOMPARE(m_work->Unkept(), QString());
}

void tst_Journal::AStrokeUnderWayIsNotKept()
{
    m_work->Fill(*m_work->LayerAt(0), {0, 0, 5, 5}, 1);
    QCOMPARE(m_work->Unkept(), QString());
    const QByteArray before = RestoredState(m_work->journal->Folder()).value();

    m_work->Stroke(*m_work->LayerAt(1), {10, 10, 100, 100}, 77, false);
    QCoreApplication::processEvents();
    QVERIFY(m_work->journal->Flush());
    QCOMPARE(RestoredState(m_work->journal->Folder()).value(), before);

    m_work->document.SetHandBusy(false);
    m_work->document.Do(Edits::Rename(*m_work->LayerAt(0), "Forest"));
    QVERIFY(m_work->journal->Flush());
    QVERIFY(RestoredState(m_work->journal->Folder()).value() != before);
}

void tst_Journal::TheStateBeforeAStrokeIsKept()
{
    m_work->document.Do(Edits::InsertZone(*m_work->territory, {33, 44}, {}));
    m_work->Fill(*m_work->LayerAt(0), {0, 0, 99, 5}, 1);
    const QByteArray text = m_work->Text();
    // No event is handled in between, so nothing is written yet.
    m_work->Stroke(*m_work->LayerAt(1), {10, 10, 100, 100}, 77, false);
    m_work->FirstZone()->setPos(50, 50);
    QVERIFY(m_work->journal->Flush());

    const auto reader = JournalReader::Open(m_work->journal->Folder());
    QVERIFY(reader);
    QVERIFY(!reader->HasProjectChanged());
    QCOMPARE(reader->Text(), text);
    QCOMPARE(reader->Mask(0), m_work->LayerAt(0)->Image());
    QVERIFY(reader->Mask(1) != m_work->LayerAt(1)->Image());
}

void tst_Journal::NothingIsReadDuringALoad()
{
    m_work->document.SetFilesBusy(true);
    m_work->Fill(*m_work->LayerAt(0), {0, 0, 5, 5}, 1);
    QCoreApplication::processEvents();
    QVERIFY(!m_work->IsAnythingWritten());
    m_work->document.SetFilesBusy(false);
    QTRY_VERIFY(m_work->IsAnythingWritten());
    QCOMPARE(m_work->Unkept(), QString());
}

/// A kill between the last bitmap's replacement and the end of the journal must lose nothing.
void tst_Journal::SavesMayReplaceBitmaps()
{
    m_work->Fill(*m_work->LayerAt(0), {0, 0, 5, 5}, 1);
    m_work->document.SetFilesBusy(true);
    QVERIFY(QDir(m_work->Path("layers")).removeRecursively());
    QCOMPARE(m_work->Difference(m_work->journal->Folder()), QString());
}

void tst_Journal::BitmapsMayGoAway()
{
    m_work->Fill(*m_work->LayerAt(0), {0, 0, 5, 5}, 1);
    QVERIFY(m_work->journal->Flush());
    QVERIFY(QDir(m_work->Path("layers")).removeRecursively());
    QCOMPARE(m_work->Difference(m_work->journal->Folder()), QString());
    QVERIFY(JournalReader::Open(m_work->journal->Folder()).value().HasProjectChanged());
    m_work->Fill(*m_work->LayerAt(0), {0, 0, 50, 5}, 2);
    QCOMPARE(m_work->Unkept(), QString());
}

void tst_Journal::ReplacedBitmapsAreNoBase()
{
    WriteBytes(m_work->Path("layers/" + m_work->LayerAt(1)->text() + ".tga"), "another");
    QVERIFY(QFile::remove(m_work->Path("layers/" + m_work->LayerAt(2)->text() + ".tga")));
    m_work->Fill(*m_work->LayerAt(0), {0, 0, 5, 5}, 1);
    m_work->Fill(*m_work->LayerAt(1), {100, 0, 5, 5}, 2);
    QCOMPARE(m_work->Unkept(), QString());
    m_work->Fill(*m_work->LayerAt(2), {0, 0, Side, Side}, 0);
    QCOMPARE(m_work->Unkept(), QString());
}

void tst_Journal::EndsWithTheReason_data()
{
    QTest::addColumn<Action>("end");
    const auto add = [](const char* name, const Action& end) { QTest::newRow(name) << end; };
    add("save", [](JournalledDocument& d) { QVERIFY(d.Save()); });
    add("other project", [](JournalledDocument& d) {
        d.document.Clear();
        d.document.BeginHistory(true);
    });
    add("load that fails", [](JournalledDocument& d) { d.document.Clear(); });
    add("clean close", [](JournalledDocument& d) {
        d.journal->End();
        d.document.Do(Edits::Rename(*d.LayerAt(0), "too late"));
    });
    add("end", [](JournalledDocument& d) { d.journal.reset(); });
    add("undo", [](JournalledDocument& d) {
        d.document.Undo();
        QTRY_VERIFY(FilesBelow(Recovery::Folder()).isEmpty());
    });
}

void tst_Journal::EndsWithTheReason()
{
    QFETCH(Action, end);
    m_work->Fill(*m_work->LayerAt(0), {0, 0, 5, 5}, 1);
    QVERIFY(m_work->journal->Flush());
    QVERIFY(!m_work->journal->Folder().isEmpty());

    end(*m_work);

    if (m_work->journal) {
        QCoreApplication::processEvents();
        m_work->journal->Flush();
        QCOMPARE(m_work->journal->Folder(), QString());
    }
    QCOMPARE(FilesBelow(Recovery::Folder()).keys(), QStringList());
}

void tst_Journal::KeepsChangesAfterASave()
{
    for (int i = 1; i < 4; ++i) {
        m_work->Fill(*m_work->LayerAt(0), {0, 0, 20 * i, 5}, static_cast<uchar>(i));
        m_work->document.Do(Edits::Rename(*m_work->LayerAt(0), QString("name %1").arg(i)));
        QCOMPARE(m_work->Unkept(), QString());
        if (i == 2) {
            m_work->document.Undo();
            m_work->document.Undo();
            QCOMPARE(m_work->Unkept(), QString());
        }
        QVERIFY(m_work->Save());
    }
}

void tst_Journal::TellsOnceWhatFails_data()
{
    QTest::addColumn<Action>("act");
    const auto add = [](const char* name, const Action& act) { QTest::newRow(name) << act; };
    const auto edit = [](JournalledDocument& d) {
        for (int i = 0; i < 5; ++i) {
            d.Fill(*d.LayerAt(0), {0, 0, 50, 5 * i + 1}, 1);
            d.document.Do(Edits::InsertZone(*d.territory, QPointF(i, i), {}));
            QCoreApplication::processEvents();
            d.journal->Flush();
            QCoreApplication::processEvents();
        }
    };
    add("missing", [edit](JournalledDocument& d) {
        const QByteArray before = qgetenv("XDG_DATA_HOME");
        const QString file = d.data.Path() + "/file";
        WriteBytes(file, "no folder");
        qputenv("XDG_DATA_HOME", file.toLocal8Bit() + "/data");
        edit(d);
        qputenv("XDG_DATA_HOME", before);
        QVERIFY(QFile::remove(file));
    });
    add("read-only", [edit](JournalledDocument& d) {
        const ReadOnlyFolder folder(d.data.Path());
        edit(d);
    });
    for (const int bytes : {0, 100, 1000, 3000}) {
        const QByteArray name = "full after " + QByteArray::number(bytes);
        add(name.constData(), [edit, bytes](JournalledDocument& d) {
            const FileSizeLimit limit(static_cast<quint64>(bytes));
            edit(d);
        });
    }
}

void tst_Journal::TellsOnceWhatFails()
{
    QFETCH(Action, act);
    QSignalSpy failures(m_work->journal.get(), &Journal::Failed);
    act(*m_work);

    QCOMPARE(failures.size(), 1);
    QVERIFY(!failures.first().first().toString().isEmpty());
    QVERIFY(!m_work->journal->Flush());
    QVERIFY(m_work->journal->OldestUnsaved().isValid());
    // Editing goes on, and after the next save the journal does, too.
    QCOMPARE(m_work->territory->Zones().size(), 6);
    QVERIFY(m_work->Save());
    m_work->Fill(*m_work->LayerAt(0), {7, 0, 5, 5}, 3);
    QCOMPARE(m_work->Unkept(), QString());
    QCOMPARE(failures.size(), 1);
}

void tst_Journal::FolderThatVanishesIsTold()
{
    QSignalSpy failures(m_work->journal.get(), &Journal::Failed);
    m_work->AddLayer();
    QVERIFY(m_work->journal->Flush());
    QVERIFY(QDir(m_work->journal->Folder()).removeRecursively());
    m_work->AddLayer();
    QVERIFY(!m_work->journal->Flush());
    QCOMPARE(failures.size(), 1);
}

void tst_Journal::MovesAway()
{
    const QString target = m_work->data.Path() + "/versions/one";
    QVERIFY(!m_work->journal->MoveTo(target));
    m_work->Fill(*m_work->LayerAt(0), {0, 0, 50, 5}, 1);
    m_work->Fill(*m_work->AddLayer(), {60, 60, 50, 5}, 1);
    const QByteArray text = m_work->Text();

    QVERIFY(m_work->journal->MoveTo(target));
    QCOMPARE(m_work->Difference(target), QString());
    // The changes are still unsaved.
    m_work->Fill(*m_work->LayerAt(1), {0, 0, 50, 5}, 1);
    m_work->document.Do(Edits::Rename(*m_work->LayerAt(0), "Forest"));
    QCOMPARE(m_work->Unkept(), QString());
    QVERIFY(m_work->journal->Folder() != target);
    m_work->journal->End();
    QCOMPARE(JournalReader::Open(target).value().Text(), text);
}

void tst_Journal::TellsTheOldestChange()
{
    QSignalSpy changes(m_work->journal.get(), &Journal::UnsavedChanged);
    Zone* zone = m_work->FirstZone();
    m_work->document.Do(Edits::MoveZones({{zone, zone->pos(), {1, 2}}}, true));
    const QDateTime first = m_work->journal->OldestUnsaved();
    QVERIFY(first.isValid());
    QCOMPARE(changes.size(), 1);
    m_work->Fill(*m_work->LayerAt(0), {0, 0, 50, 5}, 1);
    QCOMPARE(m_work->journal->OldestUnsaved(), first);
    m_work->document.Undo();
    QCOMPARE(changes.size(), 1);

    m_work->document.Undo();
    QVERIFY(!m_work->journal->OldestUnsaved().isValid());
    QCOMPARE(changes.size(), 2);
    m_work->document.Redo();
    QVERIFY(m_work->journal->OldestUnsaved().isValid());
    QVERIFY(m_work->Save());
    QVERIFY(!m_work->journal->OldestUnsaved().isValid());
    QCOMPARE(changes.size(), 4);
    m_work->document.BeginHistory(false);
    QVERIFY(m_work->journal->OldestUnsaved().isValid());
}

void tst_Journal::LongLogsAreWrittenAnew()
{
    Random random;
    const auto logLength = [this] { return QFileInfo(m_work->journal->Folder() + "/log").size(); };
    qint64 longest = 0;
    qint64 written = 0;
    while (written < 40'000'000) {
        const qint64 before = logLength();
        for (int i = 0; i < 20; ++i) {
            QImage noise = raster::BlankMask({Side, Side});
            std::generate_n(noise.bits(), noise.sizeInBytes(),
                            [&random] { return static_cast<uchar>(random.Bits()); });
            m_work->document.Do(
                std::make_unique<PaintMask>("Noise", *m_work->LayerAt(i % 2), noise));
            QVERIFY(m_work->journal->Flush());
        }
        longest = qMax(longest, logLength());
        written += qMax<qint64>(logLength() - before, 0);
    }
    QVERIFY2(longest < 20'000'000, qPrintable(QString::number(longest)));
    QCOMPARE(m_work->Unkept(), QString());
}

void tst_Journal::MasksStayUnshared()
{
    m_work->document.BeginHistory(false);
    m_work->Fill(*m_work->LayerAt(0), {0, 0, 50, 5}, 1);
    const uchar* pixels = m_work->LayerAt(1)->Image().constBits();
    QCOMPARE(m_work->Unkept(), QString());
    QVERIFY(m_work->LayerAt(1)->Image().isDetached());
    QCOMPARE(m_work->LayerAt(1)->Image().constBits(), pixels);
}

int main(int argc, char* argv[])
{
    OrderedApplication application(argc, argv);
    tst_Journal test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_Journal.moc"
