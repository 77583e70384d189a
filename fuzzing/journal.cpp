// Journals: the log, the session file and the document in one input.

#include "app/ProjectReader.h"
#include "app/ProjectSettings.h"
#include "document/journal/JournalFormat.h"
#include "document/journal/JournalReader.h"
#include "fuzzing/support/Fuzz.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/TargaCodec.h"

#include <QApplication>
#include <QBuffer>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

namespace {

constexpr int CopiedLayer = 3;
constexpr char CopiedBase = 1;
/// Of a layer record: id and kind.
constexpr int BaseHeaderLength = 5;

QByteArray Hash(const QByteArray& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha1);
}

/// A byte that says whether hashes are corrected, two bytes each for the lengths of session and
/// document, these two, and the log.
struct Input
{
    explicit Input(QByteArray bytes)
    {
        bytes += QByteArray(5 - qMin(bytes.size(), 5), '\0');
        isCorrected = (bytes[0] & 1) != 0;
        const int sessionLength = qFromLittleEndian<quint16>(bytes.constData() + 1);
        const int textLength = qFromLittleEndian<quint16>(bytes.constData() + 3);
        session = bytes.mid(5, sessionLength);
        text = bytes.mid(5 + sessionLength, textLength);
        log = bytes.mid(5 + sessionLength + textLength);
    }

    bool isCorrected;
    QByteArray session;
    QByteArray text;
    QByteArray log;
};

/// Gives the log the hashes of what it holds, which no mutation would find.
void Correct(Input& input, const QByteArray& bitmap)
{
    QByteArray& log = input.log;
    qint64 since = 0;
    for (qint64 at = 0; at + journal::RecordHeaderLength <= log.size();) {
        const qint64 content = at + journal::RecordHeaderLength;
        const qint64 end = content + qFromLittleEndian<quint32>(log.constData() + at + 1);
        const auto put = [&](qint64 place, const QByteArray& bytes) {
            if (place >= content && place + bytes.size() <= end && end <= log.size()) {
                log.replace(static_cast<int>(place), bytes.size(), bytes);
            }
        };
        if (log[static_cast<int>(at)] == journal::CommitRecord) {
            put(content + 4, Hash(input.text));
            const qint64 hash = end - journal::HashLength;
            const QByteArray hashed =
                log.mid(static_cast<int>(since), static_cast<int>(qMax(hash - since, qint64(0))));
            put(hash, Hash(input.session + hashed));
            since = end;
        } else if (log[static_cast<int>(at)] == journal::LayerRecord && content < log.size() - 4 &&
                   log[static_cast<int>(content) + 4] == CopiedBase) {
            QByteArray length(8, '\0');
            qToLittleEndian(static_cast<quint64>(bitmap.size()), length.data());
            put(content + BaseHeaderLength, length + Hash(bitmap));
        }
        at = end;
    }
}

void Write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    Require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(), "no file");
}

QByteArray Bitmap()
{
    QImage mask(8, 8, QImage::Format_Indexed8);
    mask.fill(77);
    QByteArray bytes;
    raster::EncodeTarga(mask, raster::TargaPacking::RunLength, [&](const char* more, qint64 count) {
        bytes.append(more, static_cast<int>(count));
        return true;
    });
    return bytes;
}

QStringList Names(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

/// Opens what is restored as the editor does.
void OpenProject(StoredProject stored)
{
    ProjectSettings& settings = ProjectSettings::Instance();
    settings.SetFlagTypes({});
    settings.SetSizes(8, 8, 80, 80);
    QBuffer device(&stored.text);
    device.open(QIODevice::ReadOnly);
    LayerList layers;
    ProjectReader reader(device);
    reader.Read({[](QXmlStreamReader&) {},
                 [&](QXmlStreamReader& xml) { return layers.ReadXml(xml, stored.masks); },
                 [](QXmlStreamReader&) { return true; }});
    const QVector<Layer*> read = layers.Layers();
    for (const Layer* layer : read) {
        Require(layer->Image().size() == settings.LayerSize(), "a layer of another size");
    }
}

void CheckMasks(const JournalReader& reader)
{
    constexpr int maxPixels = 1 << 18;
    constexpr int maxLayers = 20;
    const QSize size = reader.LayerSize();
    if (qint64(size.width()) * size.height() > maxPixels) {
        return;
    }
    reader.HasProjectChanged();
    const QVector<int> missing = reader.MissingMasks();
    for (int row = 0; row < qMin(reader.LayerCount(), maxLayers); ++row) {
        const QImage mask = reader.Mask(row);
        Require(mask.isNull() || mask.size() == size, "a mask of another size");
        Require(mask.isNull() || !missing.contains(row), "a mask that is missing");
    }
    OpenProject(reader.Stored());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    MakeApplicationOnce<QApplication>();
    static const QTemporaryDir outside;
    static const QString folder = outside.filePath(QStringLiteral("journal"));
    static const QByteArray bitmap = Bitmap();
    static const bool isMade = [] {
        QDir().mkdir(folder);
        Write(journal::BasePath(folder, CopiedLayer), bitmap);
        return true;
    }();
    Q_UNUSED(isMade)

    Input input(QByteArray(reinterpret_cast<const char*>(bytes), static_cast<int>(count)));
    if (input.isCorrected) {
        Correct(input, bitmap);
    }
    Write(journal::SessionPath(folder), input.session);
    Write(journal::TextPath(folder, 1), input.text);
    Write(journal::LogPath(folder), input.log);
    const QStringList names = Names(folder);
    {
        QString reason;
        const auto reader = JournalReader::Open(folder, &reason);
        Require(reader.has_value() == reason.isEmpty(), "a reason and a journal, or neither");
        if (reader) {
            Require(reader->Text() == input.text, "another document");
            CheckMasks(*reader);
        }
    }
    Require(Names(folder) == names && Names(outside.path()).size() == 1, "something was written");
    DeleteLater();
    return 0;
}
