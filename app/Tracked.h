#pragma once

#include <memory>

/// Tells Tracked pointers whether their object still exists. Each object that is tracked has one as
/// a member.
class Lifetime
{
public:
    Lifetime() = default;
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;

private:
    template <typename T>
    friend class Tracked;

    std::shared_ptr<char> m_token = std::make_shared<char>();
};

/// A pointer that does not own its object and becomes null when the object is destroyed. T needs a
/// function GetLifetime(). The object and the pointer must be used on the same thread.
template <typename T>
class Tracked
{
public:
    Tracked() = default;
    Tracked(T* object)
        : m_object(object)
    {
        if (object) {
            m_token = object->GetLifetime().m_token;
        }
    }

    T* Get() const { return m_token.expired() ? nullptr : m_object; }
    operator T*() const { return Get(); }
    T* operator->() const { return Get(); }

private:
    T* m_object = nullptr;
    std::weak_ptr<char> m_token;
};
