#include "tool/FileKind.h"

#include "tool/Console.h"
#include "tool/FieldBands.h"
#include "tool/InputFiles.h"
#include "tool/LayerBitmap.h"

#include <QFile>
#include <QXmlStreamReader>

namespace {

/// The name of the root decides. If it is unknown, the elements below it decide.
bool FindXmlKind(QFile& file, FileKind& kind)
{
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement()) {
            continue;
        }
        if (xml.name() == QLatin1String("qm-config") || xml.name() == QLatin1String("global")) {
            kind = FileKind::Project;
            return true;
        }
        if (xml.name() == QLatin1String("territory-type")) {
            kind = FileKind::TerritoryType;
            return true;
        }
        if (xml.name() == QLatin1String("areas") || xml.name() == QLatin1String("usage")) {
            kind = FileKind::AreaTypes;
            return true;
        }
    }
    return false;
}

/// Looks at the content before the name: only an area map has exactly the length that its sizes
/// require, and only a document has one of these elements. The first byte does not decide, because
/// a map or a bitmap may begin with "<" too.
bool FindFileKind(QFile& file, FileKind& kind)
{
    const QString path = file.fileName();
    if (MapFields().TryOpen(path).isEmpty()) {
        kind = FileKind::Map;
        return true;
    }
    if (FindXmlKind(file, kind)) {
        return true;
    }
    // The suffix decides what a broken file should have been.
    if (path.endsWith(QLatin1String(".map"), Qt::CaseInsensitive)) {
        kind = FileKind::Map;
        return true;
    }
    kind = FileKind::Bitmap;
    return path.endsWith(QLatin1String(".tga"), Qt::CaseInsensitive) ||
           LayerBitmap(path).GetProblem() == LayerBitmap::Problem::None;
}

} // namespace

bool FindKind(const QString& path, FileKind& kind)
{
    QFile file(path);
    QString error = OpenInput(file);
    if (error.isEmpty()) {
        if (FindFileKind(file, kind)) {
            return true;
        }
        error =
            QStringLiteral("is no project, map, layer bitmap, territory type or area types file.");
    }
    Console::PrintError(path, error);
    return false;
}
