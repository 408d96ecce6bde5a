#include "host/gui/tool_tips.h"

#include "platform/dpi.h"

namespace {
constexpr LONG kWidth = 360;  // pixels at 96 dots an inch, of the longest line
}  // namespace

ToolTips::~ToolTips() {
    if (m_tips != nullptr && ::IsWindow(m_tips)) ::DestroyWindow(m_tips);
}

void ToolTips::Create(HWND root) {
    INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_BAR_CLASSES};
    ::InitCommonControlsEx(&classes);
    m_there.clear();
    m_root = root;
    m_tips = ::CreateWindowExA(WS_EX_TOPMOST | WS_EX_TOOLWINDOW, TOOLTIPS_CLASSA, "", WS_POPUP | TTS_NOPREFIX, 0, 0, 0, 0, root,
                               nullptr, ::GetModuleHandleA(nullptr), nullptr);
}

void ToolTips::Send(UINT message, HWND window, UINT_PTR id, const Tip& tip, UINT flags) {
    TTTOOLINFOA tool = {};
    tool.cbSize = TTTOOLINFOA_V2_SIZE;
    tool.uFlags = TTF_SUBCLASS | flags;
    tool.hwnd = window;
    tool.uId = id;
    tool.rect = tip.place;
    std::string text = tip.text;
    tool.lpszText = text.data();
    // As wide as the screen that the window is on now wants it; without a width there would be one line.
    ::SendMessageA(m_tips, TTM_SETMAXTIPWIDTH, 0, OrvikScale(kWidth, OrvikDpiOf(m_root)));
    ::SendMessageA(m_tips, message, 0, reinterpret_cast<LPARAM>(&tool));
}

void ToolTips::Put(HWND window, UINT_PTR id, const RECT& place, const std::string& text) {
    if (m_tips == nullptr) return;
    const auto found = m_there.find({window, id});
    if (text.empty()) {
        if (found == m_there.end()) return;
        Send(TTM_DELTOOLA, window, id, found->second, 0);
        m_there.erase(found);
    } else if (found == m_there.end()) {
        const Tip& tip = m_there.emplace(std::pair(window, id), Tip{place, text}).first->second;
        Send(TTM_ADDTOOLA, window, id, tip, 0);
    } else {
        Tip& tip = found->second;
        const bool moved = !::EqualRect(&tip.place, &place), other = tip.text != text;
        tip = {place, text};
        if (moved) Send(TTM_NEWTOOLRECTA, window, id, tip, 0);
        if (other) Send(TTM_UPDATETIPTEXTA, window, id, tip, 0);
    }
}

void ToolTips::PutOn(HWND control, const std::string& text) {
    if (m_tips == nullptr) return;
    const HWND field = ::GetWindow(control, GW_CHILD);
    for (const HWND each : {control, field}) {
        if (each == nullptr) continue;
        const auto id = reinterpret_cast<UINT_PTR>(each);
        Send(TTM_ADDTOOLA, m_root, id, m_there[{m_root, id}] = Tip{{}, text}, TTF_IDISHWND);
    }
}

void ToolTips::Relay(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (m_tips == nullptr) return;
    MSG relayed = {};
    relayed.hwnd = window;
    relayed.message = message;
    relayed.wParam = wParam;
    relayed.lParam = lParam;
    relayed.time = ::GetTickCount();
    ::GetCursorPos(&relayed.pt);
    ::SendMessageA(m_tips, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&relayed));
}

std::string ToolTips::TextAt(HWND window, UINT_PTR id) const {
    const auto found = m_there.find({window, id});
    return found == m_there.end() ? std::string() : found->second.text;
}
