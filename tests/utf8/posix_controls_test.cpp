// Controls that step, rub out and look for by letters. On Windows they are the system's own.
#include "platform/scripted_input.h"
#include "tests/platform/control_host.h"

class Utf8Controls : public ControlHost {
protected:
    void TypeLetters(const char* text) {
        SetFocus(control);
        ASSERT_TRUE(OrvikPostText(control, text));
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
    }
    std::string Selection() const {
        DWORD from = 0, to = 0;
        SendMessageA(control, EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
        return std::to_string(from) + "-" + std::to_string(to);
    }
};

TEST_F(Utf8Controls, FieldsGoLetterByLetter) {
    Make("Edit", ES_AUTOHSCROLL);
    TypeLetters("kΩe\u0301\U0001F321");  // bytes 0 1 3 6 10
    for (const int at : {6, 3, 1, 0, 0}) {
        Press(VK_LEFT);
        EXPECT_EQ(Selection(), std::to_string(at) + "-" + std::to_string(at));
    }
    Press(VK_RIGHT), Press(VK_RIGHT, VK_SHIFT);
    EXPECT_EQ(Selection(), "1-3");
    Press(VK_RIGHT), Press(VK_DELETE);
    EXPECT_EQ(Text(), "kΩ\U0001F321");
    Press(VK_END), Send(WM_CHAR, VK_BACK, 1), Send(WM_CHAR, VK_BACK, 1);
    EXPECT_EQ(Text(), "k");
    Send(EM_UNDO);
    EXPECT_EQ(Text(), "kΩ\U0001F321");
    // Within a letter counts as its start; a click goes to a letter's edge.
    Send(EM_SETSEL, 2, 5);
    EXPECT_EQ(Selection(), "1-3");
    for (int x = 0; x < 60; ++x) {
        Click(x, 8);
        const std::string at = Selection();
        EXPECT_TRUE(at == "0-0" || at == "1-1" || at == "3-3" || at == "7-7") << at;
    }
    const LRESULT end = Send(EM_POSFROMCHAR, 7);
    EXPECT_EQ(LOWORD(Send(EM_CHARFROMPOS, 0, end)), 7);
}

TEST_F(Utf8Controls, FieldsHideAndRaiseLetters) {
    Make("Edit", ES_PASSWORD, "kΩe\u0301");
    const LRESULT end = Send(EM_POSFROMCHAR, 6);
    SetWindowTextA(control, "abc");  // as many
    EXPECT_EQ(Send(EM_POSFROMCHAR, 3), end);
    EXPECT_EQ(Send(EM_SETPASSWORDCHAR, 0x25CF), 1);
    EXPECT_EQ(Send(EM_GETPASSWORDCHAR), 0x25CF);
    Make("Edit", ES_UPPERCASE, "kωåß");
    EXPECT_EQ(Text(), "KΩÅß");
    Make("Edit", ES_MULTILINE, "温度温度温度温度", 40);
    const LRESULT lines = Send(EM_GETLINECOUNT);
    EXPECT_GT(lines, 1);
    for (int line = 0; line < lines; ++line) EXPECT_EQ(Send(EM_LINEINDEX, static_cast<WPARAM>(line)) % 3, 0);
}

TEST_F(Utf8Controls, ListsAreSearchedByWhatIsTyped) {
    for (const char* const name : {"ListBox", "ComboBox"}) {
        const bool list = name == std::string("ListBox");
        Make(name, list ? 0 : CBS_DROPDOWNLIST);
        for (const char* const text : {"ash", "ÄRA", "Ωmega", "\U0001F321 hot"}) Ask(list ? LB_ADDSTRING : CB_ADDSTRING, 0, text);
        int at = 1;
        for (const char* const typed : {"ä", "ω", "\U0001F321"}) {
            TypeLetters(typed);
            EXPECT_EQ(Send(list ? LB_GETCURSEL : CB_GETCURSEL), at++) << typed;
        }
    }
}
