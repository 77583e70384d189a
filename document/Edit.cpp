#include "document/Edit.h"

#include "document/Document.h"
#include "document/LiveLayers.h"

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

bool Edit::DoPart(Edit& part, Document& document)
{
    part.m_hasFailed = false;
    part.Do(document);
    return !part.m_hasFailed;
}

bool Edit::UndoPart(Edit& part, Document& document)
{
    part.m_hasFailed = false;
    part.Undo(document);
    return !part.m_hasFailed;
}

void Edit::undo()
{
    const QScopedValueRollback<bool> applying(m_document->m_isApplying, true);
    if (m_isForgotten) {
        return;
    }
    if (UndoPart(*this, *m_document)) {
        m_document->NotePlace(Place());
    } else {
        m_document->LoseUndo(*this);
    }
    // A jump in the history passes states in which layers begin or cease to be live.
    m_document->Live().Settle();
}

void Edit::redo()
{
    const QScopedValueRollback<bool> applying(m_document->m_isApplying, true);
    if (m_isForgotten) {
        return;
    }
    if (DoPart(*this, *m_document)) {
        m_document->NotePlace(Place());
    } else {
        m_document->LoseRedo(*this);
    }
    m_document->Live().Settle();
}
