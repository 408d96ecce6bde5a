// The clipboard by the system's names, on both homes.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/win32.h"

namespace {
class Opened {
public:
    Opened() : m_window(CreateWindowExA(0, "Static", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr)) {
        EXPECT_TRUE(OpenClipboard(m_window));
    }
    ~Opened() {
        CloseClipboard();
        DestroyWindow(m_window);
    }

private:
    HWND m_window;
};

HANDLE Memory(const void* bytes, size_t size) {
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
    std::memcpy(GlobalLock(memory), bytes, size);
    GlobalUnlock(memory);
    return memory;
}

std::string Bytes(UINT format) {
    const HANDLE memory = GetClipboardData(format);
    if (memory == nullptr) return {};
    std::string bytes(static_cast<const char*>(GlobalLock(memory)), GlobalSize(memory));
    GlobalUnlock(memory);
    return bytes;
}
}  // namespace

TEST(ClipboardTest, HasWhatWasGivenLast) {
    const UINT own = RegisterClipboardFormatA("Orvik test format");
    EXPECT_EQ(RegisterClipboardFormatA("orvik TEST format"), own);
    const WCHAR text[] = {'2', '3', ' ', 0x00B0, 'C', '\r', '\n', 0};
    {
        const Opened opened;
        EmptyClipboard();
        EXPECT_EQ(CountClipboardFormats(), 0);
        EXPECT_NE(SetClipboardData(CF_UNICODETEXT, Memory(text, sizeof text)), nullptr);
        EXPECT_NE(SetClipboardData(own, Memory("own", 3)), nullptr);
    }
    EXPECT_TRUE(IsClipboardFormatAvailable(CF_UNICODETEXT));
    EXPECT_TRUE(IsClipboardFormatAvailable(CF_TEXT));  // made of the other one
    EXPECT_TRUE(IsClipboardFormatAvailable(own));
    EXPECT_FALSE(IsClipboardFormatAvailable(CF_DIB));
    {
        const Opened opened;
        EXPECT_EQ(Bytes(CF_UNICODETEXT), std::string(reinterpret_cast<const char*>(text), sizeof text));
        EXPECT_EQ(Bytes(own).substr(0, 3), "own");
        bool found = false;
        for (UINT format = 0; (format = EnumClipboardFormats(format)) != 0;) found |= format == own;
        EXPECT_TRUE(found);
        EXPECT_EQ(GetClipboardData(CF_DIB), nullptr);
        EmptyClipboard();
    }
    EXPECT_FALSE(IsClipboardFormatAvailable(CF_UNICODETEXT));
}

TEST(ClipboardTest, IsForWhoHasOpenedIt) {
    EXPECT_EQ(GetClipboardData(CF_UNICODETEXT), nullptr);
    EXPECT_FALSE(EmptyClipboard());
    const HANDLE memory = Memory("x", 2);
    EXPECT_EQ(SetClipboardData(CF_TEXT, memory), nullptr);
    EXPECT_EQ(GlobalFree(memory), nullptr);
    EXPECT_FALSE(CloseClipboard());
}

TEST(ClipboardTest, FieldsGiveAndTake) {
    const HWND field = CreateWindowExA(0, "Edit", "12.5 mm", WS_POPUP, 0, 0, 100, 20, nullptr, nullptr, nullptr, nullptr);
    const auto text = [&] {
        char out[64] = "";
        GetWindowTextA(field, out, sizeof out);
        return std::string(out);
    };
    SendMessageA(field, EM_SETSEL, 0, 4);
    SendMessageA(field, WM_CUT, 0, 0);
    EXPECT_EQ(text(), " mm");
    SendMessageA(field, EM_SETSEL, 3, 3);
    SendMessageA(field, WM_PASTE, 0, 0);
    EXPECT_EQ(text(), " mm12.5");
    SendMessageA(field, EM_UNDO, 0, 0);
    EXPECT_EQ(text(), " mm");

    SendMessageA(field, EM_SETREADONLY, TRUE, 0);
    SendMessageA(field, EM_SETSEL, 0, -1);
    for (const UINT message : {WM_CUT, WM_PASTE, WM_CLEAR}) SendMessageA(field, message, 0, 0);
    EXPECT_EQ(text(), " mm");
    DestroyWindow(field);
}
