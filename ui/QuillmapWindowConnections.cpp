#include "app/Log.h"
#include "app/ProjectSettings.h"
#include "canvas/BrushDock.h"
#include "canvas/HeatMap.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "canvas/PlaceMark.h"
#include "canvas/ViewMoves.h"
#include "canvas/tools/PaintTools.h"
#include "canvas/tools/SelectTool.h"
#include "document/Document.h"
#include "layers/Layer.h"
#include "territories/Territory.h"
#include "territories/Zone.h"
#include "ui/ChangeNotice.h"
#include "ui/DockHistory.h"
#include "ui/DockLayerProps.h"
#include "ui/DockLayers.h"
#include "ui/DockOverview.h"
#include "ui/DockProbe.h"
#include "ui/DockStatistics.h"
#include "ui/DockStatus.h"
#include "ui/DockTerTypeProps.h"
#include "ui/DockTerTypes.h"
#include "ui/DockZones.h"
#include "ui/GoActions.h"
#include "ui/LayerComposition.h"
#include "ui/MovingBox.h"
#include "ui/PaintToolBar.h"
#include "ui/ProblemActions.h"
#include "ui/ProjectActions.h"
#include "ui/ProjectDisplay.h"
#include "ui/QuillmapWindow.h"
#include "ui/RecentProjects.h"
#include "ui_QuillmapWindow.h"

#include <QEvent>

// This file holds the connections of signals and slots in the editor's window, and nothing else.

void QuillmapWindow::ConnectLog()
{
    qRegisterMetaType<Log::MessageType>("Log::MessageType");
    connect(&Log::Instance(), &Log::MessageReceived, m_status.get(), &DockStatus::AddMessage);
}

void QuillmapWindow::ConnectActions()
{
    const Ui::QuillmapWindowClass& ui = *m_ui;
    connect(ui.actionNew, &QAction::triggered, this, &QuillmapWindow::NewProject);
    connect(ui.actionLoad, &QAction::triggered, this, &QuillmapWindow::LoadProject);
    connect(ui.actionSave, &QAction::triggered, this, &QuillmapWindow::SaveProject);
    connect(ui.actionQuickSave, &QAction::triggered, this,
            [this] { m_project->Saving().QuickSave(); });
    connect(ui.actionVersions, &QAction::triggered, this, [this] { m_project->ShowVersions(); });
    connect(ui.actionSaveAll, &QAction::triggered, this, &QuillmapWindow::SaveAll);
    connect(ui.actionLoadWorld, &QAction::triggered, this, &QuillmapWindow::LoadWorldImage);
    connect(ui.actionImportAreas, &QAction::triggered, this, &QuillmapWindow::ImportAreaTypes);
    connect(ui.actionImportMap, &QAction::triggered, this, &QuillmapWindow::ImportAreaMap);
    connect(ui.actionExit, &QAction::triggered, this, &QuillmapWindow::QuitApplication);
    connect(ui.actionTogglePaintMode, &QAction::triggered, this, &QuillmapWindow::TogglePaintMode);
    connect(ui.gboPaintMode, &QGroupBox::clicked, this, &QuillmapWindow::TogglePaintMode);
    connect(ui.actionViewLayers, &QAction::triggered, this, &QuillmapWindow::ShowLayers);
    connect(ui.actionViewTerritoryTypes, &QAction::triggered, this,
            &QuillmapWindow::ShowTerritoryTypes);
    connect(ui.actionViewStatus, &QAction::triggered, this, &QuillmapWindow::ShowStatus);
    for (QDockWidget* dock : std::initializer_list<QDockWidget*>{
             m_layers.get(), m_terTypes.get(), m_status.get(), m_history.get(), m_overview.get(),
             m_probe.get(), m_statistics.get(), m_brush.get(), m_zones.get(),
             &m_problems->Dock()}) {
        dock->installEventFilter(this);
    }
}

void QuillmapWindow::ConnectLayers()
{
    connect(m_layers.get(), &DockLayers::Checked, this, &QuillmapWindow::LayerChecked);
    connect(m_layers.get(), &DockLayers::Selected, this, &QuillmapWindow::LayerSelected);
    connect(m_layers.get(), &DockLayers::AllHidden, this, &QuillmapWindow::LayersHidden);
    connect(m_layers.get(), &DockLayers::Added, this, &QuillmapWindow::RecomposeChanged);
    connect(m_layers.get(), &DockLayers::Modified, this, &QuillmapWindow::LayerModified);
    connect(m_layers.get(), &DockLayers::Removed, this, &QuillmapWindow::LayerRemoved);
    connect(m_layers.get(), &DockLayers::Reordered, this, &QuillmapWindow::RecomposeChanged);
    connect(m_layerProps.get(), &DockLayerProps::ColorChanged, this, [this] {
        if (const Layer* layer = m_document->CurrentLayer()) {
            UpdateLayerColor(QColor(layer->Color().rgb()));
        }
    });
    connect(m_layerProps.get(), &DockLayerProps::OpacityChanged, this,
            &QuillmapWindow::UpdateLayerOpacity);
}

