#pragma once

#include "app/Tracked.h"
#include "document/Brush.h"
#include "document/Edit.h"
#include "document/HistoryMemory.h"
#include "document/KnownFiles.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "territories/Territory.h"
#include "territories/TerritoryTypeList.h"
#include "territories/ZoneValues.h"

#include <QGraphicsScene>
#include <QObject>
#include <QPointer>
#include <QRect>
#include <QSet>
#include <QUndoStack>

#include <limits>
#include <memory>
#include <optional>

class Formulas;
class LiveLayers;
class ProjectReader;
class QDir;
class QIODevice;

/// The open project: its settings (ProjectSettings, of which there is one), its layers, territories
/// and brush, what is current, and the history of its edits. The window owns it; docks, scene and
/// view show it. Users change it through edits only, and hear from its signals what changed.
class Document : public QObject
{
    Q_OBJECT

public:
    enum class LayerAspect
    {
        /// The pixels of the mask.
        Pixels,
        Color,
        Opacity,
        Flags,
        Name,
        Visibility,
        /// The layer was added, removed or moved.
        Rows,
    };
    Q_ENUM(LayerAspect)

    explicit Document(QObject* parent = nullptr);
    ~Document() override;

    LayerList& Layers() { return m_layers; }
    const LayerList& Layers() const { return m_layers; }
    TerritoryTypeList& Types() { return m_types; }
    const TerritoryTypeList& Types() const { return m_types; }
    Brush& GetBrush() { return m_brush; }
    /// What is known of computed layers.
    Formulas& LayerFormulas() { return *m_formulas; }
    const Formulas& LayerFormulas() const { return *m_formulas; }
    /// Lets live layers follow their operands.
    LiveLayers& Live() { return *m_live; }
    const LiveLayers& Live() const { return *m_live; }

    /// The scene that shows the zones; null for none. It may be destroyed before the document.
    void SetZoneScene(QGraphicsScene* scene) { m_zoneScene = scene; }
    QGraphicsScene* ZoneScene() const { return m_zoneScene; }

    /// The layer that is painted, and the territory whose zones are edited; null for none.
    Layer* CurrentLayer() const { return m_currentLayer; }
    /// While only one layer is shown, another current layer is shown instead of it.
    void SetCurrentLayer(Layer* layer);
    Territory* CurrentTerritory() const { return m_currentTerritory; }
    /// While only one territory is seen, another current one is seen instead of it.
    void SetCurrentTerritory(Territory* territory);
    /// The only territory whose zones are seen, whatever the check marks say; null when all are
    /// seen that are shown. It ends with the territory.
    Territory* SoloTerritory() const { return m_soloTerritory; }
    void SetSoloTerritory(Territory* territory);

    /// Locked layers keep their pixels; all else of them may be edited. Locks are no edits, and are
    /// not in the project's files.
    bool IsLocked(const Layer& layer) const { return m_lockedIds.contains(layer.Id()); }
    /// The ids of locked layers, also of removed ones that may come back.
    const QSet<int>& LockedIds() const { return m_lockedIds; }
    void SetLocked(const Layer& layer, bool isLocked);
    /// Why the layer's pixels may not be changed by hand now, as one sentence for the user; empty
    /// when they may.
    QString WhyPixelsStay(const Layer& layer) const;
    /// The only layer that the map shows, whatever the check marks say; null when the map shows
    /// the checked ones. It ends with the layer.
    Layer* SoloLayer() const { return m_soloLayer; }
    void SetSoloLayer(Layer* layer);
    /// Whether the map shows the layer also while it is not the current one.
    bool IsShown(const Layer& layer) const;
    /// What the rows of layers show beside name and colour; see LayerList::SetRowMarks.
    void SetRowMarks(const LayerList::RowMarks& marks);

    /// Shows or hides what the row of a type or territory stands for, as its check mark says. The
    /// territories of a type get its mark; the current territory stays visible.
    void FollowCheckMark(QStandardItem& row);

