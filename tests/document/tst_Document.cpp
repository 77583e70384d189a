#include "document/Document.h"

#include "app/ProjectSettings.h"
#include "document/edits/LayerEdits.h"
#include "document/edits/TerritoryEdits.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "tests/support/DocumentFixture.h"
#include "tests/support/FailingDisk.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Masks.h"
#include "tests/support/Random.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

namespace {

constexpr int Side = DocumentFixture::Side;

bool IsModified()
{
    return ProjectSettings::Instance().IsModified();
}

/// A folder for the temporary files of this process while it lives.
class TemporaryFiles
{
public:
    TemporaryFiles() { qputenv("TMPDIR", QFile::encodeName(m_folder.path())); }
    ~TemporaryFiles() { qputenv("TMPDIR", m_before); }
    Q_DISABLE_COPY(TemporaryFiles)

    /// Takes the bytes out of all that are open, as when a disk fails. They may have no names.
    void Empty() const
    {
        int count = 0;
        const QFileInfoList open = QDir("/proc/self/fd").entryInfoList(QDir::Files | QDir::System);
        for (const QFileInfo& file : open) {
            if (file.symLinkTarget().startsWith(m_folder.path())) {
                QCOMPARE(truncate(QFile::encodeName(file.filePath()).constData(), 0), 0);
                ++count;
            }
        }
        QVERIFY(count > 0);
    }

private:
    QByteArray m_before = qgetenv("TMPDIR");
    QTemporaryDir m_folder;
};

} // namespace

class tst_Document : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void StepsAreUndoneAndDoneAgain();
    void AStepThatChangesNothingIsNone();
    void ModifiedFollowsTheSavedState();
    void ChangesThatAreNoStepsKeepTheProjectModified();
    void NudgesAloneDoNotModify();
    void OneGestureIsOneStep();
    void NothingIsUndoneWhileBusy();
    void RemovedLayersComeBack();
    void RemovedTerritoriesComeBackWithTheirZones();
    void CheckMarksOfATypeComeBack();
    void ImportedFlagTypesAreTakenBack();
    void LetsTheOldestStepsGoWhenNothingTakesThem();
    void LetsStepsOnBothSidesGo();
    void MasksSurviveTheTemporaryFile();
    void MasksOfRemovedLayersGoToTheTemporaryFile();
    void LetsRemovedLayersGoWhenNothingTakesThem();
    void SaysWhatItCannotUndo();
    void SaysWhatItCannotRedo();
    void TenThousandStepsComeBack();

private:
    Layer* AddLayer() { return m_fixture->AddLayer(); }
    void Fill(Layer& layer, const QRect& rect, uchar value) { m_fixture->Fill(layer, rect, value); }

    std::unique_ptr<DocumentFixture> m_fixture;
    Document* m_document = nullptr;
    TerritoryType* m_type = nullptr;
    Territory* m_territory = nullptr;
};

void tst_Document::init()
{
    m_fixture = std::make_unique<DocumentFixture>();
    m_document = &m_fixture->document;
    m_type = m_fixture->type;
    m_territory = m_fixture->territory;
}

void tst_Document::cleanup()
{
    m_fixture.reset();
}

void tst_Document::StepsAreUndoneAndDoneAgain()
{
    Layer* layer = AddLayer();
    m_document->Do(Edits::Rename(*layer, "Forest"));

    QCOMPARE(m_document->History().undoText(),
             QString("Rename layer-%1 to Forest").arg(layer->Id()));
    m_document->Undo();
    QCOMPARE(layer->text(), QString("layer-%1").arg(layer->Id()));
    m_document->Redo();
    QCOMPARE(layer->text(), "Forest");
    m_document->Undo();
    m_document->Undo();
    QVERIFY(m_document->Layers().IsEmpty());
    QVERIFY(!m_document->CanUndo());
}

void tst_Document::AStepThatChangesNothingIsNone()
{
    Layer* layer = AddLayer();
    m_document->SetSaved();
    ProjectSettings::Instance().SetModified(false);
    const int count = m_document->History().count();

    QVERIFY(!m_document->Do(Edits::SetLayerOpacity(*layer, layer->Color().alpha())));
    QVERIFY(!m_document->Do(Edits::RemoveZones({})));

    QCOMPARE(m_document->History().count(), count);
    QVERIFY(IsModified());
}

void tst_Document::ModifiedFollowsTheSavedState()
{
    Layer* layer = AddLayer();
    QVERIFY(IsModified());
    ProjectSettings::Instance().SetModified(false);
    m_document->SetSaved();

    m_document->Undo();
    QVERIFY(IsModified());
    m_document->Redo();
    QVERIFY(!IsModified());
    m_document->Do(Edits::SetLayerOpacity(*layer, 10));
    QVERIFY(IsModified());
    m_document->Undo();
    QVERIFY(!IsModified());
}

