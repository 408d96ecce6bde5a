// Input that a script gives: what windows are told, in which order, and what the system says meanwhile.
#include "platform/scripted_input.h"

#include <algorithm>

#include "tests/platform/window_log.h"
#include "tests/support/last_error.h"

using namespace window_test;

namespace {
class InputTest : public WindowLogTest {
protected:
    void SetUp() override {
        WindowLogTest::SetUp();
        top = Make("top", WS_POPUP | WS_VISIBLE, {100, 100, 400, 300});
        kid = Make("kid", WS_CHILD | WS_VISIBLE, {50, 40, 150, 100}, top, 7);
        Pump();
        Take();
    }
    // A system with a pointer of its own may ask for a cursor once more, so that is looked at where it matters, and told once.
    Log Input(bool cursors = false) {
        Pump();
        Log out;
        for (const std::string& line : Told()) {
            const bool cursor = line.find(" cursor ") != std::string::npos;
            if (!cursor || (cursors && std::find(out.begin(), out.end(), line) == out.end())) out.push_back(line);
        }
        return out;
    }
    Log Told() {
        return Take({"cursor", "mouse", "press", "release", "double", "right", "wheel", "key", "keyup", "syskey", "char",
                     "capture", "command", "context", "child", "activate", "menu"});
    }
    bool Answer(HWND window, UINT message, WPARAM wParam, LPARAM, LRESULT&) override {
        if (message == WM_LBUTTONDOWN && m_grab) SetCapture(window);
        if (message == WM_LBUTTONUP && m_grab) ReleaseCapture();
        if (message == WM_MOUSEMOVE) {
            POINT point{};
            GetCursorPos(&point);
            m_pointer = point;
        }
        if (message == WM_KEYDOWN && wParam == 'X')
            m_log.push_back(std::string("held") + (GetKeyState(VK_SHIFT) < 0 ? " shift" : "") +
                            (GetKeyState(VK_CONTROL) < 0 ? " control" : ""));
        return false;
    }
    HWND top = nullptr, kid = nullptr;
    bool m_grab = false;
    POINT m_pointer{};
};
}  // namespace

TEST_F(InputTest, PointerGoesToTheWindowBelowAndAsksForItsCursor) {
    EXPECT_TRUE(OrvikPostPointer(top, WM_MOUSEMOVE, 10, 20));
    EXPECT_EQ(Input(true), (Log{"top cursor top 1", "top mouse 0 10,20"}));
    EXPECT_EQ(m_pointer.x, 110);
    EXPECT_EQ(m_pointer.y, 120);
    EXPECT_EQ(GetCursor(), LoadCursorA(nullptr, IDC_ARROW));
    OrvikPostPointer(top, WM_MOUSEMOVE, 60, 50);  // over the child, whose parent is asked first
    EXPECT_EQ(Input(true), (Log{"kid cursor kid 1", "top cursor kid 1", "kid mouse 0 10,10"}));
    OrvikPostPointer(top, WM_LBUTTONDOWN, 60, 50), OrvikPostPointer(top, WM_LBUTTONUP, 60, 50);
    OrvikPostPointer(top, WM_LBUTTONDBLCLK, 60, 50), OrvikPostPointer(top, WM_LBUTTONUP, 60, 50);
    EXPECT_EQ(Input(), (Log{"top child 513", "kid press 1 10,10", "kid release 0 10,10", "top child 515", "kid double 1 10,10",
                            "kid release 0 10,10"}));
    EnableWindow(kid, FALSE);  // the pointer goes through
    OrvikPostPointer(top, WM_MOUSEMOVE, 60, 50);
    EXPECT_EQ(Input(true), (Log{"top cursor top 1", "top mouse 0 60,50"}));
    EnableWindow(kid, TRUE), EnableWindow(top, FALSE);
    Take();
    OrvikPostPointer(top, WM_LBUTTONDOWN, 60, 50), OrvikPostPointer(top, WM_LBUTTONUP, 60, 50);
    EXPECT_EQ(Input(true), Log{"top cursor top -2"});
}

