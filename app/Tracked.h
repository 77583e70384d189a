#pragma once

#include <memory>

/// What a Tracked pointer asks whether its object is still alive. Each object that is tracked has
/// one as a member.
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

/// A pointer that does not own and becomes null when its object is destroyed. T has a function
/// GetLifetime(); the object and the pointer live on one thread.
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
