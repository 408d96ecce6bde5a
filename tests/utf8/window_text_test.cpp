// Windows, controls, menus, dialogs and drawings in a UTF-8 process.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "platform/scripted_input.h"
#include "platform/win32.h"

namespace {
// One, two, three and four bytes.
constexpr char kOhm[] = "k\xCE\xA9", kAll[] = "a\xC3\xA5\xE2\x82\xAC\xF0\x9F\x8C\xA1z";

std::string TextOf(HWND window) {
    std::string text(static_cast<size_t>(GetWindowTextLengthA(window)), '\0');
    text.resize(static_cast<size_t>(GetWindowTextA(window, text.data(), static_cast<int>(text.size()) + 1)));
    return text;
}
LRESULT Ask(HWND window, UINT message, WPARAM wParam, const void* record) {
    return SendMessageA(window, message, wParam, reinterpret_cast<LPARAM>(record));
}

// A window that holds controls, and keeps what it is told in words.
class Utf8Window : public testing::Test {
protected:
    void SetUp() override {
        INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_LISTVIEW_CLASSES};
        ASSERT_TRUE(InitCommonControlsEx(&classes));
        WNDCLASSA kind = {};
        kind.lpfnWndProc = &Procedure;
        kind.hInstance = GetModuleHandleA(nullptr);
        kind.lpszClassName = "OrvikUtf8\xCE\xA9";
        RegisterClassA(&kind);
        s_told.clear();
        top = CreateWindowExA(0, kind.lpszClassName, kOhm, WS_POPUP | WS_VISIBLE, 10, 10, 300, 200, nullptr, nullptr,
                              kind.hInstance, nullptr);
        ASSERT_NE(nullptr, top);
    }
    void TearDown() override { DestroyWindow(top); }

    HWND Make(const char* name, DWORD style, const char* text = "") {
        return CreateWindowExA(0, name, text, WS_CHILD | WS_VISIBLE | style, 0, 0, 200, 100, top, nullptr,
                               GetModuleHandleA(nullptr), nullptr);
    }
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_CREATE) s_told += std::string(reinterpret_cast<const CREATESTRUCTA*>(lParam)->lpszName) + "|";
        if (message == WM_SETTEXT) s_told += std::string(reinterpret_cast<const char*>(lParam)) + "|";
        if (message == WM_CHAR) s_told += std::to_string(wParam) + "|";
        if (message == WM_COMMAND && HIWORD(wParam) == EN_MAXTEXT) s_told += "full|";
        return DefWindowProcA(window, message, wParam, lParam);
    }
    HWND top = nullptr;
    static inline std::string s_told;
};

WNDPROC g_super = nullptr;
std::string g_seen;
LRESULT CALLBACK Over(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_SETTEXT) g_seen += reinterpret_cast<const char*>(lParam);
    if (message == EM_SETSEL) g_seen += "[" + std::to_string(wParam) + "," + std::to_string(lParam) + "]";
    return CallWindowProcA(g_super, window, message, wParam, lParam);
}
}  // namespace

TEST_F(Utf8Window, CaptionsComeAndGo) {
    EXPECT_EQ(std::string(kOhm) + "|", s_told);
    EXPECT_EQ(kOhm, TextOf(top));
    for (const char* const text : {kAll, "", "plain"}) {
        SetWindowTextA(top, text);
        EXPECT_EQ(text, TextOf(top));
    }
    // A buffer that ends within a character.
    SetWindowTextA(top, kAll);
    for (const auto& [size, length] : {std::pair{12, 11}, {11, 10}, {10, 6}, {7, 6}, {6, 3}, {4, 3}, {3, 1}, {2, 1}, {1, 0}}) {
        char text[16] = "xxxxxxxxxxxxxxx";
        EXPECT_EQ(length, GetWindowTextA(top, text, size));
        EXPECT_EQ(std::string(kAll).substr(0, static_cast<size_t>(length)), text);
    }
}

