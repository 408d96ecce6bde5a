// "tooltips_class32": a popup that says more about what the pointer rests on. It takes neither pointer nor keys: a popup that is
// disabled is only looked at, on a screen too.
#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

#include "platform/posix/controls/control_internal.h"
#include "platform/posix/controls/flat_looks_internal.h"
#include "platform/posix/controls/tool_tip_state_internal.h"
#include "platform/posix/kernel/threads.h"
#include "platform/posix/resources/resources.h"
#include "platform/posix/window/window_internal.h"

namespace orvik::detail {
namespace {
constexpr UINT kToolTipSaw = WM_USER + 0x200;   // lParam: a MSG that the thread is about to handle
constexpr UINT kToolTipTold = WM_USER + 0x201;  // wParam: a window; lParam: a std::string for what is said of all of it
constexpr UINT_PTR kTimer = 1;
constexpr int kMarginX = 6, kMarginY = 3;

// Who wants to see what the thread's windows get: those with a tool of TTF_SUBCLASS.
thread_local std::vector<HWND> t_watchers;
thread_local HHOOK t_hook = nullptr;

LRESULT CALLBACK See(int code, WPARAM remove, LPARAM lParam) {
    // Older hooks first: what the user does becomes an ordinary message in one of them.
    const LRESULT result = CallNextHookEx(nullptr, code, remove, lParam);
    if (code == HC_ACTION && remove == PM_REMOVE) {
        const std::vector<HWND> watchers = t_watchers;
        for (const HWND each : watchers) SendMessageA(each, kToolTipSaw, 0, lParam);
    }
    return result;
}

void Watch(HWND tip) {
    if (std::find(t_watchers.begin(), t_watchers.end(), tip) != t_watchers.end()) return;
    t_watchers.push_back(tip);
    if (t_hook == nullptr) t_hook = SetWindowsHookExA(WH_GETMESSAGE, &See, nullptr, GetCurrentThreadId());
}

void WatchNoMore(HWND tip) {
    if (std::erase(t_watchers, tip) == 0 || !t_watchers.empty()) return;
    UnhookWindowsHookEx(std::exchange(t_hook, nullptr));
}

bool IsKey(UINT message) { return message == WM_KEYDOWN || message == WM_SYSKEYDOWN; }
bool IsWheel(UINT message) { return message == WM_MOUSEWHEEL || message == WM_MOUSEHWHEEL; }

class ToolTip final : public Control {
public:
    using Control::Control;

    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam) override {
        auto* const info = reinterpret_cast<TTTOOLINFOA*>(lParam);
        switch (message) {
            case WM_NCCREATE:
                ChangeStyle(WS_CHILD, WS_POPUP | WS_DISABLED);
                break;
            case WM_DESTROY:
                WatchNoMore(m_window);
                break;
            case WM_NCDESTROY:
                if (m_own != nullptr) DeleteObject(std::exchange(m_own, nullptr));
                break;
            case WM_MOUSEACTIVATE:
                return MA_NOACTIVATE;
            case WM_NCHITTEST:
                return HTTRANSPARENT;
            case WM_TIMER:
                if (wParam == kTimer) Follow(m_state.Elapsed());
                return 0;
            case WM_SYSCOLORCHANGE:
                Invalidate();
                return 0;
            case kToolTipSaw:
                Saw(*reinterpret_cast<const MSG*>(lParam), false);
                return 0;
            case kToolTipTold:
                for (const Tool& each : m_tools) {
                    if ((each.flags & TTF_IDISHWND) == 0 || each.Of() != reinterpret_cast<HWND>(wParam)) continue;
                    const Tool tool = each;  // who is asked for the text may take it away
                    *reinterpret_cast<std::string*>(lParam) = TextOf(tool);
                    break;
                }
                return 0;
            case TTM_RELAYEVENT:
                if (lParam != 0) Saw(*reinterpret_cast<const MSG*>(lParam), true);
                return 0;
            case TTM_ACTIVATE:
                m_active = wParam != 0;
                if (!m_active) Follow(m_state.Left(GetTickCount()));
                return 0;
            case TTM_POP:
                Follow(m_state.Pressed());
                return 0;
            case TTM_SETDELAYTIME:
                SetDelay(wParam, static_cast<short>(LOWORD(lParam)));
                return 0;
            case TTM_GETDELAYTIME:
                return static_cast<LRESULT>(wParam == TTDT_RESHOW    ? m_state.reshow
                                            : wParam == TTDT_AUTOPOP ? m_state.autopop
                                                                     : m_state.initial);
            case TTM_SETMAXTIPWIDTH:
                return std::exchange(m_most, static_cast<int>(lParam));
            case TTM_GETMAXTIPWIDTH:
                return m_most;
            case TTM_GETTOOLCOUNT:
                return static_cast<LRESULT>(m_tools.size());
            case TTM_ADDTOOLA:
                return IsInfo(lParam) && Add(*info);
            case TTM_DELTOOLA:
                if (IsInfo(lParam)) Remove(*info);
                return 0;
            case TTM_NEWTOOLRECTA:
                if (Tool* const tool = IsInfo(lParam) ? Find(info->hwnd, info->uId) : nullptr) tool->place = info->rect;
                return 0;
            case TTM_UPDATETIPTEXTA:
                if (Tool* const tool = IsInfo(lParam) ? Find(info->hwnd, info->uId) : nullptr) {
                    TakeText(*tool, *info);
                    if (IsCurrent(*tool) && m_state.Now() == ToolTipState::Phase::Shown) Show();
                }
                return 0;
            case TTM_GETTOOLINFOA:
                if (const Tool* const tool = IsInfo(lParam) ? Find(info->hwnd, info->uId) : nullptr) {
                    info->uFlags = tool->flags;
                    info->rect = tool->place;
                    if (info->cbSize >= TTTOOLINFOA_V2_SIZE) info->lParam = tool->param;
                    return TRUE;
                }
                return FALSE;
            case TTM_GETTEXTA: {
                const Tool* const tool = IsInfo(lParam) ? Find(info->hwnd, info->uId) : nullptr;
                if (tool == nullptr || info->lpszText == nullptr) return 0;
                // As many as fit, where the caller says how many that are.
                const size_t room = wParam == 0 ? tool->text.size() + 1 : wParam;
                const size_t length = std::min(tool->text.size(), room - 1);
                std::memcpy(info->lpszText, tool->text.data(), length);
                info->lpszText[length] = 0;
                return static_cast<LRESULT>(length);
            }
            default:
                break;
        }
        return Control::Handle(message, wParam, lParam);
    }

protected:
    void Paint(HDC dc, const RECT& client) override {
        FillColour(dc, client, GetSysColor(COLOR_INFOBK));
        FrameColour(dc, client, FrameInk());
        SetTextColor(dc, GetSysColor(COLOR_INFOTEXT));
        SelectObject(dc, Letters());
        RECT text{client.left + Scaled(kMarginX), client.top + Scaled(kMarginY), client.right - Scaled(kMarginX), client.bottom};
        DrawTextA(dc, m_shown.c_str(), -1, &text, Format());
    }
    void Describe(OrvikAccessible& out) const override {
        out.role = OrvikRole::Label;
        out.name = m_shown;
    }

private:
    struct Tool {
        UINT flags;
        HWND window;
        UINT_PTR id;
        RECT place;
        std::string text;
        bool asks;  // for its text, each time
        LPARAM param;
        // Whose pointer it is about.
        HWND Of() const { return (flags & TTF_IDISHWND) != 0 ? reinterpret_cast<HWND>(id) : window; }
    };

