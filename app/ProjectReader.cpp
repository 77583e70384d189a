#include "app/ProjectReader.h"

#include "app/ProjectSettings.h"
#include "app/Xml.h"

#include <QFile>
#include <QFileInfo>

namespace {

/// Ends where the reader of the element ends.
XmlHandler PassOver(QLatin1String name)
{
    return {name, [name](QXmlStreamReader& element) { return WalkXml(element, {}, name); }};
}

} // namespace

bool IsProjectDocument(const QString& path)
{
    QFile file(path);
    // Opening a pipe would wait for a writer, maybe for ever.
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) {
        return false;
    }
    // What makes it a project comes early in those that the editor writes.
    constexpr qint64 beginning = 1 << 16;
    QXmlStreamReader xml(file.read(beginning));
    XmlHandlers handlers;
    for (const char* element : {"global", "layers", "territory-type-list"}) {
        handlers.push_back({QLatin1String(element), [](QXmlStreamReader&) { return false; }});
    }
    return !WalkXml(xml, handlers);
}

ProjectReader::ProjectReader(QIODevice& device)
    : m_device(device)
{
}

void ProjectReader::ReadSettings()
{
    ProjectSettings& settings = ProjectSettings::Instance();
    m_device.seek(0);
    QXmlStreamReader xml(&m_device);
    WalkXml(xml, {
                     {QLatin1String("global"),
                      [this, &settings](QXmlStreamReader& element) {
                          m_holdsProject = true;
                          settings.ReadXml(element);
                          return true;
                      }},
                     {QLatin1String("areas"),
                      [&settings](QXmlStreamReader& element) {
                          AreaFlagTypes types;
                          types.ReadXml(element);
                          settings.SetFlagTypes(types);
                          return true;
                      }},
                     PassOver(QLatin1String("selected")),
                     PassOver(QLatin1String("brush")),
                     PassOver(QLatin1String("layers")),
                     PassOver(QLatin1String("territory-type-list")),
                 });
}

bool ProjectReader::Read(const Handlers& handlers)
{
    m_holdsProject = false;
    ReadSettings();
    m_device.seek(0);
    m_xml.setDevice(&m_device);
    m_selectedRow = -1;
    const auto note = [this](const std::function<bool(QXmlStreamReader&)>& read) {
        return [this, read](QXmlStreamReader& element) {
            m_holdsProject = true;
            return read(element);
        };
    };
    return WalkXml(m_xml, {
                              {QLatin1String("selected"),
                               [this](QXmlStreamReader& element) {
                                   m_selectedRow = IntAttribute(element, QLatin1String("row"), -1);
                                   return true;
                               }},
                              {QLatin1String("brush"),
                               [&handlers](QXmlStreamReader& element) {
                                   handlers.brush(element);
                                   return WalkXml(element, {}, QLatin1String("brush"));
                               }},
                              PassOver(QLatin1String("global")),
                              PassOver(QLatin1String("areas")),
                              {QLatin1String("layers"), note(handlers.layers)},
                              {QLatin1String("territory-type-list"), note(handlers.territoryTypes)},
                          });
}

std::optional<DocumentFault> ProjectReader::Fault() const
{
    if (!m_xml.hasError()) {
        return {};
    }
    return DocumentFault{m_xml.errorString(), m_xml.lineNumber()};
}

void ProjectReader::Stop()
{
    m_xml.raiseError();
}
