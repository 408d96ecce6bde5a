#include "toolkit/disabled_owner.h"

namespace orvik::detail {

void DisabledOwner::Disable(CWnd* owner) {
    if (owner == nullptr || owner->m_hWnd == nullptr || !owner->IsWindowEnabled()) return;
    m_window = owner->m_hWnd;
    ::EnableWindow(m_window, FALSE);
}

void DisabledOwner::Enable() {
    if (m_window == nullptr) return;
    // The owner may have been destroyed meanwhile, and the dialog with it.
    if (::IsWindow(m_window)) ::EnableWindow(m_window, TRUE);
    m_window = nullptr;
}

}  // namespace orvik::detail
