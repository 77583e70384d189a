#include "ui/QuillmapWindow.h"

#include "app/Log.h"
#include "app/ProjectSettings.h"
#include "canvas/BrushDock.h"
#include "canvas/HeatMap.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "document/Document.h"
#include "document/ProjectNumbers.h"
#include "document/journal/Journal.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "territories/Zone.h"
#include "territories/ZoneIcons.h"
#include "ui/ChangeNotice.h"
#include "ui/DerivedActions.h"
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
#include "ui/EditActions.h"
#include "ui/FileDialogs.h"
#include "ui/FileDrops.h"
#include "ui/Gestures.h"
#include "ui/GoActions.h"
#include "ui/InteractionModes.h"
#include "ui/LayerActions.h"
#include "ui/LayerComposition.h"
#include "ui/LayerMarks.h"
#include "ui/PaintToolBar.h"
#include "ui/ProblemActions.h"
#include "ui/ProjectActions.h"
#include "ui/ProjectDisplay.h"
#include "ui/RecentProjects.h"
#include "ui/SessionNotices.h"
#include "ui/StatusTexts.h"
#include "ui/TerritoryActions.h"
#include "ui/UnsavedMark.h"
#include "ui/WindowState.h"
#include "ui/ZoneActions.h"
#include "ui/ZoneSheets.h"
#include "ui/widgets/LimitFont.h"
#include "ui_QuillmapWindow.h"

#include <QCloseEvent>
#include <QMessageBox>
#include <QResizeEvent>
#include <QScreen>
#include <QTimer>

namespace {

constexpr QPoint FirstPlace(50, 50);
constexpr int CloseRetryMilliseconds = 50;

const QString AxisX = QStringLiteral("X");
const QString AxisZ = QStringLiteral("Z");

/// What the Tab key reaches within the widget, in its present order.
QList<QWidget*> TabStops(QWidget& within)
{
    QList<QWidget*> stops;
    for (QWidget* widget = within.nextInFocusChain(); widget != &within;
         widget = widget->nextInFocusChain()) {
        if (within.isAncestorOf(widget) && (widget->focusPolicy() & Qt::TabFocus) != 0) {
            stops.append(widget);
        }
    }
    return stops;
}

} // namespace

QuillmapWindow::QuillmapWindow(const QString& configPath, QWidget* parent)
    : QMainWindow(parent)
    , m_ui(std::make_unique<Ui::QuillmapWindowClass>())
    , m_document(std::make_unique<Document>())
    , m_journal(std::make_unique<Journal>(*m_document))
    , m_numbers(std::make_unique<ProjectNumbers>(*m_document))
{
    m_ui->setupUi(this);
    m_ui->paintView->SetDocument(*m_document);
    m_ui->barNotice->TakeRoomFrom(*m_ui->paintView);
    for (QWidget* widget : std::initializer_list<QWidget*>{
             m_ui->gboPaintMode, m_ui->lblZoom, m_ui->lblZoomValue, m_ui->gboWorldScale,
             m_ui->gboWorldRSteps, m_ui->gboWorldPos, m_ui->gboBgOver}) {
        LimitFont(*widget);
    }
    auto* mark = new UnsavedMark(m_ui->menuBar);
    m_ui->menuBar->setCornerWidget(mark);
    connect(m_journal.get(), &Journal::UnsavedChanged, mark,
            [this, mark] { mark->SetSince(m_journal->OldestUnsaved()); });
    ZoneIcons::Load();
    AddDocks();
    const EditorParts parts{
        *m_document,    *this,     *m_ui,         *m_ui->paintView, *m_ui->paintView->Scene(),
        *m_brush,       *m_layers, *m_layerProps, *m_status,        *m_terTypes,
        *m_terTypeProps};
    m_composition = std::make_unique<LayerComposition>(*m_document, *m_ui->paintView);
    m_modes = std::make_unique<InteractionModes>(parts);
    m_display = std::make_unique<ProjectDisplay>(parts, *m_composition, *m_modes);
    m_project = std::make_unique<ProjectActions>(parts, *m_display, *m_modes, *m_journal);
    m_edit = std::make_unique<EditActions>(parts);
    m_gestures = std::make_unique<Gestures>(*m_document);
    m_layerMarks = std::make_unique<LayerMarks>(*m_document);
    m_layerActions = std::make_unique<LayerActions>(parts, *m_composition);
    m_derivedActions = std::make_unique<DerivedActions>(parts);
    m_zoneActions = std::make_unique<ZoneActions>(parts, *m_zoneSheets);
    m_territoryActions = std::make_unique<TerritoryActions>(parts);
    m_go = std::make_unique<GoActions>(parts);
    m_problems = std::make_unique<ProblemActions>(parts, *m_numbers, *m_go);
    m_recent = std::make_unique<RecentProjects>(
        *m_ui->menuRecent, [this](const QString& path) { m_project->LoadFrom(path); });
    m_drops = std::make_unique<FileDrops>(parts, *m_project);
    m_changes = std::make_unique<ChangeNotice>(parts, *m_project);
    m_sessions = std::make_unique<SessionNotices>(parts, *m_project, *m_journal);
    ConnectLog();
    ConnectActions();
    ConnectLayers();
    ConnectTerritories();
    ConnectMap();
    ConnectDocument();
    ConnectMapDocks();
    ConnectZoneTable();
    ConnectNumbers();
    m_ui->paintView->Scene()->ChangeWorldVisibility(true);
    m_status->SetProgressVisible(false);
    SetTitle(QString());
    move(FirstPlace);
    WindowState::FitScreen(*this);
    if (!configPath.isEmpty()) {
        OpenForViewing(configPath);
    }
    WindowState::Restore(*this);
    m_display->EnableEditing(false);
    m_brush->setVisible(m_ui->gboPaintMode->isChecked());
    ShowDockStates();
    WindowState::MaximizeIfTooLarge(*this);
    MakeRoomForDocks();
    m_ui->paintView->SetBrushDock(m_brush.get());
    const ProjectSettings& settings = ProjectSettings::Instance();
    if (settings.LayerWidth() > 0) {
        m_ui->paintView->SetRulerUnits(settings.LayerWidth(), settings.LayerHeight());
    }
}

