#include "document/edits/BackgroundEdits.h"

#include "app/BackgroundPicture.h"
#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "document/edits/ChangeValue.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

namespace {

ProjectSettings& Settings()
{
    return ProjectSettings::Instance();
}

/// The same for files of the same bytes; empty for what is no readable file.
QByteArray Fingerprint(const QString& path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    // Opening a pipe would wait for a writer.
    const bool isRead =
        QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly) && hash.addData(&file);
    return isRead ? hash.result() : QByteArray();
}

/// A picture and how a project in the folder names it.
struct Picture
{
    QString absolutePath;
    QString name;
    QString folder;
    QByteArray fingerprint;

    bool operator==(const Picture& other) const { return absolutePath == other.absolutePath; }
};

/// Only what the user chooses makes the project modified.
class ChangePicture : public ChangeValue<Picture>
{
public:
    using ChangeValue::ChangeValue;

    void SetChosen(bool isChosen) { m_isChosen = isChosen; }
    bool SetsModified() const override { return m_isChosen; }

private:
    bool m_isChosen = true;
};

Picture PresentPicture()
{
    const ProjectSettings& settings = Settings();
    const QString path = settings.BackgroundFile().isEmpty()
                             ? QString()
                             : QFileInfo(settings.BackgroundPath()).absoluteFilePath();
    return {path, settings.BackgroundFile(), settings.Dir().absolutePath(), Fingerprint(path)};
}

bool IsCopy(const QString& path, const Picture& picture)
{
    return !picture.fingerprint.isEmpty() && Fingerprint(path) == picture.fingerprint;
}

/// A project that was saved elsewhere may have taken the picture along, and names it as before.
/// What has its name there may also be another picture.
QString NameInProject(const Picture& picture)
{
    const QDir& folder = Settings().Dir();
    const bool isNamedAlike = picture.absolutePath.isEmpty() ||
                              folder.absolutePath() == picture.folder ||
                              (!picture.name.startsWith(QLatin1String("..")) &&
                               IsCopy(folder.filePath(picture.name), picture));
    return isNamedAlike ? picture.name : BackgroundFileFrom(folder, picture.absolutePath);
}

void SetPicture(Document& document, const Picture& picture)
{
    Settings().SetBackgroundFile(NameInProject(picture));
    emit document.BackgroundPictureChanged();
}

} // namespace

std::unique_ptr<Edit> Edits::SetBackgroundPicture(const QString& path, bool setsModified)
{
    const QString absolutePath = QFileInfo(path).absoluteFilePath();
    const QDir& folder = Settings().Dir();
    const Picture picture{absolutePath, BackgroundFileFrom(folder, path), folder.absolutePath(),
                          Fingerprint(absolutePath)};
    auto edit =
        std::make_unique<ChangePicture>(Document::tr("Load background image"), Property::Discrete,
                                        EditPlace(), PresentPicture(), picture, SetPicture);
    edit->SetChosen(setsModified);
    return edit;
}

std::unique_ptr<Edit> Edits::SetBackgroundColor(const QColor& color)
{
    QColor opaque(color.rgb());
    opaque.setAlpha(Settings().BackgroundColor().alpha());
    return std::make_unique<ChangeValue<QColor>>(
        Document::tr("Change background colour"), Property::BackgroundColor, EditPlace(),
        Settings().BackgroundColor(), opaque, [](Document& document, const QColor& value) {
            Settings().SetBackgroundColor(value);
            emit document.BackgroundColorChanged();
        });
}

std::unique_ptr<Edit> Edits::SetBackgroundOpacity(int alpha)
{
    QColor color = Settings().BackgroundColor();
    color.setAlpha(alpha);
    return std::make_unique<ChangeValue<QColor>>(
        Document::tr("Change background opacity"), Property::BackgroundOpacity, EditPlace(),
        Settings().BackgroundColor(), color, [](Document& document, const QColor& value) {
            Settings().SetBackgroundColor(value);
            emit document.BackgroundColorChanged();
        });
}
