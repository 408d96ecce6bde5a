#include "host/gui/dialog_progress.h"

#include <algorithm>

#include "afx/wnd.h"

namespace {
constexpr DWORD kPatience = 300, kPause = 40;  // ms
constexpr LONG kRange = 1000;
}  // namespace

DialogProgress::DialogProgress(CWnd& owner, std::string caption, std::string message, bool large)
    : m_owner(owner), m_caption(std::move(caption)), m_message(std::move(message)), m_patience(large ? 0 : kPatience) {}

bool DialogProgress::At(unsigned __int64 done, unsigned __int64 total) {
    const DWORD now = GetTickCount();
    if (m_stopped || now - m_last < m_patience) return !m_stopped;
    m_last = now;
    m_patience = kPause;
    if (!m_bar) m_bar.Start(kRange, m_caption.c_str(), m_message.c_str(), nullptr, FALSE, &m_owner, TRUE);
    if (!m_bar) return true;
    const double part = total == 0 ? 0 : static_cast<double>(std::min(done, total)) / static_cast<double>(total);
    m_bar.Feed(static_cast<LONG>(part * kRange), nullptr, nullptr, TRUE);
    MSG message;
    m_stopped = m_bar.IsAborted() || m_owner.m_hWnd == nullptr || PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_NOREMOVE);
    return !m_stopped;
}
