#pragma once

#include "document/Edit.h"

#include <memory>
#include <vector>

/// Several edits that are one step. When one of them fails, none is carried out.
class EditGroup : public Edit
{
public:
    using Edit::Edit;

    /// Edits that change nothing are left out.
    void Add(std::unique_ptr<Edit> edit);
    void SetPlace(const EditPlace& place) { m_place = place; }

    bool Changes() const override { return !m_edits.empty(); }
    EditPlace Place() const override { return m_place; }
    bool Holds(const Edit& other) const override;

protected:
    void Do(Document& document) override;
    void Undo(Document& document) override;

private:
    std::vector<std::unique_ptr<Edit>> m_edits;
    EditPlace m_place;
};
