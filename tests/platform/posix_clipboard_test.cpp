// What the desktop's clipboard gets of ours, and what becomes of what others have copied.
#include <gtest/gtest.h>

#include <map>

#include "platform/house_text_internal.h"
#include "platform/posix/exchange/clipboard_forms_internal.h"
#include "platform/posix/screen/screen_loading_internal.h"
#include "platform/win32.h"
#include "tests/support/table.h"

using namespace orvik::detail;

namespace {
// A desktop with one clipboard, and another program on it.
class Desk final : public Screen, public ScreenExchange {
public:
    Desk() : m_before(UseScreen(this)) {}
    ~Desk() { UseScreen(m_before); }
    void Changed(HWND) override {}
    void Damaged(HWND, const RECT&) override {}
    void AskForFile(FileQuestion, FileAnswer answer) override { answer(std::nullopt); }
    void Described(HWND, std::shared_ptr<const OrvikAccessible>) override {}
    void End() override {}
    ScreenExchange* Exchange() override { return this; }

    void Offer(CopyPlace place, std::shared_ptr<const CopiedData> offered, std::function<void()> lost) override {
        if (const auto before = std::exchange(m_lost[place], lost)) before();
        data[place] = offered != nullptr ? *offered : CopiedData{};
    }
    void AskForms(CopyPlace place, std::function<void(unsigned)> answer) override {
        const CopiedData& there = data[place];
        answer((there.text.empty() ? 0u : 1u) | (there.html.empty() ? 0u : 2u) | (there.png.empty() ? 0u : 4u));
    }
    void Ask(CopyPlace place, CopiedForm form, std::function<void(std::string)> answer) override {
        const CopiedData& there = data[place];
        answer(form == CopiedForm::Text ? there.text : form == CopiedForm::Html ? there.html : there.png);
    }
    void OtherCopies(const CopiedData& copied) { Offer(CopyPlace::Clipboard, std::make_shared<CopiedData>(copied), {}); }

    std::map<CopyPlace, CopiedData> data;

private:
    Screen* m_before;
    std::map<CopyPlace, std::function<void()>> m_lost;
};

std::string Units(std::u16string_view units) {
    return std::string(reinterpret_cast<const char*>(units.data()), units.size() * sizeof(char16_t));
}

std::string Taken(UINT format) {
    EXPECT_TRUE(OpenClipboard(nullptr));
    const HANDLE memory = GetClipboardData(format);
    const std::string bytes =
        memory != nullptr ? std::string(static_cast<const char*>(GlobalLock(memory)), GlobalSize(memory)) : std::string();
    CloseClipboard();
    return bytes;
}

void Give(UINT format, const std::string& bytes) {
    EXPECT_TRUE(OpenClipboard(nullptr));
    EmptyClipboard();
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
    bytes.copy(static_cast<char*>(GlobalLock(memory)), bytes.size());
    SetClipboardData(format, memory);
    CloseClipboard();
}

std::string Dib(LONG width, LONG height, WORD bits, size_t pixels) {
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = width;
    header.biHeight = height;
    header.biPlanes = 1;
    header.biBitCount = bits;
    std::string dib(reinterpret_cast<const char*>(&header), sizeof header);
    for (size_t i = 0; i < pixels; ++i) dib += static_cast<char>(i);
    return dib;
}
}  // namespace

TEST(DesktopClipboardTest, TextIsWholeWhateverCame) {
    struct Case {
        std::u16string ours;
        std::string theirs;  // what others get
        std::u16string back;
    };
    for (const Case& each : Table(Case{u"a\r\nb", "a\nb", u"a\r\nb"}, Case{u"a\rb\nc", "a\nb\nc", u"a\r\nb\r\nc"},
                                  Case{u"\U0001F321 \u2103", "\U0001F321 \u2103", u"\U0001F321 \u2103"},
                                  Case{std::u16string(u"x") + char16_t{0xD83C}, "x\uFFFD", u"x\uFFFD"},
                                  Case{std::u16string(1, char16_t{0xDF21}) + u"y", "\uFFFDy", u"\uFFFDy"},
                                  Case{std::u16string(u"a\0b", 3), "a", u"a"})) {
        EXPECT_EQ(Utf8OfCopied(Units(each.ours)), each.theirs);
        EXPECT_EQ(CopiedOfUtf8(each.theirs), Units(each.back + u'\0'));
    }
    EXPECT_EQ(CopiedOfUtf8("a\xFF"), Units(std::u16string(u"a\uFFFD\0", 3)));
    EXPECT_EQ(Utf8OfCopied("odd"), Utf8OfCopied("od"));
}

