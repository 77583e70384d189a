// WorkForever FILE
// Works in the editor's window, at random, until it is killed: strokes, undo, zones, computed
// layers, saves and loads, with rests. Appends each state to FILE before any of it can reach a disk
// otherwise. Prints a line when the work begins: the folder of the application's data, and then the
// folder of the projects. Takes the places of both from TMPDIR.

#include "document/Document.h"
#include "document/edits/LayerEdits.h"
#include "document/edits/TerritoryEdits.h"
#include "layers/Targa.h"
#include "layers/raster/Mask.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "tests/support/Files.h"
#include "tests/support/Random.h"
#include "tests/support/SessionState.h"
#include "tests/support/WindowFixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMouseEvent>
#include <QTest>
#include <QTreeView>

#include <algorithm>
#include <csignal>
#include <cstdio>

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

/// Several tiles, of which the last ones are cut off.
constexpr int Side = 320;

class Worker : public WindowFixture
{
public:
    explicit Worker(const char* file);

    void Begin();
    void Act();

private:
    struct Deed
    {
        int weight;
        void (Worker::*act)();
    };

    QString MakeProject(const QString& name);
    void Note(SessionMoment moment);
    void NoteState();
    void Answer(QWidget& dialog);
    void Rest();

    Document& Edited() const { return window->GetDocument(); }
    QVector<Layer*> Layers() const { return Edited().Layers().Layers(); }
    Layer& ALayer();
    Territory& ATerritory() const;
    Zone* AZone();
    QPoint Somewhere();
    QImage AMask();
    QString AName() { return QStringLiteral("n%1").arg(++m_names); }
    void Mouse(QEvent::Type type, QPoint position, Qt::MouseButton button, Qt::MouseButtons down);

    void Stroke();
    void Undo() { Trigger("actionUndo"); }
    void Redo() { Trigger("actionRedo"); }
    void InsertZone();
    void MoveZone();
    void NudgeZone();
    void RemoveZone();
    void ResizeZone();
    void ComputeLayer();
    void ModifyLayer();
    void AddLayer();
    void RenameLayer();
    void MoveLayer();
    void RemoveLayer();
    void FadeLayer();
    void Save();
    void Load();

    Random m_random;
    int m_file;
    QStringList m_projects;
    QString m_toLoad;
    int m_names = 0;
};

Worker::Worker(const char* file)
    : m_file(open(file, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600))
{
    m_projects << MakeProject(QStringLiteral("first")) << MakeProject(QStringLiteral("second"));
    answers.SetOtherwise([this](QWidget& dialog) { Answer(dialog); });
}

/// The same as WriteProject, but larger.
QString Worker::MakeProject(const QString& name)
{
    QString path = WriteProject(name);
    WriteBytes(path, ReadBytes(path)
                         .replace("layer size=\"64\"", "layer size=\"320\"")
                         .replace("world size=\"640\"", "world size=\"2560\""));
    const ProjectSettings before = ProjectSettings::Instance();
    ProjectSettings::Instance().SetSizes(Side, Side, 8 * Side, 8 * Side);
    for (const char* layer : {"red", "blue"}) {
        SaveTarga(Path(name + QStringLiteral("/layers/%1.tga").arg(QLatin1String(layer))), AMask(),
                  true);
    }
    ProjectSettings::Instance() = before;
    return path;
}

void Worker::Note(SessionMoment moment)
{
    const QByteArray line = ToBytes({SharedClock(), moment, Edited().Path(), StateHash(Edited())});
    if (write(m_file, line.constData(), static_cast<size_t>(line.size())) != line.size()) {
        qFatal("The state cannot be noted.");
    }
}

void Worker::NoteState()
{
    Note(Edited().IsAtSavedState() ? SessionMoment::Saved : SessionMoment::Unsaved);
}

void Worker::Answer(QWidget& dialog)
{
    if (dialog.inherits("QFileDialog")) {
        Note(SessionMoment::LoadBegins);
    }
    AnswerLoad(dialog, m_toLoad);
}

void Worker::Begin()
{
    m_toLoad = m_projects.first();
    Trigger("actionLoad");
    if (Layers().size() != 2) {
        qFatal("The project cannot be loaded.");
    }
    NoteState();
}

void Worker::Rest()
{
    const int kind = m_random.Below(20);
    QTest::qWait(kind == 0 ? m_random.Below(1500) : m_random.Below(kind < 14 ? 8 : 80));
}

void Worker::Act()
{
    static constexpr Deed Deeds[] = {
        {30, &Worker::Stroke},     {14, &Worker::Undo},       {10, &Worker::Redo},
        {6, &Worker::InsertZone},  {6, &Worker::MoveZone},    {4, &Worker::NudgeZone},
        {2, &Worker::RemoveZone},  {4, &Worker::ResizeZone},  {3, &Worker::ComputeLayer},
        {4, &Worker::ModifyLayer}, {2, &Worker::AddLayer},    {4, &Worker::RenameLayer},
        {4, &Worker::MoveLayer},   {2, &Worker::RemoveLayer}, {4, &Worker::FadeLayer},
        {8, &Worker::Save},        {5, &Worker::Load},
    };
    int sum = 0;
    for (const Deed& deed : Deeds) {
        sum += deed.weight;
    }
    int drawn = m_random.Below(sum);
    const Deed* deed = Deeds;
    while (drawn >= deed->weight) {
        drawn -= deed->weight;
        ++deed;
    }
    (this->*deed->act)();
    NoteState();
    Rest();
}