    static bool IsInfo(LPARAM lParam) {
        return lParam != 0 && reinterpret_cast<const TTTOOLINFOA*>(lParam)->cbSize >= TTTOOLINFOA_V1_SIZE;
    }
    Tool* Find(HWND window, UINT_PTR id) {
        const auto found = std::find_if(m_tools.begin(), m_tools.end(),
                                        [&](const Tool& each) { return each.window == window && each.id == id; });
        return found == m_tools.end() ? nullptr : &*found;
    }
    bool IsCurrent(const Tool& tool) const { return m_over && m_over->first == tool.window && m_over->second == tool.id; }

    bool Add(const TTTOOLINFOA& given) {
        Remove(given);
        Tool tool{given.uFlags, given.hwnd, given.uId, given.rect, {}, false, 0};
        if (given.cbSize >= TTTOOLINFOA_V2_SIZE) tool.param = given.lParam;
        TakeText(tool, given);
        m_tools.push_back(std::move(tool));
        if ((given.uFlags & TTF_SUBCLASS) != 0) Watch(m_window);
        return true;
    }
    void Remove(const TTTOOLINFOA& given) {
        const Tool* const tool = Find(given.hwnd, given.uId);
        if (tool == nullptr) return;
        if (IsCurrent(*tool)) {
            m_over.reset();
            Follow(m_state.Left(GetTickCount()));
        }
        m_tools.erase(m_tools.begin() + (tool - m_tools.data()));
    }
    static void TakeText(Tool& tool, const TTTOOLINFOA& given) {
        tool.asks = given.lpszText == LPSTR_TEXTCALLBACKA;
        tool.text = tool.asks ? std::string() : Given(given.hinst, given.lpszText);
    }
    // A text, or the number of one among a module's.
    static std::string Given(HINSTANCE module, LPCSTR text) {
        if (text == nullptr) return {};
        if (reinterpret_cast<uintptr_t>(text) > 0xFFFF) return text;
        char loaded[1024] = "";
        LoadStringA(module, static_cast<UINT>(reinterpret_cast<uintptr_t>(text)), loaded, sizeof loaded);
        return loaded;
    }

