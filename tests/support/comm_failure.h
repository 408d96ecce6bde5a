// What a call of a line or a logger fails with.
#pragma once

#include <string>

#include "comm/comm_exception.h"

struct CommFailure {
    int code = 0;  // 0: it does not fail
    std::string text;
    bool operator==(const CommFailure&) const = default;
};

template <class Call>
CommFailure FailureOf(Call call) {
    try {
        call();
        return {};
    } catch (CCommException* failure) {
        const CommFailure told{failure->m_nError, failure->m_strError.GetString()};
        failure->Delete();
        return told;
    }
}
