#include "tool/FileKind.h"

#include "tool/Console.h"
#include "tool/FieldBands.h"
#include "tool/LayerBitmap.h"
#include "tool/ProjectData.h"

#include <QFile>
#include <QXmlStreamReader>

namespace {

bool LooksLikeXml(QFile& file)
{
    QByteArray begin = file.peek(64);
    for (const char* mark : {"\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF"}) {
        if (begin.startsWith(mark)) {
            return true;
        }
    }
    return begin.trimmed().startsWith('<');
}

/// The root's name decides, and for a root of any other name what is below it.
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

bool FindBinaryKind(const QString& path, FileKind& kind)
{
    const bool isMap = path.endsWith(QLatin1String(".map"), Qt::CaseInsensitive);
    const bool isBitmap = path.endsWith(QLatin1String(".tga"), Qt::CaseInsensitive);
    if (isMap || (!isBitmap && MapFields().Open(path).isEmpty())) {
        kind = FileKind::Map;
        return true;
    }
    if (isBitmap || LayerBitmap(path).GetProblem() == LayerBitmap::Problem::None) {
        kind = FileKind::Bitmap;
        return true;
    }
    return false;
}

} // namespace

bool FindKind(const QString& path, FileKind& kind)
{
    QString error = ReadingError(path);
    QFile file(path);
    if (error.isEmpty() && file.open(QIODevice::ReadOnly)) {
        const bool isKnown =
            LooksLikeXml(file) ? FindXmlKind(file, kind) : FindBinaryKind(path, kind);
        if (isKnown) {
            return true;
        }
        error =
            QStringLiteral("is no project, map, layer bitmap, territory type or area types file.");
    }
    Console::PrintError(path, error);
    return false;
}
