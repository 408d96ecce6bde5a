// Texts and images as the module's users find them, by their ids.
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <tuple>
#include <vector>

#include "platform/house_text_internal.h"
#include "platform/win32.h"
#include "res/ids.h"
#include "tests/support/regional_settings.h"

namespace {

constexpr LANGID kEnglish = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), kSwedish = MAKELANGID(LANG_SWEDISH, SUBLANG_SWEDISH);

HINSTANCE Module() { return GetModuleHandleA(nullptr); }

std::string Text(UINT id) {
    char text[256];
    const int length = LoadStringA(Module(), id, text, sizeof text);
    return std::string(text, static_cast<size_t>(length));
}

std::vector<unsigned char> Bytes(HRSRC resource) {
    const auto* data = static_cast<const unsigned char*>(LockResource(LoadResource(Module(), resource)));
    return data ? std::vector<unsigned char>(data, data + SizeofResource(Module(), resource)) : std::vector<unsigned char>();
}

}  // namespace

TEST(Texts, EveryIdHasBoth) {
    const struct {
        UINT first, last;
    } ranges[] = {{823, 839}, {842, 845}, {8000, 8048}, {8050, 8054}, {8057, 8063}, {8083, 8083}};
    for (const auto& range : ranges)
        for (UINT id = range.first; id <= range.last; ++id)
            for (const int language : {LANG_ENGLISH, LANG_SWEDISH}) {
                const TextLanguage chosen(static_cast<WORD>(language));
                EXPECT_NE(Text(id), "") << id;
            }
    EXPECT_EQ(Text(7999), "");
    EXPECT_EQ(Text(60000), "");
}

TEST(Texts, BlocksByLanguage) {
    const HRSRC english = FindResourceExW(Module(), MAKEINTRESOURCEW(6), MAKEINTRESOURCEW(828 / 16 + 1), kEnglish);
    const HRSRC swedish = FindResourceExW(Module(), MAKEINTRESOURCEW(6), MAKEINTRESOURCEW(828 / 16 + 1), kSwedish);
    ASSERT_TRUE(english && swedish);
    // Sixteen texts a block, each a count and its characters; 828 is the thirteenth of its own.
    const auto third = [](const std::vector<unsigned char>& block) {
        size_t at = 0;
        for (int i = 0; i < 828 % 16; ++i) at += 2 + 2 * static_cast<size_t>(block[at] | block[at + 1] << 8);
        std::string text;
        for (int i = 0; i < block[at]; ++i) text += static_cast<char>(block[at + 2 + 2 * static_cast<size_t>(i)]);
        return text;
    };
    EXPECT_EQ(third(Bytes(english)), "No error");
    EXPECT_EQ(third(Bytes(swedish)), "Inget fel");
    EXPECT_EQ(FindResourceExW(Module(), MAKEINTRESOURCEW(6), MAKEINTRESOURCEW(400), kEnglish), nullptr);
}

TEST(Images, CursorsHaveTheirHotSpots) {
    using Row = std::tuple<UINT, DWORD, DWORD>;
    for (const auto& [id, x, y] :
         {Row{143, 13, 13}, Row{145, 15, 15}, Row{146, 15, 15}, Row{147, 15, 15}, Row{148, 15, 15}, Row{149, 13, 13},
          Row{150, 13, 13}, Row{151, 2, 2}, Row{152, 15, 15}, Row{153, 15, 15}, Row{154, 15, 15}, Row{155, 15, 15},
          Row{156, 15, 15}, Row{157, 15, 15}, Row{158, 2, 2}, Row{160, 15, 15}, Row{162, 15, 15}, Row{165, 15, 15}}) {
        EXPECT_TRUE(FindResourceA(Module(), MAKEINTRESOURCEA(id), RT_GROUP_CURSOR)) << id;
        const HCURSOR cursor = LoadCursorW(Module(), MAKEINTRESOURCEW(id));
        ASSERT_TRUE(cursor) << id;
        ICONINFO info{};
        ASSERT_TRUE(GetIconInfo(cursor, &info)) << id;
        EXPECT_FALSE(info.fIcon);
        EXPECT_EQ(info.xHotspot, x) << id;
        EXPECT_EQ(info.yHotspot, y) << id;
    }
    EXPECT_FALSE(LoadCursorW(Module(), MAKEINTRESOURCEW(167)));  // an icon's id
    EXPECT_FALSE(LoadCursorA(Module(), MAKEINTRESOURCEA(144)));
}

TEST(Images, IconsComeInThreeSizes) {
    for (const UINT id : {167u, 168u, 169u, 170u, 171u, 172u, 175u, 176u}) {
        const HRSRC group = FindResourceA(Module(), MAKEINTRESOURCEA(id), RT_GROUP_ICON);
        ASSERT_TRUE(group) << id;
        const auto directory = Bytes(group);
        ASSERT_EQ(directory.size(), 6u + 3 * 14u) << id;
        EXPECT_EQ(directory[6], 16) << id;
        EXPECT_EQ(directory[20], 32) << id;
        EXPECT_EQ(directory[34], 48) << id;
        const HANDLE icon = LoadImageA(Module(), MAKEINTRESOURCEA(id), IMAGE_ICON, 32, 32, 0);
        ASSERT_TRUE(icon) << id;
        ICONINFO info{};
        EXPECT_TRUE(GetIconInfo(static_cast<HICON>(icon), &info));
        EXPECT_TRUE(info.fIcon);
        EXPECT_TRUE(DestroyIcon(static_cast<HICON>(icon)));
    }
    EXPECT_FALSE(LoadImageA(Module(), MAKEINTRESOURCEA(173), IMAGE_ICON, 32, 32, 0));
}

TEST(Images, SystemCursorsAreShared) {
    for (const LPSTR id : {IDC_WAIT, IDC_HAND, IDC_SIZEALL, IDC_SIZENS, IDC_SIZEWE, IDC_SIZENWSE, IDC_SIZENESW}) {
        const HCURSOR cursor = LoadCursorA(nullptr, id);
        EXPECT_TRUE(cursor);
        EXPECT_EQ(LoadCursorA(nullptr, id), cursor);
    }
    EXPECT_FALSE(LoadCursorA(nullptr, MAKEINTRESOURCEA(149)));
}