void QuillmapWindow::ConnectTerritories()
{
    MainScene* scene = m_ui->paintView->Scene();
    connect(m_terTypes.get(), &DockTerTypes::InsertClicked, this, &QuillmapWindow::InsertZoneMode);
    connect(m_terTypes.get(), &DockTerTypes::SelectClicked, this, &QuillmapWindow::SelectZoneMode);
    connect(m_terTypes.get(), &DockTerTypes::QueryClicked, this, &QuillmapWindow::SelectQueryMode);
    connect(m_terTypes.get(), &DockTerTypes::Selected, scene, &MainScene::ChangeTerritory);
    connect(m_terTypes.get(), &DockTerTypes::ExportSelectedClicked, this,
            &QuillmapWindow::ExportSelectedTerritoryTypes);
    connect(m_terTypes.get(), &DockTerTypes::ExportAllClicked, this,
            &QuillmapWindow::ExportAllTerritoryTypes);
    connect(m_ui->paintView, &MainView::ModeInsert, m_terTypes.get(), &DockTerTypes::InsertMode);
    connect(m_ui->paintView, &MainView::ModeSelect, m_terTypes.get(), &DockTerTypes::SelectMode);
    connect(m_ui->paintView, &MainView::ModeQuery, m_terTypes.get(), &DockTerTypes::QueryMode);
    connect(m_ui->paintView, &MainView::TerritorySelected, m_terTypes.get(), &DockTerTypes::Select);
    connect(&m_terTypeProps->Moving(), &MovingBox::OptionsChanged, scene,
            [scene](const MoveOptions& options) {
                if (SelectTool* tool = scene->GetSelectTool()) {
                    tool->SetOptions(options);
                }
            });
    m_terTypeProps->Moving().Remember();
    // update() has overloads that a pointer would have to be told apart from.
    connect(m_terTypeProps.get(), SIGNAL(Changed(QRectF)), scene, SLOT(update(QRectF)));
}

void QuillmapWindow::ConnectMap()
{
    const Ui::QuillmapWindowClass& ui = *m_ui;
    MainScene* scene = ui.paintView->Scene();
    connect(scene, &MainScene::ZoneSelected, this, &QuillmapWindow::ZoneSelected);
    connect(scene, &MainScene::ZoomChanged, this, &QuillmapWindow::SetZoomLevel);
    connect(ui.paintView, &MainView::ZoomChanged, this, &QuillmapWindow::SetZoomLevel);
    connect(ui.paintView, &MainView::MouseMoved, this, &QuillmapWindow::UpdateWorldPos);
    connect(ui.actionOverview, &QAction::triggered, m_overview.get(), &QWidget::setVisible);
    connect(m_brush.get(), &BrushDock::Changed, scene, &MainScene::RefreshBrush);
    scene->GetPaintTools()->SetLayerPicked([this](Layer& layer) { EditLayer(layer); });
    connect(ui.gboBgOver, &GroupBoxColor::ColorChanged, scene, &MainScene::ChangeWorldColor);
    connect(ui.gboBgOver, &GroupBoxColor::AlphaChanged, scene, &MainScene::ChangeWorldAlpha);
}

/// What undo changes, apart from layers and territories, whose docks and composition listen too.
void QuillmapWindow::ConnectDocument()
{
    Problems& problems = m_problems->Found();
    connect(&m_changes->Watch(), &FileWatch::Changed, &problems, &Problems::CheckForeignFiles);
    connect(&m_changes->Watch(), &FileWatch::Rested, &problems, &Problems::FollowFolder);
    connect(m_ui->actionHistory, &QAction::triggered, m_history.get(), &QWidget::setVisible);
    connect(m_document.get(), &Document::FilesNoted, this, [this] {
        if (!m_document->Path().isEmpty()) {
            m_recent->Add(m_document->Path());
        }
    });
    connect(m_document.get(), &Document::BackgroundPictureChanged, this, [this] {
        if (m_document->IsTravelling()) {
            m_display->ShowBackground();
        }
    });
    connect(m_document.get(), &Document::BackgroundColorChanged, this, [this] {
        if (m_document->IsTravelling()) {
            m_display->ShowBackgroundColor();
        }
    });
    connect(m_document.get(), &Document::CurrentLayerChanged, this, [this] {
        if (const Layer* layer = m_document->CurrentLayer()) {
            m_brush->SetPaintColor(layer->Color().rgb());
        }
    });
    connect(m_document.get(), &Document::LayerChanged, this,
            [this](const Layer* layer, Document::LayerAspect aspect) {
                const bool isCurrent = layer == m_document->CurrentLayer();
                if (isCurrent && aspect == Document::LayerAspect::Color) {
                    m_brush->SetPaintColor(layer->Color().rgb());
                }
            });
}