    /// What new zones are made with: the values of the zone shown last, in this project.
    ZoneValues ZoneTemplate() const;
    void SetZoneTemplate(const ZoneValues& values) { m_zoneTemplate = values; }

    /// Carries the edit out and keeps it for undo. One that changes nothing is dropped, and only
    /// makes the project modified, as any attempt to edit does. Returns whether it changed
    /// something. While an edit is carried out or undone, it is ignored.
    bool Do(std::unique_ptr<Edit> edit);
    /// Something that no edit can take back makes the project modified, such as another current
    /// layer. While an edit is carried out or undone, it is ignored.
    void NoteChange();
    /// Edits from now on are another step than those before.
    void EndGesture() { ++m_gesture; }
    /// While the hand is at work on the map, or files are read or written, nothing can be undone.
    void SetHandBusy(bool isBusy);
    /// While files are busy, rows refuse what views write.
    void SetFilesBusy(bool isBusy);
    /// Whether the project may be edited at all.
    void SetEditable(bool isEditable);
    bool IsEditable() const { return m_isEditable; }

    bool CanUndo() const;
    bool CanRedo() const;
    /// Do nothing where CanUndo or CanRedo is false.
    void Undo();
    void Redo();
    /// For views of the history, which may also go to any of its states while CanTravel.
    QUndoStack& History() { return m_history; }
    bool CanTravel() const { return m_isEditable && !IsBusy(); }
    /// Whether the hand is at work on the map, or files are read or written.
    bool IsBusy() const { return m_isHandBusy || m_isFilesBusy; }
    /// Whether the hand is at work on the map: masks and zones are in no state that counts.
    bool IsHandBusy() const { return m_isHandBusy; }
    /// While files are read or written.
    bool AreFilesBusy() const { return m_isFilesBusy; }
    /// While an edit is carried out, undone or done again.
    bool IsApplying() const { return m_isApplying; }
    /// Whether the history is at the state that was saved or loaded last, and nothing else changed
    /// since. Unlike the modified flag, it counts zones that are nudged.
    bool IsAtSavedState() const;
    /// True while undo, redo or the history's view changes the project.
    bool IsTravelling() const { return m_isApplying && !m_isDoing; }
    /// A delta with all tiles that differ, while LayerChanged is sent for Pixels. Null when these
    /// tiles are not known.
    const raster::MaskDelta* ChangedTiles() const { return m_changedTiles; }
    /// What the history holds of masks.
    HistoryMemory& Memory() { return m_memory; }

