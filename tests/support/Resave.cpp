// resave DOCUMENT FOLDER: loads a project as the editor does and saves it into another folder.

#include "app/ProjectDocument.h"
#include "app/ProjectReader.h"
#include "app/ProjectSettings.h"
#include "layers/LayerList.h"
#include "territories/TerritoryTypeList.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QWidget>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {

bool Load(const QString& path, LayerList& layers, TerritoryTypeList& types)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    ProjectSettings::Instance().SetDir(QFileInfo(path).absoluteDir());
    return ProjectReader(file).Read(
        {[](QXmlStreamReader&) {}, [&layers](QXmlStreamReader& xml) { return layers.ReadXml(xml); },
         [&types](QXmlStreamReader& xml) { return types.Read(xml, nullptr); }});
}

bool Save(const QString& folder, LayerList& layers, const TerritoryTypeList& types)
{
    ProjectSettings::Instance().SetDir(QDir(folder));
    QFile file(folder + QStringLiteral("/project.xml"));
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    QXmlStreamWriter xml(&file);
    WriteProjectDocument(xml, {-1, {}, {}, layers, types});
    return !xml.hasError() && file.flush();
}

bool Resave(const QString& document, const QString& folder)
{
    // Layers have colours only while there is a window.
    const QWidget window;
    LayerList layers;
    TerritoryTypeList types;
    return Load(document, layers, types) && Save(folder, layers, types);
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const bool isDone = arguments.size() == 3 && Resave(arguments.at(1), arguments.at(2));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return isDone ? 0 : 1;
}
