#pragma once

#include <QDateTime>
#include <QImage>
#include <QLatin1String>
#include <QString>
#include <QStringList>

#include <optional>
#include <system_error>

struct StoredProject;

enum class VersionKind
{
    /// What was on disk before a save replaced it.
    Saved,
    /// Unsaved work that the user agreed to lose.
    Discarded,
    /// Bitmaps of another project, which a save replaced.
    Replaced,
};

/// What a version's folder holds.
namespace VersionFiles {
inline const QLatin1String Info("version.json");
inline const QLatin1String Document("document.xml");
/// Only when the project has computed layers.
inline const QLatin1String Formulas("formulas.xml");
/// The bitmaps' folder.
inline const QLatin1String Layers("layers");
inline const QLatin1String Journal("journal");
inline const QLatin1String Picture("picture.png");

/// Fails with file_exists when there is something at the new path.
std::error_code Copy(const QString& from, const QString& to);
} // namespace VersionFiles

/// An earlier state of a project: a folder with "document.xml", the bitmaps of its layers as plain
/// files in "layers", the formulas of computed layers in "formulas.xml", and "version.json", which
/// tells what it is. Unsaved work is a folder
/// "journal" instead of document and layers.
class Version
{
public:
    /// Nothing when the folder holds no version, or a damaged one.
    static std::optional<Version> Read(const QString& folder);
    /// The text of "version.json".
    static QByteArray InfoText(VersionKind kind, const QDateTime& time, const QString& path);
    /// The file of a layer's bitmap, below the version's folder. No name leads out of it.
    static QString BitmapFile(const QString& layer);

    VersionKind Kind() const { return m_kind; }
    /// When it was replaced or discarded.
    const QDateTime& Time() const { return m_time; }
    /// The size of all its files.
    qint64 Bytes() const { return m_bytes; }
    /// The project's document; empty for a project that was never saved.
    const QString& Path() const { return m_path; }
    /// The project's name as the title shows it; empty for a project that was never saved.
    QString Name() const;
    const QString& Folder() const { return m_folder; }
    /// The files of its bitmaps, without their folder.
    QStringList Bitmaps() const;
    /// Document, formulas and bitmaps.
    int FileCount() const;

    /// To open it; without a text when it cannot be read any more. A malformed document is given up
    /// to its fault. Layers without a readable bitmap are left out when it is opened.
    StoredProject Stored() const;
    /// The picture that was kept for it; null for none.
    QImage Picture() const;
    void KeepPicture(const QImage& picture) const;
    /// Whether it consists of a document and bitmaps, which can be copied.
    bool HasFiles() const { return m_kind != VersionKind::Discarded; }
    /// Copies document and bitmaps byte for byte into a folder, which must not exist yet. Returns
    /// the reason of a failure, in the system's words; empty for none.
    QString CopyFilesTo(const QString& folder) const;

private:
    explicit Version(const QString& folder);
    QString PathOf(QLatin1String file) const;

    QString m_folder;
    VersionKind m_kind = VersionKind::Saved;
    QDateTime m_time;
    QString m_path;
    qint64 m_bytes = 0;
};
