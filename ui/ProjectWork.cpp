#include "ui/ProjectWork.h"

#include "document/Document.h"
#include "ui/QuillmapWindow.h"
#include "ui/ZonesBox.h"

#include <QAbstractItemDelegate>
#include <QAbstractItemView>

ProjectWork::ProjectWork(const EditorParts& parts)
    : m_parts(parts)
{
}

void ProjectWork::FinishEntries()
{
    const auto boxes = m_parts.window.findChildren<ZonesBox*>();
    for (ZonesBox* box : boxes) {
        box->CommitPending();
    }
    const auto views = m_parts.window.findChildren<QAbstractItemView*>();
    for (QAbstractItemView* view : views) {
        if (QWidget* editor = view->indexWidget(view->currentIndex())) {
            emit view->itemDelegate()->commitData(editor);
            emit view->itemDelegate()->closeEditor(editor);
        }
    }
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
    m_work.FinishEntries();
    m_work.Begin(kind);
}

ProjectWork::Scope::~Scope()
{
    m_work.Begin(m_before);
}
