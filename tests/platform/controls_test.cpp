// The standard controls by their messages: what each answers, and what it tells its parent. One table serves both homes.
#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "platform/house_text_internal.h"
#include "tests/platform/control_host.h"
#include "tests/support/table.h"

namespace {

class Progress : public ControlHost {};

TEST_F(Progress, Messages) {
    Make("msctls_progress32", 0);
    using Row = std::tuple<UINT, WPARAM, LPARAM, LRESULT, LRESULT>;
    for (const auto& [message, wParam, lParam, answer, position] :
         {Row{PBM_GETPOS, 0, 0, 0, 0}, Row{PBM_SETRANGE32, 0, 200, MAKELONG(0, 100), 0}, Row{PBM_SETPOS, 100, 0, 0, 100},
          Row{PBM_DELTAPOS, 50, 0, 100, 150}, Row{PBM_DELTAPOS, 100, 0, 150, 200},  // held at the end
          Row{PBM_SETPOS, 190, 0, 200, 190}, Row{PBM_SETSTEP, 15, 0, 10, 190},
          Row{PBM_STEPIT, 0, 0, 190, 5},  // beyond the end a step starts over
          Row{PBM_SETPOS, static_cast<WPARAM>(-5), 0, 5, 0}, Row{PBM_SETRANGE, 0, MAKELPARAM(10, 20), MAKELONG(0, 200), 10},
          Row{PBM_GETRANGE, TRUE, 0, 10, 10}, Row{PBM_GETRANGE, FALSE, 0, 20, 10}}) {
        EXPECT_EQ(Send(message, wParam, lParam), answer) << message - WM_USER;
        EXPECT_EQ(Send(PBM_GETPOS), position) << message - WM_USER;
    }
    PBRANGE range = {};
    Ask(PBM_GETRANGE, TRUE, &range);
    EXPECT_EQ(range.iLow, 10);
    EXPECT_EQ(range.iHigh, 20);
    Send(PBM_SETRANGE32, static_cast<WPARAM>(-100000), 100000), Send(PBM_SETPOS, static_cast<WPARAM>(-70000));
    EXPECT_EQ(static_cast<int>(Send(PBM_GETPOS)), -70000);
}

class Buttons : public ControlHost {
protected:
    Buttons() { names = {{BN_CLICKED, "click"}, {BN_DBLCLK, "double"}, {BN_SETFOCUS, "focus"}, {BN_KILLFOCUS, "blur"}}; }
};

TEST_F(Buttons, ClickByKind) {
    struct Row {
        DWORD style;
        LRESULT codes;
        int checks[3];  // after each of three clicks
        const char* told;
    };
    for (const Row& kind :
         {Row{BS_PUSHBUTTON, DLGC_BUTTON | DLGC_UNDEFPUSHBUTTON, {0, 0, 0}, "click"},
          Row{BS_DEFPUSHBUTTON, DLGC_BUTTON | DLGC_DEFPUSHBUTTON, {0, 0, 0}, "click"},
          Row{BS_CHECKBOX, DLGC_BUTTON, {0, 0, 0}, "click"}, Row{BS_AUTOCHECKBOX, DLGC_BUTTON, {1, 0, 1}, "click"},
          Row{BS_AUTO3STATE, DLGC_BUTTON, {1, 2, 0}, "click"},
          Row{BS_AUTORADIOBUTTON, DLGC_BUTTON | DLGC_RADIOBUTTON, {1, 1, 1}, "click"}}) {
        Make("Button", kind.style, "&Press", 100, 30);
        EXPECT_EQ(Send(WM_GETDLGCODE), kind.codes) << kind.style;
        for (const int check : kind.checks) {
            Click(5, 5);
            EXPECT_EQ(Send(BM_GETCHECK), check) << kind.style;
            EXPECT_EQ(Told(), kind.told) << kind.style;
        }
        DestroyWindow(control);
    }
}

TEST_F(Buttons, MouseAndKeys) {
    Make("Button", BS_AUTOCHECKBOX | BS_NOTIFY, "x", 100, 30);
    SetFocus(control);
    EXPECT_EQ(Told(), "focus");
    Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    EXPECT_EQ(GetCapture(), control);
    EXPECT_EQ(Send(BM_GETSTATE) & 0xF, BST_PUSHED | BST_FOCUS);
    Send(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(500, 5));  // off the button: let go without a click
    EXPECT_EQ(Send(BM_GETSTATE) & 0xF, BST_FOCUS);
    Send(WM_LBUTTONUP, 0, MAKELPARAM(500, 5));
    EXPECT_EQ(Told(), "");
    EXPECT_EQ(GetCapture(), nullptr);
    Send(WM_KEYDOWN, VK_SPACE, 1);
    EXPECT_EQ(Send(BM_GETSTATE) & 0xF, BST_PUSHED | BST_FOCUS);
    Send(WM_KEYUP, VK_SPACE, static_cast<LPARAM>(0xC0000001));
    EXPECT_EQ(Told(), "click");
    EXPECT_EQ(Send(BM_GETCHECK), BST_CHECKED);
    Send(BM_SETCHECK, BST_UNCHECKED);
    EXPECT_EQ(Told(), "");
    Send(BM_CLICK);
    EXPECT_EQ(Told(), "click");
    EXPECT_EQ(Send(BM_GETSTATE) & 0xF, BST_CHECKED | BST_FOCUS);
    SetFocus(parent);
    EXPECT_EQ(Told(), "blur");
    SetWindowTextA(control, "y");
    EXPECT_EQ(Text(), "y");
}

TEST_F(Buttons, OneRadioButtonOfAGroup) {
    HWND radios[4];
    for (int i = 0; i < 4; ++i) {
        radios[i] = Make("Button", BS_AUTORADIOBUTTON | (i == 0 || i == 3 ? WS_GROUP : 0), "r", 50, 20, 100 + i);
        SetWindowPos(radios[i], nullptr, 0, 30 * i, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    }
    const auto states = [&] {
        std::string out;
        for (const HWND each : radios) out += static_cast<char>('0' + SendMessageA(each, BM_GETCHECK, 0, 0));
        return out;
    };
    SendMessageA(radios[3], BM_CLICK, 0, 0), SendMessageA(radios[0], BM_CLICK, 0, 0);
    EXPECT_EQ(states(), "1001");
    SendMessageA(radios[2], BM_CLICK, 0, 0);
    EXPECT_EQ(states(), "0011");
    CheckRadioButton(parent, 100, 102, 101);
    EXPECT_EQ(states(), "0101");
    EXPECT_EQ(IsDlgButtonChecked(parent, 101), static_cast<UINT>(BST_CHECKED));
    EXPECT_TRUE(GetWindowLongPtrA(radios[1], GWL_STYLE) & WS_TABSTOP);  // the chosen one is the tab stop
    EXPECT_FALSE(GetWindowLongPtrA(radios[2], GWL_STYLE) & WS_TABSTOP);
}

class Edits : public ControlHost {
public:
    Edits() {
        names = {
            {EN_SETFOCUS, "focus"}, {EN_KILLFOCUS, "blur"}, {EN_CHANGE, "change"}, {EN_UPDATE, "update"}, {EN_MAXTEXT, "max"}};
    }
    // Text with the selection between "[" and "]".
    std::string State() {
        std::string text = Text();
        const LRESULT selection = Send(EM_GETSEL);
        text.insert(HIWORD(selection), "]"), text.insert(LOWORD(selection), "[");
        return text;
    }
};

TEST_F(Edits, OneLine) {
    Make("Edit", ES_AUTOHSCROLL, "start");
    EXPECT_EQ(State(), "[]start");
    EXPECT_EQ(Send(WM_GETDLGCODE), DLGC_HASSETSEL | DLGC_WANTCHARS | DLGC_WANTARROWS);
    SetFocus(control);
    EXPECT_EQ(Told(), "focus");

    struct Step {
        const char* what;
        void (*act)(Edits&);
        const char *state, *told;  // null: homes tell more or less of it
    };
    for (const Step& step :
         Table(Step{"set text", [](Edits& e) { SetWindowTextA(e.control, "hello world"); }, "[]hello world", "update change"},
               Step{"select", [](Edits& e) { e.Send(EM_SETSEL, 6, 11); }, "hello [world]", ""},
               Step{"type over", [](Edits& e) { e.Type("x"); }, "hello x[]", "update change"},
               Step{"undo", [](Edits& e) { e.Send(EM_UNDO); }, "hello [world]", nullptr},
               Step{"none", [](Edits& e) { e.Send(EM_SETSEL, static_cast<WPARAM>(-1), 0); }, "hello world[]", ""},
               Step{"backspace", [](Edits& e) { e.Type("\b\b"); }, "hello wor[]", "update change update change"},
               Step{"home", [](Edits& e) { e.Press(VK_HOME); }, "[]hello wor", ""},
               Step{"right, extending", [](Edits& e) { e.Press(VK_RIGHT, VK_SHIFT); }, "[h]ello wor", ""},
               Step{"caret", [](Edits& e) { e.Send(EM_SETSEL, 1, 1); }, "h[]ello wor", ""},
               Step{"next word", [](Edits& e) { e.Press(VK_RIGHT, VK_CONTROL); }, "hello []wor", ""},
               Step{"delete", [](Edits& e) { e.Press(VK_DELETE); }, "hello []or", "update change"},
               Step{"end", [](Edits& e) { e.Press(VK_END, VK_SHIFT); }, "hello [or]", ""},
               Step{"cut", [](Edits& e) { e.Send(WM_CUT); }, "hello []", "update change"},
               Step{"paste", [](Edits& e) { e.Send(WM_PASTE); }, "hello or[]", "update change"},
               Step{"all", [](Edits& e) { e.Send(EM_SETSEL, 0, -1); }, "[hello or]", ""},
               Step{"clear", [](Edits& e) { e.Send(WM_CLEAR); }, "[]", "update change"},
               Step{"limit", [](Edits& e) { e.Send(EM_LIMITTEXT, 4); }, "[]", ""},
               Step{"typing to the limit", [](Edits& e) { e.Type("abcd"); }, "abcd[]",
                    "update change update change update change update change"},
               Step{"typing beyond", [](Edits& e) { e.Type("e"); }, "abcd[]", nullptr},
               Step{"replace", [](Edits& e) { e.Send(EM_SETSEL, 1, 3), e.Ask(EM_REPLACESEL, TRUE, "Q"); }, "aQ[]d",
                    "update change"},
               Step{"read-only", [](Edits& e) { e.Send(EM_SETREADONLY, TRUE), e.Type("z\b"), e.Press(VK_DELETE); }, "aQ[]d", ""},
               Step{"writable", [](Edits& e) { e.Send(EM_SETREADONLY, FALSE), e.Type("\r\t"); }, "aQ[]d", ""})) {
        step.act(*this);
        EXPECT_EQ(State(), step.state) << step.what;
        const std::string told = Told();
        if (step.told != nullptr) {
            EXPECT_EQ(told, step.told) << step.what;
        }
    }
    EXPECT_EQ(Send(EM_GETMODIFY), 1);
    SetWindowTextA(control, "longer than the limit");  // which is for the user alone
    EXPECT_EQ(Text(), "longer than the limit");
    EXPECT_EQ(Send(EM_GETMODIFY), 0);
    EXPECT_EQ(Send(EM_CANUNDO), 0);
    EXPECT_EQ(Send(EM_GETLIMITTEXT), 4);
    Told();
    SetFocus(parent);
    EXPECT_EQ(Told(), "blur");
    char few[4];
    EXPECT_EQ(GetWindowTextA(control, few, sizeof few), 3);
    EXPECT_STREQ(few, "lon");
}

TEST_F(Edits, Styles) {
    using Row = std::tuple<DWORD, const char*, const char*>;
    for (const auto& [style, typed, text] :
         {Row{ES_NUMBER, "1a-2", "12"}, Row{ES_UPPERCASE, "ab\xE5", "AB\xC5"}, Row{ES_PASSWORD, "secret", "secret"}}) {
        Make("Edit", style);
        Type(typed);
        EXPECT_EQ(Text(), orvik::detail::HouseFrom1252(text));
        EXPECT_EQ(Send(EM_GETPASSWORDCHAR) != 0, style == ES_PASSWORD);
        DestroyWindow(control);
    }
}

TEST_F(Edits, SeveralLines) {
    Make("Edit", ES_MULTILINE | ES_AUTOHSCROLL | ES_AUTOVSCROLL | ES_WANTRETURN);
    EXPECT_EQ(Send(WM_GETDLGCODE), DLGC_HASSETSEL | DLGC_WANTCHARS | DLGC_WANTARROWS | DLGC_WANTALLKEYS);
    SetWindowTextA(control, "one\r\ntwo\r\n\r\nfour");
    EXPECT_EQ(Told(), "");  // a text set by the program is not told of here
    EXPECT_EQ(Send(EM_GETLINECOUNT), 4);
    using Row = std::tuple<UINT, WPARAM, LRESULT>;
    for (const auto& [message, wParam, answer] :
         {Row{EM_LINEINDEX, 0, 0}, Row{EM_LINEINDEX, 1, 5}, Row{EM_LINEINDEX, 2, 10}, Row{EM_LINEINDEX, 3, 12},
          Row{EM_LINEINDEX, 4, -1}, Row{EM_LINEFROMCHAR, 4, 0}, Row{EM_LINEFROMCHAR, 5, 1}, Row{EM_LINEFROMCHAR, 99, 3},
          Row{EM_LINELENGTH, 0, 3}, Row{EM_LINELENGTH, 6, 3}, Row{EM_LINELENGTH, 10, 0}, Row{EM_LINELENGTH, 12, 4}})
        EXPECT_EQ(Send(message, wParam), answer) << message - EM_GETSEL << " " << wParam;
    char line[16] = {16};
    EXPECT_EQ(Ask(EM_GETLINE, 3, line), 4);
    EXPECT_EQ(std::string(line, 4), "four");
    Send(EM_SETSEL, 3, 3);
    Type("\r");
    EXPECT_EQ(Text(), "one\r\n\r\ntwo\r\n\r\nfour");
    EXPECT_EQ(Told(), "update change");
    Type("\b");
    EXPECT_EQ(State(), "one[]\r\ntwo\r\n\r\nfour");
    Press(VK_DOWN);
    EXPECT_EQ(State(), "one\r\ntwo[]\r\n\r\nfour");
    Press(VK_RIGHT);
    EXPECT_EQ(State(), "one\r\ntwo\r\n[]\r\nfour");
    Press(VK_END, VK_CONTROL);
    EXPECT_EQ(State(), "one\r\ntwo\r\n\r\nfour[]");
}

class Lists : public ControlHost {
protected:
    Lists() { names = {{LBN_SELCHANGE, "change"}, {LBN_DBLCLK, "double"}}; }
};

TEST_F(Lists, ListBox) {
    Make("ListBox", LBS_NOTIFY | LBS_SORT);
    for (const char* text : {"pear", "Apple", "fig"}) Ask(LB_ADDSTRING, 0, text);
    char text[16];
    EXPECT_EQ(Ask(LB_GETTEXT, 0, text), 5);
    EXPECT_STREQ(text, "Apple");
    struct Row {
        UINT message;
        WPARAM wParam;
        const char* text;
        LRESULT answer;
    };
    for (const Row& step :
         {Row{LB_GETCOUNT, 0, nullptr, 3}, Row{LB_GETCURSEL, 0, nullptr, LB_ERR},
          Row{LB_FINDSTRING, static_cast<WPARAM>(-1), "P", 2}, Row{LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), "P", LB_ERR},
          Row{LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), "FIG", 1},
          Row{LB_INSERTSTRING, 1, "zz", 1},  // unsorted where it is put
          Row{LB_SETCURSEL, 2, nullptr, 2}, Row{LB_GETSEL, 2, nullptr, 1}, Row{LB_DELETESTRING, 0, nullptr, 3},
          Row{LB_GETCURSEL, 0, nullptr, 1}, Row{LB_SETCURSEL, 9, nullptr, LB_ERR},
          Row{LB_SETCURSEL, static_cast<WPARAM>(-1), nullptr, LB_ERR}, Row{LB_SELECTSTRING, static_cast<WPARAM>(-1), "pe", 2},
          Row{LB_GETTEXTLEN, 2, nullptr, 4}, Row{LB_GETTEXTLEN, 3, nullptr, LB_ERR}})
        EXPECT_EQ(Ask(step.message, step.wParam, step.text), step.answer) << step.message;
    EXPECT_EQ(Told(), "");
    Send(LB_SETITEMDATA, 2, 4711);
    EXPECT_EQ(Send(LB_GETITEMDATA, 2), 4711);
    Press(VK_UP);
    EXPECT_EQ(Told(), "change");
    EXPECT_EQ(Send(LB_GETCURSEL), 1);
    RECT row = {};
    Ask(LB_GETITEMRECT, 0, &row);
    Click(row.left + 2, row.top + 2);
    EXPECT_EQ(Told(), "4 change");  // the focus came with the click
    EXPECT_EQ(Send(LB_GETCURSEL), 0);
    Send(LB_RESETCONTENT);
    EXPECT_EQ(Send(LB_GETCOUNT), 0);
}

