#include "ui/FileDrops.h"

#include "app/Log.h"
#include "document/Document.h"
#include "ui/ProjectActions.h"
#include "ui/QuillmapWindow.h"
#include "ui_QuillmapWindow.h"

#include <QApplication>
#include <QDialog>
#include <QDockWidget>
#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QTimer>
#include <QUrl>

namespace {

const QString OfferKey = QStringLiteral("dropped picture");

/// Docks that float have windows of their own, and so have dialogs.
bool IsPartOf(const QWidget& window, const QWidget* widget)
{
    while (widget && widget != &window && !qobject_cast<const QDialog*>(widget)) {
        widget = widget->parentWidget();
    }
    return widget == &window;
}

/// The path of the only file, or none.
QString FileOf(const QMimeData& data)
{
    const QList<QUrl> urls = data.urls();
    return urls.size() == 1 ? urls.first().toLocalFile() : QString();
}

} // namespace

FileDrops::FileDrops(const EditorParts& parts, ProjectActions& actions)
    : m_parts(parts)
    , m_actions(actions)
{
    parts.window.setAcceptDrops(true);
    const QList<QDockWidget*> docks = parts.window.findChildren<QDockWidget*>();
    for (QDockWidget* dock : docks) {
        dock->setAcceptDrops(true);
    }
    QCoreApplication::instance()->installEventFilter(this);
    // The offer is about the project that was open then.
    connect(&parts.document, &Document::FilesNoted, this, [this] {
        if (m_parts.document.Path().isEmpty()) {
            m_parts.form.barNotice->Withdraw(OfferKey);
        }
    });
}

/// The widgets never see these events: the map would accept any, and a line of text would take a
/// file's name.
bool FileDrops::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::DragEnter && event->type() != QEvent::DragMove &&
        event->type() != QEvent::Drop) {
        return false;
    }
    auto* drop = static_cast<QDropEvent*>(event);
    if (!IsPartOf(m_parts.window, qobject_cast<QWidget*>(watched)) || !drop->mimeData() ||
        !drop->mimeData()->hasUrls()) {
        return false;
    }
    Answer(*drop);
    return true;
}

bool FileDrops::IsFree() const
{
    // The window itself is modal, too.
    return !m_parts.document.IsBusy() && !qobject_cast<QDialog*>(QApplication::activeModalWidget());
}

FileDrops::Kind FileDrops::KindOf(const QString& path) const
{
    const QFileInfo file(path);
    const QString suffix = file.suffix().toLower();
    if (path.isEmpty() || !file.isFile()) {
        return Kind::Refused;
    }
    if (suffix == QLatin1String("xml")) {
        return Kind::Project;
    }
    static const QStringList pictures{QStringLiteral("png"), QStringLiteral("bmp"),
                                      QStringLiteral("jpg")};
    return pictures.contains(suffix) && m_parts.form.actionLoadWorld->isEnabled() ? Kind::Picture
                                                                                  : Kind::Refused;
}

void FileDrops::Answer(QDropEvent& event)
{
    const QString path = FileOf(*event.mimeData());
    const Kind kind = IsFree() ? KindOf(path) : Kind::Refused;
    if (kind == Kind::Refused) {
        event.ignore();
        return;
    }
    // Were it a move, the program that the file comes from would remove it.
    event.setDropAction(Qt::CopyAction);
    event.accept();
    if (event.type() == QEvent::Drop) {
        // That program waits until the drop has been handled.
        QTimer::singleShot(0, this, [this, kind, path] {
            if (kind == Kind::Project) {
                Load(path);
            } else {
                Offer(path);
            }
        });
    }
}

void FileDrops::Load(const QString& path)
{
    if (IsFree()) {
        m_parts.window.activateWindow();
        m_actions.LoadFrom(path);
    }
}

void FileDrops::Offer(const QString& path)
{
    m_parts.form.barNotice->Show(
        {OfferKey,
         tr("Use '%1' as background?").arg(QFileInfo(path).fileName()),
         {{QStringLiteral("btnNoticeUseBackground"), tr("Use as background"),
           [this, path] { return UseAsBackground(path); }}}});
}

/// Returns false when it is not possible now.
bool FileDrops::UseAsBackground(const QString& path)
{
    if (!IsFree() || !m_parts.form.actionLoadWorld->isEnabled()) {
        return false;
    }
    if (QFileInfo(path).isFile()) {
        m_actions.LoadWorldImageFile(path, true);
    } else {
        LogError(QStringLiteral("Failed to open file '%1' for reading.").arg(path));
    }
    return true;
}
