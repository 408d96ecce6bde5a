// Every control in one dialog, drawn. The pictures stay in the folder that ORVIK_PICTURES names, for people to look at.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "afx/common_controls.h"
#include "afx/controls.h"
#include "afx/dialog.h"
#include "res/ids.h"
#include "tests/support/regional_settings.h"
#include "tests/support/window_picture.h"

namespace {

// How many colours an area of the window shows: one where nothing was drawn.
size_t ColoursIn(CWnd& window, HWND part) {
    RECT place;
    ::GetWindowRect(part, &place);
    ::MapWindowPoints(nullptr, window.m_hWnd, reinterpret_cast<POINT*>(&place), 2);
    const HDC dc = ::GetDC(window.m_hWnd);
    std::set<COLORREF> colours;
    for (LONG y = place.top; y < place.bottom; ++y)
        for (LONG x = place.left; x < place.right; ++x) colours.insert(::GetPixel(dc, x, y));
    ::ReleaseDC(window.m_hWnd, dc);
    return colours.size();
}

void Keep(CWnd& window, const std::string& name) {
    const char* folder = std::getenv("ORVIK_PICTURES");
    const std::string path = folder != nullptr ? folder + ("/" + name) + ".png" : name + ".png";
    EXPECT_TRUE(SaveWindowPicture(window.m_hWnd, path.c_str())) << GetLastError();
    if (folder == nullptr) std::remove(path.c_str());
}

}  // namespace

