// A delegate: a subscriber's object and the function to call on it, as one value of two words.
//
//     auto told = delegate<void, COrvikConnection*, COrvikConnection::EState>::from_method<View, &View::OnState>(this);
//
// A plain value for any thread; it owns nothing, so the object must outlive its subscription. Two delegates are equal when
// both words are equal: the same object and the same function.
#pragma once

#include "platform/api.h"

template <class R, class... Args>
class delegate {
public:
    // Empty; must not be invoked.
    delegate() = default;

    // Calls (object->*Method)(args).
    template <class T, R (T::*Method)(Args...)>
    static delegate from_method(T* object) {
        return delegate(object, [](void* target, Args... args) -> R { return (static_cast<T*>(target)->*Method)(args...); });
    }

    R operator()(Args... args) const { return m_stub(m_object, args...); }

    friend bool operator==(const delegate&, const delegate&) = default;

private:
    using Stub = R (*)(void* object, Args... args);
    delegate(void* object, Stub stub) : m_object(object), m_stub(stub) {}

    void* m_object = nullptr;
    Stub m_stub = nullptr;
};
