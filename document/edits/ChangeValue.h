#pragma once

#include "document/Edit.h"

#include <functional>
#include <utility>

/// What a ChangeValue edit changes. Edits of one property of one object, made in one gesture, are
/// one step.
enum class Property
{
    /// A property that is changed at one go, such as a check mark: each change is a step.
    Discrete,
    LayerColor,
    LayerOpacity,
    TerritoryColor,
    TerritoryOpacity,
    ZoneRadius,
    ZoneStaticMin,
    ZoneStaticMax,
    ZoneDynamicMin,
    ZoneDynamicMax,
    ZoneUsage,
    ZoneEvent,
    ZoneDepth,
    BackgroundColor,
    BackgroundOpacity,
};

/// Replaces one value of one object by another.
template <typename Value>
class ChangeValue : public Edit
{
public:
    /// Puts the value in and announces it.
    using Set = std::function<void(Document&, const Value&)>;

    ChangeValue(const QString& text, Property property, const EditPlace& place, Value before,
                Value after, Set set)
        : Edit(text)
        , m_property(property)
        , m_place(place)
        , m_before(std::move(before))
        , m_after(std::move(after))
        , m_set(std::move(set))
    {
    }

    /// Sets the changed object. Objects such as zones cannot be told apart by the place alone.
    void SetObject(const void* object) { m_object = object; }

    bool Changes() const override { return !(m_before == m_after); }
    EditPlace Place() const override { return m_place; }

    int id() const override
    {
        return m_property == Property::Discrete ? NoKind
                                                : ChangeValueKinds + static_cast<int>(m_property);
    }

    bool mergeWith(const QUndoCommand* command) override
    {
        const auto& later = *static_cast<const ChangeValue*>(command);
        if (!IsSameGesture(later) || m_object != later.m_object ||
            m_place.layer != later.m_place.layer || m_place.territory != later.m_place.territory) {
            return false;
        }
        m_after = later.m_after;
        setObsolete(!Changes());
        return true;
    }

protected:
    void Do(Document& document) override { m_set(document, m_after); }
    void Undo(Document& document) override { m_set(document, m_before); }

private:
    Property m_property;
    EditPlace m_place;
    const void* m_object = nullptr;
    Value m_before;
    Value m_after;
    Set m_set;
};