Layer& Worker::ALayer()
{
    const QVector<Layer*> layers = Layers();
    return *layers[m_random.Below(layers.size())];
}

Territory& Worker::ATerritory() const
{
    return *Edited().Types().Types().first()->Territories().first();
}

/// Null when there is none.
Zone* Worker::AZone()
{
    const QList<Zone*> zones = ATerritory().Zones().values();
    return zones.isEmpty() ? nullptr : zones[m_random.Below(zones.size())];
}

QPoint Worker::Somewhere()
{
    return View().mapFromScene(QPointF(m_random.Below(Side), m_random.Below(Side)));
}

/// A rectangle in an empty mask.
QImage Worker::AMask()
{
    QImage mask = raster::BlankMask({Side, Side});
    const QRect rect(m_random.Below(Side / 2), m_random.Below(Side / 2),
                     m_random.Between(1, Side / 2), m_random.Between(1, Side / 2));
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        std::fill_n(mask.scanLine(y) + rect.left(), rect.width(), uchar(raster::MaskSet));
    }
    return mask;
}

void Worker::Mouse(QEvent::Type type, QPoint position, Qt::MouseButton button,
                   Qt::MouseButtons down)
{
    QWidget* viewport = View().viewport();
    QMouseEvent event(type, position, viewport->mapToGlobal(position), button, down,
                      Qt::NoModifier);
    QApplication::sendEvent(viewport, &event);
}

void Worker::Stroke()
{
    Child<QTreeView>("treeLayers")->setCurrentIndex(ALayer().index());
    if (!Action("actionTogglePaintMode")->isChecked()) {
        Trigger("actionTogglePaintMode");
    }
    const Qt::MouseButton button = m_random.Below(4) == 0 ? Qt::RightButton : Qt::LeftButton;
    QPoint position = Somewhere();
    Mouse(QEvent::MouseMove, position, Qt::NoButton, Qt::NoButton);
    Mouse(QEvent::MouseButtonPress, position, button, button);
    for (int moves = m_random.Below(8); moves > 0; --moves) {
        position = Somewhere();
        Mouse(QEvent::MouseMove, position, Qt::NoButton, button);
        QTest::qWait(m_random.Below(m_random.Below(10) == 0 ? 300 : 10));
    }
    Mouse(QEvent::MouseButtonRelease, position, button, Qt::NoButton);
}

void Worker::InsertZone()
{
    ZoneValues values;
    values.radius = static_cast<float>(m_random.Between(10, 100));
    values.counts.staticMax = m_random.Below(9);
    Edited().Do(Edits::InsertZone(ATerritory(), QPointF(m_random.Below(Side), m_random.Below(Side)),
                                  values));
}

void Worker::MoveZone()
{
    if (Zone* zone = AZone()) {
        const QPointF before = zone->pos();
        const QPointF after(m_random.Below(Side), m_random.Below(Side));
        zone->setPos(after);
        Edited().Do(Edits::MoveZones({{zone, before, after}}, false));
    }
}

void Worker::NudgeZone()
{
    if (Zone* zone = AZone()) {
        const QPointF before = zone->pos();
        const QPointF after = before + QPointF(1, 0);
        zone->setPos(after);
        Edited().Do(Edits::MoveZones({{zone, before, after}}, true));
    }
}

void Worker::RemoveZone()
{
    if (Zone* zone = AZone()) {
        Edited().Do(Edits::RemoveZones({zone}));
    }
}

void Worker::ResizeZone()
{
    if (Zone* zone = AZone()) {
        ZoneValues values = zone->Values();
        values.radius = static_cast<float>(m_random.Between(10, 200));
        Edited().Do(Edits::ChangeZone(*zone, values, Property::ZoneRadius));
    }
}

void Worker::ComputeLayer()
{
    Edited().Do(
        Edits::AddComputedLayer(Edited().Layers(), AName(), QStringLiteral("!(1)"), AMask()));
}

void Worker::ModifyLayer()
{
    Edited().Do(Edits::ModifyLayer(ALayer(), AName(), QStringLiteral("!(1)"), AMask()));
}

void Worker::AddLayer()
{
    if (Layers().size() < 8) {
        Child<QAbstractButton>("btnAddPainted")->click();
    }
}

void Worker::RenameLayer()
{
    Edited().Do(Edits::Rename(ALayer(), AName()));
}

void Worker::MoveLayer()
{
    Edited().Do(Edits::MoveLayer(ALayer(), m_random.Below(Layers().size())));
}

void Worker::RemoveLayer()
{
    if (Layers().size() > 2) {
        Edited().Do(Edits::RemoveLayer(ALayer()));
    }
}

void Worker::FadeLayer()
{
    Edited().Do(Edits::SetLayerOpacity(ALayer(), m_random.Below(256)));
}

void Worker::Save()
{
    Note(SessionMoment::SaveBegins);
    Trigger("actionQuickSave");
}

void Worker::Load()
{
    m_toLoad = m_projects[m_random.Below(2)];
    Trigger("actionLoad");
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    // Whoever started it may be killed itself.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The test that restores the work has this name, too.
    QCoreApplication::setApplicationName(QStringLiteral("quillmap"));
    Worker worker(argv[1]);
    worker.Begin();
    std::printf("%s\n%s\n", qgetenv("XDG_DATA_HOME").constData(),
                QFile::encodeName(worker.Path({})).constData());
    std::fflush(stdout);
    for (;;) {
        worker.Act();
    }
}
