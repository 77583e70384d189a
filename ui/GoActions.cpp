#include "ui/GoActions.h"

#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "canvas/PlaceMark.h"
#include "canvas/ZoomSteps.h"
#include "document/Document.h"
#include "layers/Layer.h"
#include "layers/raster/Mask.h"
#include "territories/Zone.h"
#include "ui/GoTargets.h"
#include "ui/NameList.h"
#include "ui/QuillmapWindow.h"
#include "ui/SceneScale.h"
#include "ui/dialogs/DialogGoTo.h"
#include "ui_QuillmapWindow.h"

#include <QEvent>
#include <QInputDialog>
#include <QSettings>

#include <algorithm>
#include <cmath>

namespace {

QSettings Settings()
{
    return QSettings(QStringLiteral("Halvern Works"), QStringLiteral("Quillmap"));
}

const QString ZoomAtMouseKey = QStringLiteral("zoomAtMouse");

QString MenuText(const QString& name)
{
    return QString(name).replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace

GoActions::GoActions(const EditorParts& parts)
    : m_parts(parts)
    , m_jumps(parts.view)
{
    ConnectMoves();
    ConnectBookmarks();
    const bool isAtMouse = Settings().value(ZoomAtMouseKey).toBool();
    m_parts.form.actionZoomAtMouse->setChecked(isAtMouse);
    m_parts.view.Moves().SetKeepsPlace(isAtMouse);
    connect(m_parts.form.actionZoomAtMouse, &QAction::toggled, this, &GoActions::SetZoomAtMouse);
    connect(m_parts.form.actionFullScreen, &QAction::triggered, this, &GoActions::ShowFullScreen);
    m_parts.window.installEventFilter(this);
}

void GoActions::ConnectMoves()
{
    const Ui::QuillmapWindowClass& form = m_parts.form;
    // Plus is on the key of the equals sign on many keyboards.
    form.actionZoomIn->setShortcuts(
        {QKeySequence(Qt::CTRL + Qt::Key_Plus), QKeySequence(Qt::CTRL + Qt::Key_Equal)});
    ViewMoves& moves = m_parts.view.Moves();
    connect(form.actionZoomIn, &QAction::triggered, this, [&moves] { moves.Zoom(true); });
    connect(form.actionZoomOut, &QAction::triggered, this, [&moves] { moves.Zoom(false); });
    connect(form.actionFitMap, &QAction::triggered, this, &GoActions::FitMap);
    connect(form.actionFitSelection, &QAction::triggered, this, &GoActions::FitSelection);
    connect(form.actionGoTo, &QAction::triggered, this, &GoActions::GoTo);
    // They stay enabled: without the shortcuts the keys would scroll the map or nudge zones.
    connect(form.actionGoBack, &QAction::triggered, this, [this] { m_jumps.Back(); });
    connect(form.actionGoForward, &QAction::triggered, this, [this] { m_jumps.Forward(); });
}

void GoActions::ConnectBookmarks()
{
    const Document& document = m_parts.document;
    connect(&document, &Document::AboutToClear, this, [this] {
        m_jumps.Clear();
        m_bookmarks.Forget();
    });
    connect(&document, &Document::FilesNoted, this,
            [this] { m_bookmarks.Follow(m_parts.document.Path()); });
    connect(m_parts.form.actionBookmarkAdd, &QAction::triggered, this, &GoActions::AddBookmark);
    // Other windows add bookmarks too.
    connect(m_parts.form.menuGo, &QMenu::aboutToShow, this, &GoActions::FillBookmarks);
    FillBookmarks();
}

void GoActions::FitMap()
{
    Jump(m_parts.view.Moves().PlaceToFit(m_parts.scene.sceneRect()));
}

/// The selected zones; without any, what is set in the current layer.
void GoActions::FitSelection()
{
    QRectF area;
    const QVector<Zone*> zones = m_parts.scene.SelectedZones();
    for (const Zone* zone : zones) {
        area |= zone->sceneBoundingRect();
    }
    const Layer* layer = m_parts.document.CurrentLayer();
    if (zones.isEmpty() && layer) {
        area = raster::SetBounds(layer->Image());
    }
    JumpToArea(area);
}

void GoActions::JumpToArea(const QRectF& area)
{
    if (!area.isEmpty()) {
        ViewPlace place = m_parts.view.Moves().PlaceToFit(area);
        place.zoom = std::max(place.zoom, ZoomSteps::LowestOfWheel);
        Jump(place);
    }
}

void GoActions::GoTo()
{
    // A dialog would end a stroke or drag.
    if (m_parts.document.IsBusy()) {
        return;
    }
    const SceneScale scale(m_parts.scene.sceneRect().size());
    QVector<GoTarget> targets;
    if (scale.IsUsable()) {
        targets = FindGoTargets(m_parts.document, m_bookmarks, scale);
    }
    DialogGoTo dialog(scale, m_parts.view.Moves().Place(), targets, &m_parts.window);
    if (dialog.exec() == QDialog::Accepted) {
        Jump(dialog.Place());
        m_parts.view.Mark().Show(dialog.Place().center);
    }
}

void GoActions::SetZoomAtMouse(bool isOn)
{
    m_parts.view.Moves().SetKeepsPlace(isOn);
    // It is written when the object dies.
    QSettings settings = Settings();
    settings.setValue(ZoomAtMouseKey, isOn);
}

void GoActions::ShowFullScreen(bool isOn)
{
    // Maximised or not, the window comes back as it was.
    m_parts.window.setWindowState(m_parts.window.windowState().setFlag(Qt::WindowFullScreen, isOn));
}

bool GoActions::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::WindowStateChange) {
        m_parts.form.actionFullScreen->setChecked(m_parts.window.isFullScreen());
    }
    return QObject::eventFilter(watched, event);
}

