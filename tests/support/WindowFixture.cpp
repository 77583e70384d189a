#include "tests/support/WindowFixture.h"

#include "app/ProjectDocument.h"
#include "document/Document.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/Targa.h"
#include "layers/raster/Mask.h"
#include "tests/support/Files.h"
#include "tests/support/Models.h"

#include <QFile>
#include <QSettings>
#include <QTest>
#include <QXmlStreamWriter>

namespace {

QByteArray ProjectText()
{
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<qm-config>
    <selected row="1"/>
    <global>
        <background file="" rgba="16777215"/>
        <layer size="64"/>
        <world size="640"/>
    </global>
    <areas>
        <usages><usage name="Town"/><usage name="Farm"/></usages>
        <values><value name="Rich"/></values>
    </areas>
    <brush color="4294967295" outline="1" outline_color="4278190080" outline_width="1" size="8"/>
    <layers>
        <layer usage_flags="1" value_flags="0" color="4294901760" visible="1" name="red"/>
        <layer usage_flags="2" value_flags="1" color="4278190335" visible="1" name="blue"/>
    </layers>
    <territory-type-list>
        <territory-type name="Deer">
            <territory name="North" visible="1" color="4278255360">
                <zone name="Rest" smin="1" smax="2" dmin="3" dmax="4" x="100" z="540" r="60" d="5"/>
            </territory>
        </territory-type>
    </territory-type-list>
</qm-config>
)";
}

} // namespace

WindowFixture::WindowFixture(const QString& configPath)
    : m_project({64, 64}, {640, 640})
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                       Path(QStringLiteral("settings")));
    qputenv("XDG_DATA_HOME", QFile::encodeName(m_data.path()));
    ProjectSettings::Instance().SetSizes(0, 0, 0, 0);
    ProjectSettings::Instance().SetFileName({});
    ProjectSettings::Instance().SetName({});
    Restart(configPath);
    if (configPath.isEmpty()) {
        // The same as the settings of an earlier window would do.
        ProjectSettings::Instance().SetDir(QDir(Path({})));
    }
}

WindowFixture::~WindowFixture()
{
    ProjectSettings::Instance().SetModified(false);
}

void WindowFixture::Restart(const QString& configPath)
{
    window.reset();
    window = std::make_unique<QuillmapWindow>(configPath);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void WindowFixture::TriggerWithFile(const char* action, const QString& path)
{
    answers.AddFile(path);
    Trigger(action);
}

void WindowFixture::SaveOver(const char* action, const QString& path)
{
    answers.AddFile(path);
    answers.AddButton(QStringLiteral("Yes"));
    Trigger(action);
}

QString WindowFixture::WriteProject(const QString& name)
{
    const ProjectSettings before = ProjectSettings::Instance();
    ProjectSettings::Instance().SetSizes(64, 64, 640, 640);
    QImage mask = raster::BlankMask({64, 64});
    for (int y = 8; y < 24; ++y) {
        memset(mask.scanLine(y) + 8, 255, 16);
    }
    const QString folder = Path(name);
    for (const QString& layer : {QStringLiteral("red"), QStringLiteral("blue")}) {
        QDir().mkpath(folder + QStringLiteral("/layers"));
        SaveTarga(folder + QStringLiteral("/layers/%1.tga").arg(layer), mask, true);
    }
    ProjectSettings::Instance() = before;
    const QString path = folder + QStringLiteral("/%1.xml").arg(name);
    WriteBytes(path, ProjectText());
    return path;
}

WindowFixture::SavedFiles WindowFixture::SavedBytes() const
{
    Document& document = window->GetDocument();
    const ProjectSettings settings = ProjectSettings::Instance();
    Territory* shown = document.CurrentTerritory();
    const bool wasVisible = shown && shown->IsVisible();
    if (shown) {
        shown->SetVisible(shown->checkState() == Qt::Checked);
    }
    const QString folder = Path(QStringLiteral("elsewhere"));
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    // A save takes the picture along. A path through a folder that does not exist leads nowhere as
    // it is.
    const QString picture = settings.BackgroundFile().isEmpty()
                                ? QString()
                                : QDir::cleanPath(settings.BackgroundPath());
    const QString pictureName = QFileInfo(picture).fileName();
    ProjectSettings::Instance().SetBackgroundFile(pictureName);
    ProjectSettings::Instance().SetDir(QDir(folder));
    QByteArray text;
    QXmlStreamWriter xml(&text);
    xml.setAutoFormatting(true);
    const QVector<Layer*> layers = document.Layers().Layers();
    const QStringList names = RowTexts(*document.Layers().model());
    WriteProjectDocument(xml, {-1, {}, [] {}, document.Layers(), document.Types()});
    // Layers may have got other names for saving.
    for (int i = 0; i < layers.size(); ++i) {
        layers[i]->setText(names[i]);
    }
    if (shown) {
        shown->SetVisible(wasVisible);
    }
    ProjectSettings::Instance() = settings;
    SavedFiles files = FilesBelow(folder);
    files.insert(QStringLiteral("saved.xml"), text);
    if (!picture.isEmpty()) {
        files.insert(pictureName, ReadBytes(picture));
    }
    return files;
}
