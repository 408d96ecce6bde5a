// What windows say to who does not see them, and what is done when somebody asks them.
#include <map>

#include "platform/house_text_internal.h"
#include "platform/posix/screen/screen_loading_internal.h"
#include "tests/platform/window_log.h"
#include "tests/support/table.h"

using namespace orvik::detail;

namespace {
using Said = OrvikAccessible;
using Act = OrvikAccessibleAct;

class ListeningScreen final : public Screen {
public:
    void Changed(HWND) override {}
    void Damaged(HWND, const RECT&) override {}
    void AskForFile(FileQuestion, FileAnswer answer) override { answer(std::nullopt); }
    void Described(HWND window, std::shared_ptr<const Said> said) override { described[window] = std::move(said); }
    void End() override {}
    std::map<HWND, std::shared_ptr<const Said>> described;
};

const Said* Find(const Said& in, OrvikRole role, const std::string& name) {
    for (const Said& part : in.parts) {
        if (part.role == role && part.name == name) return &part;
        if (const Said* const found = Find(part, role, name)) return found;
    }
    return nullptr;
}

class AccessibleTest : public window_test::WindowLogTest {
protected:
    void SetUp() override {
        WindowLogTest::SetUp();
        m_before = UseScreen(&m_screen);
        m_window = Make("dialog", WS_OVERLAPPEDWINDOW, {10, 20, 410, 320});
    }
    void TearDown() override {
        WindowLogTest::TearDown();
        UseScreen(m_before);
    }
    HWND Add(LPCSTR windowClass, const std::string& text, DWORD style, const RECT& place, UINT_PTR id = 0) {
        return CreateWindowExA(0, windowClass, text.c_str(), WS_CHILD | WS_VISIBLE | style, place.left, place.top,
                               place.right - place.left, place.bottom - place.top, m_window, reinterpret_cast<HMENU>(id), nullptr,
                               nullptr);
    }
    // As a program with nothing else to do.
    static void Idle() {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
    }
    const Said& Listen() {
        ShowWindow(m_window, SW_SHOW);
        TheScreenHost().Listen();
        InvalidateRect(m_window, nullptr, TRUE);
        Idle();
        EXPECT_EQ(m_screen.described.count(m_window), 1u);
        return *m_screen.described[m_window];
    }
    void Ask(const Said* of, Act act) {
        ASSERT_NE(of, nullptr);
        act.part = of->part;
        TheScreenHost().Ask(m_window, of->window, act);
        Idle();
    }
    static std::string TextOf(HWND window) {
        char text[200] = "";
        GetWindowTextA(window, text, sizeof text);
        return Utf8FromHouse(text);
    }

    ListeningScreen m_screen;
    Screen* m_before = nullptr;
    HWND m_window = nullptr;
};
}  // namespace

TEST_F(AccessibleTest, FieldsAreCalledByTheirLabels) {
    Add("Static", "&Port && line:", 0, {10, 10, 90, 26});
    Add("Edit", "COM1", WS_TABSTOP, {100, 10, 200, 26});
    Add("Edit", "9600", WS_TABSTOP, {210, 10, 290, 26});
    Add("Button", "&Span", BS_AUTORADIOBUTTON, {10, 40, 90, 56});
    Add("Button", "Test", WS_TABSTOP, {300, 10, 380, 26});
    Add("Edit", "3 s", ES_READONLY, {100, 40, 200, 56});
    Add("ComboBox", "", CBS_DROPDOWNLIST, {100, 70, 200, 170});
    Add("Static", "not shown", 0, {0, 0, 9, 9});
    ShowWindow(GetWindow(GetWindow(m_window, GW_CHILD), GW_HWNDLAST), SW_HIDE);
    const Said& all = Listen();
    struct Case {
        const char* name;
        size_t at;
        OrvikRole role;
        const char *called, *value, *keys;
    };
    const Case cases[] = {{"before it", 1, OrvikRole::Edit, "Port & line:", "COM1", "Alt+P"},
                          {"in its line", 2, OrvikRole::Edit, "Port & line:", "9600", ""},
                          {"a choice", 3, OrvikRole::RadioButton, "Span", "", "Alt+S"},
                          {"beside a choice", 5, OrvikRole::Edit, "Span", "3 s", ""},
                          {"nothing there", 6, OrvikRole::ComboBox, "", "", ""}};
    ASSERT_EQ(all.parts.size(), 7u);
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        const Said& said = all.parts[each.at];
        EXPECT_EQ(said.role, each.role);
        EXPECT_EQ(said.name, each.called);
        EXPECT_EQ(said.value, each.value);
        EXPECT_EQ(said.keys, each.keys);
    }
    EXPECT_TRUE(all.parts[5].Is(Said::kReadOnly));
    EXPECT_EQ(all.parts[1].place.left, 100);
}