    void SetDelay(WPARAM which, short given) {
        constexpr DWORD kUsual = 500;  // the time between two clicks
        const auto time = static_cast<DWORD>(std::max<int>(given, 0));
        if (which == TTDT_AUTOMATIC) {
            m_state.initial = given < 0 ? kUsual : time;
            m_state.autopop = m_state.initial * 10;
            m_state.reshow = m_state.initial / 5;
        } else if (which == TTDT_INITIAL) {
            m_state.initial = given < 0 ? kUsual : time;
        } else if (which == TTDT_AUTOPOP) {
            m_state.autopop = given < 0 ? kUsual * 10 : time;
        } else if (which == TTDT_RESHOW) {
            m_state.reshow = given < 0 ? kUsual / 5 : time;
        }
    }

    // What the thread's windows get. `relayed`: by somebody, for a tool that is not watched.
    void Saw(const MSG& message, bool relayed) {
        if (IsPress(message.message) || IsKey(message.message) || IsWheel(message.message)) return Follow(m_state.Pressed());
        if (message.message == WM_MOUSELEAVE && m_over && IsOver(message.hwnd)) return Leave();
        if (message.message != WM_MOUSEMOVE) return;
        const Tool* const tool = ToolAt(message, relayed);
        if (tool == nullptr) {
            // One that is relayed knows better where the pointer is.
            const Tool* const now = m_over ? Find(m_over->first, m_over->second) : nullptr;
            if (!relayed && now != nullptr && (now->flags & TTF_SUBCLASS) == 0 && now->Of() == message.hwnd) return;
            return Leave();
        }
        POINT at{GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam)};
        ClientToScreen(message.hwnd, &at);
        const bool same = IsCurrent(*tool), moved = !same || at.x != m_at.x || at.y != m_at.y;
        if (!moved || !m_active) return;
        if (!same) Hide();
        m_at = at;
        m_over = {tool->window, tool->id};
        Follow(m_state.Moved(same, GetTickCount()));
    }
    bool IsOver(HWND window) {
        const Tool* const tool = Find(m_over->first, m_over->second);
        return tool != nullptr && tool->Of() == window;
    }
    void Leave() {
        m_over.reset();
        Follow(m_state.Left(GetTickCount()));
    }
    const Tool* ToolAt(const MSG& message, bool relayed) const {
        const POINT at{GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam)};
        for (const Tool& each : m_tools) {
            if (each.Of() != message.hwnd || (!relayed && (each.flags & TTF_SUBCLASS) == 0)) continue;
            if ((each.flags & TTF_IDISHWND) != 0 || PtInRect(&each.place, at)) return &each;
        }
        return nullptr;
    }

    // Brings window and timer in line with the state.
    void Follow(bool anew) {
        if (!anew) return;
        if (m_state.Now() == ToolTipState::Phase::Shown && !Show()) m_state.Pressed();
        if (m_state.Now() != ToolTipState::Phase::Shown) Hide();
        if (const DWORD delay = m_state.Delay(); delay != 0)
            SetTimer(m_window, kTimer, delay, nullptr);
        else
            KillTimer(m_window, kTimer);
    }
    bool Show() {
        Tool* tool = m_over ? Find(m_over->first, m_over->second) : nullptr;
        if (tool == nullptr || !m_active || !IsWindowVisible(tool->Of())) return false;
        const HWND root = GetAncestor(tool->Of(), GA_ROOT);
        if ((Style() & TTS_ALWAYSTIP) == 0 && GetActiveWindow() != root) return false;
        const std::string text = TextOf(*tool);
        tool = m_over ? Find(m_over->first, m_over->second) : nullptr;  // who was asked may have changed it
        if (text.empty() || tool == nullptr) return false;
        m_shown = text;
        PutPopup(m_window, PlaceOf(*tool, root), SizeOf(text));
        if (!IsWindowVisible(m_window)) {
            NMHDR header{m_window, tool->id, TTN_SHOW};
            SendMessageA(tool->window, WM_NOTIFY, header.idFrom, reinterpret_cast<LPARAM>(&header));
            ShowWindow(m_window, SW_SHOWNA);
        }
        Invalidate();
        return true;
    }
    void Hide() {
        if (!IsWindowVisible(m_window)) return;
        ShowWindow(m_window, SW_HIDE);
        const Tool* const tool = m_over ? Find(m_over->first, m_over->second) : nullptr;
        if (tool == nullptr) return;
        NMHDR header{m_window, tool->id, TTN_POP};
        SendMessageA(tool->window, WM_NOTIFY, header.idFrom, reinterpret_cast<LPARAM>(&header));
    }
    std::string TextOf(const Tool& tool) const {
        if (!tool.asks) return tool.text;
        NMTTDISPINFOA asked{};
        asked.hdr = {m_window, tool.id, TTN_GETDISPINFOA};
        asked.lpszText = asked.szText;
        asked.uFlags = tool.flags;
        asked.lParam = tool.param;
        SendMessageA(tool.window, WM_NOTIFY, asked.hdr.idFrom, reinterpret_cast<LPARAM>(&asked));
        return Given(asked.hinst, asked.lpszText);
    }
    // Below the tool, where the pointer is on it.
    PopupPlace PlaceOf(const Tool& tool, HWND root) const {
        RECT area = tool.place;
        if ((tool.flags & TTF_IDISHWND) != 0) GetClientRect(tool.Of(), &area);
        MapWindowPoints(tool.Of(), root, reinterpret_cast<POINT*>(&area), 2);
        POINT at = m_at;
        ScreenToClient(root, &at);
        PopupPlace place;
        place.owner = root;
        place.anchor = area;
        if ((tool.flags & TTF_CENTERTIP) != 0) {
            place.edge = PopupEdge::Middle;
        } else {
            place.anchor.left = std::clamp(at.x, area.left, std::max(area.left, area.right));
            place.anchor.right = place.anchor.left + 1;
        }
        return place;
    }
    SIZE SizeOf(const std::string& text) {
        const MeasuringDc dc(m_window, Letters());
        RECT area{0, 0, m_most > 0 ? m_most : 0, 0};
        DrawTextA(dc, text.c_str(), -1, &area, Format() | DT_CALCRECT);
        return {area.right + 2 * Scaled(kMarginX), area.bottom + 2 * Scaled(kMarginY)};
    }
    UINT Format() const {
        const UINT lines = m_most >= 0 ? DT_WORDBREAK | DT_EXPANDTABS : DT_SINGLELINE;
        return DT_LEFT | lines | ((Style() & TTS_NOPREFIX) != 0 ? DT_NOPREFIX : 0);
    }
    // The desktop's, at the size of the window that the tip is for, unless somebody chose others.
    HFONT Letters() {
        if (Font() != nullptr) return Font();
        if (m_own != nullptr && m_ownDpi == Dpi()) return m_own;
        NONCLIENTMETRICSA metrics{};
        metrics.cbSize = sizeof metrics;
        if (!SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, Dpi())) return nullptr;
        if (m_own != nullptr) DeleteObject(m_own);
        m_ownDpi = Dpi();
        return m_own = CreateFontIndirectA(&metrics.lfStatusFont);
    }

    std::vector<Tool> m_tools;
    std::optional<std::pair<HWND, UINT_PTR>> m_over;  // the tool that the pointer is on
    POINT m_at{};
    ToolTipState m_state;
    std::string m_shown;
    bool m_active = true;
    int m_most = -1;  // pixels of a line; -1: one line, however long
    HFONT m_own = nullptr;
    UINT m_ownDpi = 0;
};
}  // namespace

std::string ToolTipOf(HWND window) {
    std::string text;
    const std::vector<HWND> watchers = t_watchers;
    for (const HWND each : watchers)
        SendMessageA(each, kToolTipTold, reinterpret_cast<WPARAM>(window), reinterpret_cast<LPARAM>(&text));
    return text;
}

LRESULT CALLBACK ToolTipProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return ControlProcedure<ToolTip>(window, message, wParam, lParam);
}
}  // namespace orvik::detail
