#include "tests/support/RandomUser.h"

#include "document/Document.h"
#include "layers/LayerList.h"
#include "layers/Targa.h"
#include "territories/TerritoryTypeList.h"
#include "tests/support/Files.h"
#include "ui/DockLayers.h"
#include "ui/DockTerTypes.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QImage>
#include <QLineEdit>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QTest>

#include <cstring>
#include <numeric>

namespace {

const char* const GoodFiles[] = {"first/first.xml", "second/second.xml"};

} // namespace

RandomUser::RandomUser()
{
    WriteProject(QStringLiteral("first"));
    WriteProject(QStringLiteral("second"));
    WriteGreys();
    SpillHistory();
    const QByteArray good = ReadBytes(Path(QLatin1String(GoodFiles[0])));
    WriteBytes(Path(QStringLiteral("first/cut.xml")), good.left(good.size() * 2 / 3));
    WriteBytes(Path(QStringLiteral("first/small.xml")),
               QByteArray(good).replace("layer size=\"64\"", "layer size=\"48\""));
    WriteBytes(Path(QStringLiteral("first/empty.xml")), {});
    WriteBytes(Path(QStringLiteral("areas.xml")),
               R"(<areas><usages><usage name="Town"/><usage name="Farm"/></usages>
                  <values><value name="Rich"/></values></areas>)");
    WriteBytes(Path(QStringLiteral("cut-areas.xml")), R"(<areas><usages><usage name="Town"/>)");
    QImage picture(16, 16, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    picture.save(Path(QStringLiteral("world.png")));
    WriteBytes(Path(QStringLiteral("text.png")), "no picture");
    WriteBytes(Path(QStringLiteral("junk.map")), QByteArray(100, 'x'));
    answers.SetOtherwise([this](QWidget& dialog) { Answer(dialog); });
}

/// Other programs write bitmaps with greys.
void RandomUser::WriteGreys() const
{
    QImage mask(64, 64, QImage::Format_Indexed8);
    for (int y = 0; y < mask.height(); ++y) {
        std::memset(mask.scanLine(y), 4 * y, 64);
    }
    SaveTarga(Path(QStringLiteral("second/layers/blue.tga")), mask, true);
}

/// Most of what the history holds of masks goes to its file.
void RandomUser::SpillHistory()
{
    constexpr int bytes = 2000;
    window->GetDocument().Memory().SetBudget(bytes);
}

LayerList& RandomUser::Layers() const
{
    return *Child<DockLayers>("DockLayers")->List();
}

TerritoryTypeList& RandomUser::Types() const
{
    return *Child<DockTerTypes>("DockTerTypes")->List();
}

const std::vector<RandomUser::Deed>& RandomUser::Deeds()
{
    static const std::vector<Deed> deeds{
        {"stroke", 200, &RandomUser::Stroke},
        {"broken stroke", 30, &RandomUser::BreakStroke},
        {"click on the map", 100, &RandomUser::ClickMap},
        {"drag on the map", 60, &RandomUser::DragOnMap},
        {"double click on the map", 20, &RandomUser::DoubleClickMap},
        {"wheel", 50, &RandomUser::TurnWheel},
        {"move of the map", 40, &RandomUser::MoveMap},
        {"key", 150, &RandomUser::PressKey},
        {"paint mode", 40, &RandomUser::PaintMode},
        {"button", 100, &RandomUser::ClickButton},
        {"row", 120, &RandomUser::ClickRow},
        {"dragged layer", 15, &RandomUser::DragLayer},
        {"row action", 40, &RandomUser::TriggerRowAction},
        {"rename", 20, &RandomUser::RenameInPlace},
        {"flag", 30, &RandomUser::LayerFlag},
        {"slider", 30, &RandomUser::MoveSlider},
        {"zone values", 60, &RandomUser::EditZone},
        {"project action", 12, &RandomUser::ProjectAction},
        {"export", 4, &RandomUser::ExportAction},
        {"view action", 15, &RandomUser::ViewAction},
        {"resize", 5, &RandomUser::Resize},
        {"leave", 10, &RandomUser::LeaveWindow},
        {"close", 3, &RandomUser::CloseWindow},
        {"undo", 60, &RandomUser::Undo},
        {"redo", 50, &RandomUser::Redo},
        {"escaped stroke", 20, &RandomUser::EscapeStroke},
        {"delete key", 15, &RandomUser::PressDelete},
        {"history", 15, &RandomUser::ClickHistory},
        {"layer action", 60, &RandomUser::LayerAction},
        {"filter", 10, &RandomUser::FilterLayers},
        {"zone action", 80, &RandomUser::ZoneAction},
        {"tool", 120, &RandomUser::ChooseTool},
        {"paint option", 60, &RandomUser::ChoosePaintOption},
        {"corners", 60, &RandomUser::DrawCorners},
        {"shape", 60, &RandomUser::DrawShape},
        {"table of zones", 60, &RandomUser::UseZoneTable},
        {"cell of a zone", 60, &RandomUser::EditZoneCell},
        {"pasted zones", 40, &RandomUser::PasteZoneRows},
        {"filter of zones", 30, &RandomUser::FilterZones},
        {"entry for zones", 80, &RandomUser::EnterForZones},
        {"moving option", 20, &RandomUser::ChooseMoves},
        {"look at zones", 60, &RandomUser::LookAtZones},
        {"problems", 40, &RandomUser::WorkOnProblems},
    };
    return deeds;
}

QString RandomUser::Act()
{
    const std::vector<Deed>& deeds = Deeds();
    const int sum = std::accumulate(deeds.begin(), deeds.end(), 0,
                                    [](int all, const Deed& deed) { return all + deed.weight; });
    int drawn = m_random.Below(sum);
    auto deed = deeds.begin();
    while (drawn >= deed->weight) {
        drawn -= deed->weight;
        ++deed;
    }
    const QMap<int, QImage> locked = LockedMasks();
    // Keys may save too.
    const QSignalSpy saves(&window->GetDocument(), &Document::Saved);
    // So may they undo.
    const QSignalSpy travels(&window->GetDocument(), &Document::Travelled);
    (this->*deed->act)();
    QCoreApplication::processEvents();
    if (!saves.isEmpty() && window->GetDocument().History().isClean()) {
        LetGo();
        m_saved = SavedBytes();
    }
    // What was done before a lock is undone with it.
    if (travels.isEmpty()) {
        CompareLocked(locked);
    }
    NoteLoad();
    log.Take();
    return QLatin1String(deed->name);
}

void RandomUser::Mouse(QEvent::Type type, QPoint position, Qt::MouseButton button,
                       Qt::MouseButtons buttons)
{
    QWidget* viewport = View().viewport();
    if (!viewport->isEnabled() || !viewport->isVisible()) {
        return;
    }
    QMouseEvent event(type, position, viewport->mapToGlobal(position), button, buttons,
                      m_random.Below(8) == 0 ? Qt::ControlModifier : Qt::NoModifier);
    QApplication::sendEvent(viewport, &event);
}

QPoint RandomUser::SomewhereOnMap()
{
    // Mostly on the layers, sometimes beside them.
    const int side = ProjectSettings::Instance().LayerWidth();
    const int margin = m_random.Below(4) == 0 ? 40 : 0;
    const QPoint position = View().mapFromScene(QPointF(m_random.Between(-margin, side + margin),
                                                        m_random.Between(-margin, side + margin)));
    // A mouse stays near the window, however large the sizes in a broken map are.
    constexpr int away = 2000;
    const QRect near = View().viewport()->rect().adjusted(-away, -away, away, away);
    return {qBound(near.left(), position.x(), near.right()),
            qBound(near.top(), position.y(), near.bottom())};
}

void RandomUser::Stroke()
{
    const Qt::MouseButton button = m_random.Below(3) == 0 ? Qt::RightButton : Qt::LeftButton;
    QPoint position = SomewhereOnMap();
    Mouse(QEvent::MouseMove, position, Qt::NoButton, Qt::NoButton);
    Mouse(QEvent::MouseButtonPress, position, button, button);
    for (int moves = m_random.Below(4); moves > 0; --moves) {
        position = SomewhereOnMap();
        Mouse(QEvent::MouseMove, position, Qt::NoButton, button);
    }
    Mouse(QEvent::MouseButtonRelease, position, button, Qt::NoButton);
}

void RandomUser::BreakStroke()
{
    Mouse(QEvent::MouseButtonPress, SomewhereOnMap(), Qt::LeftButton, Qt::LeftButton);
    Mouse(QEvent::MouseMove, SomewhereOnMap(), Qt::NoButton, Qt::LeftButton);
    switch (m_random.Below(6)) {
    case 0:
        Mouse(QEvent::MouseButtonPress, SomewhereOnMap(), Qt::RightButton,
              Qt::LeftButton | Qt::RightButton);
        break;
    case 3:
        Trigger(m_random.Below(2) == 0 ? "actionUndo" : "actionRedo");
        break;
    case 4:
        QTest::keyClick(&View(), Qt::Key_Escape);
        break;
    case 1:
        ClickRow();
        break;
    case 2:
        PressKey();
        break;
    default:
        break;
    }
    if (m_random.Below(2) == 0) {
        Mouse(QEvent::MouseButtonRelease, SomewhereOnMap(), Qt::LeftButton, Qt::NoButton);
    }
}

void RandomUser::ClickMap()
{
    const QPoint position = SomewhereOnMap();
    Mouse(QEvent::MouseMove, position, Qt::NoButton, Qt::NoButton);
    Mouse(QEvent::MouseButtonPress, position, Qt::LeftButton, Qt::LeftButton);
    Mouse(QEvent::MouseButtonRelease, position, Qt::LeftButton, Qt::NoButton);
}

void RandomUser::DragOnMap()
{
    Mouse(QEvent::MouseButtonPress, SomewhereOnMap(), Qt::LeftButton, Qt::LeftButton);
    const QPoint end = SomewhereOnMap();
    Mouse(QEvent::MouseMove, end, Qt::NoButton, Qt::LeftButton);
    Mouse(QEvent::MouseButtonRelease, end, Qt::LeftButton, Qt::NoButton);
}

void RandomUser::DoubleClickMap()
{
    const QPoint position = SomewhereOnMap();
    Mouse(QEvent::MouseButtonDblClick, position, Qt::LeftButton, Qt::LeftButton);
    Mouse(QEvent::MouseButtonRelease, position, Qt::LeftButton, Qt::NoButton);
}

void RandomUser::TurnWheel()
{
    QWidget* viewport = View().viewport();
    const QPoint position = SomewhereOnMap();
    const QPoint turn(0, m_random.Below(2) == 0 ? 120 : -120);
    QWheelEvent event(position, viewport->mapToGlobal(position), {}, turn, Qt::NoButton,
                      m_random.Below(4) == 0 ? Qt::NoModifier : Qt::ControlModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(viewport, &event);
}

void RandomUser::PressKey()
{
    static const int keys[] = {Qt::Key_Space,       Qt::Key_0,
                               Qt::Key_A,           Qt::Key_D,
                               Qt::Key_Q,           Qt::Key_S,
                               Qt::Key_C,           Qt::Key_V,
                               Qt::Key_Left,        Qt::Key_Right,
                               Qt::Key_Up,          Qt::Key_Down,
                               Qt::Key_BracketLeft, Qt::Key_BracketRight,
                               Qt::Key_Delete,      Qt::Key_Escape,
                               Qt::Key_Return,      Qt::Key_Tab,
                               Qt::Key_Backspace,   Qt::Key_Z};
    const auto key = static_cast<Qt::Key>(keys[m_random.Below(int(std::size(keys)))]);
    const Qt::KeyboardModifiers modifiers =
        m_random.Below(2) == 0 ? Qt::ControlModifier : Qt::NoModifier;
    QWidget* focus = QApplication::focusWidget();
    QWidget* receiver = focus && m_random.Below(3) == 0 ? focus : &View();
    if (m_random.Below(6) == 0) {
        // Hold the button a little longer, or release it elsewhere.
        QTest::keyEvent(m_random.Below(2) == 0 ? QTest::Press : QTest::Release, receiver, key,
                        modifiers);
    } else {
        QTest::keyClick(receiver, key, modifiers);
    }
}

void RandomUser::PaintMode()
{
    if (QWidget* box = OneOf({"gboPaintMode"}); box && m_random.Below(2) == 0) {
        QTest::mouseClick(box, Qt::LeftButton, {}, {10, 8});
    } else if (window->actions().contains(Action("actionTogglePaintMode"))) {
        Trigger("actionTogglePaintMode");
    }
}

QWidget* RandomUser::OneOf(const std::vector<const char*>& names)
{
    auto* widget = Child<QWidget>(names[size_t(m_random.Below(int(names.size())))]);
    return widget && widget->isVisible() && widget->isEnabled() ? widget : nullptr;
}

void RandomUser::ClickButton()
{
    QWidget* button =
        OneOf({"btnAddPainted", "btnAddPainted", "btnAddCustom", "btnHideAll", "btnAdd",
               "btnToggleZoneSelect", "btnToggleZoneSelect", "btnToggleZoneInsert",
               "btnToggleZoneInsert", "btnToggleQueryTer", "btnZoneDelete", "btnZoneCopy",
               "btnToFront", "btnToBack", "rdoRest", "rdoDynEvent"});
    if (button) {
        // A click at the button's left side does not open its menu.
        QTest::mouseClick(button, Qt::LeftButton, {}, {8, button->height() / 2});
    }
}

QAbstractItemView* RandomUser::ATree()
{
    return qobject_cast<QAbstractItemView*>(OneOf({"treeLayers", "treeTerTypes"}));
}

void RandomUser::ClickRow()
{
    QAbstractItemView* tree = ATree();
    if (!tree) {
        return;
    }
    const QPoint position(m_random.Below(tree->viewport()->width()),
                          m_random.Below(std::min(tree->viewport()->height(), 160)));
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, position);
}

void RandomUser::TriggerRowAction()
{
    QWidget* dock = OneOf({"DockLayers", "DockTerTypes"});
    if (!dock) {
        return;
    }
    const QStringList names{QStringLiteral("actionAdd"), QStringLiteral("actionRemove"),
                            QStringLiteral("actionModify"), QStringLiteral("actionExport")};
    if (auto* action = dock->findChild<QAction*>(names[m_random.Below(names.size())])) {
        action->trigger();
    }
}

void RandomUser::RenameInPlace()
{
    QAbstractItemView* tree = ATree();
    if (!tree) {
        return;
    }
    tree->setFocus();
    QTest::keyClick(tree, Qt::Key_F2);
    if (auto* editor = tree->findChild<QLineEdit*>()) {
        const QStringList names{QStringLiteral("North"), QStringLiteral("a b"), QString(),
                                QStringLiteral("x/y"), QStringLiteral("Deer")};
        editor->setText(names[m_random.Below(names.size())]);
        QTest::keyClick(editor, m_random.Below(3) == 0 ? Qt::Key_Escape : Qt::Key_Return);
    }
}

void RandomUser::LayerFlag()
{
    const auto* group = OneOf({"gboLayerUsageFlags", "gboLayerValueFlags"});
    const QList<QCheckBox*> boxes = group ? group->findChildren<QCheckBox*>() : QList<QCheckBox*>();
    if (!boxes.isEmpty()) {
        boxes[m_random.Below(boxes.size())]->click();
    }
}

void RandomUser::MoveSlider()
{
    const QWidget* group = OneOf({"gboLayerClrOp", "gboTerClrOp", "gboBgOver"});
    if (!group) {
        return;
    }
    auto* slider = group->findChild<QSlider*>();
    if (m_random.Below(5) == 0) {
        QTest::mouseClick(group->findChild<QAbstractButton*>(), Qt::LeftButton);
    } else {
        slider->setValue(m_random.Between(slider->minimum(), slider->maximum()));
    }
}

void RandomUser::EditZone()
{
    QWidget* field =
        OneOf({"spbStaticMin", "spbStaticMax", "spbDynMin", "spbDynMax", "txtSize", "txtDynEvent"});
    if (auto* box = qobject_cast<QSpinBox*>(field)) {
        box->setValue(m_random.Below(2000));
    } else if (auto* line = qobject_cast<QLineEdit*>(field)) {
        line->selectAll();
        QTest::keyClicks(line, m_random.Below(2) == 0 ? QString::number(m_random.Below(40000))
                                                      : QStringLiteral("x\"<"));
    }
}

void RandomUser::ProjectAction()
{
    static const char* const actions[] = {
        "actionNew",     "actionLoad",      "actionLoad",        "actionSave",
        "actionSaveAll", "actionLoadWorld", "actionImportAreas", "actionImportMap",
    };
    Trigger(actions[m_random.Below(int(std::size(actions)))]);
}

void RandomUser::ExportAction()
{
    if (QWidget* button = OneOf({"btnExportSelected", "btnExportAll"})) {
        QTest::mouseClick(button, Qt::LeftButton);
    }
}

void RandomUser::ViewAction()
{
    static const char* const actions[] = {"actionViewLayers",
                                          "actionViewStatus",
                                          "actionViewTerritoryTypes",
                                          "actionViewTerritoryTypes",
                                          "actionProbe",
                                          "actionOverview",
                                          "actionZonesTable",
                                          "actionStatistics",
                                          "actionHeat",
                                          "actionProblems"};
    QAction* action = Action(actions[m_random.Below(int(std::size(actions)))]);
    // Show docks more often than hide them, otherwise there is little to do.
    if (!action->isChecked() || m_random.Below(5) == 0) {
        action->trigger();
    }
}

void RandomUser::Resize()
{
    window->resize(m_random.Between(600, 1400), m_random.Between(500, 1000));
}

void RandomUser::LeaveWindow()
{
    switch (m_random.Below(3)) {
    case 0: {
        QEvent event(QEvent::Leave);
        QApplication::sendEvent(View().viewport(), &event);
        break;
    }
    case 1:
        View().clearFocus();
        break;
    default:
        View().setFocus();
        break;
    }
}

void RandomUser::CloseWindow()
{
    window->close();
    if (!window->isVisible()) {
        // Restore the settings with which a new process would begin.
        ProjectSettings::Instance() = m_settingsAtStart;
        Restart(m_random.Below(2) == 0 ? QString()
                                       : Path(QLatin1String(GoodFiles[m_random.Below(2)])));
        SpillHistory();
    }
}

void RandomUser::Undo()
{
    for (int steps = m_random.Between(1, 8); steps > 0; --steps) {
        Trigger("actionUndo");
    }
}

void RandomUser::Redo()
{
    for (int steps = m_random.Between(1, 8); steps > 0; --steps) {
        Trigger("actionRedo");
    }
}

void RandomUser::PressDelete()
{
    if (m_random.Below(3) == 0) {
        Trigger("actionSelectAllZones");
    }
    QWidget* focus = m_random.Below(2) == 0 ? static_cast<QWidget*>(&View()) : ATree();
    if (focus) {
        focus->setFocus();
        QTest::keyClick(focus, Qt::Key_Delete);
    }
}

void RandomUser::ClickHistory()
{
    if (!Action("actionHistory")->isChecked() || m_random.Below(5) == 0) {
        Trigger("actionHistory");
    }
    auto* view = qobject_cast<QAbstractItemView*>(OneOf({"viewHistory"}));
    if (!view) {
        return;
    }
    const QModelIndex index = view->model()->index(m_random.Below(view->model()->rowCount()), 0);
    view->scrollTo(index);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(index).center());
}
