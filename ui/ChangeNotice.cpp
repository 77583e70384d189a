#include "ui/ChangeNotice.h"

#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "ui/NameList.h"
#include "ui/ProjectActions.h"
#include "ui_QuillmapWindow.h"

#include <QFileInfo>

#include <algorithm>

namespace {

const QString NoticeKey = QStringLiteral("foreign changes");

bool IsBitmap(const QString& path)
{
    const QString layers = QStringLiteral("layers");
    return QFileInfo(path).path() == ProjectSettings::Instance().Dir().filePath(layers);
}

QString NamesOf(const QStringList& bitmaps)
{
    QStringList names;
    for (const QString& path : bitmaps) {
        names.append(QFileInfo(path).completeBaseName());
    }
    names.sort();
    return NameList(names);
}

/// One sentence for each document and picture, and one for all bitmaps. verb: "changed".
QStringList Sentences(const QStringList& paths, const QString& verb)
{
    QStringList sentences;
    QStringList bitmaps;
    for (const QString& path : paths) {
        if (IsBitmap(path)) {
            bitmaps.append(path);
        } else {
            sentences.append(ChangeNotice::tr("'%1' was %2 by another program.")
                                 .arg(ShortText(QFileInfo(path).fileName()), verb));
        }
    }
    sentences.sort();
    if (bitmaps.size() == 1) {
        sentences.append(ChangeNotice::tr("1 bitmap was %1 by another program: %2.")
                             .arg(verb, NamesOf(bitmaps)));
    } else if (!bitmaps.isEmpty()) {
        sentences.append(ChangeNotice::tr("%1 bitmaps were %2 by another program: %3.")
                             .arg(QString::number(bitmaps.size()), verb, NamesOf(bitmaps)));
    }
    return sentences;
}

} // namespace

ChangeNotice::ChangeNotice(const EditorParts& parts, ProjectActions& actions)
    : m_parts(parts)
    , m_actions(actions)
    , m_watch(parts.document)
{
    connect(&m_watch, &FileWatch::Changed, this, &ChangeNotice::Show);
    connect(&parts.document, &Document::FilesNoted, this,
            [this] { m_parts.form.barNotice->Withdraw(NoticeKey); });
}

void ChangeNotice::Show(const ForeignChanges& changes)
{
    if (changes.IsEmpty()) {
        m_parts.form.barNotice->Withdraw(NoticeKey);
        return;
    }
    Notice notice{
        NoticeKey,
        (Sentences(changes.changed, tr("changed")) + Sentences(changes.removed, tr("removed")))
            .join(QLatin1Char(' ')),
        {}};
    // Without its document the project cannot be loaded, and without a bitmap it would lose a
    // layer.
    const bool losesData =
        std::any_of(changes.removed.begin(), changes.removed.end(), [this](const QString& path) {
            return path == m_parts.document.Path() || IsBitmap(path);
        });
    if (!changes.changed.isEmpty() && !losesData) {
        notice.buttons.push_back(
            {QStringLiteral("btnNoticeReload"), tr("Reload"), [this] { return Reload(); }});
    }
    m_parts.form.barNotice->Show(notice);
}

/// Returns whether the project was loaded. One that was only viewed stays so.
bool ChangeNotice::Reload()
{
    const bool isEdited = m_parts.form.actionSave->isEnabled();
    const QString path = m_parts.document.Path();
    return isEdited ? m_actions.LoadFrom(path) : m_actions.StartWith(path);
}