class Combos : public ControlHost {
protected:
    Combos() {
        names = {{CBN_SELCHANGE, "change"}, {CBN_SELENDOK, "ok"},     {CBN_DROPDOWN, "drop"},
                 {CBN_CLOSEUP, "close"},    {CBN_EDITCHANGE, "edit"}, {CBN_EDITUPDATE, "update"}};
    }
};

TEST_F(Combos, DropDownList) {
    Make("ComboBox", CBS_DROPDOWNLIST | WS_VSCROLL, "", 120, 200);
    for (const char* text : {"one", "two", "three"}) Ask(CB_ADDSTRING, 0, text);
    EXPECT_EQ(Send(CB_GETCURSEL), CB_ERR);
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(Send(CB_SETCURSEL, 1), 1);
    EXPECT_EQ(Text(), "two");
    EXPECT_EQ(Told(), "");
    EXPECT_EQ(Ask(CB_SELECTSTRING, static_cast<WPARAM>(-1), "TH"), 2);
    EXPECT_EQ(Send(CB_SETCURSEL, 7), CB_ERR);
    EXPECT_EQ(Ask(CB_INSERTSTRING, 0, "zero"), 0);
    EXPECT_EQ(Send(CB_GETCOUNT), 4);
    EXPECT_EQ(Ask(CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), "TWO"), 2);
    Send(CB_SETITEMDATA, 3, 99);
    EXPECT_EQ(Send(CB_GETITEMDATA, 3), 99);
    Send(CB_SETCURSEL, 0);
    SetFocus(control);
    Told();
    Press(VK_DOWN);
    EXPECT_EQ(Text(), "one");
    EXPECT_EQ(Told(), "ok change");
    Press(VK_END);
    EXPECT_EQ(Text(), "three");
    Told();
    Send(CB_SHOWDROPDOWN, TRUE);
    EXPECT_EQ(Send(CB_GETDROPPEDSTATE), 1);
    EXPECT_EQ(Told(), "drop");
    Send(CB_SHOWDROPDOWN, FALSE);
    EXPECT_EQ(Send(CB_GETDROPPEDSTATE), 0);
    EXPECT_NE(Told().find("close"), std::string::npos);
    RECT closed = {};
    GetClientRect(control, &closed);
    EXPECT_LT(closed.bottom, 40);  // the height it was made with is the list's
}