TEST_F(Utf8Window, ListsKeepTheirTexts) {
    const HWND list = Make("ListBox", 0), combo = Make("ComboBox", CBS_DROPDOWNLIST), view = Make(WC_LISTVIEWA, LVS_REPORT);
    for (const char* const text : {kOhm, kAll}) {
        char got[64] = "";
        const auto at = static_cast<WPARAM>(Ask(list, LB_ADDSTRING, 0, text));
        EXPECT_EQ(static_cast<LRESULT>(strlen(text)), SendMessageA(list, LB_GETTEXTLEN, at, 0));
        EXPECT_EQ(static_cast<LRESULT>(strlen(text)), Ask(list, LB_GETTEXT, at, got));
        EXPECT_STREQ(text, got);
        EXPECT_EQ(static_cast<LRESULT>(at), Ask(list, LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), text));
        const auto in = static_cast<WPARAM>(Ask(combo, CB_ADDSTRING, 0, text));
        SendMessageA(combo, CB_SETCURSEL, in, 0);
        EXPECT_EQ(text, TextOf(combo));
        EXPECT_EQ(static_cast<LRESULT>(strlen(text)), Ask(combo, CB_GETLBTEXT, in, got));
        EXPECT_STREQ(text, got);

        LVCOLUMNA column = {};
        column.mask = LVCF_TEXT | LVCF_WIDTH;
        column.cx = 100;
        column.pszText = const_cast<char*>(text);
        EXPECT_EQ(0, Ask(view, LVM_INSERTCOLUMNA, 0, &column));
        LVITEMA item = {};
        item.mask = LVIF_TEXT | LVIF_PARAM;
        item.lParam = 7;
        item.pszText = const_cast<char*>(text);
        EXPECT_EQ(0, Ask(view, LVM_INSERTITEMA, 0, &item));
        item = {};
        item.mask = LVIF_TEXT | LVIF_PARAM;
        item.pszText = got;
        for (const int room : {64, 6}) {
            item.cchTextMax = column.cchTextMax = room;
            got[0] = 0;
            EXPECT_EQ(1, Ask(view, LVM_GETITEMA, 0, &item));
            EXPECT_EQ(std::string(text).substr(0, room == 6 && text == kAll ? 3 : 99), got);
            EXPECT_EQ(7, item.lParam);
            EXPECT_EQ(static_cast<LRESULT>(strlen(got)), Ask(view, LVM_GETITEMTEXTA, 0, &item));
            column.pszText = got;
            EXPECT_EQ(1, Ask(view, LVM_GETCOLUMNA, 0, &column));
            EXPECT_EQ(std::string(text).substr(0, room == 6 && text == kAll ? 3 : 99), got);
        }
    }
}

