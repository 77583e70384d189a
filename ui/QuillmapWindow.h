#pragma once

#include <QColor>
#include <QList>
#include <QMainWindow>
#include <QString>

#include <functional>
#include <memory>

class BrushDock;
class ChangeNotice;
class DerivedActions;
class DockHistory;
class DockLayerProps;
class DockLayers;
class DockOverview;
class DockProbe;
class DockStatistics;
class DockStatus;
class DockTerTypeProps;
class DockTerTypes;
class DockZones;
class Document;
class EditActions;
class FileDrops;
class Gestures;
class GoActions;
class HeatMap;
class InteractionModes;
class Journal;
class Layer;
class LayerActions;
class LayerComposition;
class LayerList;
class LayerMarks;
class PaintToolBar;
class ProblemActions;
class Problems;
class ProjectActions;
class ProjectDisplay;
class ProjectNumbers;
class QGraphicsItem;
class RecentProjects;
class SessionNotices;
class TerritoryActions;
class TerritoryTypeList;
class Zone;
class ZoneActions;
class ZoneSheets;

namespace Ui {
class QuillmapWindowClass;
}

/// The editor: the map in the middle, the docks around it, menus and tool bar. It owns them and
/// connects them. ProjectActions, InteractionModes and LayerComposition carry out its actions.
class QuillmapWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// configPath: a project to open for viewing; may be empty.
    explicit QuillmapWindow(const QString& configPath, QWidget* parent = nullptr);
    ~QuillmapWindow() override;
    Q_DISABLE_COPY(QuillmapWindow)

    Document& GetDocument() { return *m_document; }
    Problems& ProjectProblems();
    /// Shows the project's name; without one "Unsaved".
    void SetTitle(const QString& name);
    /// Ends painting when there is no current layer any more.
    void LeavePaintWithoutLayer();

signals:
    /// Never emitted. It is declared because other code connects to it.
    void ConfigurationLoadRequested(LayerList* layerList, TerritoryTypeList* territoryTypeList);

public slots:
    void QuitApplication();
    void NewProject();
    void LoadProject();
    bool SaveProject();
    void SaveAll();
    void SaveAreaMap();
    void LoadWorldImage();
    void ImportAreaTypes();
    void ImportAreaMap();
    bool SaveProjectFile(const QString& filepath);
    bool LoadAreaTypesFile(const QString& filepath);
    void LoadWorldImageFile(const QString& filepath);
    void ShowLayers(bool checked);
    void ShowTerritoryTypes(bool checked);
    void ShowStatus(bool checked);
    void LayerChecked(Layer* layer);
    void LayerSelected(Layer* layer);
    void LayersHidden();
    void UpdateLayerColor(const QColor& color);
    /// 0 to 1.
    void UpdateLayerOpacity(float opacity);
    void TogglePaintMode(bool isOn);
    void SetZoomLevel(float zoom);
    void UpdateWorldScale();
    /// View pixels from the rulers' origins.
    void UpdateWorldPos(int x, int z);
    /// selected: the row of the layer that becomes the current one.
    void FinalizeConfigurationLoad(bool isSuccessful, int selected = -1);
    void InsertZoneMode(bool isOn);
    void SelectZoneMode(bool isOn);
    void SelectQueryMode(bool isOn);
    void ZoneSelected(const QList<QGraphicsItem*>& items);
    void ExportSelectedTerritoryTypes();
    void ExportAllTerritoryTypes();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void AddDocks();
    void OrderTabs();
    void MakeRoomForDocks();
    void ConnectLog();
    void ConnectActions();
    void ConnectLayers();
    void ConnectTerritories();
    void ConnectMap();
    void ConnectDocument();
    void ConnectMapDocks();
    void ConnectZoneTable();
    void ConnectNumbers();
    /// As a click on its row does.
    void EditLayer(Layer& layer);
    /// Makes its territory the current one.
    void SelectZone(Zone& zone);
    /// Brings it to the middle of the map; "Back" leads to where the map was.
    void ShowZone(const Zone& zone);
    void OpenForViewing(const QString& configPath);
    void LayerModified(Layer* layer);
    void RecomposeChanged();
    void LayerRemoved();
    void ShowDockStates();

    std::unique_ptr<Ui::QuillmapWindowClass> m_ui;
    std::unique_ptr<Document> m_document;
    std::unique_ptr<Journal> m_journal;
    std::unique_ptr<ProjectNumbers> m_numbers;
    std::unique_ptr<BrushDock> m_brush;
    std::unique_ptr<DockLayerProps> m_layerProps;
    std::unique_ptr<DockLayers> m_layers;
    std::unique_ptr<DockStatus> m_status;
    std::unique_ptr<DockTerTypeProps> m_terTypeProps;
    std::unique_ptr<DockTerTypes> m_terTypes;
    std::unique_ptr<DockHistory> m_history;
    std::unique_ptr<DockProbe> m_probe;
    std::unique_ptr<DockOverview> m_overview;
    std::unique_ptr<ZoneSheets> m_zoneSheets;
    std::unique_ptr<DockZones> m_zones;
    std::unique_ptr<DockStatistics> m_statistics;
    std::unique_ptr<HeatMap> m_heat;
    std::unique_ptr<PaintToolBar> m_tools;
    std::unique_ptr<LayerComposition> m_composition;
    std::unique_ptr<InteractionModes> m_modes;
    std::unique_ptr<ProjectDisplay> m_display;
    std::unique_ptr<ProjectActions> m_project;
    std::unique_ptr<EditActions> m_edit;
    std::unique_ptr<Gestures> m_gestures;
    std::unique_ptr<LayerMarks> m_layerMarks;
    std::unique_ptr<LayerActions> m_layerActions;
    std::unique_ptr<DerivedActions> m_derivedActions;
    std::unique_ptr<ZoneActions> m_zoneActions;
    std::unique_ptr<TerritoryActions> m_territoryActions;
    std::unique_ptr<GoActions> m_go;
    std::unique_ptr<ProblemActions> m_problems;
    std::unique_ptr<RecentProjects> m_recent;
    std::unique_ptr<FileDrops> m_drops;
    std::unique_ptr<ChangeNotice> m_changes;
    std::unique_ptr<SessionNotices> m_sessions;
};