TEST_F(InputTest, CaptureTakesWhatLiesOutside) {
    m_grab = true;
    OrvikPostPointer(top, WM_LBUTTONDOWN, 60, 50);
    OrvikPostKey(top, VK_CONTROL, TRUE);
    OrvikPostPointer(top, WM_MOUSEMOVE, -10, 500);
    OrvikPostKey(top, VK_CONTROL, FALSE);
    OrvikPostPointer(top, WM_LBUTTONUP, 10, 10), OrvikPostPointer(top, WM_MOUSEMOVE, 10, 10);
    EXPECT_EQ(Input(), (Log{"top child 513", "kid press 1 10,10", "top key 17", "kid mouse 9 -60,460", "top keyup 17",
                            "kid release 0 -40,-30", "kid capture none", "top mouse 0 10,10"}));
}

TEST_F(InputTest, KeysGoToTheFocusAndHoldWhileTheyAreRead) {
    SetFocus(kid);
    OrvikPostKey(top, VK_SHIFT, TRUE), OrvikPostKey(top, 'X', TRUE), OrvikPostKey(top, 'X', FALSE);
    OrvikPostKey(top, VK_SHIFT, FALSE), OrvikPostKey(top, 'X', TRUE), OrvikPostKey(top, 'X', FALSE);
    OrvikPostKey(top, VK_ESCAPE, TRUE), OrvikPostKey(top, VK_ESCAPE, FALSE);
    EXPECT_GE(GetKeyState(VK_SHIFT), 0);  // nothing happens before it is read
    Pump();
    Log keys;
    for (const std::string& line : Take()) {
        if (line.find(" key") != std::string::npos || line.find("held") == 0 || line.find(" char") != std::string::npos)
            keys.push_back(line);
    }
    // Characters are posted, so they come after the steps that were posted before.
    EXPECT_EQ(keys, (Log{"kid key 16", "kid key 88", "held shift", "kid keyup 88", "kid keyup 16", "kid key 88", "held",
                         "kid keyup 88", "kid key 27", "kid keyup 27", "kid char 88", "kid char 120", "kid char 27"}));
    OrvikPostText(top, "\xE5=");  // for the focus as well
    EXPECT_EQ(Input(), (Log{"kid char 229", "kid char 61"}));
}

TEST_F(InputTest, WheelAndRightButtonClimbToTheParent) {
    SetFocus(kid);
    OrvikPostPointer(top, WM_MOUSEWHEEL, 60, 50, -WHEEL_DELTA);
    EXPECT_EQ(Input(), (Log{"kid wheel -120 160,150", "top wheel -120 160,150"}));
    OrvikPostPointer(top, WM_RBUTTONDOWN, 60, 50), OrvikPostPointer(top, WM_RBUTTONUP, 60, 50);
    const Log told = Input();
    ASSERT_GE(told.size(), 2u);
    EXPECT_EQ(told[told.size() - 2], "kid context");
    EXPECT_EQ(told.back(), "top context");
}