TEST_F(Utf8Window, PositionsInFieldsAreBytes) {
    const HWND field = Make("Edit", ES_MULTILINE, "");
    SetWindowTextA(field, (std::string(kAll) + "\r\n" + kOhm).c_str());
    EXPECT_EQ(16, SendMessageA(field, WM_GETTEXTLENGTH, 0, 0));
    const struct {
        WPARAM from;
        LPARAM to;
        DWORD gotFrom, gotTo;
    } selections[] = {{0, -1, 0, 16}, {1, 3, 1, 3}, {3, 6, 3, 6}, {6, 10, 6, 10}, {10, 16, 10, 16}, {14, 16, 14, 16}};
    for (const auto& each : selections) {
        SendMessageA(field, EM_SETSEL, each.from, each.to);
        DWORD from = 99, to = 99;
        const LRESULT both = SendMessageA(field, EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
        EXPECT_EQ(std::pair(each.gotFrom, each.gotTo), std::pair(from, to));
        EXPECT_EQ(MAKELONG(from, to), static_cast<LONG>(both));
    }
    EXPECT_EQ(13, SendMessageA(field, EM_LINEINDEX, 1, 0));
    EXPECT_EQ(0, SendMessageA(field, EM_LINEFROMCHAR, 11, 0));
    EXPECT_EQ(1, SendMessageA(field, EM_LINEFROMCHAR, 14, 0));
    EXPECT_EQ(11, SendMessageA(field, EM_LINELENGTH, 3, 0));
    EXPECT_EQ(3, SendMessageA(field, EM_LINELENGTH, 13, 0));
    char line[16] = {12, 0};
    EXPECT_EQ(11, Ask(field, EM_GETLINE, 0, line));
    EXPECT_STREQ(kAll, line);
    SendMessageA(field, EM_SETSEL, 1, 10);
    Ask(field, EM_REPLACESEL, TRUE, kOhm);
    EXPECT_EQ(std::string("ak\xCE\xA9z\r\nk\xCE\xA9"), TextOf(field));
    const LRESULT end = SendMessageA(field, EM_POSFROMCHAR, 4, 0);
    EXPECT_EQ(4, LOWORD(SendMessageA(field, EM_CHARFROMPOS, 0, end)));
}

TEST_F(Utf8Window, LimitsOfFieldsAreLetters) {
    const std::string marked = "e\xCC\x81";
    const struct {
        std::string begin, added, typed, put;
    } cases[] = {
        {"", "\xCE\xA9\xCE\xA9\xCE\xA9\xCE\xA9", "\xCE\xA9\xCE\xA9\xCE\xA9\xCE\xA9", "\xCE\xA9\xCE\xA9\xCE\xA9\xCE\xA9"},
        {"ab", kAll, "aba\xC3\xA5\xE2\x82\xAC", "aba\xC3\xA5\xE2\x82\xAC"},
        {"abcd", "\xF0\x9F\x8C\xA1x", "abcd\xF0\x9F\x8C\xA1", "abcd\xF0\x9F\x8C\xA1"},
        {"\xF0\x9F\x8C\xA1\xF0\x9F\x8C\xA1", "xyzz", "\xF0\x9F\x8C\xA1\xF0\x9F\x8C\xA1xyz",
         "\xF0\x9F\x8C\xA1\xF0\x9F\x8C\xA1xyz"},
        {"abcde", "\xF0\x9F\x8C\xA1", "abcde", "abcde"},
        // A mark that is typed comes alone.
        {"abc", marked + marked + marked, "abc" + marked + "e", "abc" + marked + marked},
    };
    for (const auto& each : cases) {
        const HWND field = Make("Edit", 0, each.begin.c_str());
        SendMessageA(field, EM_LIMITTEXT, 5, 0);
        EXPECT_EQ(5, SendMessageA(field, EM_GETLIMITTEXT, 0, 0));
        SendMessageA(field, EM_SETSEL, 99, 99);
        SetFocus(field);
        s_told.clear();
        ASSERT_TRUE(OrvikPostText(field, each.added.c_str()));
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
        EXPECT_EQ(each.typed, TextOf(field));
        const bool full = each.typed != each.begin + each.added;
        EXPECT_EQ(full, s_told.find("full|") != s_told.npos) << each.added;
        SetWindowTextA(field, each.begin.c_str());
        SendMessageA(field, EM_SETSEL, 99, 99);
        Ask(field, EM_REPLACESEL, TRUE, each.added.c_str());
        EXPECT_EQ(each.put, TextOf(field));
        DestroyWindow(field);
    }
}

TEST_F(Utf8Window, LettersAreTypedInUtf16) {
    SetFocus(top);
    s_told.clear();
    ASSERT_TRUE(OrvikPostText(top, kAll));
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
    EXPECT_EQ("97|229|8364|55356|57121|122|", s_told);
    const HWND field = Make("Edit", 0);
    SetFocus(field);
    ASSERT_TRUE(OrvikPostText(field, kAll));
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
    EXPECT_EQ(kAll, TextOf(field));
}

TEST_F(Utf8Window, AProcedureOverAControlSeesUtf8) {
    const HWND field = Make("Edit", 0);
    g_seen.clear();
    g_super = reinterpret_cast<WNDPROC>(SetWindowLongPtrA(field, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Over)));
    ASSERT_NE(nullptr, g_super);
    EXPECT_EQ(reinterpret_cast<LONG_PTR>(&Over), GetWindowLongPtrA(field, GWLP_WNDPROC));
    SetWindowTextA(field, kAll);
    EXPECT_EQ(kAll, TextOf(field));
    SendMessageA(field, EM_SETSEL, 6, 10);
    Ask(field, EM_REPLACESEL, TRUE, kOhm);
    EXPECT_EQ(std::string("a\xC3\xA5\xE2\x82\xACk\xCE\xA9z"), TextOf(field));
    EXPECT_EQ(std::string(kAll) + "[6,10]", g_seen);
    SetWindowLongPtrA(field, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(g_super));
    SetWindowTextA(field, kOhm);
    EXPECT_EQ(kOhm, TextOf(field));
    EXPECT_EQ(std::string(kAll) + "[6,10]", g_seen);
}

