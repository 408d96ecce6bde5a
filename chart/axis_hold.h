// Keeps an axis alive while a tracker works on it: whoever shows the axis may let it go in the middle of a drag.
// User-interface thread. A value type.
#pragma once

#include <utility>

#include "chart/unit_axis.h"

namespace orvik {

// Axes that nobody shows are not held: an axis that is not counted at all must not be deleted by the last release.
class AxisHold {
public:
    explicit AxisHold(CAxis* axis) : m_axis(dynamic_cast<CUnitAxis*>(axis)) {
        if (m_axis != nullptr && !m_axis->IsVisible()) m_axis = nullptr;
        if (m_axis != nullptr) m_axis->AddRef();
    }
    AxisHold(const AxisHold& other) : m_axis(other.m_axis) {
        if (m_axis != nullptr) m_axis->AddRef();
    }
    AxisHold& operator=(AxisHold other) {
        std::swap(m_axis, other.m_axis);
        return *this;
    }
    ~AxisHold() {
        if (m_axis != nullptr) m_axis->Release();
    }

private:
    CUnitAxis* m_axis;
};

}  // namespace orvik
