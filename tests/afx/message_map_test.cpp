// Message maps by name: what each line hands to its member, commands, notifications and what controls get back.
#include "afx/message_map.h"

#include <gtest/gtest.h>

#include <string>

#include "afx/app.h"

namespace {
class CKid : public CWnd {
public:
    std::string m_told;

protected:
    afx_msg void OnOwnClick() { m_told += "own click;"; }
    afx_msg void OnOwnNotify(NMHDR* header, LRESULT* result) {
        m_told += "own notify " + std::to_string(static_cast<int>(header->code)) + ";";
        *result = 5;
    }
    DECLARE_MESSAGE_MAP()
};

class CMapWnd : public CWnd {
public:
    std::string m_told;
    BOOL PreTranslateMessage(MSG* message) override { return message->message == WM_USER + 9; }

protected:
    void Told(const std::string& text) { m_told += text + ";"; }
    static std::string At(CPoint p) { return std::to_string(p.x) + "," + std::to_string(p.y); }

    afx_msg int OnCreate(LPCREATESTRUCT create) {
        Told("create " + std::to_string(create->cx));
        return CWnd::OnCreate(create);
    }
    afx_msg void OnSize(UINT type, int cx, int cy) {
        CWnd::OnSize(type, cx, cy);
        Told("size " + std::to_string(cx) + "," + std::to_string(cy));
    }
    afx_msg void OnMouseMove(UINT flags, CPoint point) { Told("move " + std::to_string(flags) + " " + At(point)); }
    afx_msg void OnLButtonDown(UINT, CPoint point) { Told("press " + At(point)); }
    afx_msg BOOL OnMouseWheel(UINT, short delta, CPoint point) {
        Told("wheel " + std::to_string(delta) + " " + At(point));
        return TRUE;
    }
    afx_msg void OnKeyDown(UINT key, UINT count, UINT) { Told("key " + std::to_string(key) + "x" + std::to_string(count)); }
    afx_msg BOOL OnSetCursor(CWnd* window, UINT hit, UINT message) {
        Told("cursor " + std::to_string(window == this) + " " + std::to_string(hit) + " " + std::to_string(message));
        return TRUE;
    }
    afx_msg void OnCaptureChanged(CWnd* window) { Told(window == nullptr ? "capture lost" : "capture taken"); }
    afx_msg void OnTimer(UINT_PTR id) { Told("timer " + std::to_string(id)); }
    afx_msg void OnHScroll(UINT code, UINT position, CScrollBar* bar) {
        Told("scroll " + std::to_string(code) + " " + std::to_string(position) + (bar == nullptr ? "" : " control"));
    }
    afx_msg UINT OnGetDlgCode() { return 4; }
    afx_msg void OnPaint() {
        PAINTSTRUCT paint;
        Told(BeginPaint(&paint) != nullptr ? "paint" : "no paint");
        EndPaint(&paint);
    }
    afx_msg BOOL OnEraseBkgnd(CDC* dc) {
        Told(dc->m_hDC != nullptr ? "erase" : "no dc");
        return TRUE;
    }
    afx_msg HBRUSH OnCtlColor(CDC*, CWnd*, UINT kind) {
        Told("colour " + std::to_string(kind));
        return static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
    }
    afx_msg void OnContextMenu(CWnd*, CPoint point) { Told("context " + At(point)); }
    afx_msg void OnSave() { Told("save"); }
    afx_msg void OnAny(UINT id) { Told("any " + std::to_string(id)); }
    afx_msg BOOL OnNotNow(UINT) {
        Told("not now");
        return FALSE;
    }
    afx_msg void OnUpdateSave(CCmdUI* state) { state->Enable(FALSE), state->SetCheck(1); }
    afx_msg void OnChange() { Told("change"); }
    afx_msg void OnNotify17(NMHDR*, LRESULT* result) { *result = 17; }
    DECLARE_MESSAGE_MAP()
};
}  // namespace

BEGIN_MESSAGE_MAP(CKid, CWnd)
ON_CONTROL_REFLECT(0, OnOwnClick)
ON_NOTIFY_REFLECT(-2, OnOwnNotify)
END_MESSAGE_MAP()

BEGIN_MESSAGE_MAP(CMapWnd, CWnd)
ON_WM_CREATE()
ON_WM_SIZE()
ON_WM_MOUSEMOVE()
ON_WM_LBUTTONDOWN()
ON_WM_MOUSEWHEEL()
ON_WM_KEYDOWN()
ON_WM_SETCURSOR()
ON_WM_CAPTURECHANGED()
ON_WM_TIMER()
ON_WM_HSCROLL()
ON_WM_GETDLGCODE()
ON_WM_PAINT()
ON_WM_ERASEBKGND()
ON_WM_CTLCOLOR()
ON_WM_CONTEXTMENU()
// Members of the base answer as well.
ON_WM_DESTROY()
ON_WM_CLOSE()
ON_WM_MOVE()
ON_WM_SHOWWINDOW()
ON_WM_ENABLE()
ON_WM_ACTIVATE()
ON_WM_SETFOCUS()
ON_WM_KILLFOCUS()
ON_WM_LBUTTONUP()
ON_WM_LBUTTONDBLCLK()
ON_WM_RBUTTONDOWN()
ON_WM_RBUTTONUP()
ON_WM_KEYUP()
ON_WM_CHAR()
ON_WM_VSCROLL()
ON_WM_INITMENUPOPUP()
ON_WM_WINDOWPOSCHANGED()
ON_WM_SYSCOMMAND()
ON_WM_NCHITTEST()
ON_WM_MOUSEACTIVATE()
ON_COMMAND(100, OnSave)
ON_UPDATE_COMMAND_UI(100, OnUpdateSave)
ON_COMMAND_EX(205, OnNotNow)
ON_COMMAND_RANGE(200, 209, OnAny)
ON_EN_CHANGE(300, OnChange)
ON_NOTIFY(17, 300, OnNotify17)
END_MESSAGE_MAP()

