#include "ui/ProjectWork.h"

#include "document/Document.h"
#include "ui/QuillmapWindow.h"
#include "ui/ZonesBox.h"

#include <QAbstractItemDelegate>
#include <QAbstractItemView>
#include <QLineEdit>

bool FinishEntries(const QuillmapWindow& window)
{
    bool wasTyped = false;
    const auto boxes = window.findChildren<ZonesBox*>();
    for (ZonesBox* box : boxes) {
        wasTyped |= box->CommitPending();
    }
    const auto views = window.findChildren<QAbstractItemView*>();
    for (QAbstractItemView* view : views) {
        if (QWidget* editor = view->indexWidget(view->currentIndex())) {
            const auto* line = qobject_cast<QLineEdit*>(editor);
            wasTyped |= line && line->isModified();
            emit view->itemDelegate()->commitData(editor);
            emit view->itemDelegate()->closeEditor(editor);
        }
    }
    return wasTyped;
}

ProjectWork::ProjectWork(const EditorParts& parts)
    : m_parts(parts)
{
}

void ProjectWork::Begin(Kind kind)
{
    m_kind = kind;
    m_parts.document.SetFilesBusy(kind != Kind::None);
}

ProjectWork::Scope::Scope(ProjectWork& work, Kind kind)
    : m_work(work)
    , m_before(work.m_kind)
{
    FinishEntries(m_work.m_parts.window);
    m_work.Begin(kind);
}

ProjectWork::Scope::~Scope()
{
    m_work.Begin(m_before);
}
