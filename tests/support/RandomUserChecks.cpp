#include "tests/support/RandomUser.h"

#include "canvas/HeldKeys.h"
#include "document/Document.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"
#include "tests/support/Files.h"

#include <QAction>
#include <QDir>
#include <QGroupBox>
#include <QPair>
#include <QSet>

#include <cmath>

namespace {

/// The line without the number behind ' z="', and that number.
QPair<QByteArray, double> SplitAtZ(const QByteArray& line)
{
    const int begin = line.indexOf(" z=\"") + 4;
    const int end = line.indexOf('"', begin);
    return {line.left(begin) + line.mid(end), line.mid(begin, end - begin).toDouble()};
}

/// Zones may move by a rounding error of single precision, with some pairs of layer and world size.
bool IsSameLine(const QByteArray& line, const QByteArray& again)
{
    if (line == again || !line.contains("<zone ")) {
        return line == again;
    }
    constexpr double metres = 0.01;
    const auto [rest, z] = SplitAtZ(line);
    const auto [restAgain, zAgain] = SplitAtZ(again);
    return rest == restAgain && std::abs(z - zAgain) < metres;
}

/// What differs, empty when nothing does.
QString Difference(const QMap<QString, QByteArray>& before, const QMap<QString, QByteArray>& after)
{
    QStringList files = before.keys();
    files.append(after.keys());
    for (const QString& file : qAsConst(files)) {
        const QList<QByteArray> lines = before[file].split('\n');
        const QList<QByteArray> linesAfter = after[file].split('\n');
        for (int i = 0; i < std::max(lines.size(), linesAfter.size()); ++i) {
            if (lines.value(i) != linesAfter.value(i)) {
                const bool isText = file.endsWith(QLatin1String(".xml"));
                return file + (isText ? QString::fromUtf8(": " + lines.value(i) + " became " +
                                                          linesAfter.value(i))
                                      : QStringLiteral(" of %1 and %2 bytes")
                                            .arg(before[file].size())
                                            .arg(after[file].size()));
            }
        }
    }
    return {};
}

} // namespace

QString RandomUser::Contradiction() const
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    const QVector<Layer*> layers = Layers().Layers();
    QSet<int> ids;
    for (const Layer* layer : layers) {
        if (layer->Image().size() != QSize(settings.LayerWidth(), settings.LayerHeight())) {
            return QStringLiteral("Layer '%1' has another size.").arg(layer->text());
        }
        ids.insert(layer->Id());
    }
    if (ids.size() != layers.size()) {
        return QStringLiteral("Two layers have one id.");
    }
    if (Scene().CurrentLayer() && !layers.contains(Scene().CurrentLayer())) {
        return QStringLiteral("The scene edits a layer that is in no list.");
    }

    QSet<QGraphicsItem*> listed;
    bool isCurrentListed = !Scene().CurrentTerritory();
    const QVector<TerritoryType*> types = Types().Types();
    for (const TerritoryType* type : types) {
        SpawnCounts typeTotals;
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            SpawnCounts totals;
            for (Zone* zone : territory->Zones()) {
                totals += zone->Counts();
                listed.insert(zone);
            }
            typeTotals += totals;
            if (!(territory->Totals() == totals)) {
                return QStringLiteral("Territory '%1' has other totals.").arg(territory->text());
            }
            isCurrentListed = isCurrentListed || territory == Scene().CurrentTerritory();
        }
        if (!(type->Totals() == typeTotals)) {
            return QStringLiteral("Type '%1' has other totals.").arg(type->text());
        }
    }
    if (!isCurrentListed) {
        return QStringLiteral("The scene's territory is in no list.");
    }
    const QList<QGraphicsItem*> items = Scene().items();
    for (QGraphicsItem* item : items) {
        if (item->type() == Zone::Type && !listed.remove(item)) {
            return QStringLiteral("A zone on the map is in no territory.");
        }
    }
    if (!listed.isEmpty()) {
        return QStringLiteral("A territory's zone is not on the map.");
    }

    const QString name = settings.Name().isEmpty() ? QStringLiteral("Unsaved") : settings.Name();
    if (window->windowTitle() != name + QStringLiteral(" - Tarvo Ledger Tool")) {
        return QStringLiteral("The title names another project.");
    }
    if (Action("actionUndo")->isEnabled() != window->GetDocument().CanUndo() ||
        Action("actionRedo")->isEnabled() != window->GetDocument().CanRedo()) {
        return QStringLiteral("Undo or redo is enabled where it cannot be, or the other way.");
    }
    if (!m_changedLocked.isEmpty()) {
        return QStringLiteral("The locked layer '%1' changed.").arg(m_changedLocked);
    }
    const Document& document = window->GetDocument();
    if (document.SoloLayer() && !layers.contains(document.SoloLayer())) {
        return QStringLiteral("A layer that is in no list is shown alone.");
    }
    const Layer* current = document.CurrentLayer();
    if (Action("actionLayerSolo")->isChecked() != bool(document.SoloLayer())) {
        return QStringLiteral("\"Show only this layer\" is ticked wrongly.");
    }
    if (Action("actionLayerLock")->isChecked() != (current && document.IsLocked(*current))) {
        return QStringLiteral("\"Lock\" is ticked wrongly.");
    }
    if (Action("actionLayerFill")->isEnabled() != (current && document.CanTravel())) {
        return QStringLiteral("The menu Layer does not fit the current layer.");
    }
    if (Action("actionZonesMove")->isEnabled() !=
        (document.CanTravel() && !Scene().SelectedZones().isEmpty())) {
        return QStringLiteral("The menu Zones does not fit the selection.");
    }
    if (Action("actionTogglePaintMode")->isChecked() !=
        Child<QGroupBox>("gboPaintMode")->isChecked()) {
        return QStringLiteral("Action and box show different paint modes.");
    }
    return ZoneTableContradiction();
}

