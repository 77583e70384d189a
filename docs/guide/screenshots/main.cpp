// guide_screenshots EXAMPLE FOLDER
// Works through the example project in the editor's window and writes the pictures of the guide
// into FOLDER. EXAMPLE must be a copy of the project's folder, because it is saved and exported.

#include "DockPictures.h"
#include "EditorUser.h"
#include "Picture.h"
#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "ui/DockLayers.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QColorDialog>
#include <QComboBox>
#include <QCursor>
#include <QDir>
#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QSlider>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTest>
#include <QUndoStack>

#include <cstdlib>

namespace {

constexpr QSize EditorSize(1366, 740);
constexpr QSize MessagesSize(640, 190);
constexpr QSize ShapeSize(390, 200);
constexpr int WestOfTheZones = 260;
constexpr int AboveTheDocks = 54;
constexpr int TreeHeight = 300;
constexpr QSize TallWindow(980, 1010);
const QColor OrchardColor(224, 130, 20);
constexpr int OrchardAlpha = 170;
constexpr int GrowthMetres = 100;
constexpr int ShoreMetres = 60;
constexpr int ListHeight = 540;
constexpr int RowsBelow = 380;

/// Scene units of a place in metres.
QPointF Place(double x, double z)
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    return {x / static_cast<double>(settings.MetresPerPixelX()),
            settings.LayerHeight() - z / static_cast<double>(settings.MetresPerPixelZ())};
}

QVector<QPointF> Places(const QVector<QPointF>& metres)
{
    QVector<QPointF> places;
    for (const QPointF& place : metres) {
        places.append(Place(place.x(), place.y()));
    }
    return places;
}

/// Replaces the time of day and the folder of the copy, which differ in each run and would change
/// the pictures.
void HideWhatVaries(EditorUser& user, const QDir& example)
{
    auto& list = user.Widget<QListView>("messageListView");
    auto* messages = qobject_cast<QStandardItemModel*>(list.model());
    EditorUser::Require(messages, "messages");
    const QString time = QStringLiteral("10:00:00");
    for (int row = 0; row < messages->rowCount(); ++row) {
        QString text = messages->item(row)->text();
        text.replace(0, time.size(), time);
        text.replace(example.absolutePath(), QStringLiteral("highlands"));
        messages->item(row)->setText(text);
    }
    list.scrollToBottom();
}

/// The first picture that readers see: the docks of layers and of territories.
void ShowEditor(EditorUser& user, const QDir& example, const QDir& pictures)
{
    user.Window().resize(EditorSize);
    user.Choose("actionViewTerritoryTypes");
    user.SelectRow("treeTerTypes", QStringLiteral("Deer south woods 1"));
    user.PointAt(Place(6937.5, 9075));
    HideWhatVaries(user, example);
    Picture(user.Window()).Save(pictures, QStringLiteral("editor"));
    user.Choose("actionViewTerritoryTypes");
    user.Window().resize(WindowSize);
}

void ShowOverview(EditorUser& user, const QDir& example, const QDir& pictures)
{
    user.ZoomTo(Place(7400, 7700), -2);
    user.PointAt(Place(7000, 8000));
    HideWhatVaries(user, example);
    Picture picture(user.Window());
    picture.Number(*user.Window().menuBar(), {-820, 26});
    picture.Number(user.Widget<QWidget>("treeLayers"), {-20, 4});
    picture.Number(user.Widget<QWidget>("scrollFlags"), {-20, 4});
    picture.Number(user.Map(), {-6, 6});
    picture.Number(user.Widget<QWidget>("gboPaintMode"), {-6, 26});
    picture.Number(user.Widget<QWidget>("messageListView"), {-30, 2});
    picture.Save(pictures, QStringLiteral("overview"));
}

void ChooseLayerColor(EditorUser& user)
{
    auto& group = user.Widget<QWidget>("gboLayerClrOp");
    auto* button = group.findChild<QPushButton*>();
    auto* slider = group.findChild<QSlider*>();
    EditorUser::Require(button && slider, "colour and opacity of the layer");
    button->setObjectName(QStringLiteral("color of the layer"));
    user.Click("color of the layer", [](QDialog& dialog) {
        auto* colors = qobject_cast<QColorDialog*>(&dialog);
        EditorUser::Require(colors, "a dialog for colours");
        colors->setCurrentColor(OrchardColor);
        dialog.accept();
    });
    slider->setValue(OrchardAlpha);
}