void GoActions::AddBookmark()
{
    const SceneScale scale(m_parts.scene.sceneRect().size());
    if (m_parts.document.IsBusy() || !scale.IsUsable()) {
        return;
    }
    const ViewPlace shown = m_parts.view.Moves().Place();
    const QPointF metres = scale.ToWorld(shown.center);
    const QString proposal =
        tr("X %1, Z %2").arg(std::lround(metres.x())).arg(std::lround(metres.y()));
    bool isNamed = false;
    const QString name =
        QInputDialog::getText(&m_parts.window, tr("Add bookmark"), tr("Name of this place:"),
                              QLineEdit::Normal, proposal, &isNamed);
    if (isNamed) {
        m_bookmarks.Add({name, metres, shown.zoom});
        FillBookmarks();
    }
}

void GoActions::FillBookmarks()
{
    for (QAction* action : qAsConst(m_listed)) {
        // It may be the one that is being carried out.
        m_parts.form.menuGo->removeAction(action);
        m_parts.form.menuBookmarkRemove->removeAction(action);
        action->deleteLater();
    }
    m_listed.clear();
    const QVector<Bookmark> bookmarks = m_bookmarks.All();
    for (const Bookmark& bookmark : bookmarks) {
        auto* go = new QAction(MenuText(ShortText(bookmark.name)), this);
        connect(go, &QAction::triggered, this, [this, bookmark] { GoToBookmark(bookmark); });
        m_parts.form.menuGo->addAction(go);
        auto* remove = new QAction(MenuText(ShortText(bookmark.name)), this);
        connect(remove, &QAction::triggered, this, [this, name = bookmark.name] {
            m_bookmarks.Remove(name);
            FillBookmarks();
        });
        m_parts.form.menuBookmarkRemove->addAction(remove);
        m_listed << go << remove;
    }
    m_parts.form.menuBookmarkRemove->setEnabled(!bookmarks.isEmpty());
}

void GoActions::GoToBookmark(const Bookmark& bookmark)
{
    const SceneScale scale(m_parts.scene.sceneRect().size());
    if (scale.IsUsable()) {
        Jump({scale.ToScene(bookmark.place), bookmark.zoom});
    }
}
