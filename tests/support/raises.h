// Exceptions that are raised as pointers: caught by their class, looked at and deleted.
#pragma once

#include <functional>

// What `look` makes of the exception of that class that the call raises; `none` if it raises none.
template <class Exception, class Result>
Result Caught(const std::function<void()>& call, Result none, const std::function<Result(const Exception&)>& look) {
    try {
        call();
    } catch (Exception* failure) {
        const Result result = look(*failure);
        failure->Delete();
        return result;
    }
    return none;
}

template <class Exception>
bool Raises(const std::function<void()>& call) {
    return Caught<Exception, bool>(call, false, [](const Exception&) { return true; });
}

// The cause that the exception tells, or -1.
template <class Exception>
int CauseOf(const std::function<void()>& call) {
    return Caught<Exception, int>(call, -1, [](const Exception& failure) { return failure.m_cause; });
}
