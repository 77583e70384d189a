#include "document/edits/EditGroup.h"

#include <utility>

void EditGroup::Add(std::unique_ptr<Edit> edit)
{
    if (edit->Changes()) {
        m_edits.push_back(std::move(edit));
    }
}

void EditGroup::Do(Document& document)
{
    for (const auto& edit : m_edits) {
        DoPart(*edit, document);
    }
}

void EditGroup::Undo(Document& document)
{
    for (auto it = m_edits.rbegin(); it != m_edits.rend(); ++it) {
        UndoPart(**it, document);
    }
}