TEST_F(Utf8Window, MenusSayTheirTexts) {
    const HMENU menu = CreatePopupMenu();
    ASSERT_TRUE(AppendMenuA(menu, MF_STRING, 1, kOhm));
    ASSERT_TRUE(InsertMenuA(menu, 0, MF_BYPOSITION | MF_STRING, 2, "old"));
    ASSERT_TRUE(ModifyMenuA(menu, 2, MF_BYCOMMAND | MF_STRING, 2, kAll));
    char text[32] = "";
    EXPECT_EQ(3, GetMenuStringA(menu, 1, nullptr, 0, MF_BYCOMMAND));
    EXPECT_EQ(3, GetMenuStringA(menu, 1, text, sizeof text, MF_BYCOMMAND));
    EXPECT_STREQ(kOhm, text);
    EXPECT_EQ(11, GetMenuStringA(menu, 0, text, sizeof text, MF_BYPOSITION));
    EXPECT_STREQ(kAll, text);
    DestroyMenu(menu);
}

TEST_F(Utf8Window, DialogsSayTheirTexts) {
    // One field and nothing else, in the template's own UTF-16.
    std::vector<WORD> source;
    const auto number = [&](DWORD value) { source.push_back(LOWORD(value)), source.push_back(HIWORD(value)); };
    const auto words = [&](std::initializer_list<int> values) {
        for (const int value : values) source.push_back(static_cast<WORD>(value));
    };
    number(WS_POPUP | WS_CAPTION), number(0);
    words({1, 0, 0, 100, 50, 0, 0, 0x3A9, 0x6E29, 0});
    if (source.size() % 2 != 0) source.push_back(0);
    number(WS_CHILD | WS_VISIBLE), number(0);
    words({0, 0, 50, 12, 5, 0xFFFF, 0x81, 0xD83C, 0xDF21, 0, 0});
    const HWND dialog = CreateDialogIndirectParamA(
        GetModuleHandleA(nullptr), reinterpret_cast<LPCDLGTEMPLATE>(source.data()), top,
        [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; }, 0);
    ASSERT_NE(nullptr, dialog);
    EXPECT_EQ("\xCE\xA9\xE6\xB8\xA9", TextOf(dialog));
    EXPECT_EQ("\xF0\x9F\x8C\xA1", TextOf(GetDlgItem(dialog, 5)));
    SetWindowTextA(GetDlgItem(dialog, 5), kAll);
    EXPECT_EQ(kAll, TextOf(GetDlgItem(dialog, 5)));
    DestroyWindow(dialog);
}

TEST_F(Utf8Window, ADrawnTextIsAsWideAsItsLetters) {
    const HDC dc = GetDC(top);
    const HFONT font = CreateFontA(-20, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, "DejaVu Sans");
    const HGDIOBJ before = SelectObject(dc, font);
    const auto width = [dc](const std::string& text) {
        SIZE size = {};
        EXPECT_TRUE(GetTextExtentPoint32A(dc, text.c_str(), static_cast<int>(text.size()), &size));
        return size.cx;
    };
    EXPECT_EQ(width("k") + width("\xCE\xA9") + width(" ") + width("\xC3\xA5"), width("k\xCE\xA9 \xC3\xA5"));
    EXPECT_LT(width("\xCE\xA9"), width("\xC3\x8E") + width("\xC2\xA9"));  // not its two bytes
    RECT box = {};
    EXPECT_GT(DrawTextA(dc, kOhm, -1, &box, DT_CALCRECT | DT_SINGLELINE), 0);
    EXPECT_EQ(width(kOhm), box.right);
    int fit = 0, widths[3] = {};
    SIZE size = {};
    EXPECT_TRUE(GetTextExtentExPointA(dc, kOhm, 3, width("k") + 1, &fit, widths, &size));
    EXPECT_EQ(1, fit);
    EXPECT_EQ(width("k"), widths[0]);
    LOGFONTA back = {};
    EXPECT_EQ(static_cast<int>(sizeof back), GetObjectA(font, sizeof back, &back));
    EXPECT_STREQ("DejaVu Sans", back.lfFaceName);
    DeleteObject(SelectObject(dc, before));
    ReleaseDC(top, dc);
}
