// Colours and letters of the desktop: what they become, and whether one can read it.
#include <optional>

#include "platform/contrast.h"
#include "platform/posix/controls/flat_looks_internal.h"
#include "platform/posix/drawing/desktop_looks_internal.h"
#include "platform/posix/drawing/font_internal.h"
#include "tests/platform/control_host.h"

using namespace orvik::detail;
using orvik::Contrast;

namespace {
class LooksTest : public ControlHost {
protected:
    void TearDown() override {
        SetDesktopLooks({});
        ControlHost::TearDown();
    }
};

TEST_F(LooksTest, EverythingCanBeReadInEveryScheme) {
    struct Pair {
        int ink, ground;
    };
    constexpr Pair kTexts[] = {{COLOR_WINDOWTEXT, COLOR_WINDOW}, {COLOR_BTNTEXT, COLOR_BTNFACE},
                               {COLOR_MENUTEXT, COLOR_MENU},     {COLOR_GRAYTEXT, COLOR_BTNFACE},
                               {COLOR_GRAYTEXT, COLOR_WINDOW},   {COLOR_INFOTEXT, COLOR_INFOBK},
                               {COLOR_HOTLIGHT, COLOR_WINDOW},   {COLOR_HIGHLIGHTTEXT, COLOR_HIGHLIGHT}};
    for (const bool dark : {false, true}) {
        for (const auto accent : {std::optional<COLORREF>(), std::optional<COLORREF>(RGB(255, 230, 0)),
                                  std::optional<COLORREF>(RGB(20, 20, 20)), std::optional<COLORREF>(RGB(53, 132, 228))}) {
            DesktopLooks looks;
            looks.dark = dark;
            looks.accent = accent;
            SetDesktopLooks(looks);
            SCOPED_TRACE(::testing::Message() << (dark ? "dark " : "light ") << std::hex << accent.value_or(0));
            for (const Pair& each : kTexts)
                EXPECT_GE(Contrast(GetSysColor(each.ink), GetSysColor(each.ground)), orvik::kReadableText)
                    << each.ink << " on " << each.ground;
            EXPECT_GE(Contrast(FrameInk(), GetSysColor(COLOR_BTNFACE)), orvik::kVisibleShape);
            for (int bits = 0; bits < 16; ++bits) {
                FlatState state;
                state.main = (bits & 1) != 0, state.hot = (bits & 2) != 0, state.pressed = (bits & 4) != 0,
                state.enabled = (bits & 8) == 0;
                EXPECT_GE(Contrast(ButtonInk(state), ButtonFace(state)), state.enabled ? orvik::kReadableText : 4) << bits;
            }
        }
    }
}

TEST_F(LooksTest, BrushesAndLettersOfTheSystemFollow) {
    const HBRUSH window = GetSysColorBrush(COLOR_WINDOW);
    LOGBRUSH before{}, after{};
    GetObjectA(window, sizeof before, &before);
    DesktopLooks looks;
    looks.dark = true;
    looks.font = "DejaVu Serif";
    looks.fontPixels = 20;
    EXPECT_TRUE(SetDesktopLooks(looks));
    EXPECT_FALSE(SetDesktopLooks(looks));
    GetObjectA(window, sizeof after, &after);
    EXPECT_EQ(after.lbColor, GetSysColor(COLOR_WINDOW));
    EXPECT_NE(after.lbColor, before.lbColor);
    NONCLIENTMETRICSA metrics{};
    metrics.cbSize = sizeof metrics;
    ASSERT_TRUE(SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0));
    EXPECT_EQ(metrics.lfMessageFont.lfHeight, -20);
    EXPECT_EQ(FaceOf(metrics.lfMessageFont)->Font().family, "DejaVu Serif");
}
}  // namespace