void QuillmapWindow::ConnectMapDocks()
{
    // Plain letters are shortcuts while the map has the focus.
    m_probe->HoldAction()->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    m_ui->paintView->addAction(m_ui->actionProbe);
    m_ui->paintView->addAction(m_probe->HoldAction());
    connect(m_ui->actionProbe, &QAction::triggered, m_probe.get(), &QWidget::setVisible);
    connect(m_ui->paintView, &MainView::MouseMoved, m_probe.get(), [this] {
        const MainView& view = *m_ui->paintView;
        if (const std::optional<QPointF> pixel = view.MousePixel()) {
            m_probe->Follow(view.PlaceAt(*pixel) + view.MouseFraction());
        }
    });
    connect(m_overview.get(), &DockOverview::AboutToJump, this, [this] { m_go->NoteJump(); });
}

void QuillmapWindow::ConnectZoneTable()
{
    connect(m_ui->actionZonesTable, &QAction::triggered, m_zones.get(), [this](bool isOn) {
        // A dock behind another tab is open but cannot be seen.
        const bool isWanted = isOn || !m_zones->IsSeen();
        m_zones->setVisible(isWanted);
        m_ui->actionZonesTable->setChecked(isWanted);
        if (isWanted) {
            m_zones->BeginFilter();
            // Rows are wider than messages. Qt gives docks side by side the same width.
            if (m_zones->width() <= m_status->width()) {
                resizeDocks({m_status.get(), m_zones.get()}, {1, 3}, Qt::Horizontal);
            }
        }
    });
    connect(m_terTypes.get(), &DockTerTypes::Selected, m_zones.get(), &DockZones::FollowTerritory);
}

void QuillmapWindow::ConnectNumbers()
{
    connect(m_ui->actionStatistics, &QAction::triggered, m_statistics.get(), &QWidget::setVisible);
    connect(m_ui->actionHeat, &QAction::toggled, m_heat.get(), &HeatMap::SetShown);
}

void QuillmapWindow::EditLayer(Layer& layer)
{
    // Not in a project that is opened for viewing.
    if (!m_document->CanTravel()) {
        return;
    }
    m_layers->SelectItem(&layer);
    LayerSelected(&layer);
}

void QuillmapWindow::SelectZone(Zone& zone)
{
    if (!m_document->CanTravel()) {
        return;
    }
    // This unlocks the territory's zones and clears the selection.
    const Tracked<Zone> tracked(&zone);
    m_terTypes->Select(zone.Holder());
    if (tracked) {
        tracked->setSelected(true);
    }
}

void QuillmapWindow::ShowZone(const Zone& zone)
{
    m_go->Jump({zone.scenePos(), m_ui->paintView->Zoom()});
    m_ui->paintView->Mark().Show(zone.scenePos());
}

bool QuillmapWindow::eventFilter(QObject* watched, QEvent* event)
{
    // A dock that is tabbed behind another one is not hidden, so isVisible() does not tell.
    if (event->type() == QEvent::HideToParent || event->type() == QEvent::ShowToParent) {
        ShowDockStates();
    }
    return QMainWindow::eventFilter(watched, event);
}

void QuillmapWindow::ShowDockStates()
{
    m_ui->actionViewLayers->setChecked(!m_layers->isHidden());
    m_ui->actionViewTerritoryTypes->setChecked(!m_terTypes->isHidden());
    m_ui->actionViewStatus->setChecked(!m_status->isHidden());
    m_ui->actionHistory->setChecked(!m_history->isHidden());
    m_ui->actionProbe->setChecked(!m_probe->isHidden());
    m_ui->actionOverview->setChecked(!m_overview->isHidden());
    m_ui->actionZonesTable->setChecked(!m_zones->isHidden());
    m_ui->actionStatistics->setChecked(!m_statistics->isHidden());
    m_ui->actionProblems->setChecked(!m_problems->Dock().isHidden());
    m_tools->setVisible(!m_brush->isHidden());
}