TEST(DesktopClipboardTest, PicturesKeepTheirPixelsAndBadOnesAreNone) {
    for (const WORD bits : {WORD{24}, WORD{32}}) {
        const size_t row = bits == 24 ? 8 : 8;  // two pixels, to a multiple of four
        const std::string png = PngOfDib(Dib(2, 3, bits, row * 3));
        const std::string dib = DibOfPng(png);
        ASSERT_EQ(dib.size(), sizeof(BITMAPINFOHEADER) + 24) << bits;
        EXPECT_EQ(PngOfDib(dib), png);  // the same picture, whatever its depth was
        EXPECT_NE(png, PngOfDib(Dib(2, -3, bits, row * 3)));
    }
    for (const std::string& bad : {Dib(2, 3, 32, 23), Dib(2, 3, 8, 24), Dib(0, 3, 32, 24), Dib(2, INT32_MIN, 32, 24),
                                   Dib(INT32_MAX, INT32_MAX, 32, 24), std::string("short"), std::string()})
        EXPECT_EQ(PngOfDib(bad), "");
    std::string huge = PngOfDib(Dib(2, 3, 32, 24));
    EXPECT_EQ(DibOfPng(huge.substr(0, huge.size() / 2)), "");
    huge[16] = 0x70;
    EXPECT_EQ(DibOfPng(huge), "");
    EXPECT_EQ(DibOfPng("no picture"), "");
}

TEST(DesktopClipboardTest, PagesHaveTheirHeading) {
    const std::string copied = CopiedOfHtml("<b>\u2103</b>");
    EXPECT_EQ(HtmlOfCopied(copied), "<html><body><!--StartFragment--><b>\u2103</b><!--EndFragment--></body></html>");
    EXPECT_EQ(HtmlOfCopied(CopiedOfHtml(HtmlOfCopied(copied))), HtmlOfCopied(copied));
    EXPECT_EQ(HtmlOfCopied(CopiedOfHtml("\xFF\xFE" + Units(u"<i>"))),
              "<html><body><!--StartFragment--><i><!--EndFragment--></body></html>");
    for (const char* bad : {"", "no heading", "StartHTML:5\r\nEndHTML:900000\r\n<b>", "StartHTML:9\r\nEndHTML:2\r\n<b>"})
        EXPECT_EQ(HtmlOfCopied(bad), "");
}

TEST(DesktopClipboardTest, IsSharedWithOtherPrograms) {
    Desk desk;
    const UINT html = RegisterClipboardFormatA("HTML Format");
    Give(CF_UNICODETEXT, Units(std::u16string(u"ours\0", 5)));
    EXPECT_EQ(desk.data[CopyPlace::Clipboard].text, "ours");
    EXPECT_EQ(Taken(CF_TEXT), std::string("ours\0", 5));

    desk.OtherCopies({"theirs\n", "<b>theirs</b>", PngOfDib(Dib(2, 3, 32, 24))});
    EXPECT_EQ(Taken(CF_UNICODETEXT), Units(std::u16string(u"theirs\r\n\0", 9)));
    EXPECT_NE(HtmlOfCopied(Taken(html)).find("<b>theirs</b>"), std::string::npos);
    EXPECT_EQ(PngOfDib(Taken(CF_DIB)), desk.data[CopyPlace::Clipboard].png);
    EXPECT_EQ(CountClipboardFormats(), 4);
    desk.OtherCopies({std::string(kMostCopied + 1, 'x'), "", ""});
    EXPECT_EQ(Taken(CF_UNICODETEXT), "");

    // Two copies of ours: the loss of the first is not the loss of the second.
    Give(CF_UNICODETEXT, Units(std::u16string(u"1\0", 2)));
    Give(CF_DIB, Dib(2, 3, 32, 24));
    EXPECT_FALSE(IsClipboardFormatAvailable(CF_TEXT));
    EXPECT_TRUE(IsClipboardFormatAvailable(CF_DIB));
}

TEST(DesktopClipboardTest, WhatIsMarkedIsForTheMiddleButton) {
    Desk desk;
    const HWND field =
        CreateWindowExA(0, "Edit", "marked", WS_POPUP | WS_VISIBLE, 0, 0, 200, 40, nullptr, nullptr, nullptr, nullptr);
    SetFocus(field);
    SendMessageA(field, WM_CHAR, 1, 0);
    EXPECT_EQ(desk.data[CopyPlace::Selection].text, "marked");
    desk.data[CopyPlace::Selection].text = "other\nlines";
    SendMessageA(field, WM_MBUTTONDOWN, MK_MBUTTON, MAKELPARAM(190, 5));
    char text[64] = "";
    GetWindowTextA(field, text, sizeof text);
    EXPECT_STREQ(text, "markedother");
    SendMessageA(field, EM_SETPASSWORDCHAR, '*', 0);
    SendMessageA(field, WM_CHAR, 1, 0);
    EXPECT_EQ(desk.data[CopyPlace::Selection].text, "other\nlines");
    SendMessageA(field, EM_SETSEL, 0, -1);
    for (const UINT message : {WM_COPY, WM_CUT}) SendMessageA(field, message, 0, 0);
    EXPECT_EQ(desk.data[CopyPlace::Clipboard].text, "");  // what is hidden is never copied
    DestroyWindow(field);
}