QString RandomUser::LostBySaving()
{
    const auto save = [this](const QString& folder) {
        QDir().mkpath(Path(folder));
        window->SaveProjectFile(Path(folder + QStringLiteral("/saved.xml")));
        return FilesBelow(Path(folder));
    };
    // The load would ask because of a stroke that is under way.
    LetGo();
    const QMap<QString, QByteArray> saved = save(QStringLiteral("once"));
    SetModified(false);
    answers.AddFile(Path(QStringLiteral("once/saved.xml")));
    Trigger("actionLoad");
    NoteLoad();
    const QMap<QString, QByteArray> savedAgain = save(QStringLiteral("twice"));
    const QString document = QStringLiteral("saved.xml");
    const QList<QByteArray> lines = saved[document].split('\n');
    const QList<QByteArray> linesAgain = savedAgain[document].split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        if (!IsSameLine(lines[i], linesAgain.value(i))) {
            return QString::fromUtf8(lines[i] + " became " + linesAgain.value(i));
        }
    }
    const QVector<Layer*> layers = Layers().Layers();
    for (const Layer* layer : layers) {
        const QString file = QStringLiteral("layers/%1.tga").arg(layer->text());
        if (saved[file] != savedAgain[file]) {
            return file;
        }
    }
    return {};
}

/// Zones move on while arrow keys are held, also while a state is looked at.
void RandomUser::LetGo()
{
    Scene().LoseMouse();
    HeldKeys::Instance().ReleaseAll();
}

void RandomUser::NoteLoad()
{
    Document& document = window->GetDocument();
    // Of a stroke under way there is no step yet.
    if (document.History().count() == 0 && !document.IsHandBusy()) {
        HeldKeys::Instance().ReleaseAll();
        m_loaded = SavedBytes();
    }
}

QString RandomUser::LostByUndoing()
{
    LetGo();
    const QUndoStack& history = window->GetDocument().History();
    NoteLoad();
    const SavedFiles present = SavedBytes();
    const int index = history.index();
    const auto check = [this, &history](const char* where, const SavedFiles& expected) {
        const QString difference = Difference(expected, SavedBytes());
        return difference.isEmpty() ? QString()
                                    : QStringLiteral("%1, step %2 (%3) of %4: %5")
                                          .arg(QLatin1String(where))
                                          .arg(history.index())
                                          .arg(history.text(history.index()))
                                          .arg(history.count())
                                          .arg(difference);
    };
    const auto go = [this](const char* action) {
        const bool isEnabled = Action(action)->isEnabled();
        if (isEnabled) {
            Trigger(action);
        }
        return isEnabled;
    };
    QString lost;
    do {
        if (history.isClean() && history.index() > 0) {
            lost = check("as saved", m_saved);
        }
    } while (lost.isEmpty() && go("actionUndo"));
    if (lost.isEmpty() && history.index() > 0) {
        return window->GetDocument().CanTravel() ? QStringLiteral("Not everything can be undone.")
                                                 : QString();
    }
    if (lost.isEmpty()) {
        lost = check("as loaded", m_loaded);
    }
    while (lost.isEmpty() && history.index() < index && go("actionRedo")) {}
    if (lost.isEmpty() && history.index() < index) {
        return QStringLiteral("Not everything can be redone.");
    }
    return lost.isEmpty() ? check("as before", present) : lost;
}