/// What a tool draws between press and release.
void ShowShape(EditorUser& user, const char* tool, const QVector<QPointF>& metres,
               const QDir& pictures, const QString& name)
{
    const QVector<QPointF> places = Places(metres);
    user.Choose(tool);
    user.PaintAndHold(places);
    Picture picture(user.Map());
    QRect part(QPoint(), ShapeSize);
    part.moveCenter(user.Map().mapFromScene(Place(5960, 6520)));
    picture.Crop(part);
    picture.Save(pictures, name);
    user.Press(Qt::Key_Escape);
    user.Release(places.last());
}

/// A polygon under way, which stops at the lakes; and other shapes.
void ShowTools(EditorUser& user, const QDir& pictures)
{
    user.Widget<QComboBox>("cboPaintWithin").setCurrentIndex(2);
    auto& layers = user.Widget<QComboBox>("cboPaintWithinLayer");
    layers.setCurrentIndex(layers.findText(QStringLiteral("Lakes and rivers")));
    user.Choose("toolPolygon");
    const QVector<QPointF> corners = Places({{5800, 6550}, {5700, 7050}, {6100, 7200}});
    for (const QPointF& corner : corners) {
        user.ClickMap(corner);
    }
    user.PointAt(Place(6500, 6800));
    Picture picture(user.Window());
    picture.Save(pictures, QStringLiteral("tools"));
    user.Press(Qt::Key_Escape);
    ShowShape(user, "toolLine", {{5500, 6450}, {6050, 6650}}, pictures, QStringLiteral("line"));
    ShowShape(user, "toolEllipse", {{5500, 6350}, {6100, 6700}}, pictures,
              QStringLiteral("ellipse"));
    ShowShape(user, "toolLasso",
              {{5550, 6650}, {5500, 6500}, {5650, 6350}, {5850, 6400}, {6050, 6350}, {6100, 6550}},
              pictures, QStringLiteral("lasso"));
    user.Choose("toolBrush");
    user.Widget<QComboBox>("cboPaintWithin").setCurrentIndex(0);
}

void ShowPainting(EditorUser& user, const QDir& example, const QDir& pictures)
{
    user.Click("btnAddPainted");
    user.SelectLastRow("treeLayers");
    user.RenameCurrent("treeLayers", QStringLiteral("Orchards"));
    ChooseLayerColor(user);
    user.Choose("actionTogglePaintMode");
    user.ZoomTo(Place(6100, 6900), 4);
    user.Paint(Places({{5750, 7150}, {5900, 7000}, {6150, 7050}, {6350, 6900}}));
    user.Paint(Places({{5900, 6750}, {6100, 6700}, {6300, 6650}}));
    user.PointAt(Place(6700, 6300));
    HideWhatVaries(user, example);
    Picture picture(user.Window());
    picture.Save(pictures, QStringLiteral("painting"));
    ShowTools(user, pictures);
    user.Choose("actionTogglePaintMode");
}

template <typename T>
T& Part(QDialog& dialog, const char* name)
{
    T* part = dialog.findChild<T*>(QLatin1String(name));
    EditorUser::Require(part, name);
    return *part;
}

/// The dialog's inputs are disabled during the computation of a preview.
void WaitForPreview(QDialog& dialog)
{
    const auto& ok = Part<QPushButton>(dialog, "btnOk");
    EditorUser::Require(QTest::qWaitFor([&ok] { return ok.isEnabled(); }, PatienceMilliseconds),
                        "a preview");
}

void ChooseIn(QDialog& dialog, const char* name, const QString& text)
{
    WaitForPreview(dialog);
    auto& combo = Part<QComboBox>(dialog, name);
    EditorUser::Require(combo.findText(text) >= 0, qPrintable(text));
    combo.setCurrentIndex(combo.findText(text));
}

void ShowComputedLayer(EditorUser& user, const QDir& pictures)
{
    user.Click("btnAddCustom", [&](QDialog& dialog) {
        ChooseIn(dialog, "cboOperation", QStringLiteral("Dilation"));
        ChooseIn(dialog, "cboInputA", QStringLiteral("Towns"));
        WaitForPreview(dialog);
        auto& radius = Part<QSpinBox>(dialog, "spnRadius");
        radius.setFocus();
        radius.setValue(GrowthMetres);
        QTest::keyClick(&radius, Qt::Key_Return);
        WaitForPreview(dialog);
        auto& name = Part<QLineEdit>(dialog, "txtOutputName");
        name.selectAll();
        QTest::keyClicks(&name, QStringLiteral("Outskirts"));
        Picture(dialog).Save(pictures, QStringLiteral("computed-layer"));
        Part<QPushButton>(dialog, "btnCancel").click();
    });
}

