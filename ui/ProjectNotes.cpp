#include "ui/ProjectNotes.h"

#include <QSettings>

namespace {

/// Not the settings of the window, which are written only when it is closed.
QSettings Settings()
{
    return QSettings(QStringLiteral("Halvern Works"), QStringLiteral("Quillmap"));
}

QString Key(const QString& group, const QString& path)
{
    // A slash would begin a group.
    return group + QLatin1Char('/') + QString::fromLatin1(path.toUtf8().toPercentEncoding());
}

} // namespace

QStringList ProjectNotes::Read(const QString& group, const QString& path)
{
    return Settings().value(Key(group, path)).toStringList();
}

void ProjectNotes::Write(const QString& group, const QString& path, const QStringList& texts)
{
    // They are written when the object dies.
    QSettings settings = Settings();
    if (texts.isEmpty()) {
        settings.remove(Key(group, path));
    } else {
        settings.setValue(Key(group, path), texts);
    }
}
