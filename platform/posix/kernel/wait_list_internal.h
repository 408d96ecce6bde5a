// What one wait is for: several objects at once.
#pragma once

#include <vector>

#include "platform/posix/kernel/wait_internal.h"
#include "platform/posix/kernel/waits.h"

namespace orvik::detail {

// One wait's objects: looked up, held, and asked.
class WaitList {
public:
    // 0 or the error code.
    DWORD Take(DWORD count, const HANDLE* handles) {
        m_pins.reserve(count);
        for (DWORD i = 0; i < count; ++i) {
            m_pins.emplace_back(handles[i]);
            if (!m_pins.back()) return ERROR_INVALID_HANDLE;
            m_objects.push_back(&*m_pins.back());
        }
        return ERROR_SUCCESS;
    }

    // Under the kernel lock: whether the wait is over; then takes the signal. The result counts from WAIT_OBJECT_0.
    bool TakeSignal(bool all, DWORD& result) {
        if (all) {
            for (const Waitable* object : m_objects) {
                if (!object->IsSignalled()) return false;
            }
            for (Waitable* object : m_objects) object->Consume();
            result = WAIT_OBJECT_0;
            return !m_objects.empty();
        }
        for (size_t i = 0; i < m_objects.size(); ++i) {
            if (!m_objects[i]->IsSignalled()) continue;
            m_objects[i]->Consume();
            result = WAIT_OBJECT_0 + static_cast<DWORD>(i);
            return true;
        }
        return false;
    }
    std::span<Waitable* const> Objects() const { return m_objects; }

private:
    std::vector<Pinned<Waitable>> m_pins;
    std::vector<Waitable*> m_objects;
};

}  // namespace orvik::detail
