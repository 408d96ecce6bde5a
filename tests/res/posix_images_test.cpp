// The decoder of cursor and icon files on the home whose system has none.
#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "platform/posix/resources/images_internal.h"
#include "platform/posix/resources/resources.h"
#include "res/embedded.h"

using namespace orvik::detail;

namespace {

// A bitmap of 2 x 2 pixels: header, palette, rows from the bottom, mask.
std::vector<unsigned char> Small(unsigned bits, const std::vector<unsigned char>& rest) {
    std::vector<unsigned char> bytes(40);
    bytes[0] = 40, bytes[4] = 2, bytes[8] = 4, bytes[12] = 1, bytes[14] = static_cast<unsigned char>(bits);
    bytes.insert(bytes.end(), rest.begin(), rest.end());
    return bytes;
}

}  // namespace

TEST(IconFiles, PixelsOfEveryDepth) {
    // Top row: red, blue; bottom row: clear, green. Rows are padded to four bytes; in the mask a set bit is clear.
    const std::vector<uint32_t> expected = {0xFFFF0000, 0xFF0000FF, 0x00000000, 0xFF00FF00};
    const std::vector<unsigned char> mask = {0x80, 0, 0, 0, 0x00, 0, 0, 0};
    const auto with = [&](unsigned bits, std::vector<unsigned char> body) {
        body.insert(body.end(), mask.begin(), mask.end());
        const auto image = DecodeIconBitmap(Small(bits, body));
        return image ? image->pixels : std::vector<uint32_t>();
    };
    EXPECT_EQ(with(24, {0, 0, 0, 0, 0xFF, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0, 0, 0, 0}), expected);
    std::vector<unsigned char> eight(1024);
    eight[4 + 2] = 0xFF, eight[8 + 0] = 0xFF, eight[12 + 1] = 0xFF;  // 1 red, 2 blue, 3 green
    eight.insert(eight.end(), {0, 3, 0, 0, 1, 2, 0, 0});
    EXPECT_EQ(with(8, eight), expected);
    std::vector<unsigned char> four(64);
    four[4 + 2] = 0xFF, four[8 + 0] = 0xFF, four[12 + 1] = 0xFF;
    four.insert(four.end(), {0x03, 0, 0, 0, 0x12, 0, 0, 0});
    EXPECT_EQ(with(4, four), expected);
    EXPECT_EQ(with(32, {0, 0, 0, 0, 0, 0xFF, 0, 0xFF, 0, 0, 0xFF, 0xFF, 0xFF, 0, 0, 0xFF}), expected);
    EXPECT_EQ(with(32, {0, 0, 0, 0, 0, 0xFF, 0, 0, 0, 0, 0xFF, 0, 0xFF, 0, 0, 0}), expected);  // no alpha: the mask decides
    auto few = Small(8, std::vector<unsigned char>(4 + 8 + 8, 1));
    few[32] = 1;  // one colour, and pixels that name others
    EXPECT_FALSE(DecodeIconBitmap(few));
}

TEST(IconHandles, DieOnceAndSharedOnesNever) {
    const HINSTANCE module = GetModuleHandleA("OrvikShared.dll");
    const auto icon = static_cast<HICON>(LoadImageA(module, MAKEINTRESOURCEA(171), IMAGE_ICON, 48, 48, 0));
    ASSERT_TRUE(icon);
    EXPECT_EQ(ImageOf(icon)->width, 48);
    EXPECT_TRUE(DestroyIcon(icon));
    EXPECT_FALSE(DestroyIcon(icon));
    EXPECT_EQ(ImageOf(icon), nullptr);
    const HCURSOR cursor = LoadCursorA(module, MAKEINTRESOURCEA(152));
    EXPECT_EQ(LoadCursorA(module, MAKEINTRESOURCEA(152)), cursor);
    EXPECT_TRUE(DestroyCursor(cursor));
    EXPECT_TRUE(ImageOf(cursor));
    EXPECT_FALSE(DestroyCursor(nullptr));
    EXPECT_FALSE(LoadCursorA(GetModuleHandleA("libc.so.6"), MAKEINTRESOURCEA(152)));  // another module has no resources
}