TEST_F(Combos, WithField) {
    Make("ComboBox", CBS_DROPDOWN | CBS_AUTOHSCROLL, "", 120, 200);
    for (const char* text : {"one", "two"}) Ask(CB_ADDSTRING, 0, text);
    SetWindowTextA(control, "free");
    EXPECT_EQ(Text(), "free");
    Told();
    Send(CB_SETCURSEL, 1);
    EXPECT_EQ(Text(), "two");
    EXPECT_EQ(Told(), "");
    const HWND field = GetWindow(control, GW_CHILD);
    ASSERT_NE(field, nullptr);
    SendMessageA(field, EM_SETSEL, 0, -1), SendMessageA(field, WM_CHAR, 'x', 1);
    EXPECT_EQ(Text(), "x");
    EXPECT_EQ(Told(), "update edit");
    Send(CB_SETCURSEL, 0);
    SendMessageA(field, WM_KEYDOWN, VK_DOWN, 1);  // the list's keys work in the field
    EXPECT_EQ(Text(), "two");
    EXPECT_NE(Told().find("change"), std::string::npos);
}

class ScrollBars : public ControlHost {};

TEST_F(ScrollBars, RangeAndKeys) {
    Make("ScrollBar", SBS_VERT, "", 20, 150);
    SCROLLINFO info = {sizeof info, SIF_ALL, 0, 99, 10, 95, 0};
    EXPECT_EQ(SetScrollInfo(control, SB_CTL, &info, TRUE), 90);  // the last page is whole
    info = {sizeof info, SIF_ALL, 0, 0, 0, 0, 0};
    EXPECT_TRUE(GetScrollInfo(control, SB_CTL, &info));
    EXPECT_EQ(std::tuple(info.nMax, info.nPage, info.nPos), std::tuple(99, 10u, 90));
    EXPECT_EQ(SetScrollPos(control, SB_CTL, 30, TRUE), 90);
    EXPECT_EQ(GetScrollPos(control, SB_CTL), 30);
    // The bar may stay with the mouse until the button is up again, so that comes first.
    const auto click = [&](int y) {
        PostMessageA(control, WM_LBUTTONUP, 0, MAKELPARAM(5, y));
        Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, y));
        MSG message;
        while (PeekMessageA(&message, control, WM_MOUSEFIRST, WM_MOUSELAST, PM_REMOVE)) DispatchMessageA(&message);
    };
    click(3);
    EXPECT_EQ(Told().substr(0, 2), "v0");  // a line up
    click(147);
    EXPECT_EQ(Told().substr(0, 2), "v1");
    click(125);
    EXPECT_EQ(Told().substr(0, 2), "v3");  // a page down
}

