#include "canvas/BrushDock.h"
#include "document/ProjectNumbers.h"
#include "document/versions/VersionStore.h"
#include "tests/support/CustomLayerFixture.h"
#include "tests/support/Files.h"
#include "tests/support/Forms.h"
#include "tests/support/WindowFixture.h"
#include "ui/AcceptedFindings.h"
#include "ui/DialogNewProject.h"
#include "ui/DialogVersions.h"
#include "ui/DockHistory.h"
#include "ui/DockLayerProps.h"
#include "ui/DockLayers.h"
#include "ui/DockOverview.h"
#include "ui/DockProbe.h"
#include "ui/DockProblems.h"
#include "ui/DockStatistics.h"
#include "ui/DockStatus.h"
#include "ui/DockTerTypeProps.h"
#include "ui/DockTerTypes.h"
#include "ui/DockZones.h"
#include "ui/SceneScale.h"
#include "ui/ZoneSheets.h"
#include "ui/dialogs/DialogAlignZones.h"
#include "ui/dialogs/DialogGoTo.h"
#include "ui/dialogs/DialogGrowLayer.h"
#include "ui/dialogs/DialogJoinTerritories.h"
#include "ui/dialogs/DialogMergeLayer.h"
#include "ui/dialogs/DialogMoveZones.h"
#include "ui/dialogs/DialogRefusedRows.h"
#include "ui/dialogs/DialogScatter.h"
#include "ui/dialogs/DialogZonesTo.h"
#include "ui/widgets/GroupBoxColor.h"

#include <QDir>
#include <QTest>

#include <algorithm>

namespace {

template <typename Form, typename... Others>
QString DocumentForm(Others... others)
{
    Document document;
    return FormText(Form(document, others...));
}

/// Makes each form as it is before it is used, and returns its text.
const struct
{
    const char* name;
    QString (*text)();
} Forms[] = {
    {"BrushDock",
     [] {
         Brush brush;
         return FormText(BrushDock(brush));
     }},
    {"DialogAlignZones",
     [] {
         return FormText(DialogAlignZones({{0, 0}, {60, 80}}));
     }},
    {"DialogCustomLayer",
     [] {
         CustomLayerFixture fixture;
         return FormText(DialogCustomLayer(fixture.document, nullptr));
     }},
    {"DialogGoTo", [] { return FormText(DialogGoTo(SceneScale(QSizeF()), {}, {})); }},
    {"DialogGrowLayer",
     [] {
         const LayerList list;
         Layer layer(0, 0, nullptr, QStringLiteral("Lake"));
         return FormText(DialogGrowLayer(list, layer, DialogGrowLayer::Purpose::Grow));
     }},
    {"DialogJoinTerritories",
     [] {
         Territory lake(QStringLiteral("Lake & shore"));
         Territory north(QStringLiteral("North"));
         return FormText(DialogJoinTerritories(lake, {&north}));
     }},
    {"DialogMergeLayer",
     [] {
         const Document document;
         Layer layer(0, 0, nullptr, QStringLiteral("Lake"));
         return FormText(DialogMergeLayer(document, layer));
     }},
    {"DialogMoveZones", [] { return FormText(DialogMoveZones(3)); }},
    {"DialogNewProject", [] { return FormText(DialogNewProject()); }},
    {"DialogRefusedRows",
     [] {
         return FormText(DialogRefusedRows({{7, "radius 1 is below 50"}}));
     }},
    {"DialogScatter",
     [] {
         const Document document;
         QGraphicsScene scene;
         return FormText(DialogScatter(document, scene));
     }},
    {"DialogVersions",
     [] {
         const QTemporaryDir folder;
         return FormText(DialogVersions(VersionStore(folder.path()), QString()));
     }},
    {"DialogZonesTo",
     [] {
         const Document document;
         return FormText(DialogZonesTo(document, {}, false));
     }},
    {"DockHistory", [] { return DocumentForm<DockHistory>(); }},
    {"DockLayerProps", [] { return DocumentForm<DockLayerProps>(); }},
    {"DockLayers", [] { return DocumentForm<DockLayers>(nullptr); }},
    {"DockOverview",
     [] {
         Document document;
         MainView view;
         return FormText(DockOverview(document, view));
     }},
    {"DockProbe",
     [] {
         Document document;
         return FormText(DockProbe(document, DockProbe::Callbacks()));
     }},
    {"DockProblems",
     [] {
         Document document;
         ProjectNumbers numbers(document);
         Problems problems(document, numbers);
         AcceptedFindings accepted(document, problems);
         return FormText(DockProblems(document, problems, accepted, [](const Problem&) {}));
     }},
    {"DockStatistics",
     [] {
         Document document;
         ProjectNumbers numbers(document);
         return FormText(DockStatistics(document, numbers, {}));
     }},
    {"DockStatus", [] { return FormText(DockStatus()); }},
    {"DockTerTypeProps", [] { return DocumentForm<DockTerTypeProps>(); }},
    {"DockTerTypes", [] { return DocumentForm<DockTerTypes>(nullptr, nullptr); }},
    {"DockZones",
     [] {
         Document document;
         MainScene scene(64, 64, nullptr);
         QWidget window;
         ZoneSheets sheets(document, window);
         return FormText(DockZones(document, scene, sheets, nullptr));
     }},
    {"GroupBoxColor", [] { return FormText(GroupBoxColor()); }},
    {"QuillmapWindow", [] { return FormText(*WindowFixture().window); }},
};

} // namespace

/// The texts, keys, ranges and names of each form, as tests/golden/forms says.
class tst_Forms : public QObject
{
    Q_OBJECT

private slots:
    void FormIsAsItsTextSays_data();
    void FormIsAsItsTextSays();
};

void tst_Forms::FormIsAsItsTextSays_data()
{
    QTest::addColumn<QString>("path");
    const QDir folder(QUILLMAP_GOLDEN "/forms");
    QStringList names = folder.entryList({"*.txt"}, QDir::Files);
    names.replaceInStrings(".txt", "");
    for (const auto& form : Forms) {
        names.append(form.name);
    }
    names.removeDuplicates();
    for (const QString& name : names) {
        QTest::newRow(qPrintable(name)) << folder.filePath(name + ".txt");
    }
}

void tst_Forms::FormIsAsItsTextSays()
{
    QFETCH(QString, path);
    const auto* form = std::find_if(std::begin(Forms), std::end(Forms), [](const auto& each) {
        return qstrcmp(each.name, QTest::currentDataTag()) == 0;
    });
    QVERIFY2(form != std::end(Forms), "The text has no form.");
    const QString text = form->text();
    if (qEnvironmentVariableIsSet("QUILLMAP_GOLDEN_UPDATE")) {
        WriteBytes(path, text.toUtf8());
    }
    const QStringList lines = text.split('\n');
    const QStringList expected = QString::fromUtf8(ReadBytes(path)).split('\n');
    for (int i = 0; i < qMax(lines.size(), expected.size()); ++i) {
        QVERIFY2(lines.value(i) == expected.value(i),
                 qPrintable(QString("Line %1 of %2 says\n  %3\nbut the form has\n  %4")
                                .arg(i + 1)
                                .arg(path, expected.value(i), lines.value(i))));
    }
}

QTEST_MAIN(tst_Forms)
#include "tst_Forms.moc"
