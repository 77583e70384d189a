#include "document/edits/EditGroup.h"

#include <algorithm>
#include <utility>

void EditGroup::Add(std::unique_ptr<Edit> edit)
{
    if (edit->Changes()) {
        m_edits.push_back(std::move(edit));
    }
}

bool EditGroup::Holds(const Edit& other) const
{
    return std::any_of(m_edits.begin(), m_edits.end(),
                       [&](const auto& edit) { return edit->Holds(other); });
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