QuillmapWindow::~QuillmapWindow()
{
    // A zone that dies while it is selected notifies the scene, which would ask the document in the
    // middle of its end.
    m_ui->paintView->Scene()->clearSelection();
    // The children's signals and events must not reach this half-destroyed window.
    const QList<QObject*> children = findChildren<QObject*>();
    for (QObject* child : children) {
        child->disconnect(this);
        child->removeEventFilter(this);
    }
}

Problems& QuillmapWindow::ProjectProblems()
{
    return m_problems->Found();
}

void QuillmapWindow::AddDocks()
{
    m_brush = std::make_unique<BrushDock>(m_document->GetBrush(), this);
    m_layerProps = std::make_unique<DockLayerProps>(*m_document, this);
    m_layers = std::make_unique<DockLayers>(*m_document, m_layerProps.get(), this);
    m_status = std::make_unique<DockStatus>(this);
    m_terTypeProps = std::make_unique<DockTerTypeProps>(*m_document, this);
    m_terTypes = std::make_unique<DockTerTypes>(*m_document, m_ui->paintView->Scene(),
                                                m_terTypeProps.get(), this);
    m_history = std::make_unique<DockHistory>(*m_document, this);
    m_probe =
        std::make_unique<DockProbe>(*m_document,
                                    DockProbe::Callbacks{[this](Layer& layer) { EditLayer(layer); },
                                                         [this](Zone& zone) { SelectZone(zone); }},
                                    this);
    m_overview = std::make_unique<DockOverview>(*m_document, *m_ui->paintView, this);
    m_zoneSheets = std::make_unique<ZoneSheets>(*m_document, *this);
    m_zones = std::make_unique<DockZones>(
        *m_document, *m_ui->paintView->Scene(), *m_zoneSheets,
        [this](const Zone& zone) { ShowZone(zone); }, this);
    m_statistics = std::make_unique<DockStatistics>(
        *m_document, *m_numbers, [this](const QRectF& area) { m_go->JumpToArea(area); }, this);
    m_heat = std::make_unique<HeatMap>(*m_document, *m_ui->paintView);
    m_tools = std::make_unique<PaintToolBar>(*m_document,
                                             *m_ui->paintView->Scene()->GetPaintTools(), this);
    addToolBar(Qt::TopToolBarArea, m_tools.get());
    addDockWidget(Qt::LeftDockWidgetArea, m_layers.get());
    addDockWidget(Qt::LeftDockWidgetArea, m_layerProps.get());
    addDockWidget(Qt::BottomDockWidgetArea, m_status.get());
    addDockWidget(Qt::RightDockWidgetArea, m_terTypes.get());
    addDockWidget(Qt::RightDockWidgetArea, m_terTypeProps.get());
    addDockWidget(Qt::RightDockWidgetArea, m_brush.get());
    addDockWidget(Qt::RightDockWidgetArea, m_history.get());
    addDockWidget(Qt::RightDockWidgetArea, m_probe.get());
    addDockWidget(Qt::RightDockWidgetArea, m_overview.get());
    addDockWidget(Qt::BottomDockWidgetArea, m_zones.get());
    m_zones->hide();
    addDockWidget(Qt::RightDockWidgetArea, m_statistics.get());
    m_history->hide();
    m_probe->hide();
    m_overview->hide();
    m_statistics->hide();
    m_terTypes->hide();
    m_terTypeProps->hide();
    m_brush->hide();
    OrderTabs();
}