    /// Empties layers, territories and history. No file holds the project then.
    void Clear();
    /// Begins a project of these sizes (pixels and metres), which will be saved into the folder and
    /// has no name until then.
    void Begin(QSize layerSize, QSize worldSize, const QDir& folder);
    /// The file that holds the project: the one that it was last loaded from or saved to, with its
    /// folder. Empty while there is none. File dialogs may start elsewhere.
    const QString& Path() const { return m_path; }
    /// Called when the project was loaded from there or saved there. An empty path means that no
    /// file holds it.
    void SetPath(const QString& path);
    /// Called when the project was restored: only these files are its own.
    void SetPath(const QString& path, const QStringList& files);
    /// The document at this path holds a part of the project: it was loaded from there, but not as
    /// a whole. Its files are known from now on, but none becomes the project's own by that.
    void NoteFiles(const QString& path);
    /// The document, its formulas, the bitmaps of its layers and the background picture as they
    /// were then.
    const KnownFiles& Files() const { return m_files; }
    /// Sets the folder and the file name before a load.
    void SetPlace(const QDir& folder, const QString& fileName);
    /// Sets the name that the title shows.
    void SetName(const QString& name);
    /// Reads a whole project. False when that failed; settings that were read before the fault are
    /// kept, brush and modified state are as before.
    bool Read(ProjectReader& reader, const MaskSource& masks = LoadProjectMask);
    /// Reads an area map, with its sizes. False when it is none, and then the sizes are as before.
    bool ReadMap(QIODevice& map);
    /// Begins a new history. isSaved: the present state is the one on disk.
    void BeginHistory(bool isSaved);
    /// Marks the present state as saved.
    void SetSaved();

signals:
    /// rect: the layer pixels that changed, for Pixels.
    void LayerChanged(Layer* layer, Document::LayerAspect aspect, const QRect& rect);
    /// A stroke under way changed these layer pixels. LayerChanged follows when it ends, unless it
    /// is taken back.
    void Painted(Layer* layer, const QRect& rect);
    void CurrentLayerChanged();
    /// Something changed that marks the layer's row or decides whether its pixels may be changed,
    /// such as its lock or which layer is shown alone. Null means all layers.
    void LayerMarksChanged(Layer* layer);
    void SoloTerritoryChanged();
    /// The facts about a formula changed: by an edit, or because a waiting layer was computed.
    void FormulaChanged();
    /// Places or values of zones of the territory changed, or zones came or went.
    void ZonesChanged(Territory* territory);
    /// Name, colour, opacity or visibility of the territory changed, or it came or went.
    void TerritoryChanged(Territory* territory);
    void TypeChanged(TerritoryType* type);
    /// The pixels of a mask are about to change in place; whoever shares them lets them go.
    void PixelsAboutToChange(Layer* layer);
    /// The flag types changed.
    void FlagTypesChanged();
    void BackgroundPictureChanged();
    void BackgroundColorChanged();
    /// Layers, territories and history are about to be emptied.
    void AboutToClear();
    /// A project was loaded, made or imported; isSaved: its files hold the present state.
    void HistoryBegan(bool isSaved);
    /// The project's files hold the present state now.
    void Saved();
    /// An edit was undone or done again; this is where it is seen.
    void Travelled(const EditPlace& place);
    /// The project was loaded from its file or saved there, or no file holds it any more. Path()
    /// and Files() tell.
    void FilesNoted();
    /// CanUndo, CanRedo, CanTravel or the texts of the history changed.
    void HistoryChanged();

private:
    friend class Edit;
    friend class PaintMask;

    void AnnouncePixels(Layer* layer, const QRect& rect, const raster::MaskDelta& tiles);
    bool EditRow(QStandardItem& item, const QVariant& value, int role);
    void NotePlace(const EditPlace& place) { m_place = place; }
    void FollowIndex();
    int KeptIndex() const;
    int StepOf(const Edit& edit) const;
    void LoseUndo(const Edit& edit);
    void LoseRedo(const Edit& edit);
    void ReportLater(const QString& message);
    void ForgetUpTo(int step);
    void ForgetFrom(int step);
    void Forget(int first, int end);
    void FitHistory();
    void ClearHistory();
    bool CanReachSaved() const;
    void ShowModified();

    LayerList m_layers;
    TerritoryTypeList m_types;
    Brush m_brush;
    std::unique_ptr<Formulas> m_formulas;
    std::unique_ptr<LiveLayers> m_live;
    QPointer<QGraphicsScene> m_zoneScene;
    QString m_path;
    KnownFiles m_files;
    Tracked<Layer> m_currentLayer;
    Tracked<Layer> m_soloLayer;
    /// Ids are never reused, so a removed layer that comes back is still locked.
    QSet<int> m_lockedIds;
    Tracked<Territory> m_currentTerritory;
    Tracked<Territory> m_soloTerritory;
    std::optional<ZoneValues> m_zoneTemplate;
    /// Outlives the history, whose edits leave it as they die.
    HistoryMemory m_memory;
    const raster::MaskDelta* m_changedTiles = nullptr;
    QUndoStack m_history;
    EditPlace m_place;
    static constexpr int NoEnd = std::numeric_limits<int>::max();
    /// Steps before the first and from the end on are no longer kept.
    int m_firstKept = 0;
    int m_endOfKept = NoEnd;
    int m_gesture = 0;
    bool m_isApplying = false;
    bool m_isFollowingCheckMark = false;
    bool m_isDoing = false;
    bool m_isHandBusy = false;
    bool m_isFilesBusy = false;
    bool m_isEditable = false;
    /// Changed by something that is no edit since it was saved.
    bool m_isChangedOutside = false;
};
