#include "document/Edit.h"

#include "document/Document.h"

#include <QScopedValueRollback>

Edit::Edit(const QString& text)
    : QUndoCommand(text)
{
}

void Edit::Forget()
{
    m_isForgotten = true;
    setText(Document::tr("%1 (no longer kept)").arg(text()));
}

void Edit::undo()
{
    const QScopedValueRollback<bool> applying(m_document->m_isApplying, true);
    if (!m_isForgotten) {
        Undo(*m_document);
        m_document->NotePlace(Place());
    }
}

void Edit::redo()
{
    const QScopedValueRollback<bool> applying(m_document->m_isApplying, true);
    if (!m_isForgotten) {
        Do(*m_document);
        m_document->NotePlace(Place());
    }
}