void AddComputed(EditorUser& user, const QString& operation, const QString& input,
                 const QString& layer)
{
    user.Click("btnAddCustom", [&](QDialog& dialog) {
        ChooseIn(dialog, "cboOperation", operation);
        ChooseIn(dialog, "cboInputA", input);
        WaitForPreview(dialog);
        auto& name = Part<QLineEdit>(dialog, "txtOutputName");
        name.selectAll();
        QTest::keyClicks(&name, layer);
        Part<QPushButton>(dialog, "btnOk").click();
    });
}

/// A shore that follows the brush on the lakes.
void ShowLiveRing(EditorUser& user, const QDir& example, const QDir& pictures)
{
    user.SelectRow("treeLayers", QStringLiteral("Lakes and rivers"));
    user.Choose("actionLayerRing", [&](QDialog& dialog) {
        Part<QSpinBox>(dialog, "spnRadius").setValue(ShoreMetres);
        Picture(dialog).Save(pictures, QStringLiteral("live-ring"));
        Part<QPushButton>(dialog, "btnOk").click();
    });
    user.Choose("actionTogglePaintMode");
    user.ZoomTo(Place(6900, 7000), 0);
    const QVector<QPointF> places =
        Places({{6930, 7000}, {6750, 7200}, {6600, 7450}, {6700, 7650}});
    user.PaintAndHold(places);
    HideWhatVaries(user, example);
    Picture(user.Window()).Save(pictures, QStringLiteral("live-layers"));
    user.Release(places.last());
    user.Choose("actionTogglePaintMode");
}

/// Rows of layers that are locked, live, out of date and broken.
void ShowLayerMarks(EditorUser& user, const QDir& pictures)
{
    user.SelectRow("treeLayers", QStringLiteral("Military zones"));
    user.Choose("actionLayerLock");
    AddComputed(user, QStringLiteral("Dilation"), QStringLiteral("Towns"),
                QStringLiteral("Outskirts"));
    user.SelectRow("treeLayers", QStringLiteral("Towns"));
    user.Choose("actionLayerClear");
    user.SelectRow("treeLayers", QStringLiteral("Orchards"));
    user.Choose("actionLayerDuplicate");
    AddComputed(user, QStringLiteral("Closing"), QStringLiteral("Orchards (2)"),
                QStringLiteral("Large orchards"));
    user.SelectRow("treeLayers", QStringLiteral("Orchards (2)"));
    auto& dock = user.Widget<DockLayers>("DockLayers");
    dock.Remove();
    user.SelectRow("treeLayers", QStringLiteral("Lakes and rivers"));
    user.Window().resize(TallWindow);
    user.Window().resizeDocks({&dock}, {ListHeight}, Qt::Vertical);
    EditorUser::Settle();
    user.Widget<QAbstractItemView>("treeLayers").scrollToBottom();
    Picture picture(dock);
    picture.Crop(dock.rect().adjusted(0, dock.height() - RowsBelow, 0, 0));
    picture.Save(pictures, QStringLiteral("layer-marks"));
    user.SelectRow("treeLayers", QStringLiteral("Military zones"));
    user.Choose("actionLayerLock");
    user.Window().resize(WindowSize);
}

/// Leaves the layers as they were.
void ShowLiveLayers(EditorUser& user, const QDir& example, const QDir& pictures)
{
    const int steps = user.Window().GetDocument().History().index();
    ShowLiveRing(user, example, pictures);
    ShowLayerMarks(user, pictures);
    while (user.Window().GetDocument().History().index() > steps) {
        user.Choose("actionUndo");
    }
}

void Tick(QDialog& dialog, const char* list, const QString& layer)
{
    auto& rows = Part<QListWidget>(dialog, list);
    const QList<QListWidgetItem*> found = rows.findItems(layer, Qt::MatchExactly);
    EditorUser::Require(found.size() == 1, qPrintable(layer));
    found.first()->setCheckState(Qt::Checked);
    rows.scrollToItem(found.first(), QAbstractItemView::PositionAtCenter);
    rows.setCurrentItem(found.first());
}

void ShowScatter(EditorUser& user, const QDir& pictures)
{
    user.Choose("actionZonesScatter", [&](QDialog& dialog) {
        Part<QSpinBox>(dialog, "spnScatterCount").setValue(100);
        Part<QSpinBox>(dialog, "spnScatterDistance").setValue(700);
        Part<QSpinBox>(dialog, "spnScatterExisting").setValue(500);
        Tick(dialog, "lstScatterInside", QStringLiteral("Forest"));
        Tick(dialog, "lstScatterMinus", QStringLiteral("Snow peaks"));
        const auto& result = Part<QLabel>(dialog, "lblScatterResult");
        EditorUser::Require(
            QTest::qWaitFor([&] { return result.text().contains(QLatin1String("fit")); }),
            "places for zones");
        Picture(dialog).Save(pictures, QStringLiteral("scatter"));
        dialog.reject();
    });
}