/// The Tab key goes from dock to dock as the eye does; docks are made in another order.
void QuillmapWindow::OrderTabs()
{
    QList<QWidget*> stops;
    for (QWidget* dock :
         std::initializer_list<QWidget*>{m_layers.get(), m_layerProps.get(), m_terTypes.get(),
                                         m_terTypeProps.get(), m_brush.get(), m_status.get()}) {
        stops += TabStops(*dock);
    }
    for (int i = 1; i < stops.size(); ++i) {
        setTabOrder(stops[i - 1], stops[i]);
    }
}

/// Loads a project for viewing only. File dialogs still start in the folder of the last session.
void QuillmapWindow::OpenForViewing(const QString& configPath)
{
    if (m_project->StartWith(configPath)) {
        LogInfo(QStringLiteral("Project opened for viewing. Load it (Ctrl+O) to edit."));
    }
}

void QuillmapWindow::SetTitle(const QString& name)
{
    setWindowTitle(tr("%1 - Tarvo Ledger Tool").arg(name.isEmpty() ? tr("Unsaved") : name));
}

void QuillmapWindow::QuitApplication()
{
    close();
}

void QuillmapWindow::NewProject()
{
    m_project->New();
}

void QuillmapWindow::LoadProject()
{
    m_project->Load();
}

bool QuillmapWindow::SaveProject()
{
    return m_project->Saving().Save();
}

void QuillmapWindow::SaveAll()
{
    m_project->Saving().SaveAll();
}

void QuillmapWindow::SaveAreaMap()
{
    m_project->Saving().SaveMap();
}

void QuillmapWindow::LoadWorldImage()
{
    m_project->LoadWorldImage();
}

void QuillmapWindow::ImportAreaTypes()
{
    m_project->ImportAreaTypes();
}

void QuillmapWindow::ImportAreaMap()
{
    m_project->ImportAreaMap();
}

bool QuillmapWindow::SaveProjectFile(const QString& filepath)
{
    return m_project->Saving().SaveTo(filepath);
}

bool QuillmapWindow::LoadAreaTypesFile(const QString& filepath)
{
    return m_project->LoadAreaTypesFile(filepath);
}

void QuillmapWindow::LoadWorldImageFile(const QString& filepath)
{
    m_project->LoadWorldImageFile(filepath);
}

void QuillmapWindow::FinalizeConfigurationLoad(bool isSuccessful, int selected)
{
    m_project->Finalize(isSuccessful, selected);
}

void QuillmapWindow::ExportSelectedTerritoryTypes()
{
    m_project->Saving().ExportTypes(true);
}

void QuillmapWindow::ExportAllTerritoryTypes()
{
    m_project->Saving().ExportTypes(false);
}

void QuillmapWindow::ShowLayers(bool checked)
{
    m_layers->setVisible(checked);
    m_layerProps->setVisible(checked);
}

void QuillmapWindow::ShowTerritoryTypes(bool checked)
{
    m_terTypes->setVisible(checked);
    m_terTypeProps->setVisible(checked);
}

void QuillmapWindow::ShowStatus(bool checked)
{
    m_status->setVisible(checked);
}

void QuillmapWindow::LayerChecked(Layer* layer)
{
    Q_UNUSED(layer)
    m_composition->Recompose();
    m_document->NoteChange();
}

void QuillmapWindow::LayerSelected(Layer* layer)
{
    if (layer != m_document->CurrentLayer()) {
        m_document->SetCurrentLayer(layer);
        m_composition->Recompose();
        m_document->NoteChange();
    }
    m_modes->EnablePaint(true);
    m_modes->EnableZoomLabels();
}

void QuillmapWindow::LayersHidden()
{
    m_document->SetCurrentLayer(nullptr);
    LeavePaintWithoutLayer();
    m_composition->Recompose();
}

void QuillmapWindow::LayerModified(Layer* layer)
{
    if (layer == m_document->CurrentLayer()) {
        m_layerProps->SetLayer(layer, false);
    }
    m_composition->Recompose();
}

void QuillmapWindow::LayerRemoved()
{
    LeavePaintWithoutLayer();
    m_composition->Recompose();
}