TEST_F(InputTest, AcceleratorsAndMenusBecomeCommands) {
    ACCEL entries[] = {{FVIRTKEY | FCONTROL, 'Z', 101}, {FVIRTKEY, VK_F5, 102}, {0, '+', 103}, {FVIRTKEY | FCONTROL, 'Y', 104}};
    const HACCEL table = CreateAcceleratorTableA(entries, 4);
    ASSERT_NE(table, nullptr);
    const HMENU bar = CreateMenu(), edit = CreatePopupMenu();
    EXPECT_TRUE(AppendMenuA(edit, MF_STRING, 101, "&Undo zoom\tCtrl+Z"));
    EXPECT_TRUE(AppendMenuA(edit, MF_SEPARATOR, 0, nullptr));
    EXPECT_TRUE(AppendMenuA(edit, MF_STRING | MF_GRAYED, 104, "&Redo"));
    EXPECT_TRUE(AppendMenuA(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(edit), "&Edit"));
    BYTE keys[256] = {};
    keys[VK_CONTROL] = 0x80;
    SetKeyboardState(keys);
    const auto translate = [&](UINT message, WPARAM key) {
        MSG read{top, message, key, 1, 0, {}};
        return TranslateAcceleratorA(top, table, &read) != 0;
    };
    EXPECT_TRUE(translate(WM_KEYDOWN, 'Z'));
    EXPECT_FALSE(translate(WM_KEYDOWN, VK_F5));  // not with Ctrl
    EXPECT_FALSE(translate(WM_KEYUP, 'Z'));
    EXPECT_EQ(Input(), Log{"top command 101,1"});
    keys[VK_CONTROL] = 0;
    SetKeyboardState(keys);
    EXPECT_TRUE(translate(WM_KEYDOWN, VK_F5));
    EXPECT_TRUE(translate(WM_CHAR, '+'));
    EXPECT_FALSE(translate(WM_KEYDOWN, 'Z'));
    EXPECT_EQ(Input(), (Log{"top command 102,1", "top command 103,1"}));
    EXPECT_TRUE(DestroyAcceleratorTable(table));

    char text[32];
    EXPECT_EQ(GetMenuStringA(bar, 101, text, sizeof text, MF_BYCOMMAND), 17);  // commands are found below
    EXPECT_STREQ(text, "&Undo zoom\tCtrl+Z");
    EXPECT_EQ(GetMenuItemCount(edit), 3);
    EXPECT_EQ(GetMenuItemID(bar, 0), 0xFFFFFFFFu);
    EXPECT_EQ(GetSubMenu(bar, 0), edit);
    EXPECT_EQ(GetMenuState(bar, 104, MF_BYCOMMAND), static_cast<UINT>(MF_GRAYED));
    EXPECT_EQ(EnableMenuItem(bar, 104, MF_BYCOMMAND | MF_ENABLED), MF_GRAYED);
    EXPECT_EQ(EnableMenuItem(bar, 999, MF_BYCOMMAND | MF_ENABLED), -1);
    EXPECT_EQ(CheckMenuItem(edit, 0, MF_BYPOSITION | MF_CHECKED), static_cast<DWORD>(MF_UNCHECKED));
    EXPECT_EQ(CheckMenuItem(edit, 0, MF_BYPOSITION | MF_UNCHECKED), static_cast<DWORD>(MF_CHECKED));
    EXPECT_TRUE(ModifyMenuA(edit, 101, MF_BYCOMMAND | MF_STRING, 101, "&Undo pan"));
    EXPECT_TRUE(InsertMenuA(edit, 104, MF_BYCOMMAND | MF_STRING, 105, "&All"));
    EXPECT_EQ(GetMenuItemID(edit, 2), 105u);
    EXPECT_TRUE(DeleteMenu(edit, 1, MF_BYPOSITION));
    EXPECT_EQ(GetMenuItemCount(edit), 3);
    EXPECT_TRUE(DestroyMenu(bar));
    EXPECT_FALSE(IsMenu(edit));
}

TEST_F(InputTest, BadStepsAreRefused) {
    EXPECT_FALSE(OrvikPostPointer(top, WM_KEYDOWN, 0, 0));
    EXPECT_FALSE(OrvikPostPointer(top, WM_MOUSEMOVE, 40000, 0));
    EXPECT_FALSE(OrvikPostKey(top, 0, TRUE));
    EXPECT_FALSE(OrvikPostPointer(nullptr, WM_MOUSEMOVE, 0, 0));
    OrvikPostPointer(top, WM_MOUSEMOVE, 60, 50);
    DestroyWindow(top);  // before it was read
    EXPECT_LE(Input().size(), 1u);
    EXPECT_FAILS(OrvikPostPointer(top, WM_MOUSEMOVE, 0, 0), ERROR_INVALID_WINDOW_HANDLE);
}