void ShowZones(EditorUser& user, const QDir& pictures)
{
    user.Choose("actionViewLayers");
    user.Choose("actionViewStatus");
    user.Choose("actionViewTerritoryTypes");
    user.Window().resize(TallWindow);
    user.Window().resizeDocks({&user.Widget<QDockWidget>("DockTerTypes")}, {TreeHeight},
                              Qt::Vertical);
    user.SelectRow("treeTerTypes", QStringLiteral("Deer south woods 1"));
    user.ZoomTo(Place(9200, 5450), 1);
    user.Press(Qt::Key_S, Qt::ShiftModifier);
    user.ClickMap(Place(9510, 5917.5));
    Picture picture(user.Window());
    picture.Crop(user.Window().rect().adjusted(WestOfTheZones, AboveTheDocks, 0, 0));
    picture.Save(pictures, QStringLiteral("zones"));
    ShowScatter(user, pictures);
    user.Choose("actionViewLayers");
    user.Choose("actionViewStatus");
}

void ShowMessages(EditorUser& user, const QDir& example, const QDir& pictures)
{
    user.Choose("actionSaveAll", [&](QDialog& dialog) {
        EditorUser::AnswerFile(dialog, example.filePath(QStringLiteral("orchards.xml")));
    });
    HideWhatVaries(user, example);
    auto& dock = user.Widget<QDockWidget>("DockStatus");
    user.Window().resizeDocks({&dock}, {MessagesSize.height()}, Qt::Vertical);
    EditorUser::Settle();
    user.Widget<QListView>("messageListView").scrollToBottom();
    Picture picture(dock);
    picture.Crop(QRect(QPoint(), MessagesSize));
    picture.Save(pictures, QStringLiteral("messages"));
}

void ShowNewProject(EditorUser& user, const QDir& pictures)
{
    user.Choose("actionNew", [&](QDialog& dialog) {
        const auto type = [&](const char* name, const QString& text) {
            Part<QLineEdit>(dialog, name).setText(text);
        };
        type("txtWorldImage", QStringLiteral("isle/island.jpg"));
        type("txtAreaFlagsFile", QStringLiteral("isle/area-types.xml"));
        type("txtProjectName", QStringLiteral("isle/isle.xml"));
        Picture(dialog).Save(pictures, QStringLiteral("new-project"));
        dialog.reject();
    });
}

void ShowGoTo(EditorUser& user, const QDir& pictures)
{
    user.Choose("actionGoTo", [&](QDialog& dialog) {
        QTest::keyClicks(&Part<QLineEdit>(dialog, "txtGoX"), QStringLiteral("4200"));
        QTest::keyClicks(&Part<QLineEdit>(dialog, "txtGoZ"), QStringLiteral("9800"));
        auto& zoom = Part<QComboBox>(dialog, "cboGoZoom");
        zoom.setFocus();
        QTest::keyClicks(&zoom, QStringLiteral("300"));
        Picture(dialog).Save(pictures, QStringLiteral("go-to"));
        dialog.reject();
    });
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 3) {
        qCritical("guide_screenshots EXAMPLE FOLDER");
        return EXIT_FAILURE;
    }
    const QDir example(arguments[1]);
    const QDir pictures(arguments[2]);
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 9));
    // Otherwise the widget under the mouse would be highlighted, and text cursors would blink.
    QCursor::setPos(QApplication::primaryScreen()->geometry().bottomRight());
    QApplication::setCursorFlashTime(0);

    EditorUser user;
    user.Window().resize(WindowSize);
    Load(user, example.filePath(QStringLiteral("highlands.xml")));
    ShowEditor(user, example, pictures);
    ShowNewProject(user, pictures);
    ShowGoTo(user, pictures);
    ShowOverview(user, example, pictures);
    const QPointF place = Place(7250, 8150);
    ShowMapDock(user, "actionOverview", "DockOverview", place, pictures,
                QStringLiteral("dock-overview"));
    ShowMapDock(user, "actionProbe", "DockProbe", place, pictures, QStringLiteral("dock-probe"));
    ShowZoneTable(user, pictures);
    ShowNumbers(user, pictures);
    ShowPainting(user, example, pictures);
    ShowComputedLayer(user, pictures);
    ShowLiveLayers(user, example, pictures);
    ShowZones(user, pictures);
    ShowMessages(user, example, pictures);
    ShowProblems(user, example, pictures);
    return EXIT_SUCCESS;
}
