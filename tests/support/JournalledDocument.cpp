#include "tests/support/JournalledDocument.h"

#include "app/ProjectDocument.h"
#include "app/ProjectFile.h"
#include "document/Formulas.h"
#include "document/edits/PaintMask.h"
#include "document/edits/TerritoryEdits.h"
#include "document/journal/JournalReader.h"
#include "layers/Layer.h"
#include "layers/raster/MaskDelta.h"
#include "territories/Territory.h"
#include "territories/TerritoryTypeList.h"
#include "tests/support/Files.h"

#include <QTest>
#include <QXmlStreamWriter>

#include <algorithm>

JournalledDocument::JournalledDocument()
{
    document.Do(Edits::InsertZone(*territory, {10, 20}, {}));
    for (int i = 0; i < 3; ++i) {
        Fill(*AddLayer(), {20 * i, 10, 100, 90}, static_cast<uchar>(255 - i));
    }
    [this] { QVERIFY(Save()); }();
    document.BeginHistory(true);
    journal = std::make_unique<Journal>(document);
    // As after a load.
    document.BeginHistory(true);
}

Zone* JournalledDocument::FirstZone() const
{
    return territory->Zones().first();
}

bool JournalledDocument::IsAnythingWritten() const
{
    return !FilesBelow(data.Path()).isEmpty();
}

QString JournalledDocument::Unkept()
{
    return journal->Flush() ? Difference(journal->Folder())
                            : QStringLiteral("It cannot be written.");
}

void JournalledDocument::Stroke(Layer& layer, const QRect& rect, uchar value, bool isEnded)
{
    document.SetHandBusy(true);
    QImage mask = layer.Image();
    layer.TakePaintedMask({});
    raster::MaskDelta delta;
    delta.Touch(mask, rect);
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        std::fill_n(mask.scanLine(y) + rect.left(), rect.width(), value);
    }
    layer.TakePaintedMask(mask);
    mask = {};
    if (!isEnded) {
        return;
    }
    document.SetHandBusy(false);
    delta.DropUnchanged(layer.Image());
    document.Do(
        std::make_unique<PaintMask>(QStringLiteral("Stroke"), layer, std::move(delta), rect));
}

bool JournalledDocument::Save()
{
    document.SetFilesBusy(true);
    const ProjectParts parts{-1,
                             [this](QXmlStreamWriter& xml) { document.GetBrush().WriteXml(xml); },
                             {},
                             document.Layers(),
                             document.Types()};
    const bool isSaved = SaveProjectTo(DocumentPath(), parts);
    if (isSaved) {
        document.SetPath(DocumentPath());
        document.SetSaved();
    }
    document.SetFilesBusy(false);
    return isSaved;
}

QByteArray JournalledDocument::Text()
{
    QByteArray text;
    QXmlStreamWriter xml(&text);
    WriteProjectText(xml, {-1, ProjectSettings::Instance(),
                           [this](QXmlStreamWriter& brush) { document.GetBrush().WriteXml(brush); },
                           document.Layers().Records(), document.Types().Records(),
                           document.LayerFormulas().Records()});
    return text;
}

QString JournalledDocument::Difference(const QString& folder)
{
    QString reason;
    const auto reader = JournalReader::Open(folder, &reason);
    if (!reader) {
        return QStringLiteral("it cannot be read: %1").arg(reason);
    }
    if (reader->Text() != Text()) {
        return QStringLiteral("the text is\n%1\ninstead of\n%2")
            .arg(QString::fromUtf8(reader->Text()), QString::fromUtf8(Text()));
    }
    const QVector<Layer*> layers = document.Layers().Layers();
    if (reader->LayerCount() != layers.size()) {
        return QStringLiteral("the number of layers");
    }
    for (int row = 0; row < layers.size(); ++row) {
        if (reader->Mask(row) != layers[row]->Image()) {
            return QStringLiteral("the mask of %1").arg(layers[row]->text());
        }
    }
    const bool isSame = reader->ProjectPath() == document.Path() &&
                        reader->LayerSize() == ProjectSettings::Instance().LayerSize();
    return isSame ? QString() : QStringLiteral("the header");
}