void tst_Document::ChangesThatAreNoStepsKeepTheProjectModified()
{
    AddLayer();
    m_document->NoteChange();
    m_document->Undo();
    QVERIFY(IsModified());
}

void tst_Document::NudgesAloneDoNotModify()
{
    m_document->Do(Edits::InsertZone(*m_territory, {50, 50}, m_document->ZoneTemplate()));
    ProjectSettings::Instance().SetModified(false);
    m_document->SetSaved();
    Zone* zone = m_territory->Zones().last();

    m_document->Do(Edits::MoveZones({{zone, {50, 50}, {51, 50}}}, true));
    QVERIFY(!IsModified());
    m_document->Undo();
    QCOMPARE(zone->pos(), QPointF(50, 50));
    QVERIFY(!IsModified());
    m_document->Redo();
    QCOMPARE(zone->pos(), QPointF(51, 50));
    QVERIFY(!IsModified());
}

void tst_Document::OneGestureIsOneStep()
{
    Layer* layer = AddLayer();
    const int count = m_document->History().count();
    for (int alpha = 100; alpha < 110; ++alpha) {
        m_document->Do(Edits::SetLayerOpacity(*layer, alpha));
    }
    QCOMPARE(m_document->History().count(), count + 1);
    m_document->EndGesture();
    m_document->Do(Edits::SetLayerOpacity(*layer, 120));
    QCOMPARE(m_document->History().count(), count + 2);

    m_document->Undo();
    QCOMPARE(layer->Color().alpha(), 109);
    m_document->Undo();
    QCOMPARE(layer->Color().alpha(), 255);

    // Back and forth in one gesture leaves nothing to undo.
    m_document->Do(Edits::SetLayerOpacity(*layer, 7));
    m_document->Do(Edits::SetLayerOpacity(*layer, 255));
    QCOMPARE(m_document->History().count(), count);
}

void tst_Document::NothingIsUndoneWhileBusy()
{
    AddLayer();
    m_document->SetHandBusy(true);
    QVERIFY(!m_document->CanUndo());
    m_document->Undo();
    QVERIFY(!m_document->Layers().IsEmpty());
    m_document->SetHandBusy(false);
    m_document->SetFilesBusy(true);
    m_document->Undo();
    QVERIFY(!m_document->Layers().IsEmpty());
    RowModel* model = m_document->Layers().model();
    QVERIFY(!model->setData(model->index(0, 0), "sea"));
    QVERIFY(model->index(0, 0).data() != QVariant("sea"));
    m_document->SetFilesBusy(false);
    m_document->SetEditable(false);
    m_document->Undo();
    QVERIFY(!m_document->Layers().IsEmpty());
}

void tst_Document::RemovedLayersComeBack()
{
    Layer* first = AddLayer();
    Layer* second = AddLayer();
    AddLayer();
    m_document->Do(Edits::MoveLayer(*second, 0));
    m_document->SetCurrentLayer(first);

    m_document->Do(Edits::RemoveLayer(*first));
    QCOMPARE(m_document->CurrentLayer(), nullptr);
    m_document->Undo();
    QCOMPARE(m_document->Layers().LayerAt(1), first);
    m_document->Undo();
    QCOMPARE(m_document->Layers().LayerAt(0), first);
    QCOMPARE(m_document->Layers().LayerAt(1), second);
}

void tst_Document::RemovedTerritoriesComeBackWithTheirZones()
{
    m_document->Do(Edits::InsertZone(*m_territory, {50, 50}, m_document->ZoneTemplate()));
    Zone* zone = m_territory->Zones().last();
    m_document->SetCurrentTerritory(m_territory);
    zone->setSelected(true);

    for (const bool isWholeType : {false, true}) {
        m_document->Do(isWholeType ? Edits::RemoveType(*m_type)
                                   : Edits::RemoveTerritory(*m_territory));
        QCOMPARE(zone->scene(), nullptr);
        QCOMPARE(m_document->CurrentTerritory(), nullptr);
        m_document->Undo();
        QCOMPARE(zone->scene(), &m_fixture->scene);
        QVERIFY(!zone->isSelected());
        QCOMPARE(m_territory->GetType(), m_type);
    }
}