TEST_F(AccessibleTest, WhatIsAskedIsDoneWhereTheUserCould) {
    const HWND edit = Add("Edit", "", WS_TABSTOP, {10, 10, 200, 26});
    const HWND check = Add("Button", "Twice", BS_AUTOCHECKBOX, {10, 40, 90, 56});
    const HWND list = Add("ListBox", "", WS_TABSTOP | LBS_NOTIFY, {10, 60, 200, 110});
    for (const char* each : {"one", "two", "three", "four", "five", "six"})
        SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(each));
    SetWindowTextA(edit, HouseFromUtf8("k\u00E9 2").c_str());
    SendMessageA(edit, EM_SETSEL, 0, static_cast<LPARAM>(HouseFromUtf8("k\u00E9").size()));
    SetFocus(edit);
    const Said* field = &Listen().parts[0];
    EXPECT_TRUE(field->Is(Said::kFocused));
    EXPECT_EQ(field->value, "k\u00E9 2");
    EXPECT_EQ(field->selectedTo, 2u);  // letters

    Act act{Act::Kind::Caret};
    act.from = act.to = 3;
    Ask(field, act);
    field = &m_screen.described[m_window]->parts[0];
    EXPECT_EQ(field->caret, 3u);
    act = {Act::Kind::Text};
    act.text = "\u00E5!";
    Ask(field, act);
    EXPECT_EQ(TextOf(edit), "\u00E5!");

    const auto parts = [&]() -> const std::vector<Said>& { return m_screen.described[m_window]->parts; };
    Ask(&parts()[1], {Act::Kind::Press});
    EXPECT_EQ(SendMessageA(check, BM_GETCHECK, 0, 0), BST_CHECKED);
    EXPECT_TRUE(parts()[1].Is(Said::kChecked));
    // Of a list only what is in sight is told, and which of how many it is.
    const std::vector<Said>& rows = parts()[2].parts;
    ASSERT_GE(rows.size(), 2u);
    EXPECT_LT(rows.size(), 6u);
    EXPECT_EQ(rows[1].name, "two");
    EXPECT_EQ(rows[1].of, 6);
    Ask(&rows[1], {Act::Kind::Select});
    EXPECT_EQ(SendMessageA(list, LB_GETCURSEL, 0, 0), 1);

    EnableWindow(check, FALSE);
    Ask(&parts()[1], {Act::Kind::Press});
    EXPECT_EQ(SendMessageA(check, BM_GETCHECK, 0, 0), BST_CHECKED);
    EXPECT_TRUE(parts()[1].Is(Said::kDisabled));
    // To a window that is gone nothing can be done.
    const Said gone = parts()[2].parts[0];
    DestroyWindow(list);
    Ask(&gone, {Act::Kind::Select});
}

TEST_F(AccessibleTest, MenusAndListsAreToldWithTheirParts) {
    const HMENU bar = CreateMenu(), file = CreatePopupMenu();
    AppendMenuA(file, MF_STRING, 41, "&Open...\tCtrl+O");
    AppendMenuA(file, MF_STRING | MF_GRAYED, 42, "&Save");
    AppendMenuA(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(file), "&File");
    SetMenu(m_window, bar);
    const HWND list = Add(WC_LISTVIEWA, "", LVS_REPORT | WS_TABSTOP, {10, 10, 300, 200});
    LVCOLUMNA column{};
    column.mask = LVCF_TEXT | LVCF_WIDTH;
    column.cx = 100;
    for (const char* each : {"Channel", "Value"}) {
        column.pszText = const_cast<char*>(each);
        SendMessageA(list, LVM_INSERTCOLUMNA, 9, reinterpret_cast<LPARAM>(&column));
    }
    LVITEMA item{};
    item.mask = LVIF_TEXT;
    item.pszText = const_cast<char*>("Air");
    SendMessageA(list, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
    item.iSubItem = 1;
    item.pszText = const_cast<char*>("21.5");
    SendMessageA(list, LVM_SETITEMTEXTA, 0, reinterpret_cast<LPARAM>(&item));
    const Said& all = Listen();
    const Said* const open = Find(all, OrvikRole::MenuItem, "Open...");
    ASSERT_NE(open, nullptr);
    EXPECT_EQ(open->keys, "Ctrl+O");
    const Said* const save = Find(all, OrvikRole::MenuItem, "Save");
    ASSERT_TRUE(save != nullptr && save->Is(Said::kDisabled));
    const Said* const row = Find(all, OrvikRole::TableRow, "Air, 21.5");
    ASSERT_NE(row, nullptr);
    EXPECT_NE(Find(*row, OrvikRole::TableCell, "21.5"), nullptr);
    EXPECT_NE(Find(all, OrvikRole::ColumnHeader, "Value"), nullptr);
    EXPECT_GE(row->place.top, GetSystemMetrics(SM_CYMENU));  // in the picture, which has the bar above

    const std::shared_ptr<const Said> kept = m_screen.described[m_window];
    Ask(row, {Act::Kind::Focus});
    const Said* const focused = Find(*m_screen.described[m_window], OrvikRole::TableRow, "Air, 21.5");
    ASSERT_NE(focused, nullptr);
    EXPECT_TRUE(focused->Is(Said::kFocused) && focused->Is(Said::kSelected));
    m_log.clear();
    Ask(save, {Act::Kind::Press});
    Ask(open, {Act::Kind::Press});
    EXPECT_EQ(Take({"command"}), window_test::Log{"dialog command 41,0"});
}