TEST(MessageMap, HandsEachMessageToItsMember) {
    CMapWnd window;
    ASSERT_TRUE(window.CreateEx(0, AfxRegisterWndClass(0), "map", WS_POPUP, 0, 0, 120, 80, HWND_MESSAGE, nullptr));
    EXPECT_EQ(window.m_told.substr(0, 10), "create 120");
    struct Case {
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
        LRESULT answer;
        const char* told;
    };
    const HWND self = window.m_hWnd;
    const auto handle = reinterpret_cast<WPARAM>(self);
    for (const Case& each :
         {Case{WM_SIZE, 0, MAKELPARAM(7, 9), 0, "size 7,9;"}, Case{WM_MOUSEMOVE, 5, MAKELPARAM(-3, 40), 0, "move 5 -3,40;"},
          Case{WM_LBUTTONDOWN, 1, MAKELPARAM(1, -2), 0, "press 1,-2;"},
          Case{WM_MOUSEWHEEL, MAKEWPARAM(8, -120), MAKELPARAM(3, 4), 1, "wheel -120 3,4;"},
          Case{WM_KEYDOWN, VK_ESCAPE, MAKELPARAM(2, 1), 0, "key 27x2;"},
          Case{WM_SETCURSOR, handle, MAKELPARAM(1, 512), 1, "cursor 1 1 512;"}, Case{WM_CAPTURECHANGED, 0, 0, 0, "capture lost;"},
          Case{WM_TIMER, 3, 0, 0, "timer 3;"}, Case{WM_HSCROLL, MAKEWPARAM(5, 44), 0, 0, "scroll 5 44;"},
          Case{WM_GETDLGCODE, 0, 0, 4, ""}, Case{WM_PAINT, 0, 0, 0, "paint;"},
          Case{WM_CTLCOLORSTATIC, 0, 0, reinterpret_cast<LRESULT>(GetStockObject(WHITE_BRUSH)), "colour 6;"},
          Case{WM_CONTEXTMENU, handle, -1, 0, "context -1,-1;"}, Case{WM_COMMAND, 100, 0, 1, "save;"},
          Case{WM_COMMAND, MAKEWPARAM(100, 1), 0, 1, "save;"}, Case{WM_COMMAND, 209, 0, 1, "any 209;"},
          Case{WM_COMMAND, 205, 0, 1, "not now;any 205;"}, Case{WM_COMMAND, 210, 0, 0, ""}}) {
        window.m_told.clear();
        EXPECT_EQ(window.SendMessage(each.message, each.wParam, each.lParam), each.answer) << each.message << " " << each.told;
        EXPECT_EQ(window.m_told, each.told);
    }
    MSG message{self, WM_USER + 9, 0, 0, 0, {}};
    EXPECT_TRUE(CWnd::WalkPreTranslateTree(nullptr, &message));
    message.message = WM_USER + 8;
    EXPECT_FALSE(CWnd::WalkPreTranslateTree(nullptr, &message));
}

TEST(MessageMap, NotificationsReachTheControlFirst) {
    CMapWnd window;
    ASSERT_TRUE(window.CreateEx(0, AfxRegisterWndClass(0), "map", WS_POPUP, 0, 0, 120, 80, HWND_MESSAGE, nullptr));
    CKid kid;
    ASSERT_TRUE(kid.Create(AfxRegisterWndClass(0), "kid", WS_CHILD, {0, 0, 10, 10}, &window, 300));
    window.m_told.clear();
    const auto from = reinterpret_cast<LPARAM>(kid.m_hWnd);
    EXPECT_EQ(window.SendMessage(WM_COMMAND, MAKEWPARAM(300, 0x300), from), 1);
    EXPECT_EQ(window.SendMessage(WM_COMMAND, MAKEWPARAM(300, 0), from), 1);
    EXPECT_EQ(window.m_told + kid.m_told, "change;own click;");
    NMHDR header{kid.m_hWnd, 300, static_cast<UINT>(-2)};
    EXPECT_EQ(window.SendMessage(WM_NOTIFY, 300, reinterpret_cast<LPARAM>(&header)), 5);
    header.code = 17;
    EXPECT_EQ(window.SendMessage(WM_NOTIFY, 300, reinterpret_cast<LPARAM>(&header)), 17);
}

TEST(MessageMap, CommandsUpdateTheirItems) {
    CMapWnd window;
    CMenu menu;
    ASSERT_TRUE(menu.CreatePopupMenu());
    for (const UINT id : {100u, 207u, 999u}) menu.AppendMenu(MF_STRING, id, "item");
    AfxUpdateMenu(&menu, &window);
    EXPECT_EQ(menu.GetMenuState(100, MF_BYCOMMAND), static_cast<UINT>(MF_GRAYED | MF_DISABLED | MF_CHECKED));
    EXPECT_EQ(menu.GetMenuState(207, MF_BYCOMMAND), 0u);  // somebody takes it
    EXPECT_EQ(menu.GetMenuState(999, MF_BYCOMMAND), static_cast<UINT>(MF_GRAYED | MF_DISABLED));
}