class Statics : public ControlHost {
protected:
    Statics() { names = {{STN_CLICKED, "click"}}; }
};

TEST_F(Statics, TextsAndClicks) {
    Make("Static", SS_LEFT, "quiet");
    EXPECT_EQ(Send(WM_GETDLGCODE), DLGC_STATIC);
    EXPECT_EQ(Send(WM_NCHITTEST, 0, MAKELPARAM(15, 15)), HTTRANSPARENT);
    SetWindowTextA(control, orvik::detail::HouseFrom1252("r\xE4knas").c_str());
    EXPECT_EQ(Text(), orvik::detail::HouseFrom1252("r\xE4knas"));
    const HFONT font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    Send(WM_SETFONT, reinterpret_cast<WPARAM>(font));
    EXPECT_EQ(reinterpret_cast<HFONT>(Send(WM_GETFONT)), font);
    DestroyWindow(control);
    Make("Static", SS_LEFT | SS_NOTIFY, "loud");
    Send(WM_LBUTTONDOWN, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(Told(), "click");
    DestroyWindow(control);
    Make("Static", SS_ICON);
    const HICON icon = LoadCursorA(nullptr, IDC_ARROW);
    EXPECT_EQ(Send(STM_SETICON, reinterpret_cast<WPARAM>(icon)), 0);
    EXPECT_EQ(reinterpret_cast<HICON>(Send(STM_GETICON)), icon);
}

}  // namespace
