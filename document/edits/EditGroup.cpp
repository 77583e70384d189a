#include "document/edits/EditGroup.h"

#include <algorithm>
#include <iterator>
#include <utility>

void EditGroup::Add(std::unique_ptr<Edit> edit)
{
    if (edit->Changes()) {
        m_edits.push_back(std::move(edit));
    }
}

bool EditGroup::Holds(const Edit& other) const
{
    return Edit::Holds(other) ||
           std::any_of(m_edits.begin(), m_edits.end(),
                       [&other](const auto& edit) { return edit->Holds(other); });
}

void EditGroup::Do(Document& document)
{
    const auto failed = std::find_if(m_edits.begin(), m_edits.end(), [&document](const auto& edit) {
        return !DoPart(*edit, document);
    });
    if (failed != m_edits.end()) {
        std::for_each(std::make_reverse_iterator(failed), m_edits.rend(),
                      [&document](const auto& edit) { UndoPart(*edit, document); });
        Fail();
    }
}

void EditGroup::Undo(Document& document)
{
    const auto failed =
        std::find_if(m_edits.rbegin(), m_edits.rend(),
                     [&document](const auto& edit) { return !UndoPart(*edit, document); });
    if (failed != m_edits.rend()) {
        std::for_each(failed.base(), m_edits.end(),
                      [&document](const auto& edit) { DoPart(*edit, document); });
        Fail();
    }
}