void tst_Document::CheckMarksOfATypeComeBack()
{
    m_document->Do(Edits::AddTerritory(*m_type, std::make_unique<Territory>("South")));
    auto* south = dynamic_cast<Territory*>(m_type->child(1));
    RowModel* model = m_document->Types().model();
    model->setData(south->index(), Qt::Checked, Qt::CheckStateRole);

    model->setData(m_type->index(), Qt::Checked, Qt::CheckStateRole);
    QVERIFY(m_territory->IsVisible() && south->IsVisible());
    m_document->Undo();
    QVERIFY(!m_territory->IsVisible() && south->IsVisible());
    QCOMPARE(m_territory->checkState(), Qt::Unchecked);
    QCOMPARE(m_type->checkState(), Qt::Unchecked);
}

void tst_Document::ImportedFlagTypesAreTakenBack()
{
    Layer* layer = AddLayer();
    m_document->Do(Edits::SetLayerFlags(*layer, 5, 1));
    AreaFlagTypes types;
    types.usages = {"Town"};

    m_document->Do(Edits::ImportFlagTypes(m_document->Layers(), types, true));
    QCOMPARE(ProjectSettings::Instance().FlagTypes().usages, types.usages);
    QCOMPARE(layer->UsageFlags(), 0U);
    m_document->Undo();
    QVERIFY(ProjectSettings::Instance().FlagTypes().usages.isEmpty());
    QCOMPARE(layer->UsageFlags(), 5U);
    QCOMPARE(layer->ValueFlags(), 1U);
}

void tst_Document::LetsTheOldestStepsGoWhenNothingTakesThem()
{
    Layer* layer = AddLayer();
    Fill(*layer, {0, 0, 100, 100}, 255);
    {
        const FileSizeLimit fullDisk(0);
        m_document->Memory().SetBudget(0);
        m_document->Do(Edits::SetLayerOpacity(*layer, 9));
    }

    m_document->Undo();
    QCOMPARE(layer->Color().alpha(), 255);
    QVERIFY(!m_document->CanUndo());
    QVERIFY(m_document->History().text(1).endsWith("(no longer kept)"));
    // Also by the view of the history.
    m_document->History().setIndex(0);
    QCOMPARE(m_document->Layers().Layers(), (QVector<Layer*>{layer}));
    QVERIFY(IsModified());
    m_document->Redo();
    QCOMPARE(layer->Color().alpha(), 9);
}

void tst_Document::LetsStepsOnBothSidesGo()
{
    Layer* layer = AddLayer();
    Fill(*layer, {0, 0, 100, 100}, 1);
    Fill(*layer, {0, 0, 90, 90}, 2);
    Fill(*layer, {0, 0, 80, 80}, 3);
    {
        const FileSizeLimit fullDisk(0);
        m_document->Memory().SetBudget(0);
        m_document->Undo();
    }

    QVERIFY(!m_document->CanUndo());
    QVERIFY(!m_document->CanRedo());
    QCOMPARE(layer->Image().pixelIndex(0, 0), 2);
}

void tst_Document::MasksSurviveTheTemporaryFile()
{
    Layer* layer = AddLayer();
    m_document->Memory().SetBudget(1);
    Random random;
    QVector<QImage> masks = {layer->Image().copy()};
    for (int step = 0; step < 60; ++step) {
        const QPoint corner(random.Below(Side), random.Below(Side));
        const QRect rect = QRect(corner, QPoint(random.Below(Side), random.Below(Side)));
        const int before = m_document->History().count();
        Fill(*layer, rect.normalized() & layer->Image().rect(), uchar(random.Below(256)));
        if (m_document->History().count() > before) {
            masks.append(layer->Image().copy());
        }
    }
    QVERIFY(m_document->CanUndo());
    while (m_document->History().index() > 1) {
        QCOMPARE(layer->Image(), masks[m_document->History().index() - 1]);
        m_document->Undo();
    }
    QCOMPARE(layer->Image(), masks.first());
    while (m_document->CanRedo()) {
        m_document->Redo();
    }
    QCOMPARE(layer->Image(), masks.last());
}

void tst_Document::MasksOfRemovedLayersGoToTheTemporaryFile()
{
    const TemporaryFiles files;
    m_document->Memory().SetBudget(1);
    Random random;
    const QImage mask = RandomMask(random, {Side, Side});
    const QImage copy = mask.copy();
    m_document->Do(Edits::AddComputedLayer(m_document->Layers(), "Forest", "!(1)", mask));
    Layer* layer = m_document->Layers().LayerAt(0);

    for (int round = 0; round < 2; ++round) {
        m_document->Undo();
        QVERIFY(layer->Image().isNull());
        m_document->Redo();
        QCOMPARE(layer->Image(), copy);
    }
    for (int round = 0; round < 2; ++round) {
        m_document->Do(Edits::RemoveLayer(*layer));
        QVERIFY(layer->Image().isNull());
        m_document->Undo();
        QCOMPARE(layer->Image(), copy);
    }
    m_document->Redo();
    files.Empty();
    LogSpy log;
    m_document->Undo();
    QCoreApplication::processEvents();
    QCOMPARE(log.Messages(),
             QStringList("Error: Could not undo 'Remove layer Forest'. It and the steps before it "
                         "are no longer kept."));
    QVERIFY(m_document->Layers().IsEmpty());
    QVERIFY(!m_document->CanUndo());
}