void QuillmapWindow::LeavePaintWithoutLayer()
{
    if (!m_document->CurrentLayer()) {
        m_modes->LeavePaint();
        m_modes->EnablePaint(false);
    }
}

void QuillmapWindow::RecomposeChanged()
{
    m_composition->Recompose();
}

void QuillmapWindow::UpdateLayerColor(const QColor& color)
{
    m_composition->Recompose();
    m_brush->SetPaintColor(color.rgb());
}

void QuillmapWindow::UpdateLayerOpacity(float opacity)
{
    m_ui->paintView->Scene()->ChangeLayerAlpha(opacity);
}

void QuillmapWindow::TogglePaintMode(bool isOn)
{
    m_modes->TogglePaint(isOn);
}

void QuillmapWindow::InsertZoneMode(bool isOn)
{
    m_modes->EnterZoneMode(SceneMode::Insert, isOn);
}

void QuillmapWindow::SelectZoneMode(bool isOn)
{
    m_modes->EnterZoneMode(SceneMode::Select, isOn);
}

void QuillmapWindow::SelectQueryMode(bool isOn)
{
    m_modes->EnterZoneMode(SceneMode::Query, isOn);
}

void QuillmapWindow::ZoneSelected(const QList<QGraphicsItem*>& items)
{
    m_terTypes->SetSelectionControlsEnabled(!items.isEmpty());
    m_terTypeProps->ShowZones(m_ui->paintView->Scene()->SelectedZones());
    m_terTypeProps->ShowZone(items.size() == 1 ? qgraphicsitem_cast<Zone*>(items.first())
                                               : nullptr);
}

void QuillmapWindow::SetZoomLevel(float zoom)
{
    m_ui->lblZoomValue->setText(StatusTexts::Zoom(zoom));
}

void QuillmapWindow::UpdateWorldScale()
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    m_ui->lblWorldScaleX->setText(StatusTexts::Scale(AxisX, settings.MetresPerPixelX()));
    m_ui->lblWorldScaleZ->setText(StatusTexts::Scale(AxisZ, settings.MetresPerPixelZ()));
    m_ui->lblWorldRStepX->setText(StatusTexts::RulerStep(AxisX, settings.MetresPerPixelX()));
    m_ui->lblWorldRStepZ->setText(StatusTexts::RulerStep(AxisZ, settings.MetresPerPixelZ()));
}

void QuillmapWindow::UpdateWorldPos(int x, int z)
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    const float zoom = m_ui->paintView->Zoom();
    m_ui->lblWorldPosX->setText(StatusTexts::Position(AxisX, x, zoom, settings.MetresPerPixelX()));
    m_ui->lblWorldPosZ->setText(StatusTexts::Position(AxisZ, z, zoom, settings.MetresPerPixelZ()));
}

/// Docks that are opened later leave the window on its screen.
void QuillmapWindow::MakeRoomForDocks()
{
    const QList<QDockWidget*> docks = findChildren<QDockWidget*>();
    for (QDockWidget* dock : docks) {
        connect(dock, &QDockWidget::visibilityChanged, this, [this, dock](bool isVisible) {
            if (isVisible && this->isVisible()) {
                QTimer::singleShot(0, dock, [this, dock] {
                    WindowState::MakeRoom(*this, *dock, screen()->availableGeometry().size());
                });
            }
        });
    }
}

void QuillmapWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    // The program resized the window, for example because a dock was opened.
    if (!event->spontaneous() && isVisible()) {
        QTimer::singleShot(0, this, [this] { WindowState::KeepOnScreen(*this); });
    }
}

void QuillmapWindow::closeEvent(QCloseEvent* event)
{
    if (m_project->IsSaving()) {
        // Let the save finish first.
        event->ignore();
        QTimer::singleShot(CloseRetryMilliseconds, this, &QWidget::close);
        return;
    }
    if (m_status->IsProgressOnScreen()) {
        QMessageBox::information(this, tr("Load in progress"),
                                 tr("Configuration file is now being loaded. Application cannot be "
                                    "closed right now."));
        event->ignore();
        return;
    }
    m_project->FinishInput();
    const QString question = tr("All unsaved work will be lost.\n\nAre you sure you want to quit "
                                "the application?");
    if (ProjectSettings::Instance().IsModified() &&
        !AskYesNo(this, tr("Exit application"), question)) {
        event->ignore();
        return;
    }
    m_project->KeepDiscarded();
    m_project->PruneVersions();
    m_journal->End();
    m_project->StopLoading();
    WindowState::Store(*this);
    event->accept();
}
