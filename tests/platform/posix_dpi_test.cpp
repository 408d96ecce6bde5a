// Windows of the Linux twin on screens of other dots an inch.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "platform/dpi.h"
#include "platform/win32.h"
#include "tests/support/last_error.h"

namespace {
constexpr UINT kScreens[] = {96, 120, 144, 192, 288};

std::vector<std::string> g_told;

LRESULT CALLBACK Telling(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    static const std::map<UINT, const char*> kNames = {{WM_GETDPISCALEDSIZE, "size?"},
                                                       {WM_DPICHANGED, "changed"},
                                                       {WM_DPICHANGED_BEFOREPARENT, "before"},
                                                       {WM_DPICHANGED_AFTERPARENT, "after"}};
    if (const auto name = kNames.find(message); name != kNames.end()) {
        char text[16] = "";
        GetWindowTextA(window, text, sizeof text);
        g_told.push_back(std::string(text) + " " + name->second + " " + std::to_string(GetDpiForWindow(window)));
    }
    if (message == WM_DPICHANGED) {
        const RECT& place = *reinterpret_cast<const RECT*>(lParam);
        EXPECT_EQ(LOWORD(wParam), HIWORD(wParam));
        MoveWindow(window, place.left, place.top, place.right - place.left, place.bottom - place.top, TRUE);
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

class Screens : public testing::Test {
protected:
    void SetUp() override {
        WNDCLASSA info{};
        info.lpfnWndProc = Telling;
        info.lpszClassName = "OrvikScreenTest";
        ASSERT_NE(RegisterClassA(&info), 0);
        g_told.clear();
    }
    void TearDown() override {
        EXPECT_TRUE(OrvikSetSystemDpi(USER_DEFAULT_SCREEN_DPI));
        EXPECT_TRUE(UnregisterClassA("OrvikScreenTest", nullptr));
    }
    static HWND Make(const char* name, HWND parent, DWORD style) {
        return CreateWindowExA(0, "OrvikScreenTest", name, style, 10, 20, 300, 200, parent, nullptr, nullptr, nullptr);
    }
    static RECT PlaceOf(HWND window) {
        RECT place{};
        GetWindowRect(window, &place);
        return place;
    }
};

// A dialog of every kind of control, in eight points.
HWND MakeDialog(HWND owner) {
    std::vector<WORD> source;
    const auto number = [&](DWORD value) { source.push_back(LOWORD(value)), source.push_back(HIWORD(value)); };
    const auto words = [&](std::initializer_list<int> values) {
        for (const int value : values) source.push_back(static_cast<WORD>(value));
    };
    const auto text = [&](const char* letters) {
        do source.push_back(static_cast<unsigned char>(*letters));
        while (*letters++ != 0);
    };
    struct Item {
        int atom;
        DWORD style;
        int x, y, width, height;
        const char* title;
    };
    const Item items[] = {{0x82, SS_LEFT, 7, 7, 81, 8, "Interval of the readings"},
                          {0x81, ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP, 93, 5, 50, 13, "1.5 s"},
                          {0x80, BS_AUTOCHECKBOX | WS_TABSTOP, 7, 23, 90, 10, "Keep the ranges"},
                          {0x80, BS_GROUPBOX, 5, 36, 140, 33, "Axis"},
                          {0x85, CBS_DROPDOWNLIST | WS_TABSTOP, 11, 47, 60, 60, ""},
                          {0x83, LBS_NOTIFY | WS_BORDER | WS_TABSTOP, 77, 45, 61, 21, ""},
                          {0x80, BS_DEFPUSHBUTTON | WS_TABSTOP, 50, 74, 50, 14, "OK"}};
    number(WS_POPUP | WS_CAPTION | DS_SETFONT), number(0);
    words({static_cast<int>(std::size(items)), 11, 7, 151, 93, 0, 0, 0, 8});
    text("DejaVu Sans");
    for (int id = 100; const Item& item : items) {
        if (source.size() % 2 != 0) source.push_back(0);
        number(WS_CHILD | WS_VISIBLE | item.style), number(0);
        words({item.x, item.y, item.width, item.height, id++, 0xFFFF, item.atom});
        text(item.title);
        words({0});
    }
    const HWND dialog = CreateDialogIndirectParamA(
        nullptr, reinterpret_cast<LPCDLGTEMPLATEA>(source.data()), owner,
        [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; }, 0);
    for (const char* each : {"mm", "inch", "point"}) {
        SendMessageA(GetDlgItem(dialog, 104), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(each));
        SendMessageA(GetDlgItem(dialog, 105), LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(each));
    }
    SendMessageA(GetDlgItem(dialog, 104), CB_SETCURSEL, 0, 0);
    SendMessageA(GetDlgItem(dialog, 102), BM_SETCHECK, BST_CHECKED, 0);
    ShowWindow(dialog, SW_SHOWNOACTIVATE);
    return dialog;
}

std::vector<COLORREF> PixelsOf(HWND window) {
    RedrawWindow(window, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    RECT client{};
    GetClientRect(window, &client);
    const HDC dc = GetDC(window);
    std::vector<COLORREF> pixels;
    for (int y = 0; y < client.bottom; ++y) {
        for (int x = 0; x < client.right; ++x) pixels.push_back(GetPixel(dc, x, y));
    }
    ReleaseDC(window, dc);
    return pixels;
}
}  // namespace

TEST_F(Screens, AChangeIsToldFromTheBottomUpAndFromTheTopDown) {
    const HWND root = Make("root", nullptr, WS_POPUP), child = Make("child", root, WS_CHILD), low = Make("low", child, WS_CHILD);
    const HWND owned = Make("owned", root, WS_POPUP);
    EXPECT_TRUE(OrvikSetWindowDpi(root, 192, nullptr));
    const std::vector<std::string> expected = {"root size? 192",   "low before 192",  "child before 192",
                                               "root changed 192", "child after 192", "low after 192"};
    EXPECT_EQ(g_told, expected);
    const RECT twice{10, 20, 610, 420}, wanted{70, 80, 90, 100};
    EXPECT_TRUE(EqualRect(&twice, std::vector{PlaceOf(root)}.data()));
    g_told.clear();
    EXPECT_TRUE(OrvikSetWindowDpi(root, 192, &wanted));
    EXPECT_TRUE(g_told.empty()) << "nothing has changed";
    EXPECT_TRUE(OrvikSetWindowDpi(root, 120, &wanted));
    EXPECT_TRUE(EqualRect(&wanted, std::vector{PlaceOf(root)}.data()));

    // A window has its owner's dots, or else the system's, whatever the others have.
    EXPECT_EQ(GetDpiForWindow(owned), 96u);
    EXPECT_EQ(GetDpiForWindow(low), 120u);
    EXPECT_TRUE(OrvikSetSystemDpi(144));
    const HWND later = Make("later", nullptr, WS_POPUP), below = Make("below", root, WS_POPUP);
    EXPECT_EQ(GetDpiForWindow(later), 144u);
    EXPECT_EQ(GetDpiForWindow(below), 120u);
    EXPECT_EQ(OrvikDpiOf(nullptr), 144u);

    EXPECT_FAILS(GetDpiForWindow(nullptr), ERROR_INVALID_WINDOW_HANDLE);
    EXPECT_FAILS(OrvikSetWindowDpi(nullptr, 96, nullptr), ERROR_INVALID_WINDOW_HANDLE);
    for (const UINT bad : {0u, 47u, 961u}) EXPECT_FAILS(OrvikSetWindowDpi(root, bad, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_FAILS(OrvikSetWindowDpi(child, 96, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_FAILS(OrvikSetSystemDpi(0), ERROR_INVALID_PARAMETER);
    for (const HWND each : {later, root}) DestroyWindow(each);
}

TEST_F(Screens, MeasuresGrowByTheDots) {
    for (const UINT dpi : kScreens) {
        SCOPED_TRACE(dpi);
        EXPECT_EQ(GetSystemMetricsForDpi(SM_CXVSCROLL, dpi), MulDiv(17, static_cast<int>(dpi), 96));
        EXPECT_EQ(GetSystemMetricsForDpi(SM_CXSCREEN, dpi), 1920);
        NONCLIENTMETRICSA usual{}, metrics{};
        usual.cbSize = metrics.cbSize = sizeof metrics;
        ASSERT_TRUE(SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof usual, &usual, 0));
        ASSERT_TRUE(SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, dpi));
        EXPECT_EQ(metrics.lfMessageFont.lfHeight, MulDiv(usual.lfMessageFont.lfHeight, static_cast<int>(dpi), 96));
        EXPECT_FAILS(SystemParametersInfoForDpi(SPI_GETWORKAREA, 0, &metrics, 0, dpi), ERROR_INVALID_PARAMETER);
    }
}

TEST_F(Screens, AListHasTheDesktopsFontOfItsScreenUntilItIsGivenOne) {
    const HWND root = Make("root", nullptr, WS_POPUP);
    const HWND list =
        CreateWindowExA(0, WC_LISTVIEWA, "", WS_CHILD | LVS_REPORT, 0, 0, 200, 100, root, nullptr, nullptr, nullptr);
    const auto height = [&] {
        LOGFONTA font{};
        GetObjectA(reinterpret_cast<HFONT>(SendMessageA(list, WM_GETFONT, 0, 0)), sizeof font, &font);
        return font.lfHeight;
    };
    const LONG usual = height();
    for (const UINT dpi : {288u, 96u, 144u}) {
        EXPECT_TRUE(OrvikSetWindowDpi(root, dpi, nullptr));
        EXPECT_EQ(height(), OrvikScale(static_cast<int>(usual), dpi));
    }
    const auto given = reinterpret_cast<WPARAM>(GetStockObject(ANSI_FIXED_FONT));
    SendMessageA(list, WM_SETFONT, given, FALSE);
    EXPECT_TRUE(OrvikSetWindowDpi(root, 192, nullptr));
    EXPECT_EQ(static_cast<WPARAM>(SendMessageA(list, WM_GETFONT, 0, 0)), given);
    DestroyWindow(root);
}

TEST_F(Screens, ADialogThatComesToAScreenLooksAsOneMadeThere) {
    for (const UINT dpi : kScreens) {
        SCOPED_TRACE(dpi);
        EXPECT_TRUE(OrvikSetSystemDpi(dpi));
        const HWND made = MakeDialog(nullptr);
        EXPECT_TRUE(OrvikSetSystemDpi(dpi == 96 ? 192 : 96));
        const HWND moved = MakeDialog(nullptr);
        const RECT first = PlaceOf(moved);
        EXPECT_TRUE(OrvikSetWindowDpi(moved, 130, nullptr));  // by way of another
        EXPECT_TRUE(OrvikSetWindowDpi(moved, dpi, nullptr));
        const RECT place = PlaceOf(made), now = PlaceOf(moved);
        EXPECT_EQ(now.right - now.left, place.right - place.left);
        EXPECT_EQ(now.left, first.left);
        EXPECT_TRUE(PixelsOf(moved) == PixelsOf(made));
        // Letters have their room, and the base units those of their font.
        const HDC dc = GetDC(moved);
        SelectObject(dc, reinterpret_cast<HFONT>(SendMessageA(moved, WM_GETFONT, 0, 0)));
        SIZE label{};
        GetTextExtentPoint32A(dc, "Interval of the readings", 24, &label);
        const RECT room = PlaceOf(GetDlgItem(moved, 100));
        EXPECT_LE(label.cx, room.right - room.left);
        EXPECT_LE(label.cy, room.bottom - room.top);
        ReleaseDC(moved, dc);
        // What somebody has moved keeps its share of the dialog.
        const HWND button = GetDlgItem(moved, 106);
        SetWindowPos(button, nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        EXPECT_TRUE(OrvikSetWindowDpi(moved, 2 * dpi, nullptr));
        EXPECT_EQ(PlaceOf(button).left, PlaceOf(moved).left);
        DestroyWindow(made);
        DestroyWindow(moved);
    }
}
