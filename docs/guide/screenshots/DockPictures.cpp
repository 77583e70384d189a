#include "DockPictures.h"

#include "EditorUser.h"
#include "Picture.h"
#include "app/ProjectSettings.h"
#include "canvas/OverviewPicture.h"
#include "canvas/WidgetOverview.h"
#include "document/Problems.h"

#include <QComboBox>
#include <QDir>
#include <QDockWidget>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QTest>

#include <cstring>
#include <utility>

namespace {

constexpr QSize WideWindow(1200, 740);
constexpr QSize ProblemsSize(820, 230);
constexpr QSize TallWindow(980, 1010);
constexpr int DockHeight = 330;

/// Writes a copy of the example's document with mistakes that designers make, and returns its path.
QString WriteBroken(const QDir& example)
{
    QFile file(example.filePath(QStringLiteral("highlands.xml")));
    EditorUser::Require(file.open(QIODevice::ReadOnly), "the example's document");
    QByteArray text = file.readAll();
    file.close();
    const QVector<std::pair<const char*, const char*>> mistakes{
        {"usage_flags=\"32\" value_flags=\"2\"", "usage_flags=\"0\" value_flags=\"0\""},
        {"\"Graze\" smin=\"2\" smax=\"3\"", "\"Graze\" smin=\"5\" smax=\"3\""},
        {"r=\"110\"", "r=\"11\""},
        {"\"HerdCrossing\"", "\"rest\""},
        {"x=\"11557.5\"", "x=\"15300\""},
    };
    for (const auto& [right, wrong] : mistakes) {
        const int at = text.indexOf(right);
        EditorUser::Require(at >= 0, right);
        text.replace(at, static_cast<int>(std::strlen(right)), wrong);
    }
    file.setFileName(example.filePath(QStringLiteral("broken.xml")));
    EditorUser::Require(file.open(QIODevice::WriteOnly) && file.write(text) == text.size(),
                        "the copy with mistakes");
    return file.fileName();
}

} // namespace

void Load(EditorUser& user, const QString& project)
{
    user.Choose("actionLoad", [&](QDialog& dialog) { EditorUser::AnswerFile(dialog, project); });
    EditorUser::Require(ProjectSettings::Instance().LayerWidth() > 0, "the example");
}

void ShowMapDock(EditorUser& user, const char* action, const char* name, QPointF place,
                 const QDir& pictures, const QString& picture)
{
    user.Window().resize(WideWindow);
    user.Choose(action);
    user.PointAt(place);
    // It is drawn in slices, which come late on a busy machine.
    const OverviewPicture& overview = user.Widget<WidgetOverview>("viewOverview").Overview();
    EditorUser::Require(
        QTest::qWaitFor([&overview] { return overview.IsUpToDate(); }, PatienceMilliseconds),
        "a complete overview");
    auto& dock = user.Widget<QDockWidget>(name);
    Picture shown(dock);
    shown.Crop(QRect(0, 0, dock.width(), DockHeight));
    shown.Save(pictures, picture);
    user.Choose(action);
    user.Window().resize(WindowSize);
}

void ShowZoneTable(EditorUser& user, const QDir& pictures)
{
    user.Window().resize(WideWindow.width(), TallWindow.height());
    user.Choose("actionZonesTable");
    auto& line = user.Widget<QLineEdit>("txtZonesFilter");
    line.setText(QStringLiteral("radius>300"));
    user.Widget<QTableView>("viewZones").sortByColumn(6, Qt::DescendingOrder);
    EditorUser::Settle();
    Picture shown(user.Widget<QDockWidget>("DockZones"));
    shown.Save(pictures, QStringLiteral("dock-zones"));
    line.clear();
    user.Choose("actionZonesTable");
    user.Window().resize(WindowSize);
}

void ShowNumbers(EditorUser& user, const QDir& pictures)
{
    user.Window().resize(WideWindow);
    user.Choose("actionStatistics");
    user.Widget<QComboBox>("cboOverlapFirst").setCurrentIndex(1);
    const auto& overlap = user.Widget<QLabel>("lblOverlap");
    const auto isCounted = [&overlap] { return overlap.text().contains(QLatin1String("pixels")); };
    EditorUser::Require(QTest::qWaitFor(isCounted, PatienceMilliseconds), "numbers");
    EditorUser::Settle();
    Picture(user.Widget<QWidget>("DockStatistics")).Save(pictures, QStringLiteral("dock-numbers"));
    user.Choose("actionStatistics");
    user.Window().resize(WindowSize);
    user.Choose("actionHeat");
    EditorUser::Require(QTest::qWaitFor(
                            [&user] {
                                const auto* legend =
                                    user.Window().findChild<QLabel*>(QStringLiteral("legendHeat"));
                                return legend && legend->isVisible();
                            },
                            PatienceMilliseconds),
                        "the colours of creatures");
    EditorUser::Settle();
    Picture(user.Widget<QWidget>("paintView")).Save(pictures, QStringLiteral("heat"));
    user.Choose("actionHeat");
}

void ShowProblems(EditorUser& user, const QDir& example, const QDir& pictures)
{
    Load(user, WriteBroken(example));
    user.Window().resize(WideWindow.width(), TallWindow.height());
    user.Choose("actionProblems");
    const Problems& problems = user.Window().ProjectProblems();
    EditorUser::Require(
        QTest::qWaitFor([&problems] { return problems.IsUpToDate(); }, PatienceMilliseconds),
        "the problems");
    EditorUser::Settle();
    auto& dock = user.Widget<QDockWidget>("DockProblems");
    user.Window().resizeDocks({&dock}, {ProblemsSize.width()}, Qt::Horizontal);
    user.Window().resizeDocks({&dock}, {ProblemsSize.height()}, Qt::Vertical);
    EditorUser::Settle();
    Picture(dock).Save(pictures, QStringLiteral("dock-problems"));
    user.Choose("actionProblems");
    user.Window().resize(WindowSize);
}