void tst_Document::LetsRemovedLayersGoWhenNothingTakesThem()
{
    Random random;
    m_document->Do(Edits::AddPaintedLayer(m_document->Layers(), RandomMask(random, {Side, Side})));
    Layer* layer = m_document->Layers().LayerAt(0);
    const FileSizeLimit fullDisk(0);
    // Enough for all but the mask.
    m_document->Memory().SetBudget(Side * Side / 2);
    m_document->Do(Edits::SetLayerOpacity(*layer, 9));
    QVERIFY(m_document->CanUndo());

    m_document->Do(Edits::RemoveLayer(*layer));

    QVERIFY(!m_document->CanUndo());
    QVERIFY(m_document->History().text(2).endsWith("(no longer kept)"));
}

void tst_Document::SaysWhatItCannotUndo()
{
    const TemporaryFiles files;
    Layer* layer = AddLayer();
    m_document->Memory().SetBudget(1);
    Fill(*layer, {0, 0, 10, 10}, 255);
    m_document->Do(Edits::SetLayerOpacity(*layer, 9));
    const QImage before = layer->Image().copy();
    QImage computed = before.copy();
    computed.fill(7);
    m_document->Do(Edits::ModifyLayer(*layer, "Wood", "!(1)", computed));
    m_document->Do(Edits::SetLayerOpacity(*layer, 5));
    files.Empty();
    LogSpy log;

    // One click in the view of the history.
    m_document->History().setIndex(0);
    QCoreApplication::processEvents();

    QCOMPARE(log.Messages(),
             QStringList(QString("Error: Could not undo 'Modify layer layer-%1'. It and the steps "
                                 "before it are no longer kept.")
                             .arg(layer->Id())));
    QCOMPARE(layer->Image(), computed);
    QCOMPARE(layer->Code(), "!(1)");
    QCOMPARE(layer->text(), "Wood");
    QCOMPARE(layer->Color().alpha(), 9);
    QCOMPARE(m_document->Layers().Layers(), (QVector<Layer*>{layer}));
    QVERIFY(!m_document->CanUndo());
    QVERIFY(m_document->History().text(3).endsWith("(no longer kept)"));
    QVERIFY(IsModified());
    m_document->Redo();
    QCOMPARE(layer->Color().alpha(), 5);
    QVERIFY(!m_document->CanRedo());
}

void tst_Document::SaysWhatItCannotRedo()
{
    const TemporaryFiles files;
    Layer* layer = AddLayer();
    m_document->Memory().SetBudget(1);
    const QString name = layer->text();
    const QImage before = layer->Image().copy();
    QImage computed = before.copy();
    computed.fill(7);
    m_document->Do(Edits::ModifyLayer(*layer, "Wood", "!(1)", computed));
    m_document->Do(Edits::SetLayerOpacity(*layer, 5));
    m_document->Undo();
    m_document->Undo();
    files.Empty();
    LogSpy log;

    m_document->History().setIndex(3);
    QCoreApplication::processEvents();

    QCOMPARE(log.Messages(), QStringList(QString("Error: Could not redo 'Modify layer %1'. It and "
                                                 "the steps after it are no longer kept.")
                                             .arg(name)));
    QCOMPARE(layer->Image(), before);
    QCOMPARE(layer->Code(), QString());
    QCOMPARE(layer->text(), name);
    QCOMPARE(layer->Color().alpha(), 255);
    QVERIFY(!m_document->CanRedo());
    m_document->Undo();
    QVERIFY(m_document->Layers().IsEmpty());
}

void tst_Document::TenThousandStepsComeBack()
{
    Layer* layer = AddLayer();
    constexpr int count = 10000;
    for (int i = 0; i < count; ++i) {
        m_document->EndGesture();
        m_document->Do(Edits::SetLayerOpacity(*layer, i % 200));
    }
    QCOMPARE(m_document->History().count(), count + 1);
    while (m_document->CanUndo()) {
        m_document->Undo();
    }
    QVERIFY(m_document->Layers().IsEmpty());
    while (m_document->CanRedo()) {
        m_document->Redo();
    }
    QCOMPARE(layer->Color().alpha(), (count - 1) % 200);
}

QTEST_MAIN(tst_Document)
#include "tst_Document.moc"