TEST(DialogPictures, EveryControl) {
    CDialog dialog;
    ASSERT_TRUE(dialog.Create(IDD_ORVIK_PROPERTIES));
    dialog.MoveWindow(20, 20, 520, 420);
    for (const int id : {IDC_ORVIK_GRID_PLACE, IDOK, IDC_ORVIK_CLOSE}) dialog.GetDlgItem(id)->DestroyWindow();
    const WPARAM font = static_cast<WPARAM>(dialog.SendMessage(WM_GETFONT));
    std::vector<HWND> made;
    const auto add = [&](const char* name, const char* text, DWORD style, int x, int y, int width, int height,
                         DWORD exStyle = 0) {
        const HWND control = ::CreateWindowExA(exStyle, name, text, WS_CHILD | WS_VISIBLE | style, x, y, width, height,
                                               dialog.m_hWnd, nullptr, nullptr, nullptr);
        ::SendMessageA(control, WM_SETFONT, font, FALSE);
        made.push_back(control);
        return control;
    };
    add("Static", "A text that is too long for one line and goes on to the next", SS_LEFT, 10, 10, 180, 40);
    add("Static", "Right", SS_RIGHT, 10, 52, 180, 16);
    add("Static", "", SS_ETCHEDHORZ, 10, 72, 180, 2);
    const HWND field = add("Edit", "one line of text", WS_TABSTOP | ES_AUTOHSCROLL, 10, 80, 180, 22, WS_EX_CLIENTEDGE);
    add("Edit", "secret", ES_PASSWORD, 10, 106, 180, 22, WS_EX_CLIENTEDGE);
    add("Edit", "several lines\r\nof text, the second of which is wrapped\r\nthree", ES_MULTILINE | WS_VSCROLL, 10, 132, 180, 64,
        WS_EX_CLIENTEDGE);
    add("Edit", "disabled", WS_DISABLED, 10, 200, 180, 22, WS_EX_CLIENTEDGE);
    add("Button", "Group", BS_GROUPBOX, 200, 4, 150, 100);
    ::SendMessageA(add("Button", "&Check", BS_AUTOCHECKBOX, 210, 22, 130, 18), BM_SETCHECK, 1, 0);
    ::SendMessageA(add("Button", "Third", BS_AUTO3STATE, 210, 42, 130, 18), BM_SETCHECK, 2, 0);
    ::SendMessageA(add("Button", "On", WS_GROUP | BS_AUTORADIOBUTTON, 210, 62, 130, 18), BM_SETCHECK, 1, 0);
    add("Button", "Off", BS_AUTORADIOBUTTON | WS_DISABLED, 210, 82, 130, 18);
    add("Button", "&Default", BS_DEFPUSHBUTTON, 370, 10, 90, 26);
    add("Button", "St\xE4ng", BS_PUSHBUTTON, 370, 42, 90, 26);
    add("Button", "Disabled", WS_DISABLED, 370, 74, 90, 26);
    const HWND combo = add("ComboBox", "", CBS_DROPDOWNLIST, 200, 112, 150, 120);
    for (const char* text : {"First", "Second"}) ::SendMessageA(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
    ::SendMessageA(combo, CB_SETCURSEL, 1, 0);
    const HWND list = add("ListBox", "", LBS_NOTIFY | WS_VSCROLL | LBS_NOINTEGRALHEIGHT, 200, 146, 150, 76, WS_EX_CLIENTEDGE);
    for (int i = 0; i < 12; ++i)
        ::SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(("Item " + std::to_string(i)).c_str()));
    ::SendMessageA(list, LB_SETCURSEL, 2, 0);
    CProgressCtrl bar;
    ASSERT_TRUE(bar.Create(WS_VISIBLE, CRect(370, 112, 500, 132), &dialog, 900));
    bar.SetPos(42);
    made.push_back(bar.m_hWnd);
    const HWND scroll = add("ScrollBar", "", SBS_HORZ, 370, 140, 130, 18);
    SCROLLINFO info = {sizeof info, SIF_ALL, 0, 99, 20, 30, 0};
    ::SetScrollInfo(scroll, SB_CTL, &info, TRUE);
    CListCtrl rows;
    ASSERT_TRUE(rows.Create(WS_VISIBLE | WS_BORDER | LVS_REPORT | LVS_SHOWSELALWAYS, CRect(10, 232, 500, 380), &dialog, 901));
    ::SendMessageA(rows.m_hWnd, WM_SETFONT, font, FALSE);
    rows.SetExtendedStyle(LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES);
    rows.InsertColumn(0, "Channel", LVCFMT_LEFT, 160);
    rows.InsertColumn(1, "Value", LVCFMT_RIGHT, 90);
    rows.InsertColumn(2, "State", LVCFMT_CENTER, 110);
    for (int i = 0; i < 40; ++i) {
        rows.InsertItem(i, ("Temperatur " + std::to_string(i)).c_str());
        rows.SetItemText(i, 1,
                         (std::to_string(20 + i) + ",5 \xB0"
                                                   "C")
                             .c_str());
        rows.SetItemText(i, 2, i % 3 == 0 ? "alarm" : "good");
    }
    rows.SetItemState(1, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    made.push_back(rows.m_hWnd);
    dialog.ShowWindow(SW_SHOW);
    dialog.GotoDlgCtrl(CWnd::FromHandle(field));
    Keep(dialog, "controls");
    for (const HWND control : made) {
        char name[64];
        ::GetClassNameA(control, name, sizeof name);
        EXPECT_GE(ColoursIn(dialog, control), 2u) << name << " " << &control - made.data();
    }
}

TEST(DialogPictures, TheModulesDialogs) {
    for (const bool swedish : {false, true}) {
        const TextLanguage chosen(swedish ? LANG_SWEDISH : LANG_ENGLISH);
        const std::string language = swedish ? "_sv" : "_en";
        CDialog properties;
        ASSERT_TRUE(properties.Create(IDD_ORVIK_PROPERTIES));
        properties.ShowWindow(SW_SHOW);
        Keep(properties, "properties" + language);
        CDialog progress;
        ASSERT_TRUE(progress.Create(IDD_ORVIK_PROGRESS));
        progress.SetDlgItemText(IDC_ORVIK_MESSAGE, swedish ? "H\xE4mtar m\xE4tv\xE4rden" : "Downloading readings");
        progress.SetDlgItemText(IDC_ORVIK_MESSAGE2, swedish ? "Block 12 av 30" : "Block 12 of 30");
        progress.SetDlgItemText(IDC_ORVIK_PERCENT, "42 %");
        progress.SendDlgItemMessage(IDC_ORVIK_PROGRESS, PBM_SETPOS, 42);
        progress.ShowWindow(SW_SHOW);
        Keep(progress, "progress" + language);
        EXPECT_GE(ColoursIn(progress, ::GetDlgItem(progress.m_hWnd, IDCANCEL)), 2u);
    }
}
